// seq_parameter_set_mvc_extension(), seq_parameter_set_mvcd_extension() and their VUI extensions of H.264 as
// syntax functions.
#ifndef QV_BITSTREAM_AVC_SPSMVCEXTENSIONSYNTAX_H
#define QV_BITSTREAM_AVC_SPSMVCEXTENSIONSYNTAX_H

#include "bitstream/avc/SpsMvcExtension.h"
#include "bitstream/avc/VuiExtensionTimingSyntax.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

struct InterViewReferencesNames {
    const char* num_refs_l0;
    const char* ref_l0;
    const char* num_refs_l1;
    const char* ref_l1;
};

constexpr InterViewReferencesNames kAnchorRefs = {"num_anchor_refs_l0", "anchor_ref_l0", "num_anchor_refs_l1",
                                                  "anchor_ref_l1"};
constexpr InterViewReferencesNames kNonAnchorRefs = {"num_non_anchor_refs_l0", "non_anchor_ref_l0",
                                                     "num_non_anchor_refs_l1", "non_anchor_ref_l1"};

// The views, by view order index, that a flag is 1 for.
class ViewFlags {
public:
    void set(uint32_t i, bool flag) { flags_[i / 64] |= static_cast<uint64_t>(flag) << i % 64; }
    bool operator[](uint32_t i) const { return (flags_[i / 64] >> i % 64 & 1) != 0; }

private:
    uint64_t flags_[kMostViews / 64] = {};
};

// view_id[ i ] and, in MVCD, which components of the view are present.
template <class Syntax>
void view_components(Syntax& s, View& view, bool isMvcd, uint32_t i) {
    s.ue(at("view_id", i), view.view_id, 0, kMostViews - 1);
    s.infer(view.depth_view_present_flag, false);
    s.infer(view.texture_view_present_flag, true);
    if (isMvcd) {
        s.flag(at("depth_view_present_flag", i), view.depth_view_present_flag);
        s.flag(at("texture_view_present_flag", i), view.texture_view_present_flag);
    }
}

// num_anchor_refs_l0[ i ] to anchor_ref_l1[ i ][ j ], or the same of non-anchor view components.
template <class Syntax>
void inter_view_references(Syntax& s, InterViewReferences& refs, const InterViewReferencesNames& names,
                           uint32_t most, uint32_t i) {
    s.ue(at(names.num_refs_l0, i), refs.num_refs_l0, 0, most);
    for (uint32_t j = 0; j < refs.num_refs_l0; ++j) {
        s.ue(at(names.ref_l0, i, j), refs.ref_l0[j], 0, kMostViews - 1);
    }
    s.ue(at(names.num_refs_l1, i), refs.num_refs_l1, 0, most);
    for (uint32_t j = 0; j < refs.num_refs_l1; ++j) {
        s.ue(at(names.ref_l1, i, j), refs.ref_l1[j], 0, kMostViews - 1);
    }
}

constexpr uint32_t mostReferences(uint32_t num_views_minus1) {
    return num_views_minus1 < InterViewReferences::kMostReferences ? num_views_minus1
                                                                   : InterViewReferences::kMostReferences;
}

// level_idc[ i ] and num_applicable_ops_minus1[ i ]
template <class Syntax>
void level_value(Syntax& s, uint32_t& level_idc, uint32_t& num_applicable_ops_minus1, uint32_t i) {
    s.u(8, at("level_idc", i), level_idc);
    s.ue(at("num_applicable_ops_minus1", i), num_applicable_ops_minus1, 0, 1023);
}

// applicable_op_temporal_id[ i ][ j ] and what follows it up to the next operation point.
template <class Syntax>
void operation_point(Syntax& s, OperationPoint& point, bool isMvcd, uint32_t i, uint32_t j) {
    s.u(3, at("applicable_op_temporal_id", i, j), point.applicable_op_temporal_id);
    s.ue(at("applicable_op_num_target_views_minus1", i, j), point.applicable_op_num_target_views_minus1, 0,
         kMostViews - 1);
    for (uint32_t k = 0; k <= point.applicable_op_num_target_views_minus1; ++k) {
        TargetView& view = point.target_views[k];
        s.ue(at("applicable_op_target_view_id", i, j, k), view.view_id, 0, kMostViews - 1);
        s.infer(view.depth_flag, false);
        s.infer(view.texture_flag, true);
        if (isMvcd) {
            s.flag(at("applicable_op_depth_flag", i, j, k), view.depth_flag);
            s.flag(at("applicable_op_texture_flag", i, j, k), view.texture_flag);
        }
    }
    if (isMvcd) {
        s.ue(at("applicable_op_num_texture_views_minus1", i, j), point.applicable_op_num_texture_views_minus1,
             0, kMostViews - 1);
        s.ue(at("applicable_op_num_depth_views", i, j), point.applicable_op_num_depth_views, 0, kMostViews);
    } else {
        s.ue(at("applicable_op_num_views_minus1", i, j), point.applicable_op_num_views_minus1, 0,
             kMostViews - 1);
    }
}

