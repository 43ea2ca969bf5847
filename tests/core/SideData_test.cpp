// The side-data buffer: writing, reading back, and rejecting invalid buffers.
#include "QVSideData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <ostream>
#include <string>
#include <vector>

#include "QVCoreStandalone.h"
#include "QVNaluParser.h"

namespace {

struct Allocations {
    int count = 0;
    size_t lastSize = 0;
    bool areRefused = false;
};

Allocations allocations;

}  // namespace

// Replaces the stand-alone core's qvMalloc, to record the requested sizes and to make allocations fail.
extern "C" void* qvMalloc(size_t size) {
    ++allocations.count;
    allocations.lastSize = size;
    return allocations.areRefused ? nullptr : std::malloc(size);
}

namespace {

using Bytes = std::vector<unsigned char>;

// --- Items as values ---

struct Item {
    uint32_t codecId;
    uint32_t payloadType;
    bool isRequested;
    bool hasPayload;
    Bytes payload;
};

bool operator==(const Item& a, const Item& b) {
    return a.codecId == b.codecId && a.payloadType == b.payloadType && a.isRequested == b.isRequested &&
           a.hasPayload == b.hasPayload && a.payload == b.payload;
}

std::ostream& operator<<(std::ostream& out, const Item& item) {
    return out << "codec " << item.codecId << ", type " << item.payloadType
               << (item.isRequested ? ", requested" : "") << (item.hasPayload ? ", " : ", no payload, ")
               << ::testing::PrintToString(item.payload);
}

Item avc(uint32_t payloadType, bool isRequested, const Bytes& payload) {
    return {26, payloadType, isRequested, true, payload};
}

Item hevc(uint32_t payloadType, bool isRequested, const Bytes& payload) {
    return {172, payloadType, isRequested, true, payload};
}

const Item kEmptyItem = {0, 0, false, false, {}};

Item valueOf(const QVSeiItem& item) {
    const bool hasPayload = item.payloadData != nullptr;
    return {item.codecId, item.payloadType, item.isRequested, hasPayload,
            hasPayload ? Bytes(item.payloadData, item.payloadData + item.payloadSize) : Bytes()};
}

std::vector<Item> valuesOf(const std::vector<QVSeiItem>& items) {
    std::vector<Item> values;
    for (const QVSeiItem& item : items) {
        values.push_back(valueOf(item));
    }
    return values;
}

// Converts the items to records whose payload pointers point at the items' bytes.
std::vector<QVSeiItem> recordsOf(std::vector<Item>& values) {
    static unsigned char nothing;
    std::vector<QVSeiItem> records;
    for (Item& value : values) {
        unsigned char* const bytes = value.payload.empty() ? &nothing : value.payload.data();
        records.push_back({static_cast<QVCodecID>(value.codecId), value.payloadType,
                           static_cast<uint32_t>(value.payload.size()), value.isRequested,
                           value.hasPayload ? bytes : nullptr});
    }
    return records;
}

// --- Writing and reading ---

// Returns the bytes that createSideDataFromQVSeiInfo makes from the items, or no bytes if it fails.
Bytes serialisedRecords(const std::vector<QVSeiItem>& records) {
    QVSeiInfo* info = createQVSeiInfo(static_cast<uint32_t>(records.size()));
    EXPECT_NE(info, nullptr);
    for (size_t i = 0; i < records.size(); ++i) {
        info->items[i] = records[i];
    }
    int size = -1;
    unsigned char* buffer = createSideDataFromQVSeiInfo(info, &size);
    freepQVSeiInfo(&info);
    EXPECT_EQ(buffer == nullptr, size == 0);
    const Bytes bytes = buffer != nullptr ? Bytes(buffer, buffer + size) : Bytes();
    freepQVSideData(&buffer);
    EXPECT_EQ(buffer, nullptr);
    return bytes;
}

Bytes serialised(std::vector<Item> values) {
    return serialisedRecords(recordsOf(values));
}

struct Reading {
    QVSideDataStatus status;
    bool isUntouched;  // the list was not changed
    std::vector<Item> items;
};

// Reads an exact-size copy of the buffer into a list that is not empty.
Reading reading(const Bytes& buffer) {
    unsigned char stale = 0x77;
    std::vector<QVSeiItem> items = {{QVCodecIDAvc, 99, 1, true, &stale}};
    Bytes copy(buffer.begin(), buffer.end());
    Reading result = {};
    result.status = qvReadSideData(copy.data(), static_cast<int>(copy.size()), &items);
    result.items = valuesOf(items);
    result.isUntouched = result.items == std::vector<Item>{avc(99, true, {0x77})};
    return result;
}

void expectRead(const Bytes& buffer, const std::vector<Item>& expected) {
    const Reading read = reading(buffer);
    EXPECT_EQ(read.status, QVSideDataOk);
    EXPECT_EQ(read.items, expected);
}

void expectRefused(const Bytes& buffer, QVSideDataStatus status) {
    const Reading read = reading(buffer);
    EXPECT_EQ(read.status, status);
    EXPECT_TRUE(read.isUntouched);
}

// --- Damaging ---

// CRC-32 of IEEE 802.3, one bit at a time.
uint32_t crc32(const Bytes& bytes, size_t size) {
    uint32_t crc = 0xFFFFFFFF;
    for (size_t i = 0; i < size; ++i) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            const bool isOdd = ((crc ^ uint32_t{bytes[i]} >> bit) & 1U) != 0;
            crc = crc >> 1 ^ (isOdd ? 0xEDB88320U : 0U);
        }
    }
    return ~crc;
}

