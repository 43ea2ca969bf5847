// Displays that a multiview stream was made for, as syntax functions.
#ifndef QV_BITSTREAM_SEI_REFERENCEDISPLAYSSYNTAX_H
#define QV_BITSTREAM_SEI_REFERENCEDISPLAYSSYNTAX_H

#include "bitstream/sei/CodedFloatSyntax.h"
#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/ReferenceDisplays.h"

namespace qv::sei {

constexpr CodedFloatNames kRefBaseline = withoutSign("exponent_ref_baseline", "mantissa_ref_baseline");
constexpr CodedFloatNames kRefDisplayWidth =
    withoutSign("exponent_ref_display_width", "mantissa_ref_display_width");
constexpr CodedFloatNames kRefViewingDistance =
    withoutSign("exponent_ref_viewing_distance", "mantissa_ref_viewing_distance");

// The elements of display i.
template <class Syntax>
void reference_display(Syntax& s, const Context& context, const ThreeDimensionalReferenceDisplaysInfo& info,
                       uint32_t i, ReferenceDisplay& display) {
    if (context.codec == Codec::Avc) {
        coded_float(s, kRefBaseline, info.prec_ref_baseline, display.ref_baseline, i);
    } else {
        s.ue(at("left_view_id", i), display.left_view_id);
        s.ue(at("right_view_id", i), display.right_view_id);
    }
    coded_float(s, kRefDisplayWidth, info.prec_ref_display_width, display.ref_display_width, i);
    if (info.ref_viewing_distance_flag) {
        coded_float(s, kRefViewingDistance, info.prec_ref_viewing_dist, display.ref_viewing_distance, i);
    }
    s.flag(at("additional_shift_present_flag", i), display.additional_shift_present_flag);
    if (display.additional_shift_present_flag) {
        s.u(10, at("num_sample_shift_plus512", i), display.num_sample_shift_plus512);
    }
}

// three_dimensional_reference_displays_info(), H.264 I.13.1.4, H.265 G.14.2.3
template <class Syntax>
void three_dimensional_reference_displays_info(Syntax& s, const Context& context,
                                               ThreeDimensionalReferenceDisplaysInfo& info) {
    static constexpr SharedStructure kStructure =
        sharedStructure("three_dimensional_reference_displays_info()", "I.13.1.4", "G.14.2.3");
    const Within<Syntax> within(s, kStructure.of(context));
    if (context.codec == Codec::Avc) {
        s.ue("prec_ref_baseline", info.prec_ref_baseline, 0, kMostPrecision);
    }
    s.ue("prec_ref_display_width", info.prec_ref_display_width, 0, kMostPrecision);
    s.flag("ref_viewing_distance_flag", info.ref_viewing_distance_flag);
    if (info.ref_viewing_distance_flag) {
        s.ue("prec_ref_viewing_dist", info.prec_ref_viewing_dist, 0, kMostPrecision);
    }
    s.ue("num_ref_displays_minus1", info.num_ref_displays_minus1, 0,
         ThreeDimensionalReferenceDisplaysInfo::kMostDisplays - 1);
    for (uint32_t i = 0; i <= info.num_ref_displays_minus1; ++i) {
        reference_display(s, context, info, i, info.displays[i]);
    }
    s.flag("three_dimensional_reference_displays_extension_flag",
           info.three_dimensional_reference_displays_extension_flag);
    if (info.three_dimensional_reference_displays_extension_flag && context.codec == Codec::Avc) {
        s.payload_bytes("three_dimensional_reference_displays_extension_data", info.extension);
    }
}

}  // namespace qv::sei

#endif
