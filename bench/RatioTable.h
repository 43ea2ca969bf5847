// Operations beside their yardsticks: what the rows of the table are and how they get their figures.
#ifndef QV_BENCH_RATIOTABLE_H
#define QV_BENCH_RATIOTABLE_H

#include <functional>
#include <string>
#include <vector>

#include "Goal.h"

namespace qv_bench {

// What an operation is held against. The figure is the yardstick's time divided by the operation's: above 1
// the operation is the faster one.
struct Yardstick {
    std::string name;
    std::function<void()> run;  // empty: a peer that is not there, no row
    Goal goal = {};
};

// What one call of an operation costs by itself, in nanoseconds for each of the things that the call does.
struct Cost {
    std::string of;  // "call", "value"
    int perCall = 1;
    Goal goal = {};
};

// An operation and its rows: one for each cost and each yardstick. All sides are run in turns, in one
// process.
struct Operation {
    std::string name;
    std::function<void()> run;
    std::vector<Yardstick> yardsticks = {};
    std::vector<Cost> costs = {};
};

// A figure that was counted and not timed.
struct Count {
    std::string name;
    std::string of;  // what was counted
    double figure;
    Goal goal;
};

struct Rows {
    std::vector<Operation> operations = {};
    std::vector<Count> counts = {};
};

// One row as the table shows it.
struct TableRow {
    std::string name;
    std::string of;
    double figure;
    Goal goal;
};

// Takes the sides of an operation, gives the median of each in nanoseconds a call.
using Stopwatch = std::function<std::vector<double>(const std::vector<std::function<void()>>& sides)>;

// The rows of all that is in rows, in its order.
std::vector<TableRow> measure(const Rows& rows, const Stopwatch& medians);

std::string tableHeading();
std::string tableLine(const TableRow& row, Vectors vectors);

// "51 of 54 goals reached".
std::string summaryLine(const std::vector<TableRow>& rows, Vectors vectors);

// The text with lines in place of those between the line "<!-- name -->" and the next line "<!-- end -->".
// Empty when it has no such lines.
std::string replaceMarked(const std::string& text, const std::string& name, const std::string& lines);

}  // namespace qv_bench

#endif
