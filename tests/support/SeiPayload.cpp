#include "SeiPayload.h"

namespace qv_test {

Cursor atBit(uint64_t bits) {
    return {bits / 8, static_cast<unsigned>(bits % 8), kRbspMark};
}

}  // namespace qv_test
