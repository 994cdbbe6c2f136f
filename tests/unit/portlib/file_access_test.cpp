// access, chdir, chmod, getcwd, rename, unlink, isatty and ttynam, called as Fortran calls them.
#include <fcntl.h>
#include <grp.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "base/memory.h"
#include "base/record.h"
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

TEST_F(FileAccess, AccessResultsAndTheirCoarseMapping) {
    write_file("f", "x", 0644);
    write_file("run", "x", 0755);
    ASSERT_EQ(symlink("loop", path("loop").c_str()), 0);
    struct Case { std::string name, mode; std::int32_t want; };
    const Case cases[] = {
        {"f", "r", 0}, {"f  ", "rw ", 0}, {"run", "rwx", 0}, {"f", "R", 0}, {"f", "   ", 0},
        {"missing", "rq", EINVAL},  // the mode is checked before the file
        {"f", "r\t", EINVAL},       {"missing", "r", EINVAL},  // ENOENT
        {"f/x", "r", EINVAL},       {std::string(5000, 'n'), "r", EINVAL},  // ENOTDIR, ENAMETOOLONG
        {"loop", "r", EINVAL},      {"f", "x", EACCES},  // ELOOP; root needs an execute bit
    };
    for (const Case& c : cases) {
        EXPECT_EQ(call_access(c.name, c.mode), c.want) << c.name.substr(0, 9) << " '" << c.mode << "'";
        if (c.want != 0) {
            EXPECT_EQ(ierrno_(), c.want);
        }
    }
    EXPECT_EQ(base::testing::last_recorded_error(), EACCES);
    EXPECT_EQ(access_("f", "r", 0, 1), EINVAL);
    EXPECT_EQ(access_("f", "r", 1, 0), EINVAL);
    EXPECT_EQ(access_("f", "r", static_cast<std::size_t>(-3), 1), EINVAL);
    EXPECT_EQ(access_("f", nullptr, 1, 1), EINVAL);
}

TEST_F(FileAccess, PermissionDeniedAndNoMemory) {
    write_file("secret", "x", 0600);
    const std::string name = path("secret");
    EXPECT_EQ(as_nobody([&] { return call_access(name, "r") == EACCES && ierrno_() == EACCES ? 0 : 1; }), 0);
    EXPECT_EQ(as_nobody([&] { return call_chmod(name, "777") == EPERM ? 0 : 1; }), 0);
    base::testing::fail_allocations_after(0);
    const std::int32_t rc = call_access("secret", "r");
    base::testing::allow_allocations();
    EXPECT_EQ(rc, ENOMEM);
}

TEST_F(FileAccess, DirectoriesAndNames) {
    ASSERT_EQ(mkdir(path("sub").c_str(), 0755), 0);
    EXPECT_EQ(chdir_("sub   ", 6), 0);
    FString cwd(4096, 'x');
    EXPECT_EQ(getcwd_(cwd.data(), cwd.size()), 0);
    EXPECT_EQ(cwd.trimmed(), path("sub"));
    EXPECT_EQ(chdir_("nope", 4), ENOENT);
    EXPECT_EQ(ierrno_(), ENOENT);
    EXPECT_EQ(chdir_("..", 2), 0);

    write_file("a", "content");
    EXPECT_EQ(rename_("a ", "b  ", 2, 3), 0);
    EXPECT_EQ(read_file("b"), "content");
    EXPECT_EQ(rename_("a", "c", 1, 1), ENOENT);
    EXPECT_EQ(unlink_("b", 1), 0);
    EXPECT_EQ(unlink_("b", 1), ENOENT);
    EXPECT_EQ(unlink_("sub", 3), EISDIR);
    EXPECT_EQ(ierrno_(), EISDIR);
    EXPECT_EQ(chdir_(".", 1), 0);
    EXPECT_EQ(ierrno_(), EISDIR);  // successes leave the last failure in place

    // Null names are refused, never followed.
    EXPECT_NE(chdir_(nullptr, 4), 0);
    EXPECT_NE(unlink_(nullptr, 4), 0);
    EXPECT_EQ(rename_(nullptr, "b", 1, 1), EINVAL);
    EXPECT_EQ(rename_("a", nullptr, 1, 1), EINVAL);
    EXPECT_EQ(chmod_(nullptr, "755", 1, 3), EINVAL);
}

