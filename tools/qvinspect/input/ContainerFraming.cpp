// Decoder configuration records: ISO/IEC 14496-15:2019 5.3.3.1 (avcC) and 8.3.3.1 (hvcC).
#include "input/ContainerFraming.h"

#include <algorithm>
#include <iterator>

namespace qvinspect {

namespace {

constexpr unsigned char kConfigurationVersion = 1;
constexpr size_t kAvcLengthSizeAt = 4;  // the byte that lengthSizeMinusOne ends
constexpr size_t kHevcLengthSizeAt = 21;
constexpr unsigned kLengthSizeMinusOne = 0x03;

// Containers whose samples are byte streams even if the header has an avcC record. An AVI stream header can
// have one from the file that it was made from, although its chunks are Annex B: chunks of the stream type
// H264 are byte streams by definition.
constexpr const char* kByteStreamContainers[] = {"avi", "mpeg", "mpegts", "mpegtsraw"};

bool isByteStreamContainer(const std::string& container) {
    return std::find(std::begin(kByteStreamContainers), std::end(kByteStreamContainers), container) !=
           std::end(kByteStreamContainers);
}

}  // namespace

QVCodecParameters containerFraming(QVCodecID codec, const std::string& container,
                                   const unsigned char* extradata, size_t extradataSize) {
    QVCodecParameters parameters{};
    parameters.codecId = codec;

    // Parameter sets after start codes begin with a zero byte; no configuration record does.
    const size_t lengthSizeAt = codec == QVCodecIDAvc ? kAvcLengthSizeAt : kHevcLengthSizeAt;
    const bool hasRecord =
        extradata != nullptr && extradataSize > lengthSizeAt && extradata[0] == kConfigurationVersion;
    if (!hasRecord || isByteStreamContainer(container)) {
        parameters.isAnnexB = 1;
        return parameters;
    }
    parameters.nalLengthSize = static_cast<uint8_t>((extradata[lengthSizeAt] & kLengthSizeMinusOne) + 1);
    return parameters;
}

}  // namespace qvinspect
