// Alternative depth: the views of a global view and depth stream.
#include "bitstream/sei/AlternativeDepth.h"

#include "bitstream/sei/AlternativeDepthSyntax.h"
#include "bitstream/sei/EntryTemplates.h"
#include "bitstream/sei/PayloadTemplates.h"

namespace qv::sei {

QV_SEI_PAYLOAD(AlternativeDepthInfo, alternative_depth_info);

QV_SEI_ENTRIES(AlternativeDepthInfo, depth_ranges, GvdDepthRange, gvd_depth_range);
QV_SEI_ENTRIES(AlternativeDepthInfo, views, GvdView, gvd_view);

}  // namespace qv::sei
