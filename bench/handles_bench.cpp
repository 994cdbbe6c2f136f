// An uncontended create+free pair of a structure instance by handle, against the bare
// allocation pair the routines cannot avoid (calloc+free of the same size), measured in the
// same run. Also the pair with 64 live handles ahead of it, so the slot search shows.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench/medians.h"
#include <tarvo/posix.h>

namespace {

void create_free(benchmark::State& state) {
    std::vector<std::int32_t> held(static_cast<std::size_t>(state.range(0)));
    std::int32_t ierror = 0;
    for (auto& h : held) pxfstructcreate_("stat", &h, &ierror, 4);
    for (auto _ : state) {
        std::int32_t handle = 0;
        pxfstructcreate_("stat", &handle, &ierror, 4);
        pxfstructfree_(&handle, &ierror);
        benchmark::DoNotOptimize(handle);
    }
    for (auto& h : held) pxfstructfree_(&h, &ierror);
}

void BM_create_free(benchmark::State& state) { create_free(state); }
void BM_create_free_behind_64(benchmark::State& state) { create_free(state); }

void BM_calloc_free(benchmark::State& state) {
    for (auto _ : state) {
        void* p = std::calloc(1, 160);
        benchmark::DoNotOptimize(p);
        std::free(p);
    }
}

}  // namespace

BENCHMARK(BM_create_free)->Arg(0)->Repetitions(9)->ReportAggregatesOnly(true);
BENCHMARK(BM_create_free_behind_64)->Arg(64)->Repetitions(9)->ReportAggregatesOnly(true);
BENCHMARK(BM_calloc_free)->Repetitions(9)->ReportAggregatesOnly(true);

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    tarvo_bench::MedianReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const double base = reporter.medians["BM_calloc_free"];
    std::printf("create+free / calloc+free: %.2f (behind 64 live handles: %.2f)\n",
                reporter.medians["BM_create_free"] / base, reporter.medians["BM_create_free_behind_64"] / base);
    benchmark::Shutdown();
}
