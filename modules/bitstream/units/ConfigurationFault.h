// Faults of configuration records that are not those of one element's bits.
#ifndef QV_BITSTREAM_UNITS_CONFIGURATIONFAULT_H
#define QV_BITSTREAM_UNITS_CONFIGURATIONFAULT_H

#include <cstdint>

#include "bitstream/Read.h"
#include "bitstream/units/Framing.h"
#include "bitstream/units/UnitList.h"

namespace qv::detail {

Fault outOfRange(const Structure& structure, const Element& element, int64_t value, int64_t least,
                 int64_t most);

// The unit with this number, from 0, is none that the record holds, ends within its header, or is too long.
Fault otherUnit(const Structure& structure, size_t number, uint32_t nal_unit_type);
Fault unitCut(const Structure& structure, size_t number);
Fault unitTooLong(const Structure& structure, size_t number, size_t size);

// The count of a list is not the number of units that it holds, or the last of them is cut.
Fault checkCount(const Structure& structure, const Element& count, const UnitList& list);

// lengthSizeMinusOne of samples: 0, 1 or 3.
Fault setLengthSize(const Structure& structure, Framing framing, uint32_t& lengthSizeMinusOne);

}  // namespace qv::detail

#endif
