#include "analysis/SeiNames.h"

#include <algorithm>
#include <initializer_list>

#include "bitstream/names/AvcSeiPayloadTypes.h"
#include "bitstream/names/Colour.h"
#include "bitstream/names/HevcSeiPayloadTypes.h"

namespace qvinspect {

namespace {

constexpr uint8_t kCountryUnitedStates = 0xB5;
constexpr uint8_t kCountryChina = 0x26;
constexpr uint8_t kCountryExtended = 0xFF;

uint32_t identifierAt(const std::vector<uint8_t>& payload, size_t at) {
    if (payload.size() < at + 4) {
        return 0;
    }
    return uint32_t{payload[at]} << 24 | uint32_t{payload[at + 1]} << 16 | uint32_t{payload[at + 2]} << 8 |
           payload[at + 3];
}

bool startsWith(const std::vector<uint8_t>& payload, std::initializer_list<uint8_t> bytes) {
    return payload.size() >= bytes.size() && std::equal(bytes.begin(), bytes.end(), payload.begin());
}

}  // namespace

const char* seiName(QVCodecID codec, uint32_t payloadType) {
    return codec == QVCodecIDAvc ? qv::avc::seiPayloadTypeName(payloadType).name
                                 : qv::hevc::seiPayloadTypeName(payloadType).name;
}

T35Kind t35Kind(const std::vector<uint8_t>& payload) {
    constexpr uint32_t kGa94 = 0x47413934;
    constexpr uint32_t kDtg1 = 0x44544731;
    // T/UWA 005.1 and SMPTE ST 2094-40 are identified by country, provider and provider-oriented code.
    if (startsWith(payload, {kCountryChina, 0x00, 0x04, 0x00, 0x05})) {
        return T35Kind::HdrVivid;
    }
    if (startsWith(payload, {kCountryUnitedStates, 0x00, 0x3C, 0x00, 0x01})) {
        return T35Kind::Hdr10Plus;
    }
    const size_t country = startsWith(payload, {kCountryExtended}) ? 2 : 1;
    switch (identifierAt(payload, country + 2)) {
        case kGa94:
            return T35Kind::A53Captions;
        case kDtg1:
            return T35Kind::Afd;
        default:
            return T35Kind::Unknown;
    }
}

const char* t35KindName(T35Kind kind) {
    switch (kind) {
        case T35Kind::A53Captions:
            return "A/53 user data (GA94)";
        case T35Kind::Afd:
            return "active format description (DTG1)";
        case T35Kind::Hdr10Plus:
            return "HDR10+ (ST 2094-40)";
        case T35Kind::HdrVivid:
            return "HDR Vivid (T/UWA 005.1)";
        case T35Kind::Unknown:
            break;
    }
    return "unknown";
}

const char* transferName(uint32_t transfer_characteristics) {
    return qv::transferCharacteristicsName(transfer_characteristics).name;
}

const char* activeFormatName(uint32_t active_format) {
    switch (active_format) {
        case 2:
            return "box 16:9, top";
        case 3:
            return "box 14:9, top";
        case 4:
            return "box wider than 16:9, centre";
        case 8:
            return "as the coded frame";
        case 9:
            return "4:3, centre";
        case 10:
            return "16:9, centre";
        case 11:
            return "14:9, centre";
        case 13:
            return "4:3 with shoot and protect 14:9 centre";
        case 14:
            return "16:9 with shoot and protect 14:9 centre";
        case 15:
            return "16:9 with shoot and protect 4:3 centre";
        default:
            return "reserved";
    }
}

const char* framePackingName(uint32_t frame_packing_arrangement_type) {
    switch (frame_packing_arrangement_type) {
        case 0:
            return "checkerboard";
        case 1:
            return "column interleaving";
        case 2:
            return "row interleaving";
        case 3:
            return "side by side";
        case 4:
            return "top and bottom";
        case 5:
            return "temporal interleaving";
        case 6:
            return "2D";
        case 7:
            return "tiles";
        default:
            return "reserved";
    }
}

const char* avcPicStructName(uint32_t pic_struct) {
    switch (pic_struct) {
        case 0:
            return "frame";
        case 1:
            return "top field";
        case 2:
            return "bottom field";
        case 3:
            return "top, bottom field";
        case 4:
            return "bottom, top field";
        case 5:
            return "top, bottom, top field repeated";
        case 6:
            return "bottom, top, bottom field repeated";
        case 7:
            return "frame doubling";
        case 8:
            return "frame tripling";
        default:
            return "reserved";
    }
}

}  // namespace qvinspect
