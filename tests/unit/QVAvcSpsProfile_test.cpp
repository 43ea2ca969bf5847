// The part of the H.264 sequence parameter set that only some profiles have: chroma format, bit depths,
// transform bypass. QVAvcSpsScaling_test.cpp tests its scaling lists.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

#include "AvcSpsRecord.h"
#include "AvcSpsSyntax.h"
#include "QVAvcSps.h"
#include "SyntaxElements.h"

namespace qv_test {
namespace {

using Step = AvcSpsStep;

const char* const kStep = "parseAvcSpsForProfile";

ExpectedLine summaryOf(const std::string& profile, const std::string& chroma) {
    return avcSummary("sps:0 profile:" + profile + "/10 poc:0 ref:0 1x1 FRM  crop:0/0/0/0  " + chroma);
}

// --- Which profiles carry it ---

class QVAvcSpsProfileList : public AvcSpsTest {};

const uint32_t kProfilesWithChromaSyntax[] = {100, 110, 122, 244, 44, 83, 86, 118, 128, 138, 144};

TEST_F(QVAvcSpsProfileList, all256Profiles) {
    for (uint32_t profile = 0; profile < 256; ++profile) {
        SCOPED_TRACE(profile);
        const bool isListed = std::count(std::begin(kProfilesWithChromaSyntax),
                                         std::end(kProfilesWithChromaSyntax), profile) > 0;
        ASSERT_TRUE(parse(avcSps([&](AvcSpsSyntax& s) {
            s.profile_idc = profile;
            s.writesChromaSyntax = isListed;
            s.chroma_format_idc = 2;
            s.bit_depth_luma_minus8 = s.bit_depth_chroma_minus8 = 2;
            s.qpprime_y_zero_transform_bypass_flag = 1;
        })));
        QVAvcSps record = avcSpsAfter(Step::Vui);
        record.profile_idc = static_cast<int32_t>(profile);
        if (isListed) {
            record.chroma_format_idc = 2;
            record.bit_depth_luma = record.bit_depth_chroma = 10;
            record.transform_bypass = 1;
        }
        expectOutcome(record, {summaryOf(std::to_string(profile), isListed ? "422" : "420")});
    }
}

// H.264 7.3.2.1.1 lists 134, 135 and 139 among the profiles with chroma syntax. The parser reads their
// parameter sets as if they had none, so "010 1 1 0 0 1 1 1 1 0 1 1 1 0 0 0 1" starts with
// log2_max_frame_num_minus4.
TEST_F(QVAvcSpsProfileList, D07_profiles134And135And139AreReadWithoutChromaSyntax) {
    for (const uint32_t profile : {134U, 135U, 139U}) {
        SCOPED_TRACE(profile);
        ASSERT_TRUE(parse(highAvcSps([&](AvcSpsSyntax& s) { s.profile_idc = profile; })));
        QVAvcSps record = avcSpsAfter(Step::Vui);
        record.profile_idc = static_cast<int32_t>(profile);
        record.log2_max_frame_num = 5;  // 010
        record.poc_type = 0;            // 1
        record.log2_max_poc_lsb = 4;    // 1
        record.ref_frame_count = 6;     // 00111
        record.gaps_in_frame_num_allowed_flag = 1;
        record.mb_width = 3;   // 011
        record.mb_height = 1;  // 1
        record.frame_mbs_only_flag = 0;
        record.crop = 1;  // rbsp_stop_one_bit
        record.width = 48;
        record.height = 32;
        expectOutcome(record, {avcCropNotice("l:0 r:0 t:0 b:0"),
                               avcSummary("sps:0 profile:" + std::to_string(profile) +
                                          "/10 poc:0 ref:6 3x1 PIC-AFF  crop:0/0/0/0  420")});
    }
}

// --- chroma_format_idc ---

class QVAvcSpsChroma : public AvcSpsTest {};

TEST_F(QVAvcSpsChroma, formats0To3) {
    const char* const names[] = {"Gray", "420", "422", "444"};
    for (uint32_t format = 0; format < 4; ++format) {
        SCOPED_TRACE(names[format]);
        ASSERT_TRUE(parse(highAvcSps([&](AvcSpsSyntax& s) { s.chroma_format_idc = format; })));
        QVAvcSps record = highAvcSpsAfter(Step::Vui);
        record.chroma_format_idc = static_cast<int32_t>(format);
        if (format == 3) {
            record.residual_color_transform_flag = 0;
        }
        expectOutcome(record, {summaryOf("100", names[format])});
    }
}

TEST_F(QVAvcSpsChroma, format4AndBeyondIsStoredAndFails) {
    const std::pair<uint32_t, int32_t> cases[] = {
        {4, 4}, {5, 5}, {0x7FFFFFFF, 0x7FFFFFFF}, {0x80000000, INT32_MIN}, {0xFFFFFFFE, -2}};
    for (const auto& [format, stored] : cases) {
        SCOPED_TRACE(format);
        const BitWriter syntax = highAvcSps([v = format](AvcSpsSyntax& s) { s.chroma_format_idc = v; });
        EXPECT_FALSE(parse(syntax));
        QVAvcSps record = highAvcSpsAfter(Step::Head);
        record.chroma_format_idc = stored;
        expectOutcome(
            record, {avcError(kStep, "parseAvcCDecoderSps, chroma_format_idc : " + std::to_string(format))});
        EXPECT_EQ(cursor(), endOf(syntax, "chroma_format_idc"));
    }
}

TEST_F(QVAvcSpsChroma, D11_separateColourPlanesAreRefused) {
    const BitWriter syntax = highAvcSps([](AvcSpsSyntax& s) {
        s.profile_idc = 244;
        s.chroma_format_idc = 3;
        s.separate_colour_plane_flag = 1;
    });
    EXPECT_FALSE(parse(syntax));
    QVAvcSps record = avcSpsAfter(Step::Head);
    record.profile_idc = 244;
    record.chroma_format_idc = 3;
    record.residual_color_transform_flag = 1;
    expectOutcome(record,
                  {avcError(kStep, "parseAvcCDecoderSps, separate color planes are not supported\n")});
    EXPECT_EQ(cursor(), endOf(syntax, "separate_colour_plane_flag"));
}

TEST_F(QVAvcSpsChroma, aPlaneFlagPastTheEndIs0) {
    // With an identifier of three bits, chroma_format_idc ends at a byte boundary.
    const BitWriter syntax = highAvcSps([](AvcSpsSyntax& s) {
        s.seq_parameter_set_id = 1;
        s.chroma_format_idc = 3;
    });
    ASSERT_EQ(startOf(syntax, "separate_colour_plane_flag"), 40U);
    ASSERT_TRUE(parse(syntax.bytesCutAt(40)));
    QVAvcSps record = highAvcSpsAfter(Step::Vui);
    record.sps_id = 1;
    record.chroma_format_idc = 3;
    record.residual_color_transform_flag = 0;
    record.frame_mbs_only_flag = 0;
    record.height = 32;
    expectOutcome(record, {avcSummary("sps:1 profile:100/10 poc:0 ref:0 1x1 PIC-AFF  crop:0/0/0/0  444")});
}

// --- Bit depths ---

class QVAvcSpsBitDepth : public AvcSpsTest {
protected:
    bool parseDepths(uint32_t luma, uint32_t chroma) {
        return parse(highAvcSps([&](AvcSpsSyntax& s) {
            s.bit_depth_luma_minus8 = luma;
            s.bit_depth_chroma_minus8 = chroma;
        }));
    }

