#include "RandomUnit.h"

namespace qv_test {

RandomUnit& RandomUnit::choose(const std::string& name, std::vector<int64_t> values) {
    choices_[name] = std::move(values);
    return *this;
}

RandomUnit& RandomUnit::violate(size_t number) {
    toViolate_ = number;
    return *this;
}

std::vector<uint8_t> RandomUnit::finish() {
    writer_.finish();
    return unit_;
}

std::vector<uint8_t> RandomUnit::cutAt(uint64_t bits) const {
    std::vector<uint8_t> unit;
    qv::Writer writer(unit);
    writer.header(headerBytes_);
    for (const qv::TracedElement& element : elements_) {
        if (element.firstBit >= bits) {
            break;
        }
        const uint64_t room = bits - element.firstBit;
        const auto kept = static_cast<uint32_t>(element.width < room ? element.width : room);
        uint64_t value = element.width - kept < 64 ? element.bits >> (element.width - kept) : 0;
        writer.u(kept, "", value);
    }
    writer.rbsp_trailing_bits();
    writer.finish();
    return unit;
}

void RandomUnit::rbsp_trailing_bits() {
    rbspBits_ = writer_.position();
    note(qv::detail::elementOf("rbsp_stop_one_bit"), qv::Descriptor::f, 1, 1, 1);
    writer_.f(1, "rbsp_stop_one_bit", 1);
    while (!byte_aligned()) {
        note(qv::detail::elementOf("rbsp_alignment_zero_bit"), qv::Descriptor::f, 1, 0, 0);
        writer_.f(1, "rbsp_alignment_zero_bit", 0);
    }
}

// A tracer reports flags of an extension up to 32 at a time.
void RandomUnit::extension_data(const char* name, qv::CodedBits& bits) {
    bits = {};
    for (uint64_t left = pick(100); left > 0;) {
        const auto n = static_cast<uint32_t>(left < 32 ? left : 32);
        uint32_t flags = 0;
        u(n, name, flags);
        left -= n;
    }
}

void RandomUnit::fail(qv::FaultKind kind, const char* name, int64_t value) {
    static_cast<void>(kind);
    static_cast<void>(name);
    static_cast<void>(value);
    failed_ = true;
}

void RandomUnit::nested_messages(qv::CodedBits& bits) {
    bits = {};
    for (uint64_t messages = 1 + pick(3); messages > 0; --messages) {
        nested_message();
    }
}

void RandomUnit::nested_message() {
    constexpr uint64_t kReservedType = 199;
    const qv::Element sizeByte = qv::detail::elementOf("last_payload_size_byte");
    const auto size = static_cast<uint64_t>(valueOf(sizeByte, 0, 5));
    put(8, qv::detail::elementOf("last_payload_type_byte"), qv::Descriptor::u, kReservedType);
    put(8, sizeByte, qv::Descriptor::u, size);
    for (uint32_t i = 0; i < size; ++i) {
        put(8, qv::detail::elementOf(qv::at("reserved_sei_message_payload_byte", i)), qv::Descriptor::u,
            pick(4));
    }
}

void RandomUnit::endPayload(qv::Codec codec) {
    rbspBits_ = writer_.position();
    const bool isHevc = codec == qv::Codec::Hevc;
    if (extensionPresent_ || !byte_aligned()) {
        put(1, qv::detail::elementOf(isHevc ? "payload_bit_equal_to_one" : "bit_equal_to_one"),
            qv::Descriptor::f, 1);
    }
    while (!byte_aligned()) {
        put(1, qv::detail::elementOf(isHevc ? "payload_bit_equal_to_zero" : "bit_equal_to_zero"),
            qv::Descriptor::f, 0);
    }
    writer_.rbsp_trailing_bits();
}

void RandomUnit::put(uint32_t n, const qv::Element& element, qv::Descriptor descriptor, uint64_t value) {
    note(element, descriptor, n, static_cast<int64_t>(value), value);
    writer_.u(n, "", value);
}

qv::Bytes RandomUnit::randomBytes(uint64_t n) {
    runs_.emplace_back(static_cast<size_t>(n));
    for (uint8_t& byte : runs_.back()) {
        byte = static_cast<uint8_t>(pick(3) == 0 ? random_() : pick(4));
    }
    return {runs_.back().data(), runs_.back().size()};
}

// Mostly small values, because many of them are counts; now and then any value, and the ends of the range.
int64_t RandomUnit::valueOf(const qv::Element& element, int64_t least, uint64_t range) {
    const auto choice = choices_.find(element.name);
    if (choice != choices_.end()) {
        return choice->second[pick(choice->second.size())];
    }
    if (range == UINT64_MAX) {
        return static_cast<int64_t>(random_());
    }
    uint64_t offset = 0;
    switch (pick(64)) {
        case 0:
            offset = range;
            break;
        case 1:
        case 2:
            offset = random_() % (range + 1);
            break;
        default:
            offset = random_() >> (60 + pick(4));
            // Around 0 where that is in the range.
            if (least < 0 && static_cast<uint64_t>(-least) <= range) {
                offset = static_cast<uint64_t>(-least) + (pick(2) == 0 ? offset : 0 - offset);
            }
            offset = offset > range ? random_() % (range + 1) : offset;
    }
    return static_cast<int64_t>(static_cast<uint64_t>(least) + offset);
}

bool RandomUnit::isToBeViolated() {
    if (violable_++ != toViolate_) {
        return false;
    }
    violated_ = elements_.size();
    return true;
}

void RandomUnit::note(const qv::Element& element, qv::Descriptor descriptor, uint32_t width, int64_t value,
                      uint64_t bits) {
    qv::TracedElement traced;
    traced.element = element;
    traced.descriptor = descriptor;
    traced.firstBit = writer_.position();
    traced.width = width;
    traced.value = value;
    traced.bits = bits;
    elements_.push_back(traced);
}

void RandomUnit::noteCode(const qv::Element& element, qv::Descriptor descriptor, int64_t value,
                          uint64_t bits) {
    note(element, descriptor, 127 - 2 * qv::detail::leadingZeroBits(bits), value, bits);
}

}  // namespace qv_test
