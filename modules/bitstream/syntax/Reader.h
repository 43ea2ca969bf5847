// The syntax vocabulary as a reader: fills a record from the bytes of a NAL unit.
//
// Clauses of this library are those of ITU-T H.264 (06/2019) and ITU-T H.265 (08/2021).
#ifndef QV_BITSTREAM_SYNTAX_READER_H
#define QV_BITSTREAM_SYNTAX_READER_H

#include <cstdint>
#include <limits>
#include <type_traits>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/syntax/Bits.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Element.h"

namespace qv {

/// The greatest value of ue(v): 31 leading zero bits (H.264 9.1, H.265 9.2).
constexpr uint32_t kMostUe = 0xFFFFFFFE;

/// The greatest value of se(v) and, negated, the least (H.264 9.1.1, H.265 9.2.2).
constexpr int32_t kMostSe = 0x7FFFFFFF;

/// Reads syntax elements out of the coded bytes of one NAL unit, stepping over emulation prevention bytes
/// (H.264 7.4.1, H.265 7.4.2) without a copy.
///
/// No read fails by itself. The first fault is kept; from then on every element reads 0 and more_rbsp_data()
/// is false, so that every loop that is bounded by an element ends.
class Reader {
public:
    /// A reader at the first byte of \p unit, which is borrowed: header() comes next, then the elements of
    /// the NAL unit header, then rbsp().
    explicit Reader(Bytes unit) noexcept
        : begin_(unit.data), next_(unit.data), end_(unit.end()), unitEnd_(unit.end()) {}

    /// A reader of bits that an earlier read passed over. The data ends with them.
    explicit Reader(const CodedBits& bits) noexcept;

    /// A reader of a part of \p unit, the coded bytes from \p begin to before \p end, which are in it. Every
    /// bit of the part is data. \p firstBit is that of its first bit, as position() counts.
    Reader(Bytes unit, size_t begin, size_t end, uint64_t firstBit) noexcept
        : begin_(unit.data),
          next_(unit.data + begin),
          end_(unit.data + end),
          unitEnd_(unit.data + end),
          loaded_(firstBit) {}

    // --- The parts of a unit ---

    /// Makes the next \p bytes bytes of the unit, at most 4, the bits to be read. They belong to the NAL unit
    /// header, which has no emulation prevention bytes.
    void header(uint32_t bytes) noexcept;

    /// Ends the NAL unit header. From here on the data ends before the rbsp_stop_one_bit.
    void rbsp() noexcept;

    /// True when the unit has no bytes after its header; after rbsp(), when it has none but zero bytes.
    bool hasNoRbsp() const noexcept { return next_ == end_ && bits_ == kNoBits; }

    /// As above; a record keeps \p absent for the writer.
    bool hasNoRbsp(bool& absent) const noexcept { return absent = hasNoRbsp(); }

    // --- Descriptors (H.264 7.2, H.265 7.2) ---

    /// u(n), n of 0 to 56, and to 32 where the field has 32 bits.
    template <class Name, class Field>
    QV_ALWAYS_INLINE void u(uint32_t n, const Name& name, Field& field) noexcept {
        field = static_cast<Field>(bits(n, name));
    }

    /// u(n) with a range.
    template <class Name, class Field>
    QV_ALWAYS_INLINE void u(uint32_t n, const Name& name, Field& field, uint64_t least,
                            uint64_t most) noexcept {
        const uint64_t value = bits(n, name);
        field = static_cast<Field>(value);
        if (value < least || value > most) {
            field = 0;
            outOfRange(detail::elementOf(name), n, static_cast<int64_t>(value), static_cast<int64_t>(least),
                       static_cast<int64_t>(most));
        }
    }

