#include "ReferenceFraming.h"

namespace qv_test {

namespace {

constexpr int kOk = 0;
constexpr int kInvalidData = 11000012;

constexpr uint32_t kAvc = 26;
constexpr uint32_t kHevc = 172;

// True when data holds pattern at position and at least one byte after it.
bool startCodeAt(const Bytes& data, size_t position, const Bytes& pattern) {
    if (position + pattern.size() >= data.size()) {
        return false;
    }
    for (size_t i = 0; i < pattern.size(); ++i) {
        if (data[position + i] != pattern[i]) {
            return false;
        }
    }
    return true;
}

const Bytes& threeByteCode() {
    static const Bytes code = {0x00, 0x00, 0x01};
    return code;
}

const Bytes& fourByteCode() {
    static const Bytes code = {0x00, 0x00, 0x00, 0x01};
    return code;
}

void closePrevious(NalIndexList& nalus, size_t end) {
    if (!nalus.empty()) {
        nalus.back().second = static_cast<int>(end) - nalus.back().first;
    }
}

// Big-endian, unsigned.
int64_t lengthAt(const Bytes& data, size_t position, size_t fieldSize) {
    int64_t length = 0;
    for (size_t i = 0; i < fieldSize; ++i) {
        length = length * 256 + data[position + i];
    }
    return length;
}

bool isKeyUnit(uint32_t codec, uint8_t b) {
    if (codec == kAvc) {
        return (b & 0x1F) == 5 || (b & 0x1E) == 0x14 || (b & 0x1C) == 0x10;
    }
    return (b & 0x7E) == 0x0A || (b & 0x7C) == 0x28 || (b & 0x78) == 0x20;
}

void append(Bytes& out, const Bytes& data, const std::pair<int, int>& unit) {
    for (int i = 0; i < unit.second; ++i) {
        out.push_back(data[static_cast<size_t>(unit.first + i)]);
    }
}

}  // namespace

bool referenceIsAnnexB(const Bytes& data) {
    if (data.size() < 4 || data[0] != 0 || data[1] != 0) {
        return false;
    }
    return data[2] == 1 || (data[2] == 0 && data[3] == 1);
}

int referenceAnnexBScan(const Bytes& data, NalIndexList& nalus) {
    if (!referenceIsAnnexB(data)) {
        return kInvalidData;
    }
    size_t i = 0;
    while (i < data.size()) {
        if (startCodeAt(data, i, fourByteCode())) {
            closePrevious(nalus, i);
            nalus.emplace_back(static_cast<int>(i + 4), 4);
            i += 5;
        } else if (startCodeAt(data, i, threeByteCode())) {
            closePrevious(nalus, i);
            nalus.emplace_back(static_cast<int>(i + 3), 3);
            i += 4;
        } else {
            i += 1;
        }
    }
    closePrevious(nalus, data.size());
    return kOk;
}

ReferenceLengthScan referenceLengthScan(const Bytes& data, int lengthSize) {
    ReferenceLengthScan scan;
    const size_t fieldSize = lengthSize == 1 ? 1 : lengthSize == 2 ? 2 : 4;
    size_t position = 0;
    while (data.size() - position > fieldSize) {
        const size_t remaining = data.size() - position;
        const int64_t length = lengthAt(data, position, fieldSize);
        if (length > static_cast<int64_t>(remaining - fieldSize)) {
            scan.isTruncated = true;
            scan.badLength = static_cast<int32_t>(length);
            scan.avaliableBytes = static_cast<int64_t>(remaining);
            return scan;
        }
        scan.nalus.emplace_back(static_cast<int>(position + fieldSize), static_cast<int>(length));
        position += fieldSize + static_cast<size_t>(length);
    }
    return scan;
}

std::vector<QVNaluParser::NaluInfo> referenceTyping(const Bytes& data, const NalIndexList& nalus,
                                                    uint32_t codec) {
    std::vector<QVNaluParser::NaluInfo> infos;
    for (const auto& [offset, length] : nalus) {
        const uint32_t b = data[static_cast<size_t>(offset)];
        if (b >= 0x80) {
            continue;
        }
        if (codec == kAvc) {
            infos.push_back({b & 0x1F, offset, length, (b & 0x7F) == 1});
        }
        if (codec == kHevc) {
            const uint32_t type = b >> 1 & 0x3F;
            infos.push_back({type, offset, length, type < 16 && type % 2 == 0});
        }
    }
    return infos;
}

std::vector<size_t> referenceKeyFrameOffsets(const Bytes& data) {
    std::vector<size_t> offsets;
    if (referenceIsAnnexB(data)) {
        NalIndexList nalus;
        referenceAnnexBScan(data, nalus);
        for (const auto& nalu : nalus) {
            offsets.push_back(static_cast<size_t>(nalu.first));
        }
        return offsets;
    }
    size_t p = 0;
    while (data.size() - p > 4) {
        const int64_t length = lengthAt(data, p, 4);
        p += 4;
        offsets.push_back(p);
        if (static_cast<int64_t>(p) + length <= static_cast<int64_t>(data.size())) {
            p += static_cast<size_t>(length);
        }
    }
    return offsets;
}

bool referenceIsKeyFrame(uint32_t codec, const Bytes& data) {
    if (codec != kAvc && codec != kHevc) {
        return false;
    }
    for (const size_t offset : referenceKeyFrameOffsets(data)) {
        if (isKeyUnit(codec, data[offset])) {
            return true;
        }
    }
    return false;
}

int referenceAnnexBToLengths(const Bytes& data, Bytes& out) {
    NalIndexList nalus;
    const int result = referenceAnnexBScan(data, nalus);
    if (result != kOk) {
        return result;
    }
    if (nalus.empty()) {
        return kInvalidData;
    }
    out.clear();
    for (const auto& nalu : nalus) {
        for (const int shift : {24, 16, 8, 0}) {
            out.push_back(static_cast<uint8_t>(nalu.second >> shift & 0xFF));
        }
        append(out, data, nalu);
    }
    return kOk;
}

int referenceLengthsToAnnexB(const Bytes& data, int lengthSize, Bytes& out) {
    out.clear();
    const ReferenceLengthScan scan = referenceLengthScan(data, lengthSize);
    if (scan.nalus.empty()) {
        return kInvalidData;
    }
    const auto& [lastOffset, lastLength] = scan.nalus.back();
    if (static_cast<size_t>(lastOffset + lastLength) != data.size()) {
        return kInvalidData;
    }
    for (const auto& nalu : scan.nalus) {
        out.insert(out.end(), fourByteCode().begin(), fourByteCode().end());
        append(out, data, nalu);
    }
    return kOk;
}

}  // namespace qv_test
