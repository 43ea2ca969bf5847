/// \file
/// Exposure times.
#ifndef QV_BITSTREAM_SEI_SHUTTERINTERVAL_H
#define QV_BITSTREAM_SEI_SHUTTERINTERVAL_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"

namespace qv::sei {

/// shutter_interval_info(), H.264 D.1.39, H.265 D.2.48. A shutter interval is its number of units divided by
/// sii_time_scale, in seconds.
struct ShutterIntervalInfo {
    static constexpr PayloadTypes kPayloadTypes = {205, 205};  ///< payloadType
    static constexpr uint32_t kMostSubLayers = 8;              ///< sii_max_sub_layers_minus1, plus 1

    uint32_t sii_sub_layer_idx;               ///< H.264 alone: ue(v), 0..7; all else is present with 0 alone
    bool shutter_interval_info_present_flag;  ///< H.264 alone: u(1); the elements after it depend on it

    uint32_t sii_time_scale;                                           ///< u(32), above 0
    bool fixed_shutter_interval_within_cvs_flag;                       ///< H.264 alone: u(1)
    bool fixed_shutter_interval_within_clvs_flag;                      ///< H.265 alone: u(1)
    uint32_t sii_num_units_in_shutter_interval;                        ///< u(32); with the flag before
    uint32_t sii_max_sub_layers_minus1;                                ///< u(3); without the flag before
    uint32_t sub_layer_num_units_in_shutter_interval[kMostSubLayers];  ///< u(32); without the flag before
};

}  // namespace qv::sei

#endif
