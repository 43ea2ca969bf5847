#include "analysis/NalUnitNames.h"

#include <gtest/gtest.h>

namespace qv_test {
namespace {

using qvinspect::codecName;
using qvinspect::nalUnitName;

TEST(NalUnitNames, avc) {
    EXPECT_STREQ(nalUnitName(QVCodecIDAvc, 1), "slice of a non-IDR picture");
    EXPECT_STREQ(nalUnitName(QVCodecIDAvc, 2), "slice data partition A");
    EXPECT_STREQ(nalUnitName(QVCodecIDAvc, 5), "slice of an IDR picture");
    EXPECT_STREQ(nalUnitName(QVCodecIDAvc, 7), "sequence parameter set");
    EXPECT_STREQ(nalUnitName(QVCodecIDAvc, 12), "filler data");
    EXPECT_STREQ(nalUnitName(QVCodecIDAvc, 14), "prefix NAL unit");
    EXPECT_STREQ(nalUnitName(QVCodecIDAvc, 19), "slice of an auxiliary picture");
    EXPECT_STREQ(nalUnitName(QVCodecIDAvc, 20), "slice extension");
    for (const uint32_t reserved : {17U, 18U, 22U, 23U}) {
        EXPECT_STREQ(nalUnitName(QVCodecIDAvc, reserved), "reserved");
    }
    for (const uint32_t unspecified : {0U, 24U, 31U}) {
        EXPECT_STREQ(nalUnitName(QVCodecIDAvc, unspecified), "unspecified");
    }
    EXPECT_STREQ(nalUnitName(QVCodecIDAvc, 32), "unknown");
}

// The reserved names contain their numbers, which reveals a shift anywhere in the table.
TEST(NalUnitNames, hevc) {
    EXPECT_STREQ(nalUnitName(QVCodecIDHevc, 0), "TRAIL_N");
    EXPECT_STREQ(nalUnitName(QVCodecIDHevc, 9), "RASL_R");
    EXPECT_STREQ(nalUnitName(QVCodecIDHevc, 10), "RSV_VCL_N10");
    EXPECT_STREQ(nalUnitName(QVCodecIDHevc, 15), "RSV_VCL_R15");
    EXPECT_STREQ(nalUnitName(QVCodecIDHevc, 16), "BLA_W_LP");
    EXPECT_STREQ(nalUnitName(QVCodecIDHevc, 19), "IDR_W_RADL");
    EXPECT_STREQ(nalUnitName(QVCodecIDHevc, 21), "CRA_NUT");
    EXPECT_STREQ(nalUnitName(QVCodecIDHevc, 22), "RSV_IRAP_VCL22");
    EXPECT_STREQ(nalUnitName(QVCodecIDHevc, 31), "RSV_VCL31");
    EXPECT_STREQ(nalUnitName(QVCodecIDHevc, 32), "VPS_NUT");
    EXPECT_STREQ(nalUnitName(QVCodecIDHevc, 40), "SUFFIX_SEI_NUT");
    EXPECT_STREQ(nalUnitName(QVCodecIDHevc, 41), "RSV_NVCL41");
    EXPECT_STREQ(nalUnitName(QVCodecIDHevc, 47), "RSV_NVCL47");
    EXPECT_STREQ(nalUnitName(QVCodecIDHevc, 48), "UNSPEC48");
    EXPECT_STREQ(nalUnitName(QVCodecIDHevc, 63), "UNSPEC63");
    EXPECT_STREQ(nalUnitName(QVCodecIDHevc, 64), "Reserved");
}

TEST(NalUnitNames, codecs) {
    EXPECT_STREQ(codecName(QVCodecIDAvc), "H.264");
    EXPECT_STREQ(codecName(QVCodecIDHevc), "H.265");
}

}  // namespace
}  // namespace qv_test
