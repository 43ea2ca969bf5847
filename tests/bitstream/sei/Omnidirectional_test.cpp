// Pictures of a sphere.
#include "bitstream/sei/Omnidirectional.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "PayloadChecks.h"
#include "bitstream/sei/OmnidirectionalSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using testing::IsSupersetOf;

constexpr Codec kCodecs[] = {Codec::Avc, Codec::Hevc};

PayloadUnderTest<EquirectangularProjection> equirectangular(Codec codec) {
    return payloadUnderTest<EquirectangularProjection>(
        Context(codec),
        [](auto& s, const auto& c, auto& payload) { equirectangular_projection(s, c, payload); });
}

PayloadUnderTest<CubemapProjection> cubemap(Codec codec) {
    return payloadUnderTest<CubemapProjection>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { cubemap_projection(s, c, payload); });
}

PayloadUnderTest<FisheyeVideoInfo> fisheye() {
    auto structure = payloadUnderTest<FisheyeVideoInfo>(
        Context(Codec::Hevc),
        [](auto& s, const auto& c, auto& payload) { fisheye_video_info(s, c, payload); });
    structure.violable = 7;
    return structure;
}

PayloadUnderTest<SphereRotation> rotation(Codec codec) {
    auto structure = payloadUnderTest<SphereRotation>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { sphere_rotation(s, c, payload); });
    structure.violable = 6;
    return structure;
}

PayloadUnderTest<RegionwisePacking> packing(Codec codec) {
    auto structure = payloadUnderTest<RegionwisePacking>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { regionwise_packing(s, c, payload); });
    structure.violable = 1;
    return structure;
}

PayloadUnderTest<OmniViewport> viewport(Codec codec) {
    auto structure = payloadUnderTest<OmniViewport>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { omni_viewport(s, c, payload); });
    structure.violable = 10;
    return structure;
}

TEST(SeiOmnidirectional, roundTrips) {
    checkRoundTrips(fisheye(), unitRounds());
    for (const Codec codec : kCodecs) {
        checkRoundTrips(equirectangular(codec), unitRounds());
        checkRoundTrips(cubemap(codec), unitRounds());
        checkRoundTrips(rotation(codec), unitRounds());
        checkRoundTrips(packing(codec), unitRounds());
        checkRoundTrips(viewport(codec), unitRounds());
    }
}

TEST(SeiOmnidirectional, everyRange) {
    EXPECT_THAT(checkRanges(fisheye(), unitRounds()),
                IsSupersetOf({"fisheye_camera_centre_azimuth", "fisheye_camera_centre_elevation",
                              "fisheye_camera_centre_tilt", "fisheye_num_polynomial_coeffs"}));
    for (const Codec codec : kCodecs) {
        EXPECT_THAT(checkRanges(rotation(codec), unitRounds()),
                    IsSupersetOf({"yaw_rotation", "pitch_rotation", "roll_rotation"}));
        EXPECT_THAT(checkRanges(packing(codec), unitRounds()), testing::Contains("num_packed_regions"));
        EXPECT_THAT(checkRanges(viewport(codec), unitRounds()),
                    IsSupersetOf({"omni_viewport_azimuth_centre", "omni_viewport_elevation_centre",
                                  "omni_viewport_tilt_centre", "omni_viewport_hor_range",
                                  "omni_viewport_ver_range"}));
    }
}

TEST(SeiOmnidirectional, cutAtEveryByte) {
    checkCuts(fisheye(), unitRounds(50));
    for (const Codec codec : kCodecs) {
        checkCuts(equirectangular(codec), unitRounds(50));
        checkCuts(cubemap(codec), unitRounds(50));
        checkCuts(rotation(codec), unitRounds(50));
        checkCuts(packing(codec), unitRounds(50));
        checkCuts(viewport(codec), unitRounds(50));
    }
}

TEST(SeiOmnidirectional, noAllocationAndNoByteOutside) {
    checkMemory(fisheye(), unitRounds(10),
                {{"fisheyeActiveAreasOf", [](const auto& info) {
                      return sumOf(fisheyeActiveAreasOf(info),
                                   [](const auto& area) { return area.fisheye_field_of_view; });
                  }}});
    for (const Codec codec : kCodecs) {
        checkMemory(equirectangular(codec), unitRounds(10));
        checkMemory(cubemap(codec), unitRounds(10));
        checkMemory(rotation(codec), unitRounds(10));
        checkMemory(packing(codec), unitRounds(10),
                    {{"packedRegionsOf", [](const auto& all) {
                          return sumOf(packedRegionsOf(all),
                                       [](const auto& region) { return region.packed_region_left; });
                      }}});
        checkMemory(viewport(codec), unitRounds(10));
    }
}

