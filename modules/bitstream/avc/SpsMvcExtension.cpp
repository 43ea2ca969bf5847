// The lists of seq_parameter_set_mvc_extension(), seq_parameter_set_mvcd_extension() and their VUI
// extensions.
#include "bitstream/avc/SpsMvcExtension.h"

#include "bitstream/avc/SpsMvcExtensionSyntax.h"

namespace qv::avc {

ViewList::ViewList(const Views& views) noexcept
    : views_(views.views),
      anchorRefs_(views.anchor_refs),
      nonAnchorRefs_(views.non_anchor_refs),
      count_(views.views.empty() ? 0 : views.num_views_minus1 + 1),
      isMvcd_(views.isMvcd) {}

bool ViewList::next(View& view) noexcept {
    if (index_ == count_) {
        return false;
    }
    view = {};
    view_components(views_, view, isMvcd_, index_);
    if (index_ > 0 && (!isMvcd_ || view.depth_view_present_flag)) {
        const uint32_t most = mostReferences(count_ - 1);
        inter_view_references(anchorRefs_, view.anchor_refs, kAnchorRefs, most, index_);
        inter_view_references(nonAnchorRefs_, view.non_anchor_refs, kNonAnchorRefs, most, index_);
    }
    ++index_;
    return true;
}

OperationPoints::OperationPoints(const Views& views) noexcept
    : reader_(views.level_values),
      levelsLeft_(views.level_values.empty() ? 0 : views.num_level_values_signalled_minus1 + 1),
      isMvcd_(views.isMvcd) {}

bool OperationPoints::next(OperationPoint& point) noexcept {
    if (pointsLeft_ == 0) {
        if (levelsLeft_ == 0) {
            return false;
        }
        --levelsLeft_;
        uint32_t num_applicable_ops_minus1 = 0;
        level_value(reader_, level_idc_, num_applicable_ops_minus1, 0);
        pointsLeft_ = num_applicable_ops_minus1 + 1;
    }
    --pointsLeft_;
    point.level_idc = level_idc_;
    point.applicable_op_num_views_minus1 = 0;
    point.applicable_op_num_texture_views_minus1 = 0;
    point.applicable_op_num_depth_views = 0;
    operation_point(reader_, point, isMvcd_, 0, 0);
    return true;
}

VuiOperationPoints::VuiOperationPoints(const MvcVuiExtension& vui) noexcept
    : reader_(vui.operation_points),
      left_(vui.operation_points.empty() ? 0 : vui.num_ops_minus1 + 1),
      isMvcd_(vui.isMvcd) {}

bool VuiOperationPoints::next(VuiOperationPoint& point) noexcept {
    if (left_ == 0) {
        return false;
    }
    --left_;
    point.timing = {};
    vui_operation_point(reader_, point, isMvcd_ ? kVuiMvcd : kVuiMvc, 0);
    return true;
}

}  // namespace qv::avc
