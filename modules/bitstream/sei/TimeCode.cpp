// Time codes of H.265.
#include "bitstream/sei/TimeCode.h"

#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/TimeCodeSyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(TimeCode, time_code);

}  // namespace qv::sei
