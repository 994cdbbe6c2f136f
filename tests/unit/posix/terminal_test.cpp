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

// A pseudo-terminal pair: `master` and the terminal end `tty`, named `name`.
class Terminal : public ::testing::Test {
protected:
    void SetUp() override {
        master = posix_openpt(O_RDWR | O_NOCTTY);
        ASSERT_GE(master, 0);
        ASSERT_EQ(grantpt(master) | unlockpt(master), 0);
        char buf[PATH_MAX];
        ASSERT_EQ(ptsname_r(master, buf, sizeof buf), 0);
        name = buf;
        tty = open(buf, O_RDWR | O_NOCTTY);
        ASSERT_GE(tty, 0);
    }
    void TearDown() override {
        close(tty);
        close(master);
    }
    termios host() const {
        termios t{};
        EXPECT_EQ(tcgetattr(tty, &t), 0);
        return t;
    }
    int master = -1, tty = -1;
    std::string name;
};

std::int32_t cc(std::int32_t handle, int index) {  // control character `index` (host numbering)
    std::int32_t value = -1, element = index + 1;
    ierror_of(pxfeintget_, &handle, "c_cc", &element, &value, kIerror, 4);
    return value;
}

TEST_F(Terminal, AttributesRoundTripThroughAnInstance) {
    Instance attrs("termios"), back("termios");
    ASSERT_EQ(ierror_of(pxftcgetattr_, &tty, &attrs.handle, kIerror), 0);
    const termios before = host();
    std::int32_t lflag = 0, cflag = 0;
    EXPECT_EQ(VALUES(get(attrs.handle, "c_lflag", lflag), lflag, get(attrs.handle, "c_cflag", cflag), cflag,
                     cc(attrs.handle, VINTR)),
              tuple(0, static_cast<std::int32_t>(before.c_lflag), 0, static_cast<std::int32_t>(before.c_cflag),
                    std::int32_t{before.c_cc[VINTR]}));

    // ECHO off and a control character beyond a byte: only its low byte reaches the host.
    ASSERT_EQ(set(attrs.handle, "c_lflag", static_cast<std::int32_t>(before.c_lflag & ~ECHO)), 0);
    std::int32_t vmin = VMIN + 1, wide = 0x1FF, now = TCSANOW;
    ASSERT_EQ(ierror_of(pxfeintset_, &attrs.handle, "c_cc", &vmin, &wide, kIerror, 4), 0);
    ASSERT_EQ(ierror_of(pxftcsetattr_, &tty, &now, &attrs.handle, kIerror), 0);
    EXPECT_EQ(VALUES(host().c_lflag & ECHO, host().c_cc[VMIN], host().c_cflag),
              tuple(tcflag_t{0}, cc_t{0xFF}, before.c_cflag));  // the speed in c_cflag kept
    ASSERT_EQ(ierror_of(pxftcgetattr_, &tty, &back.handle, kIerror), 0);
    EXPECT_EQ(cc(back.handle, VMIN), 0xFF);
}

TEST_F(Terminal, SpeedsLiveInTheFlagsOfTheInstance) {
    Instance attrs("termios");
    ASSERT_EQ(ierror_of(pxftcgetattr_, &tty, &attrs.handle, kIerror), 0);
    std::int32_t b2400 = B2400, b9600 = B9600, bogus = 12345, in = -1, out = -1, cflag = 0, now = TCSANOW;
    EXPECT_EQ(ierror_of(pxfcfsetospeed_, &attrs.handle, &b2400, kIerror), 0);
    EXPECT_EQ(ierror_of(pxfcfsetispeed_, &attrs.handle, &b2400, kIerror), 0);
    EXPECT_EQ(VALUES(ierror_of(pxfcfgetospeed_, &attrs.handle, &out, kIerror), out,
                     ierror_of(pxfcfgetispeed_, &attrs.handle, &in, kIerror), in),
              tuple(0, B2400, 0, B2400));
    get(attrs.handle, "c_cflag", cflag);
    EXPECT_EQ(ierror_of(pxfcfsetospeed_, &attrs.handle, &bogus, kIerror), EINVAL);
    EXPECT_EQ(VALUES(get(attrs.handle, "c_cflag", out), out), tuple(0, cflag));  // written back unchanged
    ASSERT_EQ(ierror_of(pxfcfsetospeed_, &attrs.handle, &b9600, kIerror), 0);
    ASSERT_EQ(ierror_of(pxftcsetattr_, &tty, &now, &attrs.handle, kIerror), 0);
    const termios t = host();
    EXPECT_EQ(cfgetospeed(&t), speed_t{B9600});
}

