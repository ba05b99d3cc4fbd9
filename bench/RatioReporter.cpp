#include "RatioReporter.h"

#include <algorithm>

#include "BenchSummary.h"

#include <cstdio>

RatioReporter::RatioReporter(std::vector<Ratio> ratios) : m_ratios(std::move(ratios))
{
}

void RatioReporter::ReportRuns(const std::vector<Run>& runs)
{
    for (const Run& run : runs) {
        if (run.iterations == 0)
            continue;
        // Ratios name benchmarks without the options that the run appends ("/min_time:2.000",
        // "/iterations:3"); arguments ("/1000") stay.
        std::string name = run.benchmark_name();
        name = name.substr(0, std::min(name.find("/min_time:"), name.find("/iterations:")));
        m_secondsPerIteration[name] = run.real_accumulated_time / static_cast<double>(run.iterations);
        m_counters[name] = run.counters;
    }
    ConsoleReporter::ReportRuns(runs);
}

bool RatioReporter::printRatios() const
{
    bool allMet = true;
    std::printf("\n%-52s %8s %8s  %s\n", "ratio (same run)", "measured", "goal", "");
    for (const Ratio& ratio : m_ratios) {
        const auto measured = m_secondsPerIteration.find(ratio.measured);
        const auto baseline = m_secondsPerIteration.find(ratio.baseline);
        const bool absolute = ratio.baseline.empty();
        if (measured == m_secondsPerIteration.end() || (!absolute && baseline == m_secondsPerIteration.end())) {
            std::printf("%-52s %8s %8.2f  not run\n", ratio.label.c_str(), "-", ratio.goal);
            continue;
        }
        const double value = absolute ? measured->second : measured->second / baseline->second;
        double left = 0;
        if (!ratio.mustBeNone.empty()) {
            const benchmark::UserCounters& counters = m_counters.at(ratio.measured);
            const auto counter = counters.find(ratio.mustBeNone);
            left = counter == counters.end() ? 0.0 : static_cast<double>(counter->second);
        }
        const bool met = value <= ratio.goal && left == 0;
        allMet = allMet && met;
        char verdict[64];
        if (left > 0)
            std::snprintf(verdict, sizeof verdict, "MISSED (%g %s)", left, ratio.mustBeNone.c_str());
        else
            std::snprintf(verdict, sizeof verdict, "%s", met ? "met" : "MISSED");
        addToBenchSummary(ratio.label, value, ratio.goal, verdict);
        std::printf("%-52s %8.2f %8.2f  %s\n", ratio.label.c_str(), value, ratio.goal, verdict);
    }
    return allMet;
}

int runWithRatios(int argc, char** argv, std::vector<RatioReporter::Ratio> ratios)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    RatioReporter reporter(std::move(ratios));
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return reporter.printRatios() ? 0 : 1;
}
