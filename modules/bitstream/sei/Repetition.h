// The range of the repetition periods of H.264 messages.
#ifndef QV_BITSTREAM_SEI_REPETITION_H
#define QV_BITSTREAM_SEI_REPETITION_H

#include <cstdint>

namespace qv::sei {

// The greatest repetition period of a message, H.264 D.2.
constexpr uint32_t kMostRepetitionPeriod = 16384;

}  // namespace qv::sei

#endif
