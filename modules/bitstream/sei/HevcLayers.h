/// \file
/// SEI payloads about layers and operation points of H.265: nesting, layers not present, constraints between
/// layers, sub-bitstreams, alpha planes and overlays.
#ifndef QV_BITSTREAM_SEI_HEVCLAYERS_H
#define QV_BITSTREAM_SEI_HEVCLAYERS_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Reader.h"

namespace qv::sei {

/// scalable_nesting(), H.265 D.2.24: messages that apply to some layers or operation points.
struct HevcScalableNesting {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 133};  ///< payloadType
    static constexpr uint32_t kMostOps = 1024;                            ///< operation points
    static constexpr uint32_t kMostLayers = 64;                           ///< entries of nesting_layer_id

    bool bitstream_subset_flag;                    ///< u(1)
    bool nesting_op_flag;                          ///< u(1)
    bool default_op_flag;                          ///< u(1), with nesting_op_flag
    uint32_t nesting_num_ops_minus1;               ///< ue(v), 0..1023, with nesting_op_flag
    bool all_layers_flag;                          ///< u(1), without nesting_op_flag
    uint32_t nesting_no_op_max_temporal_id_plus1;  ///< u(3), without nesting_op_flag and all_layers_flag
    uint32_t nesting_num_layers_minus1;            ///< ue(v), 0..63, without both
    uint8_t nesting_layer_id[kMostLayers];         ///< u(6), nesting_num_layers_minus1 + 1 of them

    /// The messages in the payload: `for (const SeiMessage& message : SeiMessages(nesting.messages))`.
    NestedMessages messages;

    // Entries default_op_flag to nesting_num_ops_minus1. Others are not set.
    uint8_t nesting_max_temporal_id_plus1[kMostOps];  ///< u(3)
    uint16_t nesting_op_idx[kMostOps];                ///< ue(v), 0..1023
};

/// layers_not_present(), H.265 F.14.2.3. Depends on the VPS.
struct LayersNotPresent {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 160};  ///< payloadType
    uint32_t lnp_sei_active_vps_id;                                       ///< u(4)
    uint64_t layer_not_present_flag;  ///< u(1) each; flag i is bit i, for i of 0..MaxLayersMinus1
};

/// A set of inter_layer_constrained_tile_sets().
struct InterLayerTileSet {
    uint32_t ilcts_id;                         ///< ue(v), 0..2^32 - 2
    uint32_t il_num_tile_rects_in_set_minus1;  ///< ue(v), 0..65535
    CodedBits tile_rects;                      ///< see InterLayerTileRectReader
    uint32_t ilc_idc;                          ///< u(2); 3 is reserved

    /// u(1), without il_all_tiles_exact_sample_value_match_flag.
    bool il_exact_sample_value_match_flag;
};

/// A rectangle of tiles, which are counted in raster scan.
struct InterLayerTileRect {
    uint32_t il_top_left_tile_idx;      ///< ue(v), 0..2^32 - 2
    uint32_t il_bottom_right_tile_idx;  ///< ue(v), 0..2^32 - 2
};

/// inter_layer_constrained_tile_sets(), H.265 F.14.2.4.
struct InterLayerConstrainedTileSets {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 161};  ///< payloadType
    static constexpr uint32_t kMostSets = 256;                            ///< sets in a message
    static constexpr uint32_t kMostTileRects = 65536;                     ///< rectangles in a set

    bool il_all_tiles_exact_sample_value_match_flag;  ///< u(1)
    bool il_one_tile_per_tile_set_flag;               ///< u(1)
    uint32_t il_num_sets_in_message_minus1;           ///< ue(v), 0..255, several tiles to a set
    bool skipped_tile_set_present_flag;               ///< u(1), with more than one set
    CodedBits tile_sets;                              ///< see InterLayerTileSetReader
    uint32_t all_tiles_ilc_idc;                       ///< u(2), with il_one_tile_per_tile_set_flag

    /// numSignificantSets, F.14.2.4: the sets of which the message has the tiles. 0 with
    /// il_one_tile_per_tile_set_flag.
    uint32_t numSignificantSets() const {
        const uint32_t skipped = skipped_tile_set_present_flag ? 1 : 0;
        return il_one_tile_per_tile_set_flag ? 0 : il_num_sets_in_message_minus1 - skipped + 1;
    }
};

/// Delivers the sets of a message that was read without a fault, and whose unit is still there.
class InterLayerTileSetReader {
public:
    /// \p payload is borrowed.
    explicit InterLayerTileSetReader(const InterLayerConstrainedTileSets& payload) noexcept
        : payload_(payload), reader_(payload.tile_sets) {}

    /// The next set; false after the last one.
    bool next(InterLayerTileSet& set) noexcept;

private:
    const InterLayerConstrainedTileSets& payload_;
    Reader reader_;
    uint32_t next_ = 0;
};

/// Delivers the rectangles of a set.
class InterLayerTileRectReader {
public:
    /// \p set is borrowed.
    explicit InterLayerTileRectReader(const InterLayerTileSet& set) noexcept : reader_(set.tile_rects) {}

    /// The next rectangle; false after the last one.
    bool next(InterLayerTileRect& rect) noexcept;

private:
    Reader reader_;
};

