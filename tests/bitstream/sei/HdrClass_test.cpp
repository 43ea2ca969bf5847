// The kind of high dynamic range of a stream.
#include "bitstream/sei/HdrClass.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "AllocationFault.h"
#include "CodedUnit.h"
#include "Hex.h"
#include "bitstream/sei/SeiMessages.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;

ColourDescription colour(uint32_t primaries, uint32_t transfer, uint32_t matrix) {
    return {true, primaries, transfer, matrix};
}

HdrFacts pq() {
    HdrFacts facts;
    facts.vui = colour(9, 16, 9);
    facts.bitDepthLuma = 10;
    return facts;
}

HdrFacts hdr10() {
    HdrFacts facts = pq();
    facts.masteringDisplay.add(HdrSource::Sei);
    return facts;
}

HdrFacts with(HdrFacts facts, const std::function<void(HdrFacts&)>& change) {
    change(facts);
    return facts;
}

qv::DolbyVisionConfiguration dolbyVision(uint32_t profile, uint32_t compatibility) {
    qv::DolbyVisionConfiguration record = {};
    record.dv_profile = profile;
    record.dv_bl_signal_compatibility_id = compatibility;
    record.el_present_flag = profile == 7;
    return record;
}

struct ClassCase {
    const char* text;
    HdrFacts facts;
};

TEST(SeiHdrClass, classes) {
    const ClassCase cases[] = {
        {"unknown", HdrFacts()},
        {"unknown", with({}, [](auto& f) { f.vui = colour(2, 2, 2); })},
        {"unknown", with({}, [](auto& f) { f.masteringDisplay.add(HdrSource::Sei); })},
        {"SDR", with({}, [](auto& f) { f.vui = colour(1, 1, 1); })},
        {"SDR", with({}, [](auto& f) { f.vui = colour(9, 14, 9); })},
        {"SDR", with(hdr10(),
                     [](auto& f) {
                         f.vui.transfer_characteristics = 1;
                         f.hasHdr10Plus = true;
                     })},
        {"PQ", pq()},
        {"HDR10", hdr10()},
        {"HDR10", with(pq(), [](auto& f) { f.masteringDisplay.add(HdrSource::Container); })},
        {"HDR10", with(hdr10(),
                       [](auto& f) {
                           f.vui.colour_primaries = 2;
                           f.bitDepthLuma = 0;
                       })},
        {"HDR10", with(hdr10(), [](auto& f) { f.vui.matrix_coeffs = 14; })},
        {"HDR10", with(hdr10(), [](auto& f) { f.vui.matrix_coeffs = 10; })},
        {"PQ", with(hdr10(), [](auto& f) { f.vui.colour_primaries = 1; })},
        {"PQ", with(hdr10(), [](auto& f) { f.vui.matrix_coeffs = 1; })},
        {"PQ", with(hdr10(), [](auto& f) { f.bitDepthLuma = 8; })},
        {"HDR10, HDR10+", with(hdr10(), [](auto& f) { f.hasHdr10Plus = true; })},
        {"PQ", with(pq(), [](auto& f) { f.hasHdr10Plus = true; })},
        {"HDR10, HDR Vivid", with(hdr10(), [](auto& f) { f.hasHdrVivid = true; })},
        {"PQ, HDR Vivid", with(pq(), [](auto& f) { f.hasHdrVivid = true; })},
        // Mastering display metadata do not make HLG anything else.
        {"HLG", with(hdr10(),
                     [](auto& f) {
                         f.vui.transfer_characteristics = 18;
                         f.hasHdr10Plus = true;
                     })},
        {"HLG, HDR Vivid", with({},
                                [](auto& f) {
                                    f.vui = colour(9, 18, 9);
                                    f.hasHdrVivid = true;
                                })},
        {"HLG", with({},
                     [](auto& f) {
                         f.vui = colour(9, 14, 9);
                         f.hasPreferredTransfer = true;
                         f.preferred_transfer_characteristics = 18;
                     })},
        {"SDR", with({},
                     [](auto& f) {
                         f.vui = colour(9, 14, 9);
                         f.hasPreferredTransfer = true;
                     })},
        {"HLG", with({}, [](auto& f) { f.container = colour(9, 18, 9); })},
        {"SDR, SL-HDR", with({},
                             [](auto& f) {
                                 f.vui = colour(1, 1, 1);
                                 f.hasSlHdr = true;
                             })},
        {"unknown, Dolby Vision 5", with({}, [](auto& f) { f.dolbyVision = dolbyVision(5, 0); })},
        {"HDR10, HDR10+, Dolby Vision 8.1", with(hdr10(),
                                                 [](auto& f) {
                                                     f.hasHdr10Plus = true;
                                                     f.dolbyVision = dolbyVision(8, 1);
                                                     f.hasDolbyVisionRpu = true;
                                                 })},
        {"HDR10, Dolby Vision", with(hdr10(), [](auto& f) { f.hasDolbyVisionRpu = true; })},
        {"HDR10", with(hdr10(), [](auto& f) { f.hasDolbyVisionEnhancementLayer = true; })},
    };
    for (const ClassCase& one : cases) {
        EXPECT_EQ(textOf(hdrClassOf(one.facts)), one.text);
    }
}