    /// u(n), n of 0 to 63.
    template <class Name>
    void u_long(uint32_t n, const Name& name, uint64_t& field) noexcept {
        constexpr uint32_t kHalf = 32;
        const uint64_t firstBit = position();
        const bool hadFailed = failed();
        const uint64_t high = n > kHalf ? bits(n - kHalf, name) : 0;
        const uint64_t low = bits(n > kHalf ? kHalf : n, name);
        field = failed() ? 0 : high << kHalf | low;
        if (failed() && !hadFailed) {
            fault_.firstBit = firstBit;
        }
    }

    /// u(1).
    template <class Name>
    QV_ALWAYS_INLINE void flag(const Name& name, bool& field) noexcept {
        field = bit(name);
    }

    /// u(1) with one value that is allowed.
    template <class Name>
    QV_ALWAYS_INLINE void flag(const Name& name, bool& field, bool allowed) noexcept {
        u(1, name, field, allowed ? 1 : 0, allowed ? 1 : 0);
    }

    /// n flags u(1), n of 0 to 64, with the next subscript counting them: flag j is bit j of the field.
    template <class Name, class Field>
    QV_ALWAYS_INLINE void flags(uint32_t n, const Name& name, Field& field) noexcept {
        uint64_t mask = 0;
        for (uint32_t first = 0; first < n; first += 32) {
            const uint32_t run = n - first < 32 ? n - first : 32;
            if (!holds(run) && bitsInReach(run) < run) {
                cutFlags(first, n, name, mask);
                break;
            }
            const auto taken = static_cast<uint32_t>(take(run));
            // cppcheck-suppress shiftTooManyBits ; run is 1 to 32
            mask |= uint64_t{detail::reversed(taken) >> (32 - run)} << first;
        }
        field = static_cast<Field>(mask);
    }

    /// i(n), n of 1 to 32, two's complement.
    template <class Name, class Field>
    QV_ALWAYS_INLINE void i(uint32_t n, const Name& name, Field& field) noexcept {
        const uint64_t sign = uint64_t{1} << (n - 1);
        field = static_cast<Field>(static_cast<int64_t>((bits(n, name) ^ sign) - sign));
    }

    /// i(n) with a range.
    template <class Name, class Field>
    QV_ALWAYS_INLINE void i(uint32_t n, const Name& name, Field& field, int64_t least,
                            int64_t most) noexcept {
        i(n, name, field);
        const auto value = static_cast<int64_t>(field);
        if (value < least || value > most) {
            field = 0;
            outOfRange(detail::elementOf(name), n, value, least, most);
        }
    }

    /// f(n): bits that have one value.
    template <class Name>
    QV_ALWAYS_INLINE void f(uint32_t n, const Name& name, uint64_t pattern) noexcept {
        uint64_t value = 0;
        u(n, name, value, pattern, pattern);
    }

    /// ue(v) with a range.
    template <class Name, class Field>
    QV_ALWAYS_INLINE void ue(const Name& name, Field& field, uint32_t least = 0,
                             uint32_t most = kMostUe) noexcept {
        constexpr uint64_t kMostOfField = static_cast<uint64_t>(std::numeric_limits<Field>::max());
        const auto limit = static_cast<uint32_t>(most < kMostOfField ? most : kMostOfField);
        const uint32_t value = codeNum(name);
        field = static_cast<Field>(value);
        if (value < least || value > limit) {
            field = 0;
            outOfRange(detail::elementOf(name), ueWidth(value), value, least, limit);
        }
    }

    /// se(v) with a range.
    template <class Name, class Field>
    QV_ALWAYS_INLINE void se(const Name& name, Field& field, int32_t least = -kMostSe,
                             int32_t most = kMostSe) noexcept {
        const uint32_t code = codeNum(name);
        const auto magnitude = static_cast<int32_t>((code >> 1) + (code & 1U));
        const int32_t value = (code & 1U) != 0 ? magnitude : -magnitude;
        field = static_cast<Field>(value);
        if (value < least || value > most) {
            field = 0;
            outOfRange(detail::elementOf(name), ueWidth(code), value, least, most);
        }
    }

