#include "analysis/StreamDetails.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "analysis/UnitBytes.h"
#include "bitstream/avc/NalUnitType.h"
#include "bitstream/hevc/NalUnitType.h"
#include "input/Budgets.h"

namespace qvinspect {

namespace {

// Parameter sets with any other identifier share one place, which is enough for a broken stream.
int placeOf(const SequenceParameterSet& sps) {
    constexpr int kMostIdentifiers = 32;
    if (!sps.isAccepted) {
        return -1;
    }
    const int id = sps.codec == QVCodecIDAvc ? sps.avc.sps_id : sps.hevc.sps_seq_parameter_set_id;
    return id >= 0 && id < kMostIdentifiers ? id : -1;
}

// nuh_layer_id 0. Parameter sets of other layers have another syntax (H.265 F.7.3.2.2).
bool isBaseLayer(QVCodecID codec, const unsigned char* unit, size_t size) {
    return codec == QVCodecIDAvc || (size >= 2 && (unit[0] & 1) == 0 && unit[1] >> 3 == 0);
}

uint32_t unitType(QVCodecID codec, uint8_t firstByte) {
    return codec == QVCodecIDAvc ? firstByte & 0x1FU : firstByte >> 1U & 0x3FU;
}

}  // namespace

StreamDetails::StreamDetails(QVCodecID codec, std::deque<int> requested)
    : codec_(codec), seiReader_(codec, std::move(requested)), sets_(codec) {}

bool StreamDetails::isSps(uint32_t nalUnitType) const {
    return nalUnitType == (codec_ == QVCodecIDAvc ? qv::avc::kNalSps : qv::hevc::kNalSps);
}

bool StreamDetails::isSei(uint32_t nalUnitType) const {
    return codec_ == QVCodecIDAvc
               ? nalUnitType == qv::avc::kNalSei
               : nalUnitType == qv::hevc::kNalPrefixSei || nalUnitType == qv::hevc::kNalSuffixSei;
}

// Remembers the content. True if it is known already.
bool StreamDetails::wasSeen(const std::vector<uint8_t>& bytes) {
    if (seen_.count(bytes) > 0) {
        return true;
    }
    if (bytes.size() > kMostKnownSpsBytes - seenBytes_) {
        hasForgotten_ = true;
        return false;
    }
    seenBytes_ += bytes.size();
    seen_.insert(bytes);
    return false;
}

// The VPS that an SPS refers to with sps_video_parameter_set_id, its first element; null without one.
const qv::hevc::Vps* StreamDetails::vpsOf(const unsigned char* sps, size_t size) const {
    constexpr size_t kHeaderBytes = 2;
    return codec_ == QVCodecIDHevc && size > kHeaderBytes ? sets_.vps(sps[kHeaderBytes] >> 4U) : nullptr;
}

void StreamDetails::takeSps(const unsigned char* unit, size_t size, UnitDetails& details) {
    const auto isSame = [&](const auto& entry) {
        return std::equal(entry.second.bytes.begin(), entry.second.bytes.end(), unit, unit + size);
    };
    auto known = std::find_if(known_.begin(), known_.end(), isSame);
    if (known != known_.end()) {
        details.isRepeatedSps = true;
    } else {
        std::vector<uint8_t> bytes(unit, unit + size);
        auto sps = std::make_shared<const SequenceParameterSet>(
            readSequenceParameterSet(codec_, unit, size, vpsOf(unit, size)));
        // A set that returns after another with the same identifier is active again, but not new.
        details.isRepeatedSps = wasSeen(bytes);
        if (!details.isRepeatedSps) {
            details.newSps = sps;
        }
        const int place = placeOf(*sps);
        known = known_.insert_or_assign(place, KnownSps{std::move(bytes), std::move(sps)}).first;
    }
    if (known->second.sps->isAccepted) {
        active_ = known->second.sps.get();
        seiReader_.use(active_);
    }
}

// Reads an SEI unit of the record and keeps it for the first access unit.
void StreamDetails::addRecordSei(const std::vector<uint8_t>& unit, uint32_t type,
                                 ConfigurationDetails& configuration) {
    configuration.seiUnits.push_back(seiReader_.add(unit.data(), unit.size(), type, 0, sets_.context()));
    recordSei_.push_back(unit);
    for (const Finding& finding : configuration.seiUnits.back().findings) {
        configuration.findings.push_back(
            {finding.severity, std::nullopt,
             fmt::format("SEI unit {} of the configuration record: {} (offset {} of the unit)",
                         configuration.seiUnits.size(), finding.text, *finding.offset)});
    }
}

ConfigurationDetails StreamDetails::addConfiguration(const std::vector<uint8_t>& record) {
    ConfigurationDetails configuration;
    size_t leftOutSps = 0;
    const RecordUnits found = recordUnits(codec_, record);
    if (found.leftOut > 0) {
        configuration.findings.push_back(
            {Severity::Error, std::nullopt,
             fmt::format("the configuration record has {} NAL units; those after the first {} are left out",
                         found.units.size() + found.leftOut, found.units.size())});
    }
    for (const qv::Bytes unit : found.units) {
        if (unit.empty()) {
            continue;
        }
        const uint32_t type = unitType(codec_, unit[0]);
        configuration.unitTypes.push_back(type);
        const bool isBaseSps = isSps(type) && isBaseLayer(codec_, unit.data, unit.size);
        if (isBaseSps && configuration.parameterSets.size() == kMostNewSps) {
            ++leftOutSps;
        } else if (isBaseSps) {
            UnitDetails details;
            takeSps(unit.data, unit.size, details);
            if (details.newSps) {
                configuration.parameterSets.push_back(*details.newSps);
            }
        }
        if (isSei(type)) {
            addRecordSei({unit.begin(), unit.end()}, type, configuration);
        }
        sets_.take(unit);
    }
    addFindings(seiReader_.finish(), leftOutSps, "configuration record", configuration.findings);
    return configuration;
}

// SEI units that the access unit has as well are counted once.
void StreamDetails::takeRecordSei(const AccessUnit& accessUnit, const AccessUnitReport& report,
                                  AccessUnitDetails& details) {
    if (recordSei_.empty()) {
        return;
    }
    const auto textOf = [](const unsigned char* bytes, size_t size) {
        return std::string_view(reinterpret_cast<const char*>(bytes), size);
    };
    std::set<std::string_view> present;
    for (const UnitReport& unit : report.units) {
        if (unit.state == UnitState::Typed && isSei(unit.type)) {
            present.insert(
                textOf(accessUnit.data + (unit.offset - accessUnit.fileOffset.value_or(0)), unit.length));
        }
    }
    for (const std::vector<uint8_t>& unit : std::exchange(recordSei_, {})) {
        if (present.count(textOf(unit.data(), unit.size())) == 0) {
            details.recordSei.push_back(
                seiReader_.add(unit.data(), unit.size(), unitType(codec_, unit[0]), 0, sets_.context()));
        }
    }
}

AccessUnitDetails StreamDetails::add(const AccessUnit& accessUnit, AccessUnitReport& report) {
    AccessUnitDetails details;
    size_t newSps = 0;
    size_t leftOutSps = 0;
    const uint64_t start = accessUnit.fileOffset.value_or(0);
    takeRecordSei(accessUnit, report, details);
    details.units.reserve(report.units.size());
    for (const UnitReport& unit : report.units) {
        UnitDetails& unitDetails = details.units.emplace_back();
        if (unit.state != UnitState::Typed) {
            continue;
        }
        const unsigned char* const bytes = accessUnit.data + (unit.offset - start);
        if (isSps(unit.type) && isBaseLayer(codec_, bytes, unit.length)) {
            if (newSps == kMostNewSps) {
                ++leftOutSps;
                continue;
            }
            takeSps(bytes, unit.length, unitDetails);
            newSps += unitDetails.newSps ? 1U : 0U;
        } else if (isSei(unit.type)) {
            SeiUnit sei = seiReader_.add(bytes, unit.length, unit.type, unit.offset, sets_.context());
            report.findings.insert(report.findings.end(), sei.findings.begin(), sei.findings.end());
            unitDetails.sei = std::make_shared<const SeiUnit>(std::move(sei));
        }
        sets_.take({bytes, unit.length});
    }
    const SeiTotals sei = seiReader_.finish();
    details.seiItems = sei.items;
    details.unlistedItems = sei.unlistedItems;
    details.sideDataSize = sei.sideDataSize;
    details.sps = active_;
    addFindings(sei, leftOutSps, "access unit", report.findings);
    return details;
}

// Reports what was left out. place: the access unit or the configuration record.
void StreamDetails::addFindings(const SeiTotals& sei, size_t leftOutSps, const char* place,
                                std::vector<Finding>& findings) {
    if (leftOutSps > 0) {
        findings.push_back(
            {Severity::Error, std::nullopt,
             fmt::format("the {} has more than {} new sequence parameter sets; {} that follow are left "
                         "out",
                         place, kMostNewSps, leftOutSps)});
    }
    if (std::exchange(hasForgotten_, false) && !std::exchange(hasReportedForgotten_, true)) {
        findings.push_back({Severity::Note, std::nullopt,
                            fmt::format("more than {} bytes of different sequence parameter sets: some "
                                        "repeated ones are counted as new from here on",
                                        kMostKnownSpsBytes)});
    }
    if (sei.undescribedMessages > 0) {
        findings.push_back(
            {Severity::Error, std::nullopt,
             fmt::format("the {} has {} SEI messages; those after the first {} are counted and not "
                         "described",
                         place, sei.undescribedMessages + kMostDescribedMessages, kMostDescribedMessages)});
    }
    if (sei.unlistedFindings > 0) {
        findings.push_back(
            {Severity::Error, std::nullopt,
             fmt::format("the {} has {} faults and notes of SEI messages; those after the first "
                         "{} are not listed",
                         place, sei.unlistedFindings + kMostSeiFindings, kMostSeiFindings)});
    }
    if (sei.unlistedItems > 0) {
        findings.push_back(
            {Severity::Error, std::nullopt,
             fmt::format("the library keeps {} SEI items of the {}; those after the first {} are not "
                         "listed",
                         sei.items, place, kMostDescribedMessages)});
    }
}

}  // namespace qvinspect
