// The units of configuration records.
#include "analysis/UnitBytes.h"

#include <gtest/gtest.h>

#include "InspectSupport.h"
#include "Mp4Writer.h"

namespace qv_test {
namespace {

using Units = std::vector<std::vector<uint8_t>>;

struct Found {
    Units units;
    size_t leftOut;
};

Found find(QVCodecID codec, const Bytes& record) {
    const qvinspect::RecordUnits found = qvinspect::recordUnits(codec, record);
    Units units;
    for (const qv::Bytes unit : found.units) {
        units.emplace_back(unit.begin(), unit.end());
    }
    return {units, found.leftOut};
}

Units unitsOf(QVCodecID codec, const Bytes& record) {
    const Found found = find(codec, record);
    EXPECT_EQ(found.leftOut, 0U);
    return found.units;
}

// ISO/IEC 14496-15 5.3.3.1.2: two sequence parameter sets and one picture parameter set.
TEST(UnitBytes, avcC) {
    EXPECT_EQ(unitsOf(QVCodecIDAvc, hex("01 64 00 0C FF E2 00 03 67 64 00 00 02 67 42 01 00 02 68 CE")),
              (Units{{0x67, 0x64, 0x00}, {0x67, 0x42}, {0x68, 0xCE}}));
}

TEST(UnitBytes, avcCCutShortGivesWhatIsWhole) {
    const Bytes whole = hex("01 64 00 0C FF E2 00 03 67 64 00 00 02 67 42 01 00 02 68 CE");
    const size_t unitEnds[] = {11, 15, 20};
    for (size_t size = 0; size <= whole.size(); ++size) {
        SCOPED_TRACE(size);
        size_t expected = 0;
        for (const size_t end : unitEnds) {
            expected += size >= end ? 1 : 0;
        }
        EXPECT_EQ(unitsOf(QVCodecIDAvc, Bytes(whole.begin(), whole.begin() + static_cast<long>(size))).size(),
                  expected);
    }
}

// 8.3.3.1.2: 22 bytes of head, then arrays of a type each.
Bytes hvcC() {
    Bytes record(22, 0x00);
    record[0] = 0x01;
    return record + hex("02 A0 00 01 00 03 40 01 0C A1 00 02 00 02 42 01 00 01 42");
}

TEST(UnitBytes, hvcC) {
    EXPECT_EQ(unitsOf(QVCodecIDHevc, hvcC()), (Units{{0x40, 0x01, 0x0C}, {0x42, 0x01}, {0x42}}));
}

TEST(UnitBytes, aLengthBeyondTheRecordEndsIt) {
    Bytes record = hvcC();
    record[record.size() - 2] = 0x09;
    EXPECT_EQ(unitsOf(QVCodecIDHevc, record), (Units{{0x40, 0x01, 0x0C}, {0x42, 0x01}}));
}

TEST(UnitBytes, aByteStreamInItsPlace) {
    EXPECT_EQ(unitsOf(QVCodecIDAvc, hex("00 00 00 01 67 42 00 00 01 68 CE")),
              (Units{{0x67, 0x42}, {0x68, 0xCE}}));
}

TEST(UnitBytes, neitherHoldsNothing) {
    EXPECT_TRUE(unitsOf(QVCodecIDAvc, {}).empty());
    EXPECT_TRUE(unitsOf(QVCodecIDAvc, hex("02 64 00 0C FF E1 00 01 67")).empty());
}

// More than there can be parameter sets with different identifiers.
TEST(UnitBytes, theFirst1024UnitsAreTaken) {
    const std::vector<Bytes> sps = {hex("42 01")};
    const std::vector<Bytes> pps(1023, hex("44 01"));
    EXPECT_EQ(unitsOf(QVCodecIDHevc, hevcRecord({sps, pps})).size(), 1024U);

    const auto more = find(QVCodecIDHevc, hevcRecord({sps, pps, {3, hex("4E 01")}}));
    EXPECT_EQ(more.units.size(), 1024U);
    EXPECT_EQ(more.units.back(), hex("44 01"));
    EXPECT_EQ(more.leftOut, 3U);

    const auto byteStreamUnits = find(QVCodecIDHevc, byteStream(std::vector<Bytes>(1030, hex("44 01"))));
    EXPECT_EQ(byteStreamUnits.units.size(), 1024U);
    EXPECT_EQ(byteStreamUnits.leftOut, 6U);
}

}  // namespace
}  // namespace qv_test
