// Picture size, frame and field coding, and cropping in the H.264 sequence parameter set.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "AvcSpsRecord.h"
#include "AvcSpsSyntax.h"
#include "QVAvcSps.h"
#include "SyntaxElements.h"

namespace qv_test {
namespace {

using Step = AvcSpsStep;

constexpr uint32_t kLargestCodeNum = 0xFFFFFFFE;

const char* const kMinimalSummary = "sps:0 profile:66/10 poc:0 ref:0 1x1 FRM  crop:0/0/0/0  420";

// --- Picture size in macroblocks ---

class QVAvcSpsMbSize : public AvcSpsTest {};

const char* const kMbOverflow = "parseAvcCDecoderSps, mb_width/height overflow\n";

TEST_F(QVAvcSpsMbSize, lastAcceptedWidth) {
    ASSERT_TRUE(parse(avcSps([](AvcSpsSyntax& s) { s.pic_width_in_mbs_minus1 = 134217725; })));
    QVAvcSps record = avcSpsAfter(Step::Vui);
    record.mb_width = 134217726;
    record.width = 2147483616;
    expectOutcome(record, {avcSummary("sps:0 profile:66/10 poc:0 ref:0 134217726x1 FRM  crop:0/0/0/0  420")});
}

TEST_F(QVAvcSpsMbSize, lastAcceptedHeight) {
    ASSERT_TRUE(parse(avcSps([](AvcSpsSyntax& s) { s.pic_height_in_map_units_minus1 = 134217725; })));
    QVAvcSps record = avcSpsAfter(Step::Vui);
    record.mb_height = 134217726;
    record.height = 2147483616;
    expectOutcome(record, {avcSummary("sps:0 profile:66/10 poc:0 ref:0 1x134217726 FRM  crop:0/0/0/0  420")});
}

TEST_F(QVAvcSpsMbSize, fieldHeightWraps) {
    ASSERT_TRUE(parse(avcSps([](AvcSpsSyntax& s) {
        s.pic_height_in_map_units_minus1 = 134217725;
        s.frame_mbs_only_flag = 0;
    })));
    QVAvcSps record = avcSpsAfter(Step::Vui);
    record.mb_height = 134217726;
    record.frame_mbs_only_flag = 0;
    record.height = -64;  // 2^32 - 64
    expectOutcome(record,
                  {avcSummary("sps:0 profile:66/10 poc:0 ref:0 1x134217726 PIC-AFF  crop:0/0/0/0  420")});
}

TEST_F(QVAvcSpsMbSize, firstRejectedAndBeyondAreStoredAndFail) {
    struct Case {
        uint32_t widthMinus1, heightMinus1;
        int32_t width, height;
    };
    const Case cases[] = {
        {134217726, 0, 134217727, 1},
        {0, 134217726, 1, 134217727},
        {134217726, 134217726, 134217727, 134217727},
        {134217725, 134217726, 134217726, 134217727},
        {0x7FFFFFFE, 0, 0x7FFFFFFF, 1},
        {0x7FFFFFFF, 0, INT32_MIN, 1},
        {0, 0x7FFFFFFF, 1, INT32_MIN},
        {kLargestCodeNum, 0, -1, 1},
        {0, kLargestCodeNum, 1, -1},
    };
    for (const Case& c : cases) {
        const BitWriter syntax = avcSps([&](AvcSpsSyntax& s) {
            s.gaps_in_frame_num_value_allowed_flag = 1;
            s.pic_width_in_mbs_minus1 = c.widthMinus1;
            s.pic_height_in_map_units_minus1 = c.heightMinus1;
        });
        SCOPED_TRACE(syntax.map());
        EXPECT_FALSE(parse(syntax));
        QVAvcSps record = avcSpsAfter(Step::RefFrames);
        record.gaps_in_frame_num_allowed_flag = 1;
        record.mb_width = c.width;
        record.mb_height = c.height;
        expectOutcome(record, {avcError("parseAvcSps", kMbOverflow)});
        EXPECT_EQ(cursor(), endOf(syntax, "pic_height_in_map_units_minus1"));
    }
}

// --- Frame and field coding ---

class QVAvcSpsFrameCoding : public AvcSpsTest {};

const char* const kMbaffLine =
    "parseAvcCDecoderSps, MBAFF support not included, enable it at compile-time.\n";

TEST_F(QVAvcSpsFrameCoding, everyCombination) {
    struct Case {
        uint32_t frameMbsOnly, mbaff, direct8x8;
        const char* words;
    };
    const Case cases[] = {
        {1, 0, 0, "FRM "},        {1, 0, 1, "FRM 8B8"}, {0, 0, 0, "PIC-AFF "},
        {0, 0, 1, "PIC-AFF 8B8"}, {0, 1, 0, "MB-AFF "}, {0, 1, 1, "MB-AFF 8B8"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.words);
        ASSERT_TRUE(parse(avcSps([&](AvcSpsSyntax& s) {
            s.frame_mbs_only_flag = c.frameMbsOnly;
            s.mb_adaptive_frame_field_flag = c.mbaff;
            s.direct_8x8_inference_flag = c.direct8x8;
        })));
        QVAvcSps record = avcSpsAfter(Step::Vui);
        record.frame_mbs_only_flag = static_cast<int32_t>(c.frameMbsOnly);
        record.mb_aff = static_cast<int32_t>(c.mbaff);
        record.direct_8x8_inference_flag = static_cast<int32_t>(c.direct8x8);
        record.height = c.frameMbsOnly == 1 ? 16 : 32;
        std::vector<ExpectedLine> lines;
        if (c.mbaff == 1) {
            lines.push_back(avcError("parseAvcSps", kMbaffLine));
        }
        lines.push_back(
            avcSummary(std::string("sps:0 profile:66/10 poc:0 ref:0 1x1 ") + c.words + " crop:0/0/0/0  420"));
        expectOutcome(record, lines);
    }
}

// --- Cropping ---

class QVAvcSpsCrop : public AvcSpsTest {};

TEST_F(QVAvcSpsCrop, fullHdCarriesACropOfEightLines) {
    ASSERT_TRUE(parse(avcSps([](AvcSpsSyntax& s) {
        s.pic_width_in_mbs_minus1 = 119;
        s.pic_height_in_map_units_minus1 = 67;
        s.frame_cropping_flag = 1;
        s.frame_crop_bottom_offset = 4;
    })));
    QVAvcSps record = avcSpsAfter(Step::Vui);
    record.mb_width = 120;
    record.mb_height = 68;
    record.crop = 1;
    record.crop_bottom = 4;
    record.width = 1920;
    record.height = 1080;
    expectOutcome(record, {avcCropNotice("l:0 r:0 t:0 b:4"),
                           avcSummary("sps:0 profile:66/10 poc:0 ref:0 120x68 FRM  crop:0/0/0/4  420")});
}

TEST_F(QVAvcSpsCrop, unitsOfEveryChromaFormatAndFrameCoding) {
    struct Case {
        uint32_t chromaFormat, frameMbsOnly;
        int32_t unitX, unitY;
        const char* words;
    };
    // CropUnitX and CropUnitY, H.264 equations 7-19 to 7-22.
    const Case cases[] = {
        {0, 1, 1, 1, "FRM"},     {1, 1, 2, 2, "FRM"},     {2, 1, 2, 1, "FRM"},     {3, 1, 1, 1, "FRM"},
        {0, 0, 1, 2, "PIC-AFF"}, {1, 0, 2, 4, "PIC-AFF"}, {2, 0, 2, 2, "PIC-AFF"}, {3, 0, 1, 2, "PIC-AFF"},
    };
    const char* const names[] = {"Gray", "420", "422", "444"};
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(names[c.chromaFormat]) + " " + c.words);
        ASSERT_TRUE(parse(highAvcSps([&](AvcSpsSyntax& s) {
            s.chroma_format_idc = c.chromaFormat;
            s.pic_width_in_mbs_minus1 = 9;
            s.pic_height_in_map_units_minus1 = 9;
            s.frame_mbs_only_flag = c.frameMbsOnly;
            s.frame_cropping_flag = 1;
            s.frame_crop_left_offset = 1;
            s.frame_crop_right_offset = 2;
            s.frame_crop_top_offset = 3;
            s.frame_crop_bottom_offset = 4;
        })));
        QVAvcSps record = highAvcSpsAfter(Step::Vui);
        record.chroma_format_idc = static_cast<int32_t>(c.chromaFormat);
        if (c.chromaFormat == 3) {
            record.residual_color_transform_flag = 0;
        }
        record.mb_width = record.mb_height = 10;
        record.frame_mbs_only_flag = static_cast<int32_t>(c.frameMbsOnly);
        record.crop = 1;
        record.crop_left = 1;
        record.crop_right = 2;
        record.crop_top = 3;
        record.crop_bottom = 4;
        record.width = 160 - 3 * c.unitX;
        record.height = (c.frameMbsOnly == 1 ? 160 : 320) - 7 * c.unitY;
        expectOutcome(record, {avcCropNotice("l:1 r:2 t:3 b:4"),
                               avcSummary(std::string("sps:0 profile:100/10 poc:0 ref:0 10x10 ") + c.words +
                                          "  crop:1/2/3/4  " + names[c.chromaFormat])});
    }
}

