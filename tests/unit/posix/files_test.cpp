// Files and directories through the binding, called as a Fortran program calls them.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <set>

#include "frame/memory.h"
#include "posix/pxf_support.h"

namespace {

using namespace pxf_test;
using tarvo_test::FString;

// IERROR of a path routine given PATH = p with ILEN 0 and then `args`.
template <class F, class... A>
std::int32_t call(F routine, const std::string& p, A... args) {
    std::int32_t ierror = -99, zero = 0;
    routine(p.data(), &zero, args..., &ierror, p.size());
    return ierror;
}

std::set<std::string> entries(const std::string& where = ".") {
    std::set<std::string> names;
    for (const auto& e : std::filesystem::directory_iterator(where)) names.insert(e.path().filename());
    return names;
}

class Files : public tarvo_test::ScratchDirTest {};

TEST_F(Files, PathArgumentRule) {
    const struct {
        std::string text;  // PATH's bytes, of declared length `hidden`
        std::size_t hidden;
        std::int32_t ilen;
        std::string created;
    } cases[] = {
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
    std::int32_t ierror = 0, minus = -1, fd = -7, flags = O_RDONLY, mode = 0;
    pxfopen_("x", &minus, &flags, &mode, &fd, &ierror, 1);
    EXPECT_EQ(ierror, EINVAL);
    frame::testing::fail_allocations_after(0);
    EXPECT_EQ(call(pxfopen_, "x", &flags, &mode, &fd), ENOMEM);
    frame::testing::allow_allocations();
    EXPECT_EQ(fd, -7);  // untouched when the path cannot be taken
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
    std::int32_t ierror = -1;
    pxflink_("file", &zero, "sub/h--ignored", &one, &ierror, 4, 14);  // NEW is "s"
    pxfrename_("s", &zero, "sub/g  ", &zero, &ierror, 1, 7);
    EXPECT_EQ(entries("sub"), std::set<std::string>{"g"});
    EXPECT_EQ(call(pxfrmdir_, "sub"), ENOTEMPTY);
}

TEST_F(Files, DescriptorsAndTheirLowBits) {
    std::int32_t ierror = 0, n = 0, pos = 0, fd = 0, flags = O_CREAT | O_RDWR, mode = 0644;
    ASSERT_EQ(call(pxfopen_, "data", &flags, &mode, &fd), 0);
    std::int32_t five = 5, minus = -1, two_back = -2, end = SEEK_END, set = SEEK_SET, cur = SEEK_CUR;
    pxfwrite_(&fd, "hello", &five, &n, &ierror);
    pxflseek_(&fd, &two_back, &end, &pos, &ierror);  // widened with its sign
    char buf[8] = "#######";
    pxfread_(&fd, buf, &five, &n, &ierror);
    EXPECT_EQ(std::string(buf, 3) + std::to_string(pos) + std::to_string(n), "lo#32");
    pxfread_(&fd, buf, &minus, &n, &ierror);  // refused, never a count past BUF
    EXPECT_EQ(n * 100 + ierror, -100 + EINVAL);
    pxfwrite_(&fd, buf, &minus, &n, &ierror);
    EXPECT_EQ(n * 100 + ierror, -100 + EINVAL);
    pxfread_(&fd, nullptr, &five, &n, &ierror);
    EXPECT_EQ(ierror, -1);
    // IPOSITION keeps the low 32 bits; all ones counts as a failure reporting errno as it
    // stands, though the host succeeded.
    std::int32_t max = INT32_MAX, one = 1;
    pxflseek_(&fd, &max, &set, &pos, &ierror);
    pxflseek_(&fd, &max, &cur, &pos, &ierror);
    errno = EIO;
    pxflseek_(&fd, &one, &cur, &pos, &ierror);
    EXPECT_EQ(pos * 100 + ierror, -100 + EIO);
    pxflseek_(&fd, &one, &cur, &pos, &ierror);
    EXPECT_EQ(pos * 100 + ierror, 0);
    pxfclose_(&fd, &ierror);
    pxfclose_(&fd, &ierror);
    EXPECT_EQ(ierror, EBADF);
    pxfwrite_(&fd, "x", &one, &n, &ierror);
    EXPECT_EQ(n * 100 + ierror, -100 + EBADF);
}

TEST_F(Files, WorkingDirectoryIsCutAndReported) {
    const std::string cwd = dir();
    for (std::size_t room : {cwd.size() + 4, cwd.size(), cwd.size() - 1}) {
        FString buf(room, '#');
        std::int32_t ilen = -1, ierror = -1;
        pxfgetcwd_(buf.data(), &ilen, &ierror, buf.size());
        const bool fits = room >= cwd.size();
        EXPECT_EQ(ierror, fits ? 0 : TARVO_ETRUNC);
        EXPECT_EQ(ilen, fits ? static_cast<std::int32_t>(cwd.size()) : 0);  // a cut name has no length
        EXPECT_EQ(buf.text, fits ? FString(cwd, room).text : cwd.substr(0, room));
    }
    ASSERT_EQ(mkdir("gone", 0755) | chdir("gone") | rmdir("../gone"), 0);
    FString buf(4, '#');
    std::int32_t ilen = -1, ierror = -1;
    pxfgetcwd_(buf.data(), &ilen, &ierror, buf.size());
    EXPECT_EQ(buf.text + std::to_string(ierror) + std::to_string(ilen), "####20");
}

TEST_F(Files, DirectoryStreamsEndEveryWay) {
    write_file("a", "");
    Instance entry("dirent"), stat("stat");
    std::int32_t dir = 0, ierror = -1;
    ASSERT_EQ(call(pxfopendir_, ".", &dir), 0);
    for (int pass = 0; pass < 2; ++pass) {  // the second pass after a rewind
        std::set<std::string> seen;
        errno = 0;
        for (pxfreaddir_(&dir, &entry.handle, &ierror); ierror == 0; pxfreaddir_(&dir, &entry.handle, &ierror))
            seen.insert(text_of(entry.handle, "d_name"));
        EXPECT_EQ(ierror, TARVO_EENDDIR);
        EXPECT_EQ(seen, (std::set<std::string>{".", "..", "a"}));
        errno = EIO;  // a failure left by an earlier call is reported in place of the end
        pxfreaddir_(&dir, &entry.handle, &ierror);
        EXPECT_EQ(ierror, EIO);
        pxfrewinddir_(&dir, &ierror);
    }
    errno = 0;
    pxfreaddir_(&dir, &stat.handle, &ierror);
    EXPECT_EQ(ierror * 100 + errno, EINVAL * 101);  // not a "dirent" instance
    using Call = void (*)(std::int32_t*, std::int32_t*);
    const Call routines[] = {[](std::int32_t* d, std::int32_t* e) { pxfreaddir_(d, d, e); },
                             [](std::int32_t* d, std::int32_t* e) { pxfrewinddir_(d, e); }, pxfclosedir_};
    for (std::int32_t bad : {std::int32_t{0}, entry.handle})  // nothing, or an instance: no stream
        for (Call routine : routines) {
            errno = 0;
            routine(&bad, &ierror);
            EXPECT_EQ(ierror * 100 + errno, TARVO_ENOHANDLE * 100 + EINVAL) << bad;
        }
    EXPECT_NE(instance_of(entry.handle), nullptr);  // the instance was left alone
    pxfclosedir_(&dir, &ierror);
    EXPECT_EQ(ierror * 100 + dir, 0);
}

TEST_F(Files, StatusTimesAndLimits) {
    const int fd = ::open("big", O_CREAT | O_WRONLY, 0640);
    ASSERT_EQ(ftruncate(fd, off_t{3} << 30), 0);  // sparse: 3 GiB of nothing
    Instance stat("stat"), times("utimbuf");
    std::int32_t ierror = -1, v4 = 0, descriptor = fd, zero = 0, two = 2;
    std::int64_t v8 = 0;
    ASSERT_EQ(call(pxfstat_, "big \t ", &stat.handle), 0);
    EXPECT_EQ(get(stat.handle, "st_size", v4), ERANGE);
    EXPECT_EQ(get(stat.handle, "st_size", v8), 0);
    EXPECT_EQ(v8, std::int64_t{3} << 30);
    close(fd);
    pxffstat_(&descriptor, &stat.handle, &ierror);
    EXPECT_EQ(ierror, EBADF);
    EXPECT_EQ(call(pxfstat_, "big", &times.handle), EINVAL);
    EXPECT_EQ(call(pxfstat_, "big", &zero), TARVO_ENOHANDLE);
    using Predicate = std::int32_t (*)(const std::int32_t*);
    const Predicate predicates[] = {pxfisdir_, pxfischr_, pxfisblk_, pxfisreg_, pxfisfifo_};
    const std::int32_t modes[] = {0x41ED, 0x21B6, 0x61B0, 0x81A4, 0x11B6};  // in the same order
    for (int m = 0; m < 5; ++m)
        for (int p = 0; p < 5; ++p) EXPECT_EQ(predicates[p](&modes[m]), p == m ? 1 : 0) << m << p;

    set(times.handle, "actime", std::int32_t{1000});
    set(times.handle, "modtime", std::int32_t{2000});
    pxfutime_("big other", &two, &times.handle, &ierror, 9);  // cut at the blank, ILEN unused
    call(pxfstat_, "big", &stat.handle);
    EXPECT_EQ(get(stat.handle, "st_atime", v8) + v8, 1000);
    pxfutime_("big", &two, &zero, &ierror, 3);  // now
    call(pxfstat_, "big", &stat.handle);
    EXPECT_GT(get(stat.handle, "st_mtime", v8) + v8, 2000);
    pxfutime_(" big", &two, &zero, &ierror, 4);  // the empty path
    EXPECT_EQ(ierror, ENOENT);

    std::int32_t value = 0, name = _PC_NAME_MAX, none = _PC_SYMLINK_MAX, dot = ::open(".", O_RDONLY);
    EXPECT_EQ(call(pxfpathconf_, ".", &name, &value) * 1000 + value, 255);
    errno = 0;
    pxfpathconf_(". ", &two, &name, &value, &ierror, 1);  // only this routine checks ILEN
    EXPECT_EQ(ierror * 100 + errno, EINVAL * 101);
    errno = EIO;
    pxffpathconf_(&dot, &none, &value, &ierror);  // no limit is no failure
    EXPECT_EQ(value * 100 + ierror, -100);
    close(dot);
}

TEST_F(Files, NoDescriptorOrHandleIsLeft) {
    const auto descriptors = [] { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
    const auto before = descriptors();
    std::int32_t ierror = 0, dir = 0, fd = 0, flags = O_CREAT | O_RDWR, mode = 0644;
    for (int i = 0; i < 3000; ++i) {
        call(pxfopen_, "cycle", &flags, &mode, &fd);
        pxfclose_(&fd, &ierror);
        call(pxfopendir_, ".", &dir);
        pxfclosedir_(&dir, &ierror);
        ASSERT_EQ(ierror, 0);
    }
    frame::testing::fail_allocations_after(1);  // the path is copied, the stream's block is not
    EXPECT_EQ(call(pxfopendir_, ".", &dir), TARVO_ENOHANDLE);
    frame::testing::allow_allocations();
    EXPECT_EQ(dir, 0);
    EXPECT_EQ(descriptors(), before);
}

}  // namespace
