// Emulation prevention bytes, dropped and inserted: H.264 7.3.1 and 7.4.1, H.265 7.3.1.1 and 7.4.2.
#include "bitstream/units/Rbsp.h"

#include <algorithm>
#include <cstring>

#include "bitstream/syntax/Bits.h"
#include "bitstream/syntax/EmulationPrevention.h"

namespace qv {

namespace {

constexpr size_t kWordBytes = 8;

// Writes the first bytes of a result, as far as there is room, and counts all of them.
class Output {
public:
    Output(uint8_t* out, size_t capacity) : out_(out), capacity_(capacity) {}

    void append(Bytes bytes) noexcept {
        const size_t room = size_ < capacity_ ? capacity_ - size_ : 0;
        const size_t written = std::min(bytes.size, room);
        if (written > 0) {
            std::memmove(out_ + size_, bytes.data, written);
        }
        size_ += bytes.size;
    }

    void append(uint8_t byte) noexcept { append({&byte, 1}); }

    size_t size() const noexcept { return size_; }

private:
    uint8_t* out_;
    size_t capacity_;
    size_t size_ = 0;
};

// Counts the bytes of a result.
class Count {
public:
    void append(Bytes bytes) noexcept { size_ += bytes.size; }
    void append(uint8_t byte) noexcept {
        static_cast<void>(byte);
        ++size_;
    }
    size_t size() const noexcept { return size_; }

private:
    size_t size_ = 0;
};

// The runs between emulation prevention bytes. Each is searched before it is written: the output may be where
// the unit is.
template <class Sink>
void unescapeTo(Sink& sink, Bytes unit, size_t headerBytes) noexcept {
    size_t begin = 0;
    for (size_t end = findEmulationPrevention(unit, headerBytes, 0); end != unit.size;) {
        const size_t next = findEmulationPrevention(unit, headerBytes, end + 1);
        sink.append({unit.data + begin, end - begin});
        begin = end + 1;
        end = next;
    }
    sink.append({unit.data + begin, unit.size - begin});
}

bool hasZeroByte(uint64_t bytes) noexcept {
    return ((bytes - detail::eightTimes(0x01)) & ~bytes & detail::eightTimes(0x80)) != 0;
}

// The first byte at from or after it that follows zeroBytes zero bytes and needs an emulation prevention byte
// before it; the size when there is none. Counts the zero bytes before that place.
size_t findEmulation(Bytes unit, size_t from, size_t& zeroBytes) noexcept {
    size_t at = from;
    while (at < unit.size) {
        if (zeroBytes == 0 && unit.size - at >= kWordBytes &&
            !hasZeroByte(detail::loadBigEndian64(unit.data + at))) {
            at += kWordBytes;
            continue;
        }
        if (zeroBytes >= 2 && unit[at] <= detail::kGreatestEmulatingByte) {
            return at;
        }
        zeroBytes = unit[at] == 0x00 ? zeroBytes + 1 : 0;
        ++at;
    }
    return unit.size;
}

size_t zeroBytesAtEnd(Bytes bytes) noexcept {
    size_t count = 0;
    while (count < bytes.size && bytes[bytes.size - 1 - count] == 0x00) {
        ++count;
    }
    return count;
}

template <class Sink>
void escapeTo(Sink& sink, Bytes unit, size_t headerBytes) noexcept {
    const Bytes header = unit.first(headerBytes);
    sink.append(header);
    size_t zeroBytes = zeroBytesAtEnd(header);
    for (size_t begin = header.size; begin < unit.size;) {
        const size_t end = findEmulation(unit, begin, zeroBytes);
        sink.append({unit.data + begin, end - begin});
        if (end != unit.size || zeroBytes > 0) {
            sink.append(detail::kEmulationPreventionThreeByte);
            zeroBytes = 0;
        }
        begin = end;
    }
}

}  // namespace

size_t findEmulationPrevention(Bytes unit, size_t headerBytes, size_t from) noexcept {
    const size_t begin = std::max(headerBytes, from);
    if (begin >= unit.size) {
        return unit.size;
    }
    const uint8_t* const found = detail::findEmulationPrevention(unit.data, unit.data + begin, unit.end(),
                                                                 [](const uint8_t*) { return true; });
    return static_cast<size_t>(found - unit.data);
}

size_t unescapedSize(Bytes unit, size_t headerBytes) noexcept {
    Count count;
    unescapeTo(count, unit, headerBytes);
    return count.size();
}

size_t unescape(Bytes unit, size_t headerBytes, uint8_t* out, size_t capacity) noexcept {
    Output output(out, capacity);
    unescapeTo(output, unit, headerBytes);
    return output.size();
}

size_t escapedSize(Bytes unit, size_t headerBytes) noexcept {
    Count count;
    escapeTo(count, unit, headerBytes);
    return count.size();
}

size_t escape(Bytes unit, size_t headerBytes, uint8_t* out, size_t capacity) noexcept {
    Output output(out, capacity);
    escapeTo(output, unit, headerBytes);
    return output.size();
}

// --- Positions ---

RbspPositions::RbspPositions(Bytes unit, size_t headerBytes) noexcept
    : unit_(unit), headerBytes_(headerBytes) {
    restart();
}

RbspPositions::RbspPositions(Bytes unit, size_t codedByte, size_t unescapedByte) noexcept
    : unit_(unit),
      headerBytes_(codedByte),
      firstByte_(codedByte),
      passedBeforeFirst_(codedByte - unescapedByte) {
    restart();
}

void RbspPositions::restart() noexcept {
    begin_ = firstByte_;
    passed_ = passedBeforeFirst_;
    next_ = findEmulationPrevention(unit_, headerBytes_, begin_);
}

void RbspPositions::pass() noexcept {
    begin_ = next_ + 1;
    ++passed_;
    next_ = findEmulationPrevention(unit_, headerBytes_, begin_);
}

size_t RbspPositions::codedByte(size_t unescapedByte) noexcept {
    const size_t byte = std::min(unescapedByte, unit_.size);
    if (byte + passed_ < begin_) {
        restart();
    }
    while (next_ != unit_.size && byte >= next_ - passed_) {
        pass();
    }
    return std::min(byte + passed_, unit_.size);
}

size_t RbspPositions::unescapedByte(size_t codedByte) noexcept {
    const size_t coded = std::min(codedByte, unit_.size);
    if (coded < begin_) {
        restart();
    }
    while (next_ < coded) {
        pass();
    }
    return coded - passed_;
}

uint64_t RbspPositions::codedBit(uint64_t unescapedBit) noexcept {
    return uint64_t{8} * codedByte(static_cast<size_t>(unescapedBit / 8)) + unescapedBit % 8;
}

uint64_t RbspPositions::unescapedBit(uint64_t codedBit) noexcept {
    const auto byte = static_cast<size_t>(codedBit / 8);
    const uint64_t first = uint64_t{8} * unescapedByte(byte);
    return byte == next_ || byte >= unit_.size ? first : first + codedBit % 8;
}

}  // namespace qv
