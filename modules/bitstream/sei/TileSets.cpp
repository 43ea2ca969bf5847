// Sets of tiles that can be decoded without the rest of the picture.
#include "bitstream/sei/TileSets.h"

#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/TileSetsSyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(TemporalMotionConstrainedTileSets, temporal_motion_constrained_tile_sets);
QV_SEI_PAYLOAD(MctsExtractionInfoSets, mcts_extraction_info_sets);
QV_SEI_PAYLOAD(MctsExtractionInfoNesting, mcts_extraction_info_nesting);

CodedEntries<TemporalMotionConstrainedTileSets, TileSet> tileSetsOf(
    const TemporalMotionConstrainedTileSets& sets) noexcept {
    return {sets, sets.tile_sets, uint64_t{sets.num_sets_in_message_minus1} + 1,
            [](Reader& reader, const TemporalMotionConstrainedTileSets& all, uint32_t i, TileSet& set) {
                tile_set(reader, all, i, set);
            }};
}

CodedEntries<TileSet, TileRect> tileRectsOf(const TileSet& set) noexcept {
    return {set, set.tile_rects, uint64_t{set.num_tile_rects_in_set_minus1} + 1,
            [](Reader& reader, const TileSet& /*set*/, uint32_t j, TileRect& rect) {
                tile_rect(reader, 0, j, rect);
            }};
}

CodedEntries<MctsExtractionInfoSets, MctsExtractionInfoSet> extractionInfoSetsOf(
    const MctsExtractionInfoSets& sets) noexcept {
    return {sets, sets.info_sets, uint64_t{sets.num_info_sets_minus1} + 1,
            [](Reader& reader, const MctsExtractionInfoSets& all, uint32_t i, MctsExtractionInfoSet& set) {
                mcts_extraction_info_set(reader, all.PicSizeInCtbsY, i, set);
            }};
}

CodedEntries<MctsExtractionInfoSet, MctsSet> mctsSetsOf(const MctsExtractionInfoSet& set) noexcept {
    return {set, set.mcts_sets, uint64_t{set.num_mcts_sets_minus1} + 1,
            [](Reader& reader, const MctsExtractionInfoSet& /*set*/, uint32_t j, MctsSet& mctsSet) {
                mcts_set(reader, 0, j, mctsSet);
            }};
}

CodedEntries<MctsExtractionInfoSet, uint32_t> outputSliceSegmentAddressesOf(
    const MctsExtractionInfoSet& set) noexcept {
    const bool hasAddresses = set.slice_reordering_enabled_flag && set.PicSizeInCtbsY != 0;
    const uint64_t count = hasAddresses ? uint64_t{set.num_slice_segments_minus1} + 1 : 0;
    return {set, set.output_slice_segment_address, count,
            [](Reader& reader, const MctsExtractionInfoSet& all, uint32_t j, uint32_t& address) {
                reader.u(addressBits(all.PicSizeInCtbsY), at("output_slice_segment_address", 0, j), address);
            }};
}

CodedEntries<MctsSet, uint32_t> mctsIndicesOf(const MctsSet& set) noexcept {
    return {set, set.idx_of_mcts_in_set, uint64_t{set.num_mcts_in_set_minus1} + 1,
            [](Reader& reader, const MctsSet& /*set*/, uint32_t k, uint32_t& index) {
                reader.ue(at("idx_of_mcts_in_set", 0, 0, k), index);
            }};
}

CodedEntries<MctsExtractionInfoNesting, uint32_t> mctsIndicesOf(
    const MctsExtractionInfoNesting& nesting) noexcept {
    return {nesting, nesting.idx_of_associated_mcts, uint64_t{nesting.num_associated_mcts_minus1} + 1,
            [](Reader& reader, const MctsExtractionInfoNesting& /*nesting*/, uint32_t i, uint32_t& index) {
                reader.ue(at("idx_of_associated_mcts", i), index);
            }};
}

}  // namespace qv::sei