    /// The value of an element that is not present.
    template <class Field, class Value>
    QV_ALWAYS_INLINE void infer(Field& field, Value value) noexcept {
        field = static_cast<Field>(value);
    }

    // --- Functions (H.264 7.2, H.265 7.2) ---

    /// True while the position is before the rbsp_stop_one_bit; false after a fault.
    bool more_rbsp_data() noexcept { return bits_ != kNoBits || (next_ != end_ && bitsInReach(1) != 0); }

    /// As above, for elements that a structure may end before: a record keeps \p present for the writer.
    bool more_rbsp_data(bool& present) noexcept { return present = more_rbsp_data(); }

    /// True when the position is on a byte boundary of the RBSP.
    bool byte_aligned() const noexcept { return position() % 8 == 0; }

    /// rbsp_trailing_bits() (H.264 7.3.2.11, H.265 7.3.2.11). The data ends before them: what is left of it
    /// is reported by trailing(). An RBSP without a bit that is 1 has none, which is a fault.
    void rbsp_trailing_bits() noexcept {
        if (tail_ == 0) {
            endOfData(detail::elementOf("rbsp_stop_one_bit"));
        }
    }

    // --- Parts that are passed over ---

    /// Runs \p body, which reads what the record does not hold, and keeps where its bits are.
    template <class Body>
    QV_ALWAYS_INLINE void keep(CodedBits& bits, Body body) noexcept {
        const CodedBits first = mark();
        body(*this);
        bits = until(first);
    }

    /// The place of the next bit, with no bits yet.
    CodedBits mark() const noexcept;

    /// The bits from a place to the next bit; none after a fault.
    CodedBits until(const CodedBits& first) const noexcept;

    /// Flags of an extension that the standard reserves, up to the end of the RBSP.
    void extension_data(const char* name, CodedBits& bits) noexcept;

    // --- The payload of an SEI message ---

    /// All bits that are left: the bytes of a payload that have one name.
    template <class Name>
    void payload_bytes(const Name& name, CodedBits& bits) noexcept {
        static_cast<void>(name);
        passRest(bits);
    }

    /// True when a bit that is 1 follows the next bit, which then belongs to an extension and is not
    /// payload_bit_equal_to_one (H.265 D.2.1). A record keeps \p present for the writer.
    bool payload_extension_present(bool& present) const noexcept { return present = bitsBeforeLastOne() > 0; }

    /// The bits that are left before the last bit that is 1: reserved_payload_extension_data (H.265 D.2.1).
    void payload_extension(const char* name, CodedBits& bits) noexcept;

    // --- Whole bytes without emulation prevention, before rbsp() and with no bits announced ---

    /// The next \p n bytes, borrowed; none after a fault.
    template <class Name>
    void bytes(uint64_t n, const Name& name, Bytes& field) noexcept {
        field = Bytes();
        if (n > bytesInReach()) {
            endOfData(detail::elementOf(name));
            return;
        }
        field = {next_, static_cast<size_t>(n)};
        next_ += n;
        loaded_ += 8 * n;
    }

    /// All bytes that are left.
    template <class Name>
    void restOfBytes(const Name& name, Bytes& field) noexcept {
        bytes(bytesInReach(), name, field);
    }

    /// True when at least \p n bytes, 1 or more, are left; a record keeps \p present for the writer.
    bool hasBytes(uint64_t n, bool& present) const noexcept { return present = bytesInReach() >= n; }

    /// Runs \p body, which reads what the record does not hold, and keeps its bytes; with a fault in it all
    /// that are left.
    template <class Body>
    void keepBytes(Bytes& field, Body body) noexcept {
        const uint8_t* const first = next_;
        body(*this);
        field = {first, static_cast<size_t>(next_ - first)};
    }

    /// The lesser of \p most, 56 at most, and the bits that are left.
    uint32_t bitsInReach(uint32_t most) noexcept;

    // --- Faults and results ---

    /// Records a fault that is not that of one element's value.
    QV_NEVER_INLINE void fail(FaultKind kind, const char* name, int64_t value) noexcept;

