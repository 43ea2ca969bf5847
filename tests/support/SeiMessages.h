// SEI messages as coded: sei_rbsp() and sei_message(), H.264 7.3.2.3 and H.265 7.3.2.4.
#ifndef QV_TESTS_SEIMESSAGES_H
#define QV_TESTS_SEIMESSAGES_H

#include <vector>

#include "BitWriter.h"

namespace qv_test {

struct SeiMessage {
    unsigned payloadType;
    unsigned payloadSize;  // as coded, whatever payload holds
    Bytes payload;         // without emulation prevention
};

// The message with that payload and its size.
SeiMessage seiMessage(unsigned payloadType, const Bytes& payload);

// payloadType and payloadSize as ff_bytes and a last byte each.
Bytes seiHeader(unsigned payloadType, unsigned payloadSize);

// The messages in sequence, without trailing bits and without emulation prevention.
Bytes seiMessages(const std::vector<SeiMessage>& messages);

// The bytes of an SEI unit after the NAL unit header: the messages and rbsp_trailing_bits(), with emulation
// prevention.
Bytes seiUnit(const std::vector<SeiMessage>& messages);

Bytes operator+(const Bytes& a, const Bytes& b);

}  // namespace qv_test

#endif
