// Filters for decoded pictures.
#include "bitstream/sei/FilterHints.h"

#include <cstddef>

#include "bitstream/sei/FilterHintsSyntax.h"
#include "bitstream/sei/PayloadTemplates.h"

template <>
constexpr size_t qv::detail::kClearedBytes<qv::sei::PostFilterHint> = offsetof(qv::sei::PostFilterHint,
                                                                               filter_hint_value);

template <>
constexpr size_t qv::detail::kClearedBytes<qv::sei::ChromaResamplingFilterHint> =
    offsetof(qv::sei::ChromaResamplingFilterHint, ver_tap_length_minus1);

namespace qv::sei {

QV_SEI_PAYLOAD(PostFilterHint, post_filter_hint);
QV_SEI_PAYLOAD(ChromaResamplingFilterHint, chroma_resampling_filter_hint);

}  // namespace qv::sei
