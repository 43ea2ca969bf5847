// Google Benchmark as a stopwatch.
#ifndef QV_BENCH_MEASURE_H
#define QV_BENCH_MEASURE_H

#include <functional>
#include <vector>

namespace qv_bench {

// Hands arguments to Google Benchmark, ahead of which stand 9 rounds and random interleaving. False when it
// does not know one of them. Call it once, before the first medians().
bool initialiseMeasuring(int argc, char** argv);

// Runs the sides in turns and gives the median of each in nanoseconds of processor time a call: what else the
// machine does then is not in it.
std::vector<double> medians(const std::vector<std::function<void()>>& sides);

// Stops the program when a result is wrong: nothing is timed that was not checked.
void require(bool isRight, const char* what);

}  // namespace qv_bench

#endif
