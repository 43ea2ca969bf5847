/// \file
/// Messages of scalable streams that list layers.
#ifndef QV_BITSTREAM_SEI_LAYERSETS_H
#define QV_BITSTREAM_SEI_LAYERSETS_H

#include <cstdint>

#include "bitstream/sei/EntryReader.h"
#include "bitstream/sei/ScalabilityInfo.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// sub_pic_scalable_layer(), H.264 G.13.1.2 and G.13.2.2.
struct SubPicScalableLayer {
    static constexpr PayloadTypes kPayloadTypes = {25, kNoPayloadType};  ///< payloadType
    uint32_t layer_id;                                                   ///< ue(v), 0..2047
};

/// The layer representations that one of a dependency_id does not need. Elements beyond the count are not
/// set.
struct NonRequiredLayerReps {
    static constexpr uint32_t kMostLayerReps = 128;  ///< the greatest number of layer representations

    uint32_t entry_dependency_id;                                  ///< u(3)
    uint32_t num_non_required_layer_reps_minus1;                   ///< ue(v), 0..127
    uint8_t non_required_layer_rep_dependency_id[kMostLayerReps];  ///< u(3)
    uint8_t non_required_layer_rep_quality_id[kMostLayerReps];     ///< u(4)
};

/// non_required_layer_rep(), H.264 G.13.1.3 and G.13.2.3. Entries beyond the count are not set.
struct NonRequiredLayerRep {
    static constexpr PayloadTypes kPayloadTypes = {26, kNoPayloadType};  ///< payloadType
    static constexpr uint32_t kMostEntries = 8;                          ///< the greatest number of entries

    uint32_t num_info_entries_minus1;            ///< ue(v), 0..7
    NonRequiredLayerReps entries[kMostEntries];  ///< num_info_entries_minus1 + 1 of them
};

/// priority_layer_info(), H.264 G.13.1.4 and G.13.2.4.
struct PriorityLayerInfo {
    static constexpr PayloadTypes kPayloadTypes = {27, kNoPayloadType};  ///< payloadType
    static constexpr uint32_t kMostPriorityIds = 15;                     ///< the greatest num_priority_ids

    uint32_t pr_dependency_id;                   ///< u(3)
    uint32_t num_priority_ids;                   ///< u(4)
    uint32_t alt_priority_id[kMostPriorityIds];  ///< u(6)
};

/// layers_not_present(), H.264 G.13.1.5 and G.13.2.5. Elements beyond num_layers are not set. H.265 F.14.2.3
/// has a message of the same name with another syntax.
struct AvcLayersNotPresent {
    static constexpr PayloadTypes kPayloadTypes = {28, kNoPayloadType};  ///< payloadType
    static constexpr uint32_t kMostLayers = 2047;                        ///< the greatest num_layers

    uint32_t num_layers;             ///< ue(v), 0..2047
    uint16_t layer_id[kMostLayers];  ///< ue(v), 0..2047
};

/// layer_dependency_change(), H.264 G.13.1.6 and G.13.2.6.
struct LayerDependencyChange {
    static constexpr PayloadTypes kPayloadTypes = {29, kNoPayloadType};  ///< payloadType

    uint32_t num_layers_minus1;  ///< ue(v), 0..2047
    CodedBits layers;            ///< layer_id[ i ] and what follows it, borrowed; see LayerDependencies
};

/// A layer of layer_dependency_change(). Elements of the array beyond the count are not set.
struct LayerDependency {
    uint32_t layer_id;                                         ///< ue(v), 0..2047
    bool layer_dependency_info_present_flag;                   ///< u(1)
    uint32_t num_directly_dependent_layers;                    ///< ue(v), 0..255
    uint32_t layer_dependency_info_src_layer_id_delta_minus1;  ///< ue(v), without the present_flag

    /// ue(v), with layer_dependency_info_present_flag.
    uint32_t directly_dependent_layer_id_delta_minus1[ScalabilityLayer::kMostDependencies];
};

/// Reads the layers.
using LayerDependencies = EntryReader<LayerDependencyChange, LayerDependency>;

}  // namespace qv::sei

#endif
