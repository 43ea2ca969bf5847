// H.265 sequence parameter sets that end early, that have a null buffer, or that contain emulation prevention
// bytes.
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <ostream>
#include <string>

#include "HevcSpsRecord.h"
#include "HevcSpsSyntax.h"
#include "QVHevcSps.h"

namespace qv_test {
namespace {

// --- Every cut ---

struct Shape {
    const char* name;
    HevcSpsChange change;
};

void PrintTo(const Shape& shape, std::ostream* out) {
    *out << shape.name;
}

void window(HevcSpsSyntax& s) {
    s.sps_video_parameter_set_id = 15;
    s.general.profile_space = 3;
    s.general.tier_flag = 1;
    s.general.profile_idc = 31;
    s.general_level_idc = 255;
    s.sps_seq_parameter_set_id = 15;
    s.chroma_format_idc = 2;
    s.pic_width_in_luma_samples = 1928;
    s.pic_height_in_luma_samples = 1096;
    s.conformance_window_flag = 1;
    s.conf_win_left_offset = 1;
    s.conf_win_right_offset = 300;
    s.conf_win_top_offset = 4;
    s.conf_win_bottom_offset = 12;
    s.bit_depth_luma_minus8 = 6;
    s.bit_depth_chroma_minus8 = 7;
    s.log2_max_pic_order_cnt_lsb_minus4 = 12;
}

void subLayers(HevcSpsSyntax& s) {
    s.sps_max_sub_layers_minus1 = 6;
    for (size_t i = 0; i < 6; ++i) {
        s.subLayers[i].sub_layer_profile_present_flag = i % 3 != 0 ? 1 : 0;
        s.subLayers[i].sub_layer_level_present_flag = i % 2 != 0 ? 1 : 0;
    }
    s.sps_seq_parameter_set_id = 9;
    s.pic_width_in_luma_samples = 640;
}

void separatePlanes(HevcSpsSyntax& s) {
    s.chroma_format_idc = 3;
    s.separate_colour_plane_flag = 1;
    s.pic_width_in_luma_samples = 0xFFFFFFFE;
    s.pic_height_in_luma_samples = 0x80000000;
}

class QVHevcSpsTruncation : public HevcSpsTest, public ::testing::WithParamInterface<Shape> {};

// Missing bits read as 0, and a code without its 1 bit is 0. A complete parameter set with these values must
// give the same result as the truncated one.
TEST_P(QVHevcSpsTruncation, cutAtEveryBit) {
    HevcSpsSyntax whole;
    GetParam().change(whole);
    const BitWriter syntax = writeHevcSps(whole);
    for (size_t bits = 1; bits <= syntax.bitCount(); ++bits) {
        SCOPED_TRACE("cut at bit " + std::to_string(bits) + " of\n" + syntax.map());
        HevcSpsSyntax asCut = hevcSpsCutAt(whole, bits);
        // With a header of zero bits, an emulation prevention byte could be at position 2, where it is data.
        asCut.nal_unit_type = whole.nal_unit_type;
        asCut.nuh_temporal_id_plus1 = whole.nuh_temporal_id_plus1;
        ASSERT_TRUE(parse(writeHevcSps(asCut)));
        const QVHevcSps expected = sps;
        const std::string profile = core().lines.at(0).text;

        ASSERT_TRUE(parseBytes(withEmulationPrevention(syntax.bytesCutAt(bits))));
        expectOutcome(expected, {{2, "parseHevcSpsForProfile", profile}});
        if (HasFailure()) {
            return;  // one failure prints enough
        }
    }
}

const Shape kShapes[] = {
    {"plain", [](HevcSpsSyntax&) {}},
    {"window", window},
    {"subLayers", subLayers},
    {"separatePlanes", separatePlanes},
};

INSTANTIATE_TEST_SUITE_P(shapes, QVHevcSpsTruncation, ::testing::ValuesIn(kShapes),
                         [](const auto& shape) { return std::string(shape.param.name); });

// --- Cuts with explicit expectations ---

class QVHevcSpsShort : public HevcSpsTest {};

TEST_F(QVHevcSpsShort, theHeaderAlone) {
    for (const Bytes& header : {Bytes{0x42}, Bytes{0x42, 0x01}}) {
        ASSERT_TRUE(parseBytes(header));
        expectOutcome(hevcSpsOfZeroBits(), {hevcProfileLine(0, 0, 0, 0)});
        EXPECT_EQ(cursor(), header.size() * 8) << "the cursor must not move past the end";
    }
}

TEST_F(QVHevcSpsShort, aStreamAtItsEnd) {
    const Bytes bytes = {0xFF, 0xFF};
    stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
    stream->skipBytes(2);
    ASSERT_TRUE(parseHevcSps(&sps, stream)) << "a stream at its end must be parsed";
    expectOutcome(hevcSpsOfZeroBits(), {hevcProfileLine(0, 0, 0, 0)});
    EXPECT_EQ(cursor(), 16U);
}

TEST_F(QVHevcSpsShort, aStreamWithABitIndexOfTheCallers) {
    ASSERT_TRUE(parse(hevcSps()));
    const QVHevcSps expected = sps;
    const uint64_t end = cursor();

    // The bit indices 9 and 8 read as zero bits. They replace the first two bits of the unit, which are zero.
    Bytes bytes = hevcSps().bytes();
    for (size_t i = 0; i < bytes.size(); ++i) {
        const uint32_t next = i + 1 < bytes.size() ? bytes[i + 1] : 0U;
        bytes[i] = static_cast<uint8_t>(uint32_t{bytes[i]} << 2 | next >> 6);
    }
    bytes = withEmulationPrevention(bytes);
    stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
    stream->rbspBitIndex = 9;
    sps = patternHevcSps();
    core().lines.clear();
    ASSERT_TRUE(parseHevcSps(&sps, stream));
    expectOutcome(expected, {hevcProfileLine(0, 0, 1, 30)});
    EXPECT_EQ(cursor() + 2, end);
}

TEST_F(QVHevcSpsShort, upToTheProfileByte) {
    ASSERT_TRUE(parseBytes({0x42, 0x01, 0xFF, 0xE1}));
    QVHevcSps record = hevcSpsOfZeroBits();
    record.sps_video_parameter_set_id = 15;
    record.sps_max_sub_layers_minus1 = 7;
    record.sps_temporal_id_nesting_flag = 1;
    expectOutcome(record, {hevcProfileLine(3, 1, 1, 0)});
    EXPECT_EQ(cursor(), 32U);
}

TEST_F(QVHevcSpsShort, aCodeWithoutItsInformationBits) {
    const Bytes head = hevcSps().bytesCutAt(120);
    Bytes bytes = withEmulationPrevention(head);
    bytes.push_back(0x01);  // 00000001 and seven missing bits: 127
    ASSERT_TRUE(parseBytes(bytes));
    QVHevcSps record = hevcSpsOfZeroBits();
    record.sps_temporal_id_nesting_flag = 1;
    record.sps_seq_parameter_set_id = 127;
    expectOutcome(record, {hevcProfileLine(0, 0, 1, 30)});
    EXPECT_EQ(cursor(), bytes.size() * 8);
}

// --- A null buffer with a size ---

class QVHevcSpsNullData : public HevcSpsTest {};

TEST_F(QVHevcSpsNullData, readsAsZeroBits) {
    for (const uint64_t size : {1U, 2U, 3U, 15U, 16U, 20U, 60U, 100U}) {
        SCOPED_TRACE(size);
        sps = patternHevcSps();
        core().lines.clear();
        stream = std::make_shared<QVByteStream>();
        stream->size = stream->capacity = size;
        ASSERT_TRUE(parseHevcSps(&sps, stream));
        expectOutcome(hevcSpsOfZeroBits(), {hevcProfileLine(0, 0, 0, 0)});
        const uint64_t cursorOnNull = cursor();

        ASSERT_TRUE(parseBytes(Bytes(static_cast<size_t>(size))));
        expectOutcome(hevcSpsOfZeroBits(), {hevcProfileLine(0, 0, 0, 0)});
        EXPECT_EQ(cursorOnNull, cursor()) << "must be the same as for zero bytes";
    }
}

TEST_F(QVHevcSpsNullData, aCodeOfZeroBitsTakes34OfThem) {
    ASSERT_TRUE(parseBytes(Bytes(100)));
    // 120 bits up to general_level_idc, seven codes, conformance_window_flag and the ordering info flag.
    EXPECT_EQ(cursor(), 120U + 7 * 34 + 2);
}

// --- Emulation prevention ---

class QVHevcSpsEmulation : public HevcSpsTest {
protected:
    // Sets the ten bytes between general_profile_idc and general_level_idc.
    static void setDroppedBytes(HevcSpsSyntax& s, const std::array<uint8_t, 10>& bytes) {
        uint32_t compatibility = 0;
        for (size_t i = 0; i < 4; ++i) {
            compatibility = compatibility << 8 | bytes[i];
        }
        s.general.profile_compatibility_flags = compatibility;
        s.general.progressive_source_flag = bytes[4] >> 7 & 1;
        s.general.interlaced_source_flag = bytes[4] >> 6 & 1;
        s.general.non_packed_constraint_flag = bytes[4] >> 5 & 1;
        s.general.frame_only_constraint_flag = bytes[4] >> 4 & 1;
        uint64_t constraints = bytes[4] & 0xF;
        for (size_t i = 5; i < 10; ++i) {
            constraints = constraints << 8 | bytes[i];
        }
        s.general.reserved_zero_43bits = constraints >> 1;
        s.general.inbld_flag = constraints & 1;
    }

