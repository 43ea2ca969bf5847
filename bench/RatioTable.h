// Operations beside their yardsticks: what a row of the table is and how it gets its figures.
#ifndef QV_BENCH_RATIOTABLE_H
#define QV_BENCH_RATIOTABLE_H

#include <functional>
#include <string>

namespace qv_bench {

// One row. Both sides are run in turns, in one process; the ratio is that of the medians.
struct Row {
    std::string name;
    std::string yardstick;            // what the operation is held against
    std::function<void()> operation;  // done once
    std::function<void()> reference;  // the yardstick, done once; empty: the row tells the time alone
    int perCall = 1;                  // values that one call of the operation reads, for rows of time
};

// Stops the program when a result is wrong: nothing is timed that was not checked.
void require(bool isRight, const char* what);

void addRow(Row row);
void addFramingRows();
void addParsingRows();

// Runs every row and prints the table.
int runTable(int argc, char** argv);

}  // namespace qv_bench

#endif
