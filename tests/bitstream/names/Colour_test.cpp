// Names of the video signal.
#include "bitstream/names/Colour.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "bitstream/names/ChromaFormat.h"

namespace {

using testing::StrEq;

template <size_t N>
void expectAscending(const qv::Name (&table)[N]) {
    for (size_t i = 1; i < N; ++i) {
        EXPECT_LT(table[i - 1].number, table[i].number);
    }
}

TEST(Colour, tablesAreInOrder) {
    expectAscending(qv::kColourPrimaries);
    expectAscending(qv::kTransferCharacteristics);
    expectAscending(qv::kMatrixCoefficients);
    expectAscending(qv::kVideoFormats);
    expectAscending(qv::kChromaSampleLocations);
}

// Each number of a range: its name, or "Reserved".
template <class NameOf>
void expectReserved(const std::set<uint32_t>& defined, uint32_t most, NameOf nameOf) {
    for (uint32_t number = 0; number <= most; ++number) {
        SCOPED_TRACE(number);
        const qv::Name name = nameOf(number);
        EXPECT_EQ(name.number, number);
        EXPECT_EQ(std::string(name.name) == "Reserved", defined.count(number) == 0) << name.name;
        EXPECT_STRNE(name.clause, "");
    }
}

TEST(Colour, valuesOutsideTheTablesAreReserved) {
    expectReserved({1, 2, 4, 5, 6, 7, 8, 9, 10, 11, 12, 22}, 255, qv::colourPrimariesName);
    expectReserved({1, 2, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18}, 255,
                   qv::transferCharacteristicsName);
    expectReserved({0, 1, 2, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14}, 255, qv::matrixCoefficientsName);
    expectReserved({0, 1, 2, 3, 4, 5}, 7, qv::videoFormatName);
    expectReserved({0, 1, 2, 3, 4, 5}, 6, qv::chromaSampleLocationName);
}

TEST(Colour, names) {
    EXPECT_THAT(qv::colourPrimariesName(9).name, StrEq("BT.2020"));
    EXPECT_THAT(qv::colourPrimariesName(2).name, StrEq("Unspecified"));
    EXPECT_THAT(qv::colourPrimariesName(22).name, StrEq("EBU Tech. 3213"));
    EXPECT_THAT(qv::transferCharacteristicsName(16).name, StrEq("SMPTE ST 2084 (PQ)"));
    EXPECT_THAT(qv::transferCharacteristicsName(18).name, StrEq("ARIB STD-B67 (HLG)"));
    EXPECT_THAT(qv::matrixCoefficientsName(0).name, StrEq("Identity (GBR)"));
    EXPECT_THAT(qv::matrixCoefficientsName(14).name, StrEq("ICtCp"));
    EXPECT_THAT(qv::videoFormatName(2).name, StrEq("NTSC"));
    EXPECT_THAT(qv::chromaSampleLocationName(2).name, StrEq("Top left"));
    static_assert(qv::colourPrimariesName(1).number == 1, "names are known at compile time");
}

TEST(Colour, chromaFormats) {
    static_assert(qv::chromaFormatOf(1).SubWidthC == 2 && qv::chromaFormatOf(1).SubHeightC == 2, "4:2:0");
    static_assert(qv::chromaFormatOf(2).SubWidthC == 2 && qv::chromaFormatOf(2).SubHeightC == 1, "4:2:2");
    static_assert(qv::chromaFormatOf(3).SubWidthC == 1 && qv::chromaFormatOf(3).SubHeightC == 1, "4:4:4");
    EXPECT_THAT(qv::chromaFormatOf(0).name, StrEq("4:0:0"));
    EXPECT_THAT(qv::chromaFormatOf(3).name, StrEq("4:4:4"));
    EXPECT_THAT(qv::chromaFormatOf(4).name, StrEq("Reserved"));
}

}  // namespace
