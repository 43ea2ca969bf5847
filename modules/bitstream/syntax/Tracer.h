// The syntax vocabulary as a tracer: a reader that hands every element to a visitor.
#ifndef QV_BITSTREAM_SYNTAX_TRACER_H
#define QV_BITSTREAM_SYNTAX_TRACER_H

#include "bitstream/syntax/Reader.h"
#include "bitstream/syntax/Trace.h"

namespace qv {

/// Reads as a Reader does and hands each element that was read without a fault to a visitor.
class Tracer {
public:
    /// \p unit and \p visitor are borrowed.
    Tracer(Bytes unit, TraceVisitor& visitor) : reader_(unit), visitor_(visitor), unit_(unit) {}

    /// A tracer of a part of \p unit, which a data byte begins; see Reader.
    Tracer(Bytes unit, size_t begin, size_t end, uint64_t firstBit, TraceVisitor& visitor)
        : reader_(unit, begin, end, firstBit),
          visitor_(visitor),
          unit_(unit),
          rbspByte_(firstBit / 8),
          codedByte_(begin) {}

    void header(uint32_t bytes) {
        headerBytes_ += bytes;
        reader_.header(bytes);
    }
    void rbsp() { reader_.rbsp(); }
    bool hasNoRbsp() const { return reader_.hasNoRbsp(); }
    bool hasNoRbsp(bool& absent) const { return reader_.hasNoRbsp(absent); }

    template <class Name, class Field>
    void u(uint32_t n, const Name& name, Field& field) {
        reader_.u(n, name, field);
        report(detail::elementOf(name), Descriptor::u, n, static_cast<uint64_t>(field));
    }

    template <class Name, class Field>
    void u(uint32_t n, const Name& name, Field& field, uint64_t least, uint64_t most) {
        reader_.u(n, name, field, least, most);
        report(detail::elementOf(name), Descriptor::u, n, static_cast<uint64_t>(field));
    }

    template <class Name>
    void u_long(uint32_t n, const Name& name, uint64_t& field) {
        reader_.u_long(n, name, field);
        report(detail::elementOf(name), Descriptor::u, n, field);
    }

    template <class Name>
    void flag(const Name& name, bool& field) {
        reader_.flag(name, field);
        report(detail::elementOf(name), Descriptor::u, 1, field ? 1 : 0);
    }

    template <class Name>
    void flag(const Name& name, bool& field, bool allowed) {
        reader_.flag(name, field, allowed);
        report(detail::elementOf(name), Descriptor::u, 1, field ? 1 : 0);
    }

    template <class Name, class Field>
    void flags(uint32_t n, const Name& name, Field& field) {
        uint64_t mask = 0;
        for (uint32_t j = 0; j < n && !failed(); ++j) {
            bool one = false;
            flag(detail::subscripted(name, j), one);
            mask |= uint64_t{one} << j;
        }
        field = static_cast<Field>(mask);
    }

    template <class Name, class Field>
    void i(uint32_t n, const Name& name, Field& field) {
        reader_.i(n, name, field);
        reportSigned(detail::elementOf(name), n, field);
    }

    template <class Name, class Field>
    void i(uint32_t n, const Name& name, Field& field, int64_t least, int64_t most) {
        reader_.i(n, name, field, least, most);
        reportSigned(detail::elementOf(name), n, field);
    }

    template <class Name>
    void f(uint32_t n, const Name& name, uint64_t pattern) {
        reader_.f(n, name, pattern);
        report(detail::elementOf(name), Descriptor::f, n, pattern);
    }

    template <class Name, class Field>
    void ue(const Name& name, Field& field, uint32_t least = 0, uint32_t most = kMostUe) {
        const uint64_t before = reader_.position();
        reader_.ue(name, field, least, most);
        reportCode(detail::elementOf(name), Descriptor::ue, before, static_cast<int64_t>(field),
                   uint64_t{field} + 1);
    }

    template <class Name, class Field>
    void se(const Name& name, Field& field, int32_t least = -kMostSe, int32_t most = kMostSe) {
        const uint64_t before = reader_.position();
        reader_.se(name, field, least, most);
        const auto value = static_cast<int64_t>(field);
        const auto codeNum = static_cast<uint64_t>(value > 0 ? 2 * value - 1 : -2 * value);
        reportCode(detail::elementOf(name), Descriptor::se, before, value, codeNum + 1);
    }

