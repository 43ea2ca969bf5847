/// \file
/// Names of film grain models.
#ifndef QV_BITSTREAM_NAMES_FILMGRAIN_H
#define QV_BITSTREAM_NAMES_FILMGRAIN_H

#include <cstdint>

#include "bitstream/names/Name.h"

namespace qv {

/// film_grain_model_id.
constexpr Name kFilmGrainModels[] = {
    {0, "Frequency filtering", "H.264 D.2.21, H.265 D.3.13"},
    {1, "Auto-regression", "H.264 D.2.21, H.265 D.3.13"},
};

/// blending_mode_id.
constexpr Name kFilmGrainBlendingModes[] = {
    {0, "Additive", "H.264 D.2.21, H.265 D.3.13"},
    {1, "Multiplicative", "H.264 D.2.21, H.265 D.3.13"},
};

/// The name of a value of film_grain_model_id; "Reserved" for one that the standards reserve.
constexpr Name filmGrainModelName(uint32_t film_grain_model_id) {
    return nameOf(kFilmGrainModels, film_grain_model_id, "Reserved");
}

/// The name of a value of blending_mode_id; "Reserved" for one that the standards reserve.
constexpr Name filmGrainBlendingModeName(uint32_t blending_mode_id) {
    return nameOf(kFilmGrainBlendingModes, blending_mode_id, "Reserved");
}

}  // namespace qv

#endif
