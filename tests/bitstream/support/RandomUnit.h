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

// A name with or without subscripts. One type for all: a function template for each length of a literal would
// be most of what a compiler does with a table.
struct ElementName {
    // NOLINTBEGIN(google-explicit-constructor): names are written as the tables write them
    ElementName(const char* name) : element(qv::detail::elementOf(name)) {}
    template <size_t N>
    ElementName(const qv::detail::Subscripted<N>& name) : element(qv::detail::elementOf(name)) {}
    // NOLINTEND(google-explicit-constructor)

    // With one subscript more.
    ElementName at(uint32_t subscript) const {
        ElementName name = *this;
        name.element.subscripts[name.element.subscriptCount++] = subscript;
        return name;
    }

    qv::Element element;
};

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

    template <class Field>
    void u(uint32_t n, const ElementName& name, Field& field) {
        u(n, name, field, 0, n == 0 ? 0 : ~uint64_t{0} >> (64 - n));
    }

    template <class Field>
    void u(uint32_t n, const ElementName& name, Field& field, uint64_t least, uint64_t most) {
        field = static_cast<Field>(putU(n, name.element, least, most));
    }

    void u_long(uint32_t n, const ElementName& name, uint64_t& field) { u(n, name, field); }

    void flag(const ElementName& name, bool& field) { u(1, name, field); }

    void flag(const ElementName& name, bool& field, bool allowed) {
        u(1, name, field, allowed ? 1 : 0, allowed ? 1 : 0);
    }

    template <class Field>
    void flags(uint32_t n, const ElementName& name, Field& field) {
        field = static_cast<Field>(putFlags(n, name));
    }

    template <class Field>
    void i(uint32_t n, const ElementName& name, Field& field) {
        const int64_t most = (int64_t{1} << (n - 1)) - 1;
        i(n, name, field, -most - 1, most);
    }

    template <class Field>
    void i(uint32_t n, const ElementName& name, Field& field, int64_t least, int64_t most) {
        field = static_cast<Field>(putI(n, name.element, least, most));
    }

    void f(uint32_t n, const ElementName& name, uint64_t pattern);

    template <class Field>
    void ue(const ElementName& name, Field& field, uint32_t least = 0, uint32_t most = qv::kMostUe) {
        constexpr auto kMostOfField = static_cast<uint64_t>(std::numeric_limits<Field>::max());
        field = static_cast<Field>(
            putUe(name.element, least, static_cast<uint32_t>(most < kMostOfField ? most : kMostOfField)));
    }

    template <class Field>
    void se(const ElementName& name, Field& field, int32_t least = -qv::kMostSe, int32_t most = qv::kMostSe) {
        field = static_cast<Field>(putSe(name.element, least, most));
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

    void payload_bytes(const ElementName& name, qv::CodedBits& bits);

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

    void bytes(uint64_t n, const ElementName& name, qv::Bytes& field);

    // Always fewer bytes than hasBytes() asks for, so that a reader does not find what the record lacks.
    void restOfBytes(const ElementName& name, qv::Bytes& field);

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
    uint64_t putU(uint32_t n, const qv::Element& element, uint64_t least, uint64_t most);
    uint64_t putFlags(uint32_t n, const ElementName& name);
    int64_t putI(uint32_t n, const qv::Element& element, int64_t least, int64_t most);
    uint32_t putUe(const qv::Element& element, uint32_t least, uint32_t limit);
    int32_t putSe(const qv::Element& element, int32_t least, int32_t most);
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
