// The parameter sets that SEI messages refer to.
#include "bitstream/sei/SeiContext.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "BitWriter.h"
#include "Hex.h"
#include "SeiStreams.h"
#include "SeiUnits.h"
#include "bitstream/units/NalUnits.h"

namespace {

using namespace qv_test;
using qv::Codec;
using qv::SeiMessage;
using qv::SeiMessages;
using qv::sei::Context;

template <class Sets>
void takeSets(Sets& sets, Codec codec, const std::vector<uint8_t>& stream) {
    for (const qv::NalUnit& unit : qv::NalUnits(bytesOf(stream), qv::Framing::StartCodes, codec)) {
        EXPECT_NE(sets.take(unit.bytes).event, qv::SetEvent::Broken);
    }
}

// A payload that begins with the identifier of an SPS.
std::vector<uint8_t> bufferingPeriod(uint32_t id) {
    BitWriter bits;
    return bits.ue("seq_parameter_set_id", id).trailingBits().bytes();
}

std::vector<uint8_t> activeParameterSets(uint32_t id) {
    BitWriter bits;
    bits.u(4, "active_video_parameter_set_id", 0).bits("self-contained, no update", "11");
    bits.ue("num_sps_ids_minus1", 0).ue("active_seq_parameter_set_id[0]", id);
    return bits.trailingBits().bytes();
}

class SeiContext : public testing::Test {
protected:
    SeiContext()
        : avc(std::make_unique<qv::avc::ParameterSets>()), hevc(std::make_unique<qv::hevc::ParameterSets>()) {
        for (const uint32_t id : {0U, 1U, 2U}) {
            takeSets(*avc, Codec::Avc, avcSetsForSei(id));
            takeSets(*hevc, Codec::Hevc, hevcSetsForSei(id));
        }
    }

    // The SPS after the messages of a unit.
    uint32_t avcSpsAfter(const std::vector<uint8_t>& unit) const {
        Context context(*avc);
        for (const SeiMessage& message : SeiMessages(bytesOf(unit), Codec::Avc)) {
            context.take(message);
        }
        return context.avcSps->seq_parameter_set_id;
    }

    uint32_t hevcSpsAfter(const std::vector<uint8_t>& unit) const {
        Context context(*hevc);
        for (const SeiMessage& message : SeiMessages(bytesOf(unit), Codec::Hevc)) {
            context.take(message);
        }
        return context.hevcSps->sps_seq_parameter_set_id;
    }

