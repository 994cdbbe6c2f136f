// Processes: real children for fork, exec, wait, kill and exit; every exec failure path.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "base/memory.h"
#include "posix/pxf_support.h"

namespace {

using pxf_test::ierror_of;
using pxf_test::kIerror;
using std::tuple;

// A Fortran CHARACTER*(L) array with its lengths (0: trim) and count.
struct CharArray {
    std::size_t element;
    std::string text;
    std::vector<std::int32_t> lengths;
    std::int32_t count;
    CharArray(std::size_t length, const std::vector<std::string>& items, std::int32_t len = 0)
        : element(length), lengths(items.size(), len), count(static_cast<std::int32_t>(items.size())) {
        for (const std::string& item : items) text += tarvo_test::FString(item, element).text;
    }
};

std::int32_t execv(const std::string& path, CharArray& args, std::int32_t lenpath = 0) {
    return ierror_of(pxfexecv_, path.data(), &lenpath, args.text.data(), args.lengths.data(), &args.count, kIerror,
                     path.size(), args.element);
}
std::int32_t execve(const std::string& path, CharArray& args, CharArray& env, std::int32_t lenpath = 0) {
    return ierror_of(pxfexecve_, path.data(), &lenpath, args.text.data(), args.lengths.data(), &args.count,
                     env.text.data(), env.lengths.data(), &env.count, kIerror, path.size(), args.element, env.element);
}
std::int32_t execvp(const std::string& file, CharArray& args, std::int32_t lenfile = 0) {
    return ierror_of(pxfexecvp_, file.data(), &lenfile, args.text.data(), args.lengths.data(), &args.count, kIerror,
                     file.size(), args.element);
}

// The exit status of a child that runs `sh -c SCRIPT x <blank>` through an exec routine:
// an element of blanks must arrive as one blank, trailing blanks must go.
const char* const kScript = R"(test "$0|$1|$A" = "x| |b" && exit 7; exit 1)";
template <class Exec>
int exec_status(Exec exec) {
    return tarvo_test::run_in_child([&] {
        CharArray args(64, {"sh", "-c", kScript, "x", ""});
        const std::int32_t ierror = exec(args);
        return 100 + ierror;  // reached only when the exec failed
    });
}

TEST(Exec, ArgumentsArriveTrimmedInAllThreeForms) {
    ::setenv("A", "b", 1);
    EXPECT_EQ(WEXITSTATUS(exec_status([](CharArray& a) { return execv("/bin/sh    ", a); })), 7);
    EXPECT_EQ(WEXITSTATUS(exec_status([](CharArray& a) { return execvp("sh", a); })), 7);
    ::unsetenv("A");
    EXPECT_EQ(WEXITSTATUS(exec_status([](CharArray& a) {
                  CharArray env(8, {"A=b", "B=c"});
                  return execve("/bin/sh", a, env);
              })),
              7);
}

TEST(Exec, LengthChecksDifferByRoutine) {
    CharArray args(4, {"sh"}), env(4, {"A=b"});
    EXPECT_EQ(VALUES(execv("/bin/sh", args, -1), errno), (tuple{EINVAL, EINVAL}));
    EXPECT_EQ(VALUES(execv("/bin/sh", args, 8), errno), (tuple{EINVAL, EINVAL}));
    CharArray long_arg(4, {"sh"}, 5);
    EXPECT_EQ(VALUES(execv("/bin/sh", long_arg), errno), (tuple{EINVAL, EINVAL}));
    // execve: an argument too long answers -1 and leaves errno as it was.
    errno = 0;
    EXPECT_EQ(VALUES(execve("/bin/sh", long_arg, env), errno), (tuple{-1, 0}));
    CharArray long_env(4, {"A=b"}, -1);
    EXPECT_EQ(VALUES(execve("/bin/sh", args, long_env), errno), (tuple{EINVAL, EINVAL}));
    EXPECT_EQ(execv("/no/such/program", args), ENOENT);
    EXPECT_EQ(execvp("no-such-program-anywhere", args), ENOENT);
}

// Each allocation of the exec in turn fails: the failure is reported, and every copy made
// before it is released (the leak checker of the sanitizer builds sees the rest).
TEST(Exec, EveryAllocationFailureReleasesTheCopies) {
    CharArray args(8, {"a", "b", "c"}), env(8, {"X=1", "Y=2"});
    const std::int32_t copies = 1 + 1 + 3 + 1 + 2;  // path, vector, arguments, vector, entries
    for (long ok = 0; ok < copies; ++ok) {
        base::testing::fail_allocations_after(ok);
        const std::int32_t ierror = execve("/no/such/program", args, env);
        base::testing::allow_allocations();
        EXPECT_EQ(ierror, ENOMEM) << ok;
    }
    EXPECT_EQ(execve("/no/such/program", args, env), ENOENT);
}

TEST(Wait, StatusesOfRealChildren) {
    std::int32_t ipid = -1, ierror = -1, istat = 0, iretpid = 0, options = WUNTRACED | WCONTINUED;
    pxffork_(&ipid, &ierror);
    if (ipid == 0) _exit(3);
    pxfwait_(&istat, &iretpid, &ierror);
    EXPECT_EQ(VALUES(iretpid, ierror, pxfwifexited_(&istat), ipxfwexitstatus_(&istat), pxfwifsignaled_(&istat)),
              (tuple{ipid, 0, 1, 3, 0}));

    const pid_t child = fork();
    if (child == 0) for (;;) pause();
    const std::int32_t pid = child, stop = SIGSTOP, cont = SIGCONT, kill9 = SIGKILL;
    auto next_status = [&] {
        pxfwaitpid_(&pid, &istat, &options, &iretpid, &ierror);
        return tuple{iretpid, ierror, pxfwifstopped_(&istat), pxfwifsignaled_(&istat), pxfwifexited_(&istat)};
    };
    pxfkill_(&pid, &stop, &ierror);
    EXPECT_EQ(next_status(), (tuple{pid, 0, 1, 0, 0}));
    EXPECT_EQ(ipxfwstopsig_(&istat), SIGSTOP);
    pxfkill_(&pid, &cont, &ierror);
    EXPECT_EQ(next_status(), (tuple{pid, 0, 0, 0, 0}));  // continued: not a stop
    pxfkill_(&pid, &kill9, &ierror);
    EXPECT_EQ(next_status(), (tuple{pid, 0, 0, 1, 0}));
    EXPECT_EQ(ipxfwtermsig_(&istat), SIGKILL);
    EXPECT_EQ(VALUES(next_status(), errno), (tuple{tuple{-1, ECHILD, 0, 1, 0}, ECHILD}));
}

TEST(Wait, StopSignalKeepsTheWholeUpperPart) {
    const std::int32_t stopped = 0x117F, wide = 0x1117F, exited = 0x0300;
    EXPECT_EQ(VALUES(pxfwifstopped_(&stopped), ipxfwstopsig_(&wide), ipxfwexitstatus_(&wide)),
              (tuple{1, 0x111, 0x11}));
    EXPECT_EQ(VALUES(pxfwifexited_(&exited), ipxfwexitstatus_(&exited)), (tuple{1, 3}));
}

TEST(Exit, FastExitAndKill) {
    const std::int32_t five = 5, bad_signal = 999, self = getpid();
    EXPECT_EXIT(pxffastexit_(&five), ::testing::ExitedWithCode(5), "");
    EXPECT_EXIT(pxfexit_(&five), ::testing::ExitedWithCode(5), "");
    EXPECT_EQ(ierror_of(pxfkill_, &self, &bad_signal, kIerror), EINVAL);
}

}  // namespace
