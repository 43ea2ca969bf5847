// A reader of one NAL unit that works on a list of single bits: slow, obvious, and sharing no code with the
// library.
#ifndef QV_TESTS_BITSTREAM_SLOWREADER_H
#define QV_TESTS_BITSTREAM_SLOWREADER_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "bitstream/Read.h"

namespace qv_test {

class SlowReader {
public:
    SlowReader(const std::vector<uint8_t>& unit, size_t headerBytes);

    // Each reads 0 once the reader has failed.
    uint64_t u(uint32_t n);
    int64_t i(uint32_t n);
    uint32_t ue();
    int32_t se();

    // Makes the element that was read last a fault, when the value is not in the range. Returns the value
    // that the record holds.
    int64_t inRange(int64_t value, int64_t least, int64_t most);

    bool more_rbsp_data() const { return !failed() && next_ < bits_.size(); }
    uint64_t position() const { return next_; }

    // Where the next bit is in the coded unit.
    size_t byte() const;
    uint32_t bitOfByte() const;

    // Coded bytes up to the one that holds the rbsp_stop_one_bit, which is counted.
    size_t trailingOffset() const { return trailingOffset_; }
    uint64_t bitsLeft() const { return bits_.size() - next_; }

    bool failed() const { return kind_ != qv::FaultKind::None; }
    qv::FaultKind kind() const { return kind_; }
    uint64_t faultBit() const { return faultBit_; }

private:
    struct Bit {
        bool value;
        size_t byte;
        uint32_t bitOfByte;
    };

    void append(uint8_t byte, size_t offset);
    void dropTrailingBits(size_t headerBits);
    uint64_t take(uint64_t n);
    void fail(qv::FaultKind kind);

    std::vector<Bit> bits_;
    size_t trailingOffset_;
    size_t endByte_;  // where the next bit is when there is none
    uint32_t endBit_ = 0;
    uint64_t next_ = 0;
    uint64_t elementBit_ = 0;
    qv::FaultKind kind_ = qv::FaultKind::None;
    uint64_t faultBit_ = 0;
};

}  // namespace qv_test

#endif
