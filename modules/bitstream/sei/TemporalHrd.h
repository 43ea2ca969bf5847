/// \file
/// HRD parameters of the temporal layers of a base layer or base view.
#ifndef QV_BITSTREAM_SEI_TEMPORALHRD_H
#define QV_BITSTREAM_SEI_TEMPORALHRD_H

#include <cstdint>

#include "bitstream/avc/VuiExtensionTiming.h"
#include "bitstream/sei/EntryReader.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// base_layer_temporal_hrd(), H.264 G.13.1.8 and G.13.2.8.
struct BaseLayerTemporalHrd {
    static constexpr PayloadTypes kPayloadTypes = {31, kNoPayloadType};  ///< payloadType

    uint32_t num_of_temporal_layers_in_base_layer_minus1;  ///< ue(v), 0..7
    CodedBits layers;  ///< sei_temporal_id[ i ] and what follows it, borrowed; see BaseLayerTemporalHrds
};

/// base_view_temporal_hrd(), H.264 H.13.1.9 and H.13.2.9.
struct BaseViewTemporalHrd {
    static constexpr PayloadTypes kPayloadTypes = {44, kNoPayloadType};  ///< payloadType

    uint32_t num_of_temporal_layers_in_base_view_minus1;  ///< ue(v), 0..7
    CodedBits layers;  ///< sei_mvc_temporal_id[ i ] and what follows it, borrowed; see BaseViewTemporalHrds
};

/// The temporal layers up to one: their timing and HRD parameters. The standard prefixes the names of the
/// elements with sei_ and sei_mvc_.
struct TemporalHrd {
    uint32_t temporal_id;            ///< u(3)
    avc::VuiExtensionTiming timing;  ///< timing_info_present_flag to pic_struct_present_flag
};

/// Reads the temporal layers of a base layer.
using BaseLayerTemporalHrds = EntryReader<BaseLayerTemporalHrd, TemporalHrd>;

/// Reads the temporal layers of a base view.
using BaseViewTemporalHrds = EntryReader<BaseViewTemporalHrd, TemporalHrd>;

}  // namespace qv::sei

#endif
