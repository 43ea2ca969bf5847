/// \file
/// What the samples of depth views mean, and where they are.
#ifndef QV_BITSTREAM_SEI_DEPTHREPRESENTATION_H
#define QV_BITSTREAM_SEI_DEPTHREPRESENTATION_H

#include <cstdint>

#include "bitstream/sei/CodedFloat.h"
#include "bitstream/sei/EntryReader.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// depth_representation_info(), H.264 I.13.1.3 and I.13.2.3, H.265 G.14.2.4 and G.14.3.4. The lists are
/// borrowed from the unit.
struct DepthRepresentationInfo {
    static constexpr PayloadTypes kPayloadTypes = {50, 177};  ///< payloadType

    bool all_views_equal_flag;              ///< u(1), H.264
    uint32_t num_views_minus1;              ///< ue(v), 0..1023, H.264 without all_views_equal_flag
    bool z_near_flag;                       ///< u(1)
    bool z_far_flag;                        ///< u(1)
    bool z_axis_equal_flag;                 ///< u(1), H.264 with z_near_flag or z_far_flag
    uint32_t common_z_axis_reference_view;  ///< ue(v), with z_axis_equal_flag
    bool d_min_flag;                        ///< u(1)
    bool d_max_flag;                        ///< u(1)

    /// ue(v): 0 inverse of the distance, 1 disparity, 2 distance, 3 disparity that is not linear; others are
    /// reserved, in H.265 4..15.
    uint32_t depth_representation_type;

    /// depth_info_view_id[ i ] and what follows it; in H.265 disparity_ref_view_id and what follows it; see
    /// DepthRepresentations.
    CodedBits views;

    // With depth_representation_type 3.

    uint32_t depth_nonlinear_representation_num_minus1;  ///< ue(v)
    CodedBits depth_nonlinear_representation_model;      ///< ue(v) each; see NonlinearDepthModel

    /// True for H.265, where the message is about one view.
    bool isHevc;
};

/// What the depth samples of a view mean. An exponent of 127 is unspecified.
struct DepthRepresentation {
    uint32_t depth_info_view_id;        ///< ue(v), H.264
    uint32_t z_axis_reference_view;     ///< ue(v), H.264 without z_axis_equal_flag
    uint32_t disparity_reference_view;  ///< ue(v), with d_min_flag or d_max_flag; H.265 disparity_ref_view_id
    CodedFloat z_near;                  ///< with z_near_flag
    CodedFloat z_far;                   ///< with z_far_flag
    CodedFloat d_min;                   ///< with d_min_flag, in luma samples
    CodedFloat d_max;                   ///< with d_max_flag, in luma samples
};

/// A border of the piece-wise linear mapping of depth samples.
struct NonlinearDepth {
    uint32_t depth_nonlinear_representation_model;  ///< ue(v)
};

/// Reads what is said of each view, or of all of them with all_views_equal_flag. In H.265 there is one entry,
/// or none when all flags are 0.
using DepthRepresentations = EntryReader<DepthRepresentationInfo, DepthRepresentation>;

/// Reads the borders of the mapping, from that of subscript 1 on.
using NonlinearDepthModel = EntryReader<DepthRepresentationInfo, NonlinearDepth>;

/// depth_timing(), H.264 I.13.1.5 and I.13.2.5.
struct DepthTiming {
    static constexpr PayloadTypes kPayloadTypes = {52, kNoPayloadType};  ///< payloadType

    bool per_view_depth_timing_flag;  ///< u(1)

    /// depth_timing_offset( ) of each depth view, or one for all of them, borrowed; see DepthTimingOffsets.
    /// Their number is that of the payload; it is not compared with NumDepthViews of the subset SPS, which
    /// the message does not name.
    CodedBits offsets;
};

/// The delay of a depth view: depth_timing_offset( ), H.264 I.13.1.5.1.
struct DepthTimingOffset {
    uint32_t offset_len_minus1;           ///< u(5)
    uint32_t depth_disp_delay_offset_fp;  ///< u(v), offset_len_minus1 + 1 bits
    uint32_t depth_disp_delay_offset_dp;  ///< u(6)
};

/// Reads the delays.
using DepthTimingOffsets = EntryReader<DepthTiming, DepthTimingOffset>;

/// depth_sampling_info(), H.264 I.13.1.7 and I.13.2.7.
struct DepthSamplingInfo {
    static constexpr PayloadTypes kPayloadTypes = {53, kNoPayloadType};  ///< payloadType

    uint32_t dttsr_x_mul;               ///< u(16)
    uint32_t dttsr_x_dp;                ///< u(4)
    uint32_t dttsr_y_mul;               ///< u(16)
    uint32_t dttsr_y_dp;                ///< u(4)
    bool per_view_depth_grid_pos_flag;  ///< u(1)

    /// ue(v), 0..1023, with per_view_depth_grid_pos_flag.
    uint32_t num_video_plus_depth_views_minus1;

    /// depth_grid_view_id[ i ] and depth_grid_position( ) of each view, or one depth_grid_position( ) for all
    /// of them, borrowed; see DepthGridPositions.
    CodedBits positions;
};

/// The position of the depth samples of a view: depth_grid_position( ), H.264 I.13.1.7.1.
struct DepthGridPosition {
    uint32_t depth_grid_view_id;      ///< ue(v), with per_view_depth_grid_pos_flag
    uint32_t depth_grid_pos_x_fp;     ///< u(20)
    uint32_t depth_grid_pos_x_dp;     ///< u(4)
    bool depth_grid_pos_x_sign_flag;  ///< u(1)
    uint32_t depth_grid_pos_y_fp;     ///< u(20)
    uint32_t depth_grid_pos_y_dp;     ///< u(4)
    bool depth_grid_pos_y_sign_flag;  ///< u(1)
};

/// Reads the positions.
using DepthGridPositions = EntryReader<DepthSamplingInfo, DepthGridPosition>;

/// constrained_depth_parameter_set_identifier(), H.264 J.13.1.1 and J.13.2.1.
struct ConstrainedDepthParameterSetIdentifier {
    static constexpr PayloadTypes kPayloadTypes = {54, kNoPayloadType};  ///< payloadType
    uint32_t max_dps_id;                                                 ///< ue(v)
    uint32_t max_dps_id_diff;                                            ///< ue(v)
};

}  // namespace qv::sei

#endif