    /// As fail(), for a fault that a reader of a part has found.
    void fail(const Fault& fault) noexcept;

    /// The first fault; none while the data is as it should be.
    const Fault& fault() const noexcept { return fault_; }

    /// True when there is a fault. Every element from there on reads 0.
    bool failed() const noexcept { return static_cast<bool>(fault_); }

    /// The next bit, counted in the unit without emulation prevention bytes.
    uint64_t position() const noexcept { return loaded_ - count(); }

    /// What follows the last element; the RBSP must have been begun.
    Trailing trailing() noexcept {
        Trailing trailing;
        if (!failed()) {
            trailing.bits = more_rbsp_data() ? countOfBitsLeft() : 0;
            trailing.bytes = {end_, static_cast<size_t>(unitEnd_ - end_)};
        }
        return trailing;
    }

    /// Enters a syntax structure; returns the one around it.
    const Structure* enter(const Structure* structure) noexcept {
        const Structure* const outer = structure_;
        structure_ = structure;
        return outer;
    }

    /// Leaves a syntax structure for the one around it.
    void leave(const Structure* outer) noexcept { structure_ = outer; }

private:
    static constexpr uint32_t kMostLeadingZeroBits = 31;

    // A window without a bit: the 1 bit after its last one.
    static constexpr uint64_t kNoBits = uint64_t{1} << 63;

    // Bits of a window that has no room for another byte.
    static constexpr uint32_t kFullWindow = 56;

    // Bits of the ue(v) code of a code number.
    static uint32_t ueWidth(uint32_t code) noexcept {
        return 127 - 2 * detail::leadingZeroBits(uint64_t{code} + 1);
    }

    // Bits that the window has room for.
    uint64_t room() const noexcept { return detail::trailingZeroBits(bits_); }

    // Bits in the window.
    uint64_t count() const noexcept { return 63 - room(); }

    // True when the window has n bits, 0 to 63: the 1 bit after its last one is not shifted out.
    QV_ALWAYS_INLINE bool holds(uint64_t n) const noexcept { return bits_ << n != 0; }

    // The window is a value of its own up to the merge of both paths: a compiler that would load it there has
    // to wait for the store of the element before.
    template <class Name>
    QV_ALWAYS_INLINE uint64_t bits(uint32_t n, const Name& name) noexcept {
        uint64_t window = bits_;
        uint64_t rest = window << n;
        if (rest == 0) {
            refill(n);
            if (!holds(n)) {
                endOfData(detail::elementOf(name));
                return 0;
            }
            window = bits_;
            rest = window << n;
        }
        bits_ = rest;
        return window >> 1 >> (63 - n);
    }

    // The same for one bit. The comparison is one with 0, not a number that is cut to a bool.
    template <class Name>
    QV_ALWAYS_INLINE bool bit(const Name& name) noexcept {
        uint64_t window = bits_;
        uint64_t rest = window << 1;
        if (rest == 0) {
            refill(1);
            if (!holds(1)) {
                endOfData(detail::elementOf(name));
                return false;
            }
            window = bits_;
            rest = window << 1;
        }
        bits_ = rest;
        return static_cast<int64_t>(window) < 0;
    }

    // Flags that the data ends in, one at a time up to the one that is missing.
    template <class Name>
    QV_NEVER_INLINE void cutFlags(uint32_t first, uint32_t n, const Name& name, uint64_t& mask) noexcept {
        for (uint32_t j = first; j < n && !failed(); ++j) {
            // n is 64 at most. NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult)
            mask |= bits(1, detail::subscripted(name, j)) << j;
        }
    }

