/// \file
/// What of a picture is to be displayed.
#ifndef QV_BITSTREAM_SEI_PICTUREDISPLAY_H
#define QV_BITSTREAM_SEI_PICTUREDISPLAY_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"

namespace qv::sei {

/// pan_scan_rect(), H.264 D.1.4 and D.2.4, H.265 D.2.4 and D.3.4. Offsets are from the edges of the cropping
/// rectangle or conformance window, in units of 1/16 luma sample; without pan_scan_rect_cancel_flag.
struct PanScanRect {
    static constexpr PayloadTypes kPayloadTypes = {2, 2};  ///< payloadType
    static constexpr uint32_t kMostRectangles = 3;         ///< the greatest pan_scan_cnt_minus1, plus 1

    uint32_t pan_scan_rect_id;       ///< ue(v), 0..2^32 - 2; 256..511 and from 2^31 on are reserved
    bool pan_scan_rect_cancel_flag;  ///< u(1)
    uint32_t pan_scan_cnt_minus1;    ///< ue(v), 0..2

    int32_t pan_scan_rect_left_offset[kMostRectangles];    ///< se(v), -2^31 + 1..2^31 - 1
    int32_t pan_scan_rect_right_offset[kMostRectangles];   ///< se(v), -2^31 + 1..2^31 - 1
    int32_t pan_scan_rect_top_offset[kMostRectangles];     ///< se(v), -2^31 + 1..2^31 - 1
    int32_t pan_scan_rect_bottom_offset[kMostRectangles];  ///< se(v), -2^31 + 1..2^31 - 1

    /// H.264 alone: ue(v), 0..16384; 0 or 1 with more than one rectangle.
    uint32_t pan_scan_rect_repetition_period;
    bool pan_scan_rect_persistence_flag;  ///< H.265 alone: u(1)
};

/// no_display(), H.265 D.2.26 and D.3.26, which is empty: the picture is not meant to be displayed.
struct NoDisplay {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 135};  ///< payloadType
};

}  // namespace qv::sei

#endif
