// The two cursors of the bit reader, modelled on a row of bits and on absolute bit positions: slow, obvious,
// and sharing no arithmetic with the reader.
#ifndef QV_TESTS_CURSORMODEL_H
#define QV_TESTS_CURSORMODEL_H

#include <cstdint>

#include "BitWriter.h"

namespace qv_test {

class CursorModel {
public:
    explicit CursorModel(const Bytes& bytes) : bytes_(bytes) {}

    uint32_t readRbspBits(uint64_t n);
    uint32_t readBit();
    uint32_t readBits(uint32_t n);
    uint32_t readGolombUe();
    int32_t readGolombSe();
    void skipBits(uint64_t n);
    void skipBytes(uint64_t n);
    uint32_t readByte();
    void seekBytes(int64_t n);

    uint64_t bytePos() const { return bytePos_; }
    unsigned plainBitsUsed() const { return plainBitsUsed_; }
    unsigned rbspBitsUsed() const { return rbspBitsUsed_; }

private:
    bool bitAt(uint64_t byte, unsigned bitsUsed) const {
        return (bytes_[static_cast<size_t>(byte)] << bitsUsed & 0x80) != 0;
    }
    bool hasData() const { return bytePos_ < bytes_.size(); }
    bool isEmulationPreventionByte(uint64_t position) const;
    void movePlain();
    std::vector<bool> takeGolombCode(bool& isValid);

    Bytes bytes_;
    uint64_t bytePos_ = 0;
    unsigned plainBitsUsed_ = 0;
    unsigned rbspBitsUsed_ = 0;
};

}  // namespace qv_test

#endif
