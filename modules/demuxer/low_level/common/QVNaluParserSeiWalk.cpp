// SEI message headers, walking and dispatch: sei_rbsp() and sei_message(), ITU-T H.264 (08/2021) 7.3.2.3 and
// H.265 (08/2021) 7.3.2.4.
//
// The two walkers differ on purpose. The H.264 walker reads every message of a unit and tests for the
// trailing bits between them; the H.265 walker reads only the first message (D14) and does not test for them.
#include <algorithm>
#include <cstdint>

#include "QVNaluParser.h"
#include "detail/Log.h"
#include "detail/NalUnit.h"
#include "detail/PlainBits.h"
#include "detail/SeiTypes.h"

using namespace qv_detail;

namespace {

constexpr int kAvcNalHeaderSize = 1;
constexpr int kHevcNalHeaderSize = 2;

// Fewer bytes cannot hold a message and the trailing bits.
constexpr uint64_t kSmallestAvcSei = 3;

bool isRequested(const std::deque<int>& requested, int payloadType) {
    return std::find(requested.begin(), requested.end(), payloadType) != requested.end();
}

// payload_type or payload_size: ff_bytes and the last byte, added to start. Wraps at 32 bits.
uint32_t readHeaderSum(QVByteStream& stream, uint32_t start) {
    constexpr uint32_t kFfByte = 0xFF;
    uint32_t sum = start;
    while (!stream.atEnd()) {
        const uint32_t byte = stream.readByte();
        sum += byte;
        if (byte != kFfByte) {
            break;
        }
    }
    return sum;
}

// Skips bytes as they are, emulation prevention bytes included (D27). A negative size is sign-extended;
// skipBytes checks the bounds.
void skipPayload(QVByteStream& stream, int payloadSize) {
    stream.skipBytes(static_cast<uint64_t>(int64_t{payloadSize}));
}

// alternative_transfer_characteristics() is skipped bit by bit.
int skipAlternativeTransfer(QVByteStream& stream) {
    PlainBits(stream).drop(8);  // preferred_transfer_characteristics
    return QVResultOk;
}

// A message that is neither parsed nor always captured.
int captureRequestedOrSkip(QVByteStream& stream, int payloadType, int payloadSize,
                           std::vector<QVSeiItem>& items, QVCodecID codec, const std::deque<int>& requested) {
    if (isRequested(requested, payloadType)) {
        return QVNaluParser::fillSeiDataWithoutParsing(stream, payloadSize, items, codec, payloadType, true);
    }
    skipPayload(stream, payloadSize);
    return QVResultOk;
}

int parseAvcPayload(QVByteStream& stream, int payloadType, int payloadSize, std::vector<QVSeiItem>& items,
                    QVAvcSps* sps, const std::deque<int>& requested) {
    switch (payloadType) {
        case kSeiBufferingPeriod: {
            QVAvcSeiBufferingPeriod bufferingPeriod{};
            return QVNaluParser::parserAvcBufferingPeriod(stream, payloadSize, &bufferingPeriod, sps);
        }
        case kSeiPicTiming:
        case kSeiUserDataUnregistered:
            return QVNaluParser::fillSeiDataWithoutParsing(stream, payloadSize, items, QVCodecIDAvc,
                                                           payloadType, false);
        case kSeiUserDataRegisteredItuTT35: {
            QVAvcSeiAfd afd{};
            return QVNaluParser::parserAvcRegisteredUserData(stream, payloadSize, &afd, sps);
        }
        case kSeiRecoveryPoint: {
            QVAvcSeiRecoveryPoint recoveryPoint{};
            return QVNaluParser::parserAvcRecoveryPoint(stream, payloadSize, &recoveryPoint);
        }
        case kSeiFramePackingArrangement: {
            QVAvcSeiFramePacking framePacking{};
            return QVNaluParser::parserAvcFramePackingArrangement(stream, payloadSize, &framePacking);
        }
        case kSeiDisplayOrientation: {
            QVAvcSeiDisplayOrientation displayOrientation{};
            return QVNaluParser::parserAvcDisplayOrientation(stream, payloadSize, &displayOrientation);
        }
        case kSeiGreenMetadata: {
            QVAvcSeiGreenMetaData greenMetaData{};
            return QVNaluParser::parserAvcGreenMetaData(stream, payloadSize, &greenMetaData);
        }
        case kSeiAlternativeTransferCharacteristics:
            return skipAlternativeTransfer(stream);
        default:
            return captureRequestedOrSkip(stream, payloadType, payloadSize, items, QVCodecIDAvc, requested);
    }
}

// Two zero bytes or the trailing bits where a message would begin.
bool isAvcTrailing(const uint8_t* next) {
    return (next[0] == 0x00 && next[1] == 0x00) || next[0] == kTrailingBitsByte;
}

// True when another message is at the byte position. One of payloadType 128 is treated as the trailing bits
// (D25).
bool hasAvcMessage(const QVByteStream& stream) {
    return !stream.atEnd() && stream.bytesLeft() >= kSmallestAvcSei &&
           !isAvcTrailing(stream.data + stream.bytePos);
}

}  // namespace

int QVNaluParser::parserPayloadParams(QVByteStream& stream, int& payloadType, int& payloadSize) {
    payloadType = static_cast<int>(readHeaderSum(stream, static_cast<uint32_t>(payloadType)));
    payloadSize = static_cast<int>(readHeaderSum(stream, static_cast<uint32_t>(payloadSize)));
    if (stream.bytesLeft() < static_cast<uint64_t>(int64_t{payloadSize})) {
        QV_LOG(QVTraceWarning, "parserPayloadParams",
               "parserPayloadParams SEI type %d size %d truncated at %d\n", payloadType, payloadSize,
               static_cast<int>(stream.bytesLeft()));
        return QVResultFailed;
    }
    return QVResultOk;
}

