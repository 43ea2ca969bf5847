// Objects in a picture.
#include "bitstream/sei/AnnotatedRegions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "PayloadChecks.h"
#include "bitstream/sei/AnnotatedRegionsSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using qv::FaultKind;

constexpr Codec kCodecs[] = {Codec::Avc, Codec::Hevc};

PayloadUnderTest<AnnotatedRegions> regions(Codec codec) {
    auto structure = payloadUnderTest<AnnotatedRegions>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { annotated_regions(s, c, payload); });
    structure.steer = [](RandomUnit& unit, Random& random) {
        unit.choose("ar_cancel_flag", {random() % 8 == 0});
    };
    structure.violable = 10;
    return structure;
}

TEST(SeiAnnotatedRegions, roundTrips) {
    for (const Codec codec : kCodecs) {
        checkRoundTrips(regions(codec), unitRounds());
    }
}

TEST(SeiAnnotatedRegions, everyRange) {
    for (const Codec codec : kCodecs) {
        EXPECT_THAT(checkRanges(regions(codec), unitRounds()),
                    testing::IsSupersetOf({"ar_bit_equal_to_zero", "ar_num_label_updates", "ar_label_idx",
                                           "ar_num_object_updates", "ar_object_idx", "ar_object_label_idx"}));
    }
}

TEST(SeiAnnotatedRegions, cutAtEveryByte) {
    for (const Codec codec : kCodecs) {
        checkCuts(regions(codec), unitRounds(50));
    }
}

TEST(SeiAnnotatedRegions, noAllocationAndNoByteOutside) {
    for (const Codec codec : kCodecs) {
        checkMemory(
            regions(codec), unitRounds(20),
            {{"labelUpdatesOf",
              [](const auto& all) {
                  return sumOf(labelUpdatesOf(all), [](const auto& label) { return label.ar_label.count; });
              }},
             {"objectUpdatesOf", [](const auto& all) {
                  return sumOf(objectUpdatesOf(all),
                               [](const auto& object) { return uint64_t{object.ar_bounding_box_width}; });
              }}});
    }
}

void putText(BitWriter& bits, const std::string& text) {
    bits.alignZero();
    for (const char c : text) {
        bits.u(8, "text", static_cast<uint8_t>(c));
    }
    bits.u(8, "text", 0);
}

std::string textOfBits(const qv::CodedBits& coded) {
    qv::Reader reader(coded);
    std::string text;
    while (reader.more_rbsp_data()) {
        uint32_t byte = 0;
        reader.u(8, "text", byte);
        text += static_cast<char>(byte);
    }
    return text;
}

// The head of a message with labels, with partial objects and with a confidence of 7 bits.
BitWriter headWithLabels(bool hasLanguage) {
    BitWriter bits;
    bits.u(1, "ar_cancel_flag", 0).u(1, "ar_not_optimized_for_viewing_flag", 0);
    bits.u(1, "ar_true_motion_flag", 1).u(1, "ar_occluded_object_flag", 0);
    bits.u(1, "ar_partial_object_flag_present_flag", 1).u(1, "ar_object_label_present_flag", 1);
    bits.u(1, "ar_object_confidence_info_present_flag", 1).u(4, "ar_object_confidence_length_minus1", 6);
    bits.u(1, "ar_object_label_language_present_flag", hasLanguage ? 1 : 0);
    return bits;
}

