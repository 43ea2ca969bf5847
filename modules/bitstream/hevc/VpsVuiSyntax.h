// vps_vui() of H.265 as syntax functions.
#ifndef QV_BITSTREAM_HEVC_VPSVUISYNTAX_H
#define QV_BITSTREAM_HEVC_VPSVUISYNTAX_H

#include "bitstream/hevc/HrdSyntax.h"
#include "bitstream/hevc/Vps.h"
#include "bitstream/hevc/VpsLayers.h"
#include "bitstream/syntax/Bits.h"
#include "bitstream/syntax/Reader.h"

namespace qv::hevc {

// The most hrd_parameters() of a VPS, those of its VUI included.
constexpr uint32_t kMostVpsHrds = 1024;

constexpr uint32_t kMostOutputLayerSets = LayerSets::kMost + VpsExtension::kMostAddedOutputLayerSets;

// What later parts of the extension need of the output layer sets. Entries are set as far as they were read.
struct OutputLayerSetLayers {
    uint32_t count;                                     // NumOutputLayerSets
    uint16_t OlsIdxToLsIdx[kMostOutputLayerSets];       // the layer set
    uint64_t NecessaryLayerFlag[kMostOutputLayerSets];  // bit j is for layer j of its layer set
};

// The first layer that vps_base_layer_internal_flag leaves to the VPS: layer 0 may come from outside.
constexpr uint32_t firstLayerOf(const Vps& vps) {
    return vps.vps_base_layer_internal_flag ? 0 : 1;
}

// video_signal_info(), F.7.3.2.1.5
template <class Syntax>
void video_signal_info(Syntax& s, VideoSignalInfo& info) {
    static constexpr Structure kStructure = {"video_signal_info()", "F.7.3.2.1.5"};
    const Within<Syntax> within(s, kStructure);
    s.u(3, "video_vps_format", info.video_vps_format);
    s.flag("video_full_range_vps_flag", info.video_full_range_vps_flag);
    s.u(8, "colour_primaries_vps", info.colour_primaries_vps);
    s.u(8, "transfer_characteristics_vps", info.transfer_characteristics_vps);
    s.u(8, "matrix_coeffs_vps", info.matrix_coeffs_vps);
}

// The rates of one layer set, rates.subLayers of them.
template <class Syntax>
void layer_set_rates(Syntax& s, const VpsVui& vui, uint32_t i, LayerSetRates& rates) {
    for (uint32_t j = 0; j < rates.subLayers; ++j) {
        rates.bit_rate_present_flag[j] = false;
        rates.pic_rate_present_flag[j] = false;
        if (vui.bit_rate_present_vps_flag) {
            s.flag(at("bit_rate_present_flag", i, j), rates.bit_rate_present_flag[j]);
        }
        if (vui.pic_rate_present_vps_flag) {
            s.flag(at("pic_rate_present_flag", i, j), rates.pic_rate_present_flag[j]);
        }
        s.infer(rates.avg_bit_rate[j], 0);
        s.infer(rates.max_bit_rate[j], 0);
        if (rates.bit_rate_present_flag[j]) {
            s.u(16, at("avg_bit_rate", i, j), rates.avg_bit_rate[j]);
            s.u(16, at("max_bit_rate", i, j), rates.max_bit_rate[j]);
        }
        s.infer(rates.constant_pic_rate_idc[j], 0);
        s.infer(rates.avg_pic_rate[j], 0);
        if (rates.pic_rate_present_flag[j]) {
            s.u(2, at("constant_pic_rate_idc", i, j), rates.constant_pic_rate_idc[j]);
            s.u(16, at("avg_pic_rate", i, j), rates.avg_pic_rate[j]);
        }
    }
}

template <class Syntax>
void vps_rates(Syntax& s, const Vps& vps, VpsVui& vui, const LayerSets& sets) {
    s.flag("bit_rate_present_vps_flag", vui.bit_rate_present_vps_flag);
    s.flag("pic_rate_present_vps_flag", vui.pic_rate_present_vps_flag);
    if (!vui.bit_rate_present_vps_flag && !vui.pic_rate_present_vps_flag) {
        return;
    }
    s.keep(vui.rates, [&](auto& in) {
        LayerSetRates rates;
        for (uint32_t i = firstLayerOf(vps); i < sets.NumLayerSets && !in.failed(); ++i) {
            rates.subLayers = maxSubLayersInLayerSetMinus1(vps, sets, i) + 1;
            layer_set_rates(in, vui, i, rates);
        }
    });
}

template <class Syntax>
void vps_video_signal_infos(Syntax& s, const Vps& vps, VpsExtension& ext) {
    VpsVui& vui = ext.vui;
    s.flag("video_signal_info_idx_present_flag", vui.video_signal_info_idx_present_flag);
    vui.numVideoSignalInfo = maxLayersMinus1(vps) + 1 - firstLayerOf(vps);
    if (vui.video_signal_info_idx_present_flag) {
        s.u(4, "vps_num_video_signal_info_minus1", vui.vps_num_video_signal_info_minus1);
        vui.numVideoSignalInfo = vui.vps_num_video_signal_info_minus1 + 1;
    }
    for (uint32_t i = 0; i < vui.numVideoSignalInfo; ++i) {
        video_signal_info(s, ext.video_signal_info[i]);
    }
    for (uint32_t i = 0; i <= maxLayersMinus1(vps); ++i) {
        s.infer(ext.vps_video_signal_info_idx[i], vui.video_signal_info_idx_present_flag ? 0 : i);
    }
    if (vui.video_signal_info_idx_present_flag && vui.vps_num_video_signal_info_minus1 > 0) {
        for (uint32_t i = firstLayerOf(vps); i <= maxLayersMinus1(vps); ++i) {
            s.u(4, at("vps_video_signal_info_idx", i), ext.vps_video_signal_info_idx[i], 0,
                vui.vps_num_video_signal_info_minus1);
        }
    }
}

template <class Syntax>
void vps_tiles(Syntax& s, const Vps& vps, VpsExtension& ext, const VpsLayers& layers) {
    VpsVui& vui = ext.vui;
    for (uint32_t i = firstLayerOf(vps); i < layers.count; ++i) {
        flag_of(s, at("tiles_in_use_flag", i), vui.tiles_in_use_flag, i);
        if ((vui.tiles_in_use_flag >> i & 1) != 0) {
            flag_of(s, at("loop_filter_not_across_tiles_flag", i), vui.loop_filter_not_across_tiles_flag, i);
        }
    }
    for (uint32_t i = firstLayerOf(vps) + 1; i < layers.count; ++i) {
        s.infer(ext.tile_boundaries_aligned_flag[i], 0);
        uint32_t j = 0;
        for (uint64_t left = layers.directReferences[i]; left != 0; left &= left - 1, ++j) {
            const uint32_t reference = detail::trailingZeroBits(left);
            if ((vui.tiles_in_use_flag >> i & vui.tiles_in_use_flag >> reference & 1) != 0) {
                flag_of(s, at("tile_boundaries_aligned_flag", i, j), ext.tile_boundaries_aligned_flag[i], j);
            }
        }
    }
}

// min_spatial_segment_offset_plus1 and what follows it, for one layer and one that it refers to.
template <class Syntax>
void ref_layer_restriction(Syntax& s, uint32_t i, uint32_t j, LayerDependency& dependency) {
    s.ue(at("min_spatial_segment_offset_plus1", i, j), dependency.min_spatial_segment_offset_plus1);
    s.infer(dependency.ctu_based_offset_enabled_flag, false);
    s.infer(dependency.min_horizontal_ctu_offset_plus1, 0);
    if (dependency.min_spatial_segment_offset_plus1 > 0) {
        s.flag(at("ctu_based_offset_enabled_flag", i, j), dependency.ctu_based_offset_enabled_flag);
        if (dependency.ctu_based_offset_enabled_flag) {
            s.ue(at("min_horizontal_ctu_offset_plus1", i, j), dependency.min_horizontal_ctu_offset_plus1);
        }
    }
}

// Calls visit(i, j, k) for each layer i, each layer k that it refers to directly and the number j of k among
// these, except for a layer k from outside.
template <class Visit>
void forEachRestrictedReference(const Vps& vps, const VpsLayers& layers, Visit visit) {
    for (uint32_t i = 1; i < layers.count; ++i) {
        uint32_t j = 0;
        for (uint64_t left = layers.directReferences[i]; left != 0; left &= left - 1, ++j) {
            const uint32_t reference = detail::trailingZeroBits(left);
            if (vps.vps_base_layer_internal_flag || vps.extension.layer_id_in_nuh[reference] > 0) {
                visit(i, j, reference);
            }
        }
    }
}

// The elements before each hrd_parameters() of vps_vui_bsp_hrd_params().
template <class Syntax>
void added_hrd(Syntax& s, const Vps& vps, uint32_t i, VpsHrd& hrd) {
    hrd.hrd_layer_set_idx = 0;
    hrd.cprms_present_flag = true;
    if (i > 0) {
        s.flag(at("cprms_add_present_flag", i), hrd.cprms_present_flag);
    }
    s.ue(at("num_sub_layer_hrd_minus1", i), hrd.num_sub_layer_hrd_minus1, 0, vps.vps_max_sub_layers_minus1);
    hrd_parameters(s, hrd.hrd_parameters, hrd.cprms_present_flag, hrd.num_sub_layer_hrd_minus1);
}

// The schedules of one output layer set for one of its partitioning schemes.
template <class Syntax>
void bsp_schedules(Syntax& s, uint32_t h, uint32_t i, uint32_t t, uint32_t partitions, uint32_t hrds) {
    uint32_t num_bsp_schedules_minus1 = 0;
    s.ue(at("num_bsp_schedules_minus1", h, i, t), num_bsp_schedules_minus1, 0, CpbParameters::kMostCpbs - 1);
    for (uint32_t j = 0; j <= num_bsp_schedules_minus1; ++j) {
        for (uint32_t k = 0; k < partitions && !s.failed(); ++k) {
            uint32_t value = 0;
            if (hrds > 1) {
                s.u(detail::ceilLog2(hrds), at("bsp_hrd_idx", h, i, t, j, k), value, 0, hrds - 1);
            }
            s.ue(at("bsp_sched_idx", h, i, t, j, k), value, 0, CpbParameters::kMostCpbs - 1);
        }
    }
}

constexpr uint32_t kMostPartitioningSchemes = 16;

// The partitioning schemes of one output layer set, with its schedules.
template <class Syntax>
void bsp_partitioning_schemes(Syntax& s, uint32_t h, uint32_t layersOfSet, uint32_t subLayers,
                              uint32_t hrds) {
    // Scheme 0 has a partition for each layer.
    uint32_t partitions[kMostPartitioningSchemes + 1] = {layersOfSet};
    uint32_t schemes = 0;
    s.ue(at("num_signalled_partitioning_schemes", h), schemes, 0, kMostPartitioningSchemes);
    for (uint32_t j = 1; j <= schemes; ++j) {
        uint32_t num_partitions_in_scheme_minus1 = 0;
        s.ue(at("num_partitions_in_scheme_minus1", h, j), num_partitions_in_scheme_minus1, 0,
             kMostLayers - 1);
        partitions[j] = num_partitions_in_scheme_minus1 + 1;
        for (uint32_t k = 0; k < partitions[j]; ++k) {
            uint64_t layer_included_in_partition_flag = 0;
            s.flags(layersOfSet, at("layer_included_in_partition_flag", h, j, k),
                    layer_included_in_partition_flag);
        }
    }
    for (uint32_t i = 0; i <= schemes; ++i) {
        for (uint32_t t = 0; t < subLayers; ++t) {
            bsp_schedules(s, h, i, t, partitions[i], hrds);
        }
    }
}

// vps_vui_bsp_hrd_params(), F.7.3.2.1.6. The common part is that of the last hrd_parameters() of the VPS.
template <class Syntax>
void vps_vui_bsp_hrd_params(Syntax& s, const Vps& vps, VpsVui& vui, const LayerSets& sets,
                            const OutputLayerSetLayers& outputs, const HrdCommon& common) {
    static constexpr Structure kStructure = {"vps_vui_bsp_hrd_params()", "F.7.3.2.1.6"};
    const Within<Syntax> within(s, kStructure);
    s.ue("vps_num_add_hrd_params", vui.vps_num_add_hrd_params, 0, kMostVpsHrds - vps.vps_num_hrd_parameters);
    const uint32_t hrds = vps.vps_num_hrd_parameters + vui.vps_num_add_hrd_params;
    s.keep(vui.add_hrd_params, [&](auto& in) {
        VpsHrd hrd;
        hrd.hrd_parameters.common = common;
        for (uint32_t i = vps.vps_num_hrd_parameters; i < hrds && !in.failed(); ++i) {
            added_hrd(in, vps, i, hrd);
        }
    });
    if (hrds == 0) {
        return;
    }
    s.keep(vui.bsp_schedules, [&](auto& in) {
        for (uint32_t h = 1; h < outputs.count && !in.failed(); ++h) {
            const uint32_t layerSet = outputs.OlsIdxToLsIdx[h];
            bsp_partitioning_schemes(in, h, detail::countOfOnes(sets.layerIds[layerSet]),
                                     maxSubLayersInLayerSetMinus1(vps, sets, layerSet) + 1, hrds);
        }
    });
}

// vps_vui(), F.7.3.2.1.4
template <class Syntax>
void vps_vui(Syntax& s, const Vps& vps, VpsExtension& ext, const LayerSets& sets,
             const OutputLayerSetLayers& outputs, const HrdCommon& common) {
    static constexpr Structure kStructure = {"vps_vui()", "F.7.3.2.1.4"};
    const Within<Syntax> within(s, kStructure);
    VpsVui& vui = ext.vui;
    const VpsLayers& layers = sets.layers;
    s.flag("cross_layer_pic_type_aligned_flag", vui.cross_layer_pic_type_aligned_flag);
    if (!vui.cross_layer_pic_type_aligned_flag) {
        s.flag("cross_layer_irap_aligned_flag", vui.cross_layer_irap_aligned_flag);
    } else {
        vui.cross_layer_irap_aligned_flag = true;
    }
    if (vui.cross_layer_irap_aligned_flag) {
        s.flag("all_layers_idr_aligned_flag", vui.all_layers_idr_aligned_flag);
    }
    vps_rates(s, vps, vui, sets);
    vps_video_signal_infos(s, vps, ext);
    s.flag("tiles_not_in_use_flag", vui.tiles_not_in_use_flag);
    if (!vui.tiles_not_in_use_flag) {
        vps_tiles(s, vps, ext, layers);
    }
    s.flag("wpp_not_in_use_flag", vui.wpp_not_in_use_flag);
    if (!vui.wpp_not_in_use_flag) {
        for (uint32_t i = firstLayerOf(vps); i < layers.count; ++i) {
            flag_of(s, at("wpp_in_use_flag", i), vui.wpp_in_use_flag, i);
        }
    }
    s.flag("single_layer_for_non_irap_flag", vui.single_layer_for_non_irap_flag);
    s.flag("higher_layer_irap_skip_flag", vui.higher_layer_irap_skip_flag);
    s.flag("ilp_restricted_ref_layers_flag", vui.ilp_restricted_ref_layers_flag);
    if (vui.ilp_restricted_ref_layers_flag) {
        s.keep(vui.ref_layer_restrictions, [&](auto& in) {
            forEachRestrictedReference(vps, layers, [&in](uint32_t i, uint32_t j, uint32_t reference) {
                static_cast<void>(reference);
                LayerDependency dependency = {};
                ref_layer_restriction(in, i, j, dependency);
            });
        });
    }
    s.flag("vps_vui_bsp_hrd_present_flag", vui.vps_vui_bsp_hrd_present_flag);
    if (vui.vps_vui_bsp_hrd_present_flag) {
        vps_vui_bsp_hrd_params(s, vps, vui, sets, outputs, common);
    }
    for (uint32_t i = 1; i < layers.count; ++i) {
        if (layers.directReferences[i] == 0) {
            flag_of(s, at("base_layer_parameter_set_compatibility_flag", i),
                    vui.base_layer_parameter_set_compatibility_flag, i);
        }
    }
}

}  // namespace qv::hevc

#endif
