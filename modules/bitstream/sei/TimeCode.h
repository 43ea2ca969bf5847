/// \file
/// Time codes of H.265.
#ifndef QV_BITSTREAM_SEI_TIMECODE_H
#define QV_BITSTREAM_SEI_TIMECODE_H

#include <cstdint>

#include "bitstream/sei/ClockTimestamp.h"
#include "bitstream/sei/SeiPayload.h"

namespace qv::sei {

/// time_code(), H.265 D.2.27 and D.3.27. H.264 has clock timestamps in AvcPicTiming.
struct TimeCode {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 136};  ///< payloadType
    static constexpr uint32_t kMostClockTimestamps = 3;                   ///< the greatest num_clock_ts

    uint32_t num_clock_ts;                                 ///< u(2), 1..3
    ClockTimestamp clock_timestamp[kMostClockTimestamps];  ///< num_clock_ts of them
};

}  // namespace qv::sei

#endif
