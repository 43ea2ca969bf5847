// From one framing to another: Annex B of H.264 and H.265, ISO/IEC 14496-15.
#include "bitstream/units/Reframe.h"

#include "bitstream/units/StartCode.h"
#include "startcode/StartCodeSearch.h"

namespace qv {

namespace {

constexpr uint8_t kStartCode[] = {0x00, 0x00, 0x00, 0x01};

// The faults that do not depend on the codec.
constexpr UnitFault kFramingFaults[] = {
    UnitFault::BytesBeforeStartCode, UnitFault::NoStartCode, UnitFault::LengthCut,
    UnitFault::LengthPastEnd,        UnitFault::EmptyUnit,   UnitFault::EndsWithZeroByte,
};

UnitFaults framingFaultsOf(const NalUnit& unit) noexcept {
    UnitFaults faults;
    for (const UnitFault fault : kFramingFaults) {
        if (unit.faults.has(fault)) {
            faults.add(fault);
        }
    }
    return faults;
}

bool hasStartCode(Bytes unit) noexcept {
    if (unit.size < kStartCodePrefixSize) {
        return false;
    }
    size_t place = 0;
    return qv_detail::listPrefixes(unit.data, 0, unit.size - kStartCodePrefixSize + 1, &place, 1) > 0;
}

// What is before each unit of the output.
class Prefix {
public:
    explicit Prefix(const Reframing& reframing) noexcept
        : lengthSize_(lengthSizeOf(reframing.to)),
          size_(lengthSize_ > 0                ? lengthSize_
                : reframing.startCodeSize == 3 ? 3
                                               : 4) {}

    size_t size() const noexcept { return size_; }

    bool holds(size_t unitSize) const noexcept {
        return lengthSize_ == 0 || static_cast<uint64_t>(unitSize) >> 8 * lengthSize_ == 0;
    }

    // The prefix of a unit, in a buffer of four bytes.
    Bytes before(size_t unitSize, uint8_t (&buffer)[4]) const noexcept {
        if (lengthSize_ == 0) {
            return {kStartCode + sizeof kStartCode - size_, size_};
        }
        for (size_t i = 0; i < size_; ++i) {
            buffer[i] = static_cast<uint8_t>(static_cast<uint64_t>(unitSize) >> 8 * (size_ - 1 - i));
        }
        return {buffer, size_};
    }

private:
    size_t lengthSize_;
    size_t size_;
};

// A fault of a unit. The first one is kept.
void addFault(ReframeFault::Kind kind, const NalUnit& unit, size_t number, Reframed& reframed) noexcept {
    ++reframed.faultyUnits;
    if (!reframed.fault) {
        reframed.fault.kind = kind;
        reframed.fault.input = framingFaultsOf(unit);
        reframed.fault.unit = number;
        reframed.fault.offset = unit.offset;
        reframed.fault.size = unit.bytes.size;
    }
}

Reframed tooLong(const NalUnit& unit, size_t number) noexcept {
    Reframed reframed;
    addFault(ReframeFault::Kind::UnitTooLong, unit, number, reframed);
    return reframed;
}

bool hasStrayBytes(UnitFaults faults) noexcept {
    return faults.has(UnitFault::BytesBeforeStartCode) || faults.has(UnitFault::NoStartCode) ||
           faults.has(UnitFault::LengthCut);
}

class VectorSink : public ByteSink {
public:
    explicit VectorSink(std::vector<uint8_t>& out) : out_(out) {}
    void write(Bytes bytes) override { out_.insert(out_.end(), bytes.begin(), bytes.end()); }

private:
    std::vector<uint8_t>& out_;
};

void writeUnits(Bytes in, const Reframing& reframing, ByteSink& out) {
    const Prefix prefix(reframing);
    for (const NalUnit& unit : NalUnits(in, reframing.from, Codec::Avc)) {
        if (!unit.bytes.empty()) {
            uint8_t buffer[4];
            out.write(prefix.before(unit.bytes.size, buffer));
            out.write(unit.bytes);
        }
    }
}

}  // namespace

Reframed reframedSize(Bytes in, const Reframing& reframing) noexcept {
    const Prefix prefix(reframing);
    const bool mayHideStartCodes =
        reframing.from != Framing::StartCodes && reframing.to == Framing::StartCodes;
    Reframed reframed;
    size_t number = 0;
    for (const NalUnit& unit : NalUnits(in, reframing.from, Codec::Avc)) {
        if (!prefix.holds(unit.bytes.size)) {
            return tooLong(unit, number);
        }
        const UnitFaults faults = framingFaultsOf(unit);
        if (faults) {
            addFault(ReframeFault::Kind::Input, unit, number, reframed);
            reframed.droppedBytes += hasStrayBytes(faults) ? unit.leadingBytes : 0;
        } else if (mayHideStartCodes && hasStartCode(unit.bytes)) {
            addFault(ReframeFault::Kind::StartCodeInUnit, unit, number, reframed);
        }
        if (!unit.bytes.empty()) {
            reframed.size += prefix.size() + unit.bytes.size;
            ++reframed.units;
        }
        ++number;
    }
    return reframed;
}

// The first walk finds a unit that is too long before anything is written.
Reframed reframe(Bytes in, const Reframing& reframing, ByteSink& out) {
    const Reframed reframed = reframedSize(in, reframing);
    if (reframed.units > 0) {
        writeUnits(in, reframing, out);
    }
    return reframed;
}

Reframed reframe(Bytes in, const Reframing& reframing, std::vector<uint8_t>& out) {
    const Reframed reframed = reframedSize(in, reframing);
    if (reframed.units > 0) {
        out.reserve(out.size() + reframed.size);
        VectorSink sink(out);
        writeUnits(in, reframing, sink);
    }
    return reframed;
}

std::string textOf(const ReframeFault& fault) {
    const std::string unit =
        "unit " + std::to_string(fault.unit) + " at byte " + std::to_string(fault.offset) + ": ";
    switch (fault.kind) {
        case ReframeFault::Kind::None:
            break;
        case ReframeFault::Kind::Input:
            return unit + textOf(fault.input);
        case ReframeFault::Kind::StartCodeInUnit:
            return unit + "it holds a start code";
        case ReframeFault::Kind::UnitTooLong:
            return unit + "its " + std::to_string(fault.size) + " bytes do not fit the length";
    }
    return {};
}

}  // namespace qv
