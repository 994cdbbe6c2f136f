// The classic routines against the host calls they wrap, measured in the same run. Each
// pair prints its median times and the ratio routine / host call at the end.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <map>
#include <string>

#include "runtime/units.h"
#include <tarvo/portlib.h>

extern char** environ;

namespace {

const char kFile[] = "/tmp/tarvo-classic-bench";
constexpr std::int32_t kUnit = 40;

void BM_stat(benchmark::State& state) {
    std::int32_t statb[13];
    for (auto _ : state) benchmark::DoNotOptimize(stat_(kFile, statb, sizeof kFile - 1));
}
void BM_host_stat(benchmark::State& state) {
    struct stat st {};
    for (auto _ : state) benchmark::DoNotOptimize(::stat(kFile, &st));
}

void BM_getenv(benchmark::State& state) {
    char value[256];
    for (auto _ : state) {
        getenv_("HOME", value, 4, sizeof value);
        benchmark::DoNotOptimize(value);
    }
}
void BM_host_getenv(benchmark::State& state) {
    char value[256];
    for (auto _ : state) {
        const char* v = std::getenv("HOME");
        const std::size_t n = v != nullptr ? std::strlen(v) : 0;
        std::memcpy(value, v, n);
        std::memset(value + n, ' ', sizeof value - n);
        benchmark::DoNotOptimize(value);
    }
}

// One pass over the environment for a pattern, until the blank answer.
void BM_scanenv(benchmark::State& state) {
    char name[128], value[256];
    for (auto _ : state) {
        scanenv_("X", name, value, 1, sizeof name, sizeof value);  // another pattern restarts the scan
        do scanenv_("LC_", name, value, 3, sizeof name, sizeof value);
        while (name[0] != ' ');
    }
}
// The same answers by hand: a pass for "X", a pass copying the "LC_" matches out.
void BM_host_scanenv(benchmark::State& state) {
    char name[128], value[256];
    for (auto _ : state) {
        for (char** e = environ; *e != nullptr; ++e) benchmark::DoNotOptimize(std::strncmp(*e, "X", 1));
        for (char** e = environ; *e != nullptr; ++e) {
            if (std::strncmp(*e, "LC_", 3) != 0) continue;
            const char* equals = std::strchr(*e, '=');
            std::memset(name, ' ', sizeof name);
            std::memset(value, ' ', sizeof value);
            std::memcpy(name, *e, static_cast<std::size_t>(equals - *e));
            std::memcpy(value, equals + 1, std::strlen(equals + 1));
            benchmark::DoNotOptimize(name);
        }
    }
}

void BM_fgetc(benchmark::State& state) {
    char ch;
    const std::int32_t zero = 0;
    std::int64_t n = 0;
    for (auto _ : state) {
        if (fgetc_(&kUnit, &ch, 1) != 0) fseek_(&kUnit, &zero, &zero);
        ++n;
    }
    benchmark::DoNotOptimize(n);
}
void BM_host_fgetc(benchmark::State& state) {
    const int fd = open(kFile, O_RDONLY);
    char ch;
    for (auto _ : state)
        if (read(fd, &ch, 1) != 1) lseek(fd, 0, SEEK_SET);
    close(fd);
}

void BM_fdate(benchmark::State& state) {
    char text[24];
    for (auto _ : state) {
        fdate_(text, sizeof text);
        benchmark::DoNotOptimize(text);
    }
}
void BM_host_fdate(benchmark::State& state) {
    for (auto _ : state) {
        const std::time_t now = std::time(nullptr);
        benchmark::DoNotOptimize(std::ctime(&now));
    }
}

void BM_ltime(benchmark::State& state) {
    std::int32_t stime = 1000000000, tarray[9];
    for (auto _ : state) {
        ltime_(&stime, tarray);
        benchmark::DoNotOptimize(tarray);
    }
}
void BM_host_ltime(benchmark::State& state) {
    std::time_t t = 1000000000;
    for (auto _ : state) benchmark::DoNotOptimize(std::localtime(&t));
}

void BM_etime(benchmark::State& state) {
    float tarray[2];
    for (auto _ : state) benchmark::DoNotOptimize(etime_(tarray));
}
void BM_host_etime(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(std::clock());
}

#define PAIR(name)                                                               \
    BENCHMARK(BM_##name)->Repetitions(9)->ReportAggregatesOnly(true);            \
    BENCHMARK(BM_host_##name)->Repetitions(9)->ReportAggregatesOnly(true)
PAIR(stat);
PAIR(getenv);
PAIR(scanenv);
PAIR(fgetc);
PAIR(fdate);
PAIR(ltime);
PAIR(etime);

// Collects the medians and prints routine / host call for every pair.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs)
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median")
                medians_[run.run_name.function_name] = run.GetAdjustedRealTime();
    }
    void Finalize() override {
        ConsoleReporter::Finalize();
        std::printf("\n%-10s %14s %14s %8s\n", "routine", "median ns", "host ns", "ratio");
        for (const auto& [name, ns] : medians_) {
            if (name.rfind("BM_host_", 0) == 0) continue;
            const auto host = medians_.find("BM_host_" + name.substr(3));
            if (host == medians_.end()) continue;
            std::printf("%-10s %14.1f %14.1f %8.2f\n", name.substr(3).c_str(), ns, host->second, ns / host->second);
        }
    }

private:
    std::map<std::string, double> medians_;
};

}  // namespace

int main(int argc, char** argv) {
    const int fd = open(kFile, O_CREAT | O_TRUNC | O_RDWR, 0644);
    if (fd < 0 || write(fd, "0123456789abcdef", 16) != 16) return 1;
    const int unit_fd = open(kFile, O_RDONLY);
    if (runtime::for_fdopen(unit_fd, kUnit, "r", 1) != 0) return 1;
    setenv("LC_TARVO_A", "1", 1);
    setenv("LC_TARVO_B", "2", 1);
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    close(fd);
    unlink(kFile);
    return 0;
}
