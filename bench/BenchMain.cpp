#include "BenchPictures.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

std::vector<std::pair<std::string, std::string>>& comparisons() {
    static std::vector<std::pair<std::string, std::string>> pairs;
    return pairs;
}

// The console's report, followed by the ratios asked for with
// CompareBenchmarks between the benchmarks that ran.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    RatioReporter() : benchmark::ConsoleReporter(OO_None) {}

    void ReportRuns(const std::vector<Run>& reports) override {
        benchmark::ConsoleReporter::ReportRuns(reports);
        for (const Run& run : reports) {
            if (run.error_occurred)
                continue;
            // With repetitions, the mean stands for the benchmark.
            const bool mean = run.run_type == Run::RT_Aggregate && run.aggregate_name == "mean";
            if (run.run_type == Run::RT_Iteration || mean)
                times_[run.run_name.str()] = {run.GetAdjustedRealTime(), run.GetAdjustedCPUTime()};
        }
    }

    void Finalize() override {
        benchmark::ConsoleReporter::Finalize();
        for (const auto& [name, base] : comparisons()) {
            const auto measured = times_.find(name);
            const auto against = times_.find(base);
            if (measured == times_.end() || against == times_.end())
                continue;
            std::printf("%s / %s: %.2fx real time, %.2fx CPU time\n", name.c_str(), base.c_str(),
                        measured->second.first / against->second.first,
                        measured->second.second / against->second.second);
        }
    }

private:
    // Real and CPU time per iteration in the benchmark's own unit: the
    // benchmarks compared are given the same one.
    std::map<std::string, std::pair<double, double>> times_;
};

} // namespace

bool CompareBenchmarks(const std::string& name, const std::string& base) {
    comparisons().emplace_back(name, base);
    return true;
}

// The picture decoders are Qt plugins: they need an application object.
int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    // The ratios are added to the console's report only: another format
    // (--benchmark_format=csv for the comparison scripts) stays as it is.
    bool console = true;
    for (int i = 1; i < argc; ++i)
        if (std::strncmp(argv[i], "--benchmark_format=", 19) == 0)
            console = std::strcmp(argv[i] + 19, "console") == 0;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter;
    if (console)
        benchmark::RunSpecifiedBenchmarks(&reporter);
    else
        benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