void put32(Bytes& bytes, size_t at, uint32_t value) {
    for (size_t i = 0; i < 4; ++i) {
        bytes[at + i] = static_cast<unsigned char>(value >> (24 - 8 * i));
    }
}

constexpr size_t kSizeField = 8;
constexpr size_t kCountField = 12;
constexpr size_t kFirstItem = 16;

Bytes withChecksum(Bytes bytes) {
    put32(bytes, bytes.size() - 4, crc32(bytes, bytes.size() - 4));
    return bytes;
}

Bytes withSizeAndChecksum(Bytes bytes) {
    put32(bytes, kSizeField, static_cast<uint32_t>(bytes.size()));
    return withChecksum(bytes);
}

Bytes with32(Bytes bytes, size_t at, uint32_t value) {
    put32(bytes, at, value);
    return withChecksum(bytes);
}

// Two items with two bytes and one byte, with an empty item between them: 16 + 18 + 16 + 17 + 4 bytes.
std::vector<Item> smallItems() {
    return {avc(5, false, {0xAA, 0xBB}), kEmptyItem, hevc(137, true, {0x01})};
}

constexpr size_t kSecondItem = kFirstItem + 18;
constexpr size_t kThirdItem = kSecondItem + 16;

class SideData : public ::testing::Test {
protected:
    void SetUp() override { allocations = {}; }
    void TearDown() override { allocations = {}; }
};

TEST_F(SideData, theChecksumOfTheTest) {
    EXPECT_EQ(crc32({'1', '2', '3', '4', '5', '6', '7', '8', '9'}, 9), 0xCBF43926U);
}

// --- The layout ---

TEST_F(SideData, bytesOfAnEmptyBuffer) {
    const Bytes expected = {
        'Q',  'V',  'S',  'D',   // signature
        0x00, 0x01, 0x00, 0x00,  // version 1
        0x00, 0x00, 0x00, 0x14,  // 20 bytes
        0x00, 0x00, 0x00, 0x00,  // no item
        0x54, 0x59, 0xD9, 0x99,  // checksum
    };
    EXPECT_EQ(serialised({}), expected);
}