    template <class Name>
    QV_ALWAYS_INLINE uint32_t codeNum(const Name& name) noexcept {
        uint64_t window = bits_;
        uint64_t rest = window << 1;
        uint32_t code = 0;
        // Most elements are 0. As a branch, the next element need not wait for the length of this one.
        if (window <= kNoBits) {
            if (!holdsCode(window)) {
                refill(kFullWindow);
                window = bits_;
            }
            if (holdsCode(window)) {
                const uint32_t length = 2 * detail::leadingZeroBits(window) + 1;
                code = static_cast<uint32_t>(window >> (64 - length)) - 1;
                rest = window << length;
            } else {
                code = longCodeNum(detail::elementOf(name));
                rest = bits_;
            }
        }
        bits_ = rest;
        return code;
    }

    // The length of a code whose first 1 bit is in the upper half is 63 at most.
    QV_ALWAYS_INLINE static bool holdsCode(uint64_t window) noexcept {
        return window >> 32 != 0 && window << (2 * detail::leadingZeroBits(window) + 1) != 0;
    }

    // The next n bits, 0 to 63, which the window holds.
    QV_ALWAYS_INLINE uint64_t take(uint64_t n) noexcept {
        const uint64_t value = bits_ >> 1 >> (63 - n);
        bits_ <<= n;
        return value;
    }

    void passRest(CodedBits& bits) noexcept;
    uint64_t bitsBeforeLastOne() const noexcept;
    uint64_t bytesInReach() const noexcept { return static_cast<uint64_t>(end_ - next_); }
    uint64_t nextBytes() const noexcept;
    void append(uint64_t bytes, uint64_t taken) noexcept;
    void refill(uint64_t wanted) noexcept;
    void appendWithoutEmulationPrevention(uint64_t bytes, uint64_t candidates) noexcept;
    void refillOverEmulationPrevention(uint64_t wanted, uint64_t bytes, uint64_t candidates) noexcept;
    void endOfWindow() noexcept;
    bool isEmulationPrevention(const uint8_t* byte) const noexcept;
    uint64_t countOfBitsLeft() noexcept;
    uint32_t longCodeNum(Element element) noexcept;
    void stop() noexcept;
    void fault(FaultKind kind, const Element& element, uint64_t firstBit) noexcept;
    QV_NEVER_INLINE void endOfData(Element element) noexcept;
    QV_NEVER_INLINE void outOfRange(Element element, uint32_t width, int64_t value, int64_t least,
                                    int64_t most) noexcept;

    // 64-bit numbers and pointers: no store into a record's field can change them, as far as a compiler
    // knows, and they stay in registers from one element to the next.
    uint64_t bits_ = kNoBits;  // the window: the next bit on top, after the last one a 1 bit and zero bits
    uint64_t tail_ = 0;  // bits of the last byte that are not data: the rbsp_stop_one_bit and later ones
    const uint8_t* begin_;
    const uint8_t* next_;  // the first byte that is not in the window
    const uint8_t* end_;
    const uint8_t* unitEnd_;
    uint64_t loaded_ = 0;  // bits of the RBSP up to the end of the window
    const Structure* structure_ = nullptr;
    Fault fault_;
};

/// u(1) that is kept as one bit of a set of flags.
template <class Syntax, class Name, class Mask>
QV_ALWAYS_INLINE void flag_of(Syntax& s, const Name& name, Mask& mask, uint32_t bit) {
    bool flag = (mask >> bit & 1) != 0;
    s.flag(name, flag);
    mask = (mask & ~(Mask{1} << bit)) | Mask{flag} << bit;
}

/// Marks the extent of a syntax structure in a syntax function.
template <class Syntax>
class Within {
public:
    /// Enters \p structure, which must live as long as the program.
    QV_ALWAYS_INLINE Within(Syntax& syntax, const Structure& structure)
        : syntax_(syntax), outer_(syntax.enter(&structure)) {}

    /// Returns to the structure around it.
    QV_ALWAYS_INLINE ~Within() { syntax_.leave(outer_); }
    Within(const Within&) = delete;
    Within& operator=(const Within&) = delete;

private:
    Syntax& syntax_;
    const Structure* outer_;
};

}  // namespace qv

#endif
