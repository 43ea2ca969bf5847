#include "report/StreamWriter.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string_view>
#include <utility>

#include "QVCoreStandalone.h"
#include "QVNaluParser.h"
#include "analysis/CoreHooks.h"
#include "analysis/UnitBytes.h"
#include "bitstream/avc/NalUnitType.h"
#include "bitstream/hevc/NalUnitType.h"
#include "input/Budgets.h"
#include "report/Diagnostics.h"

namespace qvinspect {

namespace {

constexpr size_t kLengthSize = 4;
constexpr QVCodecParameters kFourByteLengths{QVCodecIDAvc, 0, kLengthSize};  // the codec has no effect

struct QvFree {
    void operator()(unsigned char* memory) const { qvFree(memory); }
};

uint32_t typeOf(QVCodecID codec, uint8_t firstByte) {
    return codec == QVCodecIDAvc ? firstByte & 0x1FU : firstByte >> 1U & 0x3FU;
}

bool isParameterSet(QVCodecID codec, uint32_t type) {
    return codec == QVCodecIDAvc
               ? type == qv::avc::kNalSps || type == qv::avc::kNalPps || type == qv::avc::kNalSpsExtension ||
                     type == qv::avc::kNalSubsetSps
               : type == qv::hevc::kNalVps || type == qv::hevc::kNalSps || type == qv::hevc::kNalPps;
}

// Units that may precede the pictures of an access unit.
bool mayLead(QVCodecID codec, uint32_t type) {
    return isParameterSet(codec, type) ||
           type == (codec == QVCodecIDAvc ? qv::avc::kNalSei : qv::hevc::kNalPrefixSei);
}

bool isDelimiter(QVCodecID codec, uint32_t type) {
    return type ==
           (codec == QVCodecIDAvc ? qv::avc::kNalAccessUnitDelimiter : qv::hevc::kNalAccessUnitDelimiter);
}

size_t lengthSizeOf(const QVCodecParameters& framing) {
    return framing.nalLengthSize == 1 || framing.nalLengthSize == 2 ? framing.nalLengthSize : 4;
}

// Offsets in the access unit, not in the file.
class Places {
public:
    explicit Places(const AccessUnitView& view)
        : units_(view.report.units),
          start_(view.accessUnit.fileOffset.value_or(0)),
          prefix_(view.accessUnit.parameters.isAnnexB != 0 ? 3 : lengthSizeOf(view.accessUnit.parameters)) {}

    size_t unit(size_t i) const { return static_cast<size_t>(units_[i].offset - start_); }
    size_t end(size_t i) const { return unit(i) + units_[i].length; }

    // Of its start code, or of its length field.
    size_t begin(size_t i) const { return i == 0 ? unit(0) - prefix_ : end(i - 1); }

private:
    const std::vector<UnitReport>& units_;
    uint64_t start_;
    size_t prefix_;
};

// The unit before which parameter sets are inserted.
size_t placeOfConfiguration(const AccessUnitView& view) {
    const QVCodecID codec = view.accessUnit.parameters.codecId;
    const auto& units = view.report.units;
    const auto place = std::find_if(units.begin(), units.end(), [&](const UnitReport& unit) {
        return unit.state != UnitState::Typed ||
               !(isDelimiter(codec, unit.type) || isParameterSet(codec, unit.type));
    });
    return static_cast<size_t>(place - units.begin());
}

// The types of the access unit's units, and the bytes of its SEI units.
class PresentUnits {
public:
    explicit PresentUnits(const AccessUnitView& view) {
        const QVCodecID codec = view.accessUnit.parameters.codecId;
        const Places places(view);
        for (size_t i = 0; i < view.report.units.size(); ++i) {
            const UnitReport& unit = view.report.units[i];
            if (unit.state != UnitState::Typed) {
                continue;
            }
            types_ |= uint64_t{1} << unit.type;  // 6 bits at most
            if (!isParameterSet(codec, unit.type) && mayLead(codec, unit.type)) {
                const auto* const bytes =
                    reinterpret_cast<const char*>(view.accessUnit.data + places.unit(i));
                leading_.insert(std::string_view(bytes, unit.length));
            }
        }
    }