TEST_F(SideData, bytesOfASmallBuffer) {
    const Bytes expected = {
        'Q',  'V',  'S',  'D',   // signature
        0x00, 0x01, 0x00, 0x00,  // version 1
        0x00, 0x00, 0x00, 0x47,  // 71 bytes
        0x00, 0x00, 0x00, 0x03,  // three items
        0x00, 0x00, 0x00, 0x1A,  // H.264
        0x00, 0x00, 0x00, 0x05,  // user_data_unregistered
        0x00, 0x00, 0x00, 0x02,  // two bytes
        0x02, 0x00, 0x00, 0x00,  // payload
        0xAA, 0xBB,              // the payload
        0x00, 0x00, 0x00, 0x00,  // an item without payload
        0x00, 0x00, 0x00, 0x00,  //
        0x00, 0x00, 0x00, 0x00,  //
        0x00, 0x00, 0x00, 0x00,  //
        0x00, 0x00, 0x00, 0xAC,  // H.265
        0x00, 0x00, 0x00, 0x89,  // mastering_display_colour_volume
        0x00, 0x00, 0x00, 0x01,  // one byte
        0x03, 0x00, 0x00, 0x00,  // payload, requested
        0x01,                    // the payload
        0x13, 0xF9, 0xE8, 0xFA,  // checksum
    };
    EXPECT_EQ(serialised(smallItems()), expected);
}

// --- Round trips ---

Bytes countingBytes(size_t size) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<unsigned char>(i * 7 + i / 256);
    }
    return bytes;
}

TEST_F(SideData, roundTrips) {
    std::vector<Item> many;
    for (uint32_t i = 0; i < 1000; ++i) {
        many.push_back(i % 5 == 0 ? kEmptyItem : hevc(i, i % 2 == 0, countingBytes(i)));
    }
    const struct {
        const char* name;
        std::vector<Item> items;
    } cases[] = {
        {"none", {}},
        {"H.264", {avc(5, false, {0x01})}},
        {"H.264, requested", {avc(200, true, {0x01, 0x02})}},
        {"H.265", {hevc(137, false, countingBytes(24))}},
        {"H.265, requested", {hevc(132, true, countingBytes(17))}},
        {"any codec and type", {{UINT32_MAX, UINT32_MAX, true, true, {0x01}}, {0, 0, false, true, {0x02}}}},
        {"without payload", {kEmptyItem}},
        {"no payload, between other items", smallItems()},
        {"only such", {kEmptyItem, kEmptyItem, kEmptyItem}},
        {"an empty payload", {hevc(5, true, {}), avc(5, false, {})}},
        {"the same twice", {avc(5, false, {0x01}), avc(5, false, {0x01})}},
        {"a large payload", {hevc(4, false, countingBytes(3000000)), avc(5, false, {0x01})}},
        {"many", many},
        {"zero bytes", {hevc(5, false, Bytes(100, 0))}},
        {"a buffer in a buffer", {avc(5, true, serialised(smallItems()))}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        expectRead(serialised(c.items), c.items);
    }
}

// The other fields of an item without a payload are not written.
TEST_F(SideData, anItemWithoutPayloadIsEmpty) {
    const Bytes buffer = serialised({{26, 5, true, false, {0xAA, 0xBB}}, avc(1, false, {0x01})});
    expectRead(buffer, {kEmptyItem, avc(1, false, {0x01})});
}

TEST_F(SideData, payloadsPointIntoTheBuffer) {
    Bytes buffer = serialised(smallItems());
    std::vector<QVSeiItem> items;
    ASSERT_EQ(qvReadSideData(buffer.data(), static_cast<int>(buffer.size()), &items), QVSideDataOk);
    ASSERT_EQ(items.size(), 3U);
    EXPECT_EQ(items[0].payloadData, buffer.data() + kFirstItem + 16);
    EXPECT_EQ(items[1].payloadData, nullptr);
    EXPECT_EQ(items[1].payloadSize, 0U);
    EXPECT_EQ(items[2].payloadData, buffer.data() + kThirdItem + 16);
}

TEST_F(SideData, readingLeavesTheBufferAlone) {
    Bytes buffer = serialised(smallItems());
    const Bytes before = buffer;
    std::vector<QVSeiItem> items;
    EXPECT_EQ(qvReadSideData(buffer.data(), static_cast<int>(buffer.size()), &items), QVSideDataOk);
    EXPECT_EQ(buffer, before);
}

TEST_F(SideData, readingAnEmptyBufferEmptiesTheList) {
    expectRead(serialised({}), {});
}

// --- Ownership ---

TEST_F(SideData, thePayloadsStayWhoeversTheyAre) {
    std::vector<Item> values = smallItems();
    const std::vector<QVSeiItem> records = recordsOf(values);
    QVSeiInfo* info = createQVSeiInfo(3);
    ASSERT_NE(info, nullptr);
    std::copy(records.begin(), records.end(), info->items);
    int size = 0;
    unsigned char* buffer = createSideDataFromQVSeiInfo(info, &size);
    ASSERT_NE(buffer, nullptr);
    EXPECT_EQ(info->itemCount, 3U);
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(info->items[i].payloadData, records[i].payloadData) << "the description was changed";
    }
    freepQVSeiInfo(&info);
    EXPECT_EQ(info, nullptr);
    EXPECT_EQ(values, smallItems()) << "the payloads are not released with the description";
    values[0].payload[0] = 0xFF;
    expectRead(Bytes(buffer, buffer + size), smallItems());
    freepQVSideData(&buffer);
    EXPECT_EQ(buffer, nullptr);
}

