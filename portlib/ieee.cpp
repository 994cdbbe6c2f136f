// IEEE flags and trap handlers: the floating-point environment read and changed by
// keywords, Fortran subroutines called for trapped exceptions, and direct MXCSR masks.
#include <atomic>
#include <bit>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <strings.h>
#include <ucontext.h>
#include <unistd.h>

#include "base/export.h"
#include "base/fstring.h"
#include "runtime/fpcontrol.h"
#include <tarvo/portlib.h>

namespace {

using namespace runtime::fp;
using FortranHandler = void (*)(std::int32_t* signum, const std::int32_t* code);

// The five exceptions, in the order IEEE_FLAGS names the first raised one.
enum Exception { invalid, overflow, division, underflow, inexact, kExceptionCount };
struct ExceptionInfo {
    const char* name;
    std::uint32_t control;  // abstract mask and flag bit
    std::int32_t result;    // bit in the result of IEEE_FLAGS("get", "exception")
    std::int32_t code;      // the code a Fortran handler receives, by reference to this cell
};
constexpr ExceptionInfo kExceptionInfo[kExceptionCount] = {
    {"invalid", kInvalid, 1, 129},      {"overflow", kOverflow, 8, 132}, {"division", kZeroDivide, 4, 131},
    {"underflow", kUnderflow, 16, 133}, {"inexact", kInexact, 32, 134},
};

constexpr unsigned only(Exception e) { return 1u << e; }
constexpr unsigned kCommon = only(invalid) | only(overflow) | only(division) | only(underflow);

// The exception keywords, in IEEE_HANDLER's word-list order; "all" also covers the
// denormal mask of the control word.
struct ExceptionKeyword {
    const char* name;
    unsigned members;
    std::uint32_t extra_control;
};
constexpr ExceptionKeyword kExceptionKeywords[] = {
    {"inexact", only(inexact), 0},      {"division", only(division), 0}, {"underflow", only(underflow), 0},
    {"overflow", only(overflow), 0},    {"invalid", only(invalid), 0},   {"all", kCommon | only(inexact), kDenormal},
    {"common", kCommon, 0},
};

std::uint32_t control_bits(const ExceptionKeyword& k) noexcept {
    std::uint32_t bits = k.extra_control;
    for (int e = 0; e < kExceptionCount; ++e)
        if (k.members & only(Exception(e))) bits |= kExceptionInfo[e].control;
    return bits;
}
// The MXCSR mask bits of the five exceptions among the abstract bits (denormal excluded).
std::uint32_t mxcsr_masks(std::uint32_t control) noexcept {
    return std::uint32_t{x87_exceptions(control & (kExceptions & ~kDenormal))} << kMxcsrMaskShift;
}

std::atomic<FortranHandler> handler_cells[kExceptionCount];
static_assert(std::atomic<FortranHandler>::is_always_lock_free, "read by the signal handler");

// --- IEEE_FLAGS -----------------------------------------------------------------------------

constexpr std::size_t kKeywordMax = 20;

// A keyword argument up to its first blank. Longer arguments than the routine's buffers
// end the process, as a failed buffer check does.
struct Keyword {
    char text[kKeywordMax + 1];
    Keyword(const char* s, std::size_t len) noexcept {
        if (len > kKeywordMax) std::abort();
        std::size_t n = 0;
        while (n < len && s[n] != ' ') ++n;
        std::memcpy(text, s, n);
        text[n] = '\0';
    }
    bool is(const char* word) const noexcept { return strcasecmp(text, word) == 0; }
};

const ExceptionKeyword* exception_keyword(const Keyword& in) noexcept {
    for (const ExceptionKeyword& k : kExceptionKeywords)
        if (in.is(k.name)) return &k;
    return nullptr;
}

// A named value of a control field, with the number "get" answers for it.
struct FieldValue {
    const char* name;
    std::uint32_t bits;
    std::int32_t result;
};
// The numbers differ from the order of the "set" keywords; callers rely on them.
constexpr FieldValue kDirections[] = {
    {"nearest", 0, 0}, {"negative", kRoundDown, 1}, {"positive", kRoundUp, 2}, {"tozero", kRoundChop, 3}};
constexpr FieldValue kPrecisions[] = {
    {"single", kPrecision24, 0}, {"double", kPrecision53, 2}, {"extended", 0, 3}};

struct Field {
    const char* mode;
    std::uint32_t mask;
    const FieldValue* values;
    std::size_t count;
};
constexpr Field kFields[] = {
    {"direction", kRoundMask, kDirections, std::size(kDirections)},
    {"precision", kPrecisionMask, kPrecisions, std::size(kPrecisions)},
};

const Field* field_of(const Keyword& mode) noexcept {
    for (const Field& f : kFields)
        if (mode.is(f.mode)) return &f;
    return nullptr;
}

struct Output {
    char* text;
    std::size_t length;
    void put(const char* word) const noexcept { base::store(text, base::signed_length(length), word, std::strlen(word)); }
};

std::int32_t get_field(const Field& field, const Output& out) noexcept {
    const std::uint32_t bits = runtime::controlfp(0, 0) & field.mask;
    for (std::size_t i = 0; i < field.count; ++i)
        if (field.values[i].bits == bits) {
            out.put(field.values[i].name);
            return field.values[i].result;
        }
    return 1;
}

std::int32_t get_exceptions(const Keyword& in, const Output& out) noexcept {
    const std::uint32_t raised = runtime::statusfp();
    std::int32_t result = 0;
    const char* first = nullptr;
    const char* asked = nullptr;
    for (const ExceptionInfo& e : kExceptionInfo) {
        if (!(raised & e.control)) continue;
        result |= e.result;
        if (first == nullptr) first = e.name;
        if (in.is(e.name)) asked = e.name;
    }
    if (asked != nullptr || first != nullptr) out.put(asked != nullptr ? asked : first);
    return result;
}

std::int32_t set_field(const Field& field, const Keyword& in) noexcept {
    for (std::size_t i = 0; i < field.count; ++i)
        if (in.is(field.values[i].name)) {
            runtime::controlfp(field.values[i].bits, field.mask);
            return 0;
        }
    return 1;
}

// Unmasks (traps on) or masks the exceptions a keyword names; the accrued flags stay.
std::int32_t set_traps(const Keyword& in, bool trap) noexcept {
    const ExceptionKeyword* k = exception_keyword(in);
    if (k == nullptr) return 1;
    const std::uint32_t bits = control_bits(*k);
    runtime::controlfp(trap ? 0 : bits, bits);
    return 0;
}

// --- IEEE_HANDLER ---------------------------------------------------------------------------

// The index of the word of `list` (which starts with a blank) that arg begins, when the
// first occurrence of arg in the list starts a word: so any prefix of a word is accepted
// unless it occurs earlier inside another word. -1 otherwise.
int word_index(const char* list, const char* arg) noexcept {
    const char* at = std::strstr(list, arg);
    if (at == nullptr || at == list || at[-1] != ' ') return -1;
    int index = -1;
    for (const char* p = list; p < at; ++p)
        if (*p == ' ') ++index;
    return index;
}

void lower_case(char* s) noexcept {
    for (; *s != '\0'; ++s)
        if (*s >= 'A' && *s <= 'Z') *s = static_cast<char>(*s - 'A' + 'a');
}

enum Action { get, set, clear };

void change_mxcsr(std::uint32_t masks, bool mask) noexcept {
    const std::uint32_t csr = mxcsr();
    load_mxcsr(mask ? (csr | masks) : (csr & ~masks));
}

// The control word reaches MXCSR too, so one change covers the traps of both units.
std::intptr_t apply_handler(Action action, const ExceptionKeyword& k, FortranHandler handler) noexcept {
    if (action == get) {
        if (std::popcount(k.members) != 1) return 1;  // "all", "common"
        return reinterpret_cast<std::intptr_t>(handler_cells[std::countr_zero(k.members)].load());
    }
    const std::uint32_t bits = control_bits(k);
    const bool mask = action == clear;
    runtime::controlfp(mask ? bits : 0, bits);
    for (int e = 0; e < kExceptionCount; ++e)
        if (k.members & only(Exception(e))) handler_cells[e].store(mask ? nullptr : handler);
    if (!mask) {
        struct sigaction action_fpe {};
        action_fpe.sa_sigaction = general_handler;
        sigemptyset(&action_fpe.sa_mask);
        action_fpe.sa_flags = SA_SIGINFO | SA_NODEFER;
        sigaction(SIGFPE, &action_fpe, nullptr);
    }
    return 0;
}

// --- GENERAL_HANDLER ------------------------------------------------------------------------

constexpr long kTrapX87 = 16, kTrapSimd = 19;

// The saved floating-point registers of an interrupted thread, where the frame has them.
struct SavedFp {
    const std::uint16_t* control = nullptr;  // x87 control and status words
    const std::uint16_t* status = nullptr;
    const std::uint32_t* mxcsr = nullptr;
};

#if defined(__x86_64__)
SavedFp saved_fp(const ucontext_t* uc) noexcept {
    const auto* fp = uc->uc_mcontext.fpregs;
    if (fp == nullptr) return {};
    return {&fp->cwd, &fp->swd, &fp->mxcsr};
}
#else
// The kernel's 32-bit signal frame: the FSAVE image, then (when magic is 0) the FXSR image
// whose MXCSR glibc's own declaration leaves out.
struct KernelFpState32 {
    std::uint32_t cw, sw, tag, ipoff, cssel, dataoff, datasel;
    std::uint8_t st[80];
    std::uint16_t status, magic;
    std::uint32_t fxsr_env[6];
    std::uint32_t mxcsr;
};
static_assert(offsetof(KernelFpState32, magic) == 110 && offsetof(KernelFpState32, mxcsr) == 136);

SavedFp saved_fp(const ucontext_t* uc) noexcept {
    const auto* fp = reinterpret_cast<const KernelFpState32*>(uc->uc_mcontext.fpregs);
    if (fp == nullptr) return {};
    // The low half of each 32-bit slot holds the x87 word (little-endian).
    return {reinterpret_cast<const std::uint16_t*>(&fp->cw), reinterpret_cast<const std::uint16_t*>(&fp->sw),
            fp->magic == 0 ? &fp->mxcsr : nullptr};
}
#endif

// The exceptions raised and unmasked in the saved state of the unit that trapped.
unsigned pending(const ucontext_t* uc) noexcept {
    const SavedFp fp = saved_fp(uc);
    const long trapno = uc->uc_mcontext.gregs[REG_TRAPNO];
    if (trapno == kTrapX87 && fp.control != nullptr) return *fp.status & ~*fp.control & kX87Exceptions;
    if (trapno == kTrapSimd && fp.mxcsr != nullptr) return *fp.mxcsr & ~(*fp.mxcsr >> kMxcsrMaskShift) & kX87Exceptions;
    return 0;
}

// Which raised exception names the trap: the first in this order.
struct DerivedCode {
    unsigned flag;
    int code;
};
constexpr DerivedCode kDerivedCodes[] = {
    {kX87ZeroDivide, FPE_FLTDIV}, {kX87Overflow, FPE_FLTOVF}, {kX87Underflow, FPE_FLTUND},
    {kX87Inexact, FPE_FLTRES},    {kX87Invalid, FPE_FLTINV},
};
int derived_code(unsigned pending) noexcept {
    for (const DerivedCode& d : kDerivedCodes)
        if (pending & d.flag) return d.code;
    return 0;
}

int exception_of(int code) noexcept {
    switch (code) {
        case FPE_FLTDIV: case FPE_INTDIV: return division;
        case FPE_FLTOVF: case FPE_INTOVF: return overflow;
        case FPE_FLTUND: return underflow;
        case FPE_FLTRES: return inexact;
        case FPE_FLTINV: return invalid;
        default: return -1;
    }
}

}  // namespace

