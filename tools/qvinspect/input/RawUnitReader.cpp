#include "input/RawUnitReader.h"

#include <fmt/format.h>

#include <algorithm>

#include "bitstream/units/StartCode.h"

namespace qvinspect {

RawUnitReader::RawUnitReader(ByteWindow& window, size_t longest) : window_(window), longest_(longest) {}

bool RawUnitReader::next(RawUnit& unit) {
    skipped_ = 0;
    if (isSkipping_) {
        skipToCode();
    }
    if (!open_) {
        return false;
    }
    hasUnit_ = true;
    unit = {open_->codeOffset, open_->offset, 0, false, skipped_, false};
    for (;;) {
        open_ = findCode();
        const uint64_t end = open_ ? open_->codeOffset : window_.end();
        if (end - unit.codeOffset > longest_) {
            unit.end = unit.codeOffset + longest_;
            unit.isCut = true;
            isSkipping_ = true;
            searchFrom_ = unit.end;
            zeroByteFrom_ = unit.end;
            return true;
        }
        if (open_ || !window_.grow()) {
            unit.end = end;
            return true;
        }
    }
}

std::optional<Finding> RawUnitReader::rest() const {
    if (skipped_ == 0) {
        return std::nullopt;
    }
    const char* text = hasUnit_ ? "the last {} bytes are left out" : "no start code (00 00 01) in {} bytes";
    return Finding{Severity::Error, window_.end() - skipped_, fmt::format(fmt::runtime(text), skipped_)};
}

// Searches the window for a start code and remembers the end of the search.
std::optional<RawUnitReader::Code> RawUnitReader::findCode() {
    const uint64_t begin = window_.begin();
    const auto code = qv::findStartCode({window_.at(begin), window_.end() - begin}, searchFrom_ - begin,
                                        std::max(zeroByteFrom_, begin) - begin);
    if (!code) {
        const uint64_t end = window_.end();
        searchFrom_ = std::max(searchFrom_, end - std::min<uint64_t>(end, qv::kStartCodePrefixSize));
        return std::nullopt;
    }
    // The byte after a start code begins a unit, whatever its value, and never another start code.
    searchFrom_ = begin + code->unitOffset + 1;
    zeroByteFrom_ = searchFrom_;
    return Code{begin + code->offset, begin + code->unitOffset};
}

void RawUnitReader::skipToCode() {
    const uint64_t from = searchFrom_;
    window_.release(from);
    while (!(open_ = findCode())) {
        // One byte more than may become a start code: a zero byte before it.
        const uint64_t end = window_.end();
        window_.release(end - std::min<uint64_t>(end, qv::kStartCodePrefixSize + 1));
        if (!window_.grow()) {
            break;
        }
    }
    isSkipping_ = false;
    const uint64_t to = open_ ? open_->codeOffset : window_.end();
    window_.release(to);
    skipped_ = to - from;
}

}  // namespace qvinspect