    template <class Field, class Value>
    void infer(Field& field, Value value) {
        reader_.infer(field, value);
    }

    bool more_rbsp_data() { return reader_.more_rbsp_data(); }
    bool more_rbsp_data(bool& present) { return reader_.more_rbsp_data(present); }
    bool byte_aligned() const { return reader_.byte_aligned(); }

    /// Reports rbsp_stop_one_bit and each rbsp_alignment_zero_bit, unless data is left before them.
    void rbsp_trailing_bits();

    template <class Body>
    void keep(CodedBits& bits, Body body) {
        const CodedBits first = reader_.mark();
        body(*this);
        bits = reader_.until(first);
    }

    void extension_data(const char* name, CodedBits& bits);

    template <class Name>
    void bytes(uint64_t n, const Name& name, Bytes& field) {
        reader_.bytes(n, name, field);
        reportBytes(detail::elementOf(name), field);
    }

    /// Reported when there are any.
    template <class Name>
    void restOfBytes(const Name& name, Bytes& field) {
        reader_.restOfBytes(name, field);
        if (!field.empty()) {
            reportBytes(detail::elementOf(name), field);
        }
    }

    bool hasBytes(uint64_t n, bool& present) const { return reader_.hasBytes(n, present); }

    template <class Body>
    void keepBytes(Bytes& field, Body body) {
        reader_.keepBytes(field, [&](Reader&) { body(*this); });
    }

    template <class Name>
    void payload_bytes(const Name& name, CodedBits& bits) {
        keep(bits, [&name](Tracer& tracer) {
            for (uint32_t i = 0; tracer.more_rbsp_data(); ++i) {
                uint32_t byte = 0;
                tracer.u(tracer.reader_.bitsInReach(8), detail::subscripted(name, i), byte);
            }
        });
    }

    bool payload_extension_present(bool& present) const { return reader_.payload_extension_present(present); }
    void payload_extension(const char* name, CodedBits& bits);

    void fail(FaultKind kind, const char* name, int64_t value) { reader_.fail(kind, name, value); }

    /// Ends with a fault that a tracer of a part has found.
    void fail(const Fault& fault) { reader_.fail(fault); }

    TraceVisitor& visitor() { return visitor_; }

    /// A copy reads ahead.
    const Reader& reader() const { return reader_; }

    /// Passes over bits that tracers of parts have reported: all that are left.
    void pass(CodedBits& bits) { reader_.payload_bytes("", bits); }

    /// Goes on where a reader is that was a copy, after what tracers of parts have reported.
    void goOnAt(const Reader& reader) { reader_ = reader; }

    const Fault& fault() const { return reader_.fault(); }
    bool failed() const { return reader_.failed(); }
    uint64_t position() const { return reader_.position(); }
    Trailing trailing() { return reader_.trailing(); }

    const Structure* enter(const Structure* structure) {
        visitor_.begin(*structure);
        return reader_.enter(structure);
    }
    void leave(const Structure* outer) {
        visitor_.end();
        reader_.leave(outer);
    }

private:
    void report(const Element& element, Descriptor descriptor, uint32_t width, uint64_t bits) {
        report(element, descriptor, width, bits, static_cast<int64_t>(bits));
    }
    void report(const Element& element, Descriptor descriptor, uint32_t width, uint64_t bits, int64_t value);
    void reportSigned(const Element& element, uint32_t width, int64_t value) {
        const uint64_t mask = (uint64_t{1} << width) - 1;
        report(element, Descriptor::i, width, static_cast<uint64_t>(value) & mask, value);
    }
    void reportAt(uint64_t firstBit, const Element& element, Descriptor descriptor, uint32_t width,
                  uint64_t bits, int64_t value);
    void reportCode(const Element& element, Descriptor descriptor, uint64_t firstBit, int64_t value,
                    uint64_t bits);
    void reportBytes(const Element& element, Bytes bytes);
    size_t codedByteOf(uint64_t bit);

    Reader reader_;
    TraceVisitor& visitor_;
    Bytes unit_;
    uint64_t headerBytes_ = 0;

    // Where the RBSP byte rbspByte_ is in the coded unit; elements come in order, so this only moves forward.
    uint64_t rbspByte_ = 0;
    size_t codedByte_ = 0;
};

}  // namespace qv

#endif
