// Cost against the size of a call and against the density of start codes.
#ifndef QV_BENCH_CURVES_H
#define QV_BENCH_CURVES_H

#include <string>

namespace qv_bench {

// Writes size.dat and density.dat into the folder at path: GB/s in columns with a heading, for gnuplot.
void writeCurves(const std::string& path);

}  // namespace qv_bench

#endif
