/// \file
/// The view scalability information messages of multiview streams.
#ifndef QV_BITSTREAM_SEI_VIEWSCALABILITY_H
#define QV_BITSTREAM_SEI_VIEWSCALABILITY_H

#include <cstdint>

#include "bitstream/avc/SpsMvcExtension.h"
#include "bitstream/sei/EntryReader.h"
#include "bitstream/sei/LayerInfo.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// view_scalability_info(), H.264 H.13.1.3 and H.13.2.3.
struct ViewScalabilityInfo {
    static constexpr PayloadTypes kPayloadTypes = {38, kNoPayloadType};  ///< payloadType
    static constexpr uint32_t kMostOperationPoints = 1024;  ///< the greatest number of operation points

    uint32_t num_operation_points_minus1;  ///< ue(v), 0..1023

    /// operation_point_id[ i ] and what follows it, borrowed; see ViewOperationPoints.
    CodedBits operation_points;
};

/// mvcd_view_scalability_info(), H.264 I.13.1.1 and I.13.2.1.
struct MvcdViewScalabilityInfo {
    static constexpr PayloadTypes kPayloadTypes = {49, kNoPayloadType};  ///< payloadType

    uint32_t num_operation_points_minus1;  ///< ue(v), 0..1023

    /// operation_point_id[ i ] and what follows it, borrowed; see MvcdViewOperationPoints.
    CodedBits operation_points;
};

/// A view of an operation point. The flags are those of mvcd_op_view_info(), H.264 I.13.1.1.1; MVC has none.
struct OperationPointView {
    uint32_t view_id;                          ///< ue(v), 0..1023
    bool view_info_depth_view_present_flag;    ///< u(1)
    bool mvcd_depth_view_flag;                 ///< u(1), with view_info_depth_view_present_flag
    bool view_info_texture_view_present_flag;  ///< u(1)
    bool mvcd_texture_view_flag;               ///< u(1), with view_info_texture_view_present_flag
};

/// An operation point. Elements of arrays beyond their counts are not set.
struct ViewOperationPoint {
    uint32_t operation_point_id;                   ///< ue(v)
    uint32_t priority_id;                          ///< u(5)
    uint32_t temporal_id;                          ///< u(3)
    uint32_t num_target_output_views_minus1;       ///< ue(v), 0..1023
    bool profile_level_info_present_flag;          ///< u(1)
    bool bitrate_info_present_flag;                ///< u(1)
    bool frm_rate_info_present_flag;               ///< u(1)
    bool view_dependency_info_present_flag;        ///< u(1), with num_target_output_views_minus1 0
    bool parameter_sets_info_present_flag;         ///< u(1)
    bool bitstream_restriction_info_present_flag;  ///< u(1)

    /// u(24), with profile_level_info_present_flag: profile_idc, the constraint flags, level_idc.
    uint32_t op_profile_level_idc;

    // With bitrate_info_present_flag.

    uint32_t avg_bitrate;              ///< u(16), in units of 1000 bit/s
    uint32_t max_bitrate;              ///< u(16), in units of 1000 bit/s
    uint32_t max_bitrate_calc_window;  ///< u(16), in units of 1/100 second

    // With frm_rate_info_present_flag.

    uint32_t constant_frm_rate_idc;  ///< u(2), 0..2
    uint32_t avg_frm_rate;           ///< u(16), in frames per 256 seconds

    uint32_t num_directly_dependent_views;    ///< ue(v), 0..1023, with view_dependency_info_present_flag
    uint32_t view_dependency_info_src_op_id;  ///< ue(v), without view_dependency_info_present_flag
    uint32_t parameter_sets_info_src_op_id;   ///< ue(v), without parameter_sets_info_present_flag

    /// With bitstream_restriction_info_present_flag.
    LayerBitstreamRestriction bitstream_restriction;

    // Last, because of the arrays: they are set as far as their counts go.

    LayerParameterSets parameter_sets;  ///< with parameter_sets_info_present_flag

    OperationPointView target_output_views[avc::kMostViews];       ///< view_id[ i ][ j ]
    OperationPointView directly_dependent_views[avc::kMostViews];  ///< directly_dependent_view_id[ i ][ j ]
};

/// Reads the operation points of view_scalability_info().
using ViewOperationPoints = EntryReader<ViewScalabilityInfo, ViewOperationPoint>;

/// Reads the operation points of mvcd_view_scalability_info().
using MvcdViewOperationPoints = EntryReader<MvcdViewScalabilityInfo, ViewOperationPoint>;

}  // namespace qv::sei

#endif
