// Any H.264 NAL unit, traced or written from its record.
#include "bitstream/avc/Unit.h"

#include "bitstream/avc/AccessUnitDelimiter.h"
#include "bitstream/avc/EndOfSequence.h"
#include "bitstream/avc/FillerData.h"
#include "bitstream/avc/NalUnitHeaderSyntax.h"
#include "bitstream/avc/NalUnitType.h"
#include "bitstream/avc/PrefixNalUnit.h"
#include "bitstream/syntax/Tracer.h"
#include "bitstream/units/UnitUsesTemplates.h"

namespace qv::avc {

namespace {

uint32_t typeOf(Bytes unit) {
    return unit.empty() ? 0 : unit[0] & 0x1FU;
}

// chroma_format_idc of the SPS that a PPS refers to. A PPS of a non-base layer may refer to a subset SPS
// alone.
uint32_t chromaFormatFor(const Pps& pps, const ParameterSets& sets) {
    constexpr uint32_t kChroma420 = 1;
    if (const Sps* const sps = sets.sps(pps.seq_parameter_set_id)) {
        return sps->data.chroma_format_idc;
    }
    const SubsetSps* const subset = sets.subsetSps(pps.seq_parameter_set_id);
    return subset != nullptr ? subset->data.chroma_format_idc : kChroma420;
}

// What precedes the identifier of the SPS in a PPS does not depend on the format.
uint32_t chromaFormatFor(Bytes unit, const ParameterSets& sets) {
    return chromaFormatFor(readPps(unit, 1).record, sets);
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
    switch (nal_unit_type) {
        case kNalSliceNonIdr:
        case kNalSliceIdr:
        case kNalAuxiliarySlice:
            return "slice_layer_without_partitioning_rbsp";
        case kNalSliceDataPartitionA:
            return "slice_data_partition_a_layer_rbsp";
        case kNalSliceDataPartitionB:
            return "slice_data_partition_b_layer_rbsp";
        case kNalSliceDataPartitionC:
            return "slice_data_partition_c_layer_rbsp";
        case kNalSei:
            return "sei_rbsp";
        case kNalSps:
            return "seq_parameter_set_rbsp";
        case kNalPps:
            return "pic_parameter_set_rbsp";
        case kNalAccessUnitDelimiter:
            return "access_unit_delimiter_rbsp";
        case kNalEndOfSequence:
            return "end_of_seq_rbsp";
        case kNalEndOfStream:
            return "end_of_stream_rbsp";
        case kNalFillerData:
            return "filler_data_rbsp";
        case kNalSpsExtension:
            return "seq_parameter_set_extension_rbsp";
        case kNalPrefix:
            return "prefix_nal_unit_rbsp";
        case kNalSubsetSps:
            return "subset_seq_parameter_set_rbsp";
        case kNalDepthParameterSet:
            return "depth_parameter_set_rbsp";
        case kNalSliceExtension:
        case kNalSliceExtension3d:
            return "slice_layer_extension_rbsp";
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
        case kNalSps:
            detail::keepTrace(trace, traceSps(unit, visitor));
            break;
        case kNalPps:
            detail::keepTrace(trace, tracePps(unit, chromaFormatFor(unit, sets), visitor));
            break;
        case kNalAccessUnitDelimiter:
            detail::keepTrace(trace, traceAccessUnitDelimiter(unit, visitor));
            break;
        case kNalEndOfSequence:
            detail::keepTrace(trace, traceEndOfSequence(unit, visitor));
            break;
        case kNalEndOfStream:
            detail::keepTrace(trace, traceEndOfStream(unit, visitor));
            break;
        case kNalFillerData:
            detail::keepTrace(trace, traceFillerData(unit, visitor));
            break;
        case kNalSpsExtension:
            detail::keepTrace(trace, traceSpsExtension(unit, visitor));
            break;
        case kNalPrefix:
            detail::keepTrace(trace, tracePrefixNalUnit(unit, visitor));
            break;
        case kNalSubsetSps:
            detail::keepTrace(trace, traceSubsetSps(unit, visitor));
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
        case kNalSps:
            return detail::rewrite(unit, readSps(unit), out, writeSps);
        case kNalPps: {
            const uint32_t chroma_format_idc = chromaFormatFor(unit, sets);
            return detail::rewrite(unit, readPps(unit, chroma_format_idc), out,
                                   [=](const Pps& pps, std::vector<uint8_t>& bytes) {
                                       return writePps(pps, chroma_format_idc, bytes);
                                   });
        }
        case kNalAccessUnitDelimiter:
            return detail::rewrite(unit, readAccessUnitDelimiter(unit), out, writeAccessUnitDelimiter);
        case kNalEndOfSequence:
            return detail::rewrite(unit, readEndOfSequence(unit), out, writeEndOfSequence);
        case kNalEndOfStream:
            return detail::rewrite(unit, readEndOfStream(unit), out, writeEndOfStream);
        case kNalFillerData:
            return detail::rewrite(unit, readFillerData(unit), out, writeFillerData);
        case kNalSpsExtension:
            return detail::rewrite(unit, readSpsExtension(unit), out, writeSpsExtension);
        case kNalPrefix:
            return detail::rewrite(unit, readPrefixNalUnit(unit), out, writePrefixNalUnit);
        case kNalSubsetSps:
            return detail::rewrite(unit, readSubsetSps(unit), out, writeSubsetSps);
        default:
            return {};
    }
}

}  // namespace qv::avc
