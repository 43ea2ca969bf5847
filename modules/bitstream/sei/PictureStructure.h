/// \file
/// Frames and fields, and how pictures follow each other.
#ifndef QV_BITSTREAM_SEI_PICTURESTRUCTURE_H
#define QV_BITSTREAM_SEI_PICTURESTRUCTURE_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Reader.h"

namespace qv::sei {

/// frame_field_info(), H.265 F.14.2.11: what pic_timing() says of frames and fields, without an SPS.
struct FrameFieldInfo {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 168};  ///< payloadType
    uint32_t ffinfo_pic_struct;        ///< u(4), as pic_struct of Table D.2
    uint32_t ffinfo_source_scan_type;  ///< u(2): 0 interlaced, 1 progressive, 2 unknown
    bool ffinfo_duplicate_flag;        ///< u(1)
};

/// deinterlaced_field_identification(), H.265 D.2.34 and D.3.34: the field that the frame was made from.
struct DeinterlacedFieldIdentification {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 143};  ///< payloadType
    bool deinterlaced_picture_source_parity_flag;                         ///< u(1): 0 top, 1 bottom
};

/// structure_of_pictures_info(), H.265 D.2.19 and D.3.19.
struct StructureOfPicturesInfo {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 128};  ///< payloadType
    static constexpr uint32_t kMostEntries = 1024;  ///< num_entries_in_sop_minus1, plus 1

    uint32_t sop_seq_parameter_set_id;   ///< ue(v), 0..15
    uint32_t num_entries_in_sop_minus1;  ///< ue(v), 0..1023
    CodedBits entries;                   ///< see SopEntryReader
};

/// A picture of structure_of_pictures_info(), in decoding order.
struct SopEntry {
    uint32_t sop_vcl_nut;      ///< u(6), a nal_unit_type
    uint32_t sop_temporal_id;  ///< u(3), TemporalId

    /// ue(v), below num_short_term_ref_pic_sets of the SPS, without one 0..63; 0 for IDR pictures.
    uint32_t sop_short_term_rps_idx;
    int32_t sop_poc_delta;  ///< se(v), PicOrderCntVal less that of the entry before; 0 for the first
};

/// Reads the entries of a structure_of_pictures_info() that was read without a fault, in order.
class SopEntryReader {
public:
    /// \p info, and the unit that it was read from, are borrowed.
    explicit SopEntryReader(const StructureOfPicturesInfo& info) noexcept
        : reader_(info.entries), count_(info.num_entries_in_sop_minus1 + 1) {}

    /// num_entries_in_sop_minus1 + 1.
    uint32_t count() const noexcept { return count_; }

    /// Reads the next one; false when there is none left.
    bool next(SopEntry& entry) noexcept;

private:
    Reader reader_;
    uint32_t count_;
    uint32_t next_ = 0;
};

/// temporal_sub_layer_zero_idx(), H.265 D.2.23 and D.3.23.
struct TemporalSubLayerZeroIdx {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 131};  ///< payloadType
    uint32_t temporal_sub_layer_zero_idx;                                 ///< u(8), counts TemporalId 0
    uint32_t irap_pic_id;                                                 ///< u(8), of the last IRAP picture
};

/// coded_region_completion(), H.265 D.2.37 and D.3.37: the slice segments of the picture up to an address
/// have come.
struct CodedRegionCompletion {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 146};  ///< payloadType
    uint32_t next_segment_address;        ///< ue(v), a CTB; 0 at the end of the picture
    bool independent_slice_segment_flag;  ///< u(1); 0 when next_segment_address is 0
};

}  // namespace qv::sei

#endif
