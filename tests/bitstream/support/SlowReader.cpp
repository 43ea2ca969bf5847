#include "SlowReader.h"

#include <algorithm>

namespace qv_test {

SlowReader::SlowReader(const std::vector<uint8_t>& unit, size_t headerBytes) {
    const size_t header = std::min(headerBytes, unit.size());
    for (size_t i = 0; i < header; ++i) {
        append(unit[i], i);
    }
    for (size_t i = header; i < unit.size(); ++i) {
        if (i >= 2 && unit[i] == 0x03 && unit[i - 1] == 0x00 && unit[i - 2] == 0x00) {
            continue;
        }
        append(unit[i], i);
    }
    trailingOffset_ = header;
    endByte_ = header;
    dropTrailingBits(8 * header);
}

void SlowReader::append(uint8_t byte, size_t offset) {
    for (uint32_t bit = 0; bit < 8; ++bit) {
        bits_.push_back({(byte >> (7 - bit) & 1) != 0, offset, bit});
    }
}

void SlowReader::dropTrailingBits(size_t headerBits) {
    while (bits_.size() > headerBits) {
        const Bit last = bits_.back();
        bits_.pop_back();
        if (last.value) {
            trailingOffset_ = last.byte + 1;
            endByte_ = last.byte;
            endBit_ = last.bitOfByte;
            return;
        }
    }
}

size_t SlowReader::byte() const {
    return next_ < bits_.size() ? bits_[next_].byte : endByte_;
}

uint32_t SlowReader::bitOfByte() const {
    return next_ < bits_.size() ? bits_[next_].bitOfByte : endBit_;
}

void SlowReader::fail(qv::FaultKind kind) {
    if (!failed()) {
        kind_ = kind;
        faultBit_ = elementBit_;
    }
}

uint64_t SlowReader::take(uint64_t n) {
    uint64_t value = 0;
    for (uint64_t i = 0; i < n; ++i) {
        value = value * 2 + (bits_[next_++].value ? 1 : 0);
    }
    return value;
}

uint64_t SlowReader::u(uint32_t n) {
    elementBit_ = next_;
    if (failed()) {
        return 0;
    }
    if (bitsLeft() < n) {
        fail(qv::FaultKind::EndOfData);
        return 0;
    }
    return take(n);
}

int64_t SlowReader::i(uint32_t n) {
    const auto value = static_cast<int64_t>(u(n));
    return value < int64_t{1} << (n - 1) ? value : value - (int64_t{1} << n);
}

uint32_t SlowReader::ue() {
    elementBit_ = next_;
    if (failed()) {
        return 0;
    }
    uint64_t zeroBits = 0;
    while (next_ + zeroBits < bits_.size() && !bits_[next_ + zeroBits].value) {
        ++zeroBits;
    }
    if (zeroBits > 31) {
        fail(qv::FaultKind::CodeTooLong);
        return 0;
    }
    if (bitsLeft() < 2 * zeroBits + 1) {
        fail(qv::FaultKind::EndOfData);
        return 0;
    }
    next_ += zeroBits;
    return static_cast<uint32_t>(take(zeroBits + 1) - 1);
}

// H.264 Table 9-3, H.265 Table 9-3.
int32_t SlowReader::se() {
    const int64_t k = ue();
    return static_cast<int32_t>(k % 2 == 1 ? (k + 1) / 2 : -(k / 2));
}

int64_t SlowReader::inRange(int64_t value, int64_t least, int64_t most) {
    if (value < least || value > most) {
        fail(qv::FaultKind::OutOfRange);
        return 0;
    }
    return value;
}

}  // namespace qv_test
