// The search for start_code_prefix_one_3bytes, ITU-T H.264 (08/2021) B.1.1 and H.265 (08/2021) B.2.1, with
// the widest vectors that the machine has.
//
// A prefix at place p and the byte after it belong together: the next prefix begins at p + 4 or later. The
// three bytes at end, end + 1 and end + 2 must be readable.
#ifndef QV_STARTCODE_STARTCODESEARCH_H
#define QV_STARTCODE_STARTCODESEARCH_H

#include <cstddef>
#include <cstdint>

// The library that compiles this in. Its name keeps its copy of the functions apart from those of other
// libraries.
#ifndef QV_START_CODES_OF
#define QV_START_CODES_OF library
#endif

namespace qv_detail {
inline namespace QV_START_CODES_OF {

// A set of types of a codec, taken from the first byte of a unit: type t is in it when bit t of set is 1.
struct UnitTypes {
    uint64_t set;
    uint32_t shift;  // of the type in the first byte
    uint32_t mask;   // of the type after the shift, 63 at most
};

// True when a prefix that begins in [0, end) is followed by a unit of one of the types.
bool holdsUnit(const unsigned char* data, size_t end, const UnitTypes& types);

// Lists the first most prefixes that begin in [from, end), most being 1 at least. Returns their number: when
// there are fewer than most, all of [from, end) was searched.
size_t listPrefixes(const unsigned char* data, size_t from, size_t end, size_t* places, size_t most);

#if defined(QV_WITH_AVX2)
bool holdsUnitAvx2(const unsigned char* data, size_t end, const UnitTypes& types);
size_t listPrefixesAvx2(const unsigned char* data, size_t from, size_t end, size_t* places, size_t most);
#endif

}  // namespace QV_START_CODES_OF
}  // namespace qv_detail

#endif
