// ITU-T H.264 (08/2021) and H.265 (08/2021) Table 7-1.
#include "analysis/NalUnitNames.h"

#include <iterator>

#include "bitstream/avc/NalUnitType.h"
#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/names/HevcNalUnitTypes.h"

namespace qvinspect {

namespace {

// Shorter than those of qv::avc::nalUnitTypeName(): they fill a column.
constexpr const char* kAvcNames[32] = {
    "unspecified",
    "slice of a non-IDR picture",
    "slice data partition A",
    "slice data partition B",
    "slice data partition C",
    "slice of an IDR picture",
    "SEI",
    "sequence parameter set",
    "picture parameter set",
    "access unit delimiter",
    "end of sequence",
    "end of stream",
    "filler data",
    "sequence parameter set extension",
    "prefix NAL unit",
    "subset sequence parameter set",
    "depth parameter set",
    "reserved",
    "reserved",
    "slice of an auxiliary picture",
    "slice extension",
    "slice extension for depth or 3D-AVC",
    "reserved",
    "reserved",
    "unspecified",
    "unspecified",
    "unspecified",
    "unspecified",
    "unspecified",
    "unspecified",
    "unspecified",
    "unspecified",
};

}  // namespace

const char* nalUnitName(QVCodecID codec, uint32_t type) {
    return codec != QVCodecIDAvc         ? qv::hevc::nalUnitTypeName(type).name
           : type < std::size(kAvcNames) ? kAvcNames[type]
                                         : "unknown";
}

const char* codecName(QVCodecID codec) {
    return codec == QVCodecIDAvc ? "H.264" : "H.265";
}

size_t headerSize(QVCodecID codec) {
    return codec == QVCodecIDAvc ? 1 : 2;
}

bool isVcl(QVCodecID codec, uint32_t nal_unit_type) {
    return codec == QVCodecIDAvc
               ? nal_unit_type >= qv::avc::kNalSliceNonIdr && nal_unit_type <= qv::avc::kNalSliceIdr
               : nal_unit_type < qv::hevc::kNalVps;
}

}  // namespace qvinspect