    std::unique_ptr<qv::avc::ParameterSets> avc;
    std::unique_ptr<qv::hevc::ParameterSets> hevc;
};

TEST_F(SeiContext, beginsWithTheSetsOfTheNextPicture) {
    const Context none(Codec::Hevc);
    EXPECT_EQ(none.codec, Codec::Hevc);
    EXPECT_EQ(none.avcSets, nullptr);
    EXPECT_EQ(none.hevcSets, nullptr);
    const Context avcContext(*avc);
    EXPECT_EQ(avcContext.codec, Codec::Avc);
    EXPECT_EQ(avcContext.avcSets, avc.get());
    EXPECT_EQ(avcContext.avcSps, &avc->sps(2)->data);
    EXPECT_EQ(avcContext.hevcSps, nullptr);
    const Context hevcContext(*hevc);
    EXPECT_EQ(hevcContext.codec, Codec::Hevc);
    EXPECT_EQ(hevcContext.hevcSets, hevc.get());
    EXPECT_EQ(hevcContext.hevcSps, hevc->sps(2));
    EXPECT_EQ(hevcContext.avcSps, nullptr);
    const auto empty = std::make_unique<qv::avc::ParameterSets>();
    EXPECT_EQ(Context(*empty).avcSps, nullptr);
}

TEST_F(SeiContext, aBufferingPeriodNamesTheSps) {
    EXPECT_EQ(avcSpsAfter(seiUnitOf(Codec::Avc, 0, bufferingPeriod(1))), 1U);
    EXPECT_EQ(hevcSpsAfter(seiUnitOf(Codec::Hevc, 0, bufferingPeriod(1))), 1U);
    // The last one counts.
    std::vector<uint8_t> messages;
    appendSeiMessage(messages, 0, bufferingPeriod(1));
    appendSeiMessage(messages, 5, {});
    appendSeiMessage(messages, 0, bufferingPeriod(0));
    EXPECT_EQ(avcSpsAfter(seiUnitOf(Codec::Avc, messages)), 0U);
    EXPECT_EQ(hevcSpsAfter(seiUnitOf(Codec::Hevc, messages)), 0U);
}

TEST_F(SeiContext, activeParameterSetsNameTheSps) {
    EXPECT_EQ(hevcSpsAfter(seiUnitOf(Codec::Hevc, 129, activeParameterSets(1))), 1U);
    // The type is reserved in H.264.
    EXPECT_EQ(avcSpsAfter(seiUnitOf(Codec::Avc, 129, activeParameterSets(1))), 2U);
}

TEST_F(SeiContext, messagesThatNameNothing) {
    const std::vector<std::vector<uint8_t>> payloads = {
        {},                  // no byte
        {0x00},              // the identifier is cut
        bufferingPeriod(7),  // there is no such SPS
        bufferingPeriod(0xFFFFFFFE),
    };
    for (const std::vector<uint8_t>& payload : payloads) {
        EXPECT_EQ(avcSpsAfter(seiUnitOf(Codec::Avc, 0, payload)), 2U) << hexOf(bytesOf(payload));
        EXPECT_EQ(hevcSpsAfter(seiUnitOf(Codec::Hevc, 0, payload)), 2U) << hexOf(bytesOf(payload));
    }
    EXPECT_EQ(hevcSpsAfter(seiUnitOf(Codec::Hevc, 129, {0x0E})), 2U);
    EXPECT_EQ(hevcSpsAfter(seiUnitOf(Codec::Hevc, 129, activeParameterSets(7))), 2U);
    EXPECT_EQ(avcSpsAfter(seiUnitOf(Codec::Avc, 1, bufferingPeriod(1))), 2U);
    EXPECT_EQ(hevcSpsAfter(seiUnitOf(Codec::Hevc, 1, bufferingPeriod(1))), 2U);
    EXPECT_EQ(avcSpsAfter({0x06}), 2U);
}

TEST_F(SeiContext, aNestedMessageNamesNothing) {
    const std::vector<uint8_t> unit = seiUnitOf(Codec::Hevc, 0, bufferingPeriod(1));
    SeiMessage message = *SeiMessages(bytesOf(unit), Codec::Hevc).begin();
    message.isNested = true;
    Context context(*hevc);
    context.take(message);
    EXPECT_EQ(context.hevcSps, hevc->sps(2));
}

TEST_F(SeiContext, withoutSetsNothingIsNamed) {
    for (const Codec codec : {Codec::Avc, Codec::Hevc}) {
        const std::vector<uint8_t> unit = seiUnitOf(codec, 0, bufferingPeriod(1));
        Context context(codec);
        context.take(*SeiMessages(bytesOf(unit), codec).begin());
        EXPECT_EQ(context.avcSps, nullptr);
        EXPECT_EQ(context.hevcSps, nullptr);
    }
}

// --- Across units ---

TEST_F(SeiContext, anSpsIsAnnouncedForTheUnitsAfter) {
    EXPECT_EQ(avc->take(bytesOf(seiUnitOf(Codec::Avc, 0, bufferingPeriod(1)))).nal_unit_type, 6U);
    EXPECT_EQ(avc->ofNextPicture(), avc->sps(1));
    EXPECT_EQ(Context(*avc).avcSps, &avc->sps(1)->data);
    avc->take(bytesOf(seiUnitOf(Codec::Avc, 1, bufferingPeriod(0))));
    EXPECT_EQ(avc->ofNextPicture(), avc->sps(1));
    avc->take(bytesOf(seiUnitOf(Codec::Avc, 0, bufferingPeriod(7))));
    EXPECT_EQ(avc->ofNextPicture(), avc->sps(1));

    hevc->take(bytesOf(seiUnitOf(Codec::Hevc, 129, activeParameterSets(1))));
    EXPECT_EQ(hevc->ofNextPicture(), hevc->sps(1));
    hevc->take(bytesOf(seiUnitOf(Codec::Hevc, 0, bufferingPeriod(0))));
    EXPECT_EQ(hevc->ofNextPicture(), hevc->sps(0));
    hevc->take(bytesOf(seiUnitOf(Codec::Hevc, 132, bufferingPeriod(1))));
    EXPECT_EQ(hevc->ofNextPicture(), hevc->sps(0));
    // A unit of another layer is about another SPS.
    std::vector<uint8_t> ofLayer1 = seiUnitOf(Codec::Hevc, 0, bufferingPeriod(1));
    ofLayer1[1] = 0x09;
    hevc->take(bytesOf(ofLayer1));
    EXPECT_EQ(hevc->ofNextPicture(), hevc->sps(0));
}

}  // namespace
