#include "BenchSummary.h"

#include <cstdlib>
#include <fstream>

void addToBenchSummary(const std::string& label, double measured, double goal, const std::string& verdict)
{
    const char* path = std::getenv("FASTPANEL_BENCH_SUMMARY");
    if (!path || !*path)
        return;
    std::ofstream summary(path, std::ios::app);
    summary << label << '\t' << measured << '\t' << goal << '\t' << verdict << '\n';
}
