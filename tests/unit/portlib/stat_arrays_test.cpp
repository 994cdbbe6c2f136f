// stat, lstat, fstat and their INTEGER(8) forms, called as Fortran calls them.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <tuple>

#include "base/memory.h"
#include "base/record.h"
#include "runtime/units.h"
#include "support/support.h"
#include <tarvo/frame.h>
#include <tarvo/portlib.h>

namespace {

using std::tuple;

class StatArrays : public tarvo_test::ScratchDirTest {};

TEST_F(StatArrays, EveryFormReportsTheFileAndLeavesElement13) {
    write_file("f", "hello");
    ASSERT_EQ(symlink("f", "link"), 0);
    ASSERT_EQ(runtime::for_fdopen(open("f", O_RDONLY), 40, "r", 1), 0);
    const std::int32_t unit = 40;
    std::int32_t s4[13], l4[13], f4[13];
    std::int64_t s8[13], l8[13], f8[13];
    s4[12] = l4[12] = f4[12] = 777;
    s8[12] = l8[12] = f8[12] = 777;
    // STAT follows the link, trailing blanks dropped; LSTAT describes the link.
    EXPECT_EQ((tuple{stat_("link  ", s4, 6), stati8_("link", s8, 4), lstat_("link", l4, 4), lstati8_("link", l8, 4),
                     fstat_(&unit, f4), fstati8_(&unit, f8)}),
              tuple(0, 0, 0, 0, 0, 0));
    EXPECT_TRUE(S_ISLNK(l4[2]) && S_ISLNK(l8[2]));
    struct stat st {};
    ASSERT_EQ(::stat("f", &st), 0);
    const std::int64_t want[13] = {std::int64_t(st.st_dev), std::int64_t(st.st_ino), st.st_mode,
                                   std::int64_t(st.st_nlink), st.st_uid, st.st_gid, std::int64_t(st.st_rdev),
                                   5, st.st_atime, st.st_mtime, st.st_ctime, st.st_blksize, 777};
    for (int i = 0; i < 13; ++i) {
        EXPECT_EQ((tuple{s4[i], f4[i]}), tuple(std::int32_t(want[i]), std::int32_t(want[i]))) << "element " << i + 1;
        EXPECT_EQ((tuple{s8[i], f8[i]}), tuple(want[i], want[i])) << "element " << i + 1;
    }
    EXPECT_EQ(l4[12] + l8[12], 2 * 777);
}

TEST_F(StatArrays, SizeBeyondInteger4GivesErangeButAFullArray) {
    const int fd = open("big", O_CREAT | O_WRONLY, 0644);
    ASSERT_EQ(ftruncate(fd, 3LL << 30), 0);  // 3 GiB, sparse
    std::int32_t s4[13] = {};
    std::int64_t s8[13] = {};
    EXPECT_EQ((tuple{stat_("big", s4, 3), errno, ierrno_(), base::testing::last_recorded_error(), s4[7],
                     stati8_("big", s8, 3), s8[7]}),
              tuple(ERANGE, ERANGE, ERANGE, ERANGE, -1, 0, 3LL << 30));
    EXPECT_TRUE(S_ISREG(s4[2]));
}

TEST_F(StatArrays, FailuresAreRecordedAndLeaveTheArray) {
    std::int32_t a[13] = {42};
    const std::int32_t closed = 41, dev_null = 42;
    EXPECT_EQ((tuple{stat_("missing", a, 7), ierrno_(), fstat_(&closed, a), fstat_(nullptr, a), stat_("x", nullptr, 1),
                     ierrno_(), a[0]}),
              tuple(ENOENT, ENOENT, EINVAL, EINVAL, EINVAL, EINVAL, 42));
    base::testing::fail_allocations_after(0);
    const std::int32_t rc = lstat_("x", a, 1);
    base::testing::allow_allocations();
    EXPECT_EQ((tuple{rc, ierrno_()}), tuple(ENOMEM, ENOMEM));
    ASSERT_EQ(runtime::for_fdopen(open("/dev/null", O_RDWR), dev_null, "r+", 2), 0);
    EXPECT_EQ(fstat_(&dev_null, a), 0);
    EXPECT_TRUE(S_ISCHR(a[2]));
}

}  // namespace