TEST_F(SideData, releasingNothing) {
    freepQVSideData(nullptr);
    unsigned char* buffer = nullptr;
    freepQVSideData(&buffer);
    EXPECT_EQ(buffer, nullptr);
}

// The items of an SEI unit: walked, written to side data, read back.
TEST_F(SideData, ofAWalkedUnit) {
    const Bytes unit = {0x06, 0x05, 0x02, 0x11, 0x22, 0xC8, 0x03, 0xAA, 0x00, 0x00, 0x80};
    std::vector<QVSeiItem> items;
    ASSERT_EQ(
        QVNaluParser::parserDataToSei(QVCodecIDAvc, unit.data(), {6, 0, static_cast<int>(unit.size()), false},
                                      items, nullptr, {200}),
        0);
    unsigned char* buffer = nullptr;
    int size = 0;
    ASSERT_EQ(QVNaluParser::assembleSeiSideDataBuffer(items, &buffer, size), 0);
    for (const QVSeiItem& item : items) {
        qvFree(item.payloadData);
    }
    ASSERT_NE(buffer, nullptr);
    expectRead(Bytes(buffer, buffer + size),
               {avc(5, false, {0x11, 0x22}), avc(200, true, {0xAA, 0x00, 0x00})});
    freepQVSideData(&buffer);
}

TEST_F(SideData, ofNoItems) {
    unsigned char* buffer = nullptr;
    int size = 0;
    ASSERT_EQ(QVNaluParser::assembleSeiSideDataBuffer({}, &buffer, size), 0);
    ASSERT_NE(buffer, nullptr);
    expectRead(Bytes(buffer, buffer + size), {});
    freepQVSideData(&buffer);
}

// --- Writing fails ---

// An item whose payload must not be read: its address is invalid.
QVSeiItem unreadable(uint32_t payloadSize) {
    return {QVCodecIDHevc, 4, payloadSize, false, reinterpret_cast<uint8_t*>(uintptr_t{1})};
}

// Returns the size of a buffer without the payloads of its items.
uint32_t overhead(uint32_t items) {
    return 20 + 16 * items;
}

TEST_F(SideData, tooLargeForItsSize) {
    const uint32_t most = INT_MAX;
    const std::vector<QVSeiItem> cases[] = {
        {unreadable(most - overhead(1) + 1)},
        {unreadable(most)},
        {unreadable(UINT32_MAX)},
        {unreadable(most / 2), unreadable(most / 2)},
        // 2^32 bytes of payload are 0 in 32 bits.
        {unreadable(0x80000000U), unreadable(0x80000000U)},
        std::vector<QVSeiItem>(16, unreadable(0xFFFFFFF0U)),
    };
    for (const auto& items : cases) {
        SCOPED_TRACE(items[0].payloadSize);
        EXPECT_TRUE(serialisedRecords(items).empty());
        EXPECT_EQ(allocations.count, 0);
    }
}

