// Processes: real children for fork, exec, wait and kill; every exec failure path.
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

// A Fortran CHARACTER*(L) array with its lengths (all LEN) and count.
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

// PXFEXECV (or PXFEXECVP) and PXFEXECVE: IERROR.
std::int32_t exec(decltype(pxfexecv_)* routine, const std::string& path, CharArray& args, std::int32_t lenpath = 0) {
    return ierror_of(routine, path.data(), &lenpath, args.text.data(), args.lengths.data(), &args.count, kIerror,
                     path.size(), args.element);
}
std::int32_t execve(const std::string& path, CharArray& args, CharArray& env, std::int32_t lenpath = 0) {
    return ierror_of(pxfexecve_, path.data(), &lenpath, args.text.data(), args.lengths.data(), &args.count,
                     env.text.data(), env.lengths.data(), &env.count, kIerror, path.size(), args.element, env.element);
}

// The exit status of a child that runs `sh -c SCRIPT x <blanks>` through an exec routine:
// 7 when the blank element arrived as one blank and the trailing blanks went.
template <class Exec>
int exec_status(Exec run) {
    return WEXITSTATUS(tarvo_test::run_in_child([&] {
        CharArray args(64, {"sh", "-c", R"(test "$0|$1|$A" = "x| |b" && exit 7; exit 1)", "x", ""});
        return 100 + run(args);  // reached only when the exec failed
    }));
}

TEST(Exec, ArgumentsArriveTrimmedInAllThreeForms) {
    ::setenv("A", "b", 1);
    EXPECT_EQ(exec_status([](CharArray& a) { return exec(pxfexecv_, "/bin/sh    ", a); }), 7);
    EXPECT_EQ(exec_status([](CharArray& a) { return exec(pxfexecvp_, "sh", a); }), 7);
    ::unsetenv("A");
    EXPECT_EQ(exec_status([](CharArray& a) {
                  CharArray env(8, {"A=b", "B=c"});
                  return execve("/bin/sh", a, env);
              }),
              7);
}

TEST(Exec, LengthChecksDifferByRoutine) {
    CharArray args(4, {"sh"}), env(4, {"A=b"}), long_arg(4, {"sh"}, 5), long_env(4, {"A=b"}, -1);
    EXPECT_EQ(VALUES(exec(pxfexecv_, "/bin/sh", args, -1), errno), (tuple{EINVAL, EINVAL}));
    EXPECT_EQ(VALUES(exec(pxfexecv_, "/bin/sh", long_arg), errno), (tuple{EINVAL, EINVAL}));
    errno = 0;  // PXFEXECVE: -1 for an argument too long, errno as it was
    EXPECT_EQ(VALUES(execve("/bin/sh", long_arg, env), errno), (tuple{-1, 0}));
    EXPECT_EQ(VALUES(execve("/bin/sh", args, long_env), errno), (tuple{EINVAL, EINVAL}));
    EXPECT_EQ(VALUES(exec(pxfexecv_, "/no/such/program", args), exec(pxfexecvp_, "no-such-program", args)),
              (tuple{ENOENT, ENOENT}));
}

// Each allocation of the exec in turn fails: the failure is reported, and every copy made
// before it is released (the sanitizer builds' leak checker sees the rest).
TEST(Exec, EveryAllocationFailureReleasesTheCopies) {
    CharArray args(8, {"a", "b", "c"}), env(8, {"X=1", "Y=2"});
    for (long ok = 0; ok < 8; ++ok) {  // path, vector, 3 arguments, vector, 2 entries
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
    const std::int32_t pid = child, stop = SIGSTOP, cont = SIGCONT, kill9 = SIGKILL, bad = 999;
    auto next_status = [&] {
        pxfwaitpid_(&pid, &istat, &options, &iretpid, &ierror);
        return tuple{iretpid, ierror, pxfwifstopped_(&istat), pxfwifsignaled_(&istat), pxfwifexited_(&istat)};
    };
    EXPECT_EQ(ierror_of(pxfkill_, &pid, &bad, kIerror), EINVAL);
    pxfkill_(&pid, &stop, &ierror);
    EXPECT_EQ(VALUES(next_status(), ipxfwstopsig_(&istat)), (tuple{tuple{pid, 0, 1, 0, 0}, SIGSTOP}));
    pxfkill_(&pid, &cont, &ierror);
    EXPECT_EQ(next_status(), (tuple{pid, 0, 0, 0, 0}));  // continued: not a stop
    pxfkill_(&pid, &kill9, &ierror);
    EXPECT_EQ(VALUES(next_status(), ipxfwtermsig_(&istat)), (tuple{tuple{pid, 0, 0, 1, 0}, SIGKILL}));
    EXPECT_EQ(next_status(), (tuple{-1, ECHILD, 0, 1, 0}));  // ISTAT kept
}

}  // namespace
