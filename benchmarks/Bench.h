#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

// Milliseconds that a piece of work takes.
double Took(const std::function<void()>& work);
// The clock in milliseconds, for work that begins and ends in different places.
double Now() noexcept;

// What one measurement is about: the operation, its size (0: it has none) and the ratio that must hold.
struct Row {
    std::string Operation;
    size_t Size;
    double Bar;
};

// One measurement of both sides, in milliseconds, in one round.
struct Round {
    double Ours = 0;
    double Raw = 0;
};

// The one in the middle; there must be some.
double Median(std::vector<double> values);

// Whether the full sizes are measured (./bench), or the small ones that only show that a row works.
bool FullSizes();
// The sizes to measure: the given ones, or a small one.
std::vector<size_t> Sizes(std::initializer_list<size_t> full, size_t small);

// Each of these prints a row: the medians of both sides, their ratio, the bar, and whether it holds.

// Runs both sides round by round, at least seven times, the one that begins changing from round to round, after one
// round that is not counted. A side returns its milliseconds, so that it can prepare and clear away outside of them.
void Compare(const Row& row, const std::function<double()>& ours, const std::function<double()>& raw);
// The same for rounds that measure several operations at once, seven times.
void CompareRounds(const std::vector<Row>& rows, const std::function<std::vector<Round>()>& round);
// For what is not measured in milliseconds, or was measured elsewhere.
void PrintRow(const Row& row, const char* unit, double ours, double raw);
