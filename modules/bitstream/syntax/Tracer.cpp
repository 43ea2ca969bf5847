// What a tracer reports of an element.
#include "bitstream/syntax/Tracer.h"

#include <limits>

#include "bitstream/syntax/EmulationPrevention.h"

namespace qv {

void Tracer::report(const Element& element, Descriptor descriptor, uint32_t width, uint64_t bits,
                    int64_t value) {
    reportAt(reader_.position() - width, element, descriptor, width, bits, value);
}

void Tracer::reportAt(uint64_t firstBit, const Element& element, Descriptor descriptor, uint32_t width,
                      uint64_t bits, int64_t value) {
    if (reader_.failed()) {
        return;
    }
    TracedElement traced;
    traced.element = element;
    traced.descriptor = descriptor;
    traced.firstBit = firstBit;
    traced.width = width;
    traced.value = value;
    traced.bits = bits;
    traced.codedByte = codedByteOf(firstBit);
    visitor_.element(traced);
}

void Tracer::rbsp_trailing_bits() {
    reader_.rbsp_trailing_bits();
    if (reader_.more_rbsp_data() || reader_.failed()) {
        return;
    }
    static constexpr Structure kTrailingBits = {"rbsp_trailing_bits()", "7.3.2.11"};
    const Within<Tracer> within(*this, kTrailingBits);
    uint64_t bit = reader_.position();
    reportAt(bit++, detail::elementOf("rbsp_stop_one_bit"), Descriptor::f, 1, 1, 1);
    for (; bit % 8 != 0; ++bit) {
        reportAt(bit, detail::elementOf("rbsp_alignment_zero_bit"), Descriptor::f, 1, 0, 0);
    }
}

void Tracer::reportCode(const Element& element, Descriptor descriptor, uint64_t firstBit, int64_t value,
                        uint64_t bits) {
    report(element, descriptor, static_cast<uint32_t>(reader_.position() - firstBit), bits, value);
}

void Tracer::reportBytes(const Element& element, Bytes bytes) {
    constexpr uint64_t kMostWidth = std::numeric_limits<uint32_t>::max();
    // The byte after them is not looked at yet: it may be one of these as well.
    headerBytes_ += bytes.size + 1;
    const uint64_t width = uint64_t{8} * bytes.size;
    reportAt(reader_.position() - width, element, Descriptor::bytes,
             static_cast<uint32_t>(width < kMostWidth ? width : kMostWidth), 0,
             static_cast<int64_t>(bytes.size));
    --headerBytes_;
}

size_t Tracer::codedByteOf(uint64_t bit) {
    const uint64_t wanted = bit / 8;
    for (; rbspByte_ < wanted; ++rbspByte_) {
        ++codedByte_;
        if (codedByte_ >= headerBytes_ && codedByte_ < unit_.size &&
            detail::isEmulationPrevention(unit_.data, codedByte_)) {
            ++codedByte_;
        }
    }
    return codedByte_;
}

// Flags of one name are reported up to 32 at a time.
void Tracer::extension_data(const char* name, CodedBits& bits) {
    keep(bits, [name](Tracer& tracer) {
        while (tracer.more_rbsp_data()) {
            uint32_t flags = 0;
            const uint32_t width = tracer.reader_.bitsInReach(32);
            tracer.u(width, name, flags);
        }
    });
}

void Tracer::payload_extension(const char* name, CodedBits& bits) {
    Reader passing = reader_;
    passing.payload_extension(name, bits);
    for (uint64_t left = bits.count; left > 0;) {
        const auto n = static_cast<uint32_t>(left < 32 ? left : 32);
        uint32_t value = 0;
        u(n, name, value);
        left -= n;
    }
}

}  // namespace qv
