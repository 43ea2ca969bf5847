// SEI units from their messages.
#ifndef QV_TESTS_BITSTREAM_SEIUNITS_H
#define QV_TESTS_BITSTREAM_SEIUNITS_H

#include <cstdint>
#include <vector>

#include "CodedUnit.h"
#include "bitstream/Codec.h"

namespace qv_test {

inline std::vector<uint8_t> seiHeaderOf(qv::Codec codec) {
    return codec == qv::Codec::Avc ? std::vector<uint8_t>{0x06} : std::vector<uint8_t>{0x4E, 0x01};
}

// payloadType or payloadSize.
inline void appendSeiNumber(std::vector<uint8_t>& rbsp, uint64_t number) {
    for (; number >= 255; number -= 255) {
        rbsp.push_back(0xFF);
    }
    rbsp.push_back(static_cast<uint8_t>(number));
}

inline void appendSeiMessage(std::vector<uint8_t>& rbsp, uint64_t payloadType,
                             const std::vector<uint8_t>& payload) {
    appendSeiNumber(rbsp, payloadType);
    appendSeiNumber(rbsp, payload.size());
    rbsp.insert(rbsp.end(), payload.begin(), payload.end());
}

// A unit of messages, with rbsp_trailing_bits() and emulation prevention bytes.
inline std::vector<uint8_t> seiUnitOf(qv::Codec codec, std::vector<uint8_t> messages) {
    messages.push_back(0x80);
    return coded(seiHeaderOf(codec), messages);
}

// A unit of one message.
inline std::vector<uint8_t> seiUnitOf(qv::Codec codec, uint64_t payloadType,
                                      const std::vector<uint8_t>& payload) {
    std::vector<uint8_t> messages;
    appendSeiMessage(messages, payloadType, payload);
    return seiUnitOf(codec, messages);
}

}  // namespace qv_test

#endif
