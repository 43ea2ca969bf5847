/// \file
/// Sets of tiles that can be decoded without the rest of the picture (H.265).
#ifndef QV_BITSTREAM_SEI_TILESETS_H
#define QV_BITSTREAM_SEI_TILESETS_H

#include <cstdint>

#include "bitstream/sei/CodedEntries.h"
#include "bitstream/sei/SeiMessages.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// temporal_motion_constrained_tile_sets(), H.265 D.2.30; see tileSetsOf().
struct TemporalMotionConstrainedTileSets {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 139};  ///< payloadType

    bool mc_all_tiles_exact_sample_value_match_flag;  ///< u(1)
    bool each_tile_one_tile_set_flag;                 ///< u(1)
    bool limited_tile_set_display_flag;               ///< u(1), with each_tile_one_tile_set_flag 0
    uint32_t num_sets_in_message_minus1;              ///< ue(v), 0..255, with each_tile_one_tile_set_flag 0
    CodedBits tile_sets;                              ///< an entry for each set
    bool max_mcs_tier_level_idc_present_flag;         ///< u(1), with each_tile_one_tile_set_flag 1
    bool mcts_max_tier_flag;                          ///< u(1)
    uint32_t mcts_max_level_idc;                      ///< u(8), 30 times the level
};

/// A tile set: the loop body of temporal_motion_constrained_tile_sets(); see tileRectsOf().
struct TileSet {
    uint32_t mcts_id;                       ///< ue(v); 256..511 and 2^31.. are reserved
    bool display_tile_set_flag;             ///< u(1), with limited_tile_set_display_flag
    uint32_t num_tile_rects_in_set_minus1;  ///< ue(v)
    CodedBits tile_rects;                   ///< an entry for each rectangle
    bool mc_exact_sample_value_match_flag;  ///< u(1), with mc_all_tiles_exact_sample_value_match_flag 0
    bool mcts_tier_level_idc_present_flag;  ///< u(1)
    bool mcts_tier_flag;                    ///< u(1)
    uint32_t mcts_level_idc;                ///< u(8), 30 times the level
};

/// A rectangle of tiles, counted in raster scan order.
struct TileRect {
    uint32_t top_left_tile_idx;      ///< ue(v)
    uint32_t bottom_right_tile_idx;  ///< ue(v)
};

/// mcts_extraction_info_sets(), H.265 D.2.43; see extractionInfoSetsOf(). With slice_reordering_enabled_flag
/// its syntax depends on the SPS of the picture.
struct MctsExtractionInfoSets {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 158};  ///< payloadType
    uint32_t num_info_sets_minus1;                                        ///< ue(v)
    CodedBits info_sets;                                                  ///< an entry for each set

    /// Of the SPS that it was read with; 0 without one. Not coded.
    uint32_t PicSizeInCtbsY;
};

/// What a decoder of some tile sets needs: the loop body of mcts_extraction_info_sets(). Of the lists of
/// numbers as many elements are set as their counts say.
struct MctsExtractionInfoSet {
    static constexpr uint32_t kMostVps = 16;  ///< the greatest num_vps_in_info_set_minus1, plus 1
    static constexpr uint32_t kMostSps = 16;  ///< the greatest num_sps_in_info_set_minus1, plus 1
    static constexpr uint32_t kMostPps = 64;  ///< the greatest num_pps_in_info_set_minus1, plus 1

    uint32_t num_mcts_sets_minus1;                 ///< ue(v)
    CodedBits mcts_sets;                           ///< an entry for each; see mctsSetsOf()
    bool slice_reordering_enabled_flag;            ///< u(1)
    uint32_t num_slice_segments_minus1;            ///< ue(v), 0..PicSizeInCtbsY - 1
    CodedBits output_slice_segment_address;        ///< u(v) each; see outputSliceSegmentAddressesOf()
    uint32_t num_vps_in_info_set_minus1;           ///< ue(v), 0..15
    uint32_t vps_rbsp_data_length[kMostVps];       ///< ue(v), bytes
    uint32_t num_sps_in_info_set_minus1;           ///< ue(v), 0..15
    uint32_t sps_rbsp_data_length[kMostSps];       ///< ue(v), bytes
    uint32_t num_pps_in_info_set_minus1;           ///< ue(v), 0..63
    uint32_t pps_nuh_temporal_id_plus1[kMostPps];  ///< u(3)
    uint32_t pps_rbsp_data_length[kMostPps];       ///< ue(v), bytes
    CodedBits vps_rbsp_data_byte;                  ///< u(8) each, of all VPSs in sequence
    CodedBits sps_rbsp_data_byte;                  ///< u(8) each, of all SPSs in sequence
    CodedBits pps_rbsp_data_byte;                  ///< u(8) each, of all PPSs in sequence
    uint32_t PicSizeInCtbsY;                       ///< as in MctsExtractionInfoSets; not coded
};

/// Tile sets that an extraction information set applies to; see mctsIndicesOf().
struct MctsSet {
    uint32_t num_mcts_in_set_minus1;  ///< ue(v)
    CodedBits idx_of_mcts_in_set;     ///< ue(v) each
};

/// mcts_extraction_info_nesting(), H.265 D.2.44; see mctsIndicesOf().
struct MctsExtractionInfoNesting {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 159};  ///< payloadType
    bool all_mcts_flag;                                                   ///< u(1)
    uint32_t num_associated_mcts_minus1;                                  ///< ue(v), with all_mcts_flag 0
    CodedBits idx_of_associated_mcts;                                     ///< ue(v) each
    uint32_t num_sei_messages_in_mcts_extraction_nesting_minus1;          ///< ue(v)
    NestedMessages messages;  ///< as many messages; see SeiMessages
};

/// The tile sets of \p sets, num_sets_in_message_minus1 + 1 of them; none with each_tile_one_tile_set_flag.
CodedEntries<TemporalMotionConstrainedTileSets, TileSet> tileSetsOf(
    const TemporalMotionConstrainedTileSets& sets) noexcept;

/// The rectangles of \p set, num_tile_rects_in_set_minus1 + 1 of them.
CodedEntries<TileSet, TileRect> tileRectsOf(const TileSet& set) noexcept;

/// The information sets of \p sets, num_info_sets_minus1 + 1 of them.
CodedEntries<MctsExtractionInfoSets, MctsExtractionInfoSet> extractionInfoSetsOf(
    const MctsExtractionInfoSets& sets) noexcept;

/// What \p set applies to: num_mcts_sets_minus1 + 1 sets of tile sets.
CodedEntries<MctsExtractionInfoSet, MctsSet> mctsSetsOf(const MctsExtractionInfoSet& set) noexcept;

/// output_slice_segment_address[ i ][ j ], num_slice_segments_minus1 + 1 of them; none without
/// slice_reordering_enabled_flag.
CodedEntries<MctsExtractionInfoSet, uint32_t> outputSliceSegmentAddressesOf(
    const MctsExtractionInfoSet& set) noexcept;

/// idx_of_mcts_in_set[ i ][ j ][ k ], num_mcts_in_set_minus1 + 1 of them.
CodedEntries<MctsSet, uint32_t> mctsIndicesOf(const MctsSet& set) noexcept;

/// idx_of_associated_mcts[ i ], num_associated_mcts_minus1 + 1 of them; none with all_mcts_flag.
CodedEntries<MctsExtractionInfoNesting, uint32_t> mctsIndicesOf(
    const MctsExtractionInfoNesting& nesting) noexcept;

}  // namespace qv::sei

#endif
