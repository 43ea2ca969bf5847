#include <climits>
#include <cstring>

#include "QVMemory.h"
#include "QVSeiInfo.h"
#include "QVSeiItem.h"
#include "QVSideData.h"
#include "QVSideDataLayout.h"

using namespace qv_side_data;

namespace {

bool hasPayload(const QVSeiItem& item) {
    return item.payloadData != nullptr;
}

uint64_t bufferSize(const QVSeiInfo& info) {
    uint64_t size = kHeaderSize + kChecksumSize;
    for (uint32_t i = 0; i < info.itemCount; ++i) {
        size += kItemHeaderSize + (hasPayload(info.items[i]) ? info.items[i].payloadSize : 0);
    }
    return size;
}

unsigned char* writeHeader(unsigned char* at, uint32_t size, uint32_t itemCount) {
    at = writeU32(at, kSignature);
    at = writeU32(at, kVersion << 16);
    at = writeU32(at, size);
    return writeU32(at, itemCount);
}

unsigned char* writeItem(unsigned char* at, const QVSeiItem& item) {
    if (!hasPayload(item)) {
        std::memset(at, 0, kItemHeaderSize);
        return at + kItemHeaderSize;
    }
    const uint32_t flags = kHasPayload | (item.isRequested ? kIsRequested : 0);
    at = writeU32(at, item.codecId);
    at = writeU32(at, item.payloadType);
    at = writeU32(at, item.payloadSize);
    at = writeU32(at, flags << 24);
    std::memcpy(at, item.payloadData, item.payloadSize);
    return at + item.payloadSize;
}

}  // namespace

extern "C" unsigned char* createSideDataFromQVSeiInfo(QVSeiInfo* info, int* size) {
    if (info == nullptr || size == nullptr) {
        return nullptr;
    }
    *size = 0;
    const uint64_t total = bufferSize(*info);
    if (total > INT_MAX) {
        return nullptr;
    }
    auto* const buffer = static_cast<unsigned char*>(qvMalloc(static_cast<size_t>(total)));
    if (buffer == nullptr) {
        return nullptr;
    }
    unsigned char* at = writeHeader(buffer, static_cast<uint32_t>(total), info->itemCount);
    for (uint32_t i = 0; i < info->itemCount; ++i) {
        at = writeItem(at, info->items[i]);
    }
    writeU32(at, checksum(buffer, static_cast<size_t>(total) - kChecksumSize));
    *size = static_cast<int>(total);
    return buffer;
}
