// Exposure times.
#include "bitstream/sei/ShutterInterval.h"

#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/ShutterIntervalSyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(ShutterIntervalInfo, shutter_interval_info);

}  // namespace qv::sei
