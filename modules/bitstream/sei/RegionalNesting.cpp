// SEI messages that apply to regions of a picture.
#include "bitstream/sei/RegionalNesting.h"

#include <cstddef>

#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/RegionalNestingSyntax.h"

template <>
constexpr size_t qv::detail::kClearedBytes<qv::sei::RegionalNesting> = offsetof(qv::sei::RegionalNesting,
                                                                                rects);

namespace qv::sei {

QV_SEI_PAYLOAD(RegionalNesting, regional_nesting);

CodedEntries<RegionalNesting, RegionalMessage> regionalMessagesOf(const RegionalNesting& nesting) noexcept {
    return {nesting, nesting.messages, uint64_t{nesting.num_sei_messages_in_regional_nesting_minus1} + 1,
            [](Reader& reader, const RegionalNesting& /*nesting*/, uint32_t i, RegionalMessage& message) {
                regions_for_sei_message(reader, i, message);
                const CodedBits first = reader.mark();
                nested_message(reader, Context(Codec::Hevc));
                message.message = *SeiMessages(NestedMessages{reader.until(first)}).begin();
            }};
}

}  // namespace qv::sei
