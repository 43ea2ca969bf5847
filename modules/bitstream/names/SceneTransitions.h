/// \file
/// Names of transitions between scenes.
#ifndef QV_BITSTREAM_NAMES_SCENETRANSITIONS_H
#define QV_BITSTREAM_NAMES_SCENETRANSITIONS_H

#include <cstdint>

#include "bitstream/names/Name.h"

namespace qv {

/// scene_transition_type.
constexpr Name kSceneTransitionTypes[] = {
    {0, "No transition", "H.264 D.2.11, H.265 D.3.9"},
    {1, "Fade to black", "H.264 D.2.11, H.265 D.3.9"},
    {2, "Fade from black", "H.264 D.2.11, H.265 D.3.9"},
    {3, "Unspecified transition from or to a constant colour", "H.264 D.2.11, H.265 D.3.9"},
    {4, "Dissolve", "H.264 D.2.11, H.265 D.3.9"},
    {5, "Wipe", "H.264 D.2.11, H.265 D.3.9"},
    {6, "Unspecified mixture of two scenes", "H.264 D.2.11, H.265 D.3.9"},
};

/// The name of a value of scene_transition_type; "Reserved" above 6.
constexpr Name sceneTransitionTypeName(uint32_t scene_transition_type) {
    return nameOf(kSceneTransitionTypes, scene_transition_type, "Reserved");
}

}  // namespace qv

#endif
