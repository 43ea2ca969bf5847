#include "analysis/StreamTotals.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "analysis/NalUnitNames.h"
#include "bitstream/avc/NalUnitType.h"
#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/sei/A53.h"

namespace qvinspect {

namespace {

constexpr size_t kMostNotes = 16;
constexpr size_t kMostErrorKinds = 8;
constexpr int64_t kMillisecondsPerSecond = 1000;

// accessUnit: its number, or 0 after the last one and before the first one.
std::string placed(const Finding& finding, uint64_t accessUnit) {
    return (accessUnit == 0 ? std::string() : fmt::format("access unit {}: ", accessUnit)) + finding.text +
           (finding.offset ? fmt::format(" (at {})", *finding.offset) : std::string());
}

std::string withoutNumbers(std::string text) {
    text.erase(std::remove_if(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }),
               text.end());
    return text;
}

// Times come from files: infinities and NaN are no times.
std::optional<double> finite(std::optional<double> seconds) {
    return seconds && std::isfinite(*seconds) ? seconds : std::nullopt;
}

}  // namespace

qv::sei::HdrClass Signals::hdrClass() const {
    using qv::sei::HdrSource;
    qv::sei::HdrFacts facts;
    const auto take = [](qv::sei::ColourDescription& colour, const std::optional<uint32_t>& transfer) {
        colour.isPresent = transfer.has_value();
        colour.transfer_characteristics = transfer.value_or(colour.transfer_characteristics);
    };
    take(facts.vui, transfer_characteristics);
    take(facts.container, containerTransfer);
    facts.hasPreferredTransfer = preferredTransfer.has_value();
    facts.preferred_transfer_characteristics =
        preferredTransfer.value_or(facts.preferred_transfer_characteristics);
    if (masteringDisplay) {
        facts.masteringDisplay.add(HdrSource::Sei);
    }
    if (contentLight) {
        facts.contentLightLevel.add(HdrSource::Sei);
    }
    facts.hasHdr10Plus = hdr10PlusMessages > 0;
    facts.hasHdrVivid = hdrVivid.messages > 0;
    facts.hasSlHdr = slHdrMessages > 0;
    facts.dolbyVision = dolbyVision;
    facts.hasDolbyVisionRpu = hasDolbyVisionRpu;
    facts.hasDolbyVisionEnhancementLayer = hasDolbyVisionEnhancementLayer;
    return qv::sei::hdrClassOf(facts);
}

std::vector<std::string> Signals::hdrClasses() const {
    const qv::sei::HdrClass hdr = hdrClass();
    const bool hasMetadata = masteringDisplay || contentLight || hdrVivid.messages > 0 ||
                             hdr10PlusMessages > 0 || slHdrMessages > 0;
    std::vector<std::string> classes;
    const auto addIf = [&](bool applies, std::string name) {
        if (applies) {
            classes.push_back(std::move(name));
        }
    };
    addIf(hdr.base == qv::sei::HdrBase::Sdr, "SDR");
    addIf(hdr.base == qv::sei::HdrBase::Pq, "PQ");
    addIf(hdr.base == qv::sei::HdrBase::Hdr10, "HDR10");
    addIf(hdr.base == qv::sei::HdrBase::Hlg, "HLG");
    addIf(hdr.isHdr10Plus, "HDR10+");
    addIf(hdr.isHdrVivid, "HDR Vivid");
    addIf(hdr.isSlHdr, "SL-HDR");
    addIf(hdr.isDolbyVision,
          hdr.dolbyVisionProfile.empty() ? "Dolby Vision" : "Dolby Vision " + hdr.dolbyVisionProfile);
    addIf(classes.empty(), hasMetadata ? "unknown" : "SDR");
    return classes;
}

std::vector<std::string> captionTypeNames(const Signals& signals) {
    using qv::sei::CcType;
    const auto has = [&](CcType type) {
        return (signals.captionTypes >> static_cast<uint32_t>(type) & 1U) != 0;
    };
    std::vector<std::string> names;
    if (has(CcType::Field1)) {
        names.emplace_back("CEA-608 field 1");
    }
    if (has(CcType::Field2)) {
        names.emplace_back("CEA-608 field 2");
    }
    if (has(CcType::DtvccData) || has(CcType::DtvccStart)) {
        names.emplace_back("CEA-708");
    }
    return names;
}

