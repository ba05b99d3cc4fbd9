#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

// Prints Google Benchmark's usual table, then, for each pair of benchmarks measured in the same
// run, the ratio of their times per iteration against its goal.
class RatioReporter : public benchmark::ConsoleReporter
{
public:
    struct Ratio
    {
        std::string label;
        std::string measured; // benchmark name
        std::string baseline; // benchmark name; empty: the goal is in seconds per iteration
        double goal;
        std::string mustBeNone = {}; // a counter of the measured benchmark that the goal needs at 0
    };

    explicit RatioReporter(std::vector<Ratio> ratios);

    void ReportRuns(const std::vector<Run>& runs) override;
    // Prints the ratios; false when one misses its goal.
    bool printRatios() const;

private:
    std::vector<Ratio> m_ratios;
    std::map<std::string, double> m_secondsPerIteration;
    std::map<std::string, benchmark::UserCounters> m_counters;
};

// Runs the registered benchmarks with the reporter; returns the program's exit code.
int runWithRatios(int argc, char** argv, std::vector<RatioReporter::Ratio> ratios);
