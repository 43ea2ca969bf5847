/// \file
/// SEI units built from messages, messages removed, inserted and replaced, and the place of a new message or
/// unit in its access unit (H.264 7.3.2.3 and 7.4.1.2.3, H.265 7.3.2.4 and 7.4.2.4.4).
///
/// Positions count the messages of a unit from 0. Messages that are nested in another one are part of its
/// payload; only the removeMessages() with the parameter \p nestedIn looks at them. A message whose payload
/// is cut counts. The bytes of one that is cut before its payload do not; they belong to what follows the
/// messages.
///
/// An edit that changes nothing leaves the unit as it is, byte for byte. Otherwise the other messages and
/// what follows them keep their bytes, except for emulation prevention bytes where two parts meet. Of a
/// damaged unit:
///
/// - A message whose payload is cut (SeiFault::PayloadCut) is kept with its payloadSize. When it is removed,
///   rbsp_trailing_bits() follow the messages before it. One of type 128 at the start of a unit reads as
///   bytes after rbsp_trailing_bits() when a message is inserted before it.
/// - A unit that has no rbsp_trailing_bits() (SeiFault::NoTrailingBits) gets none. When its last message is
///   removed or replaced, or one is inserted after it, rbsp_trailing_bits() are written and zero bytes at its
///   end are left out.
/// - Bytes after rbsp_trailing_bits() (SeiFault::BytesAfterTrailingBits) and those of a message that is cut
///   before its payload (SeiFault::HeaderCut) are kept after the messages.
///
/// cabac_zero_words and trailing zero bytes after rbsp_trailing_bits() are kept. Apart from the case of type
/// 128, reading a unit after an edit gives the messages that the edit describes, whether the unit is damaged
/// or not.
///
/// Units are appended to a list of bytes. The bytes that a function reads may not be in that list. Work is
/// linear in the size of the unit. Nothing is allocated except by the list, and for payloads that are written
/// from records or without nested messages.
#ifndef QV_BITSTREAM_SEI_SEIEDIT_H
#define QV_BITSTREAM_SEI_SEIEDIT_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Codec.h"
#include "bitstream/sei/SeiMessages.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/sei/T35.h"
#include "bitstream/units/NalUnits.h"

namespace qv::sei {

/// A message to be written: one of a unit, or a payloadType and a payload. Borrows the bytes.
class NewMessage {
public:
    /// A copy of a message. One that is cut (SeiFault::HeaderCut, SeiFault::PayloadCut) or missing
    /// (SeiFault::NoMessage) is not written.
    // NOLINTNEXTLINE(google-explicit-constructor): a message is a message to be written
    NewMessage(const SeiMessage& message) noexcept;

    /// A message with this payload, given as bytes of the RBSP: without emulation prevention bytes, as
    /// writePayload() writes it.
    NewMessage(uint32_t payloadType, Bytes payload) noexcept : payloadType_(payloadType), payload_(payload) {}

    /// False for a message that is not written.
    bool isWhole() const { return isWhole_; }

private:
    friend class UnitBytesWriter;

    uint32_t payloadType_ = 0;
    Bytes payload_;

    // Of a copy.
    Bytes unit_;
    size_t begin_ = 0;
    size_t end_ = 0;
    bool isWhole_ = true;
};

/// Appends the bytes of a unit with emulation prevention bytes (H.264 7.4.1, H.265 7.4.2.1).
class UnitBytesWriter {
public:
    /// \p out is borrowed; what it holds stays.
    explicit UnitBytesWriter(std::vector<uint8_t>& out) : out_(out), begin_(out.size()) {}

    /// A NAL unit header, which has no emulation prevention bytes.
    void header(Bytes header);

    /// Bytes of a unit as coded. They get or lose emulation prevention bytes only before the first byte from
    /// which on the same bytes precede them as in that unit.
    void copy(Bytes unit, size_t begin, size_t end);

    /// A message: payloadType, payloadSize and payload. It must be whole.
    void message(const NewMessage& message);

    /// rbsp_trailing_bits() of an RBSP that ends on a byte boundary.
    void trailingBits();

    /// The bytes so far.
    size_t size() const { return out_.size() - begin_; }

    /// Takes all of them back.
    void discard() { out_.resize(begin_); }

private:
    void put(uint8_t byte);
    void number(uint64_t number);

