// The view scalability information messages as syntax functions.
#ifndef QV_BITSTREAM_SEI_VIEWSCALABILITYSYNTAX_H
#define QV_BITSTREAM_SEI_VIEWSCALABILITYSYNTAX_H

#include <cstddef>

#include "bitstream/sei/LayerInfoSyntax.h"
#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/ViewScalability.h"
#include "bitstream/syntax/Uses.h"

template <>
inline constexpr size_t qv::detail::kClearedBytes<qv::sei::ViewOperationPoint> =
    offsetof(qv::sei::ViewOperationPoint, parameter_sets.seq_parameter_set_id_delta);

namespace qv::sei {

// mvcd_op_view_info(), I.13.1.1.1
template <class Syntax>
void mvcd_op_view_info(Syntax& s, OperationPointView& view) {
    static constexpr Structure kStructure = {"mvcd_op_view_info()", "I.13.1.1.1"};
    const Within<Syntax> within(s, kStructure);
    s.flag("view_info_depth_view_present_flag", view.view_info_depth_view_present_flag);
    if (view.view_info_depth_view_present_flag) {
        s.flag("mvcd_depth_view_flag", view.mvcd_depth_view_flag);
    }
    s.flag("view_info_texture_view_present_flag", view.view_info_texture_view_present_flag);
    if (view.view_info_texture_view_present_flag) {
        s.flag("mvcd_texture_view_flag", view.mvcd_texture_view_flag);
    }
}

// View j of operation point i: an element with its view_id and, in MVCD, mvcd_op_view_info().
template <class Syntax>
void operation_point_view(Syntax& s, const char* name, bool isMvcd, uint32_t i, uint32_t j,
                          OperationPointView& view) {
    view = {};
    s.ue(at(name, i, j), view.view_id, 0, avc::kMostViews - 1);
    if (isMvcd) {
        mvcd_op_view_info(s, view);
    }
}

// op_profile_level_idc[ i ] to avg_frm_rate[ i ]
template <class Syntax>
void operation_point_rates(Syntax& s, uint32_t i, ViewOperationPoint& point) {
    if (point.profile_level_info_present_flag) {
        s.u(24, at("op_profile_level_idc", i), point.op_profile_level_idc);
    }
    if (point.bitrate_info_present_flag) {
        s.u(16, at("avg_bitrate", i), point.avg_bitrate);
        s.u(16, at("max_bitrate", i), point.max_bitrate);
        s.u(16, at("max_bitrate_calc_window", i), point.max_bitrate_calc_window);
    }
    if (point.frm_rate_info_present_flag) {
        s.u(2, at("constant_frm_rate_idc", i), point.constant_frm_rate_idc, 0, 2);
        s.u(16, at("avg_frm_rate", i), point.avg_frm_rate);
    }
}

// num_directly_dependent_views[ i ] to view_dependency_info_src_op_id[ i ]
template <class Syntax>
void operation_point_dependency(Syntax& s, bool isMvcd, uint32_t i, ViewOperationPoint& point) {
    if (!point.view_dependency_info_present_flag) {
        s.ue(at("view_dependency_info_src_op_id", i), point.view_dependency_info_src_op_id);
        return;
    }
    s.ue(at("num_directly_dependent_views", i), point.num_directly_dependent_views, 0, avc::kMostViews - 1);
    for (uint32_t j = 0; j < point.num_directly_dependent_views; ++j) {
        operation_point_view(s, "directly_dependent_view_id", isMvcd, i, j,
                             point.directly_dependent_views[j]);
    }
}

// num_seq_parameter_sets[ i ] to parameter_sets_info_src_op_id[ i ]
template <class Syntax>
void operation_point_parameter_sets(Syntax& s, bool isMvcd, uint32_t i, ViewOperationPoint& point) {
    if (!point.parameter_sets_info_present_flag) {
        s.ue(at("parameter_sets_info_src_op_id", i), point.parameter_sets_info_src_op_id);
    } else if (isMvcd) {
        mvcd_parameter_sets(s, i, point.parameter_sets);
    } else {
        layer_parameter_sets(s, i, point.parameter_sets);
    }
}

// The elements of operation point i.
template <class Syntax>
void view_operation_point(Syntax& s, bool isMvcd, uint32_t i, ViewOperationPoint& point) {
    detail::clear(point);
    s.ue(at("operation_point_id", i), point.operation_point_id);
    s.u(5, at("priority_id", i), point.priority_id);
    s.u(3, at("temporal_id", i), point.temporal_id);
    s.ue(at("num_target_output_views_minus1", i), point.num_target_output_views_minus1, 0,
         avc::kMostViews - 1);
    for (uint32_t j = 0; j <= point.num_target_output_views_minus1; ++j) {
        operation_point_view(s, "view_id", isMvcd, i, j, point.target_output_views[j]);
    }
    s.flag(at("profile_level_info_present_flag", i), point.profile_level_info_present_flag);
    s.flag(at("bitrate_info_present_flag", i), point.bitrate_info_present_flag);
    s.flag(at("frm_rate_info_present_flag", i), point.frm_rate_info_present_flag);
    if (point.num_target_output_views_minus1 == 0) {
        s.flag(at("view_dependency_info_present_flag", i), point.view_dependency_info_present_flag);
    }
    s.flag(at("parameter_sets_info_present_flag", i), point.parameter_sets_info_present_flag);
    s.flag(at("bitstream_restriction_info_present_flag", i), point.bitstream_restriction_info_present_flag);
    operation_point_rates(s, i, point);
    operation_point_dependency(s, isMvcd, i, point);
    operation_point_parameter_sets(s, isMvcd, i, point);
    if (point.bitstream_restriction_info_present_flag) {
        layer_bitstream_restriction(s, i, isMvcd ? "num_reorder_frames" : "max_num_reorder_frames",
                                    point.bitstream_restriction);
    }
}

template <class Syntax>
void view_operation_point(Syntax& s, const ViewScalabilityInfo& info, uint32_t i, ViewOperationPoint& point) {
    static_cast<void>(info);
    view_operation_point(s, false, i, point);
}

template <class Syntax>
void view_operation_point(Syntax& s, const MvcdViewScalabilityInfo& info, uint32_t i,
                          ViewOperationPoint& point) {
    static_cast<void>(info);
    view_operation_point(s, true, i, point);
}

template <class Syntax, class Info>
void view_operation_points(Syntax& s, Info& info) {
    s.ue("num_operation_points_minus1", info.num_operation_points_minus1, 0,
         ViewScalabilityInfo::kMostOperationPoints - 1);
    s.keep(info.operation_points, [&info](auto& in) {
        ViewOperationPoint point;
        for (uint32_t i = 0; i <= info.num_operation_points_minus1 && !in.failed(); ++i) {
            view_operation_point(in, info, i, point);
        }
    });
}

// view_scalability_info(), H.13.1.3
template <class Syntax>
void view_scalability_info(Syntax& s, const Context& context, ViewScalabilityInfo& info) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"view_scalability_info()", "H.13.1.3"};
    const Within<Syntax> within(s, kStructure);
    view_operation_points(s, info);
}

// mvcd_view_scalability_info(), I.13.1.1
template <class Syntax>
void mvcd_view_scalability_info(Syntax& s, const Context& context, MvcdViewScalabilityInfo& info) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"mvcd_view_scalability_info()", "I.13.1.1"};
    const Within<Syntax> within(s, kStructure);
    view_operation_points(s, info);
}

}  // namespace qv::sei

#endif
