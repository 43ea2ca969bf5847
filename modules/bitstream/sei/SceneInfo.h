/// \file
/// Scenes and the transitions between them.
#ifndef QV_BITSTREAM_SEI_SCENEINFO_H
#define QV_BITSTREAM_SEI_SCENEINFO_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"

namespace qv::sei {

/// scene_info(), H.264 D.1.11, H.265 D.2.9.
struct SceneInfo {
    static constexpr PayloadTypes kPayloadTypes = {9, 9};  ///< payloadType

    bool scene_info_present_flag;    ///< u(1); what follows is present with it
    bool prev_scene_id_valid_flag;   ///< u(1), H.265
    uint32_t scene_id;               ///< ue(v); 256..511 and values from 2^31 on are reserved
    uint32_t scene_transition_type;  ///< ue(v), 0..6
    uint32_t second_scene_id;        ///< ue(v), with a scene_transition_type above 3; not scene_id
};

}  // namespace qv::sei

#endif