TEST_F(FileAccess, GetcwdLengths) {
    FString tiny(3, 'x');
    EXPECT_EQ(getcwd_(tiny.data(), tiny.size()), ERANGE);
    EXPECT_EQ(tiny.text, "   ");
    EXPECT_EQ(base::testing::last_recorded_error(), ERANGE);
    FString exact(dir().size(), 'x');
    EXPECT_EQ(getcwd_(exact.data(), exact.size()), 0);
    EXPECT_EQ(exact.text, dir());
    base::for_errsns_load(0, 0, 0, 0, 0);
    EXPECT_EQ(getcwd_(exact.data(), 0), ENOENT);
    EXPECT_EQ(ierrno_(), ENOENT);
    EXPECT_EQ(base::testing::last_recorded_error(), 0);  // this case skips the run-time recorder
}

TEST_F(FileAccess, ChmodModes) {
    write_file("f", "x", 0644);
    struct Case { mode_t start; const char* mode; std::int32_t rc; mode_t after; };
    const Case cases[] = {
        {0600, "755", 0, 0755},     {0600, "4711   ", 0, 04711},
        {04644, "u+x", 0, 04744},   {0666, "go-w", 0, 0644},    {0777, "=r", 0, 0444},
        {0777, "a=", 0, 0},         {0600, "+x", 0, 0711},      {0600, "ug+rw", 0, 0660},
        {0644, "o+tX", 0, 0644},    {0755, "+s", 0, 0755},      // set-ID bits need a who letter
        {0755, "u+s", 0, 06755},    {06755, "g-s", 0, 0755},    // "s" reaches both set-ID bits
    };
    for (const Case& c : cases) {
        ASSERT_EQ(::chmod(path("f").c_str(), c.start), 0);
        EXPECT_EQ(call_chmod("f", c.mode), c.rc) << c.mode;
        EXPECT_EQ(mode_of("f"), c.after) << c.mode;
    }
    for (const char* bad : {"0", "75a", "9", "00", "u", "u+z", "u,g+x", "u+u", "+v", "x+r", "u +x", ""}) {
        ASSERT_EQ(::chmod(path("f").c_str(), 0640), 0);
        EXPECT_EQ(call_chmod("f", bad), EINVAL) << bad;
        EXPECT_EQ(mode_of("f"), 0640u) << bad;
        EXPECT_EQ(ierrno_(), EINVAL);
    }
    EXPECT_EQ(call_chmod("missing", "755"), ENOENT);
    EXPECT_EQ(call_chmod("missing", "u+x"), ENOENT);
}

class Terminals : public tarvo_test::ScratchDirTest {};

TEST_F(Terminals, FileUnitsAndUnconnectedUnits) {
    write_file("f", "");
    const int fd = open(path("f").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(runtime::for_fdopen(fd, 12, "r", 1), 0);
    std::int32_t file_unit = 12, missing = 77;
    struct Case { std::int32_t* unit; int error; };
    for (const Case& c : {Case{&file_unit, ENOTTY}, Case{&missing, EBADF}}) {
        const std::int32_t before = ierrno_();
        EXPECT_EQ(isatty_(c.unit), 0);
        FString name(16, 'x');
        ttynam_(name.data(), name.size(), c.unit);
        EXPECT_EQ(name.text, std::string(16, ' '));
        EXPECT_EQ(errno, c.error);
        EXPECT_EQ(base::testing::last_recorded_error(), c.error);
        EXPECT_EQ(ierrno_(), before);  // terminal queries leave the classic cell alone
    }
    EXPECT_EQ(isatty_(nullptr), 0);
    close(fd);
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
