// Character I/O, positioning and flushing on the native unit table. The Fortran program
// classic_routines.f90 runs the same sequence on gfortran's own units.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <tuple>

#include "frame/errors.h"
#include "base/record.h"
#include "runtime/units.h"
#include "support/support.h"
#include <tarvo/frame.h>
#include <tarvo/portlib.h>

namespace {

using std::tuple;

class UnitIo : public tarvo_test::ScratchDirTest {};

// Results compare as braced tuples, which are evaluated left to right.
TEST_F(UnitIo, CharactersAndPositionsOnAConnectedUnit) {
    write_file("data", "abc");
    ASSERT_EQ(runtime::for_fdopen(open("data", O_RDWR), 30, "r+", 2), 0);
    const std::int32_t u = 30, zero = 0, end = 2, current = 1, before_start = -1;
    const std::int64_t back4 = -4, far = 5LL << 30;
    char ch = ' ';
    EXPECT_EQ((tuple{fgetc_(&u, &ch, 1), ch, ftell_(&u), getposi8_(&u)}), tuple(0, 'a', 1, 1));
    frame::set_portlib_local_errno(5);
    EXPECT_EQ((tuple{fseek_(&u, &zero, &end), ierrno_()}), tuple(0, 0));  // a successful seek stores its 0
    frame::set_portlib_local_errno(5);
    EXPECT_EQ((tuple{fgetc_(&u, &ch, 1), ch, ierrno_()}), tuple(-1, 'a', 5));  // end of file: nothing changes
    EXPECT_EQ((tuple{fputc_(&u, "d", 1), ftelli8_(&u), fseeki8_(&u, &back4, &current), fgetc_(&u, &ch, 1), ch}),
              tuple(0, 4, 0, 0, 'a'));
    EXPECT_EQ((tuple{fseek_(&u, &before_start, &zero), ierrno_()}), tuple(EINVAL, EINVAL));
    // The INTEGER(4) positions keep the low 32 bits.
    EXPECT_EQ((tuple{fseeki8_(&u, &far, &zero), ftelli8_(&u), ftell_(&u), getpos_(&u)}),
              tuple(0, far, 1 << 30, 1 << 30));
    EXPECT_NE(flush_(&u), 0);
    EXPECT_EQ(read_file("data"), "abcd");
}

TEST_F(UnitIo, UnitsThatAreNotOpenGiveTheirErrors) {
    const std::int32_t u = 31, zero = 0;
    char ch = 'q';
    for (const std::int32_t* unit : {&u, static_cast<const std::int32_t*>(nullptr)}) {
        frame::set_portlib_local_errno(0);
        EXPECT_EQ((tuple{fgetc_(unit, &ch, 1), errno, base::testing::last_recorded_error(), fputc_(unit, "x", 1),
                         fseek_(unit, &zero, &zero)}),
                  tuple(EINVAL, EINVAL, EINVAL, EINVAL, EBADF));
        frame::set_portlib_local_errno(0);  // GETPOS and FLUSH record nothing
        EXPECT_EQ((tuple{getpos_(unit), getposi8_(unit), flush_(unit), ierrno_(), ftell_(unit), ierrno_()}),
                  tuple(-EBADF, -EBADF, 0, 0, -EBADF, EBADF));
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
