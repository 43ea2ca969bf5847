/// \file
/// The layers of a video parameter set and what follows from its extension (H.265 F.7.4.3.1.1).
#ifndef QV_BITSTREAM_HEVC_VPSLAYERS_H
#define QV_BITSTREAM_HEVC_VPSLAYERS_H

#include <cstdint>

#include "bitstream/hevc/Hrd.h"
#include "bitstream/hevc/Vps.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Reader.h"

namespace qv::hevc {

/// The layers of a VPS, variables of H.265 F.7.4.3.1.1. Subscripts are layer indices, 0 to count - 1, unless
/// said otherwise; entries beyond are 0. Sets of layers hold layer i in bit i.
struct VpsLayers {
    uint32_t count;  ///< MaxLayersMinus1 + 1, 1..63

    /// By nuh_layer_id, 0..63; kMostLayers for one that is no layer of the VPS.
    uint16_t LayerIdxInVps[kMostLayers + 1];

    uint16_t DepthLayerFlag[kMostLayers];  ///< ScalabilityId[i][0]
    uint16_t ViewOrderIdx[kMostLayers];    ///< ScalabilityId[i][1]
    uint16_t DependencyId[kMostLayers];    ///< ScalabilityId[i][2]
    uint16_t AuxId[kMostLayers];           ///< ScalabilityId[i][3]; 1 alpha, 2 depth
    uint32_t NumViews;                     ///< 1..63
    uint16_t ViewOIdxList[kMostLayers];    ///< the values of ViewOrderIdx, NumViews of them

    /// The layers that layer i refers to itself (direct_dependency_flag), and all that it depends on
    /// (DependencyFlag).
    uint64_t directReferences[kMostLayers];
    uint64_t dependencies[kMostLayers];  ///< as directReferences; layer j is bit j

    /// The same by nuh_layer_id: what the layer depends on, nuh_layer_id j being bit j.
    uint64_t dependencyIds[kMostLayers + 1];

    uint32_t NumIndependentLayers;  ///< 1..63

    /// TreePartitionLayerIdList, NumIndependentLayers of them, as sets: nuh_layer_id j is bit j.
    uint64_t treePartitions[kMostLayers];
};

/// The layers of \p vps. Without vps_extension_flag there is one, with nuh_layer_id 0.
VpsLayers layersOf(const Vps& vps) noexcept;

/// ViewId of layer \p i: view_id_val[ViewOrderIdx], 0 when there is none.
uint32_t viewIdOf(const Vps& vps, const VpsLayers& layers, uint32_t i) noexcept;

/// The layer sets of a VPS: those that it lists and those that its extension adds.
struct LayerSets {
    /// The greatest NumLayerSets.
    static constexpr uint32_t kMost = Vps::kMostLayerSets + VpsExtension::kMostAddedLayerSets;

    VpsLayers layers;  ///< of the VPS

    uint32_t signalled;     ///< vps_num_layer_sets_minus1 + 1
    uint32_t NumLayerSets;  ///< signalled + num_add_layer_sets

    /// The layers of set i: nuh_layer_id j is in it when bit j is 1. Not set from NumLayerSets on.
    uint64_t layerIds[kMost];
};

/// The layer sets of \p vps, 17 KB.
LayerSets layerSetsOf(const Vps& vps) noexcept;

/// LayerSetLayerIdList[i] and NumLayersInIdList[i]: the nuh_layer_id values of layer set \p i in the order
/// that output layer sets refer to. A set that the extension adds lists the layers of one tree partition
/// after those of another.
///
/// \param ids  room for 63
/// \return how many there are; 0 for \p i from NumLayerSets on
uint32_t layerIdListOf(const LayerSets& sets, uint32_t i, uint16_t* ids) noexcept;

/// MaxSubLayersInLayerSetMinus1[i], 0..6.
uint32_t maxSubLayersInLayerSetMinus1(const Vps& vps, const LayerSets& sets, uint32_t i) noexcept;

/// One output layer set and its buffers: the loop bodies of vps_extension() and dpb_size() for it
/// (H.265 F.7.3.2.1.1, F.7.3.2.1.3). Subscript j counts the layers of its layer set; sets of layers hold
/// layer j in bit j.
struct OutputLayerSet {
    uint32_t OlsIdxToLsIdx;                        ///< the layer set
    uint32_t NumLayersInIdList;                    ///< its number of layers, 0..63
    uint16_t LayerSetLayerIdList[kMostLayers];     ///< their nuh_layer_id
    uint32_t layer_set_idx_for_ols_minus1;         ///< u(v)
    uint64_t output_layer_flag;                    ///< OutputLayerFlag, coded or inferred
    uint64_t NecessaryLayerFlag;                   ///< output layers and those that they depend on
    uint16_t profile_tier_level_idx[kMostLayers];  ///< u(v); 0 when not present
    bool alt_output_layer_flag;                    ///< u(1)

    // dpb_size(), all 0 for output layer set 0. Sub-layers without sub_layer_dpb_info_present_flag have the
    // values of the one before.

    bool sub_layer_flag_info_present_flag;     ///< u(1)
    uint32_t sub_layer_dpb_info_present_flag;  ///< bit j for sub-layer j
    uint32_t MaxSubLayersInLayerSetMinus1;     ///< the highest sub-layer, 0..6
    uint32_t max_vps_dec_pic_buffering_minus1[kMostLayers]
                                             [kMostSubLayers];  ///< ue(v); of layer k, sub-layer j
    uint32_t max_vps_num_reorder_pics[kMostSubLayers];          ///< ue(v)
    uint32_t max_vps_latency_increase_plus1[kMostSubLayers];    ///< ue(v)
};

/// Reads the output layer sets of a VPS that was read without a fault, in order.
class OutputLayerSetReader {
public:
    /// \p vps, and the unit that it was read from, are borrowed.
    explicit OutputLayerSetReader(const Vps& vps) noexcept;