TEST_F(SideData, withoutMemory) {
    allocations.areRefused = true;
    EXPECT_TRUE(serialised(smallItems()).empty());
    EXPECT_EQ(allocations.lastSize, 71U);
    EXPECT_TRUE(serialised({}).empty());
    EXPECT_EQ(allocations.lastSize, 20U);
    // The largest possible buffer is requested.
    EXPECT_TRUE(serialisedRecords({unreadable(INT_MAX - overhead(1))}).empty());
    EXPECT_EQ(allocations.lastSize, size_t{INT_MAX});
    EXPECT_EQ(allocations.count, 3);
}

TEST_F(SideData, nullArgumentsOfTheWriter) {
    int size = -1;
    EXPECT_EQ(createSideDataFromQVSeiInfo(nullptr, &size), nullptr);
    QVSeiInfo* info = createQVSeiInfo(1);
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(createSideDataFromQVSeiInfo(info, nullptr), nullptr);
    EXPECT_EQ(createSideDataFromQVSeiInfo(nullptr, nullptr), nullptr);
    freepQVSeiInfo(&info);
    EXPECT_EQ(allocations.count, 0);
}

// --- Rejected buffers ---

TEST_F(SideData, noBuffer) {
    std::vector<QVSeiItem> items(2);
    for (const int size : {100, 20, 0, -1, INT_MIN}) {
        EXPECT_EQ(qvReadSideData(nullptr, size, &items), QVSideDataNoBuffer);
    }
    Bytes buffer = serialised({});
    for (const int size : {19, 16, 4, 1, 0, -1, -20, INT_MIN}) {
        EXPECT_EQ(qvReadSideData(buffer.data(), size, &items), QVSideDataNoBuffer) << size;
    }
    EXPECT_EQ(items.size(), 2U);
}

TEST_F(SideData, everyTruncation) {
    const Bytes whole = serialised(smallItems());
    for (size_t size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        const Bytes cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size));
        expectRefused(cut, size < 20 ? QVSideDataNoBuffer : QVSideDataWrongSize);
        if (size >= 20) {
            expectRefused(withSizeAndChecksum(cut), QVSideDataBrokenItems);
        }
    }
}

TEST_F(SideData, bytesBehindTheBuffer) {
    for (const size_t extra : {1U, 4U, 15U, 16U, 17U, 100U}) {
        SCOPED_TRACE(extra);
        Bytes longer = serialised(smallItems());
        longer.resize(longer.size() + extra);
        expectRefused(longer, QVSideDataWrongSize);
        expectRefused(withSizeAndChecksum(longer), QVSideDataBrokenItems);
    }
}

QVSideDataStatus statusOfFlipAt(size_t byte) {
    if (byte < 4) {
        return QVSideDataNotSideData;
    }
    if (byte < 8) {
        return QVSideDataOtherVersion;
    }
    return byte < 12 ? QVSideDataWrongSize : QVSideDataWrongChecksum;
}

TEST_F(SideData, everyBitFlip) {
    const Bytes whole = serialised(smallItems());
    for (size_t byte = 0; byte < whole.size(); ++byte) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            SCOPED_TRACE("bit " + std::to_string(bit) + " of byte " + std::to_string(byte));
            Bytes flipped = whole;
            flipped[byte] = static_cast<unsigned char>(flipped[byte] ^ (1U << bit));
            expectRefused(flipped, statusOfFlipAt(byte));
        }
    }
}

// A buffer with a changed header is rejected even if its checksum is correct.
TEST_F(SideData, everyBitFlipOfTheHeadWithItsChecksum) {
    const Bytes whole = serialised(smallItems());
    for (size_t byte = 0; byte < kFirstItem; ++byte) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            SCOPED_TRACE("bit " + std::to_string(bit) + " of byte " + std::to_string(byte));
            Bytes flipped = whole;
            flipped[byte] = static_cast<unsigned char>(flipped[byte] ^ (1U << bit));
            const bool isCount = byte >= kCountField;
            expectRefused(withChecksum(flipped), isCount ? QVSideDataBrokenItems : statusOfFlipAt(byte));
        }
    }
}

