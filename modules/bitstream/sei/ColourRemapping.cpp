// How decoded colours are mapped to those of another display.
#include "bitstream/sei/ColourRemapping.h"

#include <cstddef>

#include "bitstream/sei/ColourRemappingSyntax.h"
#include "bitstream/sei/PayloadTemplates.h"

template <>
constexpr size_t qv::detail::kClearedBytes<qv::sei::KneeFunctionInfo> = offsetof(qv::sei::KneeFunctionInfo,
                                                                                 input_knee_point);

namespace qv::sei {

QV_SEI_PAYLOAD(KneeFunctionInfo, knee_function_info);
QV_SEI_PAYLOAD(ColourRemappingInfo, colour_remapping_info);

}  // namespace qv::sei
