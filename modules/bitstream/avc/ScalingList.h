/// \file
/// scaling_list() of H.264.
#ifndef QV_BITSTREAM_AVC_SCALINGLIST_H
#define QV_BITSTREAM_AVC_SCALINGLIST_H

#include <cstdint>

namespace qv::avc {

/// scaling_list(), H.264 7.3.2.1.1.1: the list as coded.
struct ScalingList {
    /// How many delta_scale are sent: 16 or 64, or fewer when one of them makes nextScale 0.
    uint32_t deltaCount;

    int16_t delta_scale[64];  ///< se(v), -128..127
};

/// The lists of a parameter set: six of 4x4 (intra Y, Cb, Cr, inter Y, Cb, Cr), then six of 8x8 (intra and
/// inter Y, intra and inter Cb, intra and inter Cr); Table 7-2.
struct ScalingMatrix {
    static constexpr uint32_t kMostLists = 12;  ///< lists in all
    static constexpr uint32_t k4x4Lists = 6;    ///< lists of 4x4, which come first

    bool scaling_list_present_flag[kMostLists];  ///< u(1)
    ScalingList scaling_list[kMostLists];        ///< set with scaling_list_present_flag
};

}  // namespace qv::avc

#endif
