// The whole H.264 sequence parameter set: the record, the elements before the profile-dependent part, and
// records that are reused. The other QVAvcSps tests cover the other parts.
#include "QVAvcSps.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>

#include "AvcSpsRecord.h"
#include "AvcSpsSyntax.h"
#include "SyntaxElements.h"

namespace qv_test {
namespace {

using Step = AvcSpsStep;

constexpr uint32_t kLargestCodeNum = 0xFFFFFFFE;

const char* const kMinimalSummary = "sps:0 profile:66/10 poc:0 ref:0 1x1 FRM  crop:0/0/0/0  420";

// --- The record ---

static_assert(std::is_trivially_copyable<QVAvcSps>::value);
static_assert(std::is_trivially_default_constructible<QVAvcSps>::value);

static_assert(std::is_same<decltype(QVAvcSps::offset_for_ref_frame), int8_t[256]>::value);
static_assert(std::is_same<decltype(QVAvcSps::scaling_matrix4), uint8_t[6][16]>::value);
static_assert(std::is_same<decltype(QVAvcSps::scaling_matrix8), uint8_t[6][64]>::value);

// Sets every value so that it differs from its neighbours and, if possible, from all others.
void everythingDifferent(AvcSpsSyntax& s) {
    s.constraint_set0_flag = 1;
    s.constraint_set4_flag = 1;
    s.level_idc = 41;
    s.seq_parameter_set_id = 7;
    s.chroma_format_idc = 2;
    s.bit_depth_luma_minus8 = 2;
    s.bit_depth_chroma_minus8 = 2;
    s.qpprime_y_zero_transform_bypass_flag = 1;
    s.log2_max_frame_num_minus4 = 5;
    s.pic_order_cnt_type = 1;
    s.delta_pic_order_always_zero_flag = 1;
    s.offset_for_non_ref_pic = -3;
    s.offset_for_top_to_bottom_field = 5;
    s.num_ref_frames_in_pic_order_cnt_cycle = 2;
    s.offset_for_ref_frame = {-11, 13};
    s.max_num_ref_frames = 4;
    s.gaps_in_frame_num_value_allowed_flag = 1;
    s.pic_width_in_mbs_minus1 = 19;
    s.pic_height_in_map_units_minus1 = 14;
    s.frame_mbs_only_flag = 0;
    s.mb_adaptive_frame_field_flag = 1;
    s.direct_8x8_inference_flag = 1;
    s.frame_cropping_flag = 1;
    s.frame_crop_left_offset = 1;
    s.frame_crop_right_offset = 2;
    s.frame_crop_top_offset = 3;
    s.frame_crop_bottom_offset = 6;
    s.vui_parameters_present_flag = 1;
}

class QVAvcSpsWhole : public AvcSpsTest {};

TEST_F(QVAvcSpsWhole, everyElementLandsInItsField) {
    ASSERT_TRUE(parse(highAvcSps(everythingDifferent)));
    QVAvcSps record = highAvcSpsAfter(Step::Head);
    record.constraint_set_flags = 0b010001;
    record.level_idc = 41;
    record.sps_id = 7;
    record.chroma_format_idc = 2;
    record.bit_depth_luma = record.bit_depth_chroma = 10;
    record.transform_bypass = 1;
    record.log2_max_frame_num = 9;
    record.poc_type = 1;
    record.delta_pic_order_always_zero_flag = 1;
    record.offset_for_non_ref_pic = -3;
    record.offset_for_top_to_bottom_field = 5;
    record.poc_cycle_length = 2;
    record.offset_for_ref_frame[0] = -11;
    record.offset_for_ref_frame[1] = 13;
    record.ref_frame_count = 4;
    record.gaps_in_frame_num_allowed_flag = 1;
    record.mb_width = 20;
    record.mb_height = 15;
    record.frame_mbs_only_flag = 0;
    record.mb_aff = 1;
    record.direct_8x8_inference_flag = 1;
    record.crop = 1;
    record.crop_left = 1;
    record.crop_right = 2;
    record.crop_top = 3;
    record.crop_bottom = 6;
    record.width = 320 - 2 * 3;
    record.height = 480 - 2 * 9;
    record.vui_parameters_present_flag = 1;
    expectOutcome(record,
                  {avcError("parseAvcSps",
                            "parseAvcCDecoderSps, MBAFF support not included, enable it at compile-time.\n"),
                   avcCropNotice("l:1 r:2 t:3 b:6"),
                   avcSummary("sps:7 profile:100/41 poc:1 ref:4 20x15 MB-AFF 8B8 crop:1/2/3/6 VUI 422")});
}

TEST_F(QVAvcSpsWhole, theRecordAsWordsAndBytes) {
    ASSERT_TRUE(parse(highAvcSps(everythingDifferent)));
    std::array<int32_t, sizeof(QVAvcSps) / 4> words;
    std::memcpy(words.data(), &sps, sizeof sps);
    const int32_t untouched = static_cast<int32_t>(0xA5A5A5A5);
    const int32_t upToVui[] = {7,   100, 41, 2,  1, 9, 1, untouched, 1, -3, 5, 2, 4, 1,
                               314, 462, 20, 15, 0, 1, 1, 1,         1, 2,  3, 6, 1};
    for (size_t i = 0; i < std::size(upToVui); ++i) {
        EXPECT_EQ(words[i], upToVui[i]) << "word " << i;
    }
    const int32_t vui[] = {untouched, -1,        untouched, untouched, untouched,
                           2,         untouched, untouched, untouched, untouched};
    for (size_t i = 0; i < std::size(vui); ++i) {
        EXPECT_EQ(words[27 + i], vui[i]) << "word " << 27 + i;
    }
    const auto* const bytes = static_cast<const unsigned char*>(static_cast<const void*>(&sps));
    EXPECT_EQ(bytes[148], 0x100 - 11);
    EXPECT_EQ(bytes[149], 13);
    EXPECT_EQ(bytes[150], 0xA5);
    EXPECT_EQ(bytes[403], 0xA5);
    EXPECT_EQ(words[101], 0) << "scaling_matrix_present";
    EXPECT_EQ(bytes[408], 16);
    EXPECT_EQ(bytes[887], 16);
    const int32_t tail[] = {untouched, untouched, untouched, 24, untouched, untouched,
                            untouched, untouched, 10,        10, untouched, 0b010001};
    for (size_t i = 0; i < std::size(tail); ++i) {
        EXPECT_EQ(words[222 + i], tail[i]) << "word " << 222 + i;
    }
}

TEST_F(QVAvcSpsWhole, minimalParameterSet) {
    ASSERT_TRUE(parse(avcSps()));
    expectOutcome(avcSpsAfter(Step::Vui), {avcSummary(kMinimalSummary)});
}

TEST_F(QVAvcSpsWhole, goldenBytes) {
    // The codes after level_idc: identifier 1, log2_max_frame_num 1, type 1, lsb 1, reference frames 1, gaps
    // 0, width 1, height 1; frame_mbs_only 1, direct_8x8 0, cropping 0, VUI 0, stop bit 1.
    ASSERT_TRUE(parse(Bytes{0x67, 0x42, 0x00, 0x0A, 0b11111011, 0b10001000}));
    expectOutcome(avcSpsAfter(Step::Vui), {avcSummary(kMinimalSummary)});
    EXPECT_EQ(cursor(), 44U);
}

TEST_F(QVAvcSpsWhole, stopsAfterTheVuiFlag) {
    for (const uint32_t flag : {0U, 1U}) {
        const BitWriter syntax = highAvcSps([&](AvcSpsSyntax& s) {
            s.pic_width_in_mbs_minus1 = 119;
            s.vui_parameters_present_flag = flag;
        });
        SCOPED_TRACE(syntax.map());
        ASSERT_TRUE(parse(syntax));
        QVAvcSps record = highAvcSpsAfter(Step::Vui);
        record.mb_width = 120;
        record.width = 1920;
        record.vui_parameters_present_flag = static_cast<int32_t>(flag);
        expectOutcome(record,
                      {avcSummary(std::string("sps:0 profile:100/10 poc:0 ref:0 120x1 FRM  crop:0/0/0/0 ") +
                                  (flag != 0 ? "VUI" : "") + " 420")});
        EXPECT_EQ(cursor(), endOf(syntax, "vui_parameters_present_flag"));
        EXPECT_EQ(stream->rbspBitIndex, 7U) << "the RBSP cursor must not be used";
    }
}

TEST_F(QVAvcSpsWhole, startsAtThePositionOfTheStream) {
    Bytes bytes = avcSps().bytes();
    bytes.insert(bytes.begin(), {0xFF, 0xFF});
    stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
    stream->skipBytes(2);
    ASSERT_TRUE(parseAvcSps(&sps, stream));
    expectOutcome(avcSpsAfter(Step::Vui), {avcSummary(kMinimalSummary)});
}

// --- Nothing to parse ---

class QVAvcSpsNothing : public AvcSpsTest {};

TEST_F(QVAvcSpsNothing, emptyStream) {
    EXPECT_FALSE(parse(Bytes()));
    expectOutcome(patternAvcSps(), {});
    EXPECT_EQ(cursor(), 0U);
}

TEST_F(QVAvcSpsNothing, sizeIsWhatCounts) {
    stream = std::make_shared<QVByteStream>();
    uint8_t byte = 0x67;
    stream->ownsData = false;
    stream->data = &byte;
    stream->capacity = 1;
    EXPECT_FALSE(parseAvcSps(&sps, stream));
    expectOutcome(patternAvcSps(), {});
    EXPECT_EQ(cursor(), 0U);
}

TEST_F(QVAvcSpsNothing, nullRecord) {
    const Bytes bytes = avcSps().bytes();
    stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
    EXPECT_FALSE(parseAvcSps(nullptr, stream));
    expectNoLines();
    EXPECT_EQ(cursor(), 0U);
    EXPECT_EQ(stream.use_count(), 1);
}

TEST_F(QVAvcSpsNothing, emptySharedPointer) {
    EXPECT_FALSE(parseAvcSps(&sps, nullptr));
    EXPECT_TRUE(sameAvcSps(sps, patternAvcSps()));
    EXPECT_FALSE(parseAvcSps(nullptr, nullptr));
    expectNoLines();
}

// --- NAL unit header, profile, constraint flags, level ---

class QVAvcSpsHead : public AvcSpsTest {};

TEST_F(QVAvcSpsHead, nalUnitHeaderIsNotExamined) {
    for (const uint32_t header : {0x00U, 0x07U, 0x27U, 0x67U, 0x6FU, 0xFFU}) {
        SCOPED_TRACE(header);
        ASSERT_TRUE(parse(avcSps([&](AvcSpsSyntax& s) {
            s.forbidden_zero_bit = header >> 7;
            s.nal_ref_idc = header >> 5 & 3;
            s.nal_unit_type = header & 0x1F;
        })));
        expectOutcome(avcSpsAfter(Step::Vui), {avcSummary(kMinimalSummary)});
    }
}

TEST_F(QVAvcSpsHead, eachConstraintFlagHasItsBit) {
    uint32_t AvcSpsSyntax::*const flags[] = {
        &AvcSpsSyntax::constraint_set0_flag, &AvcSpsSyntax::constraint_set1_flag,
        &AvcSpsSyntax::constraint_set2_flag, &AvcSpsSyntax::constraint_set3_flag,
        &AvcSpsSyntax::constraint_set4_flag, &AvcSpsSyntax::constraint_set5_flag};
    for (unsigned pattern = 0; pattern < 64; ++pattern) {
        SCOPED_TRACE(pattern);
        ASSERT_TRUE(parse(avcSps([&](AvcSpsSyntax& s) {
            for (unsigned i = 0; i < 6; ++i) {
                s.*flags[i] = pattern >> i & 1;
            }
        })));
        QVAvcSps record = avcSpsAfter(Step::Vui);
        record.constraint_set_flags = static_cast<int32_t>(pattern);
        expectOutcome(record, {avcSummary(kMinimalSummary)});
    }
}

TEST_F(QVAvcSpsHead, reservedBitsArePassedOver) {
    for (uint32_t bits = 0; bits < 4; ++bits) {
        SCOPED_TRACE(bits);
        ASSERT_TRUE(parse(avcSps([&](AvcSpsSyntax& s) { s.reserved_zero_2bits = bits; })));
        expectOutcome(avcSpsAfter(Step::Vui), {avcSummary(kMinimalSummary)});
    }
}

TEST_F(QVAvcSpsHead, everyLevelIsTaken) {
    for (uint32_t level = 0; level < 256; ++level) {
        SCOPED_TRACE(level);
        ASSERT_TRUE(parse(avcSps([&](AvcSpsSyntax& s) { s.level_idc = level; })));
        QVAvcSps record = avcSpsAfter(Step::Vui);
        record.level_idc = static_cast<int32_t>(level);
        expectOutcome(record, {avcSummary("sps:0 profile:66/" + std::to_string(level) +
                                          " poc:0 ref:0 1x1 FRM  crop:0/0/0/0  420")});
    }
}

TEST_F(QVAvcSpsHead, identifiersUpTo31) {
    for (uint32_t id = 0; id < 32; ++id) {
        SCOPED_TRACE(id);
        ASSERT_TRUE(parse(avcSps([&](AvcSpsSyntax& s) { s.seq_parameter_set_id = id; })));
        QVAvcSps record = avcSpsAfter(Step::Vui);
        record.sps_id = static_cast<int32_t>(id);
        expectOutcome(record, {avcSummary("sps:" + std::to_string(id) +
                                          " profile:66/10 poc:0 ref:0 1x1 FRM  crop:0/0/0/0  420")});
    }
}

TEST_F(QVAvcSpsHead, identifierBeyond31StoresNothing) {
    for (const uint32_t id : {32U, 33U, 0x7FFFFFFFU, 0x80000000U, kLargestCodeNum}) {
        SCOPED_TRACE(id);
        const BitWriter syntax = avcSps([&](AvcSpsSyntax& s) { s.seq_parameter_set_id = id; });
        EXPECT_FALSE(parse(syntax));
        expectOutcome(patternAvcSps(), {avcError("parseAvcSps", "parseAvcCDecoderSps, sps_id " +
                                                                    std::to_string(id) + " out of range\n")});
        EXPECT_EQ(cursor(), endOf(syntax, "seq_parameter_set_id"));
    }
}

// --- A record that was used before ---

class QVAvcSpsAgain : public AvcSpsTest {};

TEST_F(QVAvcSpsAgain, onlyWhatIsReadOrSetIsReplaced) {
    ASSERT_TRUE(parse(highAvcSps(everythingDifferent)));
    const QVAvcSps before = sps;
    ASSERT_TRUE(parseOver(avcSps()));
    QVAvcSps record = avcSpsAfter(Step::Vui);
    record.transform_bypass = before.transform_bypass;
    record.delta_pic_order_always_zero_flag = 1;
    record.offset_for_non_ref_pic = -3;
    record.offset_for_top_to_bottom_field = 5;
    record.poc_cycle_length = 2;
    record.offset_for_ref_frame[0] = -11;
    record.offset_for_ref_frame[1] = 13;
    expectOutcome(record, {avcSummary(kMinimalSummary)});
}

TEST_F(QVAvcSpsAgain, valuesOfTheCallerSurvive) {
    QVAvcSps kept = {};
    kept.nal_hrd_parameters_present_flag = 1;
    kept.vcl_hrd_parameters_present_flag = 1;
    kept.pic_struct_present_flag = 1;
    kept.cpb_cnt = 2;
    kept.initial_cpb_removal_delay_length = 20;
    kept.cpb_removal_delay_length = 21;
    kept.dpb_output_delay_length = 22;
    kept.time_offset_length = 5;
    kept.num_units_in_tick = 1001;
    kept.time_scale = 60000;
    kept.scaling_matrix_present = 1;
    sps = kept;
    ASSERT_TRUE(parseOver(avcSps([](AvcSpsSyntax& s) { s.vui_parameters_present_flag = 1; })));
    QVAvcSps record = kept;
    record.profile_idc = 66;
    record.level_idc = 10;
    record.chroma_format_idc = 1;
    record.log2_max_frame_num = record.log2_max_poc_lsb = 4;
    record.width = record.height = 16;
    record.mb_width = record.mb_height = 1;
    record.frame_mbs_only_flag = 1;
    record.vui_parameters_present_flag = 1;
    record.full_range = -1;
    record.colorspace = 2;
    record.bit_depth_luma = record.bit_depth_chroma = 8;
    std::memset(record.scaling_matrix4, 16, sizeof record.scaling_matrix4);
    std::memset(record.scaling_matrix8, 16, sizeof record.scaling_matrix8);
    record.scaling_matrix_present = 0;
    record.time_offset_length = 24;
    expectOutcome(record, {avcSummary("sps:0 profile:66/10 poc:0 ref:0 1x1 FRM  crop:0/0/0/0 VUI 420")});
}

}  // namespace
}  // namespace qv_test
