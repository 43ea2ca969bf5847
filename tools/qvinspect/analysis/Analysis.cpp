#include "analysis/Analysis.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "QVCoreStandalone.h"
#include "QVNaluParser.h"
#include "analysis/CoreHooks.h"
#include "bitstream/units/StartCode.h"
#include "input/Budgets.h"

namespace qvinspect {

namespace {

using NalIndexList = std::vector<std::pair<int, int>>;

struct QvFree {
    void operator()(unsigned char* memory) const { qvFree(memory); }
};

// The bytes of an access unit that are passed to the library.
struct Sample {
    const unsigned char* data;
    int size;
    uint64_t offset;  // of data, as reported
};

void addFinding(AccessUnitReport& report, Severity severity, uint64_t offset, std::string text) {
    report.findings.push_back({severity, offset, std::move(text)});
}

Sample wholeSample(const AccessUnit& accessUnit) {
    return {accessUnit.data, static_cast<int>(accessUnit.size), accessUnit.fileOffset.value_or(0)};
}

// The library takes Annex B data from its first start code on. Bytes before it are reported and skipped, so
// that the rest can be shown.
Sample fromFirstStartCode(const Sample& sample, AccessUnitReport& report) {
    if (sample.size == 0 || QVNaluParser::isAnnexBData(sample.data, sample.size)) {
        return sample;
    }
    const auto code = qv::findStartCode({sample.data, static_cast<size_t>(sample.size)}, 0, 0);
    if (!code) {
        addFinding(report, Severity::Error, sample.offset, "the sample has no start code (00 00 01)");
        return {sample.data, 0, sample.offset};
    }
    const auto leading = static_cast<int>(code->offset);
    const bool isZero =
        std::all_of(sample.data, sample.data + leading, [](unsigned char byte) { return byte == 0; });
    addFinding(report, isZero ? Severity::Note : Severity::Error, sample.offset,
               fmt::format("{} bytes before the first start code", leading));
    return {sample.data + leading, sample.size - leading, sample.offset + code->offset};
}

NalIndexList findAnnexBUnits(const Sample& sample) {
    NalIndexList nalus;
    QVNaluParser::parserDataToNaluIdx(sample.data, sample.size, nalus);
    return nalus;
}

int endOfUnits(const NalIndexList& nalus) {
    return nalus.empty() ? 0 : nalus.back().first + nalus.back().second;
}

NalIndexList findLengthPrefixedUnits(const Sample& sample, int lengthSize, AccessUnitReport& report) {
    const LogCapture log;
    NalIndexList nalus;
    QVNaluParser::parserDataToNalus(sample.data, sample.size, nalus, lengthSize);

    const int end = endOfUnits(nalus);
    if (end != sample.size) {
        const std::string text =
            log.lines().empty()
                ? fmt::format("{} bytes are left, too few for a length field and a unit", sample.size - end)
                : fmt::format("the length field here extends past the end ({})", log.lines().front().text);
        addFinding(report, Severity::Error, sample.offset + static_cast<uint64_t>(end), text);
    }
    return nalus;
}

// Keeps the first kMostUnits.
void cutUnits(NalIndexList& nalus, const Sample& sample, AccessUnitReport& report) {
    if (nalus.size() > kMostUnits) {
        addFinding(report, Severity::Error, sample.offset,
                   fmt::format("the sample has {} NAL units; those after the first {} are left out",
                               nalus.size(), kMostUnits));
        nalus.resize(kMostUnits);
    }
}

// The typed units, with the units that the library leaves out in their places.
std::vector<UnitReport> typeUnits(const Sample& sample, const NalIndexList& nalus, QVCodecID codec) {
    std::vector<QVNaluParser::NaluInfo> infos;
    QVNaluParser::parseNalusToNaluType(sample.data, nalus, infos, codec);

    std::vector<UnitReport> units;
    units.reserve(nalus.size());
    auto info = infos.cbegin();
    for (const auto& [offset, length] : nalus) {
        UnitReport unit{UnitState::ForbiddenBit, sample.offset + static_cast<uint64_t>(offset),
                        static_cast<uint32_t>(length), 0, false};
        if (info != infos.cend() && info->offset == offset) {
            unit.state = UnitState::Typed;
            unit.type = info->naluType;
            unit.isNonReference = info->isNonReference;
            ++info;
        }
        if (length == 0) {
            unit.state = UnitState::Empty;  // the byte that was typed belongs to the next length field
        }
        units.push_back(unit);
    }
    return units;
}

// isKeyFrame detects the framing by the first bytes and reads lengths of 4 bytes only: 1- and 2-byte lengths
// would be misread, and a 4-byte length of 1 or of 256 to 511 looks like a start code. Only start codes are
// always read as such.
bool isKeyLengthPrefixed(QVCodecID codec, const Sample& sample, int endOfUnits, int lengthSize) {
    unsigned char* annexB = nullptr;
    int size = 0;
    // Only up to the end of the last unit: the library would refuse the whole sample for a broken tail.
    if (QVNaluParser::connvertAvcCToAnnexB(sample.data, endOfUnits, lengthSize, &annexB, size) !=
        QVResultOk) {
        return false;
    }
    const std::unique_ptr<unsigned char, QvFree> owner(annexB);
    return QVNaluParser::isKeyFrame(codec, annexB, size);
}

}  // namespace

AccessUnitReport analyse(const AccessUnit& accessUnit) {
    AccessUnitReport report;
    const QVCodecParameters& parameters = accessUnit.parameters;
    Sample sample = wholeSample(accessUnit);
    if (sample.size == 0) {
        addFinding(report, Severity::Note, sample.offset, "the sample is empty");
        return report;
    }
    if (parameters.isAnnexB != 0) {
        sample = fromFirstStartCode(sample, report);
        NalIndexList nalus = findAnnexBUnits(sample);
        cutUnits(nalus, sample, report);
        report.units = typeUnits(sample, nalus, parameters.codecId);
        report.isKey = QVNaluParser::isKeyFrame(parameters.codecId, sample.data, sample.size);
    } else {
        NalIndexList nalus = findLengthPrefixedUnits(sample, parameters.nalLengthSize, report);
        cutUnits(nalus, sample, report);
        report.units = typeUnits(sample, nalus, parameters.codecId);
        report.isKey =
            isKeyLengthPrefixed(parameters.codecId, sample, endOfUnits(nalus), parameters.nalLengthSize);
    }
    return report;
}

}  // namespace qvinspect
