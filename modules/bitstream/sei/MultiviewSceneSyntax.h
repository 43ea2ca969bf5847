// Multiview scenes as syntax functions.
#ifndef QV_BITSTREAM_SEI_MULTIVIEWSCENESYNTAX_H
#define QV_BITSTREAM_SEI_MULTIVIEWSCENESYNTAX_H

#include "bitstream/avc/SpsMvcExtension.h"
#include "bitstream/sei/CodedFloatSyntax.h"
#include "bitstream/sei/MultiviewScene.h"
#include "bitstream/sei/PayloadSyntax.h"

namespace qv::sei {

// multiview_scene_info(), H.264 H.13.1.4, H.265 G.14.2.5
template <class Syntax>
void multiview_scene_info(Syntax& s, const Context& context, MultiviewSceneInfo& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("multiview_scene_info()", "H.13.1.4", "G.14.2.5");
    const Within<Syntax> within(s, kStructure.of(context));
    if (context.codec == Codec::Avc) {
        s.ue("max_disparity", payload.max_disparity, 0, 1023);
    } else {
        s.se("min_disparity", payload.min_disparity, -1024, 1023);
        s.ue("max_disparity_range", payload.max_disparity_range, 0, 2047);
    }
}

constexpr CodedFloatNames kFocalLengthX =
    withSign("sign_focal_length_x", "exponent_focal_length_x", "mantissa_focal_length_x");
constexpr CodedFloatNames kFocalLengthY =
    withSign("sign_focal_length_y", "exponent_focal_length_y", "mantissa_focal_length_y");
constexpr CodedFloatNames kPrincipalPointX =
    withSign("sign_principal_point_x", "exponent_principal_point_x", "mantissa_principal_point_x");
constexpr CodedFloatNames kPrincipalPointY =
    withSign("sign_principal_point_y", "exponent_principal_point_y", "mantissa_principal_point_y");
constexpr CodedFloatNames kSkewFactor =
    withSign("sign_skew_factor", "exponent_skew_factor", "mantissa_skew_factor");
constexpr CodedFloatNames kRotation = withSign("sign_r", "exponent_r", "mantissa_r");
constexpr CodedFloatNames kTranslation = withSign("sign_t", "exponent_t", "mantissa_t");

// The intrinsic parameters of view i.
template <class Syntax>
void intrinsic_params(Syntax& s, const MultiviewAcquisitionInfo& info, uint32_t i, IntrinsicParams& params) {
    coded_float(s, kFocalLengthX, info.prec_focal_length, params.focal_length_x, i);
    coded_float(s, kFocalLengthY, info.prec_focal_length, params.focal_length_y, i);
    coded_float(s, kPrincipalPointX, info.prec_principal_point, params.principal_point_x, i);
    coded_float(s, kPrincipalPointY, info.prec_principal_point, params.principal_point_y, i);
    coded_float(s, kSkewFactor, info.prec_skew_factor, params.skew_factor, i);
}

// The extrinsic parameters of view i. H.264 counts rows and columns from 1.
template <class Syntax>
void extrinsic_params(Syntax& s, const MultiviewAcquisitionInfo& info, uint32_t i, ExtrinsicParams& params) {
    const uint32_t first = info.isHevc ? 0 : 1;
    for (uint32_t j = 0; j < 3; ++j) {
        for (uint32_t k = 0; k < 3; ++k) {
            coded_float(s, kRotation, info.prec_rotation_param, params.r[j][k], i, first + j, first + k);
        }
        coded_float(s, kTranslation, info.prec_translation_param, params.t[j], i, first + j);
    }
}

// multiview_acquisition_info(), H.264 H.13.1.5, H.265 G.14.2.6
template <class Syntax>
void multiview_acquisition_info(Syntax& s, const Context& context, MultiviewAcquisitionInfo& info) {
    static constexpr SharedStructure kStructure =
        sharedStructure("multiview_acquisition_info()", "H.13.1.5", "G.14.2.6");
    const Within<Syntax> within(s, kStructure.of(context));
    s.infer(info.isHevc, context.codec == Codec::Hevc);
    if (context.codec == Codec::Avc) {
        s.ue("num_views_minus1", info.num_views_minus1, 0, avc::kMostViews - 1);
    } else {
        s.infer(info.num_views_minus1, context.numViewsMinus1);
    }
    s.flag("intrinsic_param_flag", info.intrinsic_param_flag);
    s.flag("extrinsic_param_flag", info.extrinsic_param_flag);
    if (info.intrinsic_param_flag) {
        s.flag("intrinsic_params_equal_flag", info.intrinsic_params_equal_flag);
        s.ue("prec_focal_length", info.prec_focal_length, 0, kMostPrecision);
        s.ue("prec_principal_point", info.prec_principal_point, 0, kMostPrecision);
        s.ue("prec_skew_factor", info.prec_skew_factor, 0, kMostPrecision);
        s.keep(info.intrinsic_params, [&info](auto& in) {
            IntrinsicParams params;
            const uint32_t last = info.intrinsic_params_equal_flag ? 0 : info.num_views_minus1;
            for (uint32_t i = 0; i <= last && !in.failed(); ++i) {
                intrinsic_params(in, info, i, params);
            }
        });
    }
    if (info.extrinsic_param_flag) {
        s.ue("prec_rotation_param", info.prec_rotation_param, 0, kMostPrecision);
        s.ue("prec_translation_param", info.prec_translation_param, 0, kMostPrecision);
        s.keep(info.extrinsic_params, [&info](auto& in) {
            ExtrinsicParams params;
            for (uint32_t i = 0; i <= info.num_views_minus1 && !in.failed(); ++i) {
                extrinsic_params(in, info, i, params);
            }
        });
    }
}

}  // namespace qv::sei

#endif
