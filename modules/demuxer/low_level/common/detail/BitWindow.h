// The bit cursors of a reader. A window holds the next bits of a cursor in registers, for parsers that read
// many syntax elements in sequence; detail/PlainBits.h is for single reads. BitWindow.cpp reads what is not
// whole in a window: near the end of the data, around emulation prevention bytes, and codes of any length.
//
// A window owns the reader's cursor from its construction or take() until its destruction or giveBack(). In
// between the reader's own cursor is out of date, and nothing else may move it.
#ifndef QV_DEMUXER_DETAIL_BITWINDOW_H
#define QV_DEMUXER_DETAIL_BITWINDOW_H

#include <cstdint>

#include "QVByteStream.h"

namespace qv_detail {

// True when the byte at a position is an emulation_prevention_three_byte: 03 after two zero bytes. D03: not
// when the zero bytes are the first two of the buffer. The byte after the 03 is not examined.
inline bool isEmulationPrevention(const uint8_t* data, uint64_t position) {
    return data[position] == 0x03 && position >= 3 && data[position - 1] == 0x00 &&
           data[position - 2] == 0x00;
}

// Eight bytes as a number, the first one most significant. Compilers make one load of it.
inline uint64_t readBigEndian64(const uint8_t* bytes) {
    return uint64_t{bytes[0]} << 56 | uint64_t{bytes[1]} << 48 | uint64_t{bytes[2]} << 40 |
           uint64_t{bytes[3]} << 32 | uint64_t{bytes[4]} << 24 | uint64_t{bytes[5]} << 16 |
           uint64_t{bytes[6]} << 8 | uint64_t{bytes[7]};
}

// The number of zero bits before the first 1 bit. bits is not 0. The build without vectors uses the portable
// form too, which is how it is tested.
inline uint32_t leadingZeroBits(uint64_t bits) {
#if defined(__GNUC__) && !defined(QV_WITHOUT_VECTORS)
    return static_cast<uint32_t>(__builtin_clzll(bits));
#else
    uint32_t count = 0;
    for (; bits >> 63 == 0; bits <<= 1) {
        ++count;
    }
    return count;
#endif
}

// ue(v) of H.264 9.1 and H.265 9.2 from the bits of a code of at most 31 leading zero bits.
inline uint32_t ueOf(uint64_t code) {
    return static_cast<uint32_t>(code) - 1;
}

// se(v) of H.264 9.1.1 and H.265 9.2.2: the last bit of the code is the sign.
inline int32_t seOf(uint64_t code) {
    const auto magnitude = static_cast<uint32_t>(code >> 1);
    return static_cast<int32_t>((code & 1) != 0 ? 0U - magnitude : magnitude);
}

// Moves the plain cursor by n bits that are there.
inline void movePlain(QVByteStream& stream, uint32_t n) {
    const uint32_t bits = (stream.bitOffset & 7U) + n;
    stream.bytePos += bits / 8;
    stream.bitOffset = static_cast<uint8_t>(bits % 8);
}

// Inlined always, and no function outside is passed the address of a window: otherwise it would not stay in
// registers.
#define QV_WINDOW_INLINE [[gnu::always_inline]] inline

// Bits of the data: the next bit is the most significant one, zero bits follow the last. Small enough to be
// returned in registers.
struct WindowBits {
    uint64_t bits;
    uint32_t count;  // bits left; 0 where there is no window
    uint32_t taken;  // bits left when the reader's cursor was last brought up to date

    // Bits that the reader's cursor has to move to be up to date.
    QV_WINDOW_INLINE uint32_t moved() const { return taken - count; }

    // Length of the Exp-Golomb code that comes next; more than a window holds when its 1 bit is not here.
    QV_WINDOW_INLINE uint32_t codeLength() const {
        constexpr uint32_t kTooLong = 65;
        return bits != 0 ? 2 * leadingZeroBits(bits) + 1 : kTooLong;
    }

