// NAL units of a decoder configuration record as a syntax function.
#ifndef QV_BITSTREAM_UNITS_UNITLISTSYNTAX_H
#define QV_BITSTREAM_UNITS_UNITLISTSYNTAX_H

#include "bitstream/syntax/Element.h"
#include "bitstream/units/UnitList.h"

namespace qv {

// The units of a list, each after its length. The names take the subscripts before that of the unit.
template <class Syntax, class... Subscripts>
void unit_list(Syntax& s, const char* lengthName, const char* unitName, UnitList& list,
               Subscripts... subscripts) {
    const uint32_t count = list.count;
    s.keepBytes(list.coded, [=](auto& in) {
        for (uint32_t i = 0; i < count && !in.failed(); ++i) {
            uint32_t length = 0;
            Bytes unit;
            in.header(2);
            in.u(16, at(lengthName, subscripts..., i), length);
            in.bytes(length, at(unitName, subscripts..., i), unit);
        }
    });
}

}  // namespace qv

#endif
