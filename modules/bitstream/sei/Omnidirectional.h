/// \file
/// Pictures of a sphere: how it is projected and packed into the picture, and what part of it to show.
#ifndef QV_BITSTREAM_SEI_OMNIDIRECTIONAL_H
#define QV_BITSTREAM_SEI_OMNIDIRECTIONAL_H

#include <cstdint>

#include "bitstream/sei/CodedEntries.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

// Angles are in units of 2^-16 degrees.

/// equirectangular_projection(), H.264 D.1.35.1, H.265 D.2.41.1. The names are those of H.265; where H.264
/// has another one it is given.
struct EquirectangularProjection {
    static constexpr PayloadTypes kPayloadTypes = {150, 150};  ///< payloadType
    bool erp_cancel_flag;                                      ///< u(1); nothing follows when it is 1
    bool erp_persistence_flag;                                 ///< u(1)
    bool erp_guard_band_flag;                                  ///< u(1); H.264: erp_padding_flag
    uint32_t erp_reserved_zero_2bits;                          ///< u(2), other values are reserved
    uint32_t erp_guard_band_type;                              ///< u(3); H.264: gp_erp_type
    uint32_t erp_left_guard_band_width;                        ///< u(8), samples; H.264: left_gb_erp_width
    uint32_t erp_right_guard_band_width;                       ///< u(8), samples; H.264: right_gb_erp_width
};

/// cubemap_projection(), H.264 D.1.35.2, H.265 D.2.41.2.
struct CubemapProjection {
    static constexpr PayloadTypes kPayloadTypes = {151, 151};  ///< payloadType
    bool cmp_cancel_flag;                                      ///< u(1); nothing follows when it is 1
    bool cmp_persistence_flag;                                 ///< u(1)
};

/// fisheye_video_info(), H.265 D.2.41.3; see fisheyeActiveAreasOf().
struct FisheyeVideoInfo {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 152};  ///< payloadType
    bool fisheye_cancel_flag;                  ///< u(1); nothing follows when it is 1
    bool fisheye_persistence_flag;             ///< u(1)
    uint32_t fisheye_view_dimension_idc;       ///< u(3)
    uint32_t fisheye_reserved_zero_3bits;      ///< u(3), other values are reserved
    uint32_t fisheye_num_active_areas_minus1;  ///< u(8)
    CodedBits active_areas;                    ///< an entry for each active area
};

/// An active area of fisheye video: the loop body of fisheye_video_info().
struct FisheyeActiveArea {
    static constexpr uint32_t kMostCoefficients = 8;  ///< the greatest fisheye_num_polynomial_coeffs

    uint32_t fisheye_circular_region_centre_x;            ///< u(32), 2^-16 samples
    uint32_t fisheye_circular_region_centre_y;            ///< u(32), 2^-16 samples
    uint32_t fisheye_rect_region_top;                     ///< u(32), samples
    uint32_t fisheye_rect_region_left;                    ///< u(32), samples
    uint32_t fisheye_rect_region_width;                   ///< u(32), samples
    uint32_t fisheye_rect_region_height;                  ///< u(32), samples
    uint32_t fisheye_circular_region_radius;              ///< u(32), 2^-16 samples
    uint32_t fisheye_scene_radius;                        ///< u(32), 2^-16 samples
    int32_t fisheye_camera_centre_azimuth;                ///< i(32), -180 * 2^16..180 * 2^16 - 1
    int32_t fisheye_camera_centre_elevation;              ///< i(32), -90 * 2^16..90 * 2^16
    int32_t fisheye_camera_centre_tilt;                   ///< i(32), -180 * 2^16..180 * 2^16 - 1
    uint32_t fisheye_camera_centre_offset_x;              ///< u(32), 2^-16 mm
    uint32_t fisheye_camera_centre_offset_y;              ///< u(32), 2^-16 mm
    uint32_t fisheye_camera_centre_offset_z;              ///< u(32), 2^-16 mm
    uint32_t fisheye_field_of_view;                       ///< u(32), 2^-16 degrees
    uint32_t fisheye_num_polynomial_coeffs;               ///< u(16), 0..8
    int32_t fisheye_polynomial_coeff[kMostCoefficients];  ///< i(32), 2^-24
};

/// sphere_rotation(), H.264 D.1.35.3, H.265 D.2.41.4.
struct SphereRotation {
    static constexpr PayloadTypes kPayloadTypes = {154, 154};  ///< payloadType
    bool sphere_rotation_cancel_flag;                          ///< u(1); nothing follows when it is 1
    bool sphere_rotation_persistence_flag;                     ///< u(1)
    uint32_t sphere_rotation_reserved_zero_6bits;              ///< u(6), other values are reserved
    int32_t yaw_rotation;                                      ///< i(32), -180 * 2^16..180 * 2^16 - 1
    int32_t pitch_rotation;                                    ///< i(32), -90 * 2^16..90 * 2^16
    int32_t roll_rotation;                                     ///< i(32), -180 * 2^16..180 * 2^16 - 1
};

