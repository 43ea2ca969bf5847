#include "Units.h"

#include "QVByteStream.h"

namespace qv_bench {

const Bytes& avcSpsUnit() {
    static const Bytes unit = {0x67, 0x64, 0x00, 0x0C, 0xAC, 0xD9, 0x41, 0x41, 0x9F, 0x9D};
    return unit;
}

const Bytes& hevcSpsUnit() {
    static const Bytes unit = {0x42, 0x01, 0x01, 0x02, 0x20, 0x00, 0x00, 0x03, 0x00, 0x90, 0x00, 0x00,
                               0x03, 0x00, 0x00, 0x03, 0x00, 0x3C, 0xA0, 0x0A, 0x08, 0x0B, 0x9F, 0x6D,
                               0x96, 0x56, 0x69, 0x24, 0xCA, 0xF0, 0x16, 0xA1, 0x22, 0x01, 0x20, 0x80,
                               0x00, 0x00, 0x03, 0x00, 0x80, 0x00, 0x00, 0x0C, 0x84};
    return unit;
}

Bytes seiRbsp() {
    Bytes rbsp = {0x05, 0xFF, 0xFF, static_cast<unsigned char>(kSeiPayload - 2 * 255)};
    for (unsigned i = 0; i < kSeiPayload; ++i) {
        rbsp.push_back(static_cast<unsigned char>(7 * i + 1));
    }
    rbsp.push_back(0x80);
    return rbsp;
}

Bytes emulated(size_t size, size_t distance) {
    Bytes coded(size, 0x55);
    for (size_t at = 8; at + 3 < coded.size(); at += distance) {
        coded[at] = 0x00;
        coded[at + 1] = 0x00;
        coded[at + 2] = 0x03;
    }
    return coded;
}

Bytes golombCodes(int count, int leadingZeroBits) {
    std::vector<bool> bits;
    for (int i = 0; i < count; ++i) {
        bits.insert(bits.end(), static_cast<size_t>(leadingZeroBits), false);
        bits.push_back(true);
        bits.insert(bits.end(), static_cast<size_t>(leadingZeroBits), true);
    }
    Bytes bytes(bits.size() / 8 + 1);
    for (size_t i = 0; i < bits.size(); ++i) {
        bytes[i / 8] = static_cast<unsigned char>(bytes[i / 8] | (bits[i] ? 0x80 >> i % 8 : 0));
    }
    return bytes;
}

void rewind(QVByteStream& stream) {
    stream.bytePos = 0;
    stream.bitOffset = 0;
    stream.rbspBitIndex = 7;
}

}  // namespace qv_bench