/// bsp_nesting(), H.265 F.14.2.5: messages that apply to a bitstream partition of an output layer set. The
/// message is in a scalable_nesting() itself.
struct BspNesting {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 162};  ///< payloadType
    uint32_t sei_ols_idx;                                                 ///< ue(v), 0..2^32 - 2
    uint32_t sei_partitioning_scheme_idx;                                 ///< ue(v), 0..2^32 - 2
    uint32_t bsp_idx;                                                     ///< ue(v), 0..2^32 - 2
    uint32_t num_seis_in_bsp_minus1;                                      ///< ue(v), 0..2^32 - 2

    /// The messages as bytes. Those about an HRD have the lengths of the partition, which are not those of
    /// the SPS: SeiMessages gives their types and payloads, a trace the bytes.
    NestedMessages sei_message;
};

/// A sub-bitstream of sub_bitstream_property().
struct SubBitstream {
    uint32_t sub_bitstream_mode;        ///< u(2); 2 and 3 are reserved
    uint32_t ols_idx_to_vps;            ///< ue(v), 0..2^32 - 2
    uint32_t highest_sublayer_id;       ///< u(3)
    uint32_t avg_sb_property_bit_rate;  ///< u(16), in units of 1000 bits a second
    uint32_t max_sb_property_bit_rate;  ///< u(16), in units of 1000 bits a second
};

/// sub_bitstream_property(), H.265 F.14.2.7.
struct SubBitstreamProperty {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 164};  ///< payloadType
    static constexpr uint32_t kMostSubStreams = 1024;                     ///< additional sub-streams
    uint32_t sb_property_active_vps_id;                                   ///< u(4)
    uint32_t num_additional_sub_streams_minus1;                           ///< ue(v), 0..1023
    CodedBits sub_streams;                                                ///< see SubBitstreamReader
};

/// Delivers the sub-bitstreams of a message that was read without a fault, and whose unit is still there.
class SubBitstreamReader {
public:
    /// Keeps nothing of \p payload but what its bits borrow.
    explicit SubBitstreamReader(const SubBitstreamProperty& payload) noexcept
        : reader_(payload.sub_streams) {}

    /// The next sub-bitstream; false after the last one.
    bool next(SubBitstream& subBitstream) noexcept;

private:
    Reader reader_;
    uint32_t next_ = 0;
};

/// alpha_channel_info(), H.265 F.14.2.8.
struct AlphaChannelInfo {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 165};  ///< payloadType
    bool alpha_channel_cancel_flag;                                       ///< u(1); alone when it is 1

    /// u(3): 0 not multiplied yet, 1 multiplied already, 2 unspecified; others are reserved.
    uint32_t alpha_channel_use_idc;

    uint32_t alpha_channel_bit_depth_minus8;  ///< u(3)
    uint32_t alpha_transparent_value;         ///< u(v), alpha_channel_bit_depth_minus8 + 9 bits
    uint32_t alpha_opaque_value;              ///< u(v), alpha_channel_bit_depth_minus8 + 9 bits
    bool alpha_channel_incr_flag;             ///< u(1)
    bool alpha_channel_clip_flag;             ///< u(1)
    bool alpha_channel_clip_type_flag;        ///< u(1), with alpha_channel_clip_flag
};

/// overlay_info(), H.265 F.14.2.9.
struct OverlayInfo {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 166};  ///< payloadType
    static constexpr uint32_t kMostOverlays = 16;                         ///< overlays
    static constexpr uint32_t kMostElements = 256;                        ///< elements of an overlay

    /// One overlay.
    struct Overlay {
        uint32_t overlay_idx;                  ///< ue(v), 0..255
        bool language_overlay_present_flag;    ///< u(1)
        uint32_t overlay_content_layer_id;     ///< u(6)
        bool overlay_label_present_flag;       ///< u(1)
        uint32_t overlay_label_layer_id;       ///< u(6), with overlay_label_present_flag
        bool overlay_alpha_present_flag;       ///< u(1)
        uint32_t overlay_alpha_layer_id;       ///< u(6), with overlay_alpha_present_flag
        uint32_t num_overlay_elements_minus1;  ///< ue(v), 0..255, with overlay_label_present_flag

        /// Of each element overlay_element_label_min and overlay_element_label_max, u(v) of
        /// overlay_element_label_value_length_minus8 + 8 bits.
        CodedBits labels;

        CodedBits overlay_language;  ///< st(v), its zero byte included; with language_overlay_present_flag
        CodedBits overlay_name;      ///< st(v), its zero byte included
        CodedBits overlay_element_name;  ///< st(v) of each element, their zero bytes included
    };

    bool overlay_info_cancel_flag;                       ///< u(1); alone when it is 1
    uint32_t overlay_content_aux_id_minus128;            ///< ue(v), 0..31
    uint32_t overlay_label_aux_id_minus128;              ///< ue(v), 0..31
    uint32_t overlay_alpha_aux_id_minus128;              ///< ue(v), 0..31
    uint32_t overlay_element_label_value_length_minus8;  ///< ue(v), 0..24
    uint32_t num_overlays_minus1;                        ///< ue(v), 0..15
    bool overlay_info_persistence_flag;                  ///< u(1)
    Overlay overlays[kMostOverlays];                     ///< num_overlays_minus1 + 1 of them
};

/// temporal_mv_prediction_constraints(), H.265 F.14.2.10.
struct TemporalMvPredictionConstraints {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 167};  ///< payloadType
    bool prev_pics_not_used_flag;                                         ///< u(1)
    bool no_intra_layer_col_pic_flag;                                     ///< u(1)
};

}  // namespace qv::sei

#endif
