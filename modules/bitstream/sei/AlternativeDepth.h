/// \file
/// Alternative depth: the views of a global view and depth stream.
#ifndef QV_BITSTREAM_SEI_ALTERNATIVEDEPTH_H
#define QV_BITSTREAM_SEI_ALTERNATIVEDEPTH_H

#include <cstdint>

#include "bitstream/sei/CodedFloat.h"
#include "bitstream/sei/EntryReader.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// alternative_depth_info(), H.264 I.13.1.6 and I.13.2.6, H.265 I.14.2.3 and I.14.3.3. The lists are borrowed
/// from the unit.
struct AlternativeDepthInfo {
    static constexpr PayloadTypes kPayloadTypes = {181, 181};  ///< payloadType
    static constexpr uint32_t kMostConstituentViews = 1023;    ///< the greatest number of constituent views

    bool alternative_depth_info_cancel_flag;  ///< u(1), H.265

    /// H.264: ue(v), above 0 is reserved. H.265: u(2), without alternative_depth_info_cancel_flag; 2 and 3
    /// are reserved.
    uint32_t depth_type;

    // With depth_type 0.

    uint32_t num_constituent_views_gvd_minus1;  ///< ue(v), 0..1022
    bool depth_present_gvd_flag;                ///< u(1)
    bool z_gvd_flag;                            ///< u(1)
    bool intrinsic_param_gvd_flag;              ///< u(1)
    bool rotation_gvd_flag;                     ///< u(1)
    bool translation_gvd_flag;                  ///< u(1)
    CodedBits depth_ranges;  ///< with z_gvd_flag: sign_gvd_z_near_flag[ i ] and on; see GvdDepthRanges
    uint32_t prec_gvd_focal_length;       ///< ue(v), 0..31, with intrinsic_param_gvd_flag
    uint32_t prec_gvd_principal_point;    ///< ue(v), 0..31, with intrinsic_param_gvd_flag
    uint32_t prec_gvd_rotation_param;     ///< ue(v), 0..31, with rotation_gvd_flag
    uint32_t prec_gvd_translation_param;  ///< ue(v), 0..31, with translation_gvd_flag
    CodedBits views;                      ///< sign_gvd_focal_length_x[ i ] and what follows it; see GvdViews

    // H.265, with depth_type 1.

    int32_t min_offset_x_int;         ///< se(v)
    uint32_t min_offset_x_frac;       ///< u(8)
    int32_t max_offset_x_int;         ///< se(v)
    uint32_t max_offset_x_frac;       ///< u(8)
    bool offset_y_present_flag;       ///< u(1)
    int32_t min_offset_y_int;         ///< se(v), with offset_y_present_flag
    uint32_t min_offset_y_frac;       ///< u(8), with offset_y_present_flag
    int32_t max_offset_y_int;         ///< se(v), with offset_y_present_flag
    uint32_t max_offset_y_frac;       ///< u(8), with offset_y_present_flag
    bool warp_map_size_present_flag;  ///< u(1)
    uint32_t warp_map_width_minus2;   ///< ue(v), with warp_map_size_present_flag
    uint32_t warp_map_height_minus2;  ///< ue(v), with warp_map_size_present_flag

    /// H.264, with a reserved depth_type: the rest of the payload.
    CodedBits reserved;
};

/// The depth range of a view.
struct GvdDepthRange {
    CodedFloat z_near;  ///< nearest depth
    CodedFloat z_far;   ///< farthest depth
};

/// The camera of a view.
struct GvdView {
    CodedFloat focal_length_x;     ///< with intrinsic_param_gvd_flag, in luma samples
    CodedFloat focal_length_y;     ///< with intrinsic_param_gvd_flag, in luma samples
    CodedFloat principal_point_x;  ///< with intrinsic_param_gvd_flag, in luma samples
    CodedFloat principal_point_y;  ///< with intrinsic_param_gvd_flag, in luma samples
    CodedFloat r[3][3];            ///< with rotation_gvd_flag: rotation matrix, row by row
    CodedFloat t_x;                ///< with translation_gvd_flag
};

/// Reads the depth ranges of the views: the base view and num_constituent_views_gvd_minus1 + 1 others.
using GvdDepthRanges = EntryReader<AlternativeDepthInfo, GvdDepthRange>;

/// Reads the cameras of the views, when one of the flags for their elements is 1.
using GvdViews = EntryReader<AlternativeDepthInfo, GvdView>;

}  // namespace qv::sei

#endif