TEST_F(SideData, brokenItems) {
    const Bytes whole = serialised(smallItems());
    const struct {
        const char* name;
        size_t at;
        uint32_t value;
    } cases[] = {
        {"no item", kCountField, 0},
        {"one item too few", kCountField, 2},
        {"one item too many", kCountField, 4},
        {"more items than can fit", kCountField, 8},
        {"2^32 - 1 items", kCountField, UINT32_MAX},
        {"2^28 items, 0 bytes in 32 bits", kCountField, 1U << 28},
        {"one byte less", kFirstItem + 8, 1},
        {"one byte more", kFirstItem + 8, 3},
        {"no bytes", kFirstItem + 8, 0},
        {"first item up to the checksum, no room for others", kFirstItem + 8, 35},
        {"first item and one byte of the checksum", kFirstItem + 8, 36},
        {"first item and the checksum", kFirstItem + 8, 39},
        {"last item and the checksum", kThirdItem + 8, 5},
        {"last item past the end of the buffer", kThirdItem + 8, 6},
        {"last item, one byte less", kThirdItem + 8, 0},
        {"last item, one byte more", kThirdItem + 8, 2},
        {"2^31 bytes", kThirdItem + 8, 0x80000000U},
        {"all bytes", kThirdItem + 8, UINT32_MAX},
        {"a size whose end wraps in 32 bits", kThirdItem + 8, 0U - 66U},
        {"no flags", kFirstItem + 12, 0x00000000},
        {"requested, without payload", kFirstItem + 12, 0x01000000},
        {"flag 2", kFirstItem + 12, 0x06000000},
        {"flag 7", kFirstItem + 12, 0x82000000},
        {"all flags", kFirstItem + 12, 0xFF000000},
        {"reserved byte 13", kFirstItem + 12, 0x02010000},
        {"reserved byte 14", kFirstItem + 12, 0x02000100},
        {"reserved byte 15", kFirstItem + 12, 0x02000001},
        {"a codec without payload", kSecondItem, 26},
        {"a type without payload", kSecondItem + 4, 1},
        {"a size without payload", kSecondItem + 8, 1},
        {"an empty item, requested", kSecondItem + 12, 0x01000000},
        {"an empty item with flag 2", kSecondItem + 12, 0x04000000},
        {"an empty item with a reserved byte", kSecondItem + 12, 0x00000001},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        expectRefused(with32(whole, c.at, c.value), QVSideDataBrokenItems);
    }
}

// Valid changes of a buffer change the items that are read.
TEST_F(SideData, otherItems) {
    const Bytes whole = serialised(smallItems());
    std::vector<Item> items = smallItems();
    items[0].codecId = 0xFFFFFFFF;
    expectRead(with32(whole, kFirstItem, 0xFFFFFFFF), items);
    items = smallItems();
    items[0].payloadType = 0x01020304;
    expectRead(with32(whole, kFirstItem + 4, 0x01020304), items);
    items = smallItems();
    items[0].isRequested = true;
    expectRead(with32(whole, kFirstItem + 12, 0x03000000), items);
    items = smallItems();
    items[1].hasPayload = true;
    expectRead(with32(whole, kSecondItem + 12, 0x02000000), items);
}

TEST_F(SideData, otherVersionsAndSignatures) {
    const Bytes whole = serialised(smallItems());
    for (const uint32_t version : {0U, 2U, 0x0100U, 0xFFFFU}) {
        expectRefused(with32(whole, 4, version << 16), QVSideDataOtherVersion);
    }
    for (const uint32_t signature : {0U, 0x51565345U, 0x44535651U}) {
        expectRefused(with32(whole, 0, signature), QVSideDataNotSideData);
    }
}

}  // namespace
