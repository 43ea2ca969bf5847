// Messages of scalable streams that list layers.
#include "bitstream/sei/LayerSets.h"

#include <cstddef>

#include "bitstream/sei/EntryTemplates.h"
#include "bitstream/sei/LayerSetsSyntax.h"
#include "bitstream/sei/PayloadTemplates.h"

template <>
constexpr size_t qv::detail::kClearedBytes<qv::sei::NonRequiredLayerRep> =
    offsetof(qv::sei::NonRequiredLayerRep, entries);

template <>
constexpr size_t qv::detail::kClearedBytes<qv::sei::AvcLayersNotPresent> =
    offsetof(qv::sei::AvcLayersNotPresent, layer_id);

namespace qv::sei {

QV_SEI_PAYLOAD(SubPicScalableLayer, sub_pic_scalable_layer);
QV_SEI_PAYLOAD(NonRequiredLayerRep, non_required_layer_rep);
QV_SEI_PAYLOAD(PriorityLayerInfo, priority_layer_info);
QV_SEI_PAYLOAD(AvcLayersNotPresent, layers_not_present);
QV_SEI_PAYLOAD(LayerDependencyChange, layer_dependency_change);

QV_SEI_ENTRIES(LayerDependencyChange, layers, LayerDependency, layer_dependency);

}  // namespace qv::sei
