// Alternative depth as syntax functions.
#ifndef QV_BITSTREAM_SEI_ALTERNATIVEDEPTHSYNTAX_H
#define QV_BITSTREAM_SEI_ALTERNATIVEDEPTHSYNTAX_H

#include "bitstream/sei/AlternativeDepth.h"
#include "bitstream/sei/CodedFloatSyntax.h"
#include "bitstream/sei/PayloadSyntax.h"

namespace qv::sei {

constexpr CodedFloatNames kGvdZNear = {"sign_gvd_z_near_flag", "exp_gvd_z_near", "man_len_gvd_z_near_minus1",
                                       "man_gvd_z_near"};
constexpr CodedFloatNames kGvdZFar = {"sign_gvd_z_far_flag", "exp_gvd_z_far", "man_len_gvd_z_far_minus1",
                                      "man_gvd_z_far"};
constexpr CodedFloatNames kGvdFocalLengthX =
    withSign("sign_gvd_focal_length_x", "exp_gvd_focal_length_x", "man_gvd_focal_length_x");
constexpr CodedFloatNames kGvdFocalLengthY =
    withSign("sign_gvd_focal_length_y", "exp_gvd_focal_length_y", "man_gvd_focal_length_y");
constexpr CodedFloatNames kGvdPrincipalPointX =
    withSign("sign_gvd_principal_point_x", "exp_gvd_principal_point_x", "man_gvd_principal_point_x");
constexpr CodedFloatNames kGvdPrincipalPointY =
    withSign("sign_gvd_principal_point_y", "exp_gvd_principal_point_y", "man_gvd_principal_point_y");
constexpr CodedFloatNames kGvdRotation = withSign("sign_gvd_r", "exp_gvd_r", "man_gvd_r");
constexpr CodedFloatNames kGvdTranslation = withSign("sign_gvd_t_x", "exp_gvd_t_x", "man_gvd_t_x");

// The depth range of view i.
template <class Syntax>
void gvd_depth_range(Syntax& s, const AlternativeDepthInfo& info, uint32_t i, GvdDepthRange& range) {
    static_cast<void>(info);
    coded_float_with_length(s, kGvdZNear, range.z_near, i);
    coded_float_with_length(s, kGvdZFar, range.z_far, i);
}

// The camera of view i.
template <class Syntax>
void gvd_view(Syntax& s, const AlternativeDepthInfo& info, uint32_t i, GvdView& view) {
    view = {};
    if (info.intrinsic_param_gvd_flag) {
        coded_float(s, kGvdFocalLengthX, info.prec_gvd_focal_length, view.focal_length_x, i);
        coded_float(s, kGvdFocalLengthY, info.prec_gvd_focal_length, view.focal_length_y, i);
        coded_float(s, kGvdPrincipalPointX, info.prec_gvd_principal_point, view.principal_point_x, i);
        coded_float(s, kGvdPrincipalPointY, info.prec_gvd_principal_point, view.principal_point_y, i);
    }
    if (info.rotation_gvd_flag) {
        for (uint32_t j = 0; j < 3; ++j) {
            for (uint32_t k = 0; k < 3; ++k) {
                coded_float(s, kGvdRotation, info.prec_gvd_rotation_param, view.r[j][k], i, j, k);
            }
        }
    }
    if (info.translation_gvd_flag) {
        coded_float(s, kGvdTranslation, info.prec_gvd_translation_param, view.t_x, i);
    }
}

// num_constituent_views_gvd_minus1 to man_gvd_t_x[ i ]
template <class Syntax>
void global_view_and_depth(Syntax& s, AlternativeDepthInfo& info) {
    s.ue("num_constituent_views_gvd_minus1", info.num_constituent_views_gvd_minus1, 0,
         AlternativeDepthInfo::kMostConstituentViews - 1);
    s.flag("depth_present_gvd_flag", info.depth_present_gvd_flag);
    s.flag("z_gvd_flag", info.z_gvd_flag);
    s.flag("intrinsic_param_gvd_flag", info.intrinsic_param_gvd_flag);
    s.flag("rotation_gvd_flag", info.rotation_gvd_flag);
    s.flag("translation_gvd_flag", info.translation_gvd_flag);
    if (info.z_gvd_flag) {
        s.keep(info.depth_ranges, [&info](auto& in) {
            GvdDepthRange range;
            for (uint32_t i = 0; i <= info.num_constituent_views_gvd_minus1 + 1 && !in.failed(); ++i) {
                gvd_depth_range(in, info, i, range);
            }
        });
    }
    if (info.intrinsic_param_gvd_flag) {
        s.ue("prec_gvd_focal_length", info.prec_gvd_focal_length, 0, kMostPrecision);
        s.ue("prec_gvd_principal_point", info.prec_gvd_principal_point, 0, kMostPrecision);
    }
    if (info.rotation_gvd_flag) {
        s.ue("prec_gvd_rotation_param", info.prec_gvd_rotation_param, 0, kMostPrecision);
    }
    if (info.translation_gvd_flag) {
        s.ue("prec_gvd_translation_param", info.prec_gvd_translation_param, 0, kMostPrecision);
    }
    if (info.intrinsic_param_gvd_flag || info.rotation_gvd_flag || info.translation_gvd_flag) {
        s.keep(info.views, [&info](auto& in) {
            GvdView view;
            for (uint32_t i = 0; i <= info.num_constituent_views_gvd_minus1 + 1 && !in.failed(); ++i) {
                gvd_view(in, info, i, view);
            }
        });
    }
}

// min_offset_x_int to warp_map_height_minus2
template <class Syntax>
void warp_map(Syntax& s, AlternativeDepthInfo& info) {
    s.se("min_offset_x_int", info.min_offset_x_int);
    s.u(8, "min_offset_x_frac", info.min_offset_x_frac);
    s.se("max_offset_x_int", info.max_offset_x_int);
    s.u(8, "max_offset_x_frac", info.max_offset_x_frac);
    s.flag("offset_y_present_flag", info.offset_y_present_flag);
    if (info.offset_y_present_flag) {
        s.se("min_offset_y_int", info.min_offset_y_int);
        s.u(8, "min_offset_y_frac", info.min_offset_y_frac);
        s.se("max_offset_y_int", info.max_offset_y_int);
        s.u(8, "max_offset_y_frac", info.max_offset_y_frac);
    }
    s.flag("warp_map_size_present_flag", info.warp_map_size_present_flag);
    if (info.warp_map_size_present_flag) {
        s.ue("warp_map_width_minus2", info.warp_map_width_minus2);
        s.ue("warp_map_height_minus2", info.warp_map_height_minus2);
    }
}

// alternative_depth_info(), H.264 I.13.1.6, H.265 I.14.2.3
template <class Syntax>
void alternative_depth_info(Syntax& s, const Context& context, AlternativeDepthInfo& info) {
    constexpr uint32_t kGlobalViewAndDepth = 0;
    constexpr uint32_t kWarpMap = 1;
    static constexpr SharedStructure kStructure =
        sharedStructure("alternative_depth_info()", "I.13.1.6", "I.14.2.3");
    const Within<Syntax> within(s, kStructure.of(context));
    const bool isHevc = context.codec == Codec::Hevc;
    if (isHevc) {
        s.flag("alternative_depth_info_cancel_flag", info.alternative_depth_info_cancel_flag);
        if (info.alternative_depth_info_cancel_flag) {
            return;
        }
        s.u(2, "depth_type", info.depth_type);
    } else {
        s.ue("depth_type", info.depth_type);
    }
    if (info.depth_type == kGlobalViewAndDepth) {
        global_view_and_depth(s, info);
    } else if (!isHevc) {
        s.payload_bytes("reserved_payload_byte", info.reserved);
    } else if (info.depth_type == kWarpMap) {
        warp_map(s, info);
    }
}

}  // namespace qv::sei

#endif
