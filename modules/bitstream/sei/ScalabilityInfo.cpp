// The scalability information message of scalable streams.
#include "bitstream/sei/ScalabilityInfo.h"

#include "bitstream/sei/EntryTemplates.h"
#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/ScalabilityInfoSyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(ScalabilityInfo, scalability_info);

QV_SEI_ENTRIES(ScalabilityInfo, layers, ScalabilityLayer, scalability_layer);
QV_SEI_ENTRIES(ScalabilityLayer, rois, RegionOfInterest, region_of_interest);
QV_SEI_ENTRIES(ScalabilityInfo, priority_layers, PriorityLayer, priority_layer);

}  // namespace qv::sei
