// Parses H.265 sequence parameter sets. Only an empty stream may be rejected, and the fields must be the
// values that were read.
#include <cstring>

#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "QVNaluParser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    const auto stream = std::make_shared<QVByteStream>(bytes, size);
    QVHevcSps sps{};
    FUZZ_CHECK(parseHevcSps(&sps, stream) == (size > 0));
    FUZZ_CHECK(stream->bytePos <= stream->size);
    FUZZ_CHECK(sps.sps_max_sub_layers_minus1 >= 0 && sps.sps_max_sub_layers_minus1 <= 7);
    FUZZ_CHECK(sps.sps_video_parameter_set_id >= 0 && sps.sps_video_parameter_set_id <= 15);
    FUZZ_CHECK(sps.chroma_format_idc == 3 || sps.separate_colour_plane_flag == 0);
    FUZZ_CHECK(sps.vui_parameters_present_flag == 0);

    QVHevcSps again{};
    parseHevcSps(&again, std::make_shared<QVByteStream>(bytes, size));
    FUZZ_CHECK(std::memcmp(&sps, &again, sizeof sps) == 0);
    return 0;
}
