// The caption services that a stream holds.
#include "bitstream/sei/CaptionServices.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "AllocationFault.h"
#include "CaptionConstructs.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using testing::ElementsAre;
using testing::IsEmpty;

CaptionServices servicesOf(const std::string& constructs) {
    CaptionServiceFinder finder;
    finder.take(pictureWith(constructs));
    return finder.services();
}

std::vector<std::string> channelsOf(const std::string& constructs) {
    const CaptionServices services = servicesOf(constructs);
    std::vector<std::string> names;
    for (uint8_t channel = 0; channel < 8; ++channel) {
        if (services.has(static_cast<CaptionChannel>(channel))) {
            names.emplace_back(nameOf(static_cast<CaptionChannel>(channel)));
        }
    }
    return names;
}

std::vector<uint32_t> servicesIn(const CaptionServices& services) {
    std::vector<uint32_t> found;
    for (uint32_t service = 0; service < 70; ++service) {
        if (services.hasService(service)) {
            found.push_back(service);
        }
    }
    return found;
}

TEST(CaptionServices, namesOfChannels) {
    EXPECT_STREQ(nameOf(CaptionChannel::CC1), "CC1");
    EXPECT_STREQ(nameOf(CaptionChannel::T4), "T4");
    EXPECT_STREQ(nameOf(static_cast<CaptionChannel>(8)), "");
}

TEST(CaptionServices, withoutConstructsThereAreNoCaptions) {
    EXPECT_FALSE(servicesOf("").hasCaptions());
    const CaptionServices services = servicesOf("f89425 f99520 fa0000 fb8221");
    EXPECT_FALSE(services.hasCaptions());
    EXPECT_EQ(services.constructs, 4U);
    EXPECT_EQ(services.channels, 0U);
}

TEST(CaptionServices, anyValidConstructMakesCaptions) {
    EXPECT_TRUE(servicesOf("fc8080").has(CcType::Field1));
    EXPECT_TRUE(servicesOf("fd8080").has(CcType::Field2));
    EXPECT_TRUE(servicesOf("fe0000").has(CcType::DtvccData));
    EXPECT_TRUE(servicesOf("ff0100").has(CcType::DtvccStart));
    for (const char* const construct : {"fc8080", "fd8080", "fe0000", "ff0100"}) {
        EXPECT_TRUE(servicesOf(construct).hasCaptions()) << construct;
    }
}

// With parity: 94 20 RCL, 94 25 RU2, 94 26 RU3, 94 a7 RU4, 94 29 RDC, 94 2f EOC. Channel 2: 1c.
TEST(CaptionServices, captionsOfField1) {
    for (const char* const code : {"fc9420", "fc9425", "fc9426", "fc94a7", "fc9429", "fc942f"}) {
        EXPECT_THAT(channelsOf(code), ElementsAre("CC1")) << code;
    }
    EXPECT_THAT(channelsOf("fc1c20"), ElementsAre("CC2"));
}

// 15 and 9d in field 2; 94 and 1c are accepted.
TEST(CaptionServices, captionsOfField2) {
    EXPECT_THAT(channelsOf("fd1520"), ElementsAre("CC3"));
    EXPECT_THAT(channelsOf("fd9d20"), ElementsAre("CC4"));
    EXPECT_THAT(channelsOf("fd9420"), ElementsAre("CC3"));
    EXPECT_THAT(channelsOf("fd1c20"), ElementsAre("CC4"));
}

// 94 2a TR, 94 ab RTD.
TEST(CaptionServices, text) {
    EXPECT_THAT(channelsOf("fc942a"), ElementsAre("T1"));
    EXPECT_THAT(channelsOf("fc1cab"), ElementsAre("T2"));
    EXPECT_THAT(channelsOf("fd152a"), ElementsAre("T3"));
    EXPECT_THAT(channelsOf("fd9dab"), ElementsAre("T4"));
}

// 94 2c EDM, 94 ae ENM, 94 ad CR, 13 70 PAC, 91 ae mid-row, 97 a1 tab offset, c8 c1 characters, 80 80
// padding.
TEST(CaptionServices, otherCodesDoNotTellTheChannel) {
    EXPECT_THAT(channelsOf("fc942c fc94ae fc94ad fc1370 fc91ae fc97a1 fcc8c1 fc8080"), IsEmpty());
}

