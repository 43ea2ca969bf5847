/// \file
/// Tone mapping: the sample values of a display with another dynamic range.
#ifndef QV_BITSTREAM_SEI_TONEMAPPING_H
#define QV_BITSTREAM_SEI_TONEMAPPING_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Reader.h"

namespace qv::sei {

/// tone_mapping_info(), H.264 D.1.25, H.265 D.2.15. The elements after tone_map_cancel_flag are present
/// unless it is 1. Where H.265 shortens the name of an element, the comment has the one of H.264.
struct ToneMappingInfo {
    static constexpr PayloadTypes kPayloadTypes = {23, 23};  ///< payloadType
    static constexpr uint32_t kExtendedIso = 255;            ///< Extended_ISO: a value follows

    uint32_t tone_map_id;                 ///< ue(v); 256..511 and values from 2^31 on are reserved
    bool tone_map_cancel_flag;            ///< u(1)
    uint32_t tone_map_repetition_period;  ///< ue(v), 0..16384; H.264
    bool tone_map_persistence_flag;       ///< u(1), H.265
    uint32_t coded_data_bit_depth;        ///< u(8), 8..14
    uint32_t target_bit_depth;            ///< u(8), 1..16
    uint32_t tone_map_model_id;           ///< ue(v); values above 4 are reserved

    uint32_t min_value;  ///< u(32), model 0
    uint32_t max_value;  ///< u(32), model 0

    uint32_t sigmoid_midpoint;  ///< u(32), model 1
    uint32_t sigmoid_width;     ///< u(32), model 1

    /// Model 2: 1 << target_bit_depth values, u(v), borrowed from the unit; see ToneMapIntervals.
    CodedBits start_of_coded_interval;

    uint32_t num_pivots;  ///< u(16), model 3
    CodedBits pivots;     ///< model 3: coded and target values, borrowed from the unit; see ToneMapPivots

    uint32_t camera_iso_speed_idc;                   ///< u(8), model 4; 31..254 are reserved
    uint32_t camera_iso_speed_value;                 ///< u(32), with kExtendedIso
    uint32_t exposure_idx_idc;                       ///< u(8), model 4; exposure_index_idc
    uint32_t exposure_idx_value;                     ///< u(32), with kExtendedIso; exposure_index_value
    bool exposure_compensation_value_sign_flag;      ///< u(1), model 4; 1 is negative
    uint32_t exposure_compensation_value_numerator;  ///< u(16), model 4
    uint32_t exposure_compensation_value_denom_idc;  ///< u(16), model 4
    uint32_t ref_screen_luminance_white;             ///< u(32), model 4, in 1/256 cd/m²
    uint32_t extended_range_white_level;             ///< u(32), model 4, in 1/256 percent
    uint32_t nominal_black_level_code_value;         ///< u(16), model 4; nominal_black_level_luma_code_value
    uint32_t nominal_white_level_code_value;         ///< u(16), model 4; nominal_white_level_luma_code_value
    uint32_t extended_white_level_code_value;        ///< u(16), model 4; extended_white_level_luma_code_value

    CodedBits extension_data;  ///< what follows a reserved tone_map_model_id, borrowed from the unit
};

/// Reads start_of_coded_interval[ i ] of a tone_mapping_info() with model 2, in order.
class ToneMapIntervals {
public:
    /// \param payload  read without a fault; the unit that it was read from is borrowed
    explicit ToneMapIntervals(const ToneMappingInfo& payload) noexcept;

    /// Stores the next value. False after the last one, and for another model.
    bool next(uint32_t& start_of_coded_interval) noexcept;

private:
    Reader reader_;
    uint32_t width_;
};

/// A point of a piece-wise linear mapping.
struct ToneMapPivot {
    uint32_t coded_pivot_value;   ///< u(v), of coded_data_bit_depth bits in whole bytes
    uint32_t target_pivot_value;  ///< u(v), of target_bit_depth bits in whole bytes
};

/// Reads the pivots of a tone_mapping_info() with model 3, in order.
class ToneMapPivots {
public:
    /// \param payload  read without a fault; the unit that it was read from is borrowed
    explicit ToneMapPivots(const ToneMappingInfo& payload) noexcept;

    /// Stores the next pivot. False after the last one, and for another model.
    bool next(ToneMapPivot& pivot) noexcept;

private:
    Reader reader_;
    uint32_t codedWidth_;
    uint32_t targetWidth_;
};

}  // namespace qv::sei

#endif
