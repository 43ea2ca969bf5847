/// \file
/// Any H.265 NAL unit: its elements, and its bytes written from its record.
#ifndef QV_BITSTREAM_HEVC_UNIT_H
#define QV_BITSTREAM_HEVC_UNIT_H

#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/hevc/ParameterSets.h"
#include "bitstream/syntax/Trace.h"
#include "bitstream/units/UnitUses.h"

namespace qv::hevc {

/// The syntax structure of the RBSP of a type, Table 7-1, without parentheses:
/// "seq_parameter_set_rbsp". Null for reserved and unspecified types.
const char* structureOf(uint32_t nal_unit_type) noexcept;

/// Reports every element of a unit in bitstream order: all of parameter sets (types 32 to 34), delimiters
/// (35), ends (36 and 37), filler data (38) and SEI (39 and 40), and the header of all others.
///
/// \param unit  one NAL unit from its header on, without start code or length
/// \param sets  the sets in force before the unit. An SPS of a layer above 0 is read with the VPS that it
///              refers to, if there is one.
UnitTrace traceUnit(Bytes unit, const ParameterSets& sets, TraceVisitor& visitor);

/// Reads a unit of one of the types that traceUnit() covers whole into its record, and appends what is
/// written from the record to \p out. When the unit is of another type, has a fault, or would have other
/// bytes, nothing is appended. Of SEI, each message is written from its record, and one whose payload has a
/// fault from its bytes.
///
/// \param unit  one NAL unit from its header on; must not be part of \p out
/// \param sets  the sets in force before the unit
UnitRewritten rewriteUnit(Bytes unit, const ParameterSets& sets, std::vector<uint8_t>& out);

}  // namespace qv::hevc

#endif
