// The syntax vocabulary as a source of random units: every element gets a value of its range, is written into
// the record and as bits, and is remembered.
#ifndef QV_TESTS_BITSTREAM_RANDOMUNIT_H
#define QV_TESTS_BITSTREAM_RANDOMUNIT_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "bitstream/Codec.h"
#include "bitstream/syntax/Reader.h"
#include "bitstream/syntax/Trace.h"
#include "bitstream/syntax/Writer.h"

namespace qv_test {

using Random = std::mt19937_64;

class RandomUnit {
public:
    explicit RandomUnit(Random& random) : random_(random), writer_(unit_) {}

    // From here on the element of this name gets one of these values.
    RandomUnit& choose(const std::string& name, std::vector<int64_t> values);

    // The element with this number, of those that have a value outside their range, gets such a value.
    RandomUnit& violate(size_t number);

    // The element that got a value outside its range; none when there were fewer elements.
    const qv::TracedElement* violated() const {
        return violated_ < elements_.size() ? &elements_[violated_] : nullptr;
    }

    // True unless the table itself found the values not to go together.
    bool isLegal() const { return !failed_; }

    const std::vector<qv::TracedElement>& elements() const { return elements_; }

    uint32_t headerBytes() const { return headerBytes_; }

    // Bits before rbsp_trailing_bits(), the header included.
    uint64_t rbspBits() const { return rbspBits_; }

    // The first bits of the unit, with rbsp_trailing_bits() after them; no fewer than those of the header.
    std::vector<uint8_t> cutAt(uint64_t bits) const;

    // Ends the unit; once.
    std::vector<uint8_t> finish();

    // --- The vocabulary ---

    void header(uint32_t bytes) {
        headerBytes_ += bytes;
        writer_.header(bytes);
    }
    void rbsp() {}
    bool hasNoRbsp() { return pick(2) == 0; }
    bool hasNoRbsp(bool& absent) { return absent = hasNoRbsp(); }

    template <class Name, class Field>
    void u(uint32_t n, const Name& name, Field& field) {
        u(n, name, field, 0, n == 0 ? 0 : ~uint64_t{0} >> (64 - n));
    }

    template <class Name, class Field>
    void u(uint32_t n, const Name& name, Field& field, uint64_t least, uint64_t most) {
        const qv::Element element = qv::detail::elementOf(name);
        const uint64_t greatest = n == 0 ? 0 : ~uint64_t{0} >> (64 - n);
        uint64_t value = static_cast<uint64_t>(valueOf(element, static_cast<int64_t>(least), most - least));
        if (most < greatest && isToBeViolated()) {
            value = most + 1;
        } else if (least > 0 && isToBeViolated()) {
            value = least - 1;
        }
        note(element, qv::Descriptor::u, n, static_cast<int64_t>(value), value);
        writer_.u(n, name, value);
        field = static_cast<Field>(value >= least && value <= most ? value : 0);
    }

    template <class Name>
    void u_long(uint32_t n, const Name& name, uint64_t& field) {
        u(n, name, field);
    }

    template <class Name>
    void flag(const Name& name, bool& field) {
        u(1, name, field);
    }

    template <class Name>
    void flag(const Name& name, bool& field, bool allowed) {
        u(1, name, field, allowed ? 1 : 0, allowed ? 1 : 0);
    }

    template <class Name, class Field>
    void flags(uint32_t n, const Name& name, Field& field) {
        uint64_t mask = 0;
        for (uint32_t j = 0; j < n; ++j) {
            bool one = false;
            flag(qv::detail::subscripted(name, j), one);
            mask |= uint64_t{one} << j;
        }
        field = static_cast<Field>(mask);
    }

    template <class Name, class Field>
    void i(uint32_t n, const Name& name, Field& field) {
        const int64_t most = (int64_t{1} << (n - 1)) - 1;
        i(n, name, field, -most - 1, most);
    }

    template <class Name, class Field>
    void i(uint32_t n, const Name& name, Field& field, int64_t least, int64_t most) {
        const int64_t greatest = (int64_t{1} << (n - 1)) - 1;
        const qv::Element element = qv::detail::elementOf(name);
        int64_t value = valueOf(element, least, static_cast<uint64_t>(most - least));
        if (most < greatest && isToBeViolated()) {
            value = most + 1;
        } else if (least > -greatest - 1 && isToBeViolated()) {
            value = least - 1;
        }
        note(element, qv::Descriptor::i, n, value, static_cast<uint64_t>(value) & ((uint64_t{1} << n) - 1));
        writer_.i(n, name, value);
        field = static_cast<Field>(value >= least && value <= most ? value : 0);
    }

    template <class Name>
    void f(uint32_t n, const Name& name, uint64_t pattern) {
        uint64_t value = isToBeViolated() ? pattern ^ 1 : pattern;
        note(qv::detail::elementOf(name), qv::Descriptor::f, n, static_cast<int64_t>(value), value);
        writer_.u(n, name, value);
    }

