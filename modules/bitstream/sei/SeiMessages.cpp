// The walk over the SEI messages of a unit: H.264 7.3.2.3, H.265 7.3.2.4 and 7.3.5.
#include "bitstream/sei/SeiMessages.h"

#include "bitstream/syntax/EmulationPrevention.h"
#include "bitstream/units/FaultTexts.h"

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
      positions_(messages.unit_, messages.begin_, messages.rbspBegin_),
      dataEnd_(messages.unit_.size),
      next_(messages.rbspBegin_),
      isNested_(messages.isNested_) {
    if (!isNested_) {
        const uint8_t* const begin = unit_.begin() + messages.begin_;
        dataEnd_ =
            static_cast<size_t>(detail::endOfStopBit(unit_.begin(), begin, unit_.end()) - unit_.begin());
    }
    if (positions_.codedByte(next_) >= dataEnd_ || isAtTrailingBits()) {
        item_.unit = unit_;
        item_.offset = item_.payloadOffset = messages.begin_;
        item_.rbspOffset = item_.rbspPayloadOffset = next_;
        item_.payload = {unit_.begin() + messages.begin_, 0};
        item_.faults.add(SeiFault::NoMessage);
        item_.isNested = isNested_;
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
    item_ = takeMessage();
    lookAhead();
    return *this;
}

// True when the next byte is 0x80 and zero bytes alone follow.
bool SeiMessages::Iterator::isAtTrailingBits() noexcept {
    const size_t at = positions_.codedByte(next_);
    return !isNested_ && at + 1 == dataEnd_ && unit_[at] == kTrailingBits;
}

bool SeiMessages::Iterator::takeByte(uint8_t& byte) noexcept {
    const size_t at = positions_.codedByte(next_);
    if (at == unit_.size) {
        return false;
    }
    byte = unit_[at];
    ++next_;
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

SeiMessage SeiMessages::Iterator::takeMessage() noexcept {
    SeiMessage message;
    message.unit = unit_;
    message.isNested = isNested_;
    message.rbspOffset = next_;
    message.offset = positions_.codedByte(next_);
    if (takeNumber(message.payloadType) && takeNumber(message.payloadSize)) {
        takePayload(message);
        return message;
    }
    message.payloadType = 0;
    message.faults.add(SeiFault::HeaderCut);
    message.rbspPayloadOffset = next_;
    message.payloadOffset = unit_.size;
    message.payload = {unit_.end(), 0};
    return message;
}

void SeiMessages::Iterator::takePayload(SeiMessage& message) noexcept {
    message.rbspPayloadOffset = next_;
    message.payloadOffset = positions_.codedByte(next_);
    // The last byte decides whether all are there: an emulation prevention byte may come after it.
    const uint64_t size = message.payloadSize;
    size_t end = message.payloadOffset;
    if (size > unit_.size - message.payloadOffset) {
        end = unit_.size;
    } else if (size > 0) {
        const size_t last = positions_.codedByte(next_ + static_cast<size_t>(size) - 1);
        end = last < unit_.size ? last + 1 : unit_.size;
    }
    message.payload = {unit_.begin() + message.payloadOffset, end - message.payloadOffset};
    message.rbspPayloadSize = positions_.unescapedByte(end) - next_;
    if (message.rbspPayloadSize < size) {
        message.faults.add(SeiFault::PayloadCut);
    }
    next_ += message.rbspPayloadSize;
}

// What follows the message decides whether it is the last one and whether the unit ends as it should.
void SeiMessages::Iterator::lookAhead() noexcept {
    const bool isCut = item_.faults.has(SeiFault::HeaderCut) || item_.faults.has(SeiFault::PayloadCut);
    if (isCut || isAtTrailingBits()) {
        isLast_ = true;
        return;
    }
    const size_t at = positions_.codedByte(next_);
    if (at >= dataEnd_) {
        if (!isNested_) {
            item_.faults.add(SeiFault::NoTrailingBits);
        }
        isLast_ = true;
        return;
    }
    if (!isNested_ && unit_[at] == kTrailingBits) {
        Iterator ahead = *this;
        if (ahead.takeMessage().faults) {
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
