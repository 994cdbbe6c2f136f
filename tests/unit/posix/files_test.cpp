// Files and directories through the binding, called as a Fortran program calls them.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <set>

#include "frame/memory.h"
#include "posix/pxf_support.h"

namespace {

using namespace pxf_test;
using tarvo_test::FString;

class Files : public tarvo_test::ScratchDirTest {
protected:
    std::set<std::string> entries(const std::string& where = ".") {
        std::set<std::string> names;
        for (const auto& e : std::filesystem::directory_iterator(where)) names.insert(e.path().filename());
        return names;
    }
    int open_file(const std::string& name, int flags, std::int32_t& ierror, std::int32_t ilen = 0) {
        std::int32_t fd = -7, mode = 0644;
        pxfopen_(name.data(), &ilen, &flags, &mode, &fd, &ierror, name.size());
        return fd;
    }
};

int open_descriptors() {
    return static_cast<int>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

TEST_F(Files, PathArgumentRule) {
    struct Case {
        std::string text;  // PATH's bytes; the hidden length is `hidden`
        std::size_t hidden;
        std::int32_t ilen;
        std::string created;
    };
    const Case cases[] = {
        {"abc   ", 6, 0, "abc"},
        {"abc   ", 6, 4, "abc "},       // a non-zero ILEN is taken as it is
        {"ab\t\n \v", 6, 0, "ab"},      // any trailing white space goes, not only blanks
        {"    ", 4, 0, " "},            // never below one character
        {" x  ", 4, 0, " x"},           // leading blanks stay
        {"abcdefgh", 3, 5, "abcde"},    // ILEN beyond the declared length is not checked
        {std::string("ab\0cd", 5), 5, 5, "ab"},
        {std::string(40, 'n') + std::string(30, ' '), 70, 0, std::string(40, 'n')},
        {"abcdefgh", static_cast<std::size_t>((std::uint64_t{1} << 32 | 3) & SIZE_MAX), 0, "abc"},  // low 32 bits
    };
    for (const Case& c : cases) {
        std::int32_t ierror = -1, ilen = c.ilen, fd = -1, mode = 0600;
        pxfcreat_(c.text.data(), &ilen, &mode, &fd, &ierror, c.hidden);
        EXPECT_EQ(ierror, 0) << c.text;
        EXPECT_EQ(entries(), std::set<std::string>{c.created}) << '"' << c.text << '"';
        close(fd);
        unlink(c.created.c_str());
    }
    std::int32_t ierror = 0;
    EXPECT_EQ(open_file("x", O_RDONLY, ierror, -1), -7);  // a negative ILEN: IFILDES untouched
    EXPECT_EQ(ierror, EINVAL);
    frame::testing::fail_allocations_after(0);
    EXPECT_EQ(open_file("x", O_RDONLY, ierror), -7);
    frame::testing::allow_allocations();
    EXPECT_EQ(ierror, ENOMEM);
    std::int32_t zero = 0;
    pxfunlink_(nullptr, &zero, &ierror, 4);
    EXPECT_EQ(ierror, EINVAL);
}

TEST_F(Files, DescriptorsReadWriteSeek) {
    std::int32_t ierror = 0, n = 0, pos = 0, fd2 = 0;
    EXPECT_EQ(open_file("missing", O_RDONLY, ierror), -1);  // the host's -1 is stored
    EXPECT_EQ(ierror, ENOENT);
    const std::int32_t fd = open_file("data", O_CREAT | O_RDWR, ierror);
    ASSERT_EQ(ierror, 0);
    std::int32_t five = 5, off = -2, end = SEEK_END, set = SEEK_SET;
    pxfwrite_(&fd, "hello", &five, &n, &ierror);
    EXPECT_EQ(n, 5);
    pxflseek_(&fd, &off, &end, &pos, &ierror);  // a 4-byte offset widened with its sign
    EXPECT_EQ(pos, 3);
    char buf[8] = "#######";
    pxfread_(&fd, buf, &five, &n, &ierror);
    EXPECT_EQ(std::string(buf, 3), "lo#");
    EXPECT_EQ(n, 2);
    std::int32_t minus = -1;
    pxfread_(&fd, buf, &minus, &n, &ierror);  // refused by the host, buffer untouched
    EXPECT_EQ(ierror, EFAULT);
    EXPECT_EQ(std::string(buf, 3), "lo#");
    pxfread_(&fd, nullptr, &five, &n, &ierror);
    EXPECT_EQ(ierror, -1);
    pxfdup_(&fd, &fd2, &ierror);
    std::int32_t target = fd2 + 1;
    EXPECT_EQ(pxfdup2_(&fd2, &target, &ierror), target);
    for (std::int32_t d : {fd, fd2, target}) pxfclose_(&d, &ierror);
    pxfclose_(&fd, &ierror);
    EXPECT_EQ(ierror, EBADF);
    pxfdup_(&fd, &fd2, &ierror);
    EXPECT_EQ(fd2, -1);
    std::int32_t one = 1;
    pxfwrite_(&fd, "x", &one, &n, &ierror);
    EXPECT_EQ(n, -1);
    EXPECT_EQ(ierror, EBADF);

    // IPOSITION holds the low 32 bits; all ones counts as a failure and reports errno as it
    // stands, even though the host succeeded.
    const std::int32_t big = open_file("big", O_CREAT | O_RDWR, ierror);
    std::int32_t max = INT32_MAX, cur = SEEK_CUR;
    pxflseek_(&big, &max, &set, &pos, &ierror);
    pxflseek_(&big, &max, &cur, &pos, &ierror);
    errno = EIO;
    pxflseek_(&big, &one, &cur, &pos, &ierror);
    EXPECT_EQ(pos, -1);
    EXPECT_EQ(ierror, EIO);
    pxflseek_(&big, &one, &cur, &pos, &ierror);
    EXPECT_EQ(pos, 0);
    EXPECT_EQ(ierror, 0);
    pxfclose_(&big, &ierror);

    std::int32_t ends[2] = {-1, -1};
    pxfpipe_(&ends[0], &ends[1], &ierror);
    pxfwrite_(&ends[1], "p", &one, &n, &ierror);
    pxfread_(&ends[0], buf, &one, &n, &ierror);  // read end first
    EXPECT_EQ(buf[0], 'p');
    pxflseek_(&ends[0], &one, &set, &pos, &ierror);
    EXPECT_EQ(ierror, ESPIPE);
    for (std::int32_t d : ends) close(d);
}

TEST_F(Files, DirectoriesLinksAndModes) {
    std::int32_t ierror = -1, zero = 0, mode = 0777, prev = 0, mask = 027;
    pxfumask_(&mask, &prev, &ierror);
    EXPECT_EQ(prev, 022);  // the fixture's mask
    pxfmkdir_("sub  ", &zero, &mode, &ierror, 5);
    EXPECT_EQ(ierror, 0);
    EXPECT_EQ(mode_of("sub"), 0750u);
    write_file("sub/f", "x");
    pxfrmdir_("sub", &zero, &ierror, 3);
    EXPECT_EQ(ierror, ENOTEMPTY);
    pxfchdir_("sub/f", &zero, &ierror, 5);
    EXPECT_EQ(ierror, ENOTDIR);
    std::int32_t one = 1;
    pxflink_("sub/f", &zero, "g--ignored", &one, &ierror, 5, 10);
    EXPECT_EQ(ierror, 0);
    pxfrename_("g", &zero, "sub/h", &zero, &ierror, 1, 5);
    EXPECT_EQ(entries("sub"), (std::set<std::string>{"f", "h"}));
    pxfrename_("g", &zero, "h", &zero, &ierror, 1, 1);
    EXPECT_EQ(ierror, ENOENT);
    std::int32_t rw = R_OK | W_OK, x = X_OK, m = 0640;
    pxfaccess_("sub/h", &zero, &rw, &ierror, 5);
    EXPECT_EQ(ierror, 0);
    pxfchmod_("sub/h", &zero, &m, &ierror, 5);
    EXPECT_EQ(mode_of("sub/h"), 0640u);
    pxfaccess_("sub/h", &zero, &x, &ierror, 5);
    EXPECT_EQ(ierror, EACCES);
    pxfunlink_("sub/nothing", &zero, &ierror, 11);
    EXPECT_EQ(ierror, ENOENT);
    pxfchdir_("sub", &zero, &ierror, 3);
    EXPECT_EQ(ierror, 0);
    EXPECT_EQ(std::filesystem::current_path(), dir() + "/sub");
}

TEST_F(Files, WorkingDirectoryIsCutAndReported) {
    const std::string cwd = dir();
    for (std::size_t room : {cwd.size() + 4, cwd.size(), cwd.size() - 1}) {
        FString buf(room, '#');
        std::int32_t ilen = -1, ierror = -1;
        errno = 0;
        pxfgetcwd_(buf.data(), &ilen, &ierror, buf.size());
        const bool fits = room >= cwd.size();
        EXPECT_EQ(ierror, fits ? 0 : TARVO_ETRUNC);
        EXPECT_EQ(ilen, fits ? static_cast<std::int32_t>(cwd.size()) : 0);
        EXPECT_EQ(buf.text, fits ? FString(cwd, room).text : cwd.substr(0, room));
        EXPECT_EQ(errno, fits ? 0 : ERANGE);
    }
    ASSERT_EQ(mkdir("gone", 0755), 0);
    ASSERT_EQ(chdir("gone"), 0);
    ASSERT_EQ(rmdir("../gone"), 0);
    FString buf(10, '#');
    std::int32_t ilen = -1, ierror = -1;
    pxfgetcwd_(buf.data(), &ilen, &ierror, buf.size());
    EXPECT_EQ(ierror, ENOENT);
    EXPECT_EQ(ilen, 0);
    EXPECT_EQ(buf.text, std::string(10, '#'));
}

TEST_F(Files, DirectoryStreamsEndEveryWay) {
    write_file("a", "");
    write_file("b", "");
    Instance entry("dirent"), stat("stat");
    std::int32_t dir = -5, ierror = -1, zero = 0;
    pxfopendir_("missing", &zero, &dir, &ierror, 7);
    EXPECT_EQ(ierror, ENOENT);
    EXPECT_EQ(dir, 0);
    pxfopendir_(".", &zero, &dir, &ierror, 1);
    ASSERT_EQ(ierror, 0);
    for (int pass = 0; pass < 2; ++pass) {
        std::set<std::string> seen;
        errno = 0;
        for (pxfreaddir_(&dir, &entry.handle, &ierror); ierror == 0; pxfreaddir_(&dir, &entry.handle, &ierror))
            seen.insert(text_of(entry.handle, "d_name"));
        EXPECT_EQ(ierror, TARVO_EENDDIR);
        EXPECT_EQ(seen, (std::set<std::string>{".", "..", "a", "b"}));
        errno = EIO;  // a failure left by an earlier call is reported in place of the end
        pxfreaddir_(&dir, &entry.handle, &ierror);
        EXPECT_EQ(ierror, EIO);
        pxfrewinddir_(&dir, &ierror);
        EXPECT_EQ(ierror, 0);
    }
    errno = 0;
    pxfreaddir_(&dir, &stat.handle, &ierror);  // not a "dirent" instance
    EXPECT_EQ(ierror, EINVAL);
    EXPECT_EQ(errno, EINVAL);
    for (std::int32_t bad : {std::int32_t{0}, entry.handle}) {  // nothing, or an instance
        errno = 0;
        pxfreaddir_(&bad, &entry.handle, &ierror);
        EXPECT_EQ(ierror, TARVO_ENOHANDLE);
        EXPECT_EQ(errno, EINVAL);
        pxfrewinddir_(&bad, &ierror);
        EXPECT_EQ(ierror, TARVO_ENOHANDLE);
        pxfclosedir_(&bad, &ierror);
        EXPECT_EQ(ierror, TARVO_ENOHANDLE);
    }
    std::int32_t dirent_handle = entry.handle;
    EXPECT_NE(instance_of(dirent_handle), nullptr);  // the instance was left alone
    pxfreaddir_(&dir, &zero, &ierror);
    EXPECT_EQ(ierror, TARVO_ENOHANDLE);
    pxfclosedir_(&dir, &ierror);
    EXPECT_EQ(ierror, 0);
    EXPECT_EQ(dir, 0);
    pxfclosedir_(&dir, &ierror);
    EXPECT_EQ(ierror, TARVO_ENOHANDLE);
}

TEST_F(Files, StatusOfPathsAndDescriptors) {
    const int fd = ::open("big", O_CREAT | O_WRONLY, 0640);
    ASSERT_EQ(ftruncate(fd, off_t{3} << 30), 0);  // sparse: 3 GiB of nothing
    ASSERT_EQ(mkfifo("fifo", 0600), 0);
    Instance stat("stat"), other("utimbuf");
    std::int32_t ierror = -1, zero = 0, v4 = 0, descriptor = fd;
    std::int64_t v8 = 0;
    pxfstat_("big      ", &zero, &stat.handle, &ierror, 9);
    ASSERT_EQ(ierror, 0);
    EXPECT_EQ(get(stat.handle, "st_size", v4), ERANGE);
    EXPECT_EQ(get(stat.handle, "st_size", v8), 0);
    EXPECT_EQ(v8, std::int64_t{3} << 30);
    pxffstat_(&descriptor, &stat.handle, &ierror);
    EXPECT_EQ(get(stat.handle, "st_mode", v4), 0);
    EXPECT_EQ(v4, S_IFREG | 0640);
    close(fd);
    pxffstat_(&descriptor, &stat.handle, &ierror);
    EXPECT_EQ(ierror, EBADF);
    pxfstat_("nothing", &zero, &stat.handle, &ierror, 7);
    EXPECT_EQ(ierror, ENOENT);
    pxfstat_("big", &zero, &other.handle, &ierror, 3);
    EXPECT_EQ(ierror, EINVAL);
    pxfstat_("big", &zero, &zero, &ierror, 3);
    EXPECT_EQ(ierror, TARVO_ENOHANDLE);

    using Predicate = std::int32_t (*)(const std::int32_t*);
    const Predicate predicates[] = {pxfisdir_, pxfischr_, pxfisblk_, pxfisreg_, pxfisfifo_};
    const struct {
        const char* path;
        int which;  // index of the one predicate that holds
    } kinds[] = {{".", 0}, {"/dev/null", 1}, {"big", 3}, {"fifo", 4}};
    for (const auto& k : kinds) {
        pxfstat_(k.path, &zero, &stat.handle, &ierror, std::strlen(k.path));
        get(stat.handle, "st_mode", v4);
        for (int p = 0; p < 5; ++p) EXPECT_EQ(predicates[p](&v4), p == k.which ? 1 : 0) << k.path << p;
    }
    const std::int32_t block = 0x61B0, dir = 0x41ED, reg = 0x81A4;
    EXPECT_EQ(pxfisblk_(&block), 1);
    EXPECT_EQ(pxfisdir_(&dir), 1);
    EXPECT_EQ(pxfisdir_(&reg), 0);
}

TEST_F(Files, TimesAndLimits) {
    write_file("file.txt", "");
    Instance times("utimbuf"), stat("stat");
    std::int32_t ierror = -1, two = 2;
    ASSERT_EQ(set(times.handle, "actime", std::int32_t{1000}), 0);
    ASSERT_EQ(set(times.handle, "modtime", std::int32_t{2000}), 0);
    pxfutime_("file.txt other", &two, &times.handle, &ierror, 14);  // cut at the blank, ILEN unused
    EXPECT_EQ(ierror, 0);
    struct stat st {};
    ::stat("file.txt", &st);
    EXPECT_EQ(st.st_atime, 1000);
    EXPECT_EQ(st.st_mtime, 2000);
    std::int32_t now = 0;
    pxfutime_("file.txt", &two, &now, &ierror, 8);
    ::stat("file.txt", &st);
    EXPECT_GT(st.st_mtime, 2000);
    pxfutime_(" file.txt", &two, &now, &ierror, 9);  // the empty path
    EXPECT_EQ(ierror, ENOENT);
    pxfutime_("file.txt", &two, &stat.handle, &ierror, 8);
    EXPECT_EQ(ierror, EINVAL);

    std::int32_t zero = 0, value = 0, name = _PC_NAME_MAX, fd = ::open(".", O_RDONLY);
    pxfpathconf_(".", &zero, &name, &value, &ierror, 1);
    EXPECT_EQ(value, 255);
    std::int32_t beyond = 2;
    errno = 0;
    pxfpathconf_(". ", &beyond, &name, &value, &ierror, 1);  // only this routine checks ILEN
    EXPECT_EQ(ierror, EINVAL);
    EXPECT_EQ(errno, EINVAL);
    std::int32_t none = _PC_SYMLINK_MAX, bad = -1;
    errno = EIO;
    pxffpathconf_(&fd, &none, &value, &ierror);  // no limit is not a failure
    EXPECT_EQ(value, -1);
    EXPECT_EQ(ierror, 0);
    pxffpathconf_(&fd, &bad, &value, &ierror);
    EXPECT_EQ(ierror, EINVAL);
    close(fd);
}

TEST_F(Files, NoDescriptorOrHandleIsLeft) {
    const int before = open_descriptors();
    std::int32_t ierror = 0, zero = 0, dir = 0, fd = 0;
    for (int i = 0; i < 3000; ++i) {
        fd = open_file("cycle", O_CREAT | O_RDWR, ierror);
        pxfclose_(&fd, &ierror);
        pxfopendir_(".", &zero, &dir, &ierror, 1);
        pxfclosedir_(&dir, &ierror);
        ASSERT_EQ(ierror, 0);
    }
    frame::testing::fail_allocations_after(1);  // the path is copied, the stream's block is not
    pxfopendir_(".", &zero, &dir, &ierror, 1);
    frame::testing::allow_allocations();
    EXPECT_EQ(ierror, TARVO_ENOHANDLE);
    EXPECT_EQ(dir, 0);
    EXPECT_EQ(open_descriptors(), before);
}

}  // namespace
