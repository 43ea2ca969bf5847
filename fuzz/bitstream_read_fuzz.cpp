// The standard's library on the bytes of a stream: any bytes, in any framing. Each byte must be in exactly
// one part of one unit, a trace must report the elements of the read without a gap, and the parameter sets in
// force must be those of the units.
#include <cstring>
#include <vector>

#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "bitstream/avc/SliceHeader.h"
#include "bitstream/avc/Unit.h"
#include "bitstream/hevc/SliceSegmentHeader.h"
#include "bitstream/hevc/Unit.h"
#include "bitstream/sei/A53.h"
#include "bitstream/sei/CaptionOrder.h"
#include "bitstream/sei/CaptionServices.h"
#include "bitstream/sei/SeiMessages.h"
#include "bitstream/units/CodecProbe.h"
#include "bitstream/units/CodecString.h"
#include "bitstream/units/ConfigurationRecord.h"
#include "bitstream/units/NalUnits.h"

namespace {

using qv::Bytes;
using qv::Codec;
using qv::Framing;

// Elements follow each other bit by bit. After a message with a fault the next one follows.
class Order : public qv::TraceVisitor {
public:
    explicit Order(uint64_t firstBit = 0) : next_(firstBit) {}

    void begin(const qv::Structure& /*structure*/) override { ++depth_; }
    void end() override {
        FUZZ_CHECK(depth_ > 0);
        --depth_;
    }
    void element(const qv::TracedElement& element) override {
        FUZZ_CHECK(depth_ > 0);
        FUZZ_CHECK(element.firstBit >= next_);
        hasGap_ = hasGap_ || element.firstBit != next_;
        next_ = element.firstBit + element.width;
    }

    uint64_t next() const { return next_; }
    bool hasGap() const { return hasGap_; }
    bool isAtRest() const { return depth_ == 0; }

private:
    uint64_t next_;
    bool hasGap_ = false;
    int depth_ = 0;
};

template <class Sets, class Trace>
void checkUnit(Bytes unit, Sets& sets, const Trace& traceUnit) {
    Order order;
    const qv::UnitTrace trace = traceUnit(unit, sets, order);
    FUZZ_CHECK(order.isAtRest());
    FUZZ_CHECK(order.next() <= 8 * uint64_t{unit.size});
    const bool isSei = trace.structure != nullptr && std::strcmp(trace.structure, "sei_rbsp") == 0;
    FUZZ_CHECK(!order.hasGap() || (isSei && trace.fault));
    FUZZ_CHECK(!trace.fault || isSei || trace.fault.firstBit >= order.next());
    FUZZ_CHECK(qv::textOf(trace.fault).empty() == trace.ok());
    const qv::SetTaken taken = sets.take(unit);
    FUZZ_CHECK(!trace.ok() || taken.event != qv::SetEvent::Broken);
}

// Trace and read agree, and a slice that is written from its header is one, which is written the same again.
template <class Sets, class Read, class Trace, class Write>
void checkSliceWith(Bytes unit, const Sets& sets, const Read& read, const Trace& trace, const Write& write) {
    Order order;
    const auto traced = trace(unit, sets, order);
    const auto slice = read(unit, sets);
    FUZZ_CHECK(order.isAtRest() && !order.hasGap());
    FUZZ_CHECK(traced.fault.kind == slice.fault.kind && traced.fault.firstBit == slice.fault.firstBit);
    std::vector<uint8_t> first;
    std::vector<uint8_t> second;
    if (slice.ok() && write(slice.record, sets, unit, first).ok()) {
        const Bytes written = {first.data(), first.size()};
        const auto again = read(written, sets);
        FUZZ_CHECK(again.ok() && write(again.record, sets, written, second).ok());
    }
    FUZZ_CHECK(first == second);
}

void checkSlice(Bytes unit, const qv::avc::ParameterSets& sets) {
    checkSliceWith(unit, sets, qv::avc::readSliceHeader, qv::avc::traceSliceHeader, qv::avc::writeSlice);
}

void checkSlice(Bytes unit, const qv::hevc::ParameterSets& sets) {
    checkSliceWith(unit, sets, qv::hevc::readSliceSegmentHeader, qv::hevc::traceSliceSegmentHeader,
                   qv::hevc::writeSliceSegment);
}

// The messages of a unit follow each other, whatever its type, and their readers give what is there.
void checkMessages(const qv::NalUnit& unit) {
    size_t end = 0;
    size_t rbspEnd = 0;
    for (const qv::SeiMessage& message : qv::SeiMessages(unit)) {
        FUZZ_CHECK(message.offset >= end && message.rbspOffset >= rbspEnd);
        FUZZ_CHECK(message.payloadOffset >= message.offset);
        FUZZ_CHECK(message.payload.size >= message.rbspPayloadSize);
        FUZZ_CHECK(qv::textOf(message.faults).empty() == message.ok());
        end = message.payloadOffset + message.payload.size;
        rbspEnd = message.rbspPayloadOffset + message.rbspPayloadSize;
        FUZZ_CHECK(end <= unit.bytes.size);
        qv::Reader reader = message.reader();
        while (reader.more_rbsp_data()) {
            uint32_t bits = 0;
            reader.u(reader.bitsInReach(32), "bits", bits);
        }
        FUZZ_CHECK(!reader.failed() && reader.position() == 8 * uint64_t{rbspEnd});
    }
}

// A payload of ATSC A/53: trace and read agree, and what is read without a fault is written the same.
template <class Payload>
void checkA53(const qv::SeiMessage& message, const qv::sei::Context& context) {
    Order order(8 * uint64_t{message.rbspPayloadOffset});
    const qv::Read<Payload> traced = qv::sei::tracePayload<Payload>(message, context, order);
    const qv::Read<Payload> read = qv::sei::readPayload<Payload>(message, context);
    FUZZ_CHECK(order.isAtRest());
    FUZZ_CHECK(traced.fault.kind == read.fault.kind && traced.fault.firstBit == read.fault.firstBit);
    if (read.ok() && read.trailing.bits == 0) {
        std::vector<uint8_t> written;
        FUZZ_CHECK(qv::sei::writePayload(read.record, context, written).ok());
        // H.265 has an extension of 0 bits too, which writePayload() leaves out.
        FUZZ_CHECK(written.size() <= message.payloadSize);
        FUZZ_CHECK(written.size() == message.payloadSize || context.codec == Codec::Hevc);
        FUZZ_CHECK(8 * written.size() == qv::sei::sizeOfPayload(read.record, context).bits);
    }
}

// No picture is lost.
class OutputOrder : public qv::sei::CaptionSink {
public:
    void picture(const qv::sei::CaptionedPicture& picture) override {
        FUZZ_CHECK(picture.count <= qv::sei::CaptionedPicture::kMostConstructs);
        ++pictures;
        finder.take(picture);
    }

