// Runs each payload parser from any position of both cursors, with any payloadSize.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "FuzzItems.h"

namespace {

struct Call {
    QVByteStream& stream;
    int payloadSize;
    qv_fuzz::FuzzInput& input;
    qv_fuzz::Items& items;
};

template <class Record, class Parser>
void parse(Call& call, Parser parser) {
    Record record{};
    parser(call.stream, call.payloadSize, &record);
}

QVAvcSps anySps(qv_fuzz::FuzzInput& input) {
    QVAvcSps sps{};
    input.fill(sps);
    return sps;
}

void bufferingPeriod(Call& call) {
    QVAvcSps sps = anySps(call.input);
    QVAvcSeiBufferingPeriod period{};
    QVNaluParser::parserAvcBufferingPeriod(call.stream, call.payloadSize, &period, &sps);
}

void avcPictureTiming(Call& call) {
    QVAvcSps sps = anySps(call.input);
    QVAvcSeiPictureTiming timing{};
    QVNaluParser::parserAvcPictureTiming(call.stream, call.payloadSize, &timing, &sps);
    FUZZ_CHECK(timing.numClockTimestamps <= 3);
}

void hevcPictureTiming(Call& call) {
    QVHevcSps sps{};
    sps.frame_field_info_present_flag = call.input.byte() % 2;
    QVHevcSeiPictureTiming timing{};
    QVNaluParser::parserHevcPictureTiming(call.stream, call.payloadSize, &timing, &sps);
}

void registeredUserData(Call& call) {
    QVAvcSeiAfd afd{};
    QVNaluParser::parserAvcRegisteredUserData(call.stream, call.payloadSize, &afd, nullptr);
}

void hevcOrientation(Call& call) {
    QVHevcSeiDisplayOrientation orientation{};
    QVNaluParser::parserHevcDisplayOrientation(call.stream, call.payloadSize, call.items.list, &orientation);
}

void capture(Call& call) {
    // A capture allocates payloadSize bytes. Limiting the size is the caller's responsibility.
    const int payloadSize = call.payloadSize % 65536;
    QVNaluParser::fillSeiDataWithoutParsing(call.stream, payloadSize, call.items.list, QVCodecIDHevc, 5,
                                            false);
}

void header(Call& call) {
    int payloadType = 0;
    int payloadSize = 0;
    if (QVNaluParser::parserPayloadParams(call.stream, payloadType, payloadSize) == QVResultOk) {
        FUZZ_CHECK(static_cast<uint64_t>(static_cast<int64_t>(payloadSize)) <= call.stream.bytesLeft());
    }
}

void (*const kParsers[])(Call&) = {
    bufferingPeriod,
    avcPictureTiming,
    hevcPictureTiming,
    registeredUserData,
    hevcOrientation,
    capture,
    header,
    [](Call& call) { parse<QVAvcSeiRecoveryPoint>(call, QVNaluParser::parserAvcRecoveryPoint); },
    [](Call& call) { parse<QVAvcSeiAfd>(call, QVNaluParser::parserAvcRegisteredUserDataAfd); },
    [](Call& call) { QVNaluParser::parserAvcRegisteredUserDataClosedCaption(call.stream, call.payloadSize); },
    [](Call& call) { parse<QVAvcSeiFramePacking>(call, QVNaluParser::parserAvcFramePackingArrangement); },
    [](Call& call) { parse<QVAvcSeiDisplayOrientation>(call, QVNaluParser::parserAvcDisplayOrientation); },
    [](Call& call) { parse<QVAvcSeiAlternativeTransfer>(call, QVNaluParser::parserAvcAlternativeTransfer); },
    [](Call& call) { parse<QVAvcSeiGreenMetaData>(call, QVNaluParser::parserAvcGreenMetaData); },
    [](Call& call) { parse<QVHevcSeiMasteringDisplay>(call, QVNaluParser::parserHevcMasteringDisplayInfo); },
    [](Call& call) { parse<QVHevcSeiContentLight>(call, QVNaluParser::parserHevcContentLightInfo); },
    [](Call& call) {
        parse<QVHevcSeiAlternativeTransfer>(call, QVNaluParser::parserHevcAlternativeTransfer);
    },
    [](Call& call) { parse<QVHevcSeiPictureHash>(call, QVNaluParser::parserHevcPictureHash); },
    [](Call& call) { QVNaluParser::parserHevcActiveParameterSets(call.stream, call.payloadSize); },
    [](Call& call) { parse<QVHevcSeiFramePacking>(call, QVNaluParser::parserHevcFramePacking); },
    [](Call& call) { parse<QVHevcSeiA53Caption>(call, QVNaluParser::parserHevcRegisteredUserData); },
    [](Call& call) {
        parse<QVHevcSeiA53Caption>(call, QVNaluParser::parserHevcRegisteredUserDataClosedCaption);
    },
};
constexpr size_t kParserCount = sizeof kParsers / sizeof *kParsers;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    qv_fuzz::FuzzInput input(bytes, size);
    const size_t parser = input.byte() % kParserCount;
    const uint8_t plainBits = input.byte();
    const uint8_t rbspBits = input.byte();
    const auto payloadSize = static_cast<int>(input.byte() % 4 == 0 ? input.word() : input.byte());
    const qv_fuzz::ExactBlock data = input.rest();

    QVByteStream stream(data.data(), static_cast<size_t>(data.size()));
    stream.readRbspBits(rbspBits % 64);
    stream.skipBits(plainBits);
    qv_fuzz::Items items;
    Call call{stream, payloadSize, input, items};
    kParsers[parser](call);
    FUZZ_CHECK(stream.bytePos <= stream.size + 1);
    FUZZ_CHECK(stream.bitOffset <= 7);
    FUZZ_CHECK(stream.rbspBitIndex <= 7);
    return 0;
}
