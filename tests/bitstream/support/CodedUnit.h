// NAL units from RBSP bytes.
#ifndef QV_TESTS_BITSTREAM_CODEDUNIT_H
#define QV_TESTS_BITSTREAM_CODEDUNIT_H

#include <cstdint>
#include <vector>

namespace qv_test {

// A unit of its header and an RBSP, with emulation prevention bytes.
inline std::vector<uint8_t> coded(std::vector<uint8_t> header, const std::vector<uint8_t>& rbsp) {
    int zeros = 0;
    for (const uint8_t byte : rbsp) {
        if (zeros == 2 && byte <= 3) {
            header.push_back(3);
            zeros = 0;
        }
        header.push_back(byte);
        zeros = byte == 0 ? zeros + 1 : 0;
    }
    return header;
}

}  // namespace qv_test

#endif
