// Sizes, chroma, bit depths and aspect ratio of H.265 pictures.
#include "bitstream/hevc/PictureFormat.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace qv::hevc;

std::unique_ptr<Sps> spsOf(uint32_t width, uint32_t height, uint32_t chroma_format_idc = 1) {
    auto sps = std::make_unique<Sps>();
    sps->chroma_format_idc = chroma_format_idc;
    sps->pic_width_in_luma_samples = width;
    sps->pic_height_in_luma_samples = height;
    return sps;
}

void expectRectangle(const Rectangle& rectangle, uint64_t left, uint64_t top, uint64_t width,
                     uint64_t height) {
    EXPECT_EQ(rectangle.left, left);
    EXPECT_EQ(rectangle.top, top);
    EXPECT_EQ(rectangle.width, width);
    EXPECT_EQ(rectangle.height, height);
}

TEST(HevcPictureFormat, highDefinition) {
    const auto sps = spsOf(1920, 1088);
    sps->conf_win_bottom_offset = 4;
    sps->bit_depth_luma_minus8 = 2;
    sps->bit_depth_chroma_minus8 = 1;
    sps->vui.aspect_ratio_idc = 1;
    const PictureFormat format = pictureFormatOf(*sps);
    EXPECT_EQ(format.codedWidth, 1920U);
    EXPECT_EQ(format.codedHeight, 1088U);
    expectRectangle(format.crop, 0, 0, 1920, 1080);
    expectRectangle(format.display, 0, 0, 1920, 1080);
    EXPECT_EQ(format.sampleAspectRatio, (qv::Ratio{1, 1}));
    EXPECT_EQ(format.displayAspectRatio, (qv::Ratio{16, 9}));
    EXPECT_STREQ(format.chroma.name, "4:2:0");
    EXPECT_EQ(format.bitDepthLuma, 10U);
    EXPECT_EQ(format.bitDepthChroma, 9U);
    EXPECT_FALSE(format.picturesAreFields);
}

// Offsets are in chroma samples, and those of the display window count from the conformance window.
TEST(HevcPictureFormat, windows) {
    struct Case {
        uint32_t chroma_format_idc;
        uint64_t unitX;
        uint64_t unitY;
    };
    for (const Case& one : {Case{0, 1, 1}, Case{1, 2, 2}, Case{2, 2, 1}, Case{3, 1, 1}}) {
        SCOPED_TRACE(one.chroma_format_idc);
        const auto sps = spsOf(720, 576, one.chroma_format_idc);
        sps->conf_win_left_offset = 1;
        sps->conf_win_right_offset = 2;
        sps->conf_win_top_offset = 3;
        sps->conf_win_bottom_offset = 4;
        sps->vui.def_disp_win_left_offset = 5;
        sps->vui.def_disp_win_right_offset = 6;
        sps->vui.def_disp_win_top_offset = 7;
        sps->vui.def_disp_win_bottom_offset = 8;
        const PictureFormat format = pictureFormatOf(*sps);
        expectRectangle(format.crop, one.unitX, 3 * one.unitY, 720 - 3 * one.unitX, 576 - 7 * one.unitY);
        expectRectangle(format.display, 6 * one.unitX, 10 * one.unitY, 720 - 14 * one.unitX,
                        576 - 22 * one.unitY);
    }
}

TEST(HevcPictureFormat, separateColourPlanes) {
    const auto sps = spsOf(64, 64, 3);
    sps->separate_colour_plane_flag = true;
    sps->bit_depth_luma_minus8 = 4;
    EXPECT_EQ(chromaArrayType(*sps), 0U);
    EXPECT_EQ(pictureFormatOf(*sps).bitDepthChroma, 12U);
    EXPECT_STREQ(pictureFormatOf(*sps).chroma.name, "4:4:4");
    EXPECT_EQ(pictureFormatOf(*spsOf(64, 64, 0)).bitDepthChroma, 0U);
}

TEST(HevcPictureFormat, fields) {
    const auto sps = spsOf(720, 288);
    sps->vui.field_seq_flag = true;
    sps->vui.aspect_ratio_idc = 2;
    const PictureFormat format = pictureFormatOf(*sps);
    EXPECT_TRUE(format.picturesAreFields);
    EXPECT_EQ(format.crop.height, 288U);
    EXPECT_EQ(format.displayAspectRatio, (qv::Ratio{15, 11}));
}

TEST(HevcPictureFormat, aspectRatioOfItsOwn) {
    const auto sps = spsOf(720, 576);
    sps->vui.aspect_ratio_idc = 255;
    sps->vui.sar_width = 64;
    sps->vui.sar_height = 45;
    EXPECT_EQ(pictureFormatOf(*sps).sampleAspectRatio, (qv::Ratio{64, 45}));
    EXPECT_EQ(pictureFormatOf(*sps).displayAspectRatio, (qv::Ratio{16, 9}));
    sps->vui.sar_height = 0;
    EXPECT_FALSE(pictureFormatOf(*sps).sampleAspectRatio.isKnown());
    EXPECT_FALSE(pictureFormatOf(*sps).displayAspectRatio.isKnown());
}

// A window that leaves nothing is empty, whatever its offsets.
TEST(HevcPictureFormat, windowsThatLeaveNothing) {
    const auto sps = spsOf(64, 64);
    sps->conf_win_left_offset = 16;
    sps->conf_win_right_offset = 16;
    EXPECT_TRUE(pictureFormatOf(*sps).crop.isEmpty());
    expectRectangle(pictureFormatOf(*sps).crop, 0, 0, 0, 0);
    EXPECT_TRUE(pictureFormatOf(*sps).display.isEmpty());
    EXPECT_FALSE(pictureFormatOf(*sps).displayAspectRatio.isKnown());
    sps->conf_win_right_offset = 15;
    EXPECT_EQ(pictureFormatOf(*sps).crop.width, 2U);
    sps->conf_win_top_offset = 0xFFFFFFFF;
    sps->conf_win_bottom_offset = 0xFFFFFFFF;
    EXPECT_TRUE(pictureFormatOf(*sps).crop.isEmpty());
    sps->conf_win_top_offset = 0;
    sps->conf_win_bottom_offset = 0;
    sps->vui.def_disp_win_bottom_offset = 32;
    EXPECT_FALSE(pictureFormatOf(*sps).crop.isEmpty());
    EXPECT_TRUE(pictureFormatOf(*sps).display.isEmpty());
}

}  // namespace
