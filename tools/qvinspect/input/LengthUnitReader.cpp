#include "input/LengthUnitReader.h"

#include <fmt/format.h>

#include <utility>

namespace qvinspect {

LengthUnitReader::LengthUnitReader(ByteWindow& window, unsigned lengthSize, size_t longest)
    : window_(window), lengthSize_(lengthSize), longest_(longest) {}

bool LengthUnitReader::next(RawUnit& unit) {
    if (rest_) {
        return false;
    }
    const uint64_t offset = next_ + lengthSize_;
    if (!hold(offset)) {
        const uint64_t left = window_.end() - next_;
        if (left > 0) {
            endAt(fmt::format("{} bytes are left, too few for a length field", left));
        }
        return false;
    }
    uint64_t length = 0;
    for (uint64_t at = next_; at < offset; ++at) {
        length = length << 8 | *window_.at(at);
    }
    if (lengthSize_ + length > longest_) {
        endAt(
            fmt::format("the length field here is {} bytes, more than the {} that a unit may have; the rest "
                        "is left out: check that the units have lengths of {} bytes",
                        length, longest_ - lengthSize_, lengthSize_));
        return false;
    }
    if (!hold(offset + length)) {
        endAt(fmt::format("the length field here is {} bytes, of which the stream has {}", length,
                          window_.end() - offset));
        return false;
    }
    unit = {next_, offset, offset + length, false, 0, false};
    next_ = unit.end;
    return true;
}

// Reads up to end. False if the stream ends before.
bool LengthUnitReader::hold(uint64_t end) {
    while (window_.end() < end) {
        if (!window_.grow()) {
            return false;
        }
    }
    return true;
}

void LengthUnitReader::endAt(std::string text) {
    rest_ = Finding{Severity::Error, next_, std::move(text)};
}

}  // namespace qvinspect
