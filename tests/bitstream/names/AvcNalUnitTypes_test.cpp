// Names of the NAL unit types and primary picture types of H.264.
#include "bitstream/names/AvcNalUnitTypes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "bitstream/avc/NalUnitType.h"

namespace {

using testing::StrEq;

TEST(AvcNalUnitTypes, everyTypeIsAtItsNumber) {
    uint32_t number = 0;
    for (const qv::Name& name : qv::avc::kNalUnitTypeNames) {
        EXPECT_EQ(name.number, number);
        EXPECT_EQ(qv::avc::nalUnitTypeName(number).name, name.name);
        ++number;
    }
    EXPECT_EQ(number, 32U);
}

TEST(AvcNalUnitTypes, reservedAndUnspecifiedTypes) {
    for (uint32_t type = 0; type <= 31; ++type) {
        SCOPED_TRACE(type);
        const std::string name = qv::avc::nalUnitTypeName(type).name;
        const bool isReserved = type == 17 || type == 18 || type == 22 || type == 23;
        EXPECT_EQ(name == "Reserved", isReserved);
        EXPECT_EQ(name == "Unspecified", type == 0 || type >= 24);
    }
    EXPECT_THAT(qv::avc::nalUnitTypeName(32).name, StrEq("Reserved"));
}

TEST(AvcNalUnitTypes, namesAndClauses) {
    EXPECT_THAT(qv::avc::nalUnitTypeName(qv::avc::kNalSps).name, StrEq("Sequence parameter set"));
    EXPECT_THAT(qv::avc::nalUnitTypeName(qv::avc::kNalSps).clause, StrEq("7.3.2.1"));
    EXPECT_THAT(qv::avc::nalUnitTypeName(qv::avc::kNalSubsetSps).clause, StrEq("7.3.2.1.3"));
    EXPECT_THAT(qv::avc::nalUnitTypeName(qv::avc::kNalPrefix).name, StrEq("Prefix NAL unit"));
    EXPECT_THAT(qv::avc::nalUnitTypeName(qv::avc::kNalFillerData).name, StrEq("Filler data"));
}

TEST(AvcNalUnitTypes, primaryPicTypes) {
    EXPECT_THAT(qv::avc::primaryPicTypeName(0).name, StrEq("I"));
    EXPECT_THAT(qv::avc::primaryPicTypeName(2).name, StrEq("I, P, B"));
    EXPECT_THAT(qv::avc::primaryPicTypeName(7).name, StrEq("I, SI, P, SP, B"));
    EXPECT_THAT(qv::avc::primaryPicTypeName(8).name, StrEq("Reserved"));
}

}  // namespace
