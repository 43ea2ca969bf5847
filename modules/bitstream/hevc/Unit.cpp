// Any H.265 NAL unit, traced or written from its record.
#include "bitstream/hevc/Unit.h"

#include "bitstream/hevc/NalUnitHeaderSyntax.h"
#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/hevc/SmallUnits.h"
#include "bitstream/sei/SeiUnit.h"
#include "bitstream/syntax/Tracer.h"
#include "bitstream/units/UnitUsesTemplates.h"

namespace qv::hevc {

namespace {

uint32_t typeOf(Bytes unit) {
    return unit.empty() ? 0 : unit[0] >> 1 & 0x3FU;
}

// The identifier of the VPS comes before everything that depends on it.
const Vps* vpsOf(Bytes unit, const ParameterSets& sets) {
    return sets.vps(readSps(unit).record.sps_video_parameter_set_id);
}

// Of a unit that is not traced whole: what follows the header is not looked at.
Fault traceHeader(Bytes unit, TraceVisitor& visitor) {
    NalUnitHeader header = {};
    Tracer tracer(unit, visitor);
    nal_unit_header(tracer, header);
    return tracer.fault();
}

// Calls use(UnitFunctions) for a type whose units have a record; false for others.
template <class Use>
bool withFunctions(Bytes unit, const ParameterSets& sets, const Use& use) {
    switch (typeOf(unit)) {
        case kNalVps:
            use(detail::UnitFunctions{readVps, traceVps, writeVps});
            return true;
        case kNalSps: {
            const Vps* const vps = vpsOf(unit, sets);
            use(detail::UnitFunctions{
                [vps](Bytes bytes) { return readSps(bytes, vps); },
                [vps](Bytes bytes, TraceVisitor& visitor) { return traceSps(bytes, visitor, vps); },
                [vps](const Sps& sps, std::vector<uint8_t>& out) { return writeSps(sps, out, vps); }});
            return true;
        }
        case kNalPps:
            use(detail::UnitFunctions{readPps, tracePps, writePps});
            return true;
        case kNalAccessUnitDelimiter:
            use(detail::UnitFunctions{readAccessUnitDelimiter, traceAccessUnitDelimiter,
                                      writeAccessUnitDelimiter});
            return true;
        case kNalEndOfSequence:
            use(detail::UnitFunctions{readEndOfSequence, traceEndOfSequence, writeEndOfSequence});
            return true;
        case kNalEndOfBitstream:
            use(detail::UnitFunctions{readEndOfBitstream, traceEndOfBitstream, writeEndOfBitstream});
            return true;
        case kNalFillerData:
            use(detail::UnitFunctions{readFillerData, traceFillerData, writeFillerData});
            return true;
        default:
            return false;
    }
}

}  // namespace

const char* structureOf(uint32_t nal_unit_type) noexcept {
    if (isSlice(nal_unit_type)) {
        return "slice_segment_layer_rbsp";
    }
    switch (nal_unit_type) {
        case kNalVps:
            return "video_parameter_set_rbsp";
        case kNalSps:
            return "seq_parameter_set_rbsp";
        case kNalPps:
            return "pic_parameter_set_rbsp";
        case kNalAccessUnitDelimiter:
            return "access_unit_delimiter_rbsp";
        case kNalEndOfSequence:
            return "end_of_seq_rbsp";
        case kNalEndOfBitstream:
            return "end_of_bitstream_rbsp";
        case kNalFillerData:
            return "filler_data_rbsp";
        case kNalPrefixSei:
        case kNalSuffixSei:
            return "sei_rbsp";
        default:
            return nullptr;
    }
}

UnitTrace traceUnit(Bytes unit, const ParameterSets& sets, TraceVisitor& visitor) {
    UnitTrace trace;
    trace.nal_unit_type = typeOf(unit);
    trace.structure = structureOf(trace.nal_unit_type);
    if (!withFunctions(unit, sets, detail::UnitTracer(unit, visitor, trace))) {
        trace.fault = traceHeader(unit, visitor);
        if (isSei(typeOf(unit)) && !trace.fault) {
            sei::traceSeiRbsp(unit, sei::Context(sets), visitor, trace);
        }
    }
    return trace;
}

UnitRewritten rewriteUnit(Bytes unit, const ParameterSets& sets, std::vector<uint8_t>& out) {
    if (isSei(typeOf(unit))) {
        return sei::rewriteSeiUnit(unit, sei::Context(sets), out);
    }
    UnitRewritten rewritten;
    withFunctions(unit, sets, detail::UnitRewriter(unit, out, rewritten));
    return rewritten;
}

}  // namespace qv::hevc