    std::vector<uint8_t>& out_;
    size_t begin_;
    uint32_t zeroBytes_ = 0;  // at the end of the output, 2 at most
};

/// Writes an SEI unit, message by message.
class SeiUnitWriter {
public:
    /// \param header  the NAL unit header: 1 byte in H.264, 2 in H.265
    /// \param out     the unit is appended; borrowed until finish() returns
    SeiUnitWriter(Bytes header, std::vector<uint8_t>& out) : writer_(out) { writer_.header(header); }

    /// Appends a message.
    ///
    /// \return false, with nothing written, for one that is not whole
    bool add(const NewMessage& message);

    /// Appends a message that is written from its record. For a record of messages of any type write the
    /// payload with writePayload() and give it with its payloadType.
    ///
    /// \return bytes of the payload, or the first element that does not fit; nothing is written then
    template <class Payload>
    Written add(const Payload& payload, const Context& context) {
        payload_.clear();
        const Written written = writePayload(payload, context, payload_);
        if (written.ok()) {
            add(NewMessage(Payload::kPayloadTypes.of(context.codec), {payload_.data(), payload_.size()}));
        }
        return written;
    }

    /// Ends the unit with rbsp_trailing_bits(). Called once, last.
    ///
    /// \return its bytes; 0 without a message: there is no unit then, and nothing is appended
    size_t finish();

private:
    UnitBytesWriter writer_;
    std::vector<uint8_t> payload_;
    size_t messages_ = 0;
};

/// Walks over the messages of a unit and writes it anew: each one is kept or removed, and others are inserted
/// before it or after the last one. Ends with finish().
class SeiUnitEdit {
public:
    /// \param unit  from its header on, borrowed
    /// \param out   the unit is appended; borrowed until finish() returns
    SeiUnitEdit(Bytes unit, Codec codec, std::vector<uint8_t>& out) noexcept;

    /// The message that is next; a null pointer after the last one. Valid until it is kept or removed.
    const SeiMessage* message() const noexcept;

    /// Keeps the next message, which must be there.
    void keep();

    /// Removes the next message, which must be there.
    void remove();

    /// Inserts a message before the next one.
    ///
    /// \return false, with nothing inserted, for a message that is not whole, after one that is kept and cut,
    ///         and in a unit without a whole header
    bool insert(const NewMessage& message);

    /// Keeps the messages that are left, and what follows them. Called once, last.
    ///
    /// \return bytes of the unit; 0 when its messages were removed and none is left: there is no unit then,
    ///         and nothing is appended
    size_t finish();

private:
    void pass();
    void flush();
    bool hasTrailingBits() const;

    Bytes unit_;
    size_t headerBytes_;
    bool hasHeader_;  // all of it
    UnitBytesWriter writer_;
    SeiMessages::Iterator next_;

    // What is to be copied.
    size_t begin_ = 0;
    size_t end_ = 0;

    size_t messages_ = 0;      // of the new unit
    bool hasRemoved_ = false;  // any
    bool isChanged_ = false;   // after the last message that was kept
    SeiFaults last_;           // of the last message that was passed
};

/// What became of a unit.
struct Removed {
    size_t messages = 0;      ///< messages that were removed
    bool isUnitGone = false;  ///< true when they were all of its messages: nothing is appended
};

/// Removes messages of a unit.
///
/// \param unit       from its header on
/// \param out        the unit is appended: as it is, or without the messages
/// \param isRemoved  called with each SeiMessage once, in order; true for one that is removed
template <class Predicate>
Removed removeMessages(Bytes unit, Codec codec, std::vector<uint8_t>& out, const Predicate& isRemoved) {
    Removed removed;
    SeiUnitEdit edit(unit, codec, out);
    while (const SeiMessage* const message = edit.message()) {
        if (isRemoved(*message)) {
            edit.remove();
            ++removed.messages;
        } else {
            edit.keep();
        }
    }
    removed.isUnitGone = edit.finish() == 0 && removed.messages > 0;
    return removed;
}

/// The payload of a message while the messages that are nested in it are kept and removed.
class NestedEdit {
public:
    /// \param message  that holds them; borrowed
    /// \param nested   the messages in its payload
    NestedEdit(const SeiMessage& message, const NestedMessages& nested);

    /// False when a message or one of those in it is cut, or there is none: it is left as it is.
    bool isWhole() const { return isWhole_; }

    /// Keeps one of the messages. They are kept in order.
    void keep(const SeiMessage& nested);

