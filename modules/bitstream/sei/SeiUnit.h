// An SEI unit: every message traced, and written from its record.
#ifndef QV_BITSTREAM_SEI_SEIUNIT_H
#define QV_BITSTREAM_SEI_SEIUNIT_H

#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/sei/SeiContext.h"
#include "bitstream/syntax/Trace.h"
#include "bitstream/units/UnitUses.h"

namespace qv::sei {

// Traces what follows the header of a unit: sei_rbsp(), H.264 7.3.2.3, H.265 7.3.2.4. A message with a fault
// does not keep the ones after it from being traced.
void traceSeiRbsp(Bytes unit, Context context, TraceVisitor& visitor, UnitTrace& trace);

// Appends a unit that is written from the records of its messages, when it has the bytes of the unit. A
// payload with a fault is written as bytes.
UnitRewritten rewriteSeiUnit(Bytes unit, Context context, std::vector<uint8_t>& out);

}  // namespace qv::sei

#endif
