// The file routines against the raw C library loops they wrap, measured in the same run:
//   status:  PXFSTAT + PXFINT8GET(st_size) per file, against stat();
//   listing: a 100,000-entry directory read with PXFREADDIR + PXFSTRGET(d_name), against
//            readdir() reading each name's length.
// Names are passed as a Fortran program passes them: blank-padded CHARACTER variables with
// ILEN 0. Prints the medians per file or entry and the ratios (the target is at most 1.3).
#include <dirent.h>
#include <fcntl.h>
#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <tarvo/posix.h>

#include "bench/medians.h"

namespace {

constexpr int kStatFiles = 1000;
constexpr int kListEntries = 100000;
constexpr std::size_t kFortranPath = 256;  // CHARACTER*256, a common path variable

struct Tree {
    std::string root;
    std::vector<std::string> files;          // terminated paths of the status files
    std::vector<std::string> fortran_files;  // the same, blank padded
    std::string listing;                     // the directory of kListEntries entries
};

void touch(const std::string& path, std::size_t size) {
    const int fd = open(path.c_str(), O_CREAT | O_WRONLY, 0644);
    if (fd < 0 || ftruncate(fd, static_cast<off_t>(size)) != 0) std::abort();
    close(fd);
}

Tree make_tree() {
    Tree t;
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") + "/pxf-files-bench-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) std::abort();
    t.root = pattern;
    for (int i = 0; i < kStatFiles; ++i) {
        t.files.push_back(t.root + "/file" + std::to_string(i));
        touch(t.files.back(), static_cast<std::size_t>(i));
        t.fortran_files.push_back(t.files.back());
        t.fortran_files.back().resize(kFortranPath, ' ');
    }
    t.listing = t.root + "/listing";
    if (mkdir(t.listing.c_str(), 0755) != 0) std::abort();
    for (int i = 0; i < kListEntries; ++i) touch(t.listing + "/entry-" + std::to_string(i), 0);
    return t;
}

Tree& tree() {
    static Tree t = make_tree();
    return t;
}

void BM_pxfstat(benchmark::State& state) {
    const Tree& t = tree();
    std::int32_t jstat = 0, ierror = 0, zero = 0;
    pxfstructcreate_("stat", &jstat, &ierror, 4);
    std::size_t i = 0;
    for (auto _ : state) {
        const std::string& name = t.fortran_files[i];
        std::int64_t size = -1;
        pxfstat_(name.data(), &zero, &jstat, &ierror, name.size());
        pxfint8get_(&jstat, "st_size", &size, &ierror, 7);
        benchmark::DoNotOptimize(size);
        if (++i == t.files.size()) i = 0;
    }
    pxfstructfree_(&jstat, &ierror);
    state.SetItemsProcessed(state.iterations());
}

void BM_stat(benchmark::State& state) {
    const Tree& t = tree();
    std::size_t i = 0;
    for (auto _ : state) {
        struct stat st;
        stat(t.files[i].c_str(), &st);
        benchmark::DoNotOptimize(st.st_size);
        if (++i == t.files.size()) i = 0;
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_pxfreaddir(benchmark::State& state) {
    std::string dir = tree().listing;
    dir.resize(kFortranPath, ' ');
    std::int32_t jdirent = 0, idirid = 0, ierror = 0, zero = 0, ilen = 0;
    pxfstructcreate_("dirent", &jdirent, &ierror, 6);
    char name[kFortranPath];
    std::int64_t entries = 0;
    for (auto _ : state) {
        pxfopendir_(dir.data(), &zero, &idirid, &ierror, dir.size());
        for (;;) {
            pxfreaddir_(&idirid, &jdirent, &ierror);
            if (ierror != 0) break;
            pxfstrget_(&jdirent, "d_name", name, &ilen, &ierror, 6, sizeof name);
            benchmark::DoNotOptimize(ilen);
            ++entries;
        }
        pxfclosedir_(&idirid, &ierror);
    }
    pxfstructfree_(&jdirent, &ierror);
    state.SetItemsProcessed(entries);
}

void BM_readdir(benchmark::State& state) {
    const std::string& dir = tree().listing;
    std::int64_t entries = 0;
    for (auto _ : state) {
        DIR* stream = opendir(dir.c_str());
        while (const dirent* entry = readdir(stream)) {
            benchmark::DoNotOptimize(std::strlen(entry->d_name));
            ++entries;
        }
        closedir(stream);
    }
    state.SetItemsProcessed(entries);
}

BENCHMARK(BM_pxfstat)->Repetitions(25)->MinTime(0.1)->ReportAggregatesOnly(true);
BENCHMARK(BM_stat)->Repetitions(25)->MinTime(0.1)->ReportAggregatesOnly(true);
BENCHMARK(BM_pxfreaddir)->Repetitions(9)->ReportAggregatesOnly(true)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_readdir)->Repetitions(9)->ReportAggregatesOnly(true)->Unit(benchmark::kMillisecond);

void print_ratio(const char* what, double ours, double raw, double per, const char* unit) {
    if (ours > 0 && raw > 0)
        std::printf("%-8s %8.1f ns per %s through the binding, %8.1f ns raw: ratio %.2f\n", what, ours * per,
                    unit, raw * per, ours / raw);
}

}  // namespace

int main(int argc, char** argv) {
    // Repetitions of the routine and of its baseline alternate, so that a change of load on
    // the machine during the run weighs on both alike.
    std::vector<char*> args(argv, argv + argc);
    char interleave[] = "--benchmark_enable_random_interleaving=true";
    args.insert(args.begin() + 1, interleave);
    int count = static_cast<int>(args.size());
    benchmark::Initialize(&count, args.data());
    tree();  // made before any timing
    tarvo_bench::MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    auto& m = reporter.medians;
    std::printf("\nmedians:\n");
    print_ratio("status", m["BM_pxfstat"], m["BM_stat"], 1.0, "file");
    // The listing medians are milliseconds per pass over every entry and the two dots.
    print_ratio("listing", m["BM_pxfreaddir"], m["BM_readdir"], 1e6 / (kListEntries + 2), "entry");
    benchmark::Shutdown();
    nftw(tree().root.c_str(), [](const char* p, const struct stat*, int, FTW*) { return remove(p); }, 16,
         FTW_DEPTH | FTW_PHYS);
    return 0;
}
