// Multiview scenes: their disparities and the cameras that took them.
#include "bitstream/sei/MultiviewScene.h"

#include "bitstream/sei/EntryTemplates.h"
#include "bitstream/sei/MultiviewSceneSyntax.h"
#include "bitstream/sei/PayloadTemplates.h"

namespace qv::sei {

QV_SEI_PAYLOAD(MultiviewSceneInfo, multiview_scene_info);
QV_SEI_PAYLOAD(MultiviewAcquisitionInfo, multiview_acquisition_info);

QV_SEI_ENTRIES(MultiviewAcquisitionInfo, intrinsic_params, IntrinsicParams, intrinsic_params);
QV_SEI_ENTRIES(MultiviewAcquisitionInfo, extrinsic_params, ExtrinsicParams, extrinsic_params);

}  // namespace qv::sei
