// access, chdir, chmod, getcwd, rename, unlink, isatty and ttynam, called as Fortran calls them.
#include <fcntl.h>
#include <grp.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "frame/errors.h"
#include "frame/memory.h"
#include "runtime/errsns.h"
#include "runtime/units.h"
#include "support/support.h"
#include <tarvo/frame.h>
#include <tarvo/portlib.h>

namespace {

using tarvo_test::FString;

std::int32_t call_access(const std::string& name, const std::string& mode) {
    return access_(name.data(), mode.data(), name.size(), mode.size());
}
std::int32_t call_chmod(const std::string& name, const std::string& mode) {
    return chmod_(name.data(), mode.data(), name.size(), mode.size());
}

// Runs fn as the unprivileged user nobody in a child; returns fn's result.
int as_nobody(const std::function<int()>& fn) {
    const int status = tarvo_test::run_in_child([&] {
        if (setgroups(0, nullptr) != 0 || setresgid(65534, 65534, 65534) != 0 ||
            setresuid(65534, 65534, 65534) != 0)
            return 200;
        return fn();
    });
    return WIFEXITED(status) ? WEXITSTATUS(status) : 300;
}

class FileAccess : public tarvo_test::ScratchDirTest {};

TEST_F(FileAccess, GrantedAccessGivesZero) {
    write_file("f", "x", 0755);
    EXPECT_EQ(call_access("f", "r"), 0);
    EXPECT_EQ(call_access("f  ", "rwx "), 0);  // trailing blanks in both
    EXPECT_EQ(call_access("f", "R"), 0);
    EXPECT_EQ(call_access("f", "   "), 0);  // blanks only: existence
}

TEST_F(FileAccess, ModeCharactersAreCheckedBeforeTheFile) {
    frame::set_portlib_local_errno(0);
    EXPECT_EQ(call_access("missing", "rq"), EINVAL);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(ierrno_(), EINVAL);
    EXPECT_EQ(call_access("missing", "r\t"), EINVAL);
}

TEST_F(FileAccess, EmptyArgumentsGiveEinval) {
    EXPECT_EQ(access_("f", "r", 0, 1), EINVAL);
    EXPECT_EQ(access_("f", "r", 1, 0), EINVAL);
    EXPECT_EQ(access_("f", "r", static_cast<std::size_t>(-3), 1), EINVAL);
    EXPECT_EQ(access_("f", nullptr, 1, 1), EINVAL);
}

TEST_F(FileAccess, FailuresAreMappedCoarsely) {
    write_file("plain", "x", 0644);
    EXPECT_EQ(call_access("missing", "r"), EINVAL);  // ENOENT
    EXPECT_EQ(ierrno_(), EINVAL);
    EXPECT_EQ(runtime::last_recorded_error(), EINVAL);
    EXPECT_EQ(call_access("plain/x", "r"), EINVAL);  // ENOTDIR
    EXPECT_EQ(call_access(std::string(5000, 'n'), "r"), EINVAL);  // ENAMETOOLONG
    ASSERT_EQ(symlink("loop", path("loop").c_str()), 0);
    EXPECT_EQ(call_access("loop", "r"), EINVAL);  // ELOOP
    EXPECT_EQ(call_access("plain", "x"), EACCES);  // root still needs an execute bit
}

TEST_F(FileAccess, PermissionDeniedGivesEacces) {
    write_file("secret", "x", 0600);
    const std::string name = path("secret");
    EXPECT_EQ(as_nobody([&] { return call_access(name, "r") == EACCES && ierrno_() == EACCES ? 0 : 1; }), 0);
}

TEST_F(FileAccess, NameConversionFailureGivesEnomem) {
    frame::testing::fail_allocations_after(0);
    const std::int32_t rc = call_access("f", "r");
    frame::testing::allow_allocations();
    EXPECT_EQ(rc, ENOMEM);
    EXPECT_EQ(ierrno_(), ENOMEM);
}

TEST_F(FileAccess, ChdirAndGetcwd) {
    ASSERT_EQ(mkdir(path("sub").c_str(), 0755), 0);
    EXPECT_EQ(chdir_("sub   ", 6), 0);
    FString cwd(4096, 'x');
    EXPECT_EQ(getcwd_(cwd.data(), cwd.size()), 0);
    EXPECT_EQ(cwd.trimmed(), path("sub"));
    EXPECT_EQ(chdir_("nope", 4), ENOENT);
    EXPECT_EQ(ierrno_(), ENOENT);
}

TEST_F(FileAccess, GetcwdTooShortGivesErangeAndBlanks) {
    FString cwd(3, 'x');
    EXPECT_EQ(getcwd_(cwd.data(), cwd.size()), ERANGE);
    EXPECT_EQ(cwd.text, "   ");
    EXPECT_EQ(ierrno_(), ERANGE);
    EXPECT_EQ(runtime::last_recorded_error(), ERANGE);
}

TEST_F(FileAccess, GetcwdExactFitAndEmptyArgument) {
    FString exact(dir().size(), 'x');
    EXPECT_EQ(getcwd_(exact.data(), exact.size()), 0);
    EXPECT_EQ(exact.text, dir());
    runtime::for_errsns_load(0, 0, 0, 0, 0);
    EXPECT_EQ(getcwd_(exact.data(), 0), ENOENT);
    EXPECT_EQ(ierrno_(), ENOENT);
    EXPECT_EQ(runtime::last_recorded_error(), 0);  // this case skips the run-time recorder
}

TEST_F(FileAccess, RenameAndUnlink) {
    write_file("a", "content");
    EXPECT_EQ(rename_("a ", "b  ", 2, 3), 0);
    EXPECT_EQ(read_file("b"), "content");
    EXPECT_EQ(rename_("a", "c", 1, 1), ENOENT);
    EXPECT_EQ(unlink_("b", 1), 0);
    EXPECT_EQ(unlink_("b", 1), ENOENT);
    EXPECT_EQ(ierrno_(), ENOENT);
    ASSERT_EQ(mkdir(path("d").c_str(), 0755), 0);
    EXPECT_EQ(unlink_("d", 1), EISDIR);
}

TEST_F(FileAccess, NullNamesAreRefusedWithoutACrash) {
    EXPECT_NE(chdir_(nullptr, 4), 0);
    EXPECT_NE(unlink_(nullptr, 4), 0);
    EXPECT_EQ(rename_(nullptr, "b", 1, 1), EINVAL);
    EXPECT_EQ(rename_("a", nullptr, 1, 1), EINVAL);
    EXPECT_EQ(chmod_(nullptr, "755", 1, 3), EINVAL);
}

class Chmod : public tarvo_test::ScratchDirTest {
protected:
    void SetUp() override {
        ScratchDirTest::SetUp();
        write_file("f", "x", 0644);
    }
    mode_t set_then_apply(mode_t start, const std::string& mode, std::int32_t want = 0) {
        EXPECT_EQ(::chmod(path("f").c_str(), start), 0);
        EXPECT_EQ(call_chmod("f", mode), want) << mode;
        return mode_of("f");
    }
};

TEST_F(Chmod, OctalModes) {
    EXPECT_EQ(set_then_apply(0600, "755"), 0755u);
    EXPECT_EQ(set_then_apply(0600, "4711   "), 04711u);
}

TEST_F(Chmod, InvalidOctalModesAreRefused) {
    for (const char* bad : {"0", "75a", "9", "00"}) {
        EXPECT_EQ(set_then_apply(0640, bad, EINVAL), 0640u) << bad;
        EXPECT_EQ(ierrno_(), EINVAL);
    }
}

TEST_F(Chmod, SymbolicAddRemoveAndSet) {
    EXPECT_EQ(set_then_apply(04644, "u+x"), 04744u);  // keeps every other bit
    EXPECT_EQ(set_then_apply(0666, "go-w"), 0644u);
    EXPECT_EQ(set_then_apply(0777, "=r"), 0444u);
    EXPECT_EQ(set_then_apply(0777, "a="), 0u);
    EXPECT_EQ(set_then_apply(0600, "+x"), 0711u);
    EXPECT_EQ(set_then_apply(0600, "ug+rw"), 0660u);
    EXPECT_EQ(set_then_apply(0644, "o+tX"), 0644u);
}

TEST_F(Chmod, SetIdBitsNeedAWhoLetter) {
    EXPECT_EQ(set_then_apply(0755, "+s"), 0755u);
    EXPECT_EQ(set_then_apply(0755, "u+s"), 06755u);  // sets both set-ID bits
    EXPECT_EQ(set_then_apply(06755, "g-s"), 0755u);  // "s" reaches both set-ID bits
}

TEST_F(Chmod, MalformedSymbolicModesAreRefused) {
    for (const char* bad : {"u", "u+z", "u,g+x", "u+u", "+v", "x+r", "u +x", ""}) {
        EXPECT_EQ(set_then_apply(0640, bad, EINVAL), 0640u) << bad;
    }
}

TEST_F(Chmod, MissingFileGivesItsError) {
    EXPECT_EQ(call_chmod("missing", "755"), ENOENT);
    EXPECT_EQ(call_chmod("missing", "u+x"), ENOENT);
    EXPECT_EQ(ierrno_(), ENOENT);
}

TEST_F(Chmod, OthersFilesCannotBeChanged) {
    const std::string name = path("f");
    EXPECT_EQ(as_nobody([&] { return call_chmod(name, "777") == EPERM ? 0 : 1; }), 0);
}

class Terminals : public tarvo_test::ScratchDirTest {};

TEST_F(Terminals, UnitOnAFileIsNoTerminal) {
    write_file("f", "");
    const int fd = open(path("f").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(runtime::for_fdopen(fd, 12, "r", 1), 0);
    std::int32_t unit = 12;
    const std::int32_t before = ierrno_();
    EXPECT_EQ(isatty_(&unit), 0);
    FString name(16, 'x');
    ttynam_(name.data(), name.size(), &unit);
    EXPECT_EQ(name.text, std::string(16, ' '));
    EXPECT_EQ(errno, ENOTTY);
    EXPECT_EQ(runtime::last_recorded_error(), ENOTTY);
    EXPECT_EQ(ierrno_(), before);  // terminal queries leave the classic cell alone
    close(fd);
}

TEST_F(Terminals, UnconnectedUnitGivesEbadf) {
    std::int32_t unit = 77;
    EXPECT_EQ(isatty_(&unit), 0);
    EXPECT_EQ(errno, EBADF);
    EXPECT_EQ(runtime::last_recorded_error(), EBADF);
    FString name(8, 'x');
    ttynam_(name.data(), name.size(), &unit);
    EXPECT_EQ(name.text, std::string(8, ' '));
    EXPECT_EQ(errno, EBADF);
    EXPECT_EQ(isatty_(nullptr), 0);
}

TEST_F(Terminals, PseudoTerminalIsNamed) {
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(master, 0);
    ASSERT_EQ(grantpt(master), 0);
    ASSERT_EQ(unlockpt(master), 0);
    const std::string slave_name = ptsname(master);
    const int slave = open(slave_name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_GE(slave, 0);
    ASSERT_EQ(runtime::for_fdopen(slave, 13, "r+", 2), 0);
    std::int32_t unit = 13;
    EXPECT_EQ(isatty_(&unit), 1);
    FString name(64, 'x');
    ttynam_(name.data(), name.size(), &unit);
    EXPECT_EQ(name.trimmed(), slave_name);
    FString cut(5, 'x');
    ttynam_(cut.data(), cut.size(), &unit);
    EXPECT_EQ(cut.text, slave_name.substr(0, 5));
    close(slave);
    close(master);
}

}  // namespace
