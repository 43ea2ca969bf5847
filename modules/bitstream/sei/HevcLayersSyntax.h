// SEI payloads about layers and operation points of H.265 as syntax functions.
#ifndef QV_BITSTREAM_SEI_HEVCLAYERSSYNTAX_H
#define QV_BITSTREAM_SEI_HEVCLAYERSSYNTAX_H

#include "bitstream/sei/HevcLayers.h"
#include "bitstream/sei/PayloadSyntax.h"

namespace qv::sei {

// scalable_nesting(), D.2.24. nuh_layer_id 63 is reserved: nesting_layer_id has no range.
template <class Syntax>
void scalable_nesting(Syntax& s, const Context& context, HevcScalableNesting& payload) {
    static constexpr Structure kStructure = {"scalable_nesting()", "D.2.24"};
    const Within<Syntax> within(s, kStructure);
    s.flag("bitstream_subset_flag", payload.bitstream_subset_flag);
    s.flag("nesting_op_flag", payload.nesting_op_flag);
    if (payload.nesting_op_flag) {
        s.flag("default_op_flag", payload.default_op_flag);
        s.ue("nesting_num_ops_minus1", payload.nesting_num_ops_minus1, 0, HevcScalableNesting::kMostOps - 1);
        for (uint32_t i = payload.default_op_flag ? 1 : 0; i <= payload.nesting_num_ops_minus1; ++i) {
            s.u(3, at("nesting_max_temporal_id_plus1", i), payload.nesting_max_temporal_id_plus1[i]);
            s.ue(at("nesting_op_idx", i), payload.nesting_op_idx[i], 0, HevcScalableNesting::kMostOps - 1);
        }
    } else {
        s.flag("all_layers_flag", payload.all_layers_flag);
        if (!payload.all_layers_flag) {
            s.u(3, "nesting_no_op_max_temporal_id_plus1", payload.nesting_no_op_max_temporal_id_plus1);
            s.ue("nesting_num_layers_minus1", payload.nesting_num_layers_minus1, 0,
                 HevcScalableNesting::kMostLayers - 1);
            for (uint32_t i = 0; i <= payload.nesting_num_layers_minus1; ++i) {
                s.u(6, at("nesting_layer_id", i), payload.nesting_layer_id[i]);
            }
        }
    }
    byte_alignment(s, "nesting_zero_bit", 0);
    Context nested = context;
    nested.numViewsMinus1 = payload.nesting_num_layers_minus1;
    nested_messages(s, nested, payload.messages);
}

// layers_not_present(), F.14.2.3. The message names the active VPS itself.
template <class Syntax>
void layers_not_present(Syntax& s, const Context& context, LayersNotPresent& payload) {
    static constexpr Structure kStructure = {"layers_not_present()", "F.14.2.3"};
    const Within<Syntax> within(s, kStructure);
    s.u(4, "lnp_sei_active_vps_id", payload.lnp_sei_active_vps_id);
    const hevc::Vps* const vps =
        context.hevcSets != nullptr ? context.hevcSets->vps(payload.lnp_sei_active_vps_id) : nullptr;
    if (vps == nullptr) {
        s.fail(FaultKind::NoSuchSet, "lnp_sei_active_vps_id", payload.lnp_sei_active_vps_id);
        return;
    }
    s.flags(hevc::maxLayersMinus1(*vps) + 1, "layer_not_present_flag", payload.layer_not_present_flag);
}

template <class Syntax>
void inter_layer_tile_rect(Syntax& s, uint32_t i, uint32_t j, InterLayerTileRect& rect) {
    s.ue(at("il_top_left_tile_idx", i, j), rect.il_top_left_tile_idx);
    s.ue(at("il_bottom_right_tile_idx", i, j), rect.il_bottom_right_tile_idx);
}

template <class Syntax>
void inter_layer_tile_set(Syntax& s, const InterLayerConstrainedTileSets& payload, uint32_t i,
                          InterLayerTileSet& set) {
    s.ue(at("ilcts_id", i), set.ilcts_id);
    s.ue(at("il_num_tile_rects_in_set_minus1", i), set.il_num_tile_rects_in_set_minus1, 0,
         InterLayerConstrainedTileSets::kMostTileRects - 1);
    s.keep(set.tile_rects, [&set, i](auto& in) {
        for (uint32_t j = 0; j <= set.il_num_tile_rects_in_set_minus1 && !in.failed(); ++j) {
            InterLayerTileRect rect = {};
            inter_layer_tile_rect(in, i, j, rect);
        }
    });
    s.u(2, at("ilc_idc", i), set.ilc_idc);
    if (!payload.il_all_tiles_exact_sample_value_match_flag) {
        s.flag(at("il_exact_sample_value_match_flag", i), set.il_exact_sample_value_match_flag);
    }
}

// inter_layer_constrained_tile_sets(), F.14.2.4
template <class Syntax>
void inter_layer_constrained_tile_sets(Syntax& s, const Context& context,
                                       InterLayerConstrainedTileSets& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"inter_layer_constrained_tile_sets()", "F.14.2.4"};
    const Within<Syntax> within(s, kStructure);
    s.flag("il_all_tiles_exact_sample_value_match_flag", payload.il_all_tiles_exact_sample_value_match_flag);
    s.flag("il_one_tile_per_tile_set_flag", payload.il_one_tile_per_tile_set_flag);
    if (payload.il_one_tile_per_tile_set_flag) {
        s.u(2, "all_tiles_ilc_idc", payload.all_tiles_ilc_idc);
        return;
    }
    s.ue("il_num_sets_in_message_minus1", payload.il_num_sets_in_message_minus1, 0,
         InterLayerConstrainedTileSets::kMostSets - 1);
    if (payload.il_num_sets_in_message_minus1 > 0) {
        s.flag("skipped_tile_set_present_flag", payload.skipped_tile_set_present_flag);
    }
    s.keep(payload.tile_sets, [&payload](auto& in) {
        for (uint32_t i = 0; i < payload.numSignificantSets() && !in.failed(); ++i) {
            InterLayerTileSet set = {};
            inter_layer_tile_set(in, payload, i, set);
        }
    });
}

