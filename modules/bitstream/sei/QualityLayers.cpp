// Messages of scalable streams about single layer representations.
#include "bitstream/sei/QualityLayers.h"

#include "bitstream/sei/EntryTemplates.h"
#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/QualityLayersSyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(QualityLayerIntegrityCheck, quality_layer_integrity_check);
QV_SEI_PAYLOAD(RedundantPicProperty, redundant_pic_property);
QV_SEI_PAYLOAD(Tl0DepRepIndex, tl0_dep_rep_index);
QV_SEI_PAYLOAD(TlSwitchingPoint, tl_switching_point);

QV_SEI_ENTRIES(RedundantPicProperty, layers, RedundantLayer, redundant_layer);

}  // namespace qv::sei
