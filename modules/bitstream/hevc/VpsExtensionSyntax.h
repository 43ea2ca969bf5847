// vps_extension() and vps_3d_extension() of H.265 as syntax functions.
//
// Loops over layers, layer sets and output layer sets are bounded by 63, 2047 and 3070, and few of their
// rounds read nothing: a layer set was coded with a bit for each of its layers, an added output layer set
// codes a flag for each of its layers, and loops over the layers of a set only visit those. What a unit costs
// is at most some 4 000 rounds more than its bits.
#ifndef QV_BITSTREAM_HEVC_VPSEXTENSIONSYNTAX_H
#define QV_BITSTREAM_HEVC_VPSEXTENSIONSYNTAX_H

#include "bitstream/hevc/HrdSyntax.h"
#include "bitstream/hevc/ProfileTierLevelSyntax.h"
#include "bitstream/hevc/Vps.h"
#include "bitstream/hevc/VpsLayers.h"
#include "bitstream/hevc/VpsVuiSyntax.h"
#include "bitstream/syntax/Bits.h"
#include "bitstream/syntax/Reader.h"

namespace qv::hevc {

// The parts of F.7.4.3.1.1, in the order in which the elements that they need are read.
void deriveViews(const Vps& vps, VpsLayers& layers) noexcept;
void deriveDependencies(const Vps& vps, VpsLayers& layers) noexcept;
void deriveSignalledLayerSets(const Vps& vps, LayerSets& sets) noexcept;

// The first members of a set.
constexpr uint64_t firstOf(uint64_t set, uint32_t members) {
    uint64_t first = 0;
    for (; set != 0 && members > 0; --members) {
        const uint64_t rest = set & (set - 1);
        first |= set ^ rest;
        set = rest;
    }
    return first;
}

// OutputLayerFlag where it is not coded, and NecessaryLayerFlag.
uint64_t defaultOutputLayers(const Vps& vps, const OutputLayerSet& set) noexcept;
uint64_t necessaryLayers(const VpsLayers& layers, const OutputLayerSet& set) noexcept;

// True for a set with one output layer that refers to others.
bool mayHaveAlternativeOutput(const VpsLayers& layers, const OutputLayerSet& set) noexcept;

// The layers of a set that dpb_size() has sizes for: those that are necessary and do not come from outside.
uint64_t bufferedLayers(const Vps& vps, uint64_t layerIds, uint64_t necessary) noexcept;

constexpr uint32_t numOutputLayerSets(const VpsExtension& ext, const LayerSets& sets) {
    return sets.NumLayerSets + ext.num_add_olss;
}

// The greatest dimension_id_len_minus1 with splitting_flag 1: the dimensions share the 6 bits of
// nuh_layer_id, each has at least one, and the last has what is left.
constexpr uint32_t mostDimensionLenMinus1(uint32_t bitsUsed, uint32_t dimensionsLeft) {
    return 6 - bitsUsed - dimensionsLeft - 1;
}

template <class Syntax>
void vps_dimensions(Syntax& s, VpsExtension& ext, uint32_t numScalabilityTypes) {
    if (ext.splitting_flag && numScalabilityTypes > 6) {
        s.fail(FaultKind::TooManyEntries, "scalability_mask_flag", numScalabilityTypes);
        ext.splitting_flag = false;
    }
    if (!ext.splitting_flag) {
        for (uint32_t j = 0; j < numScalabilityTypes; ++j) {
            s.u(3, at("dimension_id_len_minus1", j), ext.dimension_id_len_minus1[j]);
        }
        return;
    }
    uint32_t bitsUsed = 0;
    for (uint32_t j = 0; j + 1 < numScalabilityTypes; ++j) {
        s.u(3, at("dimension_id_len_minus1", j), ext.dimension_id_len_minus1[j], 0,
            mostDimensionLenMinus1(bitsUsed, numScalabilityTypes - 1 - j));
        bitsUsed += ext.dimension_id_len_minus1[j] + 1;
    }
    if (numScalabilityTypes > 0) {
        ext.dimension_id_len_minus1[numScalabilityTypes - 1] = 6 - bitsUsed - 1;
    }
}

template <class Syntax>
void vps_layer_ids(Syntax& s, const Vps& vps, VpsExtension& ext, uint32_t numScalabilityTypes) {
    const uint32_t last = maxLayersMinus1(vps);
    s.flag("vps_nuh_layer_id_present_flag", ext.vps_nuh_layer_id_present_flag);
    ext.layer_id_in_nuh[0] = 0;
    for (uint32_t j = 0; j < numScalabilityTypes; ++j) {
        ext.dimension_id[0][j] = 0;
    }
    for (uint32_t i = 1; i <= last; ++i) {
        if (ext.vps_nuh_layer_id_present_flag) {
            // Each layer that is left has an identifier above that of the one before.
            s.u(6, at("layer_id_in_nuh", i), ext.layer_id_in_nuh[i], ext.layer_id_in_nuh[i - 1] + 1U,
                62 - (last - i));
        } else {
            ext.layer_id_in_nuh[i] = static_cast<uint16_t>(i);
        }
        uint32_t offset = 0;
        for (uint32_t j = 0; j < numScalabilityTypes; ++j) {
            const uint32_t width = ext.dimension_id_len_minus1[j] + 1;
            if (!ext.splitting_flag) {
                s.u(width, at("dimension_id", i, j), ext.dimension_id[i][j]);
            } else {
                const uint32_t id = ext.layer_id_in_nuh[i];
                ext.dimension_id[i][j] = static_cast<uint16_t>(id >> offset & ((1U << width) - 1));
            }
            offset += width;
        }
    }
}

// The layers of each added layer set: the first ones of each tree partition but that of layer 0.
template <class Syntax>
void added_layer_sets(Syntax& s, uint32_t num_add_layer_sets, LayerSets& sets) {
    const VpsLayers& layers = sets.layers;
    for (uint32_t i = 0; i < num_add_layer_sets; ++i) {
        uint64_t& ids = sets.layerIds[sets.signalled + i];
        ids = 0;
        for (uint32_t j = 1; j < layers.NumIndependentLayers && !s.failed(); ++j) {
            const uint32_t layersOfTree = detail::countOfOnes(layers.treePartitions[j]);
            uint32_t highest_layer_idx_plus1 = 0;
            s.u(detail::ceilLog2(layersOfTree + 1), at("highest_layer_idx_plus1", i, j),
                highest_layer_idx_plus1, 0, layersOfTree);
            ids |= firstOf(layers.treePartitions[j], highest_layer_idx_plus1);
        }
    }
}

template <class Syntax>
void vps_added_layer_sets(Syntax& s, VpsExtension& ext, LayerSets& sets) {
    if (sets.layers.NumIndependentLayers > 1) {
        s.ue("num_add_layer_sets", ext.num_add_layer_sets, 0, VpsExtension::kMostAddedLayerSets);
        s.keep(ext.highest_layer_idx_plus1,
               [&ext, &sets](auto& in) { added_layer_sets(in, ext.num_add_layer_sets, sets); });
    } else {
        ext.num_add_layer_sets = 0;
    }
    sets.NumLayerSets = sets.signalled + ext.num_add_layer_sets;
}

// Calls visit(i, j) for each pair of layers i < j where j refers to i directly.
template <class Visit>
void forEachReferencedLayer(const VpsLayers& layers, Visit visit) {
    for (uint32_t i = 0; i + 1 < layers.count; ++i) {
        for (uint32_t j = i + 1; j < layers.count; ++j) {
            if ((layers.directReferences[j] >> i & 1) != 0) {
                visit(i, j);
            }
        }
    }
}

// Calls visit(i, j) for each layer i and layer j that it refers to directly, of those that have a
// direct_dependency_type of their own.
template <class Visit>
void forEachTypedReference(const Vps& vps, const VpsLayers& layers, Visit visit) {
    for (uint32_t i = firstLayerOf(vps) + 1; i < layers.count; ++i) {
        for (uint64_t left = layers.directReferences[i]; left != 0; left &= left - 1) {
            const uint32_t j = detail::trailingZeroBits(left);
            if (j >= firstLayerOf(vps)) {
                visit(i, j);
            }
        }
    }
}

template <class Syntax>
void vps_sub_layers(Syntax& s, const Vps& vps, VpsExtension& ext, const VpsLayers& layers) {
    s.flag("vps_sub_layers_max_minus1_present_flag", ext.vps_sub_layers_max_minus1_present_flag);
    for (uint32_t i = 0; i < layers.count; ++i) {
        if (ext.vps_sub_layers_max_minus1_present_flag) {
            s.u(3, at("sub_layers_vps_max_minus1", i), ext.sub_layers_vps_max_minus1[i], 0,
                vps.vps_max_sub_layers_minus1);
        } else {
            ext.sub_layers_vps_max_minus1[i] = static_cast<uint16_t>(vps.vps_max_sub_layers_minus1);
        }
    }
    s.flag("max_tid_ref_present_flag", ext.max_tid_ref_present_flag);
    if (ext.max_tid_ref_present_flag) {
        s.keep(ext.max_tid_il_ref_pics_plus1, [&layers](auto& in) {
            forEachReferencedLayer(layers, [&in](uint32_t i, uint32_t j) {
                uint32_t max_tid_il_ref_pics_plus1 = 0;
                in.u(3, at("max_tid_il_ref_pics_plus1", i, j), max_tid_il_ref_pics_plus1);
            });
        });
    }
    s.flag("default_ref_layers_active_flag", ext.default_ref_layers_active_flag);
}

// A profile_tier_level() of the list before it is read: that of the entry before without its levels, or all
// 0.
inline ProfileTierLevel inheritedProfile(const ProfileTierLevel& before, bool profilePresent) {
    ProfileTierLevel inherited = {};
    if (!profilePresent) {
        inherited.general = before.general;
    }
    return inherited;
}

template <class Syntax>
void vps_profile_tier_levels(Syntax& s, const Vps& vps, VpsExtension& ext) {
    s.ue("vps_num_profile_tier_level_minus1", ext.vps_num_profile_tier_level_minus1, 0,
         VpsExtension::kMostProfileTierLevels - 1);
    for (uint32_t i = vps.vps_base_layer_internal_flag ? 2 : 1; i <= ext.vps_num_profile_tier_level_minus1;
         ++i) {
        flag_of(s, at("vps_profile_present_flag", i), ext.vps_profile_present_flag, i);
        const bool profilePresent = (ext.vps_profile_present_flag >> i & 1) != 0;
        s.infer(ext.profile_tier_level[i], inheritedProfile(ext.profile_tier_level[i - 1], profilePresent));
        profile_tier_level(s, ext.profile_tier_level[i], profilePresent, vps.vps_max_sub_layers_minus1);
    }
}

// The part of vps_extension() for output layer set i, from 1 on.
template <class Syntax>
void output_layer_set(Syntax& s, const Vps& vps, const LayerSets& sets, uint32_t i, OutputLayerSet& set) {
    const VpsExtension& ext = vps.extension;
    set.layer_set_idx_for_ols_minus1 = 0;
    if (sets.NumLayerSets > 2 && i >= sets.NumLayerSets) {
        s.u(detail::ceilLog2(sets.NumLayerSets - 1), at("layer_set_idx_for_ols_minus1", i),
            set.layer_set_idx_for_ols_minus1, 0, sets.NumLayerSets - 2);
    }
    set.OlsIdxToLsIdx = i < sets.NumLayerSets ? i : set.layer_set_idx_for_ols_minus1 + 1;
    set.NumLayersInIdList = layerIdListOf(sets, set.OlsIdxToLsIdx, set.LayerSetLayerIdList);
    if (i > vps.vps_num_layer_sets_minus1 || ext.default_output_layer_idc >= 2) {
        s.flags(set.NumLayersInIdList, at("output_layer_flag", i), set.output_layer_flag);
    } else {
        set.output_layer_flag = defaultOutputLayers(vps, set);
    }
    set.NecessaryLayerFlag = necessaryLayers(sets.layers, set);
    if (ext.vps_num_profile_tier_level_minus1 > 0) {
        for (uint64_t left = set.NecessaryLayerFlag; left != 0; left &= left - 1) {
            const uint32_t j = detail::trailingZeroBits(left);
            s.u(detail::ceilLog2(ext.vps_num_profile_tier_level_minus1 + 1),
                at("profile_tier_level_idx", i, j), set.profile_tier_level_idx[j], 0,
                ext.vps_num_profile_tier_level_minus1);
        }
    }
    set.alt_output_layer_flag = false;
    if (mayHaveAlternativeOutput(sets.layers, set)) {
        s.flag(at("alt_output_layer_flag", i), set.alt_output_layer_flag);
    }
}

template <class Syntax>
void vps_output_layer_sets(Syntax& s, const Vps& vps, VpsExtension& ext, const LayerSets& sets,
                           OutputLayerSetLayers& outputs) {
    if (sets.NumLayerSets > 1) {
        s.ue("num_add_olss", ext.num_add_olss, 0, VpsExtension::kMostAddedOutputLayerSets);
        s.u(2, "default_output_layer_idc", ext.default_output_layer_idc);
    } else {
        ext.num_add_olss = 0;
    }
    outputs.count = numOutputLayerSets(ext, sets);
    s.keep(ext.output_layer_sets, [&](auto& in) {
        OutputLayerSet set;
        for (uint32_t i = 1; i < outputs.count && !in.failed(); ++i) {
            output_layer_set(in, vps, sets, i, set);
            outputs.OlsIdxToLsIdx[i] = static_cast<uint16_t>(set.OlsIdxToLsIdx);
            outputs.NecessaryLayerFlag[i] = set.NecessaryLayerFlag;
        }
    });
}

// rep_format(), F.7.3.2.1.2. The first one has its own format and bit depths.
template <class Syntax>
void rep_format(Syntax& s, RepFormat& format, const RepFormat* before) {
    static constexpr Structure kStructure = {"rep_format()", "F.7.3.2.1.2"};
    const Within<Syntax> within(s, kStructure);
    s.infer(format, before != nullptr ? *before : RepFormat{});
    s.u(16, "pic_width_vps_in_luma_samples", format.pic_width_vps_in_luma_samples);
    s.u(16, "pic_height_vps_in_luma_samples", format.pic_height_vps_in_luma_samples);
    if (before == nullptr) {
        s.flag("chroma_and_bit_depth_vps_present_flag", format.chroma_and_bit_depth_vps_present_flag, true);
    } else {
        s.flag("chroma_and_bit_depth_vps_present_flag", format.chroma_and_bit_depth_vps_present_flag);
    }
    if (format.chroma_and_bit_depth_vps_present_flag) {
        s.u(2, "chroma_format_vps_idc", format.chroma_format_vps_idc);
        s.infer(format.separate_colour_plane_vps_flag, false);
        if (format.chroma_format_vps_idc == 3) {
            s.flag("separate_colour_plane_vps_flag", format.separate_colour_plane_vps_flag);
        }
        s.u(4, "bit_depth_vps_luma_minus8", format.bit_depth_vps_luma_minus8, 0, 8);
        s.u(4, "bit_depth_vps_chroma_minus8", format.bit_depth_vps_chroma_minus8, 0, 8);
    }
    s.infer(format.conf_win_vps_left_offset, 0);
    s.infer(format.conf_win_vps_right_offset, 0);
    s.infer(format.conf_win_vps_top_offset, 0);
    s.infer(format.conf_win_vps_bottom_offset, 0);
    s.flag("conformance_window_vps_flag", format.conformance_window_vps_flag);
    if (format.conformance_window_vps_flag) {
        s.ue("conf_win_vps_left_offset", format.conf_win_vps_left_offset);
        s.ue("conf_win_vps_right_offset", format.conf_win_vps_right_offset);
        s.ue("conf_win_vps_top_offset", format.conf_win_vps_top_offset);
        s.ue("conf_win_vps_bottom_offset", format.conf_win_vps_bottom_offset);
    }
}

template <class Syntax>
void vps_rep_formats(Syntax& s, const Vps& vps, VpsExtension& ext) {
    s.ue("vps_num_rep_formats_minus1", ext.vps_num_rep_formats_minus1, 0, VpsExtension::kMostRepFormats - 1);
    for (uint32_t i = 0; i <= ext.vps_num_rep_formats_minus1; ++i) {
        rep_format(s, ext.rep_format[i], i > 0 ? &ext.rep_format[i - 1] : nullptr);
    }
    if (ext.vps_num_rep_formats_minus1 > 0) {
        s.flag("rep_format_idx_present_flag", ext.rep_format_idx_present_flag);
    } else {
        ext.rep_format_idx_present_flag = false;
    }
    const uint32_t most = ext.vps_num_rep_formats_minus1;
    for (uint32_t i = 0; i <= maxLayersMinus1(vps); ++i) {
        if (ext.rep_format_idx_present_flag && i >= (vps.vps_base_layer_internal_flag ? 1U : 0U)) {
            s.u(detail::ceilLog2(most + 1), at("vps_rep_format_idx", i), ext.vps_rep_format_idx[i], 0, most);
        } else {
            ext.vps_rep_format_idx[i] = static_cast<uint16_t>(i < most ? i : most);
        }
    }
}

// The part of dpb_size() for output layer set i, from 1 on.
template <class Syntax>
void dpb_size_of(Syntax& s, uint32_t i, uint64_t layers, uint32_t maxSubLayersMinus1, OutputLayerSet& set) {
    s.flag(at("sub_layer_flag_info_present_flag", i), set.sub_layer_flag_info_present_flag);
    set.sub_layer_dpb_info_present_flag = 1;
    for (uint32_t j = 0; j <= maxSubLayersMinus1; ++j) {
        if (j > 0 && set.sub_layer_flag_info_present_flag) {
            flag_of(s, at("sub_layer_dpb_info_present_flag", i, j), set.sub_layer_dpb_info_present_flag, j);
        }
        if ((set.sub_layer_dpb_info_present_flag >> j & 1) != 0) {
            for (uint64_t left = layers; left != 0; left &= left - 1) {
                const uint32_t k = detail::trailingZeroBits(left);
                s.ue(at("max_vps_dec_pic_buffering_minus1", i, k, j),
                     set.max_vps_dec_pic_buffering_minus1[k][j]);
            }
            s.ue(at("max_vps_num_reorder_pics", i, j), set.max_vps_num_reorder_pics[j]);
            s.ue(at("max_vps_latency_increase_plus1", i, j), set.max_vps_latency_increase_plus1[j]);
        }
    }
}

// dpb_size(), F.7.3.2.1.3
template <class Syntax>
void dpb_size(Syntax& s, const Vps& vps, VpsExtension& ext, const LayerSets& sets,
              const OutputLayerSetLayers& outputs) {
    static constexpr Structure kStructure = {"dpb_size()", "F.7.3.2.1.3"};
    const Within<Syntax> within(s, kStructure);
    s.keep(ext.dpb_size, [&](auto& in) {
        OutputLayerSet set;
        for (uint32_t i = 1; i < outputs.count && !in.failed(); ++i) {
            const uint32_t layerSet = outputs.OlsIdxToLsIdx[i];
            const uint64_t layers =
                bufferedLayers(vps, sets.layerIds[layerSet], outputs.NecessaryLayerFlag[i]);
            dpb_size_of(in, i, layers, maxSubLayersInLayerSetMinus1(vps, sets, layerSet), set);
        }
    });
}

template <class Syntax>
void vps_dependency_types(Syntax& s, const Vps& vps, VpsExtension& ext, const VpsLayers& layers) {
    s.ue("direct_dep_type_len_minus2", ext.direct_dep_type_len_minus2, 0, 30);
    const uint32_t width = ext.direct_dep_type_len_minus2 + 2;
    s.flag("direct_dependency_all_layers_flag", ext.direct_dependency_all_layers_flag);
    if (ext.direct_dependency_all_layers_flag) {
        s.u(width, "direct_dependency_all_layers_type", ext.direct_dependency_all_layers_type);
        return;
    }
    s.keep(ext.direct_dependency_type, [&](auto& in) {
        forEachTypedReference(vps, layers, [&in, width](uint32_t i, uint32_t j) {
            uint32_t direct_dependency_type = 0;
            in.u(width, at("direct_dependency_type", i, j), direct_dependency_type);
        });
    });
}

template <class Syntax>
void vps_non_vui_extension(Syntax& s, VpsExtension& ext) {
    s.ue("vps_non_vui_extension_length", ext.vps_non_vui_extension_length, 0, 4096);
    s.keep(ext.vps_non_vui_extension_data_byte, [&ext](auto& in) {
        for (uint32_t i = 1; i <= ext.vps_non_vui_extension_length && !in.failed(); ++i) {
            uint32_t byte = 0;
            in.u(8, "vps_non_vui_extension_data_byte", byte);
        }
    });
}

// Bits equal to 1 up to the next byte.
template <class Syntax>
void alignment_ones(Syntax& s, const char* name) {
    while (!s.byte_aligned() && !s.failed()) {
        s.f(1, name, 1);
    }
}

// vps_extension(), F.7.3.2.1.1
template <class Syntax>
void vps_extension(Syntax& s, Vps& vps, const HrdCommon& common) {
    static constexpr Structure kStructure = {"vps_extension()", "F.7.3.2.1.1"};
    const Within<Syntax> within(s, kStructure);
    VpsExtension& ext = vps.extension;
    LayerSets sets;
    OutputLayerSetLayers outputs;
    s.infer(ext.profile_tier_level[0], vps.profile_tier_level);
    s.infer(ext.profile_tier_level[1], inheritedProfile(vps.profile_tier_level, false));
    if (vps.vps_max_layers_minus1 > 0 && vps.vps_base_layer_internal_flag) {
        profile_tier_level(s, ext.profile_tier_level[1], false, vps.vps_max_sub_layers_minus1);
    }
    s.flag("splitting_flag", ext.splitting_flag);
    s.flags(VpsExtension::kMostScalabilityTypes, "scalability_mask_flag", ext.scalability_mask_flag);
    const uint32_t numScalabilityTypes = detail::countOfOnes(ext.scalability_mask_flag & 0xFFFF);
    vps_dimensions(s, ext, numScalabilityTypes);
    vps_layer_ids(s, vps, ext, numScalabilityTypes);
    deriveViews(vps, sets.layers);
    s.u(4, "view_id_len", ext.view_id_len);
    for (uint32_t i = 0; i < sets.layers.NumViews; ++i) {
        s.infer(ext.view_id_val[i], 0);
        if (ext.view_id_len > 0) {
            s.u(ext.view_id_len, at("view_id_val", i), ext.view_id_val[i]);
        }
    }
    s.infer(ext.direct_dependency_flag[0], 0);
    for (uint32_t i = 1; i < sets.layers.count; ++i) {
        s.flags(i, at("direct_dependency_flag", i), ext.direct_dependency_flag[i]);
    }
    deriveDependencies(vps, sets.layers);
    deriveSignalledLayerSets(vps, sets);
    vps_added_layer_sets(s, ext, sets);
    vps_sub_layers(s, vps, ext, sets.layers);
    vps_profile_tier_levels(s, vps, ext);
    vps_output_layer_sets(s, vps, ext, sets, outputs);
    vps_rep_formats(s, vps, ext);
    s.flag("max_one_active_ref_layer_flag", ext.max_one_active_ref_layer_flag);
    s.flag("vps_poc_lsb_aligned_flag", ext.vps_poc_lsb_aligned_flag);
    for (uint32_t i = 1; i < sets.layers.count; ++i) {
        if (sets.layers.directReferences[i] == 0) {
            flag_of(s, at("poc_lsb_not_present_flag", i), ext.poc_lsb_not_present_flag, i);
        }
    }
    dpb_size(s, vps, ext, sets, outputs);
    vps_dependency_types(s, vps, ext, sets.layers);
    vps_non_vui_extension(s, ext);
    s.flag("vps_vui_present_flag", ext.vps_vui_present_flag);
    if (ext.vps_vui_present_flag) {
        alignment_ones(s, "vps_vui_alignment_bit_equal_to_one");
        vps_vui(s, vps, ext, sets, outputs, common);
    }
}

// The camera parameters of one view.
template <class Syntax>
void camera_parameters(Syntax& s, uint32_t i, CameraParameters& cp) {
    s.u(6, at("num_cp", i), cp.num_cp);
    s.infer(cp.cp_in_slice_segment_header_flag, false);
    if (cp.num_cp > 0) {
        s.flag(at("cp_in_slice_segment_header_flag", i), cp.cp_in_slice_segment_header_flag);
        for (uint32_t m = 0; m < cp.num_cp; ++m) {
            s.ue(at("cp_ref_voi", i, m), cp.cp_ref_voi[m]);
            if (!cp.cp_in_slice_segment_header_flag) {
                const uint32_t j = cp.cp_ref_voi[m];
                s.se(at("vps_cp_scale", i, j), cp.vps_cp_scale[m]);
                s.se(at("vps_cp_off", i, j), cp.vps_cp_off[m]);
                s.se(at("vps_cp_inv_scale_plus_scale", i, j), cp.vps_cp_inv_scale_plus_scale[m]);
                s.se(at("vps_cp_inv_off_plus_off", i, j), cp.vps_cp_inv_off_plus_off[m]);
            }
        }
    }
}

// vps_3d_extension(), I.7.3.2.1
template <class Syntax>
void vps_3d_extension(Syntax& s, const Vps& vps, Vps3dExtension& three_d) {
    static constexpr Structure kStructure = {"vps_3d_extension()", "I.7.3.2.1"};
    const Within<Syntax> within(s, kStructure);
    s.ue("cp_precision", three_d.cp_precision);
    s.keep(three_d.cp, [&vps](auto& in) {
        const VpsLayers layers = layersOf(vps);
        CameraParameters cp;
        for (uint32_t n = 1; n < layers.NumViews; ++n) {
            camera_parameters(in, layers.ViewOIdxList[n], cp);
        }
    });
}

}  // namespace qv::hevc

#endif
