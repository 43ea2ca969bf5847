// What the samples of depth views mean, and where they are.
#include "bitstream/sei/DepthRepresentation.h"

#include "bitstream/sei/DepthRepresentationSyntax.h"
#include "bitstream/sei/EntryTemplates.h"
#include "bitstream/sei/PayloadTemplates.h"

namespace qv::sei {

QV_SEI_PAYLOAD(DepthRepresentationInfo, depth_representation_info);
QV_SEI_PAYLOAD(DepthTiming, depth_timing);
QV_SEI_PAYLOAD(DepthSamplingInfo, depth_sampling_info);
QV_SEI_PAYLOAD(ConstrainedDepthParameterSetIdentifier, constrained_depth_parameter_set_identifier);

QV_SEI_ENTRIES(DepthRepresentationInfo, views, DepthRepresentation, depth_representation);
QV_SEI_ENTRIES(DepthRepresentationInfo, depth_nonlinear_representation_model, NonlinearDepth,
               nonlinear_depth);
QV_SEI_ENTRIES(DepthTiming, offsets, DepthTimingOffset, depth_timing_offset);
QV_SEI_ENTRIES(DepthSamplingInfo, positions, DepthGridPosition, depth_grid_view);

}  // namespace qv::sei
