// System information, time and file control through the binding.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <map>
#include <regex>

#include "posix/pxf_support.h"

namespace {

using namespace pxf_test;
using std::tuple;

class SystemFiles : public tarvo_test::ScratchDirTest {};

TEST(SystemInfo, UnameEqualsTheHostsAndHandlesAreChecked) {
    Instance names("utsname");
    utsname host;
    ASSERT_EQ(VALUES(ierror_of(pxfuname_, &names.handle, kIerror), uname(&host)), tuple(0, 0));
    EXPECT_EQ(VALUES(text_of(names.handle, "sysname"), text_of(names.handle, "nodename"),
                     text_of(names.handle, "release"), text_of(names.handle, "version"),
                     text_of(names.handle, "machine")),
              tuple(std::string(host.sysname), std::string(host.nodename), std::string(host.release),
                    std::string(host.version), std::string(host.machine)));
    std::int32_t itime = 0, ierror = 7;
    EXPECT_EQ(ierror_of(pxftimes_, &names.handle, &itime, kIerror), EINVAL);
    pxftime_(nullptr, &ierror);  // ITIME absent
    EXPECT_EQ(ierror, -1);
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
    errno = EDOM;                            // reported as it is
    EXPECT_EQ(VALUES(ierror_of(pxfsysconf_, &zone, &value, kIerror), value), tuple(EDOM, 42));
}

TEST_F(SystemFiles, FifoAndOwnerByThePathRule) {
    std::int32_t zero = 0, four = 4, mode = 0640, nobody = 65534, keep = -1;
    write_file("file", "x");
    struct stat fifo, file;
    EXPECT_EQ(VALUES(ierror_of(pxfmkfifo_, "pipe   ", &zero, &mode, kIerror, 7), lstat("pipe", &fifo),
                     S_ISFIFO(fifo.st_mode), ierror_of(pxfmkfifo_, "pipe", &zero, &mode, kIerror, 4)),
              tuple(0, 0, true, EEXIST));
    EXPECT_EQ(VALUES(ierror_of(pxfchown_, "fileXXXX", &four, &nobody, &keep, kIerror, 8), stat("file", &file),
                     file.st_uid, file.st_gid, ierror_of(pxfchown_, "missing", &zero, &nobody, &nobody, kIerror, 7)),
              tuple(0, 0, uid_t{65534}, getgid(), ENOENT));
}

TEST_F(SystemFiles, FcntlTakesItsArgumentByCommand) {
    write_file("data", "0123456789");
    std::int32_t fd = open("data", O_RDWR), out = -1, get_fl = F_GETFL, set_fl = F_SETFL, dupfd = F_DUPFD;
    std::int32_t nonblock = O_RDWR | O_NONBLOCK, fifty = 50, any = 0, getlk = F_GETLK, none = 0;
    EXPECT_EQ(VALUES(ierror_of(pxffcntl_, &fd, &set_fl, &nonblock, &out, kIerror),
                     ierror_of(pxffcntl_, &fd, &get_fl, &any, &out, kIerror), out & O_NONBLOCK),
              tuple(0, 0, O_NONBLOCK));
    EXPECT_EQ(VALUES(ierror_of(pxffcntl_, &fd, &dupfd, &fifty, &out, kIerror), out >= 50), tuple(0, true));
    close(out);
    // A lock command takes a "flock" handle and nothing else; alone, a process sees no conflict.
    Instance lock("flock"), attrs("termios");
    set(lock.handle, "l_type", std::int32_t{F_WRLCK});
    out = 5;
    EXPECT_EQ(VALUES(ierror_of(pxffcntl_, &fd, &getlk, &none, &out, kIerror), out,
                     ierror_of(pxffcntl_, &fd, &getlk, &attrs.handle, &out, kIerror)),
              tuple(TARVO_ENOHANDLE, 5, EINVAL));
    std::int32_t type = -1;
    EXPECT_EQ(VALUES(ierror_of(pxffcntl_, &fd, &getlk, &lock.handle, &out, kIerror), get(lock.handle, "l_type", type),
                     type),
              tuple(0, 0, std::int32_t{F_UNLCK}));
    close(fd);
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