StreamCounter::StreamCounter(const StreamInfo& info) {
    totals_.codec = info.parameters.codecId;
    hasVps_ = totals_.codec == QVCodecIDAvc;
    totals_.signals.containerTransfer = info.transfer_characteristics;
    totals_.signals.dolbyVision = info.dolbyVision;
}

void StreamCounter::addConfiguration(const ConfigurationDetails& configuration) {
    for (const SequenceParameterSet& sps : configuration.parameterSets) {
        addSps(sps);
        if (!sps.isAccepted) {
            addError({Severity::Error, std::nullopt,
                      "the library refuses a parameter set of the configuration record"},
                     0);
        }
    }
    for (const uint32_t type : configuration.unitTypes) {
        noteParameterSet(type);
    }
    totals_.hasConfiguration = !configuration.unitTypes.empty();
}

void StreamCounter::noteParameterSet(uint32_t nal_unit_type) {
    const bool isAvc = totals_.codec == QVCodecIDAvc;
    hasVps_ |= nal_unit_type == qv::hevc::kNalVps;
    hasSps_ |= nal_unit_type == (isAvc ? qv::avc::kNalSps : qv::hevc::kNalSps);
    hasPps_ |= nal_unit_type == (isAvc ? qv::avc::kNalPps : qv::hevc::kNalPps);
}

void StreamCounter::add(const AccessUnitView& view) {
    ++totals_.accessUnits;
    lastNumber_ = view.number;
    if (!first_) {
        first_ = AccessUnitPlace{view.number, finite(view.time)};
    }
    totals_.bytes += view.accessUnit.size;
    if (view.accessUnit.size > totals_.largestAccessUnit) {
        totals_.largestAccessUnit = view.accessUnit.size;
        totals_.largestAccessUnitAt = view.number;
    }
    addFindings(view.accessUnit.findings, view.number);
    addUnits(view);
    addFindings(view.report.findings, view.number);
    addDetails(view.details);
    const std::optional<double> time = finite(view.time);
    if (view.report.isKey) {
        addKey(view, time);
    }
    addTime(view, time);
}

void StreamCounter::addBeforePart(const AccessUnitView& view) {
    for (size_t i = 0; i < view.report.units.size(); ++i) {
        if (view.report.units[i].state == UnitState::Typed) {
            noteParameterSet(view.report.units[i].type);
        }
        if (view.details.units[i].newSps) {
            addSps(*view.details.units[i].newSps);
        }
    }
    addRecordSei(view.details);
}

void StreamCounter::addRecordSei(const AccessUnitDetails& details) {
    for (const SeiUnit& sei : details.recordSei) {
        addMessages(sei);
    }
}

void StreamCounter::addUnits(const AccessUnitView& view) {
    bool hasPicture = false;
    for (size_t i = 0; i < view.report.units.size(); ++i) {
        const UnitReport& unit = view.report.units[i];
        addUnit(unit, view);
        addUnitErrors(unit, view.details.units[i], view.number);
        if (unit.state != UnitState::Typed) {
            continue;
        }
        if (isVcl(totals_.codec, unit.type) && !std::exchange(hasPicture, true)) {
            noteFirstKeyPicture(view);
        }
        noteParameterSet(unit.type);
    }
}

void StreamCounter::addUnit(const UnitReport& unit, const AccessUnitView& view) {
    ++totals_.units;
    if (unit.length > totals_.largestUnit.bytes) {
        totals_.largestUnit = {unit.length, view.number, unit.offset};
    }
    if (unit.state != UnitState::Typed) {
        ++totals_.untypedUnits;
        return;
    }
    const qv::Bytes bytes = {view.accessUnit.data + (unit.offset - view.accessUnit.fileOffset.value_or(0)),
                             unit.length};
    if (totals_.codec == QVCodecIDHevc) {
        totals_.signals.hasDolbyVisionRpu |= qv::sei::isDolbyVisionRpu(bytes);
        totals_.signals.hasDolbyVisionEnhancementLayer |= qv::sei::isDolbyVisionEnhancementLayer(bytes);
    }
    ++totals_.unitsByType[unit.type];
    totals_.unitBytesByType[unit.type] += unit.length;
}

// Called before the first slice of a picture.
void StreamCounter::noteFirstKeyPicture(const AccessUnitView& view) {
    if (view.report.isKey && totals_.keyAccessUnits == 0 && !(hasVps_ && hasSps_ && hasPps_)) {
        totals_.keyWithoutParameterSets = view.number;
    }
}

