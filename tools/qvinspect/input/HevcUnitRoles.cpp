// ITU-T H.265 (08/2021) 7.4.2.4.4 and 7.4.2.4.5.
#include "input/HevcUnitRoles.h"

#include "bitstream/hevc/NalUnitType.h"

namespace qvinspect {

namespace {

constexpr unsigned kForbiddenZeroBit = 0x80;
constexpr unsigned kFirstSliceSegmentInPicFlag = 0x80;
constexpr size_t kUnitHeaderSize = 2;

constexpr unsigned kReserved41 = 41;
constexpr unsigned kReserved44 = 44;
constexpr unsigned kUnspecified55 = 55;

unsigned typeOf(const unsigned char* unit) {
    return (unit[0] >> 1) & 0x3FU;
}

unsigned layerOf(const unsigned char* unit) {
    return (unit[0] & 0x01U) << 5 | unit[1] >> 3;
}

bool mayBeginAccessUnit(unsigned type) {
    return (type >= qv::hevc::kNalVps && type <= qv::hevc::kNalPps) || type == qv::hevc::kNalPrefixSei ||
           (type >= kReserved41 && type <= kReserved44) ||
           (type >= qv::hevc::kNalUnspecified48 && type <= kUnspecified55);
}

}  // namespace

UnitRole HevcUnitRoles::roleOf(const unsigned char* unit, size_t size) {
    if (size < kUnitHeaderSize || (unit[0] & kForbiddenZeroBit) != 0) {
        return UnitRole::Belongs;
    }
    const unsigned type = typeOf(unit);
    // Decoders drop the reserved VCL types.
    if (qv::hevc::isSlice(type)) {
        const bool isFirst = size > kUnitHeaderSize && layerOf(unit) == 0 &&
                             (unit[kUnitHeaderSize] & kFirstSliceSegmentInPicFlag) != 0;
        return isFirst ? UnitRole::BeginsPicture : UnitRole::ContinuesPicture;
    }
    if (layerOf(unit) != 0) {
        return UnitRole::Belongs;
    }
    if (type == qv::hevc::kNalAccessUnitDelimiter) {
        return UnitRole::Delimiter;
    }
    return mayBeginAccessUnit(type) ? UnitRole::MayBegin : UnitRole::Belongs;
}

}  // namespace qvinspect
