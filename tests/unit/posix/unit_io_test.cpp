// Fortran units as POSIX streams, here over the library's own unit table (a program
// without gfortran's run-time); the gfortran side is checked by the Fortran tests.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "support/support.h"
#include <tarvo/posix.h>

namespace {

class UnitIo : public tarvo_test::ScratchDirTest {};

TEST_F(UnitIo, ResultsOfEachOperation) {
    write_file("data", "xy");
    std::int32_t fd = ::open("data", O_RDWR), unit = 20, closed = 21, ierror = -5, offset = -5, out = 6, got = -5;
    pxffileno_(&out, &got, &ierror);
    EXPECT_EQ(got * 100 + ierror, 100);
    pxffileno_(&closed, &got, &ierror);
    EXPECT_EQ(got * 100 + ierror, -100 + EBADF);
    pxffdopen_(&fd, &unit, "w+ ", &ierror, 3);
    ASSERT_EQ(ierror, 0);
    char ch[2] = {'?', '?'};
    pxffgetc_(&unit, ch, &ierror, 2);
    EXPECT_EQ(std::string(ch, 2), "x?");  // the first byte only
    pxfftell_(&unit, &offset, &ierror);
    EXPECT_EQ(offset, 1);
    std::int32_t zero = 0, end = SEEK_END, start = SEEK_SET, minus = -1;
    pxffseek_(&unit, &zero, &end, &ierror);
    pxffgetc_(&unit, ch, &ierror, 2);
    EXPECT_EQ(ierror, TARVO_EEND);
    EXPECT_EQ(ch[0], 'x');  // unchanged at the end of the file
    pxffputc_(&unit, "!", &ierror, 1);
    pxffflush_(&unit, &ierror);
    EXPECT_EQ(ierror, 0);
    EXPECT_EQ(read_file("data"), "xy!");
    pxffseek_(&unit, &minus, &start, &ierror);
    EXPECT_EQ(ierror, EINVAL);
    pxffgetc_(&unit, ch, &ierror, 0);  // no first byte to read into
    EXPECT_EQ(ierror, EINVAL);
    close(fd);
    // A unit whose descriptor is gone: the run-time's negated error number as it is.
    pxffgetc_(&unit, ch, &ierror, 1);
    EXPECT_EQ(ierror, -EBADF);
    pxffputc_(&unit, "a", &ierror, 1);
    EXPECT_EQ(ierror, -EBADF);
    pxffflush_(&closed, &ierror);
    EXPECT_EQ(ierror, EBADF);
    pxfftell_(&closed, &offset, &ierror);
    EXPECT_EQ(ierror * 100 + offset, EINVAL * 100 + 1);  // IOFFSET left as it was
    pxffdopen_(&fd, &unit, "r", &ierror, 1);  // the run-time's answer as it is
    EXPECT_EQ(ierror, EBADF);
}

TEST_F(UnitIo, StandardUnitsAndPosixMode) {
    const int status = tarvo_test::run_in_child([] {
        dup2(::open("/dev/null", O_RDONLY), 0);
        char ch = '?';
        std::int32_t ierror = 0;
        pxfgetc_(&ch, &ierror, 1);
        return ierror == TARVO_EEND && ch == '?' ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
    tarvo_test::CapturedOutput out(1);
    std::int32_t ierror = -1, on = 1, off = 0, old = -1;
    pxfputc_("ok", &ierror, 2);
    pxfputc_("k", &ierror, 1);
    EXPECT_EQ(out.text(), "ok");
    pxfposixio_(&on, &old, &ierror);
    EXPECT_EQ(ierror, 0);
    pxfposixio_(&off, &old, &ierror);
    EXPECT_EQ(old * 100 + ierror, 100 + EINVAL);  // turning it off reports EINVAL...
    pxfposixio_(&off, &old, &ierror);
    EXPECT_EQ(old, 0);  // ...and turns it off all the same
}

}  // namespace
