/// \file
/// The SEI messages of a NAL unit, one after the other (H.264 7.3.2.3, H.265 7.3.2.4).
#ifndef QV_BITSTREAM_SEI_SEIMESSAGES_H
#define QV_BITSTREAM_SEI_SEIMESSAGES_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "bitstream/Bytes.h"
#include "bitstream/Codec.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Reader.h"
#include "bitstream/units/FaultSet.h"
#include "bitstream/units/ItemIterator.h"
#include "bitstream/units/NalUnits.h"

namespace qv {

/// What is wrong with a message or with the bytes after it.
enum class SeiFault : uint32_t {
    /// The unit has no message. The item, which is empty, is the only one.
    NoMessage = 1U << 0,
    /// The unit ends within the bytes of payloadType and payloadSize.
    HeaderCut = 1U << 1,
    /// payloadSize runs past the end of the unit. The payload holds the bytes that are there.
    PayloadCut = 1U << 2,
    /// The unit ends after the message without rbsp_trailing_bits().
    NoTrailingBits = 1U << 3,
    /// After the message comes what may be rbsp_trailing_bits(), but bytes that are neither zero nor a
    /// message follow.
    BytesAfterTrailingBits = 1U << 4,
};

/// The faults of one message.
using SeiFaults = FaultSet<SeiFault>;

/// One message of a unit: sei_message(), H.264 7.3.2.3.1, H.265 7.3.5.
struct SeiMessage {
    uint64_t payloadType = 0;  ///< all of its bytes added up; 0 with HeaderCut
    uint64_t payloadSize = 0;  ///< as coded, in bytes of the RBSP; 0 with HeaderCut

    /// The first byte of payloadType in the unit as coded.
    size_t offset = 0;

    /// The first byte of the payload in the unit as coded.
    size_t payloadOffset = 0;

    /// As offset, counted without emulation prevention bytes, the NAL unit header included.
    size_t rbspOffset = 0;

    /// As payloadOffset, counted without emulation prevention bytes, the NAL unit header included.
    size_t rbspPayloadOffset = 0;

    /// Bytes of the payload that are there, without emulation prevention bytes: payloadSize, or fewer with
    /// PayloadCut.
    size_t rbspPayloadSize = 0;

    /// The payload as coded, emulation prevention bytes included, borrowed.
    Bytes payload;

    /// The unit from its header on, borrowed.
    Bytes unit;

    SeiFaults faults;  ///< what is wrong with it

    bool isNested = false;  ///< true for a message in the payload of another one

    /// False when there is a fault.
    bool ok() const { return !faults; }

    /// A reader of the payload, which ends with it: every bit is data.
    Reader reader() const noexcept;
};

/// Messages in the payload of another one: scalable_nesting() (H.264 G.13.1.7, H.265 D.2.24) and its kin.
struct NestedMessages {
    CodedBits bits;  ///< whole bytes, borrowed from the unit; see SeiMessages
};

/// The SEI messages of a unit, found while they are asked for:
///
///     for (const SeiMessage& message : SeiMessages(unit)) { ... }
///
/// Every message is found that the bytes hold, also one that zero bytes end and no rbsp_trailing_bits()
/// follow. What is cut off or left over is reported with the last message. A unit without a message has one
/// item that says so. Nothing is allocated; work is linear in the size of the unit.
class SeiMessages {
public:
    class Iterator;

    /// The messages of a unit of a walk. Its nal_unit_type is not looked at.
    explicit SeiMessages(const NalUnit& unit) noexcept
        : unit_(unit.bytes), begin_(unit.headerBytes), rbspBegin_(unit.headerBytes) {}

    /// The messages of a unit from its header on, which is borrowed.
    SeiMessages(Bytes unit, Codec codec) noexcept : SeiMessages(nalUnitOf(unit, codec)) {}

    /// The messages in the payload of another one, which end with it: they have no rbsp_trailing_bits().
    explicit SeiMessages(const NestedMessages& nested) noexcept
        : unit_(nested.bits.unit),
          begin_(nested.bits.byte),
          rbspBegin_(static_cast<size_t>(nested.bits.firstBit / 8)),
          isNested_(true) {}

    /// The first message. Finds it.
    Iterator begin() const noexcept;

    /// The end: after the last message.
    static EndOfItems end() noexcept { return {}; }

private:
    Bytes unit_;
    size_t begin_;
    size_t rbspBegin_;
    bool isNested_ = false;
};

/// An iterator over the messages of a unit.
class SeiMessages::Iterator : public ItemIterator<SeiMessages::Iterator, SeiMessage> {
public:
    using ItemIterator::operator++;

    /// Goes on to the next message. Not allowed at the end.
    Iterator& operator++() noexcept;

private:
    friend class SeiMessages;

    explicit Iterator(const SeiMessages& messages) noexcept;

    bool isAtTrailingBits() const noexcept;
    size_t rbspPosition() const noexcept { return next_ - passed_; }
    void passEmulationPrevention() noexcept;
    bool takeByte(uint8_t& byte) noexcept;
    bool takeNumber(uint64_t& number) noexcept;
    void takeMessage() noexcept;
    void takePayload() noexcept;
    void lookAhead() noexcept;

    Bytes unit_;
    size_t dataEnd_;    // after the last byte that is not zero
    size_t next_;       // the next byte, which is no emulation prevention byte
    size_t passed_;     // emulation prevention bytes before it
    size_t emulation_;  // the next emulation prevention byte; the size of the unit without one
    bool isNested_;
    bool isLast_ = false;
};

/// What is wrong, as a line of text without a line feed; empty without a fault. With several faults the texts
/// are separated by "; ".
std::string textOf(SeiFaults faults);

}  // namespace qv

#endif
