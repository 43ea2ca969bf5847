/// \file
/// What a subset sequence parameter set says of a multiview stream.
#ifndef QV_BITSTREAM_AVC_SPSMVCEXTENSION_H
#define QV_BITSTREAM_AVC_SPSMVCEXTENSION_H

#include <cstdint>

#include "bitstream/avc/VuiExtensionTiming.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

/// The greatest number of views, and of target views of an operation point (H.264 H.7.4.2.1.4).
constexpr uint32_t kMostViews = 1024;

/// The part that seq_parameter_set_mvc_extension() and seq_parameter_set_mvcd_extension() have in common: the
/// views, what they are predicted from, and the operation points. The lists are borrowed from the unit.
struct Views {
    uint32_t num_views_minus1;                   ///< ue(v), 0..1023
    uint32_t num_level_values_signalled_minus1;  ///< ue(v), 0..63

    CodedBits views;            ///< view_id[ i ] and the flags with it; see ViewList
    CodedBits anchor_refs;      ///< num_anchor_refs_l0[ i ] and what follows it; see ViewList
    CodedBits non_anchor_refs;  ///< num_non_anchor_refs_l0[ i ] and what follows it; see ViewList
    CodedBits level_values;     ///< level_idc[ i ] and what follows it; see OperationPoints

    /// True for seq_parameter_set_mvcd_extension(), whose lists have more elements.
    bool isMvcd;
};

/// seq_parameter_set_mvc_extension(), H.264 H.7.3.2.1.4 and H.7.4.2.1.4.
struct SpsMvcExtension {
    Views views;  ///< the views and the operation points

    // Profile 134, MFC High.

    uint32_t mfc_format_idc;          ///< u(6); 2..63 are reserved
    bool default_grid_position_flag;  ///< u(1)
    uint32_t view0_grid_position_x;   ///< u(4)
    uint32_t view0_grid_position_y;   ///< u(4)
    uint32_t view1_grid_position_x;   ///< u(4)
    uint32_t view1_grid_position_y;   ///< u(4)
    bool rpu_filter_enabled_flag;     ///< u(1)
    bool rpu_field_processing_flag;   ///< u(1)
};

/// mvc_vui_parameters_extension(), H.264 H.14.1 and H.14.2, or mvcd_vui_parameters_extension(), I.14.1 and
/// I.14.2.
struct MvcVuiExtension {
    uint32_t num_ops_minus1;  ///< vui_mvc_num_ops_minus1, vui_mvcd_num_ops_minus1: ue(v), 0..1023

    /// The operation points, borrowed from the unit; see VuiOperationPoints.
    CodedBits operation_points;

    /// True for mvcd_vui_parameters_extension(), whose entries have more elements.
    bool isMvcd;
};

/// seq_parameter_set_mvcd_extension(), H.264 I.7.3.2.1.5 and I.7.4.2.1.5.
struct SpsMvcdExtension {
    Views views;                               ///< the views and the operation points
    bool mvcd_vui_parameters_present_flag;     ///< u(1)
    MvcVuiExtension mvcd_vui;                  ///< with mvcd_vui_parameters_present_flag
    bool texture_vui_parameters_present_flag;  ///< u(1)
    MvcVuiExtension texture_vui;               ///< with texture_vui_parameters_present_flag
};

/// What a view is predicted from in anchor, or in non-anchor, view components. Elements beyond the counts are
/// not set.
struct InterViewReferences {
    static constexpr uint32_t kMostReferences = 15;  ///< the greatest number of references in a list

    uint32_t num_refs_l0;  ///< ue(v), 0..Min( 15, num_views_minus1 )
    uint32_t num_refs_l1;  ///< ue(v), 0..Min( 15, num_views_minus1 )

    uint32_t ref_l0[kMostReferences];  ///< view_id, ue(v), 0..1023
    uint32_t ref_l1[kMostReferences];  ///< view_id, ue(v), 0..1023
};

/// A view of a multiview stream.
struct View {
    uint32_t view_id;                ///< ue(v), 0..1023
    bool depth_view_present_flag;    ///< 0 when not present
    bool texture_view_present_flag;  ///< 1 when not present

    InterViewReferences anchor_refs;      ///< none for the base view
    InterViewReferences non_anchor_refs;  ///< none for the base view
};

/// Reads the views of a multiview stream in order of their view order index.
class ViewList {
public:
    /// \param views  read without a fault; the unit that it was read from is borrowed
    explicit ViewList(const Views& views) noexcept;

    /// Stores the next view. False after the last one.
    bool next(View& view) noexcept;

private:
    Reader views_;
    Reader anchorRefs_;
    Reader nonAnchorRefs_;
    uint32_t index_ = 0;
    uint32_t count_;
    bool isMvcd_;
};

/// A view that an operation point outputs.
struct TargetView {
    uint32_t view_id;   ///< ue(v), 0..1023
    bool depth_flag;    ///< 0 when not present
    bool texture_flag;  ///< 1 when not present
};

/// An operation point of a multiview stream, with a level that it conforms to. Elements beyond the counts are
/// not set.
struct OperationPoint {
    uint32_t level_idc;                              ///< u(8)
    uint32_t applicable_op_temporal_id;              ///< u(3)
    uint32_t applicable_op_num_target_views_minus1;  ///< ue(v), 0..1023

    uint32_t applicable_op_num_views_minus1;          ///< ue(v), 0..1023; MVC
    uint32_t applicable_op_num_texture_views_minus1;  ///< ue(v), 0..1023; MVCD
    uint32_t applicable_op_num_depth_views;           ///< ue(v), 0..1024; MVCD

    TargetView target_views[kMostViews];  ///< applicable_op_num_target_views_minus1 + 1 of them
};

/// Reads the operation points of a multiview stream, in order of the levels.
class OperationPoints {
public:
    /// \param views  read without a fault; the unit that it was read from is borrowed
    explicit OperationPoints(const Views& views) noexcept;

    /// Stores the next operation point. False after the last one.
    bool next(OperationPoint& point) noexcept;

private:
    Reader reader_;
    uint32_t levelsLeft_;
    uint32_t pointsLeft_ = 0;
    uint32_t level_idc_ = 0;
    bool isMvcd_;
};

/// An operation point of a VUI extension. Elements beyond the counts are not set.
struct VuiOperationPoint {
    uint32_t temporal_id;                     ///< u(3)
    uint32_t num_target_output_views_minus1;  ///< ue(v), 0..1023
    VuiExtensionTiming timing;                ///< of the operation point

    TargetView target_output_views[kMostViews];  ///< num_target_output_views_minus1 + 1 of them
};

/// Reads the operation points of mvc_vui_parameters_extension() or mvcd_vui_parameters_extension(), in order.
class VuiOperationPoints {
public:
    /// \param vui  read without a fault; the unit that it was read from is borrowed
    explicit VuiOperationPoints(const MvcVuiExtension& vui) noexcept;

    /// Stores the next operation point. False after the last one.
    bool next(VuiOperationPoint& point) noexcept;

private:
    Reader reader_;
    uint32_t left_;
    bool isMvcd_;
};

}  // namespace qv::avc

#endif
