// The descriptors of the syntax tables over the plain cursor of a reader. Each read is inlined where eight or
// nine bytes are left; otherwise PlainSide reads.
#ifndef QV_DEMUXER_DETAIL_PLAINBITS_H
#define QV_DEMUXER_DETAIL_PLAINBITS_H

#include "detail/BitWindow.h"

namespace qv_detail {

class PlainBits {
public:
    explicit PlainBits(QVByteStream& stream) : stream_(stream) {}

    // u(n); of more than 32 bits the last 32.
    uint32_t u(uint32_t n) {
        if (!hasBytes(8) || n - 1 >= 32) {
            return PlainSide::u(stream_, n);
        }
        const uint64_t bits = readBigEndian64(bytes()) << offset();
        movePlain(stream_, n);
        return static_cast<uint32_t>(bits >> (64 - n));
    }

    uint32_t ue() {
        uint64_t code = 0;
        return takeCode(code) ? ueOf(code) : PlainSide::ue(stream_);
    }

    int32_t se() {
        uint64_t code = 0;
        return takeCode(code) ? seOf(code) : PlainSide::se(stream_);
    }

    // A flag as the records hold it.
    int32_t flag() { return static_cast<int32_t>(u(1)); }

    // Reads n bits, as far as there are any, and drops them.
    void drop(uint32_t n) { u(n); }

    // Skips n bits whole or not at all. Two skips are not one: at the end of the data they differ.
    void skip(uint64_t n) { stream_.skipBits(n); }

private:
    const uint8_t* bytes() const { return stream_.data + stream_.bytePos; }
    uint32_t offset() const { return stream_.bitOffset & 7U; }

    // True when count bytes are left in a buffer that is not null.
    bool hasBytes(uint64_t count) const {
        const uint64_t left = stream_.bytesLeft();
        const bool isPastTheEnd = left > stream_.size;
        if (isPastTheEnd || stream_.data == nullptr) {
            return false;
        }
        return left >= count;
    }

    // Takes the Exp-Golomb code at the cursor if it has at most 31 leading zero bits, as every legal one, and
    // nine bytes are left: the code, 63 bits at most, may end in the ninth. When false, nothing has moved.
    bool takeCode(uint64_t& code) {
        if (!hasBytes(9)) {
            return false;
        }
        const uint32_t ninth = uint32_t{bytes()[8]} << offset() >> 8;
        WindowBits window = {readBigEndian64(bytes()) << offset() | ninth, 64, 64};
        const uint32_t length = window.codeLength();
        if (length > window.count) {
            return false;
        }
        code = window.shift(length);
        movePlain(stream_, length);
        return true;
    }

    QVByteStream& stream_;
};

}  // namespace qv_detail

#endif
