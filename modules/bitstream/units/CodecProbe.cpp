// What the headers of NAL units say for and against a codec: H.264 7.4.1 to 7.4.3, H.265 7.4.2 to 7.4.7.
#include "bitstream/units/CodecProbe.h"

#include <algorithm>
#include <iterator>

#include "bitstream/avc/NalUnitType.h"
#include "bitstream/syntax/Reader.h"
#include "bitstream/units/NalUnits.h"

namespace qv {

namespace {

enum class Verdict { Against, Silent, Plausible, ParameterSet };

constexpr uint32_t kMostMacroblocks = 139264;  // H.264 Table A-1, MaxFS of the highest level
constexpr uint32_t kMostSliceType = 9;         // H.264 Table 7-6
constexpr uint32_t kMostAvcPpsId = 255;
constexpr uint32_t kMostAvcSpsId = 31;
constexpr uint32_t kMostHevcPpsId = 63;
constexpr uint32_t kMostHevcSpsId = 15;
constexpr uint32_t kMostHevcSubLayersMinus1 = 6;
constexpr uint32_t kMostHevcProfile = 11;  // H.265 Annex A, F, G, H, I
constexpr uint32_t kMostLayersInUse = 7;   // nuh_layer_id goes up to 62; streams with so many layers are rare

constexpr uint32_t kAvcProfiles[] = {44,  66,  77,  83,  86,  88,  100, 110, 118,
                                     122, 128, 134, 135, 138, 139, 144, 244};
constexpr uint32_t kAvcLevels[] = {9,  10, 11, 12, 13, 20, 21, 22, 30, 31,
                                   32, 40, 41, 42, 50, 51, 52, 60, 61, 62};

template <size_t size>
bool contains(const uint32_t (&list)[size], uint32_t value) noexcept {
    return std::find(std::begin(list), std::end(list), value) != std::end(list);
}

Verdict silentIf(bool isAllowed) noexcept {
    return isAllowed ? Verdict::Silent : Verdict::Against;
}

Verdict plausibleIf(bool isAllowed) noexcept {
    return isAllowed ? Verdict::Plausible : Verdict::Against;
}

Verdict parameterSetIf(bool isAllowed) noexcept {
    return isAllowed ? Verdict::ParameterSet : Verdict::Against;
}

uint32_t u(Reader& s, uint32_t n) noexcept {
    uint32_t value = 0;
    s.u(n, "u", value);
    return value;
}

uint32_t ue(Reader& s) noexcept {
    uint32_t value = 0;
    s.ue("ue", value);
    return value;
}

// A reader of the unit's RBSP.
Reader rbspOf(const NalUnit& unit) noexcept {
    Reader s(unit.bytes);
    s.header(unit.headerBytes);
    u(s, 8 * unit.headerBytes);
    s.rbsp();
    return s;
}

// access_unit_delimiter_rbsp(): three bits and rbsp_trailing_bits().
Verdict judgeDelimiter(Reader& s) noexcept {
    u(s, 3);
    return plausibleIf(!s.failed() && !s.more_rbsp_data());
}

// --- H.264 ---

Verdict judgeAvcSlice(Reader& s, bool isIdr) noexcept {
    const uint32_t first_mb_in_slice = ue(s);
    const uint32_t slice_type = ue(s);
    const uint32_t pic_parameter_set_id = ue(s);
    const bool isIntra = slice_type % 5 == 2 || slice_type % 5 == 4;
    return plausibleIf(!s.failed() && first_mb_in_slice < kMostMacroblocks && slice_type <= kMostSliceType &&
                       pic_parameter_set_id <= kMostAvcPpsId && (isIntra || !isIdr));
}

Verdict judgeAvcSps(Reader& s) noexcept {
    const uint32_t profile_idc = u(s, 8);
    u(s, 6);  // constraint_set0_flag to constraint_set5_flag
    const uint32_t reserved_zero_2bits = u(s, 2);
    const uint32_t level_idc = u(s, 8);
    const uint32_t seq_parameter_set_id = ue(s);
    return parameterSetIf(!s.failed() && contains(kAvcProfiles, profile_idc) && reserved_zero_2bits == 0 &&
                          contains(kAvcLevels, level_idc) && seq_parameter_set_id <= kMostAvcSpsId);
}

Verdict judgeAvcPps(Reader& s) noexcept {
    const uint32_t pic_parameter_set_id = ue(s);
    const uint32_t seq_parameter_set_id = ue(s);
    // Nothing more: the header of an H.265 IDR picture reads as one as well.
    return silentIf(!s.failed() && pic_parameter_set_id <= kMostAvcPpsId &&
                    seq_parameter_set_id <= kMostAvcSpsId);
}

Verdict judgeAvcUnit(const NalUnit& unit) noexcept {
    const bool isReference = unit.nal_ref_idc != 0;
    Reader s = rbspOf(unit);
    switch (unit.nal_unit_type) {
        case avc::kNalSliceNonIdr:
            return judgeAvcSlice(s, false);
        case avc::kNalSliceIdr:
            return isReference ? judgeAvcSlice(s, true) : Verdict::Against;
        case avc::kNalSps:
            return isReference ? judgeAvcSps(s) : Verdict::Against;
        case avc::kNalPps:
            return isReference ? judgeAvcPps(s) : Verdict::Against;
        case avc::kNalAccessUnitDelimiter:
            return isReference ? Verdict::Against : judgeDelimiter(s);
        case avc::kNalSei:
        case avc::kNalEndOfSequence:
        case avc::kNalEndOfStream:
        case avc::kNalFillerData:
            return silentIf(!isReference);
        default:
            return Verdict::Silent;
    }
}

// --- H.265 ---

constexpr uint32_t kHevcRaslR = 9;
constexpr uint32_t kHevcBlaWLp = 16;
constexpr uint32_t kHevcCra = 21;
constexpr uint32_t kHevcVps = 32;
constexpr uint32_t kHevcSps = 33;
constexpr uint32_t kHevcPps = 34;
constexpr uint32_t kHevcAccessUnitDelimiter = 35;

Verdict judgeHevcSlice(Reader& s, bool isIrap) noexcept {
    u(s, 1);  // first_slice_segment_in_pic_flag
    if (isIrap) {
        u(s, 1);  // no_output_of_prior_pics_flag
    }
    const uint32_t slice_pic_parameter_set_id = ue(s);
    return plausibleIf(!s.failed() && slice_pic_parameter_set_id <= kMostHevcPpsId);
}

Verdict judgeHevcVps(Reader& s) noexcept {
    u(s, 4);  // vps_video_parameter_set_id
    u(s, 2);  // vps_base_layer_internal_flag, vps_base_layer_available_flag
    u(s, 6);  // vps_max_layers_minus1
    const uint32_t vps_max_sub_layers_minus1 = u(s, 3);
    u(s, 1);  // vps_temporal_id_nesting_flag
    const uint32_t vps_reserved_0xffff_16bits = u(s, 16);
    return parameterSetIf(vps_max_sub_layers_minus1 <= kMostHevcSubLayersMinus1 &&
                          vps_reserved_0xffff_16bits == 0xFFFF);
}

Verdict judgeHevcSps(Reader& s) noexcept {
    u(s, 4);  // sps_video_parameter_set_id
    const uint32_t sps_max_sub_layers_minus1 = u(s, 3);
    u(s, 1);  // sps_temporal_id_nesting_flag
    const uint32_t general_profile_space = u(s, 2);
    u(s, 1);  // general_tier_flag
    const uint32_t general_profile_idc = u(s, 5);
    return parameterSetIf(!s.failed() && sps_max_sub_layers_minus1 <= kMostHevcSubLayersMinus1 &&
                          general_profile_space == 0 && general_profile_idc <= kMostHevcProfile);
}

Verdict judgeHevcPps(Reader& s) noexcept {
    const uint32_t pps_pic_parameter_set_id = ue(s);
    const uint32_t pps_seq_parameter_set_id = ue(s);
    return plausibleIf(!s.failed() && pps_pic_parameter_set_id <= kMostHevcPpsId &&
                       pps_seq_parameter_set_id <= kMostHevcSpsId);
}

Verdict judgeHevcBaseLayerUnit(const NalUnit& unit) noexcept {
    const uint32_t type = unit.nal_unit_type;
    const bool isLowestSubLayer = unit.nuh_temporal_id_plus1 == 1;
    Reader s = rbspOf(unit);
    if (type <= kHevcRaslR) {
        return judgeHevcSlice(s, false);
    }
    if (type >= kHevcBlaWLp && type <= kHevcCra) {
        return isLowestSubLayer ? judgeHevcSlice(s, true) : Verdict::Against;
    }
    switch (type) {
        case kHevcVps:
            return isLowestSubLayer ? judgeHevcVps(s) : Verdict::Against;
        case kHevcSps:
            return isLowestSubLayer ? judgeHevcSps(s) : Verdict::Against;
        case kHevcPps:
            return judgeHevcPps(s);
        case kHevcAccessUnitDelimiter:
            return judgeDelimiter(s);
        default:
            return Verdict::Silent;
    }
}

Verdict judgeHevcUnit(const NalUnit& unit) noexcept {
    if (unit.faults.has(UnitFault::HeaderCut) || unit.nuh_temporal_id_plus1 == 0 ||
        unit.nuh_layer_id > kMostLayersInUse) {
        return Verdict::Against;
    }
    return unit.nuh_layer_id > 0 ? Verdict::Silent : judgeHevcBaseLayerUnit(unit);
}

// --- Both ---

Verdict judge(const NalUnit& unit, Codec codec) noexcept {
    if (unit.bytes.empty()) {
        return Verdict::Silent;
    }
    if (unit.faults.has(UnitFault::ForbiddenZeroBit)) {
        return Verdict::Against;
    }
    return codec == Codec::Avc ? judgeAvcUnit(unit) : judgeHevcUnit(unit);
}

// How the buffer looks with a framing, whichever the codec.
struct Layout {
    bool isPossible = false;
    bool isCertain = false;
    bool beginsWithStartCode = false;
};

Layout layoutOf(Bytes data, Framing framing) noexcept {
    Layout layout;
    size_t units = 0;
    for (const NalUnit& unit : NalUnits(data, framing, Codec::Avc)) {
        if (unit.faults.has(UnitFault::NoStartCode) || unit.faults.has(UnitFault::LengthCut)) {
            return {};
        }
        if (framing == Framing::StartCodes) {
            layout.beginsWithStartCode = !unit.faults.has(UnitFault::BytesBeforeStartCode);
            layout.isPossible = true;
            layout.isCertain = layout.beginsWithStartCode;
            return layout;
        }
        // The data may end in a unit, but not in the first.
        const bool isCut = unit.faults.has(UnitFault::LengthPastEnd);
        if (unit.NALUnitLength == 0 || (isCut && units == 0)) {
            return {};
        }
        layout.isCertain = !isCut && framing != Framing::Lengths1;
        ++units;
    }
    layout.isPossible = units > 0;
    return layout;
}

// The last unit of data that goes on is not looked at: it may be cut anywhere.
CodecEvidence evidenceOf(Bytes data, bool goesOn, Framing framing, Codec codec) noexcept {
    CodecEvidence evidence;
    for (const NalUnit& unit : NalUnits(data, framing, codec)) {
        if (goesOn && unit.end() == data.size) {
            break;
        }
        const Verdict verdict = judge(unit, codec);
        evidence.against += verdict == Verdict::Against ? 1 : 0;
        evidence.silent += verdict == Verdict::Silent ? 1 : 0;
        evidence.plausible += verdict == Verdict::Plausible ? 1 : 0;
        evidence.parameterSets += verdict == Verdict::ParameterSet ? 1 : 0;
    }
    return evidence;
}

bool isLikely(const CodecEvidence& evidence, bool isCertain) noexcept {
    if (evidence.parameterSets > 0) {
        return evidence.parameterSets + evidence.plausible > evidence.against;
    }
    const uint32_t leastPlausible = isCertain ? 1 : 8;
    return evidence.plausible >= leastPlausible && evidence.plausible >= 4 * uint64_t{evidence.against};
}

CodecProbe::Answer decide(const CodecEvidence& avc, const CodecEvidence& hevc, bool isCertain) noexcept {
    const bool isAvc = isLikely(avc, isCertain);
    const bool isHevc = isLikely(hevc, isCertain);
    const bool hasBoth = avc.parameterSets > 0 && hevc.parameterSets > 0;
    const bool hasNeither = avc.parameterSets == 0 && hevc.parameterSets == 0;
    if (hasBoth || (isAvc && isHevc && hasNeither)) {
        return CodecProbe::Answer::Ambiguous;
    }
    if (isAvc && isHevc) {
        return avc.parameterSets > 0 ? CodecProbe::Answer::Avc : CodecProbe::Answer::Hevc;
    }
    return isAvc ? CodecProbe::Answer::Avc : isHevc ? CodecProbe::Answer::Hevc : CodecProbe::Answer::Neither;
}

CodecProbe::Confidence confidenceIn(const CodecEvidence& evidence) noexcept {
    if (evidence.parameterSets == 0) {
        return CodecProbe::Confidence::Low;
    }
    return evidence.against == 0 ? CodecProbe::Confidence::High : CodecProbe::Confidence::Medium;
}

// The evidence of the answer; of the stronger codec when there is none.
const CodecEvidence& evidenceOf(const CodecProbe& probe) noexcept {
    if (probe.answer == CodecProbe::Answer::Avc) {
        return probe.avc;
    }
    const bool isMoreOfAvc = probe.avc.parameterSets > probe.hevc.parameterSets;
    return probe.answer != CodecProbe::Answer::Hevc && isMoreOfAvc ? probe.avc : probe.hevc;
}

// How much a probe's answer weighs against that with another framing.
int64_t weightOf(const CodecProbe& probe) noexcept {
    if (probe.answer == CodecProbe::Answer::Neither) {
        return INT64_MIN;
    }
    const CodecEvidence& evidence = evidenceOf(probe);
    return 8 * int64_t{evidence.parameterSets} + evidence.plausible - 4 * int64_t{evidence.against};
}

const char* nameOf(CodecProbe::Answer answer) noexcept {
    switch (answer) {
        case CodecProbe::Answer::Neither:
            return "neither H.264 nor H.265";
        case CodecProbe::Answer::Avc:
            return "H.264";
        case CodecProbe::Answer::Hevc:
            return "H.265";
        case CodecProbe::Answer::Ambiguous:
            return "H.264 or H.265";
    }
    return "";
}

const char* nameOf(CodecProbe::Confidence confidence) noexcept {
    switch (confidence) {
        case CodecProbe::Confidence::None:
            return "none";
        case CodecProbe::Confidence::Low:
            return "low";
        case CodecProbe::Confidence::Medium:
            return "medium";
        case CodecProbe::Confidence::High:
            return "high";
    }
    return "";
}

std::string textOf(const CodecEvidence& evidence) {
    return std::to_string(evidence.parameterSets) + " parameter sets, " + std::to_string(evidence.plausible) +
           " plausible units, " + std::to_string(evidence.against) + " against, " +
           std::to_string(evidence.silent) + " silent";
}

}  // namespace

std::optional<Codec> CodecProbe::codec() const {
    if (answer == Answer::Avc) {
        return Codec::Avc;
    }
    return answer == Answer::Hevc ? std::optional<Codec>(Codec::Hevc) : std::nullopt;
}

CodecProbe probeCodec(Bytes data, Framing framing) noexcept {
    CodecProbe probe;
    const Bytes head = data.first(kProbeBytes);
    probe.bytes = head.size;
    const Layout layout = layoutOf(head, framing);
    if (!layout.isPossible) {
        return probe;
    }
    probe.framing = framing;
    probe.beginsWithStartCode = layout.beginsWithStartCode;
    const bool goesOn = head.size < data.size;
    probe.avc = evidenceOf(head, goesOn, framing, Codec::Avc);
    probe.hevc = evidenceOf(head, goesOn, framing, Codec::Hevc);
    probe.answer = decide(probe.avc, probe.hevc, layout.isCertain);
    const bool hasCodec = probe.codec().has_value();
    probe.confidence = hasCodec ? confidenceIn(evidenceOf(probe)) : CodecProbe::Confidence::None;
    return probe;
}

CodecProbe probeCodec(Bytes data) noexcept {
    CodecProbe best = probeCodec(data, Framing::StartCodes);
    for (const Framing framing :
         {Framing::Lengths4, Framing::Lengths2, Framing::Lengths3, Framing::Lengths1}) {
        const CodecProbe probe = probeCodec(data, framing);
        if (weightOf(probe) > weightOf(best)) {
            best = probe;
        }
    }
    return best;
}

std::string textOf(const CodecProbe& probe) {
    std::string text = nameOf(probe.answer);
    if (probe.answer != CodecProbe::Answer::Neither) {
        text += std::string(" with ") + textOf(probe.framing) + ", confidence " + nameOf(probe.confidence);
    }
    return text + ": as H.264 " + textOf(probe.avc) + "; as H.265 " + textOf(probe.hevc);
}

}  // namespace qv