TEST(SeiHdrClass, sourcesOfTheTransferCharacteristics) {
    HdrFacts facts = pq();
    HdrClass hdr = hdrClassOf(facts);
    EXPECT_EQ(textOf(hdr.transferSource), "VUI");
    EXPECT_EQ(hdr.transfer_characteristics, 16U);
    EXPECT_FALSE(hdr.isTransferDisputed);

    facts.container = colour(9, 18, 9);
    hdr = hdrClassOf(facts);
    EXPECT_EQ(textOf(hdr.transferSource), "container");
    EXPECT_EQ(hdr.transfer_characteristics, 18U);
    EXPECT_TRUE(hdr.isTransferDisputed);

    facts.container.transfer_characteristics = 2;
    hdr = hdrClassOf(facts);
    EXPECT_EQ(textOf(hdr.transferSource), "VUI");
    EXPECT_FALSE(hdr.isTransferDisputed);

    facts.hasPreferredTransfer = true;
    facts.preferred_transfer_characteristics = 18;
    hdr = hdrClassOf(facts);
    EXPECT_EQ(textOf(hdr.transferSource), "SEI");
    EXPECT_EQ(hdr.transfer_characteristics, 18U);

    EXPECT_EQ(textOf(hdrClassOf(HdrFacts()).transferSource), "");
}

TEST(SeiHdrClass, whatHdr10Lacks) {
    HdrFacts facts;
    facts.vui = colour(1, 16, 1);
    facts.bitDepthLuma = 8;
    EXPECT_EQ(
        textOf(hdrClassOf(facts).lacks),
        "BT.2020 colour primaries; BT.2020 matrix coefficients; 10 bits; mastering display colour volume");
    EXPECT_EQ(textOf(hdrClassOf(hdr10()).lacks), "");
}

TEST(SeiHdrClass, dolbyVisionAndItsSources) {
    HdrFacts facts;
    facts.dolbyVision = dolbyVision(7, 6);
    HdrClass hdr = hdrClassOf(facts);
    EXPECT_EQ(textOf(hdr.dolbyVisionSource), "Dolby Vision configuration record");
    EXPECT_EQ(hdr.dolbyVisionProfile, "7");
    EXPECT_TRUE(hdr.hasDolbyVisionEnhancement);
    facts.dolbyVision = dolbyVision(8, 1);
    facts.hasDolbyVisionRpu = true;
    hdr = hdrClassOf(facts);
    EXPECT_EQ(textOf(hdr.dolbyVisionSource), "Dolby Vision configuration record; NAL units");
    EXPECT_FALSE(hdr.hasDolbyVisionEnhancement);
    facts.hasDolbyVisionEnhancementLayer = true;
    EXPECT_TRUE(hdrClassOf(facts).hasDolbyVisionEnhancement);
}

// --- Facts from messages and units ---

HdrFacts factsOf(const std::string& messages, Codec codec) {
    std::vector<uint8_t> rbsp = hex(messages);
    rbsp.push_back(0x80);
    const std::vector<uint8_t> unit = coded(codec == Codec::Avc ? hex("06") : hex("4E 01"), rbsp);
    HdrFacts facts;
    const Context context(codec);
    const AllocationFault allocations(Allocator::New, 0);
    for (const qv::SeiMessage& message : qv::SeiMessages(bytesOf(unit), codec)) {
        facts.take(message, context);
    }
    EXPECT_EQ(allocations.seen(), 0);
    return facts;
}

constexpr const char* kMasteringDisplay = "89 18 33C2 86C4 1D4C 0BB8 84D0 3E80 3D13 4042 00989680 00000032 ";

