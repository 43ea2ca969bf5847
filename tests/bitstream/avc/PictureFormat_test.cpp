// Picture sizes and formats of H.264.
#include "bitstream/avc/PictureFormat.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace {

using namespace qv::avc;
using qv::Ratio;

// Frames of 4:2:0 with 8 bits.
SpsData framesOf(uint32_t mbs, uint32_t mapUnits) {
    SpsData sps = {};
    sps.chroma_format_idc = 1;
    sps.pic_width_in_mbs_minus1 = mbs - 1;
    sps.pic_height_in_map_units_minus1 = mapUnits - 1;
    sps.frame_mbs_only_flag = true;
    return sps;
}

void crop(SpsData& sps, uint32_t left, uint32_t right, uint32_t top, uint32_t bottom) {
    sps.frame_cropping_flag = true;
    sps.frame_crop_left_offset = left;
    sps.frame_crop_right_offset = right;
    sps.frame_crop_top_offset = top;
    sps.frame_crop_bottom_offset = bottom;
}

TEST(AvcPictureFormat, codedAndCroppedSize) {
    SpsData sps = framesOf(120, 68);
    crop(sps, 0, 0, 0, 4);
    const PictureFormat format = pictureFormatOf(sps);
    EXPECT_EQ(format.codedWidth, 1920U);
    EXPECT_EQ(format.codedHeight, 1088U);
    EXPECT_EQ(format.crop.left, 0U);
    EXPECT_EQ(format.crop.top, 0U);
    EXPECT_EQ(format.crop.width, 1920U);
    EXPECT_EQ(format.crop.height, 1080U);
    EXPECT_STREQ(format.chroma.name, "4:2:0");
    EXPECT_EQ(format.bitDepthLuma, 8U);
    EXPECT_EQ(format.bitDepthChroma, 8U);
    EXPECT_EQ(format.fieldCoding, FieldCoding::Frames);
}

TEST(AvcPictureFormat, fieldsDoubleTheHeight) {
    SpsData sps = framesOf(120, 34);
    sps.frame_mbs_only_flag = false;
    crop(sps, 0, 0, 0, 2);
    PictureFormat format = pictureFormatOf(sps);
    EXPECT_EQ(format.codedHeight, 1088U);
    EXPECT_EQ(format.crop.height, 1080U) << "CropUnitY is 4";
    EXPECT_EQ(format.fieldCoding, FieldCoding::FramesAndFields);
    sps.mb_adaptive_frame_field_flag = true;
    format = pictureFormatOf(sps);
    EXPECT_EQ(format.fieldCoding, FieldCoding::MacroblockAdaptive);
    EXPECT_EQ(picSizeInMapUnits(sps), 120U * 34);
    EXPECT_EQ(frameHeightInMbs(sps), 68U);
}

// CropUnitX and CropUnitY follow from ChromaArrayType and the fields.
TEST(AvcPictureFormat, cropUnits) {
    const struct {
        uint32_t chroma_format_idc;
        bool separate_colour_plane_flag;
        bool frame_mbs_only_flag;
        uint64_t unitX;
        uint64_t unitY;
    } cases[] = {
        {0, false, true, 1, 1}, {0, false, false, 1, 2}, {1, false, true, 2, 2}, {1, false, false, 2, 4},
        {2, false, true, 2, 1}, {2, false, false, 2, 2}, {3, false, true, 1, 1}, {3, false, false, 1, 2},
        {3, true, true, 1, 1},  {3, true, false, 1, 2},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(std::to_string(one.chroma_format_idc) + " " + std::to_string(one.frame_mbs_only_flag));
        SpsData sps = framesOf(10, 10);
        sps.chroma_format_idc = one.chroma_format_idc;
        sps.separate_colour_plane_flag = one.separate_colour_plane_flag;
        sps.frame_mbs_only_flag = one.frame_mbs_only_flag;
        crop(sps, 1, 2, 3, 4);
        const PictureFormat format = pictureFormatOf(sps);
        EXPECT_EQ(format.crop.left, one.unitX);
        EXPECT_EQ(format.crop.top, 3 * one.unitY);
        EXPECT_EQ(format.crop.width, format.codedWidth - 3 * one.unitX);
        EXPECT_EQ(format.crop.height, format.codedHeight - 7 * one.unitY);
    }
}