// The views and what they are predicted from. In MVCD only depth views have references here.
template <class Syntax>
void view_dependencies(Syntax& s, Views& views, bool isMvcd) {
    s.ue("num_views_minus1", views.num_views_minus1, 0, kMostViews - 1);
    ViewFlags hasReferences;
    s.keep(views.views, [&](auto& in) {
        View view = {};
        for (uint32_t i = 0; i <= views.num_views_minus1 && !in.failed(); ++i) {
            view_components(in, view, isMvcd, i);
            hasReferences.set(i, !isMvcd || view.depth_view_present_flag);
        }
    });
    const auto references = [&views, &hasReferences](auto& in, const InterViewReferencesNames& names) {
        InterViewReferences refs = {};
        for (uint32_t i = 1; i <= views.num_views_minus1 && !in.failed(); ++i) {
            if (hasReferences[i]) {
                inter_view_references(in, refs, names, mostReferences(views.num_views_minus1), i);
            }
        }
    };
    s.keep(views.anchor_refs, [&references](auto& in) { references(in, kAnchorRefs); });
    s.keep(views.non_anchor_refs, [&references](auto& in) { references(in, kNonAnchorRefs); });
}

template <class Syntax>
void level_values(Syntax& s, Views& views, bool isMvcd) {
    s.ue("num_level_values_signalled_minus1", views.num_level_values_signalled_minus1, 0, 63);
    s.keep(views.level_values, [&views, isMvcd](auto& in) {
        OperationPoint point;
        for (uint32_t i = 0; i <= views.num_level_values_signalled_minus1 && !in.failed(); ++i) {
            uint32_t num_applicable_ops_minus1 = 0;
            level_value(in, point.level_idc, num_applicable_ops_minus1, i);
            for (uint32_t j = 0; j <= num_applicable_ops_minus1 && !in.failed(); ++j) {
                operation_point(in, point, isMvcd, i, j);
            }
        }
    });
}

// The part of seq_parameter_set_mvc_extension() for profile 134.
template <class Syntax>
void mfc_format(Syntax& s, SpsMvcExtension& mvc, bool frame_mbs_only_flag) {
    s.u(6, "mfc_format_idc", mvc.mfc_format_idc);
    if (mvc.mfc_format_idc == 0 || mvc.mfc_format_idc == 1) {
        s.flag("default_grid_position_flag", mvc.default_grid_position_flag);
        if (!mvc.default_grid_position_flag) {
            s.u(4, "view0_grid_position_x", mvc.view0_grid_position_x);
            s.u(4, "view0_grid_position_y", mvc.view0_grid_position_y);
            s.u(4, "view1_grid_position_x", mvc.view1_grid_position_x);
            s.u(4, "view1_grid_position_y", mvc.view1_grid_position_y);
        }
    }
    s.flag("rpu_filter_enabled_flag", mvc.rpu_filter_enabled_flag);
    if (!frame_mbs_only_flag) {
        s.flag("rpu_field_processing_flag", mvc.rpu_field_processing_flag);
    }
}

// seq_parameter_set_mvc_extension(), H.7.3.2.1.4
template <class Syntax>
void seq_parameter_set_mvc_extension(Syntax& s, SpsMvcExtension& mvc, uint32_t profile_idc,
                                     bool frame_mbs_only_flag) {
    static constexpr Structure kStructure = {"seq_parameter_set_mvc_extension()", "H.7.3.2.1.4"};
    const Within<Syntax> within(s, kStructure);
    view_dependencies(s, mvc.views, false);
    level_values(s, mvc.views, false);
    if (profile_idc == 134) {
        mfc_format(s, mvc, frame_mbs_only_flag);
    }
}

// --- VUI ---

struct VuiOperationPointNames {
    const char* temporal_id;
    const char* num_target_output_views_minus1;
    const char* view_id;
    const char* depth_flag;    // null in MVC
    const char* texture_flag;  // null in MVC
    VuiExtensionTimingNames timing;
};

