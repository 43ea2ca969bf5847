/// \file
/// NAL units of a decoder configuration record.
#ifndef QV_BITSTREAM_UNITS_UNITLIST_H
#define QV_BITSTREAM_UNITS_UNITLIST_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Codec.h"
#include "bitstream/units/NalUnits.h"

namespace qv {

/// NAL units, each after its length in 16 bits, as decoder configuration records hold them. Borrowed.
struct UnitList {
    /// How many there are.
    uint32_t count = 0;

    /// The lengths and the units. Where the record ends within the list, the rest of the record.
    Bytes coded;

    /// The units, in order. Where the record ends within the list, the last one is cut, as its faults say.
    NalUnits units(Codec codec) const { return {coded, Framing::Lengths2, codec}; }
};

/// True when the record ends within the unit or within its length.
inline bool isCut(const NalUnit& unit) {
    return unit.faults.has(UnitFault::LengthCut) || unit.faults.has(UnitFault::LengthPastEnd);
}

/// Appends a unit and its length to the bytes of a list.
///
/// \return false, with nothing appended, when the unit has more than 65535 bytes
bool appendUnit(Bytes unit, std::vector<uint8_t>& coded);

}  // namespace qv

#endif
