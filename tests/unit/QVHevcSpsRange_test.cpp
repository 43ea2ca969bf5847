// Values out of range and Exp-Golomb codes at their limits in the H.265 sequence parameter set.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "HevcSpsRecord.h"
#include "HevcSpsSyntax.h"
#include "QVHevcSps.h"

namespace qv_test {
namespace {

constexpr uint32_t kLargestCodeNum = 0xFFFFFFFE;

const ExpectedLine kDefaultLine = hevcProfileLine(0, 0, 1, 30);

// --- Values out of range ---

class QVHevcSpsRange : public HevcSpsTest {};

TEST_F(QVHevcSpsRange, D12_noValueIsRangeChecked) {
    struct Field {
        uint32_t HevcSpsSyntax::*coded;
        int32_t QVHevcSps::*stored;
    };
    const Field fields[] = {
        {&HevcSpsSyntax::sps_seq_parameter_set_id, &QVHevcSps::sps_seq_parameter_set_id},
        {&HevcSpsSyntax::chroma_format_idc, &QVHevcSps::chroma_format_idc},
        {&HevcSpsSyntax::bit_depth_luma_minus8, &QVHevcSps::bit_depth_luma_minus8},
        {&HevcSpsSyntax::bit_depth_chroma_minus8, &QVHevcSps::bit_depth_chroma_minus8},
        {&HevcSpsSyntax::log2_max_pic_order_cnt_lsb_minus4, &QVHevcSps::log2_max_pic_order_cnt_lsb_minus4},
    };
    for (const Field& field : fields) {
        for (const uint32_t value :
             {0U, 4U, 9U, 13U, 15U, 16U, 17U, 255U, 256U, 0x7FFFFFFFU, 0x80000000U, kLargestCodeNum}) {
            const BitWriter syntax = hevcSps([&](HevcSpsSyntax& s) { s.*field.coded = value; });
            SCOPED_TRACE(syntax.map());
            ASSERT_TRUE(parse(syntax));
            QVHevcSps record = defaultHevcSps();
            record.*field.stored = static_cast<int32_t>(value);
            expectOutcome(record, {kDefaultLine});
        }
    }
}

TEST_F(QVHevcSpsRange, D12_anyPictureSizeIsTaken) {
    for (const uint32_t size : {0U, 1U, 7U, 8193U, 0x7FFFFFFFU, 0x80000000U, kLargestCodeNum}) {
        SCOPED_TRACE(size);
        ASSERT_TRUE(parse(hevcSps([&](HevcSpsSyntax& s) {
            s.pic_width_in_luma_samples = size;
            s.pic_height_in_luma_samples = size;
        })));
        QVHevcSps record = defaultHevcSps();
        record.pic_width_in_luma_samples = record.display_width = static_cast<int32_t>(size);
        record.pic_height_in_luma_samples = record.display_height = static_cast<int32_t>(size);
        expectOutcome(record, {kDefaultLine});
    }
}

TEST_F(QVHevcSpsRange, identifiersOfFourBits) {
    for (uint32_t id = 0; id < 16; ++id) {
        SCOPED_TRACE(id);
        ASSERT_TRUE(parse(hevcSps([&](HevcSpsSyntax& s) {
            s.sps_video_parameter_set_id = id;
            s.sps_temporal_id_nesting_flag = id % 2;
        })));
        QVHevcSps record = defaultHevcSps();
        record.sps_video_parameter_set_id = static_cast<int32_t>(id);
        record.sps_temporal_id_nesting_flag = static_cast<int32_t>(id % 2);
        expectOutcome(record, {kDefaultLine});
    }
}

// --- Exp-Golomb codes of 32 zeros and more ---

class QVHevcSpsLongCodes : public HevcSpsTest {
protected:
    // Returns the parameter set with the code of one element replaced.
    static BitWriter withCode(const BitWriter& syntax, const std::string& element, const std::string& code) {
        const Bytes bytes = syntax.bytes();
        BitWriter out;
        for (const BitWriter::Element& e : syntax.elements()) {
            std::string pattern;
            for (size_t bit = e.position; bit < e.position + e.width; ++bit) {
                pattern += (bytes[bit / 8] >> (7 - bit % 8) & 1) != 0 ? '1' : '0';
            }
            out.bits(e.name, e.name == element ? code : pattern);
        }
        return out;
    }

    static std::string binary32(uint32_t value) {
        std::string text;
        for (int bit = 31; bit >= 0; --bit) {
            text += (value >> bit & 1) != 0 ? '1' : '0';
        }
        return text;
    }

