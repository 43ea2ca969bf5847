/// \file
/// What scalability_info() and view_scalability_info() have in common.
#ifndef QV_BITSTREAM_SEI_LAYERINFO_H
#define QV_BITSTREAM_SEI_LAYERINFO_H

#include <cstdint>

namespace qv::sei {

/// The parameter sets that a layer or an operation point refers to, each identifier as the difference from
/// the one before. Elements of arrays beyond their counts are not set.
struct LayerParameterSets {
    static constexpr uint32_t kMostSps = 32;   ///< the greatest number of SPS, and of subset SPS
    static constexpr uint32_t kMostPps = 256;  ///< the greatest number of PPS

    uint32_t num_seq_parameter_sets;               ///< ue(v), 0..32
    uint32_t num_subset_seq_parameter_sets;        ///< ue(v), 0..32
    uint32_t num_pic_parameter_sets_minus1;        ///< ue(v), 0..255; num_pic_parameter_set_minus1
    uint32_t num_seq_parameter_set_minus1;         ///< ue(v), 0..31; MVCD in place of num_seq_parameter_sets
    uint32_t num_subset_seq_parameter_set_minus1;  ///< ue(v), 0..31; MVCD, as above

    uint32_t seq_parameter_set_id_delta[kMostSps];         ///< ue(v)
    uint32_t subset_seq_parameter_set_id_delta[kMostSps];  ///< ue(v)
    uint32_t pic_parameter_set_id_delta[kMostPps];         ///< ue(v)
};

/// What the bitstream_restriction part of a VUI says of a layer or an operation point.
struct LayerBitstreamRestriction {
    bool motion_vectors_over_pic_boundaries_flag;  ///< u(1)
    uint32_t max_bytes_per_pic_denom;              ///< ue(v)
    uint32_t max_bits_per_mb_denom;                ///< ue(v)
    uint32_t log2_max_mv_length_horizontal;        ///< ue(v)
    uint32_t log2_max_mv_length_vertical;          ///< ue(v)
    uint32_t max_num_reorder_frames;               ///< ue(v); num_reorder_frames in MVCD
    uint32_t max_dec_frame_buffering;              ///< ue(v)
};

}  // namespace qv::sei

#endif
