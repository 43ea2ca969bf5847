// The two uses of the elements of a syntax table, in the table's order: write them, or find the values that
// remain of them when the data ends early.
#ifndef QV_TESTS_SYNTAXELEMENTS_H
#define QV_TESTS_SYNTAXELEMENTS_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "BitWriter.h"

namespace qv_test {

// "name[index]"
std::string indexed(const std::string& name, size_t index);

// The position of the element, which is in the writer, and of the one after it.
size_t startOf(const BitWriter& syntax, const std::string& element);
size_t endOf(const BitWriter& syntax, const std::string& element);

// The elements before an element, without their names.
BitWriter bitsBefore(const BitWriter& syntax, const std::string& element);

class ElementWriter {
public:
    template <class Value>
    void u(unsigned width, const std::string& name, const Value& value) {
        out_.u(width, name, value);
    }
    void ue(const std::string& name, const uint32_t& value) { out_.ue(name, value); }
    void se(const std::string& name, const int32_t& value) { out_.se(name, value); }
    void trailingBits() { out_.trailingBits(); }

    const BitWriter& written() const { return out_; }

private:
    BitWriter out_;
};

// Keeps the first bitCount bits. Every later bit is 0, and an Exp-Golomb code whose 1 bit is later has the
// value 0.
class ElementCutter {
public:
    explicit ElementCutter(size_t bitCount) : bitsLeft_(bitCount) {}

    template <class Value>
    void u(unsigned width, const std::string&, Value& value) {
        const unsigned missing = width - take(width);
        value = missing < width ? static_cast<Value>(value >> missing << missing) : Value{0};
    }
    void ue(const std::string& name, uint32_t& value);
    void se(const std::string& name, int32_t& value);
    void trailingBits() {}

private:
    // As many of the next width bits as are left.
    unsigned take(unsigned width);
    uint64_t cutCodeNum(uint64_t codeNum);

    size_t bitsLeft_;
};

}  // namespace qv_test

#endif
