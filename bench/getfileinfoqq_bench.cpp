// Listing a directory by wildcard: GETFILEINFOQQI8 against a plain readdir + fnmatch + stat
// loop over the same 100,000-entry directory, and the wildcard rule against fnmatch on a
// typical and on a worst-case pair. Prints the medians and their ratios.
#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <fnmatch.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "bench/medians.h"
#include "qq/qq.h"
#include <tarvo/qq.h>

namespace {

constexpr int kEntries = 100000;
std::string directory;

void make_directory() {
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") + "/tarvo-bench-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) std::exit(1);
    directory = pattern;
    char name[32];
    for (int i = 0; i < kEntries; ++i) {
        std::snprintf(name, sizeof name, "/f%06d.%s", i, i % 2 == 0 ? "dat" : "txt");
        const int fd = open((directory + name).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
        if (fd < 0) std::exit(1);
        close(fd);
    }
}

void remove_directory() {
    DIR* stream = opendir(directory.c_str());
    while (const dirent* entry = readdir(stream))
        if (entry->d_name[0] != '.') unlinkat(dirfd(stream), entry->d_name, 0);
    closedir(stream);
    rmdir(directory.c_str());
}

void getfileinfoqqi8(benchmark::State& state) {
    const std::string files = directory + "/*.dat";
    for (auto _ : state) {
        tarvo_file_info_i8 record;
        std::intptr_t handle = -1;
        std::int64_t bytes = 0;
        int found = 0;
        while (getfileinfoqqi8_(files.data(), &record, &handle, files.size()) > 0) {
            bytes += record.length;
            ++found;
        }
        if (found != kEntries / 2 || handle != -2) state.SkipWithError("wrong number of matches");
        benchmark::DoNotOptimize(bytes);
    }
}

void readdir_fnmatch_stat(benchmark::State& state) {
    for (auto _ : state) {
        DIR* stream = opendir(directory.c_str());
        std::int64_t bytes = 0;
        int found = 0;
        char full[qq::kJoinedSize];
        while (const dirent* entry = readdir(stream)) {
            if (fnmatch("*.dat", entry->d_name, 0) != 0) continue;
            std::snprintf(full, sizeof full, "%s/%s", directory.c_str(), entry->d_name);
            struct stat st;
            if (stat(full, &st) != 0) continue;
            bytes += st.st_size;
            ++found;
        }
        closedir(stream);
        if (found != kEntries / 2) state.SkipWithError("wrong number of matches");
        benchmark::DoNotOptimize(bytes);
    }
}

struct Pair {
    std::string name, pattern;
};
Pair typical() { return {"results-2024-06-11.dat", "results-*.dat"}; }
// A 255-character name of one letter against a long segment that almost matches at every
// place: the most comparisons the rule can need (name length times pattern length).
Pair worst() { return {std::string(255, 'a'), "*" + std::string(126, 'a') + "b*"}; }

template <Pair (*make)()>
void pattern_match(benchmark::State& state) {
    const Pair pair = make();
    for (auto _ : state) benchmark::DoNotOptimize(qq::patternMatch(pair.name.c_str(), pair.pattern.c_str()));
}

template <Pair (*make)()>
void fnmatch_pair(benchmark::State& state) {
    const Pair pair = make();
    for (auto _ : state) benchmark::DoNotOptimize(fnmatch(pair.pattern.c_str(), pair.name.c_str(), 0));
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    make_directory();
    const struct {
        const char* name;
        void (*fn)(benchmark::State&);
        bool slow;
    } cases[] = {
        {"getfileinfoqqi8", getfileinfoqqi8, true},
        {"readdir_fnmatch_stat", readdir_fnmatch_stat, true},
        {"patternMatch_typical", pattern_match<typical>, false},
        {"fnmatch_typical", fnmatch_pair<typical>, false},
        {"patternMatch_worst", pattern_match<worst>, false},
        {"fnmatch_worst", fnmatch_pair<worst>, false},
    };
    for (const auto& c : cases) {
        auto* b = benchmark::RegisterBenchmark(c.name, c.fn)->Repetitions(9)->ReportAggregatesOnly(true);
        if (c.slow) b->Iterations(1)->Unit(benchmark::kMillisecond);
    }
    tarvo_bench::MedianReporter reporter(benchmark::ConsoleReporter::OO_None);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    remove_directory();
    const struct {
        const char* measured;
        const char* baseline;
    } ratios[] = {{"getfileinfoqqi8", "readdir_fnmatch_stat"},
                  {"patternMatch_typical", "fnmatch_typical"},
                  {"patternMatch_worst", "fnmatch_worst"}};
    for (const auto& r : ratios) {
        const double a = reporter.medians[r.measured], b = reporter.medians[r.baseline];
        if (a > 0 && b > 0) std::printf("ratio %s / %s (medians): %.2f\n", r.measured, r.baseline, a / b);
    }
    benchmark::Shutdown();
    return 0;
}