TEST(AvcPictureFormat, aCropThatLeavesNothingIsEmpty) {
    for (const auto& [left, right, top, bottom] :
         {std::tuple(8U, 0U, 0U, 0U), std::tuple(4U, 4U, 0U, 0U), std::tuple(0U, 0U, 3U, 5U),
          std::tuple(0xFFFFFFFEU, 0xFFFFFFFEU, 0U, 0U), std::tuple(0U, 0U, 0xFFFFFFFEU, 0xFFFFFFFEU)}) {
        SpsData sps = framesOf(1, 1);
        crop(sps, left, right, top, bottom);
        const PictureFormat format = pictureFormatOf(sps);
        EXPECT_TRUE(format.crop.isEmpty());
        EXPECT_EQ(format.crop.width, 0U);
        EXPECT_EQ(format.crop.height, 0U);
        EXPECT_EQ(format.codedWidth, 16U);
    }
    SpsData sps = framesOf(1, 1);
    crop(sps, 3, 4, 7, 0);
    EXPECT_EQ(pictureFormatOf(sps).crop.width, 2U);
    EXPECT_EQ(pictureFormatOf(sps).crop.height, 2U);
}

TEST(AvcPictureFormat, theLargestSizesDoNotOverflow) {
    SpsData sps = framesOf(0xFFFFFFFF, 0xFFFFFFFF);
    sps.frame_mbs_only_flag = false;
    sps.vui.aspect_ratio_idc = 255;
    sps.vui.sar_width = 65535;
    sps.vui.sar_height = 65534;
    const PictureFormat format = pictureFormatOf(sps);
    EXPECT_EQ(format.codedWidth, 16 * 0xFFFFFFFFULL);
    EXPECT_EQ(format.codedHeight, 32 * 0xFFFFFFFFULL);
    EXPECT_EQ(format.crop.height, format.codedHeight);
    EXPECT_EQ(picSizeInMapUnits(sps), 0xFFFFFFFFULL * 0xFFFFFFFFULL);
    EXPECT_EQ(format.displayAspectRatio, (Ratio{65535, 2 * 65534}));
}

TEST(AvcPictureFormat, aspectRatios) {
    SpsData sps = framesOf(45, 36);
    EXPECT_FALSE(pictureFormatOf(sps).sampleAspectRatio.isKnown());
    EXPECT_FALSE(pictureFormatOf(sps).displayAspectRatio.isKnown());
    sps.vui.aspect_ratio_idc = 4;
    EXPECT_EQ(pictureFormatOf(sps).sampleAspectRatio, (Ratio{16, 11}));
    EXPECT_EQ(pictureFormatOf(sps).displayAspectRatio, (Ratio{20, 11}));
    sps.vui.aspect_ratio_idc = 1;
    EXPECT_EQ(pictureFormatOf(sps).displayAspectRatio, (Ratio{5, 4}));
}

TEST(AvcPictureFormat, bitDepths) {
    SpsData sps = framesOf(1, 1);
    sps.bit_depth_luma_minus8 = 2;
    sps.bit_depth_chroma_minus8 = 6;
    EXPECT_EQ(pictureFormatOf(sps).bitDepthLuma, 10U);
    EXPECT_EQ(pictureFormatOf(sps).bitDepthChroma, 14U);
    sps.chroma_format_idc = 0;
    EXPECT_EQ(pictureFormatOf(sps).bitDepthChroma, 0U) << "monochrome";
    sps.chroma_format_idc = 3;
    sps.separate_colour_plane_flag = true;
    EXPECT_EQ(pictureFormatOf(sps).bitDepthChroma, 10U) << "each plane is coded as luma";
    EXPECT_STREQ(pictureFormatOf(sps).chroma.name, "4:4:4");
    EXPECT_EQ(chromaArrayType(sps), 0U);
}

}  // namespace
