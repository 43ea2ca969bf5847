/// \file
/// How decoded colours are mapped to those of another display.
#ifndef QV_BITSTREAM_SEI_COLOURREMAPPING_H
#define QV_BITSTREAM_SEI_COLOURREMAPPING_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"

namespace qv::sei {

/// knee_function_info(), H.265 D.2.32. Of the knee points as many elements are set as num_knee_points_minus1
/// says.
struct KneeFunctionInfo {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 141};  ///< payloadType
    static constexpr uint32_t kMostKneePoints = 999;                      ///< entries of either list

    uint32_t knee_function_id;                    ///< ue(v); 256..511 and 2^31.. are reserved
    bool knee_function_cancel_flag;               ///< u(1); nothing follows when it is 1
    bool knee_function_persistence_flag;          ///< u(1)
    uint32_t input_d_range;                       ///< u(32), 0.1 % of the nominal peak luminance
    uint32_t input_disp_luminance;                ///< u(32), 0.1 cd/m²
    uint32_t output_d_range;                      ///< u(32), 0.1 % of the nominal peak luminance
    uint32_t output_disp_luminance;               ///< u(32), 0.1 cd/m²
    uint32_t num_knee_points_minus1;              ///< ue(v), 0..998
    uint16_t input_knee_point[kMostKneePoints];   ///< u(10), 1..999, 0.1 %
    uint16_t output_knee_point[kMostKneePoints];  ///< u(10), 0..1000, 0.1 %
};

/// colour_remapping_info(), H.264 D.1.30, H.265 D.2.33. A look-up table with num_val_minus1 0 has no entries
/// and maps every value to itself.
struct ColourRemappingInfo {
    static constexpr PayloadTypes kPayloadTypes = {142, 142};  ///< payloadType
    static constexpr uint32_t kComponents = 3;                 ///< colour components
    static constexpr uint32_t kMostPoints = 33;                ///< entries of a look-up table

    uint32_t colour_remap_id;                          ///< ue(v); 256..511 and 2^31.. are reserved
    bool colour_remap_cancel_flag;                     ///< u(1); nothing follows when it is 1
    uint32_t colour_remap_repetition_period;           ///< ue(v), 0..16384, in H.264
    bool colour_remap_persistence_flag;                ///< u(1), in H.265
    bool colour_remap_video_signal_info_present_flag;  ///< u(1)
    bool colour_remap_full_range_flag;                 ///< u(1)
    uint32_t colour_remap_primaries;                   ///< u(8), as colour_primaries of the VUI
    uint32_t colour_remap_transfer_function;           ///< u(8), as transfer_characteristics of the VUI
    uint32_t colour_remap_matrix_coefficients;         ///< u(8), as matrix_coefficients of the VUI
    uint32_t colour_remap_input_bit_depth;             ///< u(8), 8..16
    uint32_t colour_remap_output_bit_depth;            ///< u(8), 8..16

    uint32_t pre_lut_num_val_minus1[kComponents];              ///< u(8), 0..32
    uint16_t pre_lut_coded_value[kComponents][kMostPoints];    ///< u(v), 8 or 16 bits
    uint16_t pre_lut_target_value[kComponents][kMostPoints];   ///< u(v), 8 or 16 bits
    bool colour_remap_matrix_present_flag;                     ///< u(1)
    uint32_t log2_matrix_denom;                                ///< u(4)
    int32_t colour_remap_coeffs[kComponents][kComponents];     ///< se(v), -2^15..2^15 - 1
    uint32_t post_lut_num_val_minus1[kComponents];             ///< u(8), 0..32
    uint16_t post_lut_coded_value[kComponents][kMostPoints];   ///< u(v), 8 or 16 bits
    uint16_t post_lut_target_value[kComponents][kMostPoints];  ///< u(v), 8 or 16 bits
};

}  // namespace qv::sei

#endif
