/// \file
/// NAL units from one framing to another.
#ifndef QV_BITSTREAM_UNITS_REFRAME_H
#define QV_BITSTREAM_UNITS_REFRAME_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/units/Framing.h"
#include "bitstream/units/NalUnits.h"

namespace qv {

/// Takes bytes in the order of their writing.
class ByteSink {
public:
    /// A sink without bytes.
    ByteSink() = default;

    /// Sinks are owned by the caller.
    virtual ~ByteSink() = default;
    ByteSink(const ByteSink&) = delete;
    ByteSink& operator=(const ByteSink&) = delete;

    /// \p bytes is borrowed until the call returns.
    virtual void write(Bytes bytes) = 0;
};

/// Which framing is changed into which.
struct Reframing {
    Framing from = Framing::StartCodes;  ///< of the input
    Framing to = Framing::Lengths4;      ///< of the output

    /// Bytes of each start code that is written: 3, or 4 for every other value. Annex B asks for 4 bytes
    /// before parameter sets and at the start of an access unit (B.1.2), and allows them everywhere.
    uint32_t startCodeSize = 4;
};

/// What was found wrong first.
struct ReframeFault {
    /// What is wrong.
    enum class Kind : uint8_t {
        None,             ///< nothing
        Input,            ///< see \ref input; what there is of the unit is written
        StartCodeInUnit,  ///< a start code in a unit with a length; a reader of the output finds two units
        UnitTooLong,      ///< the unit does not fit its length; nothing is written
    };

    Kind kind = Kind::None;  ///< what is wrong

    /// Input: what is wrong with the framing of the input. Headers of units are not looked at.
    UnitFaults input;

    size_t unit = 0;    ///< the number of the unit in the input, from 0
    size_t offset = 0;  ///< its first byte in the input
    size_t size = 0;    ///< its bytes

    /// True when there is a fault.
    explicit operator bool() const { return kind != Kind::None; }
};

/// "unit 3 at byte 1234: its 70000 bytes do not fit the length". Empty without a fault.
std::string textOf(const ReframeFault& fault);

/// What became of a buffer.
struct Reframed {
    size_t size = 0;   ///< bytes written
    size_t units = 0;  ///< units written

    /// Bytes of the input that are not written, apart from start codes, lengths, leading_zero_8bits and
    /// trailing_zero_8bits.
    size_t droppedBytes = 0;

    size_t faultyUnits = 0;  ///< units with a fault, written or not
    ReframeFault fault;      ///< of the first of them, or UnitTooLong

    /// True when there is no fault.
    bool ok() const { return !fault; }
};

/// Writes the units of a buffer in another framing, or in the same with each start code of one size.
///
/// Units keep their bytes. leading_zero_8bits and trailing_zero_8bits are left out. A unit that its length
/// runs past the end of is written as far as it is there; a start code or a length without a unit, bytes
/// before the first start code and bytes too few for a length are left out; all of these are faults. A unit
/// too long for its length is a fault with which nothing is written, whatever comes before it.
///
/// \param in   borrowed
/// \param out  receives the bytes in pieces, among them those of \p in themselves
Reframed reframe(Bytes in, const Reframing& reframing, ByteSink& out);

/// As above. Appends to \p out, which grows once and must not hold the bytes of \p in.
Reframed reframe(Bytes in, const Reframing& reframing, std::vector<uint8_t>& out);

/// What reframe() returns, without an output.
Reframed reframedSize(Bytes in, const Reframing& reframing) noexcept;

}  // namespace qv

#endif
