// HRD parameters of the temporal layers of a base layer or base view.
#include "bitstream/sei/TemporalHrd.h"

#include "bitstream/sei/EntryTemplates.h"
#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/TemporalHrdSyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(BaseLayerTemporalHrd, base_layer_temporal_hrd);
QV_SEI_PAYLOAD(BaseViewTemporalHrd, base_view_temporal_hrd);

QV_SEI_ENTRIES(BaseLayerTemporalHrd, layers, TemporalHrd, temporal_hrd);
QV_SEI_ENTRIES(BaseViewTemporalHrd, layers, TemporalHrd, temporal_hrd);

}  // namespace qv::sei