void StreamCounter::addUnitErrors(const UnitReport& unit, const UnitDetails& details, uint64_t accessUnit) {
    const auto add = [&](std::string text) {
        addError({Severity::Error, unit.offset, std::move(text)}, accessUnit);
    };
    if (unit.state == UnitState::Empty) {
        add("empty unit");
    } else if (unit.state == UnitState::ForbiddenBit) {
        add("forbidden_zero_bit is set");
    }
    if (details.newSps && !details.newSps->isAccepted) {
        add("the library refuses the parameter set");
    }
}

void StreamCounter::addDetails(const AccessUnitDetails& details) {
    addRecordSei(details);
    for (const UnitDetails& unit : details.units) {
        if (unit.newSps) {
            addSps(*unit.newSps);
        }
        totals_.repeatedSps += unit.isRepeatedSps ? 1U : 0U;
        if (unit.sei) {
            addMessages(*unit.sei);
        }
    }
    if (details.sps != nullptr) {
        addTransfer(*details.sps);
    }
    totals_.seiItems += details.seiItems;
    totals_.sideDataBytes += static_cast<uint64_t>(details.sideDataSize);
}

void StreamCounter::addSps(const SequenceParameterSet& sps) {
    ++totals_.distinctSps;
    if (!sps.isAccepted) {
        ++totals_.refusedSps;
        return;
    }
    if (!totals_.sps && sps.video) {
        totals_.sps = sps;
    }
    addTransfer(sps);
}

// The active parameter set determines the transfer characteristics.
void StreamCounter::addTransfer(const SequenceParameterSet& sps) {
    if (sps.video && sps.video->colour) {
        totals_.signals.transfer_characteristics = sps.video->colour->transfer_characteristics;
    }
}

void StreamCounter::addMessages(const SeiUnit& sei) {
    for (const SeiMessage& message : sei.messages) {
        addMessage(message);
    }
    for (const auto& [type, count] : sei.furtherMessages) {
        totals_.messagesByType[type] += count;
    }
}

void StreamCounter::addMessage(const SeiMessage& message) {
    ++totals_.messagesByType[message.payloadType];
    if (!message.facts) {
        return;
    }
    const SeiFacts& facts = *message.facts;
    Signals& signals = totals_.signals;
    if (!signals.masteringDisplay) {
        signals.masteringDisplay = facts.masteringDisplay;
    }
    if (!signals.contentLight) {
        signals.contentLight = facts.contentLight;
    }
    if (facts.preferred_transfer_characteristics) {
        signals.preferredTransfer = facts.preferred_transfer_characteristics;
    }
    if (facts.owner) {
        addRegistered(facts);
    }
}

void StreamCounter::addRegistered(const SeiFacts& facts) {
    Signals& signals = totals_.signals;
    signals.hdr10PlusMessages += facts.owner == qv::sei::T35Owner::Hdr10Plus ? 1U : 0U;
    signals.slHdrMessages += facts.owner == qv::sei::T35Owner::SlHdr ? 1U : 0U;
    signals.activeFormatMessages += facts.hasActiveFormat ? 1U : 0U;
    signals.captionMessages += facts.captionTypes != 0 ? 1U : 0U;
    signals.captionTypes |= facts.captionTypes;
    if (facts.owner == qv::sei::T35Owner::HdrVivid) {
        addHdrVivid(facts);
    }
}

void StreamCounter::addHdrVivid(const SeiFacts& facts) {
    HdrVividTotals& vivid = totals_.signals.hdrVivid;
    ++vivid.messages;
    if (!facts.hdrVivid) {
        return;
    }
    const VividLevels& levels = *facts.hdrVivid;
    vivid.minimum_maxrgb_pq = vivid.read == 0 ? levels.minimum_maxrgb_pq
                                              : std::min(vivid.minimum_maxrgb_pq, levels.minimum_maxrgb_pq);
    vivid.maximum_maxrgb_pq = std::max(vivid.maximum_maxrgb_pq, levels.maximum_maxrgb_pq);
    vivid.average_maxrgb_pq_sum += levels.average_maxrgb_pq;
    ++vivid.read;
}

void StreamCounter::addFindings(const std::vector<Finding>& findings, uint64_t accessUnit) {
    for (const Finding& finding : findings) {
        if (finding.severity == Severity::Error) {
            addError(finding, accessUnit);
        } else if (++totals_.noteCount <= kMostNotes) {
            totals_.notes.push_back(finding);
        }
    }
}

