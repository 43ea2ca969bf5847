// Framing operations over pools, checked against the slow reference, with the yardsticks beside them.
#ifndef QV_BENCH_FRAMING_H
#define QV_BENCH_FRAMING_H

#include <functional>
#include <memory>
#include <string>

#include "Pools.h"
#include "RatioTable.h"

namespace qv_bench {

using SharedSamples = std::shared_ptr<const Samples>;

// One call over all of bytes.
Operation scanWhole(const std::string& name, const Shared& bytes);

// memchr for kAbsent, which no byte may be.
std::function<void()> memchrOver(const Shared& bytes);

// GStreamer's search over the same bytes; empty when it is not there.
std::function<void()> gstreamerOver(QVCodecID codec, const Shared& bytes);

// One call for each sample.
Operation keyFrameOf(const std::string& name, QVCodecID codec, const SharedSamples& samples);
Operation lengthScanOf(const std::string& name, const SharedSamples& samples);
Operation toLengthsOf(const std::string& name, const SharedSamples& samples);
Operation toStartCodesOf(const std::string& name, const SharedSamples& samples);

}  // namespace qv_bench

#endif
