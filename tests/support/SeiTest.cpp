#include "SeiTest.h"

#include <ostream>

namespace qv_test {

bool operator==(const KeptItem& a, const KeptItem& b) {
    return a.codecId == b.codecId && a.payloadType == b.payloadType && a.isRequested == b.isRequested &&
           a.payload == b.payload;
}

std::ostream& operator<<(std::ostream& out, const KeptItem& item) {
    return out << "codec " << item.codecId << ", type " << item.payloadType
               << (item.isRequested ? ", requested, " : ", ") << ::testing::PrintToString(item.payload);
}

KeptItem keptItem(const QVSeiItem& item) {
    const auto block = core().blocks.find(item.payloadData);
    EXPECT_NE(block, core().blocks.end()) << "the payload is no block of the player's allocators";
    if (block == core().blocks.end()) {
        return {item.codecId, item.payloadType, item.isRequested, {}};
    }
    EXPECT_GE(block->second, item.payloadSize);
    return {item.codecId, item.payloadType, item.isRequested,
            Bytes(item.payloadData, item.payloadData + item.payloadSize)};
}

int sizeOf(const Bytes& bytes) {
    return static_cast<int>(bytes.size());
}

bool operator==(const Cursor& a, const Cursor& b) {
    return a.bytePos == b.bytePos && a.bitOffset == b.bitOffset && a.rbspBitIndex == b.rbspBitIndex;
}

std::ostream& operator<<(std::ostream& out, const Cursor& cursor) {
    return out << "byte " << cursor.bytePos << ", plain bit " << cursor.bitOffset << ", RBSP bit index "
               << cursor.rbspBitIndex;
}

Cursor cursorOf(const QVByteStream& stream) {
    return {stream.bytePos, stream.bitOffset, stream.rbspBitIndex};
}

void moveTo(QVByteStream& stream, const Cursor& cursor) {
    stream.bytePos = cursor.bytePos;
    stream.bitOffset = static_cast<uint8_t>(cursor.bitOffset);
    stream.rbspBitIndex = cursor.rbspBitIndex;
}

void SeiTest::TearDown() {
    clearItems();
    CoreTest::TearDown();
}

std::vector<KeptItem> SeiTest::kept() const {
    std::vector<KeptItem> values;
    for (const QVSeiItem& item : items) {
        values.push_back(keptItem(item));
    }
    return values;
}

void SeiTest::clearItems() {
    for (const QVSeiItem& item : items) {
        releaseBlock(item.payloadData);
    }
    items.clear();
}

}  // namespace qv_test
