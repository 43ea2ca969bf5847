// Messages of scalable streams about single layer representations, as syntax functions.
#ifndef QV_BITSTREAM_SEI_QUALITYLAYERSSYNTAX_H
#define QV_BITSTREAM_SEI_QUALITYLAYERSSYNTAX_H

#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/QualityLayers.h"

namespace qv::sei {

// quality_layer_integrity_check(), G.13.1.9
template <class Syntax>
void quality_layer_integrity_check(Syntax& s, const Context& context, QualityLayerIntegrityCheck& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"quality_layer_integrity_check()", "G.13.1.9"};
    const Within<Syntax> within(s, kStructure);
    s.ue("num_info_entries_minus1", payload.num_info_entries_minus1, 0,
         QualityLayerIntegrityCheck::kMostEntries - 1);
    for (uint32_t i = 0; i <= payload.num_info_entries_minus1; ++i) {
        s.u(3, at("entry_dependency_id", i), payload.entry_dependency_id[i]);
        s.u(16, at("quality_layer_crc", i), payload.quality_layer_crc[i]);
    }
}

// redundant_pic_cnt_minus1[ i ][ j ][ k ] to intra_samples_match_flag[ i ][ j ][ k ]
template <class Syntax>
void redundant_pic(Syntax& s, uint32_t i, uint32_t j, uint32_t k, RedundantPic& pic) {
    pic = {};
    s.ue(at("redundant_pic_cnt_minus1", i, j, k), pic.redundant_pic_cnt_minus1, 0,
         RedundantQuality::kMostPics - 1);
    s.flag(at("pic_match_flag", i, j, k), pic.pic_match_flag);
    if (!pic.pic_match_flag) {
        s.flag(at("mb_type_match_flag", i, j, k), pic.mb_type_match_flag);
        s.flag(at("motion_match_flag", i, j, k), pic.motion_match_flag);
        s.flag(at("residual_match_flag", i, j, k), pic.residual_match_flag);
        s.flag(at("intra_samples_match_flag", i, j, k), pic.intra_samples_match_flag);
    }
}

// The elements of dependency_id[ i ].
template <class Syntax>
void redundant_layer(Syntax& s, const RedundantPicProperty& property, uint32_t i, RedundantLayer& layer) {
    static_cast<void>(property);
    s.u(3, at("dependency_id", i), layer.dependency_id);
    s.ue(at("num_qIds_minus1", i), layer.num_qIds_minus1, 0, RedundantLayer::kMostQualities - 1);
    for (uint32_t j = 0; j <= layer.num_qIds_minus1; ++j) {
        RedundantQuality& quality = layer.qualities[j];
        s.u(4, at("quality_id", i, j), quality.quality_id);
        s.ue(at("num_redundant_pics_minus1", i, j), quality.num_redundant_pics_minus1, 0,
             RedundantQuality::kMostPics - 1);
        for (uint32_t k = 0; k <= quality.num_redundant_pics_minus1; ++k) {
            redundant_pic(s, i, j, k, quality.pics[k]);
        }
    }
}

// redundant_pic_property(), G.13.1.10
template <class Syntax>
void redundant_pic_property(Syntax& s, const Context& context, RedundantPicProperty& property) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"redundant_pic_property()", "G.13.1.10"};
    const Within<Syntax> within(s, kStructure);
    s.ue("num_dIds_minus1", property.num_dIds_minus1, 0, 7);
    s.keep(property.layers, [&property](auto& in) {
        RedundantLayer layer;
        for (uint32_t i = 0; i <= property.num_dIds_minus1; ++i) {
            redundant_layer(in, property, i, layer);
        }
    });
}

// tl0_dep_rep_index(), G.13.1.11
template <class Syntax>
void tl0_dep_rep_index(Syntax& s, const Context& context, Tl0DepRepIndex& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"tl0_dep_rep_index()", "G.13.1.11"};
    const Within<Syntax> within(s, kStructure);
    s.u(8, "tl0_dep_rep_idx", payload.tl0_dep_rep_idx);
    s.u(16, "effective_idr_pic_id", payload.effective_idr_pic_id);
}

// tl_switching_point(), G.13.1.12
template <class Syntax>
void tl_switching_point(Syntax& s, const Context& context, TlSwitchingPoint& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"tl_switching_point()", "G.13.1.12"};
    const Within<Syntax> within(s, kStructure);
    s.se("delta_frame_num", payload.delta_frame_num);
}

}  // namespace qv::sei

#endif
