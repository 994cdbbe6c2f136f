// Keeps the median time of every benchmark run with repetitions, so that a benchmark can
// close with the ratio of its routine to the baseline measured in the same run.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace tarvo_bench {

class MedianReporter : public benchmark::ConsoleReporter {
public:
    std::map<std::string, double> medians;  // by benchmark name, in the reporter's time unit
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            if (run.aggregate_name == "median") medians[run.run_name.function_name] = run.GetAdjustedRealTime();
        ConsoleReporter::ReportRuns(runs);
    }
};

}  // namespace tarvo_bench
