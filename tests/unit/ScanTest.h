// Shared by the tests of the framing scans.
#ifndef QV_TESTS_SCANTEST_H
#define QV_TESTS_SCANTEST_H

#include <climits>
#include <cstdint>
#include <tuple>
#include <vector>

#include "QVNaluParser.h"
#include "ReferenceFraming.h"

namespace qv_test {

using Info = QVNaluParser::NaluInfo;

// The fields naluType, offset, length and isNonReference.
using Typed = std::tuple<uint32_t, int, int, bool>;

inline std::vector<Typed> typed(const std::vector<Info>& infos) {
    std::vector<Typed> rows;
    for (const Info& info : infos) {
        rows.emplace_back(info.naluType, info.offset, info.length, info.isNonReference);
    }
    return rows;
}

inline Bytes filled(size_t size, uint8_t byte = 0xAA) {
    return Bytes(size, byte);
}

constexpr Info kStale = {99, 98, 97, true};

// Pairs of a list that is not empty.
inline const NalIndexList kCallersPairs = {{7, 70}, {9, 90}};

// Sizes that mean no data.
constexpr int kNoSizes[] = {0, -1, -4, INT_MIN};

// Values of codecId that the library does not support.
constexpr unsigned kUnsupportedCodecs[] = {0, 1, 25, 27, 171, 173, 0x1A00, 0x8000001A, 0xFFFFFFFF};

}  // namespace qv_test

#endif
