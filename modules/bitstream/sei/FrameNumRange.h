// The range of frame_num, which some payloads refer to.
#ifndef QV_BITSTREAM_SEI_FRAMENUMRANGE_H
#define QV_BITSTREAM_SEI_FRAMENUMRANGE_H

#include <cstdint>

#include "bitstream/sei/SeiContext.h"

namespace qv::sei {

// MaxFrameNum - 1, H.264 7.4.2.1.1 (7-10); without an SPS the greatest that there is.
constexpr uint32_t mostFrameNum(const Context& context) {
    constexpr uint32_t kMostLog2 = 12;
    const uint32_t log2 = context.avcSps != nullptr ? context.avcSps->log2_max_frame_num_minus4 : kMostLog2;
    return (1U << (log2 + 4)) - 1;
}

}  // namespace qv::sei

#endif
