#include "SeiMessages.h"

namespace qv_test {

namespace {

constexpr unsigned kFfByte = 0xFF;

void putSum(Bytes& out, unsigned sum) {
    for (; sum >= kFfByte; sum -= kFfByte) {
        out.push_back(static_cast<uint8_t>(kFfByte));
    }
    out.push_back(static_cast<uint8_t>(sum));
}

}  // namespace

SeiMessage seiMessage(unsigned payloadType, const Bytes& payload) {
    return {payloadType, static_cast<unsigned>(payload.size()), payload};
}

Bytes seiHeader(unsigned payloadType, unsigned payloadSize) {
    Bytes out;
    putSum(out, payloadType);
    putSum(out, payloadSize);
    return out;
}

Bytes seiMessages(const std::vector<SeiMessage>& messages) {
    Bytes out;
    for (const SeiMessage& message : messages) {
        out = out + seiHeader(message.payloadType, message.payloadSize) + message.payload;
    }
    return out;
}

Bytes seiUnit(const std::vector<SeiMessage>& messages) {
    constexpr uint8_t kTrailingBits = 0x80;
    return withEmulationPrevention(seiMessages(messages) + Bytes{kTrailingBits});
}

Bytes operator+(const Bytes& a, const Bytes& b) {
    Bytes both = a;
    both.insert(both.end(), b.begin(), b.end());
    return both;
}

}  // namespace qv_test
