// Chroma format, conformance window and displayed size in the H.265 sequence parameter set.
#include <gtest/gtest.h>

#include "HevcSpsRecord.h"
#include "HevcSpsSyntax.h"
#include "QVHevcSps.h"

namespace qv_test {
namespace {

constexpr uint32_t kLargestCodeNum = 0xFFFFFFFE;

const ExpectedLine kDefaultLine = hevcProfileLine(0, 0, 1, 30);

class QVHevcSpsWindow : public HevcSpsTest {};

TEST_F(QVHevcSpsWindow, separateColourPlanes) {
    for (const uint32_t flag : {0U, 1U}) {
        SCOPED_TRACE(flag);
        ASSERT_TRUE(parse(hevcSps([&](HevcSpsSyntax& s) {
            s.chroma_format_idc = 3;
            s.separate_colour_plane_flag = flag;
            s.conformance_window_flag = 1;
            s.conf_win_right_offset = 1;
            s.conf_win_bottom_offset = 2;
        })));
        QVHevcSps record = defaultHevcSps();
        record.chroma_format_idc = 3;
        record.separate_colour_plane_flag = static_cast<int32_t>(flag);
        record.conformance_window_flag = 1;
        record.conf_win_left_offset = 0;
        record.conf_win_right_offset = 1;
        record.conf_win_top_offset = 0;
        record.conf_win_bottom_offset = 2;
        record.display_width = 7;
        record.display_height = 6;
        expectOutcome(record, {kDefaultLine});
    }
}

TEST_F(QVHevcSpsWindow, fullHd) {
    ASSERT_TRUE(parse(hevcSps([](HevcSpsSyntax& s) {
        s.pic_width_in_luma_samples = 1920;
        s.pic_height_in_luma_samples = 1088;
        s.conformance_window_flag = 1;
        s.conf_win_bottom_offset = 4;
    })));
    QVHevcSps record = defaultHevcSps();
    record.pic_width_in_luma_samples = record.display_width = 1920;
    record.pic_height_in_luma_samples = 1088;
    record.display_height = 1080;
    record.conformance_window_flag = 1;
    record.conf_win_left_offset = record.conf_win_right_offset = record.conf_win_top_offset = 0;
    record.conf_win_bottom_offset = 4;
    expectOutcome(record, {kDefaultLine});
}

TEST_F(QVHevcSpsWindow, unitsOfEveryChromaFormat) {
    struct Case {
        uint32_t chromaFormat;
        int32_t unitX, unitY;
    };
    // SubWidthC and SubHeightC, Table 6-1. For formats that are not in the table both are 1 (D12).
    const Case cases[] = {
        {0, 1, 1}, {1, 2, 2}, {2, 2, 1}, {3, 1, 1}, {4, 1, 1}, {1000, 1, 1}, {kLargestCodeNum, 1, 1}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.chromaFormat);
        ASSERT_TRUE(parse(hevcSps([&](HevcSpsSyntax& s) {
            s.chroma_format_idc = c.chromaFormat;
            s.pic_width_in_luma_samples = 640;
            s.pic_height_in_luma_samples = 480;
            s.conformance_window_flag = 1;
            s.conf_win_left_offset = 1;
            s.conf_win_right_offset = 2;
            s.conf_win_top_offset = 3;
            s.conf_win_bottom_offset = 4;
        })));
        QVHevcSps record = defaultHevcSps();
        record.chroma_format_idc = static_cast<int32_t>(c.chromaFormat);
        record.pic_width_in_luma_samples = 640;
        record.pic_height_in_luma_samples = 480;
        record.conformance_window_flag = 1;
        record.conf_win_left_offset = 1;
        record.conf_win_right_offset = 2;
        record.conf_win_top_offset = 3;
        record.conf_win_bottom_offset = 4;
        record.display_width = 640 - 3 * c.unitX;
        record.display_height = 480 - 7 * c.unitY;
        expectOutcome(record, {kDefaultLine});
    }
}

TEST_F(QVHevcSpsWindow, of422) {
    ASSERT_TRUE(parse(hevcSps([](HevcSpsSyntax& s) {
        s.chroma_format_idc = 2;
        s.conformance_window_flag = 1;
        s.conf_win_right_offset = 1;
        s.conf_win_bottom_offset = 1;
    })));
    EXPECT_EQ(sps.display_width, 8 - 2);
    EXPECT_EQ(sps.display_height, 8 - 1);
}

TEST_F(QVHevcSpsWindow, staleOffsetsSurviveWithoutAWindow) {
    ASSERT_TRUE(parse(hevcSps([](HevcSpsSyntax& s) {
        s.conformance_window_flag = 1;
        s.conf_win_left_offset = 1;
        s.conf_win_right_offset = 2;
        s.conf_win_top_offset = 3;
        s.conf_win_bottom_offset = 4;
    })));
    ASSERT_TRUE(parseOver(withEmulationPrevention(hevcSps().bytes())));
    QVHevcSps record = defaultHevcSps();
    record.conf_win_left_offset = 1;
    record.conf_win_right_offset = 2;
    record.conf_win_top_offset = 3;
    record.conf_win_bottom_offset = 4;
    expectOutcome(record, {kDefaultLine});
}

TEST_F(QVHevcSpsWindow, aPlaneFlagOfAnEarlierParseDoesNotSurvive) {
    ASSERT_TRUE(parse(hevcSps([](HevcSpsSyntax& s) {
        s.chroma_format_idc = 3;
        s.separate_colour_plane_flag = 1;
    })));
    ASSERT_TRUE(parseOver(withEmulationPrevention(hevcSps().bytes())));
    expectOutcome(defaultHevcSps(), {kDefaultLine});
}

TEST_F(QVHevcSpsWindow, D10_anOversizeWindowIsNotCheckedAndWraps) {
    struct Case {
        uint32_t left, right, top, bottom;
        int32_t width, height;
    };
    // An 8x8 picture in 4:2:0.
    const Case cases[] = {
        {3, 0, 0, 3, 2, 2},
        {4, 0, 2, 2, 0, 0},
        {4, 1, 0, 5, -2, -2},
        {0x7FFFFFFF, 0, 0x80000000, 0, 10, 8},
        {kLargestCodeNum, kLargestCodeNum, kLargestCodeNum, 1, 16, 10},
        {0x40000000, 0, 0x3FFFFFFF, 0, INT32_MIN + 8, INT32_MIN + 10},
    };
    for (const Case& c : cases) {
        const BitWriter syntax = hevcSps([&](HevcSpsSyntax& s) {
            s.conformance_window_flag = 1;
            s.conf_win_left_offset = c.left;
            s.conf_win_right_offset = c.right;
            s.conf_win_top_offset = c.top;
            s.conf_win_bottom_offset = c.bottom;
        });
        SCOPED_TRACE(syntax.map());
        ASSERT_TRUE(parse(syntax));
        QVHevcSps record = defaultHevcSps();
        record.conformance_window_flag = 1;
        record.conf_win_left_offset = static_cast<int32_t>(c.left);
        record.conf_win_right_offset = static_cast<int32_t>(c.right);
        record.conf_win_top_offset = static_cast<int32_t>(c.top);
        record.conf_win_bottom_offset = static_cast<int32_t>(c.bottom);
        record.display_width = c.width;
        record.display_height = c.height;
        expectOutcome(record, {kDefaultLine});
    }
}

}  // namespace
}  // namespace qv_test
