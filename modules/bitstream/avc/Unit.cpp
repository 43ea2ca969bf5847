// Any H.264 NAL unit, traced or written from its record.
#include "bitstream/avc/Unit.h"

#include "bitstream/avc/AccessUnitDelimiter.h"
#include "bitstream/avc/EndOfSequence.h"
#include "bitstream/avc/FillerData.h"
#include "bitstream/avc/NalUnitHeaderSyntax.h"
#include "bitstream/avc/NalUnitType.h"
#include "bitstream/avc/PrefixNalUnit.h"
#include "bitstream/sei/SeiUnit.h"
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

// Calls use(UnitFunctions) for a type whose units have a record; false for others.
template <class Use>
bool withFunctions(Bytes unit, const ParameterSets& sets, const Use& use) {
    switch (typeOf(unit)) {
        case kNalSps:
            use(detail::UnitFunctions{readSps, traceSps, writeSps});
            return true;
        case kNalPps: {
            const uint32_t chroma_format_idc = chromaFormatFor(unit, sets);
            use(detail::UnitFunctions{[=](Bytes bytes) { return readPps(bytes, chroma_format_idc); },
                                      [=](Bytes bytes, TraceVisitor& visitor) {
                                          return tracePps(bytes, chroma_format_idc, visitor);
                                      },
                                      [=](const Pps& pps, std::vector<uint8_t>& out) {
                                          return writePps(pps, chroma_format_idc, out);
                                      }});
            return true;
        }
        case kNalAccessUnitDelimiter:
            use(detail::UnitFunctions{readAccessUnitDelimiter, traceAccessUnitDelimiter,
                                      writeAccessUnitDelimiter});
            return true;
        case kNalEndOfSequence:
            use(detail::UnitFunctions{readEndOfSequence, traceEndOfSequence, writeEndOfSequence});
            return true;
        case kNalEndOfStream:
            use(detail::UnitFunctions{readEndOfStream, traceEndOfStream, writeEndOfStream});
            return true;
        case kNalFillerData:
            use(detail::UnitFunctions{readFillerData, traceFillerData, writeFillerData});
            return true;
        case kNalSpsExtension:
            use(detail::UnitFunctions{readSpsExtension, traceSpsExtension, writeSpsExtension});
            return true;
        case kNalPrefix:
            use(detail::UnitFunctions{readPrefixNalUnit, tracePrefixNalUnit, writePrefixNalUnit});
            return true;
        case kNalSubsetSps:
            use(detail::UnitFunctions{readSubsetSps, traceSubsetSps, writeSubsetSps});
            return true;
        default:
            return false;
    }
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
    if (!withFunctions(unit, sets, detail::UnitTracer(unit, visitor, trace))) {
        trace.fault = traceHeader(unit, visitor);
        if (typeOf(unit) == kNalSei && !trace.fault) {
            sei::traceSeiRbsp(unit, sei::Context(sets), visitor, trace);
        }
    }
    return trace;
}

UnitRewritten rewriteUnit(Bytes unit, const ParameterSets& sets, std::vector<uint8_t>& out) {
    if (typeOf(unit) == kNalSei) {
        return sei::rewriteSeiUnit(unit, sei::Context(sets), out);
    }
    UnitRewritten rewritten;
    withFunctions(unit, sets, detail::UnitRewriter(unit, out, rewritten));
    return rewritten;
}

}  // namespace qv::avc
