// The descriptors of the H.265 parameter set tables over the RBSP cursor of a reader.
#ifndef QV_DEMUXER_DETAIL_RBSPBITS_H
#define QV_DEMUXER_DETAIL_RBSPBITS_H

#include "QVByteStream.h"

namespace qv_detail {

class RbspBits {
public:
    explicit RbspBits(QVByteStream& stream) : stream_(stream) {}

    uint32_t u(uint32_t n) { return stream_.readRbspBits(n); }

    // A flag as the records hold it.
    int32_t flag() { return static_cast<int32_t>(stream_.readRbspBits(1)); }

    // Reads n bits, as far as there are any, and forgets them.
    void drop(uint32_t n) { stream_.readRbspBits(n); }

    // ue(v), H.265 9.2. Unlike the plain cursor's: a code of 32 zero bits still has its value modulo 2^32,
    // and the value 0 is given up to after 33 of them, with one more bit consumed.
    uint32_t ue() {
        constexpr uint32_t kMostLeadingZeroBits = 32;
        uint32_t leadingZeroBits = 0;
        while (stream_.readRbspBits(1) == 0) {
            if (++leadingZeroBits > kMostLeadingZeroBits) {
                drop(1);
                return 0;
            }
        }
        const uint64_t base = (uint64_t{1} << leadingZeroBits) - 1;
        return static_cast<uint32_t>(base + stream_.readRbspBits(leadingZeroBits));
    }

private:
    QVByteStream& stream_;
};

}  // namespace qv_detail

#endif
