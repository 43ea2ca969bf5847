// Pictures of a sphere as syntax functions.
#ifndef QV_BITSTREAM_SEI_OMNIDIRECTIONALSYNTAX_H
#define QV_BITSTREAM_SEI_OMNIDIRECTIONALSYNTAX_H

#include "bitstream/sei/Omnidirectional.h"
#include "bitstream/sei/PayloadSyntax.h"

namespace qv::sei {

// Angles in units of 2^-16 degrees.
constexpr int32_t kDegree = 1 << 16;
constexpr int32_t kHalfTurn = 180 * kDegree;
constexpr int32_t kQuarterTurn = 90 * kDegree;

// The name of an element that each codec names in its own way.
inline const char* nameIn(const Context& context, const char* avc, const char* hevc) {
    return context.codec == Codec::Avc ? avc : hevc;
}

// equirectangular_projection(), H.264 D.1.35.1, H.265 D.2.41.1
template <class Syntax>
void equirectangular_projection(Syntax& s, const Context& context, EquirectangularProjection& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("equirectangular_projection()", "D.1.35.1", "D.2.41.1");
    const Within<Syntax> within(s, kStructure.of(context));
    s.flag("erp_cancel_flag", payload.erp_cancel_flag);
    if (payload.erp_cancel_flag) {
        return;
    }
    s.flag("erp_persistence_flag", payload.erp_persistence_flag);
    s.flag(nameIn(context, "erp_padding_flag", "erp_guard_band_flag"), payload.erp_guard_band_flag);
    s.u(2, "erp_reserved_zero_2bits", payload.erp_reserved_zero_2bits);
    if (payload.erp_guard_band_flag) {
        s.u(3, nameIn(context, "gp_erp_type", "erp_guard_band_type"), payload.erp_guard_band_type);
        s.u(8, nameIn(context, "left_gb_erp_width", "erp_left_guard_band_width"),
            payload.erp_left_guard_band_width);
        s.u(8, nameIn(context, "right_gb_erp_width", "erp_right_guard_band_width"),
            payload.erp_right_guard_band_width);
    }
}

// cubemap_projection(), H.264 D.1.35.2, H.265 D.2.41.2
template <class Syntax>
void cubemap_projection(Syntax& s, const Context& context, CubemapProjection& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("cubemap_projection()", "D.1.35.2", "D.2.41.2");
    const Within<Syntax> within(s, kStructure.of(context));
    s.flag("cmp_cancel_flag", payload.cmp_cancel_flag);
    if (!payload.cmp_cancel_flag) {
        s.flag("cmp_persistence_flag", payload.cmp_persistence_flag);
    }
}

// The loop body of fisheye_video_info().
template <class Syntax>
void fisheye_active_area(Syntax& s, uint32_t i, FisheyeActiveArea& area) {
    s.u(32, at("fisheye_circular_region_centre_x", i), area.fisheye_circular_region_centre_x);
    s.u(32, at("fisheye_circular_region_centre_y", i), area.fisheye_circular_region_centre_y);
    s.u(32, at("fisheye_rect_region_top", i), area.fisheye_rect_region_top);
    s.u(32, at("fisheye_rect_region_left", i), area.fisheye_rect_region_left);
    s.u(32, at("fisheye_rect_region_width", i), area.fisheye_rect_region_width);
    s.u(32, at("fisheye_rect_region_height", i), area.fisheye_rect_region_height);
    s.u(32, at("fisheye_circular_region_radius", i), area.fisheye_circular_region_radius);
    s.u(32, at("fisheye_scene_radius", i), area.fisheye_scene_radius);
    s.i(32, at("fisheye_camera_centre_azimuth", i), area.fisheye_camera_centre_azimuth, -kHalfTurn,
        kHalfTurn - 1);
    s.i(32, at("fisheye_camera_centre_elevation", i), area.fisheye_camera_centre_elevation, -kQuarterTurn,
        kQuarterTurn);
    s.i(32, at("fisheye_camera_centre_tilt", i), area.fisheye_camera_centre_tilt, -kHalfTurn, kHalfTurn - 1);
    s.u(32, at("fisheye_camera_centre_offset_x", i), area.fisheye_camera_centre_offset_x);
    s.u(32, at("fisheye_camera_centre_offset_y", i), area.fisheye_camera_centre_offset_y);
    s.u(32, at("fisheye_camera_centre_offset_z", i), area.fisheye_camera_centre_offset_z);
    s.u(32, at("fisheye_field_of_view", i), area.fisheye_field_of_view);
    s.u(16, at("fisheye_num_polynomial_coeffs", i), area.fisheye_num_polynomial_coeffs, 0,
        FisheyeActiveArea::kMostCoefficients);
    for (uint32_t j = 0; j < area.fisheye_num_polynomial_coeffs; ++j) {
        s.i(32, at("fisheye_polynomial_coeff", i, j), area.fisheye_polynomial_coeff[j]);
    }
}

// fisheye_video_info(), H.265 D.2.41.3
template <class Syntax>
void fisheye_video_info(Syntax& s, const Context& /*context*/, FisheyeVideoInfo& payload) {
    static constexpr Structure kStructure = {"fisheye_video_info()", "D.2.41.3"};
    const Within<Syntax> within(s, kStructure);
    s.flag("fisheye_cancel_flag", payload.fisheye_cancel_flag);
    if (payload.fisheye_cancel_flag) {
        return;
    }
    s.flag("fisheye_persistence_flag", payload.fisheye_persistence_flag);
    s.u(3, "fisheye_view_dimension_idc", payload.fisheye_view_dimension_idc);
    s.u(3, "fisheye_reserved_zero_3bits", payload.fisheye_reserved_zero_3bits);
    s.u(8, "fisheye_num_active_areas_minus1", payload.fisheye_num_active_areas_minus1);
    s.keep(payload.active_areas, [&payload](auto& in) {
        for (uint32_t i = 0; i <= payload.fisheye_num_active_areas_minus1; ++i) {
            FisheyeActiveArea area = {};
            fisheye_active_area(in, i, area);
        }
    });
}

// sphere_rotation(), H.264 D.1.35.3, H.265 D.2.41.4
template <class Syntax>
void sphere_rotation(Syntax& s, const Context& context, SphereRotation& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("sphere_rotation()", "D.1.35.3", "D.2.41.4");
    const Within<Syntax> within(s, kStructure.of(context));
    s.flag("sphere_rotation_cancel_flag", payload.sphere_rotation_cancel_flag);
    if (payload.sphere_rotation_cancel_flag) {
        return;
    }
    s.flag("sphere_rotation_persistence_flag", payload.sphere_rotation_persistence_flag);
    s.u(6, "sphere_rotation_reserved_zero_6bits", payload.sphere_rotation_reserved_zero_6bits);
    s.i(32, "yaw_rotation", payload.yaw_rotation, -kHalfTurn, kHalfTurn - 1);
    s.i(32, "pitch_rotation", payload.pitch_rotation, -kQuarterTurn, kQuarterTurn);
    s.i(32, "roll_rotation", payload.roll_rotation, -kHalfTurn, kHalfTurn - 1);
}

// The guard bands of a region.
template <class Syntax>
void guard_bands(Syntax& s, const Context& context, uint32_t i, PackedRegion& region) {
    s.u(8, at(nameIn(context, "left_gb_width", "rwp_left_guard_band_width"), i),
        region.rwp_left_guard_band_width);
    s.u(8, at(nameIn(context, "right_gb_width", "rwp_right_guard_band_width"), i),
        region.rwp_right_guard_band_width);
    s.u(8, at(nameIn(context, "top_gb_height", "rwp_top_guard_band_height"), i),
        region.rwp_top_guard_band_height);
    s.u(8, at(nameIn(context, "bottom_gb_height", "rwp_bottom_guard_band_height"), i),
        region.rwp_bottom_guard_band_height);
    s.flag(at(nameIn(context, "gb_not_used_for_pred_flag", "rwp_guard_band_not_used_for_pred_flag"), i),
           region.rwp_guard_band_not_used_for_pred_flag);
    for (uint32_t j = 0; j < PackedRegion::kSides; ++j) {
        s.u(3, at(nameIn(context, "gb_type", "rwp_guard_band_type"), i, j), region.rwp_guard_band_type[j]);
    }
    s.u(3, at(nameIn(context, "rwp_gb_reserved_zero_3bits", "rwp_guard_band_reserved_zero_3bits"), i),
        region.rwp_guard_band_reserved_zero_3bits);
}

// The loop body of regionwise_packing().
template <class Syntax>
void packed_region(Syntax& s, const Context& context, uint32_t i, PackedRegion& region) {
    s.u(4, at("rwp_reserved_zero_4bits", i), region.rwp_reserved_zero_4bits);
    s.u(3, at(nameIn(context, "transform_type", "rwp_transform_type"), i), region.rwp_transform_type);
    s.flag(at(nameIn(context, "guard_band_flag", "rwp_guard_band_flag"), i), region.rwp_guard_band_flag);
    s.u(32, at("proj_region_width", i), region.proj_region_width);
    s.u(32, at("proj_region_height", i), region.proj_region_height);
    s.u(32, at("proj_region_top", i), region.proj_region_top);
    s.u(32, at("proj_region_left", i), region.proj_region_left);
    s.u(16, at("packed_region_width", i), region.packed_region_width);
    s.u(16, at("packed_region_height", i), region.packed_region_height);
    s.u(16, at("packed_region_top", i), region.packed_region_top);
    s.u(16, at("packed_region_left", i), region.packed_region_left);
    if (region.rwp_guard_band_flag) {
        guard_bands(s, context, i, region);
    }
}

// regionwise_packing(), H.264 D.1.35.4, H.265 D.2.41.5
template <class Syntax>
void regionwise_packing(Syntax& s, const Context& context, RegionwisePacking& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("regionwise_packing()", "D.1.35.4", "D.2.41.5");
    const Within<Syntax> within(s, kStructure.of(context));
    s.flag("rwp_cancel_flag", payload.rwp_cancel_flag);
    if (payload.rwp_cancel_flag) {
        return;
    }
    s.flag("rwp_persistence_flag", payload.rwp_persistence_flag);
    s.flag("constituent_picture_matching_flag", payload.constituent_picture_matching_flag);
    s.u(5, "rwp_reserved_zero_5bits", payload.rwp_reserved_zero_5bits);
    s.u(8, "num_packed_regions", payload.num_packed_regions, 1, 0xFF);
    s.u(32, "proj_picture_width", payload.proj_picture_width);
    s.u(32, "proj_picture_height", payload.proj_picture_height);
    s.u(16, "packed_picture_width", payload.packed_picture_width);
    s.u(16, "packed_picture_height", payload.packed_picture_height);
    s.keep(payload.packed_regions, [&payload, &context](auto& in) {
        for (uint32_t i = 0; i < payload.num_packed_regions; ++i) {
            PackedRegion region = {};
            packed_region(in, context, i, region);
        }
    });
}

// omni_viewport(), H.264 D.1.35.5, H.265 D.2.41.6
template <class Syntax>
void omni_viewport(Syntax& s, const Context& context, OmniViewport& payload) {
    static constexpr SharedStructure kStructure = sharedStructure("omni_viewport()", "D.1.35.5", "D.2.41.6");
    const Within<Syntax> within(s, kStructure.of(context));
    s.u(10, "omni_viewport_id", payload.omni_viewport_id);
    s.flag("omni_viewport_cancel_flag", payload.omni_viewport_cancel_flag);
    if (payload.omni_viewport_cancel_flag) {
        return;
    }
    s.flag("omni_viewport_persistence_flag", payload.omni_viewport_persistence_flag);
    s.u(4, "omni_viewport_cnt_minus1", payload.omni_viewport_cnt_minus1);
    for (uint32_t i = 0; i <= payload.omni_viewport_cnt_minus1; ++i) {
        s.i(32, at("omni_viewport_azimuth_centre", i), payload.omni_viewport_azimuth_centre[i], -kHalfTurn,
            kHalfTurn - 1);
        s.i(32, at("omni_viewport_elevation_centre", i), payload.omni_viewport_elevation_centre[i],
            -kQuarterTurn, kQuarterTurn);
        s.i(32, at("omni_viewport_tilt_centre", i), payload.omni_viewport_tilt_centre[i], -kHalfTurn,
            kHalfTurn - 1);
        s.u(32, at("omni_viewport_hor_range", i), payload.omni_viewport_hor_range[i], 1, 2 * kHalfTurn);
        s.u(32, at("omni_viewport_ver_range", i), payload.omni_viewport_ver_range[i], 1, kHalfTurn);
    }
}

}  // namespace qv::sei

#endif
