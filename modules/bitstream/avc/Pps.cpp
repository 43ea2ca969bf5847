// The picture parameter set of H.264, read, traced, written and sized.
#include "bitstream/avc/Pps.h"

#include <cstddef>

#include "bitstream/avc/PpsSyntax.h"
#include "bitstream/syntax/Uses.h"

namespace qv::avc {

namespace {

constexpr auto unitWith(uint32_t chroma_format_idc) {
    return [chroma_format_idc](auto& s, auto& pps) { pic_parameter_set_unit(s, pps, chroma_format_idc); };
}

}  // namespace

}  // namespace qv::avc

template <>
constexpr size_t qv::detail::kClearedBytes<qv::avc::Pps> = offsetof(qv::avc::Pps, scaling_matrix);

namespace qv::avc {

Read<Pps> readPps(Bytes unit, uint32_t chroma_format_idc) noexcept {
    return detail::readUnit<Pps>(unit, unitWith(chroma_format_idc));
}

Read<Pps> tracePps(Bytes unit, uint32_t chroma_format_idc, TraceVisitor& visitor) {
    return detail::traceUnit<Pps>(unit, visitor, unitWith(chroma_format_idc));
}

Written writePps(const Pps& pps, uint32_t chroma_format_idc, std::vector<uint8_t>& out) {
    return detail::writeUnit(pps, out, unitWith(chroma_format_idc));
}

Sized sizeOf(const Pps& pps, uint32_t chroma_format_idc) noexcept {
    return detail::sizeUnit(pps, unitWith(chroma_format_idc));
}

SliceGroupIds::SliceGroupIds(const Pps& pps) noexcept
    : reader_(pps.slice_group_id),
      width_(sliceGroupIdBits(pps.num_slice_groups_minus1)),
      left_(width_ != 0 ? pps.slice_group_id.count / width_ : 0) {}

bool SliceGroupIds::next(uint32_t& slice_group_id) noexcept {
    if (left_ == 0) {
        return false;
    }
    --left_;
    reader_.u(width_, "slice_group_id", slice_group_id);
    return true;
}

}  // namespace qv::avc
