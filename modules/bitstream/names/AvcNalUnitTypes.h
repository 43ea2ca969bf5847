/// \file
/// Names of the NAL unit types and primary picture types of H.264.
#ifndef QV_BITSTREAM_NAMES_AVCNALUNITTYPES_H
#define QV_BITSTREAM_NAMES_AVCNALUNITTYPES_H

#include <cstdint>

#include "bitstream/names/Name.h"

namespace qv::avc {

/// nal_unit_type, Table 7-1. The clause is that of the syntax structure that the unit has.
constexpr Name kNalUnitTypeNames[] = {
    {0, "Unspecified", "Table 7-1"},
    {1, "Coded slice of a non-IDR picture", "7.3.2.8"},
    {2, "Coded slice data partition A", "7.3.2.9.1"},
    {3, "Coded slice data partition B", "7.3.2.9.2"},
    {4, "Coded slice data partition C", "7.3.2.9.3"},
    {5, "Coded slice of an IDR picture", "7.3.2.8"},
    {6, "Supplemental enhancement information", "7.3.2.3"},
    {7, "Sequence parameter set", "7.3.2.1"},
    {8, "Picture parameter set", "7.3.2.2"},
    {9, "Access unit delimiter", "7.3.2.4"},
    {10, "End of sequence", "7.3.2.5"},
    {11, "End of stream", "7.3.2.6"},
    {12, "Filler data", "7.3.2.7"},
    {13, "Sequence parameter set extension", "7.3.2.1.2"},
    {14, "Prefix NAL unit", "7.3.2.12"},
    {15, "Subset sequence parameter set", "7.3.2.1.3"},
    {16, "Depth parameter set", "J.7.3.2.13"},
    {17, "Reserved", "Table 7-1"},
    {18, "Reserved", "Table 7-1"},
    {19, "Coded slice of an auxiliary coded picture", "7.3.2.8"},
    {20, "Coded slice extension", "7.3.2.13"},
    {21, "Coded slice extension for a depth or 3D-AVC texture view component", "7.3.2.13"},
    {22, "Reserved", "Table 7-1"},
    {23, "Reserved", "Table 7-1"},
    {24, "Unspecified", "Table 7-1"},
    {25, "Unspecified", "Table 7-1"},
    {26, "Unspecified", "Table 7-1"},
    {27, "Unspecified", "Table 7-1"},
    {28, "Unspecified", "Table 7-1"},
    {29, "Unspecified", "Table 7-1"},
    {30, "Unspecified", "Table 7-1"},
    {31, "Unspecified", "Table 7-1"},
};

/// primary_pic_type, Table 7-5: the slice types that the primary coded picture may have.
constexpr Name kPrimaryPicTypeNames[] = {
    {0, "I", "Table 7-5"},
    {1, "I, P", "Table 7-5"},
    {2, "I, P, B", "Table 7-5"},
    {3, "SI", "Table 7-5"},
    {4, "SI, SP", "Table 7-5"},
    {5, "I, SI", "Table 7-5"},
    {6, "I, SI, P, SP", "Table 7-5"},
    {7, "I, SI, P, SP, B", "Table 7-5"},
};

/// The name of a NAL unit type: "Reserved" or "Unspecified" for a type that the standard says so of.
/// A number above 31, which no unit can hold, is "Reserved".
constexpr Name nalUnitTypeName(uint32_t nal_unit_type) {
    return nameOf(kNalUnitTypeNames, nal_unit_type, "Reserved");
}

/// The slice types of a primary_pic_type. A number above 7, which no unit can hold, is "Reserved".
constexpr Name primaryPicTypeName(uint32_t primary_pic_type) {
    return nameOf(kPrimaryPicTypeNames, primary_pic_type, "Reserved");
}

}  // namespace qv::avc

#endif
