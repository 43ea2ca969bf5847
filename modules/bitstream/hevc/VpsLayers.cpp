// Layers, layer sets and output layer sets of a video parameter set (H.265 F.7.4.3.1.1).
#include "bitstream/hevc/VpsLayers.h"

#include <cstring>

#include "bitstream/hevc/VpsExtensionSyntax.h"
#include "bitstream/hevc/VpsSyntax.h"
#include "bitstream/syntax/Bits.h"

namespace qv::hevc {

namespace {

constexpr uint32_t kDepth = 0;
constexpr uint32_t kMultiview = 1;
constexpr uint32_t kDependency = 2;
constexpr uint32_t kAuxiliary = 3;

// ScalabilityId[i][type]: the dimension_id that scalability_mask_flag[type] has given a place.
uint16_t scalabilityIdOf(const VpsExtension& ext, uint32_t i, uint32_t type) {
    if ((ext.scalability_mask_flag >> type & 1) == 0) {
        return 0;
    }
    const uint32_t place = detail::countOfOnes(ext.scalability_mask_flag & ((1U << type) - 1));
    return ext.dimension_id[i][place];
}

bool isInList(uint16_t value, const uint16_t* list, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        if (list[i] == value) {
            return true;
        }
    }
    return false;
}

constexpr uint64_t bit(uint32_t position) {
    return uint64_t{1} << position;
}

// vps_vui() is there; what it says is not set otherwise.
bool hasVui(const Vps& vps) {
    return vps.vps_extension_flag && vps.extension.vps_vui_present_flag;
}

// The buffers of a sub-layer that has none of its own are those of the one before.
void repeatSubLayer(OutputLayerSet& set, uint32_t j) {
    for (auto& layer : set.max_vps_dec_pic_buffering_minus1) {
        layer[j] = layer[j - 1];
    }
    set.max_vps_num_reorder_pics[j] = set.max_vps_num_reorder_pics[j - 1];
    set.max_vps_latency_increase_plus1[j] = set.max_vps_latency_increase_plus1[j - 1];
}

}  // namespace

void deriveViews(const Vps& vps, VpsLayers& layers) noexcept {
    const VpsExtension& ext = vps.extension;
    std::memset(&layers, 0, sizeof layers);
    layers.count = maxLayersMinus1(vps) + 1;
    for (uint16_t& layer : layers.LayerIdxInVps) {
        layer = kMostLayers;
    }
    for (uint32_t i = 0; i < layers.count; ++i) {
        layers.LayerIdxInVps[ext.layer_id_in_nuh[i] % 64U] = static_cast<uint16_t>(i);
        layers.DepthLayerFlag[i] = scalabilityIdOf(ext, i, kDepth);
        layers.ViewOrderIdx[i] = scalabilityIdOf(ext, i, kMultiview);
        layers.DependencyId[i] = scalabilityIdOf(ext, i, kDependency);
        layers.AuxId[i] = scalabilityIdOf(ext, i, kAuxiliary);
        if (!isInList(layers.ViewOrderIdx[i], layers.ViewOIdxList, layers.NumViews)) {
            layers.ViewOIdxList[layers.NumViews++] = layers.ViewOrderIdx[i];
        }
    }
}

void deriveDependencies(const Vps& vps, VpsLayers& layers) noexcept {
    const VpsExtension& ext = vps.extension;
    for (uint32_t i = 0; i < layers.count; ++i) {
        const uint32_t id = ext.layer_id_in_nuh[i] % 64U;
        layers.directReferences[i] = ext.direct_dependency_flag[i] & (bit(i) - 1);
        layers.dependencies[i] = layers.directReferences[i];
        for (uint64_t left = layers.directReferences[i]; left != 0; left &= left - 1) {
            layers.dependencies[i] |= layers.dependencies[detail::trailingZeroBits(left)];
        }
        for (uint64_t left = layers.dependencies[i]; left != 0; left &= left - 1) {
            layers.dependencyIds[id] |= bit(ext.layer_id_in_nuh[detail::trailingZeroBits(left)] % 64U);
        }
    }
    uint64_t inPartition = 0;
    layers.NumIndependentLayers = 0;
    for (uint32_t i = 0; i < layers.count; ++i) {
        if (layers.directReferences[i] != 0) {
            continue;
        }
        uint64_t& partition = layers.treePartitions[layers.NumIndependentLayers++];
        partition = bit(ext.layer_id_in_nuh[i] % 64U);
        for (uint32_t j = i + 1; j < layers.count; ++j) {
            if ((layers.dependencies[j] >> i & 1) != 0 && (inPartition >> j & 1) == 0) {
                partition |= bit(ext.layer_id_in_nuh[j] % 64U);
                inPartition |= bit(j);
            }
        }
    }
}

