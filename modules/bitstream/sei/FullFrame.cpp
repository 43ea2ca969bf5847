// Frozen frames, snapshots and progressive refinement.
#include "bitstream/sei/FullFrame.h"

#include "bitstream/sei/FullFrameSyntax.h"
#include "bitstream/sei/PayloadTemplates.h"

namespace qv::sei {

QV_SEI_PAYLOAD(FullFrameFreeze, full_frame_freeze);
QV_SEI_PAYLOAD(FullFrameFreezeRelease, full_frame_freeze_release);
QV_SEI_PAYLOAD(PictureSnapshot, picture_snapshot);
QV_SEI_PAYLOAD(ProgressiveRefinementSegmentStart, progressive_refinement_segment_start);
QV_SEI_PAYLOAD(ProgressiveRefinementSegmentEnd, progressive_refinement_segment_end);

}  // namespace qv::sei
