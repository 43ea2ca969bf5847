// Compares key-frame detection with the slow reference.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "QVNaluParser.h"
#include "ReferenceFraming.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    qv_fuzz::FuzzInput input(bytes, size);
    static constexpr uint32_t kCodecs[] = {26, 172, 0, 0xFFFFFFFF};
    const uint32_t codec = kCodecs[input.byte() % 4];
    const qv_fuzz::ExactBlock data = input.rest();
    FUZZ_CHECK(QVNaluParser::isKeyFrame(static_cast<QVCodecID>(codec), data.data(), data.size()) ==
               qv_test::referenceIsKeyFrame(codec, input.restAsVector()));
    return 0;
}
