#pragma once

#include <string>

// ./dev bench runs every benchmark program and then prints one table of all their figures
// against their goals; each program adds its rows to the file named by FASTPANEL_BENCH_SUMMARY.
// Without that variable nothing is written.
void addToBenchSummary(const std::string& label, double measured, double goal, const std::string& verdict);
