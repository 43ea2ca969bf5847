// H.264 messages that hold messages for layers, views or operation points.
#include "bitstream/sei/AvcScalableNesting.h"

#include <cstddef>

#include "bitstream/sei/AvcScalableNestingSyntax.h"
#include "bitstream/sei/PayloadTemplates.h"

template <>
constexpr size_t qv::detail::kClearedBytes<qv::sei::AvcScalableNesting> =
    offsetof(qv::sei::AvcScalableNesting, sei_dependency_id);

template <>
constexpr size_t qv::detail::kClearedBytes<qv::sei::MvcScalableNesting> =
    offsetof(qv::sei::MvcScalableNesting, view_id);

template <>
constexpr size_t qv::detail::kClearedBytes<qv::sei::MvcdScalableNesting> =
    offsetof(qv::sei::MvcdScalableNesting, views);

namespace qv::sei {

QV_SEI_PAYLOAD(AvcScalableNesting, scalable_nesting);
QV_SEI_PAYLOAD(MvcScalableNesting, mvc_scalable_nesting);
QV_SEI_PAYLOAD(MvcdScalableNesting, mvcd_scalable_nesting);

}  // namespace qv::sei
