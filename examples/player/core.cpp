// This player's implementation of every platform function that the library calls: a log with a prefix,
// counting allocators, flat side data, and an HDR Vivid parser that reads only what the renderer needs.
#include "core.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "QVDumpData.h"
#include "QVHDRVivid.h"
#include "QVMemory.h"
#include "QVSeiInfo.h"
#include "QVSeiItem.h"
#include "QVTraceLog.h"

namespace {

player::CoreCounts counts;

void* counted(void* block) {
    if (block != nullptr) {
        ++counts.liveBlocks;
    }
    return block;
}

unsigned char* put(unsigned char* to, const void* from, size_t size) {
    if (size > 0) {
        std::memcpy(to, from, size);
    }
    return to + size;
}

}  // namespace

namespace player {

const CoreCounts& coreCounts() {
    return counts;
}

void release(void* block) {
    if (block != nullptr) {
        --counts.liveBlocks;
        std::free(block);
    }
}

}  // namespace player

void qvTraceLog(int level, const char*, int, const char* function, const char*, const char* format, ...) {
    ++counts.logLines;
    if (level > QVTraceWarning) {
        return;
    }
    std::fprintf(stderr, "player: %s: ", function);
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
}

void* qvMalloc(size_t size) {
    ++counts.allocations;
    return counted(std::malloc(size));
}

void* qvMallocz(size_t size) {
    ++counts.allocations;
    return counted(std::calloc(1, size));
}

QVSeiInfo* createQVSeiInfo(uint32_t itemCount) {
    // One block holds the description, followed by its entries at this offset.
    const size_t entriesAt =
        (sizeof(QVSeiInfo) + alignof(QVSeiItem) - 1) / alignof(QVSeiItem) * alignof(QVSeiItem);
    void* const block = std::calloc(1, entriesAt + itemCount * sizeof(QVSeiItem));
    QVSeiInfo* const info = static_cast<QVSeiInfo*>(block);
    if (info != nullptr) {
        info->itemCount = itemCount;
        info->items = reinterpret_cast<QVSeiItem*>(static_cast<unsigned char*>(block) + entriesAt);
    }
    return info;
}

// Writes the type, the size and the bytes of each item, in sequence.
unsigned char* createSideDataFromQVSeiInfo(QVSeiInfo* info, int* size) {
    size_t whole = 0;
    for (uint32_t i = 0; i < info->itemCount; ++i) {
        whole += 2 * sizeof(uint32_t) + info->items[i].payloadSize;
    }
    unsigned char* const sideData = static_cast<unsigned char*>(counted(std::malloc(whole)));
    if (sideData == nullptr) {
        return nullptr;
    }
    unsigned char* to = sideData;
    for (uint32_t i = 0; i < info->itemCount; ++i) {
        const QVSeiItem& item = info->items[i];
        to = put(to, &item.payloadType, sizeof item.payloadType);
        to = put(to, &item.payloadSize, sizeof item.payloadSize);
        to = put(to, item.payloadData, item.payloadSize);
    }
    *size = static_cast<int>(whole);
    return sideData;
}

void freepQVSeiInfo(QVSeiInfo** info) {
    std::free(*info);
    *info = nullptr;
}

void QVDumpData::dumpActualData(const char* label, const unsigned char*, int size) {
    std::fprintf(stderr, "player: %s: %d bytes\n", label, size);
}

namespace qv_hdr_vivid_parser {

// T/UWA 005.1: the T.35 header and system_start_code, then four 12-bit values: minimum, average, variance and
// maximum of maxRGB.
int fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(const QVSeiItem& item,
                                                             QVHDRVividDynamicMetadata* metadata) {
    static const uint8_t header[] = {0x26, 0x00, 0x04, 0x00, 0x05, 0x01};
    if (item.payloadSize < sizeof header + 6 || std::memcmp(item.payloadData, header, sizeof header) != 0) {
        return 1;
    }
    const uint8_t* const codes = item.payloadData + sizeof header;
    metadata->averagePq = (codes[1] & 0x0FU) << 8 | codes[2];
    metadata->maximumPq = (codes[4] & 0x0FU) << 8 | codes[5];
    return 0;
}

}  // namespace qv_hdr_vivid_parser
