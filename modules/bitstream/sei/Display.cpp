// What a display does with the decoded pictures.
#include "bitstream/sei/Display.h"

#include "bitstream/sei/DisplaySyntax.h"
#include "bitstream/sei/PayloadTemplates.h"

namespace qv::sei {

QV_SEI_PAYLOAD(DeblockingFilterDisplayPreference, deblocking_filter_display_preference);
QV_SEI_PAYLOAD(DisplayOrientation, display_orientation);

}  // namespace qv::sei
