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

// --- Elements: a value of the range, or outside of it, is noted and written; what a reader would keep ---

uint64_t RandomUnit::putU(uint32_t n, const qv::Element& element, uint64_t least, uint64_t most) {
    const uint64_t greatest = n == 0 ? 0 : ~uint64_t{0} >> (64 - n);
    auto value = static_cast<uint64_t>(valueOf(element, static_cast<int64_t>(least), most - least));
    if (most < greatest && isToBeViolated()) {
        value = most + 1;
    } else if (least > 0 && isToBeViolated()) {
        value = least - 1;
    }
    note(element, qv::Descriptor::u, n, static_cast<int64_t>(value), value);
    writer_.u(n, element.name, value);
    return value >= least && value <= most ? value : 0;
}

uint64_t RandomUnit::putFlags(uint32_t n, const ElementName& name) {
    uint64_t mask = 0;
    for (uint32_t j = 0; j < n; ++j) {
        bool one = false;
        flag(name.at(j), one);
        mask |= uint64_t{one} << j;
    }
    return mask;
}

int64_t RandomUnit::putI(uint32_t n, const qv::Element& element, int64_t least, int64_t most) {
    const int64_t greatest = (int64_t{1} << (n - 1)) - 1;
    int64_t value = valueOf(element, least, static_cast<uint64_t>(most - least));
    if (most < greatest && isToBeViolated()) {
        value = most + 1;
    } else if (least > -greatest - 1 && isToBeViolated()) {
        value = least - 1;
    }
    note(element, qv::Descriptor::i, n, value, static_cast<uint64_t>(value) & ((uint64_t{1} << n) - 1));
    writer_.i(n, element.name, value);
    return value >= least && value <= most ? value : 0;
}

void RandomUnit::f(uint32_t n, const ElementName& name, uint64_t pattern) {
    uint64_t value = isToBeViolated() ? pattern ^ 1 : pattern;
    note(name.element, qv::Descriptor::f, n, static_cast<int64_t>(value), value);
    writer_.u(n, name.element.name, value);
}

uint32_t RandomUnit::putUe(const qv::Element& element, uint32_t least, uint32_t limit) {
    auto value = static_cast<uint32_t>(valueOf(element, least, limit - least));
    if (limit < qv::kMostUe && isToBeViolated()) {
        value = limit + 1;
    } else if (least > 0 && isToBeViolated()) {
        value = least - 1;
    }
    noteCode(element, qv::Descriptor::ue, value, uint64_t{value} + 1);
    writer_.ue(element.name, value);
    return value >= least && value <= limit ? value : 0;
}

int32_t RandomUnit::putSe(const qv::Element& element, int32_t least, int32_t most) {
    auto value =
        static_cast<int32_t>(valueOf(element, least, static_cast<uint64_t>(int64_t{most} - int64_t{least})));
    if (most < qv::kMostSe && isToBeViolated()) {
        value = most + 1;
    } else if (least > -qv::kMostSe && isToBeViolated()) {
        value = least - 1;
    }
    const auto codeNum = static_cast<uint64_t>(value > 0 ? 2 * int64_t{value} - 1 : -2 * int64_t{value});
    noteCode(element, qv::Descriptor::se, value, codeNum + 1);
    writer_.se(element.name, value);
    return value >= least && value <= most ? value : 0;
}

void RandomUnit::payload_bytes(const ElementName& name, qv::CodedBits& bits) {
    bits = {};
    const auto n = static_cast<uint32_t>(pick(40));
    for (uint32_t i = 0; i < n; ++i) {
        uint32_t byte = 0;
        u(8, name.at(i), byte);
    }
    // They begin after any bit and end with a byte of the payload.
    if (!byte_aligned()) {
        uint32_t rest = 0;
        u(static_cast<uint32_t>(8 - writer_.position() % 8), name.at(n), rest);
    }
}

void RandomUnit::bytes(uint64_t n, const ElementName& name, qv::Bytes& field) {
    field = randomBytes(n);
    note(name.element, qv::Descriptor::bytes, static_cast<uint32_t>(8 * n), static_cast<int64_t>(n), 0);
    headerBytes_ += static_cast<uint32_t>(n);
    writer_.bytes(n, name.element.name, field);
}

void RandomUnit::restOfBytes(const ElementName& name, qv::Bytes& field) {
    const uint64_t n = pick(4);
    field = qv::Bytes();
    if (n > 0) {
        bytes(n, name, field);
    }
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
