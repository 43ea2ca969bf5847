// HDR10+ dynamic metadata as syntax functions: CTA-861.4, SMPTE ST 2094-40.
#ifndef QV_BITSTREAM_SEI_HDR10PLUSSYNTAX_H
#define QV_BITSTREAM_SEI_HDR10PLUSSYNTAX_H

#include "bitstream/sei/Hdr10Plus.h"
#include "bitstream/sei/T35BodySyntax.h"

namespace qv::sei {

constexpr uint64_t kMostTenthsOfCandela = 100000;

// The extent of a window and its ellipses. Window 0 has none.
template <class Syntax>
void hdr10_plus_extent(Syntax& s, uint32_t w, Hdr10PlusWindow& window) {
    s.u(16, at("window_upper_left_corner_x", w), window.window_upper_left_corner_x);
    s.u(16, at("window_upper_left_corner_y", w), window.window_upper_left_corner_y);
    s.u(16, at("window_lower_right_corner_x", w), window.window_lower_right_corner_x);
    s.u(16, at("window_lower_right_corner_y", w), window.window_lower_right_corner_y);
    s.u(16, at("center_of_ellipse_x", w), window.center_of_ellipse_x);
    s.u(16, at("center_of_ellipse_y", w), window.center_of_ellipse_y);
    s.u(8, at("rotation_angle", w), window.rotation_angle, 0, 180);
    s.u(16, at("semimajor_axis_internal_ellipse", w), window.semimajor_axis_internal_ellipse);
    s.u(16, at("semimajor_axis_external_ellipse", w), window.semimajor_axis_external_ellipse);
    s.u(16, at("semiminor_axis_external_ellipse", w), window.semiminor_axis_external_ellipse);
    s.flag(at("overlap_process_option", w), window.overlap_process_option);
}

template <class Syntax>
void hdr10_plus_luminances(Syntax& s, const char* rowsName, const char* columnsName, const char* name,
                           uint32_t& rows, uint32_t& columns, Hdr10Plus::Luminances& luminances) {
    s.u(5, rowsName, rows, 2, Hdr10Plus::kMostRows);
    s.u(5, columnsName, columns, 2, Hdr10Plus::kMostColumns);
    for (uint32_t i = 0; i < rows; ++i) {
        for (uint32_t j = 0; j < columns; ++j) {
            s.u(4, at(name, i, j), luminances[i][j]);
        }
    }
}

template <class Syntax>
void hdr10_plus_distribution(Syntax& s, uint32_t w, Hdr10PlusWindow& window) {
    for (uint32_t c = 0; c < 3; ++c) {
        s.u(17, at("maxscl", w, c), window.maxscl[c], 0, kMostTenthsOfCandela);
    }
    s.u(17, at("average_maxrgb", w), window.average_maxrgb, 0, kMostTenthsOfCandela);
    s.u(4, at("num_distribution_maxrgb_percentiles", w), window.num_distribution_maxrgb_percentiles);
    for (uint32_t i = 0; i < window.num_distribution_maxrgb_percentiles; ++i) {
        s.u(7, at("distribution_maxrgb_percentages", w, i), window.distribution_maxrgb_percentages[i], 0,
            100);
        s.u(17, at("distribution_maxrgb_percentiles", w, i), window.distribution_maxrgb_percentiles[i], 0,
            kMostTenthsOfCandela);
    }
    s.u(10, at("fraction_bright_pixels", w), window.fraction_bright_pixels, 0, 1000);
}

template <class Syntax>
void hdr10_plus_mapping(Syntax& s, uint32_t w, Hdr10PlusWindow& window) {
    s.flag(at("tone_mapping_flag", w), window.tone_mapping_flag);
    if (window.tone_mapping_flag) {
        s.u(12, at("knee_point_x", w), window.knee_point_x);
        s.u(12, at("knee_point_y", w), window.knee_point_y);
        s.u(4, at("num_bezier_curve_anchors", w), window.num_bezier_curve_anchors);
        for (uint32_t i = 0; i < window.num_bezier_curve_anchors; ++i) {
            s.u(10, at("bezier_curve_anchors", w, i), window.bezier_curve_anchors[i]);
        }
    }
    s.flag(at("color_saturation_mapping_flag", w), window.color_saturation_mapping_flag);
    if (window.color_saturation_mapping_flag) {
        s.u(6, at("color_saturation_weight", w), window.color_saturation_weight);
    }
}

template <class Syntax>
void t35_body(Syntax& s, Hdr10Plus& body) {
    static constexpr Structure kStructure = {"hdr10plus_metadata()", "CTA-861.4"};
    const Within<Syntax> within(s, kStructure);
    t35_codes<Hdr10Plus::kOwner>(s);
    s.u(8, "application_identifier", body.application_identifier, 4, 4);
    s.u(8, "application_version", body.application_version, 0, 1);
    s.u(2, "num_windows", body.num_windows, 1, Hdr10Plus::kMostWindows);
    for (uint32_t w = 1; w < body.num_windows; ++w) {
        hdr10_plus_extent(s, w, body.windows[w]);
    }
    s.u(27, "targeted_system_display_maximum_luminance", body.targeted_system_display_maximum_luminance, 0,
        10000);
    s.flag("targeted_system_display_actual_peak_luminance_flag",
           body.targeted_system_display_actual_peak_luminance_flag);
    if (body.targeted_system_display_actual_peak_luminance_flag) {
        hdr10_plus_luminances(s, "num_rows_targeted_system_display_actual_peak_luminance",
                              "num_cols_targeted_system_display_actual_peak_luminance",
                              "targeted_system_display_actual_peak_luminance",
                              body.num_rows_targeted_system_display_actual_peak_luminance,
                              body.num_cols_targeted_system_display_actual_peak_luminance,
                              body.targeted_system_display_actual_peak_luminance);
    }
    for (uint32_t w = 0; w < body.num_windows; ++w) {
        hdr10_plus_distribution(s, w, body.windows[w]);
    }
    s.flag("mastering_display_actual_peak_luminance_flag", body.mastering_display_actual_peak_luminance_flag);
    if (body.mastering_display_actual_peak_luminance_flag) {
        hdr10_plus_luminances(s, "num_rows_mastering_display_actual_peak_luminance",
                              "num_cols_mastering_display_actual_peak_luminance",
                              "mastering_display_actual_peak_luminance",
                              body.num_rows_mastering_display_actual_peak_luminance,
                              body.num_cols_mastering_display_actual_peak_luminance,
                              body.mastering_display_actual_peak_luminance);
    }
    for (uint32_t w = 0; w < body.num_windows; ++w) {
        hdr10_plus_mapping(s, w, body.windows[w]);
    }
    t35_padding(s, body.padding);
}

}  // namespace qv::sei

#endif
