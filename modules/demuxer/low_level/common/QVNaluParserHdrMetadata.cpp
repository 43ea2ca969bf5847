// HDR10 static metadata from a kept mastering display item, and the call of the host's HDR Vivid parser.
// mastering_display_colour_volume(), ITU-T H.265 (08/2021) D.2.28.
#include <cstdint>

#include "QVHDRVivid.h"
#include "QVNaluParser.h"
#include "detail/PlainBits.h"
#include "detail/SeiTypes.h"

using namespace qv_detail;

namespace {

bool isMasteringDisplayItem(const QVSeiItem& item) {
    return item.payloadData != nullptr && item.payloadSize != 0 && item.codecId == QVCodecIDHevc &&
           item.payloadType == kSeiMasteringDisplayColourVolume;
}

}  // namespace

int QVNaluParser::fillHDR10StaticMetadataFromHevcMasteringDisplayInfoSei(const QVSeiItem& item,
                                                                         QVHDR10StaticMetadata* metadata) {
    if (metadata == nullptr || !isMasteringDisplayItem(item)) {
        return QVResultInvalidData;
    }
    // If the copy cannot be allocated, the stream is empty: every field is then 0, which is not a failure.
    QVByteStream stream(item.payloadData, item.payloadSize);
    PlainBits in(stream);
    for (int c = 0; c < 3; ++c) {
        metadata->display_primaries_x[c] = static_cast<uint16_t>(in.u(16));
        metadata->display_primaries_y[c] = static_cast<uint16_t>(in.u(16));
    }
    metadata->white_point_x = static_cast<uint16_t>(in.u(16));
    metadata->white_point_y = static_cast<uint16_t>(in.u(16));
    metadata->max_display_mastering_luminance = in.u(32);
    metadata->min_display_mastering_luminance = in.u(32);
    return QVResultOk;
}

int QVNaluParser::fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(
    const QVSeiItem& item, QVHDRVividDynamicMetadata* metadata) {
    return qv_hdr_vivid_parser::fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(item, metadata);
}
