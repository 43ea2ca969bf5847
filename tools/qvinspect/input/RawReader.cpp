#include "input/RawReader.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "input/LengthUnitReader.h"
#include "input/RawUnitReader.h"

namespace qvinspect {

namespace {

std::unique_ptr<UnitReader> makeUnitReader(const QVCodecParameters& stream, ByteWindow& window,
                                           size_t longest) {
    if (stream.isAnnexB != 0) {
        return std::make_unique<RawUnitReader>(window, longest);
    }
    return std::make_unique<LengthUnitReader>(window, stream.nalLengthSize, longest);
}

}  // namespace

RawReader::RawReader(std::unique_ptr<ByteSource> source, const QVCodecParameters& stream, RawLimits limits)
    : limits_(limits),
      window_(std::move(source), limits.chunk),
      unitReader_(makeUnitReader(stream, window_, limits.accessUnit)),
      splitter_(makeAccessUnitSplitter(stream.codecId)) {
    info_.format = stream.isAnnexB != 0 ? "raw byte stream" : "raw length-prefixed stream";
    info_.parameters = stream;
}

bool RawReader::next(AccessUnit& accessUnit) {
    accessUnit = {};
    while (complete_ == 0) {
        if (isClosed_) {
            complete_ = units_.size();
            isClosed_ = false;
        } else if (isAtEnd_) {
            accessUnit.findings = std::exchange(findings_, {});
            return false;
        } else {
            readUnit();
        }
    }
    deliver(accessUnit);
    return true;
}

void RawReader::readUnit() {
    RawUnit unit{};
    if (!unitReader_->next(unit)) {
        finish();
        return;
    }
    noteSkipped(unit);
    take(unit);
    isFirst_ = false;
}

void RawReader::take(const RawUnit& unit) {
    const size_t begun = splitter_.take(window_.at(unit.offset), unit.end - unit.offset);
    units_.push_back(unit);
    units_.back().isFieldSlice = splitter_.isFieldSlice();
    if (begun > 0 && begun < units_.size()) {
        complete_ = units_.size() - begun;
    } else if (!unit.isCut && isTooMuch(unit)) {
        complete_ = units_.size() - 1;
        noteCut(units_.front().codeOffset, unit.codeOffset);
    }
    if (unit.isCut) {
        isClosed_ = true;
        noteCut(units_[complete_].codeOffset, unit.end);
    }
}

bool RawReader::isTooMuch(const RawUnit& unit) const {
    return units_.size() > limits_.units ||
           (units_.size() > 1 && unit.end - units_.front().codeOffset > limits_.accessUnit);
}

void RawReader::finish() {
    isAtEnd_ = true;
    if (window_.source().isInterrupted()) {
        return;
    }
    if (const auto rest = unitReader_->rest()) {
        findings_.push_back(*rest);
    }
    const std::string failure = window_.source().failure();
    if (!failure.empty()) {
        findings_.push_back({Severity::Error, window_.end(), "reading failed: " + failure});
    }
    const size_t withoutPicture = splitter_.unitsWithoutPicture();
    if (withoutPicture > 0 && withoutPicture < units_.size()) {
        complete_ = units_.size() - withoutPicture;
    }
    isClosed_ = !units_.empty();
}

void RawReader::noteSkipped(const RawUnit& unit) {
    if (unit.skipped > 0) {
        const char* text = isFirst_ ? "{} bytes before the first start code are left out"
                                    : "{} bytes up to the next start code are left out";
        findings_.push_back(
            {Severity::Note, unit.codeOffset - unit.skipped, fmt::format(fmt::runtime(text), unit.skipped)});
    }
}

void RawReader::noteCut(uint64_t begin, uint64_t end) {
    const std::string limit = units_.size() > limits_.units
                                  ? fmt::format("has more than {} NAL units", limits_.units)
                                  : fmt::format("is longer than {} bytes", limits_.accessUnit);
    findings_.push_back(
        {Severity::Error, begin, fmt::format("access unit {}; cut at offset {}", limit, end)});
}

void RawReader::deliver(AccessUnit& accessUnit) {
    const uint64_t begin = units_.front().codeOffset;
    const uint64_t end = units_[complete_ - 1].end;
    accessUnit.data = window_.at(begin);
    accessUnit.size = end - begin;
    accessUnit.fileOffset = begin;
    accessUnit.parameters = info_.parameters;
    accessUnit.isField = std::any_of(units_.begin(), units_.begin() + static_cast<std::ptrdiff_t>(complete_),
                                     [](const RawUnit& unit) { return unit.isFieldSlice; });

    const auto later = std::stable_partition(findings_.begin(), findings_.end(),
                                             [end](const Finding& finding) { return *finding.offset < end; });
    accessUnit.findings.assign(std::make_move_iterator(findings_.begin()), std::make_move_iterator(later));
    findings_.erase(findings_.begin(), later);

    units_.erase(units_.begin(), units_.begin() + static_cast<std::ptrdiff_t>(complete_));
    complete_ = 0;
    window_.release(end);  // the bytes keep their place until the window grows
}

}  // namespace qvinspect