    /// NumOutputLayerSets, 1..3070.
    uint32_t count() const noexcept { return count_; }

    /// Reads the next set, the one of index 0 first; false when there is none left.
    bool next(OutputLayerSet& set) noexcept;

private:
    const Vps& vps_;
    LayerSets sets_;
    Reader outputs_;
    Reader sizes_;
    uint32_t count_;
    uint32_t next_ = 0;
};

/// The hrd_parameters() of a VPS with the elements before it (H.265 7.3.2.1, F.7.3.2.1.6).
struct VpsHrd {
    uint32_t hrd_layer_set_idx;  ///< ue(v); 0 for those of vps_vui_bsp_hrd_params()
    bool cprms_present_flag;     ///< 1 when not present
    uint32_t
        num_sub_layer_hrd_minus1;  ///< ue(v), 0..6; vps_max_sub_layers_minus1 for those of the VPS itself
    Hrd hrd_parameters;            ///< with the common part of an entry before when it has none
};

/// Reads the hrd_parameters() of a VPS that was read without a fault, in order: those of the VPS itself, then
/// those that vps_vui_bsp_hrd_params() adds.
class VpsHrdReader {
public:
    /// \p vps, and the unit that it was read from, are borrowed.
    explicit VpsHrdReader(const Vps& vps) noexcept;

    /// vps_num_hrd_parameters + vps_num_add_hrd_params, 0..1024.
    uint32_t count() const noexcept { return count_; }

    /// Reads the next entry; false when there is none left.
    bool next(VpsHrd& hrd) noexcept;

private:
    const Vps& vps_;
    Reader own_;
    Reader added_;
    uint32_t count_;
    uint32_t next_ = 0;
    HrdCommon common_ = {};
};

/// Entry \p i of VpsHrdReader in \p hrd; false when there is none. It reads the entries before it as well.
bool readVpsHrd(const Vps& vps, uint32_t i, VpsHrd& hrd) noexcept;

/// Rates of a layer set, one entry for each sub-layer (H.265 F.7.3.2.1.4); 0 when not present.
struct LayerSetRates {
    uint32_t layerSetIdx;  ///< the index of the layer set
    uint32_t subLayers;    ///< entries that are set, 0..7

    bool bit_rate_present_flag[kMostSubLayers];      ///< u(1)
    bool pic_rate_present_flag[kMostSubLayers];      ///< u(1)
    uint16_t avg_bit_rate[kMostSubLayers];           ///< u(16), as in the semantics of F.7.4.3.1.4
    uint16_t max_bit_rate[kMostSubLayers];           ///< u(16)
    uint16_t constant_pic_rate_idc[kMostSubLayers];  ///< u(2)
    uint16_t avg_pic_rate[kMostSubLayers];           ///< u(16), in units of 1/256 pictures per second
};

/// Reads the rates of vps_vui(), in the order of the layer sets, of a VPS that was read without a fault.
class LayerSetRateReader {
public:
    /// \p vps, and the unit that it was read from, are borrowed.
    explicit LayerSetRateReader(const Vps& vps) noexcept;

    /// Reads the rates of the next layer set; false when there are none left.
    bool next(LayerSetRates& rates) noexcept;

private:
    const Vps& vps_;
    LayerSets sets_;
    Reader rates_;
    uint32_t next_;
    uint32_t end_;
};

/// What a VPS says of one layer and one that it refers to directly.
struct LayerDependency {
    uint32_t direct_dependency_type;            ///< u(v): 0 samples, 1 motion, 2 both
    uint32_t max_tid_il_ref_pics_plus1;         ///< u(3); 7 when not present
    uint32_t min_spatial_segment_offset_plus1;  ///< ue(v); 0 when not present
    bool ctu_based_offset_enabled_flag;         ///< u(1)
    uint32_t min_horizontal_ctu_offset_plus1;   ///< ue(v)
};

/// What \p vps, read without a fault, says of layer \p i and the layer \p j that it refers to directly; all 0
/// when direct_dependency_flag[i][j] is not 1. Its time is linear in the coded lists.
LayerDependency layerDependencyOf(const Vps& vps, uint32_t i, uint32_t j) noexcept;

/// The camera parameters of a view in vps_3d_extension() (H.265 I.7.3.2.1). Entries from num_cp on are not
/// set, and the last four are set with cp_in_slice_segment_header_flag 0.
struct CameraParameters {
    static constexpr uint32_t kMost = 63;  ///< the greatest num_cp

    uint32_t viewOrderIdx;                       ///< ViewOIdxList[n]
    uint32_t num_cp;                             ///< u(6)
    bool cp_in_slice_segment_header_flag;        ///< u(1)
    uint32_t cp_ref_voi[kMost];                  ///< ue(v)
    int32_t vps_cp_scale[kMost];                 ///< se(v)
    int32_t vps_cp_off[kMost];                   ///< se(v)
    int32_t vps_cp_inv_scale_plus_scale[kMost];  ///< se(v)
    int32_t vps_cp_inv_off_plus_off[kMost];      ///< se(v)
};

/// The camera parameters of view \p n, 1 to NumViews - 1, in \p parameters; false when there are none. It
/// reads those of the views before it as well.
bool cameraParametersOf(const Vps& vps, uint32_t n, CameraParameters& parameters) noexcept;

}  // namespace qv::hevc

#endif
