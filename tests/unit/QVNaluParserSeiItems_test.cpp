// Raw capture of SEI payloads into items, and the side-data buffer of an access unit.
#include "QVSeiItem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <new>
#include <type_traits>

#include "AllocationFault.h"
#include "QVNaluParser.h"
#include "QVSeiInfo.h"
#include "SeiMessages.h"
#include "SeiTest.h"

namespace qv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// --- The records ---

static_assert(std::is_standard_layout<QVSeiItem>::value && std::is_trivial<QVSeiItem>::value,
              "a plain record");
static_assert(std::is_same<decltype(QVSeiItem::codecId), QVCodecID>::value, "codecId");
static_assert(sizeof(QVSeiItem::codecId) == 4, "codecId is 32 bits wide");
static_assert(std::is_same<decltype(QVSeiItem::payloadType), uint32_t>::value, "payloadType");
static_assert(std::is_same<decltype(QVSeiItem::payloadSize), uint32_t>::value, "payloadSize");
static_assert(std::is_same<decltype(QVSeiItem::isRequested), bool>::value, "isRequested");
static_assert(std::is_same<decltype(QVSeiItem::payloadData), uint8_t*>::value, "payloadData");
static_assert(offsetof(QVSeiItem, codecId) == 0, "codecId is the first field");
static_assert(offsetof(QVSeiItem, payloadType) == 4, "payloadType is the second");
static_assert(offsetof(QVSeiItem, payloadSize) == 8, "payloadSize is the third");
static_assert(offsetof(QVSeiItem, isRequested) == 12, "isRequested is the fourth");
static_assert(offsetof(QVSeiItem, payloadData) == 16, "payloadData is the last");
static_assert(sizeof(QVSeiItem) == 16 + sizeof(uint8_t*), "and nothing follows");

static_assert(std::is_standard_layout<QVSeiInfo>::value, "a plain record");
static_assert(std::is_same<decltype(QVSeiInfo::itemCount), uint32_t>::value, "itemCount");
static_assert(std::is_same<decltype(QVSeiInfo::items), QVSeiItem*>::value, "entries are items");
static_assert(offsetof(QVSeiInfo, itemCount) == 0, "itemCount is the first field");
static_assert(offsetof(QVSeiInfo, items) > offsetof(QVSeiInfo, itemCount), "items follows it");

// --- fillSeiDataWithoutParsing ---

class SeiCapture : public SeiTest {
protected:
    int capture(QVByteStream& stream, int payloadSize) {
        return QVNaluParser::fillSeiDataWithoutParsing(stream, payloadSize, items, QVCodecIDHevc, 137, false);
    }
};

struct CaptureCase {
    const char* name;
    Bytes bytes;
    Cursor start;
    int payloadSize;
    Bytes expected;
    Cursor end;
};

TEST_F(SeiCapture, bytesAndPosition) {
    const CaptureCase cases[] = {
        {"one byte", {0x11, 0x22}, {0, 0, 7}, 1, {0x11}, {1, 0, 7}},
        {"from the middle", {0x11, 0x22, 0x33}, {1, 0, 7}, 2, {0x22, 0x33}, {3, 0, 7}},
        {"emulation prevention", {0xEE, 0, 0, 3, 1}, {1, 0, 7}, 3, {0, 0, 1}, {5, 0, 7}},
        {"up to emulation prevention", {0xEE, 0, 0, 3, 1}, {1, 0, 7}, 2, {0, 0}, {4, 0, 7}},
        {"emulation prevention at the end", {0xEE, 0, 0, 3}, {1, 0, 7}, 2, {0, 0}, {4, 0, 7}},
        {"a zero pair from before the start", {0xEE, 0, 0, 3, 1}, {2, 0, 7}, 2, {0, 1}, {5, 0, 7}},
        {"from an emulation prevention byte", {0xEE, 0, 0, 3, 1}, {3, 0, 7}, 2, {3, 1}, {5, 0, 7}},
        {"emulation prevention twice", {0xEE, 0, 0, 3, 0, 0, 3, 2}, {1, 0, 7}, 5, {0, 0, 0, 0, 2}, {8, 0, 7}},
        {"a 03 that is data", {0xEE, 0, 3, 0, 3}, {0, 0, 7}, 5, {0xEE, 0, 3, 0, 3}, {5, 0, 7}},
        {"a zero pair at the start", {0, 0, 3, 1}, {0, 0, 7}, 4, {0, 0, 3, 1}, {4, 0, 7}},
        {"past the end", {0x11, 0x22}, {1, 0, 7}, 4, {0x22, 0, 0, 0}, {2, 0, 7}},
        {"past the end because of emulation prevention",
         {0xEE, 0, 0, 3, 1},
         {0, 0, 7},
         5,
         {0xEE, 0, 0, 1, 0},
         {5, 0, 7}},
        {"at the end", {0x11}, {1, 0, 7}, 2, {0, 0}, {1, 0, 7}},
        {"from past the end", {0x11}, {9, 0, 7}, 2, {0, 0}, {9, 0, 7}},
        {"from nothing", {}, {0, 0, 7}, 2, {0, 0}, {0, 0, 7}},
        {"the plain bit offset stays", {0x11, 0x22}, {0, 5, 7}, 1, {0x11}, {1, 5, 7}},
        {"from inside a byte", {0xA5, 0x5A, 0xF0}, {0, 0, 3}, 2, {0x55, 0xAF}, {2, 0, 3}},
        {"from inside a byte over emulation prevention",
         {0xA5, 0, 0, 3, 0x12, 0x34},
         {0, 2, 3},
         4,
         {0x50, 0x00, 0x01, 0x23},
         {5, 2, 3}},
        {"from inside the last byte", {0xA5}, {0, 0, 3}, 2, {0x50, 0x00}, {1, 0, 7}},
        {"the last bit", {0xFF, 0xFF}, {1, 0, 0}, 1, {0x80}, {2, 0, 7}},
    };
    for (const CaptureCase& c : cases) {
        SCOPED_TRACE(c.name);
        SeiStream stream(c.bytes, c.start);
        EXPECT_EQ(capture(stream, c.payloadSize), 0);
        EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 137, false, c.expected}));
        EXPECT_EQ(cursorOf(stream), c.end);
        clearItems();
    }
    expectNoLines();
}

