// Compares the length-prefixed scan with the slow reference, for every valid length size and some invalid
// ones.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "QVNaluParser.h"
#include "ReferenceFraming.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    qv_fuzz::FuzzInput input(bytes, size);
    const int lengthSize = input.byte() % 6;
    const qv_fuzz::ExactBlock data = input.rest();

    qv_test::NalIndexList nalus;
    FUZZ_CHECK(QVNaluParser::parserDataToNalus(data.data(), data.size(), nalus, lengthSize) == QVResultOk);
    FUZZ_CHECK(nalus == qv_test::referenceLengthScan(input.restAsVector(), lengthSize).nalus);

    const QVCodecParameters params{lengthSize % 2 == 0 ? QVCodecIDAvc : QVCodecIDHevc, 0,
                                   static_cast<uint8_t>(lengthSize)};
    std::vector<QVNaluParser::NaluInfo> infos;
    FUZZ_CHECK(QVNaluParser::parserDataToNaluType(data.data(), data.size(), infos, &params) == QVResultOk);
    FUZZ_CHECK(infos.size() <= nalus.size());
    return 0;
}