    uint64_t pictures = 0;
    qv::sei::CaptionServiceFinder finder;
};

void checkCaptions(const qv::SeiMessage& message, const qv::sei::Context& context,
                   qv::sei::CaptionOrder& captions, OutputOrder& output, uint64_t& pictures) {
    checkA53<qv::sei::AtscCaptions>(message, context);
    checkA53<qv::sei::SatelliteCaptions>(message, context);
    checkA53<qv::sei::AtscBarData>(message, context);
    checkA53<qv::sei::ActiveFormatDescription>(message, context);
    qv::sei::CaptionedPicture picture;
    if (picture.add(message, context)) {
        // Any numbers will do: the bytes are those of the input.
        picture.picOrderCnt = static_cast<int32_t>(message.payloadSize) - 64;
        picture.isField = message.payloadSize % 3 == 0;
        picture.startsSequence = message.payloadSize % 7 == 0;
        captions.push(picture, output);
        ++pictures;
    }
}

// All captions of a buffer, whatever the type of their units.
void checkCaptions(Bytes buffer, Framing framing, Codec codec) {
    const qv::sei::Context context(codec);
    qv::sei::CaptionOrder captions(static_cast<uint32_t>(buffer.size % 20));
    OutputOrder output;
    uint64_t pictures = 0;
    for (const qv::NalUnit& unit : qv::NalUnits(buffer, framing, codec)) {
        for (const qv::SeiMessage& message : qv::SeiMessages(unit)) {
            checkCaptions(message, context, captions, output, pictures);
        }
    }
    captions.flush(output);
    FUZZ_CHECK(output.pictures == pictures);
    FUZZ_CHECK(captions.late() <= pictures);
}

template <class Sets, class Trace>
void checkUnits(Bytes buffer, Framing framing, Codec codec, const Trace& traceUnit) {
    Sets sets;
    size_t end = 0;
    for (const qv::NalUnit& unit : qv::NalUnits(buffer, framing, codec)) {
        FUZZ_CHECK(unit.begin() == end);
        end = unit.end();
        checkSlice(unit.bytes, sets);
        checkUnit(unit.bytes, sets, traceUnit);
        checkMessages(unit);
    }
    FUZZ_CHECK(end == buffer.size);
}

void checkConfiguration(Codec codec, Bytes configuration) {
    size_t bytes = 0;
    qv::forEachConfigurationUnit(codec, configuration,
                                 [&bytes](const qv::NalUnit& unit) { bytes += unit.bytes.size; });
    FUZZ_CHECK(bytes <= configuration.size);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    static constexpr Framing kFramings[] = {Framing::StartCodes, Framing::Lengths1, Framing::Lengths2,
                                            Framing::Lengths3, Framing::Lengths4};
    qv_fuzz::FuzzInput input(bytes, size);
    const uint8_t kind = input.byte();
    const Codec codec = kind % 2 == 0 ? Codec::Avc : Codec::Hevc;
    const Framing framing = kFramings[kind / 2 % 5];
    const qv_fuzz::ExactBlock rest = input.rest();
    const Bytes buffer = {rest.data(), static_cast<size_t>(rest.size())};
    qv::probeCodec(buffer);
    checkConfiguration(codec, buffer);
    checkCaptions(buffer, framing, codec);
    if (codec == Codec::Avc) {
        qv::avc::codecStringOfSps(buffer);
        checkUnits<qv::avc::ParameterSets>(buffer, framing, codec, qv::avc::traceUnit);
    } else {
        qv::hevc::codecStringOfSps(buffer);
        checkUnits<qv::hevc::ParameterSets>(buffer, framing, codec, qv::hevc::traceUnit);
    }
    return 0;
}
