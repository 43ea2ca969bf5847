/// \file
/// What tracing and rewriting of any NAL unit return.
#ifndef QV_BITSTREAM_UNITS_UNITUSES_H
#define QV_BITSTREAM_UNITS_UNITUSES_H

#include "bitstream/Read.h"

namespace qv {

/// What traceUnit() found.
struct UnitTrace {
    /// nal_unit_type; 0 for an empty unit.
    uint32_t nal_unit_type = 0;

    /// The syntax structure of the unit's RBSP as the standard names it, without parentheses; null for
    /// reserved and unspecified types.
    const char* structure = nullptr;

    /// True when the whole RBSP is traced; false when only the header is.
    bool isWhole = false;

    /// The first fault.
    Fault fault;

    /// What is left over after the RBSP; nothing when only the header is traced.
    Trailing trailing;

    /// True when there is no fault.
    bool ok() const { return !fault; }
};

/// What rewriteUnit() did.
struct UnitRewritten {
    /// True when the unit was read into a record and written from it, and the bytes are the same.
    bool isRewritten = false;

    /// Why a unit of a known structure cannot be read. None for units of other structures, and for units
    /// whose record is written with other bytes: emulation prevention where 7.4.1 does not ask for it.
    Fault fault;
};

}  // namespace qv

#endif
