// Compares both conversions with the slow references. A conversion and its inverse must preserve the units.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "QVCoreStandalone.h"
#include "QVNaluParser.h"
#include "ReferenceFraming.h"

namespace {

using qv_test::Bytes;

struct Free {
    void operator()(unsigned char* memory) const { qvFree(memory); }
};

// Returns the output of connvertAvcCToAnnexB, or no bytes if it fails.
Bytes toAnnexB(const qv_fuzz::ExactBlock& data, int lengthSize, int& result) {
    unsigned char* out = nullptr;
    int size = -1;
    result = QVNaluParser::connvertAvcCToAnnexB(data.data(), data.size(), lengthSize, &out, size);
    const std::unique_ptr<unsigned char, Free> owner(out);
    FUZZ_CHECK((result == QVResultOk) == (out != nullptr));
    return out != nullptr ? Bytes(out, out + size) : Bytes();
}

std::vector<Bytes> unitsOf(const Bytes& data, const qv_test::NalIndexList& nalus) {
    std::vector<Bytes> units;
    for (const auto& [offset, length] : nalus) {
        units.emplace_back(data.begin() + offset, data.begin() + offset + length);
    }
    return units;
}

void checkToLengths(const qv_fuzz::ExactBlock& data, const Bytes& copy, uint8_t capacity) {
    std::vector<unsigned char> out(3, 0xAA);
    out.reserve(capacity);
    Bytes expected = out;
    const int result = QVNaluParser::converAnnexBToAvcC(data.data(), data.size(), out);
    FUZZ_CHECK(result == qv_test::referenceAnnexBToLengths(copy, expected));
    FUZZ_CHECK(out == expected);
    if (result != QVResultOk) {
        return;
    }
    int back = 0;
    const Bytes again = toAnnexB(qv_fuzz::ExactBlock(out.data(), out.size()), 4, back);
    FUZZ_CHECK(back == QVResultOk);
    qv_test::NalIndexList before;
    qv_test::referenceAnnexBScan(copy, before);
    std::vector<Bytes> units;  // each unit must be unchanged after its new 4-byte start code
    size_t at = 0;
    for (const Bytes& unit : unitsOf(copy, before)) {
        FUZZ_CHECK(at + 4 + unit.size() <= again.size());
        FUZZ_CHECK(std::equal(unit.begin(), unit.end(), again.begin() + static_cast<std::ptrdiff_t>(at + 4)));
        at += 4 + unit.size();
    }
    FUZZ_CHECK(at == again.size());
}

void checkToAnnexB(const qv_fuzz::ExactBlock& data, const Bytes& copy, int lengthSize) {
    Bytes expected;
    const int expectedResult = qv_test::referenceLengthsToAnnexB(copy, lengthSize, expected);
    int result = 0;
    const Bytes out = toAnnexB(data, lengthSize, result);
    FUZZ_CHECK(result == expectedResult);
    FUZZ_CHECK(out == expected);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    qv_fuzz::FuzzInput input(bytes, size);
    const int lengthSize = input.byte() % 6;
    const uint8_t capacity = input.byte();
    const qv_fuzz::ExactBlock data = input.rest();
    const Bytes copy = input.restAsVector();
    checkToLengths(data, copy, capacity);
    checkToAnnexB(data, copy, lengthSize);
    return 0;
}
