// PXFCONST over every name of the table, against a linear case-insensitive scan of the
// same names measured in the same run. Prints both medians and their ratio.
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <strings.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "bench/medians.h"
#include <tarvo/posix.h>

namespace {

struct Row {
    const char* name;
    std::int32_t value;
};

#define PXF_HOST(NAME) {#NAME, static_cast<std::int32_t>((std::intptr_t)(NAME))},
#define PXF_OWN(NAME, VALUE) {#NAME, VALUE},
#define PXF_UNREACHABLE(TEXT, VALUE) {TEXT, VALUE},
const Row kRows[] = {
#include "posix/constants.def"
};
#undef PXF_HOST
#undef PXF_OWN
#undef PXF_UNREACHABLE

// Every name as a Fortran caller passes it: mixed case, blank padded to 32 characters.
std::vector<std::string> requests() {
    std::vector<std::string> names;
    for (const Row& row : kRows) {
        std::string name = row.name;
        for (std::size_t i = 0; i < name.size(); i += 2) name[i] = static_cast<char>(std::tolower(name[i]));
        name.resize(32, ' ');
        names.push_back(name);
    }
    return names;
}

// The lookup as a plain scan: cut at the first blank, then strcasecmp row after row.
void linear_lookup(const char* s, std::size_t len, std::int32_t* ival, std::int32_t* ierror) {
    char name[64];
    std::size_t n = 0;
    while (n < len && n < sizeof name - 1 && s[n] != ' ') name[n] = s[n], ++n;
    name[n] = '\0';
    for (const Row& row : kRows)
        if (strcasecmp(name, row.name) == 0) {
            *ival = row.value;
            *ierror = 0;
            return;
        }
    *ival = -1;
    *ierror = TARVO_ENONAME;
}

template <class Lookup>
void run_lookups(benchmark::State& state, Lookup lookup) {
    const std::vector<std::string> names = requests();
    std::size_t i = 0;
    for (auto _ : state) {
        std::int32_t ival, ierror;
        const std::string& name = names[i];
        lookup(name.data(), &ival, &ierror, name.size());
        benchmark::DoNotOptimize(ival);
        benchmark::DoNotOptimize(ierror);
        if (++i == names.size()) i = 0;
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_pxfconst(benchmark::State& state) {
    run_lookups(state, [](const char* s, std::int32_t* v, std::int32_t* e, std::size_t n) { pxfconst_(s, v, e, n); });
}
void BM_linear_scan(benchmark::State& state) {
    run_lookups(state, [](const char* s, std::int32_t* v, std::int32_t* e, std::size_t n) { linear_lookup(s, n, v, e); });
}
BENCHMARK(BM_pxfconst)->Repetitions(9)->ReportAggregatesOnly(true);
BENCHMARK(BM_linear_scan)->Repetitions(9)->ReportAggregatesOnly(true);

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    tarvo_bench::MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const double ours = reporter.medians["BM_pxfconst"], scan = reporter.medians["BM_linear_scan"];
    if (ours > 0 && scan > 0)
        std::printf("\nmedian per lookup: pxfconst %.1f ns, linear scan %.1f ns; the scan takes %.1f times as long\n",
                    ours, scan, scan / ours);
    benchmark::Shutdown();
    return 0;
}
