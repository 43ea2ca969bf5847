// The HEVC decoder configuration records: read, traced, written, sized and made.
#include "bitstream/units/HevcConfigurationRecord.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../support/Hex.h"
#include "../support/MemoryChecks.h"
#include "../support/StructureChecks.h"
#include "GuardedBuffer.h"
#include "bitstream/units/HevcConfigurationRecordSyntax.h"

namespace {

using namespace qv_test;
using Bytes = std::vector<uint8_t>;
using qv::hevc::ConfigurationRecord;
using qv::hevc::LayerConfigurationRecord;
using Texts = std::vector<std::string>;

// As a muxer wrote it: Main 10, VPS, SPS, PPS and two prefix SEI units.
const Bytes kMain10 =
    hex("01 02 20000000 900000000000 3C F000 FC FD FA FA 0000 0F 04 "
        "20 0001 0018 40 01 0C 01 FF FF 02 20 00 00 03 00 90 00 00 03 00 00 03 00 3C 95 98 09 "
        "21 0001 002D 42 01 01 02 20 00 00 03 00 90 00 00 03 00 00 03 00 3C A0 0A 08 0B 9F 6D 96 56 69 24 CA "
        "F0 16 A1 22 "
        "01 20 80 00 00 03 00 80 00 00 0C 84 "
        "22 0001 0007 44 01 C1 72 B4 62 40 "
        "27 0002 0009 4E 01 90 04 03 E8 01 90 80 001E 4E 01 89 18 33 C2 86 C4 1D 4C 0B B8 84 D0 3E 80 3D 13 "
        "40 42 00 98 96 "
        "80 00 00 03 00 32 80");

// Sets of one stream with other general fields.
const Bytes kVps = hex("40 01 0C 01 FF FF 01 60 00 00 03 00 90 00 00 03 00 00 03 00 3C 95 98 09");
const Bytes kSps = hex("42 01 01 01 60 00 00 03 00 90 00 00 03 00 00 03 00 3C A0 0A 08 0B 9F 79 65 80");
const Bytes kPps = hex("44 01 C1 72 B4 62 40");
const Bytes kPrefixSei = hex("4E 01 90 04 03 E8 01 90 80");
const Bytes kSuffixSei = hex("50 01 84 01 00 80");

Texts unitsOf(const ConfigurationRecord& record) {
    Texts units;
    qv::hevc::forEachUnit(record, [&](const qv::NalUnit& unit) { units.push_back(hexOf(unit.bytes)); });
    return units;
}

// "type complete reserved count" of each array.
template <class Record>
Texts arraysOf(const Record& record) {
    Texts texts;
    for (const qv::hevc::UnitArray& array : record.arrays) {
        texts.push_back(std::to_string(array.NAL_unit_type) + (array.array_completeness ? " complete" : "") +
                        (array.reserved ? " reserved" : "") + " " + std::to_string(array.units.count));
    }
    return texts;
}

template <class Record>
Bytes written(const Record& record) {
    Bytes bytes;
    const qv::Written result = qv::hevc::writeConfigurationRecord(record, bytes);
    EXPECT_TRUE(result.ok()) << qv::textOf(result.fault);
    return bytes;
}

TEST(HevcConfigurationRecord, everyField) {
    const auto read = qv::hevc::readConfigurationRecord(bytesOf(kMain10));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    const ConfigurationRecord& record = read.record;
    EXPECT_EQ(record.configurationVersion, 1U);
    EXPECT_EQ(record.general_profile_space, 0U);
    EXPECT_FALSE(record.general_tier_flag);
    EXPECT_EQ(record.general_profile_idc, 2U);
    EXPECT_EQ(record.general_profile_compatibility_flags, 0x20000000U);
    EXPECT_EQ(record.general_constraint_indicator_flags, 0x900000000000U);
    EXPECT_EQ(record.general_level_idc, 60U);
    EXPECT_EQ(record.reserved_4bits, 15U);
    EXPECT_EQ(record.min_spatial_segmentation_idc, 0U);
    EXPECT_EQ(record.reserved_6bits_parallelismType, 63U);
    EXPECT_EQ(record.parallelismType, 0U);
    EXPECT_EQ(record.reserved_6bits_chromaFormat, 63U);
    EXPECT_EQ(record.chromaFormat, 1U);
    EXPECT_EQ(record.reserved_5bits_bitDepthLuma, 31U);
    EXPECT_EQ(record.bitDepthLumaMinus8, 2U);
    EXPECT_EQ(record.reserved_5bits_bitDepthChroma, 31U);
    EXPECT_EQ(record.bitDepthChromaMinus8, 2U);
    EXPECT_EQ(record.avgFrameRate, 0U);
    EXPECT_EQ(record.constantFrameRate, 0U);
    EXPECT_EQ(record.numTemporalLayers, 1U);
    EXPECT_TRUE(record.temporalIdNested);
    EXPECT_EQ(record.lengthSizeMinusOne, 3U);
    EXPECT_EQ(arraysOf(record), Texts({"32 1", "33 1", "34 1", "39 2"}));
    EXPECT_EQ(qv::hevc::framingOf(record), qv::Framing::Lengths4);
    const Texts units = unitsOf(record);
    ASSERT_EQ(units.size(), 5U);
    EXPECT_EQ(units[2], "44 01 C1 72 B4 62 40");
    EXPECT_EQ(units[3], "4E 01 90 04 03 E8 01 90 80");
    EXPECT_EQ(written(record), kMain10);
    EXPECT_EQ(qv::hevc::sizeOf(record).bits, 8 * kMain10.size());
}

TEST(HevcConfigurationRecord, everyBitOfTheFields) {
    const Bytes bytes = hex("00 A5 12345678 9ABCDEF01234 7B 5A5A A6 59 B5 4A 1234 9D 01 FF 0000 AA BB");
    const auto read = qv::hevc::readConfigurationRecord(bytesOf(bytes));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    const ConfigurationRecord& record = read.record;
    EXPECT_EQ(record.configurationVersion, 0U);  // of early writers
    EXPECT_EQ(record.general_profile_space, 2U);
    EXPECT_TRUE(record.general_tier_flag);
    EXPECT_EQ(record.general_profile_idc, 5U);
    EXPECT_EQ(record.general_profile_compatibility_flags, 0x12345678U);
    EXPECT_EQ(record.general_constraint_indicator_flags, 0x9ABCDEF01234U);
    EXPECT_EQ(record.general_level_idc, 0x7BU);
    EXPECT_EQ(record.reserved_4bits, 5U);
    EXPECT_EQ(record.min_spatial_segmentation_idc, 0xA5AU);
    EXPECT_EQ(record.reserved_6bits_parallelismType, 0x29U);
    EXPECT_EQ(record.parallelismType, 2U);
    EXPECT_EQ(record.reserved_6bits_chromaFormat, 0x16U);
    EXPECT_EQ(record.chromaFormat, 1U);
    EXPECT_EQ(record.reserved_5bits_bitDepthLuma, 0x16U);
    EXPECT_EQ(record.bitDepthLumaMinus8, 5U);
    EXPECT_EQ(record.reserved_5bits_bitDepthChroma, 9U);
    EXPECT_EQ(record.bitDepthChromaMinus8, 2U);
    EXPECT_EQ(record.avgFrameRate, 0x1234U);
    EXPECT_EQ(record.constantFrameRate, 2U);
    EXPECT_EQ(record.numTemporalLayers, 3U);
    EXPECT_TRUE(record.temporalIdNested);
    EXPECT_EQ(record.lengthSizeMinusOne, 1U);
    EXPECT_EQ(arraysOf(record), Texts({"63 complete reserved 0"}));
    EXPECT_EQ(hexOf(record.rest), "AA BB");
    EXPECT_EQ(written(record), bytes);
}

TEST(HevcConfigurationRecord, layerRecord) {
    const Bytes bytes = hex("01 F123 FE D7 02 A0 0001 0003 40 01 0C 21 0002 0001 42 0002 42 09 55");
    const auto read = qv::hevc::readLayerConfigurationRecord(bytesOf(bytes));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    const LayerConfigurationRecord& record = read.record;
    EXPECT_EQ(record.configurationVersion, 1U);
    EXPECT_EQ(record.reserved_4bits, 15U);
    EXPECT_EQ(record.min_spatial_segmentation_idc, 0x123U);
    EXPECT_EQ(record.reserved_6bits_parallelismType, 63U);
    EXPECT_EQ(record.parallelismType, 2U);
    EXPECT_EQ(record.reserved_2bits, 3U);
    EXPECT_EQ(record.numTemporalLayers, 2U);
    EXPECT_TRUE(record.temporalIdNested);
    EXPECT_EQ(record.lengthSizeMinusOne, 3U);
    EXPECT_EQ(qv::hevc::framingOf(record), qv::Framing::Lengths4);
    EXPECT_EQ(arraysOf(record), Texts({"32 complete 1", "33 2"}));
    EXPECT_EQ(hexOf(record.rest), "55");
    EXPECT_EQ(written(record), bytes);
    EXPECT_EQ(qv::hevc::sizeOf(record).bits, 8 * bytes.size());
    size_t units = 0;
    qv::hevc::forEachUnit(record, [&](const qv::NalUnit& unit) { units += unit.bytes.size; });
    EXPECT_EQ(units, 6U);
    Bytes version0 = bytes;
    version0[0] = 0;
    EXPECT_FALSE(qv::hevc::readLayerConfigurationRecord(bytesOf(version0)).ok());
}

TEST(HevcConfigurationRecord, oneElementAfterTheOther) {
    RecordingVisitor visitor;
    const Bytes bytes = hex("01 F123 FE D7 02 A0 0001 0003 40 01 0C 21 0002 0001 42 0000");
    ASSERT_TRUE(qv::hevc::traceLayerConfigurationRecord(bytesOf(bytes), visitor).ok());
    Texts texts;
    for (const qv::TracedElement& element : visitor.elements) {
        texts.push_back(textOf(element));
    }
    EXPECT_EQ(texts, Texts({"0 8 configurationVersion 1",
                            "8 4 reserved 15",
                            "12 12 min_spatial_segmentation_idc 291",
                            "24 6 reserved 63",
                            "30 2 parallelismType 2",
                            "32 2 reserved 3",
                            "34 3 numTemporalLayers 2",
                            "37 1 temporalIdNested 1",
                            "38 2 lengthSizeMinusOne 3",
                            "40 8 numOfArrays 2",
                            "48 1 array_completeness[0] 1",
                            "49 1 reserved[0] 0",
                            "50 6 NAL_unit_type[0] 32",
                            "56 16 numNalus[0] 1",
                            "72 16 nalUnitLength[0][0] 3",
                            "88 24 nalUnit[0][0] 3",
                            "112 1 array_completeness[1] 0",
                            "113 1 reserved[1] 0",
                            "114 6 NAL_unit_type[1] 33",
                            "120 16 numNalus[1] 2",
                            "136 16 nalUnitLength[1][0] 1",
                            "152 8 nalUnit[1][0] 1",
                            "160 16 nalUnitLength[1][1] 0",
                            "176 0 nalUnit[1][1] 0"}));
}

// --- Damage ---

TEST(HevcConfigurationRecord, cutAtEveryByte) {
    RecordingVisitor visitor;
    qv::hevc::traceConfigurationRecord(bytesOf(kMain10), visitor);
    GuardedBuffer guarded(4096);
    for (size_t size = 0; size < kMain10.size(); ++size) {
        SCOPED_TRACE(size);
        const Bytes cut(kMain10.begin(), kMain10.begin() + static_cast<std::ptrdiff_t>(size));
        const auto read = qv::hevc::readConfigurationRecord({guarded.placeAtEnd(cut), size});
        size_t i = 0;
        while (visitor.elements[i].firstBit + visitor.elements[i].width <= 8 * size) {
            ++i;
        }
        const qv::TracedElement& element = visitor.elements[i];
        EXPECT_EQ(read.fault.kind, qv::FaultKind::EndOfData);
        EXPECT_EQ(qv::textOf(read.fault.element), qv::textOf(element.element));
        EXPECT_EQ(read.fault.firstBit, element.firstBit);
        Texts whole;
        for (size_t j = 0; j < i; ++j) {
            const qv::TracedElement& unit = visitor.elements[j];
            if (unit.descriptor == qv::Descriptor::bytes) {
                whole.push_back(hexOf(bytesOf(kMain10).from(unit.firstBit / 8).first(unit.width / 8)));
            }
        }
        EXPECT_EQ(unitsOf(read.record), whole);
    }
}

TEST(HevcConfigurationRecord, otherVersions) {
    Bytes bytes = kMain10;
    bytes[0] = 2;
    EXPECT_EQ(qv::textOf(qv::hevc::readConfigurationRecord(bytesOf(bytes)).fault),
              "configurationVersion in HEVCDecoderConfigurationRecord (ISO/IEC 14496-15 8.3.3.1.2) at bit 0: "
              "2 is not "
              "in 0..1");
}

// --- Every value ---

template <class Record>
void steer(StructureUnderTest<Record>& structure) {
    structure.write = [](const Record& record, std::vector<uint8_t>& out) {
        return qv::hevc::writeConfigurationRecord(record, out);
    };
    structure.size = [](const Record& record) { return qv::hevc::sizeOf(record); };
    structure.steer = [](RandomUnit& unit, Random& random) {
        unit.choose("numOfArrays", {0, 1, 3, 20});
        unit.choose("numNalus", {0, 1, 2, 7});
        if (random() % 100 != 0) {
            unit.choose("nalUnitLength", {0, 1, 30});
        }
    };
}

StructureUnderTest<ConfigurationRecord> structure() {
    StructureUnderTest<ConfigurationRecord> structure;
    steer(structure);
    structure.violable = 1;
    structure.generate = [](RandomUnit& s, ConfigurationRecord& record) {
        qv::hevc::configuration_record(s, record);
    };
    structure.read = [](qv::Bytes bytes) { return qv::hevc::readConfigurationRecord(bytes); };
    structure.trace = [](qv::Bytes bytes, qv::TraceVisitor& visitor) {
        return qv::hevc::traceConfigurationRecord(bytes, visitor);
    };
    return structure;
}

StructureUnderTest<LayerConfigurationRecord> layerStructure() {
    StructureUnderTest<LayerConfigurationRecord> structure;
    steer(structure);
    structure.violable = 2;
    structure.generate = [](RandomUnit& s, LayerConfigurationRecord& record) {
        qv::hevc::layer_configuration_record(s, record);
    };
    structure.read = [](qv::Bytes bytes) { return qv::hevc::readLayerConfigurationRecord(bytes); };
    structure.trace = [](qv::Bytes bytes, qv::TraceVisitor& visitor) {
        return qv::hevc::traceLayerConfigurationRecord(bytes, visitor);
    };
    return structure;
}

TEST(HevcConfigurationRecord, roundTrips) {
    checkRoundTrips(structure(), unitRounds(500));
    checkRoundTrips(layerStructure(), unitRounds(500));
}

TEST(HevcConfigurationRecord, everyRange) {
    EXPECT_EQ(checkRanges(structure(), unitRounds(500)).count("configurationVersion"), 1U);
    EXPECT_EQ(checkRanges(layerStructure(), unitRounds(500)).count("configurationVersion"), 1U);
}

template <class Record>
uint64_t bytesOfUnits(const Record& record) {
    uint64_t bytes = 0;
    qv::hevc::forEachUnit(record, [&](const qv::NalUnit& unit) { bytes += unit.bytes.size; });
    return bytes;
}

TEST(HevcConfigurationRecord, noAllocationAndNoByteOutside) {
    checkMemory(structure(), unitRounds(25), {{"forEachUnit", bytesOfUnits<qv::hevc::ConfigurationRecord>}});
    checkMemory(layerStructure(), unitRounds(25),
                {{"forEachUnit", bytesOfUnits<qv::hevc::LayerConfigurationRecord>}});
}

// --- Writing ---

TEST(HevcConfigurationRecord, countsThatAreNotThoseOfTheArrays) {
    const auto read = qv::hevc::readConfigurationRecord(bytesOf(kMain10));
    const auto faultAfter = [&](const std::function<void(ConfigurationRecord&)>& change) {
        ConfigurationRecord record = read.record;
        change(record);
        Bytes out = {0xDE};
        const qv::Written result = qv::hevc::writeConfigurationRecord(record, out);
        EXPECT_EQ(out, Bytes{0xDE});
        EXPECT_EQ(result.size, 0U);
        return qv::textOf(result.fault);
    };
    const std::string in = " in HEVCDecoderConfigurationRecord (ISO/IEC 14496-15 8.3.3.1.2) at bit ";
    EXPECT_EQ(faultAfter([](auto& r) { r.arrays.numOfArrays = 5; }),
              "numOfArrays" + in + "0: 5 instead of 4");
    EXPECT_EQ(faultAfter([](auto& r) { r.arrays.numOfArrays = 3; }),
              "numOfArrays" + in + "0: 3 instead of 4");
    EXPECT_EQ(faultAfter([](auto& r) { r.arrays.numOfArrays = 0; }),
              "numOfArrays" + in + "0: 0 instead of 1");
    EXPECT_EQ(faultAfter([](auto& r) { --r.arrays.coded.size; }), "numNalus[3]" + in + "0: the data ends");
    EXPECT_EQ(faultAfter([](auto& r) { r.arrays.coded.size = 33; }), "numNalus[1]" + in + "0: the data ends");
    EXPECT_EQ(faultAfter([](auto& r) { r.arrays.coded.size = 30; }),
              "numOfArrays" + in + "0: 4 instead of 1");
    EXPECT_EQ(faultAfter([](auto& r) { r.numTemporalLayers = 8; }),
              "numTemporalLayers" + in + "170: 8 is not in 0..7");
    EXPECT_EQ(faultAfter([](auto& r) { r.arrays = {256, {}}; }), "numOfArrays" + in + "0: 256 instead of 0");
}

// --- Making ---

std::vector<qv::Bytes> viewsOf(const std::vector<Bytes>& units) {
    std::vector<qv::Bytes> views;
    for (const Bytes& unit : units) {
        views.push_back(bytesOf(unit));
    }
    return views;
}

std::string made(const std::vector<Bytes>& units, const qv::hevc::StreamFacts& facts = {},
                 qv::Framing framing = qv::Framing::Lengths4) {
    Bytes out;
    const qv::Written result = qv::hevc::makeConfigurationRecord(viewsOf(units), framing, facts, out);
    EXPECT_EQ(result.size, out.size());
    return result.ok() ? hexOf(bytesOf(out)) : qv::textOf(result.fault);
}

// A copy of a set with other general fields: the byte of profile_space, tier and profile_idc, the byte that
// begins the compatibility flags, that of the constraint flags, and the level.
struct General {
    uint8_t profile;
    uint8_t compatibility;
    uint8_t constraints;
    uint8_t level;
};

Bytes with(Bytes set, const General& general) {
    const size_t at = set[0] == 0x40 ? 6 : 3;
    set[at] = general.profile;
    set[at + 1] = general.compatibility;
    set[at + 6] = general.constraints;
    set[at + 14] = general.level;
    return set;
}

TEST(HevcConfigurationRecord, madeAsMuxersMakeIt) {
    const auto read = qv::hevc::readConfigurationRecord(bytesOf(kMain10));
    std::vector<qv::Bytes> units;
    qv::hevc::forEachUnit(read.record, [&](const qv::NalUnit& unit) { units.push_back(unit.bytes); });
    std::rotate(units.begin(), units.begin() + 3, units.end());
    qv::hevc::StreamFacts facts;
    facts.bit_depth_luma_minus8 = 2;
    facts.bit_depth_chroma_minus8 = 2;
    facts.isComplete = false;
    Bytes out;
    EXPECT_TRUE(qv::hevc::makeConfigurationRecord(units, qv::Framing::Lengths4, facts, out).ok());
    EXPECT_EQ(out, kMain10);
}

TEST(HevcConfigurationRecord, everyFact) {
    qv::hevc::StreamFacts facts;
    facts.chroma_format_idc = 2;
    facts.bit_depth_luma_minus8 = 3;
    facts.bit_depth_chroma_minus8 = 4;
    facts.min_spatial_segmentation_idc = 0x123;
    facts.parallelismType = 3;
    facts.avgFrameRate = 6400;
    facts.constantFrameRate = 1;
    const Bytes out = hex(made({kSps}, facts, qv::Framing::Lengths2));
    const auto read = qv::hevc::readConfigurationRecord(bytesOf(out));
    ASSERT_TRUE(read.ok());
    EXPECT_EQ(hexOf(bytesOf(out).first(23)),
              "01 01 60 00 00 00 90 00 00 00 00 00 3C F1 23 FF FE FB FC 19 00 4D 01");
    EXPECT_EQ(arraysOf(read.record), Texts({"33 complete 1"}));
    facts.parallelismType = 4;
    EXPECT_NE(made({kSps}, facts).find("parallelismType"), std::string::npos);
}

TEST(HevcConfigurationRecord, whatTheSetsHaveInCommon) {
    const auto headOf = [](const std::vector<Bytes>& units) { return made(units).substr(0, 38); };
    EXPECT_EQ(headOf({kVps, kSps}), "01 01 60 00 00 00 90 00 00 00 00 00 3C");
    // Flags that all have, the greatest profile, the highest level.
    EXPECT_EQ(headOf({with(kSps, {0x01, 0x60, 0xB0, 93}), with(kSps, {0x02, 0x20, 0x90, 90})}),
              "01 02 20 00 00 00 90 00 00 00 00 00 5D");
    EXPECT_EQ(headOf({with(kVps, {0x01, 0x60, 0x90, 120}), kSps}), "01 01 60 00 00 00 90 00 00 00 00 00 78");
    // The highest level of the highest tier.
    EXPECT_EQ(headOf({with(kSps, {0x21, 0x60, 0x90, 90}), with(kSps, {0x01, 0x60, 0x90, 120})}),
              "01 21 60 00 00 00 90 00 00 00 00 00 5A");
    EXPECT_EQ(headOf({with(kSps, {0x01, 0x60, 0x90, 120}), with(kSps, {0x21, 0x60, 0x90, 90})}),
              "01 21 60 00 00 00 90 00 00 00 00 00 5A");
    // Sets of other layers say nothing of the stream's profile.
    Bytes layer = with(kSps, {0x05, 0x10, 0x00, 150});
    layer[1] = 0x09;
    EXPECT_EQ(headOf({kSps, layer}), "01 01 60 00 00 00 90 00 00 00 00 00 3C");
}

TEST(HevcConfigurationRecord, temporalSubLayers) {
    const auto layersIn = [](const std::vector<Bytes>& units) {
        const Bytes out = hex(made(units));
        const auto record = qv::hevc::readConfigurationRecord(bytesOf(out)).record;
        return std::to_string(record.numTemporalLayers) + (record.temporalIdNested ? " nested" : "");
    };
    Bytes three = kSps;
    three[2] = 0x05;
    Bytes notNested = kSps;
    notNested[2] = 0x02;
    EXPECT_EQ(layersIn({kSps}), "1 nested");
    EXPECT_EQ(layersIn({kSps, three}), "3 nested");
    EXPECT_EQ(layersIn({notNested, three}), "3");
}

TEST(HevcConfigurationRecord, orderOfTheArrays) {
    const Bytes other = hex("7C 01 19");
    const Bytes out = hex(made({kSuffixSei, other, kPrefixSei, kPps, kSps, kVps, kPps, kPrefixSei}));
    const auto record = qv::hevc::readConfigurationRecord(bytesOf(out)).record;
    EXPECT_EQ(arraysOf(record),
              Texts({"32 complete 1", "33 complete 1", "34 complete 2", "39 2", "40 1", "62 1"}));
    qv::hevc::StreamFacts facts;
    facts.isComplete = false;
    const Bytes incomplete = hex(made({kSps, kPps}, facts));
    EXPECT_EQ(arraysOf(qv::hevc::readConfigurationRecord(bytesOf(incomplete)).record),
              Texts({"33 1", "34 1"}));
}

TEST(HevcConfigurationRecord, whatNoRecordIsMadeOf) {
    const std::string in = " in HEVCDecoderConfigurationRecord (ISO/IEC 14496-15 8.3.3.1.2) at bit 0: ";
    EXPECT_EQ(made({}), "numNalus" + in + "0 is not in 1..65535");
    EXPECT_EQ(made({kVps, kPps}), "numNalus" + in + "0 is not in 1..65535");
    EXPECT_EQ(made({kSps, hex("44")}), "NALUnit[1]" + in + "the data ends");
    EXPECT_EQ(made({kSps, {}}), "NALUnit[1]" + in + "the data ends");
    Bytes longSei = kPrefixSei;
    longSei.resize(65536, 0x55);
    EXPECT_EQ(made({kSps, longSei}), "NALUnit[1]" + in + "65536 is not in 0..65535");
    EXPECT_EQ(made({kSps, with(kSps, {0x41, 0x60, 0x90, 60})}),
              "general_profile_space" + in + "1 instead of 0");
    EXPECT_EQ(made({hex("42 01 01 01 60 80")}),
              "general_profile_compatibility_flags in profile_tier_level() (7.3.3) at bit 32: the data ends");
    EXPECT_EQ(
        made({hex("42 01 0F 01 60 80")}),
        "sps_max_sub_layers_minus1 in seq_parameter_set_rbsp() (7.3.2.2.1) at bit 20: 7 is not in 0..6");
    EXPECT_EQ(made({kSps}, {}, qv::Framing::StartCodes), "lengthSizeMinusOne" + in + "-1 instead of 3");
    EXPECT_EQ(made(std::vector<Bytes>(65536, kSps)), "numNalus" + in + "65536 is not in 0..65535");
}

TEST(HevcConfigurationRecord, parallelismType) {
    const qv::hevc::PpsParallelism slices = {false, false};
    const qv::hevc::PpsParallelism tiles = {true, false};
    const qv::hevc::PpsParallelism wavefronts = {false, true};
    const qv::hevc::PpsParallelism both = {true, true};
    EXPECT_EQ(qv::hevc::parallelismTypeOf(0, {tiles}), 0U);
    EXPECT_EQ(qv::hevc::parallelismTypeOf(1, {}), 0U);
    EXPECT_EQ(qv::hevc::parallelismTypeOf(1, {slices, slices}), 1U);
    EXPECT_EQ(qv::hevc::parallelismTypeOf(1, {tiles}), 2U);
    EXPECT_EQ(qv::hevc::parallelismTypeOf(1, {wavefronts}), 3U);
    EXPECT_EQ(qv::hevc::parallelismTypeOf(1, {both}), 0U);
    EXPECT_EQ(qv::hevc::parallelismTypeOf(1, {slices, tiles}), 0U);
    EXPECT_EQ(qv::hevc::parallelismTypeOf(1, {slices, wavefronts}), 0U);
}

}  // namespace
