// ITU-T H.264 (08/2021) 7.4.1.2.3 and 7.4.1.2.4.
#include "input/AvcUnitRoles.h"

#include "bitstream/avc/NalUnitType.h"

namespace qvinspect {

namespace {
constexpr unsigned kForbiddenZeroBit = 0x80;
constexpr unsigned kReserved18 = 18;
}  // namespace

UnitRole AvcUnitRoles::roleOf(const unsigned char* unit, size_t size) {
    isFieldSlice_ = false;
    if (size == 0 || (unit[0] & kForbiddenZeroBit) != 0) {
        return UnitRole::Belongs;
    }
    const unsigned type = unit[0] & 0x1FU;
    switch (type) {
        case qv::avc::kNalSliceNonIdr:
        case qv::avc::kNalSliceDataPartitionA:
        case qv::avc::kNalSliceIdr:
            return roleOfSlice(unit, size);
        case qv::avc::kNalSps:
        case qv::avc::kNalPps:
            parameterSets_.take({unit, size});
            return UnitRole::MayBegin;
        case qv::avc::kNalSei:
            return UnitRole::MayBegin;
        case qv::avc::kNalAccessUnitDelimiter:
            return UnitRole::Delimiter;
        case qv::avc::kNalEndOfSequence:
        case qv::avc::kNalEndOfStream:
            hasEnded_ = true;
            return UnitRole::Belongs;
        default:
            return type >= qv::avc::kNalPrefix && type <= kReserved18 ? UnitRole::MayBegin
                                                                      : UnitRole::Belongs;
    }
}

UnitRole AvcUnitRoles::roleOfSlice(const unsigned char* unit, size_t size) {
    const AvcSliceHeader slice = readAvcSliceHeader(unit, size, parameterSets_);
    isFieldSlice_ = slice.field_pic_flag != 0;
    if (slice.redundant_pic_cnt > 0) {
        return UnitRole::Belongs;  // a redundant coded picture follows its primary one
    }
    const std::optional<AvcSliceHeader> last = last_;
    const bool hasEnded = hasEnded_;
    last_ = slice;
    hasEnded_ = false;
    if (!last || hasEnded) {
        return UnitRole::BeginsPicture;
    }
    if (last->isWhole && slice.isWhole) {
        return beginsPrimaryPicture(*last, slice) ? UnitRole::BeginsPicture : UnitRole::ContinuesPicture;
    }
    // Without its parameter sets, only this much is known of a slice.
    return slice.first_mb_in_slice == 0 ? UnitRole::BeginsPicture : UnitRole::SeemsToContinue;
}

}  // namespace qvinspect