    void expectParsed(const BitWriter& syntax, const QVHevcSps& record) {
        SCOPED_TRACE(syntax.map());
        ASSERT_TRUE(parse(syntax));
        expectOutcome(record, {kDefaultLine});
    }
};

const std::string kZeros32(32, '0');

// The value is 2^32 - 1 plus the 32 information bits, modulo 2^32.
TEST_F(QVHevcSpsLongCodes, of32Zeros) {
    const std::pair<uint32_t, int32_t> cases[] = {
        {0, -1}, {1, 0}, {2, 1}, {0x80000000, 0x7FFFFFFF}, {0x80000001, INT32_MIN}, {0xFFFFFFFF, -2}};
    const std::pair<const char*, int32_t QVHevcSps::*> elements[] = {
        {"sps_seq_parameter_set_id", &QVHevcSps::sps_seq_parameter_set_id},
        {"bit_depth_luma_minus8", &QVHevcSps::bit_depth_luma_minus8},
        {"bit_depth_chroma_minus8", &QVHevcSps::bit_depth_chroma_minus8},
        {"log2_max_pic_order_cnt_lsb_minus4", &QVHevcSps::log2_max_pic_order_cnt_lsb_minus4},
        {"chroma_format_idc", &QVHevcSps::chroma_format_idc},
    };
    for (const auto& [element, field] : elements) {
        for (const auto& [information, value] : cases) {
            QVHevcSps record = defaultHevcSps();
            record.*field = value;
            expectParsed(withCode(hevcSps(), element, kZeros32 + "1" + binary32(information)), record);
        }
    }
}

TEST_F(QVHevcSpsLongCodes, aChromaFormatOf3ByWrapping) {
    QVHevcSps record = defaultHevcSps();
    record.chroma_format_idc = 3;
    record.separate_colour_plane_flag = 1;
    expectParsed(withCode(hevcSps(), "chroma_format_idc", kZeros32 + "1" + binary32(4) + "1"), record);
}

TEST_F(QVHevcSpsLongCodes, aPictureSizeBeyond32Bits) {
    QVHevcSps record = defaultHevcSps();
    record.pic_width_in_luma_samples = record.display_width = 99;
    expectParsed(withCode(hevcSps(), "pic_width_in_luma_samples", kZeros32 + "1" + binary32(100)), record);
    record = defaultHevcSps();
    record.pic_height_in_luma_samples = record.display_height = -1;
    expectParsed(withCode(hevcSps(), "pic_height_in_luma_samples", kZeros32 + "1" + binary32(0)), record);
}

// One more bit is consumed, whatever its value, and the result is 0.
TEST_F(QVHevcSpsLongCodes, D05_of33Zeros) {
    const std::pair<const char*, int32_t QVHevcSps::*> elements[] = {
        {"sps_seq_parameter_set_id", &QVHevcSps::sps_seq_parameter_set_id},
        {"conf_win_left_offset", &QVHevcSps::conf_win_left_offset},
        {"conf_win_right_offset", &QVHevcSps::conf_win_right_offset},
        {"conf_win_top_offset", &QVHevcSps::conf_win_top_offset},
        {"conf_win_bottom_offset", &QVHevcSps::conf_win_bottom_offset},
        {"bit_depth_luma_minus8", &QVHevcSps::bit_depth_luma_minus8},
        {"bit_depth_chroma_minus8", &QVHevcSps::bit_depth_chroma_minus8},
        {"log2_max_pic_order_cnt_lsb_minus4", &QVHevcSps::log2_max_pic_order_cnt_lsb_minus4},
    };
    for (const auto& [element, field] : elements) {
        for (const char* more : {"0", "1"}) {
            const BitWriter syntax = hevcSps([](HevcSpsSyntax& s) {
                s.sps_seq_parameter_set_id = 3;
                s.chroma_format_idc = 0;
                s.conformance_window_flag = 1;
                s.conf_win_left_offset = s.conf_win_right_offset = 1;
                s.conf_win_top_offset = s.conf_win_bottom_offset = 1;
                s.bit_depth_luma_minus8 = s.bit_depth_chroma_minus8 = 2;
                s.log2_max_pic_order_cnt_lsb_minus4 = 4;
            });
            QVHevcSps record = defaultHevcSps();
            record.sps_seq_parameter_set_id = 3;
            record.chroma_format_idc = 0;
            record.conformance_window_flag = 1;
            record.conf_win_left_offset = record.conf_win_right_offset = 1;
            record.conf_win_top_offset = record.conf_win_bottom_offset = 1;
            record.bit_depth_luma_minus8 = record.bit_depth_chroma_minus8 = 2;
            record.log2_max_pic_order_cnt_lsb_minus4 = 4;
            record.*field = 0;
            record.display_width = 8 - record.conf_win_left_offset - record.conf_win_right_offset;
            record.display_height = 8 - record.conf_win_top_offset - record.conf_win_bottom_offset;
            expectParsed(withCode(syntax, element, kZeros32 + "0" + more), record);
        }
    }
}

TEST_F(QVHevcSpsLongCodes, aPictureSizeOf33Zeros) {
    for (const char* more : {"0", "1"}) {
        QVHevcSps record = defaultHevcSps();
        record.pic_width_in_luma_samples = record.display_width = 0;
        expectParsed(withCode(hevcSps(), "pic_width_in_luma_samples", kZeros32 + "0" + more), record);
        record = defaultHevcSps();
        record.pic_height_in_luma_samples = record.display_height = 0;
        expectParsed(withCode(hevcSps(), "pic_height_in_luma_samples", kZeros32 + "0" + more), record);
    }
}

TEST_F(QVHevcSpsLongCodes, aChromaFormatOf33ZerosHasNoPlaneFlag) {
    for (const char* more : {"0", "1"}) {
        const BitWriter syntax = hevcSps([](HevcSpsSyntax& s) {
            s.chroma_format_idc = 0;  // no flag follows
            s.pic_width_in_luma_samples = 640;
        });
        QVHevcSps record = defaultHevcSps();
        record.chroma_format_idc = 0;
        record.pic_width_in_luma_samples = record.display_width = 640;
        expectParsed(withCode(syntax, "chroma_format_idc", kZeros32 + "0" + more), record);
    }
}

}  // namespace
}  // namespace qv_test