// bsp_nesting(), F.14.2.5
template <class Syntax>
void bsp_nesting(Syntax& s, const Context& context, BspNesting& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"bsp_nesting()", "F.14.2.5"};
    const Within<Syntax> within(s, kStructure);
    s.ue("sei_ols_idx", payload.sei_ols_idx);
    s.ue("sei_partitioning_scheme_idx", payload.sei_partitioning_scheme_idx);
    s.ue("bsp_idx", payload.bsp_idx);
    s.ue("num_seis_in_bsp_minus1", payload.num_seis_in_bsp_minus1);
    byte_alignment(s, "bsp_nesting_zero_bit", 0);
    s.payload_bytes("sei_message()", payload.sei_message.bits);
}

template <class Syntax>
void sub_bitstream(Syntax& s, uint32_t i, SubBitstream& subBitstream) {
    s.u(2, at("sub_bitstream_mode", i), subBitstream.sub_bitstream_mode);
    s.ue(at("ols_idx_to_vps", i), subBitstream.ols_idx_to_vps);
    s.u(3, at("highest_sublayer_id", i), subBitstream.highest_sublayer_id);
    s.u(16, at("avg_sb_property_bit_rate", i), subBitstream.avg_sb_property_bit_rate);
    s.u(16, at("max_sb_property_bit_rate", i), subBitstream.max_sb_property_bit_rate);
}

// sub_bitstream_property(), F.14.2.7
template <class Syntax>
void sub_bitstream_property(Syntax& s, const Context& context, SubBitstreamProperty& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"sub_bitstream_property()", "F.14.2.7"};
    const Within<Syntax> within(s, kStructure);
    s.u(4, "sb_property_active_vps_id", payload.sb_property_active_vps_id);
    s.ue("num_additional_sub_streams_minus1", payload.num_additional_sub_streams_minus1, 0,
         SubBitstreamProperty::kMostSubStreams - 1);
    s.keep(payload.sub_streams, [&payload](auto& in) {
        for (uint32_t i = 0; i <= payload.num_additional_sub_streams_minus1 && !in.failed(); ++i) {
            SubBitstream subBitstream = {};
            sub_bitstream(in, i, subBitstream);
        }
    });
}

// alpha_channel_info(), F.14.2.8
template <class Syntax>
void alpha_channel_info(Syntax& s, const Context& context, AlphaChannelInfo& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"alpha_channel_info()", "F.14.2.8"};
    const Within<Syntax> within(s, kStructure);
    s.flag("alpha_channel_cancel_flag", payload.alpha_channel_cancel_flag);
    if (payload.alpha_channel_cancel_flag) {
        return;
    }
    s.u(3, "alpha_channel_use_idc", payload.alpha_channel_use_idc);
    s.u(3, "alpha_channel_bit_depth_minus8", payload.alpha_channel_bit_depth_minus8);
    s.u(payload.alpha_channel_bit_depth_minus8 + 9, "alpha_transparent_value",
        payload.alpha_transparent_value);
    s.u(payload.alpha_channel_bit_depth_minus8 + 9, "alpha_opaque_value", payload.alpha_opaque_value);
    s.flag("alpha_channel_incr_flag", payload.alpha_channel_incr_flag);
    s.flag("alpha_channel_clip_flag", payload.alpha_channel_clip_flag);
    if (payload.alpha_channel_clip_flag) {
        s.flag("alpha_channel_clip_type_flag", payload.alpha_channel_clip_type_flag);
    }
}

