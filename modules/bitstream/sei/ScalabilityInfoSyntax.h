// The scalability information message as syntax functions.
#ifndef QV_BITSTREAM_SEI_SCALABILITYINFOSYNTAX_H
#define QV_BITSTREAM_SEI_SCALABILITYINFOSYNTAX_H

#include <cstddef>

#include "bitstream/sei/LayerInfoSyntax.h"
#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/ScalabilityInfo.h"
#include "bitstream/syntax/Uses.h"

template <>
inline constexpr size_t qv::detail::kClearedBytes<qv::sei::ScalabilityLayer> =
    offsetof(qv::sei::ScalabilityLayer, parameter_sets.seq_parameter_set_id_delta);

namespace qv::sei {

// base_region_layer_id[ i ] to region_height[ i ]
template <class Syntax>
void sub_region_layer(Syntax& s, uint32_t i, ScalabilityLayer& layer) {
    s.ue(at("base_region_layer_id", i), layer.base_region_layer_id);
    s.flag(at("dynamic_rect_flag", i), layer.dynamic_rect_flag);
    if (!layer.dynamic_rect_flag) {
        s.u(16, at("horizontal_offset", i), layer.horizontal_offset);
        s.u(16, at("vertical_offset", i), layer.vertical_offset);
        s.u(16, at("region_width", i), layer.region_width);
        s.u(16, at("region_height", i), layer.region_height);
    }
}

// first_mb_in_roi[ i ][ j ] to roi_height_in_mbs_minus1[ i ][ j ]
template <class Syntax>
void region_of_interest(Syntax& s, uint32_t i, uint32_t j, RegionOfInterest& roi) {
    s.ue(at("first_mb_in_roi", i, j), roi.first_mb_in_roi);
    s.ue(at("roi_width_in_mbs_minus1", i, j), roi.roi_width_in_mbs_minus1);
    s.ue(at("roi_height_in_mbs_minus1", i, j), roi.roi_height_in_mbs_minus1);
}

template <class Syntax>
void region_of_interest(Syntax& s, const ScalabilityLayer& layer, uint32_t j, RegionOfInterest& roi) {
    static_cast<void>(layer);
    region_of_interest(s, 0, j, roi);
}

// The greatest num_rois_minus1: FrmSizeInMbs - 1
inline uint32_t mostRoisMinus1(const ScalabilityLayer& layer) {
    const uint64_t frmSizeInMbs =
        (uint64_t{layer.frm_width_in_mbs_minus1} + 1) * (uint64_t{layer.frm_height_in_mbs_minus1} + 1);
    return frmSizeInMbs - 1 < kMostUe ? static_cast<uint32_t>(frmSizeInMbs - 1) : kMostUe;
}

// iroi_grid_flag[ i ] to roi_height_in_mbs_minus1[ i ][ j ]
template <class Syntax>
void iroi_division_info(Syntax& s, uint32_t i, ScalabilityLayer& layer) {
    s.flag(at("iroi_grid_flag", i), layer.iroi_grid_flag);
    if (layer.iroi_grid_flag) {
        s.ue(at("grid_width_in_mbs_minus1", i), layer.grid_width_in_mbs_minus1);
        s.ue(at("grid_height_in_mbs_minus1", i), layer.grid_height_in_mbs_minus1);
        return;
    }
    s.ue(at("num_rois_minus1", i), layer.num_rois_minus1, 0, mostRoisMinus1(layer));
    s.keep(layer.rois, [&layer, i](auto& in) {
        RegionOfInterest roi = {};
        for (uint32_t j = 0; j <= layer.num_rois_minus1 && !in.failed(); ++j) {
            region_of_interest(in, i, j, roi);
        }
    });
}

// num_directly_dependent_layers[ i ] to layer_dependency_info_src_layer_id_delta[ i ]
template <class Syntax>
void scalability_layer_dependency(Syntax& s, uint32_t i, ScalabilityLayer& layer) {
    if (layer.layer_dependency_info_present_flag) {
        s.ue(at("num_directly_dependent_layers", i), layer.num_directly_dependent_layers, 0,
             ScalabilityLayer::kMostDependencies);
        set_id_deltas(s, "directly_dependent_layer_id_delta_minus1", i, layer.num_directly_dependent_layers,
                      layer.directly_dependent_layer_id_delta_minus1);
    } else {
        s.ue(at("layer_dependency_info_src_layer_id_delta", i),
             layer.layer_dependency_info_src_layer_id_delta);
    }
}

// conversion_type_idc[ i ] to rewriting_max_bitrate[ i ][ j ]
template <class Syntax>
void layer_conversion(Syntax& s, uint32_t i, ScalabilityLayer& layer) {
    s.ue(at("conversion_type_idc", i), layer.conversion_type_idc, 0, 2);
    for (uint32_t j = 0; j < 2; ++j) {
        s.flag(at("rewriting_info_flag", i, j), layer.rewriting_info_flag[j]);
        if (layer.rewriting_info_flag[j]) {
            s.u(24, at("rewriting_profile_level_idc", i, j), layer.rewriting_profile_level_idc[j]);
            s.u(16, at("rewriting_avg_bitrate", i, j), layer.rewriting_avg_bitrate[j]);
            s.u(16, at("rewriting_max_bitrate", i, j), layer.rewriting_max_bitrate[j]);
        }
    }
}

// layer_id[ i ] to layer_output_flag[ i ]
template <class Syntax>
void scalability_layer_flags(Syntax& s, uint32_t i, ScalabilityLayer& layer) {
    s.ue(at("layer_id", i), layer.layer_id, 0, ScalabilityInfo::kMostLayers - 1);
    s.u(6, at("priority_id", i), layer.priority_id);
    s.flag(at("discardable_flag", i), layer.discardable_flag);
    s.u(3, at("dependency_id", i), layer.dependency_id);
    s.u(4, at("quality_id", i), layer.quality_id);
    s.u(3, at("temporal_id", i), layer.temporal_id);
    s.flag(at("sub_pic_layer_flag", i), layer.sub_pic_layer_flag);
    s.flag(at("sub_region_layer_flag", i), layer.sub_region_layer_flag);
    s.flag(at("iroi_division_info_present_flag", i), layer.iroi_division_info_present_flag);
    s.flag(at("profile_level_info_present_flag", i), layer.profile_level_info_present_flag);
    s.flag(at("bitrate_info_present_flag", i), layer.bitrate_info_present_flag);
    s.flag(at("frm_rate_info_present_flag", i), layer.frm_rate_info_present_flag);
    s.flag(at("frm_size_info_present_flag", i), layer.frm_size_info_present_flag);
    s.flag(at("layer_dependency_info_present_flag", i), layer.layer_dependency_info_present_flag);
    s.flag(at("parameter_sets_info_present_flag", i), layer.parameter_sets_info_present_flag);
    s.flag(at("bitstream_restriction_info_present_flag", i), layer.bitstream_restriction_info_present_flag);
    s.flag(at("exact_inter_layer_pred_flag", i), layer.exact_inter_layer_pred_flag);
    if (layer.sub_pic_layer_flag || layer.iroi_division_info_present_flag) {
        s.flag(at("exact_sample_value_match_flag", i), layer.exact_sample_value_match_flag);
    }
    s.flag(at("layer_conversion_flag", i), layer.layer_conversion_flag);
    s.flag(at("layer_output_flag", i), layer.layer_output_flag);
}

// layer_profile_level_idc[ i ] to frm_height_in_mbs_minus1[ i ]
template <class Syntax>
void scalability_layer_format(Syntax& s, uint32_t i, ScalabilityLayer& layer) {
    if (layer.profile_level_info_present_flag) {
        s.u(24, at("layer_profile_level_idc", i), layer.layer_profile_level_idc);
    }
    if (layer.bitrate_info_present_flag) {
        s.u(16, at("avg_bitrate", i), layer.avg_bitrate);
        s.u(16, at("max_bitrate_layer", i), layer.max_bitrate_layer);
        s.u(16, at("max_bitrate_layer_representation", i), layer.max_bitrate_layer_representation);
        s.u(16, at("max_bitrate_calc_window", i), layer.max_bitrate_calc_window);
    }
    if (layer.frm_rate_info_present_flag) {
        s.u(2, at("constant_frm_rate_idc", i), layer.constant_frm_rate_idc, 0, 2);
        s.u(16, at("avg_frm_rate", i), layer.avg_frm_rate);
    }
    if (layer.frm_size_info_present_flag || layer.iroi_division_info_present_flag) {
        s.ue(at("frm_width_in_mbs_minus1", i), layer.frm_width_in_mbs_minus1);
        s.ue(at("frm_height_in_mbs_minus1", i), layer.frm_height_in_mbs_minus1);
    }
}

// The elements of layer i.
template <class Syntax>
void scalability_layer(Syntax& s, const ScalabilityInfo& info, uint32_t i, ScalabilityLayer& layer) {
    static_cast<void>(info);
    detail::clear(layer);
    scalability_layer_flags(s, i, layer);
    scalability_layer_format(s, i, layer);
    if (layer.sub_region_layer_flag) {
        sub_region_layer(s, i, layer);
    }
    if (layer.sub_pic_layer_flag) {
        s.ue(at("roi_id", i), layer.roi_id, 0, 63);
    }
    if (layer.iroi_division_info_present_flag) {
        iroi_division_info(s, i, layer);
    }
    scalability_layer_dependency(s, i, layer);
    if (layer.parameter_sets_info_present_flag) {
        layer_parameter_sets(s, i, layer.parameter_sets);
    } else {
        s.ue(at("parameter_sets_info_src_layer_id_delta", i), layer.parameter_sets_info_src_layer_id_delta);
    }
    if (layer.bitstream_restriction_info_present_flag) {
        layer_bitstream_restriction(s, i, "max_num_reorder_frames", layer.bitstream_restriction);
    }
    if (layer.layer_conversion_flag) {
        layer_conversion(s, i, layer);
    }
}

// pr_dependency_id[ i ] to pr_max_bitrate[ i ][ j ]
template <class Syntax>
void priority_layer(Syntax& s, const ScalabilityInfo& info, uint32_t i, PriorityLayer& layer) {
    static_cast<void>(info);
    s.u(3, at("pr_dependency_id", i), layer.pr_dependency_id);
    s.ue(at("pr_num_minus1", i), layer.pr_num_minus1, 0, PriorityLayer::kMostPriorities - 1);
    for (uint32_t j = 0; j <= layer.pr_num_minus1; ++j) {
        s.ue(at("pr_id", i, j), layer.pr_id[j], 0, 63);
        s.u(24, at("pr_profile_level_idc", i, j), layer.pr_profile_level_idc[j]);
        s.u(16, at("pr_avg_bitrate", i, j), layer.pr_avg_bitrate[j]);
        s.u(16, at("pr_max_bitrate", i, j), layer.pr_max_bitrate[j]);
    }
}

// scalability_info(), G.13.1.1
template <class Syntax>
void scalability_info(Syntax& s, const Context& context, ScalabilityInfo& info) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"scalability_info()", "G.13.1.1"};
    const Within<Syntax> within(s, kStructure);
    s.flag("temporal_id_nesting_flag", info.temporal_id_nesting_flag);
    s.flag("priority_layer_info_present_flag", info.priority_layer_info_present_flag);
    s.flag("priority_id_setting_flag", info.priority_id_setting_flag);
    s.ue("num_layers_minus1", info.num_layers_minus1, 0, ScalabilityInfo::kMostLayers - 1);
    s.keep(info.layers, [&info](auto& in) {
        ScalabilityLayer layer;
        for (uint32_t i = 0; i <= info.num_layers_minus1 && !in.failed(); ++i) {
            scalability_layer(in, info, i, layer);
        }
    });
    if (info.priority_layer_info_present_flag) {
        s.ue("pr_num_dIds_minus1", info.pr_num_dIds_minus1, 0, 7);
        s.keep(info.priority_layers, [&info](auto& in) {
            PriorityLayer layer;
            for (uint32_t i = 0; i <= info.pr_num_dIds_minus1; ++i) {
                priority_layer(in, info, i, layer);
            }
        });
    }
    if (info.priority_id_setting_flag) {
        s.keep(info.priority_id_setting_uri, [](auto& in) {
            uint32_t byte = 1;
            for (uint32_t i = 0; byte != 0; ++i) {
                in.u(8, at("priority_id_setting_uri", i), byte);
            }
        });
    }
}

}  // namespace qv::sei

#endif
