/// \file
/// Where decoding may begin, and from where on the pictures are correct.
#ifndef QV_BITSTREAM_SEI_RANDOMACCESS_H
#define QV_BITSTREAM_SEI_RANDOMACCESS_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"

namespace qv::sei {

/// recovery_point() of H.264, D.1.8 and D.2.8.
struct AvcRecoveryPoint {
    static constexpr PayloadTypes kPayloadTypes = {6, kNoPayloadType};  ///< payloadType

    /// ue(v), 0..65535: frame_num of the recovery point less that of this picture, modulo MaxFrameNum. It is
    /// less than MaxFrameNum of the SPS of the picture, which is not checked.
    uint32_t recovery_frame_cnt;
    bool exact_match_flag;              ///< u(1)
    bool broken_link_flag;              ///< u(1)
    uint32_t changing_slice_group_idc;  ///< u(2), 0..2
};

/// recovery_point() of H.265, D.2.8 and D.3.8.
struct HevcRecoveryPoint {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 6};  ///< payloadType

    /// se(v), -32768..32767: PicOrderCntVal of the recovery point less that of this picture. The range for
    /// the SPS of the picture, -MaxPicOrderCntLsb / 2 to MaxPicOrderCntLsb / 2 - 1, is not checked.
    int32_t recovery_poc_cnt;
    bool exact_match_flag;  ///< u(1)
    bool broken_link_flag;  ///< u(1)
};

/// region_refresh_info(), H.265 D.2.25 and D.3.25: whether the slice segments up to the next message of the
/// type belong to the region that is correct at the recovery point.
struct RegionRefreshInfo {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 134};  ///< payloadType
    bool refreshed_region_flag;                                           ///< u(1)
};

/// dependent_rap_indication(), H.265 D.2.36 and D.3.36, which is empty: the picture refers to no other than
/// the IRAP picture before it.
struct DependentRapIndication {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 145};  ///< payloadType
};

}  // namespace qv::sei

#endif
