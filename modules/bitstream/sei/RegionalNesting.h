/// \file
/// SEI messages that apply to regions of a picture (H.265).
#ifndef QV_BITSTREAM_SEI_REGIONALNESTING_H
#define QV_BITSTREAM_SEI_REGIONALNESTING_H

#include <cstdint>

#include "bitstream/sei/CodedEntries.h"
#include "bitstream/sei/SeiMessages.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// A rectangle of a regional_nesting(). Offsets are from the edges of the conformance window, in units of
/// chroma samples.
struct RegionalNestingRect {
    uint8_t regional_nesting_rect_region_id;       ///< u(8)
    uint16_t regional_nesting_rect_left_offset;    ///< u(16)
    uint16_t regional_nesting_rect_right_offset;   ///< u(16)
    uint16_t regional_nesting_rect_top_offset;     ///< u(16)
    uint16_t regional_nesting_rect_bottom_offset;  ///< u(16)
};

/// regional_nesting(), H.265 D.2.42. Between its messages are lists of the regions that each applies to; see
/// regionalMessagesOf().
struct RegionalNesting {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 157};  ///< payloadType
    static constexpr uint32_t kMostRects = 255;  ///< the greatest regional_nesting_num_rect_regions

    uint32_t regional_nesting_id;                          ///< u(16)
    uint32_t regional_nesting_num_rect_regions;            ///< u(8)
    uint32_t num_sei_messages_in_regional_nesting_minus1;  ///< u(8)
    CodedBits messages;                                    ///< an entry for each message
    RegionalNestingRect rects[kMostRects];  ///< regional_nesting_num_rect_regions of them are set
};

/// A message that applies to some of the regions: the loop body of regional_nesting().
struct RegionalMessage {
    static constexpr uint32_t kMostRegions = 255;  ///< the greatest num_regions_for_sei_message

    uint32_t num_regions_for_sei_message;                   ///< u(8)
    uint8_t regional_nesting_sei_region_idx[kMostRegions];  ///< u(8), numbers of entries of rects
    SeiMessage message;                                     ///< of the unit that the nesting is in
};

/// The messages of \p nesting, num_sei_messages_in_regional_nesting_minus1 + 1 of them.
CodedEntries<RegionalNesting, RegionalMessage> regionalMessagesOf(const RegionalNesting& nesting) noexcept;

}  // namespace qv::sei

#endif
