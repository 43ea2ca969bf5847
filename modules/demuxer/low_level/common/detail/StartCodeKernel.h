// The vector search for start_code_prefix_one_3bytes, for the sources that bring the vectors. Everything has
// internal linkage and uses nothing inline from outside: each source is compiled for its own instruction set.
//
// A prefix 00 00 01 always puts the byte pair 00 00 or 00 01 on an even 16-bit lane, wherever it begins. So
// one look at eight vectors tells that they hold no prefix; only where such a pair was seen is each place
// compared.
#ifndef QV_DEMUXER_DETAIL_STARTCODEKERNEL_H
#define QV_DEMUXER_DETAIL_STARTCODEKERNEL_H

#include <cstddef>
#include <cstdint>

namespace qv_detail {
namespace {

// Vector: kWidth; mayHold(aligned), true when the eight vectors there hold such a lane; firstMatch(p), the
// first of the kWidth places at p where a prefix begins, or kWidth. It reads kWidth + 2 bytes.
//
// Returns the first prefix that begins in [from, end), or end. Reads up to end + 2.
template <class Vector>
size_t searchPrefix(const unsigned char* data, size_t from, size_t end) {
    constexpr size_t kWidth = Vector::kWidth;
    constexpr size_t kBlock = 8 * kWidth;
    size_t at = from;
    if (end - at >= kBlock + kWidth) {
        const size_t match = Vector::firstMatch(data + at);
        if (match < kWidth) {
            return at + match;
        }
        at += kWidth - (reinterpret_cast<uintptr_t>(data + at) & (kWidth - 1));
        for (; end - at >= kBlock; at += kBlock) {
            if (!Vector::mayHold(data + at)) {
                continue;
            }
            // A prefix that begins on the last byte of a block shows in the block behind it.
            for (size_t place = at - 1; place < at - 1 + kBlock; place += kWidth) {
                const size_t found = Vector::firstMatch(data + place);
                if (found < kWidth) {
                    return place + found;
                }
            }
        }
        --at;
    }
    for (; end - at >= kWidth; at += kWidth) {
        const size_t match = Vector::firstMatch(data + at);
        if (match < kWidth) {
            return at + match;
        }
    }
    for (; at < end; ++at) {
        if (data[at] == 0x00 && data[at + 1] == 0x00 && data[at + 2] == 0x01) {
            return at;
        }
    }
    return end;
}

}  // namespace
}  // namespace qv_detail

#endif
