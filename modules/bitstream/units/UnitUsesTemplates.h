// Units of any structure, traced and rewritten with the functions of their structure.
#ifndef QV_BITSTREAM_UNITS_UNITUSESTEMPLATES_H
#define QV_BITSTREAM_UNITS_UNITUSESTEMPLATES_H

#include <algorithm>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/syntax/Trace.h"
#include "bitstream/units/UnitUses.h"

namespace qv::detail {

// The functions of a structure, with whatever they need beyond the unit.
template <class Read, class Trace, class Write>
struct UnitFunctions {
    Read read;    // of a unit
    Trace trace;  // of a unit, with a visitor
    Write write;  // of a record, with an output
};

template <class Read, class Trace, class Write>
UnitFunctions(Read, Trace, Write) -> UnitFunctions<Read, Trace, Write>;

// Traces a unit whole.
class UnitTracer {
public:
    UnitTracer(Bytes unit, TraceVisitor& visitor, UnitTrace& trace)
        : unit_(unit), visitor_(visitor), trace_(trace) {}

    template <class Functions>
    void operator()(const Functions& functions) const {
        const auto read = functions.trace(unit_, visitor_);
        trace_.isWhole = true;
        trace_.fault = read.fault;
        trace_.trailing = read.trailing;
    }

private:
    Bytes unit_;
    TraceVisitor& visitor_;
    UnitTrace& trace_;
};

// Appends what is written from the record of a unit, and the bytes after rbsp_trailing_bits(), when all of it
// comes to the bytes of the unit. Otherwise out is as it was.
class UnitRewriter {
public:
    UnitRewriter(Bytes unit, std::vector<uint8_t>& out, UnitRewritten& rewritten)
        : unit_(unit), out_(out), rewritten_(rewritten) {}

    template <class Functions>
    void operator()(const Functions& functions) const {
        const auto read = functions.read(unit_);
        rewritten_.fault = read.fault;
        if (read.fault) {
            return;
        }
        const size_t before = out_.size();
        functions.write(read.record, out_);
        out_.insert(out_.end(), read.trailing.bytes.begin(), read.trailing.bytes.end());
        rewritten_.isRewritten =
            out_.size() - before == unit_.size &&
            std::equal(unit_.begin(), unit_.end(), out_.begin() + static_cast<std::ptrdiff_t>(before));
        if (!rewritten_.isRewritten) {
            out_.resize(before);
        }
    }

private:
    Bytes unit_;
    std::vector<uint8_t>& out_;
    UnitRewritten& rewritten_;
};

}  // namespace qv::detail

#endif
