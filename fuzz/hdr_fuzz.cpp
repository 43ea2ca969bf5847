// Passes items of any kind to the HDR metadata operations and to the stand-alone core's HDR Vivid parser.
#include <cmath>

#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "QVCoreStandalone.h"
#include "QVNaluParser.h"

namespace {

void checkVivid(const QVHDRVividDynamicMetadata& vivid) {
    FUZZ_CHECK(vivid.numToneMappings <= 2);
    for (uint32_t i = 0; i < vivid.numToneMappings; ++i) {
        const QVHDRVividToneMapping& mapping = vivid.toneMappings[i];
        FUZZ_CHECK(mapping.numSplines <= 2);
        FUZZ_CHECK(std::isfinite(qvHdrVividM_p(mapping)));
        FUZZ_CHECK(std::isfinite(qvHdrVividDelta(mapping)));
    }
    FUZZ_CHECK(vivid.color_saturation_enable_num <= 7);
    for (const uint32_t code : {vivid.minimum_maxrgb_pq, vivid.average_maxrgb_pq, vivid.maximum_maxrgb_pq}) {
        FUZZ_CHECK(code <= 4095);
        FUZZ_CHECK(std::isfinite(qvPqToLuminance(qvHdrVividPq(code))));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    qv_fuzz::FuzzInput input(bytes, size);
    const uint8_t kind = input.byte();
    const auto codec = static_cast<QVCodecID>((kind & 1) != 0 ? 172 : input.byte());
    const uint32_t payloadType = (kind & 2) != 0 ? 4U : (kind & 4) != 0 ? 137U : input.byte();
    qv_fuzz::ExactBlock data = input.rest();
    const QVSeiItem item{codec, payloadType, static_cast<uint32_t>(data.size()), false,
                         data.size() > 0 ? data.data() : nullptr};

    QVHDR10StaticMetadata hdr10{};
    const int result = QVNaluParser::fillHDR10StaticMetadataFromHevcMasteringDisplayInfoSei(item, &hdr10);
    FUZZ_CHECK((result == QVResultOk) == (codec == QVCodecIDHevc && payloadType == 137 && data.size() > 0));

    QVHDRVividDynamicMetadata vivid{};
    if (QVNaluParser::fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(item, &vivid) ==
        QVHDRVividOk) {
        checkVivid(vivid);
    }
    return 0;
}
