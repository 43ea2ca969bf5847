// Scenes as syntax functions.
#ifndef QV_BITSTREAM_SEI_SCENEINFOSYNTAX_H
#define QV_BITSTREAM_SEI_SCENEINFOSYNTAX_H

#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/SceneInfo.h"

namespace qv::sei {

// scene_info(), H.264 D.1.11, H.265 D.2.9
template <class Syntax>
void scene_info(Syntax& s, const Context& context, SceneInfo& payload) {
    static constexpr SharedStructure kStructure = sharedStructure("scene_info()", "D.1.11", "D.2.9");
    const Within<Syntax> within(s, kStructure.of(context));
    s.flag("scene_info_present_flag", payload.scene_info_present_flag);
    if (payload.scene_info_present_flag) {
        if (context.codec == Codec::Hevc) {
            s.flag("prev_scene_id_valid_flag", payload.prev_scene_id_valid_flag);
        }
        s.ue("scene_id", payload.scene_id);
        s.ue("scene_transition_type", payload.scene_transition_type, 0, 6);
        if (payload.scene_transition_type > 3) {
            s.ue("second_scene_id", payload.second_scene_id);
        }
    }
}

}  // namespace qv::sei

#endif
