// Framing operations on pools, checked against the slow reference, and their yardsticks.
#ifndef QV_BENCH_FRAMING_H
#define QV_BENCH_FRAMING_H

#include <functional>
#include <memory>
#include <string>

#include "Pools.h"
#include "RatioTable.h"

namespace qv_bench {

using SharedSamples = std::shared_ptr<const Samples>;

// One call for all of bytes.
Operation scanWhole(const std::string& name, const Shared& bytes);

// Runs memchr for kAbsent over bytes. No byte may have that value.
std::function<void()> memchrOver(const Shared& bytes);

// Runs GStreamer's search over bytes. Empty if the benchmark was built without GStreamer.
std::function<void()> gstreamerOver(QVCodecID codec, const Shared& bytes);

// One call for each sample.
Operation keyFrameOf(const std::string& name, QVCodecID codec, const SharedSamples& samples);
Operation lengthScanOf(const std::string& name, const SharedSamples& samples);
Operation toLengthsOf(const std::string& name, const SharedSamples& samples);
Operation toStartCodesOf(const std::string& name, const SharedSamples& samples);

}  // namespace qv_bench

#endif
