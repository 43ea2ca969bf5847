/// \file
/// The frame rate that H.264 VUI parameters indicate.
#ifndef QV_BITSTREAM_AVC_FRAMERATE_H
#define QV_BITSTREAM_AVC_FRAMERATE_H

#include <cstdint>

#include "bitstream/Ratio.h"
#include "bitstream/avc/Vui.h"
#include "bitstream/avc/VuiExtensionTiming.h"

namespace qv::avc {

/// A frame rate.
struct FrameRate {
    Ratio framesPerSecond;  ///< 0:0 when the parameters have no timing
    bool isFixed = false;   ///< fixed_frame_rate_flag: every frame lasts as long
};

/// time_scale / ( 2 * num_units_in_tick ) frames in a second: a tick is the time of a field, H.264 E.2.1 and
/// C.1. Without fixed_frame_rate_flag it is nominal: the times of frames are multiples of a tick, no more.
constexpr FrameRate frameRateOf(uint32_t num_units_in_tick, uint32_t time_scale, bool fixed_frame_rate_flag) {
    FrameRate rate;
    rate.framesPerSecond = ratioOf(time_scale, 2 * uint64_t{num_units_in_tick});
    rate.isFixed = rate.framesPerSecond.isKnown() && fixed_frame_rate_flag;
    return rate;
}

/// The frame rate of a coded video sequence; unknown without timing_info_present_flag.
constexpr FrameRate frameRateOf(const Vui& vui) {
    return frameRateOf(vui.num_units_in_tick, vui.time_scale, vui.fixed_frame_rate_flag);
}

/// The frame rate of a layer representation or an operation point; unknown without timing_info_present_flag.
constexpr FrameRate frameRateOf(const VuiExtensionTiming& timing) {
    return frameRateOf(timing.num_units_in_tick, timing.time_scale, timing.fixed_frame_rate_flag);
}

}  // namespace qv::avc

#endif
