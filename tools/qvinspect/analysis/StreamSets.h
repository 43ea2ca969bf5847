// The parameter sets in force of the stream, and its units read by them.
#ifndef QVINSPECT_STREAMSETS_H
#define QVINSPECT_STREAMSETS_H

#include <cstdint>
#include <vector>

#include "QVCodecParameters.h"
#include "bitstream/avc/Unit.h"
#include "bitstream/hevc/Unit.h"
#include "bitstream/sei/SeiContext.h"
#include "bitstream/units/NalUnits.h"

namespace qvinspect {

// Units are given in the order of the stream: first what trace() or rewrite() reads, then take() for what
// follows. Units are given from their header on and are borrowed for the call.
class StreamSets {
public:
    explicit StreamSets(QVCodecID codec) : isAvc_(codec == QVCodecIDAvc) {}

    // nal_unit_type; 0 for an empty unit.
    uint32_t typeOf(qv::Bytes unit) const {
        return qv::nalUnitOf(unit, isAvc_ ? qv::Codec::Avc : qv::Codec::Hevc).nal_unit_type;
    }

    // The syntax structure of the unit's RBSP; null for reserved and unspecified types.
    const char* structureOf(qv::Bytes unit) const {
        return isAvc_ ? qv::avc::structureOf(typeOf(unit)) : qv::hevc::structureOf(typeOf(unit));
    }

    qv::UnitTrace trace(qv::Bytes unit, qv::TraceVisitor& visitor) const {
        return isAvc_ ? qv::avc::traceUnit(unit, avc_, visitor) : qv::hevc::traceUnit(unit, hevc_, visitor);
    }

    qv::UnitRewritten rewrite(qv::Bytes unit, std::vector<uint8_t>& out) const {
        return isAvc_ ? qv::avc::rewriteUnit(unit, avc_, out) : qv::hevc::rewriteUnit(unit, hevc_, out);
    }

    // For the SEI messages of the next unit.
    qv::sei::Context context() const { return isAvc_ ? qv::sei::Context(avc_) : qv::sei::Context(hevc_); }

    // The VPS with an identifier; null without one, and for H.264.
    const qv::hevc::Vps* vps(uint32_t id) const { return hevc_.vps(id); }

    void take(qv::Bytes unit) {
        if (isAvc_) {
            avc_.take(unit);
        } else {
            hevc_.take(unit);
        }
    }

private:
    bool isAvc_;
    qv::avc::ParameterSets avc_;
    qv::hevc::ParameterSets hevc_;
};

}  // namespace qvinspect

#endif
