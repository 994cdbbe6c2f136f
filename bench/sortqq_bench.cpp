// SORTQQ against std::sort and a plain Shell sort (gaps 1, 4, 13, ...; the order SORTQQ
// keeps) on 10^7 random INTEGER(4), INTEGER(8), REAL(4) and REAL(8) keys. Checks that SORTQQ
// gives the Shell sort's bytes, then prints the medians and their ratios.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "bench/medians.h"
#include <tarvo/qq.h>

namespace {

constexpr std::size_t kCount = 10'000'000;

template <class T>
const std::vector<T>& input() {
    static const std::vector<T> keys = [] {
        std::mt19937_64 rng(2026);
        std::vector<T> v(kCount);
        for (T& x : v) {
            if constexpr (std::is_floating_point_v<T>)
                x = static_cast<T>(std::uniform_real_distribution<double>(-1e6, 1e6)(rng));
            else
                x = static_cast<T>(rng());
        }
        return v;
    }();
    return keys;
}

template <class T>
void shell_sort(std::vector<T>& a) {
    const std::ptrdiff_t n = static_cast<std::ptrdiff_t>(a.size());
    std::ptrdiff_t h = 1;
    if (n >= 13) {
        while (h < n) h = 3 * h + 1;
        h = ((h - 1) / 3 - 1) / 3;
    }
    for (;; h = (h - 1) / 3) {
        for (std::ptrdiff_t i = h; i < n; ++i) {
            const T v = a[i];
            std::ptrdiff_t j = i;
            for (; j >= h && a[j - h] > v; j -= h) a[j] = a[j - h];
            a[j] = v;
        }
        if (h == 1) break;
    }
}

template <class T>
void sortqq(std::vector<T>& a, std::int32_t code) {
    const std::intptr_t address = reinterpret_cast<std::intptr_t>(a.data());
    std::intptr_t count = static_cast<std::intptr_t>(a.size());
    sortqq_(&address, &count, &code);
}

enum class Method { Sortqq, StdSort, Shell };

template <class T, std::int32_t Code, Method M>
void run(benchmark::State& state) {
    std::vector<T> a;
    for (auto _ : state) {
        state.PauseTiming();
        a = input<T>();
        state.ResumeTiming();
        if constexpr (M == Method::Sortqq) sortqq(a, Code);
        else if constexpr (M == Method::StdSort) std::sort(a.begin(), a.end());
        else shell_sort(a);
        benchmark::DoNotOptimize(a.data());
    }
}

template <class T>
bool same_as_shell(std::int32_t code) {
    std::vector<T> a = input<T>(), b = a;
    sortqq(a, code);
    shell_sort(b);
    return std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

struct Case {
    const char* type;
    void (*sortqq)(benchmark::State&);
    void (*std_sort)(benchmark::State&);
    void (*shell)(benchmark::State&);
    bool (*identical)(std::int32_t);
    std::int32_t code;
};

template <class T, std::int32_t Code>
constexpr Case make_case(const char* type) {
    return {type, run<T, Code, Method::Sortqq>, run<T, Code, Method::StdSort>, run<T, Code, Method::Shell>,
            same_as_shell<T>, Code};
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    const Case cases[] = {
        make_case<std::int32_t, TARVO_SRT_INTEGER4>("integer4"),
        make_case<std::int64_t, TARVO_SRT_INTEGER8>("integer8"),
        make_case<float, TARVO_SRT_REAL4>("real4"),
        make_case<double, TARVO_SRT_REAL8>("real8"),
    };
    for (const Case& c : cases) {
        if (!c.identical(c.code)) {
            std::printf("%s: SORTQQ differs from the Shell sort\n", c.type);
            return 1;
        }
        const std::string t = c.type;
        for (const auto& [name, fn] : {std::pair{"sortqq_" + t, c.sortqq}, {"std_sort_" + t, c.std_sort}, {"shell_" + t, c.shell}})
            benchmark::RegisterBenchmark(name.c_str(), fn)->Repetitions(3)->ReportAggregatesOnly(true)->Iterations(1)->Unit(
                benchmark::kMillisecond);
    }
    tarvo_bench::MedianReporter reporter(benchmark::ConsoleReporter::OO_None);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    for (const Case& c : cases) {
        const std::string t = c.type;
        const double mine = reporter.medians["sortqq_" + t], std_sort = reporter.medians["std_sort_" + t],
                     shell = reporter.medians["shell_" + t];
        if (mine > 0)
            std::printf("%s: std::sort / sortqq %.1f, shell / sortqq %.1f (identical output)\n", c.type, std_sort / mine,
                        shell / mine);
    }
    benchmark::Shutdown();
    return 0;
}
