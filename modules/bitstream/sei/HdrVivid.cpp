// HDR Vivid dynamic metadata.
#include "bitstream/sei/HdrVivid.h"

#include "bitstream/sei/HdrVividSyntax.h"
#include "bitstream/sei/T35BodyTemplates.h"

namespace qv::sei {

QV_T35_BODY(HdrVivid);

}  // namespace qv::sei
