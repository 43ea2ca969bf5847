// The forms of a configuration, and its units.
#include "bitstream/units/ConfigurationRecord.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "../support/Hex.h"
#include "../support/StructureChecks.h"
#include "GuardedBuffer.h"

namespace {

using namespace qv_test;
using Bytes = std::vector<uint8_t>;
using qv::Codec;
using qv::ConfigurationKind;
using qv::Framing;
using Texts = std::vector<std::string>;

const char* const kAvcRecord = "01 42 C0 0D FD E1 0004 67 42 C0 0D 01 0003 68 CE 0F";
const char* const kHevcRecord =
    "01 01 60000000 900000000000 3C F000 FC FD F8 F8 0000 0C 02 20 0001 0003 40 01 0C 27 0001 0003 4E 01 90";

struct Row {
    Codec codec;
    std::string bytes;
    ConfigurationKind kind;
    std::optional<Framing> framing;
    Texts units;
};

TEST(ConfigurationRecord, forms) {
    const std::string version0 = "00" + std::string(kHevcRecord).substr(2);
    const Row rows[] = {
        {Codec::Avc, kAvcRecord, ConfigurationKind::Record, Framing::Lengths2, {"67 42 C0 0D", "68 CE 0F"}},
        {Codec::Hevc, kHevcRecord, ConfigurationKind::Record, Framing::Lengths1, {"40 01 0C", "4E 01 90"}},
        {Codec::Hevc, version0, ConfigurationKind::Record, Framing::Lengths1, {"40 01 0C", "4E 01 90"}},
        {Codec::Avc,
         "000001 67 42 000001 68",
         ConfigurationKind::ByteStream,
         Framing::StartCodes,
         {"67 42", "68"}},
        {Codec::Hevc, "0000 000001 40 01", ConfigurationKind::ByteStream, Framing::StartCodes, {"40 01"}},
        {Codec::Avc, "", ConfigurationKind::None, std::nullopt, {}},
        {Codec::Avc, "00 00 00", ConfigurationKind::None, std::nullopt, {}},
        {Codec::Avc, "01 42 C0 0D", ConfigurationKind::None, std::nullopt, {}},
        {Codec::Avc, "01 42 C0 0D FE", ConfigurationKind::Record, Framing::Lengths3, {}},
        {Codec::Avc, "00 42 C0 0D FF E0 00", ConfigurationKind::None, std::nullopt, {}},
        {Codec::Avc, "02 42 C0 0D FF E0 00", ConfigurationKind::None, std::nullopt, {}},
        {Codec::Hevc, kAvcRecord, ConfigurationKind::None, std::nullopt, {}},
        // Damaged: what is whole is there.
        {Codec::Avc,
         "01 42 C0 0D FF E2 0002 67 42 0009 67 42",
         ConfigurationKind::Record,
         Framing::Lengths4,
         {"67 42"}},
        {Codec::Hevc,
         "01 01 60000000 900000000000 3C F000 FC FD F8 F8 0000 0C 02 20 0001 0003 40 01 0C 27 0001 0005 4E",
         ConfigurationKind::Record,
         Framing::Lengths1,
         {"40 01 0C"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.bytes);
        const Bytes bytes = hex(row.bytes);
        EXPECT_EQ(qv::configurationKindOf(row.codec, bytesOf(bytes)), row.kind);
        EXPECT_EQ(qv::framingOf(row.codec, bytesOf(bytes)), row.framing);
        Texts units;
        qv::forEachConfigurationUnit(row.codec, bytesOf(bytes),
                                     [&](const qv::NalUnit& unit) { units.push_back(hexOf(unit.bytes)); });
        EXPECT_EQ(units, row.units);
    }
}

template <class Record, class Read>
void expectSameBytesWhenWritten(qv::Bytes bytes, Read read) {
    const qv::Read<Record> result = read(bytes);
    if (!result.ok()) {
        return;
    }
    Bytes written;
    ASSERT_TRUE(writeConfigurationRecord(result.record, written).ok());
    ASSERT_EQ(hexOf(bytesOf(written)), hexOf(bytes));
    ASSERT_EQ(sizeOf(result.record).bits, 8 * bytes.size);
}

// Whatever the bytes are: nothing outside is touched, units lie within them, and a record that reads without
// a fault is written as it was read.
TEST(ConfigurationRecord, damagedRecordsBetweenGuardPages) {
    std::mt19937_64 random(5);
    GuardedBuffer guarded(4096);
    int whole = 0;
    for (int round = 0; round < 20000; ++round) {
        const Codec codec = round % 2 == 0 ? Codec::Avc : Codec::Hevc;
        Bytes bytes = hex(codec == Codec::Avc ? kAvcRecord : kHevcRecord);
        for (uint64_t changes = random() % 4; changes > 0; --changes) {
            bytes[random() % bytes.size()] =
                static_cast<uint8_t>(random() % 2 == 0 ? random() % 4 : random());
        }
        bytes.resize(random() % 4 == 0 ? random() % bytes.size() : bytes.size() + random() % 6);
        SCOPED_TRACE(hexOf(bytesOf(bytes)));
        const qv::Bytes place = {round % 4 < 2 ? guarded.placeAtEnd(bytes) : guarded.placeAtBegin(bytes),
                                 bytes.size()};
        qv::forEachConfigurationUnit(codec, place, [&](const qv::NalUnit& unit) {
            ASSERT_GE(unit.bytes.begin(), place.begin());
            ASSERT_LE(unit.bytes.end(), place.end());
        });
        whole += qv::hevc::readConfigurationRecord(place).ok() || qv::avc::readConfigurationRecord(place).ok()
                     ? 1
                     : 0;
        expectSameBytesWhenWritten<qv::avc::ConfigurationRecord>(place, qv::avc::readConfigurationRecord);
        expectSameBytesWhenWritten<qv::hevc::ConfigurationRecord>(place, qv::hevc::readConfigurationRecord);
        expectSameBytesWhenWritten<qv::hevc::LayerConfigurationRecord>(
            place, qv::hevc::readLayerConfigurationRecord);
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(whole, 2000);
}

TEST(UnitList, appendUnit) {
    Bytes coded;
    const Bytes longest(65535, 0x55);
    const Bytes tooLong(65536, 0x55);
    EXPECT_TRUE(qv::appendUnit(bytesOf(hex("67 42")), coded));
    EXPECT_TRUE(qv::appendUnit({}, coded));
    EXPECT_EQ(coded, hex("0002 67 42 0000"));
    EXPECT_FALSE(qv::appendUnit(bytesOf(tooLong), coded));
    EXPECT_EQ(coded.size(), 6U);
    EXPECT_TRUE(qv::appendUnit(bytesOf(longest), coded));
    const qv::UnitList list = {3, bytesOf(coded)};
    size_t bytes = 0;
    for (const qv::NalUnit& unit : list.units(Codec::Avc)) {
        bytes += unit.bytes.size;
    }
    EXPECT_EQ(bytes, 65537U);
}

}  // namespace
