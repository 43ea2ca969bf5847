// SEI units with random messages, whole and damaged, and what SEI units are made of.
#ifndef QV_TESTS_BITSTREAM_RANDOMSEI_H
#define QV_TESTS_BITSTREAM_RANDOMSEI_H

#include <cstdint>
#include <random>

#include "BitWriter.h"
#include "bitstream/Codec.h"

namespace qv_test {

using SeiRandom = std::mt19937_64;

// The header of an SEI unit: of H.265 a prefix SEI unit.
inline Bytes seiHeader(qv::Codec codec) {
    return codec == qv::Codec::Avc ? Bytes{0x06} : Bytes{0x4E, 0x01};
}

inline void appendSeiNumber(Bytes& bytes, uint64_t value) {
    for (; value >= 255; value -= 255) {
        bytes.push_back(0xFF);
    }
    bytes.push_back(static_cast<uint8_t>(value));
}

inline void appendSeiMessage(Bytes& rbsp, uint64_t payloadType, const Bytes& payload) {
    appendSeiNumber(rbsp, payloadType);
    appendSeiNumber(rbsp, payload.size());
    rbsp.insert(rbsp.end(), payload.begin(), payload.end());
}

// Bytes that matter to the syntax more often than others.
inline uint8_t randomSeiByte(SeiRandom& random) {
    constexpr uint8_t kBytes[] = {0x00, 0x00, 0x00, 0x00, 0x01, 0x02, 0x03, 0x03, 0x05, 0x80, 0x80, 0xFF};
    const uint64_t choice = random() % (sizeof kBytes + 3);
    return choice < sizeof kBytes ? kBytes[choice] : static_cast<uint8_t>(random());
}

inline Bytes randomSeiPayload(SeiRandom& random) {
    Bytes payload(random() % 12);
    for (uint8_t& byte : payload) {
        byte = randomSeiByte(random);
    }
    return payload;
}

inline uint64_t randomSeiType(SeiRandom& random) {
    return random() % 4 == 0 ? random() % 600 : random() % 6;
}

// A unit of up to four messages with trailing bits, in one of two cases; otherwise any bytes after a header.
inline Bytes randomSeiUnit(SeiRandom& random, qv::Codec codec) {
    Bytes unit = seiHeader(codec);
    if (random() % 2 == 0) {
        for (uint64_t left = random() % 5; left > 0; --left) {
            const Bytes payload = randomSeiPayload(random);
            appendSeiMessage(unit, randomSeiType(random), payload);
        }
        unit.push_back(0x80);
        unit.insert(unit.end(), random() % 3 == 0 ? 2 : 0, 0x00);
        return withEmulationPrevention(unit);
    }
    for (uint64_t left = random() % 30; left > 0; --left) {
        unit.push_back(randomSeiByte(random));
    }
    return unit;
}

}  // namespace qv_test

#endif