    bool hasType(uint32_t type) const { return (types_ >> type & 1U) != 0; }

    bool has(const std::vector<uint8_t>& unit) const {
        return leading_.count(std::string_view(reinterpret_cast<const char*>(unit.data()), unit.size())) > 0;
    }

private:
    uint64_t types_ = 0;
    std::set<std::string_view> leading_;
};

struct AnnexB {
    std::unique_ptr<unsigned char, QvFree> bytes;
    size_t size = 0;
};

bool toAnnexB(const unsigned char* data, size_t size, size_t lengthSize, AnnexB& out) {
    unsigned char* bytes = nullptr;
    int outSize = 0;
    const bool isDone =
        QVNaluParser::connvertAvcCToAnnexB(data, static_cast<int>(size), static_cast<int>(lengthSize), &bytes,
                                           outSize) == QVResultOk;
    out = {std::unique_ptr<unsigned char, QvFree>(bytes), static_cast<size_t>(outSize)};
    return isDone;
}

bool toLengths(const unsigned char* data, size_t size, std::vector<unsigned char>& out) {
    return QVNaluParser::converAnnexBToAvcC(data, static_cast<int>(size), out) == QVResultOk;
}

// Empty units and stuffing, which may be left out.
bool isZero(const unsigned char* data, size_t size) {
    return std::all_of(data, data + size, [](unsigned char byte) { return byte == 0; });
}

std::string bytesText(size_t count) {
    return fmt::format("{} byte{}", count, count == 1 ? "" : "s");
}

size_t countUnits(const AnnexB& stream) {
    std::vector<std::pair<int, int>> nalus;
    QVNaluParser::parserDataToNaluIdx(stream.bytes.get(), static_cast<int>(stream.size), nalus);
    return nalus.size();
}

}  // namespace

StreamWriter::StreamWriter(const std::string& path, Framing framing, UnitSource source, SeiRemoval removal)
    : output_(path),
      outputName_(outputName(path)),
      framing_(framing),
      isRewriting_(source == UnitSource::Records),
      removal_(std::move(removal)) {}

void StreamWriter::fail(const std::string&, const std::string&) {
    hasFailed_ = true;
}

void StreamWriter::begin(const StreamHead& head) {
    streamName_ = head.name;
    if (isRewriting_) {
        rewriter_.emplace(head.info.parameters.codecId);
    }
    if (!removal_.empty()) {
        remover_.emplace(head.info.parameters.codecId, removal_);
    }
    useConfiguration(head.info.parameters.codecId, head.info.configuration, 1);
}

void StreamWriter::useConfiguration(QVCodecID codec, const std::vector<uint8_t>& record,
                                    uint64_t accessUnit) {
    configuration_.clear();
    const RecordUnits found = recordUnits(codec, record);
    if (found.leftOut > 0) {
        lose(accessUnit,
             fmt::format("{} NAL units of the container's configuration record are left out", found.leftOut));
    }
    for (const qv::Bytes unit : found.units) {
        if (unit.empty() || !mayLead(codec, typeOf(codec, unit[0]))) {
            continue;
        }
        const std::vector<uint8_t> bytes(unit.begin(), unit.end());
        edited_.clear();
        if (!remover_) {
            configuration_.push_back({typeOf(codec, unit[0]), bytes, bytes});
        } else if (remover_->append(unit, edited_)) {
            configuration_.push_back({typeOf(codec, unit[0]), bytes, edited_});
        }
    }
}

// Parameter sets are not inserted if the access unit has any of their type; an SEI unit of the record is not
// inserted if the access unit has the same one.
StreamWriter::MissingUnits StreamWriter::missingUnits(const AccessUnitView& view) const {
    const QVCodecID codec = view.accessUnit.parameters.codecId;
    MissingUnits missing;
    const PresentUnits present(view);
    for (const ConfigurationUnit& unit : configuration_) {
        const bool isThere =
            isParameterSet(codec, unit.type) ? present.hasType(unit.type) : present.has(unit.bytes);
        if (!isThere) {
            missing.units.push_back({unit.written.data(), unit.written.size()});
            missing.size += kLengthSize + unit.written.size();
        }
    }
    return missing;
}

// Always true the first time: the record is no larger than the file.
bool StreamWriter::isInProportion(const MissingUnits& missing) {
    const bool isFirst = recordBytes_ == 0;
    if (!isFirst && recordBytes_ + missing.size > repeatedRecordBytes(bytes_)) {
        return false;
    }
    recordBytes_ += missing.size;
    return true;
}

void StreamWriter::addConfiguration(const AccessUnitView& view) {
    const MissingUnits missing = missingUnits(view);
    if (missing.units.empty()) {
        return;
    }
    if (!isInProportion(missing)) {
        lose(view.number, fmt::format("{} parameter sets of the container are not repeated: the output would "
                                      "become far larger than the stream",
                                      missing.units.size()));
        return;
    }
    std::vector<uint8_t> units;
    for (const qv::Bytes unit : missing.units) {
        appendWithLength(units, unit);
    }
    const std::string problem = convert(units.data(), units.size(), kFourByteLengths, missing.units.size());
    if (!problem.empty()) {
        lose(view.number, "parameter sets of the container " + problem);
    }
}

void StreamWriter::add(const AccessUnitView& view) {
    const AccessUnit& accessUnit = view.accessUnit;
    bytes_ += accessUnit.size;
    if (!accessUnit.newConfiguration.empty()) {
        useConfiguration(accessUnit.parameters.codecId, accessUnit.newConfiguration, view.number);
    }
    const auto& units = view.report.units;
    if (units.empty()) {
        if (!isZero(accessUnit.data, accessUnit.size)) {
            lose(view.number, fmt::format("{} without a NAL unit are left out", bytesText(accessUnit.size)));
        }
        return;
    }
    const Places places(view);
    if (!isZero(accessUnit.data, places.begin(0))) {
        lose(view.number,
             fmt::format("{} before the first NAL unit are left out", bytesText(places.begin(0))));
    }
    const size_t place = placeOfConfiguration(view);
    convertUnits(view, 0, place);
    if (std::exchange(isFirst_, false) || view.report.isKey || !accessUnit.newConfiguration.empty()) {
        addConfiguration(view);
    }
    convertUnits(view, place, units.size());
    const size_t end = places.end(units.size() - 1);
    if (!isZero(accessUnit.data + end, accessUnit.size - end)) {
        lose(view.number,
             fmt::format("{} from {} on, after the last whole NAL unit, are left out",
                         bytesText(accessUnit.size - end), units.back().offset + units.back().length));
    }
}

// In runs without empty units: an empty unit after a start code would absorb the next start code.
void StreamWriter::convertUnits(const AccessUnitView& view, size_t first, size_t last) {
    const auto& units = view.report.units;
    const auto isEmpty = [](const UnitReport& unit) { return unit.length == 0; };
    for (size_t begin = first; begin < last; ++begin) {
        const auto stop = std::find_if(units.begin() + static_cast<std::ptrdiff_t>(begin),
                                       units.begin() + static_cast<std::ptrdiff_t>(last), isEmpty);
        const auto end = static_cast<size_t>(stop - units.begin());
        if (end == begin) {
            continue;
        }
        const std::string problem = convertRun(view, begin, end);
        if (!problem.empty()) {
            lose(view.number, fmt::format("NAL units from {} to {} {}", units[begin].offset,
                                          units[end - 1].offset + units[end - 1].length, problem));
        }
        begin = end;
    }
}

// The units of [first, last), none of which is empty; returns what convert() does.
std::string StreamWriter::convertRun(const AccessUnitView& view, size_t first, size_t last) {
    const Places places(view);
    const AccessUnit& accessUnit = view.accessUnit;
    if (isRewriting_ || remover_) {
        return convertEdited(view, first, last);
    }
    const size_t begin = places.begin(first);
    return convert(accessUnit.data + begin, places.end(last - 1) - begin, accessUnit.parameters,
                   last - first);
}

// As convertRun(), with units that are written from their records, or without SEI messages.
std::string StreamWriter::convertEdited(const AccessUnitView& view, size_t first, size_t last) {
    const Places places(view);
    std::vector<uint8_t> units;
    size_t count = 0;
    for (size_t i = first; i < last; ++i) {
        qv::Bytes unit = {view.accessUnit.data + places.unit(i), view.report.units[i].length};
        if (remover_) {
            edited_.clear();
            if (!remover_->append(unit, edited_)) {
                continue;
            }
            unit = {edited_.data(), edited_.size()};
        }
        appendWithLength(units, unit);
        ++count;
    }
    return count == 0 ? "" : convert(units.data(), units.size(), kFourByteLengths, count);
}

// Written from its record when that is asked for.
void StreamWriter::appendWithLength(std::vector<uint8_t>& out, qv::Bytes unit) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        out.push_back(static_cast<uint8_t>(unit.size >> static_cast<unsigned>(shift)));
    }
    if (isRewriting_) {
        rewriter_->append(unit, out);
    } else {
        out.insert(out.end(), unit.begin(), unit.end());
    }
}

