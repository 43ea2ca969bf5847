#include "report/UnitTypeList.h"

#include <gtest/gtest.h>

#include "AccessUnits.h"

namespace qv_test {
namespace {

using qvinspect::UnitState;

std::string listOf(QVCodecID codec, const MadeAccessUnit& made) {
    return qvinspect::unitTypeList(codec, made.view(1).units);
}

TEST(UnitTypeList, runsAreCounted) {
    EXPECT_EQ(listOf(QVCodecIDAvc, MadeAccessUnit()), "");
    EXPECT_EQ(listOf(QVCodecIDAvc,
                     MadeAccessUnit().unit(9).unit(7).unit(8).unit(6).unit(6).unit(5).unit(5).unit(5)),
              "AUD SPS PPS SEI x2 IDR x3");
    EXPECT_EQ(listOf(QVCodecIDAvc, MadeAccessUnit().unit(1).unit(6).unit(1)), "slice SEI slice");
}

TEST(UnitTypeList, namesOfH264) {
    MadeAccessUnit made;
    for (uint32_t type = 0; type < 32; ++type) {
        made.unit(type);
    }
    EXPECT_EQ(
        listOf(QVCodecIDAvc, made),
        "0 slice A B C IDR SEI SPS PPS AUD EOSEQ EOSTR fill SPSEXT PFX SSPS DPS 17 18 AUX SLICEEXT SLICE3D "
        "22 23 24 25 26 27 28 29 30 31");
}

TEST(UnitTypeList, namesOfH265) {
    EXPECT_EQ(listOf(QVCodecIDHevc, MadeAccessUnit().unit(32).unit(39).unit(20).unit(40).unit(41).unit(63)),
              "VPS PREFIX_SEI IDR_N_LP SUFFIX_SEI RSV_NVCL41 UNSPEC63");
}

TEST(UnitTypeList, unitsWithoutAType) {
    EXPECT_EQ(listOf(QVCodecIDAvc, MadeAccessUnit()
                                       .brokenUnit(UnitState::ForbiddenBit)
                                       .brokenUnit(UnitState::ForbiddenBit)
                                       .brokenUnit(UnitState::Empty)
                                       .unit(0)),
              "forbidden x2 empty 0");
}

}  // namespace
}  // namespace qv_test
