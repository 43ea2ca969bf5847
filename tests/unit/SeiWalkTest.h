// Shared by the tests of the walks over H.264 and H.265 SEI units.
#ifndef QV_TESTS_SEIWALKTEST_H
#define QV_TESTS_SEIWALKTEST_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "QVNaluParser.h"
#include "SeiMessages.h"
#include "SeiTest.h"

namespace qv_test {

inline ExpectedLine truncation(int type, int size, int left) {
    return {1, "parserPayloadParams",
            "parserPayloadParams SEI type " + std::to_string(type) + " size " + std::to_string(size) +
                " truncated at " + std::to_string(left) + "\n"};
}

// --- H.264 ---

inline const Bytes kUserData = {0x11, 0x22};
inline const KeptItem kKeptUserData = {26, 5, false, kUserData};

inline SeiMessage userData() {
    return seiMessage(5, kUserData);
}

// recovery_point() with this count and all flags 0.
inline Bytes recoveryPoint(uint32_t recovery_frame_cnt) {
    return BitWriter()
        .ue("recovery_frame_cnt", recovery_frame_cnt)
        .u(4, "flags and changing_slice_group_idc", 0)
        .alignZero()
        .bytes();
}

inline ExpectedLine badRecovery(unsigned recovery_frame_cnt) {
    return {0, "parserAvcRecoveryPoint",
            "parserAvcSeiRecoveryPoint: recovery_frame_cnt(" + std::to_string(recovery_frame_cnt) +
                ") is out of range.\n"};
}

class SeiWalkAvc : public SeiTest {
protected:
    // unit is the SEI unit without its NAL unit header.
    int walk(const Bytes& unit, const Requested& requested = {}, QVAvcSps* sps = nullptr) {
        return QVNaluParser::parserAvcDataToSei(unit.data(), sizeOf(unit), items, sps, requested);
    }
};

// --- H.265 ---

constexpr int kPrefix = 39;
constexpr int kSuffix = 40;

inline const Bytes kPayload = {0x80, 0x00, 0xFF};

// Bytes with different values, enough for every parser.
inline Bytes countingBytes(uint8_t first, size_t size = 80) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<uint8_t>(i == 0 ? first : 0x40 + i);
    }
    return bytes;
}

// A call of a dispatcher, and the position of the stream before and after it.
struct PositionCase {
    const char* name;
    int payloadType;
    int payloadSize;
    Bytes bytes;
    Cursor start;
    Cursor expected;
};

class SeiWalkHevc : public SeiTest {
protected:
    // unit is the SEI unit without its NAL unit header.
    int walk(int naluType, const Bytes& unit, const Requested& requested = {}) {
        return QVNaluParser::parserHevcDataToSei(naluType, unit.data(), sizeOf(unit), items, nullptr,
                                                 requested);
    }

    int prefix(QVByteStream& stream, int payloadType, int payloadSize, const Requested& requested = {}) {
        return QVNaluParser::parserHevcSeiPrefix(stream, payloadType, payloadSize, items, nullptr, requested);
    }

    int suffix(QVByteStream& stream, int payloadType, int payloadSize, const Requested& requested = {}) {
        return QVNaluParser::parserHevcSeiSuffix(stream, payloadType, payloadSize, items, nullptr, requested);
    }
};

}  // namespace qv_test

#endif