TEST(CaptionServices, pairsOfEvenParityAreDamaged) {
    const CaptionServices services = servicesOf("fc1420 fc94a0 fd9420 fd1500");
    EXPECT_EQ(services.parityFaults[0], 2U);
    EXPECT_EQ(services.parityFaults[1], 1U);
    EXPECT_EQ(services.channels, 4U);
}

TEST(CaptionServices, paddingIsNoPair) {
    const CaptionServices services = servicesOf("fc8080 fcc8c1 fd8080 fd0000 fdc180");
    EXPECT_EQ(services.pairs[0], 1U);
    EXPECT_EQ(services.pairs[1], 1U);
    EXPECT_EQ(services.valid[0], 2U);
    EXPECT_EQ(services.valid[1], 3U);
}

// 01 83: class "current", start; 8f 1d: end.
TEST(CaptionServices, xdsIsInField2) {
    EXPECT_TRUE(servicesOf("fd0183").hasXds);
    EXPECT_TRUE(servicesOf("fd0e83").hasXds);
    EXPECT_FALSE(servicesOf("fc0183").hasXds);
    EXPECT_FALSE(servicesOf("fd8f1c").hasXds);
    EXPECT_FALSE(servicesOf("fd9d20").hasXds);
    EXPECT_FALSE(servicesOf("fd8080").hasXds);
}

// Packets of 4 bytes; 21 = 001 00001: service 1, 1 byte; e1 09: extended service 9.
TEST(CaptionServices, services) {
    const CaptionServices services = servicesOf("ff0221 fe4100 ff4241 fe4100 ff82e1 fe0941");
    EXPECT_THAT(servicesIn(services), ElementsAre(1, 2, 9));
    EXPECT_EQ(services.packets, 3U);
    EXPECT_EQ(services.sequenceJumps, 0U);
    EXPECT_EQ(services.blockFaults, 0U);
    EXPECT_EQ(services.channels, 0U);
}

TEST(CaptionServices, packetsGoOnInTheNextPicture) {
    CaptionServiceFinder finder;
    finder.take(pictureWith("fc8080 ff0221 fa0000"));
    EXPECT_THAT(servicesIn(finder.services()), IsEmpty());
    finder.take(pictureWith("fc8080 fe4100"));
    EXPECT_THAT(servicesIn(finder.services()), ElementsAre(1));
    EXPECT_EQ(finder.services().constructs, 5U);
}

TEST(CaptionServices, nullBlocksAreNoService) {
    const CaptionServices services = servicesOf("ff0100 ff4200 fe2141");
    EXPECT_THAT(servicesIn(services), IsEmpty());
    EXPECT_EQ(services.packets, 2U);
    EXPECT_TRUE(services.hasCaptions());
}

TEST(CaptionServices, sequence) {
    EXPECT_EQ(servicesOf("ffc100 ff0100 ff4100 ff8100").sequenceJumps, 0U);
    EXPECT_EQ(servicesOf("ff0100 ff8100 ff8100").sequenceJumps, 2U);
}

TEST(CaptionServices, damagedPackets) {
    const CaptionServices incomplete = servicesOf("ff0221 ff0221 fe4100 fe4100");
    EXPECT_EQ(incomplete.incompletePackets, 1U);
    EXPECT_EQ(incomplete.orphans, 1U);
    EXPECT_EQ(incomplete.packets, 1U);
    const CaptionServices cut = servicesOf("ff0223 fe4141");
    EXPECT_EQ(cut.blockFaults, 1U);
    EXPECT_THAT(servicesIn(cut), ElementsAre(1));
    const CaptionServices wrongNumber = servicesOf("ff02e1 fe0141");
    EXPECT_EQ(wrongNumber.blockFaults, 1U);
    EXPECT_THAT(servicesIn(wrongNumber), IsEmpty());
}

TEST(CaptionServices, noAllocation) {
    const CaptionedPicture picture = pictureWith("fc9420 fd9d20 ff0221 fe4100");
    const AllocationFault allocations(Allocator::New, 0);
    CaptionServiceFinder finder;
    finder.take(picture);
    EXPECT_EQ(allocations.seen(), 0);
    EXPECT_TRUE(finder.services().hasService(1));
}

}  // namespace