// INTEGER(4) FUNCTION IEEE_FLAGS(ACTION, MODE, IN, OUT)
extern "C" TARVO_API std::int32_t ieee_flags_(const char* action_text, const char* mode_text, const char* in_text,
                                              char* out_text, std::size_t action_len, std::size_t mode_len,
                                              std::size_t in_len, std::size_t out_len) noexcept {
    const Keyword action(action_text, action_len), mode(mode_text, mode_len), in(in_text, in_len);
    const Output out{out_text, out_len};
    base::blank_fill(out_text, base::signed_length(out_len));
    const Field* field = field_of(mode);
    if (action.is("get")) {
        if (field != nullptr) return get_field(*field, out);
        if (mode.is("exception")) return get_exceptions(in, out);
        out.put("mode not available");
        return 1;
    }
    if (action.is("set")) {
        if (field != nullptr) return set_field(*field, in);
        return mode.is("exception") ? set_traps(in, true) : 1;
    }
    if (action.is("clear")) {
        if (field != nullptr) {
            runtime::controlfp(0, field->mask);  // nearest, extended
            return 0;
        }
        return mode.is("exception") ? set_traps(in, false) : 1;
    }
    if (action.is("clearall")) {
        runtime::clearfp();
        runtime::controlfp(0, kRoundMask | kPrecisionMask);
        runtime::controlfp(kExceptions, kExceptions);
        return 0;
    }
    return 1;
}

