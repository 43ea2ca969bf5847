// A payload that ends at any bit of a byte.
#ifndef QV_TESTS_BITSTREAM_PAYLOADOFBITS_H
#define QV_TESTS_BITSTREAM_PAYLOADOFBITS_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"

namespace qv::sei {

// 3 bits, and as many as they say.
struct PayloadOfBits {
    static constexpr PayloadTypes kPayloadTypes = {190, 190};
    uint32_t width;
    uint32_t value;
};

}  // namespace qv::sei

#endif
