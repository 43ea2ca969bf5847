// What a row of the table has to reach.
#ifndef QV_BENCH_GOAL_H
#define QV_BENCH_GOAL_H

#include <string>

namespace qv_bench {

// The vectors that the start-code search runs with.
enum class Vectors {
    None,      // bytes
    Baseline,  // what every machine of the architecture has: SSE2, NEON
    Wide       // AVX2
};

enum class Bound { None, AtLeast, AtMost, Exactly };

// A bound on the figure of a row, by vectors: rows without vectors have to reach what Baseline has to.
struct Goal {
    Bound bound = Bound::None;
    double wide = 0;
    double baseline = 0;
};

Goal atLeast(double wide, double baseline);
Goal atLeast(double limit);
Goal atMost(double limit);
Goal exactly(double limit);

// The figure is held against the goal with the digits that the table shows.
bool isReached(const Goal& goal, double figure, Vectors vectors);

// "pass", "MISS", or nothing for a row without a goal.
std::string markText(const Goal& goal, double figure, Vectors vectors);

// ">= 0.95"; nothing for a row without a goal.
std::string goalText(const Goal& goal, Vectors vectors);

// Two digits behind the point, whole numbers from 1000 on.
std::string figureText(double figure);

}  // namespace qv_bench

#endif
