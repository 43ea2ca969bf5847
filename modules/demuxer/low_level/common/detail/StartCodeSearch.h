// The search for start_code_prefix_one_3bytes, ITU-T H.264 (08/2021) and H.265 (08/2021) B.1.1.
#ifndef QV_DEMUXER_DETAIL_STARTCODESEARCH_H
#define QV_DEMUXER_DETAIL_STARTCODESEARCH_H

#include <cstddef>

namespace qv_detail {

// As findPrefix, with the widest vectors that the machine has.
size_t findPrefixWide(const unsigned char* data, size_t from, size_t end);

#if defined(QV_WITH_AVX2)
size_t findPrefixAvx2(const unsigned char* data, size_t from, size_t end);
#endif

// Byte by byte, by the third byte of each place: anything above 01 there rules out three places at once.
inline size_t findPrefixBytewise(const unsigned char* data, size_t from, size_t end) {
    for (size_t place = from; place < end;) {
        const unsigned char third = data[place + 2];
        if (third > 0x01) {
            place += 3;
        } else if (third == 0x00) {
            place += 1;
        } else if (data[place] == 0x00 && data[place + 1] == 0x00) {
            return place;
        } else {
            place += 3;
        }
    }
    return end;
}

// The first prefix that begins in [from, end), or end. The two bytes at end and end + 1 have to be readable.
inline size_t findPrefix(const unsigned char* data, size_t from, size_t end) {
    // Parameter sets and other small units end within a few bytes: those are found without a call.
    constexpr size_t kNear = 16;
    if (end - from <= kNear) {
        return findPrefixBytewise(data, from, end);
    }
    const size_t found = findPrefixBytewise(data, from, from + kNear);
    return found < from + kNear ? found : findPrefixWide(data, from + kNear, end);
}

}  // namespace qv_detail

#endif
