#include "input/RawReader.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace qvinspect {

RawReader::RawReader(std::unique_ptr<ByteSource> source, QVCodecID codec, RawLimits limits)
    : limits_(limits),
      window_(std::move(source), limits.chunk),
      unitReader_(window_, limits.accessUnit),
      splitter_(makeAccessUnitSplitter(codec)) {
    info_.format = "raw byte stream";
    info_.parameters.codecId = codec;
    info_.parameters.isAnnexB = 1;
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
    if (!unitReader_.next(unit)) {
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
    if (begun > 0 && begun < units_.size()) {
        complete_ = units_.size() - begun;
    } else if (!unit.isCut && units_.size() > 1 &&
               unit.end - units_.front().codeOffset > limits_.accessUnit) {
        complete_ = units_.size() - 1;
        noteCut(units_.front().codeOffset, unit.codeOffset);
    }
    if (unit.isCut) {
        isClosed_ = true;
        noteCut(units_[complete_].codeOffset, unit.end);
    }
}

void RawReader::finish() {
    const uint64_t skipped = unitReader_.skippedAtEnd();
    if (skipped > 0) {
        const char* text =
            isFirst_ ? "no start code (00 00 01) in {} bytes" : "the last {} bytes are left out";
        findings_.push_back(
            {Severity::Error, window_.end() - skipped, fmt::format(fmt::runtime(text), skipped)});
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
    isAtEnd_ = true;
}

void RawReader::noteSkipped(const RawUnit& unit) {
    if (unit.skipped > 0) {
        const char* text = isFirst_ ? "{} bytes ahead of the first start code are left out"
                                    : "{} bytes up to the next start code are left out";
        findings_.push_back(
            {Severity::Note, unit.codeOffset - unit.skipped, fmt::format(fmt::runtime(text), unit.skipped)});
    }
}

void RawReader::noteCut(uint64_t begin, uint64_t end) {
    findings_.push_back(
        {Severity::Error, begin,
         fmt::format("access unit is longer than {} bytes; cut at offset {}", limits_.accessUnit, end)});
}

void RawReader::deliver(AccessUnit& accessUnit) {
    const uint64_t begin = units_.front().codeOffset;
    const uint64_t end = units_[complete_ - 1].end;
    accessUnit.data = window_.at(begin);
    accessUnit.size = end - begin;
    accessUnit.fileOffset = begin;
    accessUnit.parameters = info_.parameters;

    const auto behind = std::stable_partition(
        findings_.begin(), findings_.end(), [end](const Finding& finding) { return *finding.offset < end; });
    accessUnit.findings.assign(std::make_move_iterator(findings_.begin()), std::make_move_iterator(behind));
    findings_.erase(findings_.begin(), behind);

    units_.erase(units_.begin(), units_.begin() + static_cast<std::ptrdiff_t>(complete_));
    complete_ = 0;
    window_.release(end);  // the bytes stay where they are until the window grows
}

}  // namespace qvinspect
