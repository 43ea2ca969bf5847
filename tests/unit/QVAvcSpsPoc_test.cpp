// Frame numbers, picture order count, and reference frames in the H.264 sequence parameter set.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "AvcSpsRecord.h"
#include "AvcSpsSyntax.h"
#include "QVAvcSps.h"
#include "SyntaxElements.h"

namespace qv_test {
namespace {

using Step = AvcSpsStep;

constexpr uint32_t kLargestCodeNum = 0xFFFFFFFE;

const char* const kMinimalSummary = "sps:0 profile:66/10 poc:0 ref:0 1x1 FRM  crop:0/0/0/0  420";

// --- log2_max_frame_num ---

class QVAvcSpsFrameNum : public AvcSpsTest {};

TEST_F(QVAvcSpsFrameNum, upTo12) {
    for (uint32_t minus4 = 0; minus4 <= 12; ++minus4) {
        SCOPED_TRACE(minus4);
        ASSERT_TRUE(parse(avcSps([&](AvcSpsSyntax& s) { s.log2_max_frame_num_minus4 = minus4; })));
        QVAvcSps record = avcSpsAfter(Step::Vui);
        record.log2_max_frame_num = static_cast<int32_t>(minus4) + 4;
        expectOutcome(record, {avcSummary(kMinimalSummary)});
    }
}

TEST_F(QVAvcSpsFrameNum, beyond12IsNotStored) {
    const std::pair<uint32_t, const char*> cases[] = {
        {13, "13"}, {0x7FFFFFFF, "2147483647"}, {0x80000000, "-2147483648"}, {kLargestCodeNum, "-2"}};
    for (const auto& [minus4, printed] : cases) {
        SCOPED_TRACE(minus4);
        const BitWriter syntax =
            avcSps([&, v = minus4](AvcSpsSyntax& s) { s.log2_max_frame_num_minus4 = v; });
        EXPECT_FALSE(parse(syntax));
        expectOutcome(
            avcSpsAfter(Step::Profile),
            {avcError("parseAvcSps",
                      std::string("parseAvcCDecoderSps, log2MaxFrameNumMinus4 out of range (0-12): ") +
                          printed + "\n")});
        EXPECT_EQ(cursor(), endOf(syntax, "log2_max_frame_num_minus4"));
    }
}

// --- Picture order count ---

class QVAvcSpsPoc : public AvcSpsTest {};

TEST_F(QVAvcSpsPoc, type0LsbUpTo12) {
    for (uint32_t minus4 = 0; minus4 <= 12; ++minus4) {
        SCOPED_TRACE(minus4);
        ASSERT_TRUE(parse(avcSps([&](AvcSpsSyntax& s) { s.log2_max_pic_order_cnt_lsb_minus4 = minus4; })));
        QVAvcSps record = avcSpsAfter(Step::Vui);
        record.log2_max_poc_lsb = static_cast<int32_t>(minus4) + 4;
        expectOutcome(record, {avcSummary(kMinimalSummary)});
    }
}

TEST_F(QVAvcSpsPoc, type0LsbBeyond12IsNotStored) {
    const std::pair<uint32_t, const char*> cases[] = {
        {13, "13"}, {0x7FFFFFFF, "2147483647"}, {0x80000000, "-2147483648"}, {kLargestCodeNum, "-2"}};
    for (const auto& [minus4, printed] : cases) {
        SCOPED_TRACE(minus4);
        EXPECT_FALSE(
            parse(avcSps([v = minus4](AvcSpsSyntax& s) { s.log2_max_pic_order_cnt_lsb_minus4 = v; })));
        QVAvcSps record = avcSpsAfter(Step::FrameNum);
        record.poc_type = 0;
        expectOutcome(record, {avcError("parseAvcSpsForPoc",
                                        std::string("parseAvcCDecoderSps, logMmaxPocLsb is out of range : ") +
                                            printed + " \n")});
    }
}

// Replaces the fields of POC type 0 in record with those of POC type 1.
QVAvcSps withPocType1(QVAvcSps record, int32_t cycleLength) {
    record.poc_type = 1;
    record.log2_max_poc_lsb = patternAvcSps().log2_max_poc_lsb;
    record.delta_pic_order_always_zero_flag = 0;
    record.offset_for_non_ref_pic = 0;
    record.offset_for_top_to_bottom_field = 0;
    record.poc_cycle_length = cycleLength;
    return record;
}

const char* const kPocType1Summary = "sps:0 profile:66/10 poc:1 ref:0 1x1 FRM  crop:0/0/0/0  420";

TEST_F(QVAvcSpsPoc, type1WithoutACycle) {
    ASSERT_TRUE(parse(avcSps([](AvcSpsSyntax& s) { s.pic_order_cnt_type = 1; })));
    expectOutcome(withPocType1(avcSpsAfter(Step::Vui), 0), {avcSummary(kPocType1Summary)});
}

TEST_F(QVAvcSpsPoc, type1OffsetsAreSigned32Bits) {
    for (const int32_t offset : {1, -1, 300, -300, 0x3FFFFFFF, 0x7FFFFFFF, -0x7FFFFFFF}) {
        SCOPED_TRACE(offset);
        ASSERT_TRUE(parse(avcSps([&](AvcSpsSyntax& s) {
            s.pic_order_cnt_type = 1;
            s.delta_pic_order_always_zero_flag = 1;
            s.offset_for_non_ref_pic = offset;
            s.offset_for_top_to_bottom_field = -offset;
        })));
        QVAvcSps record = withPocType1(avcSpsAfter(Step::Vui), 0);
        record.delta_pic_order_always_zero_flag = 1;
        record.offset_for_non_ref_pic = offset;
        record.offset_for_top_to_bottom_field = -offset;
        expectOutcome(record, {avcSummary(kPocType1Summary)});
    }
}

TEST_F(QVAvcSpsPoc, type1CycleOf255) {
    ASSERT_TRUE(parse(avcSps([](AvcSpsSyntax& s) {
        s.pic_order_cnt_type = 1;
        s.num_ref_frames_in_pic_order_cnt_cycle = 255;
        for (int32_t i = 0; i < 255; ++i) {
            s.offset_for_ref_frame.push_back(i - 127);
        }
    })));
    QVAvcSps record = withPocType1(avcSpsAfter(Step::Vui), 255);
    for (int i = 0; i < 255; ++i) {
        record.offset_for_ref_frame[i] = static_cast<int8_t>(i - 127);
    }
    expectOutcome(record, {avcSummary(kPocType1Summary)});
}

TEST_F(QVAvcSpsPoc, type1CycleBeyond255IsStoredAndFails) {
    const std::pair<uint32_t, int32_t> cases[] = {
        {256, 256}, {0x7FFFFFFF, 0x7FFFFFFF}, {0x80000000, INT32_MIN}, {kLargestCodeNum, -2}};
    for (const auto& [length, stored] : cases) {
        SCOPED_TRACE(length);
        const BitWriter syntax = avcSps([v = length](AvcSpsSyntax& s) {
            s.pic_order_cnt_type = 1;
            s.num_ref_frames_in_pic_order_cnt_cycle = v;
        });
        EXPECT_FALSE(parse(syntax));
        expectOutcome(withPocType1(avcSpsAfter(Step::FrameNum), stored),
                      {avcError("parseAvcSpsForPoc", "parseAvcCDecoderSps, pocCycleLength overflow : " +
                                                         std::to_string(stored) + "\n")});
        EXPECT_EQ(cursor(), endOf(syntax, "num_ref_frames_in_pic_order_cnt_cycle"));
    }
}

TEST_F(QVAvcSpsPoc, D08_offsetForRefFrameKeepsEightBits) {
    const std::pair<int32_t, int8_t> cases[] = {{300, 44},        {-300, -44},     {127, 127}, {128, -128},
                                                {-128, -128},     {-129, 127},     {255, -1},  {256, 0},
                                                {0x7FFFFFFF, -1}, {-0x7FFFFFFF, 1}};
    ASSERT_TRUE(parse(avcSps([&](AvcSpsSyntax& s) {
        s.pic_order_cnt_type = 1;
        s.num_ref_frames_in_pic_order_cnt_cycle = std::size(cases);
        for (const auto& offset : cases) {
            s.offset_for_ref_frame.push_back(offset.first);
        }
    })));
    QVAvcSps record = withPocType1(avcSpsAfter(Step::Vui), std::size(cases));
    for (size_t i = 0; i < std::size(cases); ++i) {
        record.offset_for_ref_frame[i] = cases[i].second;
    }
    expectOutcome(record, {avcSummary(kPocType1Summary)});
}

TEST_F(QVAvcSpsPoc, type2HasNothingMore) {
    ASSERT_TRUE(parse(avcSps([](AvcSpsSyntax& s) { s.pic_order_cnt_type = 2; })));
    QVAvcSps record = avcSpsAfter(Step::Vui);
    record.poc_type = 2;
    record.log2_max_poc_lsb = patternAvcSps().log2_max_poc_lsb;
    expectOutcome(record, {avcSummary("sps:0 profile:66/10 poc:2 ref:0 1x1 FRM  crop:0/0/0/0  420")});
}

TEST_F(QVAvcSpsPoc, otherTypesAreStoredAndFail) {
    const std::pair<uint32_t, int32_t> cases[] = {
        {3, 3}, {4, 4}, {0x7FFFFFFF, 0x7FFFFFFF}, {0x80000000, INT32_MIN}, {kLargestCodeNum, -2}};
    for (const auto& [type, stored] : cases) {
        SCOPED_TRACE(type);
        EXPECT_FALSE(parse(avcSps([v = type](AvcSpsSyntax& s) { s.pic_order_cnt_type = v; })));
        QVAvcSps record = avcSpsAfter(Step::FrameNum);
        record.poc_type = stored;
        expectOutcome(record, {avcError("parseAvcSpsForPoc", "parseAvcCDecoderSps, illegal POC type : " +
                                                                 std::to_string(stored) + "\n")});
    }
}

// --- Reference frames ---

class QVAvcSpsRefFrames : public AvcSpsTest {};

TEST_F(QVAvcSpsRefFrames, upTo16) {
    for (uint32_t count = 0; count <= 16; ++count) {
        SCOPED_TRACE(count);
        ASSERT_TRUE(parse(avcSps([&](AvcSpsSyntax& s) { s.max_num_ref_frames = count; })));
        QVAvcSps record = avcSpsAfter(Step::Vui);
        record.ref_frame_count = static_cast<int32_t>(count);
        expectOutcome(record, {avcSummary("sps:0 profile:66/10 poc:0 ref:" + std::to_string(count) +
                                          " 1x1 FRM  crop:0/0/0/0  420")});
    }
}

TEST_F(QVAvcSpsRefFrames, beyond16IsStoredAndFails) {
    const std::pair<uint32_t, int32_t> cases[] = {
        {17, 17}, {0x7FFFFFFF, 0x7FFFFFFF}, {0x80000000, INT32_MIN}, {kLargestCodeNum, -2}};
    for (const auto& [count, stored] : cases) {
        SCOPED_TRACE(count);
        const BitWriter syntax = avcSps([v = count](AvcSpsSyntax& s) { s.max_num_ref_frames = v; });
        EXPECT_FALSE(parse(syntax));
        QVAvcSps record = avcSpsAfter(Step::Poc);
        record.ref_frame_count = stored;
        expectOutcome(record, {avcError("parseAvcSps", "parseAvcCDecoderSps, too many reference frames : " +
                                                           std::to_string(stored) + "\n")});
        EXPECT_EQ(cursor(), endOf(syntax, "max_num_ref_frames"));
    }
}

TEST_F(QVAvcSpsRefFrames, gapsFlag) {
    ASSERT_TRUE(parse(avcSps([](AvcSpsSyntax& s) { s.gaps_in_frame_num_value_allowed_flag = 1; })));
    QVAvcSps record = avcSpsAfter(Step::Vui);
    record.gaps_in_frame_num_allowed_flag = 1;
    expectOutcome(record, {avcSummary(kMinimalSummary)});
}

}  // namespace
}  // namespace qv_test