// Empty when all of it was written as it should be, else what is wrong.
std::string StreamWriter::convert(const unsigned char* data, size_t size, const QVCodecParameters& from,
                                  size_t units) {
    const LogCapture quiet;  // the analysis reports what is broken
    std::vector<unsigned char> lengths;
    AnnexB annexB;
    const bool isFromAnnexB = from.isAnnexB != 0;
    const bool isToAnnexB = framing_ == Framing::AnnexB;
    if (!isFromAnnexB && !isToAnnexB && lengthSizeOf(from) == 4) {
        output_.write(data, size);
        return {};
    }
    const bool isConverted = isFromAnnexB
                                 ? toLengths(data, size, lengths) &&
                                       (!isToAnnexB || toAnnexB(lengths.data(), lengths.size(), 4, annexB))
                                 : toAnnexB(data, size, lengthSizeOf(from), annexB) &&
                                       (isToAnnexB || toLengths(annexB.bytes.get(), annexB.size, lengths));
    if (!isConverted) {
        return "were refused by the library and are left out";
    }
    if (isToAnnexB) {
        output_.write(annexB.bytes.get(), annexB.size);
    } else {
        output_.write(lengths.data(), lengths.size());
    }
    return isFromAnnexB || countUnits(annexB) == units
               ? ""
               : "contain a start code, so that the bytes after it become another unit";
}