    // Takes the next n bits, 1 to 63 of them, which the window holds.
    QV_WINDOW_INLINE uint64_t shift(uint32_t n) {
        // The analyser does not know that there are 64 bits at most.
        // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult)
        const uint64_t value = bits >> (64 - n);
        bits <<= n;
        count -= n;
        return value;
    }
};

// The two cursors. take() makes a window at the reader's cursor, move() moves that past the bits that were
// read from a window, refill() does both. The reads work on the reader itself, at any position.
struct PlainSide {
    static WindowBits take(const QVByteStream& stream);
    static void move(QVByteStream& stream, uint32_t moved);
    static WindowBits refill(QVByteStream& stream, uint32_t moved);
    static uint32_t u(QVByteStream& stream, uint32_t n);
    static uint32_t ue(QVByteStream& stream);
    static int32_t se(QVByteStream& stream);
    static void skip(QVByteStream& stream, uint32_t n);
};

struct RbspSide {
    static WindowBits take(const QVByteStream& stream);
    static void move(QVByteStream& stream, uint32_t moved);
    static WindowBits refill(QVByteStream& stream, uint32_t moved);
    static uint32_t u(QVByteStream& stream, uint32_t n);
    static uint32_t ue(QVByteStream& stream);
};

// What both windows have in common. A read leaves kKept bits in the window at least.
template <class Side, uint32_t kKept>
class BitWindow {
public:
    explicit BitWindow(QVByteStream& stream) : stream_(stream), window_(Side::take(stream)) {}
    QV_WINDOW_INLINE ~BitWindow() { giveBack(); }
    BitWindow(const BitWindow&) = delete;
    BitWindow& operator=(const BitWindow&) = delete;

    // u(n) for n of 1 to 32.
    QV_WINDOW_INLINE uint32_t u(uint32_t n) {
        if (!canHold(n)) {
            const uint32_t value = Side::u(stream_, n);
            take();
            return value;
        }
        return static_cast<uint32_t>(window_.shift(n));
    }

    // A flag as the records hold it.
    QV_WINDOW_INLINE int32_t flag() { return static_cast<int32_t>(u(1)); }

    QV_WINDOW_INLINE uint32_t ue() {
        // Most elements are 0. After a branch the next element need not wait for the length of this one.
        if (window_.bits >> 63 != 0 && holds(1)) {
            window_.shift(1);
            return 0;
        }
        if (!canHoldCode()) {
            const uint32_t value = Side::ue(stream_);
            take();
            return value;
        }
        return ueOf(window_.shift(window_.codeLength()));
    }

    QV_WINDOW_INLINE void take() { window_ = Side::take(stream_); }

    QV_WINDOW_INLINE void giveBack() {
        Side::move(stream_, window_.moved());
        window_ = {0, 0, 0};
    }

protected:
    QV_WINDOW_INLINE bool holds(uint32_t n) const { return n + kKept <= window_.count; }

    // True when the next n bits are whole in the window, if necessary in a new one. When false, the reader's
    // cursor is up to date.
    QV_WINDOW_INLINE bool canHold(uint32_t n) { return holds(n) || refilled().holds(n); }

    // canHold() of the Exp-Golomb code that comes next.
    QV_WINDOW_INLINE bool canHoldCode() { return holdsCode() || refilled().holdsCode(); }

    QV_WINDOW_INLINE bool holdsCode() const { return holds(window_.codeLength()); }

    QV_WINDOW_INLINE BitWindow& refilled() {
        window_ = Side::refill(stream_, window_.moved());
        return *this;
    }

    QVByteStream& stream_;
    WindowBits window_;
};

// The plain cursor.
class PlainWindow : public BitWindow<PlainSide, 0> {
public:
    using BitWindow::BitWindow;

    QV_WINDOW_INLINE int32_t se() {
        if (!canHoldCode()) {
            const int32_t value = PlainSide::se(stream_);
            take();
            return value;
        }
        return seOf(window_.shift(window_.codeLength()));
    }

    // Skips n bits, 63 at most, whole or not at all. Two skips are not one: at the end of the data they
    // differ.
    QV_WINDOW_INLINE void skip(uint32_t n) {
        if (canHold(n)) {
            window_.shift(n);
        } else {
            PlainSide::skip(stream_, n);
            take();
        }
    }
};

// The RBSP cursor. The last bit of a window is left to the reader: after it comes a byte boundary, where an
// emulation prevention byte may follow.
class RbspWindow : public BitWindow<RbspSide, 1> {
public:
    using BitWindow::BitWindow;

    // Reads n bits, as far as there are any, and drops them.
    QV_WINDOW_INLINE void drop(uint32_t n) {
        if (canHold(n)) {
            window_.shift(n);
        } else {
            RbspSide::u(stream_, n);
            take();
        }
    }
};

#undef QV_WINDOW_INLINE

}  // namespace qv_detail

#endif
