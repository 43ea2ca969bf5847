// Conversion between the byte stream format (ITU-T H.264/H.265 Annex B) and 4-byte length fields
// (ISO/IEC 14496-15). Units are carried as they are: emulation prevention bytes are neither added nor
// removed.
#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>

#include "QVMemory.h"
#include "QVNaluParser.h"
#include "detail/NalUnit.h"

using namespace qv_detail;

namespace {

constexpr unsigned char kStartCode[] = {0x00, 0x00, 0x00, 0x01};
constexpr size_t kLengthSize = 4;

// Makes room for count more bytes: a capacity that runs out is doubled, on every standard library.
void makeRoom(std::vector<unsigned char>& out, size_t count) {
    if (out.capacity() - out.size() < count) {
        out.reserve(std::max(2 * out.capacity(), out.size() + count));
    }
}

void appendUnit(std::vector<unsigned char>& out, const unsigned char* unit, uint32_t length) {
    const unsigned char field[kLengthSize] = {
        static_cast<unsigned char>(length >> 24), static_cast<unsigned char>(length >> 16),
        static_cast<unsigned char>(length >> 8), static_cast<unsigned char>(length)};
    makeRoom(out, kLengthSize + length);
    out.insert(out.end(), field, field + kLengthSize);
    out.insert(out.end(), unit, unit + length);
}

unsigned char* writeUnit(unsigned char* out, const unsigned char* unit, size_t length) {
    std::memcpy(out, kStartCode, sizeof kStartCode);
    std::memcpy(out + sizeof kStartCode, unit, length);
    return out + sizeof kStartCode + length;
}

}  // namespace

int QVNaluParser::converAnnexBToAvcC(const unsigned char* data, int size, std::vector<unsigned char>& out) {
    if (data == nullptr || size < 1) {
        return QVResultInvalidData;
    }
    std::vector<std::pair<int, int>> nalus;
    const int result = parserDataToNaluIdx(data, size, nalus);
    if (result != QVResultOk) {
        return result;
    }
    if (nalus.empty()) {
        return QVResultInvalidData;
    }
    out.clear();
    if (out.capacity() < bufferSize(size)) {
        out.reserve(bufferSize(size));
    }
    for (const auto& [offset, length] : nalus) {
        appendUnit(out, data + offset, static_cast<uint32_t>(length));
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
