#include "input/ContainerSignature.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace qvinspect {

namespace {

constexpr unsigned char kTransportSyncByte = 0x47;

struct Signature {
    const char* container;
    size_t offset;
    const char* bytes;
    size_t length;
};

constexpr Signature kSignatures[] = {
    {"MP4 or QuickTime", 4, "ftyp", 4},
    {"MP4 or QuickTime", 4, "styp", 4},
    {"MP4 or QuickTime", 4, "moov", 4},
    {"MP4 or QuickTime", 4, "moof", 4},
    {"MP4 or QuickTime", 4, "mdat", 4},
    {"MP4 or QuickTime", 4, "wide", 4},
    {"MP4 or QuickTime", 4, "free", 4},
    {"MP4 or QuickTime", 4, "skip", 4},
    {"MP4 or QuickTime", 4, "sidx", 4},
    {"Matroska", 0, "\x1A\x45\xDF\xA3", 4},
    {"FLV", 0, "FLV\x01", 4},
    {"AVI", 8, "AVI ", 4},
    {"MPEG program stream", 0, "\x00\x00\x01\xBA", 4},
    {"MXF", 0, "\x06\x0E\x2B\x34\x02\x05\x01\x01", 8},
    {"ASF", 0, "\x30\x26\xB2\x75\x8E\x66\xCF\x11", 8},
};

// ISO/IEC 13818-1 2.4.3.2: packets of 188 bytes, alone, after 4 bytes of time code or before 16 bytes of
// error correction.
struct PacketLayout {
    size_t firstSync;
    size_t length;
};
constexpr PacketLayout kTransportPackets[] = {{0, 188}, {4, 192}, {0, 204}};
constexpr size_t kSyncBytesChecked = 4;

bool matches(const Signature& signature, const unsigned char* data, size_t size) {
    return size >= signature.offset + signature.length &&
           std::memcmp(data + signature.offset, signature.bytes, signature.length) == 0;
}

bool isTransportStream(const PacketLayout& layout, const unsigned char* data, size_t size) {
    size_t at = layout.firstSync;
    for (size_t i = 0; i < kSyncBytesChecked; ++i, at += layout.length) {
        if (at >= size || data[at] != kTransportSyncByte) {
            return false;
        }
    }
    return true;
}

uint64_t readNumber(const unsigned char* bytes, size_t size) {
    uint64_t number = 0;
    for (size_t i = 0; i < size; ++i) {
        number = number << 8 | bytes[i];
    }
    return number;
}

}  // namespace

const char* containerSignature(const unsigned char* data, size_t size) {
    const auto* known =
        std::find_if(std::begin(kSignatures), std::end(kSignatures),
                     [data, size](const Signature& signature) { return matches(signature, data, size); });
    if (known != std::end(kSignatures)) {
        return known->container;
    }
    const bool isTransport = std::any_of(
        std::begin(kTransportPackets), std::end(kTransportPackets),
        [data, size](const PacketLayout& layout) { return isTransportStream(layout, data, size); });
    return isTransport ? "MPEG transport stream" : nullptr;
}

bool hasIndexAfterSamples(const unsigned char* data, size_t size) {
    constexpr size_t kBoxHeader = 8;
    constexpr uint64_t kLargeSizeFollows = 1;
    size_t at = 0;
    while (size - at >= kBoxHeader) {
        const unsigned char* const type = data + at + 4;
        if (std::memcmp(type, "mdat", 4) == 0) {
            return true;
        }
        uint64_t boxSize = readNumber(data + at, 4);
        if (boxSize == kLargeSizeFollows && size - at >= 2 * kBoxHeader) {
            boxSize = readNumber(data + at + kBoxHeader, 8);
        }
        const bool isIndex = std::memcmp(type, "moov", 4) == 0 || std::memcmp(type, "moof", 4) == 0;
        if (isIndex || boxSize < kBoxHeader || boxSize > size - at) {
            return false;
        }
        at += static_cast<size_t>(boxSize);
    }
    return false;
}

}  // namespace qvinspect