    template <class Name, class Field>
    void ue(const Name& name, Field& field, uint32_t least = 0, uint32_t most = qv::kMostUe) {
        constexpr auto kMostOfField = static_cast<uint64_t>(std::numeric_limits<Field>::max());
        const auto limit = static_cast<uint32_t>(most < kMostOfField ? most : kMostOfField);
        const qv::Element element = qv::detail::elementOf(name);
        auto value = static_cast<uint32_t>(valueOf(element, least, limit - least));
        if (limit < qv::kMostUe && isToBeViolated()) {
            value = limit + 1;
        } else if (least > 0 && isToBeViolated()) {
            value = least - 1;
        }
        noteCode(element, qv::Descriptor::ue, value, uint64_t{value} + 1);
        writer_.ue(name, value);
        field = static_cast<Field>(value >= least && value <= limit ? value : 0);
    }

    template <class Name, class Field>
    void se(const Name& name, Field& field, int32_t least = -qv::kMostSe, int32_t most = qv::kMostSe) {
        const qv::Element element = qv::detail::elementOf(name);
        auto value = static_cast<int32_t>(
            valueOf(element, least, static_cast<uint64_t>(int64_t{most} - int64_t{least})));
        if (most < qv::kMostSe && isToBeViolated()) {
            value = most + 1;
        } else if (least > -qv::kMostSe && isToBeViolated()) {
            value = least - 1;
        }
        const auto codeNum = static_cast<uint64_t>(value > 0 ? 2 * int64_t{value} - 1 : -2 * int64_t{value});
        noteCode(element, qv::Descriptor::se, value, codeNum + 1);
        writer_.se(name, value);
        field = static_cast<Field>(value >= least && value <= most ? value : 0);
    }

    template <class Field, class Value>
    void infer(Field& field, Value value) {
        field = static_cast<Field>(value);
    }

    bool more_rbsp_data() { return pick(2) == 0; }
    bool more_rbsp_data(bool& present) { return present = more_rbsp_data(); }
    bool byte_aligned() const { return writer_.byte_aligned(); }
    void rbsp_trailing_bits();

    template <class Body>
    void keep(qv::CodedBits& bits, Body body) {
        bits = {};
        body(*this);
    }

    void extension_data(const char* name, qv::CodedBits& bits);

    template <class Name>
    void payload_bytes(const Name& name, qv::CodedBits& bits) {
        bits = {};
        const auto n = static_cast<uint32_t>(pick(40));
        for (uint32_t i = 0; i < n; ++i) {
            uint32_t byte = 0;
            u(8, qv::detail::subscripted(name, i), byte);
        }
        // They begin after any bit and end with a byte of the payload.
        if (!byte_aligned()) {
            uint32_t rest = 0;
            u(static_cast<uint32_t>(8 - writer_.position() % 8), qv::detail::subscripted(name, n), rest);
        }
    }

    bool payload_extension_present(bool& present) {
        extensionPresent_ = pick(2) == 0;
        return present = extensionPresent_;
    }

    // The messages in the payload of another one: one to three, of a type that both codecs reserve.
    void nested_messages(qv::CodedBits& bits);

    // One message of that type among other elements of a payload.
    void nested_message();

    // Ends a payload (H.264 D.1.1, H.265 D.2.1). The rbsp_trailing_bits() after it, a byte, are not among the
    // elements.
    void endPayload(qv::Codec codec);

    template <class Name>
    void bytes(uint64_t n, const Name& name, qv::Bytes& field) {
        field = randomBytes(n);
        note(qv::detail::elementOf(name), qv::Descriptor::bytes, static_cast<uint32_t>(8 * n),
             static_cast<int64_t>(n), 0);
        headerBytes_ += static_cast<uint32_t>(n);
        writer_.bytes(n, name, field);
    }

    // Always fewer bytes than hasBytes() asks for, so that a reader does not find what the record lacks.
    template <class Name>
    void restOfBytes(const Name& name, qv::Bytes& field) {
        const uint64_t n = pick(4);
        field = qv::Bytes();
        if (n > 0) {
            bytes(n, name, field);
        }
    }

    bool hasBytes(uint64_t n, bool& present) {
        static_cast<void>(n);
        return present = pick(2) == 0;
    }

    template <class Body>
    void keepBytes(qv::Bytes& field, Body body) {
        field = {};
        body(*this);
    }

    void fail(qv::FaultKind kind, const char* name, int64_t value);
    bool failed() const { return failed_; }

    const qv::Structure* enter(const qv::Structure* structure) { return writer_.enter(structure); }
    void leave(const qv::Structure* outer) { writer_.leave(outer); }

private:
    uint64_t pick(uint64_t bound) { return random_() % bound; }
    void put(uint32_t n, const qv::Element& element, qv::Descriptor descriptor, uint64_t value);
    qv::Bytes randomBytes(uint64_t n);
    int64_t valueOf(const qv::Element& element, int64_t least, uint64_t range);
    bool isToBeViolated();
    void note(const qv::Element& element, qv::Descriptor descriptor, uint32_t width, int64_t value,
              uint64_t bits);
    void noteCode(const qv::Element& element, qv::Descriptor descriptor, int64_t value, uint64_t bits);

    Random& random_;
    std::deque<std::vector<uint8_t>> runs_;
    std::vector<uint8_t> unit_;
    qv::Writer writer_;
    std::map<std::string, std::vector<int64_t>> choices_;
    std::vector<qv::TracedElement> elements_;
    uint32_t headerBytes_ = 0;
    uint64_t rbspBits_ = 0;
    size_t violable_ = 0;
    size_t toViolate_ = SIZE_MAX;
    size_t violated_ = SIZE_MAX;
    bool failed_ = false;
    bool extensionPresent_ = false;
};

}  // namespace qv_test

#endif
