// The uses of the syntax function of an SEI payload.
#ifndef QV_BITSTREAM_SEI_PAYLOADTEMPLATES_H
#define QV_BITSTREAM_SEI_PAYLOADTEMPLATES_H

#include <type_traits>
#include <vector>

#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/PayloadUses.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/Tracer.h"
#include "bitstream/syntax/Uses.h"
#include "bitstream/syntax/Writer.h"

namespace qv::sei {

// The syntax function of a payload; see QV_SEI_PAYLOAD.
template <class Payload>
struct PayloadTable;

// True for the record of a payload whose last element is there only when payload_extension_present().
template <class Payload, class = void>
constexpr bool kMayExtend = false;
template <class Payload>
constexpr bool kMayExtend<Payload, std::void_t<decltype(Payload::payload_extension_present)>> = true;

template <class Syntax, class Payload>
void sei_payload(Syntax& s, const Context& context, Payload& payload, PayloadEnd& end) {
    PayloadTable<Payload>::apply(s, context, payload);
    if constexpr (kMayExtend<Payload>) {
        // A byte-aligned payload would end with the element, which reads as
        // payload_bit_equal_to_one when it is 1.
        end.isPresent = end.isPresent || payload.payload_extension_present;
    }
    sei_payload_end(s, context, end);
}

// True for the record of a payload that holds messages: it has a member of that name.
template <class Payload, class = void>
constexpr bool kHoldsMessages = false;
template <class Payload>
constexpr bool kHoldsMessages<Payload, std::void_t<decltype(Payload::messages)>> = true;

// A message in the payload of another one does not hold messages itself (H.264 G.13.2.7, H.265 D.3.24).
template <class Payload>
bool isPayloadOf(const SeiMessage& message, Codec codec) {
    return (Payload::kPayloadTypes.of(codec) == kAnyPayloadType ||
            Payload::kPayloadTypes.is(codec, message.payloadType)) &&
           !(kHoldsMessages<Payload> && message.isNested);
}

// The payload of a message, from the first bit of it on.
template <class In, class Payload>
void takePayload(In& in, const SeiMessage& message, const Context& context, Payload& payload,
                 PayloadEnd& end) {
    if (message.faults.has(SeiFault::NoMessage) || message.faults.has(SeiFault::HeaderCut)) {
        in.fail(FaultKind::EndOfData, "payloadType", 0);
    } else if (!isPayloadOf<Payload>(message, context.codec)) {
        in.fail(FaultKind::OtherPayload, "payloadType", static_cast<int64_t>(message.payloadType));
    }
    sei_payload(in, context, payload, end);
    if (in.more_rbsp_data()) {
        in.fail(FaultKind::DataLeft, "payloadSize", 0);
    } else if (message.rbspPayloadSize < message.payloadSize) {
        in.fail(FaultKind::EndOfData, "payloadSize", 0);
    }
}

template <class Payload, class In>
Read<Payload> readFrom(In& in, const SeiMessage& message, const Context& context, PayloadEnd& end) {
    Read<Payload> read;
    detail::clear(read.record);
    takePayload(in, message, context, read.record, end);
    if (in.failed()) {
        read.fault = in.fault();
    }
    read.trailing.bits = end.reserved_payload_extension_data.count;
    return read;
}

template <class Payload>
Read<Payload> readPayload(const SeiMessage& message, const Context& context) noexcept {
    Reader reader = message.reader();
    const Within<Reader> within(reader, kSeiMessage.of(context));
    PayloadEnd end;
    return readFrom<Payload>(reader, message, context, end);
}

template <class Payload>
Read<Payload> tracePayload(const SeiMessage& message, const Context& context, TraceVisitor& visitor) {
    Tracer tracer(message.unit, message.payloadOffset, message.payloadOffset + message.payload.size,
                  uint64_t{8} * message.rbspPayloadOffset, visitor);
    const Within<Tracer> within(tracer, kSeiMessage.of(context));
    PayloadEnd end;
    return readFrom<Payload>(tracer, message, context, end);
}

template <class Payload>
Written writePayload(const Payload& payload, const Context& context, std::vector<uint8_t>& out) {
    Payload record = payload;
    PayloadEnd end;
    Writer writer(out);
    writer.withoutEmulationPrevention();
    sei_payload(writer, context, record, end);
    return writer.finish();
}

template <class Payload>
Sized sizeOfPayload(const Payload& payload, const Context& context) noexcept {
    Payload record = payload;
    PayloadEnd end;
    Sizer sizer;
    sei_payload(sizer, context, record, end);
    return {sizer.failed() ? 0 : sizer.position(), sizer.fault()};
}

template <class Payload>
void PayloadUses<Payload>::trace(Tracer& tracer, const SeiMessage& message, const Context& context) {
    PayloadEnd end;
    readFrom<Payload>(tracer, message, context, end);
}

template <class Payload>
Fault PayloadUses<Payload>::rewrite(Writer& writer, const SeiMessage& message, const Context& context) {
    Reader reader = message.reader();
    const Within<Reader> within(reader, kSeiMessage.of(context));
    PayloadEnd end;
    Read<Payload> read = readFrom<Payload>(reader, message, context, end);
    if (!read.fault) {
        sei_payload(writer, context, read.record, end);
    }
    return read.fault;
}

}  // namespace qv::sei

// Makes the functions of a payload: QV_SEI_PAYLOAD(Record, its syntax function), in qv::sei.
// NOLINTBEGIN(cppcoreguidelines-macro-usage,bugprone-macro-parentheses): a list of declarations
#define QV_SEI_PAYLOAD(Record, structure)                                                         \
    template <>                                                                                   \
    struct PayloadTable<Record> {                                                                 \
        template <class Syntax>                                                                   \
        static void apply(Syntax& s, const Context& context, Record& payload) {                   \
            structure(s, context, payload);                                                       \
        }                                                                                         \
    };                                                                                            \
    template Read<Record> readPayload<Record>(const SeiMessage&, const Context&) noexcept;        \
    template Read<Record> tracePayload<Record>(const SeiMessage&, const Context&, TraceVisitor&); \
    template Written writePayload<Record>(const Record&, const Context&, std::vector<uint8_t>&);  \
    template Sized sizeOfPayload<Record>(const Record&, const Context&) noexcept;                 \
    template struct PayloadUses<Record>
// NOLINTEND(cppcoreguidelines-macro-usage,bugprone-macro-parentheses)

#endif
