// Digitally signed content.
#include "bitstream/sei/SignedContent.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "PayloadChecks.h"
#include "bitstream/sei/SignedContentSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;

constexpr Codec kCodecs[] = {Codec::Avc, Codec::Hevc};

PayloadUnderTest<DigitallySignedContentInitialization> initialization(Codec codec) {
    auto structure = payloadUnderTest<DigitallySignedContentInitialization>(
        Context(codec), [](auto& s, const auto& c, auto& payload) {
            digitally_signed_content_initialization(s, c, payload);
        });
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("dsci_key_retrieval_mode_idc", {0, 1, 2});
        unit.choose("dsci_num_verification_substreams_minus1", {0, 1, 4});
    };
    structure.violable = 2;
    return structure;
}

PayloadUnderTest<DigitallySignedContentSelection> selection(Codec codec) {
    return payloadUnderTest<DigitallySignedContentSelection>(
        Context(codec),
        [](auto& s, const auto& c, auto& payload) { digitally_signed_content_selection(s, c, payload); });
}

PayloadUnderTest<DigitallySignedContentVerification> verification(Codec codec) {
    auto structure = payloadUnderTest<DigitallySignedContentVerification>(
        Context(codec),
        [](auto& s, const auto& c, auto& payload) { digitally_signed_content_verification(s, c, payload); });
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("dscv_signature_length_in_octets_minus1", {0, 1, 31, 255});
    };
    return structure;
}

TEST(SeiSignedContent, roundTrips) {
    for (const Codec codec : kCodecs) {
        checkRoundTrips(initialization(codec), unitRounds());
        checkRoundTrips(selection(codec), unitRounds());
        checkRoundTrips(verification(codec), unitRounds());
    }
}

TEST(SeiSignedContent, everyRange) {
    for (const Codec codec : kCodecs) {
        EXPECT_THAT(checkRanges(initialization(codec), unitRounds()),
                    testing::Contains("dsci_alignment_zero_bit"));
    }
}

TEST(SeiSignedContent, cutAtEveryByte) {
    for (const Codec codec : kCodecs) {
        checkCuts(initialization(codec), unitRounds(50));
        checkCuts(selection(codec), unitRounds(50));
        checkCuts(verification(codec), unitRounds(50));
    }
}

TEST(SeiSignedContent, noAllocationAndNoByteOutside) {
    for (const Codec codec : kCodecs) {
        checkMemory(initialization(codec), unitRounds(20),
                    {{"refersToSubstream",
                      [](const auto& content) { return uint64_t{refersToSubstream(content, 1, 0)}; }}});
        checkMemory(selection(codec), unitRounds(20));
        checkMemory(verification(codec), unitRounds(20));
    }
}

TEST(SeiSignedContent, initialization) {
    BitWriter bits;
    bits.u(8, "dsci_id", 1).u(8, "dsci_hash_method_type", 4).ue("dsci_key_retrieval_mode_idc", 1);
    bits.u(1, "dsci_use_key_register_idx_flag", 1).ue("dsci_key_register_idx", 2);
    bits.u(1, "dsci_content_uuid_present_flag", 1);
    for (uint32_t i = 0; i < 16; ++i) {
        bits.u(8, "dsci_content_uuid", 0xA0 + i);
    }
    bits.ue("dsci_num_verification_substreams_minus1", 2).u(1, "dsci_ref_substream_flag[ 1 ][ 0 ]", 1);
    bits.u(1, "dsci_ref_substream_flag[ 2 ][ 0 ]", 0).u(1, "dsci_ref_substream_flag[ 2 ][ 1 ]", 1);
    bits.u(1, "dsci_vss_implicit_association_mode_flag", 0).u(1, "dsci_signed_content_start_flag", 1);
    bits.u(1, "dsci_sei_signing_flag", 1).alignZero();
    bits.u(24, "dsci_key_source_uri", 0x612F00);
    const std::vector<uint8_t> unit = unitOfPayload(bits.bytes());
    for (const Codec codec : kCodecs) {
        const auto read = readPayloadOf<DigitallySignedContentInitialization>(unit, Context(codec));
        ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
        const DigitallySignedContentInitialization& content = read.record;
        EXPECT_EQ(content.dsci_hash_method_type, 4U);
        EXPECT_EQ(content.dsci_key_register_idx, 2U);
        EXPECT_EQ(content.dsci_content_uuid[15], 0xAF);
        EXPECT_TRUE(refersToSubstream(content, 1, 0));
        EXPECT_FALSE(refersToSubstream(content, 2, 0));
        EXPECT_TRUE(refersToSubstream(content, 2, 1));
        EXPECT_FALSE(refersToSubstream(content, 3, 0));
        EXPECT_FALSE(refersToSubstream(content, 2, 2));
        EXPECT_FALSE(refersToSubstream(content, 0, 0));
        EXPECT_FALSE(content.dsci_vss_implicit_association_mode_flag);
        EXPECT_TRUE(content.dsci_signed_content_start_flag);
        EXPECT_TRUE(content.dsci_sei_signing_flag);
        EXPECT_EQ(content.dsci_key_source_uri.count, 24U);
    }
}

// A record without its flags, as after a fault.
TEST(SeiSignedContent, noFlagsAfterAFault) {
    DigitallySignedContentInitialization content = {};
    content.dsci_num_verification_substreams_minus1 = 0xFFFFFFFE;
    EXPECT_FALSE(refersToSubstream(content, 0xFFFFFFFE, 0xFFFFFFFD));
}

// A signature of two bytes, then 1 and the end.
TEST(SeiSignedContent, verification) {
    const std::vector<uint8_t> unit = unitOfPayload(hex("01 02 000001 ABCD C0"));
    for (const Codec codec : kCodecs) {
        const auto read = readPayloadOf<DigitallySignedContentVerification>(unit, Context(codec));
        ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
        EXPECT_EQ(read.record.dscv_verification_substream_id, 2U);
        EXPECT_EQ(read.record.dscv_signature.count, 16U);
        EXPECT_TRUE(read.record.dscv_signed_content_end_flag);
    }
}

}  // namespace
