// HDR10+ dynamic metadata.
#include "bitstream/sei/Hdr10Plus.h"

#include <cstddef>

#include "bitstream/sei/Hdr10PlusSyntax.h"
#include "bitstream/sei/T35BodyTemplates.h"

template <>
constexpr size_t qv::detail::kClearedBytes<qv::sei::Hdr10Plus> =
    offsetof(qv::sei::Hdr10Plus, targeted_system_display_actual_peak_luminance);

namespace qv::sei {

QV_T35_BODY(Hdr10Plus);

}  // namespace qv::sei
