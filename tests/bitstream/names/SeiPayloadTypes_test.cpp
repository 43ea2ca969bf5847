// Names of the SEI payload types of both codecs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iterator>
#include <set>
#include <string>

#include "bitstream/names/AvcSeiPayloadTypes.h"
#include "bitstream/names/HevcSeiPayloadTypes.h"

namespace {

using testing::StrEq;

template <size_t kCount>
void expectOrdered(const qv::Name (&table)[kCount]) {
    std::set<std::string> names;
    for (size_t i = 0; i < kCount; ++i) {
        EXPECT_TRUE(i == 0 || table[i - 1].number < table[i].number) << table[i].number;
        EXPECT_TRUE(names.insert(table[i].name).second) << table[i].name;
    }
}

TEST(SeiPayloadTypes, inOrderAndEachOnce) {
    expectOrdered(qv::avc::kSeiPayloadTypeNames);
    expectOrdered(qv::hevc::kSeiPayloadTypeNames);
}

// H.264 D.1.1 has 75 of them, H.265 D.2.1 has 70; the last three of each came with later editions.
TEST(SeiPayloadTypes, everyTypeOfBothStandards) {
    EXPECT_EQ(std::size(qv::avc::kSeiPayloadTypeNames), 75U);
    EXPECT_EQ(std::size(qv::hevc::kSeiPayloadTypeNames), 70U);
}

TEST(SeiPayloadTypes, reserved) {
    for (const uint32_t type : {55U, 57U, 127U, 153U, 169U, 182U, 199U, 255U, 4294967295U}) {
        SCOPED_TRACE(type);
        EXPECT_THAT(qv::avc::seiPayloadTypeName(type).name, StrEq("reserved"));
        EXPECT_THAT(qv::avc::seiPayloadTypeName(type).clause, StrEq("D.1.1"));
        EXPECT_EQ(qv::avc::seiPayloadTypeName(type).number, type);
        EXPECT_THAT(qv::hevc::seiPayloadTypeName(type).name, StrEq("reserved"));
        EXPECT_THAT(qv::hevc::seiPayloadTypeName(type).clause, StrEq("D.2.1"));
    }
}

// One number, another message, or no message, in the other standard.
TEST(SeiPayloadTypes, theStandardsDiffer) {
    const struct {
        uint32_t type;
        const char* avc;
        const char* hevc;
    } kRows[] = {
        {1, "pic_timing", "pic_timing"},
        {8, "spare_pic", "reserved"},
        {15, "full_frame_snapshot", "picture_snapshot"},
        {24, "scalability_info", "reserved"},
        {45, "frame_packing_arrangement", "frame_packing_arrangement"},
        {56, "green_metadata", "green_metadata"},
        {129, "reserved", "active_parameter_sets"},
        {132, "reserved", "decoded_picture_hash"},
        {137, "mastering_display_colour_volume", "mastering_display_colour_volume"},
        {168, "reserved", "frame_field_info"},
        {178, "reserved", "multiview_scene_info"},
        {205, "shutter_interval_info", "shutter_interval_info"},
    };
    for (const auto& row : kRows) {
        EXPECT_THAT(qv::avc::seiPayloadTypeName(row.type).name, StrEq(row.avc)) << row.type;
        EXPECT_THAT(qv::hevc::seiPayloadTypeName(row.type).name, StrEq(row.hevc)) << row.type;
    }
    EXPECT_THAT(qv::avc::seiPayloadTypeName(144).clause, StrEq("D.1.31"));
    EXPECT_THAT(qv::hevc::seiPayloadTypeName(144).clause, StrEq("D.2.35"));
}

}  // namespace
