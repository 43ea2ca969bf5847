// The start-code search by instruction set: the vectors that every machine of the architecture has, AVX2
// where the machine reports it, and single bytes on other architectures.
#include "startcode/StartCodeSearch.h"

#include "startcode/StartCodeKernel.h"

#if defined(QV_WITHOUT_VECTORS)
// Bytes only.
#elif defined(__SSE2__)
#include <emmintrin.h>
#elif defined(__aarch64__) && !defined(__AARCH64EB__)
#include <arm_neon.h>
#endif

namespace qv_detail {
inline namespace QV_START_CODES_OF {

namespace {

#if defined(QV_WITHOUT_VECTORS)

using Baseline = Bytes;

#elif defined(__SSE2__)

struct Sse2 {
    static constexpr size_t kWidth = 16;

    // The mask lets the pairs 00 80 and 00 81 pass too: without its top bit a lane is never negative, so that
    // the signed minimum, the only one that SSE2 has for 16 bits, can fold the vectors.
    static bool mayHold(const unsigned char* aligned) {
        const auto* const vectors = reinterpret_cast<const __m128i*>(aligned);
        const __m128i mask = _mm_set1_epi16(0x7EFF);
        const __m128i least = _mm_min_epi16(_mm_and_si128(leastBytesOfFour(vectors), mask),
                                            _mm_and_si128(leastBytesOfFour(vectors + 4), mask));
        return _mm_movemask_epi8(_mm_cmpeq_epi16(least, _mm_setzero_si128())) != 0;
    }

    static __m128i leastBytesOfFour(const __m128i* vectors) {
        return _mm_min_epu8(_mm_min_epu8(_mm_load_si128(vectors), _mm_load_si128(vectors + 1)),
                            _mm_min_epu8(_mm_load_si128(vectors + 2), _mm_load_si128(vectors + 3)));
    }

    static uint32_t matches(const unsigned char* p) {
        const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 1));
        const __m128i third = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 2));
        const __m128i rest =
            _mm_or_si128(_mm_or_si128(first, second), _mm_xor_si128(third, _mm_set1_epi8(1)));
        return static_cast<uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(rest, _mm_setzero_si128())));
    }

    static size_t placeOf(uint32_t matches) { return static_cast<size_t>(__builtin_ctz(matches)); }
};

using Baseline = Sse2;

#elif defined(__aarch64__) && !defined(__AARCH64EB__)

struct Neon {
    static constexpr size_t kWidth = 16;

    static bool mayHold(const unsigned char* aligned) {
        const uint16x8_t mask = vdupq_n_u16(0xFEFF);
        return vminvq_u16(vminq_u16(vandq_u16(leastBytesOfFour(aligned), mask),
                                    vandq_u16(leastBytesOfFour(aligned + 4 * kWidth), mask))) == 0;
    }

    static uint16x8_t leastBytesOfFour(const unsigned char* bytes) {
        return vreinterpretq_u16_u8(
            vminq_u8(vminq_u8(vld1q_u8(bytes), vld1q_u8(bytes + kWidth)),
                     vminq_u8(vld1q_u8(bytes + 2 * kWidth), vld1q_u8(bytes + 3 * kWidth))));
    }

    // One bit of four for each place.
    static uint64_t matches(const unsigned char* p) {
        const uint8x16_t third = veorq_u8(vld1q_u8(p + 2), vdupq_n_u8(1));
        const uint8x16_t rest = vorrq_u8(vorrq_u8(vld1q_u8(p), vld1q_u8(p + 1)), third);
        const uint16x8_t equal = vreinterpretq_u16_u8(vceqzq_u8(rest));
        return vget_lane_u64(vreinterpret_u64_u8(vshrn_n_u16(equal, 4)), 0) & 0x1111111111111111;
    }

    static size_t placeOf(uint64_t matches) { return static_cast<size_t>(__builtin_ctzll(matches)) / 4; }
};

using Baseline = Neon;

#else

using Baseline = Bytes;

#endif

#if defined(QV_WITH_AVX2)
bool hasAvx2() {
    return __builtin_cpu_supports("avx2") != 0;
}
#endif

}  // namespace

bool holdsUnit(const unsigned char* data, size_t end, const UnitTypes& types) {
#if defined(QV_WITH_AVX2)
    if (hasAvx2()) {
        return holdsUnitAvx2(data, end, types);
    }
#endif
    return holdsUnitOf<Baseline>(data, end, types);
}

size_t listPrefixes(const unsigned char* data, size_t from, size_t end, size_t* places, size_t most) {
#if defined(QV_WITH_AVX2)
    if (hasAvx2()) {
        return listPrefixesAvx2(data, from, end, places, most);
    }
#endif
    return listPrefixesOf<Baseline>(data, from, end, places, most);
}

}  // namespace QV_START_CODES_OF
}  // namespace qv_detail
