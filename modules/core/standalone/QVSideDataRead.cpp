#include "QVSideData.h"
#include "QVSideDataLayout.h"

using namespace qv_side_data;

namespace {

// Reads one item and advances `at` past it. Returns false if the item does not fit before end or violates the
// layout.
bool readItem(unsigned char*& at, const unsigned char* end, QVSeiItem& item) {
    if (static_cast<size_t>(end - at) < kItemHeaderSize) {
        return false;
    }
    item.codecId = static_cast<QVCodecID>(readU32(at));
    item.payloadType = readU32(at + 4);
    item.payloadSize = readU32(at + 8);
    item.payloadData = nullptr;
    const uint32_t flagsAndReserved = readU32(at + 12);
    const uint32_t flags = flagsAndReserved >> 24;
    at += kItemHeaderSize;
    item.isRequested = (flags & kIsRequested) != 0;
    if ((flagsAndReserved & 0x00FFFFFF) != 0 || (flags & ~(kIsRequested | kHasPayload)) != 0) {
        return false;
    }
    if ((flags & kHasPayload) == 0) {
        return flags == 0 && item.codecId == 0 && item.payloadType == 0 && item.payloadSize == 0;
    }
    if (static_cast<size_t>(end - at) < item.payloadSize) {
        return false;
    }
    item.payloadData = at;
    at += item.payloadSize;
    return true;
}

QVSideDataStatus checkEnvelope(const unsigned char* data, size_t size) {
    if (readU32(data) != kSignature) {
        return QVSideDataNotSideData;
    }
    if (readU32(data + 4) != kVersion << 16) {
        return QVSideDataOtherVersion;
    }
    if (readU32(data + 8) != size) {
        return QVSideDataWrongSize;
    }
    const size_t checked = size - kChecksumSize;
    return readU32(data + checked) == checksum(data, checked) ? QVSideDataOk : QVSideDataWrongChecksum;
}

}  // namespace

QVSideDataStatus qvReadSideData(unsigned char* data, int size, std::vector<QVSeiItem>* items) {
    constexpr size_t kSmallest = kHeaderSize + kChecksumSize;
    if (data == nullptr || size < static_cast<int>(kSmallest)) {
        return QVSideDataNoBuffer;
    }
    const auto length = static_cast<size_t>(size);
    const QVSideDataStatus envelope = checkEnvelope(data, length);
    if (envelope != QVSideDataOk) {
        return envelope;
    }
    // Check that so many items can fit before allocating memory for them.
    const uint32_t itemCount = readU32(data + 12);
    if (itemCount > (length - kSmallest) / kItemHeaderSize) {
        return QVSideDataBrokenItems;
    }
    std::vector<QVSeiItem> read(itemCount);
    unsigned char* at = data + kHeaderSize;
    const unsigned char* const end = data + length - kChecksumSize;
    for (QVSeiItem& item : read) {
        if (!readItem(at, end, item)) {
            return QVSideDataBrokenItems;
        }
    }
    if (at != end) {
        return QVSideDataBrokenItems;
    }
    items->swap(read);
    return QVSideDataOk;
}