    static QVAvcSps refused(int32_t luma, int32_t chroma) {
        QVAvcSps record = highAvcSpsAfter(Step::Head);
        record.chroma_format_idc = 1;
        record.bit_depth_luma = luma;
        record.bit_depth_chroma = chroma;
        return record;
    }
};

TEST_F(QVAvcSpsBitDepth, from8To14) {
    for (uint32_t minus8 = 0; minus8 <= 6; ++minus8) {
        SCOPED_TRACE(minus8);
        ASSERT_TRUE(parseDepths(minus8, minus8));
        QVAvcSps record = highAvcSpsAfter(Step::Vui);
        record.bit_depth_luma = record.bit_depth_chroma = static_cast<int32_t>(minus8) + 8;
        expectOutcome(record, {summaryOf("100", "420")});
    }
}

TEST_F(QVAvcSpsBitDepth, from15OnIsStoredAndFails) {
    const std::pair<uint32_t, int32_t> cases[] = {
        {7, 15}, {8, 16}, {0x7FFFFFF7, 0x7FFFFFFF}, {0x7FFFFFF8, INT32_MIN}, {0xFFFFFFF7, -1}};
    for (const auto& [minus8, stored] : cases) {
        SCOPED_TRACE(minus8);
        EXPECT_FALSE(parseDepths(minus8, minus8));
        const std::string depth = std::to_string(stored);
        expectOutcome(refused(stored, stored),
                      {avcError(kStep, "parseAvcCDecoderSps, illegal bit depth value : (" + depth + ", " +
                                           depth + ")\n")});
    }
}

TEST_F(QVAvcSpsBitDepth, aSumThatWrapsBelow15IsAccepted) {
    const std::pair<uint32_t, int32_t> cases[] = {{0xFFFFFFF8, 0}, {0xFFFFFFF9, 1}, {0xFFFFFFFE, 6}};
    for (const auto& [minus8, stored] : cases) {
        SCOPED_TRACE(minus8);
        ASSERT_TRUE(parseDepths(minus8, minus8));
        QVAvcSps record = highAvcSpsAfter(Step::Vui);
        record.bit_depth_luma = record.bit_depth_chroma = stored;
        expectOutcome(record, {summaryOf("100", "420")});
    }
}

TEST_F(QVAvcSpsBitDepth, D31_differentDepthsAreStoredAndFail) {
    struct Case {
        uint32_t lumaMinus8, chromaMinus8;
        int32_t luma, chroma;
    };
    const Case cases[] = {{0, 1, 8, 9}, {1, 0, 9, 8}, {6, 5, 14, 13}, {7, 8, 15, 16}, {0xFFFFFFFE, 0, 6, 8}};
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.luma) + " and " + std::to_string(c.chroma));
        EXPECT_FALSE(parseDepths(c.lumaMinus8, c.chromaMinus8));
        expectOutcome(refused(c.luma, c.chroma),
                      {avcError(kStep, "parseAvcCDecoderSps, Different chroma and luma bit depth")});
    }
}

// --- qpprime_y_zero_transform_bypass_flag ---

class QVAvcSpsBypass : public AvcSpsTest {};

TEST_F(QVAvcSpsBypass, flag) {
    for (const uint32_t flag : {0U, 1U}) {
        SCOPED_TRACE(flag);
        ASSERT_TRUE(
            parse(highAvcSps([&](AvcSpsSyntax& s) { s.qpprime_y_zero_transform_bypass_flag = flag; })));
        QVAvcSps record = highAvcSpsAfter(Step::Vui);
        record.transform_bypass = static_cast<int32_t>(flag);
        expectOutcome(record, {summaryOf("100", "420")});
    }
}

}  // namespace
}  // namespace qv_test
