#include "analysis/StreamDetails.h"

#include <algorithm>
#include <utility>

#include "input/AvcUnitTypes.h"
#include "input/ConfigurationRecord.h"
#include "input/HevcUnitTypes.h"

namespace qvinspect {

namespace {

// Parameter sets with any other identifier share one place: a broken stream has no use for more.
int placeOf(const SequenceParameterSet& sps) {
    constexpr int kMostIdentifiers = 32;
    if (!sps.isAccepted) {
        return -1;
    }
    const int id = sps.codec == QVCodecIDAvc ? sps.avc.sps_id : sps.hevc.sps_seq_parameter_set_id;
    return id >= 0 && id < kMostIdentifiers ? id : -1;
}

// nuh_layer_id 0. Parameter sets of other layers have a syntax of their own (H.265 F.7.3.2.2).
bool isBaseLayer(QVCodecID codec, const unsigned char* unit, size_t size) {
    return codec == QVCodecIDAvc || (size >= 2 && (unit[0] & 1) == 0 && unit[1] >> 3 == 0);
}

}  // namespace

StreamDetails::StreamDetails(QVCodecID codec, std::deque<int> requested)
    : codec_(codec), seiReader_(codec, std::move(requested)) {}

bool StreamDetails::isSps(uint32_t nalUnitType) const {
    return nalUnitType == (codec_ == QVCodecIDAvc ? kAvcSpsNut : kHevcSpsNut);
}

bool StreamDetails::isSei(uint32_t nalUnitType) const {
    return codec_ == QVCodecIDAvc ? nalUnitType == kAvcSeiNut
                                  : nalUnitType == kHevcPrefixSeiNut || nalUnitType == kHevcSuffixSeiNut;
}

void StreamDetails::takeSps(const unsigned char* unit, size_t size, UnitDetails& details) {
    const auto isSame = [&](const auto& entry) {
        return std::equal(entry.second.bytes.begin(), entry.second.bytes.end(), unit, unit + size);
    };
    auto known = std::find_if(known_.begin(), known_.end(), isSame);
    if (known != known_.end()) {
        details.isRepeatedSps = true;
    } else {
        details.newSps = readSequenceParameterSet(codec_, unit, size);
        const int place = placeOf(*details.newSps);
        known = known_.insert_or_assign(place, KnownSps{{unit, unit + size}, *details.newSps}).first;
    }
    if (known->second.sps.isAccepted) {
        active_ = &known->second.sps;
        seiReader_.use(active_);
    }
}

ConfigurationDetails StreamDetails::addConfiguration(const std::vector<uint8_t>& record) {
    ConfigurationDetails configuration;
    for (const std::vector<uint8_t>& unit : configurationUnits(codec_, record).units) {
        if (unit.empty()) {
            continue;
        }
        const uint32_t type = codec_ == QVCodecIDAvc ? unit[0] & 0x1FU : unit[0] >> 1U & 0x3FU;
        configuration.unitTypes.push_back(type);
        UnitDetails details;
        if (isSps(type)) {
            takeSps(unit.data(), unit.size(), details);
        }
        if (details.newSps) {
            configuration.parameterSets.push_back(*details.newSps);
        }
    }
    return configuration;
}

AccessUnitDetails StreamDetails::add(const AccessUnit& accessUnit, const AccessUnitReport& report) {
    AccessUnitDetails details;
    SeiReport sei;
    const uint64_t start = accessUnit.fileOffset.value_or(0);
    for (const UnitReport& unit : report.units) {
        UnitDetails& unitDetails = details.units.emplace_back();
        if (unit.state != UnitState::Typed) {
            continue;
        }
        const unsigned char* const bytes = accessUnit.data + (unit.offset - start);
        if (isSps(unit.type) && isBaseLayer(codec_, bytes, unit.length)) {
            takeSps(bytes, unit.length, unitDetails);
        } else if (isSei(unit.type)) {
            seiReader_.add(bytes, unit.length, unit.type, unit.offset, sei);
            unitDetails.sei = sei.units.back();
        }
    }
    seiReader_.finish(sei);
    details.seiItems = sei.items;
    details.sideDataSize = sei.sideDataSize;
    details.sps = active_;
    return details;
}

}  // namespace qvinspect
