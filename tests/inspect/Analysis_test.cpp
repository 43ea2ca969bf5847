#include "analysis/Analysis.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "InspectSupport.h"

namespace qv_test {
namespace {

using qvinspect::AccessUnit;
using qvinspect::AccessUnitReport;
using qvinspect::UnitReport;
using qvinspect::UnitState;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

AccessUnitReport analyse(const Bytes& bytes, const QVCodecParameters& parameters,
                         std::optional<uint64_t> fileOffset = {}) {
    AccessUnit accessUnit;
    accessUnit.data = bytes.data();
    accessUnit.size = bytes.size();
    accessUnit.fileOffset = fileOffset;
    accessUnit.parameters = parameters;
    return qvinspect::analyse(accessUnit);
}

AccessUnitReport annexB(const std::string& bytes, QVCodecID codec = QVCodecIDAvc) {
    return analyse(hex(bytes), {codec, 1, 0});
}

AccessUnitReport lengths(const std::string& bytes, uint8_t size, QVCodecID codec = QVCodecIDAvc) {
    return analyse(hex(bytes), {codec, 0, size});
}

// "state offset+length type"
std::vector<std::string> unitsOf(const AccessUnitReport& report) {
    std::vector<std::string> texts;
    for (const UnitReport& unit : report.units) {
        const std::string place = std::to_string(unit.offset) + "+" + std::to_string(unit.length);
        switch (unit.state) {
            case UnitState::Typed:
                texts.push_back(place + " type " + std::to_string(unit.type) +
                                (unit.isNonReference ? " non-reference" : ""));
                break;
            case UnitState::ForbiddenBit:
                texts.push_back(place + " forbidden");
                break;
            case UnitState::Empty:
                texts.push_back(place + " empty");
                break;
        }
    }
    return texts;
}

// --- Annex B ---

TEST(Analysis, annexBUnits) {
    const AccessUnitReport report = annexB("00 00 00 01 67 42 00 00 01 65 88 00 00 01 01 9A");
    EXPECT_THAT(unitsOf(report), ElementsAre("4+2 type 7", "9+2 type 5", "14+2 type 1 non-reference"));
    EXPECT_TRUE(report.isKey);
    EXPECT_THAT(report.findings, IsEmpty());
}

TEST(Analysis, hevcUnits) {
    const AccessUnitReport report = annexB("00 00 01 26 01 AF 00 00 01 00 01 80", QVCodecIDHevc);
    EXPECT_THAT(unitsOf(report), ElementsAre("3+3 type 19", "9+3 type 0 non-reference"));
    EXPECT_TRUE(report.isKey);
    EXPECT_FALSE(annexB("00 00 01 02 01 80", QVCodecIDHevc).isKey);
}

TEST(Analysis, offsetsCountFromTheStartOfTheFile) {
    const AccessUnitReport report =
        analyse(hex("FF 00 00 01 E5 88 00 00 01 41 9A"), {QVCodecIDAvc, 1, 0}, 1000);
    EXPECT_THAT(unitsOf(report), ElementsAre("1004+2 forbidden", "1009+2 type 1"));
    EXPECT_THAT(describe(report.findings), ElementsAre("error at 1000: 1 bytes before the first start code"));
}

TEST(Analysis, forbiddenZeroBit) {
    EXPECT_THAT(unitsOf(annexB("00 00 01 89 10 00 00 01 41 9A 00 00 01 C1 9A")),
                ElementsAre("3+2 forbidden", "8+2 type 1", "13+2 forbidden"));
}

TEST(Analysis, zeroBytesBeforeTheStartCodeAreNoError) {
    const AccessUnitReport report = annexB("00 00 00 00 00 01 65 88");
    EXPECT_THAT(unitsOf(report), ElementsAre("6+2 type 5"));
    EXPECT_TRUE(report.isKey);
    EXPECT_THAT(describe(report.findings), ElementsAre("note at 0: 2 bytes before the first start code"));
}

TEST(Analysis, sampleWithoutAStartCode) {
    const AccessUnitReport report = annexB("65 88 80 11 22");
    EXPECT_THAT(unitsOf(report), IsEmpty());
    EXPECT_FALSE(report.isKey);
    EXPECT_THAT(describe(report.findings),
                ElementsAre("error at 0: the sample has no start code (00 00 01)"));
}

TEST(Analysis, emptySample) {
    for (const uint32_t isAnnexB : {0U, 1U}) {
        const AccessUnitReport report = analyse({}, {QVCodecIDAvc, isAnnexB, 4});
        EXPECT_THAT(unitsOf(report), IsEmpty());
        EXPECT_THAT(describe(report.findings), ElementsAre("note at 0: the sample is empty"));
    }
}

// --- Lengths ---

TEST(Analysis, lengthPrefixedUnits) {
    EXPECT_THAT(unitsOf(lengths("00 00 00 02 67 42 00 00 00 02 65 88", 4)),
                ElementsAre("4+2 type 7", "10+2 type 5"));
    EXPECT_THAT(unitsOf(lengths("00 02 67 42 00 02 65 88", 2)), ElementsAre("2+2 type 7", "6+2 type 5"));
    EXPECT_THAT(unitsOf(lengths("02 67 42 02 65 88", 1)), ElementsAre("1+2 type 7", "4+2 type 5"));
}

TEST(Analysis, keyMarkForEachLengthSize) {
    EXPECT_TRUE(lengths("00 00 00 02 65 88", 4).isKey);
    EXPECT_TRUE(lengths("00 02 67 42 00 02 65 88", 2).isKey);
    EXPECT_TRUE(lengths("02 67 42 02 65 88", 1).isKey);
    EXPECT_FALSE(lengths("00 00 00 02 41 9A", 4).isKey);
    EXPECT_FALSE(lengths("00 02 67 42 00 02 41 9A", 2).isKey);
    EXPECT_FALSE(lengths("02 67 42 02 41 9A", 1).isKey);
}

// A length of 1, or of 256 to 511, has the bytes of a start code.
TEST(Analysis, keyMarkWhenTheLengthLooksLikeAStartCode) {
    EXPECT_TRUE(lengths("00 00 00 01 0C 00 00 00 02 65 88", 4).isKey);

    const Bytes slice = Bytes{0x00, 0x00, 0x01, 0x65, 0x41} + Bytes(0x164, 0xAA);  // 0x165 bytes of type 1
    EXPECT_FALSE(analyse(slice, {QVCodecIDAvc, 0, 4}).isKey);
    const Bytes idr = Bytes{0x00, 0x00, 0x01, 0x41, 0x65} + Bytes(0x140, 0xAA);  // 0x141 bytes of type 5
    EXPECT_TRUE(analyse(idr, {QVCodecIDAvc, 0, 4}).isKey);
}

TEST(Analysis, lengthPastTheEnd) {
    const AccessUnitReport report = lengths("00 00 00 02 65 88 00 00 00 09 41 9A", 4);
    EXPECT_THAT(unitsOf(report), ElementsAre("4+2 type 5"));
    EXPECT_TRUE(report.isKey);
    EXPECT_THAT(describe(report.findings),
                ElementsAre("error at 6: the length field here extends past the end (Failed to "
                            "parserDataToNaluType avaliable length:9, avaliableBytes:6.)"));
}

TEST(Analysis, firstLengthPastTheEnd) {
    const AccessUnitReport report = lengths("00 00 00 09 65 88", 4);
    EXPECT_THAT(unitsOf(report), IsEmpty());
    EXPECT_FALSE(report.isKey);
    EXPECT_EQ(report.findings.size(), 1U);
}

TEST(Analysis, bytesTooFewForAUnit) {
    const AccessUnitReport report = lengths("00 00 00 02 65 88 00 00 01", 4);
    EXPECT_THAT(unitsOf(report), ElementsAre("4+2 type 5"));
    EXPECT_TRUE(report.isKey);
    EXPECT_THAT(describe(report.findings),
                ElementsAre("error at 6: 3 bytes are left, too few for a length field and a unit"));
}

TEST(Analysis, emptyUnits) {
    EXPECT_THAT(unitsOf(lengths("00 00 00 00 00 00 00 02 65 88", 4)), ElementsAre("4+0 empty", "8+2 type 5"));
    EXPECT_THAT(unitsOf(lengths("00 00 02 65 88", 1)), ElementsAre("1+0 empty", "2+0 empty", "3+2 type 5"));
    EXPECT_TRUE(lengths("00 00 00 00 00 00 00 02 65 88", 4).isKey);
}

TEST(Analysis, forbiddenZeroBitInLengthPrefixedUnits) {
    EXPECT_THAT(unitsOf(lengths("02 E5 88 02 41 9A", 1)), ElementsAre("1+2 forbidden", "4+2 type 1"));
}

}  // namespace
}  // namespace qv_test
