// Walks H.265 SEI units, prefix and suffix, with any list of requested types.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "FuzzItems.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    qv_fuzz::FuzzInput input(bytes, size);
    const std::deque<int> requested = input.payloadTypes(4);
    static constexpr int kTypes[] = {39, 40, 39, 35};
    const int naluType = kTypes[input.byte() % 4];
    const qv_fuzz::ExactBlock data = input.rest();

    QVHevcSps sps{};
    qv_fuzz::Items items;
    QVNaluParser::parserHevcDataToSei(naluType, data.data(), data.size(), items.list, &sps, requested);
    items.check(QVCodecIDHevc, requested);
    items.checkSideData();

    qv_fuzz::Items whole;
    const QVNaluParser::NaluInfo nalu{static_cast<uint32_t>(naluType), 0, data.size(), false};
    QVNaluParser::parserDataToSei(QVCodecIDHevc, data.data(), nalu, whole.list, &sps, requested);
    whole.check(QVCodecIDHevc, requested);
    return 0;
}
