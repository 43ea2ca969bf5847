/// \file
/// The picture parameter set of H.265.
#ifndef QV_BITSTREAM_HEVC_PPS_H
#define QV_BITSTREAM_HEVC_PPS_H

#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/hevc/NalUnitHeader.h"
#include "bitstream/hevc/PpsExtensions.h"
#include "bitstream/hevc/ScalingList.h"
#include "bitstream/hevc/SpsExtensions.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Trace.h"

namespace qv::hevc {

/// A NAL unit of type 34: its header and pic_parameter_set_rbsp(), H.265 7.3.2.3 and 7.4.3.3. An element that
/// is not present has the value that its semantics infer, otherwise 0. It is read without its SPS: ranges
/// that depend on the SPS are the widest that any SPS allows.
struct Pps {
    /// Table A.8 allows 20 by 22 tiles at most; a stream of level 8.5 may have more.
    static constexpr uint32_t kMostTileColumns = 256;
    static constexpr uint32_t kMostTileRows = 256;      ///< see kMostTileColumns
    static constexpr uint32_t kMostRefLocOffsets = 62;  ///< the greatest num_ref_loc_offsets

    NalUnitHeader header;  ///< the NAL unit header

    uint32_t pps_pic_parameter_set_id;                 ///< ue(v), 0..63
    uint32_t pps_seq_parameter_set_id;                 ///< ue(v), 0..15
    bool dependent_slice_segments_enabled_flag;        ///< u(1)
    bool output_flag_present_flag;                     ///< u(1)
    uint32_t num_extra_slice_header_bits;              ///< u(3)
    bool sign_data_hiding_enabled_flag;                ///< u(1)
    bool cabac_init_present_flag;                      ///< u(1)
    uint32_t num_ref_idx_l0_default_active_minus1;     ///< ue(v), 0..14
    uint32_t num_ref_idx_l1_default_active_minus1;     ///< ue(v), 0..14
    int32_t init_qp_minus26;                           ///< se(v), -(26 + QpBdOffsetY)..25; at least -74
    bool constrained_intra_pred_flag;                  ///< u(1)
    bool transform_skip_enabled_flag;                  ///< u(1)
    bool cu_qp_delta_enabled_flag;                     ///< u(1)
    uint32_t diff_cu_qp_delta_depth;                   ///< ue(v), 0..3
    int32_t pps_cb_qp_offset;                          ///< se(v), -12..12
    int32_t pps_cr_qp_offset;                          ///< se(v), -12..12
    bool pps_slice_chroma_qp_offsets_present_flag;     ///< u(1)
    bool weighted_pred_flag;                           ///< u(1)
    bool weighted_bipred_flag;                         ///< u(1)
    bool transquant_bypass_enabled_flag;               ///< u(1)
    bool tiles_enabled_flag;                           ///< u(1)
    bool entropy_coding_sync_enabled_flag;             ///< u(1)
    uint32_t num_tile_columns_minus1;                  ///< ue(v), 0..255
    uint32_t num_tile_rows_minus1;                     ///< ue(v), 0..255
    bool uniform_spacing_flag;                         ///< 1 when not present
    bool loop_filter_across_tiles_enabled_flag;        ///< 1 when not present
    bool pps_loop_filter_across_slices_enabled_flag;   ///< u(1)
    bool deblocking_filter_control_present_flag;       ///< u(1)
    bool deblocking_filter_override_enabled_flag;      ///< u(1)
    bool pps_deblocking_filter_disabled_flag;          ///< u(1)
    int32_t pps_beta_offset_div2;                      ///< se(v), -6..6
    int32_t pps_tc_offset_div2;                        ///< se(v), -6..6
    bool pps_scaling_list_data_present_flag;           ///< u(1)
    bool lists_modification_present_flag;              ///< u(1)
    uint32_t log2_parallel_merge_level_minus2;         ///< ue(v), 0..4
    bool slice_segment_header_extension_present_flag;  ///< u(1)

    bool pps_extension_present_flag;     ///< u(1)
    bool pps_range_extension_flag;       ///< u(1)
    bool pps_multilayer_extension_flag;  ///< u(1)
    bool pps_3d_extension_flag;          ///< u(1)
    bool pps_scc_extension_flag;         ///< u(1)
    uint32_t pps_extension_4bits;        ///< u(4)
    PpsRangeExtension range;             ///< with pps_range_extension_flag
    PpsMultilayerExtension multilayer;   ///< with pps_multilayer_extension_flag
    Pps3dExtension three_d;              ///< with pps_3d_extension_flag
    PpsSccExtension scc;                 ///< with pps_scc_extension_flag
    CodedBits pps_extension_data_flag;   ///< extensions that this edition does not define

