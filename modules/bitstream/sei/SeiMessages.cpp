// The walk over the SEI messages of a unit: H.264 7.3.2.3, H.265 7.3.2.4 and 7.3.5.
#include "bitstream/sei/SeiMessages.h"

#include "bitstream/syntax/EmulationPrevention.h"
#include "bitstream/units/FaultTexts.h"
#include "bitstream/units/Rbsp.h"

namespace qv {

namespace {

// rbsp_trailing_bits() of an RBSP that ends on a byte boundary.
constexpr uint8_t kTrailingBits = 0x80;

constexpr uint8_t kFfByte = 0xFF;

}  // namespace

Reader SeiMessage::reader() const noexcept {
    return {unit, payloadOffset, payloadOffset + payload.size, uint64_t{8} * rbspPayloadOffset};
}

SeiMessages::Iterator SeiMessages::begin() const noexcept {
    return Iterator(*this);
}

SeiMessages::Iterator::Iterator(const SeiMessages& messages) noexcept
    : unit_(messages.unit_),
      dataEnd_(messages.unit_.size),
      next_(messages.begin_),
      passed_(messages.begin_ - messages.rbspBegin_),
      emulation_(findEmulationPrevention(unit_, next_, next_)),
      isNested_(messages.isNested_) {
    if (!isNested_) {
        const uint8_t* const begin = unit_.begin() + next_;
        dataEnd_ =
            static_cast<size_t>(detail::endOfStopBit(unit_.begin(), begin, unit_.end()) - unit_.begin());
    }
    item_.unit = unit_;
    item_.isNested = isNested_;
    passEmulationPrevention();
    if (next_ >= dataEnd_ || isAtTrailingBits()) {
        item_.offset = item_.payloadOffset = messages.begin_;
        item_.rbspOffset = item_.rbspPayloadOffset = messages.rbspBegin_;
        item_.payload = {unit_.begin() + messages.begin_, 0};
        item_.faults.add(SeiFault::NoMessage);
        isLast_ = true;
        return;
    }
    ++*this;
}

SeiMessages::Iterator& SeiMessages::Iterator::operator++() noexcept {
    if (isLast_) {
        isAtEnd_ = true;
        return *this;
    }
    takeMessage();
    lookAhead();
    return *this;
}

// True when the next byte is 0x80 and zero bytes alone follow.
bool SeiMessages::Iterator::isAtTrailingBits() const noexcept {
    return !isNested_ && next_ + 1 == dataEnd_ && unit_[next_] == kTrailingBits;
}

// No two of these bytes follow each other.
void SeiMessages::Iterator::passEmulationPrevention() noexcept {
    if (next_ == emulation_ && next_ < unit_.size) {
        ++next_;
        ++passed_;
        emulation_ = findEmulationPrevention(unit_, next_, next_);
    }
}

bool SeiMessages::Iterator::takeByte(uint8_t& byte) noexcept {
    if (next_ >= unit_.size) {
        return false;
    }
    byte = unit_[next_++];
    passEmulationPrevention();
    return true;
}

// ff_byte as often as it comes, and the last byte.
bool SeiMessages::Iterator::takeNumber(uint64_t& number) noexcept {
    uint8_t byte = kFfByte;
    for (number = 0; byte == kFfByte; number += byte) {
        if (!takeByte(byte)) {
            number = 0;
            return false;
        }
    }
    return true;
}

void SeiMessages::Iterator::takeMessage() noexcept {
    item_.faults = {};
    item_.rbspOffset = rbspPosition();
    item_.offset = next_;
    if (takeNumber(item_.payloadType) && takeNumber(item_.payloadSize)) {
        takePayload();
        return;
    }
    item_.payloadType = 0;
    item_.payloadSize = 0;
    item_.faults.add(SeiFault::HeaderCut);
    item_.rbspPayloadOffset = rbspPosition();
    item_.rbspPayloadSize = 0;
    item_.payloadOffset = unit_.size;
    item_.payload = {unit_.end(), 0};
}

// Bytes from one emulation prevention byte to the next. One that follows the last byte is not part of the
// payload, unless the unit ends with it.
void SeiMessages::Iterator::takePayload() noexcept {
    item_.rbspPayloadOffset = rbspPosition();
    item_.payloadOffset = next_;
    uint64_t left = item_.payloadSize;
    size_t end = next_;
    while (left > 0 && next_ < unit_.size) {
        const size_t run = emulation_ - next_;
        const size_t taken = left < run ? static_cast<size_t>(left) : run;
        next_ += taken;
        left -= taken;
        end = next_;
        passEmulationPrevention();
    }
    if (left > 0) {
        end = unit_.size;
        item_.faults.add(SeiFault::PayloadCut);
    }
    item_.payload = {unit_.begin() + item_.payloadOffset, end - item_.payloadOffset};
    item_.rbspPayloadSize = static_cast<size_t>(item_.payloadSize - left);
}

// What follows the message decides whether it is the last one and whether the unit ends as it should.
void SeiMessages::Iterator::lookAhead() noexcept {
    const bool isCut = item_.faults.has(SeiFault::HeaderCut) || item_.faults.has(SeiFault::PayloadCut);
    if (isCut || isAtTrailingBits()) {
        isLast_ = true;
        return;
    }
    if (next_ >= dataEnd_) {
        if (!isNested_) {
            item_.faults.add(SeiFault::NoTrailingBits);
        }
        isLast_ = true;
        return;
    }
    if (!isNested_ && unit_[next_] == kTrailingBits) {
        Iterator ahead = *this;
        ahead.takeMessage();
        if (ahead.item_.faults) {
            item_.faults.add(SeiFault::BytesAfterTrailingBits);
            isLast_ = true;
        }
    }
}

std::string textOf(SeiFaults faults) {
    static constexpr detail::FaultText<SeiFault> kTexts[] = {
        {SeiFault::NoMessage, "no SEI message"},
        {SeiFault::HeaderCut, "the unit ends within payloadType or payloadSize"},
        {SeiFault::PayloadCut, "payloadSize runs past the end of the unit"},
        {SeiFault::NoTrailingBits, "no rbsp_trailing_bits() after the last message"},
        {SeiFault::BytesAfterTrailingBits, "bytes other than zero after rbsp_trailing_bits()"},
    };
    return detail::textOf(faults, kTexts);
}

}  // namespace qv