TEST_F(SeiCapture, whatThePlainCursorReadIsNotCapturedAgain) {
    SeiStream stream({0x11, 0x22, 0x33});
    EXPECT_EQ(stream.readBits(11), 0x11U << 3 | 0x1U);
    EXPECT_EQ(capture(stream, 2), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 137, false, {0x22, 0x33}})) << "must read whole bytes";
    EXPECT_EQ(cursorOf(stream), (Cursor{3, 3, 7}));
}

TEST_F(SeiCapture, aNullBufferHoldsZeroBytes) {
    QVByteStream stream;
    stream.size = 3;
    EXPECT_EQ(capture(stream, 2), 0);
    EXPECT_EQ(capture(stream, 2), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 137, false, {0, 0}}, KeptItem{172, 137, false, {0, 0}}));
    EXPECT_EQ(stream.bytePos, 3U);
}

TEST_F(SeiCapture, readsBackEveryPayload) {
    for (size_t length = 1; length <= 300; length += length < 20 ? 1 : 37) {
        for (const uint8_t byte : Bytes{0x00, 0x01, 0x03, 0x80, 0xFF}) {
            const Bytes payload(length, byte);
            SeiStream stream(withEmulationPrevention(Bytes{0xEE} + payload), {1, 0, 7});
            ASSERT_EQ(capture(stream, sizeOf(payload)), 0);
            ASSERT_THAT(kept(), ElementsAre(KeptItem{172, 137, false, payload}));
            ASSERT_TRUE(stream.atEnd());
            clearItems();
        }
    }
}

TEST_F(SeiCapture, theItemIsDescribedAsGiven) {
    const struct {
        uint32_t codec;
        int payloadType;
        bool requested;
    } cases[] = {{26, 1, false}, {26, 200, true},     {172, 137, false}, {172, 0, true},
                 {99, 5, false}, {26, INT_MAX, true}, {172, -1, true}};
    for (const auto& c : cases) {
        SeiStream stream({0x11, 0x22});
        EXPECT_EQ(QVNaluParser::fillSeiDataWithoutParsing(stream, 2, items, static_cast<QVCodecID>(c.codec),
                                                          c.payloadType, c.requested),
                  0);
        ASSERT_EQ(items.size(), 1U);
        EXPECT_EQ(keptItem(items[0]),
                  (KeptItem{c.codec, static_cast<uint32_t>(c.payloadType), c.requested, {0x11, 0x22}}));
        EXPECT_EQ(items[0].payloadSize, 2U);
        EXPECT_EQ(core().blocks.at(items[0].payloadData), 2U) << "must have the exact size";
        clearItems();
    }
}

