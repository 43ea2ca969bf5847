// Side data: any buffer must be read or rejected, items must be preserved, and a flipped bit must be
// detected.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "FuzzItems.h"

namespace {

void checkAnyBuffer(qv_fuzz::ExactBlock data) {
    std::vector<QVSeiItem> items(1);
    const QVSideDataStatus status = qvReadSideData(data.data(), data.size(), &items);
    if (status != QVSideDataOk) {
        FUZZ_CHECK(items.size() == 1);
        return;
    }
    for (const QVSeiItem& item : items) {
        FUZZ_CHECK(item.payloadData == nullptr ||
                   (item.payloadData >= data.data() &&
                    item.payloadData + item.payloadSize <= data.data() + data.size()));
    }
}

// Takes the length and the bytes of each item from the input.
std::vector<QVSeiItem> anyItems(qv_fuzz::FuzzInput& input, std::vector<std::vector<uint8_t>>& payloads) {
    payloads.resize(input.byte() % 8);
    std::vector<QVSeiItem> items;
    for (auto& payload : payloads) {
        payload.resize(input.byte() % 64);
        for (uint8_t& byte : payload) {
            byte = input.byte();
        }
        items.push_back({static_cast<QVCodecID>(input.byte()), input.word(),
                         static_cast<uint32_t>(payload.size()), input.byte() % 2 != 0,
                         payload.empty() ? nullptr : payload.data()});
    }
    return items;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    qv_fuzz::FuzzInput input(bytes, size);
    checkAnyBuffer(input.rest());

    std::vector<std::vector<uint8_t>> payloads;
    const std::vector<QVSeiItem> items = anyItems(input, payloads);
    unsigned char* buffer = nullptr;
    int bufferSize = 0;
    FUZZ_CHECK(QVNaluParser::assembleSeiSideDataBuffer(items, &buffer, bufferSize) == QVResultOk);
    std::vector<QVSeiItem> read;
    FUZZ_CHECK(qvReadSideData(buffer, bufferSize, &read) == QVSideDataOk);
    FUZZ_CHECK(read.size() == items.size());
    for (size_t i = 0; i < read.size(); ++i) {
        const bool isEmpty = items[i].payloadData == nullptr;
        FUZZ_CHECK(read[i].payloadSize == (isEmpty ? 0 : items[i].payloadSize));
        FUZZ_CHECK(read[i].payloadType == (isEmpty ? 0 : items[i].payloadType));
        FUZZ_CHECK(std::equal(payloads[i].begin(), payloads[i].end(), read[i].payloadData));
    }
    const uint32_t bit = input.word() % (static_cast<uint32_t>(bufferSize) * 8);
    buffer[bit / 8] = static_cast<unsigned char>(buffer[bit / 8] ^ 1U << bit % 8);
    FUZZ_CHECK(qvReadSideData(buffer, bufferSize, &read) != QVSideDataOk);
    freepQVSideData(&buffer);
    return 0;
}
