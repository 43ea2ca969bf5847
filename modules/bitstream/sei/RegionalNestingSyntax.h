// SEI messages that apply to regions of a picture, as syntax functions.
#ifndef QV_BITSTREAM_SEI_REGIONALNESTINGSYNTAX_H
#define QV_BITSTREAM_SEI_REGIONALNESTINGSYNTAX_H

#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/RegionalNesting.h"

namespace qv::sei {

// The regions that a message applies to.
template <class Syntax>
void regions_for_sei_message(Syntax& s, uint32_t i, RegionalMessage& message) {
    s.u(8, at("num_regions_for_sei_message", i), message.num_regions_for_sei_message);
    for (uint32_t j = 0; j < message.num_regions_for_sei_message; ++j) {
        s.u(8, at("regional_nesting_sei_region_idx", i, j), message.regional_nesting_sei_region_idx[j]);
    }
}

// regional_nesting(), H.265 D.2.42
template <class Syntax>
void regional_nesting(Syntax& s, const Context& context, RegionalNesting& payload) {
    static constexpr Structure kStructure = {"regional_nesting()", "D.2.42"};
    const Within<Syntax> within(s, kStructure);
    s.u(16, "regional_nesting_id", payload.regional_nesting_id);
    s.u(8, "regional_nesting_num_rect_regions", payload.regional_nesting_num_rect_regions);
    for (uint32_t i = 0; i < payload.regional_nesting_num_rect_regions; ++i) {
        RegionalNestingRect& rect = payload.rects[i];
        s.u(8, at("regional_nesting_rect_region_id", i), rect.regional_nesting_rect_region_id);
        s.u(16, at("regional_nesting_rect_left_offset", i), rect.regional_nesting_rect_left_offset);
        s.u(16, at("regional_nesting_rect_right_offset", i), rect.regional_nesting_rect_right_offset);
        s.u(16, at("regional_nesting_rect_top_offset", i), rect.regional_nesting_rect_top_offset);
        s.u(16, at("regional_nesting_rect_bottom_offset", i), rect.regional_nesting_rect_bottom_offset);
    }
    s.u(8, "num_sei_messages_in_regional_nesting_minus1",
        payload.num_sei_messages_in_regional_nesting_minus1);
    s.keep(payload.messages, [&payload, &context](auto& in) {
        for (uint32_t i = 0; i <= payload.num_sei_messages_in_regional_nesting_minus1 && !in.failed(); ++i) {
            RegionalMessage message = {};
            regions_for_sei_message(in, i, message);
            nested_message(in, context);
        }
    });
}

}  // namespace qv::sei

#endif
