// System information, time and file control through the binding.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <map>
#include <regex>

#include "posix/pxf_support.h"

namespace {

using namespace pxf_test;
using std::tuple;

class SystemFiles : public tarvo_test::ScratchDirTest {};

TEST(SystemInfo, UnameEqualsTheHostsAndHandlesAreChecked) {
    Instance names("utsname"), other("tms");
    ASSERT_EQ(ierror_of(pxfuname_, &names.handle, kIerror), 0);
    utsname host;
    ASSERT_EQ(uname(&host), 0);
    EXPECT_EQ(VALUES(text_of(names.handle, "sysname"), text_of(names.handle, "nodename"),
                     text_of(names.handle, "release"), text_of(names.handle, "version"),
                     text_of(names.handle, "machine")),
              tuple(std::string(host.sysname), std::string(host.nodename), std::string(host.release),
                    std::string(host.version), std::string(host.machine)));
    std::int32_t none = 0, itime = 0;
    EXPECT_EQ(VALUES(ierror_of(pxfuname_, &none, kIerror), ierror_of(pxfuname_, &other.handle, kIerror),
                     ierror_of(pxftimes_, &names.handle, &itime, kIerror)),
              tuple(TARVO_ENOHANDLE, EINVAL, EINVAL));
}

TEST(SystemInfo, ClockAndProcessTimes) {
    std::int32_t now = 0, ticks = 0, ierror = 7;
    const auto before = static_cast<std::int32_t>(time(nullptr));
    ASSERT_EQ(ierror_of(pxftime_, &now, kIerror), 0);
    EXPECT_TRUE(now >= before && now <= static_cast<std::int32_t>(time(nullptr)));
    pxftime_(nullptr, &ierror);
    EXPECT_EQ(ierror, -1);
    Instance times("tms");
    std::int64_t user = -1, children = -1;
    EXPECT_EQ(VALUES(ierror_of(pxftimes_, &times.handle, &ticks, kIerror), get(times.handle, "tms_utime", user),
                     get(times.handle, "tms_cutime", children)),
              tuple(0, 0, 0));
    EXPECT_TRUE(user >= 0 && children >= 0);
}

TEST(SystemInfo, LocalTimeFollowsTheZoneNamedNow) {
    const char* saved = getenv("TZ");
    const std::string old = saved != nullptr ? saved : "";
    const auto local = [](std::int32_t seconds, const char* zone) {
        setenv("TZ", zone, 1);
        std::vector<std::int32_t> fields(9, -1);
        EXPECT_EQ(ierror_of(pxflocaltime_, &seconds, fields.data(), kIerror), 0);
        return fields;
    };
    using V = std::vector<std::int32_t>;
    EXPECT_EQ(local(0, "UTC0"), (V{0, 0, 0, 1, 1, 1970, 4, 1, 0}));
    EXPECT_EQ(local(1735689599, "UTC0"), (V{59, 59, 23, 31, 12, 2024, 2, 366, 0}));  // leap year's last day
    EXPECT_EQ(local(-1, "UTC0"), (V{59, 59, 23, 31, 12, 1969, 3, 365, 0}));           // widened with its sign
    EXPECT_EQ(local(0, "CET-1CEST,M3.5.0,M10.5.0/3")[2], 1);
    EXPECT_EQ(local(15552000, "CET-1CEST,M3.5.0,M10.5.0/3"), (V{0, 0, 2, 30, 6, 1970, 2, 181, 1}));
    if (saved != nullptr) setenv("TZ", old.c_str(), 1);
    else unsetenv("TZ");
}

TEST(SystemInfo, SysconfValuesAndFailures) {
    std::int32_t open_max = _SC_OPEN_MAX, unknown = 9999, zone = _SC_TZNAME_MAX, value = 0;
    EXPECT_EQ(VALUES(ierror_of(pxfsysconf_, &open_max, &value, kIerror), value),
              tuple(0, static_cast<std::int32_t>(sysconf(_SC_OPEN_MAX))));
    value = 42;
    EXPECT_EQ(VALUES(ierror_of(pxfsysconf_, &unknown, &value, kIerror), value), tuple(EINVAL, 42));
    ASSERT_EQ(sysconf(_SC_TZNAME_MAX), -1);  // glibc: no limit
    errno = EDOM;  // left as it is: a value without a limit is reported with it
    EXPECT_EQ(VALUES(ierror_of(pxfsysconf_, &zone, &value, kIerror), value), tuple(EDOM, 42));
}

TEST_F(SystemFiles, FifoAndOwnerByPathRule) {
    std::int32_t zero = 0, mode = 0640, nobody = 65534, keep = -1;
    EXPECT_EQ(ierror_of(pxfmkfifo_, "pipe   ", &zero, &mode, kIerror, 7), 0);
    struct stat st;
    ASSERT_EQ(lstat("pipe", &st), 0);
    EXPECT_TRUE(S_ISFIFO(st.st_mode));
    EXPECT_EQ(ierror_of(pxfmkfifo_, "pipe", &zero, &mode, kIerror, 4), EEXIST);
    write_file("file", "x");
    std::int32_t four = 4;
    EXPECT_EQ(ierror_of(pxfchown_, "fileXXXX", &four, &nobody, &keep, kIerror, 8), 0);  // ILEN 4: "file"
    ASSERT_EQ(stat("file", &st), 0);
    EXPECT_EQ(VALUES(st.st_uid, st.st_gid), tuple(uid_t{65534}, getgid()));
    EXPECT_EQ(ierror_of(pxfchown_, "missing", &zero, &nobody, &nobody, kIerror, 7), ENOENT);
}

TEST_F(SystemFiles, FcntlArgumentByCommand) {
    write_file("data", "0123456789");
    const int fd = open("data", O_RDWR);
    std::int32_t ifd = fd, out = -1, get_fl = F_GETFL, set_fl = F_SETFL, nonblock = O_RDWR | O_NONBLOCK;
    std::int32_t dupfd = F_DUPFD, fifty = 50, get_fd = F_GETFD, set_fd = F_SETFD, cloexec = FD_CLOEXEC, any = 0;
    EXPECT_EQ(VALUES(ierror_of(pxffcntl_, &ifd, &set_fl, &nonblock, &out, kIerror),
                     ierror_of(pxffcntl_, &ifd, &get_fl, &any, &out, kIerror), out & O_NONBLOCK),
              tuple(0, 0, O_NONBLOCK));
    EXPECT_EQ(VALUES(ierror_of(pxffcntl_, &ifd, &dupfd, &fifty, &out, kIerror), out >= 50), tuple(0, true));
    close(out);
    EXPECT_EQ(VALUES(ierror_of(pxffcntl_, &ifd, &set_fd, &cloexec, &out, kIerror),
                     ierror_of(pxffcntl_, &ifd, &get_fd, &any, &out, kIerror), out),
              tuple(0, 0, FD_CLOEXEC));
    std::int32_t bad = -1;
    EXPECT_EQ(VALUES(ierror_of(pxffcntl_, &bad, &get_fl, &any, &out, kIerror), out), tuple(EBADF, -1));

    // A lock command takes a "flock" handle, nothing else.
    Instance attrs("termios");
    std::int32_t getlk = F_GETLK, none = 0;
    out = 5;
    EXPECT_EQ(VALUES(ierror_of(pxffcntl_, &ifd, &getlk, &none, &out, kIerror), out), tuple(TARVO_ENOHANDLE, 5));
    EXPECT_EQ(ierror_of(pxffcntl_, &ifd, &getlk, &attrs.handle, &out, kIerror), EINVAL);
    close(fd);
}

TEST_F(SystemFiles, LockConflictNamesTheChildHoldingIt) {
    write_file("data", "0123456789");
    int ready[2], done[2];
    ASSERT_EQ(pipe(ready) | pipe(done), 0);
    const pid_t child = fork();
    if (child == 0) {
        const int fd = open("data", O_RDWR);
        struct flock lock{};
        lock.l_type = F_WRLCK;
        lock.l_start = 2;
        lock.l_len = 3;
        char c = fcntl(fd, F_SETLK, &lock) == 0 ? 'y' : 'n';
        (void)!write(ready[1], &c, 1);
        (void)!read(done[0], &c, 1);
        _exit(0);
    }
    char c = 0;
    ASSERT_EQ(read(ready[0], &c, 1), 1);
    ASSERT_EQ(c, 'y');

    Instance lock("flock");
    std::int32_t ifd = open("data", O_RDWR), getlk = F_GETLK, setlk = F_SETLK, out = 0;
    const auto ask = [&](std::int32_t type, std::int64_t start, std::int64_t len) {
        set(lock.handle, "l_type", type);
        set(lock.handle, "l_whence", std::int32_t{SEEK_SET});
        set(lock.handle, "l_start", start);
        set(lock.handle, "l_len", len);
        set(lock.handle, "l_pid", std::int32_t{0});
    };
    const auto members = [&] {
        std::int32_t type = -1, pid = -1;
        std::int64_t start = -1, len = -1;
        get(lock.handle, "l_type", type);
        get(lock.handle, "l_pid", pid);
        get(lock.handle, "l_start", start);
        get(lock.handle, "l_len", len);
        return tuple(type, start, len, pid);
    };
    ask(F_RDLCK, 0, 0);
    EXPECT_EQ(VALUES(ierror_of(pxffcntl_, &ifd, &getlk, &lock.handle, &out, kIerror), out, members()),
              tuple(0, 0, tuple(std::int32_t{F_WRLCK}, std::int64_t{2}, std::int64_t{3}, std::int32_t{child})));
    ask(F_WRLCK, 5, 4);  // beside the child's range: no conflict
    EXPECT_EQ(VALUES(ierror_of(pxffcntl_, &ifd, &getlk, &lock.handle, &out, kIerror), std::get<0>(members())),
              tuple(0, std::int32_t{F_UNLCK}));
    ask(F_WRLCK, 0, 3);
    const std::int32_t refused = ierror_of(pxffcntl_, &ifd, &setlk, &lock.handle, &out, kIerror);
    EXPECT_TRUE((refused == EAGAIN || refused == EACCES) && out == -1) << refused;
    (void)!write(done[1], &c, 1);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(ierror_of(pxffcntl_, &ifd, &setlk, &lock.handle, &out, kIerror), 0);
    close(ifd);
    for (int fd : {ready[0], ready[1], done[0], done[1]}) close(fd);
}

// The Fortran module's named constants carry the host's values.
TEST(FortranConstants, EqualTheHostsValues) {
    const std::map<std::string, int> host = {
        {"F_RDLCK", F_RDLCK},   {"F_WRLCK", F_WRLCK},     {"F_UNLCK", F_UNLCK},     {"TCSANOW", TCSANOW},
        {"TCSADRAIN", TCSADRAIN}, {"TCSAFLUSH", TCSAFLUSH}, {"TCIFLUSH", TCIFLUSH},   {"TCOFLUSH", TCOFLUSH},
        {"TCIOFLUSH", TCIOFLUSH}, {"TCOOFF", TCOOFF},       {"TCOON", TCOON},         {"TCIOFF", TCIOFF},
        {"TCION", TCION}};
    std::string source = __FILE__;
    source = source.substr(0, source.rfind("tests/unit/")) + "fortran/posix_system.inc";
    std::ifstream in(source);
    ASSERT_TRUE(in) << source;
    std::map<std::string, int> declared;
    const std::regex assignment(R"(([A-Z_]+) = (-?\d+))");
    for (std::string line; std::getline(in, line);)
        if (line.find("parameter ::") != std::string::npos)
            for (std::sregex_iterator m(line.begin(), line.end(), assignment), end; m != end; ++m)
                declared[(*m)[1]] = std::stoi((*m)[2]);
    EXPECT_EQ(declared, host);
}

}  // namespace
