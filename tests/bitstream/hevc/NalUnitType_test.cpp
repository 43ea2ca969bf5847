// NAL unit types of H.265 and their names.
#include "bitstream/hevc/NalUnitType.h"

#include <gtest/gtest.h>

#include <string>

#include "bitstream/names/HevcNalUnitTypes.h"

namespace {

using namespace qv::hevc;

// What Table 7-1 says of each type: V VCL, S slice, I IRAP, D IDR, B BLA, C CRA, L leading, r RADL, s RASL, T
// TSA, t STSA, R reference, N sub-layer non-reference, P parameter set, E SEI, x reserved, u unspecified.
std::string propertiesOf(uint32_t type) {
    std::string text;
    text += isVcl(type) ? "V" : "";
    text += isSlice(type) ? "S" : "";
    text += isIrap(type) ? "I" : "";
    text += isIdr(type) ? "D" : "";
    text += isBla(type) ? "B" : "";
    text += isCra(type) ? "C" : "";
    text += isLeading(type) ? "L" : "";
    text += isRadl(type) ? "r" : "";
    text += isRasl(type) ? "s" : "";
    text += isTsa(type) ? "T" : "";
    text += isStsa(type) ? "t" : "";
    text += isReference(type) ? "R" : "";
    text += isSubLayerNonReference(type) ? "N" : "";
    text += isParameterSet(type) ? "P" : "";
    text += isSei(type) ? "E" : "";
    text += isReserved(type) ? "x" : "";
    text += isUnspecified(type) ? "u" : "";
    return text;
}

TEST(HevcNalUnitType, properties) {
    const char* const expected[64] = {
        "VSN",  "VSR",  "VSTN", "VSTR", "VStN", "VStR",  "VSLrN", "VSLrR", "VSLsN", "VSLsR", "VNx",
        "VRx",  "VNx",  "VRx",  "VNx",  "VRx",  "VSIBR", "VSIBR", "VSIBR", "VSIDR", "VSIDR", "VSICR",
        "VIRx", "VIRx", "VRx",  "VRx",  "VRx",  "VRx",   "VRx",   "VRx",   "VRx",   "VRx",   "P",
        "P",    "P",    "",     "",     "",     "",      "E",     "E",     "x",     "x",     "x",
        "x",    "x",    "x",    "x",    "u",    "u",     "u",     "u",     "u",     "u",     "u",
        "u",    "u",    "u",    "u",    "u",    "u",     "u",     "u",     "u"};
    for (uint32_t type = 0; type < 64; ++type) {
        EXPECT_EQ(propertiesOf(type), expected[type]) << type;
    }
}

TEST(HevcNalUnitType, names) {
    const char* const names[64] = {
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
        "UNSPEC60",    "UNSPEC61",    "UNSPEC62",    "UNSPEC63"};
    for (uint32_t type = 0; type < 64; ++type) {
        EXPECT_STREQ(nalUnitTypeName(type).name, names[type]);
        EXPECT_EQ(nalUnitTypeName(type).number, type);
        EXPECT_NE(nalUnitTypeName(type).clause, nullptr);
    }
    EXPECT_STREQ(nalUnitTypeName(64).name, "Reserved");
}

TEST(HevcNalUnitType, picTypes) {
    EXPECT_STREQ(picTypeName(0).name, "I");
    EXPECT_STREQ(picTypeName(1).name, "P, I");
    EXPECT_STREQ(picTypeName(2).name, "B, P, I");
    EXPECT_STREQ(picTypeName(3).name, "Reserved");
}

}  // namespace
