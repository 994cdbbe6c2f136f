// Signals delivered for real to procedures installed the Fortran way; sets, mask, waits.
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <thread>

#include "posix/pxf_support.h"

namespace {

using namespace pxf_test;
using std::tuple;

std::atomic<int> fortran_calls{0}, native_calls{0};
volatile sig_atomic_t last_fortran = 0, last_native = 0;

void fortran_handler(const std::int32_t* n) {  // the number by reference
    last_fortran = *n;
    ++fortran_calls;
}
void other_fortran_handler(const std::int32_t*) {}
void native_handler(int n) {
    last_native = n;
    ++native_calls;
}

std::int32_t handle_of(void (*procedure)(const std::int32_t*)) {
    std::int32_t handle = 0;
    return ierror_of(pxfgetsubhandle_, reinterpret_cast<void (*)()>(procedure), &handle, kIerror) == 0 ? handle : 0;
}

// Signal actions and the mask come back after each test.
class Signals : public ::testing::Test {
protected:
    static constexpr int kSignals[] = {SIGUSR1, SIGUSR2};
    struct sigaction saved_[2]{};
    sigset_t saved_mask_{};
    void SetUp() override {
        fortran_calls = native_calls = 0;
        last_fortran = 0;
        last_native = 0;
        for (int i = 0; i < 2; ++i) sigaction(kSignals[i], nullptr, &saved_[i]);
        sigprocmask(SIG_SETMASK, nullptr, &saved_mask_);
    }
    void TearDown() override {
        for (int i = 0; i < 2; ++i) sigaction(kSignals[i], &saved_[i], nullptr);
        sigprocmask(SIG_SETMASK, &saved_mask_, nullptr);
    }

