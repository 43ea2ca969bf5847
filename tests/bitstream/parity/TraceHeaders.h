// What libavcodec's trace_headers bitstream filter prints of a NAL unit: an independent reading of its
// elements.
#ifndef QV_TESTS_BITSTREAM_TRACEHEADERS_H
#define QV_TESTS_BITSTREAM_TRACEHEADERS_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Codec.h"

struct AVBSFContext;

namespace qv_test {

struct WitnessElement {
    uint64_t firstBit = 0;
    std::string name;
    uint32_t width = 0;
    int64_t value = 0;
    uint64_t bits = 0;  // as coded, of at most 64
};

struct WitnessTrace {
    std::vector<WitnessElement> elements;

    // What the filter complains about; it then reads no further.
    std::string complaint;
};

class TraceHeaders {
public:
    explicit TraceHeaders(qv::Codec codec);

    // Parameter sets of earlier calls are remembered, as the filter does.
    WitnessTrace trace(qv::Bytes unit);

private:
    struct Free {
        void operator()(AVBSFContext* filter) const;
    };
    std::unique_ptr<AVBSFContext, Free> filter_;
};

}  // namespace qv_test

#endif
