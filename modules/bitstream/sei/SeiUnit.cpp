// SEI units: H.264 7.3.2.3, H.265 7.3.2.4 and 7.3.5.
#include "bitstream/sei/SeiUnit.h"

#include <algorithm>

#include "bitstream/sei/PayloadList.h"
#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/SeiMessages.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/sei/UserData.h"
#include "bitstream/syntax/Tracer.h"
#include "bitstream/syntax/Writer.h"
#include "bitstream/units/Rbsp.h"

namespace qv::sei {

namespace {

constexpr uint32_t kFfByte = 0xFF;

constexpr SharedStructure kSeiRbsp = sharedStructure("sei_rbsp()", "7.3.2.3", "7.3.2.4");

// A copy reads ahead.
const Reader& readerOf(const Reader& reader) {
    return reader;
}
const Reader& readerOf(const Tracer& tracer) {
    return tracer.reader();
}

// The bytes of payloadType or payloadSize.
template <class In>
void payload_number(In& in, const char* lastByte) {
    uint32_t byte = kFfByte;
    while (byte == kFfByte && !in.failed()) {
        Reader ahead = readerOf(in);
        ahead.u(8, lastByte, byte);
        if (byte == kFfByte) {
            in.f(8, "ff_byte", kFfByte);
        } else {
            in.u(8, lastByte, byte);
        }
    }
}

template <class In>
void sei_message_header(In& in) {
    payload_number(in, "last_payload_type_byte");
    payload_number(in, "last_payload_size_byte");
}

// The number that the bytes of payloadType or payloadSize add up to; 0 after a fault.
uint64_t passNumber(Reader& reader, const char* lastByte) {
    uint64_t number = 0;
    uint32_t byte = kFfByte;
    while (byte == kFfByte) {
        reader.u(8, lastByte, byte);
        number += byte;
    }
    return reader.failed() ? 0 : number;
}

// A message from its header to the end of its payload.
Fault traceMessage(const SeiMessage& message, const Context& context, TraceVisitor& visitor) {
    const size_t end = message.payloadOffset + message.payload.size;
    Tracer tracer(message.unit, message.offset, end, uint64_t{8} * message.rbspOffset, visitor);
    const Within<Tracer> within(tracer, kSeiMessage.of(context));
    sei_message_header(tracer);
    if (!tracer.failed()) {
        withPayload(context.codec, message.payloadType,
                    [&](auto uses) { decltype(uses)::trace(tracer, message, context); });
    }
    return tracer.fault();
}

// Where the header of a message is cut.
Fault faultOfHeader(const SeiMessage& message, const Context& context) {
    Reader reader(message.unit, message.offset, message.payloadOffset, uint64_t{8} * message.rbspOffset);
    const Within<Reader> within(reader, kSeiMessage.of(context));
    sei_message_header(reader);
    return reader.fault();
}

// What is wrong after the last message.
Fault faultAfter(const SeiMessage& message, const Context& context) {
    Fault fault;
    fault.structure = &kSeiRbsp.of(context);
    fault.firstBit = uint64_t{8} * (message.rbspPayloadOffset + message.rbspPayloadSize);
    if (message.faults.has(SeiFault::NoMessage)) {
        fault.kind = FaultKind::EndOfData;
        fault.element.name = "sei_message()";
    } else if (message.faults.has(SeiFault::NoTrailingBits)) {
        fault.kind = FaultKind::EndOfData;
        fault.element.name = "rbsp_stop_one_bit";
    } else if (message.faults.has(SeiFault::BytesAfterTrailingBits)) {
        fault.kind = FaultKind::DataLeft;
        fault.element.name = "rbsp_trailing_bits()";
    }
    return fault;
}

// Of a unit whose messages have no fault, the byte 0x80 after the last one.
size_t trailingBitsOf(const SeiMessage& last) {
    RbspPositions positions(last.unit, last.payloadOffset, last.rbspPayloadOffset);
    return positions.codedByte(last.rbspPayloadOffset + last.rbspPayloadSize);
}

void traceTrailingBits(const SeiMessage& last, TraceVisitor& visitor) {
    static constexpr Structure kTrailingBits = {"rbsp_trailing_bits()", "7.3.2.11"};
    const size_t byte = trailingBitsOf(last);
    Tracer tracer(last.unit, byte, byte + 1, uint64_t{8} * (last.rbspPayloadOffset + last.rbspPayloadSize),
                  visitor);
    const Within<Tracer> within(tracer, kTrailingBits);
    tracer.f(1, "rbsp_stop_one_bit", 1);
    while (!tracer.byte_aligned()) {
        tracer.f(1, "rbsp_alignment_zero_bit", 0);
    }
}

void writeNumber(Writer& writer, uint64_t number) {
    for (; number >= kFfByte; number -= kFfByte) {
        writer.f(8, "ff_byte", kFfByte);
    }
    writer.f(8, "last_payload_byte", number);
}

void copyHeader(Writer& writer, Bytes header) {
    writer.header(static_cast<uint32_t>(header.size));
    for (const uint8_t byte : header) {
        writer.f(8, "nal_unit_header()", byte);
    }
}

}  // namespace

void nested_messages(Tracer& tracer, const Context& context, NestedMessages& nested) {
    Reader passing = tracer.reader();
    nested_messages(passing, context, nested);
    if (tracer.failed()) {
        return;
    }
    for (const SeiMessage& message : SeiMessages(nested)) {
        if (const Fault fault = traceMessage(message, context, tracer.visitor())) {
            tracer.fail(fault);
        }
    }
    tracer.pass(nested.bits);
}

void nested_message(Reader& reader, const Context& context) {
    const Within<Reader> within(reader, kSeiMessage.of(context));
    passNumber(reader, "last_payload_type_byte");
    for (uint64_t left = passNumber(reader, "last_payload_size_byte"); left > 0 && !reader.failed(); --left) {
        uint32_t byte = 0;
        reader.u(8, "payloadSize", byte);
    }
}

void nested_message(Tracer& tracer, const Context& context) {
    Reader after = tracer.reader();
    const CodedBits first = after.mark();
    nested_message(after, context);
    NestedMessages nested;
    if (after.failed()) {
        Reader rest = tracer.reader();
        rest.payload_bytes("sei_message()", nested.bits);
    } else {
        nested.bits = after.until(first);
    }
    const Fault fault = traceMessage(*SeiMessages(nested).begin(), context, tracer.visitor());
    if (fault) {
        tracer.fail(fault);
    } else {
        tracer.goOnAt(after);
    }
}

Fault traceAnyPayload(const SeiMessage& message, const Context& context, TraceVisitor& visitor) {
    const size_t end = message.payloadOffset + message.payload.size;
    Tracer tracer(message.unit, message.payloadOffset, end, uint64_t{8} * message.rbspPayloadOffset, visitor);
    const Within<Tracer> within(tracer, kSeiMessage.of(context));
    withPayload(context.codec, message.payloadType,
                [&](auto uses) { decltype(uses)::trace(tracer, message, context); });
    return tracer.fault();
}

void traceSeiRbsp(Bytes unit, Context context, TraceVisitor& visitor, UnitTrace& trace) {
    visitor.begin(kSeiRbsp.of(context));
    trace.isWhole = true;
    SeiMessage last;
    for (const SeiMessage& message : SeiMessages(unit, context.codec)) {
        const Fault fault = message.faults.has(SeiFault::NoMessage) ? faultAfter(message, context)
                                                                    : traceMessage(message, context, visitor);
        if (!trace.fault) {
            trace.fault = fault;
        }
        context.take(message);
        last = message;
    }
    if (!last.faults) {
        traceTrailingBits(last, visitor);
        trace.trailing.bytes = unit.from(trailingBitsOf(last) + 1);
    } else if (!trace.fault) {
        trace.fault = faultAfter(last, context);
    }
    visitor.end();
}

namespace {

// A payload with a fault is written as bytes: the messages around it are in the unit all the same. That does
// not help one that the unit cuts.
Fault rewriteMessage(Writer& writer, const SeiMessage& message, const Context& context) {
    writeNumber(writer, message.payloadType);
    writeNumber(writer, message.payloadSize);
    Fault fault;
    withPayload(context.codec, message.payloadType,
                [&](auto uses) { fault = decltype(uses)::rewrite(writer, message, context); });
    return fault && !message.faults ? PayloadUses<ReservedSeiMessage>::rewrite(writer, message, context)
                                    : fault;
}

}  // namespace

UnitRewritten rewriteSeiUnit(Bytes unit, Context context, std::vector<uint8_t>& out) {
    UnitRewritten rewritten;
    const size_t before = out.size();
    Writer writer(out);
    copyHeader(writer, unit.first(nalUnitOf(unit, context.codec).headerBytes));
    SeiMessage last;
    for (const SeiMessage& message : SeiMessages(unit, context.codec)) {
        rewritten.fault = message.faults.has(SeiFault::HeaderCut) ? faultOfHeader(message, context)
                                                                  : faultAfter(message, context);
        if (!rewritten.fault) {
            rewritten.fault = rewriteMessage(writer, message, context);
        }
        if (rewritten.fault) {
            out.resize(before);
            return rewritten;
        }
        context.take(message);
        last = message;
    }
    writer.rbsp_trailing_bits();
    writer.finish();
    const Bytes trailing = unit.from(trailingBitsOf(last) + 1);
    out.insert(out.end(), trailing.begin(), trailing.end());
    rewritten.isRewritten =
        out.size() - before == unit.size &&
        std::equal(unit.begin(), unit.end(), out.begin() + static_cast<std::ptrdiff_t>(before));
    if (!rewritten.isRewritten) {
        out.resize(before);
    }
    return rewritten;
}

}  // namespace qv::sei
