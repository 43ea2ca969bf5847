// The AVC decoder configuration record, read, traced, written, sized and made.
#include "bitstream/units/AvcConfigurationRecord.h"

#include <algorithm>

#include "bitstream/avc/NalUnitType.h"
#include "bitstream/syntax/Uses.h"
#include "bitstream/units/AvcConfigurationRecordSyntax.h"
#include "bitstream/units/ConfigurationFault.h"
#include "bitstream/units/SpsHead.h"

namespace qv::avc {

namespace {

constexpr auto kTable = [](auto& s, auto& record) { configuration_record(s, record); };

constexpr uint32_t kMostSps = 31;
constexpr uint32_t kMostPps = 255;
constexpr uint32_t kMostSpsExtensions = 255;

// --- A record of parameter sets ---

// The units of one kind, as they are collected.
struct Collected {
    uint32_t nal_unit_type;
    const char* countName;
    uint32_t least;
    uint32_t most;
    uint32_t count = 0;
    std::vector<uint8_t> coded = {};

    UnitList list() const { return {count, {coded.data(), coded.size()}}; }
};

Fault faultOf(const Element& element, int64_t value, int64_t least, int64_t most) {
    return detail::outOfRange(kConfigurationRecord, element, value, least, most);
}

Fault collect(const std::vector<Bytes>& units, Collected (&kinds)[3]) {
    for (size_t i = 0; i < units.size(); ++i) {
        const NalUnit nal = nalUnitOf(units[i], Codec::Avc);
        if (nal.bytes.empty()) {
            return detail::unitCut(kConfigurationRecord, i);
        }
        Collected* kind = nullptr;
        for (Collected& candidate : kinds) {
            kind = candidate.nal_unit_type == nal.nal_unit_type ? &candidate : kind;
        }
        if (kind == nullptr) {
            return detail::otherUnit(kConfigurationRecord, i, nal.nal_unit_type);
        }
        if (!appendUnit(units[i], kind->coded)) {
            return detail::unitTooLong(kConfigurationRecord, i, units[i].size);
        }
        ++kind->count;
    }
    for (const Collected& kind : kinds) {
        if (kind.count < kind.least || kind.count > kind.most) {
            return faultOf(detail::elementOf(kind.countName), kind.count, kind.least, kind.most);
        }
    }
    return {};
}

// constraint_set0_flag, constraint_set1_flag and constraint_set2_flag say that the profiles 66, 77 and 88 are
// conformed to as well (7.4.2.1.1).
bool conformsTo(const SpsHead& sps, uint32_t profile_idc) {
    return sps.profile_idc == profile_idc || (profile_idc == 66 && (sps.constraint_set_flags & 0x80) != 0) ||
           (profile_idc == 77 && (sps.constraint_set_flags & 0x40) != 0) ||
           (profile_idc == 88 && (sps.constraint_set_flags & 0x20) != 0);
}

bool allConformTo(const std::vector<SpsHead>& sets, uint32_t profile_idc) {
    return std::all_of(sets.begin(), sets.end(),
                       [=](const SpsHead& sps) { return conformsTo(sps, profile_idc); });
}

// The first profile that all sets conform to; 0 when there is none.
uint32_t commonProfileOf(const std::vector<SpsHead>& sets) {
    for (const SpsHead& sps : sets) {
        if (allConformTo(sets, sps.profile_idc)) {
            return sps.profile_idc;
        }
    }
    for (const uint32_t profile_idc : {77U, 88U, 66U}) {
        if (allConformTo(sets, profile_idc)) {
            return profile_idc;
        }
    }
    return 0;
}

Fault differs(const char* name, int64_t value, int64_t first) {
    return value == first ? Fault() : faultOf(detail::elementOf(name), value, first, first);
}

// The formats that a record has one field for.
Fault checkFormats(const std::vector<SpsHead>& sets) {
    const SpsHead& first = sets[0];
    for (const SpsHead& sps : sets) {
        for (const Fault& fault :
             {differs("chroma_format", sps.chroma_format_idc, first.chroma_format_idc),
              differs("bit_depth_luma_minus8", sps.bit_depth_luma_minus8, first.bit_depth_luma_minus8),
              differs("bit_depth_chroma_minus8", sps.bit_depth_chroma_minus8,
                      first.bit_depth_chroma_minus8)}) {
            if (fault) {
                return fault;
            }
        }
    }
    return {};
}

Fault readHeads(const UnitList& list, std::vector<SpsHead>& sets) {
    for (const NalUnit& unit : list.units(Codec::Avc)) {
        sets.emplace_back();
        const Fault fault = readSpsHead(unit.bytes, sets.back());
        if (fault) {
            return fault;
        }
    }
    return checkFormats(sets);
}

Fault describe(const std::vector<SpsHead>& sets, ConfigurationRecord& record) {
    record.AVCProfileIndication = commonProfileOf(sets);
    if (record.AVCProfileIndication == 0) {
        return faultOf(detail::elementOf("AVCProfileIndication"), sets.back().profile_idc,
                       sets[0].profile_idc, sets[0].profile_idc);
    }
    record.profile_compatibility = 0xFF;
    for (const SpsHead& sps : sets) {
        record.profile_compatibility &= sps.constraint_set_flags;
        record.AVCLevelIndication = std::max(record.AVCLevelIndication, sps.level_idc);
    }
    record.chroma_format = sets[0].chroma_format_idc;
    record.bit_depth_luma_minus8 = sets[0].bit_depth_luma_minus8;
    record.bit_depth_chroma_minus8 = sets[0].bit_depth_chroma_minus8;
    return {};
}

}  // namespace

Read<ConfigurationRecord> readConfigurationRecord(Bytes bytes) noexcept {
    return detail::readUnit<ConfigurationRecord>(bytes, kTable);
}

Read<ConfigurationRecord> traceConfigurationRecord(Bytes bytes, TraceVisitor& visitor) {
    return detail::traceUnit<ConfigurationRecord>(bytes, visitor, kTable);
}

Written writeConfigurationRecord(const ConfigurationRecord& record, std::vector<uint8_t>& out) {
    const struct {
        const UnitList& list;
        const char* name;
    } kLists[] = {
        {record.sequenceParameterSets, "numOfSequenceParameterSets"},
        {record.pictureParameterSets, "numOfPictureParameterSets"},
        {record.sequenceParameterSetExtensions, "numOfSequenceParameterSetExt"},
    };
    for (const auto& row : kLists) {
        const Fault fault = detail::checkCount(kConfigurationRecord, detail::elementOf(row.name), row.list);
        if (fault) {
            return {0, fault};
        }
    }
    const bool hasExtension = mayHaveExtension(record.AVCProfileIndication) && record.hasExtension;
    if (!hasExtension && record.sequenceParameterSetExtensions.count > 0) {
        return {0, faultOf(detail::elementOf("numOfSequenceParameterSetExt"),
                           record.sequenceParameterSetExtensions.count, 0, 0)};
    }
    return detail::writeUnit(record, out, kTable);
}

Sized sizeOf(const ConfigurationRecord& record) noexcept {
    return detail::sizeUnit(record, kTable);
}

Written makeConfigurationRecord(const std::vector<Bytes>& units, Framing framing, std::vector<uint8_t>& out) {
    ConfigurationRecord record;
    Fault fault = detail::setLengthSize(kConfigurationRecord, framing, record.lengthSizeMinusOne);
    if (fault) {
        return {0, fault};
    }
    Collected kinds[] = {
        {kNalSps, "numOfSequenceParameterSets", 1, kMostSps},
        {kNalPps, "numOfPictureParameterSets", 0, kMostPps},
        {kNalSpsExtension, "numOfSequenceParameterSetExt", 0, kMostSpsExtensions},
    };
    fault = collect(units, kinds);
    if (fault) {
        return {0, fault};
    }
    record.sequenceParameterSets = kinds[0].list();
    record.pictureParameterSets = kinds[1].list();
    record.sequenceParameterSetExtensions = kinds[2].list();

    std::vector<SpsHead> sets;
    fault = readHeads(record.sequenceParameterSets, sets);
    if (!fault) {
        fault = describe(sets, record);
    }
    if (fault) {
        return {0, fault};
    }
    record.hasExtension = mayHaveExtension(record.AVCProfileIndication);
    return writeConfigurationRecord(record, out);
}

}  // namespace qv::avc
