// ITU-T H.265 (08/2021) 7.4.2.4.4 and 7.4.2.4.5.
#include "input/HevcUnitRoles.h"

#include "input/HevcUnitTypes.h"

namespace qvinspect {

namespace {

constexpr unsigned kForbiddenZeroBit = 0x80;
constexpr unsigned kFirstSliceSegmentInPicFlag = 0x80;
constexpr size_t kUnitHeaderSize = 2;

unsigned typeOf(const unsigned char* unit) {
    return (unit[0] >> 1) & 0x3FU;
}

unsigned layerOf(const unsigned char* unit) {
    return (unit[0] & 0x01U) << 5 | unit[1] >> 3;
}

// The types that have a slice segment header; decoders drop the reserved VCL types.
bool isSliceSegment(unsigned type) {
    return type <= kHevcRaslRNut || (type >= kHevcBlaWLpNut && type <= kHevcCraNut);
}

bool mayBeginAccessUnit(unsigned type) {
    return (type >= kHevcVpsNut && type <= kHevcPpsNut) || type == kHevcPrefixSeiNut ||
           (type >= kHevcRsvNvcl41 && type <= kHevcRsvNvcl44) ||
           (type >= kHevcUnspec48 && type <= kHevcUnspec55);
}

}  // namespace

UnitRole HevcUnitRoles::roleOf(const unsigned char* unit, size_t size) {
    if (size < kUnitHeaderSize || (unit[0] & kForbiddenZeroBit) != 0) {
        return UnitRole::Belongs;
    }
    const unsigned type = typeOf(unit);
    if (isSliceSegment(type)) {
        const bool isFirst = size > kUnitHeaderSize && layerOf(unit) == 0 &&
                             (unit[kUnitHeaderSize] & kFirstSliceSegmentInPicFlag) != 0;
        return isFirst ? UnitRole::BeginsPicture : UnitRole::ContinuesPicture;
    }
    if (layerOf(unit) != 0) {
        return UnitRole::Belongs;
    }
    if (type == kHevcAudNut) {
        return UnitRole::Delimiter;
    }
    return mayBeginAccessUnit(type) ? UnitRole::MayBegin : UnitRole::Belongs;
}

}  // namespace qvinspect
