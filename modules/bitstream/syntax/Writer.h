// The syntax vocabulary as a writer and as a sizer.
#ifndef QV_BITSTREAM_SYNTAX_WRITER_H
#define QV_BITSTREAM_SYNTAX_WRITER_H

#include <cstdint>
#include <limits>
#include <vector>

#include "bitstream/syntax/Reader.h"

namespace qv {

/// What a writer and a sizer have in common: an element is checked against its descriptor and its range, and
/// handed on as bits. One that does not fit is a fault and becomes 0 in the record, a copy of the caller's,
/// so that a count bounds its loop as it does when it is read. After the first fault nothing is written.
template <class Sink>
class BitOutput {
public:
    template <class Name, class Field>
    void u(uint32_t n, const Name& name, Field& field) {
        u(n, name, field, 0, n >= 64 ? ~uint64_t{0} : (uint64_t{1} << n) - 1);
    }

    template <class Name, class Field>
    void u(uint32_t n, const Name& name, Field& field, uint64_t least, uint64_t most) {
        const auto value = static_cast<uint64_t>(field);
        if (value < least || value > most || (n < 64 && value >> n != 0)) {
            field = 0;
            outOfRange(detail::elementOf(name), static_cast<int64_t>(value), static_cast<int64_t>(least),
                       static_cast<int64_t>(most));
            return;
        }
        put(n, value);
    }

    template <class Name>
    void u_long(uint32_t n, const Name& name, uint64_t& field) {
        u(n, name, field);
    }

    template <class Name>
    void flag(const Name& name, bool& field) {
        static_cast<void>(name);
        put(1, field ? 1 : 0);
    }

    template <class Name>
    void flag(const Name& name, bool& field, bool allowed) {
        u(1, name, field, allowed ? 1 : 0, allowed ? 1 : 0);
    }

    /// Flags beyond the n-th are not looked at.
    template <class Name, class Field>
    void flags(uint32_t n, const Name& name, Field& field) {
        static_cast<void>(name);
        const uint64_t mask = uint64_t{field};
        for (uint32_t j = 0; j < n; ++j) {
            put(1, mask >> j & 1);
        }
    }

    template <class Name, class Field>
    void i(uint32_t n, const Name& name, Field& field) {
        const int64_t most = (int64_t{1} << (n - 1)) - 1;
        i(n, name, field, -most - 1, most);
    }

    /// \p least and \p most are values of the descriptor.
    template <class Name, class Field>
    void i(uint32_t n, const Name& name, Field& field, int64_t least, int64_t most) {
        const auto value = static_cast<int64_t>(field);
        if (value < least || value > most) {
            field = 0;
            outOfRange(detail::elementOf(name), value, least, most);
            return;
        }
        put(n, static_cast<uint64_t>(value) & ((uint64_t{1} << n) - 1));
    }

    template <class Name>
    void f(uint32_t n, const Name& name, uint64_t pattern) {
        static_cast<void>(name);
        put(n, pattern);
    }

    template <class Name, class Field>
    void ue(const Name& name, Field& field, uint32_t least = 0, uint32_t most = kMostUe) {
        const auto value = static_cast<uint64_t>(field);
        if (value < least || value > most) {
            field = 0;
            outOfRange(detail::elementOf(name), static_cast<int64_t>(value), least, most);
            return;
        }
        putCode(static_cast<uint32_t>(value));
    }

    template <class Name, class Field>
    void se(const Name& name, Field& field, int32_t least = -kMostSe, int32_t most = kMostSe) {
        const auto value = static_cast<int64_t>(field);
        if (value < least || value > most) {
            field = 0;
            outOfRange(detail::elementOf(name), value, least, most);
            return;
        }
        putCode(static_cast<uint32_t>(value > 0 ? 2 * value - 1 : -2 * value));
    }

    /// An element that is not present has nothing to be written.
    template <class Field, class Value>
    void infer(Field& field, Value value) {
        static_cast<void>(field);
        static_cast<void>(value);
    }

    /// What the record says is written.
    bool hasNoRbsp(bool& absent) const { return absent; }
    bool more_rbsp_data(bool& present) const { return present; }
    bool payload_extension_present(bool& present) const { return present; }

    void rbsp_trailing_bits() {
        put(1, 1);
        while (!failed() && !byte_aligned()) {
            put(1, 0);
        }
    }

    void extension_data(const char* name, const CodedBits& bits) {
        static_cast<void>(name);
        copy(bits);
    }

    template <class Name>
    void payload_bytes(const Name& name, const CodedBits& bits) {
        static_cast<void>(name);
        copy(bits);
    }

    void payload_extension(const char* name, const CodedBits& bits) {
        static_cast<void>(name);
        copy(bits);
    }

