// Displays that a multiview stream was made for.
#include "bitstream/sei/ReferenceDisplays.h"

#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/ReferenceDisplaysSyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(ThreeDimensionalReferenceDisplaysInfo, three_dimensional_reference_displays_info);

}  // namespace qv::sei
