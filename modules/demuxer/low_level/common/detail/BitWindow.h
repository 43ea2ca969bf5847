// The cursors of a reader in registers, with the bits that come next: for parsers that read many syntax
// elements in a row. They read exactly as the reader does: what is not whole in the window, the reader reads.
//
// A window has the reader's cursor from its construction or take() until its end or giveBack(); in between
// the reader's own cursor is out of date, and nobody else may move it.
#ifndef QV_DEMUXER_DETAIL_BITWINDOW_H
#define QV_DEMUXER_DETAIL_BITWINDOW_H

#include <cstdint>

#include "QVByteStream.h"

namespace qv_detail {

// Bits of the data, the next one on top and zero bits behind the last. Small enough to be returned in
// registers.
struct WindowBits {
    uint64_t bits;
    uint32_t count;  // of bits that are left; none where there is no window
    uint32_t taken;  // of bits that there were when the reader's cursor stood where it stands
};

// The two cursors: what a window holds at each, how the reader's cursor moves behind the bits that were read
// from the window, and the reads of the reader.
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

// Always inline, and the rest never handed the address of a window: or it would not stay in registers.
#define QV_WINDOW_INLINE [[gnu::always_inline]] inline

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
        return static_cast<uint32_t>(shift(n));
    }

    // A flag as the records hold it.
    QV_WINDOW_INLINE int32_t flag() { return static_cast<int32_t>(u(1)); }

    QV_WINDOW_INLINE uint32_t ue() {
        // Most elements are 0. Told by a branch, the next one need not wait for the length of this one.
        if (window_.bits >> 63 != 0 && holds(1)) {
            shift(1);
            return 0;
        }
        if (!canHoldCode()) {
            const uint32_t value = Side::ue(stream_);
            take();
            return value;
        }
        return static_cast<uint32_t>(shift(codeLength())) - 1;
    }

    QV_WINDOW_INLINE void take() { window_ = Side::take(stream_); }

    QV_WINDOW_INLINE void giveBack() {
        Side::move(stream_, moved());
        window_ = {0, 0, 0};
    }

protected:
    bool holds(uint32_t n) const { return n + kKept <= window_.count; }

    // True when the next n bits are whole in the window, if need be in a new one. After false the reader's
    // cursor stands where the window's does.
    QV_WINDOW_INLINE bool canHold(uint32_t n) { return holds(n) || refilled().holds(n); }

    // canHold() of the Exp-Golomb code that comes next.
    QV_WINDOW_INLINE bool canHoldCode() { return holdsCode() || refilled().holdsCode(); }

    QV_WINDOW_INLINE bool holdsCode() const { return holds(codeLength()); }

    QV_WINDOW_INLINE BitWindow& refilled() {
        window_ = Side::refill(stream_, moved());
        return *this;
    }

    uint32_t moved() const { return window_.taken - window_.count; }

    // Of the Exp-Golomb code that comes next; more than a window holds when its 1 bit is not in sight.
    uint32_t codeLength() const {
        constexpr uint32_t kTooLong = 65;
        return window_.bits != 0 ? 2 * static_cast<uint32_t>(__builtin_clzll(window_.bits)) + 1 : kTooLong;
    }

    // The next n bits, 1 to 63 of them, which the window holds.
    QV_WINDOW_INLINE uint64_t shift(uint32_t n) {
        // The analyser does not know that there are 64 bits at most.
        // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult)
        const uint64_t value = window_.bits >> (64 - n);
        window_.bits <<= n;
        window_.count -= n;
        return value;
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
        const auto code = static_cast<uint32_t>(shift(codeLength()));
        const auto magnitude = static_cast<int32_t>(code >> 1);
        return (code & 1U) != 0 ? -magnitude : magnitude;
    }

    // Skips n bits, 63 at most, whole or not at all. Two skips are not one: at the end of the data they
    // differ.
    QV_WINDOW_INLINE void skip(uint32_t n) {
        if (canHold(n)) {
            shift(n);
        } else {
            PlainSide::skip(stream_, n);
            take();
        }
    }
};

// The RBSP cursor. The last bit of a window is always the reader's to read: with it a byte is left that an
// emulation prevention byte may follow.
class RbspWindow : public BitWindow<RbspSide, 1> {
public:
    using BitWindow::BitWindow;

    // Reads n bits, as far as there are any, and forgets them.
    QV_WINDOW_INLINE void drop(uint32_t n) {
        if (canHold(n)) {
            shift(n);
        } else {
            RbspSide::u(stream_, n);
            take();
        }
    }
};

#undef QV_WINDOW_INLINE

}  // namespace qv_detail

#endif