constexpr VuiOperationPointNames kVuiMvc = {
    "vui_mvc_temporal_id",
    "vui_mvc_num_target_output_views_minus1",
    "vui_mvc_view_id",
    nullptr,
    nullptr,
    {"vui_mvc_timing_info_present_flag", "vui_mvc_num_units_in_tick", "vui_mvc_time_scale",
     "vui_mvc_fixed_frame_rate_flag", "vui_mvc_nal_hrd_parameters_present_flag",
     "vui_mvc_vcl_hrd_parameters_present_flag", "vui_mvc_low_delay_hrd_flag",
     "vui_mvc_pic_struct_present_flag"}};

constexpr VuiOperationPointNames kVuiMvcd = {
    "vui_mvcd_temporal_id",
    "vui_mvcd_num_target_output_views_minus1",
    "vui_mvcd_view_id",
    "vui_mvcd_depth_flag",
    "vui_mvcd_texture_flag",
    {"vui_mvcd_timing_info_present_flag", "vui_mvcd_num_units_in_tick", "vui_mvcd_time_scale",
     "vui_mvcd_fixed_frame_rate_flag", "vui_mvcd_nal_hrd_parameters_present_flag",
     "vui_mvcd_vcl_hrd_parameters_present_flag", "vui_mvcd_low_delay_hrd_flag",
     "vui_mvcd_pic_struct_present_flag"}};

// Entry i of a VUI extension.
template <class Syntax>
void vui_operation_point(Syntax& s, VuiOperationPoint& point, const VuiOperationPointNames& names,
                         uint32_t i) {
    s.u(3, at(names.temporal_id, i), point.temporal_id);
    s.ue(at(names.num_target_output_views_minus1, i), point.num_target_output_views_minus1, 0,
         kMostViews - 1);
    for (uint32_t j = 0; j <= point.num_target_output_views_minus1; ++j) {
        TargetView& view = point.target_output_views[j];
        s.ue(at(names.view_id, i, j), view.view_id, 0, kMostViews - 1);
        s.infer(view.depth_flag, false);
        s.infer(view.texture_flag, true);
        if (names.depth_flag != nullptr) {
            s.flag(at(names.depth_flag, i, j), view.depth_flag);
            s.flag(at(names.texture_flag, i, j), view.texture_flag);
        }
    }
    vui_extension_timing(s, point.timing, names.timing, i);
}

template <class Syntax>
void vui_operation_points(Syntax& s, MvcVuiExtension& vui, const VuiOperationPointNames& names) {
    s.keep(vui.operation_points, [&vui, &names](auto& in) {
        VuiOperationPoint point;
        for (uint32_t i = 0; i <= vui.num_ops_minus1 && !in.failed(); ++i) {
            vui_operation_point(in, point, names, i);
        }
    });
}

// mvc_vui_parameters_extension(), H.14.1
template <class Syntax>
void mvc_vui_parameters_extension(Syntax& s, MvcVuiExtension& vui) {
    static constexpr Structure kStructure = {"mvc_vui_parameters_extension()", "H.14.1"};
    const Within<Syntax> within(s, kStructure);
    s.ue("vui_mvc_num_ops_minus1", vui.num_ops_minus1, 0, 1023);
    vui_operation_points(s, vui, kVuiMvc);
}

// mvcd_vui_parameters_extension(), I.14.1
template <class Syntax>
void mvcd_vui_parameters_extension(Syntax& s, MvcVuiExtension& vui) {
    static constexpr Structure kStructure = {"mvcd_vui_parameters_extension()", "I.14.1"};
    const Within<Syntax> within(s, kStructure);
    s.infer(vui.isMvcd, true);
    s.ue("vui_mvcd_num_ops_minus1", vui.num_ops_minus1, 0, 1023);
    vui_operation_points(s, vui, kVuiMvcd);
}

// seq_parameter_set_mvcd_extension(), I.7.3.2.1.5
template <class Syntax>
void seq_parameter_set_mvcd_extension(Syntax& s, SpsMvcdExtension& mvcd) {
    static constexpr Structure kStructure = {"seq_parameter_set_mvcd_extension()", "I.7.3.2.1.5"};
    const Within<Syntax> within(s, kStructure);
    s.infer(mvcd.views.isMvcd, true);
    view_dependencies(s, mvcd.views, true);
    level_values(s, mvcd.views, true);
    s.flag("mvcd_vui_parameters_present_flag", mvcd.mvcd_vui_parameters_present_flag);
    if (mvcd.mvcd_vui_parameters_present_flag) {
        mvcd_vui_parameters_extension(s, mvcd.mvcd_vui);
    }
    s.flag("texture_vui_parameters_present_flag", mvcd.texture_vui_parameters_present_flag);
    if (mvcd.texture_vui_parameters_present_flag) {
        mvc_vui_parameters_extension(s, mvcd.texture_vui);
    }
}

}  // namespace qv::avc

#endif
