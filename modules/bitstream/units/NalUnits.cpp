// The walk over the NAL units of a buffer: Annex B of H.264 and H.265, ISO/IEC 14496-15.
#include "bitstream/units/NalUnits.h"

#include <algorithm>

#include "bitstream/avc/NalUnitType.h"
#include "bitstream/syntax/Bits.h"
#include "bitstream/units/FaultTexts.h"
#include "bitstream/units/StartCode.h"
#include "startcode/StartCodeSearch.h"

namespace qv {

namespace {

// Bytes that one search covers, at most.
constexpr size_t kLookAhead = size_t{256} << 10;

// The fewest bytes of a header with its extension (7.3.1).
constexpr uint32_t kAvc3dHeaderBytes = 3;
constexpr uint32_t kExtendedHeaderBytes = 4;
constexpr uint32_t kHevcHeaderBytes = 2;

constexpr uint8_t kForbiddenZeroBit = 0x80;
constexpr uint8_t kAvc3dExtensionFlag = 0x80;

bool isZero(Bytes bytes) noexcept {
    return std::all_of(bytes.begin(), bytes.end(), [](uint8_t byte) { return byte == 0x00; });
}

uint32_t bigEndian(const uint8_t* bytes, size_t count) noexcept {
    uint32_t value = 0;
    for (size_t i = 0; i < count; ++i) {
        value = value << 8 | bytes[i];
    }
    return value;
}

// --- Headers ---

void readAvcHeaderExtension(NalUnit& unit) noexcept {
    const Bytes bytes = unit.bytes;
    const bool is3d = unit.nal_unit_type == avc::kNalSliceExtension3d && bytes.size > 1 &&
                      (bytes[1] & kAvc3dExtensionFlag) != 0;
    const uint32_t size = is3d ? kAvc3dHeaderBytes : kExtendedHeaderBytes;
    if (bytes.size < size) {
        unit.headerBytes = static_cast<uint32_t>(bytes.size);
        unit.faults.add(UnitFault::HeaderCut);
        return;
    }
    unit.headerBytes = size;
    unit.headerExtension = bigEndian(bytes.data + 1, size - 1);
}

// nal_unit(), H.264 7.3.1
QV_ALWAYS_INLINE void readAvcHeader(NalUnit& unit) noexcept {
    const uint32_t byte = unit.bytes[0];
    unit.headerBytes = 1;
    unit.nal_ref_idc = byte >> 5 & 3;
    unit.nal_unit_type = byte & 31;
    if (avc::hasHeaderExtension(unit.nal_unit_type)) {
        readAvcHeaderExtension(unit);
    }
}

// nal_unit_header(), H.265 7.3.1.2
void readHevcHeader(NalUnit& unit) noexcept {
    const Bytes bytes = unit.bytes;
    unit.nal_unit_type = bytes[0] >> 1 & 63;
    if (bytes.size < kHevcHeaderBytes) {
        unit.headerBytes = 1;
        unit.faults.add(UnitFault::HeaderCut);
        return;
    }
    unit.headerBytes = kHevcHeaderBytes;
    unit.nuh_layer_id = (bytes[0] & 1U) << 5 | bytes[1] >> 3;
    unit.nuh_temporal_id_plus1 = bytes[1] & 7;
    if (unit.nuh_temporal_id_plus1 == 0) {
        unit.faults.add(UnitFault::NoTemporalId);
    }
}

QV_ALWAYS_INLINE void readHeader(NalUnit& unit, Codec codec) noexcept {
    if (unit.bytes.empty()) {
        unit.faults.add(UnitFault::EmptyUnit);
        return;
    }
    if ((unit.bytes[0] & kForbiddenZeroBit) != 0) {
        unit.faults.add(UnitFault::ForbiddenZeroBit);
    }
    if (codec == Codec::Avc) {
        readAvcHeader(unit);
    } else {
        readHevcHeader(unit);
    }
}

}  // namespace

QV_ALWAYS_INLINE void NalUnits::Iterator::startUnit(size_t leadingBytes, size_t prefixSize, size_t offset,
                                                    size_t size) noexcept {
    item_ = NalUnit();
    item_.bytes = {buffer_.data + offset, size};
    item_.offset = offset;
    item_.prefixSize = static_cast<uint32_t>(prefixSize);
    item_.leadingBytes = leadingBytes;
    readHeader(item_, codec_);
}

// What is left has no unit.
void NalUnits::Iterator::takeRest(UnitFault fault) noexcept {
    item_ = NalUnit();
    item_.leadingBytes = buffer_.size - next_;
    item_.offset = buffer_.size;
    item_.bytes = {buffer_.end(), 0};
    item_.faults.add(fault);
    next_ = buffer_.size;
}

// --- Start codes, B.1.1 and B.2 ---

QV_ALWAYS_INLINE bool NalUnits::Iterator::isPrefix(size_t place) const noexcept {
    return buffer_.size - place >= kStartCodePrefixSize && buffer_[place] == 0x00 &&
           buffer_[place + 1] == 0x00 && buffer_[place + 2] == 0x01;
}

// Lists the next prefixes that begin at from or after it. False when there are none.
bool NalUnits::Iterator::listPrefixes(size_t from) noexcept {
    const size_t end = buffer_.size >= kStartCodePrefixSize ? buffer_.size - kStartCodePrefixSize + 1 : 0;
    passed_ = 0;
    listed_ = 0;
    for (size_t at = searchedTo_ > from ? searchedTo_ : from; at < end && listed_ == 0; at = searchedTo_) {
        const size_t limit = end - at > kLookAhead ? at + kLookAhead : end;
        listed_ = qv_detail::listPrefixes(buffer_.data, at, limit, places_, kMostListed);
        searchedTo_ = listed_ == kMostListed ? places_[listed_ - 1] + 1 : limit;
    }
    return listed_ > 0;
}

// Where the next prefix begins, at from or after it; the end of the buffer when there is none.
QV_ALWAYS_INLINE size_t NalUnits::Iterator::nextPrefix(size_t from) noexcept {
    // The search takes a prefix and the byte after it together, and leaves out one that follows at once.
    if (isPrefix(from)) {
        return from;
    }
    while (passed_ < listed_ && places_[passed_] < from) {
        ++passed_;
    }
    if (passed_ == listed_ && !listPrefixes(from)) {
        return buffer_.size;
    }
    return places_[passed_++];
}

// The unit after the prefix at next_. Of the zero bytes after it, the last one is the zero_byte of the next
// start code.
QV_ALWAYS_INLINE void NalUnits::Iterator::takeUnitAfterStartCode(size_t leadingBytes) noexcept {
    const size_t offset = next_ + kStartCodePrefixSize;
    const size_t next = nextPrefix(offset);
    size_t end = next;
    while (end > offset && buffer_[end - 1] == 0x00) {
        --end;
    }
    const bool nextHasZeroByte = end != next && next != buffer_.size;
    startUnit(leadingBytes, nextHasZeroByte_ ? kStartCodePrefixSize + 1 : kStartCodePrefixSize, offset,
              end - offset);
    item_.trailingZeroBytes = next - end - (nextHasZeroByte ? 1 : 0);
    next_ = next;
    nextHasZeroByte_ = nextHasZeroByte;
}

void NalUnits::Iterator::findFirstStartCode() noexcept {
    const size_t first = nextPrefix(0);
    if (first == buffer_.size) {
        takeRest(UnitFault::NoStartCode);
        return;
    }
    next_ = first;
    nextHasZeroByte_ = next_ > 0 && buffer_[next_ - 1] == 0x00;
    takeUnitAfterStartCode(nextHasZeroByte_ ? next_ - 1 : next_);
    if (!isZero(item_.leading())) {
        item_.faults.add(UnitFault::BytesBeforeStartCode);
    }
}

// --- Lengths, ISO/IEC 14496-15 5.3.4.2 and 8.3.3.2 ---

void NalUnits::Iterator::takeUnitAfterLength() noexcept {
    const size_t lengthSize = lengthSizeOf(framing_);
    const size_t left = buffer_.size - next_;
    if (left < lengthSize) {
        takeRest(UnitFault::LengthCut);
        return;
    }
    const uint32_t length = bigEndian(buffer_.data + next_, lengthSize);
    const size_t offset = next_ + lengthSize;
    const size_t room = left - lengthSize;
    startUnit(0, lengthSize, offset, length < room ? length : room);
    item_.NALUnitLength = length;
    next_ = offset + item_.bytes.size;
    if (length > room) {
        item_.faults.add(UnitFault::LengthPastEnd);
    } else if (length > 0 && buffer_[next_ - 1] == 0x00) {
        item_.faults.add(UnitFault::EndsWithZeroByte);
    }
}

// --- The walk ---

NalUnits::Iterator NalUnits::begin() const noexcept {
    return {buffer_, framing_, codec_};
}

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): a search fills the list
NalUnits::Iterator::Iterator(Bytes buffer, Framing framing, Codec codec) noexcept
    : buffer_(buffer), framing_(framing), codec_(codec) {
    if (buffer_.empty()) {
        isAtEnd_ = true;
    } else if (framing_ == Framing::StartCodes) {
        findFirstStartCode();
    } else {
        takeUnitAfterLength();
    }
}

