#include "CursorModel.h"

namespace qv_test {

uint32_t CursorModel::readRbspBits(uint64_t n) {
    std::vector<bool> taken;
    for (uint64_t i = 0; i < n; ++i) {
        if (!hasData()) {
            break;
        }
        taken.push_back(bitAt(bytePos_, rbspBitsUsed_));
        if (++rbspBitsUsed_ == 8) {
            rbspBitsUsed_ = 0;
            ++bytePos_;
            if (isEmulationPreventionByte(bytePos_)) {
                ++bytePos_;
            }
        }
    }
    if (n > 32) {
        return 0;
    }
    taken.resize(static_cast<size_t>(n), false);
    uint32_t value = 0;
    for (const bool bit : taken) {
        value = value * 2 + (bit ? 1 : 0);
    }
    return value;
}

// 03 after two zero bytes, neither of which is the first byte of the buffer.
bool CursorModel::isEmulationPreventionByte(uint64_t position) const {
    if (position < 3 || position >= bytes_.size()) {
        return false;
    }
    const auto at = static_cast<size_t>(position);
    return bytes_[at] == 3 && bytes_[at - 1] == 0 && bytes_[at - 2] == 0;
}

void CursorModel::movePlain() {
    const unsigned used = plainBitsUsed_ + 1;
    plainBitsUsed_ = used % 8;
    bytePos_ += used / 8;
}

uint32_t CursorModel::readBit() {
    if (!hasData()) {
        return 0;
    }
    const bool bit = bitAt(bytePos_, plainBitsUsed_);
    movePlain();
    return bit ? 1 : 0;
}

uint32_t CursorModel::readBits(uint32_t n) {
    uint32_t value = 0;
    for (uint32_t i = 0; i < n; ++i) {
        value = value * 2 + readBit();  // past the end this appends the zero bits that are missing
    }
    return value;
}

// The 1 bit and the bits after it, zeros where the data ended; isValid is false for the value 0.
std::vector<bool> CursorModel::takeGolombCode(bool& isValid) {
    isValid = false;
    if (!hasData()) {
        movePlain();
        return {};
    }
    uint64_t zeros = 0;
    while (hasData() && !bitAt(bytePos_, plainBitsUsed_)) {
        movePlain();
        ++zeros;
    }
    if (zeros == 0) {
        movePlain();
        return {};
    }
    if (!hasData()) {
        return {};
    }
    isValid = true;
    std::vector<bool> code;
    for (uint64_t i = 0; i <= zeros; ++i) {
        code.push_back(readBit() != 0);
    }
    return code;
}

uint32_t CursorModel::readGolombUe() {
    bool isValid = false;
    const std::vector<bool> code = takeGolombCode(isValid);
    uint32_t value = 0;
    for (size_t i = 0; i < code.size(); ++i) {
        if (code[i]) {
            value |= uint32_t{1} << (code.size() - 1 - i) % 32;
        }
    }
    return value == 0 ? 0 : value - 1;
}

int32_t CursorModel::readGolombSe() {
    bool isValid = false;
    const std::vector<bool> code = takeGolombCode(isValid);
    if (!isValid) {
        return 0;
    }
    uint32_t magnitude = 0;
    for (size_t i = 0; i + 1 < code.size(); ++i) {
        if (code[i]) {
            magnitude |= uint32_t{1} << (code.size() - 2 - i) % 32;
        }
    }
    return static_cast<int32_t>(code.back() ? ~magnitude + 1 : magnitude);
}

void CursorModel::skipBits(uint64_t n) {
    const uint64_t bits = plainBitsUsed_ + n;
    if (bytePos_ + bits / 8 <= bytes_.size()) {
        bytePos_ += bits / 8;
        plainBitsUsed_ = bits % 8;
    }
}

void CursorModel::skipBytes(uint64_t n) {
    if (!bytes_.empty() && bytePos_ + n <= bytes_.size()) {
        bytePos_ += n;
        plainBitsUsed_ = 0;
    }
}

uint32_t CursorModel::readByte() {
    return hasData() ? bytes_[static_cast<size_t>(bytePos_++)] : 0U;
}

// For distances whose bits an int64_t holds.
void CursorModel::seekBytes(int64_t n) {
    const int64_t bits = int64_t{plainBitsUsed_} + 8 * n;
    const int64_t target = static_cast<int64_t>(bytePos_) + bits / 8;
    if (target >= 0 && target <= static_cast<int64_t>(bytes_.size())) {
        bytePos_ = static_cast<uint64_t>(target);
    }
}

}  // namespace qv_test
