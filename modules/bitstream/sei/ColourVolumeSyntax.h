// The colours and luminances of content, display and room as syntax functions.
#ifndef QV_BITSTREAM_SEI_COLOURVOLUMESYNTAX_H
#define QV_BITSTREAM_SEI_COLOURVOLUMESYNTAX_H

#include "bitstream/sei/ColourVolume.h"
#include "bitstream/sei/PayloadSyntax.h"

namespace qv::sei {

// mastering_display_colour_volume(), H.264 D.1.29, H.265 D.2.28
template <class Syntax>
void mastering_display_colour_volume(Syntax& s, const Context& context,
                                     MasteringDisplayColourVolume& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("mastering_display_colour_volume()", "D.1.29", "D.2.28");
    const Within<Syntax> within(s, kStructure.of(context));
    for (uint32_t c = 0; c < MasteringDisplayColourVolume::kComponents; ++c) {
        s.u(16, at("display_primaries_x", c), payload.display_primaries_x[c]);
        s.u(16, at("display_primaries_y", c), payload.display_primaries_y[c]);
    }
    s.u(16, "white_point_x", payload.white_point_x);
    s.u(16, "white_point_y", payload.white_point_y);
    s.u(32, "max_display_mastering_luminance", payload.max_display_mastering_luminance);
    s.u(32, "min_display_mastering_luminance", payload.min_display_mastering_luminance);
}

// content_light_level_info(), H.264 D.1.31, H.265 D.2.35
template <class Syntax>
void content_light_level_info(Syntax& s, const Context& context, ContentLightLevelInfo& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("content_light_level_info()", "D.1.31", "D.2.35");
    const Within<Syntax> within(s, kStructure.of(context));
    s.u(16, "max_content_light_level", payload.max_content_light_level);
    s.u(16, "max_pic_average_light_level", payload.max_pic_average_light_level);
}

// alternative_transfer_characteristics(), H.264 D.1.32, H.265 D.2.38
template <class Syntax>
void alternative_transfer_characteristics(Syntax& s, const Context& context,
                                          AlternativeTransferCharacteristics& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("alternative_transfer_characteristics()", "D.1.32", "D.2.38");
    const Within<Syntax> within(s, kStructure.of(context));
    s.u(8, "preferred_transfer_characteristics", payload.preferred_transfer_characteristics);
}

// ambient_viewing_environment(), H.264 D.1.34, H.265 D.2.39
template <class Syntax>
void ambient_viewing_environment(Syntax& s, const Context& context, AmbientViewingEnvironment& payload) {
    constexpr uint32_t kMostCoordinate = 50000;
    static constexpr SharedStructure kStructure =
        sharedStructure("ambient_viewing_environment()", "D.1.34", "D.2.39");
    const Within<Syntax> within(s, kStructure.of(context));
    s.u(32, "ambient_illuminance", payload.ambient_illuminance, 1, UINT32_MAX);
    s.u(16, "ambient_light_x", payload.ambient_light_x, 0, kMostCoordinate);
    s.u(16, "ambient_light_y", payload.ambient_light_y, 0, kMostCoordinate);
}

// content_colour_volume(), H.264 D.1.33, H.265 D.2.40
template <class Syntax>
void content_colour_volume(Syntax& s, const Context& context, ContentColourVolume& payload) {
    constexpr int64_t kMostCoordinate = 5000000;
    static constexpr SharedStructure kStructure =
        sharedStructure("content_colour_volume()", "D.1.33", "D.2.40");
    const Within<Syntax> within(s, kStructure.of(context));
    s.flag("ccv_cancel_flag", payload.ccv_cancel_flag);
    if (payload.ccv_cancel_flag) {
        return;
    }
    s.flag("ccv_persistence_flag", payload.ccv_persistence_flag);
    s.flag("ccv_primaries_present_flag", payload.ccv_primaries_present_flag);
    s.flag("ccv_min_luminance_value_present_flag", payload.ccv_min_luminance_value_present_flag);
    s.flag("ccv_max_luminance_value_present_flag", payload.ccv_max_luminance_value_present_flag);
    s.flag("ccv_avg_luminance_value_present_flag", payload.ccv_avg_luminance_value_present_flag);
    s.u(2, "ccv_reserved_zero_2bits", payload.ccv_reserved_zero_2bits);
    if (payload.ccv_primaries_present_flag) {
        for (uint32_t c = 0; c < ContentColourVolume::kComponents; ++c) {
            s.i(32, at("ccv_primaries_x", c), payload.ccv_primaries_x[c], -kMostCoordinate, kMostCoordinate);
            s.i(32, at("ccv_primaries_y", c), payload.ccv_primaries_y[c], -kMostCoordinate, kMostCoordinate);
        }
    }
    if (payload.ccv_min_luminance_value_present_flag) {
        s.u(32, "ccv_min_luminance_value", payload.ccv_min_luminance_value);
    }
    if (payload.ccv_max_luminance_value_present_flag) {
        s.u(32, "ccv_max_luminance_value", payload.ccv_max_luminance_value);
    }
    if (payload.ccv_avg_luminance_value_present_flag) {
        s.u(32, "ccv_avg_luminance_value", payload.ccv_avg_luminance_value);
    }
}

}  // namespace qv::sei

#endif