NalUnits::Iterator& NalUnits::Iterator::operator++() noexcept {
    if (next_ == buffer_.size) {
        isAtEnd_ = true;
    } else if (framing_ == Framing::StartCodes) {
        takeUnitAfterStartCode(0);
    } else {
        takeUnitAfterLength();
    }
    return *this;
}

NalUnit nalUnitOf(Bytes unit, Codec codec) noexcept {
    NalUnit alone;
    alone.bytes = unit;
    readHeader(alone, codec);
    return alone;
}

// --- Text ---

std::string textOf(UnitFaults faults) {
    static constexpr detail::FaultText<UnitFault> kTexts[] = {
        {UnitFault::BytesBeforeStartCode, "bytes before the first start code"},
        {UnitFault::NoStartCode, "no start code"},
        {UnitFault::LengthCut, "fewer bytes left than a NALUnitLength has"},
        {UnitFault::LengthPastEnd, "the NALUnitLength runs past the end"},
        {UnitFault::EmptyUnit, "an empty unit"},
        {UnitFault::HeaderCut, "the unit ends within its header"},
        {UnitFault::ForbiddenZeroBit, "forbidden_zero_bit is 1"},
        {UnitFault::NoTemporalId, "nuh_temporal_id_plus1 is 0"},
        {UnitFault::EndsWithZeroByte, "the unit ends with a zero byte"},
    };
    return detail::textOf(faults, kTexts);
}

}  // namespace qv