    static size_t emulationBytesOf(const BitWriter& syntax) {
        return withEmulationPrevention(syntax.bytes()).size() - syntax.bytes().size();
    }
};

TEST_F(QVHevcSpsEmulation, atEveryPlaceInTheProfileBits) {
    for (size_t place = 0; place < 9; ++place) {
        for (uint8_t third = 0; third < 4; ++third) {
            const BitWriter syntax = hevcSps([&](HevcSpsSyntax& s) {
                std::array<uint8_t, 10> bytes;
                bytes.fill(0xFF);
                bytes[place] = bytes[place + 1] = 0x00;
                if (place + 2 < bytes.size()) {
                    bytes[place + 2] = third;
                }
                setDroppedBytes(s, bytes);
                s.general_level_idc = third;  // the byte after them
                s.sps_seq_parameter_set_id = 3;
            });
            SCOPED_TRACE(syntax.map());
            ASSERT_GE(emulationBytesOf(syntax), 1U);
            ASSERT_TRUE(parse(syntax));
            QVHevcSps record = defaultHevcSps();
            record.sps_seq_parameter_set_id = 3;
            expectOutcome(record, {hevcProfileLine(0, 0, 1, third)});
        }
    }
}

TEST_F(QVHevcSpsEmulation, severalInTheProfileBits) {
    const BitWriter syntax = hevcSps([&](HevcSpsSyntax& s) {
        setDroppedBytes(s, {});
        s.general_level_idc = 0;
        s.pic_width_in_luma_samples = 1920;
    });
    ASSERT_EQ(emulationBytesOf(syntax), 5U);
    ASSERT_TRUE(parse(syntax));
    QVHevcSps record = defaultHevcSps();
    record.pic_width_in_luma_samples = record.display_width = 1920;
    expectOutcome(record, {hevcProfileLine(0, 0, 1, 0)});
}

TEST_F(QVHevcSpsEmulation, inTheProfileByteItself) {
    // general_profile_idc 1 follows two zero bytes: nuh_temporal_id_plus1 0, and the byte of the identifiers.
    const BitWriter syntax = hevcSps([&](HevcSpsSyntax& s) {
        s.nuh_temporal_id_plus1 = 0;
        s.sps_temporal_id_nesting_flag = 0;
    });
    const Bytes escaped = withEmulationPrevention(syntax.bytes());
    ASSERT_EQ(Bytes(escaped.begin(), escaped.begin() + 5), (Bytes{0x42, 0x00, 0x00, 0x03, 0x01}));
    ASSERT_TRUE(parseBytes(escaped));
    QVHevcSps record = defaultHevcSps();
    record.sps_temporal_id_nesting_flag = 0;
    expectOutcome(record, {hevcProfileLine(0, 0, 1, 30)});
}

TEST_F(QVHevcSpsEmulation, D03_atPosition2ItIsData) {
    // 00 00 03: a header of zeros, then the byte 00000011 with sps_max_sub_layers_minus1 1 and the nesting
    // flag.
    Bytes bytes = hevcSps([](HevcSpsSyntax& s) {
                      s.general.profile_compatibility_flags = 0xFFFFFFFF;
                      s.general.reserved_zero_43bits = 0x7FFFFFFFFFF;
                      s.sps_max_sub_layers_minus1 = 1;
                  }).bytes();
    bytes[0] = bytes[1] = 0x00;
    ASSERT_EQ(bytes[2], 0x03);
    ASSERT_TRUE(parseBytes(bytes));
    QVHevcSps record = defaultHevcSps();
    record.sps_max_sub_layers_minus1 = 1;
    expectOutcome(record, {hevcProfileLine(0, 0, 1, 30)});
}

TEST_F(QVHevcSpsEmulation, D03_theByteAfterItIsNotExamined) {
    // 00 00 03 FF, which a conforming encoder does not write.
    const BitWriter syntax = hevcSps([&](HevcSpsSyntax& s) {
        setDroppedBytes(s, {0xFF, 0x00, 0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF});
    });
    Bytes bytes = syntax.bytes();
    ASSERT_EQ(Bytes(bytes.begin() + 5, bytes.begin() + 8), (Bytes{0x00, 0x00, 0xFF}));
    bytes.insert(bytes.begin() + 7, 0x03);
    ASSERT_TRUE(parseBytes(bytes));
    expectOutcome(defaultHevcSps(), {hevcProfileLine(0, 0, 1, 30)});
}

TEST_F(QVHevcSpsEmulation, betweenTheLevelAndTheFlagsOfSubLayers) {
    for (uint32_t flags = 0; flags < 4; ++flags) {
        const BitWriter syntax = hevcSps([&](HevcSpsSyntax& s) {
            s.sps_max_sub_layers_minus1 = 6;
            setDroppedBytes(s, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00});
            s.general_level_idc = 0;
            s.subLayers[3].sub_layer_profile_present_flag = flags >> 1;
            s.subLayers[3].sub_layer_level_present_flag = flags & 1;
            s.sps_seq_parameter_set_id = 9;
        });
        SCOPED_TRACE(syntax.map());
        ASSERT_GE(emulationBytesOf(syntax), 1U);
        ASSERT_TRUE(parse(syntax));
        QVHevcSps record = defaultHevcSps();
        record.sps_max_sub_layers_minus1 = 6;
        record.sps_seq_parameter_set_id = 9;
        expectOutcome(record, {hevcProfileLine(0, 0, 1, 0)});
    }
}

TEST_F(QVHevcSpsEmulation, inAPictureSize) {
    const BitWriter syntax = hevcSps([&](HevcSpsSyntax& s) {
        setDroppedBytes(s, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF});
        s.pic_width_in_luma_samples = 0x7FFFFFFF;
        s.pic_height_in_luma_samples = 0x40000000;
    });
    ASSERT_GE(emulationBytesOf(syntax), 2U);
    ASSERT_TRUE(parse(syntax));
    QVHevcSps record = defaultHevcSps();
    record.pic_width_in_luma_samples = record.display_width = 0x7FFFFFFF;
    record.pic_height_in_luma_samples = record.display_height = 0x40000000;
    expectOutcome(record, {hevcProfileLine(0, 0, 1, 30)});
}

TEST_F(QVHevcSpsEmulation, atTheVeryEnd) {
    // Only two zero bytes and 03 follow general_level_idc, so all further elements are zero bits.
    Bytes bytes = hevcSps([](HevcSpsSyntax& s) {
                      s.general.profile_compatibility_flags = 0xFFFFFFFF;
                      s.general.reserved_zero_43bits = 0x7FFFFFFFFFF;
                  }).bytesCutAt(120);
    bytes.insert(bytes.end(), {0x00, 0x00, 0x03});
    ASSERT_TRUE(parseBytes(bytes));
    QVHevcSps record = hevcSpsOfZeroBits();
    record.sps_temporal_id_nesting_flag = 1;
    expectOutcome(record, {hevcProfileLine(0, 0, 1, 30)});
    EXPECT_EQ(cursor(), bytes.size() * 8);
}

}  // namespace
}  // namespace qv_test