TEST_F(QVAvcSpsCrop, aCropOfNothingIsStillNoticed) {
    ASSERT_TRUE(parse(avcSps([](AvcSpsSyntax& s) { s.frame_cropping_flag = 1; })));
    QVAvcSps record = avcSpsAfter(Step::Vui);
    record.crop = 1;
    expectOutcome(record, {avcCropNotice("l:0 r:0 t:0 b:0"), avcSummary(kMinimalSummary)});
}

TEST_F(QVAvcSpsCrop, D10_anOversizeCropIsNotCheckedAndWraps) {
    struct Case {
        uint32_t left, right, top, bottom;
        int32_t width, height;
        const char* notice;
        const char* offsets;
    };
    // A 16x16 frame in 4:2:0, whose crop units are 2.
    const Case cases[] = {
        {7, 0, 0, 7, 2, 2, "l:7 r:0 t:0 b:7", "7/0/0/7"},
        {8, 0, 4, 4, 0, 0, "l:8 r:0 t:4 b:4", "8/0/4/4"},
        {4, 5, 9, 0, -2, -2, "l:4 r:5 t:9 b:0", "4/5/9/0"},
        {0x7FFFFFFF, 0, 0, 0x80000000, 18, 16, "l:2147483647 r:0 t:0 b:-2147483648",
         "2147483647/0/0/2147483648"},
        {0xFFFFFFFE, 0xFFFFFFFE, 0xFFFFFFFE, 1, 24, 18, "l:-2 r:-2 t:-2 b:1",
         "4294967294/4294967294/4294967294/1"},
        {0x40000000, 0, 0, 0x3FFFFFFF, INT32_MIN + 16, INT32_MIN + 18, "l:1073741824 r:0 t:0 b:1073741823",
         "1073741824/0/0/1073741823"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.notice);
        ASSERT_TRUE(parse(avcSps([&](AvcSpsSyntax& s) {
            s.frame_cropping_flag = 1;
            s.frame_crop_left_offset = c.left;
            s.frame_crop_right_offset = c.right;
            s.frame_crop_top_offset = c.top;
            s.frame_crop_bottom_offset = c.bottom;
        })));
        QVAvcSps record = avcSpsAfter(Step::Vui);
        record.crop = 1;
        record.crop_left = static_cast<int32_t>(c.left);
        record.crop_right = static_cast<int32_t>(c.right);
        record.crop_top = static_cast<int32_t>(c.top);
        record.crop_bottom = static_cast<int32_t>(c.bottom);
        record.width = c.width;
        record.height = c.height;
        expectOutcome(record, {avcCropNotice(c.notice),
                               avcSummary(std::string("sps:0 profile:66/10 poc:0 ref:0 1x1 FRM  crop:") +
                                          c.offsets + "  420")});
    }
}

}  // namespace
}  // namespace qv_test
