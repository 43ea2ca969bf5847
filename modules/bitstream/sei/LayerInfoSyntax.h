// What scalability_info() and view_scalability_info() have in common, as syntax functions.
#ifndef QV_BITSTREAM_SEI_LAYERINFOSYNTAX_H
#define QV_BITSTREAM_SEI_LAYERINFOSYNTAX_H

#include "bitstream/sei/LayerInfo.h"
#include "bitstream/syntax/Reader.h"

namespace qv::sei {

// Identifiers that a count, which is checked, says the number of.
template <class Syntax>
void set_id_deltas(Syntax& s, const char* name, uint32_t i, uint32_t count, uint32_t* deltas) {
    for (uint32_t j = 0; j < count; ++j) {
        s.ue(at(name, i, j), deltas[j]);
    }
}

// num_seq_parameter_sets[ i ] to pic_parameter_set_id_delta[ i ][ j ]
template <class Syntax>
void layer_parameter_sets(Syntax& s, uint32_t i, LayerParameterSets& sets) {
    constexpr uint32_t kMostSps = LayerParameterSets::kMostSps;
    s.ue(at("num_seq_parameter_sets", i), sets.num_seq_parameter_sets, 0, kMostSps);
    set_id_deltas(s, "seq_parameter_set_id_delta", i, sets.num_seq_parameter_sets,
                  sets.seq_parameter_set_id_delta);
    s.ue(at("num_subset_seq_parameter_sets", i), sets.num_subset_seq_parameter_sets, 0, kMostSps);
    set_id_deltas(s, "subset_seq_parameter_set_id_delta", i, sets.num_subset_seq_parameter_sets,
                  sets.subset_seq_parameter_set_id_delta);
    s.ue(at("num_pic_parameter_sets_minus1", i), sets.num_pic_parameter_sets_minus1, 0,
         LayerParameterSets::kMostPps - 1);
    set_id_deltas(s, "pic_parameter_set_id_delta", i, sets.num_pic_parameter_sets_minus1 + 1,
                  sets.pic_parameter_set_id_delta);
}

// num_seq_parameter_set_minus1[ i ] to pic_parameter_set_id_delta[ i ][ j ]
template <class Syntax>
void mvcd_parameter_sets(Syntax& s, uint32_t i, LayerParameterSets& sets) {
    constexpr uint32_t kMostSps = LayerParameterSets::kMostSps;
    s.ue(at("num_seq_parameter_set_minus1", i), sets.num_seq_parameter_set_minus1, 0, kMostSps - 1);
    set_id_deltas(s, "seq_parameter_set_id_delta", i, sets.num_seq_parameter_set_minus1 + 1,
                  sets.seq_parameter_set_id_delta);
    s.ue(at("num_subset_seq_parameter_set_minus1", i), sets.num_subset_seq_parameter_set_minus1, 0,
         kMostSps - 1);
    set_id_deltas(s, "subset_seq_parameter_set_id_delta", i, sets.num_subset_seq_parameter_set_minus1 + 1,
                  sets.subset_seq_parameter_set_id_delta);
    s.ue(at("num_pic_parameter_set_minus1", i), sets.num_pic_parameter_sets_minus1, 0,
         LayerParameterSets::kMostPps - 1);
    set_id_deltas(s, "pic_parameter_set_id_delta", i, sets.num_pic_parameter_sets_minus1 + 1,
                  sets.pic_parameter_set_id_delta);
}

// motion_vectors_over_pic_boundaries_flag[ i ] to max_dec_frame_buffering[ i ]
template <class Syntax>
void layer_bitstream_restriction(Syntax& s, uint32_t i, const char* reorderName,
                                 LayerBitstreamRestriction& restriction) {
    s.flag(at("motion_vectors_over_pic_boundaries_flag", i),
           restriction.motion_vectors_over_pic_boundaries_flag);
    s.ue(at("max_bytes_per_pic_denom", i), restriction.max_bytes_per_pic_denom);
    s.ue(at("max_bits_per_mb_denom", i), restriction.max_bits_per_mb_denom);
    s.ue(at("log2_max_mv_length_horizontal", i), restriction.log2_max_mv_length_horizontal);
    s.ue(at("log2_max_mv_length_vertical", i), restriction.log2_max_mv_length_vertical);
    s.ue(at(reorderName, i), restriction.max_num_reorder_frames);
    s.ue(at("max_dec_frame_buffering", i), restriction.max_dec_frame_buffering);
}

}  // namespace qv::sei

#endif
