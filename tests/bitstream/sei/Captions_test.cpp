// The caption constructs of a picture.
#include "bitstream/sei/Captions.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CaptionConstructs.h"
#include "bitstream/units/NalUnits.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;

// An SEI unit of H.264 with one message of type 4.
std::vector<uint8_t> unitOf(const std::string& payload) {
    const std::vector<uint8_t> bytes = hex(payload);
    std::vector<uint8_t> unit = {6, 4, static_cast<uint8_t>(bytes.size())};
    unit.insert(unit.end(), bytes.begin(), bytes.end());
    unit.push_back(0x80);
    return unit;
}

bool addUnit(CaptionedPicture& picture, const std::string& payload) {
    const std::vector<uint8_t> unit = unitOf(payload);
    return picture.add(*qv::SeiMessages(bytesOf(unit), Codec::Avc).begin(), Context(Codec::Avc));
}

TEST(SeiCaptions, constructsOfMessages) {
    CaptionedPicture picture;
    EXPECT_TRUE(addUnit(picture, "b50031 47413934 03 c2 ff fc9425 fd8080 ff"));
    EXPECT_TRUE(addUnit(picture, "b5002f 03 06 c1 ff ff0201 ff"));
    ASSERT_EQ(picture.count, 3U);
    EXPECT_EQ(picture.constructs[0].cc_data_1, 0x94);
    EXPECT_EQ(picture.constructs[2].type(), CcType::DtvccStart);
    EXPECT_EQ(picture.dropped, 0U);
}

TEST(SeiCaptions, otherMessagesHaveNone) {
    CaptionedPicture picture;
    EXPECT_FALSE(addUnit(picture, "b50031 47413934 06 cf c03c c294"));
    EXPECT_FALSE(addUnit(picture, "b50031 44544731 41 f8"));
    EXPECT_EQ(picture.count, 0U);
}

TEST(SeiCaptions, notToBeProcessed) {
    CaptionedPicture picture;
    EXPECT_TRUE(addUnit(picture, "b50031 47413934 03 82 ff fc9425 fd8080 ff"));
    EXPECT_EQ(picture.count, 0U);
}

TEST(SeiCaptions, withoutConstructs) {
    CaptionedPicture picture;
    EXPECT_TRUE(addUnit(picture, "b50031 47413934 03 c0 ff ff"));
    EXPECT_EQ(picture.count, 0U);
}

TEST(SeiCaptions, constructsBeforeAFault) {
    CaptionedPicture picture;
    EXPECT_TRUE(addUnit(picture, "b50031 47413934 03 c3 ff fc9425 fd8080 fa"));
    EXPECT_EQ(picture.count, 2U);
    CaptionedPicture withoutMarker;
    EXPECT_TRUE(addUnit(withoutMarker, "b50031 47413934 03 c2 ff fc9425 fd8080"));
    EXPECT_EQ(withoutMarker.count, 2U);
    CaptionedPicture cutBeforeThem;
    EXPECT_TRUE(addUnit(cutBeforeThem, "b50031 47413934 03"));
    EXPECT_TRUE(addUnit(cutBeforeThem, "b50031 47413934 03 c3"));
    EXPECT_EQ(cutBeforeThem.count, 0U);
}

// A record that no reader made.
TEST(SeiCaptions, moreThanCcDataHolds) {
    CcData data = {};
    data.process_cc_data_flag = true;
    data.cc_count = 255;
    EXPECT_FALSE(hasMarkerBits(data));
    CaptionedPicture picture;
    picture.add(data);
    EXPECT_EQ(picture.count, CcData::kMostConstructs);
    EXPECT_EQ(picture.dropped, 0U);
    data.marker_bits = 255;
    for (CcConstruct& construct : data.constructs) {
        construct.marker_bits = 31;
    }
    EXPECT_TRUE(hasMarkerBits(data));
}

TEST(SeiCaptions, moreThanAPictureKeeps) {
    CcData data = {};
    data.process_cc_data_flag = true;
    data.cc_count = CcData::kMostConstructs;
    CaptionedPicture picture;
    for (int i = 0; i < 3; ++i) {
        picture.add(data);
    }
    data.cc_count = 30;
    picture.add(data);
    EXPECT_EQ(picture.count, 123U);
    EXPECT_EQ(picture.dropped, 0U);
    picture.add(data);
    EXPECT_EQ(picture.count, CaptionedPicture::kMostConstructs);
    EXPECT_EQ(picture.dropped, 29U);
    EXPECT_EQ(picture.end() - picture.begin(), 124);
}

}  // namespace