VpsLayers layersOf(const Vps& vps) noexcept {
    VpsLayers layers;
    if (vps.vps_extension_flag) {
        deriveViews(vps, layers);
        deriveDependencies(vps, layers);
        return layers;
    }
    std::memset(&layers, 0, sizeof layers);
    layers.count = 1;
    for (uint16_t& layer : layers.LayerIdxInVps) {
        layer = kMostLayers;
    }
    layers.LayerIdxInVps[0] = 0;
    layers.NumViews = 1;
    layers.NumIndependentLayers = 1;
    layers.treePartitions[0] = 1;
    return layers;
}

uint32_t viewIdOf(const Vps& vps, const VpsLayers& layers, uint32_t i) noexcept {
    if (!vps.vps_extension_flag || vps.extension.view_id_len == 0 || i >= layers.count) {
        return 0;
    }
    const uint32_t viewOrderIdx = layers.ViewOrderIdx[i];
    return viewOrderIdx < layers.NumViews ? vps.extension.view_id_val[viewOrderIdx] : 0;
}

// --- Layer sets ---

void deriveSignalledLayerSets(const Vps& vps, LayerSets& sets) noexcept {
    const uint64_t everyLayer = bit(lesser(vps.vps_max_layer_id, kMostLayers - 1) + 1) - 1;
    sets.signalled = lesser(vps.vps_num_layer_sets_minus1 + 1, Vps::kMostLayerSets);
    sets.NumLayerSets = sets.signalled;
    for (uint32_t i = 0; i < sets.signalled; ++i) {
        sets.layerIds[i] = vps.layer_id_included_flag[i] & everyLayer;
    }
}

LayerSets layerSetsOf(const Vps& vps) noexcept {
    LayerSets sets;
    sets.layers = layersOf(vps);
    deriveSignalledLayerSets(vps, sets);
    if (vps.vps_extension_flag) {
        const uint32_t added = lesser(vps.extension.num_add_layer_sets, VpsExtension::kMostAddedLayerSets);
        Reader reader(vps.extension.highest_layer_idx_plus1);
        added_layer_sets(reader, added, sets);
        sets.NumLayerSets += added;
    }
    return sets;
}

uint32_t layerIdListOf(const LayerSets& sets, uint32_t i, uint16_t* ids) noexcept {
    uint32_t count = 0;
    const auto append = [ids, &count](uint64_t members) {
        for (uint64_t left = members; left != 0; left &= left - 1) {
            ids[count++] = static_cast<uint16_t>(detail::trailingZeroBits(left));
        }
    };
    if (i < sets.signalled) {
        append(sets.layerIds[i]);
    } else if (i < sets.NumLayerSets) {
        for (uint32_t k = 1; k < sets.layers.NumIndependentLayers; ++k) {
            append(sets.layerIds[i] & sets.layers.treePartitions[k]);
        }
    }
    return count;
}

uint32_t maxSubLayersInLayerSetMinus1(const Vps& vps, const LayerSets& sets, uint32_t i) noexcept {
    uint32_t most = 0;
    if (!vps.vps_extension_flag) {
        most = vps.vps_max_sub_layers_minus1;
    } else if (i < sets.NumLayerSets) {
        for (uint64_t left = sets.layerIds[i]; left != 0; left &= left - 1) {
            const uint32_t layer = sets.layers.LayerIdxInVps[detail::trailingZeroBits(left)];
            if (layer < kMostLayers && vps.extension.sub_layers_vps_max_minus1[layer] > most) {
                most = vps.extension.sub_layers_vps_max_minus1[layer];
            }
        }
    }
    return lesser(most, kMostSubLayers - 1);
}

// --- Output layer sets ---

uint64_t defaultOutputLayers(const Vps& vps, const OutputLayerSet& set) noexcept {
    if (set.NumLayersInIdList == 0) {
        return 0;
    }
    const uint64_t highest = bit(set.NumLayersInIdList - 1);
    return vps.extension.default_output_layer_idc == 0 ? highest | (highest - 1) : highest;
}

