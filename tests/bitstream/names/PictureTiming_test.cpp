// Names of what picture timing says.
#include "bitstream/names/PictureTiming.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace {

using testing::StrEq;

// Each number below the table's size has an entry of its own, and the first one without is reserved.
template <size_t kCount, class NameOf>
void expectNames(const qv::Name (&table)[kCount], NameOf nameOf) {
    for (uint32_t number = 0; number < kCount; ++number) {
        EXPECT_EQ(table[number].number, number);
        EXPECT_THAT(nameOf(number).name, StrEq(table[number].name));
    }
    EXPECT_EQ(nameOf(kCount).number, kCount);
    EXPECT_THAT(nameOf(kCount).name, StrEq("Reserved"));
    EXPECT_THAT(nameOf(kCount).clause, StrEq(table[0].clause));
}

TEST(PictureTimingNames, everyNumber) {
    expectNames(qv::kCountingTypeNames, qv::countingTypeName);
    expectNames(qv::avc::kPicStructNames, qv::avc::picStructName);
    expectNames(qv::avc::kCtTypeNames, qv::avc::ctTypeName);
    expectNames(qv::hevc::kPicStructNames, qv::hevc::picStructName);
    expectNames(qv::hevc::kSourceScanTypeNames, qv::hevc::sourceScanTypeName);
    expectNames(qv::hevc::kHashTypeNames, qv::hevc::hashTypeName);
}

TEST(PictureTimingNames, someNames) {
    EXPECT_THAT(qv::avc::picStructName(3).name, StrEq("Top field, bottom field"));
    EXPECT_THAT(qv::hevc::picStructName(8).name, StrEq("Frame tripling"));
    EXPECT_THAT(qv::hevc::picStructName(12).name, StrEq("Bottom field paired with the top field after it"));
    EXPECT_THAT(qv::avc::ctTypeName(1).name, StrEq("Interlaced"));
    EXPECT_THAT(qv::hevc::sourceScanTypeName(0).name, StrEq("Interlaced"));
    EXPECT_THAT(qv::hevc::hashTypeName(1).name, StrEq("CRC"));
}

}  // namespace