    template <class Body>
    void keep(const CodedBits& bits, Body body) {
        static_cast<void>(body);
        copy(bits);
    }

    template <class Name>
    void bytes(uint64_t n, const Name& name, const Bytes& field) {
        if (field.size != n) {
            outOfRange(detail::elementOf(name), static_cast<int64_t>(field.size), static_cast<int64_t>(n),
                       static_cast<int64_t>(n));
            return;
        }
        putBytes(field);
    }

    template <class Name>
    void restOfBytes(const Name& name, const Bytes& field) {
        static_cast<void>(name);
        putBytes(field);
    }

    /// What the record says is written.
    bool hasBytes(uint64_t n, bool& present) const {
        static_cast<void>(n);
        return present;
    }

    template <class Body>
    void keepBytes(const Bytes& field, Body body) {
        static_cast<void>(body);
        putBytes(field);
    }

    void fail(FaultKind kind, const char* name, int64_t value) {
        fault(kind, detail::elementOf(name), value);
    }

    bool byte_aligned() const { return position_ % 8 == 0; }
    const Fault& fault() const { return fault_; }
    bool failed() const { return static_cast<bool>(fault_); }

    /// Bits so far, without emulation prevention bytes.
    uint64_t position() const { return position_; }

    const Structure* enter(const Structure* structure) {
        const Structure* const outer = structure_;
        structure_ = structure;
        return outer;
    }
    void leave(const Structure* outer) { structure_ = outer; }

protected:
    void put(uint32_t n, uint64_t value) {
        if (!fault_) {
            position_ += n;
            static_cast<Sink&>(*this).append(n, value);
        }
    }

    void putBytes(Bytes bytes) {
        if (!fault_) {
            position_ += uint64_t{8} * bytes.size;
            static_cast<Sink&>(*this).appendBytes(bytes);
        }
    }

private:
    void putCode(uint32_t codeNum) {
        const uint64_t code = uint64_t{codeNum} + 1;
        const uint32_t informationBits = 63 - detail::leadingZeroBits(code);
        put(informationBits, 0);
        put(informationBits + 1, code);
    }

    void copy(const CodedBits& bits) {
        Reader reader(bits);
        for (uint64_t left = bits.count; left > 0;) {
            const auto n = static_cast<uint32_t>(left < 32 ? left : 32);
            uint32_t value = 0;
            reader.u(n, "", value);
            put(n, value);
            left -= n;
        }
    }

    void outOfRange(const Element& element, int64_t value, int64_t least, int64_t most) {
        if (!fault_) {
            fault_.least = least;
            fault_.most = most;
        }
        fault(FaultKind::OutOfRange, element, value);
    }

    void fault(FaultKind kind, const Element& element, int64_t value) {
        if (!fault_) {
            fault_.kind = kind;
            fault_.element = element;
            fault_.structure = structure_;
            fault_.firstBit = position_;
            fault_.value = value;
        }
    }

    uint64_t position_ = 0;
    const Structure* structure_ = nullptr;
    Fault fault_;
};

/// Writes a NAL unit, with emulation prevention bytes (H.264 7.4.1, H.265 7.4.2.1), to the end of a list of
/// bytes.
class Writer : public BitOutput<Writer> {
public:
    /// \p out is borrowed; what it holds stays.
    explicit Writer(std::vector<uint8_t>& out) : out_(out), begin_(out.size()) {}

    /// Inserts no emulation prevention bytes from here on.
    void withoutEmulationPrevention() { headerEnd_ = SIZE_MAX; }

    /// The bytes of the header, which has no emulation prevention bytes, follow.
    void header(uint32_t bytes) { headerEnd_ += bytes; }
    void rbsp() {}

    /// Ends the unit: an RBSP that ends with a zero byte is followed by an emulation prevention byte.
    Written finish();

private:
    friend class BitOutput<Writer>;
    void append(uint32_t n, uint64_t value);
    void appendByte(uint8_t byte);
    void appendBytes(Bytes bytes);

    std::vector<uint8_t>& out_;
    size_t begin_;
    size_t headerEnd_ = 0;
    uint64_t pending_ = 0;  // bits that do not make a byte yet, in the low places
    uint32_t pendingBits_ = 0;
    uint32_t zeroBytes_ = 0;  // at the end of the output
};

/// Counts the bits of a structure, emulation prevention bytes left out.
class Sizer : public BitOutput<Sizer> {
public:
    static void header(uint32_t bytes) { static_cast<void>(bytes); }
    static void rbsp() {}

private:
    friend class BitOutput<Sizer>;
    static void append(uint32_t n, uint64_t value) {
        static_cast<void>(n);
        static_cast<void>(value);
    }
    static void appendBytes(Bytes bytes) { static_cast<void>(bytes); }
};

}  // namespace qv

#endif
