// Parses H.264 sequence parameter sets. The result must depend only on the unit, and the values of an
// accepted set must be in range.
#include <cstring>

#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "QVNaluParser.h"

namespace {

constexpr uint64_t kMostGolombReads = 12 * 64 + 256 + 32;  // scaling lists, offsets, the rest

void checkRanges(const QVAvcSps& sps) {
    FUZZ_CHECK(sps.sps_id >= 0 && sps.sps_id <= 31);
    FUZZ_CHECK(sps.chroma_format_idc >= 0 && sps.chroma_format_idc <= 3);
    FUZZ_CHECK(sps.poc_type >= 0 && sps.poc_type <= 2);
    FUZZ_CHECK(sps.poc_cycle_length >= 0 && sps.poc_cycle_length <= 255);
    FUZZ_CHECK(sps.ref_frame_count >= 0 && sps.ref_frame_count <= 16);
    FUZZ_CHECK(sps.colorspace == 2 && sps.full_range == -1);
    FUZZ_CHECK(sps.time_offset_length == 24);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    const auto stream = std::make_shared<QVByteStream>(bytes, size);
    QVAvcSps sps{};
    const bool isAccepted = parseAvcSps(&sps, stream);
    FUZZ_CHECK(size > 0 || !isAccepted);
    // Past the end of the data an Exp-Golomb read still advances by one bit.
    FUZZ_CHECK(stream->bytePos <= stream->size + kMostGolombReads / 8);
    if (isAccepted) {
        checkRanges(sps);
    }
    QVAvcSps again{};
    FUZZ_CHECK(parseAvcSps(&again, std::make_shared<QVByteStream>(bytes, size)) == isAccepted);
    FUZZ_CHECK(std::memcmp(&sps, &again, sizeof sps) == 0);
    FUZZ_CHECK(!parseAvcSps(nullptr, stream));
    return 0;
}
