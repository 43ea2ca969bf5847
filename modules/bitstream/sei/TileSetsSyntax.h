// Sets of tiles as syntax functions.
#ifndef QV_BITSTREAM_SEI_TILESETSSYNTAX_H
#define QV_BITSTREAM_SEI_TILESETSSYNTAX_H

#include "bitstream/hevc/BlockSizes.h"
#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/TileSets.h"
#include "bitstream/syntax/Bits.h"

namespace qv::sei {

// A rectangle of a tile set.
template <class Syntax>
void tile_rect(Syntax& s, uint32_t i, uint32_t j, TileRect& rect) {
    s.ue(at("top_left_tile_idx", i, j), rect.top_left_tile_idx);
    s.ue(at("bottom_right_tile_idx", i, j), rect.bottom_right_tile_idx);
}

// The loop body of temporal_motion_constrained_tile_sets().
template <class Syntax>
void tile_set(Syntax& s, const TemporalMotionConstrainedTileSets& sets, uint32_t i, TileSet& set) {
    s.ue(at("mcts_id", i), set.mcts_id);
    if (sets.limited_tile_set_display_flag) {
        s.flag(at("display_tile_set_flag", i), set.display_tile_set_flag);
    }
    s.ue(at("num_tile_rects_in_set_minus1", i), set.num_tile_rects_in_set_minus1);
    s.keep(set.tile_rects, [&set, i](auto& in) {
        for (uint32_t j = 0; j <= set.num_tile_rects_in_set_minus1 && !in.failed(); ++j) {
            TileRect rect = {};
            tile_rect(in, i, j, rect);
        }
    });
    if (!sets.mc_all_tiles_exact_sample_value_match_flag) {
        s.flag(at("mc_exact_sample_value_match_flag", i), set.mc_exact_sample_value_match_flag);
    }
    s.flag(at("mcts_tier_level_idc_present_flag", i), set.mcts_tier_level_idc_present_flag);
    if (set.mcts_tier_level_idc_present_flag) {
        s.flag(at("mcts_tier_flag", i), set.mcts_tier_flag);
        s.u(8, at("mcts_level_idc", i), set.mcts_level_idc);
    }
}

// temporal_motion_constrained_tile_sets(), H.265 D.2.30
template <class Syntax>
void temporal_motion_constrained_tile_sets(Syntax& s, const Context& /*context*/,
                                           TemporalMotionConstrainedTileSets& payload) {
    static constexpr Structure kStructure = {"temporal_motion_constrained_tile_sets()", "D.2.30"};
    const Within<Syntax> within(s, kStructure);
    s.flag("mc_all_tiles_exact_sample_value_match_flag", payload.mc_all_tiles_exact_sample_value_match_flag);
    s.flag("each_tile_one_tile_set_flag", payload.each_tile_one_tile_set_flag);
    if (!payload.each_tile_one_tile_set_flag) {
        s.flag("limited_tile_set_display_flag", payload.limited_tile_set_display_flag);
        s.ue("num_sets_in_message_minus1", payload.num_sets_in_message_minus1, 0, 255);
        s.keep(payload.tile_sets, [&payload](auto& in) {
            for (uint32_t i = 0; i <= payload.num_sets_in_message_minus1; ++i) {
                TileSet set = {};
                tile_set(in, payload, i, set);
            }
        });
        return;
    }
    s.flag("max_mcs_tier_level_idc_present_flag", payload.max_mcs_tier_level_idc_present_flag);
    if (payload.max_mcs_tier_level_idc_present_flag) {
        s.flag("mcts_max_tier_flag", payload.mcts_max_tier_flag);
        s.u(8, "mcts_max_level_idc", payload.mcts_max_level_idc);
    }
}

// The SPS of the picture must be there where addresses of slice segments are. PicSizeInCtbsY is 0 without it,
// or when no address could count to it.
inline uint32_t picSizeInCtbsYOf(const Context& context) {
    const uint64_t size =
        context.hevcSps != nullptr ? hevc::blockSizesOf(*context.hevcSps).PicSizeInCtbsY : 0;
    return size <= kMostUe ? static_cast<uint32_t>(size) : 0;
}

constexpr uint32_t addressBits(uint32_t PicSizeInCtbsY) {
    return detail::ceilLog2(PicSizeInCtbsY);
}

// A set of tile sets of mcts_extraction_info_sets().
template <class Syntax>
void mcts_set(Syntax& s, uint32_t i, uint32_t j, MctsSet& set) {
    s.ue(at("num_mcts_in_set_minus1", i, j), set.num_mcts_in_set_minus1);
    s.keep(set.idx_of_mcts_in_set, [&set, i, j](auto& in) {
        for (uint32_t k = 0; k <= set.num_mcts_in_set_minus1 && !in.failed(); ++k) {
            uint32_t idx_of_mcts_in_set = 0;
            in.ue(at("idx_of_mcts_in_set", i, j, k), idx_of_mcts_in_set);
        }
    });
}

// The order of slice segments of an information set.
template <class Syntax>
void slice_reordering(Syntax& s, uint32_t i, MctsExtractionInfoSet& set) {
    if (set.PicSizeInCtbsY == 0) {
        s.fail(FaultKind::NoSuchSet, "sps_seq_parameter_set_id", 0);
        return;
    }
    s.ue(at("num_slice_segments_minus1", i), set.num_slice_segments_minus1, 0, set.PicSizeInCtbsY - 1);
    s.keep(set.output_slice_segment_address, [&set, i](auto& in) {
        for (uint32_t j = 0; j <= set.num_slice_segments_minus1 && !in.failed(); ++j) {
            uint32_t output_slice_segment_address = 0;
            in.u(addressBits(set.PicSizeInCtbsY), at("output_slice_segment_address", i, j),
                 output_slice_segment_address);
        }
    });
}

// The bytes of the parameter sets of one kind, of which there are countMinus1 + 1.
template <class Syntax>
void rbsp_data(Syntax& s, const char* name, uint32_t i, uint32_t countMinus1, const uint32_t* lengths,
               CodedBits& bits) {
    s.keep(bits, [=](auto& in) {
        for (uint32_t j = 0; j <= countMinus1 && !in.failed(); ++j) {
            for (uint32_t k = 0; k < lengths[j] && !in.failed(); ++k) {
                uint32_t byte = 0;
                in.u(8, at(name, i, j, k), byte);
            }
        }
    });
}

// The loop body of mcts_extraction_info_sets().
template <class Syntax>
void mcts_extraction_info_set(Syntax& s, uint32_t PicSizeInCtbsY, uint32_t i, MctsExtractionInfoSet& set) {
    s.infer(set.PicSizeInCtbsY, PicSizeInCtbsY);
    s.ue(at("num_mcts_sets_minus1", i), set.num_mcts_sets_minus1);
    s.keep(set.mcts_sets, [&set, i](auto& in) {
        for (uint32_t j = 0; j <= set.num_mcts_sets_minus1 && !in.failed(); ++j) {
            MctsSet mctsSet = {};
            mcts_set(in, i, j, mctsSet);
        }
    });
    s.flag(at("slice_reordering_enabled_flag", i), set.slice_reordering_enabled_flag);
    if (set.slice_reordering_enabled_flag) {
        slice_reordering(s, i, set);
    }
    s.ue(at("num_vps_in_info_set_minus1", i), set.num_vps_in_info_set_minus1, 0,
         MctsExtractionInfoSet::kMostVps - 1);
    for (uint32_t j = 0; j <= set.num_vps_in_info_set_minus1; ++j) {
        s.ue(at("vps_rbsp_data_length", i, j), set.vps_rbsp_data_length[j]);
    }
    s.ue(at("num_sps_in_info_set_minus1", i), set.num_sps_in_info_set_minus1, 0,
         MctsExtractionInfoSet::kMostSps - 1);
    for (uint32_t j = 0; j <= set.num_sps_in_info_set_minus1; ++j) {
        s.ue(at("sps_rbsp_data_length", i, j), set.sps_rbsp_data_length[j]);
    }
    s.ue(at("num_pps_in_info_set_minus1", i), set.num_pps_in_info_set_minus1, 0,
         MctsExtractionInfoSet::kMostPps - 1);
    for (uint32_t j = 0; j <= set.num_pps_in_info_set_minus1; ++j) {
        s.u(3, at("pps_nuh_temporal_id_plus1", i, j), set.pps_nuh_temporal_id_plus1[j]);
        s.ue(at("pps_rbsp_data_length", i, j), set.pps_rbsp_data_length[j]);
    }
    byte_alignment(s, "mcts_alignment_bit_equal_to_zero", 0);
    rbsp_data(s, "vps_rbsp_data_byte", i, set.num_vps_in_info_set_minus1, set.vps_rbsp_data_length,
              set.vps_rbsp_data_byte);
    rbsp_data(s, "sps_rbsp_data_byte", i, set.num_sps_in_info_set_minus1, set.sps_rbsp_data_length,
              set.sps_rbsp_data_byte);
    rbsp_data(s, "pps_rbsp_data_byte", i, set.num_pps_in_info_set_minus1, set.pps_rbsp_data_length,
              set.pps_rbsp_data_byte);
}

// mcts_extraction_info_sets(), H.265 D.2.43
template <class Syntax>
void mcts_extraction_info_sets(Syntax& s, const Context& context, MctsExtractionInfoSets& payload) {
    static constexpr Structure kStructure = {"mcts_extraction_info_sets()", "D.2.43"};
    const Within<Syntax> within(s, kStructure);
    s.infer(payload.PicSizeInCtbsY, picSizeInCtbsYOf(context));
    s.ue("num_info_sets_minus1", payload.num_info_sets_minus1);
    s.keep(payload.info_sets, [&payload](auto& in) {
        for (uint32_t i = 0; i <= payload.num_info_sets_minus1 && !in.failed(); ++i) {
            MctsExtractionInfoSet set = {};
            mcts_extraction_info_set(in, payload.PicSizeInCtbsY, i, set);
        }
    });
}

// mcts_extraction_info_nesting(), H.265 D.2.44
template <class Syntax>
void mcts_extraction_info_nesting(Syntax& s, const Context& context, MctsExtractionInfoNesting& payload) {
    static constexpr Structure kStructure = {"mcts_extraction_info_nesting()", "D.2.44"};
    const Within<Syntax> within(s, kStructure);
    s.flag("all_mcts_flag", payload.all_mcts_flag);
    if (!payload.all_mcts_flag) {
        s.ue("num_associated_mcts_minus1", payload.num_associated_mcts_minus1);
        s.keep(payload.idx_of_associated_mcts, [&payload](auto& in) {
            for (uint32_t i = 0; i <= payload.num_associated_mcts_minus1 && !in.failed(); ++i) {
                uint32_t idx_of_associated_mcts = 0;
                in.ue(at("idx_of_associated_mcts", i), idx_of_associated_mcts);
            }
        });
    }
    s.ue("num_sei_messages_in_mcts_extraction_nesting_minus1",
         payload.num_sei_messages_in_mcts_extraction_nesting_minus1);
    byte_alignment(s, "mcts_nesting_zero_bit", 0);
    s.keep(payload.messages.bits, [&payload, &context](auto& in) {
        for (uint32_t i = 0; i <= payload.num_sei_messages_in_mcts_extraction_nesting_minus1 && !in.failed();
             ++i) {
            nested_message(in, context);
        }
    });
}

}  // namespace qv::sei

#endif
