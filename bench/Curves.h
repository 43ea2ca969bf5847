// Measures cost as a function of the size of a call and of the density of start codes.
#ifndef QV_BENCH_CURVES_H
#define QV_BENCH_CURVES_H

#include <string>

namespace qv_bench {

// Writes size.dat and density.dat into the folder at path. They hold GB/s in columns with headings, for
// gnuplot.
void writeCurves(const std::string& path);

}  // namespace qv_bench

#endif
