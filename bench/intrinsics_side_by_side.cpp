// Each library routine against the gfortran intrinsic doing the same job (gfortran_side.f90,
// compiled apart so that the intrinsic is really called) and against the raw C call, in one
// run: the three are timed in turn, in rotating order, for several rounds, and the medians
// per call are printed with the ratios library / intrinsic and library / C.
#include <fcntl.h>
#include <pwd.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include <tarvo/qq.h>

// The same Fortran loops around gfortran's intrinsics (g_*) and the library's routines (l_*).
#define BOTH_SIDES(name, ...) void g_##name(__VA_ARGS__); void l_##name(__VA_ARGS__);
extern "C" {
BOTH_SIDES(set_path, const char* text, int n)
int g_open(int unit, const char* text, int n, int mode);
void g_close(int unit);
#define TIMED(name) BOTH_SIDES(name, int n)
#define TIMED_UNIT(name) BOTH_SIDES(name, int n, int unit)
TIMED(access) TIMED(stat) TIMED(lstat) TIMED_UNIT(fstat) TIMED(getcwd) TIMED(time) TIMED(fdate)
TIMED(ctime) TIMED(ltime) TIMED(gmtime) TIMED(secnds) TIMED(etime) TIMED(dtime) TIMED(idate)
TIMED(itime) TIMED(getpid) TIMED(getuid) TIMED(hostnm) TIMED(getlog) TIMED(getenv)
TIMED_UNIT(fgetc) TIMED_UNIT(fputc) TIMED_UNIT(fseek) TIMED_UNIT(ftell) TIMED_UNIT(flush)
TIMED_UNIT(isatty) TIMED_UNIT(ttynam)
}

namespace {

using Loop = std::function<void(int)>;

struct Row {
    const char* name;
    Loop library, intrinsic, host;  // host may be empty
    double ns[3] = {};
};

template <class T>
void keep(const T& value) {
    asm volatile("" : : "g"(&value) : "memory");
}

double now_ns() {
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC, &t);
    return t.tv_sec * 1e9 + t.tv_nsec;
}

// Nanoseconds per call of n calls.
double per_call(const Loop& loop, int n) {
    const double start = now_ns();
    loop(n);
    return (now_ns() - start) / n;
}

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

const char kDir[] = "/tmp/tarvo-intrinsics-bench";
const char kRead[] = "/tmp/tarvo-intrinsics-bench/read";
const char kWrite[] = "/tmp/tarvo-intrinsics-bench/write";
const char kHostWrite[] = "/tmp/tarvo-intrinsics-bench/host-write";
constexpr std::int32_t kReadUnit = 41, kWriteUnit = 42, kTermUnit = 43;

}  // namespace

