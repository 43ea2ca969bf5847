/// \file
/// Film grain.
#ifndef QV_BITSTREAM_SEI_FILMGRAIN_H
#define QV_BITSTREAM_SEI_FILMGRAIN_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Reader.h"

namespace qv::sei {

/// film_grain_characteristics(), H.264 D.1.21, H.265 D.2.13. The elements after the first one are present
/// unless it is 1.
struct FilmGrainCharacteristics {
    static constexpr PayloadTypes kPayloadTypes = {19, 19};  ///< payloadType
    static constexpr uint32_t kColourComponents = 3;         ///< Y, Cb and Cr, or G, B and R

    bool film_grain_characteristics_cancel_flag;  ///< u(1)
    uint32_t film_grain_model_id;                 ///< u(2); 2 and 3 are reserved

    /// u(1). Without it the film grain has the bit depths and the colour description of the SPS.
    bool separate_colour_description_present_flag;

    uint32_t film_grain_bit_depth_luma_minus8;     ///< u(3)
    uint32_t film_grain_bit_depth_chroma_minus8;   ///< u(3)
    bool film_grain_full_range_flag;               ///< u(1)
    uint32_t film_grain_colour_primaries;          ///< u(8), as colour_primaries of the VUI
    uint32_t film_grain_transfer_characteristics;  ///< u(8), as transfer_characteristics of the VUI
    uint32_t film_grain_matrix_coeffs;             ///< u(8); film_grain_matrix_coefficients in H.264

    uint32_t blending_mode_id;   ///< u(2); 2 and 3 are reserved
    uint32_t log2_scale_factor;  ///< u(4)

    bool comp_model_present_flag[kColourComponents];             ///< u(1)
    uint32_t num_intensity_intervals_minus1[kColourComponents];  ///< u(8), with comp_model_present_flag
    uint32_t num_model_values_minus1[kColourComponents];         ///< u(3), 0..5

    /// The intervals of a component, borrowed from the unit; see FilmGrainIntervals.
    CodedBits intensity_intervals[kColourComponents];

    uint32_t film_grain_characteristics_repetition_period;  ///< ue(v), 0..16384; H.264
    bool film_grain_characteristics_persistence_flag;       ///< u(1), H.265
};

/// The model values of an interval of intensities.
struct FilmGrainInterval {
    static constexpr uint32_t kMostModelValues = 6;  ///< the greatest num_model_values_minus1, plus 1

    uint32_t intensity_interval_lower_bound;  ///< u(8)
    uint32_t intensity_interval_upper_bound;  ///< u(8)

    /// se(v), num_model_values_minus1 + 1 of them, the others 0. With a film_grain_model_id of 0 they are
    /// 0..2^bits - 1, with 1 they are -2^(bits - 1)..2^(bits - 1) - 1, for the film grain's bit depth.
    int32_t comp_model_value[kMostModelValues];
};

/// Reads the intervals of one colour component, in order.
class FilmGrainIntervals {
public:
    /// \param payload  read without a fault; the unit that it was read from is borrowed
    /// \param c        0..2
    FilmGrainIntervals(const FilmGrainCharacteristics& payload, uint32_t c) noexcept;

    /// Stores the next interval. False after the last one, and for a component without a model.
    bool next(FilmGrainInterval& interval) noexcept;

private:
    Reader reader_;
    uint32_t modelValues_;
};

}  // namespace qv::sei

#endif
