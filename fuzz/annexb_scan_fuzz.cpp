// Compares the start-code scan and the typing of its units with the slow reference.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "QVNaluParser.h"
#include "ReferenceFraming.h"

namespace {

bool isSame(const QVNaluParser::NaluInfo& a, const QVNaluParser::NaluInfo& b) {
    return a.naluType == b.naluType && a.offset == b.offset && a.length == b.length &&
           a.isNonReference == b.isNonReference;
}

void checkTyping(const qv_fuzz::ExactBlock& data, const qv_test::Bytes& copy,
                 const qv_test::NalIndexList& nalus) {
    for (const uint32_t codec : {26U, 172U, 0U}) {
        std::vector<QVNaluParser::NaluInfo> infos;
        FUZZ_CHECK(QVNaluParser::parseNalusToNaluType(data.data(), nalus, infos,
                                                      static_cast<QVCodecID>(codec)) == QVResultOk);
        const auto expected = qv_test::referenceTyping(copy, nalus, codec);
        FUZZ_CHECK(infos.size() == expected.size());
        for (size_t i = 0; i < infos.size(); ++i) {
            FUZZ_CHECK(isSame(infos[i], expected[i]));
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    qv_fuzz::FuzzInput input(bytes, size);
    qv_test::NalIndexList nalus;
    const bool isFilled = input.byte() % 4 == 0;
    if (isFilled) {
        nalus.emplace_back(0, 0);  // a list that is not empty: the scan sets the length of its last pair
    }
    qv_test::NalIndexList expected = nalus;
    const qv_fuzz::ExactBlock data = input.rest();
    const qv_test::Bytes copy = input.restAsVector();

    FUZZ_CHECK(QVNaluParser::isAnnexBData(data.data(), data.size()) == qv_test::referenceIsAnnexB(copy));
    FUZZ_CHECK(QVNaluParser::parserDataToNaluIdx(data.data(), data.size(), nalus) ==
               qv_test::referenceAnnexBScan(copy, expected));
    FUZZ_CHECK(nalus == expected);
    if (!isFilled) {
        checkTyping(data, copy, nalus);
    }
    return 0;
}
