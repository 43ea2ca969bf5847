// NAL units from RBSP bytes.
#ifndef QV_TESTS_BITSTREAM_CODEDUNIT_H
#define QV_TESTS_BITSTREAM_CODEDUNIT_H

#include <cstdint>
#include <vector>

#include "BitWriter.h"

namespace qv_test {

// A unit of its header and an RBSP, with emulation prevention bytes.
inline std::vector<uint8_t> coded(std::vector<uint8_t> header, const std::vector<uint8_t>& rbsp) {
    const std::vector<uint8_t> escaped = withEmulationPrevention(rbsp);
    header.insert(header.end(), escaped.begin(), escaped.end());
    return header;
}

}  // namespace qv_test

#endif
