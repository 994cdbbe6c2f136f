// stat, lstat, fstat and their INTEGER(8) forms, called as Fortran calls them.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "frame/memory.h"
#include "runtime/errsns.h"
#include "runtime/units.h"
#include "support/support.h"
#include <tarvo/frame.h>
#include <tarvo/portlib.h>

namespace {

class StatArrays : public tarvo_test::ScratchDirTest {};

// Elements 1 to 12 as the host reports them, cut to the element type.
template <class Int>
void expect_fields(const Int* statb, const struct stat& st, Int size) {
    const Int want[12] = {Int(st.st_dev),  Int(st.st_ino),   Int(st.st_mode),  Int(st.st_nlink),
                          Int(st.st_uid),  Int(st.st_gid),   Int(st.st_rdev),  size,
                          Int(st.st_atime), Int(st.st_mtime), Int(st.st_ctime), Int(st.st_blksize)};
    for (int i = 0; i < 12; ++i) EXPECT_EQ(statb[i], want[i]) << "element " << i + 1;
    EXPECT_EQ(statb[12], Int{777}) << "element 13 is never written";
}

TEST_F(StatArrays, EveryFormReportsTheFileAndLeavesElement13) {
    write_file("f", "hello");
    ASSERT_EQ(symlink("f", path("link").c_str()), 0);
    struct stat st {}, lst {};
    ASSERT_EQ(::stat(path("f").c_str(), &st), 0);
    ASSERT_EQ(::lstat(path("link").c_str(), &lst), 0);
    const int fd = open(path("f").c_str(), O_RDONLY);
    ASSERT_EQ(runtime::for_fdopen(fd, 40, "r", 1), 0);
    const std::int32_t unit = 40;

    std::int32_t s4[13], l4[13], f4[13];
    std::int64_t s8[13], l8[13], f8[13];
    for (auto* a : {s4, l4, f4}) a[12] = 777;
    for (auto* a : {s8, l8, f8}) a[12] = 777;
    EXPECT_EQ(stat_("link  ", s4, 6), 0);  // follows the link, trailing blanks dropped
    EXPECT_EQ(stati8_("link", s8, 4), 0);
    EXPECT_EQ(lstat_("link", l4, 4), 0);
    EXPECT_EQ(lstati8_("link", l8, 4), 0);
    EXPECT_EQ(fstat_(&unit, f4), 0);
    EXPECT_EQ(fstati8_(&unit, f8), 0);
    expect_fields<std::int32_t>(s4, st, 5);
    expect_fields<std::int64_t>(s8, st, 5);
    expect_fields<std::int32_t>(f4, st, 5);
    expect_fields<std::int64_t>(f8, st, 5);
    expect_fields<std::int32_t>(l4, lst, 1);
    expect_fields<std::int64_t>(l8, lst, 1);
    EXPECT_TRUE(S_ISLNK(l4[2]));
}

TEST_F(StatArrays, SizeBeyondInteger4GivesErangeButAFullArray) {
    const int fd = open(path("big").c_str(), O_CREAT | O_WRONLY, 0644);
    ASSERT_EQ(ftruncate(fd, 3LL << 30), 0);  // 3 GiB, sparse
    close(fd);
    std::int32_t s4[13] = {};
    std::int64_t s8[13] = {};
    errno = 0;
    EXPECT_EQ(stat_("big", s4, 3), ERANGE);
    EXPECT_EQ(errno, ERANGE);
    EXPECT_EQ(ierrno_(), ERANGE);
    EXPECT_EQ(runtime::last_recorded_error(), ERANGE);
    EXPECT_EQ(s4[7], -1);
    EXPECT_TRUE(S_ISREG(s4[2]));
    EXPECT_EQ(stati8_("big", s8, 3), 0);
    EXPECT_EQ(s8[7], 3LL << 30);
}

TEST_F(StatArrays, FailuresAreRecordedAndLeaveTheArray) {
    std::int32_t a[13];
    std::memset(a, 0x5a, sizeof a);
    const std::int32_t closed = 41, dev_null_unit = 42;
    EXPECT_EQ(stat_("missing", a, 7), ENOENT);
    EXPECT_EQ(ierrno_(), ENOENT);
    EXPECT_EQ(fstat_(&closed, a), EINVAL);
    EXPECT_EQ(fstat_(nullptr, a), EINVAL);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(ierrno_(), EINVAL);
    EXPECT_EQ(a[0], 0x5a5a5a5a);
    frame::testing::fail_allocations_after(0);
    const std::int32_t rc = lstat_("x", a, 1);
    frame::testing::allow_allocations();
    EXPECT_EQ(rc, ENOMEM);
    EXPECT_EQ(ierrno_(), ENOMEM);
    EXPECT_EQ(stat_("x", nullptr, 1), EINVAL);
    // A unit on a character device reports that type.
    ASSERT_EQ(runtime::for_fdopen(open("/dev/null", O_RDWR), dev_null_unit, "r+", 2), 0);
    EXPECT_EQ(fstat_(&dev_null_unit, a), 0);
    EXPECT_TRUE(S_ISCHR(a[2]));
}

}  // namespace
