/// \file
/// HDR10+ dynamic metadata: SMPTE ST 2094-40 as CTA-861.4 carries it in T.35 messages.
#ifndef QV_BITSTREAM_SEI_HDR10PLUS_H
#define QV_BITSTREAM_SEI_HDR10PLUS_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"
#include "bitstream/sei/T35.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// The elements of one processing window.
struct Hdr10PlusWindow {
    static constexpr uint32_t kMostPercentiles = 15;  ///< of u(4)
    static constexpr uint32_t kMostAnchors = 15;      ///< of u(4)

    // Windows 1 and 2. Window 0 is the whole picture.

    uint32_t window_upper_left_corner_x;       ///< u(16), luma samples
    uint32_t window_upper_left_corner_y;       ///< u(16), luma samples
    uint32_t window_lower_right_corner_x;      ///< u(16), luma samples
    uint32_t window_lower_right_corner_y;      ///< u(16), luma samples
    uint32_t center_of_ellipse_x;              ///< u(16), luma samples
    uint32_t center_of_ellipse_y;              ///< u(16), luma samples
    uint32_t rotation_angle;                   ///< u(8), degrees, 0 to 180
    uint32_t semimajor_axis_internal_ellipse;  ///< u(16), luma samples
    uint32_t semimajor_axis_external_ellipse;  ///< u(16), luma samples
    uint32_t semiminor_axis_external_ellipse;  ///< u(16), luma samples
    bool overlap_process_option;               ///< u(1): false weighted averaging, true layering

    uint32_t maxscl[3];       ///< u(17), red, green, blue, in units of 0.1 cd/m², 0 to 100000
    uint32_t average_maxrgb;  ///< u(17), in units of 0.1 cd/m², 0 to 100000

    /// u(4)
    uint32_t num_distribution_maxrgb_percentiles;
    /// u(7), percent, 0 to 100
    uint8_t distribution_maxrgb_percentages[kMostPercentiles];
    /// u(17), in units of 0.1 cd/m², 0 to 100000. In HDR10+ they need not rise.
    uint32_t distribution_maxrgb_percentiles[kMostPercentiles];

    uint32_t fraction_bright_pixels;  ///< u(10), in units of 0.001, 0 to 1000

    bool tone_mapping_flag;                       ///< u(1)
    uint32_t knee_point_x;                        ///< u(12), in units of 1/4095
    uint32_t knee_point_y;                        ///< u(12), in units of 1/4095
    uint32_t num_bezier_curve_anchors;            ///< u(4)
    uint16_t bezier_curve_anchors[kMostAnchors];  ///< u(10), in units of 1/1023

    bool color_saturation_mapping_flag;  ///< u(1)
    uint32_t color_saturation_weight;    ///< u(6), in units of 1/8
};

/// Dynamic metadata of one picture for colour volume transform application 4. In a message of another owner
/// the first code that differs has the fault OutOfRange.
struct Hdr10Plus {
    static constexpr PayloadTypes kPayloadTypes = {4, 4};    ///< payloadType
    static constexpr T35Owner kOwner = T35Owner::Hdr10Plus;  ///< codes B5:003C, 0x0001
    static constexpr uint32_t kMostWindows = 3;              ///< the most windows
    static constexpr uint32_t kMostRows = 25;                ///< of a grid of luminances
    static constexpr uint32_t kMostColumns = 25;             ///< of a grid of luminances
    using Luminances = uint8_t[kMostRows][kMostColumns];     ///< rows of columns

    uint32_t application_identifier;  ///< u(8), 4
    uint32_t application_version;     ///< u(8), 0 or 1

    uint32_t num_windows;                   ///< u(2), 1 to 3
    Hdr10PlusWindow windows[kMostWindows];  ///< the first num_windows are present

    uint32_t targeted_system_display_maximum_luminance;               ///< u(27), cd/m², 0 to 10000
    bool targeted_system_display_actual_peak_luminance_flag;          ///< u(1)
    uint32_t num_rows_targeted_system_display_actual_peak_luminance;  ///< u(5), 2 to 25
    uint32_t num_cols_targeted_system_display_actual_peak_luminance;  ///< u(5), 2 to 25

    bool mastering_display_actual_peak_luminance_flag;          ///< u(1)
    uint32_t num_rows_mastering_display_actual_peak_luminance;  ///< u(5), 2 to 25
    uint32_t num_cols_mastering_display_actual_peak_luminance;  ///< u(5), 2 to 25

    /// Bits after the last element, borrowed. They are empty in a new record: a writer fills the last byte
    /// with zero bits.
    CodedBits padding;

    // A read sets these as far as their counts go.

    Luminances targeted_system_display_actual_peak_luminance;  ///< u(4), in units of 1/15
    Luminances mastering_display_actual_peak_luminance;        ///< u(4), in units of 1/15
};

/// The HDR10+ profile of one message.
enum class Hdr10PlusProfile : uint8_t {
    Other,  ///< neither
    A,      ///< no tone mapping and no targeted luminance in any window
    B,      ///< a targeted luminance, and tone mapping with an anchor at least in each window
};

/// The profile of a message. A stream has a profile when all of its messages have it.
constexpr Hdr10PlusProfile profileOf(const Hdr10Plus& metadata) {
    bool isA = metadata.targeted_system_display_maximum_luminance == 0;
    bool isB = !isA;
    for (uint32_t w = 0; w < metadata.num_windows && w < Hdr10Plus::kMostWindows; ++w) {
        const Hdr10PlusWindow& window = metadata.windows[w];
        isA = isA && !window.tone_mapping_flag;
        isB = isB && window.tone_mapping_flag && window.num_bezier_curve_anchors > 0;
    }
    return isA ? Hdr10PlusProfile::A : isB ? Hdr10PlusProfile::B : Hdr10PlusProfile::Other;
}

}  // namespace qv::sei

#endif
