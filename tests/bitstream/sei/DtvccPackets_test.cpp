// DTVCC packets and their service blocks.
#include "bitstream/sei/DtvccPackets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CaptionConstructs.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using testing::ElementsAre;
using testing::IsEmpty;

// The packets that constructs complete, as text.
std::vector<std::string> packetsOf(DtvccPackets& packets, const std::string& text) {
    std::vector<std::string> found;
    for (const CcConstruct& construct : constructsOf(text)) {
        if (packets.take(construct)) {
            found.push_back(hexOf({packets.packet().bytes, packets.packet().size}));
        }
    }
    return found;
}

// 82 = 10 000010: sequence_number 2, packet_size_code 2, 4 bytes.
TEST(DtvccPackets, sizeEndsAPacket) {
    DtvccPackets packets;
    EXPECT_THAT(packetsOf(packets, "ff8221 fe4100"), ElementsAre("82 21 41 00"));
    EXPECT_EQ(packets.packet().sequenceNumber(), 2U);
    EXPECT_EQ(packets.packet().announcedSize(), 4U);
    EXPECT_EQ(packets.packet().data().size, 3U);
}

TEST(DtvccPackets, otherConstructsBetween) {
    DtvccPackets packets;
    EXPECT_THAT(packetsOf(packets, "ff8221 fc9425 fd8080 fa0000 fb0000 f84141 fe4100"),
                ElementsAre("82 21 41 00"));
    EXPECT_EQ(packets.incomplete() + packets.orphans(), 0U);
}

TEST(DtvccPackets, ofOneConstruct) {
    DtvccPackets packets;
    EXPECT_THAT(packetsOf(packets, "ff0100 ff4100"), ElementsAre("01 00", "41 00"));
}

// packet_size_code 0: 128 bytes.
TEST(DtvccPackets, ofMostBytes) {
    DtvccPackets packets;
    std::string text = "ffc000";
    for (int i = 0; i < 62; ++i) {
        text += "fe0102";
    }
    EXPECT_THAT(packetsOf(packets, text), IsEmpty());
    EXPECT_EQ(packetsOf(packets, "fe0304").size(), 1U);
    EXPECT_EQ(packets.packet().size, 128U);
    EXPECT_THAT(packetsOf(packets, "fe0506"), IsEmpty());
    EXPECT_EQ(packets.orphans(), 1U);
}

TEST(DtvccPackets, anotherOneBegins) {
    DtvccPackets packets;
    EXPECT_THAT(packetsOf(packets, "fe0102 ff8221 ff4200 fe4100"), ElementsAre("42 00 41 00"));
    EXPECT_EQ(packets.orphans(), 1U);
    EXPECT_EQ(packets.incomplete(), 1U);
}

DtvccPacket packetOf(const std::string& text) {
    DtvccPacket packet = {};
    for (const uint8_t byte : hex(text)) {
        packet.bytes[packet.size++] = byte;
    }
    return packet;
}

std::vector<std::string> blocksOf(const std::string& text) {
    const DtvccPacket packet = packetOf(text);
    std::vector<std::string> blocks;
    for (const ServiceBlock& block : ServiceBlocks(packet)) {
        blocks.push_back(std::to_string(block.service) + "/" + std::to_string(block.block_size) + ": " +
                         hexOf(block.data) + (block.isCut ? " cut" : ""));
    }
    return blocks;
}

// 22 = 001 00010: service 1, 2 bytes; 41 = 010 00001: service 2, 1 byte; 00: null block.
TEST(ServiceBlocks, services) {
    EXPECT_THAT(blocksOf("84 22 4142 41 43 00 22 00"), ElementsAre("1/2: 41 42", "2/1: 43"));
}

// e1 = 111 00001: extended, 1 byte; 08: extended_service_number 8; ff: 63 with null bits that are 1.
TEST(ServiceBlocks, extendedServices) {
    EXPECT_THAT(blocksOf("84 e1 08 41 e2 ff 4243"), ElementsAre("8/1: 41", "63/2: 42 43"));
    EXPECT_THAT(blocksOf("82 e1 06 41"), ElementsAre("0/1: 41"));
}

// Service 7 with block_size 0 has no extended_service_number.
TEST(ServiceBlocks, nullBlocks) {
    EXPECT_THAT(blocksOf("82 00 22 41"), IsEmpty());
    EXPECT_THAT(blocksOf("82 20 21 41"), IsEmpty());
    EXPECT_THAT(blocksOf("82 e0 21 41"), IsEmpty());
    EXPECT_THAT(blocksOf("82 03 21 41"), IsEmpty());
}

TEST(ServiceBlocks, cut) {
    EXPECT_THAT(blocksOf("82 21 41 22"), ElementsAre("1/1: 41", "1/2:  cut"));
    EXPECT_THAT(blocksOf("82 23 41 42"), ElementsAre("1/3: 41 42 cut"));
    EXPECT_THAT(blocksOf("82 21 41 e1"), ElementsAre("1/1: 41", "0/1:  cut"));
    EXPECT_THAT(blocksOf("82"), IsEmpty());
    EXPECT_THAT(blocksOf(""), IsEmpty());
}

}  // namespace
