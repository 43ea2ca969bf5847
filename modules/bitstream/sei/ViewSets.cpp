// Messages of multiview streams that list views or operation points.
#include "bitstream/sei/ViewSets.h"

#include <cstddef>

#include "bitstream/sei/EntryTemplates.h"
#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/ViewSetsSyntax.h"

template <>
constexpr size_t qv::detail::kClearedBytes<qv::sei::OperationPointNotPresent> =
    offsetof(qv::sei::OperationPointNotPresent, operation_point_not_present_id);

template <>
constexpr size_t qv::detail::kClearedBytes<qv::sei::MultiviewViewPosition> =
    offsetof(qv::sei::MultiviewViewPosition, view_position);

namespace qv::sei {

QV_SEI_PAYLOAD(NonRequiredViewComponent, non_required_view_component);
QV_SEI_PAYLOAD(OperationPointNotPresent, operation_point_not_present);
QV_SEI_PAYLOAD(MultiviewViewPosition, multiview_view_position);

QV_SEI_ENTRIES(NonRequiredViewComponent, entries, NonRequiredViews, non_required_views);

}  // namespace qv::sei
