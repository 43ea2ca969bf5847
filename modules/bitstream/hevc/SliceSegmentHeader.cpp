// The slice segment header of H.265, read, traced and written.
#include "bitstream/hevc/SliceSegmentHeader.h"

#include <cstddef>

#include "bitstream/hevc/SliceSegmentHeaderSyntax.h"
#include "bitstream/syntax/Uses.h"

template <>
constexpr size_t qv::detail::kClearedBytes<qv::hevc::SliceSegmentHeader> =
    offsetof(qv::hevc::SliceSegmentHeader, st_ref_pic_set);

namespace qv::hevc {

namespace {

auto tableWith(const ParameterSets& sets) {
    return [&sets](auto& s, SliceSegmentHeader& slice) { slice_segment_unit(s, sets, slice); };
}

}  // namespace

Read<SliceSegmentHeader> readSliceSegmentHeader(Bytes unit, const ParameterSets& sets) noexcept {
    return detail::readBegin<SliceSegmentHeader>(unit, tableWith(sets));
}

Read<SliceSegmentHeader> traceSliceSegmentHeader(Bytes unit, const ParameterSets& sets,
                                                 TraceVisitor& visitor) {
    return detail::traceBegin<SliceSegmentHeader>(unit, visitor, tableWith(sets));
}

Written writeSliceSegment(const SliceSegmentHeader& slice, const ParameterSets& sets, Bytes unit,
                          std::vector<uint8_t>& out) {
    return detail::writeBegin(slice, unit, out, tableWith(sets));
}

}  // namespace qv::hevc
