// Where decoding may begin.
#include "bitstream/sei/RandomAccess.h"

#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/RandomAccessSyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(AvcRecoveryPoint, recovery_point);
QV_SEI_PAYLOAD(HevcRecoveryPoint, recovery_point);
QV_SEI_PAYLOAD(RegionRefreshInfo, region_refresh_info);
QV_SEI_PAYLOAD(DependentRapIndication, dependent_rap_indication);

}  // namespace qv::sei
