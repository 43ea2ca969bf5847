#include "BitWriter.h"

#include <algorithm>

namespace qv_test {

namespace {

unsigned bitLength(uint64_t value) {
    unsigned length = 0;
    for (; value != 0; value >>= 1) {
        ++length;
    }
    return length;
}

}  // namespace

void BitWriter::put(uint64_t value, unsigned width) {
    for (unsigned i = width; i > 0; --i) {
        bits_.push_back((value >> (i - 1) & 1U) != 0);
    }
}

void BitWriter::note(const std::string& name, size_t position, const std::string& value) {
    elements_.push_back({name, position, bits_.size() - position, value});
}

BitWriter& BitWriter::u(unsigned width, const std::string& name, uint64_t value) {
    const size_t position = bits_.size();
    put(value, width);
    note(name, position, std::to_string(value));
    return *this;
}

BitWriter& BitWriter::ue(const std::string& name, uint32_t codeNum) {
    const size_t position = bits_.size();
    const uint64_t coded = uint64_t{codeNum} + 1;
    const unsigned length = bitLength(coded);
    put(0, length - 1);
    put(coded, length);
    note(name, position, std::to_string(codeNum));
    return *this;
}

BitWriter& BitWriter::se(const std::string& name, int32_t value) {
    const size_t position = bits_.size();
    const int64_t wide = value;
    const uint64_t codeNum =
        wide > 0 ? static_cast<uint64_t>(2 * wide - 1) : static_cast<uint64_t>(-2 * wide);
    const unsigned length = bitLength(codeNum + 1);
    put(0, length - 1);
    put(codeNum + 1, length);
    note(name, position, std::to_string(value));
    return *this;
}

BitWriter& BitWriter::bits(const std::string& name, const std::string& pattern) {
    const size_t position = bits_.size();
    for (const char c : pattern) {
        if (c == '0' || c == '1') {
            bits_.push_back(c == '1');
        }
    }
    note(name, position, pattern);
    return *this;
}

BitWriter& BitWriter::trailingBits() {
    u(1, "rbsp_stop_one_bit", 1);
    return alignZero();
}

BitWriter& BitWriter::alignZero() {
    const auto missing = static_cast<unsigned>((8 - bits_.size() % 8) % 8);
    return missing > 0 ? u(missing, "alignment_zero_bits", 0) : *this;
}

Bytes BitWriter::bytes() const {
    return bytesCutAt(bits_.size());
}

Bytes BitWriter::bytesCutAt(size_t bitCount) const {
    const size_t count = std::min(bitCount, bits_.size());
    Bytes packed((count + 7) / 8);
    for (size_t i = 0; i < count; ++i) {
        if (bits_[i]) {
            packed[i / 8] = static_cast<uint8_t>(packed[i / 8] | 0x80U >> i % 8);
        }
    }
    return packed;
}

std::string BitWriter::map() const {
    std::string text;
    for (const Element& element : elements_) {
        text += std::to_string(element.position) + " +" + std::to_string(element.width) + " " + element.name +
                " = " + element.value + "\n";
    }
    return text;
}

Bytes withEmulationPrevention(const Bytes& rbsp) {
    Bytes coded;
    int zeros = 0;
    for (const uint8_t byte : rbsp) {
        if (zeros >= 2 && byte <= 0x03) {
            coded.push_back(0x03);
            zeros = 0;
        }
        coded.push_back(byte);
        zeros = byte == 0x00 ? zeros + 1 : 0;
    }
    return coded;
}

}  // namespace qv_test
