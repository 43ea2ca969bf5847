/// \file
/// Displays that a multiview stream was made for.
#ifndef QV_BITSTREAM_SEI_REFERENCEDISPLAYS_H
#define QV_BITSTREAM_SEI_REFERENCEDISPLAYS_H

#include <cstdint>

#include "bitstream/sei/CodedFloat.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// A reference display, with a pair of views for it. An exponent of 63 is reserved.
struct ReferenceDisplay {
    uint32_t left_view_id;               ///< ue(v), H.265
    uint32_t right_view_id;              ///< ue(v), H.265
    CodedFloat ref_baseline;             ///< in units of the camera parameters; H.264
    CodedFloat ref_display_width;        ///< in centimetres
    CodedFloat ref_viewing_distance;     ///< in centimetres, with ref_viewing_distance_flag
    bool additional_shift_present_flag;  ///< u(1)
    uint32_t num_sample_shift_plus512;   ///< u(10), with additional_shift_present_flag
};

/// three_dimensional_reference_displays_info(), H.264 I.13.1.4 and I.13.2.4, H.265 G.14.2.3 and G.14.3.3.
struct ThreeDimensionalReferenceDisplaysInfo {
    static constexpr PayloadTypes kPayloadTypes = {51, 176};  ///< payloadType
    static constexpr uint32_t kMostDisplays = 32;             ///< the greatest number of displays

    uint32_t prec_ref_baseline;        ///< ue(v), 0..31; H.264
    uint32_t prec_ref_display_width;   ///< ue(v), 0..31
    bool ref_viewing_distance_flag;    ///< u(1)
    uint32_t prec_ref_viewing_dist;    ///< ue(v), 0..31, with ref_viewing_distance_flag
    uint32_t num_ref_displays_minus1;  ///< ue(v), 0..31

    bool three_dimensional_reference_displays_extension_flag;  ///< u(1); 1 is reserved

    /// H.264, with three_dimensional_reference_displays_extension_flag 1: the rest of the payload, borrowed.
    CodedBits extension;

    ReferenceDisplay displays[kMostDisplays];  ///< num_ref_displays_minus1 + 1 of them; the others are 0
};

}  // namespace qv::sei

#endif