void StreamWriter::lose(uint64_t accessUnit, const std::string& what) {
    loseAt(fmt::format("access unit {} of {}", accessUnit, streamName_), what);
}

void StreamWriter::loseAt(const std::string& place, const std::string& what) {
    constexpr uint64_t kMostReported = 10;
    if (++losses_ <= kMostReported) {
        complain(fmt::format("{}: {}: {}", outputName_, place, what));
    }
}

// Errors after the last access unit: the rest of the stream was not read.
void StreamWriter::end(const StreamEnd& end) {
    for (const Finding& finding : end.findings) {
        if (finding.severity == Severity::Error) {
            loseAt("the end of " + streamName_, finding.text);
        }
    }
}

void StreamWriter::finish() {
    if (hasFailed_) {
        return;
    }
    output_.close();
    if (remover_) {
        complain(fmt::format("{}: {}", outputName_, remover_->summary()));
    }
    if (rewriter_) {
        complain(fmt::format("{}: {}", outputName_, rewriter_->summary()));
    }
    if (losses_ > 0) {
        throw OutputError(fmt::format(
            "{} is not the whole stream: {} could not be converted; "
            "--level nalus --errors-only shows where it is broken",
            outputName_,
            losses_ == 1 ? std::string("one part of it") : fmt::format("{} parts of it", losses_)));
    }
}

}  // namespace qvinspect
