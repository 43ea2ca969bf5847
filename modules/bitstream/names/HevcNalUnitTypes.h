/// \file
/// Names of H.265 NAL unit types and of the picture types of access unit delimiters.
#ifndef QV_BITSTREAM_NAMES_HEVCNALUNITTYPES_H
#define QV_BITSTREAM_NAMES_HEVCNALUNITTYPES_H

#include <cstdint>

#include "bitstream/names/Name.h"

namespace qv::hevc {

/// nal_unit_type, Table 7-1. The clause is that of the syntax structure that the unit has.
constexpr Name kNalUnitTypeNames[] = {
    {0, "TRAIL_N", "7.3.2.9"},
    {1, "TRAIL_R", "7.3.2.9"},
    {2, "TSA_N", "7.3.2.9"},
    {3, "TSA_R", "7.3.2.9"},
    {4, "STSA_N", "7.3.2.9"},
    {5, "STSA_R", "7.3.2.9"},
    {6, "RADL_N", "7.3.2.9"},
    {7, "RADL_R", "7.3.2.9"},
    {8, "RASL_N", "7.3.2.9"},
    {9, "RASL_R", "7.3.2.9"},
    {10, "RSV_VCL_N10", "Table 7-1"},
    {11, "RSV_VCL_R11", "Table 7-1"},
    {12, "RSV_VCL_N12", "Table 7-1"},
    {13, "RSV_VCL_R13", "Table 7-1"},
    {14, "RSV_VCL_N14", "Table 7-1"},
    {15, "RSV_VCL_R15", "Table 7-1"},
    {16, "BLA_W_LP", "7.3.2.9"},
    {17, "BLA_W_RADL", "7.3.2.9"},
    {18, "BLA_N_LP", "7.3.2.9"},
    {19, "IDR_W_RADL", "7.3.2.9"},
    {20, "IDR_N_LP", "7.3.2.9"},
    {21, "CRA_NUT", "7.3.2.9"},
    {22, "RSV_IRAP_VCL22", "Table 7-1"},
    {23, "RSV_IRAP_VCL23", "Table 7-1"},
    {24, "RSV_VCL24", "Table 7-1"},
    {25, "RSV_VCL25", "Table 7-1"},
    {26, "RSV_VCL26", "Table 7-1"},
    {27, "RSV_VCL27", "Table 7-1"},
    {28, "RSV_VCL28", "Table 7-1"},
    {29, "RSV_VCL29", "Table 7-1"},
    {30, "RSV_VCL30", "Table 7-1"},
    {31, "RSV_VCL31", "Table 7-1"},
    {32, "VPS_NUT", "7.3.2.1"},
    {33, "SPS_NUT", "7.3.2.2"},
    {34, "PPS_NUT", "7.3.2.3"},
    {35, "AUD_NUT", "7.3.2.5"},
    {36, "EOS_NUT", "7.3.2.6"},
    {37, "EOB_NUT", "7.3.2.7"},
    {38, "FD_NUT", "7.3.2.8"},
    {39, "PREFIX_SEI_NUT", "7.3.2.4"},
    {40, "SUFFIX_SEI_NUT", "7.3.2.4"},
    {41, "RSV_NVCL41", "Table 7-1"},
    {42, "RSV_NVCL42", "Table 7-1"},
    {43, "RSV_NVCL43", "Table 7-1"},
    {44, "RSV_NVCL44", "Table 7-1"},
    {45, "RSV_NVCL45", "Table 7-1"},
    {46, "RSV_NVCL46", "Table 7-1"},
    {47, "RSV_NVCL47", "Table 7-1"},
    {48, "UNSPEC48", "Table 7-1"},
    {49, "UNSPEC49", "Table 7-1"},
    {50, "UNSPEC50", "Table 7-1"},
    {51, "UNSPEC51", "Table 7-1"},
    {52, "UNSPEC52", "Table 7-1"},
    {53, "UNSPEC53", "Table 7-1"},
    {54, "UNSPEC54", "Table 7-1"},
    {55, "UNSPEC55", "Table 7-1"},
    {56, "UNSPEC56", "Table 7-1"},
    {57, "UNSPEC57", "Table 7-1"},
    {58, "UNSPEC58", "Table 7-1"},
    {59, "UNSPEC59", "Table 7-1"},
    {60, "UNSPEC60", "Table 7-1"},
    {61, "UNSPEC61", "Table 7-1"},
    {62, "UNSPEC62", "Table 7-1"},
    {63, "UNSPEC63", "Table 7-1"},
};

/// pic_type, Table 7-2: the slice types that the pictures of an access unit may have.
constexpr Name kPicTypeNames[] = {
    {0, "I", "Table 7-2"},
    {1, "P, I", "Table 7-2"},
    {2, "B, P, I", "Table 7-2"},
};

/// The name of a NAL unit type. A number above 63, which no unit can hold, is "Reserved".
constexpr Name nalUnitTypeName(uint32_t nal_unit_type) {
    return nameOf(kNalUnitTypeNames, nal_unit_type, "Reserved");
}

/// The slice types of a pic_type; "Reserved" from 3 on.
constexpr Name picTypeName(uint32_t pic_type) {
    return nameOf(kPicTypeNames, pic_type, "Reserved");
}

}  // namespace qv::hevc

#endif