TEST(SeiAnnotatedRegions, labelsAndObjects) {
    BitWriter bits = headWithLabels(true);
    putText(bits, "en");
    bits.ue("ar_num_label_updates", 2).ue("ar_label_idx[ 0 ]", 3).u(1, "ar_label_cancel_flag", 0);
    putText(bits, "cat");
    bits.ue("ar_label_idx[ 1 ]", 4).u(1, "ar_label_cancel_flag", 1);
    bits.ue("ar_num_object_updates", 3);
    bits.ue("ar_object_idx[ 0 ]", 1).u(1, "ar_object_cancel_flag", 1);
    bits.ue("ar_object_idx[ 1 ]", 2).u(1, "ar_object_cancel_flag", 0);
    bits.u(1, "ar_object_label_update_flag", 1).ue("ar_object_label_idx[ 2 ]", 3);
    bits.u(1, "ar_bounding_box_update_flag", 1).u(1, "ar_bounding_box_cancel_flag", 0);
    bits.u(16, "ar_bounding_box_top[ 2 ]", 10).u(16, "ar_bounding_box_left[ 2 ]", 20);
    bits.u(16, "ar_bounding_box_width[ 2 ]", 640).u(16, "ar_bounding_box_height[ 2 ]", 360);
    bits.u(1, "ar_partial_object_flag[ 2 ]", 1).u(7, "ar_object_confidence[ 2 ]", 100);
    bits.ue("ar_object_idx[ 2 ]", 5).u(1, "ar_object_cancel_flag", 0);
    bits.u(1, "ar_object_label_update_flag", 0).u(1, "ar_bounding_box_update_flag", 1);
    bits.u(1, "ar_bounding_box_cancel_flag", 1);
    if (bits.bitCount() % 8 != 0) {
        bits.trailingBits();
    }
    const std::vector<uint8_t> unit = unitOfPayload(bits.bytes());
    for (const Codec codec : kCodecs) {
        const auto read = readPayloadOf<AnnotatedRegions>(unit, Context(codec));
        ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
        EXPECT_TRUE(read.record.ar_true_motion_flag);
        EXPECT_EQ(textOfBits(read.record.ar_object_label_language), std::string("en\0", 3));
        const std::vector<LabelUpdate> labels = entriesOf(labelUpdatesOf(read.record));
        ASSERT_EQ(labels.size(), 2U);
        EXPECT_EQ(labels[0].ar_label_idx, 3U);
        EXPECT_EQ(textOfBits(labels[0].ar_label), std::string("cat\0", 4));
        EXPECT_TRUE(labels[1].ar_label_cancel_flag);
        const std::vector<ObjectUpdate> objects = entriesOf(objectUpdatesOf(read.record));
        ASSERT_EQ(objects.size(), 3U);
        EXPECT_TRUE(objects[0].ar_object_cancel_flag);
        EXPECT_EQ(objects[1].ar_object_idx, 2U);
        EXPECT_EQ(objects[1].ar_object_label_idx, 3U);
        EXPECT_EQ(objects[1].ar_bounding_box_top, 10U);
        EXPECT_EQ(objects[1].ar_bounding_box_height, 360U);
        EXPECT_TRUE(objects[1].ar_partial_object_flag);
        EXPECT_EQ(objects[1].ar_object_confidence, 100U);
        EXPECT_TRUE(objects[2].ar_bounding_box_cancel_flag);
    }
}

// The byte after 255 must be the zero byte.
TEST(SeiAnnotatedRegions, longestLabel) {
    for (const size_t size : {255U, 256U}) {
        BitWriter bits = headWithLabels(false);
        bits.ue("ar_num_label_updates", 1).ue("ar_label_idx[ 0 ]", 0).u(1, "ar_label_cancel_flag", 0);
        putText(bits, std::string(size, 'a'));
        bits.ue("ar_num_object_updates", 0).trailingBits();
        const std::vector<uint8_t> unit = unitOfPayload(bits.bytes());
        const auto read = readPayloadOf<AnnotatedRegions>(unit, Context(Codec::Hevc));
        if (size == 255) {
            EXPECT_TRUE(read.ok()) << qv::textOf(read.fault);
            continue;
        }
        EXPECT_EQ(read.fault.kind, FaultKind::OutOfRange);
        EXPECT_EQ(qv::textOf(read.fault.element), "ar_label[0][255]");
    }
}

}  // namespace
