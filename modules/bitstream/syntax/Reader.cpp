// The reader's window, its end and its faults.
#include "bitstream/syntax/Reader.h"

#include <cstring>

#include "bitstream/syntax/EmulationPrevention.h"
#include "bitstream/syntax/Uses.h"

namespace qv {

namespace {

constexpr size_t kWindowBytes = 8;

}  // namespace

void detail::setToZero(void* bytes, size_t size) noexcept {
    std::memset(bytes, 0, size);
}

Reader::Reader(const CodedBits& bits) noexcept : Reader(bits.unit) {
    next_ += bits.byte < bits.unit.size ? bits.byte : bits.unit.size;
    // NOLINTBEGIN(cppcoreguidelines-prefer-member-initializer): the other constructor comes first
    loaded_ = bits.firstBit - bits.bitOfByte;
    tail_ = (8 - (bits.bitOfByte + bits.count) % 8) % 8;
    // NOLINTEND(cppcoreguidelines-prefer-member-initializer)
    take(bitsInReach(bits.bitOfByte % 8));
}

void Reader::rbsp() noexcept {
    end_ = detail::endOfStopBit(begin_, next_, end_);
    tail_ = next_ != end_ ? detail::trailingZeroBits(end_[-1]) + 1 : 0;
}

QV_ALWAYS_INLINE bool Reader::isEmulationPrevention(const uint8_t* byte) const noexcept {
    return detail::isEmulationPrevention(begin_, static_cast<size_t>(byte - begin_));
}

// The eight bytes at next_, the first one on top, with zero bytes in place of those past the end.
QV_ALWAYS_INLINE uint64_t Reader::nextBytes() const noexcept {
    const auto left = static_cast<size_t>(end_ - next_);
    if (left >= kWindowBytes) {
        return detail::loadBigEndian64(next_);
    }
    if (static_cast<size_t>(end_ - begin_) >= kWindowBytes) {
        return detail::loadBigEndian64(end_ - kWindowBytes) << 8 * (kWindowBytes - left);
    }
    // A unit of less than eight bytes: most picture parameter sets and all delimiters.
    constexpr size_t kHalf = 4;
    if (left >= kHalf) {
        const uint64_t first = detail::loadBigEndian32(next_);
        const uint64_t last = detail::loadBigEndian32(end_ - kHalf);
        return first << 32 | last << (64 - 8 * left);
    }
    uint64_t bytes = 0;
    for (size_t i = 0; i < left; ++i) {
        bytes |= uint64_t{next_[i]} << (56 - 8 * i);
    }
    return bytes;
}

// Adds the first bytes of eight, at least one, to the window, which has room for them.
QV_ALWAYS_INLINE void Reader::append(uint64_t bytes, uint64_t taken) noexcept {
    const uint64_t end = uint64_t{1} << (room() - 8 * taken);
    bits_ = ((bits_ & (bits_ - 1)) | bytes >> count() | end) & (~end + 1);
    loaded_ += 8 * taken;
    next_ += taken;
}

// The window that holds the last byte ends before the bits of that byte that are not data.
QV_ALWAYS_INLINE void Reader::endOfWindow() noexcept {
    if (next_ == end_ && tail_ != 0) {
        const uint64_t end = (bits_ & (~bits_ + 1)) << tail_;
        bits_ = (bits_ & (~end + 1)) | end;
        loaded_ -= tail_;
    }
}

void Reader::header(uint32_t bytes) noexcept {
    uint64_t window = bits_;
    const uint8_t* byte = next_;
    for (; bytes > 0 && byte != end_; --bytes) {
        // The byte and the 1 bit after it take the place of the 1 bit after the window.
        const uint64_t end = window & (~window + 1);
        window += (end >> 8) * (2 * uint64_t{*byte++} + 1) - end;
    }
    bits_ = window;
    loaded_ += 8 * static_cast<uint64_t>(byte - next_);
    next_ = byte;
}

// Fills the window, which holds fewer bits than are wanted, to those, 56 at most, or with what is left.
void Reader::refill(uint64_t wanted) noexcept {
    const uint64_t left = bytesInReach();
    if (left == 0) {
        return;
    }
    const uint64_t bytes = nextBytes();
    const uint64_t candidates = detail::bytesOf03(bytes);
    if (candidates != 0) {
        refillOverEmulationPrevention(wanted, bytes, candidates);
        return;
    }
    const uint64_t fitting = room() / 8;
    append(bytes, fitting < left ? fitting : left);
    endOfWindow();
}

// Adds to the window, which has room for a byte at least, what fits of the next eight bytes, without the
// emulation prevention bytes among their candidates. That is nothing when the data ends with one.
QV_ALWAYS_INLINE void Reader::appendWithoutEmulationPrevention(uint64_t bytes, uint64_t candidates) noexcept {
    const uint64_t left = bytesInReach();
    const uint64_t coded = left < kWindowBytes ? left : kWindowBytes;
    const uint64_t fitting = room() / 8;
    uint64_t taken = fitting < coded ? fitting : coded;
    uint64_t passed = 0;
    while (candidates != 0) {
        const uint64_t position = detail::leadingZeroBits(candidates) / 8;
        candidates &= ~(detail::kTopByte >> 8 * position);
        if (position > taken + passed) {
            break;
        }
        if (isEmulationPrevention(next_ + position)) {
            // The bytes that were passed come before this one.
            // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult)
            const uint64_t before = ~(~uint64_t{0} >> 8 * (position - passed));
            bytes = (bytes & before) | (bytes << 8 & ~before);
            ++passed;
            taken = taken + passed > coded ? coded - passed : taken;
        }
    }
    if (taken != 0) {
        append(bytes, taken);
    }
    next_ += passed;
}

// As refill(), where the next eight bytes have candidates for emulation prevention bytes.
void Reader::refillOverEmulationPrevention(uint64_t wanted, uint64_t bytes, uint64_t candidates) noexcept {
    appendWithoutEmulationPrevention(bytes, candidates);
    while (count() < wanted && next_ != end_) {
        const uint64_t more = nextBytes();
        appendWithoutEmulationPrevention(more, detail::bytesOf03(more));
    }
    endOfWindow();
}

// A code that a full window does not hold: it is longer than any window, or ends with the data.
// cppcheck-suppress passedByValue ; made for the call
uint32_t Reader::longCodeNum(Element element) noexcept {
    const uint64_t firstBit = position();
    const uint32_t leadingZeroBits = detail::leadingZeroBits(bits_);
    if (leadingZeroBits > kMostLeadingZeroBits) {
        fault(FaultKind::CodeTooLong, element, firstBit);
        return 0;
    }
    take(leadingZeroBits);
    if (bitsInReach(leadingZeroBits + 1) < leadingZeroBits + 1) {
        fault(FaultKind::EndOfData, element, firstBit);
        return 0;
    }
    return static_cast<uint32_t>(take(leadingZeroBits + 1)) - 1;
}

void Reader::extension_data(const char* name, CodedBits& bits) noexcept {
    keep(bits, [name](Reader& reader) {
        while (reader.more_rbsp_data()) {
            uint32_t flags = 0;
            reader.u(reader.bitsInReach(32), name, flags);
        }
    });
}

uint32_t Reader::bitsInReach(uint32_t most) noexcept {
    if (!holds(most)) {
        refill(most);
    }
    return holds(most) ? most : static_cast<uint32_t>(count());
}

// Where the next bit is in the coded bytes: the window's bytes are counted back, over emulation prevention
// bytes.
CodedBits Reader::mark() const noexcept {
    CodedBits mark;
    mark.unit = {begin_, static_cast<size_t>(unitEnd_ - begin_)};
    mark.firstBit = position();
    const bool holdsLastByte = next_ == end_ && tail_ != 0;
    const uint64_t bitsBack = count() + (holdsLastByte ? tail_ : 0);
    const uint8_t* byte = next_;
    for (uint64_t bytesBack = (bitsBack + 7) / 8; bytesBack > 0; --bytesBack) {
        --byte;
        if (isEmulationPrevention(byte)) {
            --byte;
        }
    }
    if (byte != end_ && isEmulationPrevention(byte)) {
        ++byte;
    }
    mark.byte = static_cast<size_t>(byte - begin_);
    mark.bitOfByte = static_cast<uint32_t>((8 - bitsBack % 8) % 8);
    return mark;
}

CodedBits Reader::until(const CodedBits& first) const noexcept {
    CodedBits bits = first;
    const CodedBits end = fault_ ? first : mark();
    bits.count = end.firstBit - first.firstBit;
    bits.unit.size = end.byte + (end.bitOfByte != 0 ? 1 : 0);
    return bits;
}

// Passes over everything that is left, emulation prevention bytes counted a word at a time.
void Reader::passRest(CodedBits& bits) noexcept {
    const CodedBits first = mark();
    if (next_ != end_) {
        loaded_ += 8 * (bytesInReach() - detail::countEmulationPrevention(begin_, next_, end_)) - tail_;
        next_ = end_;
    }
    bits_ = kNoBits;
    // The window is empty: what it held is before the position.
    bits = until(first);
}

uint64_t Reader::bitsBeforeLastOne() const noexcept {
    Reader rest = *this;
    const uint64_t first = position();
    uint64_t lastOne = first;
    while (const uint32_t n = rest.bitsInReach(32)) {
        if (const uint64_t value = rest.take(n)) {
            lastOne = rest.position() - 1 - detail::trailingZeroBits(value);
        }
    }
    return lastOne - first;
}

void Reader::payload_extension(const char* name, CodedBits& bits) noexcept {
    keep(bits, [name](Reader& reader) {
        for (uint64_t left = reader.bitsBeforeLastOne(); left > 0;) {
            const auto n = static_cast<uint32_t>(left < 32 ? left : 32);
            uint32_t value = 0;
            reader.u(n, name, value);
            left -= n;
        }
    });
}

uint64_t Reader::countOfBitsLeft() noexcept {
    const uint64_t first = position();
    while (more_rbsp_data()) {
        take(bitsInReach(32));
    }
    return position() - first;
}

// --- Faults ---

// From here on there is no data: every read finds an empty window and nothing to fill it with.
void Reader::stop() noexcept {
    loaded_ -= count();
    bits_ = kNoBits;
    tail_ = 0;
    next_ = end_;
}

void Reader::fault(FaultKind kind, const Element& element, uint64_t firstBit) noexcept {
    if (!fault_) {
        fault_.kind = kind;
        fault_.element = element;
        fault_.structure = structure_;
        fault_.firstBit = firstBit;
    }
    stop();
}

void Reader::fail(FaultKind kind, const char* name, int64_t value) noexcept {
    if (!fault_) {
        fault_.value = value;
    }
    fault(kind, detail::elementOf(name), position());
}

void Reader::fail(const Fault& fault) noexcept {
    if (!fault_) {
        fault_ = fault;
    }
    stop();
}

// cppcheck-suppress passedByValue ; made for the call
void Reader::endOfData(Element element) noexcept {
    fault(FaultKind::EndOfData, element, position());
}

// cppcheck-suppress passedByValue ; made for the call
void Reader::outOfRange(Element element, uint32_t width, int64_t value, int64_t least,
                        int64_t most) noexcept {
    if (!fault_) {
        fault_.value = value;
        fault_.least = least;
        fault_.most = most;
    }
    fault(FaultKind::OutOfRange, element, position() - width);
}

}  // namespace qv
