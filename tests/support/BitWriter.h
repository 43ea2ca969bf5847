// Writes syntax elements as coded and remembers the position of each.
#ifndef QV_TESTS_BITWRITER_H
#define QV_TESTS_BITWRITER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qv_test {

using Bytes = std::vector<uint8_t>;

class BitWriter {
public:
    struct Element {
        std::string name;
        size_t position;  // in bits
        size_t width;     // in bits
        std::string value;
    };

    // u(width): the low width bits of value, most significant first. width up to 64.
    BitWriter& u(unsigned width, const std::string& name, uint64_t value);

    // ue(v), H.264 9.1: codeNum up to 2^32 - 2.
    BitWriter& ue(const std::string& name, uint32_t codeNum);

    // se(v), H.264 9.1.1.
    BitWriter& se(const std::string& name, int32_t value);

    // Bits as written, e.g. "0010 1"; blanks do not count.
    BitWriter& bits(const std::string& name, const std::string& pattern);

    // rbsp_trailing_bits(): a 1 bit and zero bits up to the next byte.
    BitWriter& trailingBits();

    // Zero bits up to the next byte, if there are any.
    BitWriter& alignZero();

    size_t bitCount() const { return bits_.size(); }

    // The bits so far, the last byte filled up with zero bits.
    Bytes bytes() const;

    // The first bitCount bits, the last byte filled up with zero bits.
    Bytes bytesCutAt(size_t bitCount) const;

    const std::vector<Element>& elements() const { return elements_; }

    // One line an element: position, width, name, value. For SCOPED_TRACE.
    std::string map() const;

private:
    void put(uint64_t value, unsigned width);
    void note(const std::string& name, size_t position, const std::string& value);

    std::vector<bool> bits_;
    std::vector<Element> elements_;
};

// Inserts emulation_prevention_three_byte as H.264/H.265 7.4.1 demand.
Bytes withEmulationPrevention(const Bytes& rbsp);

}  // namespace qv_test

#endif
