// IEEE flags by keyword, Fortran trap handlers reached from real trapped operations in child
// processes, the code derived from a signal context, and the MXCSR routines.
#include <cfloat>
#include <cstring>
#include <functional>
#include <string>
#include <tuple>
#include <ucontext.h>
#include <unistd.h>

#include "support/fp_state.h"
#include "support/support.h"
#include <tarvo/portlib.h>

namespace {

using namespace runtime::fp;
using tarvo_test::FString;
using tarvo_test::keep;
using tarvo_test::run_time;

std::int32_t flags(const std::string& action, const std::string& mode, const std::string& in, std::string* out = nullptr) {
    FString result(24, '*');
    const std::int32_t r = ieee_flags_(action.data(), mode.data(), in.data(), result.data(), action.size(),
                                       mode.size(), in.size(), result.size());
    if (out != nullptr) *out = result.trimmed();
    return r;
}
std::tuple<std::int32_t, std::string> get(const std::string& mode, const std::string& in = " ") {
    std::string out;
    const std::int32_t r = flags("get", mode, in, &out);
    return {r, out};
}
std::intptr_t handler(const std::string& action, const std::string& exception,
                      void (*fn)(std::int32_t*, const std::int32_t*)) {
    return ieee_handler_(action.data(), exception.data(), fn, action.size(), exception.size());
}

// The Fortran handler of the child processes: ends the child with the code less 100.
void report(std::int32_t* signum, const std::int32_t* code) { _exit(*signum == SIGFPE ? *code - 100 : 1); }

// The wait status of a child that runs fn with `report` installed for `exception`.
int trap(const char* exception, const std::function<void()>& fn) {
    return tarvo_test::run_in_child([&] {
        if (handler("set", exception, report) != 0) return 2;
        fn();
        return 0;
    });
}
constexpr int handled(int code) { return (code - 100) << 8; }
constexpr int exited(int status) { return status << 8; }

class IeeeFlags : public tarvo_test::FpStateTest {};
class IeeeHandler : public tarvo_test::FpStateTest {};

TEST_F(IeeeFlags, DirectionAndPrecisionReadBackWithTheirOwnNumbers) {
    EXPECT_EQ(get("direction"), std::make_tuple(0, std::string("nearest")));
    EXPECT_EQ(get("precision"), std::make_tuple(3, std::string("extended")));
    const std::tuple<const char*, const char*, int> cases[] = {
        {"direction", "tozero", 3}, {"direction", "negative", 1}, {"Direction", "POSITIVE", 2},
        {"direction", "nearest", 0}, {"precision", "single", 0}, {"precision", "double", 2},
        {"PRECISION", "extended", 3},
    };
    for (const auto& [mode, in, number] : cases) {
        std::string out;
        EXPECT_EQ(flags("SET", mode, in), 0) << in;
        EXPECT_EQ(flags("Get", mode, "", &out), number) << in;
        EXPECT_STRCASEEQ(out.c_str(), in);
    }
    flags("set", "direction", "tozero");
    flags("set", "precision", "single");
    EXPECT_EQ(runtime::controlfp(0, 0), kExceptions | kRoundChop | kPrecision24);
    EXPECT_EQ(flags("clear", "direction", "x") + flags("clear", "precision", ""), 0);
    EXPECT_EQ(runtime::controlfp(0, 0), kExceptions);
}

TEST_F(IeeeFlags, ExceptionsRaisedByRealOperations) {
    EXPECT_EQ(get("exception"), std::make_tuple(0, std::string()));
    keep(run_time(0.0) / run_time(0.0));
    keep(run_time(DBL_MAX) * run_time(2.0));
    EXPECT_EQ(get("exception", "overflow"), std::make_tuple(1 | 8 | 32, std::string("overflow")));
    EXPECT_EQ(get("exception"), std::make_tuple(41, std::string("invalid")));
    EXPECT_EQ(get("exception", "division"), std::make_tuple(41, std::string("invalid")));
    runtime::clearfp();
    keep(run_time(1.0L) / run_time(0.0L));
    keep(run_time(LDBL_MIN) / run_time(1e10L));
    EXPECT_EQ(get("exception", "inexact"), std::make_tuple(4 | 16 | 32, std::string("inexact")));
    EXPECT_EQ(get("exception"), std::make_tuple(52, std::string("division")));
}

TEST_F(IeeeFlags, TrapMasksByKeywordAndClearAll) {
    EXPECT_EQ(flags("set", "exception", "common"), 0);
    EXPECT_EQ(runtime::controlfp(0, 0), kInexact | kDenormal);
    EXPECT_EQ(mxcsr() & 0x1F80u, 0x1100u);
    EXPECT_EQ(flags("clear", "exception", "ALL"), 0);
    keep(run_time(1.0) / run_time(0.0));  // masked: the flag only
    flags("set", "direction", "positive");
    EXPECT_EQ(flags("set", "exception", "overflow"), 0);
    EXPECT_EQ(runtime::controlfp(0, 0), kExceptions - kOverflow + kRoundUp);
    EXPECT_EQ(runtime::statusfp(), kZeroDivide);
    EXPECT_EQ(flags("clearall", "ignored", "ignored"), 0);
    EXPECT_EQ(runtime::controlfp(0, 0), kExceptions);
    EXPECT_EQ(runtime::statusfp(), 0u);
    EXPECT_EQ(flags("set", "exception", "all"), 0);
    EXPECT_EQ(runtime::controlfp(0, 0), 0u);
}

TEST_F(IeeeFlags, UnknownKeywordsChangeNothing) {
    std::string out;
    EXPECT_EQ(flags("get", "rounding", "", &out), 1);
    EXPECT_EQ(out, "mode not available");
    for (const auto& [action, mode, in] : {std::make_tuple("set", "direction", "up"), {"set", "exception", "denormal"},
                                           {"clear", "exception", "none"}, {"clear", "rounding", "nearest"},
                                           {"reset", "direction", "nearest"}})
        EXPECT_EQ(std::make_tuple(flags(action, mode, in, &out), out), std::make_tuple(1, std::string())) << action << mode << in;
    EXPECT_EQ(flags("set precision", "direction single", "tozero x"), 0);  // cut at the blank
    EXPECT_EQ(runtime::controlfp(0, 0), kExceptions | kRoundChop);
    EXPECT_EXIT(flags("get", "direction", std::string(21, ' ')), ::testing::KilledBySignal(SIGABRT), "");
}

TEST_F(IeeeHandler, WordListsAcceptPrefixesThatFirstOccurAtAWord) {
    const std::tuple<const char*, const char*, std::intptr_t> cases[] = {
        {"s", "inv", 0},  {"CLEAR", "Common", 0}, {"c", "a", 1},    {"se", "o", 1},  {"et", "all", 1},
        {"", "all", 1},   {"get", "", 1},         {"gets", "all", 1}, {"get", "all", 1}, {"g", "co", 1},
        {"get", "ovf", 1}, {"g", "und", 0},    {"clear", "inexact ", 0},
    };
    for (const auto& [action, exception, result] : cases)
        EXPECT_EQ(handler(action, exception, report), result) << action << "/" << exception;
    EXPECT_EQ(runtime::controlfp(0, 0), kExceptions);
    EXPECT_EQ(handler("get", "division", nullptr), 0);
}

TEST_F(IeeeHandler, SetUnmasksBothUnitsStoresTheHandlerAndClearUndoes) {
    EXPECT_EQ(handler("set", "division", report), 0);
    EXPECT_EQ(handler("get", "d", nullptr), reinterpret_cast<std::intptr_t>(report));
    EXPECT_EQ(runtime::controlfp(0, 0), kExceptions - kZeroDivide);
    EXPECT_EQ(mxcsr() & 0x1F80u, 0x1D80u);
    struct sigaction act {};
    sigaction(SIGFPE, nullptr, &act);
    EXPECT_TRUE(act.sa_sigaction == general_handler && (act.sa_flags & SA_SIGINFO) && (act.sa_flags & SA_NODEFER));
    EXPECT_EQ(handler("clear", "all", nullptr), 0);
    EXPECT_EQ(handler("get", "division", nullptr), 0);
    EXPECT_EQ(runtime::controlfp(0, 0), kExceptions);
    ieee_set_mxcsr(0x1 | 0x10);
    EXPECT_EQ(mxcsr() & 0x1F80u, 0x0F00u);
    ieee_clear_mxcsr(0x1F);
    EXPECT_EQ(mxcsr() & 0x1F80u, 0x1F80u);
}

TEST_F(IeeeHandler, TrapWithoutItsHandlerStillEndsWithStatus9) {
    EXPECT_EQ(trap("overflow", [] {
                  runtime::controlfp(0, kZeroDivide);
                  keep(run_time(1.0) / run_time(0.0));
              }),
              exited(9));
}

// general_handler entered directly, as the kernel would for a trap it left unclassified.
struct Context {
    ucontext_t uc{};
    alignas(64) unsigned char fp[512]{};
    siginfo_t info{};
    Context(long trapno, std::uint16_t cw, std::uint16_t sw, std::uint32_t csr, int code = 0) {
        uc.uc_mcontext.gregs[REG_TRAPNO] = trapno;
        info.si_code = code;
#if defined(__x86_64__)
        const int offsets[] = {0, 2, 24};
#else
        const int offsets[] = {0, 4, 136};  // MXCSR in the kernel's FXSR image (magic 0)
#endif
        std::memcpy(fp + offsets[0], &cw, 2);
        std::memcpy(fp + offsets[1], &sw, 2);
        std::memcpy(fp + offsets[2], &csr, 4);
    }
    // Enters general_handler in a child where the handler is set for every exception.
    int enter(bool with_info = true, bool with_fp = true) {
        return trap("all", [&] {
            uc.uc_mcontext.fpregs = with_fp ? reinterpret_cast<decltype(uc.uc_mcontext.fpregs)>(fp) : nullptr;
            general_handler(SIGFPE, with_info ? &info : nullptr, &uc);
        });
    }
};

TEST_F(IeeeHandler, CodeDerivedFromTheSavedMachineState) {
    // SIMD: zero divide raised but masked, overflow raised and unmasked.
    EXPECT_EQ(Context(19, 0x037F, 0, 0x1F80 - 0x400 + 0x0C).enter(), handled(132));
    // x87: underflow and invalid raised and unmasked; underflow comes first.
    EXPECT_EQ(Context(16, 0x037F - 0x11, 0x11, 0x1F80).enter(), handled(133));
    EXPECT_EQ(Context(16, 0x0360, 0x3F, 0).enter(), handled(131));
    // A code the kernel gave is used as it stands; integer division and overflow included.
    EXPECT_EQ(Context(16, 0x037F, 0, 0, FPE_INTDIV).enter(), handled(131));
    EXPECT_EQ(Context(16, 0x037F, 0, 0, FPE_INTOVF).enter(), handled(132));
    EXPECT_EQ(Context(14, 0x0360, 0x3F, 0).enter(), exited(1));  // not a floating-point trap
    EXPECT_EQ(Context(16, 0x037F, 0x3F, 0).enter(), exited(1));  // everything masked
    EXPECT_EQ(Context(16, 0x037D, 0x02, 0).enter(), exited(1));  // denormal has no code
    EXPECT_EQ(Context(19, 0, 0, 0x1F80 - 0x200 + 0x4).enter(true, false), exited(1));
    EXPECT_EQ(Context(19, 0, 0, 0x1F80 - 0x200 + 0x4).enter(false), exited(1));
    EXPECT_EQ(Context(16, 0x037F, 0, 0, FPE_FLTSUB).enter(), exited(1));
}

}  // namespace