    /// The message with those that were kept. Borrows its payload from this.
    NewMessage message() const;

private:
    uint32_t payloadType_;
    bool isWhole_;
    std::vector<uint8_t> payload_;
};

/// As removeMessages(), also in the payload of messages that hold others, such as scalable_nesting(). A
/// message is removed when all of those in it are. One whose payload or any message in it is cut is left as
/// it is, and so are messages that are nested twice.
///
/// \param nestedIn  called with each SeiMessage of the unit that is not removed; returns the NestedMessages
/// in
///                  its payload, from its record, or none: NestedMessages()
/// \return as removeMessages(); counts the messages that \p isRemoved is true for
template <class Predicate, class Nested>
Removed removeMessages(Bytes unit, Codec codec, std::vector<uint8_t>& out, const Predicate& isRemoved,
                       const Nested& nestedIn) {
    Removed removed;
    SeiUnitEdit edit(unit, codec, out);
    while (const SeiMessage* const message = edit.message()) {
        if (isRemoved(*message)) {
            edit.remove();
            ++removed.messages;
            continue;
        }
        const NestedMessages nested = nestedIn(*message);
        NestedEdit nestedEdit(*message, nested);
        size_t kept = 0;
        size_t nestedRemoved = 0;
        if (nestedEdit.isWhole()) {
            for (const SeiMessage& inner : SeiMessages(nested)) {
                if (isRemoved(inner)) {
                    ++nestedRemoved;
                } else {
                    nestedEdit.keep(inner);
                    ++kept;
                }
            }
        }
        if (nestedRemoved == 0) {
            edit.keep();
            continue;
        }
        edit.remove();
        if (kept > 0) {
            edit.insert(nestedEdit.message());
        }
        removed.messages += nestedRemoved;
    }
    removed.isUnitGone = edit.finish() == 0 && removed.messages > 0;
    return removed;
}

/// True for a message user_data_registered_itu_t_t35 (H.264 D.1.6, H.265 D.2.6) whose country and provider
/// \p code covers. False when the payload ends before them.
bool isOwnedBy(const SeiMessage& message, const T35Code& code) noexcept;

/// As removeMessages(), for all messages of a payloadType.
Removed removeMessagesOfType(Bytes unit, Codec codec, uint64_t payloadType, std::vector<uint8_t>& out);

/// As removeMessages(), for all messages user_data_registered_itu_t_t35 whose country and provider \p code
/// covers.
Removed removeMessagesOf(Bytes unit, Codec codec, const T35Code& code, std::vector<uint8_t>& out);

/// Inserts a message before the one at \p position, or after the last one when that is their number, and
/// appends the unit.
///
/// \return false, with nothing appended, for a position past the end and where SeiUnitEdit::insert() refuses
bool insertMessage(Bytes unit, Codec codec, size_t position, const NewMessage& message,
                   std::vector<uint8_t>& out);

/// Replaces the message at \p position, and appends the unit.
///
/// \return false, with nothing appended, where there is no message or SeiUnitEdit::insert() refuses
bool replaceMessage(Bytes unit, Codec codec, size_t position, const NewMessage& message,
                    std::vector<uint8_t>& out);

/// The position in a unit at which a message of a type belongs: after the others, except that the types with
/// a place of their own come first. Of H.264 that is buffering_period (7.4.1.2.3); of H.265
/// active_parameter_sets, buffering_period, pic_timing and decoding_unit_info, in this order (7.4.2.4.4,
/// D.3.1).
size_t placeOfMessage(Bytes unit, Codec codec, uint64_t payloadType) noexcept;

/// Where a new SEI unit belongs in an access unit.
///
/// An H.264 unit and an H.265 prefix SEI unit belong after the access unit delimiter, the parameter sets and
/// the SEI units at the start of the access unit, that is, before the first unit that is none of these: a
/// slice with its prefix NAL unit, or a unit that may not precede the first slice (H.264 7.4.1.2.3, H.265
/// 7.4.2.4.4). One whose first message has a place of its own (see placeOfMessage()) belongs before the first
/// of those SEI units that has a message that comes after that one. An H.265 suffix SEI unit belongs after
/// the last slice segment and the suffix SEI units that follow it.
///
/// \param units          the units of the access unit in order, of a walk or from nalUnitOf()
/// \param count          how many there are
/// \param nal_unit_type  of the new unit: in H.265 prefix or suffix SEI; not looked at in H.264
/// \param payloadType    of its first message
/// \return the unit before which it belongs, counted from 0; \p count at the end, also for a suffix SEI unit
///         when there is no slice segment
size_t placeOfSeiUnit(const NalUnit* units, size_t count, Codec codec, uint32_t nal_unit_type,
                      uint64_t payloadType) noexcept;

}  // namespace qv::sei

#endif
