// The start-code search by instruction set: what every machine of the architecture has without asking, AVX2
// where the machine says that it has it, and bytes where nothing else is known.
#include "detail/StartCodeSearch.h"

#if defined(QV_WITHOUT_VECTORS)
// Bytes alone.
#elif defined(__SSE2__)
#include <emmintrin.h>

#include "detail/StartCodeKernel.h"
#elif defined(__aarch64__) && !defined(__AARCH64EB__)
#include <arm_neon.h>

#include "detail/StartCodeKernel.h"
#endif

namespace qv_detail {

namespace {

#if defined(QV_WITHOUT_VECTORS)
// Bytes alone.
#elif defined(__SSE2__)

struct Sse2 {
    static constexpr size_t kWidth = 16;

    // The mask lets pairs 00 80 and 00 81 through as well: without its top bit a lane is never negative, and
    // the signed minimum, the only one that SSE2 has for 16 bits, folds the vectors.
    static bool mayHold(const unsigned char* aligned) {
        const auto* const vectors = reinterpret_cast<const __m128i*>(aligned);
        const __m128i mask = _mm_set1_epi16(0x7EFF);
        __m128i least = _mm_and_si128(_mm_load_si128(vectors), mask);
        for (int i = 1; i < 8; ++i) {
            least = _mm_min_epi16(least, _mm_and_si128(_mm_load_si128(vectors + i), mask));
        }
        return _mm_movemask_epi8(_mm_cmpeq_epi16(least, _mm_setzero_si128())) != 0;
    }

    static size_t firstMatch(const unsigned char* p) {
        const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 1));
        const __m128i third = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 2));
        const __m128i rest =
            _mm_or_si128(_mm_or_si128(first, second), _mm_xor_si128(third, _mm_set1_epi8(1)));
        const int matches = _mm_movemask_epi8(_mm_cmpeq_epi8(rest, _mm_setzero_si128()));
        return matches != 0 ? static_cast<size_t>(__builtin_ctz(static_cast<unsigned>(matches))) : kWidth;
    }
};

using Baseline = Sse2;
#define QV_WITH_VECTORS 1

#elif defined(__aarch64__) && !defined(__AARCH64EB__)

struct Neon {
    static constexpr size_t kWidth = 16;

    static bool mayHold(const unsigned char* aligned) {
        const uint16x8_t mask = vdupq_n_u16(0xFEFF);
        uint16x8_t least = vandq_u16(vreinterpretq_u16_u8(vld1q_u8(aligned)), mask);
        for (size_t i = 1; i < 8; ++i) {
            const uint16x8_t lanes = vreinterpretq_u16_u8(vld1q_u8(aligned + i * kWidth));
            least = vminq_u16(least, vandq_u16(lanes, mask));
        }
        return vminvq_u16(least) == 0;
    }

    static size_t firstMatch(const unsigned char* p) {
        const uint8x16_t third = veorq_u8(vld1q_u8(p + 2), vdupq_n_u8(1));
        const uint8x16_t rest = vorrq_u8(vorrq_u8(vld1q_u8(p), vld1q_u8(p + 1)), third);
        return vminvq_u8(rest) == 0 ? findPrefixBytewise(p, 0, kWidth) : kWidth;
    }
};

using Baseline = Neon;
#define QV_WITH_VECTORS 1

#endif

using Search = size_t (*)(const unsigned char* data, size_t from, size_t end);

Search widestSearch() {
#if defined(QV_WITH_AVX2)
    if (__builtin_cpu_supports("avx2") != 0) {
        return &findPrefixAvx2;
    }
#endif
#if defined(QV_WITH_VECTORS)
    return &searchPrefix<Baseline>;
#else
    return &findPrefixBytewise;
#endif
}

}  // namespace

size_t findPrefixWide(const unsigned char* data, size_t from, size_t end) {
    static const Search search = widestSearch();
    return search(data, from, end);
}

}  // namespace qv_detail