    static std::int32_t action(std::int32_t isig, std::int32_t jact, std::int32_t jold) {
        return ierror_of(pxfsigaction_, &isig, &jact, &jold, kIerror);
    }
    // An action instance with HANDLER (a handle, SIG_DFL or SIG_IGN), FLAGS and MASK.
    static void describe(const Instance& act, std::int32_t handler, std::int32_t flags = 0, std::int32_t mask = 0) {
        ASSERT_EQ(VALUES(set(act.handle, "sa_handler", handler), set(act.handle, "sa_flags", flags),
                         set(act.handle, "sa_mask", mask)),
                  (tuple{0, 0, 0}));
    }
    static std::int32_t field(const Instance& act, const char* name) {
        std::int32_t value = -99;
        get(act.handle, name, value);
        return value;
    }
    static std::int32_t member(const Instance& set, std::int32_t signo) {
        std::int32_t is = -1;
        return ierror_of(pxfsigismember_, &set.handle, &signo, &is, kIerror) == 0 ? is : -99;
    }
    static std::int32_t on_set(decltype(pxfsigaddset_)* routine, const Instance& set, std::int32_t signo) {
        return ierror_of(routine, &set.handle, &signo, kIerror);
    }
    static std::int32_t mask(std::int32_t how, std::int32_t jset, std::int32_t jold) {
        return ierror_of(fortran_pxfsigprocmask, &how, &jset, &jold, kIerror);
    }
};

TEST_F(Signals, FortranHandlerReceivesTheNumberAndReadsBack) {
    Instance act("sigaction"), old("sigaction"), blocked("sigset"), old_mask("sigset");
    on_set(pxfsigaddset_, blocked, SIGUSR2);
    describe(act, handle_of(fortran_handler), SA_RESTART, blocked.handle);
    ASSERT_EQ(action(SIGUSR1, act.handle, 0), 0);
    raise(SIGUSR1);
    EXPECT_EQ(VALUES(last_fortran, fortran_calls.load()), (tuple{SIGUSR1, 1}));

    // Query only: the flags as given (no restorer bit), the procedure's handle, the mask.
    describe(old, 0, 0, old_mask.handle);
    ASSERT_EQ(action(SIGUSR1, 0, old.handle), 0);
    EXPECT_EQ(VALUES(field(old, "sa_handler"), field(old, "sa_flags"), member(old_mask, SIGUSR2), member(old_mask, 1)),
              (tuple{handle_of(fortran_handler), SA_RESTART, 1, 0}));
    describe(act, 1);  // SIG_IGN leaves the recorded procedure: it comes back once more
    action(SIGUSR1, act.handle, 0);
    EXPECT_EQ(VALUES(action(SIGUSR1, 0, old.handle), field(old, "sa_handler")), (tuple{0, 1}));
}

TEST_F(Signals, ForeignHandlerSurvivesSaveAndRestore) {
    struct sigaction native {};
    native.sa_handler = native_handler;
    sigaction(SIGUSR1, &native, nullptr);
    Instance fortran("sigaction"), saved("sigaction");
    describe(fortran, handle_of(fortran_handler));
    ASSERT_EQ(action(SIGUSR1, fortran.handle, saved.handle), 0);
    raise(SIGUSR1);
    EXPECT_EQ(VALUES(fortran_calls.load(), native_calls.load()), (tuple{1, 0}));

    // The saved handle is callable from Fortran and, put back, reaches the native handler.
    std::int32_t ierror = -1, number = SIGUSR1, saved_handler = field(saved, "sa_handler");
    pxfcallsubhandle_(&saved_handler, &number, &ierror);
    EXPECT_EQ(VALUES(ierror, native_calls.load(), last_native), (tuple{0, 1, SIGUSR1}));
    ASSERT_EQ(action(SIGUSR1, saved.handle, 0), 0);
    raise(SIGUSR1);
    EXPECT_EQ(VALUES(fortran_calls.load(), native_calls.load()), (tuple{1, 2}));
}

// The checks of this area; handle lookups in general are tested with the instances.
TEST_F(Signals, ArgumentsAreChecked) {
    Instance act("sigaction"), set("sigset");
    EXPECT_EQ(VALUES(action(NSIG, 0, 0), action(0, 0, set.handle), action(32, 0, 0)), (tuple{EINVAL, EINVAL, EINVAL}));
#if TARVO_HANDLE_TABLES  // an address handle cannot be told from a bad one
    describe(act, 12345);  // a procedure handle that names nothing
    EXPECT_EQ(action(SIGUSR1, act.handle, 0), TARVO_ENOHANDLE);
    errno = 0;
    EXPECT_EQ(VALUES(mask(SIG_BLOCK, set.handle, 999999), errno), (tuple{TARVO_ENOHANDLE, 0}));
#endif
    EXPECT_EQ(VALUES(mask(SIG_BLOCK, 0, 0), ierror_of(pxfsigsuspend_, &act.handle, kIerror)),
              (tuple{TARVO_ENOHANDLE, TARVO_ENOHANDLE}));
}

TEST_F(Signals, SetsFollowTheSixtyFourBitRule) {
    Instance set("sigset");
    ASSERT_EQ(ierror_of(pxfsigfillset_, &set.handle, kIerror), 0);
    for (std::int32_t n = 1; n <= 64; ++n) EXPECT_EQ(member(set, n), 1) << n;
    EXPECT_EQ(member(set, 65), 0);
    ASSERT_EQ(ierror_of(pxfsigemptyset_, &set.handle, kIerror), 0);
    EXPECT_EQ(VALUES(on_set(pxfsigaddset_, set, 0), on_set(pxfsigaddset_, set, 70), member(set, 64), member(set, 63)),
              (tuple{0, 0, 1, 0}));
    on_set(pxfsigaddset_, set, SIGUSR1);
    on_set(pxfsigdelset_, set, 0);
    EXPECT_EQ(VALUES(member(set, 64), member(set, SIGUSR1)), (tuple{0, 1}));
}

TEST_F(Signals, BlockedSignalIsPendingThenDelivered) {
    Instance act("sigaction"), block("sigset"), old("sigset"), pending("sigset");
    describe(act, handle_of(fortran_handler));
    ASSERT_EQ(action(SIGUSR2, act.handle, 0), 0);
    on_set(pxfsigaddset_, block, SIGUSR2);
    ASSERT_EQ(mask(SIG_BLOCK, block.handle, old.handle), 0);
    raise(SIGUSR2);
    EXPECT_EQ(VALUES(ierror_of(pxfsigpending_, &pending.handle, kIerror), member(pending, SIGUSR2), fortran_calls.load()),
              (tuple{0, 1, 0}));
    ASSERT_EQ(mask(SIG_SETMASK, old.handle, 0), 0);
    EXPECT_EQ(VALUES(fortran_calls.load(), last_fortran), (tuple{1, SIGUSR2}));

    // Suspending with an empty mask lets a pending signal in at once.
    mask(SIG_BLOCK, block.handle, 0);
    raise(SIGUSR2);
    ierror_of(pxfsigemptyset_, &pending.handle, kIerror);
    EXPECT_EQ(VALUES(ierror_of(pxfsigsuspend_, &pending.handle, kIerror), fortran_calls.load()), (tuple{EINTR, 2}));
}

// Threads install handlers for one signal while it arrives: every delivery reaches one of
// the procedures (the thread-sanitizer build checks the tables for races).
TEST_F(Signals, ConcurrentInstallsKeepTheTableWhole) {
    Instance a("sigaction"), b("sigaction");
    describe(a, handle_of(fortran_handler));
    describe(b, handle_of(other_fortran_handler));
    ASSERT_EQ(action(SIGUSR1, a.handle, 0), 0);
    auto install = [](std::int32_t h) { for (int i = 0; i < 2000; ++i) Signals::action(SIGUSR1, h, 0); };
    std::thread first(install, a.handle), second(install, b.handle);
    for (int i = 0; i < 200; ++i) raise(SIGUSR1);
    first.join();
    second.join();
    EXPECT_TRUE(last_fortran == 0 || last_fortran == SIGUSR1);
}

}  // namespace
