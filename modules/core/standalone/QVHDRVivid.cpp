// The HDR Vivid metadata of one T.35 message (T/UWA 005.1), read with the syntax functions of the standards'
// library. Only their templates are used: the core does not link that library.
#include "QVHDRVivid.h"

#include "QVHDRVividDynamicMetadata.h"
#include "QVSeiItem.h"
#include "bitstream/sei/HdrVividWindowSyntax.h"

namespace {

constexpr uint32_t kUserDataRegisteredItuTT35 = 4;
constexpr uint32_t kCountryCode = 0x26;
constexpr uint32_t kProviderCode = 0x0004;
constexpr uint32_t kProviderOrientedCode = 0x0005;
constexpr uint32_t kOneWindow = 0x01;

// Reads u(n) from a payload without emulation prevention bytes. Past the end it returns zero bits, and
// ranOut() reports it.
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

    // --- The vocabulary of the syntax functions ---

    template <class Name>
    void u(uint32_t n, const Name& name, uint32_t& field) {
        static_cast<void>(name);
        field = u(n);
    }

    template <class Name>
    void flag(const Name& name, bool& field) {
        static_cast<void>(name);
        field = u(1) != 0;
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

// --- The record of this core ---

QVHDRVividSpline splineOf(const qv::sei::HdrVividSpline& spline) {
    return {spline.TH_enable_mode, spline.hasMiddleBase() ? 1U : 0U, spline.TH_enable_MB,
            spline.TH_enable,      spline.TH_enable_Delta1,          spline.TH_enable_Delta2,
            spline.enable_Strength};
}

QVHDRVividToneMapping toneMappingOf(const qv::sei::HdrVividToneMapping& mapping) {
    QVHDRVividToneMapping result{};
    result.targeted_system_display_maximum_luminance_pq =
        mapping.targeted_system_display_maximum_luminance_pq;
    result.base_enable_flag = mapping.base_enable_flag ? 1 : 0;
    result.base_param_m_p = mapping.base_param_m_p;
    result.base_param_m_m = mapping.base_param_m_m;
    result.base_param_m_a = mapping.base_param_m_a;
    result.base_param_m_b = mapping.base_param_m_b;
    result.base_param_m_n = mapping.base_param_m_n;
    result.base_param_K1 = mapping.base_param_K1;
    result.base_param_K2 = mapping.base_param_K2;
    result.base_param_K3 = mapping.base_param_K3;
    result.base_param_Delta_enable_mode = mapping.base_param_Delta_enable_mode;
    result.base_param_enable_Delta = mapping.base_param_enable_Delta;
    result.three_Spline_enable_flag = mapping.three_Spline_enable_flag ? 1 : 0;
    result.three_Spline_enable_num = mapping.three_Spline_enable_num;
    result.numSplines = mapping.splineCount();
    for (uint32_t i = 0; i < result.numSplines; ++i) {
        result.splines[i] = splineOf(mapping.splines[i]);
    }
    return result;
}

QVHDRVividDynamicMetadata metadataOf(const qv::sei::HdrVivid& metadata) {
    QVHDRVividDynamicMetadata result{};
    result.system_start_code = kOneWindow;
    result.minimum_maxrgb_pq = metadata.minimum_maxrgb_pq;
    result.average_maxrgb_pq = metadata.average_maxrgb_pq;
    result.variance_maxrgb_pq = metadata.variance_maxrgb_pq;
    result.maximum_maxrgb_pq = metadata.maximum_maxrgb_pq;
    result.tone_mapping_enable_mode_flag = metadata.tone_mapping_enable_mode_flag ? 1 : 0;
    result.tone_mapping_param_enable_num = metadata.tone_mapping_param_enable_num;
    result.numToneMappings = metadata.toneMappingCount();
    for (uint32_t i = 0; i < result.numToneMappings; ++i) {
        result.toneMappings[i] = toneMappingOf(metadata.toneMappings[i]);
    }
    result.color_saturation_mapping_enable_flag = metadata.color_saturation_mapping_enable_flag ? 1 : 0;
    result.color_saturation_enable_num = metadata.color_saturation_enable_num;
    for (uint32_t i = 0; i < metadata.gainCount(); ++i) {
        result.color_saturation_enable_gain[i] = metadata.color_saturation_enable_gain[i];
    }
    return result;
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
    qv::sei::HdrVivid read{};
    qv::sei::hdr_vivid_window(in, read);
    if (in.ranOut()) {
        return QVHDRVividTruncated;
    }
    *metadata = metadataOf(read);
    return QVHDRVividOk;
}

}  // namespace qv_hdr_vivid_parser
