// Tests on a caller's SEI item list.
#ifndef QV_TESTS_SEITEST_H
#define QV_TESTS_SEITEST_H

#include <cstdint>
#include <deque>
#include <iosfwd>
#include <vector>

#include "BitWriter.h"
#include "RecordingCore.h"

namespace qv_test {

using Requested = std::deque<int>;

// An item as a value.
struct KeptItem {
    uint32_t codecId;
    uint32_t payloadType;
    bool isRequested;
    Bytes payload;
};

bool operator==(const KeptItem& a, const KeptItem& b);
std::ostream& operator<<(std::ostream& out, const KeptItem& item);

// Reads payloadSize bytes of the payload, all of which must be inside the item's block.
KeptItem keptItem(const QVSeiItem& item);

int sizeOf(const Bytes& bytes);

// The cursors of a reader.
struct Cursor {
    uint64_t bytePos;
    unsigned bitOffset;
    unsigned rbspBitIndex;
};

bool operator==(const Cursor& a, const Cursor& b);
std::ostream& operator<<(std::ostream& out, const Cursor& cursor);

Cursor cursorOf(const QVByteStream& stream);
void moveTo(QVByteStream& stream, const Cursor& cursor);

// A reader over an exact-size copy of bytes.
class SeiStream : public QVByteStream {
public:
    explicit SeiStream(const Bytes& bytes) : QVByteStream(bytes.data(), bytes.size()) {}
    SeiStream(const Bytes& bytes, const Cursor& cursor) : SeiStream(bytes) { moveTo(*this, cursor); }
};

// Owns the list and releases the payloads in it.
class SeiTest : public CoreTest {
protected:
    void TearDown() override;

    std::vector<KeptItem> kept() const;
    void clearItems();

    std::vector<QVSeiItem> items;
};

}  // namespace qv_test

#endif
