/// \file
/// The NAL units of a buffer, one after the other.
#ifndef QV_BITSTREAM_UNITS_NALUNITS_H
#define QV_BITSTREAM_UNITS_NALUNITS_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "bitstream/Bytes.h"
#include "bitstream/Codec.h"
#include "bitstream/units/FaultSet.h"
#include "bitstream/units/Framing.h"
#include "bitstream/units/ItemIterator.h"

namespace qv {

/// What is wrong with a unit or with the bytes around it.
enum class UnitFault : uint32_t {
    /// Bytes other than leading_zero_8bits precede the first start code (B.1.1).
    BytesBeforeStartCode = 1U << 0,
    /// The buffer has no start code. The item has no unit; all bytes are its leading bytes.
    NoStartCode = 1U << 1,
    /// Fewer bytes are left than a NALUnitLength has. The item has no unit; they are its leading bytes.
    LengthCut = 1U << 2,
    /// The NALUnitLength runs past the end. The unit holds the bytes that are there.
    LengthPastEnd = 1U << 3,
    /// A start code or a NALUnitLength without a unit.
    EmptyUnit = 1U << 4,
    /// The unit ends within its header (7.3.1).
    HeaderCut = 1U << 5,
    /// forbidden_zero_bit is 1 (7.4.1, H.265 7.4.2.2).
    ForbiddenZeroBit = 1U << 6,
    /// nuh_temporal_id_plus1 is 0 (H.265 7.4.2.2).
    NoTemporalId = 1U << 7,
    /// With lengths: the unit ends with a zero byte (7.4.1). With start codes such a byte is one of
    /// trailing_zero_8bits and no fault.
    EndsWithZeroByte = 1U << 8,
};

/// The faults of one unit.
using UnitFaults = FaultSet<UnitFault>;

/// One NAL unit of a buffer and what is around it. Its parts follow each other: leading bytes, start code or
/// NALUnitLength, unit, trailing_zero_8bits. Every byte of the buffer belongs to exactly one part of one
/// unit.
struct NalUnit {
    /// The unit, from its header to its last byte, borrowed from the buffer. The pointer is one into the
    /// buffer even where the unit is empty.
    Bytes bytes;

    /// The first byte of the unit in the buffer.
    size_t offset = 0;

    /// Bytes of the start code, 3 or 4, or of the NALUnitLength; 0 when there is neither.
    uint32_t prefixSize = 0;

    /// NALUnitLength as coded; 0 with start codes.
    uint32_t NALUnitLength = 0;

    /// Bytes before the prefix that belong to no unit: before the first start code, leading_zero_8bits and,
    /// as a fault, others; after the last unit with a length, as a fault, those that are left.
    size_t leadingBytes = 0;

    /// trailing_zero_8bits after the unit; 0 with lengths.
    size_t trailingZeroBytes = 0;

    UnitFaults faults;  ///< what is wrong with it

    /// Bytes of the NAL unit header: H.264 1, or with its extension 3 (3D-AVC) or 4; H.265 2. Fewer with
    /// HeaderCut; the fields of a header that is cut are 0 where their bits are missing.
    uint32_t headerBytes = 0;

    uint32_t nal_unit_type = 0;          ///< u(5), H.265: u(6)
    uint32_t nal_ref_idc = 0;            ///< H.264: u(2)
    uint32_t nuh_layer_id = 0;           ///< H.265: u(6)
    uint32_t nuh_temporal_id_plus1 = 0;  ///< H.265: u(3)

    /// H.264: the header extension of types 14, 20 and 21 as coded, from svc_extension_flag or
    /// avc_3d_extension_flag in the top bit on: 24 bits, 3D-AVC 16 bits. avc::readNalUnitHeader() reads its
    /// fields.
    uint32_t headerExtension = 0;

    /// False when there is a fault.
    bool ok() const { return !faults; }

    /// The leading bytes.
    Bytes leading() const { return {bytes.data - prefixSize - leadingBytes, leadingBytes}; }

    /// The first byte in the buffer that belongs to this unit or to one of the parts around it.
    size_t begin() const { return offset - prefixSize - leadingBytes; }

    /// The first byte in the buffer that belongs to the next one.
    size_t end() const { return offset + bytes.size + trailingZeroBytes; }
};

/// The NAL units of a buffer, found while they are asked for:
///
///     for (const NalUnit& unit : NalUnits(buffer, Framing::StartCodes, Codec::Avc)) { ... }
///
/// Units are found as Annex B (both standards) and ISO/IEC 14496-15 define it. Whatever the buffer holds,
/// each of its bytes is in one unit or in a part around it, and what is wrong is reported with the unit.
/// Nothing is allocated. Work is linear in the size of the buffer; each byte is looked at when its unit, or
/// one up to 256 KiB before it, is asked for.
class NalUnits {
public:
    class Iterator;

    /// \p buffer is borrowed. A null pointer is allowed with size 0, and holds no units.
    NalUnits(Bytes buffer, Framing framing, Codec codec) noexcept
        : buffer_(buffer), framing_(framing), codec_(codec) {}

    /// The first unit. Finds it.
    Iterator begin() const noexcept;

    /// The end: after the last unit.
    static EndOfItems end() noexcept { return {}; }

private:
    Bytes buffer_;
    Framing framing_;
    Codec codec_;
};

/// An iterator over the units of a buffer.
class NalUnits::Iterator : public ItemIterator<NalUnits::Iterator, NalUnit> {
public:
    using ItemIterator::operator++;

    /// Goes on to the next unit. Not allowed at the end.
    Iterator& operator++() noexcept;

private:
    friend class NalUnits;

    // Start codes are listed some at a time: one search costs little even where units are small.
    static constexpr size_t kMostListed = 32;

    Iterator(Bytes buffer, Framing framing, Codec codec) noexcept;

    void findFirstStartCode() noexcept;
    void takeUnitAfterStartCode(size_t leadingBytes) noexcept;
    void takeUnitAfterLength() noexcept;
    void takeRest(UnitFault fault) noexcept;
    void startUnit(size_t leadingBytes, size_t prefixSize, size_t offset, size_t size) noexcept;
    size_t nextPrefix(size_t from) noexcept;
    bool isPrefix(size_t place) const noexcept;
    bool listPrefixes(size_t from) noexcept;

    Bytes buffer_;
    Framing framing_;
    Codec codec_;
    bool nextHasZeroByte_ = false;  // the prefix at next_ follows the zero_byte of its start code
    size_t next_ = 0;        // where the next prefix or NALUnitLength begins; the end when there is none
    size_t searchedTo_ = 0;  // no prefix begins before it that is not in the list
    size_t listed_ = 0;
    size_t passed_ = 0;  // of those listed
    size_t places_[kMostListed];
};

/// One unit on its own: \p unit is the unit from its header on, without start code or length.
NalUnit nalUnitOf(Bytes unit, Codec codec) noexcept;

/// What is wrong, as a line of text without a line feed; empty without a fault. With several faults the texts
/// are separated by "; ".
std::string textOf(UnitFaults faults);

}  // namespace qv

#endif