uint64_t necessaryLayers(const VpsLayers& layers, const OutputLayerSet& set) noexcept {
    // Only layers before one in the list count among those that it depends on.
    uint64_t necessaryIds = 0;
    uint64_t idsBefore = 0;
    for (uint32_t j = 0; j < set.NumLayersInIdList; ++j) {
        const uint32_t id = set.LayerSetLayerIdList[j];
        if ((set.output_layer_flag >> j & 1) != 0) {
            necessaryIds |= bit(id) | (layers.dependencyIds[id] & idsBefore);
        }
        idsBefore |= bit(id);
    }
    uint64_t necessary = 0;
    for (uint32_t j = 0; j < set.NumLayersInIdList; ++j) {
        necessary |= (necessaryIds >> set.LayerSetLayerIdList[j] & 1) << j;
    }
    return necessary;
}

bool mayHaveAlternativeOutput(const VpsLayers& layers, const OutputLayerSet& set) noexcept {
    if (detail::countOfOnes(set.output_layer_flag) != 1) {
        return false;
    }
    const uint32_t id = set.LayerSetLayerIdList[detail::trailingZeroBits(set.output_layer_flag)];
    return layers.dependencyIds[id] != 0;
}

uint64_t bufferedLayers(const Vps& vps, uint64_t layerIds, uint64_t necessary) noexcept {
    // Layer 0 is the first of its set.
    const bool baseIsExternal = !vps.vps_base_layer_internal_flag && (layerIds & 1) != 0;
    return baseIsExternal ? necessary & ~uint64_t{1} : necessary;
}

OutputLayerSetReader::OutputLayerSetReader(const Vps& vps) noexcept
    : vps_(vps),
      sets_(layerSetsOf(vps)),
      outputs_(vps.extension.output_layer_sets),
      sizes_(vps.extension.dpb_size),
      count_(1) {
    if (vps.vps_extension_flag) {
        count_ = numOutputLayerSets(vps.extension, sets_);
    }
}

bool OutputLayerSetReader::next(OutputLayerSet& set) noexcept {
    if (next_ >= count_) {
        return false;
    }
    std::memset(&set, 0, sizeof set);
    const uint32_t i = next_++;
    if (i == 0) {
        set.NumLayersInIdList = layerIdListOf(sets_, 0, set.LayerSetLayerIdList);
        set.output_layer_flag = 1;
        set.NecessaryLayerFlag = 1;
        set.profile_tier_level_idx[0] =
            vps_.vps_max_layers_minus1 > 0 && vps_.vps_base_layer_internal_flag ? 1 : 0;
        set.MaxSubLayersInLayerSetMinus1 = maxSubLayersInLayerSetMinus1(vps_, sets_, 0);
        return true;
    }
    output_layer_set(outputs_, vps_, sets_, i, set);
    set.MaxSubLayersInLayerSetMinus1 = maxSubLayersInLayerSetMinus1(vps_, sets_, set.OlsIdxToLsIdx);
    const uint64_t layers = bufferedLayers(vps_, sets_.layerIds[set.OlsIdxToLsIdx], set.NecessaryLayerFlag);
    dpb_size_of(sizes_, i, layers, set.MaxSubLayersInLayerSetMinus1, set);
    for (uint32_t j = 1; j <= set.MaxSubLayersInLayerSetMinus1; ++j) {
        if ((set.sub_layer_dpb_info_present_flag >> j & 1) == 0) {
            repeatSubLayer(set, j);
        }
    }
    return !outputs_.failed() && !sizes_.failed();
}

// --- hrd_parameters() ---

VpsHrdReader::VpsHrdReader(const Vps& vps) noexcept
    : vps_(vps),
      own_(vps.hrd_parameters),
      added_(vps.extension.vui.add_hrd_params),
      count_(lesser(vps.vps_num_hrd_parameters, kMostVpsHrds)) {
    if (hasVui(vps)) {
        count_ =
            lesser(count_ + lesser(vps.extension.vui.vps_num_add_hrd_params, kMostVpsHrds), kMostVpsHrds);
    }
}

bool VpsHrdReader::next(VpsHrd& hrd) noexcept {
    if (next_ >= count_) {
        return false;
    }
    const uint32_t i = next_++;
    hrd.hrd_parameters.common = common_;
    Reader& reader = i < vps_.vps_num_hrd_parameters ? own_ : added_;
    if (i < vps_.vps_num_hrd_parameters) {
        vps_hrd(reader, vps_, i, hrd);
    } else {
        added_hrd(reader, vps_, i, hrd);
    }
    common_ = hrd.hrd_parameters.common;
    return !reader.failed();
}