// intrinsics_bench [ROUNDS [ROUTINE...]]: every routine, or only those named.
int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::max(std::atoi(argv[1]), 1) : 7;
    const std::vector<std::string> only(argv + std::min(argc, 2), argv + argc);
    mkdir(kDir, 0755);
    if (chdir(kDir) != 0) return 1;
    {
        std::string block(1 << 20, 'a');
        const int fd = open(kRead, O_CREAT | O_TRUNC | O_WRONLY, 0644);
        if (fd < 0 || write(fd, block.data(), block.size()) != static_cast<ssize_t>(block.size())) return 1;
        close(fd);
    }
    g_set_path(kRead, sizeof kRead - 1);
    l_set_path(kRead, sizeof kRead - 1);
    if (g_open(kReadUnit, kRead, sizeof kRead - 1, 0) != 0) return 1;
    if (g_open(kWriteUnit, kWrite, sizeof kWrite - 1, 1) != 0) return 1;
    // A terminal for ISATTY and TTYNAM: a pseudo-terminal when one can be had.
    std::int32_t term_unit = kReadUnit;
    int term_fd = open(kRead, O_RDONLY);
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    if (master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0) {
        const char* slave = ptsname(master);
        if (slave != nullptr && g_open(kTermUnit, slave, static_cast<int>(std::strlen(slave)), 2) == 0) {
            term_unit = kTermUnit;
            term_fd = open(slave, O_RDWR | O_NOCTTY);
        }
    }
    const int read_fd = open(kRead, O_RDONLY);
    const int write_fd = open(kHostWrite, O_CREAT | O_TRUNC | O_WRONLY, 0644);
    const std::int32_t stime = 1000000000;

    std::vector<Row> rows;
    auto add = [&](const char* name, Loop library, Loop intrinsic, Loop host) {
        if (!only.empty() && std::find(only.begin(), only.end(), name) == only.end()) return;
        rows.push_back(Row{name, std::move(library), std::move(intrinsic), std::move(host)});
    };
    add("ACCESS", l_access, g_access,
        [&](int n) { for (int i = 0; i < n; ++i) keep(::access(kRead, R_OK)); });
    add("STAT", l_stat, g_stat,
        [&](int n) { struct stat st{}; for (int i = 0; i < n; ++i) keep(::stat(kRead, &st)); });
    add("LSTAT", l_lstat, g_lstat,
        [&](int n) { struct stat st{}; for (int i = 0; i < n; ++i) keep(::lstat(kRead, &st)); });
    add("FSTAT", [&](int n) { l_fstat(n, kReadUnit); }, [&](int n) { g_fstat(n, kReadUnit); },
        [&](int n) { struct stat st{}; for (int i = 0; i < n; ++i) keep(::fstat(read_fd, &st)); });
    add("GETCWD", l_getcwd, g_getcwd,
        [&](int n) { char d[1024]; for (int i = 0; i < n; ++i) keep(::getcwd(d, sizeof d)); });
    add("TIME", l_time, g_time,
        [&](int n) { for (int i = 0; i < n; ++i) keep(std::time(nullptr)); });
    add("FDATE", l_fdate, g_fdate,
        [&](int n) { char d[32]; for (int i = 0; i < n; ++i) { std::time_t t = std::time(nullptr); keep(ctime_r(&t, d)); } });
    add("CTIME", l_ctime, g_ctime,
        [&](int n) { char d[32]; std::time_t t = stime; for (int i = 0; i < n; ++i) keep(ctime_r(&t, d)); });
    add("LTIME", l_ltime, g_ltime,
        [&](int n) { std::tm tm{}; std::time_t t = stime; for (int i = 0; i < n; ++i) keep(localtime_r(&t, &tm)); });
    add("GMTIME", l_gmtime, g_gmtime,
        [&](int n) { std::tm tm{}; std::time_t t = stime; for (int i = 0; i < n; ++i) keep(gmtime_r(&t, &tm)); });
    add("SECNDS", l_secnds, g_secnds, {});
    add("ETIME", l_etime, g_etime,
        [&](int n) { rusage r{}; for (int i = 0; i < n; ++i) keep(getrusage(RUSAGE_SELF, &r)); });
    add("DTIME", l_dtime, g_dtime,
        [&](int n) { rusage r{}; for (int i = 0; i < n; ++i) keep(getrusage(RUSAGE_SELF, &r)); });
    add("IDATE", l_idate, g_idate,
        [&](int n) { std::tm tm{}; for (int i = 0; i < n; ++i) { std::time_t t = std::time(nullptr); keep(localtime_r(&t, &tm)); } });
    add("ITIME", l_itime, g_itime,
        [&](int n) { std::tm tm{}; for (int i = 0; i < n; ++i) { std::time_t t = std::time(nullptr); keep(localtime_r(&t, &tm)); } });
    add("GETPID", l_getpid, g_getpid,
        [&](int n) { for (int i = 0; i < n; ++i) keep(::getpid()); });
    add("GETUID", l_getuid, g_getuid,
        [&](int n) { for (int i = 0; i < n; ++i) keep(::getuid()); });
    add("HOSTNM", l_hostnm, g_hostnm,
        [&](int n) { char h[256]; for (int i = 0; i < n; ++i) keep(gethostname(h, sizeof h)); });
    add("GETLOG", l_getlog, g_getlog,
        [&](int n) {
            char buffer[1024];
            passwd pw{}, *found = nullptr;
            for (int i = 0; i < n; ++i) keep(getpwuid_r(::getuid(), &pw, buffer, sizeof buffer, &found));
        });
    add("GETENV", l_getenv, g_getenv,
        [&](int n) {
            char v[256];
            for (int i = 0; i < n; ++i) {
                const char* s = std::getenv("HOME");
                const std::size_t k = s != nullptr ? std::strlen(s) : 0;
                std::memcpy(v, s, k);
                std::memset(v + k, ' ', sizeof v - k);
                keep(v);
            }
        });
    add("FGETC", [&](int n) { l_fgetc(n, kReadUnit); }, [&](int n) { g_fgetc(n, kReadUnit); },
        [&](int n) { char c; for (int i = 0; i < n; ++i) if (read(read_fd, &c, 1) != 1) lseek(read_fd, 0, SEEK_SET); });
    add("FPUTC", [&](int n) { l_fputc(n, kWriteUnit); }, [&](int n) { g_fputc(n, kWriteUnit); },
        [&](int n) { for (int i = 0; i < n; ++i) keep(write(write_fd, "x", 1)); });
    add("FSEEK", [&](int n) { l_fseek(n, kReadUnit); }, [&](int n) { g_fseek(n, kReadUnit); },
        [&](int n) { for (int i = 0; i < n; ++i) keep(lseek(read_fd, 7, SEEK_SET)); });
    add("FTELL", [&](int n) { l_ftell(n, kReadUnit); }, [&](int n) { g_ftell(n, kReadUnit); },
        [&](int n) { for (int i = 0; i < n; ++i) keep(lseek(read_fd, 0, SEEK_CUR)); });
    add("FLUSH", [&](int n) { l_flush(n, kWriteUnit); }, [&](int n) { g_flush(n, kWriteUnit); }, {});
    add("ISATTY", [&](int n) { l_isatty(n, term_unit); }, [&](int n) { g_isatty(n, term_unit); },
        [&](int n) { for (int i = 0; i < n; ++i) keep(::isatty(term_fd)); });
    add("TTYNAM", [&](int n) { l_ttynam(n, term_unit); }, [&](int n) { g_ttynam(n, term_unit); },
        [&](int n) { char t[64]; for (int i = 0; i < n; ++i) keep(ttyname_r(term_fd, t, sizeof t)); });
    // No intrinsic: against the working directory and a concatenation.
    add("FULLPATHQQ", [&](int n) { char p[1024]; for (int i = 0; i < n; ++i) keep(fullpathqq_("no-such-name", p, 12, sizeof p)); },
        {}, [&](int n) {
            char p[1024];
            for (int i = 0; i < n; ++i) {
                if (::getcwd(p, sizeof p) == nullptr) continue;
                const std::size_t k = std::strlen(p);
                p[k] = '/';
                std::memcpy(p + k + 1, "no-such-name", 13);
                keep(p);
            }
        });

    // Calls per sample: about two milliseconds each.
    std::vector<int> calls;
    for (Row& row : rows) {
        const Loop& probe = row.library;
        probe(16);
        const double ns = std::max(per_call(probe, 64), 1.0);
        calls.push_back(std::clamp(static_cast<int>(2e6 / ns), 16, 2000000));
    }
    std::vector<std::vector<double>> samples(rows.size() * 3);
    for (int round = 0; round < rounds; ++round)
        for (std::size_t r = 0; r < rows.size(); ++r)
            for (int k = 0; k < 3; ++k) {
                const int which = (k + round) % 3;  // rotating order
                const Loop* loops[] = {&rows[r].library, &rows[r].intrinsic, &rows[r].host};
                if (*loops[which]) samples[r * 3 + which].push_back(per_call(*loops[which], calls[r]));
            }
    std::printf("%-11s %10s %10s %10s %9s %9s\n", "routine", "library", "gfortran", "C", "lib/gf", "lib/C");
    for (std::size_t r = 0; r < rows.size(); ++r) {
        double m[3];
        for (int k = 0; k < 3; ++k) m[k] = samples[r * 3 + k].empty() ? 0 : median(samples[r * 3 + k]);
        std::printf("%-11s %10.1f ", rows[r].name, m[0]);
        for (int k = 1; k < 3; ++k) m[k] > 0 ? std::printf("%10.1f ", m[k]) : std::printf("%10s ", "-");
        for (int k = 1; k < 3; ++k) m[k] > 0 ? std::printf("%9.2f ", m[0] / m[k]) : std::printf("%9s ", "-");
        std::printf("\n");
    }
    std::printf("(ns per call, medians of %d interleaved rounds)\n", rounds);
    g_close(kReadUnit);
    g_close(kWriteUnit);
    if (term_unit == kTermUnit) g_close(kTermUnit);
    unlink(kRead);
    unlink(kWrite);
    unlink(kHostWrite);
    rmdir(kDir);
    return 0;
}
