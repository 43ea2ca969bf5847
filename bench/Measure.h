// Measures time with Google Benchmark.
#ifndef QV_BENCH_MEASURE_H
#define QV_BENCH_MEASURE_H

#include <functional>
#include <vector>

namespace qv_bench {

// Passes the arguments to Google Benchmark, after defaults of 9 repetitions and random interleaving, which
// they may override. Returns false if Google Benchmark does not recognise one of them. Call it once, before
// the first medians().
bool initialiseMeasuring(int argc, char** argv);

// Runs the sides in turn and returns the median of each, in nanoseconds per call. This is processor time, so
// other load on the machine is not included.
std::vector<double> medians(const std::vector<std::function<void()>>& sides);

// Stops the program if isRight is false, with a message that names the check. Every result is checked before
// it is timed.
void require(bool isRight, const char* what);

}  // namespace qv_bench

#endif
