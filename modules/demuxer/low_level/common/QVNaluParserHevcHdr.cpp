// mastering_display_colour_volume(), content_light_level_info() and alternative_transfer_characteristics(),
// ITU-T H.265 (08/2021) D.2.28, D.2.35, D.2.38.
#include <cstdint>

#include "QVNaluParser.h"
#include "detail/Log.h"
#include "detail/PlainBits.h"

using namespace qv_detail;

namespace {

// isValid of the two static metadata records (D19); every other record has 1.
constexpr uint32_t kStaticMetadataValid = 2;

}  // namespace

int QVNaluParser::parserHevcMasteringDisplayInfo(QVByteStream& stream, int /*payloadSize*/,
                                                 QVHevcSeiMasteringDisplay* masteringDisplay) {
    if (masteringDisplay == nullptr) {
        QV_LOG(QVTraceError, "parserHevcMasteringDisplayInfo",
               "parserHevcMasteringDisplayInfo: masteringDisplay is NULL!\n");
        return QVResultFailed;
    }
    if (stream.data == nullptr) {
        *masteringDisplay = {};
        masteringDisplay->isValid = kStaticMetadataValid;
        return QVResultOk;
    }
    PlainBits in(stream);
    for (int c = 0; c < 3; ++c) {
        masteringDisplay->display_primaries_x[c] = static_cast<uint16_t>(in.u(16));
        masteringDisplay->display_primaries_y[c] = static_cast<uint16_t>(in.u(16));
    }
    masteringDisplay->white_point_x = in.u(16);
    masteringDisplay->white_point_y = in.u(16);
    masteringDisplay->max_display_mastering_luminance = in.u(32);
    masteringDisplay->min_display_mastering_luminance = in.u(32);
    masteringDisplay->isValid = kStaticMetadataValid;
    return QVResultOk;
}

int QVNaluParser::parserHevcContentLightInfo(QVByteStream& stream, int /*payloadSize*/,
                                             QVHevcSeiContentLight* contentLight) {
    if (contentLight == nullptr) {
        QV_LOG(QVTraceError, "parserHevcContentLightInfo",
               "parserHevcContentLightInfo: contentLight is NULL!\n");
        return QVResultFailed;
    }
    contentLight->max_content_light_level = 0;
    contentLight->max_pic_average_light_level = 0;
    if (stream.data != nullptr) {
        PlainBits in(stream);
        contentLight->max_content_light_level = static_cast<uint16_t>(in.u(16));
        contentLight->max_pic_average_light_level = static_cast<uint16_t>(in.u(16));
    }
    contentLight->isValid = kStaticMetadataValid;
    return QVResultOk;
}

int QVNaluParser::parserHevcAlternativeTransfer(QVByteStream& stream, int /*payloadSize*/,
                                                QVHevcSeiAlternativeTransfer* alternativeTransfer) {
    if (alternativeTransfer == nullptr) {
        QV_LOG(QVTraceError, "parserHevcAlternativeTransfer",
               "parserHevcAlternativeTransfer: alternativeTransfer is NULL!\n");
        return QVResultFailed;
    }
    alternativeTransfer->isValid = 1;
    alternativeTransfer->preferred_transfer_characteristics = stream.hasData() ? PlainBits(stream).u(8) : 0;
    return QVResultOk;
}
