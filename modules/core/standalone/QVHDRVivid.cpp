// Parses the HDR Vivid metadata of one T.35 message (T/UWA 005.1). Elements are coded most significant bit
// first, without alignment.
#include "QVHDRVivid.h"

#include "QVHDRVividDynamicMetadata.h"
#include "QVSeiItem.h"

namespace {

constexpr uint32_t kUserDataRegisteredItuTT35 = 4;
constexpr uint32_t kCountryCode = 0x26;
constexpr uint32_t kProviderCode = 0x0004;
constexpr uint32_t kProviderOrientedCode = 0x0005;
constexpr uint32_t kOneWindow = 0x01;

// Reads u(n) from a payload. Past the end it returns zero bits, and ranOut() reports it.
class VividBits {
public:
    VividBits(const uint8_t* data, uint32_t size) : data_(data), bits_(uint64_t{size} * 8) {}

    uint32_t u(uint32_t n) {
        uint32_t value = 0;
        for (; n > 0; --n) {
            value = value << 1 | nextBit();
        }
        return value;
    }

    bool ranOut() const { return ranOut_; }

private:
    uint32_t nextBit() {
        if (position_ >= bits_) {
            ranOut_ = true;
            return 0;
        }
        const uint32_t bit = uint32_t{data_[position_ / 8]} >> (7 - position_ % 8) & 1U;
        ++position_;
        return bit;
    }

    const uint8_t* data_;
    uint64_t bits_;
    uint64_t position_ = 0;
    bool ranOut_ = false;
};

void readBaseParameters(VividBits& in, QVHDRVividToneMapping& mapping) {
    mapping.base_param_m_p = in.u(14);
    mapping.base_param_m_m = in.u(6);
    mapping.base_param_m_a = in.u(10);
    mapping.base_param_m_b = in.u(10);
    mapping.base_param_m_n = in.u(6);
    mapping.base_param_K1 = in.u(2);
    mapping.base_param_K2 = in.u(2);
    mapping.base_param_K3 = in.u(4);
    mapping.base_param_Delta_enable_mode = in.u(3);
    mapping.base_param_enable_Delta = in.u(7);
}

void readSpline(VividBits& in, QVHDRVividSpline& spline) {
    spline.TH_enable_mode = in.u(2);
    if (spline.TH_enable_mode == 0 || spline.TH_enable_mode == 2) {
        spline.has_TH_enable_MB = 1;
        spline.TH_enable_MB = in.u(8);
    }
    spline.TH_enable = in.u(12);
    spline.TH_enable_Delta1 = in.u(10);
    spline.TH_enable_Delta2 = in.u(10);
    spline.enable_Strength = in.u(8);
}

void readToneMapping(VividBits& in, QVHDRVividToneMapping& mapping) {
    mapping.targeted_system_display_maximum_luminance_pq = in.u(12);
    mapping.base_enable_flag = in.u(1);
    if (mapping.base_enable_flag != 0) {
        readBaseParameters(in, mapping);
    }
    mapping.three_Spline_enable_flag = in.u(1);
    if (mapping.three_Spline_enable_flag != 0) {
        mapping.three_Spline_enable_num = in.u(1);
        mapping.numSplines = mapping.three_Spline_enable_num + 1;
    }
    for (uint32_t i = 0; i < mapping.numSplines; ++i) {
        readSpline(in, mapping.splines[i]);
    }
}

void readWindow(VividBits& in, QVHDRVividDynamicMetadata& metadata) {
    metadata.minimum_maxrgb_pq = in.u(12);
    metadata.average_maxrgb_pq = in.u(12);
    metadata.variance_maxrgb_pq = in.u(12);
    metadata.maximum_maxrgb_pq = in.u(12);
    metadata.tone_mapping_enable_mode_flag = in.u(1);
    if (metadata.tone_mapping_enable_mode_flag != 0) {
        metadata.tone_mapping_param_enable_num = in.u(1);
        metadata.numToneMappings = metadata.tone_mapping_param_enable_num + 1;
    }
    for (uint32_t i = 0; i < metadata.numToneMappings; ++i) {
        readToneMapping(in, metadata.toneMappings[i]);
    }
    metadata.color_saturation_mapping_enable_flag = in.u(1);
    if (metadata.color_saturation_mapping_enable_flag != 0) {
        metadata.color_saturation_enable_num = in.u(3);
    }
    for (uint32_t i = 0; i < metadata.color_saturation_enable_num; ++i) {
        metadata.color_saturation_enable_gain[i] = in.u(8);
    }
}

// Compares one code of the header with its only permitted value. A code that the payload's end cuts off is
// reported as truncated, not as a mismatch.
QVHDRVividStatus expectCode(VividBits& in, uint32_t width, uint32_t expected, QVHDRVividStatus otherwise) {
    const uint32_t code = in.u(width);
    if (in.ranOut()) {
        return QVHDRVividTruncated;
    }
    return code == expected ? QVHDRVividOk : otherwise;
}

QVHDRVividStatus readHeader(VividBits& in) {
    QVHDRVividStatus status = expectCode(in, 8, kCountryCode, QVHDRVividForeignHeader);
    if (status == QVHDRVividOk) {
        status = expectCode(in, 16, kProviderCode, QVHDRVividForeignHeader);
    }
    if (status == QVHDRVividOk) {
        status = expectCode(in, 16, kProviderOrientedCode, QVHDRVividForeignHeader);
    }
    if (status == QVHDRVividOk) {
        status = expectCode(in, 8, kOneWindow, QVHDRVividOtherStartCode);
    }
    return status;
}

}  // namespace

namespace qv_hdr_vivid_parser {

int fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(const QVSeiItem& item,
                                                             QVHDRVividDynamicMetadata* metadata) {
    if (metadata == nullptr || item.payloadData == nullptr) {
        return QVHDRVividNullArgument;
    }
    if (item.codecId != QVCodecIDHevc || item.payloadType != kUserDataRegisteredItuTT35) {
        return QVHDRVividOtherItem;
    }
    VividBits in(item.payloadData, item.payloadSize);
    const QVHDRVividStatus header = readHeader(in);
    if (header != QVHDRVividOk) {
        return header;
    }
    QVHDRVividDynamicMetadata read{};
    read.system_start_code = kOneWindow;
    readWindow(in, read);
    if (in.ranOut()) {
        return QVHDRVividTruncated;
    }
    *metadata = read;
    return QVHDRVividOk;
}

}  // namespace qv_hdr_vivid_parser
