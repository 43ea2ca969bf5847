// Conversion between the byte stream format (ITU-T H.264/H.265 Annex B) and 4-byte length fields (ISO/IEC
// 14496-15). Units are copied as they are: emulation prevention bytes are neither added nor removed.
#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>

#include "QVMemory.h"
#include "QVNaluParser.h"
#include "detail/NalUnit.h"
#include "detail/StartCode.h"

using namespace qv_detail;

namespace {

constexpr unsigned char kStartCode[] = {0x00, 0x00, 0x00, 0x01};
constexpr size_t kLengthSize = 4;

// Makes room for count more bytes. Capacity that does not suffice is doubled, whatever the standard library.
void makeRoom(std::vector<unsigned char>& out, size_t count) {
    if (out.capacity() - out.size() < count) {
        out.reserve(std::max(2 * out.capacity(), out.size() + count));
    }
}

void append(std::vector<unsigned char>& out, const unsigned char* bytes, size_t count) {
    makeRoom(out, count);
    out.insert(out.end(), bytes, bytes + count);
}

void writeLength(unsigned char* field, size_t length) {
    for (size_t i = 0; i < kLengthSize; ++i) {
        field[i] = static_cast<unsigned char>(length >> 8 * (kLengthSize - 1 - i));
    }
}

// Search and copy alternate: a piece is copied while the search has left it in the cache.
constexpr size_t kPiece = 16384;

// Appends the unit at the scanner and moves the scanner to the next one. False when that was the last unit.
bool appendUnit(std::vector<unsigned char>& out, const unsigned char* data, size_t size,
                StartCodeScanner& scanner) {
    static constexpr unsigned char kLengthToCome[kLengthSize] = {};
    const size_t field = out.size();
    append(out, kLengthToCome, kLengthSize);
    auto from = static_cast<size_t>(scanner.unitOffset());
    bool isFound = scanner.nextBelow(from + kPiece);
    while (!isFound && !scanner.atEnd()) {
        // The last byte of the piece may be the first one of a start code.
        append(out, data + from, kPiece - 1);
        from += kPiece - 1;
        isFound = scanner.nextBelow(from + kPiece);
    }
    const size_t end = isFound ? static_cast<size_t>(scanner.codeOffset()) : size;
    append(out, data + from, end - from);
    writeLength(out.data() + field, out.size() - field - kLengthSize);
    return isFound;
}

unsigned char* writeUnit(unsigned char* out, const unsigned char* unit, size_t length) {
    std::memcpy(out, kStartCode, sizeof kStartCode);
    std::memcpy(out + sizeof kStartCode, unit, length);
    return out + sizeof kStartCode + length;
}

}  // namespace

int QVNaluParser::converAnnexBToAvcC(const unsigned char* data, int size, std::vector<unsigned char>& out) {
    if (!isAnnexBData(data, size)) {
        return QVResultInvalidData;
    }
    PrefixList list;  // NOLINT(cppcoreguidelines-pro-type-member-init): the scanner fills it
    StartCodeScanner scanner(data, bufferSize(size), list);
    // The first start code is at the beginning; a search to the end would be another pass over the data.
    if (!scanner.nextBelow(kPiece)) {
        return QVResultInvalidData;
    }
    out.clear();
    if (out.capacity() < bufferSize(size)) {
        out.reserve(bufferSize(size));
    }
    while (appendUnit(out, data, bufferSize(size), scanner)) {
    }
    return QVResultOk;
}

int QVNaluParser::connvertAvcCToAnnexB(const unsigned char* data, int size, int lengthSize,
                                       unsigned char** out, int& outSize) {
    if (data == nullptr || size < 1 || out == nullptr || *out != nullptr) {
        return QVResultInvalidData;
    }
    outSize = 0;
    std::vector<std::pair<int, int>> nalus;
    parserDataToNalus(data, size, nalus, lengthSize);
    if (nalus.empty() || nalus.back().first + nalus.back().second != size) {
        return QVResultInvalidData;
    }
    uint64_t total = 0;
    for (const auto& nalu : nalus) {
        total += sizeof kStartCode + static_cast<uint64_t>(nalu.second);
    }
    if (total > INT_MAX) {
        return QVResultNoMemory;
    }
    auto* const buffer = static_cast<unsigned char*>(qvMallocz(static_cast<size_t>(total)));
    if (buffer == nullptr) {
        return QVResultNoMemory;
    }
    unsigned char* end = buffer;
    for (const auto& [offset, length] : nalus) {
        end = writeUnit(end, data + offset, static_cast<size_t>(length));
    }
    *out = buffer;
    outSize = static_cast<int>(total);
    return QVResultOk;
}
