#include "SlowUnits.h"

namespace qv_test {

namespace {

using qv::UnitFault;
using Buffer = std::vector<uint8_t>;

// next_bits() over whole bytes, H.264 7.2: never equal past the end.
bool nextBytesAre(const Buffer& buffer, size_t at, const Buffer& bytes) {
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (at + i >= buffer.size() || buffer[at + i] != bytes[i]) {
            return false;
        }
    }
    return true;
}

bool isStartCode(const Buffer& buffer, size_t at) {
    return nextBytesAre(buffer, at, {0, 0, 1}) || nextBytesAre(buffer, at, {0, 0, 0, 1});
}

void addHeaderFaults(const Buffer& buffer, qv::Codec codec, SlowUnit& unit) {
    if (unit.size == 0) {
        unit.faults.add(UnitFault::EmptyUnit);
        return;
    }
    const unsigned first = buffer[unit.offset];
    if (first >= 0x80) {
        unit.faults.add(UnitFault::ForbiddenZeroBit);
    }
    size_t headerBytes = 1;
    if (codec == qv::Codec::Hevc) {
        headerBytes = 2;
        if (unit.size >= 2 && buffer[unit.offset + 1] % 8 == 0) {
            unit.faults.add(UnitFault::NoTemporalId);
        }
    } else if (first % 32 == 14 || first % 32 == 20) {
        headerBytes = 4;
    } else if (first % 32 == 21) {
        headerBytes = unit.size >= 2 && buffer[unit.offset + 1] >= 0x80 ? 3 : 4;
    }
    if (unit.size < headerBytes) {
        unit.faults.add(UnitFault::HeaderCut);
    }
}

// byte_stream_nal_unit() until the end, B.1.1.
std::vector<SlowUnit> unitsAfterStartCodes(const Buffer& buffer, qv::Codec codec) {
    std::vector<SlowUnit> units;
    size_t at = 0;
    bool hasOtherBytes = false;
    while (at < buffer.size() && !isStartCode(buffer, at)) {
        hasOtherBytes = hasOtherBytes || buffer[at] != 0;
        ++at;
    }
    if (at == buffer.size()) {
        SlowUnit rest;
        rest.leadingBytes = at;
        rest.offset = at;
        rest.faults.add(UnitFault::NoStartCode);
        return at > 0 ? std::vector<SlowUnit>{rest} : units;
    }
    size_t leadingBytes = at;
    while (at < buffer.size()) {
        SlowUnit unit;
        unit.leadingBytes = leadingBytes;
        unit.prefixSize = nextBytesAre(buffer, at, {0, 0, 0, 1}) ? 4 : 3;
        at += unit.prefixSize;
        unit.offset = at;
        while (at < buffer.size() && !isStartCode(buffer, at)) {
            ++at;
        }
        unit.size = at - unit.offset;
        while (unit.size > 0 && buffer[unit.offset + unit.size - 1] == 0) {
            --unit.size;
            ++unit.trailingZeroBytes;
        }
        addHeaderFaults(buffer, codec, unit);
        if (units.empty() && hasOtherBytes) {
            unit.faults.add(UnitFault::BytesBeforeStartCode);
        }
        units.push_back(unit);
        leadingBytes = 0;
    }
    return units;
}

std::vector<SlowUnit> unitsAfterLengths(const Buffer& buffer, size_t lengthSize, qv::Codec codec) {
    std::vector<SlowUnit> units;
    for (size_t at = 0; at < buffer.size();) {
        SlowUnit unit;
        if (buffer.size() - at < lengthSize) {
            unit.leadingBytes = buffer.size() - at;
            unit.offset = buffer.size();
            unit.faults.add(UnitFault::LengthCut);
            units.push_back(unit);
            break;
        }
        uint64_t length = 0;
        for (size_t i = 0; i < lengthSize; ++i) {
            length = 256 * length + buffer[at++];
        }
        unit.prefixSize = lengthSize;
        unit.offset = at;
        for (; unit.size < length && at < buffer.size(); ++at) {
            ++unit.size;
        }
        if (unit.size < length) {
            unit.faults.add(UnitFault::LengthPastEnd);
        } else if (length > 0 && buffer[at - 1] == 0) {
            unit.faults.add(UnitFault::EndsWithZeroByte);
        }
        addHeaderFaults(buffer, codec, unit);
        units.push_back(unit);
    }
    return units;
}

}  // namespace

std::vector<SlowUnit> slowUnits(const std::vector<uint8_t>& buffer, qv::Framing framing, qv::Codec codec) {
    return framing == qv::Framing::StartCodes
               ? unitsAfterStartCodes(buffer, codec)
               : unitsAfterLengths(buffer, static_cast<size_t>(framing), codec);
}

std::string textOf(const SlowUnit& unit) {
    return std::to_string(unit.leadingBytes) + "+" + std::to_string(unit.prefixSize) + "+" +
           std::to_string(unit.size) + "+" + std::to_string(unit.trailingZeroBytes) + " at " +
           std::to_string(unit.offset) + " [" + qv::textOf(unit.faults) + "]";
}

std::string partsOf(const qv::NalUnit& unit) {
    SlowUnit same;
    same.leadingBytes = unit.leadingBytes;
    same.prefixSize = unit.prefixSize;
    same.offset = unit.offset;
    same.size = unit.bytes.size;
    same.trailingZeroBytes = unit.trailingZeroBytes;
    same.faults = unit.faults;
    return textOf(same);
}

}  // namespace qv_test
