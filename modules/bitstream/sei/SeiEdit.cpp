// SEI units built and edited: H.264 7.3.2.3 and 7.4.1.2.3, H.265 7.3.2.4 and 7.4.2.4.4.
#include "bitstream/sei/SeiEdit.h"

#include <algorithm>

#include "bitstream/avc/NalUnitType.h"
#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/sei/UserData.h"
#include "bitstream/syntax/EmulationPrevention.h"

namespace qv::sei {

namespace {

constexpr uint8_t kFfByte = 0xFF;
constexpr uint8_t kTrailingBits = 0x80;
constexpr uint32_t kMostZeroBytes = 2;

// The zero bytes right before a position, as far as they matter to emulation prevention.
uint32_t zeroBytesBefore(const uint8_t* bytes, size_t position) {
    uint32_t count = 0;
    while (count < kMostZeroBytes && count < position && bytes[position - 1 - count] == 0x00) {
        ++count;
    }
    return count;
}

bool isMissing(const SeiMessage& message) {
    return message.faults.has(SeiFault::NoMessage) || message.faults.has(SeiFault::HeaderCut);
}

// After the last byte of a message. An emulation prevention byte before the next one is not part of it.
size_t endOf(const SeiMessage& message) {
    const size_t end = message.payloadOffset + message.payload.size;
    const bool isPastOne =
        message.payload.empty() && detail::isEmulationPrevention(message.unit.data, end - 1);
    return isPastOne ? end - 1 : end;
}

}  // namespace

NewMessage::NewMessage(const SeiMessage& message) noexcept
    : unit_(message.unit),
      begin_(message.offset),
      isWhole_(!isMissing(message) && !message.faults.has(SeiFault::PayloadCut)) {
    end_ = isWhole_ ? endOf(message) : begin_;
}

void UnitBytesWriter::header(Bytes header) {
    out_.insert(out_.end(), header.begin(), header.end());
    zeroBytes_ = zeroBytesBefore(out_.data() + begin_, size());
}

void UnitBytesWriter::put(uint8_t byte) {
    if (zeroBytes_ == kMostZeroBytes && byte <= detail::kGreatestEmulatingByte) {
        out_.push_back(detail::kEmulationPreventionThreeByte);
        zeroBytes_ = 0;
    }
    out_.push_back(byte);
    zeroBytes_ = byte == 0x00 ? zeroBytes_ + 1 : 0;
}

// Byte by byte until as many zero bytes precede as in the unit: from there on both are the same.
void UnitBytesWriter::copy(Bytes unit, size_t begin, size_t end) {
    size_t next = begin;
    for (; next < end && zeroBytesBefore(unit.data, next) != zeroBytes_; ++next) {
        if (!detail::isEmulationPrevention(unit.data, next)) {
            put(unit[next]);
        }
    }
    if (next < end) {
        out_.insert(out_.end(), unit.data + next, unit.data + end);
        zeroBytes_ = zeroBytesBefore(out_.data() + begin_, size());
    }
}

void UnitBytesWriter::number(uint64_t number) {
    for (; number >= kFfByte; number -= kFfByte) {
        put(kFfByte);
    }
    put(static_cast<uint8_t>(number));
}

void UnitBytesWriter::message(const NewMessage& message) {
    if (!message.unit_.empty()) {
        copy(message.unit_, message.begin_, message.end_);
        return;
    }
    number(message.payloadType_);
    number(message.payload_.size);
    for (const uint8_t byte : message.payload_) {
        put(byte);
    }
}

void UnitBytesWriter::trailingBits() {
    put(kTrailingBits);
}

bool SeiUnitWriter::add(const NewMessage& message) {
    if (!message.isWhole()) {
        return false;
    }
    writer_.message(message);
    ++messages_;
    return true;
}

size_t SeiUnitWriter::finish() {
    if (messages_ == 0) {
        writer_.discard();
        return 0;
    }
    writer_.trailingBits();
    return writer_.size();
}

SeiUnitEdit::SeiUnitEdit(Bytes unit, Codec codec, std::vector<uint8_t>& out) noexcept
    : unit_(unit),
      headerBytes_(nalUnitOf(unit, codec).headerBytes),
      hasHeader_(headerBytes_ >= (codec == Codec::Avc ? 1U : 2U)),
      writer_(out),
      next_(SeiMessages(unit, codec).begin()),
      end_(headerBytes_) {
    if (next_->faults.has(SeiFault::NoMessage)) {
        last_ = next_->faults;
    }
}

const SeiMessage* SeiUnitEdit::message() const noexcept {
    return next_ == SeiMessages::end() || isMissing(*next_) ? nullptr : &*next_;
}

// What is before end_ is written; copying goes on there.
void SeiUnitEdit::flush() {
    writer_.copy(unit_, begin_, end_);
    begin_ = end_;
}

void SeiUnitEdit::pass() {
    last_ = next_->faults;
    end_ = endOf(*next_);
    ++next_;
}

void SeiUnitEdit::keep() {
    pass();
    ++messages_;
    isChanged_ = false;
}

void SeiUnitEdit::remove() {
    flush();
    pass();
    begin_ = end_;
    hasRemoved_ = true;
    isChanged_ = true;
}

bool SeiUnitEdit::insert(const NewMessage& message) {
    const bool isAfterCut = last_.has(SeiFault::PayloadCut) && !isChanged_;
    if (!message.isWhole() || isAfterCut || !hasHeader_) {
        return false;
    }
    flush();
    writer_.message(message);
    ++messages_;
    isChanged_ = true;
    return true;
}

// Of the unit as it was, after its messages.
bool SeiUnitEdit::hasTrailingBits() const {
    if (last_.has(SeiFault::NoMessage)) {
        return std::find(unit_.begin() + headerBytes_, unit_.end(), kTrailingBits) != unit_.end();
    }
    return !last_.has(SeiFault::NoTrailingBits) && !last_.has(SeiFault::PayloadCut);
}

size_t SeiUnitEdit::finish() {
    while (message() != nullptr) {
        keep();
    }
    if (hasRemoved_ && messages_ == 0) {
        writer_.discard();
        return 0;
    }
    if (isChanged_ && !hasTrailingBits()) {
        writer_.trailingBits();
    } else {
        end_ = unit_.size;
        flush();
    }
    return writer_.size();
}

namespace {

// The bytes of the RBSP that a reader has left.
void appendBytes(Reader reader, size_t count, std::vector<uint8_t>& out) {
    for (; count > 0; --count) {
        uint32_t byte = 0;
        reader.u(8, "byte", byte);
        out.push_back(static_cast<uint8_t>(byte));
    }
}

bool areWhole(const NestedMessages& nested) {
    if (nested.bits.empty()) {
        return false;
    }
    // NOLINTNEXTLINE(readability-use-anyofallof): the end has another type than the begin
    for (const SeiMessage& message : SeiMessages(nested)) {
        if (!message.ok()) {
            return false;
        }
    }
    return true;
}

}  // namespace

NestedEdit::NestedEdit(const SeiMessage& message, const NestedMessages& nested)
    : payloadType_(static_cast<uint32_t>(message.payloadType)),
      isWhole_(NewMessage(message).isWhole() && areWhole(nested)) {
    if (isWhole_) {
        const auto begin = static_cast<size_t>(nested.bits.firstBit / 8);
        appendBytes(message.reader(), begin - message.rbspPayloadOffset, payload_);
    }
}

void NestedEdit::keep(const SeiMessage& nested) {
    const Reader reader(nested.unit, nested.offset, nested.payloadOffset + nested.payload.size,
                        uint64_t{8} * nested.rbspOffset);
    appendBytes(reader, nested.rbspPayloadOffset + nested.rbspPayloadSize - nested.rbspOffset, payload_);
}

NewMessage NestedEdit::message() const {
    return {payloadType_, {payload_.data(), payload_.size()}};
}

bool isOwnedBy(const SeiMessage& message, const T35Code& code) noexcept {
    if (message.payloadType != UserDataRegistered::kPayloadTypes.avc) {
        return false;
    }
    // The type and the syntax are those of both codecs.
    const auto read = readPayload<UserDataRegistered>(message, Context(Codec::Avc));
    return message.rbspPayloadSize > 0 && code.covers(t35Of(read.record).code);
}

Removed removeMessagesOfType(Bytes unit, Codec codec, uint64_t payloadType, std::vector<uint8_t>& out) {
    return removeMessages(unit, codec, out, [payloadType](const SeiMessage& message) {
        return message.payloadType == payloadType;
    });
}

Removed removeMessagesOf(Bytes unit, Codec codec, const T35Code& code, std::vector<uint8_t>& out) {
    return removeMessages(unit, codec, out,
                          [&code](const SeiMessage& message) { return isOwnedBy(message, code); });
}

namespace {

// Keeps the messages before a position; false when there are fewer.
bool keepBefore(SeiUnitEdit& edit, size_t position) {
    for (; position > 0 && edit.message() != nullptr; --position) {
        edit.keep();
    }
    return position == 0;
}

}  // namespace

bool insertMessage(Bytes unit, Codec codec, size_t position, const NewMessage& message,
                   std::vector<uint8_t>& out) {
    const size_t before = out.size();
    SeiUnitEdit edit(unit, codec, out);
    if (!keepBefore(edit, position) || !edit.insert(message)) {
        out.resize(before);
        return false;
    }
    edit.finish();
    return true;
}

bool replaceMessage(Bytes unit, Codec codec, size_t position, const NewMessage& message,
                    std::vector<uint8_t>& out) {
    const size_t before = out.size();
    SeiUnitEdit edit(unit, codec, out);
    if (!keepBefore(edit, position) || edit.message() == nullptr) {
        return false;
    }
    edit.remove();
    if (!edit.insert(message)) {
        out.resize(before);
        return false;
    }
    edit.finish();
    return true;
}

namespace {

constexpr uint32_t kAnywhere = 4;

// The order of messages in an access unit; those without a place of their own are kAnywhere.
uint32_t orderOf(Codec codec, uint64_t payloadType) {
    constexpr uint64_t kBufferingPeriod = 0;
    constexpr uint64_t kPicTiming = 1;
    constexpr uint64_t kActiveParameterSets = 129;
    constexpr uint64_t kDecodingUnitInfo = 130;
    if (payloadType == kBufferingPeriod) {
        return 1;
    }
    if (codec == Codec::Avc) {
        return kAnywhere;
    }
    switch (payloadType) {
        case kActiveParameterSets:
            return 0;
        case kPicTiming:
            return 2;
        case kDecodingUnitInfo:
            return 3;
        default:
            return kAnywhere;
    }
}

// How many messages of a unit precede the first one that comes after those of an order.
struct Placed {
    size_t position = 0;
    bool isBeforeMessage = false;  // true when there is such a message
};

Placed placeIn(Bytes unit, Codec codec, uint32_t order) {
    Placed placed;
    for (const SeiMessage& message : SeiMessages(unit, codec)) {
        if (isMissing(message)) {
            break;
        }
        if (orderOf(codec, message.payloadType) > order) {
            placed.isBeforeMessage = true;
            break;
        }
        ++placed.position;
    }
    return placed;
}

// Types of units that begin an access unit. The prefix NAL unit of H.264 is none: it belongs to a slice.
bool isLeading(Codec codec, uint32_t nal_unit_type) {
    const auto isFrom = [nal_unit_type](uint32_t first, uint32_t last) {
        return nal_unit_type >= first && nal_unit_type <= last;
    };
    if (codec == Codec::Avc) {
        constexpr uint32_t kLastReserved = 18;
        return isFrom(avc::kNalSei, avc::kNalAccessUnitDelimiter) || nal_unit_type == avc::kNalSpsExtension ||
               isFrom(avc::kNalSubsetSps, kLastReserved);
    }
    constexpr uint32_t kFirstReserved = 41;
    constexpr uint32_t kLastReserved = 44;
    constexpr uint32_t kLastUnspecified = 55;
    return isFrom(hevc::kNalVps, hevc::kNalAccessUnitDelimiter) || nal_unit_type == hevc::kNalPrefixSei ||
           isFrom(kFirstReserved, kLastReserved) || isFrom(hevc::kNalUnspecified48, kLastUnspecified);
}

size_t placeOfSuffixSei(const NalUnit* units, size_t count) {
    size_t place = count;
    for (size_t i = 0; i < count; ++i) {
        const uint32_t type = units[i].nal_unit_type;
        if (hevc::isVcl(type) || (place == i && type == hevc::kNalSuffixSei)) {
            place = i + 1;
        }
    }
    return place;
}

}  // namespace

size_t placeOfMessage(Bytes unit, Codec codec, uint64_t payloadType) noexcept {
    return placeIn(unit, codec, orderOf(codec, payloadType)).position;
}

size_t placeOfSeiUnit(const NalUnit* units, size_t count, Codec codec, uint32_t nal_unit_type,
                      uint64_t payloadType) noexcept {
    if (codec == Codec::Hevc && nal_unit_type == hevc::kNalSuffixSei) {
        return placeOfSuffixSei(units, count);
    }
    const uint32_t sei = codec == Codec::Avc ? avc::kNalSei : hevc::kNalPrefixSei;
    const uint32_t order = orderOf(codec, payloadType);
    size_t place = 0;
    while (
        place < count && isLeading(codec, units[place].nal_unit_type) &&
        !(units[place].nal_unit_type == sei && placeIn(units[place].bytes, codec, order).isBeforeMessage)) {
        ++place;
    }
    return place;
}

}  // namespace qv::sei