TEST_F(SeiCapture, appendsInOrder) {
    SeiStream stream({0x11, 0x22, 0x33, 0x44, 0x55, 0x66});
    for (const int payloadSize : {1, 2, 3}) {
        EXPECT_EQ(capture(stream, payloadSize), 0);
    }
    EXPECT_THAT(kept(),
                ElementsAre(KeptItem{172, 137, false, {0x11}}, KeptItem{172, 137, false, {0x22, 0x33}},
                            KeptItem{172, 137, false, {0x44, 0x55, 0x66}}));
}

TEST_F(SeiCapture, aSizeBelowOneFails) {
    SeiStream stream({0x11, 0x22}, {1, 3, 4});
    for (const int payloadSize : {0, -1, INT_MIN}) {
        EXPECT_EQ(capture(stream, payloadSize), 11000001);
    }
    EXPECT_EQ(cursorOf(stream), (Cursor{1, 3, 4}));
    EXPECT_EQ(core().playerAllocations, 0);
    EXPECT_THAT(kept(), IsEmpty());
    expectNoLines();
}

TEST_F(SeiCapture, withoutMemoryTheListIsUnchanged) {
    SeiStream stream({0x11, 0x22});
    EXPECT_EQ(capture(stream, 1), 0);
    for (const int payloadSize : {1, 2, INT_MAX}) {
        core().playerAllocations = 0;
        core().failPlayerAllocation = 1;
        EXPECT_EQ(capture(stream, payloadSize), 11000001);
        EXPECT_EQ(core().playerAllocations, 1);
    }
    EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 137, false, {0x11}}));
    expectNoLines();
}

TEST_F(SeiCapture, aListThatCannotGrowThrows) {
    SeiStream stream({0x11, 0x22});
    EXPECT_EQ(capture(stream, 1), 0);
    items.shrink_to_fit();
    ASSERT_EQ(items.capacity(), items.size());
    {
        const AllocationFault fault(Allocator::New, 1);
        EXPECT_THROW(capture(stream, 1), std::bad_alloc);
        EXPECT_TRUE(fault.triggered());
    }
    EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 137, false, {0x11}}));
    EXPECT_EQ(core().blocks.size(), 1U) << "a payload leaked";
    EXPECT_EQ(capture(stream, 1), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{172, 137, false, {0x11}}, KeptItem{172, 137, false, {0x22}}));
}

TEST_F(SeiCapture, aLargePayloadIsPadded) {
    SeiStream stream(Bytes(10, 0x41));
    EXPECT_EQ(capture(stream, 5000000), 0);
    EXPECT_EQ(kept()[0].payload, Bytes(10, 0x41) + Bytes(4999990, 0x00));
}

// --- assembleSeiSideDataBuffer ---

class SeiSideData : public SeiTest {
protected:
    // Payloads of the items, which only point at them.
    uint8_t payloads[4] = {0xA0, 0xB0, 0xC0, 0xD0};
    std::vector<QVSeiItem> list = {
        {QVCodecIDAvc, 5, 1, false, payloads},
        {QVCodecIDHevc, 200, 2, true, payloads + 1},
        {QVCodecIDHevc, 137, 1, false, payloads + 3},
    };
    unsigned char sideData[2] = {};

    void SetUp() override {
        SeiTest::SetUp();
        core().sideData = sideData;
        core().sideDataSize = 42;
    }

    static void expectDescribed(const std::vector<QVSeiItem>& expected) {
        ASSERT_EQ(core().describedItems.size(), expected.size());
        for (size_t i = 0; i < expected.size(); ++i) {
            SCOPED_TRACE("entry " + std::to_string(i));
            const QVSeiItem& described = core().describedItems[i];
            EXPECT_EQ(described.codecId, expected[i].codecId);
            EXPECT_EQ(described.payloadType, expected[i].payloadType);
            EXPECT_EQ(described.payloadSize, expected[i].payloadSize);
            EXPECT_EQ(described.isRequested, expected[i].isRequested);
            EXPECT_EQ(described.payloadData, expected[i].payloadData) << "must be the same pointer";
        }
    }

    int assembleOk(unsigned char*& out) {
        int size = -1;
        const int result = QVNaluParser::assembleSeiSideDataBuffer(list, &out, size);
        EXPECT_EQ(size, 42);
        EXPECT_EQ(core().liveSeiInfos, 0) << "the description must be released";
        return result;
    }
};

TEST_F(SeiSideData, describesEveryItem) {
    unsigned char* out = nullptr;
    EXPECT_EQ(assembleOk(out), 0);
    EXPECT_EQ(out, sideData);
    EXPECT_THAT(core().createdSeiInfos, ElementsAre(3U));
    expectDescribed(list);
    EXPECT_THAT(payloads, ElementsAre(0xA0, 0xB0, 0xC0, 0xD0));
    expectNoLines();
}