// 0 1 1 00 010 00001000 00010000. The codecs differ in names alone.
TEST(SeiOmnidirectional, guardBandsOfAnEquirectangularPicture) {
    const std::vector<uint8_t> unit = unitOfPayload(hex("62 08 10"));
    for (const Codec codec : kCodecs) {
        const auto structure = equirectangular(codec);
        RecordingVisitor visitor;
        const auto read = structure.trace(bytesOf(unit), visitor);
        ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
        EXPECT_TRUE(read.record.erp_persistence_flag);
        EXPECT_EQ(read.record.erp_guard_band_type, 2U);
        EXPECT_EQ(read.record.erp_left_guard_band_width, 8U);
        EXPECT_EQ(read.record.erp_right_guard_band_width, 16U);
        ASSERT_EQ(visitor.elements.size(), 7U);
        EXPECT_STREQ(visitor.elements[5].element.name,
                     codec == Codec::Avc ? "left_gb_erp_width" : "erp_left_guard_band_width");
    }
}

// Half a turn to the left, a quarter up: -180 * 2^16 is FF4C0000, 90 * 2^16 is 005A0000.
TEST(SeiOmnidirectional, rotationOfTheSphere) {
    const std::vector<uint8_t> unit = unitOfPayload(hex("40 FF4C0000 005A0000 00B3FFFF"));
    const auto read = readPayloadOf<SphereRotation>(unit, Context(Codec::Hevc));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_TRUE(read.record.sphere_rotation_persistence_flag);
    EXPECT_EQ(read.record.yaw_rotation, -180 * 65536);
    EXPECT_EQ(read.record.pitch_rotation, 90 * 65536);
    EXPECT_EQ(read.record.roll_rotation, 180 * 65536 - 1);
}

void putRegion(BitWriter& bits, uint32_t transform, bool hasGuardBand, uint32_t left) {
    bits.u(4, "rwp_reserved_zero_4bits", 0).u(3, "rwp_transform_type", transform);
    bits.u(1, "rwp_guard_band_flag", hasGuardBand ? 1 : 0).u(32, "proj_region_width", 1920);
    bits.u(32, "proj_region_height", 1080).u(32, "proj_region_top", 0).u(32, "proj_region_left", left);
    bits.u(16, "packed_region_width", 960).u(16, "packed_region_height", 540);
    bits.u(16, "packed_region_top", 4).u(16, "packed_region_left", 8);
}

TEST(SeiOmnidirectional, packedRegions) {
    BitWriter bits;
    bits.u(1, "rwp_cancel_flag", 0).u(1, "rwp_persistence_flag", 1);
    bits.u(1, "constituent_picture_matching_flag", 0).u(5, "rwp_reserved_zero_5bits", 0);
    bits.u(8, "num_packed_regions", 2).u(32, "proj_picture_width", 3840).u(32, "proj_picture_height", 1080);
    bits.u(16, "packed_picture_width", 1920).u(16, "packed_picture_height", 540);
    putRegion(bits, 0, false, 0);
    putRegion(bits, 5, true, 1920);
    bits.u(8, "rwp_left_guard_band_width", 1).u(8, "rwp_right_guard_band_width", 2);
    bits.u(8, "rwp_top_guard_band_height", 3).u(8, "rwp_bottom_guard_band_height", 4);
    bits.u(1, "rwp_guard_band_not_used_for_pred_flag", 1);
    for (const uint32_t type : {0U, 1U, 2U, 7U}) {
        bits.u(3, "rwp_guard_band_type", type);
    }
    bits.u(3, "rwp_guard_band_reserved_zero_3bits", 0);
    const std::vector<uint8_t> unit = unitOfPayload(bits.bytes());
    for (const Codec codec : kCodecs) {
        const auto read = readPayloadOf<RegionwisePacking>(unit, Context(codec));
        ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
        EXPECT_EQ(read.record.proj_picture_width, 3840U);
        const std::vector<PackedRegion> regions = entriesOf(packedRegionsOf(read.record));
        ASSERT_EQ(regions.size(), 2U);
        EXPECT_FALSE(regions[0].rwp_guard_band_flag);
        EXPECT_EQ(regions[0].rwp_left_guard_band_width, 0U);
        EXPECT_EQ(regions[1].rwp_transform_type, 5U);
        EXPECT_EQ(regions[1].proj_region_left, 1920U);
        EXPECT_EQ(regions[1].packed_region_left, 8U);
        EXPECT_EQ(regions[1].rwp_bottom_guard_band_height, 4U);
        EXPECT_TRUE(regions[1].rwp_guard_band_not_used_for_pred_flag);
        EXPECT_THAT(regions[1].rwp_guard_band_type, testing::ElementsAre(0, 1, 2, 7));
    }
}

