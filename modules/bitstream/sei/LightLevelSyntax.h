// Light levels of the content as syntax functions.
#ifndef QV_BITSTREAM_SEI_LIGHTLEVELSYNTAX_H
#define QV_BITSTREAM_SEI_LIGHTLEVELSYNTAX_H

#include "bitstream/sei/LightLevel.h"
#include "bitstream/sei/PayloadSyntax.h"

namespace qv::sei {

// content_light_level_info(), H.264 D.1.31, H.265 D.2.35
template <class Syntax>
void content_light_level_info(Syntax& s, const Context& context, ContentLightLevelInfo& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("content_light_level_info()", "D.1.31", "D.2.35");
    const Within<Syntax> within(s, kStructure.of(context));
    s.u(16, "max_content_light_level", payload.max_content_light_level);
    s.u(16, "max_pic_average_light_level", payload.max_pic_average_light_level);
}

}  // namespace qv::sei

#endif
