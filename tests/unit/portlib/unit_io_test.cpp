// Character I/O, positioning and flushing on the native unit table. The Fortran program
// classic_routines.f90 runs the same sequence on gfortran's own units.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "frame/errors.h"
#include "runtime/errsns.h"
#include "runtime/units.h"
#include "support/support.h"
#include <tarvo/frame.h>
#include <tarvo/portlib.h>

namespace {

class UnitIo : public tarvo_test::ScratchDirTest {};

TEST_F(UnitIo, CharactersAndPositionsOnAConnectedUnit) {
    write_file("data", "abc");
    ASSERT_EQ(runtime::for_fdopen(open("data", O_RDWR), 30, "r+", 2), 0);
    const std::int32_t u = 30, zero = 0, end = 2, current = 1, before_start = -1;
    const std::int64_t back4 = -4, far = 5LL << 30;
    char ch = ' ';
    EXPECT_EQ(fgetc_(&u, &ch, 1), 0);
    EXPECT_EQ(ch, 'a');
    EXPECT_EQ(ftell_(&u) + getposi8_(&u), 2);
    frame::set_portlib_local_errno(5);
    EXPECT_EQ(fseek_(&u, &zero, &end), 0);
    EXPECT_EQ(ierrno_(), 0);  // a successful seek stores its 0
    frame::set_portlib_local_errno(5);
    EXPECT_EQ(fgetc_(&u, &ch, 1), -1);
    EXPECT_EQ(ch, 'a');       // end of file leaves the character
    EXPECT_EQ(ierrno_(), 5);  // and records nothing
    EXPECT_EQ(fputc_(&u, "d", 1), 0);
    EXPECT_EQ(ftelli8_(&u), 4);
    EXPECT_EQ(fseeki8_(&u, &back4, &current), 0);
    EXPECT_EQ(fgetc_(&u, &ch, 1), 0);
    EXPECT_EQ(ch, 'a');
    EXPECT_EQ(fseek_(&u, &before_start, &zero), EINVAL);
    EXPECT_EQ(ierrno_(), EINVAL);
    EXPECT_EQ(fseeki8_(&u, &far, &zero), 0);
    EXPECT_EQ(ftelli8_(&u), far);
    EXPECT_EQ(ftell_(&u), 1 << 30);  // the low 32 bits
    EXPECT_EQ(getpos_(&u), 1 << 30);
    EXPECT_NE(flush_(&u), 0);
    EXPECT_EQ(read_file("data"), "abcd");
}

TEST_F(UnitIo, UnitsThatAreNotOpenGiveTheDescribedErrors) {
    const std::int32_t u = 31, zero = 0;
    char ch = 'q';
    for (const std::int32_t* unit : {&u, static_cast<const std::int32_t*>(nullptr)}) {
        frame::set_portlib_local_errno(0);
        EXPECT_EQ(fgetc_(unit, &ch, 1), EINVAL);
        EXPECT_EQ(errno + runtime::last_recorded_error(), 2 * EINVAL);
        EXPECT_EQ(fputc_(unit, "x", 1), EINVAL);
        EXPECT_EQ(fseek_(unit, &zero, &zero), EBADF);
        frame::set_portlib_local_errno(0);
        EXPECT_EQ(getpos_(unit) + getposi8_(unit) + flush_(unit), -2 * EBADF);
        EXPECT_EQ(ierrno_(), 0);  // GETPOS and FLUSH record nothing
        EXPECT_EQ(ftell_(unit), -EBADF);
        EXPECT_EQ(ierrno_(), EBADF);
    }
    EXPECT_EQ(ch, 'q');
}

TEST(StandardUnits, GetcReadsUnit5AndPutcWritesUnit6) {
    const int status = tarvo_test::run_in_child([] {
        int in[2], out[2];
        if (pipe(in) != 0 || pipe(out) != 0 || write(in[1], "z", 1) != 1) return 10;
        close(in[1]);
        dup2(in[0], 0);
        dup2(out[1], 1);
        char ch = ' ', echoed = ' ';
        if (getc_(&ch, 1) != 0 || ch != 'z') return 1;
        if (getc_(&ch, 1) != -1 || ch != 'z') return 2;  // end of file
        dup2(out[1], 0);
        if (getc_(&ch, 1) != -1 || ierrno_() != 0) return 3;  // an error is -1 too, not recorded
        if (putc_("!", 1) != 0 || read(out[0], &echoed, 1) != 1 || echoed != '!') return 4;
        close(1);
        return putc_("!", 1) == EINVAL && ierrno_() == EINVAL ? 0 : 5;
    });
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

}  // namespace
