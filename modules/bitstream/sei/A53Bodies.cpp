// The bodies of the T.35 messages of ATSC A/53 and their like.
#include "bitstream/sei/A53.h"

#include "bitstream/sei/A53Syntax.h"
#include "bitstream/sei/T35BodyTemplates.h"

namespace qv::sei {

QV_T35_BODY(AtscCaptions);
QV_T35_BODY(SatelliteCaptions);
QV_T35_BODY(AtscBarData);
QV_T35_BODY(ActiveFormatDescription);

}  // namespace qv::sei
