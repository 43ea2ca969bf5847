// ITU-T H.264 (08/2021) 7.4.1 to 7.4.3 and H.265 (08/2021) 7.4.2 to 7.4.7.
#include "input/RawProbe.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "QVByteStream.h"
#include "input/AvcUnitTypes.h"
#include "input/HevcUnitTypes.h"
#include "input/StartCode.h"
#include "input/UnescapedUnit.h"

namespace qvinspect {

namespace {

enum class Verdict { Against, Neutral, Plausible, Strong };

struct Votes {
    unsigned against = 0;
    unsigned plausible = 0;
    unsigned strong = 0;
};

constexpr size_t kUnitHead = 32;  // bytes looked at of a unit

constexpr uint32_t kForbiddenZeroBit = 0x80;
constexpr uint32_t kMostMacroblocks = 139264;  // H.264 Table A-1, MaxFS of the highest level
constexpr uint32_t kMostSliceType = 9;         // H.264 Table 7-6
constexpr uint32_t kMostAvcPpsId = 255;
constexpr uint32_t kMostAvcSpsId = 31;
constexpr uint32_t kMostHevcPpsId = 63;
constexpr uint32_t kMostHevcSpsId = 15;
constexpr uint32_t kMostHevcSubLayersMinus1 = 6;
constexpr uint32_t kMostHevcProfile = 11;  // H.265 Annex A, F, G, H, I
constexpr uint32_t kMostLayersInUse = 7;   // nuh_layer_id goes up to 62, streams with so many layers are rare

constexpr uint32_t kAvcProfiles[] = {44,  66,  77,  83,  86,  88,  100, 110, 118,
                                     122, 128, 134, 135, 138, 139, 144, 244};
constexpr uint32_t kAvcLevels[] = {9,  10, 11, 12, 13, 20, 21, 22, 30, 31,
                                   32, 40, 41, 42, 50, 51, 52, 60, 61, 62};

template <size_t size>
bool contains(const uint32_t (&list)[size], uint32_t value) {
    return std::find(std::begin(list), std::end(list), value) != std::end(list);
}

Verdict neutralIf(bool isPlausible) {
    return isPlausible ? Verdict::Neutral : Verdict::Against;
}

Verdict plausibleIf(bool isPlausible) {
    return isPlausible ? Verdict::Plausible : Verdict::Against;
}

Verdict strongIf(bool isPlausible) {
    return isPlausible ? Verdict::Strong : Verdict::Against;
}

// --- H.264 ---

Verdict judgeAvcSlice(QVByteStream& in, bool isIdr) {
    const uint32_t first_mb_in_slice = in.readGolombUe();
    const uint32_t slice_type = in.readGolombUe();
    const uint32_t pic_parameter_set_id = in.readGolombUe();
    const bool isIntra = slice_type % 5 == 2 || slice_type % 5 == 4;
    return plausibleIf(!in.atEnd() && first_mb_in_slice < kMostMacroblocks && slice_type <= kMostSliceType &&
                       pic_parameter_set_id <= kMostAvcPpsId && (isIntra || !isIdr));
}

Verdict judgeAvcSps(QVByteStream& in) {
    const uint32_t profile_idc = in.readBits(8);
    in.readBits(6);  // constraint_set0_flag to constraint_set5_flag
    const uint32_t reserved_zero_2bits = in.readBits(2);
    const uint32_t level_idc = in.readBits(8);
    const uint32_t seq_parameter_set_id = in.readGolombUe();
    return strongIf(!in.atEnd() && contains(kAvcProfiles, profile_idc) && reserved_zero_2bits == 0 &&
                    contains(kAvcLevels, level_idc) && seq_parameter_set_id <= kMostAvcSpsId);
}

Verdict judgeAvcPps(QVByteStream& in) {
    const uint32_t pic_parameter_set_id = in.readGolombUe();
    const uint32_t seq_parameter_set_id = in.readGolombUe();
    // Nothing more: the header of an H.265 IDR picture reads as one as well.
    return neutralIf(pic_parameter_set_id <= kMostAvcPpsId && seq_parameter_set_id <= kMostAvcSpsId);
}

// Table 7-1: applications use these types for what they like. Type 0 is unspecified as well, but the pictures
// of MPEG-2 video begin with 00 00 01 00: it counts against H.264.
bool isUnspecifiedAvc(uint32_t nal_unit_type) {
    return nal_unit_type >= kAvcUnspec24;
}

Verdict judgeAvcUnit(const std::vector<uint8_t>& unit) {
    QVByteStream in(unit.data(), unit.size());
    const uint32_t header = in.readBits(8);
    const bool isReference = (header & 0x60) != 0;
    switch (header & 0x1F) {
        case kAvcSliceNut:
            return judgeAvcSlice(in, false);
        case kAvcIdrSliceNut:
            return isReference ? judgeAvcSlice(in, true) : Verdict::Against;
        case kAvcSpsNut:
            return isReference ? judgeAvcSps(in) : Verdict::Against;
        case kAvcPpsNut:
            return isReference ? judgeAvcPps(in) : Verdict::Against;
        case kAvcDelimiterNut: {
            in.readBits(3);  // primary_pic_type
            const uint32_t rbspTrailingBits = in.readBits(5);
            return plausibleIf(!isReference && rbspTrailingBits == 0x10);
        }
        case kAvcSeiNut:
        case kAvcEndOfSequenceNut:
        case kAvcEndOfStreamNut:
        case kAvcFillerNut:
            return isReference ? Verdict::Against : Verdict::Neutral;
        case kAvcPartitionANut:
        case kAvcPartitionBNut:
        case kAvcPartitionCNut:
        case kAvcSpsExtensionNut:
        case kAvcPrefixNut:
        case kAvcSubsetSpsNut:
        case kAvcAuxiliarySliceNut:
        case kAvcSliceExtensionNut:
            return Verdict::Neutral;
        default:
            return isUnspecifiedAvc(header & 0x1F) ? Verdict::Neutral : Verdict::Against;
    }
}

// --- H.265 ---

Verdict judgeHevcSlice(QVByteStream& in, uint32_t type) {
    in.readBit();  // first_slice_segment_in_pic_flag
    if (type >= kHevcBlaWLpNut && type <= kHevcRsvIrapVcl23) {
        in.readBit();  // no_output_of_prior_pics_flag
    }
    const uint32_t slice_pic_parameter_set_id = in.readGolombUe();
    return plausibleIf(!in.atEnd() && slice_pic_parameter_set_id <= kMostHevcPpsId);
}

Verdict judgeHevcVps(QVByteStream& in) {
    in.readBits(4);  // vps_video_parameter_set_id
    in.readBits(2);  // vps_base_layer_internal_flag, vps_base_layer_available_flag
    in.readBits(6);  // vps_max_layers_minus1
    const uint32_t vps_max_sub_layers_minus1 = in.readBits(3);
    in.readBit();  // vps_temporal_id_nesting_flag
    const uint32_t vps_reserved_0xffff_16bits = in.readBits(16);
    return strongIf(vps_max_sub_layers_minus1 <= kMostHevcSubLayersMinus1 &&
                    vps_reserved_0xffff_16bits == 0xFFFF);
}

Verdict judgeHevcSps(QVByteStream& in) {
    in.readBits(4);  // sps_video_parameter_set_id
    const uint32_t sps_max_sub_layers_minus1 = in.readBits(3);
    in.readBit();  // sps_temporal_id_nesting_flag
    const uint32_t general_profile_space = in.readBits(2);
    in.readBit();  // general_tier_flag
    const uint32_t general_profile_idc = in.readBits(5);
    return strongIf(!in.atEnd() && sps_max_sub_layers_minus1 <= kMostHevcSubLayersMinus1 &&
                    general_profile_space == 0 && general_profile_idc <= kMostHevcProfile);
}

Verdict judgeHevcPps(QVByteStream& in) {
    const uint32_t pps_pic_parameter_set_id = in.readGolombUe();
    const uint32_t pps_seq_parameter_set_id = in.readGolombUe();
    return plausibleIf(pps_pic_parameter_set_id <= kMostHevcPpsId &&
                       pps_seq_parameter_set_id <= kMostHevcSpsId);
}

Verdict judgeHevcBaseLayerUnit(QVByteStream& in, uint32_t type, uint32_t temporalId) {
    if (type <= kHevcRaslRNut) {
        return judgeHevcSlice(in, type);
    }
    if (type >= kHevcBlaWLpNut && type <= kHevcCraNut) {
        return temporalId == 0 ? judgeHevcSlice(in, type) : Verdict::Against;
    }
    switch (type) {
        case kHevcVpsNut:
            return temporalId == 0 ? judgeHevcVps(in) : Verdict::Against;
        case kHevcSpsNut:
            return temporalId == 0 ? judgeHevcSps(in) : Verdict::Against;
        case kHevcPpsNut:
            return judgeHevcPps(in);
        case kHevcAudNut: {
            in.readBits(3);  // pic_type
            const uint32_t rbspTrailingBits = in.readBits(5);
            return plausibleIf(rbspTrailingBits == 0x10);
        }
        case kHevcEosNut:
        case kHevcEobNut:
        case kHevcFdNut:
        case kHevcPrefixSeiNut:
        case kHevcSuffixSeiNut:
            return Verdict::Neutral;
        default:
            // Table 7-1: applications use the unspecified types for what they like.
            return type >= kHevcUnspec48 ? Verdict::Neutral : Verdict::Against;
    }
}

Verdict judgeHevcUnit(const std::vector<uint8_t>& unit) {
    QVByteStream in(unit.data(), unit.size());
    in.readBit();  // forbidden_zero_bit
    const uint32_t nal_unit_type = in.readBits(6);
    const uint32_t nuh_layer_id = in.readBits(6);
    const uint32_t nuh_temporal_id_plus1 = in.readBits(3);
    if (nuh_temporal_id_plus1 == 0 || nuh_layer_id > kMostLayersInUse) {
        return Verdict::Against;
    }
    return nuh_layer_id > 0 ? Verdict::Neutral
                            : judgeHevcBaseLayerUnit(in, nal_unit_type, nuh_temporal_id_plus1 - 1);
}

// --- Both ---

void count(Verdict verdict, Votes& votes) {
    votes.against += verdict == Verdict::Against ? 1 : 0;
    votes.plausible += verdict == Verdict::Plausible ? 1 : 0;
    votes.strong += verdict == Verdict::Strong ? 1 : 0;
}

void judgeUnit(const unsigned char* unit, size_t size, Votes& avc, Votes& hevc) {
    if ((unit[0] & kForbiddenZeroBit) != 0) {
        count(Verdict::Against, avc);
        count(Verdict::Against, hevc);
        return;
    }
    const auto head = unescapedUnit(unit, size, kUnitHead);
    count(judgeAvcUnit(head), avc);
    count(judgeHevcUnit(head), hevc);
}

bool isLikely(const Votes& votes, bool beginsWithStartCode) {
    if (votes.strong > 0) {
        return votes.strong + votes.plausible > votes.against;
    }
    const unsigned leastPlausible = beginsWithStartCode ? 1 : 8;
    return votes.plausible >= leastPlausible && votes.plausible >= 4 * votes.against;
}

RawCodec decide(const Votes& avc, const Votes& hevc, bool beginsWithStartCode) {
    const bool isAvc = isLikely(avc, beginsWithStartCode);
    const bool isHevc = isLikely(hevc, beginsWithStartCode);
    const bool hasBoth = avc.strong > 0 && hevc.strong > 0;
    const bool hasNeither = avc.strong == 0 && hevc.strong == 0;
    if (hasBoth || (isAvc && isHevc && hasNeither)) {
        return RawCodec::Ambiguous;
    }
    if (isAvc && isHevc) {
        return avc.strong > 0 ? RawCodec::Avc : RawCodec::Hevc;
    }
    return isAvc ? RawCodec::Avc : isHevc ? RawCodec::Hevc : RawCodec::Neither;
}

}  // namespace

RawProbe probeRaw(const unsigned char* data, size_t size) {
    auto code = findStartCode(data, size, 0, 0);
    if (!code) {
        return {RawCodec::Neither, false};
    }
    const bool beginsWithStartCode =
        std::all_of(data, data + code->codeAt, [](unsigned char byte) { return byte == 0; });
    Votes avc;
    Votes hevc;
    while (code) {
        const size_t unitAt = code->unitAt;
        code = findStartCode(data, size, unitAt + 1, unitAt + 1);
        judgeUnit(data + unitAt, (code ? code->codeAt : size) - unitAt, avc, hevc);
    }
    return {decide(avc, hevc, beginsWithStartCode), beginsWithStartCode};
}

}  // namespace qvinspect
