// Slice groups that decode without others.
#include "bitstream/sei/SliceGroupSet.h"

#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/SliceGroupSetSyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(MotionConstrainedSliceGroupSet, motion_constrained_slice_group_set);

}  // namespace qv::sei
