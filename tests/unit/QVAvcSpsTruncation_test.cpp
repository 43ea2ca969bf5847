// H.264 sequence parameter sets that end early, that have a null buffer, or that contain emulation prevention
// bytes.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "AvcSpsRecord.h"
#include "AvcSpsSyntax.h"
#include "QVAvcSps.h"
#include "SyntaxElements.h"

namespace qv_test {
namespace {

using Step = AvcSpsStep;

// Returns the record of a parameter set of zero bits: every element is 0, so the picture is coded in fields.
QVAvcSps recordOfZeroBits() {
    QVAvcSps record = avcSpsAfter(Step::Vui);
    record.profile_idc = 0;
    record.level_idc = 0;
    record.frame_mbs_only_flag = 0;
    record.height = 32;
    return record;
}

const char* const kSummaryOfZeroBits = "sps:0 profile:0/0 poc:0 ref:0 1x1 PIC-AFF  crop:0/0/0/0  420";

// --- Every cut ---

struct Shape {
    const char* name;
    AvcSpsChange change;
};

void PrintTo(const Shape& shape, std::ostream* out) {
    *out << shape.name;
}

void pocType1WithACycle(AvcSpsSyntax& s) {
    s.pic_order_cnt_type = 1;
    s.delta_pic_order_always_zero_flag = 1;
    s.offset_for_non_ref_pic = -70;
    s.offset_for_top_to_bottom_field = 33;
    s.num_ref_frames_in_pic_order_cnt_cycle = 5;
    s.offset_for_ref_frame = {1, -1, 300, -2, 77};
}

void fieldsWithACrop(AvcSpsSyntax& s) {
    s.constraint_set1_flag = s.constraint_set5_flag = 1;
    s.level_idc = 255;
    s.seq_parameter_set_id = 21;
    s.log2_max_frame_num_minus4 = 12;
    s.log2_max_pic_order_cnt_lsb_minus4 = 12;
    s.max_num_ref_frames = 16;
    s.gaps_in_frame_num_value_allowed_flag = 1;
    s.pic_width_in_mbs_minus1 = 119;
    s.pic_height_in_map_units_minus1 = 33;
    s.frame_mbs_only_flag = 0;
    s.mb_adaptive_frame_field_flag = 1;
    s.direct_8x8_inference_flag = 1;
    s.frame_cropping_flag = 1;
    s.frame_crop_left_offset = 4;
    s.frame_crop_right_offset = 6;
    s.frame_crop_top_offset = 1;
    s.frame_crop_bottom_offset = 100;
    s.vui_parameters_present_flag = 1;
}

void everyScalingList(AvcSpsSyntax& s) {
    s.profile_idc = 100;
    s.writesChromaSyntax = true;
    s.chroma_format_idc = 3;
    s.bit_depth_luma_minus8 = s.bit_depth_chroma_minus8 = 6;
    s.qpprime_y_zero_transform_bypass_flag = 1;
    s.seq_scaling_matrix_present_flag = 1;
    for (size_t list = 0; list < s.scalingLists.size(); ++list) {
        // No weight becomes 0, wherever a delta is cut.
        s.scalingLists[list] = {1, std::vector<int32_t>(list < 6 ? 16 : 64, 2)};
        s.scalingLists[list].delta_scale[1] = 70;
    }
    s.scalingLists[4] = {0, {}};
}

void largeSize(AvcSpsSyntax& s) {
    s.profile_idc = 100;
    s.writesChromaSyntax = true;
    s.chroma_format_idc = 2;
    s.pic_width_in_mbs_minus1 = 134217725;
    s.pic_height_in_map_units_minus1 = 100000;
}

std::vector<ExpectedLine> linesOfTheCore() {
    std::vector<ExpectedLine> lines;
    for (const LogLine& line : core().lines) {
        lines.push_back({line.level, line.function, line.text});
    }
    return lines;
}

class QVAvcSpsTruncation : public AvcSpsTest, public ::testing::WithParamInterface<Shape> {};

// Missing bits read as 0, and a code without its 1 bit is 0. A complete parameter set with these values must
// give the same result as the truncated one.
TEST_P(QVAvcSpsTruncation, cutAtEveryBit) {
    AvcSpsSyntax whole;
    GetParam().change(whole);
    const BitWriter syntax = writeAvcSps(whole);
    for (size_t bits = 1; bits <= syntax.bitCount(); ++bits) {
        SCOPED_TRACE("cut at bit " + std::to_string(bits) + " of\n" + syntax.map());
        const BitWriter asCut = writeAvcSps(avcSpsCutAt(whole, bits));
        const bool expectedResult = parse(asCut);
        const QVAvcSps expected = sps;
        const std::vector<ExpectedLine> lines = linesOfTheCore();

        EXPECT_EQ(parse(syntax.bytesCutAt(bits)), expectedResult);
        expectOutcome(expected, lines);
        if (HasFailure()) {
            return;  // one failure prints enough
        }
    }
}

const Shape kShapes[] = {
    {"minimal", [](AvcSpsSyntax&) {}},
    {"pocType1WithACycle", pocType1WithACycle},
    {"fieldsWithACrop", fieldsWithACrop},
    {"everyScalingList", everyScalingList},
    {"largeSize", largeSize},
};

INSTANTIATE_TEST_SUITE_P(shapes, QVAvcSpsTruncation, ::testing::ValuesIn(kShapes),
                         [](const auto& shape) { return std::string(shape.param.name); });

// --- Cuts with explicit expectations ---

class QVAvcSpsShort : public AvcSpsTest {};

TEST_F(QVAvcSpsShort, theHeaderByteAlone) {
    ASSERT_TRUE(parse(Bytes{0x67}));
    expectOutcome(recordOfZeroBits(), {avcSummary(kSummaryOfZeroBits)});
    // The skip of reserved_zero_2bits, which fits, and one bit for each of the seven Exp-Golomb codes.
    EXPECT_EQ(cursor(), 8U + 2 + 7);
}

TEST_F(QVAvcSpsShort, aStreamAtItsEnd) {
    const Bytes bytes = {0xFF, 0xFF};
    stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
    stream->skipBytes(2);
    ASSERT_TRUE(parseAvcSps(&sps, stream)) << "a stream at its end must be parsed";
    expectOutcome(recordOfZeroBits(), {avcSummary(kSummaryOfZeroBits)});
    EXPECT_EQ(cursor(), 16U + 2 + 7) << "the header byte must not be skipped";
}

// Offsets from 8 on occur only if the caller sets them. Such an offset counts as one byte and the remaining
// bits when the header is skipped.
TEST_F(QVAvcSpsShort, cutAtEveryByteAfterABitOffset) {
    for (unsigned bitOffset = 1; bitOffset < 16; ++bitOffset) {
        SCOPED_TRACE(bitOffset);
        const BitWriter unit = avcSps();
        BitWriter shifted;
        shifted.u(bitOffset, "preceding bits", 0xFFFF);
        for (const uint8_t byte : unit.bytes()) {
            shifted.u(8, "byte of the unit", byte);
        }
        for (size_t size = 3; size <= shifted.bitCount() / 8; ++size) {
            const bool expectedResult = parse(unit.bytesCutAt(8 * size - bitOffset));
            const QVAvcSps expected = sps;
            const std::vector<ExpectedLine> lines = linesOfTheCore();

            const Bytes bytes = shifted.bytesCutAt(8 * size);
            sps = patternAvcSps();
            core().lines.clear();
            stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
            stream->bitOffset = static_cast<uint8_t>(bitOffset);
            EXPECT_EQ(parseAvcSps(&sps, stream), expectedResult) << size;
            expectOutcome(expected, lines);
        }
    }
}

// The header does not fit after such an offset and is not skipped; reads take the offset modulo 8.
TEST_F(QVAvcSpsShort, aBitOffsetAboveSevenInTheOnlyByte) {
    const Bytes bytes = {0xF4};
    stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
    stream->bitOffset = 12;
    ASSERT_TRUE(parseAvcSps(&sps, stream));
    QVAvcSps record = recordOfZeroBits();
    record.profile_idc = 0x40;
    expectOutcome(record, {avcSummary("sps:0 profile:64/0 poc:0 ref:0 1x1 PIC-AFF  crop:0/0/0/0  420")});
    EXPECT_EQ(cursor(), 8U + 2 + 7);
}

TEST_F(QVAvcSpsShort, theHeaderAndTheProfile) {
    ASSERT_TRUE(parse(Bytes{0x67, 0x64}));
    QVAvcSps record = recordOfZeroBits();
    record.profile_idc = 100;
    record.chroma_format_idc = 0;
    record.transform_bypass = 0;
    expectOutcome(record, {avcSummary("sps:0 profile:100/0 poc:0 ref:0 1x1 PIC-AFF  crop:0/0/0/0  Gray")});
    // Ten codes: the seven, chroma_format_idc and the two bit depths.
    EXPECT_EQ(cursor(), 16U + 2 + 10);
}

TEST_F(QVAvcSpsShort, upToTheLevel) {
    ASSERT_TRUE(parse(Bytes{0x67, 0x42, 0xFF, 0x1E}));
    QVAvcSps record = recordOfZeroBits();
    record.profile_idc = 66;
    record.level_idc = 30;
    record.constraint_set_flags = 0x3F;
    expectOutcome(record, {avcSummary("sps:0 profile:66/30 poc:0 ref:0 1x1 PIC-AFF  crop:0/0/0/0  420")});
    EXPECT_EQ(cursor(), 32U + 7);
}

TEST_F(QVAvcSpsShort, aCodeOfZerosUpToTheEnd) {
    ASSERT_TRUE(parse(Bytes{0x67, 0x42, 0x00, 0x1E, 0x00}));
    QVAvcSps record = recordOfZeroBits();
    record.profile_idc = 66;
    record.level_idc = 30;
    expectOutcome(record, {avcSummary("sps:0 profile:66/30 poc:0 ref:0 1x1 PIC-AFF  crop:0/0/0/0  420")});
    EXPECT_EQ(cursor(), 40U + 6) << "seq_parameter_set_id must consume the zeros";
}

TEST_F(QVAvcSpsShort, aCodeWithoutItsInformationBits) {
    // 00000001 and seven missing bits: 127.
    EXPECT_FALSE(parse(Bytes{0x67, 0x42, 0x00, 0x1E, 0x01}));
    expectOutcome(patternAvcSps(),
                  {avcError("parseAvcSps", "parseAvcCDecoderSps, sps_id 127 out of range\n")});
}

TEST_F(QVAvcSpsShort, theEndInsideAScalingListIsNoInvalidDelta) {
    // The list's present flag is the last bit, so its deltas are 0 and its weights 8.
    const BitWriter syntax = highAvcSps([](AvcSpsSyntax& s) {
        s.seq_parameter_set_id = 2;
        s.seq_scaling_matrix_present_flag = 1;
        s.qpprime_y_zero_transform_bypass_flag = 1;
        s.bit_depth_luma_minus8 = s.bit_depth_chroma_minus8 = 2;
        s.scalingLists[0] = {1, std::vector<int32_t>(16, 1)};
    });
    const size_t end = endOf(syntax, "seq_scaling_list_present_flag[0]");
    ASSERT_EQ(end % 8, 7U);
    ASSERT_TRUE(parse(highAvcSps([](AvcSpsSyntax& s) { s.seq_scaling_matrix_present_flag = 1; })));
    QVAvcSps record = sps;  // the other lists are not sent
    record.sps_id = 2;
    record.bit_depth_luma = record.bit_depth_chroma = 10;
    record.transform_bypass = 1;
    record.frame_mbs_only_flag = 0;
    record.height = 32;
    for (int list = 0; list < 3; ++list) {
        std::memset(record.scaling_matrix4[list], 8, sizeof record.scaling_matrix4[list]);
    }
    ASSERT_TRUE(parse(syntax.bytesCutAt(end)));
    expectOutcome(record, {avcSummary("sps:2 profile:100/10 poc:0 ref:0 1x1 PIC-AFF  crop:0/0/0/0  420")});
}

// --- A null buffer with a size ---

class QVAvcSpsNullData : public AvcSpsTest {
protected:
    bool parseNullOf(uint64_t size) {
        stream = std::make_shared<QVByteStream>();
        stream->size = stream->capacity = size;
        return parseAvcSps(&sps, stream);
    }
};

TEST_F(QVAvcSpsNullData, readsAsZeroBits) {
    for (const uint64_t size : {1U, 2U, 3U, 4U, 5U, 6U, 40U, 100U}) {
        SCOPED_TRACE(size);
        sps = patternAvcSps();
        core().lines.clear();
        ASSERT_TRUE(parseNullOf(size));
        expectOutcome(recordOfZeroBits(), {avcSummary(kSummaryOfZeroBits)});
        const uint64_t cursorOnNull = cursor();
        ASSERT_TRUE(parse(Bytes(static_cast<size_t>(size))));
        expectOutcome(recordOfZeroBits(), {avcSummary(kSummaryOfZeroBits)});
        EXPECT_EQ(cursorOnNull, cursor()) << "must be the same as for zero bytes";
    }
}

// --- Emulation prevention ---

class QVAvcSpsEmulation : public AvcSpsTest {};

// offset_for_non_ref_pic has 23 leading zero bits from a byte boundary on: 00 00 01, sent as 00 00 03 01.
BitWriter withThreeBytePattern() {
    return avcSps([](AvcSpsSyntax& s) {
        s.seq_parameter_set_id = 1;
        s.pic_order_cnt_type = 1;
        s.offset_for_non_ref_pic = 1 << 22 | 1 << 14;
    });
}

QVAvcSps recordOfThreeBytePattern() {
    QVAvcSps record = avcSpsAfter(Step::Vui);
    record.sps_id = 1;
    record.poc_type = 1;
    record.log2_max_poc_lsb = patternAvcSps().log2_max_poc_lsb;
    record.delta_pic_order_always_zero_flag = 0;
    record.offset_for_non_ref_pic = 1 << 22 | 1 << 14;
    record.offset_for_top_to_bottom_field = 0;
    record.poc_cycle_length = 0;
    return record;
}

TEST_F(QVAvcSpsEmulation, withoutIt) {
    const BitWriter syntax = withThreeBytePattern();
    ASSERT_EQ(startOf(syntax, "offset_for_non_ref_pic"), 40U);
    ASSERT_TRUE(parse(syntax));
    expectOutcome(recordOfThreeBytePattern(),
                  {avcSummary("sps:1 profile:66/10 poc:1 ref:0 1x1 FRM  crop:0/0/0/0  420")});
}

TEST_F(QVAvcSpsEmulation, D06_emulationPreventionByteIsReadAsData) {
    const Bytes escaped = withEmulationPrevention(withThreeBytePattern().bytes());
    ASSERT_EQ(Bytes(escaped.begin() + 5, escaped.begin() + 12),
              (Bytes{0x00, 0x00, 0x03, 0x01, 0x01, 0x00, 0x01}));
    ASSERT_TRUE(parse(escaped));
    QVAvcSps record = recordOfThreeBytePattern();
    // 22 zeros, then 1 1 00000001 0000000100000: a magnitude of 22 bits and the sign 0.
    record.offset_for_non_ref_pic = 1 << 21 | 1 << 20 | 1 << 12 | 1 << 4;
    // The ten remaining zeros, then 1110111000 1: a magnitude and the sign 1.
    record.offset_for_top_to_bottom_field = -0b1110111000;
    record.frame_mbs_only_flag = 0;
    record.height = 32;
    expectOutcome(record, {avcSummary("sps:1 profile:66/10 poc:1 ref:0 1x1 PIC-AFF  crop:0/0/0/0  420")});
}

TEST_F(QVAvcSpsEmulation, D06_afterTheVuiFlagItDoesNotMatter) {
    Bytes bytes = avcSps([](AvcSpsSyntax& s) { s.vui_parameters_present_flag = 1; }).bytes();
    ASSERT_TRUE(parse(bytes));
    const QVAvcSps expected = sps;
    bytes.insert(bytes.end(), {0x00, 0x00, 0x03, 0x00});
    ASSERT_TRUE(parse(bytes));
    EXPECT_TRUE(sameAvcSps(sps, expected));
}

}  // namespace
}  // namespace qv_test
