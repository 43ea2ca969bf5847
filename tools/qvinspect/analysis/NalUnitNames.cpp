// ITU-T H.264 (08/2021) and H.265 (08/2021) Table 7-1.
#include "analysis/NalUnitNames.h"

#include "input/AvcUnitTypes.h"
#include "input/HevcUnitTypes.h"

namespace qvinspect {

namespace {

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

constexpr const char* kHevcNames[64] = {
    "TRAIL_N",     "TRAIL_R",     "TSA_N",       "TSA_R",          "STSA_N",         "STSA_R",
    "RADL_N",      "RADL_R",      "RASL_N",      "RASL_R",         "RSV_VCL_N10",    "RSV_VCL_R11",
    "RSV_VCL_N12", "RSV_VCL_R13", "RSV_VCL_N14", "RSV_VCL_R15",    "BLA_W_LP",       "BLA_W_RADL",
    "BLA_N_LP",    "IDR_W_RADL",  "IDR_N_LP",    "CRA_NUT",        "RSV_IRAP_VCL22", "RSV_IRAP_VCL23",
    "RSV_VCL24",   "RSV_VCL25",   "RSV_VCL26",   "RSV_VCL27",      "RSV_VCL28",      "RSV_VCL29",
    "RSV_VCL30",   "RSV_VCL31",   "VPS_NUT",     "SPS_NUT",        "PPS_NUT",        "AUD_NUT",
    "EOS_NUT",     "EOB_NUT",     "FD_NUT",      "PREFIX_SEI_NUT", "SUFFIX_SEI_NUT", "RSV_NVCL41",
    "RSV_NVCL42",  "RSV_NVCL43",  "RSV_NVCL44",  "RSV_NVCL45",     "RSV_NVCL46",     "RSV_NVCL47",
    "UNSPEC48",    "UNSPEC49",    "UNSPEC50",    "UNSPEC51",       "UNSPEC52",       "UNSPEC53",
    "UNSPEC54",    "UNSPEC55",    "UNSPEC56",    "UNSPEC57",       "UNSPEC58",       "UNSPEC59",
    "UNSPEC60",    "UNSPEC61",    "UNSPEC62",    "UNSPEC63",
};

template <size_t count>
const char* nameIn(const char* const (&names)[count], uint32_t type) {
    return type < count ? names[type] : "unknown";
}

}  // namespace

const char* nalUnitName(QVCodecID codec, uint32_t type) {
    return codec == QVCodecIDAvc ? nameIn(kAvcNames, type) : nameIn(kHevcNames, type);
}

const char* codecName(QVCodecID codec) {
    return codec == QVCodecIDAvc ? "H.264" : "H.265";
}

size_t headerSize(QVCodecID codec) {
    return codec == QVCodecIDAvc ? 1 : 2;
}

bool isVcl(QVCodecID codec, uint32_t nal_unit_type) {
    return codec == QVCodecIDAvc ? nal_unit_type >= kAvcSliceNut && nal_unit_type <= kAvcIdrSliceNut
                                 : nal_unit_type < kHevcVpsNut;
}

}  // namespace qvinspect
