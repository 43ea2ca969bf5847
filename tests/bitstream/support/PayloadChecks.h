// What holds for the payload of every SEI message, whatever its table says: checked on random payloads.
#ifndef QV_TESTS_BITSTREAM_PAYLOADCHECKS_H
#define QV_TESTS_BITSTREAM_PAYLOADCHECKS_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "BitWriter.h"
#include "MemoryChecks.h"
#include "StructureChecks.h"
#include "bitstream/sei/CodedEntries.h"
#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/units/Rbsp.h"

namespace qv_test {

// Nested messages of types without a record.
inline void nested_messages(RandomUnit& s, const qv::sei::Context& context, qv::NestedMessages& nested) {
    static_cast<void>(context);
    s.nested_messages(nested.bits);
}

// A nested message of a type without a record.
inline void nested_message(RandomUnit& s, const qv::sei::Context& context) {
    static_cast<void>(context);
    s.nested_message();
}

// Bits up to the byte boundary, and a few bytes.
inline void t35_padding(RandomUnit& s, qv::CodedBits& padding) {
    padding = {};
    const qv::TracedElement& last = s.elements().back();
    uint32_t bits = 0;
    if (!s.byte_aligned()) {
        s.u(static_cast<uint32_t>(8 - (last.firstBit + last.width) % 8), "padding", bits);
    }
    while (s.more_rbsp_data()) {
        s.u(8, "padding", bits);
    }
}

// A message whose payload is all of a unit but its last byte, which holds rbsp_trailing_bits().
template <class Payload>
qv::SeiMessage messageOf(qv::Bytes unit, qv::Codec codec) {
    constexpr uint64_t kSomeType = 199;  // reserved in both codecs
    const uint32_t payloadType = Payload::kPayloadTypes.of(codec);
    qv::SeiMessage message;
    message.payloadType = payloadType == qv::sei::kAnyPayloadType ? kSomeType : payloadType;
    message.unit = unit;
    message.payload = unit.first(unit.empty() ? 0 : unit.size - 1);
    message.payloadSize = message.rbspPayloadSize = qv::unescapedSize(message.payload, 0);
    return message;
}

// A unit for messageOf(), with emulation prevention bytes.
inline std::vector<uint8_t> unitOfPayload(std::vector<uint8_t> payload) {
    payload.push_back(0x80);
    return withEmulationPrevention(payload);
}

// The payload of such a unit.
template <class Payload>
qv::Read<Payload> readPayloadOf(const std::vector<uint8_t>& unit, const qv::sei::Context& context) {
    return qv::sei::readPayload<Payload>(messageOf<Payload>(bytesOf(unit), context.codec), context);
}

// All entries of a list.
template <class Record, class Entry>
std::vector<Entry> entriesOf(const qv::sei::CodedEntries<Record, Entry>& entries) {
    std::vector<Entry> all;
    for (const Entry& entry : entries) {
        all.push_back(entry);
    }
    return all;
}

// All of a list in one number, which is not 0 when there is an entry.
template <class Record, class Entry, class NumberOf>
uint64_t sumOf(const qv::sei::CodedEntries<Record, Entry>& entries, NumberOf numberOf) {
    uint64_t sum = 0;
    for (const Entry& entry : entries) {
        sum += 1 + numberOf(entry);
    }
    return sum;
}

// A payload: its functions, and its syntax function as a generator.
//
//     payloadUnderTest<PanScanRect>(context, [](auto& s, const auto& c, auto& p) { pan_scan_rect(s, c, p); })
template <class Payload>
class PayloadUnderTest : public StructureNotes {
public:
    using Record = Payload;
    using Table = void (*)(RandomUnit&, const qv::sei::Context&, Payload&);

    PayloadUnderTest(const qv::sei::Context& context, Table table) : context_(context), table_(table) {
        isPayload = true;
    }

    void generate(RandomUnit& generator, Payload& record) const {
        table_(generator, context_, record);
        generator.endPayload(context_.codec);
    }
    qv::Read<Payload> read(qv::Bytes unit) const {
        return qv::sei::readPayload<Payload>(messageOf<Payload>(unit, context_.codec), context_);
    }
    qv::Read<Payload> trace(qv::Bytes unit, qv::TraceVisitor& visitor) const {
        return qv::sei::tracePayload<Payload>(messageOf<Payload>(unit, context_.codec), context_, visitor);
    }
    qv::Written write(const Payload& record, std::vector<uint8_t>& out) const {
        std::vector<uint8_t> rbsp;
        const qv::Written written = qv::sei::writePayload(record, context_, rbsp);
        out = unitOfPayload(rbsp);
        return {written.fault ? 0 : out.size(), written.fault};
    }
    qv::Sized size(const Payload& record) const { return qv::sei::sizeOfPayload(record, context_); }

private:
    qv::sei::Context context_;
    Table table_;
};

template <class Payload>
PayloadUnderTest<Payload> payloadUnderTest(const qv::sei::Context& context,
                                           typename PayloadUnderTest<Payload>::Table table) {
    return {context, table};
}

}  // namespace qv_test

#endif
