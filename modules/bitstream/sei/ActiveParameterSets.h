/// \file
/// The parameter sets that are active.
#ifndef QV_BITSTREAM_SEI_ACTIVEPARAMETERSETS_H
#define QV_BITSTREAM_SEI_ACTIVEPARAMETERSETS_H

#include <cstdint>

#include "bitstream/hevc/Vps.h"
#include "bitstream/sei/SeiPayload.h"

namespace qv::sei {

/// active_parameter_sets(), H.265 D.2.21 and D.3.21. Its syntax depends on the VPS that it names.
struct ActiveParameterSets {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 129};  ///< payloadType
    static constexpr uint32_t kMostSpsIds = 16;                           ///< num_sps_ids_minus1, plus 1

    uint32_t active_video_parameter_set_id;             ///< u(4)
    bool self_contained_cvs_flag;                       ///< u(1)
    bool no_parameter_set_update_flag;                  ///< u(1)
    uint32_t num_sps_ids_minus1;                        ///< ue(v), 0..15
    uint32_t active_seq_parameter_set_id[kMostSpsIds];  ///< ue(v), 0..15; that of the base layer first

    uint32_t firstLayer;  ///< the first layer with layer_sps_idx: vps_base_layer_internal_flag
    uint32_t layers;      ///< MaxLayersMinus1 + 1, 1..63

    /// ue(v), 0..num_sps_ids_minus1: the entry of active_seq_parameter_set_id for layer i, \ref firstLayer to
    /// \ref layers - 1. Other entries are 0.
    uint32_t layer_sps_idx[hevc::kMostLayers];
};

}  // namespace qv::sei

#endif
