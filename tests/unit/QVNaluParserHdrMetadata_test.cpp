// HDR10 static metadata from a mastering display item, and the call of the host's HDR Vivid parser.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <memory>
#include <type_traits>

#include "AllocationFault.h"
#include "HevcSeiRecords.h"
#include "HevcSeiSyntax.h"
#include "QVNaluParser.h"

namespace qv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

static_assert(std::is_trivially_copyable<QVHDR10StaticMetadata>::value);
static_assert(std::is_trivially_default_constructible<QVHDR10StaticMetadata>::value);
static_assert(std::is_same<decltype(QVHDR10StaticMetadata::display_primaries_x), uint16_t[3]>::value);
static_assert(std::is_same<decltype(QVHDR10StaticMetadata::display_primaries_y), uint16_t[3]>::value);
static_assert(std::is_same<decltype(QVHDR10StaticMetadata::white_point_x), uint16_t>::value);
static_assert(std::is_same<decltype(QVHDR10StaticMetadata::white_point_y), uint16_t>::value);

// An item with an exact-size copy of the payload.
class ItemOver {
public:
    explicit ItemOver(const Bytes& payload, QVCodecID codec = QVCodecIDHevc, uint32_t payloadType = 137)
        : copy_(new uint8_t[payload.size()]),
          item_{codec, payloadType, static_cast<uint32_t>(payload.size()), false, copy_.get()} {
        std::copy(payload.begin(), payload.end(), copy_.get());
    }

    QVSeiItem& item() { return item_; }

private:
    std::unique_ptr<uint8_t[]> copy_;
    QVSeiItem item_;
};

QVHDR10StaticMetadata metadataOf(const HevcMasteringDisplaySyntax& syntax) {
    QVHDR10StaticMetadata metadata{};
    for (size_t c = 0; c < 3; ++c) {
        metadata.display_primaries_x[c] = static_cast<uint16_t>(syntax.display_primaries_x[c]);
        metadata.display_primaries_y[c] = static_cast<uint16_t>(syntax.display_primaries_y[c]);
    }
    metadata.white_point_x = static_cast<uint16_t>(syntax.white_point_x);
    metadata.white_point_y = static_cast<uint16_t>(syntax.white_point_y);
    metadata.max_display_mastering_luminance = syntax.max_display_mastering_luminance;
    metadata.min_display_mastering_luminance = syntax.min_display_mastering_luminance;
    return metadata;
}

// --- HDR10 static metadata ---

class Hdr10StaticMetadata : public CoreTest {
protected:
    static int fill(const QVSeiItem& item, QVHDR10StaticMetadata* metadata) {
        return QVNaluParser::fillHDR10StaticMetadataFromHevcMasteringDisplayInfoSei(item, metadata);
    }

    static void expectFilled(const Bytes& payload, const QVHDR10StaticMetadata& expected) {
        ItemOver kept(payload);
        const Bytes itemBefore = bytesOf(kept.item());
        QVHDR10StaticMetadata metadata = patternRecord<QVHDR10StaticMetadata>();
        EXPECT_EQ(fill(kept.item(), &metadata), 0);
        EXPECT_EQ(fieldsOf(metadata), fieldsOf(expected));
        EXPECT_EQ(bytesOf(kept.item()), itemBefore);
        EXPECT_EQ(Bytes(kept.item().payloadData, kept.item().payloadData + payload.size()), payload);
    }

    static void expectRefused(const QVSeiItem& item) {
        QVHDR10StaticMetadata metadata = patternRecord<QVHDR10StaticMetadata>();
        EXPECT_EQ(fill(item, &metadata), 11000012);
        EXPECT_EQ(fieldsOf(metadata), fieldsOf(patternRecord<QVHDR10StaticMetadata>()));
    }

    void TearDown() override {
        expectNoLines();
        EXPECT_EQ(core().playerAllocations, 0);
        CoreTest::TearDown();
    }
};

const Bytes kGolden = {0x33, 0xC2, 0x86, 0xC4, 0x1D, 0x4C, 0x0B, 0xB8, 0x84, 0xD0, 0x3E, 0x80,
                       0x3D, 0x13, 0x40, 0x42, 0x00, 0x98, 0x96, 0x80, 0x00, 0x00, 0x00, 0x32};

TEST_F(Hdr10StaticMetadata, golden) {
    ItemOver kept(kGolden);
    QVHDR10StaticMetadata metadata = patternRecord<QVHDR10StaticMetadata>();
    ASSERT_EQ(fill(kept.item(), &metadata), 0);
    EXPECT_THAT(metadata.display_primaries_x, ElementsAre(13250, 7500, 34000));
    EXPECT_THAT(metadata.display_primaries_y, ElementsAre(34500, 3000, 16000));
    EXPECT_EQ(metadata.white_point_x, 15635);
    EXPECT_EQ(metadata.white_point_y, 16450);
    EXPECT_EQ(metadata.max_display_mastering_luminance, 10000000U);
    EXPECT_EQ(metadata.min_display_mastering_luminance, 50U);
}