TEST(SeiHdrClass, factsFromMessagesOfBothCodecs) {
    for (const Codec codec : {Codec::Avc, Codec::Hevc}) {
        const HdrFacts all = factsOf(std::string(kMasteringDisplay) +
                                         "90 04 03E8 0190  93 01 12  04 05 B5 003C 0001  04 05 26 0004 0005  "
                                         "04 04 B5 003A 00  04 08 B5 0031 47413934 09",
                                     codec);
        EXPECT_EQ(textOf(all.masteringDisplay), "SEI");
        EXPECT_EQ(textOf(all.contentLightLevel), "SEI");
        EXPECT_TRUE(all.hasPreferredTransfer);
        EXPECT_EQ(all.preferred_transfer_characteristics, 18U);
        EXPECT_TRUE(all.hasHdr10Plus);
        EXPECT_TRUE(all.hasHdrVivid);
        EXPECT_TRUE(all.hasSlHdr);
        EXPECT_TRUE(all.hasSt2094App10);

        // Payloads that are too short, another owner, another type.
        const HdrFacts none =
            factsOf("89 02 33C2  90 03 03E8 01  93 00  04 08 B5 0031 47413934 03  05 01 00", codec);
        EXPECT_FALSE(none.masteringDisplay);
        EXPECT_FALSE(none.contentLightLevel);
        EXPECT_FALSE(none.hasPreferredTransfer);
        EXPECT_FALSE(none.hasHdr10Plus || none.hasHdrVivid || none.hasSlHdr || none.hasSt2094App10);
    }
}

TEST(SeiHdrClass, aMessageThatIsCutIsNoFact) {
    for (const char* const unit : {"4E 01 89 18 33C2 86C4 1D4C", "4E 01 90 FF"}) {
        HdrFacts facts;
        const std::vector<uint8_t> bytes = hex(unit);
        for (const qv::SeiMessage& message : qv::SeiMessages(bytesOf(bytes), Codec::Hevc)) {
            facts.take(message, Context(Codec::Hevc));
        }
        EXPECT_FALSE(facts.masteringDisplay) << unit;
        EXPECT_FALSE(facts.contentLightLevel) << unit;
    }
}

TEST(SeiHdrClass, dolbyVisionUnits) {
    for (const char* const unit : {"7C 01 19 08", "7C 01 19 08 09 08 5A 80", "7C 02 19 0B"}) {
        EXPECT_TRUE(isDolbyVisionRpu(bytesOf(hex(unit)))) << unit;
    }
    // Another type, prefix, rpu_type or layer; no temporal sub-layer; cut.
    for (const char* const unit :
         {"7E 01 19 08 09", "7C 01 18 08 09", "7C 01 19 0C 09", "7C 09 19 08 09", "7D 01 19 08 09",
          "FC 01 19 08 09", "7C 00 19 08 09", "7C 01 19", "7C", ""}) {
        EXPECT_FALSE(isDolbyVisionRpu(bytesOf(hex(unit)))) << unit;
    }
    EXPECT_TRUE(isDolbyVisionEnhancementLayer(bytesOf(hex("7E 01 42 01 01"))));
    for (const char* const unit : {"7C 01 42 01 01", "7E 01 7E 01", "7E 01 C2 01", "7E 01 42", "7E 01"}) {
        EXPECT_FALSE(isDolbyVisionEnhancementLayer(bytesOf(hex(unit)))) << unit;
    }
}

TEST(SeiHdrClass, factsFromUnits) {
    const std::vector<uint8_t> rpu = hex("7C 01 19 08 09 08");
    const std::vector<uint8_t> layer = hex("7E 01 42 01 01");
    const std::vector<uint8_t> other = hex("42 01 01");
    HdrFacts facts;
    facts.take(bytesOf(rpu), Codec::Avc);
    facts.take(bytesOf(other), Codec::Hevc);
    EXPECT_FALSE(facts.hasDolbyVisionRpu || facts.hasDolbyVisionEnhancementLayer);
    facts.take(bytesOf(rpu), Codec::Hevc);
    facts.take(bytesOf(layer), Codec::Hevc);
    facts.take(bytesOf(other), Codec::Hevc);
    EXPECT_TRUE(facts.hasDolbyVisionRpu && facts.hasDolbyVisionEnhancementLayer);
}

}  // namespace
