// Compares operations with yardsticks: the rows of the table, and how their figures are measured.
#ifndef QV_BENCH_RATIOTABLE_H
#define QV_BENCH_RATIOTABLE_H

#include <functional>
#include <string>
#include <vector>

#include "Goal.h"

namespace qv_bench {

// Work that an operation is compared with. The figure is the yardstick's time divided by the operation's
// time: above 1, the operation is faster.
struct Yardstick {
    std::string name;
    std::function<void()> run;  // empty: the peer is not available, and there is no row
    Goal goal = {};
};

// The cost of an operation without a comparison, in nanoseconds per thing that a call processes.
struct Cost {
    std::string of;  // "call", "value"
    int perCall = 1;
    Goal goal = {};
};

// An operation and its rows: one for each cost and each yardstick. All sides run in turn, in one process.
struct Operation {
    std::string name;
    std::function<void()> run;
    std::vector<Yardstick> yardsticks = {};
    std::vector<Cost> costs = {};
};

// A figure that is counted, not timed.
struct Count {
    std::string name;
    std::string of;  // the thing that is counted
    double figure;
    Goal goal;
};

struct Rows {
    std::vector<Operation> operations = {};
    std::vector<Count> counts = {};
};

// One row of the table.
struct TableRow {
    std::string name;
    std::string of;
    double figure;
    Goal goal;
};

// Takes the sides of an operation and returns the median of each, in nanoseconds per call.
using Stopwatch = std::function<std::vector<double>(const std::vector<std::function<void()>>& sides)>;

// Measures all of rows and returns the table's rows in the same order.
std::vector<TableRow> measure(const Rows& rows, const Stopwatch& medians);

std::string tableHeading();
std::string tableLine(const TableRow& row, Vectors vectors);

// Returns a summary such as "51 of 54 goals reached".
std::string summaryLine(const std::vector<TableRow>& rows, Vectors vectors);

// Replaces the lines between the line "<!-- name -->" and the next line "<!-- end -->" of text with `lines`.
// Returns an empty text if text has no such markers.
std::string replaceMarked(const std::string& text, const std::string& name, const std::string& lines);

}  // namespace qv_bench

#endif
