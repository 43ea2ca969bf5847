// The part of the H.265 sequence parameter set that is parsed: the record, profile and sub-layers, and the
// references to the stream. The other QVHevcSps tests cover the other elements.
#include "QVHevcSps.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <type_traits>
#include <utility>

#include "HevcSpsRecord.h"
#include "HevcSpsSyntax.h"
#include "SyntaxElements.h"

namespace qv_test {
namespace {

const ExpectedLine kDefaultLine = hevcProfileLine(0, 0, 1, 30);

// --- The record ---

static_assert(std::is_trivially_copyable<QVHevcSps>::value);
static_assert(std::is_trivially_default_constructible<QVHevcSps>::value);

// Sets every value so that it differs from its neighbours and, if possible, from all others.
void everythingDifferent(HevcSpsSyntax& s) {
    s.sps_video_parameter_set_id = 13;
    s.sps_max_sub_layers_minus1 = 2;
    s.sps_temporal_id_nesting_flag = 1;
    s.general.profile_space = 1;
    s.general.tier_flag = 1;
    s.general.profile_idc = 19;
    s.general_level_idc = 153;
    s.subLayers[0].sub_layer_profile_present_flag = 1;
    s.subLayers[1].sub_layer_level_present_flag = 1;
    s.sps_seq_parameter_set_id = 5;
    s.chroma_format_idc = 2;
    s.pic_width_in_luma_samples = 1928;
    s.pic_height_in_luma_samples = 1096;
    s.conformance_window_flag = 1;
    s.conf_win_left_offset = 1;
    s.conf_win_right_offset = 3;
    s.conf_win_top_offset = 4;
    s.conf_win_bottom_offset = 12;
    s.bit_depth_luma_minus8 = 6;
    s.bit_depth_chroma_minus8 = 7;
    s.log2_max_pic_order_cnt_lsb_minus4 = 11;
    s.sps_sub_layer_ordering_info_present_flag = 1;
}

QVHevcSps recordOfEverythingDifferent() {
    QVHevcSps record = patternHevcSps();
    record.sps_video_parameter_set_id = 13;
    record.sps_max_sub_layers_minus1 = 2;
    record.sps_temporal_id_nesting_flag = 1;
    record.sps_seq_parameter_set_id = 5;
    record.chroma_format_idc = 2;
    record.separate_colour_plane_flag = 0;
    record.display_width = 1920;
    record.display_height = 1080;
    record.pic_width_in_luma_samples = 1928;
    record.pic_height_in_luma_samples = 1096;
    record.conformance_window_flag = 1;
    record.conf_win_left_offset = 1;
    record.conf_win_right_offset = 3;
    record.conf_win_top_offset = 4;
    record.conf_win_bottom_offset = 12;
    record.bit_depth_luma_minus8 = 6;
    record.bit_depth_chroma_minus8 = 7;
    record.log2_max_pic_order_cnt_lsb_minus4 = 11;
    record.sps_sub_layer_ordering_info_present_flag = 1;
    return record;
}

class QVHevcSpsWhole : public HevcSpsTest {};

TEST_F(QVHevcSpsWhole, everyElementLandsInItsField) {
    ASSERT_TRUE(parse(hevcSps(everythingDifferent)));
    expectOutcome(recordOfEverythingDifferent(), {hevcProfileLine(1, 1, 19, 153)});
}

TEST_F(QVHevcSpsWhole, theRecordAsWords) {
    ASSERT_TRUE(parse(hevcSps(everythingDifferent)));
    std::array<int32_t, sizeof(QVHevcSps) / 4> words;
    std::memcpy(words.data(), &sps, sizeof sps);
    const int32_t expected[] = {13, 2, 1, 5, 2, 0, 1920, 1080, 1928, 1096, 1, 1, 3, 4, 12, 6, 7, 11, 1};
    for (size_t i = 0; i < std::size(expected); ++i) {
        EXPECT_EQ(words[i], expected[i]) << "word " << i;
    }
    for (size_t i = std::size(expected); i < words.size(); ++i) {
        EXPECT_EQ(words[i], static_cast<int32_t>(0xA5A5A5A5)) << "word " << i << " was written";
    }
}

TEST_F(QVHevcSpsWhole, defaultParameterSet) {
    ASSERT_TRUE(parse(hevcSps()));
    expectOutcome(defaultHevcSps(), {kDefaultLine});
}

TEST_F(QVHevcSpsWhole, goldenBytes) {
    // The bits after general_level_idc 1E: identifier 1, chroma format 010, width 0001001, height 0001001,
    // window 0, bit depths 1 1, lsb 1, ordering info 1.
    ASSERT_TRUE(parseBytes(Bytes{0x42, 0x01, 0x01, 0x01, 0x60, 0xFF, 0xFF, 0xFF, 0x90, 0xFF, 0xFF, 0xFF, 0xFF,
                                 0xFF, 0x1E, 0b10100001, 0b00100010, 0b01011110}));
    expectOutcome(defaultHevcSps(), {kDefaultLine});
    EXPECT_EQ(cursor(), 143U);
}

TEST_F(QVHevcSpsWhole, stopsAfterTheOrderingInfoFlag) {
    for (const uint32_t flag : {0U, 1U}) {
        const BitWriter syntax = hevcSps([&](HevcSpsSyntax& s) {
            s.general.profile_compatibility_flags = 0xFFFFFFFF;  // no zero bytes, so no emulation prevention
            s.general.reserved_zero_43bits = ~uint64_t{0};
            s.sps_sub_layer_ordering_info_present_flag = flag;
        });
        SCOPED_TRACE(syntax.map());
        ASSERT_TRUE(parse(syntax));
        QVHevcSps record = defaultHevcSps();
        record.sps_sub_layer_ordering_info_present_flag = static_cast<int32_t>(flag);
        expectOutcome(record, {kDefaultLine});
        EXPECT_EQ(cursor(), endOf(syntax, "sps_sub_layer_ordering_info_present_flag"));
        EXPECT_EQ(stream->bitOffset, 0U) << "the plain cursor must not be used";
    }
}

TEST_F(QVHevcSpsWhole, startsAtThePositionOfTheStream) {
    Bytes bytes = withEmulationPrevention(hevcSps().bytes());
    bytes.insert(bytes.begin(), {0xFF, 0xFF, 0xFF});
    stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
    stream->readRbspBits(24);
    ASSERT_TRUE(parseHevcSps(&sps, stream));
    expectOutcome(defaultHevcSps(), {kDefaultLine});
}

TEST_F(QVHevcSpsWhole, nalUnitHeaderIsNotExamined) {
    for (const uint32_t header : {0x4201U, 0x0101U, 0x4209U, 0x43F9U, 0x7E07U, 0xFFFFU}) {
        SCOPED_TRACE(header);
        ASSERT_TRUE(parse(hevcSps([&](HevcSpsSyntax& s) {
            s.forbidden_zero_bit = header >> 15;
            s.nal_unit_type = header >> 9 & 0x3F;
            s.nuh_layer_id = header >> 3 & 0x3F;
            s.nuh_temporal_id_plus1 = header & 7;
        })));
        expectOutcome(defaultHevcSps(), {kDefaultLine});
    }
}

// --- Nothing to parse ---

class QVHevcSpsNothing : public HevcSpsTest {};

TEST_F(QVHevcSpsNothing, emptyStream) {
    EXPECT_FALSE(parseBytes(Bytes()));
    expectOutcome(patternHevcSps(), {});
    EXPECT_EQ(cursor(), 0U);
}

TEST_F(QVHevcSpsNothing, sizeIsWhatCounts) {
    stream = std::make_shared<QVByteStream>();
    uint8_t byte = 0x42;
    stream->ownsData = false;
    stream->data = &byte;
    stream->capacity = 1;
    EXPECT_FALSE(parseHevcSps(&sps, stream));
    expectOutcome(patternHevcSps(), {});
    EXPECT_EQ(cursor(), 0U);
}

TEST_F(QVHevcSpsNothing, nullRecord) {
    const Bytes bytes = hevcSps().bytes();
    stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
    EXPECT_FALSE(parseHevcSps(nullptr, stream));
    expectNoLines();
    EXPECT_EQ(cursor(), 0U);
    EXPECT_EQ(stream.use_count(), 1);
}

TEST_F(QVHevcSpsNothing, emptySharedPointer) {
    EXPECT_FALSE(parseHevcSps(&sps, nullptr));
    EXPECT_TRUE(sameHevcSps(sps, patternHevcSps()));
    EXPECT_FALSE(parseHevcSps(nullptr, nullptr));
    expectNoLines();
}

// --- Profile, tier, level ---

class QVHevcSpsProfile : public HevcSpsTest {};

TEST_F(QVHevcSpsProfile, everyProfileByteIsLogged) {
    for (uint32_t byte = 0; byte < 256; ++byte) {
        SCOPED_TRACE(byte);
        ASSERT_TRUE(parse(hevcSps([&](HevcSpsSyntax& s) {
            s.general.profile_space = byte >> 6;
            s.general.tier_flag = byte >> 5 & 1;
            s.general.profile_idc = byte & 0x1F;
        })));
        expectOutcome(defaultHevcSps(),
                      {hevcProfileLine(static_cast<int>(byte >> 6), static_cast<int>(byte >> 5 & 1),
                                       static_cast<int>(byte & 0x1F), 30)});
    }
}

TEST_F(QVHevcSpsProfile, everyLevelIsLogged) {
    for (uint32_t level = 0; level < 256; ++level) {
        SCOPED_TRACE(level);
        ASSERT_TRUE(parse(hevcSps([&](HevcSpsSyntax& s) { s.general_level_idc = level; })));
        expectOutcome(defaultHevcSps(), {hevcProfileLine(0, 0, 1, static_cast<int>(level))});
    }
}

TEST_F(QVHevcSpsProfile, the80BitsBetweenThemAreDropped) {
    for (unsigned bit = 0; bit < 80; ++bit) {
        SCOPED_TRACE(bit);
        ASSERT_TRUE(parse(hevcSps([&](HevcSpsSyntax& s) {
            s.general = HevcProfileSyntax();
            s.general.profile_compatibility_flags = bit < 32 ? 0x80000000U >> bit : 0;
            s.general.progressive_source_flag = bit == 32 ? 1 : 0;
            s.general.interlaced_source_flag = bit == 33 ? 1 : 0;
            s.general.non_packed_constraint_flag = bit == 34 ? 1 : 0;
            s.general.frame_only_constraint_flag = bit == 35 ? 1 : 0;
            s.general.reserved_zero_43bits = bit >= 36 && bit < 79 ? uint64_t{1} << (78 - bit) : 0;
            s.general.inbld_flag = bit == 79 ? 1 : 0;
        })));
        expectOutcome(defaultHevcSps(), {kDefaultLine});
    }
}

// --- Sub-layers ---

class QVHevcSpsSubLayers : public HevcSpsTest {
protected:
    // profileFlags and levelFlags hold one flag for each sub-layer; bit 0 is sub-layer 0.
    void expectParsed(uint32_t maxSubLayersMinus1, uint32_t profileFlags, uint32_t levelFlags) {
        const BitWriter syntax = hevcSps([&](HevcSpsSyntax& s) {
            everythingDifferent(s);
            s.sps_max_sub_layers_minus1 = maxSubLayersMinus1;
            s.general.profile_compatibility_flags = 0xFFFFFFFF;
            s.general.reserved_zero_43bits = 0x7FFFFFFFFFF;
            for (uint32_t i = 0; i < s.subLayers.size(); ++i) {
                s.subLayers[i].sub_layer_profile_present_flag = profileFlags >> i & 1;
                s.subLayers[i].sub_layer_level_present_flag = levelFlags >> i & 1;
                s.subLayers[i].profile.profile_space = 3;
                s.subLayers[i].profile.profile_compatibility_flags = 0xAAAAAAAA;
                s.subLayers[i].profile.profile_idc = i;
                s.subLayers[i].profile.reserved_zero_43bits = 0x55555555555;
                s.subLayers[i].sub_layer_level_idc = 0xAA;
            }
        });
        SCOPED_TRACE(syntax.map());
        ASSERT_TRUE(parse(syntax));
        QVHevcSps record = recordOfEverythingDifferent();
        record.sps_max_sub_layers_minus1 = static_cast<int32_t>(maxSubLayersMinus1);
        expectOutcome(record, {hevcProfileLine(1, 1, 19, 153)});
        ASSERT_EQ(withEmulationPrevention(syntax.bytes()), syntax.bytes()) << "positions would differ";
        EXPECT_EQ(cursor(), endOf(syntax, "sps_sub_layer_ordering_info_present_flag"));
    }
};

TEST_F(QVHevcSpsSubLayers, everyPatternOfUpTo4) {
    for (uint32_t count = 0; count <= 4; ++count) {
        for (uint32_t profileFlags = 0; profileFlags < 1U << count; ++profileFlags) {
            for (uint32_t levelFlags = 0; levelFlags < 1U << count; ++levelFlags) {
                expectParsed(count, profileFlags, levelFlags);
            }
        }
    }
}

TEST_F(QVHevcSpsSubLayers, mixedFlagsOf5To7) {
    for (uint32_t count = 5; count <= 7; ++count) {
        for (const uint32_t profileFlags : {0x00U, 0x7FU, 0x55U, 0x2AU, 0x01U, 0x40U, 0x13U}) {
            for (const uint32_t levelFlags : {0x00U, 0x7FU, 0x55U, 0x2AU, 0x01U, 0x40U, 0x26U}) {
                expectParsed(count, profileFlags, levelFlags);
            }
        }
    }
}

TEST_F(QVHevcSpsSubLayers, bitsSkippedForEachCount) {
    // (8 - count) * 2 reserved bits and 2 flags for each sub-layer; no bits without sub-layers.
    const size_t bits[] = {0, 16, 16, 16, 16, 16, 16, 16};
    for (uint32_t count = 0; count <= 7; ++count) {
        const BitWriter syntax = hevcSps([&](HevcSpsSyntax& s) { s.sps_max_sub_layers_minus1 = count; });
        EXPECT_EQ(startOf(syntax, "sps_seq_parameter_set_id") - endOf(syntax, "general_level_idc"),
                  bits[count]);
        ASSERT_TRUE(parse(syntax));
        QVHevcSps record = defaultHevcSps();
        record.sps_max_sub_layers_minus1 = static_cast<int32_t>(count);
        expectOutcome(record, {kDefaultLine});
    }
}

TEST_F(QVHevcSpsSubLayers, reservedBitsArePassedOver) {
    ASSERT_TRUE(parse(hevcSps([](HevcSpsSyntax& s) {
        s.sps_max_sub_layers_minus1 = 1;
        s.reserved_zero_2bits = 3;
    })));
    QVHevcSps record = defaultHevcSps();
    record.sps_max_sub_layers_minus1 = 1;
    expectOutcome(record, {kDefaultLine});
}

// By F.7.3.2.2.1, a parameter set of an extension layer with sps_ext_or_max_sub_layers_minus1 equal to 7 has
// no profile_tier_level(). The parser reads one anyway.
TEST_F(QVHevcSpsSubLayers, D30_ofAnExtensionLayer) {
    ASSERT_TRUE(parse(hevcSps([](HevcSpsSyntax& s) {
        s.nuh_layer_id = 1;
        s.sps_max_sub_layers_minus1 = 7;
    })));
    QVHevcSps record = defaultHevcSps();
    record.sps_max_sub_layers_minus1 = 7;
    expectOutcome(record, {kDefaultLine});
}

// --- References to the stream, exceptions from the log ---

class QVHevcSpsReferences : public HevcSpsTest {};

TEST_F(QVHevcSpsReferences, theStreamIsTakenByValue) {
    const Bytes bytes = hevcSps().bytes();
    auto moved = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
    const std::weak_ptr<QVByteStream> watch = moved;
    EXPECT_TRUE(parseHevcSps(&sps, std::move(moved)));
    EXPECT_TRUE(watch.expired()) << "a reference outlives the call";
}

// The caller, the parameter and the profile step hold one reference each.
TEST_F(QVHevcSpsReferences, theProfileStepHoldsOne) {
    const Bytes bytes = hevcSps().bytes();
    stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
    long references = 0;
    core().onLog = [&](const LogLine& /*line*/) { references = stream.use_count(); };
    EXPECT_TRUE(parseHevcSps(&sps, stream));
    EXPECT_EQ(references, 3);
    EXPECT_EQ(stream.use_count(), 1);
}

TEST_F(QVHevcSpsReferences, aThrowingLog) {
    core().throwFromLog = true;
    const BitWriter syntax = hevcSps([](HevcSpsSyntax& s) {
        everythingDifferent(s);
        s.general.profile_compatibility_flags = 0xFFFFFFFF;
        s.general.reserved_zero_43bits = 0x7FFFFFFFFFF;
    });
    const Bytes bytes = syntax.bytes();
    stream = std::make_shared<QVByteStream>(bytes.data(), bytes.size());
    EXPECT_THROW(parseHevcSps(&sps, stream), LogFailure);
    QVHevcSps record = patternHevcSps();
    record.sps_video_parameter_set_id = 13;
    record.sps_max_sub_layers_minus1 = 2;
    record.sps_temporal_id_nesting_flag = 1;
    expectOutcome(record, {hevcProfileLine(1, 1, 19, 153)});
    EXPECT_EQ(cursor(), endOf(syntax, "general_level_idc"));
}

}  // namespace
}  // namespace qv_test