// A list that is cut off is a fault, and has no entries.
TEST(SeiOmnidirectional, noRegionsAfterAFault) {
    RegionwisePacking packing = {};
    packing.num_packed_regions = 3;
    EXPECT_TRUE(entriesOf(packedRegionsOf(packing)).empty());
    packing.num_packed_regions = 0;
    EXPECT_TRUE(entriesOf(packedRegionsOf(packing)).empty());
}

// Identifier 5, one viewport to the left and up, 90 degrees wide and 60 high.
TEST(SeiOmnidirectional, viewport) {
    BitWriter bits;
    bits.u(10, "omni_viewport_id", 5).u(1, "omni_viewport_cancel_flag", 0);
    bits.u(1, "omni_viewport_persistence_flag", 1).u(4, "omni_viewport_cnt_minus1", 0);
    bits.u(32, "omni_viewport_azimuth_centre[ 0 ]", 0xFFFF0000)
        .u(32, "omni_viewport_elevation_centre[ 0 ]", 32768);
    bits.u(32, "omni_viewport_tilt_centre[ 0 ]", 0).u(32, "omni_viewport_hor_range[ 0 ]", 90 * 65536);
    bits.u(32, "omni_viewport_ver_range[ 0 ]", 60 * 65536);
    const auto read = readPayloadOf<OmniViewport>(unitOfPayload(bits.bytes()), Context(Codec::Hevc));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.omni_viewport_id, 5U);
    EXPECT_EQ(read.record.omni_viewport_azimuth_centre[0], -65536);
    EXPECT_EQ(read.record.omni_viewport_elevation_centre[0], 32768);
    EXPECT_EQ(read.record.omni_viewport_hor_range[0], 90U * 65536);
    EXPECT_EQ(read.record.omni_viewport_ver_range[0], 60U * 65536);
}

TEST(SeiOmnidirectional, activeAreaOfAFisheyePicture) {
    BitWriter bits;
    bits.u(1, "fisheye_cancel_flag", 0).u(1, "fisheye_persistence_flag", 1);
    bits.u(3, "fisheye_view_dimension_idc", 1).u(3, "fisheye_reserved_zero_3bits", 0);
    bits.u(8, "fisheye_num_active_areas_minus1", 0);
    for (uint32_t element = 1; element <= 8; ++element) {
        bits.u(32, "fisheye_circular_region_centre_x to fisheye_scene_radius", element);
    }
    bits.u(32, "fisheye_camera_centre_azimuth", 0xFFFFFFFF).u(32, "fisheye_camera_centre_elevation", 5);
    bits.u(32, "fisheye_camera_centre_tilt", 6).u(32, "fisheye_camera_centre_offset_x", 7);
    bits.u(32, "fisheye_camera_centre_offset_y", 8).u(32, "fisheye_camera_centre_offset_z", 9);
    bits.u(32, "fisheye_field_of_view", 180 * 65536).u(16, "fisheye_num_polynomial_coeffs", 2);
    bits.u(32, "fisheye_polynomial_coeff[ 0 ][ 0 ]", 1 << 24);
    bits.u(32, "fisheye_polynomial_coeff[ 0 ][ 1 ]", 0xFFFFFFFE);
    const std::vector<uint8_t> unit = unitOfPayload(bits.bytes());
    const auto read = readPayloadOf<FisheyeVideoInfo>(unit, Context(Codec::Hevc));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    const std::vector<FisheyeActiveArea> areas = entriesOf(fisheyeActiveAreasOf(read.record));
    ASSERT_EQ(areas.size(), 1U);
    EXPECT_EQ(areas[0].fisheye_circular_region_centre_x, 1U);
    EXPECT_EQ(areas[0].fisheye_scene_radius, 8U);
    EXPECT_EQ(areas[0].fisheye_camera_centre_azimuth, -1);
    EXPECT_EQ(areas[0].fisheye_field_of_view, 180U * 65536);
    EXPECT_EQ(areas[0].fisheye_num_polynomial_coeffs, 2U);
    EXPECT_EQ(areas[0].fisheye_polynomial_coeff[0], 1 << 24);
    EXPECT_EQ(areas[0].fisheye_polynomial_coeff[1], -2);
}

}  // namespace