bool readVpsHrd(const Vps& vps, uint32_t i, VpsHrd& hrd) noexcept {
    VpsHrdReader reader(vps);
    for (uint32_t before = 0; before < i; ++before) {
        if (!reader.next(hrd)) {
            return false;
        }
    }
    return reader.next(hrd);
}

// --- vps_vui() ---

LayerSetRateReader::LayerSetRateReader(const Vps& vps) noexcept
    : vps_(vps), sets_(layerSetsOf(vps)), rates_(vps.extension.vui.rates), next_(firstLayerOf(vps)), end_(0) {
    const VpsVui& vui = vps.extension.vui;
    if (hasVui(vps) && (vui.bit_rate_present_vps_flag || vui.pic_rate_present_vps_flag)) {
        end_ = sets_.NumLayerSets;
    }
}

bool LayerSetRateReader::next(LayerSetRates& rates) noexcept {
    if (next_ >= end_) {
        return false;
    }
    std::memset(&rates, 0, sizeof rates);
    rates.layerSetIdx = next_++;
    rates.subLayers = maxSubLayersInLayerSetMinus1(vps_, sets_, rates.layerSetIdx) + 1;
    layer_set_rates(rates_, vps_.extension.vui, rates.layerSetIdx, rates);
    return !rates_.failed();
}

// --- Layers that refer to others ---

LayerDependency layerDependencyOf(const Vps& vps, uint32_t i, uint32_t j) noexcept {
    LayerDependency found = {};
    const VpsLayers layers = layersOf(vps);
    if (i >= layers.count || j >= i || (layers.directReferences[i] >> j & 1) == 0) {
        return found;
    }
    const VpsExtension& ext = vps.extension;
    found.max_tid_il_ref_pics_plus1 = 7;
    if (ext.max_tid_ref_present_flag) {
        Reader reader(ext.max_tid_il_ref_pics_plus1);
        forEachReferencedLayer(layers, [&](uint32_t referenced, uint32_t layer) {
            uint32_t value = 0;
            reader.u(3, "max_tid_il_ref_pics_plus1", value);
            if (layer == i && referenced == j) {
                found.max_tid_il_ref_pics_plus1 = value;
            }
        });
    }
    found.direct_dependency_type = ext.direct_dependency_all_layers_type;
    if (!ext.direct_dependency_all_layers_flag) {
        Reader reader(ext.direct_dependency_type);
        forEachTypedReference(vps, layers, [&](uint32_t layer, uint32_t referenced) {
            uint32_t value = 0;
            reader.u(lesser(ext.direct_dep_type_len_minus2, 30) + 2, "direct_dependency_type", value);
            if (layer == i && referenced == j) {
                found.direct_dependency_type = value;
            }
        });
    }
    if (hasVui(vps) && ext.vui.ilp_restricted_ref_layers_flag) {
        Reader reader(ext.vui.ref_layer_restrictions);
        forEachRestrictedReference(vps, layers, [&](uint32_t layer, uint32_t index, uint32_t referenced) {
            LayerDependency restriction = {};
            ref_layer_restriction(reader, layer, index, restriction);
            if (layer == i && referenced == j) {
                found.min_spatial_segment_offset_plus1 = restriction.min_spatial_segment_offset_plus1;
                found.ctu_based_offset_enabled_flag = restriction.ctu_based_offset_enabled_flag;
                found.min_horizontal_ctu_offset_plus1 = restriction.min_horizontal_ctu_offset_plus1;
            }
        });
    }
    return found;
}

// --- Views ---

bool cameraParametersOf(const Vps& vps, uint32_t n, CameraParameters& parameters) noexcept {
    const VpsLayers layers = layersOf(vps);
    if (!vps.vps_3d_extension_flag || n == 0 || n >= layers.NumViews) {
        return false;
    }
    Reader reader(vps.three_d.cp);
    for (uint32_t view = 1; view <= n; ++view) {
        parameters.viewOrderIdx = layers.ViewOIdxList[view];
        camera_parameters(reader, parameters.viewOrderIdx, parameters);
    }
    return !reader.failed();
}

}  // namespace qv::hevc