// Text st(v): bytes up to one that is zero.
template <class Syntax, class Name>
void overlay_text(Syntax& s, const Name& name) {
    uint32_t byte = 1;
    while (byte != 0 && !s.failed()) {
        s.u(8, name, byte);
    }
}

// What overlay_info() has of an overlay before the texts.
template <class Syntax>
void overlay(Syntax& s, uint32_t i, uint32_t labelBits, OverlayInfo::Overlay& overlay) {
    s.ue(at("overlay_idx", i), overlay.overlay_idx, 0, 255);
    s.flag(at("language_overlay_present_flag", i), overlay.language_overlay_present_flag);
    s.u(6, at("overlay_content_layer_id", i), overlay.overlay_content_layer_id);
    s.flag(at("overlay_label_present_flag", i), overlay.overlay_label_present_flag);
    if (overlay.overlay_label_present_flag) {
        s.u(6, at("overlay_label_layer_id", i), overlay.overlay_label_layer_id);
    }
    s.flag(at("overlay_alpha_present_flag", i), overlay.overlay_alpha_present_flag);
    if (overlay.overlay_alpha_present_flag) {
        s.u(6, at("overlay_alpha_layer_id", i), overlay.overlay_alpha_layer_id);
    }
    if (overlay.overlay_label_present_flag) {
        s.ue(at("num_overlay_elements_minus1", i), overlay.num_overlay_elements_minus1, 0,
             OverlayInfo::kMostElements - 1);
        s.keep(overlay.labels, [&overlay, i, labelBits](auto& in) {
            for (uint32_t j = 0; j <= overlay.num_overlay_elements_minus1 && !in.failed(); ++j) {
                uint32_t value = 0;
                in.u(labelBits, at("overlay_element_label_min", i, j), value);
                in.u(labelBits, at("overlay_element_label_max", i, j), value);
            }
        });
    }
}

template <class Syntax>
void overlay_texts(Syntax& s, uint32_t i, OverlayInfo::Overlay& overlay) {
    if (overlay.language_overlay_present_flag) {
        s.keep(overlay.overlay_language, [i](auto& in) { overlay_text(in, at("overlay_language", i)); });
    }
    s.keep(overlay.overlay_name, [i](auto& in) { overlay_text(in, at("overlay_name", i)); });
    if (overlay.overlay_label_present_flag) {
        s.keep(overlay.overlay_element_name, [&overlay, i](auto& in) {
            for (uint32_t j = 0; j <= overlay.num_overlay_elements_minus1 && !in.failed(); ++j) {
                overlay_text(in, at("overlay_element_name", i, j));
            }
        });
    }
}

// overlay_info(), F.14.2.9
template <class Syntax>
void overlay_info(Syntax& s, const Context& context, OverlayInfo& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"overlay_info()", "F.14.2.9"};
    const Within<Syntax> within(s, kStructure);
    s.flag("overlay_info_cancel_flag", payload.overlay_info_cancel_flag);
    if (payload.overlay_info_cancel_flag) {
        return;
    }
    s.ue("overlay_content_aux_id_minus128", payload.overlay_content_aux_id_minus128, 0, 31);
    s.ue("overlay_label_aux_id_minus128", payload.overlay_label_aux_id_minus128, 0, 31);
    s.ue("overlay_alpha_aux_id_minus128", payload.overlay_alpha_aux_id_minus128, 0, 31);
    s.ue("overlay_element_label_value_length_minus8", payload.overlay_element_label_value_length_minus8, 0,
         24);
    s.ue("num_overlays_minus1", payload.num_overlays_minus1, 0, OverlayInfo::kMostOverlays - 1);
    for (uint32_t i = 0; i <= payload.num_overlays_minus1; ++i) {
        overlay(s, i, payload.overlay_element_label_value_length_minus8 + 8, payload.overlays[i]);
    }
    byte_alignment(s, "overlay_zero_bit", 0);
    for (uint32_t i = 0; i <= payload.num_overlays_minus1; ++i) {
        overlay_texts(s, i, payload.overlays[i]);
    }
    s.flag("overlay_info_persistence_flag", payload.overlay_info_persistence_flag);
}

// temporal_mv_prediction_constraints(), F.14.2.10
template <class Syntax>
void temporal_mv_prediction_constraints(Syntax& s, const Context& context,
                                        TemporalMvPredictionConstraints& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"temporal_mv_prediction_constraints()", "F.14.2.10"};
    const Within<Syntax> within(s, kStructure);
    s.flag("prev_pics_not_used_flag", payload.prev_pics_not_used_flag);
    s.flag("no_intra_layer_col_pic_flag", payload.no_intra_layer_col_pic_flag);
}

}  // namespace qv::sei

#endif
