// The reader's window, its end and its faults.
#include "bitstream/syntax/Reader.h"

#include <cstring>

#include "bitstream/syntax/EmulationPrevention.h"
#include "bitstream/syntax/Uses.h"

namespace qv {

namespace {

constexpr size_t kWindowBytes = 8;

// The first bits of a window, 0 to 64, with zeros after them.
uint64_t firstBits(uint64_t bits, uint64_t count) noexcept {
    return count != 0 ? bits & ~uint64_t{0} << (64 - count) : 0;
}

// The end of the last byte of [begin, end) that is not zero: cabac_zero_words, the emulation prevention byte
// that ends a unit after one (H.264 7.4.1, H.265 7.4.2.1), and trailing_zero_8bits are past it.
const uint8_t* endOfStopBit(const uint8_t* unit, const uint8_t* begin, const uint8_t* end) noexcept {
    for (;;) {
        while (end != begin && end[-1] == 0x00) {
            --end;
        }
        if (end == begin || !detail::isEmulationPrevention(unit, static_cast<size_t>(end - 1 - unit))) {
            return end;
        }
        --end;
    }
}

}  // namespace

void detail::setToZero(void* bytes, size_t size) noexcept {
    std::memset(bytes, 0, size);
}

Reader::Reader(const CodedBits& bits) noexcept : Reader(bits.unit) {
    next_ += bits.byte;
    // NOLINTNEXTLINE(cppcoreguidelines-prefer-member-initializer): the other constructor comes first
    loaded_ = bits.firstBit - bits.bitOfByte;
    rbsp();
    if (bits.bitOfByte != 0) {
        refill(bits.bitOfByte);
        take(bits.bitOfByte);
    }
}

void Reader::header(uint32_t bytes) noexcept {
    for (; bytes > 0 && next_ != end_; --bytes) {
        bits_ |= uint64_t{*next_++} << (56 - count_);
        count_ += 8;
        loaded_ += 8;
    }
}

void Reader::rbsp() noexcept {
    end_ = endOfStopBit(begin_, next_, end_);
    tail_ = next_ != end_ ? detail::trailingZeroBits(end_[-1]) + 1 : 0;
}

bool Reader::isEmulationPrevention(const uint8_t* byte) const noexcept {
    return detail::isEmulationPrevention(begin_, static_cast<size_t>(byte - begin_));
}

// The eight bytes at next_, the first one on top, with zero bytes in place of those past the end.
uint64_t Reader::nextBytes() const noexcept {
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
    bits_ |= bytes >> count_;
    count_ += 8 * taken;
    bits_ &= ~uint64_t{0} << (64 - count_);
    loaded_ += 8 * taken;
    next_ += taken;
}

// Adds to the window, which has room for a byte at least, what fits of the next eight bytes, without the
// emulation prevention bytes among them. That is nothing when the data ends with one.
void Reader::addBytes() noexcept {
    uint64_t bytes = nextBytes();
    const auto left = static_cast<uint64_t>(end_ - next_);
    const uint64_t coded = left < kWindowBytes ? left : kWindowBytes;
    const uint64_t room = (64 - count_) / 8;
    uint64_t taken = room < coded ? room : coded;
    uint64_t passed = 0;
    for (uint64_t candidates = detail::bytesOf03(bytes); candidates != 0;) {
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

// Fills the window, which holds fewer bits than are wanted, to those, 57 at most, or with what is left.
void Reader::refill(uint64_t wanted) noexcept {
    // Mostly the data goes on after the next eight bytes, and they hold no byte to step over.
    if (bytesInReach() > kWindowBytes) {
        const uint64_t bytes = detail::loadBigEndian64(next_);
        if (detail::bytesOf03(bytes) == 0) {
            append(bytes, (64 - count_) / 8);
            return;
        }
    }
    refillToEnd(wanted);
}

// As above, over emulation prevention bytes and up to the end of the data.
void Reader::refillToEnd(uint64_t wanted) noexcept {
    if (next_ == end_) {
        return;
    }
    do {
        addBytes();
    } while (count_ < wanted && next_ != end_);
    endOfWindow();
}

// The window that holds the last byte ends before the rbsp_stop_one_bit.
void Reader::endOfWindow() noexcept {
    if (next_ == end_ && tail_ != 0) {
        count_ -= tail_;
        loaded_ -= tail_;
        bits_ = firstBits(bits_, count_);
    }
}

// A code that a full window does not hold: it is longer than any window, or ends with the data.
// cppcheck-suppress passedByValue ; made for the call
uint32_t Reader::longCodeNum(Element element) noexcept {
    const uint64_t firstBit = position();
    const uint32_t leadingZeroBits =
        bits_ != 0 ? detail::leadingZeroBits(bits_) : static_cast<uint32_t>(count_);
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
    if (count_ < most) {
        refill(most);
    }
    return count_ < most ? static_cast<uint32_t>(count_) : most;
}

// Where the next bit is in the coded bytes: the window's bytes are counted back, over emulation prevention
// bytes.
CodedBits Reader::mark() const noexcept {
    CodedBits mark;
    mark.unit = {begin_, static_cast<size_t>(unitEnd_ - begin_)};
    mark.firstBit = position();
    const bool holdsLastByte = next_ == end_ && tail_ != 0;
    const uint64_t bitsBack = count_ + (holdsLastByte ? tail_ : 0);
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
    bits.count = fault_ ? 0 : position() - first.firstBit;
    return bits;
}

Trailing Reader::trailing() noexcept {
    Trailing trailing;
    if (fault_) {
        return trailing;
    }
    trailing.bytes = {end_, static_cast<size_t>(unitEnd_ - end_)};
    if (!more_rbsp_data()) {
        return trailing;
    }
    const uint64_t first = position();
    while (more_rbsp_data()) {
        take(bitsInReach(32));
    }
    trailing.bits = position() - first;
    return trailing;
}

// --- Faults ---

// From here on there is no data: every read finds an empty window and nothing to fill it with.
void Reader::stop() noexcept {
    bits_ = 0;
    loaded_ -= count_;
    count_ = 0;
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
