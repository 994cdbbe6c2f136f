// The native unit table: preconnection, attaching descriptors, character I/O, positioning.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <thread>

#include "runtime/units.h"
#include "support/support.h"
#include <tarvo/runtime.h>

namespace {

using namespace runtime;

class NativeUnits : public tarvo_test::ScratchDirTest {
protected:
    // Opens name with flags and attaches it to unit; returns the descriptor.
    int attach(std::int32_t unit, const std::string& name, int flags, const char* access) {
        const int fd = open(path(name).c_str(), flags | O_CLOEXEC, 0644);
        EXPECT_GE(fd, 0);
        EXPECT_EQ(for_fdopen(fd, unit, access, std::strlen(access)), 0);
        return fd;
    }
};

TEST_F(NativeUnits, StandardUnitsArePreconnected) {
    EXPECT_EQ(unit_backend(), UnitBackend::native);
    EXPECT_EQ(__quenvatix_d_gethandle(5, nullptr, nullptr), 0);
    EXPECT_EQ(__quenvatix_d_gethandle(6, nullptr, nullptr), 1);
    EXPECT_EQ(__quenvatix_d_gethandle(0, nullptr, nullptr), 2);
    EXPECT_EQ(__quenvatix_d_gethandle(7, nullptr, nullptr), -1);
    EXPECT_EQ(__quenvatix_d_gethandle(std::int64_t{1} << 40 | 5, nullptr, nullptr), -1);
}

TEST_F(NativeUnits, AttachedUnitReadsWritesAndPositions) {
    write_file("data", "xyz");
    const int fd = attach(20, "data", O_RDWR, "r+");
    EXPECT_EQ(__quenvatix_d_readchar(20), 'x');
    EXPECT_EQ(__quenvatix_d_curpos(20), 1);
    EXPECT_EQ(__quenvatix_d_fseek(20, 0, 2), 0);
    EXPECT_EQ(__quenvatix_d_readchar(20), kEndOfFile);
    EXPECT_EQ(__quenvatix_d_writechar(20, '!'), 0);
    EXPECT_EQ(__quenvatix_d_writechar(20, -1), 0);  // a sign-extended byte is still a byte
    EXPECT_EQ(__quenvatix_d_curpos_i8(20), 5);
    EXPECT_EQ(__quenvatix_d_fseek_i8(20, -4, 1), 0);
    EXPECT_EQ(__quenvatix_d_readchar(20), 'y');
    EXPECT_EQ(read_file("data"), std::string("xyz!\xff"));
    EXPECT_EQ(__quenvatix_d_fseek(20, -1, 0), -EINVAL);
    EXPECT_EQ(__quenvatix_d_fseek(20, 0, 3), -EINVAL);  // only start, current and end
    close(fd);
    EXPECT_EQ(__quenvatix_d_writechar(20, 'a'), -EBADF);  // descriptor closed under the unit
}

TEST_F(NativeUnits, ErrorsAreNegatedErrorNumbers) {
    write_file("data", "abc");
    const int fd = attach(23, "data", O_WRONLY, "w");
    EXPECT_EQ(__quenvatix_d_readchar(23), -EBADF);  // open for writing only
    // A unit that is not connected is an error, never end of file.
    EXPECT_EQ(__quenvatix_d_readchar(24), -EBADF);
    EXPECT_EQ(__quenvatix_d_writechar(24, 'a'), -EBADF);
    EXPECT_EQ(__quenvatix_d_fseek(24, 0, 0), -EBADF);
    EXPECT_EQ(__quenvatix_d_curpos(24), -EBADF);
    int p[2];
    ASSERT_EQ(pipe(p), 0);
    ASSERT_EQ(for_fdopen(p[0], 30, "r", 1), 0);
    EXPECT_EQ(__quenvatix_d_curpos(30), -ESPIPE);
    EXPECT_EQ(__quenvatix_d_fseek(30, 0, 0), -ESPIPE);
    ASSERT_EQ(write(p[1], "q", 1), 1);
    close(p[1]);
    EXPECT_EQ(__quenvatix_d_readchar(30), 'q');
    EXPECT_EQ(__quenvatix_d_readchar(30), kEndOfFile);
    close(p[0]);
    close(fd);
}

TEST_F(NativeUnits, AttachChecksDescriptorAndAccessText) {
    write_file("data", "abc");
    const int ro = open(path("data").c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(for_fdopen(ro, 31, "w", 1), EINVAL);    // not open for writing
    EXPECT_EQ(for_fdopen(ro, 31, "rw?", 3), EINVAL);  // not an access text
    EXPECT_EQ(for_fdopen(-1, 31, "r", 1), EBADF);
    EXPECT_EQ(__quenvatix_d_gethandle(31, nullptr, nullptr), -1);  // nothing attached
    EXPECT_EQ(for_fdopen(ro, 31, "READ  ", 6), 0);    // action word, any case, blanks
    EXPECT_EQ(__quenvatix_d_gethandle(31, nullptr, nullptr), ro);
    EXPECT_EQ(for_fdopen(ro, 31, "   ", 3), 0);       // blank: as the descriptor was opened
    for (std::int32_t unit = 100; unit < 200; ++unit) ASSERT_EQ(for_fdopen(ro, unit, "r", 1), 0);
    for (std::int32_t unit = 100; unit < 200; ++unit) ASSERT_EQ(__quenvatix_d_gethandle(unit, nullptr, nullptr), ro);
    const int other = dup(ro);
    ASSERT_EQ(for_fdopen(other, 150, "rb", 2), 0);  // attaching again replaces
    EXPECT_EQ(__quenvatix_d_gethandle(150, nullptr, nullptr), other);
    close(other);
    close(ro);
}

TEST_F(NativeUnits, AppendAccessPutsTheDescriptorInAppendMode) {
    write_file("log", "start");
    const int fd = attach(32, "log", O_WRONLY, "a");
    EXPECT_NE(fcntl(fd, F_GETFL) & O_APPEND, 0);
    EXPECT_EQ(__quenvatix_d_fseek(32, 0, 0), 0);
    EXPECT_EQ(__quenvatix_d_writechar(32, '+'), 0);
    EXPECT_EQ(read_file("log"), "start+");
    close(fd);
}

TEST_F(NativeUnits, NameFlushAndCommit) {
    write_file("named", "");
    const int fd = attach(40, "named", O_WRONLY, "w");
    char name[256];
    std::int32_t length = 255, short_length = 4;
    EXPECT_EQ(__quenvatix_d_gethandle(40, name, &length), fd);
    EXPECT_EQ(std::string(name, static_cast<std::size_t>(length)), path("named"));
    EXPECT_EQ(__quenvatix_d_gethandle(40, name, &short_length), fd);
    EXPECT_EQ(short_length, 4);  // cut to the capacity given
    int p[2];
    ASSERT_EQ(pipe(p), 0);
    ASSERT_EQ(for_fdopen(p[1], 43, "w", 1), 0);
    std::int32_t unit = 40, missing = 42, piped = 43;
    EXPECT_NE(flushqq_(&unit), 0);
    EXPECT_NE(commitqq_(&unit), 0);
    EXPECT_NE(commitqq_(&piped), 0);  // nothing to commit on a pipe, and no failure
    EXPECT_EQ(flushqq_(&missing), 0);
    EXPECT_EQ(commitqq_(&missing), 0);
    EXPECT_EQ(flushqq_(nullptr), 0);
    close(p[0]);
    close(p[1]);
    close(fd);
}

TEST(PosixIoFlag, SetReturnsThePreviousSetting) {
    std::int32_t on = 1, off = 0, old = 0, err = 0;
    EXPECT_EQ(__quenvatix_set_posix_io_flag(&on, &old, &err), 0);
    EXPECT_EQ(__quenvatix_set_posix_io_flag(&off, &old, &err), 1);
    EXPECT_EQ(__quenvatix_set_posix_io_flag(&off, &old, &err), 0);
}

}  // namespace

// A child forked while another thread is inside the unit table finds the table free.
TEST(NativeUnitsAndFork, ChildNeverInheritsAHeldTableLock) {
    ASSERT_EQ(__quenvatix_d_gethandle(6, nullptr, nullptr), 1);  // the back end is chosen
    std::atomic<bool> stop{false};
    std::thread busy([&] {
        while (!stop.load()) (void)__quenvatix_d_gethandle(6, nullptr, nullptr);
    });
    int stuck = 0;
    for (int i = 0; i < 100; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            alarm(5);  // a deadlocked child ends by SIGALRM instead of hanging the suite
            _exit(__quenvatix_d_gethandle(6, nullptr, nullptr) == 1 ? 0 : 1);
        }
        int status = 0;
        waitpid(child, &status, 0);
        if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
            ++stuck;
            ADD_FAILURE() << "child status " << std::hex << status;
        }
    }
    stop = true;
    busy.join();
    EXPECT_EQ(stuck, 0);
}
