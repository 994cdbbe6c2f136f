// Fortran units as POSIX streams, here over the library's own unit table (a program
// without gfortran's run-time); the gfortran side is checked by the Fortran tests.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "posix/pxf_support.h"

namespace {

using namespace pxf_test;
using std::tuple;

class UnitIo : public tarvo_test::ScratchDirTest {};

TEST_F(UnitIo, ResultsOfEachOperation) {
    write_file("data", "xy");
    std::int32_t fd = ::open("data", O_RDWR), unit = 20, closed = 21, offset = -5, out = 6, got = -5;
    std::int32_t zero = 0, end = SEEK_END, start = SEEK_SET, minus = -1;
    EXPECT_EQ(VALUES(ierror_of(pxffileno_, &out, &got, kIerror), got), tuple(0, 1));
    EXPECT_EQ(VALUES(ierror_of(pxffileno_, &closed, &got, kIerror), got), tuple(EBADF, -1));
    ASSERT_EQ(ierror_of(pxffdopen_, &fd, &unit, "w+ ", kIerror, 3), 0);
    char ch[2] = {'?', '?'};
    EXPECT_EQ(VALUES(ierror_of(pxffgetc_, &unit, ch, kIerror, 2), std::string(ch, 2)), tuple(0, "x?"));  // one byte
    EXPECT_EQ(VALUES(ierror_of(pxfftell_, &unit, &offset, kIerror), offset), tuple(0, 1));
    EXPECT_EQ(ierror_of(pxffseek_, &unit, &zero, &end, kIerror), 0);
    EXPECT_EQ(VALUES(ierror_of(pxffgetc_, &unit, ch, kIerror, 2), ch[0]), tuple(TARVO_EEND, 'x'));  // CH unchanged
    EXPECT_EQ(VALUES(ierror_of(pxffputc_, &unit, "!", kIerror, 1), ierror_of(pxffflush_, &unit, kIerror),
                     read_file("data")),
              tuple(0, 0, "xy!"));
    EXPECT_EQ(ierror_of(pxffseek_, &unit, &minus, &start, kIerror), EINVAL);
    EXPECT_EQ(ierror_of(pxffgetc_, &unit, ch, kIerror, 0), EINVAL);  // no first byte to read into
    close(fd);
    // A unit whose descriptor is gone: the run-time's negated error number as it is.
    EXPECT_EQ(VALUES(ierror_of(pxffgetc_, &unit, ch, kIerror, 1), ierror_of(pxffputc_, &unit, "a", kIerror, 1)),
              tuple(-EBADF, -EBADF));
    EXPECT_EQ(ierror_of(pxffflush_, &closed, kIerror), EBADF);
    EXPECT_EQ(VALUES(ierror_of(pxfftell_, &closed, &offset, kIerror), offset), tuple(EINVAL, 1));  // IOFFSET kept
    EXPECT_EQ(ierror_of(pxffdopen_, &fd, &unit, "r", kIerror, 1), EBADF);  // the run-time's answer as it is
}

TEST_F(UnitIo, StandardUnitsAndPosixMode) {
    EXPECT_EQ(tarvo_test::run_in_child([] {
                  dup2(::open("/dev/null", O_RDONLY), 0);
                  char ch = '?';
                  return ierror_of(pxfgetc_, &ch, kIerror, 1) == TARVO_EEND && ch == '?' ? 0 : 1;
              }),
              0);
    tarvo_test::CapturedOutput out(1);
    std::int32_t on = 1, off = 0, old = -1;
    ierror_of(pxfputc_, "ok", kIerror, 2);
    ierror_of(pxfputc_, "k", kIerror, 1);
    EXPECT_EQ(out.text(), "ok");
    EXPECT_EQ(ierror_of(pxfposixio_, &on, &old, kIerror), 0);
    EXPECT_EQ(VALUES(ierror_of(pxfposixio_, &off, &old, kIerror), old), tuple(EINVAL, 1));  // off reports EINVAL...
    ierror_of(pxfposixio_, &off, &old, kIerror);
    EXPECT_EQ(old, 0);  // ...and turns it off all the same
}

}  // namespace
