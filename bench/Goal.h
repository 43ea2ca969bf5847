// The goal that a row of the table has to reach.
#ifndef QV_BENCH_GOAL_H
#define QV_BENCH_GOAL_H

#include <string>

namespace qv_bench {

// The vector instructions that the start-code search uses.
enum class Vectors {
    None,      // none: byte by byte
    Baseline,  // those of every machine of the architecture: SSE2, NEON
    Wide       // AVX2
};

enum class Bound { None, AtLeast, AtMost, Exactly };

// A bound on the figure of a row, for each kind of vectors. Without vectors, the Baseline bound applies.
struct Goal {
    Bound bound = Bound::None;
    double wide = 0;
    double baseline = 0;
};

Goal atLeast(double wide, double baseline);
Goal atLeast(double limit);
Goal atMost(double limit);
Goal exactly(double limit);

// Compares the figure with the goal, rounded to the digits that the table shows.
bool isReached(const Goal& goal, double figure, Vectors vectors);

// Returns "pass", "MISS", or an empty text for a row without a goal.
std::string markText(const Goal& goal, double figure, Vectors vectors);

// Returns the goal as text, such as ">= 0.95", or an empty text for a row without a goal.
std::string goalText(const Goal& goal, Vectors vectors);

// Formats a figure with two digits after the point, or as a whole number from 1000 on.
std::string figureText(double figure);

}  // namespace qv_bench

#endif