void StreamCounter::addError(const Finding& finding, uint64_t accessUnit) {
    const std::string kind = withoutNumbers(finding.text);
    const auto known = std::find(errorKindTexts_.begin(), errorKindTexts_.end(), kind);
    if (known != errorKindTexts_.end()) {
        ++totals_.errorKinds[static_cast<size_t>(known - errorKindTexts_.begin())].count;
    } else if (errorKindTexts_.size() < kMostErrorKinds) {
        errorKindTexts_.push_back(kind);
        totals_.errorKinds.push_back({placed(finding, accessUnit), 1});
    }
    if (++totals_.errors == 1) {
        totals_.firstError = placed(finding, accessUnit);
    }
}

void StreamCounter::addKey(const AccessUnitView& view, std::optional<double> time) {
    if (++totals_.keyAccessUnits == 1) {
        totals_.firstKey = view.number;
    }
    KeyIntervals& intervals = totals_.keyIntervals;
    const AccessUnitPlace here{view.number, time};
    if (key_) {
        const uint64_t distance = here.number - key_->number;
        intervals.least = intervals.count == 0 ? distance : std::min(intervals.least, distance);
        intervals.sum += distance;
        ++intervals.count;
        if (key_->time && here.time) {
            const double seconds = *here.time - *key_->time;
            intervals.leastSeconds = std::min(intervals.leastSeconds.value_or(seconds), seconds);
            intervals.sumSeconds += seconds;
            ++intervals.timed;
        }
    }
    noteLongest(key_ ? *key_ : *first_, here);
    key_ = here;
}

// Whether the run is the longest so far.
bool StreamCounter::noteLongest(const AccessUnitPlace& from, const AccessUnitPlace& to) {
    KeyIntervals& intervals = totals_.keyIntervals;
    if (from.time && to.time && to.number > from.number) {
        const double seconds = *to.time - *from.time;
        if (!intervals.mostSeconds || seconds > *intervals.mostSeconds) {
            intervals.mostSeconds = seconds;
            intervals.mostSecondsAt = from.number;
        }
    }
    if (to.number - from.number <= intervals.most) {
        return false;
    }
    intervals.most = to.number - from.number;
    intervals.mostAt = from.number;
    return true;
}

void StreamCounter::addTime(const AccessUnitView& view, std::optional<double> time) {
    if (!time) {
        ++totals_.untimedAccessUnits;
        return;
    }
    const double end = *time + std::max(finite(view.duration).value_or(0), 0.0);
    begin_ = std::min(begin_.value_or(*time), *time);
    end_ = std::max(end_.value_or(end), end);
    addLoad(finite(view.decodeTime).value_or(*time), view.accessUnit.size);
}

void StreamCounter::addLoad(double decodeTime, uint64_t bytes) {
    constexpr double kMostMilliseconds = 1e15;  // far longer than any stream, within the range of the integer
    const double milliseconds = std::floor(decodeTime * static_cast<double>(kMillisecondsPerSecond));
    auto now = static_cast<int64_t>(std::clamp(milliseconds, -kMostMilliseconds, kMostMilliseconds));
    if (!second_.empty()) {
        now = std::max(now, second_.back().millisecond);  // decoding times do not decrease
    }
    while (!second_.empty() && now - second_.front().millisecond >= kMillisecondsPerSecond) {
        bitsInSecond_ -= second_.front().bits;
        second_.pop_front();
    }
    if (second_.empty() || second_.back().millisecond != now) {
        second_.push_back({now, 0});
    }
    second_.back().bits += bytes * 8;
    bitsInSecond_ += bytes * 8;
    mostBitsInSecond_ = std::max(mostBitsInSecond_, bitsInSecond_);
}

void StreamCounter::finish(const std::vector<Finding>& findings) {
    addFindings(findings, 0);
    const bool isTimed = totals_.untimedAccessUnits == 0;
    if (key_) {
        totals_.keyIntervals.isMostAtEnd =
            noteLongest(*key_, {lastNumber_ + 1, isTimed ? end_ : std::nullopt});
    }
    const double duration = isTimed && begin_ ? *end_ - *begin_ : 0;
    if (duration <= 0 || !std::isfinite(duration)) {
        return;
    }
    totals_.duration = duration;
    totals_.averageBitrate = static_cast<double>(totals_.bytes) * 8 / duration;
    totals_.peakBitrate = duration < 1
                              ? *totals_.averageBitrate
                              : std::max(*totals_.averageBitrate, static_cast<double>(mostBitsInSecond_));
}

}  // namespace qvinspect
