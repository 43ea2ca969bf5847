// What SEI messages a stream has, and what they begin with.
#include "bitstream/sei/SeiManifest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "PayloadChecks.h"
#include "bitstream/sei/SeiManifestSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;

constexpr Codec kCodecs[] = {Codec::Avc, Codec::Hevc};

PayloadUnderTest<SeiManifest> manifest(Codec codec) {
    auto structure = payloadUnderTest<SeiManifest>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { sei_manifest(s, c, payload); });
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("manifest_num_sei_msg_types", {0, 1, 5, 90});
    };
    return structure;
}

PayloadUnderTest<SeiPrefixIndication> indication(Codec codec) {
    auto structure = payloadUnderTest<SeiPrefixIndication>(
        Context(codec), [](auto& s, const auto& c, auto& payload) { sei_prefix_indication(s, c, payload); });
    structure.steer = [](RandomUnit& unit, Random&) {
        unit.choose("num_bits_in_prefix_indication_minus1", {0, 6, 7, 8, 40});
    };
    structure.violable = 4;
    return structure;
}

TEST(SeiManifest, roundTrips) {
    for (const Codec codec : kCodecs) {
        checkRoundTrips(manifest(codec), unitRounds());
        checkRoundTrips(indication(codec), unitRounds());
    }
}

TEST(SeiManifest, everyRange) {
    for (const Codec codec : kCodecs) {
        EXPECT_THAT(checkRanges(indication(codec), unitRounds()),
                    testing::Contains("byte_alignment_bit_equal_to_one"));
    }
}

TEST(SeiManifest, cutAtEveryByte) {
    for (const Codec codec : kCodecs) {
        checkCuts(manifest(codec), unitRounds(50));
        checkCuts(indication(codec), unitRounds(50));
    }
}

TEST(SeiManifest, noAllocationAndNoByteOutside) {
    for (const Codec codec : kCodecs) {
        checkMemory(manifest(codec), unitRounds(20),
                    {{"manifestEntriesOf", [](const auto& all) {
                          return sumOf(manifestEntriesOf(all),
                                       [](const auto& entry) { return entry.manifest_sei_payload_type; });
                      }}});
        checkMemory(indication(codec), unitRounds(20),
                    {{"prefixIndicationsOf", [](const auto& all) {
                          return sumOf(prefixIndicationsOf(all),
                                       [](const auto& entry) { return entry.sei_prefix_data_bit.count; });
                      }}});
    }
}

// Mastering display colour volume (137) is there and necessary, user data (5) there and unnecessary.
TEST(SeiManifest, typesOfAStream) {
    const std::vector<uint8_t> unit = unitOfPayload(hex("0002 0089 01 0005 02"));
    for (const Codec codec : kCodecs) {
        const auto read = readPayloadOf<SeiManifest>(unit, Context(codec));
        ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
        const std::vector<SeiManifestEntry> entries = entriesOf(manifestEntriesOf(read.record));
        ASSERT_EQ(entries.size(), 2U);
        EXPECT_EQ(entries[0].manifest_sei_payload_type, 137U);
        EXPECT_EQ(entries[0].manifest_sei_description, 1U);
        EXPECT_EQ(entries[1].manifest_sei_payload_type, 5U);
        EXPECT_EQ(entries[1].manifest_sei_description, 2U);
    }
}

// User data of country B5, 8 bits, and with the provider up to its 12th bit; four bits that are 1 follow.
TEST(SeiManifest, prefixesOfUserData) {
    const std::vector<uint8_t> unit = unitOfPayload(hex("0004 01 0007 B5 000B B50F"));
    for (const Codec codec : kCodecs) {
        const auto read = readPayloadOf<SeiPrefixIndication>(unit, Context(codec));
        ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
        EXPECT_EQ(read.record.prefix_sei_payload_type, 4U);
        const std::vector<PrefixIndication> prefixes = entriesOf(prefixIndicationsOf(read.record));
        ASSERT_EQ(prefixes.size(), 2U);
        EXPECT_EQ(prefixes[0].sei_prefix_data_bit.count, 8U);
        EXPECT_EQ(prefixes[1].sei_prefix_data_bit.count, 12U);
        qv::Reader reader(prefixes[1].sei_prefix_data_bit);
        uint32_t bits = 0;
        reader.u(12, "sei_prefix_data_bit", bits);
        EXPECT_EQ(bits, 0xB50U);
        EXPECT_FALSE(reader.more_rbsp_data());
    }
}

}  // namespace