// The HDR10 record stores all x before all y and a 16-bit white point. The parsed SEI record stores pairs and
// a 32-bit white point. The values of one payload are the same in both.
TEST_F(Hdr10StaticMetadata, liesOtherwiseThanTheParsedRecord) {
    ItemOver kept(kGolden);
    QVHDR10StaticMetadata metadata = patternRecord<QVHDR10StaticMetadata>();
    ASSERT_EQ(fill(kept.item(), &metadata), 0);
    const uint16_t primariesAndWhitePoint[8] = {13250, 7500, 34000, 34500, 3000, 16000, 15635, 16450};
    EXPECT_EQ(std::memcmp(&metadata, primariesAndWhitePoint, sizeof primariesAndWhitePoint), 0);

    QVHevcSeiMasteringDisplay parsed = patternRecord<QVHevcSeiMasteringDisplay>();
    PayloadStream stream(kGolden);
    ASSERT_EQ(QVNaluParser::parserHevcMasteringDisplayInfo(stream, 24, &parsed), 0);
    const uint16_t pairs[6] = {13250, 34500, 7500, 3000, 34000, 16000};
    EXPECT_EQ(std::memcmp(&parsed.display_primaries_x, pairs, sizeof pairs), 0);
    Fields fields = fieldsOf(parsed);
    fields.erase(fields.begin());  // isValid
    EXPECT_EQ(fields, fieldsOf(metadata));
}

TEST_F(Hdr10StaticMetadata, payloadsOfEveryLength) {
    const HevcMasteringDisplaySyntax syntax;
    const Bytes long25 = hevcSei(syntax).u(8, "following", 0xEE).bytes();
    for (size_t size = 1; size <= 25; ++size) {
        SCOPED_TRACE(size);
        expectFilled(Bytes(long25.begin(), long25.begin() + static_cast<std::ptrdiff_t>(size)),
                     metadataOf(cutAt(syntax, size * 8)));
    }
}

TEST_F(Hdr10StaticMetadata, halfAPayloadHoldsThePrimaries) {
    QVHDR10StaticMetadata primaries = metadataOf(HevcMasteringDisplaySyntax());
    primaries.white_point_x = primaries.white_point_y = 0;
    primaries.max_display_mastering_luminance = primaries.min_display_mastering_luminance = 0;
    expectFilled(Bytes(kGolden.begin(), kGolden.begin() + 12), primaries);
}

TEST_F(Hdr10StaticMetadata, cutAtEveryBit) {
    const HevcMasteringDisplaySyntax ones = {
        {{0xFFFF, 0xFFFF, 0xFFFF}}, {{0xFFFF, 0xFFFF, 0xFFFF}}, 0xFFFF, 0xFFFF, 0xFFFFFFFF, 0xFFFFFFFF};
    for (const HevcMasteringDisplaySyntax& syntax : {HevcMasteringDisplaySyntax(), ones}) {
        for (size_t bits = 1; bits <= 192; ++bits) {
            SCOPED_TRACE(bits);
            expectFilled(hevcSei(syntax).bytesCutAt(bits), metadataOf(cutAt(syntax, bits)));
        }
    }
}

TEST_F(Hdr10StaticMetadata, noValueIsChecked) {
    HevcMasteringDisplaySyntax syntax;
    syntax.display_primaries_x = {{50001, 65535, 0}};
    syntax.max_display_mastering_luminance = 1;
    syntax.min_display_mastering_luminance = 0xFFFFFFFF;
    expectFilled(hevcSei(syntax).bytes(), metadataOf(syntax));
}

// An item's payload has no emulation prevention bytes, so 00 00 03 is data.
TEST_F(Hdr10StaticMetadata, emulationPreventionIsNotLookedFor) {
    HevcMasteringDisplaySyntax syntax;
    syntax.display_primaries_x[0] = 0x0000;
    syntax.display_primaries_y[0] = 0x0302;
    syntax.white_point_x = 0x0000;
    syntax.white_point_y = 0x0303;
    expectFilled(hevcSei(syntax).bytes(), metadataOf(syntax));
}

TEST_F(Hdr10StaticMetadata, onlyPayloadSizeBytesAreRead) {
    ItemOver kept(kGolden);
    kept.item().payloadSize = 4;
    QVHDR10StaticMetadata metadata = patternRecord<QVHDR10StaticMetadata>();
    EXPECT_EQ(fill(kept.item(), &metadata), 0);
    EXPECT_EQ(fieldsOf(metadata), fieldsOf(metadataOf(cutAt(HevcMasteringDisplaySyntax(), 32))));
}

