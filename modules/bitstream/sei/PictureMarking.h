/// \file
/// Reference picture marking that is sent again, and pictures that may replace others.
#ifndef QV_BITSTREAM_SEI_PICTUREMARKING_H
#define QV_BITSTREAM_SEI_PICTUREMARKING_H

#include <cstdint>

#include "bitstream/avc/DecRefPicMarking.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Reader.h"

namespace qv::sei {

/// dec_ref_pic_marking_repetition(), H.264 D.1.9. Its syntax depends on the SPS.
struct DecRefPicMarkingRepetition {
    static constexpr PayloadTypes kPayloadTypes = {7, kNoPayloadType};  ///< payloadType

    bool original_idr_flag;                     ///< u(1), IdrPicFlag of the picture
    uint32_t original_frame_num;                ///< ue(v), 0..MaxFrameNum - 1
    bool original_field_pic_flag;               ///< u(1), unless frame_mbs_only_flag
    bool original_bottom_field_flag;            ///< u(1), of a field
    avc::DecRefPicMarking dec_ref_pic_marking;  ///< that of the picture
};

/// spare_pic(), H.264 D.1.10. Its syntax depends on the SPS.
struct SparePic {
    static constexpr PayloadTypes kPayloadTypes = {8, kNoPayloadType};  ///< payloadType
    static constexpr uint32_t kMostSparePics = 16;  ///< greatest num_spare_pics_minus1, plus 1

    uint32_t target_frame_num;       ///< ue(v), 0..MaxFrameNum - 1
    bool spare_field_flag;           ///< u(1)
    bool target_bottom_field_flag;   ///< u(1), with spare_field_flag
    uint32_t num_spare_pics_minus1;  ///< ue(v), 0..15

    uint32_t delta_spare_frame_num[kMostSparePics];  ///< ue(v), 0..MaxFrameNum - 2 + spare_field_flag
    bool spare_bottom_field_flag[kMostSparePics];    ///< u(1), with spare_field_flag
    uint32_t spare_area_idc[kMostSparePics];         ///< ue(v), 0..2

    /// With a spare_area_idc of 1 spare_unit_flag of each map unit, u(1); with 2 zero_run_length, ue(v),
    /// until all map units are covered. Borrowed from the unit; see SpareAreas.
    CodedBits spare_area[kMostSparePics];
};

/// Reads the map units of one spare picture, in order.
class SpareAreas {
public:
    /// \param payload  read without a fault; the unit that it was read from is borrowed
    /// \param i        0..num_spare_pics_minus1
    SpareAreas(const SparePic& payload, uint32_t i) noexcept;

    /// Stores the next spare_unit_flag[ i ][ j ] for a spare_area_idc of 1, or the next
    /// zero_run_length[ i ][ j ] for 2. False after the last one, for a spare_area_idc of 0, and for a
    /// picture that there is not.
    bool next(uint32_t& value) noexcept;

private:
    Reader reader_;
    bool isRunLengths_;
};

}  // namespace qv::sei

#endif
