// The HEVC decoder configuration records, read, traced, written, sized and made.
#include "bitstream/units/HevcConfigurationRecord.h"

#include <algorithm>
#include <map>

#include "bitstream/syntax/Uses.h"
#include "bitstream/units/ConfigurationFault.h"
#include "bitstream/units/HevcConfigurationRecordSyntax.h"
#include "bitstream/units/SpsHead.h"

namespace qv::hevc {

namespace {

constexpr auto kTable = [](auto& s, auto& record) { configuration_record(s, record); };
constexpr auto kLayerTable = [](auto& s, auto& record) { layer_configuration_record(s, record); };

constexpr uint32_t kNalVps = 32;
constexpr uint32_t kNalSps = 33;
constexpr uint32_t kNalPps = 34;
constexpr uint32_t kNalPrefixSei = 39;
constexpr uint32_t kNalSuffixSei = 40;

// Counts that are not those of the arrays and their units.
Fault checkArrays(const Structure& structure, const UnitArrays& arrays) {
    uint32_t count = 0;
    const uint8_t* end = arrays.coded.begin();
    for (const UnitArray& array : arrays) {
        const Fault fault =
            detail::checkCount(structure, detail::elementOf(at("numNalus", count)), array.units);
        if (fault) {
            return fault;
        }
        end = array.units.coded.end();
        ++count;
    }
    const int64_t there =
        end != arrays.coded.end() && count == arrays.numOfArrays ? int64_t{count} + 1 : count;
    return there == arrays.numOfArrays ? Fault()
                                       : detail::outOfRange(structure, detail::elementOf("numOfArrays"),
                                                            arrays.numOfArrays, there, there);
}

template <class Record, class Table>
Written writeRecord(const Record& record, std::vector<uint8_t>& out, const Structure& structure,
                    const Table& table) {
    const Fault fault = checkArrays(structure, record.arrays);
    return fault ? Written{0, fault} : detail::writeUnit(record, out, table);
}

// --- A record of parameter sets ---

Fault faultOf(const Element& element, int64_t value, int64_t least, int64_t most) {
    return detail::outOfRange(kConfigurationRecord, element, value, least, most);
}

// The highest level counts within the highest tier (A.4).
void raiseLevel(const SpsHead& set, ConfigurationRecord& record) {
    if (set.general_tier_flag != record.general_tier_flag) {
        if (set.general_tier_flag) {
            record.general_tier_flag = true;
            record.general_level_idc = set.general_level_idc;
        }
        return;
    }
    record.general_level_idc = std::max(record.general_level_idc, set.general_level_idc);
}

void add(const SpsHead& set, ConfigurationRecord& record) {
    raiseLevel(set, record);
    record.general_profile_idc = std::max(record.general_profile_idc, set.general_profile_idc);
    record.general_profile_compatibility_flags &= set.general_profile_compatibility_flags;
    record.general_constraint_indicator_flags &= set.general_constraint_indicator_flags;
    record.numTemporalLayers = std::max(record.numTemporalLayers, set.max_sub_layers_minus1 + 1);
    record.temporalIdNested = record.temporalIdNested && set.temporal_id_nesting_flag;
}

// What the parameter sets of the base layer have in common. There has to be an SPS among them.
Fault describe(const std::vector<Bytes>& units, ConfigurationRecord& record) {
    record.general_profile_compatibility_flags = 0xFFFFFFFF;
    record.general_constraint_indicator_flags = 0xFFFFFFFFFFFF;
    record.temporalIdNested = true;
    int64_t spsCount = 0;
    bool isFirst = true;
    for (const Bytes unit : units) {
        const NalUnit nal = nalUnitOf(unit, Codec::Hevc);
        const bool isSps = nal.nal_unit_type == kNalSps && nal.nuh_layer_id == 0;
        if (!isSps && nal.nal_unit_type != kNalVps) {
            continue;
        }
        SpsHead set = {};
        const Fault fault = isSps ? readSpsHead(unit, set) : readVpsHead(unit, set);
        if (fault) {
            return fault;
        }
        if (!isFirst && set.general_profile_space != record.general_profile_space) {
            return faultOf(detail::elementOf("general_profile_space"), set.general_profile_space,
                           record.general_profile_space, record.general_profile_space);
        }
        record.general_profile_space = set.general_profile_space;
        isFirst = false;
        add(set, record);
        spsCount += isSps ? 1 : 0;
    }
    return spsCount > 0 ? Fault() : faultOf(detail::elementOf("numNalus"), 0, 1, 0xFFFF);
}

// The order of the arrays.
uint32_t rankOf(uint32_t nal_unit_type) {
    switch (nal_unit_type) {
        case kNalVps:
            return 0;
        case kNalSps:
            return 1;
        case kNalPps:
            return 2;
        case kNalPrefixSei:
            return 3;
        case kNalSuffixSei:
            return 4;
        default:
            return 5 + nal_unit_type;
    }
}

struct Collected {
    uint32_t nal_unit_type = 0;
    uint32_t count = 0;
    std::vector<uint8_t> coded;
};

using CollectedByRank = std::map<uint32_t, Collected>;

Fault collect(const std::vector<Bytes>& units, CollectedByRank& arrays) {
    constexpr uint32_t kMostUnits = 0xFFFF;
    for (size_t i = 0; i < units.size(); ++i) {
        const NalUnit nal = nalUnitOf(units[i], Codec::Hevc);
        if (nal.faults.has(UnitFault::EmptyUnit) || nal.faults.has(UnitFault::HeaderCut)) {
            return detail::unitCut(kConfigurationRecord, i);
        }
        Collected& array = arrays[rankOf(nal.nal_unit_type)];
        array.nal_unit_type = nal.nal_unit_type;
        if (array.count == kMostUnits) {
            return faultOf(detail::elementOf("numNalus"), int64_t{kMostUnits} + 1, 0, kMostUnits);
        }
        if (!appendUnit(units[i], array.coded)) {
            return detail::unitTooLong(kConfigurationRecord, i, units[i].size);
        }
        ++array.count;
    }
    return {};
}

// The bytes of all arrays.
std::vector<uint8_t> codedArrays(const CollectedByRank& arrays, bool isComplete) {
    std::vector<uint8_t> coded;
    for (const auto& [rank, array] : arrays) {
        const bool isParameterSet = rank <= rankOf(kNalPps);
        const uint32_t array_completeness = isComplete && isParameterSet ? 0x80 : 0;
        coded.push_back(static_cast<uint8_t>(array_completeness | array.nal_unit_type));
        coded.push_back(static_cast<uint8_t>(array.count >> 8));
        coded.push_back(static_cast<uint8_t>(array.count));
        coded.insert(coded.end(), array.coded.begin(), array.coded.end());
    }
    return coded;
}

ConfigurationRecord recordOf(const StreamFacts& facts) {
    ConfigurationRecord record;
    record.min_spatial_segmentation_idc = facts.min_spatial_segmentation_idc;
    record.parallelismType = facts.parallelismType;
    record.chromaFormat = facts.chroma_format_idc;
    record.bitDepthLumaMinus8 = facts.bit_depth_luma_minus8;
    record.bitDepthChromaMinus8 = facts.bit_depth_chroma_minus8;
    record.avgFrameRate = facts.avgFrameRate;
    record.constantFrameRate = facts.constantFrameRate;
    return record;
}

}  // namespace

// --- Arrays ---

UnitArrays::Iterator UnitArrays::begin() const noexcept {
    return {numOfArrays, coded};
}

void UnitArrays::Iterator::read() noexcept {
    Reader s(rest_);
    item_ = {};
    if (left_ > 0) {
        unit_array(s, 0, item_);
    }
    isAtEnd_ = left_ == 0 || (s.failed() && item_.units.coded.empty());
    left_ = s.failed() || left_ == 0 ? 0 : left_ - 1;
    rest_ = rest_.from(static_cast<size_t>(s.position() / 8));
}

// --- Reading and writing ---

Read<ConfigurationRecord> readConfigurationRecord(Bytes bytes) noexcept {
    return detail::readUnit<ConfigurationRecord>(bytes, kTable);
}

Read<LayerConfigurationRecord> readLayerConfigurationRecord(Bytes bytes) noexcept {
    return detail::readUnit<LayerConfigurationRecord>(bytes, kLayerTable);
}

Read<ConfigurationRecord> traceConfigurationRecord(Bytes bytes, TraceVisitor& visitor) {
    return detail::traceUnit<ConfigurationRecord>(bytes, visitor, kTable);
}

Read<LayerConfigurationRecord> traceLayerConfigurationRecord(Bytes bytes, TraceVisitor& visitor) {
    return detail::traceUnit<LayerConfigurationRecord>(bytes, visitor, kLayerTable);
}

Written writeConfigurationRecord(const ConfigurationRecord& record, std::vector<uint8_t>& out) {
    return writeRecord(record, out, kConfigurationRecord, kTable);
}

Written writeConfigurationRecord(const LayerConfigurationRecord& record, std::vector<uint8_t>& out) {
    return writeRecord(record, out, kLayerConfigurationRecord, kLayerTable);
}

Sized sizeOf(const ConfigurationRecord& record) noexcept {
    return detail::sizeUnit(record, kTable);
}

Sized sizeOf(const LayerConfigurationRecord& record) noexcept {
    return detail::sizeUnit(record, kLayerTable);
}

// --- Making ---

uint32_t parallelismTypeOf(uint32_t min_spatial_segmentation_idc, const std::vector<PpsParallelism>& sets) {
    constexpr uint32_t kMixed = 0;
    constexpr uint32_t kSlices = 1;
    constexpr uint32_t kTiles = 2;
    constexpr uint32_t kWavefronts = 3;
    if (min_spatial_segmentation_idc == 0 || sets.empty()) {
        return kMixed;
    }
    const PpsParallelism& first = sets[0];
    for (const PpsParallelism& pps : sets) {
        if (pps.tiles_enabled_flag != first.tiles_enabled_flag ||
            pps.entropy_coding_sync_enabled_flag != first.entropy_coding_sync_enabled_flag) {
            return kMixed;
        }
    }
    if (first.tiles_enabled_flag && first.entropy_coding_sync_enabled_flag) {
        return kMixed;
    }
    return first.entropy_coding_sync_enabled_flag ? kWavefronts : first.tiles_enabled_flag ? kTiles : kSlices;
}

Written makeConfigurationRecord(const std::vector<Bytes>& units, Framing framing, const StreamFacts& facts,
                                std::vector<uint8_t>& out) {
    ConfigurationRecord record = recordOf(facts);
    CollectedByRank arrays;
    Fault fault = detail::setLengthSize(kConfigurationRecord, framing, record.lengthSizeMinusOne);
    if (!fault) {
        fault = collect(units, arrays);
    }
    if (!fault) {
        fault = describe(units, record);
    }
    if (fault) {
        return {0, fault};
    }
    const std::vector<uint8_t> coded = codedArrays(arrays, facts.isComplete);
    record.arrays = {static_cast<uint32_t>(arrays.size()), {coded.data(), coded.size()}};
    return writeConfigurationRecord(record, out);
}

}  // namespace qv::hevc
