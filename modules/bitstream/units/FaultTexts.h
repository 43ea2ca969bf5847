// The faults of a set as text.
#ifndef QV_BITSTREAM_UNITS_FAULTTEXTS_H
#define QV_BITSTREAM_UNITS_FAULTTEXTS_H

#include <cstddef>
#include <string>

#include "bitstream/units/FaultSet.h"

namespace qv::detail {

template <class Kind>
struct FaultText {
    Kind fault;
    const char* text;
};

// The texts of the faults that are there, in the order of the table, separated by "; ".
template <class Kind, size_t kCount>
std::string textOf(FaultSet<Kind> faults, const FaultText<Kind> (&texts)[kCount]) {
    std::string text;
    for (const FaultText<Kind>& row : texts) {
        if (faults.has(row.fault)) {
            text += text.empty() ? "" : "; ";
            text += row.text;
        }
    }
    return text;
}

}  // namespace qv::detail

#endif