TEST_F(Hdr10StaticMetadata, requestedItemsAreTheSame) {
    ItemOver kept(kGolden);
    kept.item().isRequested = true;
    QVHDR10StaticMetadata metadata = patternRecord<QVHDR10StaticMetadata>();
    EXPECT_EQ(fill(kept.item(), &metadata), 0);
    EXPECT_EQ(fieldsOf(metadata), fieldsOf(metadataOf(HevcMasteringDisplaySyntax())));
}

TEST_F(Hdr10StaticMetadata, nullMetadataIsRefusedWhateverTheItem) {
    ItemOver kept(kGolden);
    EXPECT_EQ(fill(kept.item(), nullptr), 11000012);
    EXPECT_EQ(fill(QVSeiItem{}, nullptr), 11000012);
    EXPECT_EQ(fill(ItemOver(kGolden, QVCodecIDAvc).item(), nullptr), 11000012);
}

TEST_F(Hdr10StaticMetadata, unusableItems) {
    ItemOver noData(kGolden);
    noData.item().payloadData = nullptr;
    expectRefused(noData.item());
    ItemOver noSize(kGolden);
    noSize.item().payloadSize = 0;
    expectRefused(noSize.item());
    for (const uint32_t codec : {0U, 26U, 171U, 173U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(codec);
        expectRefused(ItemOver(kGolden, static_cast<QVCodecID>(codec)).item());
    }
    for (const uint32_t type : {0U, 4U, 136U, 138U, 144U, 137U + 256U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(type);
        expectRefused(ItemOver(kGolden, QVCodecIDHevc, type).item());
    }
    expectRefused(QVSeiItem{});
}

TEST_F(Hdr10StaticMetadata, withoutACopyTheRecordIsAllZeros) {
    ItemOver kept(kGolden);
    QVHDR10StaticMetadata metadata = patternRecord<QVHDR10StaticMetadata>();
    {
        const AllocationFault fault(Allocator::Malloc, 1);
        EXPECT_EQ(fill(kept.item(), &metadata), 0);
        EXPECT_TRUE(fault.triggered());
    }
    EXPECT_EQ(fieldsOf(metadata), fieldsOf(QVHDR10StaticMetadata{}));
}

TEST_F(Hdr10StaticMetadata, refusedItemsAreNotCopied) {
    ItemOver avc(kGolden, QVCodecIDAvc);
    QVHDR10StaticMetadata metadata = patternRecord<QVHDR10StaticMetadata>();
    const AllocationFault counter(Allocator::Malloc, 0);
    EXPECT_EQ(fill(avc.item(), &metadata), 11000012);
    EXPECT_EQ(counter.seen(), 0);
}

// --- HDR Vivid ---

class HdrVividHandOff : public CoreTest {
protected:
    static int handOff(const QVSeiItem& item, QVHDRVividDynamicMetadata* metadata) {
        return QVNaluParser::fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(item, metadata);
    }

    // Only the host knows the record's layout, so the test uses just an address.
    QVHDRVividDynamicMetadata* metadata() { return reinterpret_cast<QVHDRVividDynamicMetadata*>(&storage_); }

private:
    std::max_align_t storage_{};
};

TEST_F(HdrVividHandOff, bothArgumentsPassAsTheyAre) {
    ItemOver vivid(Bytes{0x26, 0x00, 0x04, 0x00, 0x05, 0x01}, QVCodecIDHevc, 4);
    const Bytes before = bytesOf(vivid.item());
    EXPECT_EQ(handOff(vivid.item(), metadata()), 0);
    EXPECT_THAT(core().vividCalls, ElementsAre(Pair(&vivid.item(), metadata())));
    EXPECT_EQ(bytesOf(vivid.item()), before);
    EXPECT_EQ(core().playerAllocations, 0);
    expectNoLines();
}

TEST_F(HdrVividHandOff, theStatusIsTheHosts) {
    ItemOver vivid(Bytes{0x26}, QVCodecIDHevc, 4);
    for (const int status : {0, 1, -1, 5, 11000001, 11000012, INT_MAX, INT_MIN}) {
        core().vividStatus = status;
        EXPECT_EQ(handOff(vivid.item(), metadata()), status);
    }
    EXPECT_EQ(core().vividCalls.size(), 8U);
    expectNoLines();
}

TEST_F(HdrVividHandOff, noItemAndNoRecordIsRefusedHere) {
    core().vividStatus = 17;
    ItemOver masteringDisplay(kGolden);
    ItemOver avc(kGolden, QVCodecIDAvc, 4);
    const QVSeiItem nothing{};
    const std::vector<std::pair<const QVSeiItem*, QVHDRVividDynamicMetadata*>> calls = {
        {&masteringDisplay.item(), metadata()},
        {&avc.item(), metadata()},
        {&nothing, metadata()},
        {&avc.item(), nullptr},
        {&nothing, nullptr},
    };
    for (const auto& [item, record] : calls) {
        EXPECT_EQ(handOff(*item, record), 17);
    }
    EXPECT_EQ(core().vividCalls, calls);
    expectNoLines();
}

}  // namespace
}  // namespace qv_test
