// Checksums of decoded pictures.
#include "bitstream/sei/PictureHash.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "PayloadBits.h"
#include "PayloadChecks.h"
#include "SetsOfMessages.h"
#include "bitstream/sei/PictureHashSyntax.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using testing::ElementsAre;

Context contextWith(const qv::hevc::Sps& sps) {
    Context context(Codec::Hevc);
    context.hevcSps = &sps;
    return context;
}

class SeiPictureHash : public testing::Test {
protected:
    SeiPictureHash() { monochrome_->chroma_format_idc = 0; }

    PayloadUnderTest<DecodedPictureHash> hash(const Context& context) const {
        auto structure = payloadUnderTest<DecodedPictureHash>(
            context, [](auto& s, const auto& c, auto& payload) { decoded_picture_hash(s, c, payload); });
        structure.violable = 1;
        structure.steer = [](RandomUnit& unit, Random&) { unit.choose("hash_type", {0, 1, 2}); };
        return structure;
    }

private:
    std::unique_ptr<qv::hevc::Sps> sps_ = plainHevcSps(0);
    std::unique_ptr<qv::hevc::Sps> monochrome_ = plainHevcSps(1);

protected:
    const Context colour = contextWith(*sps_);
    const Context luma = contextWith(*monochrome_);
};

TEST_F(SeiPictureHash, roundTrips) {
    checkRoundTrips(hash(colour), unitRounds());
    checkRoundTrips(hash(luma), unitRounds());
}

TEST_F(SeiPictureHash, everyRange) {
    EXPECT_THAT(checkRanges(hash(colour), unitRounds()), testing::IsSupersetOf({"hash_type"}));
}

TEST_F(SeiPictureHash, cutAtEveryByte) {
    checkCuts(hash(colour), unitRounds(50));
    checkCuts(hash(luma), unitRounds(50));
}

TEST_F(SeiPictureHash, noAllocationAndNoByteOutside) {
    const Derivation<DecodedPictureHash> bytes = {"hashOf",
                                                  [](const DecodedPictureHash& payload) -> uint64_t {
                                                      const HashBytes of0 = hashOf(payload, 0);
                                                      return of0.size + of0.bytes[0];
                                                  }};
    checkMemory(hash(colour), unitRounds(25), {bytes});
}

TEST_F(SeiPictureHash, withoutTheSps) {
    EXPECT_THAT(faultOf<DecodedPictureHash>(Context(Codec::Hevc), "00000000"),
                testing::StartsWith("sps_seq_parameter_set_id in decoded_picture_hash"));
    expectNotWritten<DecodedPictureHash>(Codec::Hevc, 0x01);
}

// One component of 16 bytes, the digest of no data (RFC 1321 A.5).
TEST_F(SeiPictureHash, md5) {
    std::vector<uint8_t> unit = hex("00 D41D8CD98F00B204E9800998ECF8427E 80");
    const auto message = messageOf<DecodedPictureHash>(bytesOf(unit), Codec::Hevc);
    const auto read = readPayload<DecodedPictureHash>(message, luma);
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.components, 1U);
    const HashBytes bytes = hashOf(read.record, 0);
    ASSERT_EQ(bytes.size, 16U);
    EXPECT_EQ(hexOf({bytes.bytes, bytes.size}), "D4 1D 8C D9 8F 00 B2 04 E9 80 09 98 EC F8 42 7E");
    EXPECT_EQ(hashOf(read.record, 1).size, 0U);
}

TEST_F(SeiPictureHash, crcAndChecksum) {
    // hash_type 1; three times u(16)
    const auto crc =
        payloadOf<DecodedPictureHash>(colour, "00000001 0001001000110100 0000000000000001 1111111111111110");
    EXPECT_EQ(crc->components, 3U);
    EXPECT_THAT(crc->picture_crc, ElementsAre(0x1234, 1, 0xFFFE));
    const HashBytes cb = hashOf(*crc, 0);
    EXPECT_EQ(hexOf({cb.bytes, cb.size}), "12 34");
    // hash_type 2; three times u(32)
    const auto checksum =
        payloadOf<DecodedPictureHash>(colour,
                                      "00000010 00000001000000100000001100000100"
                                      "00000000000000000000000000000101 10000000000000000000000000000000");
    EXPECT_THAT(checksum->picture_checksum, ElementsAre(0x01020304, 5, 0x80000000));
    const HashBytes luma0 = hashOf(*checksum, 0);
    EXPECT_EQ(hexOf({luma0.bytes, luma0.size}), "01 02 03 04");
    const HashBytes cr = hashOf(*checksum, 2);
    EXPECT_EQ(hexOf({cr.bytes, cr.size}), "80 00 00 00");
    EXPECT_EQ(hashOf(*checksum, 3).size, 0U);
}

TEST_F(SeiPictureHash, noBytesOfAReservedType) {
    DecodedPictureHash hash = {};
    hash.hash_type = 3;
    hash.components = 9;
    EXPECT_EQ(hashOf(hash, 0).size, 0U);
    EXPECT_EQ(hashOf(hash, 4).size, 0U);
}

}  // namespace
