#include "analysis/SeiNames.h"

#include "bitstream/names/AvcSeiPayloadTypes.h"
#include "bitstream/names/Colour.h"
#include "bitstream/names/HevcSeiPayloadTypes.h"

namespace qvinspect {

const char* seiName(QVCodecID codec, uint32_t payloadType) {
    return codec == QVCodecIDAvc ? qv::avc::seiPayloadTypeName(payloadType).name
                                 : qv::hevc::seiPayloadTypeName(payloadType).name;
}

const char* transferName(uint32_t transfer_characteristics) {
    return qv::transferCharacteristicsName(transfer_characteristics).name;
}

}  // namespace qvinspect
