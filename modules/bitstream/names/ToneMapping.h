/// \file
/// Names of tone mapping models.
#ifndef QV_BITSTREAM_NAMES_TONEMAPPING_H
#define QV_BITSTREAM_NAMES_TONEMAPPING_H

#include <cstdint>

#include "bitstream/names/Name.h"

namespace qv {

/// tone_map_model_id.
constexpr Name kToneMapModels[] = {
    {0, "Linear mapping with clipping", "H.264 D.2.25, H.265 D.3.15"},
    {1, "Sigmoidal mapping", "H.264 D.2.25, H.265 D.3.15"},
    {2, "Table of intervals", "H.264 D.2.25, H.265 D.3.15"},
    {3, "Piece-wise linear mapping", "H.264 D.2.25, H.265 D.3.15"},
    {4, "Luminance dynamic range", "H.264 D.2.25, H.265 D.3.15"},
};

/// The name of a value of tone_map_model_id; "Reserved" for one that the standards reserve.
constexpr Name toneMapModelName(uint32_t tone_map_model_id) {
    return nameOf(kToneMapModels, tone_map_model_id, "Reserved");
}

}  // namespace qv

#endif
