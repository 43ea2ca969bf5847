/// \file
/// The frame rate that H.265 parameter sets declare.
#ifndef QV_BITSTREAM_HEVC_FRAMERATE_H
#define QV_BITSTREAM_HEVC_FRAMERATE_H

#include <cstdint>

#include "bitstream/Ratio.h"
#include "bitstream/hevc/Sps.h"
#include "bitstream/hevc/Vps.h"

namespace qv::hevc {

/// A frame rate.
struct FrameRate {
    /// 0:0 when the parameter set has no timing, or its terms need more than 64 bits.
    Ratio framesPerSecond;

    /// Clock ticks from one picture to the next: elemental_duration_in_tc_minus1 + 1 of the highest sub-layer
    /// where fixed_pic_rate_within_cvs_flag is 1; otherwise those of a difference of 1 in picture order
    /// count, where that is proportional to time; otherwise 1.
    uint64_t ticksPerPicture = 0;

    /// fixed_pic_rate_within_cvs_flag of the highest sub-layer: every picture lasts as long.
    bool isFixed = false;
};

/// time_scale / ( num_units_in_tick * ticks ) pictures in a second, H.265 E.3.1 and (C-1); half of that in
/// frames where pictures are fields.
///
/// \param ticks  1..2^32
constexpr FrameRate frameRateOf(uint32_t num_units_in_tick, uint32_t time_scale, uint64_t ticks,
                                bool picturesAreFields) {
    FrameRate rate;
    rate.ticksPerPicture = ticks;
    const Ratio pictures = ratioOf(time_scale, num_units_in_tick * ticks);
    if (!picturesAreFields) {
        rate.framesPerSecond = pictures;
    } else if (pictures.numerator % 2 == 0) {
        rate.framesPerSecond = ratioOf(pictures.numerator / 2, pictures.denominator);
    } else if (pictures.denominator <= UINT64_MAX / 2) {
        rate.framesPerSecond = ratioOf(pictures.numerator, 2 * pictures.denominator);
    }
    return rate;
}

/// The frame rate that the VUI of \p sps declares; unknown without vui_timing_info_present_flag.
constexpr FrameRate frameRateOf(const Sps& sps) {
    const Vui& vui = sps.vui;
    if (!vui.vui_timing_info_present_flag) {
        return {};
    }
    uint64_t ticks = 1;
    bool isFixed = false;
    if (vui.vui_poc_proportional_to_timing_flag) {
        ticks = uint64_t{vui.vui_num_ticks_poc_diff_one_minus1} + 1;
    }
    if (vui.vui_hrd_parameters_present_flag && sps.sps_max_sub_layers_minus1 < kMostSubLayers) {
        const SubLayerHrd& highest = vui.hrd_parameters.sub_layer[sps.sps_max_sub_layers_minus1];
        if (highest.fixed_pic_rate_within_cvs_flag) {
            ticks = uint64_t{highest.elemental_duration_in_tc_minus1} + 1;
            isFixed = true;
        }
    }
    FrameRate rate = frameRateOf(vui.vui_num_units_in_tick, vui.vui_time_scale, ticks, vui.field_seq_flag);
    rate.isFixed = isFixed && rate.framesPerSecond.isKnown();
    return rate;
}

/// The frame rate that \p vps declares, without that of its hrd_parameters(); unknown without
/// vps_timing_info_present_flag.
///
/// \param picturesAreFields  field_seq_flag of the SPS, which the VPS does not repeat
constexpr FrameRate frameRateOf(const Vps& vps, bool picturesAreFields) {
    if (!vps.vps_timing_info_present_flag) {
        return {};
    }
    const uint64_t ticks =
        vps.vps_poc_proportional_to_timing_flag ? uint64_t{vps.vps_num_ticks_poc_diff_one_minus1} + 1 : 1;
    return frameRateOf(vps.vps_num_units_in_tick, vps.vps_time_scale, ticks, picturesAreFields);
}

}  // namespace qv::hevc

#endif