// INTEGER(INT_PTR_KIND()) FUNCTION IEEE_HANDLER(ACTION, EXCEPTION, HANDLER)
extern "C" TARVO_API std::intptr_t ieee_handler_(const char* action_text, const char* exception_text,
                                                 void (*handler)(std::int32_t*, const std::int32_t*),
                                                 std::size_t action_len, std::size_t exception_len) noexcept {
    base::Owned<char> action = base::c_string(action_text, action_len);
    base::Owned<char> exception = base::c_string(exception_text, exception_len);
    if (!action || !exception) return 1;
    lower_case(action.get());
    lower_case(exception.get());
    const int a = word_index(" get set clear", action.get());
    const int e = word_index(" inexact division underflow overflow invalid all common", exception.get());
    if (a < 0 || e < 0) return 1;
    return apply_handler(Action(a), kExceptionKeywords[e], handler);
}

// The SIGFPE handler IEEE_HANDLER installs: calls the Fortran handler of the trapped
// exception with the signal number and the exception's code, then ends the process with
// status 9 (1 for a trap it cannot classify). Execution never resumes after the trap.
extern "C" TARVO_API void general_handler(int signum, siginfo_t* info, void* context) noexcept {
    if (info == nullptr) _exit(1);
    // A trap the kernel could not classify (or a SIGFPE sent by a process) is named from
    // the saved registers. The process ends below, so the saved flags are left as they are.
    if (info->si_code == 0 && context != nullptr) info->si_code = derived_code(pending(static_cast<ucontext_t*>(context)));
    const int e = exception_of(info->si_code);
    if (e < 0) _exit(1);
    if (FortranHandler handler = handler_cells[e].load()) handler(&signum, &kExceptionInfo[e].code);
    _exit(9);
}

// SUBROUTINE IEEE_SET_MXCSR(FLAGS), FLAGS INTEGER by value: unmasks the named exceptions.
extern "C" TARVO_API void ieee_set_mxcsr(std::int32_t flags) noexcept {
    change_mxcsr(mxcsr_masks(static_cast<std::uint32_t>(flags)), false);
}
// SUBROUTINE IEEE_CLEAR_MXCSR(FLAGS), FLAGS INTEGER by value: masks the named exceptions.
extern "C" TARVO_API void ieee_clear_mxcsr(std::int32_t flags) noexcept {
    change_mxcsr(mxcsr_masks(static_cast<std::uint32_t>(flags)), true);
}