int QVNaluParser::parserAvcDataToSei(const unsigned char* data, int size, std::vector<QVSeiItem>& items,
                                     QVAvcSps* sps, const std::deque<int>& requested) {
    QVByteStream stream(data, bufferSize(size));
    while (hasAvcMessage(stream)) {
        int payloadType = 0;
        int payloadSize = 0;
        const int header = parserPayloadParams(stream, payloadType, payloadSize);
        if (header != QVResultOk) {
            return header;
        }
        const uint64_t payloadEnd =
            std::min(stream.bytePos + static_cast<uint64_t>(payloadSize), stream.size);
        const int result = parseAvcPayload(stream, payloadType, payloadSize, items, sps, requested);
        if (result != QVResultOk) {
            return result;
        }
        // A parser that read beyond its payload is not pulled back (D29).
        if (payloadEnd >= stream.bytePos) {
            stream.skipBytes(payloadEnd - stream.bytePos);
        }
    }
    return QVResultOk;
}

int QVNaluParser::parserHevcDataToSei(int naluType, const unsigned char* data, int size,
                                      std::vector<QVSeiItem>& items, QVHevcSps* sps,
                                      const std::deque<int>& requested) {
    QVByteStream stream(data, bufferSize(size));
    int payloadType = 0;
    int payloadSize = 0;
    const int header = parserPayloadParams(stream, payloadType, payloadSize);
    if (header != QVResultOk) {
        return header;
    }
    switch (naluType) {
        case kHevcPrefixSeiNut:
            return parserHevcSeiPrefix(stream, payloadType, payloadSize, items, sps, requested);
        case kHevcSuffixSeiNut:
            parserHevcSeiSuffix(stream, payloadType, payloadSize, items, sps, requested);
            return QVResultOk;
        default:
            return QVResultOk;
    }
}

int QVNaluParser::parserHevcSeiPrefix(QVByteStream& stream, int payloadType, int payloadSize,
                                      std::vector<QVSeiItem>& items, QVHevcSps* /*sps*/,
                                      const std::deque<int>& requested) {
    switch (payloadType) {
        case kSeiPicTiming:
        case kSeiUserDataRegisteredItuTT35:
        case kSeiUserDataUnregistered:
        case kSeiMasteringDisplayColourVolume:
            return fillSeiDataWithoutParsing(stream, payloadSize, items, QVCodecIDHevc, payloadType, false);
        case kSeiFramePackingArrangement: {
            QVHevcSeiFramePacking framePacking{};
            return parserHevcFramePacking(stream, payloadSize, &framePacking);
        }
        case kSeiDisplayOrientation: {
            QVHevcSeiDisplayOrientation displayOrientation{};
            return parserHevcDisplayOrientation(stream, payloadSize, items, &displayOrientation);
        }
        case kSeiActiveParameterSets:
            return parserHevcActiveParameterSets(stream, payloadSize);
        case kSeiContentLightLevelInfo: {
            QVHevcSeiContentLight contentLight{};
            return parserHevcContentLightInfo(stream, payloadSize, &contentLight);
        }
        case kSeiAlternativeTransferCharacteristics:
            return skipAlternativeTransfer(stream);
        case kHevcPrefixPictureHash: {
            QVHevcSeiPictureHash pictureHash{};
            return parserHevcPictureHash(stream, payloadSize, &pictureHash);
        }
        default:
            return captureRequestedOrSkip(stream, payloadType, payloadSize, items, QVCodecIDHevc, requested);
    }
}

int QVNaluParser::parserHevcSeiSuffix(QVByteStream& stream, int payloadType, int payloadSize,
                                      std::vector<QVSeiItem>& items, QVHevcSps* /*sps*/,
                                      const std::deque<int>& requested) {
    if (payloadType == kSeiDecodedPictureHash) {
        QVHevcSeiPictureHash pictureHash{};
        parserHevcPictureHash(stream, payloadSize, &pictureHash);
    }
    // A requested hash is captured from where its parser stopped (D15).
    captureRequestedOrSkip(stream, payloadType, payloadSize, items, QVCodecIDHevc, requested);
    return QVResultOk;
}

int QVNaluParser::parserDataToSei(QVCodecID codec, const unsigned char* data, const NaluInfo& nalu,
                                  std::vector<QVSeiItem>& items, void* sps,
                                  const std::deque<int>& requested) {
    if (data == nullptr) {
        return QVResultOk;
    }
    switch (codec) {
        case QVCodecIDHevc: {
            const bool hasBody = nalu.length > kHevcNalHeaderSize;
            return parserHevcDataToSei(static_cast<int>(nalu.naluType),
                                       hasBody ? data + nalu.offset + kHevcNalHeaderSize : nullptr,
                                       hasBody ? nalu.length - kHevcNalHeaderSize : 0, items,
                                       static_cast<QVHevcSps*>(sps), requested);
        }
        case QVCodecIDAvc: {
            const bool hasBody = nalu.length > kAvcNalHeaderSize;
            return parserAvcDataToSei(hasBody ? data + nalu.offset + kAvcNalHeaderSize : nullptr,
                                      hasBody ? nalu.length - kAvcNalHeaderSize : 0, items,
                                      static_cast<QVAvcSps*>(sps), requested);
        }
        default:
            return QVResultOk;
    }
}
