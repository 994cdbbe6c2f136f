// Files and directories through the binding, called as a Fortran program calls them.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <set>

#include "base/memory.h"
#include "posix/pxf_support.h"

namespace {

using namespace pxf_test;
using std::tuple;
using tarvo_test::FString;

// IERROR of a path routine given PATH = p with ILEN 0 and then `args`.
template <class F, class... A>
std::int32_t call(F routine, const std::string& p, A... args) {
    std::int32_t zero = 0;
    return ierror_of(routine, p.data(), &zero, args..., kIerror, p.size());
}

std::set<std::string> entries(const std::string& where = ".") {
    std::set<std::string> names;
    for (const auto& e : std::filesystem::directory_iterator(where)) names.insert(e.path().filename());
    return names;
}

class Files : public tarvo_test::ScratchDirTest {};

TEST_F(Files, PathArgumentRule) {
    // PATH's bytes with its declared length, ILEN, and the name of the file created.
    const struct { std::string text; std::size_t hidden; std::int32_t ilen; std::string created; } cases[] = {
        {"abc   ", 6, 0, "abc"}, {"abc   ", 6, 4, "abc "}, {"ab\t\n \v", 6, 0, "ab"},  // any white space
        {"    ", 4, 0, " "}, {" x  ", 4, 0, " x"}, {"abcdefgh", 3, 5, "abcde"},    // ILEN as it is
        {std::string("ab\0cd", 5), 5, 5, "ab"}, {"a" + std::string(70, ' '), 71, 0, "a"},
        {"abcdefgh", static_cast<std::size_t>((std::uint64_t{1} << 32 | 3) & SIZE_MAX), 0, "abc"},  // low 32 bits
    };
    for (const auto& c : cases) {
        std::int32_t ierror = -1, ilen = c.ilen, fd = -1, mode = 0600;
        pxfcreat_(c.text.data(), &ilen, &mode, &fd, &ierror, c.hidden);
        EXPECT_EQ(entries(), std::set<std::string>{c.created}) << '"' << c.text << '"' << ierror;
        close(fd);
        unlink(c.created.c_str());
    }
    std::int32_t minus = -1, fd = -7, flags = O_RDONLY, mode = 0;
    EXPECT_EQ(ierror_of(pxfopen_, "x", &minus, &flags, &mode, &fd, kIerror, 1), EINVAL);
    base::testing::fail_allocations_after(0);
    EXPECT_EQ(VALUES(call(pxfopen_, "x", &flags, &mode, &fd), fd), tuple(ENOMEM, -7));  // FD untouched
    base::testing::allow_allocations();
}

TEST_F(Files, HostErrorsAndResults) {
    write_file("file", "x");
    Instance stat("stat");
    std::int32_t fd = 0, dir = 5, rdonly = O_RDONLY, mode = 0750, rw = R_OK | W_OK, x = X_OK, one = 1, zero = 0;
    const std::pair<std::int32_t, std::int32_t> results[] = {
        {call(pxfopen_, "missing", &rdonly, &mode, &fd), ENOENT}, {fd, -1},  // the host's -1 is kept
        {call(pxfmkdir_, "sub  ", &mode), 0}, {mode_of("sub") == 0750, 1}, {call(pxfmkdir_, "sub", &mode), EEXIST},
        {call(pxfchdir_, "file"), ENOTDIR}, {call(pxfopendir_, "file", &dir), ENOTDIR}, {dir, 0},
        {call(pxfstat_, "file/x", &stat.handle), ENOTDIR}, {call(pxfunlink_, "missing"), ENOENT},
        {call(pxfaccess_, "file", &rw), 0}, {call(pxfaccess_, "file", &x), EACCES},
        {call(pxfchmod_, "file", &mode), 0}, {mode_of("file") == 0750, 1},
    };
    for (std::size_t i = 0; i < std::size(results); ++i) EXPECT_EQ(results[i].first, results[i].second) << i;
    ierror_of(pxflink_, "file", &zero, "sub/h--ignored", &one, kIerror, 4, 14);  // NEW is "s"
    ierror_of(pxfrename_, "s", &zero, "sub/g  ", &zero, kIerror, 1, 7);
    EXPECT_EQ(entries("sub"), std::set<std::string>{"g"});
    EXPECT_EQ(call(pxfrmdir_, "sub"), ENOTEMPTY);
}

TEST_F(Files, DescriptorsAndTheirLowBits) {
    std::int32_t n = 0, pos = 0, fd = 0, flags = O_CREAT | O_RDWR, mode = 0644;
    ASSERT_EQ(call(pxfopen_, "data", &flags, &mode, &fd), 0);
    std::int32_t five = 5, minus = -1, two_back = -2, end = SEEK_END, set = SEEK_SET, cur = SEEK_CUR;
    std::int32_t max = INT32_MAX, one = 1;
    char buf[8] = "#######";
    ierror_of(pxfwrite_, &fd, "hello", &five, &n, kIerror);
    ierror_of(pxflseek_, &fd, &two_back, &end, &pos, kIerror);  // widened with its sign
    ierror_of(pxfread_, &fd, buf, &five, &n, kIerror);
    EXPECT_EQ(VALUES(std::string(buf, 3), pos, n), tuple("lo#", 3, 2));
    // A negative count is refused, never a count past BUF.
    EXPECT_EQ(VALUES(ierror_of(pxfread_, &fd, buf, &minus, &n, kIerror), n), tuple(EINVAL, -1));
    EXPECT_EQ(VALUES(ierror_of(pxfwrite_, &fd, buf, &minus, &n, kIerror), n), tuple(EINVAL, -1));
    EXPECT_EQ(ierror_of(pxfread_, &fd, nullptr, &five, &n, kIerror), -1);
    // IPOSITION keeps the low 32 bits; all ones counts as a failure reporting errno as it
    // stands, though the host succeeded.
    ierror_of(pxflseek_, &fd, &max, &set, &pos, kIerror);
    ierror_of(pxflseek_, &fd, &max, &cur, &pos, kIerror);
    errno = EIO;
    EXPECT_EQ(VALUES(ierror_of(pxflseek_, &fd, &one, &cur, &pos, kIerror), pos), tuple(EIO, -1));
    EXPECT_EQ(VALUES(ierror_of(pxflseek_, &fd, &one, &cur, &pos, kIerror), pos), tuple(0, 0));
    EXPECT_EQ(VALUES(ierror_of(pxfclose_, &fd, kIerror), ierror_of(pxfclose_, &fd, kIerror)), tuple(0, EBADF));
    EXPECT_EQ(VALUES(ierror_of(pxfwrite_, &fd, "x", &one, &n, kIerror), n), tuple(EBADF, -1));
}

TEST_F(Files, WorkingDirectoryIsCutAndReported) {
    const auto getcwd = [](std::size_t room) {
        FString buf(room, '#');
        std::int32_t ilen = -1;
        const std::int32_t ierror = ierror_of(pxfgetcwd_, buf.data(), &ilen, kIerror, buf.size());
        return tuple(ierror, ilen, buf.text);
    };
    const std::string cwd = dir();
    const auto n = static_cast<std::int32_t>(cwd.size());
    EXPECT_EQ(getcwd(cwd.size() + 4), tuple(0, n, cwd + "    "));
    EXPECT_EQ(getcwd(cwd.size()), tuple(0, n, cwd));
    EXPECT_EQ(getcwd(cwd.size() - 1), tuple(0 + TARVO_ETRUNC, 0, cwd.substr(0, n - 1)));  // a cut name has no length
    ASSERT_EQ(mkdir("gone", 0755) | chdir("gone") | rmdir("../gone"), 0);
    EXPECT_EQ(getcwd(4), tuple(ENOENT, 0, std::string("####")));
}

TEST_F(Files, DirectoryStreamsEndEveryWay) {
    write_file("a", "");
    Instance entry("dirent"), stat("stat");
    std::int32_t dir = 0;
    ASSERT_EQ(call(pxfopendir_, ".", &dir), 0);
    for (int pass = 0; pass < 2; ++pass) {  // the second pass after a rewind
        std::set<std::string> seen;
        errno = 0;
        std::int32_t ierror;
        while ((ierror = ierror_of(pxfreaddir_, &dir, &entry.handle, kIerror)) == 0)
            seen.insert(text_of(entry.handle, "d_name"));
        EXPECT_EQ(ierror, TARVO_EENDDIR);
        EXPECT_EQ(seen, (std::set<std::string>{".", "..", "a"}));
        errno = EIO;  // a failure left by an earlier call is reported in place of the end
        EXPECT_EQ(ierror_of(pxfreaddir_, &dir, &entry.handle, kIerror), EIO);
        ASSERT_EQ(ierror_of(pxfrewinddir_, &dir, kIerror), 0);
    }
    errno = 0;  // not a "dirent" instance
    EXPECT_EQ(VALUES(ierror_of(pxfreaddir_, &dir, &stat.handle, kIerror), errno), tuple(EINVAL, EINVAL));
    using Call = std::int32_t (*)(std::int32_t*);
    const Call routines[] = {[](std::int32_t* d) { return ierror_of(pxfreaddir_, d, d, kIerror); },
                             [](std::int32_t* d) { return ierror_of(pxfrewinddir_, d, kIerror); },
                             [](std::int32_t* d) { return ierror_of(pxfclosedir_, d, kIerror); }};
    for (std::int32_t bad : {std::int32_t{0}, entry.handle})  // nothing, or an instance: no stream
        for (Call routine : routines) {
            errno = 0;
            EXPECT_EQ(VALUES(routine(&bad), errno), tuple(TARVO_ENOHANDLE, EINVAL)) << bad;
        }
    EXPECT_NE(instance_of(entry.handle), nullptr);  // the instance was left alone
    EXPECT_EQ(VALUES(ierror_of(pxfclosedir_, &dir, kIerror), dir), tuple(0, 0));
}

TEST_F(Files, StatusTimesAndLimits) {
    const int fd = ::open("big", O_CREAT | O_WRONLY, 0640);
    ASSERT_EQ(ftruncate(fd, off_t{3} << 30), 0);  // sparse: 3 GiB of nothing
    struct stat host {};
    ASSERT_EQ(::stat("big", &host), 0);
    Instance stat("stat"), times("utimbuf");
    std::int32_t v4 = 0, descriptor = fd, zero = 0, two = 2;
    std::int64_t v8 = 0, mtime = 0;
    ASSERT_EQ(call(pxfstat_, "big \t ", &stat.handle), 0);
    EXPECT_EQ(VALUES(get(stat.handle, "st_size", v4), get(stat.handle, "st_size", v8), v8),
              tuple(ERANGE, 0, std::int64_t{3} << 30));
    EXPECT_EQ(VALUES(get(stat.handle, "st_mode", v4), v4, get(stat.handle, "st_mtime", mtime), mtime),
              tuple(0, S_IFREG | 0640, 0, std::int64_t{host.st_mtime}));
    close(fd);
    EXPECT_EQ(ierror_of(pxffstat_, &descriptor, &stat.handle, kIerror), EBADF);
    EXPECT_EQ(call(pxfstat_, "big", &times.handle), EINVAL);
    EXPECT_EQ(call(pxfstat_, "big", &zero), TARVO_ENOHANDLE);
    using Predicate = std::int32_t (*)(const std::int32_t*);
    const Predicate predicates[] = {pxfisdir_, pxfischr_, pxfisblk_, pxfisreg_, pxfisfifo_};
    const std::int32_t modes[] = {0x41ED, 0x21B6, 0x61B0, 0x81A4, 0x11B6};  // in the same order
    for (int m = 0; m < 5; ++m)
        for (int p = 0; p < 5; ++p) EXPECT_EQ(predicates[p](&modes[m]), p == m ? 1 : 0) << m << p;

    set(times.handle, "actime", std::int32_t{1000});
    set(times.handle, "modtime", std::int32_t{2000});
    ierror_of(pxfutime_, "big other", &two, &times.handle, kIerror, 9);  // cut at the blank, ILEN unused
    call(pxfstat_, "big", &stat.handle);
    EXPECT_EQ(VALUES(get(stat.handle, "st_atime", v8), v8), tuple(0, 1000));
    ierror_of(pxfutime_, "big", &two, &zero, kIerror, 3);  // now
    call(pxfstat_, "big", &stat.handle);
    EXPECT_GT(get(stat.handle, "st_mtime", v8) + v8, 2000);
    EXPECT_EQ(ierror_of(pxfutime_, " big", &two, &zero, kIerror, 4), ENOENT);  // the empty path

    std::int32_t value = 0, name = _PC_NAME_MAX, none = _PC_SYMLINK_MAX, dot = ::open(".", O_RDONLY);
    EXPECT_EQ(VALUES(call(pxfpathconf_, ".", &name, &value), value), tuple(0, 255));
    errno = 0;  // only this routine checks ILEN
    EXPECT_EQ(VALUES(ierror_of(pxfpathconf_, ". ", &two, &name, &value, kIerror, 1), errno), tuple(EINVAL, EINVAL));
    errno = EIO;  // no limit is no failure
    EXPECT_EQ(VALUES(ierror_of(pxffpathconf_, &dot, &none, &value, kIerror), value), tuple(0, -1));
    close(dot);
}

TEST_F(Files, NoDescriptorOrHandleIsLeft) {
    const auto descriptors = [] { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
    const auto before = descriptors();
    std::int32_t dir = 0, fd = 0, flags = O_CREAT | O_RDWR, mode = 0644;
    for (int i = 0; i < 3000; ++i) {
        call(pxfopen_, "cycle", &flags, &mode, &fd);
        call(pxfopendir_, ".", &dir);
        ASSERT_EQ(ierror_of(pxfclose_, &fd, kIerror) + ierror_of(pxfclosedir_, &dir, kIerror), 0);
    }
    base::testing::fail_allocations_after(1);  // the path is copied, the stream's block is not
    EXPECT_EQ(VALUES(call(pxfopendir_, ".", &dir), dir), tuple(TARVO_ENOHANDLE, 0));
    base::testing::allow_allocations();
    EXPECT_EQ(descriptors(), before);
}

}  // namespace