TEST_F(SeiSideData, whatOutHeldIsReplaced) {
    unsigned char before = 0;
    unsigned char* out = &before;
    EXPECT_EQ(assembleOk(out), 0);
    EXPECT_EQ(out, sideData);
}

TEST_F(SeiSideData, anEmptyListIsDescribedToo) {
    list.clear();
    unsigned char* out = nullptr;
    EXPECT_EQ(assembleOk(out), 0);
    EXPECT_EQ(out, sideData);
    EXPECT_THAT(core().createdSeiInfos, ElementsAre(0U));
    expectDescribed({});
}

TEST_F(SeiSideData, anItemWithoutBytesLeavesItsEntryEmpty) {
    for (size_t i = 0; i < list.size(); ++i) {
        const QVSeiItem whole = list[i];
        std::vector<QVSeiItem> expected = list;
        expected[i] = QVSeiItem();
        list[i].payloadData = nullptr;
        unsigned char* out = nullptr;
        EXPECT_EQ(assembleOk(out), 0);
        expectDescribed(expected);
        list[i] = whole;
    }
}

TEST_F(SeiSideData, anItemOfSizeZeroWithBytesIsDescribed) {
    list[0].payloadSize = 0;
    unsigned char* out = nullptr;
    EXPECT_EQ(assembleOk(out), 0);
    expectDescribed(list);
}

TEST_F(SeiSideData, noMoreEntriesThanTheDescriptionHas) {
    for (const int64_t reported : {0, 1, 2, 3}) {
        SCOPED_TRACE(reported);
        core().reportedItemCount = reported;
        unsigned char* out = nullptr;
        EXPECT_EQ(assembleOk(out), 0);
        EXPECT_EQ(out, sideData);
        expectDescribed({list.begin(), list.begin() + static_cast<std::ptrdiff_t>(reported)});
    }
}

TEST_F(SeiSideData, noMoreEntriesThanThereAreItems) {
    for (const size_t reported : {4U, 5U, 1000U}) {
        core().reportedItemCount = static_cast<int64_t>(reported);
        std::vector<QVSeiItem> expected = list;
        expected.resize(reported);
        unsigned char* out = nullptr;
        EXPECT_EQ(assembleOk(out), 0);
        expectDescribed(expected);
    }
    list.clear();
    core().reportedItemCount = 2;
    unsigned char* out = nullptr;
    EXPECT_EQ(assembleOk(out), 0);
    expectDescribed(std::vector<QVSeiItem>(2));
}

TEST_F(SeiSideData, withoutADescriptionNothingIsTouched) {
    core().failCreateSeiInfo = true;
    unsigned char before = 0;
    unsigned char* out = &before;
    int size = 7;
    EXPECT_EQ(QVNaluParser::assembleSeiSideDataBuffer(list, &out, size), 11000001);
    EXPECT_EQ(out, &before);
    EXPECT_EQ(size, 7);
    EXPECT_EQ(list.size(), 3U);
    expectNoLines();
}

TEST_F(SeiSideData, nullOutIsRejected) {
    int size = 7;
    EXPECT_EQ(QVNaluParser::assembleSeiSideDataBuffer(list, nullptr, size), 11000001);
    EXPECT_EQ(size, 7);
    EXPECT_THAT(core().createdSeiInfos, IsEmpty());
    expectNoLines();
}

// The operation returns whatever the host made from the description.
TEST_F(SeiSideData, aBufferThatCannotBeMadeIsNull) {
    core().sideData = nullptr;
    unsigned char before = 0;
    unsigned char* out = &before;
    EXPECT_EQ(assembleOk(out), 0);
    EXPECT_EQ(out, nullptr);
}

TEST_F(SeiSideData, ofCapturedItems) {
    SeiStream stream({0x11, 0x22, 0x33});
    EXPECT_EQ(QVNaluParser::fillSeiDataWithoutParsing(stream, 1, items, QVCodecIDAvc, 1, false), 0);
    EXPECT_EQ(QVNaluParser::fillSeiDataWithoutParsing(stream, 2, items, QVCodecIDAvc, 200, true), 0);
    list = items;
    unsigned char* out = nullptr;
    EXPECT_EQ(assembleOk(out), 0);
    expectDescribed(items);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{26, 1, false, {0x11}}, KeptItem{26, 200, true, {0x22, 0x33}}))
        << "the caller must still own the payloads";
}

}  // namespace
}  // namespace qv_test
