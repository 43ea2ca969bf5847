// What is read without a fault must be written without one, as bytes that read as the same record: a second
// write must give the bytes of the first, and the sizer must count its bits. The input is a unit, which is
// read as every structure, or a byte stream, whose SEI messages are read with its parameter sets.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "bitstream/avc/AccessUnitDelimiter.h"
#include "bitstream/avc/FillerData.h"
#include "bitstream/avc/PrefixNalUnit.h"
#include "bitstream/avc/Unit.h"
#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/hevc/SmallUnits.h"
#include "bitstream/hevc/Unit.h"
#include "bitstream/sei/PayloadList.h"
#include "bitstream/units/NalUnits.h"
#include "bitstream/units/Rbsp.h"

namespace {

using qv::Bytes;
using qv::Codec;
using Buffer = std::vector<uint8_t>;

Bytes bytesOf(const Buffer& buffer) {
    return {buffer.data(), buffer.size()};
}

template <class Read, class Write, class Size>
void checkStructure(Bytes unit, const Read& read, const Write& write, const Size& size) {
    const auto first = read(unit);
    if (!first.ok()) {
        return;
    }
    Buffer once;
    const qv::Written written = write(first.record, once);
    FUZZ_CHECK(written.ok());
    FUZZ_CHECK(written.size == once.size());
    const auto second = read(bytesOf(once));
    FUZZ_CHECK(second.ok());
    FUZZ_CHECK(second.trailing.bytes.empty());
    Buffer twice;
    FUZZ_CHECK(write(second.record, twice).ok());
    FUZZ_CHECK(once == twice);
    const qv::Sized sized = size(first.record);
    FUZZ_CHECK(sized.ok());
    FUZZ_CHECK(sized.bits <= 8 * uint64_t{once.size()});
}

template <class Sets, class Rewrite>
void checkRewriting(Bytes unit, const Sets& sets, const Rewrite& rewriteUnit) {
    Buffer out = {0xAA};
    const qv::UnitRewritten rewritten = rewriteUnit(unit, sets, out);
    FUZZ_CHECK(!rewritten.isRewritten || !rewritten.fault);
    FUZZ_CHECK(out.size() == 1 + (rewritten.isRewritten ? unit.size : 0));
    FUZZ_CHECK(out[0] == 0xAA && std::equal(out.begin() + 1, out.end(), unit.begin()));
}

void checkAvc(Bytes unit, uint32_t chroma_format_idc) {
    using namespace qv::avc;
    checkStructure(unit, readSps, writeSps, [](const Sps& sps) { return sizeOf(sps); });
    checkStructure(unit, readSubsetSps, writeSubsetSps, [](const SubsetSps& sps) { return sizeOf(sps); });
    checkStructure(unit, readSpsExtension, writeSpsExtension,
                   [](const SpsExtension& extension) { return sizeOf(extension); });
    checkStructure(
        unit, [=](Bytes bytes) { return readPps(bytes, chroma_format_idc); },
        [=](const Pps& pps, Buffer& out) { return writePps(pps, chroma_format_idc, out); },
        [=](const Pps& pps) { return sizeOf(pps, chroma_format_idc); });
    checkStructure(unit, readPrefixNalUnit, writePrefixNalUnit,
                   [](const PrefixNalUnit& prefix) { return sizeOf(prefix); });
    checkStructure(unit, readAccessUnitDelimiter, writeAccessUnitDelimiter,
                   [](const AccessUnitDelimiter& delimiter) { return sizeOf(delimiter); });
    checkStructure(unit, readFillerData, writeFillerData,
                   [](const FillerData& filler) { return sizeOf(filler); });
    checkRewriting(unit, ParameterSets(), rewriteUnit);
}

void checkHevc(Bytes unit) {
    using namespace qv::hevc;
    checkStructure(unit, readVps, writeVps, [](const Vps& vps) { return sizeOf(vps); });
    checkStructure(
        unit, [](Bytes bytes) { return readSps(bytes); },
        [](const Sps& sps, Buffer& out) { return writeSps(sps, out); },
        [](const Sps& sps) { return sizeOf(sps); });
    checkStructure(unit, readPps, writePps, [](const Pps& pps) { return sizeOf(pps); });
    checkStructure(unit, readAccessUnitDelimiter, writeAccessUnitDelimiter,
                   [](const AccessUnitDelimiter& delimiter) { return sizeOf(delimiter); });
    checkStructure(unit, readFillerData, writeFillerData,
                   [](const FillerData& filler) { return sizeOf(filler); });
    checkRewriting(unit, ParameterSets(), rewriteUnit);
}

// --- SEI messages ---

template <class Payload, class = void>
constexpr bool kHoldsMessages = false;
template <class Payload>
constexpr bool kHoldsMessages<Payload, std::void_t<decltype(qv::SeiMessages(Payload::messages))>> = true;

class Ignoring : public qv::TraceVisitor {
public:
    void element(const qv::TracedElement& /*element*/) override {}
};

void checkMessage(const qv::SeiMessage& message, const qv::sei::Context& context);

// A payload that is read without a fault is written as its bytes. One of H.265 may end in an extension, which
// the record does not hold: then the bytes before the one in which the syntax ends are the same.
template <class Payload>
void checkPayload(qv::sei::PayloadUses<Payload> /*uses*/, const qv::SeiMessage& message,
                  const qv::sei::Context& context) {
    const qv::Read<Payload> read = qv::sei::readPayload<Payload>(message, context);
    Ignoring visitor;
    const qv::Read<Payload> traced = qv::sei::tracePayload<Payload>(message, context, visitor);
    FUZZ_CHECK(!traced.ok() || (read.ok() && read.trailing.bits == traced.trailing.bits));
    if (!read.ok()) {
        return;
    }
    Buffer payload(message.payload.size);
    payload.resize(qv::unescape(message.payload, 0, payload.data(), payload.size()));
    Buffer out;
    const qv::Written written = qv::sei::writePayload(read.record, context, out);
    FUZZ_CHECK(written.ok() && written.size == out.size());
    FUZZ_CHECK(qv::sei::sizeOfPayload(read.record, context).bits == 8 * uint64_t{out.size()});
    if (out != payload) {
        FUZZ_CHECK(context.codec == Codec::Hevc && out.size() <= payload.size());
        const std::ptrdiff_t same = out.empty() ? 0 : static_cast<std::ptrdiff_t>(out.size()) - 1;
        FUZZ_CHECK(std::equal(out.begin(), out.begin() + same, payload.begin()));
    }
    if constexpr (kHoldsMessages<Payload>) {
        for (const qv::SeiMessage& nested : qv::SeiMessages(read.record.messages)) {
            checkMessage(nested, context);
        }
    }
}

void checkMessage(const qv::SeiMessage& message, const qv::sei::Context& context) {
    qv::sei::withPayload(context.codec, message.payloadType,
                         [&](auto uses) { checkPayload(uses, message, context); });
}

bool isSei(Bytes unit, Codec codec) {
    constexpr uint8_t kAvcSei = 6;
    return !unit.empty() &&
           (codec == Codec::Avc ? (unit[0] & 0x1FU) == kAvcSei : qv::hevc::isSei(unit[0] >> 1 & 0x3FU));
}

template <class Sets, class Rewrite>
void checkStream(Bytes stream, Codec codec, const Rewrite& rewriteUnit) {
    Sets sets;
    for (const qv::NalUnit& unit : qv::NalUnits(stream, qv::Framing::StartCodes, codec)) {
        checkRewriting(unit.bytes, sets, rewriteUnit);
        if (isSei(unit.bytes, codec)) {
            qv::sei::Context context(sets);
            for (const qv::SeiMessage& message : qv::SeiMessages(unit)) {
                checkMessage(message, context);
                context.take(message);
            }
        }
        sets.take(unit.bytes);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    qv_fuzz::FuzzInput input(bytes, size);
    const uint8_t kind = input.byte();
    const qv_fuzz::ExactBlock rest = input.rest();
    const Bytes unit = {rest.data(), static_cast<size_t>(rest.size())};
    constexpr uint8_t kStream = 8;
    if ((kind & kStream) != 0) {
        if (kind % 2 == 0) {
            checkStream<qv::avc::ParameterSets>(unit, Codec::Avc, qv::avc::rewriteUnit);
        } else {
            checkStream<qv::hevc::ParameterSets>(unit, Codec::Hevc, qv::hevc::rewriteUnit);
        }
    } else if (kind % 2 == 0) {
        checkAvc(unit, kind / 2 % 4);
    } else {
        checkHevc(unit);
    }
    return 0;
}
