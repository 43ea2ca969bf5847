// Any H.265 NAL unit, traced or written from its record.
#include "bitstream/hevc/Unit.h"

#include "bitstream/hevc/NalUnitHeaderSyntax.h"
#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/hevc/SmallUnits.h"
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
    trace.isWhole = true;
    switch (trace.nal_unit_type) {
        case kNalVps:
            detail::keepTrace(trace, traceVps(unit, visitor));
            break;
        case kNalSps:
            detail::keepTrace(trace, traceSps(unit, visitor, vpsOf(unit, sets)));
            break;
        case kNalPps:
            detail::keepTrace(trace, tracePps(unit, visitor));
            break;
        case kNalAccessUnitDelimiter:
            detail::keepTrace(trace, traceAccessUnitDelimiter(unit, visitor));
            break;
        case kNalEndOfSequence:
            detail::keepTrace(trace, traceEndOfSequence(unit, visitor));
            break;
        case kNalEndOfBitstream:
            detail::keepTrace(trace, traceEndOfBitstream(unit, visitor));
            break;
        case kNalFillerData:
            detail::keepTrace(trace, traceFillerData(unit, visitor));
            break;
        default:
            trace.isWhole = false;
            trace.fault = traceHeader(unit, visitor);
            break;
    }
    return trace;
}

UnitRewritten rewriteUnit(Bytes unit, const ParameterSets& sets, std::vector<uint8_t>& out) {
    switch (typeOf(unit)) {
        case kNalVps:
            return detail::rewrite(unit, readVps(unit), out, writeVps);
        case kNalSps: {
            const Vps* const vps = vpsOf(unit, sets);
            const auto write = [vps](const Sps& sps, std::vector<uint8_t>& bytes) {
                return writeSps(sps, bytes, vps);
            };
            return detail::rewrite(unit, readSps(unit, vps), out, write);
        }
        case kNalPps:
            return detail::rewrite(unit, readPps(unit), out, writePps);
        case kNalAccessUnitDelimiter:
            return detail::rewrite(unit, readAccessUnitDelimiter(unit), out, writeAccessUnitDelimiter);
        case kNalEndOfSequence:
            return detail::rewrite(unit, readEndOfSequence(unit), out, writeEndOfSequence);
        case kNalEndOfBitstream:
            return detail::rewrite(unit, readEndOfBitstream(unit), out, writeEndOfBitstream);
        case kNalFillerData:
            return detail::rewrite(unit, readFillerData(unit), out, writeFillerData);
        default:
            return {};
    }
}

}  // namespace qv::hevc
