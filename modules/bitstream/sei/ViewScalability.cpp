// The view scalability information messages of multiview streams.
#include "bitstream/sei/ViewScalability.h"

#include "bitstream/sei/EntryTemplates.h"
#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/ViewScalabilitySyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(ViewScalabilityInfo, view_scalability_info);
QV_SEI_PAYLOAD(MvcdViewScalabilityInfo, mvcd_view_scalability_info);

QV_SEI_ENTRIES(ViewScalabilityInfo, operation_points, ViewOperationPoint, view_operation_point);
QV_SEI_ENTRIES(MvcdViewScalabilityInfo, operation_points, ViewOperationPoint, view_operation_point);

}  // namespace qv::sei
