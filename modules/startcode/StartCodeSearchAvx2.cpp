// The start-code search with AVX2. Compiled with -mavx2 and called only on machines that have it.
#include <immintrin.h>

#include "startcode/StartCodeKernel.h"
#include "startcode/StartCodeSearch.h"

namespace qv_detail {
inline namespace QV_START_CODES_OF {

namespace {

struct Avx2 {
    static constexpr size_t kWidth = 32;

    static bool mayHold(const unsigned char* aligned) {
        const auto* const vectors = reinterpret_cast<const __m256i*>(aligned);
        const __m256i mask = _mm256_set1_epi16(static_cast<short>(0xFEFF));
        const __m256i least = _mm256_min_epu16(_mm256_and_si256(leastBytesOfFour(vectors), mask),
                                               _mm256_and_si256(leastBytesOfFour(vectors + 4), mask));
        const __m256i hits = _mm256_cmpeq_epi16(least, _mm256_setzero_si256());
        return _mm256_testz_si256(hits, hits) == 0;
    }

    static __m256i leastBytesOfFour(const __m256i* vectors) {
        return _mm256_min_epu8(
            _mm256_min_epu8(_mm256_load_si256(vectors), _mm256_load_si256(vectors + 1)),
            _mm256_min_epu8(_mm256_load_si256(vectors + 2), _mm256_load_si256(vectors + 3)));
    }

    static uint32_t matches(const unsigned char* p) {
        const __m256i first = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
        const __m256i second = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 1));
        const __m256i third = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 2));
        const __m256i rest =
            _mm256_or_si256(_mm256_or_si256(first, second), _mm256_xor_si256(third, _mm256_set1_epi8(1)));
        return static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(rest, _mm256_setzero_si256())));
    }

    static size_t placeOf(uint32_t matches) { return static_cast<size_t>(__builtin_ctz(matches)); }
};

}  // namespace

bool holdsUnitAvx2(const unsigned char* data, size_t end, const UnitTypes& types) {
    return holdsUnitOf<Avx2>(data, end, types);
}

size_t listPrefixesAvx2(const unsigned char* data, size_t from, size_t end, size_t* places, size_t most) {
    return listPrefixesOf<Avx2>(data, from, end, places, most);
}

}  // namespace QV_START_CODES_OF
}  // namespace qv_detail
