// Scenes and the transitions between them.
#include "bitstream/sei/SceneInfo.h"

#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/SceneInfoSyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(SceneInfo, scene_info);

}  // namespace qv::sei
