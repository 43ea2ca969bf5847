// The slice header of H.264, read, traced and written.
#include "bitstream/avc/SliceHeader.h"

#include <cstddef>

#include "bitstream/avc/SliceHeaderSyntax.h"
#include "bitstream/syntax/Uses.h"

template <>
constexpr size_t qv::detail::kClearedBytes<qv::avc::SliceHeader> = offsetof(qv::avc::SliceHeader,
                                                                            pred_weight_table);

namespace qv::avc {

namespace {

auto tableWith(const ParameterSets& sets) {
    return [&sets](auto& s, SliceHeader& slice) { slice_unit(s, sets, slice); };
}

}  // namespace

bool ModificationsOfPicNums::next(ModificationOfPicNums& modification) noexcept {
    constexpr uint32_t kLast = 3;
    modification = {};
    if (!reader_.more_rbsp_data()) {
        return false;
    }
    modification_of_pic_nums(reader_, true, modification);
    return modification.modification_of_pic_nums_idc != kLast;
}

Read<SliceHeader> readSliceHeader(Bytes unit, const ParameterSets& sets) noexcept {
    return detail::readBegin<SliceHeader>(unit, tableWith(sets));
}

Read<SliceHeader> traceSliceHeader(Bytes unit, const ParameterSets& sets, TraceVisitor& visitor) {
    return detail::traceBegin<SliceHeader>(unit, visitor, tableWith(sets));
}

Written writeSlice(const SliceHeader& slice, const ParameterSets& sets, Bytes unit,
                   std::vector<uint8_t>& out) {
    return detail::writeBegin(slice, unit, out, [&sets](auto& s, SliceHeader& header) {
        slice_unit(s, sets, header);
        cabac_alignment(s, sets, header);
    });
}

}  // namespace qv::avc
