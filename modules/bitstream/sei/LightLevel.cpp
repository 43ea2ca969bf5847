// Light levels of the content.
#include "bitstream/sei/LightLevel.h"

#include "bitstream/sei/LightLevelSyntax.h"
#include "bitstream/sei/PayloadTemplates.h"

namespace qv::sei {

QV_SEI_PAYLOAD(ContentLightLevelInfo, content_light_level_info);

}  // namespace qv::sei
