#include "SyntaxElements.h"

#include <algorithm>
#include <stdexcept>

namespace qv_test {

namespace {

const BitWriter::Element& elementOf(const BitWriter& syntax, const std::string& name) {
    const auto& elements = syntax.elements();
    const auto found = std::find_if(elements.begin(), elements.end(),
                                    [&](const BitWriter::Element& e) { return e.name == name; });
    if (found == elements.end()) {
        throw std::logic_error("no element " + name + " in\n" + syntax.map());
    }
    return *found;
}

}  // namespace

std::string indexed(const std::string& name, size_t index) {
    return name + "[" + std::to_string(index) + "]";
}

size_t startOf(const BitWriter& syntax, const std::string& element) {
    return elementOf(syntax, element).position;
}

size_t endOf(const BitWriter& syntax, const std::string& element) {
    const BitWriter::Element& found = elementOf(syntax, element);
    return found.position + found.width;
}

BitWriter bitsBefore(const BitWriter& syntax, const std::string& element) {
    const size_t end = startOf(syntax, element);
    const Bytes bytes = syntax.bytes();
    BitWriter before;
    for (size_t bit = 0; bit < end; ++bit) {
        before.u(1, "", static_cast<uint64_t>(bytes[bit / 8] >> (7 - bit % 8) & 1));
    }
    return before;
}

unsigned ElementCutter::take(unsigned width) {
    const auto taken = static_cast<unsigned>(std::min<size_t>(width, bitsLeft_));
    bitsLeft_ -= taken;
    return taken;
}

uint64_t ElementCutter::cutCodeNum(uint64_t codeNum) {
    unsigned leadingZeroBits = 0;
    while ((codeNum + 1) >> leadingZeroBits > 1) {
        ++leadingZeroBits;
    }
    const unsigned width = 2 * leadingZeroBits + 1;
    const unsigned missing = width - take(width);
    return missing > leadingZeroBits ? 0 : ((codeNum + 1) >> missing << missing) - 1;
}

void ElementCutter::ue(const std::string&, uint32_t& value) {
    value = static_cast<uint32_t>(cutCodeNum(value));
}

// Table 9-3 of H.264: positive values are the odd code numbers.
void ElementCutter::se(const std::string&, int32_t& value) {
    const int64_t wide = value;
    const auto codeNum =
        static_cast<int64_t>(cutCodeNum(static_cast<uint64_t>(wide > 0 ? 2 * wide - 1 : -2 * wide)));
    value = static_cast<int32_t>(codeNum % 2 == 1 ? (codeNum + 1) / 2 : -(codeNum / 2));
}

}  // namespace qv_test
