#include "input/ConfigurationRecord.h"

#include <utility>

#include "QVNaluParser.h"
#include "input/Budgets.h"

namespace qvinspect {

namespace {

using Units = ConfigurationUnits;

void take(const uint8_t* unit, size_t size, Units& units) {
    if (units.units.size() < kMostRecordUnits) {
        units.units.emplace_back(unit, unit + size);
    } else {
        ++units.leftOut;
    }
}

// Whole NAL units behind 16-bit lengths. False when one runs past the end.
bool takeUnits(QVByteStream& in, uint32_t count, Units& units) {
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t length = in.readBits(16);
        if (in.atEnd() || in.bytesLeft() < length) {
            return false;
        }
        take(in.data + in.bytePos, length, units);
        in.skipBytes(length);
    }
    return true;
}

// AVCDecoderConfigurationRecord, 5.3.3.1.2.
Units avcUnits(QVByteStream& in) {
    Units units;
    in.skipBytes(5);  // configurationVersion, profile, compatibility, level, lengthSizeMinusOne
    const uint32_t numOfSequenceParameterSets = in.readBits(8) & 0x1F;
    if (takeUnits(in, numOfSequenceParameterSets, units)) {
        const uint32_t numOfPictureParameterSets = in.readBits(8);
        takeUnits(in, numOfPictureParameterSets, units);
    }
    return units;
}

// HEVCDecoderConfigurationRecord, 8.3.3.1.2.
Units hevcUnits(QVByteStream& in) {
    Units units;
    in.skipBytes(22);  // up to and with lengthSizeMinusOne
    const uint32_t numOfArrays = in.readBits(8);
    for (uint32_t i = 0; i < numOfArrays; ++i) {
        in.readBits(8);  // array_completeness, NAL_unit_type
        const uint32_t numNalus = in.readBits(16);
        if (!takeUnits(in, numNalus, units)) {
            break;
        }
    }
    return units;
}

Units byteStreamUnits(const std::vector<uint8_t>& bytes) {
    std::vector<std::pair<int, int>> nalus;
    QVNaluParser::parserDataToNaluIdx(bytes.data(), static_cast<int>(bytes.size()), nalus);
    Units units;
    for (const auto& [offset, length] : nalus) {
        take(bytes.data() + offset, static_cast<size_t>(length), units);
    }
    return units;
}

}  // namespace

ConfigurationUnits configurationUnits(QVCodecID codec, const std::vector<uint8_t>& record) {
    constexpr uint8_t kConfigurationVersion = 1;
    if (record.empty() || record[0] != kConfigurationVersion) {
        return byteStreamUnits(record);
    }
    QVByteStream in(record.data(), record.size());
    return codec == QVCodecIDAvc ? avcUnits(in) : hevcUnits(in);
}

}  // namespace qvinspect
