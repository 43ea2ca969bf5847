// Stereo video and frame packing.
#include "bitstream/sei/FramePacking.h"

#include "bitstream/sei/FramePackingSyntax.h"
#include "bitstream/sei/PayloadTemplates.h"

namespace qv::sei {

QV_SEI_PAYLOAD(StereoVideoInfo, stereo_video_info);
QV_SEI_PAYLOAD(FramePackingArrangement, frame_packing_arrangement);
QV_SEI_PAYLOAD(SegmentedRectFramePackingArrangement, segmented_rect_frame_packing_arrangement);

}  // namespace qv::sei
