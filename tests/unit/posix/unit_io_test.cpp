// Fortran units as POSIX streams, here over the library's own unit table (a program
// without gfortran's run-time); the gfortran side is checked by the Fortran tests.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "support/support.h"
#include <tarvo/posix.h>

namespace {

class UnitIo : public tarvo_test::ScratchDirTest {};

TEST_F(UnitIo, DescriptorsOfUnits) {
    struct {
        std::int32_t unit, fd, ierror;
    } const cases[] = {{5, 0, 0}, {6, 1, 0}, {0, 2, 0}, {77, -1, EBADF}};
    for (const auto& c : cases) {
        std::int32_t fd = -5, ierror = -5;
        pxffileno_(&c.unit, &fd, &ierror);
        EXPECT_EQ(fd, c.fd) << c.unit;
        EXPECT_EQ(ierror, c.ierror) << c.unit;
    }
    std::int32_t bad = -1, unit = 40, ierror = 0, fd = ::open(".", O_RDONLY);
    pxffdopen_(&bad, &unit, "r", &ierror, 1);
    EXPECT_EQ(ierror, EBADF);
    pxffdopen_(&fd, &unit, "w", &ierror, 1);  // a read-only descriptor cannot be written
    EXPECT_EQ(ierror, EINVAL);
    close(fd);
}

TEST_F(UnitIo, CharactersPositionsAndFlush) {
    write_file("data", "xy");
    std::int32_t fd = ::open("data", O_RDWR), unit = 20, ierror = -5, offset = -5;
    pxffdopen_(&fd, &unit, "r+  ", &ierror, 4);
    ASSERT_EQ(ierror, 0);
    char ch[2] = {'?', '?'};
    pxffgetc_(&unit, ch, &ierror, 2);
    EXPECT_EQ(ch[0], 'x');
    EXPECT_EQ(ch[1], '?');  // only the first byte
    pxfftell_(&unit, &offset, &ierror);
    EXPECT_EQ(offset, 1);
    std::int32_t zero = 0, end = SEEK_END, start = SEEK_SET, minus = -1;
    pxffseek_(&unit, &zero, &end, &ierror);
    pxffgetc_(&unit, ch, &ierror, 2);
    EXPECT_EQ(ierror, TARVO_EEND);
    EXPECT_EQ(ch[0], 'x');  // unchanged at the end of the file
    pxffputc_(&unit, "!", &ierror, 1);
    EXPECT_EQ(ierror, 0);
    pxffflush_(&unit, &ierror);
    EXPECT_EQ(ierror, 0);
    EXPECT_EQ(read_file("data"), "xy!");
    pxffseek_(&unit, &minus, &start, &ierror);
    EXPECT_EQ(ierror, EINVAL);
    pxffgetc_(&unit, ch, &ierror, 0);  // no first byte to read into
    EXPECT_EQ(ierror, EINVAL);
    close(fd);

    // A unit that is gone: the run-time's negated error number reaches IERROR as it is.
    pxffgetc_(&unit, ch, &ierror, 1);
    EXPECT_EQ(ierror, -EBADF);
    pxffputc_(&unit, "a", &ierror, 1);
    EXPECT_EQ(ierror, -EBADF);
    std::int32_t closed = 21;
    pxffflush_(&closed, &ierror);
    EXPECT_EQ(ierror, EBADF);
    pxfftell_(&closed, &offset, &ierror);
    EXPECT_EQ(ierror, EINVAL);
    EXPECT_EQ(offset, 1);  // left as it was

    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    std::int32_t piped = 22, in = ends[0];
    pxffdopen_(&in, &piped, "r", &ierror, 1);
    pxfftell_(&piped, &offset, &ierror);  // a pipe has no position
    EXPECT_EQ(ierror, EINVAL);
    EXPECT_EQ(offset, 1);
    close(ends[0]);
    close(ends[1]);
}

TEST_F(UnitIo, StandardInputAndOutput) {
    const int status = tarvo_test::run_in_child([] {
        const int null = ::open("/dev/null", O_RDONLY);
        dup2(null, 0);
        char ch = '?';
        std::int32_t ierror = 0;
        pxfgetc_(&ch, &ierror, 1);
        return ierror == TARVO_EEND && ch == '?' ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
    tarvo_test::CapturedOutput out(1);
    std::int32_t ierror = -1;
    pxfputc_("ok", &ierror, 2);
    pxfputc_("k", &ierror, 1);
    EXPECT_EQ(ierror, 0);
    EXPECT_EQ(out.text(), "ok");
}

TEST_F(UnitIo, PosixModeReportsEinvalWhenTurnedOff) {
    std::int32_t on = 1, off = 0, old = -1, ierror = -1;
    pxfposixio_(&on, &old, &ierror);
    EXPECT_EQ(ierror, 0);
    pxfposixio_(&off, &old, &ierror);
    EXPECT_EQ(old, 1);
    EXPECT_EQ(ierror, EINVAL);  // and the setting changed all the same
    pxfposixio_(&off, &old, &ierror);
    EXPECT_EQ(old, 0);
}

}  // namespace