TEST_F(Terminal, HandlesAndHostFailures) {
    Instance attrs("termios"), other("tms");
    std::int32_t none = 0, speed = 0, pipe_ends[2];
    ASSERT_EQ(pipe(pipe_ends), 0);
    errno = 0;
    EXPECT_EQ(VALUES(ierror_of(pxftcgetattr_, &tty, &none, kIerror), errno), tuple(TARVO_ENOHANDLE, EINVAL));
    errno = 0;
    EXPECT_EQ(VALUES(ierror_of(pxfcfgetospeed_, &other.handle, &speed, kIerror), errno), tuple(EINVAL, EINVAL));
    set(attrs.handle, "c_iflag", std::int32_t{77});
    std::int32_t iflag = 0, bad = -1, bad_action = 99;
    EXPECT_EQ(VALUES(ierror_of(pxftcgetattr_, &pipe_ends[0], &attrs.handle, kIerror), get(attrs.handle, "c_iflag", iflag),
                     iflag),
              tuple(ENOTTY, 0, 77));  // instance untouched
    EXPECT_EQ(VALUES(ierror_of(pxftcsetattr_, &tty, &bad_action, &attrs.handle, kIerror),
                     ierror_of(pxftcdrain_, &bad, kIerror), ierror_of(pxftcsendbreak_, &pipe_ends[0], &none, kIerror)),
              tuple(EINVAL, EBADF, ENOTTY));
    std::int32_t iflush = TCIOFLUSH, off = TCOOFF, on = TCOON;
    EXPECT_EQ(VALUES(ierror_of(pxftcflush_, &tty, &iflush, kIerror), ierror_of(pxftcflow_, &tty, &off, kIerror),
                     ierror_of(pxftcflow_, &tty, &on, kIerror), ierror_of(pxftcdrain_, &tty, kIerror)),
              tuple(0, 0, 0, 0));
    close(pipe_ends[0]);
    close(pipe_ends[1]);
}

TEST_F(Terminal, NamesAndTheirTruncation) {
    FString s(64, '#'), four(4, '#');
    std::int32_t ilen = -1, is_tty = -1, pipe_ends[2];
    EXPECT_EQ(VALUES(ierror_of(pxfttyname_, &tty, s.data(), &ilen, kIerror, s.size()), s.trimmed(), ilen),
              tuple(0, name, static_cast<std::int32_t>(name.size())));
    errno = 0;
    EXPECT_EQ(VALUES(ierror_of(pxfctermid_, four.data(), &ilen, kIerror, four.size()), errno, four.text, ilen),
              tuple(TARVO_ETRUNC, ERANGE, std::string("/dev"), 8));
    ASSERT_EQ(pipe(pipe_ends), 0);
    FString kept("kept", 8);
    ilen = 3;
    EXPECT_EQ(VALUES(ierror_of(pxfttyname_, &pipe_ends[0], kept.data(), &ilen, kIerror, kept.size()), kept.trimmed(),
                     ilen),
              tuple(ENOTTY, std::string("kept"), 3));
    close(pipe_ends[1]);
    EXPECT_EQ(VALUES(ierror_of(pxfisatty_, &tty, &is_tty, kIerror), is_tty), tuple(0, TARVO_TRUE));
    close(pipe_ends[0]);  // now a closed descriptor
    EXPECT_EQ(VALUES(ierror_of(pxfisatty_, &pipe_ends[0], &is_tty, kIerror), is_tty), tuple(0, TARVO_FALSE));
}

TEST_F(Terminal, ForegroundProcessGroupOfAControllingTerminal) {
    const int status = tarvo_test::run_in_child([&] {
        std::int32_t sid = 0, pgid = -1;
        if (ierror_of(pxfsetsid_, &sid, kIerror) != 0 || sid != getpid()) return 1;
        const int fd = open(name.c_str(), O_RDWR);  // the session's controlling terminal now
        if (ierror_of(pxftcgetpgrp_, &fd, &pgid, kIerror) != 0 || pgid != getpgrp()) return 2;
        if (ierror_of(pxftcsetpgrp_, &fd, &pgid, kIerror) != 0) return 3;
        std::int32_t foreign = 1;
        return ierror_of(pxftcsetpgrp_, &fd, &foreign, kIerror) == EPERM ? 0 : 4;
    });
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

}  // namespace
