// The forms of a configuration: ISO/IEC 14496-15 5.3.3.1 and 8.3.3.1, Annex B of H.264 and H.265.
#include "bitstream/units/ConfigurationRecord.h"

namespace qv {

namespace {

constexpr uint8_t kVersion = 1;
constexpr uint8_t kEarlyHevcVersion = 0;
constexpr size_t kAvcLengthSizeAt = 4;  // the byte that ends with lengthSizeMinusOne
constexpr size_t kHevcLengthSizeAt = 21;

bool beginsWithStartCode(Bytes bytes) noexcept {
    size_t zeroBytes = 0;
    while (zeroBytes < bytes.size && bytes[zeroBytes] == 0x00) {
        ++zeroBytes;
    }
    return zeroBytes >= 2 && zeroBytes < bytes.size && bytes[zeroBytes] == 0x01;
}

size_t lengthSizeAt(Codec codec) noexcept {
    return codec == Codec::Avc ? kAvcLengthSizeAt : kHevcLengthSizeAt;
}

}  // namespace

ConfigurationKind configurationKindOf(Codec codec, Bytes configuration) noexcept {
    if (beginsWithStartCode(configuration)) {
        return ConfigurationKind::ByteStream;
    }
    if (configuration.size <= lengthSizeAt(codec)) {
        return ConfigurationKind::None;
    }
    const uint8_t version = configuration[0];
    const bool isRecord = version == kVersion || (codec == Codec::Hevc && version == kEarlyHevcVersion);
    return isRecord ? ConfigurationKind::Record : ConfigurationKind::None;
}

std::optional<Framing> framingOf(Codec codec, Bytes configuration) noexcept {
    const ConfigurationKind kind = configurationKindOf(codec, configuration);
    if (kind == ConfigurationKind::Record) {
        return framingOfLengthSizeMinusOne(configuration[lengthSizeAt(codec)]);
    }
    return kind == ConfigurationKind::ByteStream ? std::optional<Framing>(Framing::StartCodes) : std::nullopt;
}

}  // namespace qv
