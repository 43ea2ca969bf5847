/// \file
/// The colours and luminances of the content, of the display that it was mastered on, and of the room that it
/// is made for.
#ifndef QV_BITSTREAM_SEI_COLOURVOLUME_H
#define QV_BITSTREAM_SEI_COLOURVOLUME_H

#include <cstdint>

#include "bitstream/Ratio.h"
#include "bitstream/sei/SeiPayload.h"

namespace qv::sei {

/// mastering_display_colour_volume(), H.264 D.1.29, H.265 D.2.28. The standards suggest that component 0 is
/// green, 1 blue and 2 red. A value out of the range below is unknown and no fault; see masteringDisplayOf().
struct MasteringDisplayColourVolume {
    static constexpr PayloadTypes kPayloadTypes = {137, 137};  ///< payloadType
    static constexpr uint32_t kComponents = 3;                 ///< colour primaries

    uint16_t display_primaries_x[kComponents];  ///< u(16), 5..37000, 0.00002
    uint16_t display_primaries_y[kComponents];  ///< u(16), 5..42000, 0.00002
    uint32_t white_point_x;                     ///< u(16), 5..37000, 0.00002
    uint32_t white_point_y;                     ///< u(16), 5..42000, 0.00002
    uint32_t max_display_mastering_luminance;   ///< u(32), 50000..100000000, 0.0001 cd/m²
    uint32_t min_display_mastering_luminance;   ///< u(32), 1..50000, 0.0001 cd/m²
};

/// content_light_level_info(), H.264 D.1.31, H.265 D.2.35.
struct ContentLightLevelInfo {
    static constexpr PayloadTypes kPayloadTypes = {144, 144};  ///< payloadType
    uint32_t max_content_light_level;                          ///< u(16), cd/m²; 0 is unknown
    uint32_t max_pic_average_light_level;                      ///< u(16), cd/m²; 0 is unknown
};

/// alternative_transfer_characteristics(), H.264 D.1.32, H.265 D.2.38.
struct AlternativeTransferCharacteristics {
    static constexpr PayloadTypes kPayloadTypes = {147, 147};  ///< payloadType
    uint32_t preferred_transfer_characteristics;  ///< u(8), as transfer_characteristics of the VUI
};

/// ambient_viewing_environment(), H.264 D.1.34, H.265 D.2.39; see ambientViewingOf().
struct AmbientViewingEnvironment {
    static constexpr PayloadTypes kPayloadTypes = {148, 148};  ///< payloadType
    uint32_t ambient_illuminance;                              ///< u(32), not 0, 0.0001 lx
    uint32_t ambient_light_x;                                  ///< u(16), 0..50000, 0.00002
    uint32_t ambient_light_y;                                  ///< u(16), 0..50000, 0.00002
};

/// content_colour_volume(), H.264 D.1.33, H.265 D.2.40. Luminances are in steps of 0.0000001 of Lo or Lc of
/// the transfer characteristics (H.264 Table E-4, H.265 Table E.4): with those of SMPTE ST 2084, of 10000
/// cd/m².
struct ContentColourVolume {
    static constexpr PayloadTypes kPayloadTypes = {149, 149};  ///< payloadType
    static constexpr uint32_t kComponents = 3;                 ///< colour primaries

    bool ccv_cancel_flag;                       ///< u(1); nothing follows when it is 1
    bool ccv_persistence_flag;                  ///< u(1)
    bool ccv_primaries_present_flag;            ///< u(1)
    bool ccv_min_luminance_value_present_flag;  ///< u(1)
    bool ccv_max_luminance_value_present_flag;  ///< u(1)
    bool ccv_avg_luminance_value_present_flag;  ///< u(1)
    uint32_t ccv_reserved_zero_2bits;           ///< u(2), other values are reserved
    int32_t ccv_primaries_x[kComponents];       ///< i(32), -5000000..5000000, 0.00002; green, blue, red
    int32_t ccv_primaries_y[kComponents];       ///< i(32), -5000000..5000000, 0.00002
    uint32_t ccv_min_luminance_value;           ///< u(32), 0.0000001
    uint32_t ccv_max_luminance_value;           ///< u(32), 0.0000001
    uint32_t ccv_avg_luminance_value;           ///< u(32), 0.0000001
};

/// CIE 1931 coordinates of a colour. A coordinate of 0 is 0:1.
struct Chromaticity {
    Ratio x;  ///< 0:0 when unknown
    Ratio y;  ///< 0:0 when unknown
};

/// A mastering display in the units of CIE 1931.
struct MasteringDisplay {
    Chromaticity green;       ///< component 0
    Chromaticity blue;        ///< component 1
    Chromaticity red;         ///< component 2
    Chromaticity whitePoint;  ///< the nominal one
    Ratio maxLuminance;       ///< cd/m²; 0:0 when unknown
    Ratio minLuminance;       ///< cd/m²; 0:0 when unknown
};

/// The values of a mastering display, H.264 D.2.29, H.265 D.3.28. The components are those of the order that
/// the standards suggest: green, blue, red. A value out of its range is unknown, each on its own.
MasteringDisplay masteringDisplayOf(const MasteringDisplayColourVolume& volume) noexcept;

/// The light of a room.
struct AmbientViewing {
    Ratio illuminance;   ///< lx; 0:0 when unknown
    Chromaticity light;  ///< of the background
};

/// The values of an ambient viewing environment, H.264 D.2.34, H.265 D.3.39. A value out of its range, which
/// no read returns, is unknown.
AmbientViewing ambientViewingOf(const AmbientViewingEnvironment& environment) noexcept;

}  // namespace qv::sei

#endif
