#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

// Milliseconds that a piece of work takes.
double Took(const std::function<void()>& work);

// One measurement of both sides, in milliseconds, in one round.
struct Round {
    double Ours = 0;
    double Raw = 0;
};

// Whether the full sizes are measured (./bench), or the small ones that only show that a row works.
bool FullSizes();
// The sizes to measure: the given ones, or a small one.
std::vector<size_t> Sizes(std::initializer_list<size_t> full, size_t small);

// Runs `round` an odd number of times and prints the row: medians, the ratio of the medians, the bar, and whether it
// holds.
void PrintRow(const std::string& operation, size_t size, double bar, const std::function<Round()>& round);
// The same for rounds that measure two operations at once.
void PrintRows(const std::vector<std::string>& operations, size_t size, const std::vector<double>& bars,
               const std::function<std::vector<Round>()>& round);
