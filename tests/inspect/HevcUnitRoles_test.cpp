// The rows follow ITU-T H.265 (08/2021) 7.4.2.4.4 and 7.4.2.4.5.
#include "input/HevcUnitRoles.h"

#include <gtest/gtest.h>

#include <set>

#include "InspectSupport.h"

namespace qv_test {
namespace {

using qvinspect::HevcUnitRoles;
using qvinspect::UnitRole;

// nal_unit_header() with nuh_temporal_id_plus1 1, followed by a byte that begins with a 1 bit for the first
// slice segment of a picture.
Bytes unit(unsigned type, unsigned layer, bool isFirst) {
    return {static_cast<uint8_t>(type << 1 | layer >> 5), static_cast<uint8_t>((layer << 3 & 0xFF) | 1),
            static_cast<uint8_t>(isFirst ? 0x80 : 0x20)};
}

UnitRole roleOf(const Bytes& bytes) {
    return HevcUnitRoles().roleOf(bytes.data(), bytes.size());
}

const std::set<unsigned> kSliceSegments = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 16, 17, 18, 19, 20, 21};
const std::set<unsigned> kMayBegin = {32, 33, 34, 39, 41, 42, 43, 44, 48, 49, 50, 51, 52, 53, 54, 55};
constexpr unsigned kDelimiter = 35;

TEST(HevcUnitRoles, baseLayer) {
    for (unsigned type = 0; type < 64; ++type) {
        SCOPED_TRACE(type);
        const UnitRole expected = kSliceSegments.count(type) == 1 ? UnitRole::BeginsPicture
                                  : kMayBegin.count(type) == 1    ? UnitRole::MayBegin
                                  : type == kDelimiter            ? UnitRole::Delimiter
                                                                  : UnitRole::Belongs;
        EXPECT_EQ(roleOf(unit(type, 0, true)), expected);
    }
}

TEST(HevcUnitRoles, laterSliceSegments) {
    for (const unsigned type : kSliceSegments) {
        EXPECT_EQ(roleOf(unit(type, 0, false)), UnitRole::ContinuesPicture) << type;
    }
}

TEST(HevcUnitRoles, otherLayers) {
    for (const unsigned layer : {1U, 31U, 32U, 63U}) {
        for (unsigned type = 0; type < 64; ++type) {
            SCOPED_TRACE(type);
            EXPECT_EQ(roleOf(unit(type, layer, true)),
                      kSliceSegments.count(type) == 1 ? UnitRole::ContinuesPicture : UnitRole::Belongs);
        }
    }
}

TEST(HevcUnitRoles, damagedUnits) {
    EXPECT_EQ(roleOf(hex("42")), UnitRole::Belongs);
    EXPECT_EQ(roleOf(hex("C2 01 80")), UnitRole::Belongs);        // forbidden_zero_bit
    EXPECT_EQ(roleOf(hex("02 01")), UnitRole::ContinuesPicture);  // a slice segment without its header
}

struct Case {
    const char* name;
    std::vector<std::vector<Bytes>> accessUnits;
};

class HevcAccessUnits : public ::testing::TestWithParam<Case> {};

TEST_P(HevcAccessUnits, areFound) {
    std::vector<size_t> expected;
    Bytes stream;
    for (const auto& units : GetParam().accessUnits) {
        expected.push_back(byteStream(units).size());
        stream = stream + byteStream(units);
    }
    std::vector<size_t> sizes;
    for (const auto& accessUnit :
         readRaw(std::make_unique<MemorySource>(stream), byteStreamOf(QVCodecIDHevc)).accessUnits) {
        sizes.push_back(accessUnit.bytes.size());
    }
    EXPECT_EQ(sizes, expected);
}

Bytes first(unsigned type, unsigned layer = 0) {
    return unit(type, layer, true);
}

Bytes later(unsigned type, unsigned layer = 0) {
    return unit(type, layer, false);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, HevcAccessUnits,
    ::testing::Values(
        Case{"parameterSets",
             {{first(32), first(33), first(34), first(19)}, {first(1)}, {first(34), first(1)}}},
        Case{"sliceSegments", {{first(19), later(19), later(19)}, {first(1), later(1)}}},
        Case{"decodingUnitInformation",
             {{first(39), first(19), first(39), later(19)},
              {first(39), first(39), first(1), first(39), later(1)}}},
        Case{"delimiters", {{first(35), first(39), first(19)}, {first(35), first(1)}}},
        Case{"suffixesAndFiller", {{first(1), first(40), first(38)}, {first(39), first(1), first(40)}}},
        Case{"endOfSequence", {{first(1), first(36)}, {first(19)}, {first(1), first(36), first(37)}}},
        Case{"layers",
             {{first(32), first(33), first(33, 1), first(19), first(20, 1)},
              {first(1), first(1, 1)},
              {first(39), first(1), later(1), first(1, 1), later(1, 1)}}},
        Case{"otherLayersPrefix", {{first(1), first(39, 1), first(1, 1)}, {first(1)}}},
        Case{"reservedSlices",
             {{first(1), first(22), first(10)}, {first(41), first(1)}, {first(55), first(1)}}},
        Case{"nothingAfterTheParameterSets", {{first(1)}, {first(32), first(33)}}}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace qv_test
