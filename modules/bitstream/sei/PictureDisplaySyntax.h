// What of a picture is to be displayed as syntax functions.
#ifndef QV_BITSTREAM_SEI_PICTUREDISPLAYSYNTAX_H
#define QV_BITSTREAM_SEI_PICTUREDISPLAYSYNTAX_H

#include <cstdint>

#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/PictureDisplay.h"

namespace qv::sei {

// pan_scan_rect(), H.264 D.1.4, H.265 D.2.4
template <class Syntax>
void pan_scan_rect(Syntax& s, const Context& context, PanScanRect& payload) {
    static constexpr SharedStructure kStructure = sharedStructure("pan_scan_rect()", "D.1.4", "D.2.4");
    const Within<Syntax> within(s, kStructure.of(context));
    s.ue("pan_scan_rect_id", payload.pan_scan_rect_id);
    s.flag("pan_scan_rect_cancel_flag", payload.pan_scan_rect_cancel_flag);
    if (payload.pan_scan_rect_cancel_flag) {
        return;
    }
    s.ue("pan_scan_cnt_minus1", payload.pan_scan_cnt_minus1, 0, PanScanRect::kMostRectangles - 1);
    for (uint32_t i = 0; i <= payload.pan_scan_cnt_minus1; ++i) {
        s.se(at("pan_scan_rect_left_offset", i), payload.pan_scan_rect_left_offset[i]);
        s.se(at("pan_scan_rect_right_offset", i), payload.pan_scan_rect_right_offset[i]);
        s.se(at("pan_scan_rect_top_offset", i), payload.pan_scan_rect_top_offset[i]);
        s.se(at("pan_scan_rect_bottom_offset", i), payload.pan_scan_rect_bottom_offset[i]);
    }
    if (context.codec == Codec::Hevc) {
        s.flag("pan_scan_rect_persistence_flag", payload.pan_scan_rect_persistence_flag);
    } else {
        s.ue("pan_scan_rect_repetition_period", payload.pan_scan_rect_repetition_period, 0,
             payload.pan_scan_cnt_minus1 > 0 ? 1 : 16384);
    }
}

// no_display(), H.265 D.2.26
template <class Syntax>
void no_display(Syntax& s, const Context& context, NoDisplay& payload) {
    static constexpr Structure kStructure = {"no_display()", "D.2.26"};
    static_cast<void>(context);
    static_cast<void>(payload);
    const Within<Syntax> within(s, kStructure);
}

}  // namespace qv::sei

#endif
