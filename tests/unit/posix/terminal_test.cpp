// Terminal control through the binding, on a pseudo-terminal of the test's own.
#include <fcntl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>

#include "posix/pxf_support.h"

namespace {

using namespace pxf_test;
using std::tuple;
using tarvo_test::FString;

// A pseudo-terminal: the terminal end `tty`, named `name`, open while `master` is.
class Terminal : public ::testing::Test {
protected:
    void SetUp() override {
        master = posix_openpt(O_RDWR | O_NOCTTY);
        char buf[PATH_MAX];
        ASSERT_TRUE(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0);
        ASSERT_EQ(ptsname_r(master, buf, sizeof buf), 0);
        name = buf;
        ASSERT_GE(tty = open(buf, O_RDWR | O_NOCTTY), 0);
        ASSERT_EQ(pipe(pipe_ends), 0);
    }
    void TearDown() override {
        for (int fd : {tty, master, pipe_ends[0], pipe_ends[1]}) close(fd);
    }
    termios host() const {
        termios t{};
        EXPECT_EQ(tcgetattr(tty, &t), 0);
        return t;
    }
    std::int32_t master = -1, tty = -1, pipe_ends[2] = {-1, -1};
    std::string name;
};

TEST_F(Terminal, AttributesAndSpeedsRoundTripThroughAnInstance) {
    Instance attrs("termios");
    ASSERT_EQ(ierror_of(pxftcgetattr_, &tty, &attrs.handle, kIerror), 0);
    const termios before = host();
    std::int32_t lflag = 0, vmin = VMIN + 1, vintr = VINTR + 1, intr = -1, wide = 0x1FF, now = TCSANOW;
    EXPECT_EQ(VALUES(get(attrs.handle, "c_lflag", lflag), lflag,
                     ierror_of(pxfeintget_, &attrs.handle, "c_cc", &vintr, &intr, kIerror, 4), intr),
              tuple(0, static_cast<std::int32_t>(before.c_lflag), 0, std::int32_t{before.c_cc[VINTR]}));
    // ECHO off, a control character beyond a byte (only its low byte is sent), a new speed.
    set(attrs.handle, "c_lflag", static_cast<std::int32_t>(before.c_lflag & ~ECHO));
    ierror_of(pxfeintset_, &attrs.handle, "c_cc", &vmin, &wide, kIerror, 4);
    std::int32_t b2400 = B2400, bogus = 12345, speed = -1, cflag = 0, after = 0;
    EXPECT_EQ(VALUES(ierror_of(pxfcfsetospeed_, &attrs.handle, &b2400, kIerror),
                     ierror_of(pxfcfgetospeed_, &attrs.handle, &speed, kIerror), speed),
              tuple(0, 0, B2400));  // kept in c_cflag
    get(attrs.handle, "c_cflag", cflag);
    EXPECT_EQ(VALUES(ierror_of(pxfcfsetispeed_, &attrs.handle, &bogus, kIerror), get(attrs.handle, "c_cflag", after),
                     after),
              tuple(EINVAL, 0, cflag));
    ASSERT_EQ(ierror_of(pxftcsetattr_, &tty, &now, &attrs.handle, kIerror), 0);
    const termios t = host();
    EXPECT_EQ(VALUES(t.c_lflag & ECHO, t.c_cc[VMIN], cfgetospeed(&t)), tuple(tcflag_t{0}, cc_t{0xFF}, speed_t{B2400}));
}

TEST_F(Terminal, FailuresLeaveTheOutputsAlone) {
    Instance attrs("termios");
    std::int32_t iflag = 0, ilen = 3;
    set(attrs.handle, "c_iflag", std::int32_t{77});
    EXPECT_EQ(VALUES(ierror_of(pxftcgetattr_, &pipe_ends[0], &attrs.handle, kIerror),
                     get(attrs.handle, "c_iflag", iflag), iflag),
              tuple(ENOTTY, 0, 77));
    FString kept("kept", 8), s(64);
    EXPECT_EQ(VALUES(ierror_of(pxfttyname_, &pipe_ends[0], kept.data(), &ilen, kIerror, kept.size()), kept.trimmed(),
                     ilen),
              tuple(ENOTTY, std::string("kept"), 3));
    EXPECT_EQ(VALUES(ierror_of(pxfttyname_, &tty, s.data(), &ilen, kIerror, s.size()), s.trimmed()), tuple(0, name));
}

TEST_F(Terminal, ForegroundProcessGroupOfAControllingTerminal) {
    const int status = tarvo_test::run_in_child([&] {
        std::int32_t sid = 0, pgid = -1, foreign = 1;
        if (ierror_of(pxfsetsid_, &sid, kIerror) != 0 || sid != getpid()) return 1;
        const std::int32_t fd = open(name.c_str(), O_RDWR);  // the session's controlling terminal now
        if (ierror_of(pxftcgetpgrp_, &fd, &pgid, kIerror) != 0 || pgid != getpgrp()) return 2;
        if (ierror_of(pxftcsetpgrp_, &fd, &pgid, kIerror) != 0) return 3;
        return ierror_of(pxftcsetpgrp_, &fd, &foreign, kIerror) == EPERM ? 0 : 4;
    });
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

}  // namespace
