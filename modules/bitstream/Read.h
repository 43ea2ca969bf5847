/// \file
/// What a read returns: the record as far as it was read, the first fault, and what was left over.
#ifndef QV_BITSTREAM_READ_H
#define QV_BITSTREAM_READ_H

#include <cstdint>
#include <string>

#include "bitstream/Bytes.h"
#include "bitstream/syntax/Element.h"

namespace qv {

/// What went wrong first.
enum class FaultKind : uint8_t {
    None,            ///< no fault
    EndOfData,       ///< the RBSP ends before or within the element
    OutOfRange,      ///< the element has a value that its semantics do not allow
    CodeTooLong,     ///< an Exp-Golomb code with more than 31 leading zero bits (H.264 9.1, H.265 9.2)
    OtherUnit,       ///< the unit has another nal_unit_type than the structure
    OtherPayload,    ///< the message has another payloadType than the structure
    DataLeft,        ///< data follows that no element covers
    TooManyEntries,  ///< a derived list grew beyond what the standard allows
    NoSuchSet,       ///< the structure refers to a parameter set that is not there
};

/// The first thing that is wrong with a structure: what, where, and by which clause. A default-constructed
/// fault is none.
struct Fault {
    FaultKind kind = FaultKind::None;  ///< what is wrong

    /// The element that was being read or written.
    Element element;

    /// The innermost syntax structure that the element is in; null before the first one.
    const Structure* structure = nullptr;

    /// The first bit of the element, counted in the unit without emulation prevention bytes, the NAL unit
    /// header included, from 0.
    uint64_t firstBit = 0;

    /// OutOfRange: the value. OtherUnit: the nal_unit_type. OtherPayload: the payloadType.
    int64_t value = 0;

    /// OutOfRange: the least value that is allowed.
    int64_t least = 0;

    /// OutOfRange: the greatest value that is allowed.
    int64_t most = 0;

    /// True when there is a fault.
    explicit constexpr operator bool() const { return kind != FaultKind::None; }
};

/// The name of an element with its subscripts: `bit_rate_value_minus1[0]`.
std::string textOf(const Element& element);

/// A fault as one line of text, for example
/// `cpb_cnt_minus1 in hrd_parameters() (E.1.2) at bit 197: 32 is not in 0..31`. Empty without a fault.
std::string textOf(const Fault& fault);

/// What follows the last element of a structure.
struct Trailing {
    /// Bits before rbsp_trailing_bits() that no element of the structure covers.
    uint64_t bits = 0;

    /// Bytes after rbsp_trailing_bits(): cabac_zero_words and zero bytes, borrowed from the unit.
    Bytes bytes;
};

/// What a read returns. After a fault the record holds what was read before it, and every element from the
/// fault on is 0.
template <class Record>
struct Read {
    Record record;      ///< what was read
    Fault fault;        ///< the first fault
    Trailing trailing;  ///< what is left over

    /// True when the whole structure was read without a fault.
    bool ok() const { return !fault; }
};

/// What a write returns.
struct Written {
    /// Bytes appended to the output; 0 after a fault, which leaves the output as it was.
    size_t size = 0;

    /// OutOfRange when an element does not fit its descriptor or its range.
    Fault fault;

    /// True when there is no fault.
    bool ok() const { return !fault; }
};

/// The size of a structure.
struct Sized {
    /// Bits of the unit, its header and rbsp_trailing_bits() included, without emulation prevention bytes; 0
    /// after a fault.
    uint64_t bits = 0;

    /// OutOfRange when an element does not fit its descriptor or its range.
    Fault fault;

    /// True when there is no fault.
    bool ok() const { return !fault; }
};

}  // namespace qv

#endif