/// regionwise_packing(), H.264 D.1.35.4, H.265 D.2.41.5; see packedRegionsOf().
struct RegionwisePacking {
    static constexpr PayloadTypes kPayloadTypes = {155, 155};  ///< payloadType
    bool rwp_cancel_flag;                                      ///< u(1); nothing follows when it is 1
    bool rwp_persistence_flag;                                 ///< u(1)
    bool constituent_picture_matching_flag;                    ///< u(1)
    uint32_t rwp_reserved_zero_5bits;                          ///< u(5), other values are reserved
    uint32_t num_packed_regions;                               ///< u(8), 1..255
    uint32_t proj_picture_width;                               ///< u(32), samples
    uint32_t proj_picture_height;                              ///< u(32), samples
    uint32_t packed_picture_width;                             ///< u(16), samples
    uint32_t packed_picture_height;                            ///< u(16), samples
    CodedBits packed_regions;                                  ///< an entry for each region
};

/// A region of a packed picture: the loop body of regionwise_packing(). The names are those of H.265; where
/// H.264 has another one it is given. Sizes and places are in samples.
struct PackedRegion {
    static constexpr uint32_t kSides = 4;  ///< guard bands: left, right, top, bottom

    uint32_t rwp_reserved_zero_4bits;             ///< u(4), other values are reserved
    uint32_t rwp_transform_type;                  ///< u(3); H.264: transform_type
    bool rwp_guard_band_flag;                     ///< u(1); H.264: guard_band_flag
    uint32_t proj_region_width;                   ///< u(32)
    uint32_t proj_region_height;                  ///< u(32)
    uint32_t proj_region_top;                     ///< u(32)
    uint32_t proj_region_left;                    ///< u(32)
    uint32_t packed_region_width;                 ///< u(16)
    uint32_t packed_region_height;                ///< u(16)
    uint32_t packed_region_top;                   ///< u(16)
    uint32_t packed_region_left;                  ///< u(16)
    uint32_t rwp_left_guard_band_width;           ///< u(8); H.264: left_gb_width
    uint32_t rwp_right_guard_band_width;          ///< u(8); H.264: right_gb_width
    uint32_t rwp_top_guard_band_height;           ///< u(8); H.264: top_gb_height
    uint32_t rwp_bottom_guard_band_height;        ///< u(8); H.264: bottom_gb_height
    bool rwp_guard_band_not_used_for_pred_flag;   ///< u(1); H.264: gb_not_used_for_pred_flag
    uint32_t rwp_guard_band_type[kSides];         ///< u(3); H.264: gb_type
    uint32_t rwp_guard_band_reserved_zero_3bits;  ///< u(3); H.264: rwp_gb_reserved_zero_3bits
};

/// omni_viewport(), H.264 D.1.35.5, H.265 D.2.41.6. Of the viewports as many elements are set as
/// omni_viewport_cnt_minus1 says.
struct OmniViewport {
    static constexpr PayloadTypes kPayloadTypes = {156, 156};  ///< payloadType
    static constexpr uint32_t kMostViewports = 16;  ///< the greatest omni_viewport_cnt_minus1, plus 1

    uint32_t omni_viewport_id;                               ///< u(10); 512..1023 are reserved
    bool omni_viewport_cancel_flag;                          ///< u(1); nothing follows when it is 1
    bool omni_viewport_persistence_flag;                     ///< u(1)
    uint32_t omni_viewport_cnt_minus1;                       ///< u(4)
    int32_t omni_viewport_azimuth_centre[kMostViewports];    ///< i(32), -180 * 2^16..180 * 2^16 - 1
    int32_t omni_viewport_elevation_centre[kMostViewports];  ///< i(32), -90 * 2^16..90 * 2^16
    int32_t omni_viewport_tilt_centre[kMostViewports];       ///< i(32), -180 * 2^16..180 * 2^16 - 1
    uint32_t omni_viewport_hor_range[kMostViewports];        ///< u(32), 1..360 * 2^16
    uint32_t omni_viewport_ver_range[kMostViewports];        ///< u(32), 1..180 * 2^16
};

/// The active areas of \p info, fisheye_num_active_areas_minus1 + 1 of them; none with fisheye_cancel_flag.
CodedEntries<FisheyeVideoInfo, FisheyeActiveArea> fisheyeActiveAreasOf(const FisheyeVideoInfo& info) noexcept;

/// The regions of \p packing, num_packed_regions of them; none with rwp_cancel_flag.
CodedEntries<RegionwisePacking, PackedRegion> packedRegionsOf(const RegionwisePacking& packing) noexcept;

}  // namespace qv::sei

#endif