    // Arrays come last: a read sets them as far as their counts go, not beyond.

    uint16_t column_width_minus1[kMostTileColumns];             ///< ue(v); num_tile_columns_minus1 of them
    uint16_t row_height_minus1[kMostTileRows];                  ///< ue(v); num_tile_rows_minus1 of them
    uint16_t cm_ref_layer_id[ColourMappingTable::kMostLayers];  ///< u(6); set up to num_cm_ref_layers_minus1
    uint16_t pps_palette_predictor_initializer[3][kMostPaletteEntries];  ///< u(v), the entry's bit depth
    RefLocOffset ref_loc_offset[kMostRefLocOffsets];                     ///< num_ref_loc_offsets of them
    ScalingListData scaling_list_data;                                   ///< as coded; see ScalingFactors.h
};

/// Reads a picture parameter set.
///
/// \param unit  one NAL unit from its header on, without start code or length
/// \return the record. A unit of another type, data that ends early and a value out of its range are faults;
///         after one the record holds what was read before it.
Read<Pps> readPps(Bytes unit) noexcept;

/// As readPps(), and hands each element to \p visitor.
Read<Pps> tracePps(Bytes unit, TraceVisitor& visitor);

/// Writes a picture parameter set as a NAL unit, emulation prevention bytes included, to the end of \p out.
/// The parts that the record refers to are copied from the unit that they were read from.
///
/// \return the number of bytes, or the first element that does not fit its descriptor or its range
Written writePps(const Pps& pps, std::vector<uint8_t>& out);

/// The bits that writePps() would write, emulation prevention bytes left out.
Sized sizeOf(const Pps& pps) noexcept;

/// The octants of a colour_mapping_table() (H.265 F.7.3.2.3.6 and F.7.4.3.3.6), one entry for each cell: y
/// counts the PartNumY << cm_octant_depth parts of luma, cb and cr the 1 << cm_octant_depth parts of chroma.
/// Cells of an octant that is not split are set where the octant begins and 0 elsewhere.
struct ColourMapping {
    static constexpr uint32_t kMostLumaParts = 8;    ///< of cells along y
    static constexpr uint32_t kMostChromaParts = 2;  ///< of cells along cb and along cr

    bool split_octant_flag;                                                      ///< of the whole cube
    bool coded_res_flag[kMostLumaParts][kMostChromaParts][kMostChromaParts][4];  ///< u(1), of each vertex

    /// (res_coeff_q << CMResLSBits) + res_coeff_r with the sign res_coeff_s, for vertex j and component c;
    /// below 2^50 in magnitude.
    int64_t residual[kMostLumaParts][kMostChromaParts][kMostChromaParts][4][3];
};

/// The octants of \p pps, which was read without a fault, in \p mapping; false when it has none.
bool colourMappingOf(const Pps& pps, ColourMapping& mapping) noexcept;

/// One depth look-up table of pps_3d_extension() and delta_dlt() (H.265 I.7.3.2.3.7, I.7.3.2.3.8).
struct DepthLookupTable {
    bool dlt_flag;                    ///< u(1)
    bool dlt_pred_flag;               ///< u(1)
    bool dlt_val_flags_present_flag;  ///< u(1)
    uint32_t num_val_delta_dlt;       ///< u(v), pps_bit_depth_for_depth_layers_minus8 + 8 bits
    uint32_t max_diff;                ///< u(v); 0 when not present
    uint32_t min_diff_minus1;         ///< u(v); max_diff - 1 when not present, 0 for max_diff 0
    uint32_t delta_dlt_val0;          ///< u(v)

    /// With dlt_val_flags_present_flag the flags dlt_value_flag[i][j], one bit each; otherwise
    /// delta_val_diff_minus_min[k], num_val_delta_dlt - 1 of them with Ceil(Log2(max_diff - min_diff_minus1))
    /// bits, or none.
    CodedBits values;
};

/// The depth look-up table \p i, 0 to pps_depth_layers_minus1, of \p pps, which was read without a fault, in
/// \p table; false when there is none. It reads the tables before it as well.
bool depthLookupTableOf(const Pps& pps, uint32_t i, DepthLookupTable& table) noexcept;

}  // namespace qv::hevc

#endif
