/// \file
/// Light levels of the content.
#ifndef QV_BITSTREAM_SEI_LIGHTLEVEL_H
#define QV_BITSTREAM_SEI_LIGHTLEVEL_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"

namespace qv::sei {

/// content_light_level_info(), H.264 D.1.31, H.265 D.2.35.
struct ContentLightLevelInfo {
    static constexpr PayloadTypes kPayloadTypes = {144, 144};  ///< payloadType
    uint32_t max_content_light_level;                          ///< u(16), cd/m²; 0 is unknown
    uint32_t max_pic_average_light_level;                      ///< u(16), cd/m²; 0 is unknown
};

}  // namespace qv::sei

#endif
