#include "analysis/HdrValues.h"

#include <cmath>

#include "analysis/CoreHooks.h"
#include "analysis/SeiTypes.h"

namespace qvinspect {

namespace {

// The parsers take an item as a player passes it. It refers to bytes for the time of the call.
QVSeiItem itemOf(uint32_t payloadType, std::vector<uint8_t>& bytes) {
    return {QVCodecIDHevc, payloadType, static_cast<uint32_t>(bytes.size()), false, bytes.data()};
}

}  // namespace

std::optional<QVHDR10StaticMetadata> readMasteringDisplay(const std::vector<uint8_t>& payload) {
    std::vector<uint8_t> bytes = payload;
    QVHDR10StaticMetadata hdr10{};
    const LogCapture quiet;
    if (QVNaluParser::fillHDR10StaticMetadataFromHevcMasteringDisplayInfoSei(itemOf(kMasteringDisplay, bytes),
                                                                             &hdr10) != QVResultOk) {
        return std::nullopt;
    }
    return hdr10;
}

QVHevcSeiContentLight readContentLight(const std::vector<uint8_t>& payload) {
    QVByteStream in(payload.data(), payload.size());
    QVHevcSeiContentLight light{};
    QVNaluParser::parserHevcContentLightInfo(in, static_cast<int>(payload.size()), &light);
    return light;
}

QVHevcSeiAlternativeTransfer readAlternativeTransfer(const std::vector<uint8_t>& payload) {
    QVByteStream in(payload.data(), payload.size());
    QVHevcSeiAlternativeTransfer transfer{};
    QVNaluParser::parserHevcAlternativeTransfer(in, static_cast<int>(payload.size()), &transfer);
    return transfer;
}

double pqLuminance(uint32_t code) {
    constexpr double kStep = 1e6;  // mathematical libraries differ in further decimals
    return std::round(qvPqToLuminance(qvHdrVividPq(code)) * kStep) / kStep;
}

HdrVividResult readHdrVivid(const std::vector<uint8_t>& payload) {
    std::vector<uint8_t> bytes = payload;
    HdrVividResult result{};
    const LogCapture quiet;
    result.status = QVNaluParser::fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(
        itemOf(kUserDataRegistered, bytes), &result.metadata);
    return result;
}

}  // namespace qvinspect
