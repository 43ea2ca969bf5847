// What of a picture is to be displayed.
#include "bitstream/sei/PictureDisplay.h"

#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/PictureDisplaySyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(PanScanRect, pan_scan_rect);
QV_SEI_PAYLOAD(NoDisplay, no_display);

}  // namespace qv::sei
