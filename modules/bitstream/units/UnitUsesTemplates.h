// How a unit is traced or rewritten with the functions of its structure.
#ifndef QV_BITSTREAM_UNITS_UNITUSESTEMPLATES_H
#define QV_BITSTREAM_UNITS_UNITUSESTEMPLATES_H

#include <algorithm>
#include <vector>

#include "bitstream/units/UnitUses.h"

namespace qv::detail {

template <class Record>
void keepTrace(UnitTrace& trace, const Read<Record>& read) {
    trace.fault = read.fault;
    trace.trailing = read.trailing;
}

// Appends to out what write(record, out) writes, and the bytes after rbsp_trailing_bits(), when all of it
// comes to the bytes of the unit. Otherwise out is as it was.
template <class Record, class Write>
UnitRewritten rewrite(Bytes unit, const Read<Record>& read, std::vector<uint8_t>& out, const Write& write) {
    UnitRewritten rewritten;
    rewritten.fault = read.fault;
    if (read.fault) {
        return rewritten;
    }
    const size_t before = out.size();
    write(read.record, out);
    out.insert(out.end(), read.trailing.bytes.begin(), read.trailing.bytes.end());
    rewritten.isRewritten =
        out.size() - before == unit.size &&
        std::equal(unit.begin(), unit.end(), out.begin() + static_cast<std::ptrdiff_t>(before));
    if (!rewritten.isRewritten) {
        out.resize(before);
    }
    return rewritten;
}

}  // namespace qv::detail

#endif
