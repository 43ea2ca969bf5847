// The AVC decoder configuration record: read, traced, written, sized and made.
#include "bitstream/units/AvcConfigurationRecord.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../support/Hex.h"
#include "../support/MemoryChecks.h"
#include "../support/StructureChecks.h"
#include "GuardedBuffer.h"
#include "bitstream/units/AvcConfigurationRecordSyntax.h"

namespace {

using namespace qv_test;
using Bytes = std::vector<uint8_t>;
using qv::avc::ConfigurationRecord;
using Texts = std::vector<std::string>;

// As a muxer wrote it: High profile, one SPS, one PPS, with the fields of the extension.
const Bytes kHigh = hex(
    "01 64 00 0C FF E1 001A 67 64 00 0C AC D9 41 41 9F 9F 01 10 00 00 03 00 10 00 00 03 03 20 F1 42 99 60 "
    "01 0006 68 EA E1 92 C8 B0 FD F8 F8 00");

// As another one wrote it: High profile without them.
const Bytes kHighWithout =
    hex("01 64 00 0C FF E1 001E 67 64 00 0C AC D9 41 41 9F 9F 01 6A 0C 0C 0D 4A 00 00 03 00 02 00 00 03 00 "
        "65 1E 28 53 "
        "2C 01 0006 68 EB E0 84 B2 2C");

const Bytes kBaseline = hex("01 42 C0 0D FC E1 0004 67 42 C0 0D 02 0003 68 CE 0F 0002 68 42");
const Bytes kSps66 = hex("67 42 C0 0D DA 0F 0A 69 A8 10 10 10");
const Bytes kSps66Level20 = hex("67 42 80 14 DA 0F 0A 69 A8 10 10 10");
const Bytes kSps77 = hex("67 4D 40 1F DA 0F 0A 69 A8 10 10 10");
const Bytes kSps100 = hex("67 64 00 0C AC D9 41 41 9F 9F 01 10");  // 4:2:0, 8 bits
const Bytes kSps122 = hex("67 7A 00 0C B6 CD 41 41 9F 9F 01 10");  // 4:2:2, 10 bits
const Bytes kPps = hex("68 CE 0F C8");
const Bytes kSpsExtension = hex("6D E0");

Texts unitsOf(const ConfigurationRecord& record) {
    Texts units;
    qv::avc::forEachUnit(record, [&](const qv::NalUnit& unit) { units.push_back(hexOf(unit.bytes)); });
    return units;
}

Bytes written(const ConfigurationRecord& record) {
    Bytes bytes;
    EXPECT_TRUE(qv::avc::writeConfigurationRecord(record, bytes).ok());
    return bytes;
}

TEST(AvcConfigurationRecord, everyField) {
    const auto read = qv::avc::readConfigurationRecord(bytesOf(kHigh));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    const ConfigurationRecord& record = read.record;
    EXPECT_EQ(record.configurationVersion, 1U);
    EXPECT_EQ(record.AVCProfileIndication, 100U);
    EXPECT_EQ(record.profile_compatibility, 0U);
    EXPECT_EQ(record.AVCLevelIndication, 12U);
    EXPECT_EQ(record.reserved_6bits, 63U);
    EXPECT_EQ(record.lengthSizeMinusOne, 3U);
    EXPECT_EQ(record.reserved_3bits, 7U);
    EXPECT_EQ(record.sequenceParameterSets.count, 1U);
    EXPECT_EQ(record.pictureParameterSets.count, 1U);
    EXPECT_TRUE(record.hasExtension);
    EXPECT_EQ(record.reserved_6bits_chroma_format, 63U);
    EXPECT_EQ(record.chroma_format, 1U);
    EXPECT_EQ(record.reserved_5bits_bit_depth_luma, 31U);
    EXPECT_EQ(record.bit_depth_luma_minus8, 0U);
    EXPECT_EQ(record.reserved_5bits_bit_depth_chroma, 31U);
    EXPECT_EQ(record.bit_depth_chroma_minus8, 0U);
    EXPECT_EQ(record.sequenceParameterSetExtensions.count, 0U);
    EXPECT_TRUE(record.rest.empty());
    EXPECT_EQ(qv::avc::framingOf(record), qv::Framing::Lengths4);
    const Texts units = unitsOf(record);
    ASSERT_EQ(units.size(), 2U);
    EXPECT_EQ(units[0].substr(0, 11), "67 64 00 0C");
    EXPECT_EQ(units[1], "68 EA E1 92 C8 B0");
    EXPECT_EQ(written(record), kHigh);
    EXPECT_EQ(qv::avc::sizeOf(record).bits, 8 * kHigh.size());
}

TEST(AvcConfigurationRecord, withAndWithoutTheExtension) {
    struct Row {
        Bytes bytes;
        bool hasExtension;
        size_t rest;
    };
    const Bytes more = hex("AA BB CC DD EE");
    Bytes highAndMore = kHigh;
    highAndMore.insert(highAndMore.end(), more.begin(), more.end());
    Bytes withoutAndThree = kHighWithout;
    withoutAndThree.insert(withoutAndThree.end(), {0xFD, 0xF8, 0xF8});
    Bytes baselineAndMore = kBaseline;
    baselineAndMore.insert(baselineAndMore.end(), more.begin(), more.end());
    for (const Row& row :
         {Row{kHigh, true, 0}, Row{kHighWithout, false, 0}, Row{kBaseline, false, 0},
          Row{highAndMore, true, 5}, Row{withoutAndThree, false, 3}, Row{baselineAndMore, false, 5}}) {
        SCOPED_TRACE(hexOf(bytesOf(row.bytes)));
        const auto read = qv::avc::readConfigurationRecord(bytesOf(row.bytes));
        ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
        EXPECT_EQ(read.record.hasExtension, row.hasExtension);
        EXPECT_EQ(read.record.rest.size, row.rest);
        EXPECT_EQ(written(read.record), row.bytes);
    }
}

TEST(AvcConfigurationRecord, extensionUnits) {
    const Bytes bytes = hex("01 64 00 0C FC E0 00 03 1A 2B 02 0002 6D E0 0001 6D");
    const auto read = qv::avc::readConfigurationRecord(bytesOf(bytes));
    ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
    EXPECT_EQ(read.record.sequenceParameterSetExtensions.count, 2U);
    EXPECT_EQ(read.record.chroma_format, 3U);
    EXPECT_EQ(read.record.reserved_6bits_chroma_format, 0U);
    EXPECT_EQ(read.record.bit_depth_luma_minus8, 2U);
    EXPECT_EQ(read.record.reserved_5bits_bit_depth_luma, 3U);
    EXPECT_EQ(read.record.bit_depth_chroma_minus8, 3U);
    EXPECT_EQ(unitsOf(read.record), Texts({"6D E0", "6D"}));
    EXPECT_EQ(written(read.record), bytes);
}

TEST(AvcConfigurationRecord, oneElementAfterTheOther) {
    RecordingVisitor visitor;
    const Bytes bytes = hex("01 64 00 0C FD E1 0002 67 64 01 0000 FD F8 F8 01 0001 6D AA");
    ASSERT_TRUE(qv::avc::traceConfigurationRecord(bytesOf(bytes), visitor).ok());
    Texts texts;
    for (const qv::TracedElement& element : visitor.elements) {
        texts.push_back(textOf(element));
    }
    EXPECT_EQ(texts, Texts({"0 8 configurationVersion 1",
                            "8 8 AVCProfileIndication 100",
                            "16 8 profile_compatibility 0",
                            "24 8 AVCLevelIndication 12",
                            "32 6 reserved 63",
                            "38 2 lengthSizeMinusOne 1",
                            "40 3 reserved 7",
                            "43 5 numOfSequenceParameterSets 1",
                            "48 16 sequenceParameterSetLength[0] 2",
                            "64 16 sequenceParameterSetNALUnit[0] 2",
                            "80 8 numOfPictureParameterSets 1",
                            "88 16 pictureParameterSetLength[0] 0",
                            "104 0 pictureParameterSetNALUnit[0] 0",
                            "104 6 reserved 63",
                            "110 2 chroma_format 1",
                            "112 5 reserved 31",
                            "117 3 bit_depth_luma_minus8 0",
                            "120 5 reserved 31",
                            "125 3 bit_depth_chroma_minus8 0",
                            "128 8 numOfSequenceParameterSetExt 1",
                            "136 16 sequenceParameterSetExtLength[0] 1",
                            "152 8 sequenceParameterSetExtNALUnit[0] 1",
                            "160 8 rest 1"}));
    EXPECT_EQ(visitor.depth, 0);
}

// --- Damage ---

// The fault is the element that the record is cut in, and the units before it are there.
TEST(AvcConfigurationRecord, cutAtEveryByte) {
    constexpr size_t kExtensionAt = 21;
    const Bytes bytes =
        hex("01 64 00 0C FF E2 0002 67 64 0001 67 02 0001 68 0002 68 CE FD F8 F8 01 0002 6D E0");
    RecordingVisitor visitor;
    qv::avc::traceConfigurationRecord(bytesOf(bytes), visitor);
    GuardedBuffer guarded(4096);
    for (size_t size = 0; size < bytes.size(); ++size) {
        SCOPED_TRACE(size);
        const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
        const qv::Bytes place = {guarded.placeAtEnd(cut), size};
        const auto read = qv::avc::readConfigurationRecord(place);
        size_t i = 0;
        while (visitor.elements[i].firstBit + visitor.elements[i].width <= 8 * size) {
            ++i;
        }
        const qv::TracedElement& element = visitor.elements[i];
        const bool endsBeforeExtension = size >= kExtensionAt && size < kExtensionAt + 4;
        if (endsBeforeExtension) {
            EXPECT_TRUE(read.ok()) << qv::textOf(read.fault);
            EXPECT_EQ(read.record.rest.size, size - kExtensionAt);
            EXPECT_FALSE(read.record.hasExtension);
            continue;
        }
        EXPECT_EQ(read.fault.kind, qv::FaultKind::EndOfData);
        EXPECT_EQ(qv::textOf(read.fault.element), qv::textOf(element.element));
        EXPECT_EQ(read.fault.firstBit, element.firstBit);
        EXPECT_STREQ(read.fault.structure->name, "AVCDecoderConfigurationRecord");
        Texts whole;
        for (size_t j = 0; j < i; ++j) {
            const qv::TracedElement& unit = visitor.elements[j];
            if (unit.descriptor == qv::Descriptor::bytes) {
                whole.push_back(hexOf(bytesOf(bytes).from(unit.firstBit / 8).first(unit.width / 8)));
            }
        }
        EXPECT_EQ(unitsOf(read.record), whole);
    }
}

TEST(AvcConfigurationRecord, otherVersions) {
    for (const uint8_t version : {uint8_t{0}, uint8_t{2}, uint8_t{255}}) {
        Bytes bytes = kHigh;
        bytes[0] = version;
        const auto read = qv::avc::readConfigurationRecord(bytesOf(bytes));
        EXPECT_EQ(
            qv::textOf(read.fault),
            "configurationVersion in AVCDecoderConfigurationRecord (ISO/IEC 14496-15 5.3.3.1.2) at bit 0: " +
                std::to_string(version) + " instead of 1");
        EXPECT_TRUE(unitsOf(read.record).empty());
    }
}

// --- Every value ---

StructureUnderTest<ConfigurationRecord> structure() {
    StructureUnderTest<ConfigurationRecord> structure;
    structure.generate = [](RandomUnit& s, ConfigurationRecord& record) {
        qv::avc::configuration_record(s, record);
    };
    structure.read = [](qv::Bytes bytes) { return qv::avc::readConfigurationRecord(bytes); };
    structure.trace = [](qv::Bytes bytes, qv::TraceVisitor& visitor) {
        return qv::avc::traceConfigurationRecord(bytes, visitor);
    };
    structure.write = [](const ConfigurationRecord& record, std::vector<uint8_t>& out) {
        return qv::avc::writeConfigurationRecord(record, out);
    };
    structure.size = [](const ConfigurationRecord& record) { return qv::avc::sizeOf(record); };
    structure.violable = 2;
    structure.steer = [](RandomUnit& unit, Random& random) {
        unit.choose("AVCProfileIndication", {66, 77, 88, 100, 110, 244, 0, 255});
        unit.choose("numOfPictureParameterSets", {0, 1, 3, 255});
        unit.choose("numOfSequenceParameterSetExt", {0, 0, 1, 3});
        unit.choose("pictureParameterSetLength", {0, 1, 2, 20});
        if (random() % 100 != 0) {
            unit.choose("sequenceParameterSetLength", {0, 1, 30});
        }
    };
    return structure;
}

TEST(AvcConfigurationRecord, roundTrips) {
    checkRoundTrips(structure(), unitRounds(500));
}

TEST(AvcConfigurationRecord, everyRange) {
    EXPECT_EQ(checkRanges(structure(), unitRounds(500)).count("configurationVersion"), 1U);
}

template <class Record>
uint64_t bytesOfUnits(const Record& record) {
    uint64_t bytes = 0;
    qv::avc::forEachUnit(record, [&](const qv::NalUnit& unit) { bytes += unit.bytes.size; });
    return bytes;
}

TEST(AvcConfigurationRecord, noAllocationAndNoByteOutside) {
    checkMemory(structure(), unitRounds(25), {{"forEachUnit", bytesOfUnits<qv::avc::ConfigurationRecord>}});
}

// --- Writing ---

TEST(AvcConfigurationRecord, countsThatAreNotThoseOfTheUnits) {
    const auto read = qv::avc::readConfigurationRecord(bytesOf(kHigh));
    const auto faultAfter = [&](const std::function<void(ConfigurationRecord&)>& change) {
        ConfigurationRecord record = read.record;
        change(record);
        Bytes out = {0xDE};
        const qv::Written result = qv::avc::writeConfigurationRecord(record, out);
        EXPECT_EQ(out, Bytes{0xDE});
        EXPECT_EQ(result.size, 0U);
        return qv::textOf(result.fault);
    };
    const std::string in = " in AVCDecoderConfigurationRecord (ISO/IEC 14496-15 5.3.3.1.2) at bit ";
    EXPECT_EQ(faultAfter([](auto& r) { r.sequenceParameterSets.count = 2; }),
              "numOfSequenceParameterSets" + in + "0: 2 instead of 1");
    EXPECT_EQ(faultAfter([](auto& r) { r.pictureParameterSets.count = 0; }),
              "numOfPictureParameterSets" + in + "0: 0 instead of 1");
    EXPECT_EQ(faultAfter([](auto& r) { --r.pictureParameterSets.coded.size; }),
              "numOfPictureParameterSets" + in + "0: the data ends");
    EXPECT_EQ(faultAfter([](auto& r) { r.sequenceParameterSets.coded.size = 1; }),
              "numOfSequenceParameterSets" + in + "0: the data ends");
    EXPECT_EQ(faultAfter([](auto& r) { r.sequenceParameterSetExtensions.count = 1; }),
              "numOfSequenceParameterSetExt" + in + "0: 1 instead of 0");
    EXPECT_EQ(faultAfter([](auto& r) { r.lengthSizeMinusOne = 4; }),
              "lengthSizeMinusOne" + in + "38: 4 is not in 0..3");
    EXPECT_EQ(faultAfter([](auto& r) {
                  r.hasExtension = false;
                  r.sequenceParameterSetExtensions = r.pictureParameterSets;
              }),
              "numOfSequenceParameterSetExt" + in + "0: 1 instead of 0");
}

// --- Making ---

std::vector<qv::Bytes> viewsOf(const std::vector<Bytes>& units) {
    std::vector<qv::Bytes> views;
    for (const Bytes& unit : units) {
        views.push_back(bytesOf(unit));
    }
    return views;
}

std::string made(const std::vector<Bytes>& units, qv::Framing framing = qv::Framing::Lengths4) {
    Bytes out;
    const qv::Written result = qv::avc::makeConfigurationRecord(viewsOf(units), framing, out);
    EXPECT_EQ(result.size, out.size());
    return result.ok() ? hexOf(bytesOf(out)) : qv::textOf(result.fault);
}

TEST(AvcConfigurationRecord, madeAsMuxersMakeIt) {
    const auto read = qv::avc::readConfigurationRecord(bytesOf(kHigh));
    std::vector<qv::Bytes> units;
    qv::avc::forEachUnit(read.record,
                         [&](const qv::NalUnit& unit) { units.insert(units.begin(), unit.bytes); });
    Bytes out;
    EXPECT_TRUE(qv::avc::makeConfigurationRecord(units, qv::Framing::Lengths4, out).ok());
    EXPECT_EQ(out, kHigh);
}

TEST(AvcConfigurationRecord, madeOfSeveralSets) {
    EXPECT_EQ(made({kPps, kSps66, kSps66Level20}),
              "01 42 80 14 FF E2 00 0C 67 42 C0 0D DA 0F 0A 69 A8 10 10 10 00 0C 67 42 80 14 DA 0F 0A 69 A8 "
              "10 10 10 "
              "01 00 04 68 CE 0F C8");
    EXPECT_EQ(made({kSps66, kSps77}, qv::Framing::Lengths2).substr(0, 17), "01 4D 40 1F FD E2");
    EXPECT_EQ(made({kSps77, kSps66}, qv::Framing::Lengths1).substr(0, 17), "01 4D 40 1F FC E2");
    const struct {
        const char* first;
        const char* second;
        const char* record;
    } sets[] = {{"67 42 40 0D", "67 58 40 0D", "01 4D 40 0D"},   // 66 and 88, both of 77
                {"67 42 20 0D", "67 4D 20 0D", "01 58 20 0D"},   // 66 and 77, both of 88
                {"67 4D 80 0D", "67 58 80 0D", "01 42 80 0D"}};  // 77 and 88, both of 66
    for (const auto& c : sets) {
        const Bytes rest(kSps66.begin() + 4, kSps66.end());
        Bytes first = hex(c.first);
        Bytes second = hex(c.second);
        first.insert(first.end(), rest.begin(), rest.end());
        second.insert(second.end(), rest.begin(), rest.end());
        EXPECT_EQ(made({first, second}).substr(0, 11), c.record);
    }
    EXPECT_EQ(made({kSps122, kSpsExtension, kPps}),
              "01 7A 00 0C FF E1 00 0C 67 7A 00 0C B6 CD 41 41 9F 9F 01 10 01 00 04 68 CE 0F C8 FE FA FA 01 "
              "00 02 6D E0");
}

// seq_parameter_set_id 0, chroma_format_idc 3, separate_colour_plane_flag 1, bit_depth_luma_minus8 2,
// bit_depth_chroma_minus8 1: 1 00100 1 0 | 11 010 1 00
TEST(AvcConfigurationRecord, madeOfSeparateColourPlanes) {
    EXPECT_EQ(made({hex("67 F4 00 0D 92 D4")}), "01 F4 00 0D FF E1 00 06 67 F4 00 0D 92 D4 00 FF FA F9 00");
}

TEST(AvcConfigurationRecord, whatNoRecordIsMadeOf) {
    const std::string in = " in AVCDecoderConfigurationRecord (ISO/IEC 14496-15 5.3.3.1.2) at bit 0: ";
    EXPECT_EQ(made({}), "numOfSequenceParameterSets" + in + "0 is not in 1..31");
    EXPECT_EQ(made({kPps}), "numOfSequenceParameterSets" + in + "0 is not in 1..31");
    EXPECT_EQ(made(std::vector<Bytes>(32, kSps66)), "numOfSequenceParameterSets" + in + "32 is not in 1..31");
    std::vector<Bytes> units(256, kPps);
    units.push_back(kSps66);
    EXPECT_EQ(made(units), "numOfPictureParameterSets" + in + "256 is not in 0..255");
    EXPECT_EQ(made({kSps66, hex("06 05 80")}), "NALUnit[1]" + in + "a unit of type 6");
    EXPECT_EQ(made({kSps66, {}}), "NALUnit[1]" + in + "the data ends");
    Bytes longPps = kPps;
    longPps.resize(65536, 0x55);
    EXPECT_EQ(made({kSps66, longPps}), "NALUnit[1]" + in + "65536 is not in 0..65535");
    EXPECT_EQ(made({hex("67 64 00 80")}),
              "level_idc in seq_parameter_set_data() (7.3.2.1.1) at bit 24: the data ends");
    EXPECT_EQ(made({kSps66, kSps100}), "AVCProfileIndication" + in + "100 instead of 66");
    EXPECT_EQ(made({kSps66, kSpsExtension}), "numOfSequenceParameterSetExt" + in + "1 instead of 0");
    Bytes other = kSps122;
    other[1] = 100;
    EXPECT_EQ(made({kSps100, other}), "chroma_format" + in + "2 instead of 1");
    EXPECT_EQ(made({kSps66}, qv::Framing::StartCodes), "lengthSizeMinusOne" + in + "-1 instead of 3");
    EXPECT_EQ(made({kSps66}, qv::Framing::Lengths3), "lengthSizeMinusOne" + in + "2 instead of 3");
}

}  // namespace
