#include "report/StreamWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "InspectSupport.h"

namespace qv_test {
namespace {

using namespace qvinspect;
using ::testing::HasSubstr;

// H.264, 5.3.3.1.2 of ISO/IEC 14496-15: a sequence and a picture parameter set.
Bytes avcRecord() {
    return hex("01 64 00 0C FF E1 00 03 67 64 01 01 00 02 68 CE");
}

// H.265, 8.3.3.1.2: 22 bytes, then arrays of a video, a sequence and a picture parameter set, of a prefix and
// of a suffix SEI unit.
Bytes hevcRecord() {
    return hex("01") + Bytes(21, 0) +
           hex("05 20 00 01 00 03 40 01 0A "
               "   21 00 01 00 03 42 01 0B "
               "   22 00 01 00 03 44 01 0C "
               "   27 00 01 00 07 4E 01 90 02 11 22 80 "
               "   28 00 01 00 06 50 01 84 01 33 80");
}

struct Written {
    Bytes bytes;
    std::string messages;  // on standard error
    std::string failed;    // of finish(); empty on success
};

Written write(Framing framing, const StreamInfo& info, const std::vector<Bytes>& accessUnits,
              const CommandLine& line = {}, const SeiRemoval& removal = {}) {
    const TemporaryFolder folder;
    const std::string path = folder.path() / "out";
    Written written;
    ::testing::internal::CaptureStderr();
    {
        StreamWriter writer(path, framing, UnitSource::Stream, removal);
        present(writer, info, accessUnits, line);
        try {
            writer.finish();
        } catch (const OutputError& error) {
            written.failed = error.what();
        }
    }
    written.messages = ::testing::internal::GetCapturedStderr();
    written.bytes = fileContent(path);
    for (std::string* text : {&written.messages, &written.failed}) {
        for (size_t at = text->find(path); at != std::string::npos; at = text->find(path)) {
            text->replace(at, path.size(), "out");
        }
    }
    return written;
}

StreamInfo lengths(uint8_t size, const Bytes& record = {}, QVCodecID codec = QVCodecIDAvc) {
    StreamInfo info;
    info.parameters = {codec, 0, size};
    info.configuration = record;
    return info;
}

StreamInfo annexB(const Bytes& record = {}) {
    StreamInfo info;
    info.parameters = {QVCodecIDAvc, 1, 0};
    info.configuration = record;
    return info;
}

void expectWhole(const Written& written, const Bytes& bytes) {
    EXPECT_EQ(written.bytes, bytes);
    EXPECT_EQ(written.messages, "");
    EXPECT_EQ(written.failed, "");
}

// --- Every framing into both ---

struct FramingCase {
    const char* name;
    StreamInfo info;
    std::vector<Bytes> accessUnits;
};

const std::vector<FramingCase>& framings() {
    static const std::vector<FramingCase> cases = {
        {"1-byte lengths", lengths(1), {hex("02 65 88 03 65 00 01"), hex("02 41 9A")}},
        {"2-byte lengths", lengths(2), {hex("00 02 65 88 00 03 65 00 01"), hex("00 02 41 9A")}},
        {"4-byte lengths",
         lengths(4),
         {hex("00 00 00 02 65 88 00 00 00 03 65 00 01"), hex("00 00 00 02 41 9A")}},
        {"start codes", annexB(), {hex("00 00 01 65 88 00 00 00 01 65 00 01"), hex("00 00 00 01 41 9A")}},
        {"zeros before the start codes",
         annexB(),
         {hex("00 00 00 00 01 65 88 00 00 01 65 00 01"), hex("00 00 01 41 9A")}},
    };
    return cases;
}

TEST(StreamWriter, toAnnexB) {
    for (const FramingCase& each : framings()) {
        SCOPED_TRACE(each.name);
        expectWhole(write(Framing::AnnexB, each.info, each.accessUnits),
                    hex("00 00 00 01 65 88 00 00 00 01 65 00 01 00 00 00 01 41 9A"));
    }
}

TEST(StreamWriter, toLengths) {
    for (const FramingCase& each : framings()) {
        SCOPED_TRACE(each.name);
        expectWhole(write(Framing::Lengths4, each.info, each.accessUnits),
                    hex("00 00 00 02 65 88 00 00 00 03 65 00 01 00 00 00 02 41 9A"));
    }
}

TEST(StreamWriter, filtersNarrowWhatIsShownNotTheStream) {
    CommandLine line;
    line.filter.keyOnly = true;
    line.filter.unitTypes = {7};
    expectWhole(write(Framing::AnnexB, lengths(1), {hex("02 41 9A"), hex("02 65 88")}, line),
                hex("00 00 00 01 41 9A 00 00 00 01 65 88"));
}

// --- Parameter sets of the container ---

const Bytes kAvcSets = hex("00 00 00 01 67 64 01 00 00 00 01 68 CE");

TEST(StreamWriter, parameterSetsPrecedeKeyAccessUnits) {
    expectWhole(
        write(Framing::AnnexB, lengths(1, avcRecord()), {hex("02 65 88"), hex("02 41 9A"), hex("02 65 89")}),
        kAvcSets + hex("00 00 00 01 65 88 00 00 00 01 41 9A") + kAvcSets + hex("00 00 00 01 65 89"));
    expectWhole(write(Framing::Lengths4, lengths(1, avcRecord()), {hex("02 65 88")}),
                hex("00 00 00 03 67 64 01 00 00 00 02 68 CE 00 00 00 02 65 88"));
}

TEST(StreamWriter, parameterSetsPrecedeTheFirstAccessUnitOfAnyKind) {
    expectWhole(write(Framing::AnnexB, lengths(1, avcRecord()), {hex("02 41 9A"), hex("02 41 9B")}),
                kAvcSets + hex("00 00 00 01 41 9A 00 00 00 01 41 9B"));
}

TEST(StreamWriter, parameterSetsAreAfterTheDelimiterAndBeforeSei) {
    expectWhole(write(Framing::AnnexB, lengths(1, avcRecord()), {hex("02 09 10 03 06 FF 80 02 65 88")}),
                hex("00 00 00 01 09 10") + kAvcSets + hex("00 00 00 01 06 FF 80 00 00 00 01 65 88"));
}

TEST(StreamWriter, parameterSetsOfItsOwnAreKept) {
    expectWhole(write(Framing::AnnexB, lengths(1, avcRecord()), {hex("02 67 65 02 68 CF 02 65 88")}),
                hex("00 00 00 01 67 65 00 00 00 01 68 CF 00 00 00 01 65 88"));
    // With only one in the access unit, the other is added.
    expectWhole(write(Framing::AnnexB, lengths(1, avcRecord()), {hex("02 67 65 02 65 88")}),
                hex("00 00 00 01 67 65 00 00 00 01 68 CE 00 00 00 01 65 88"));
}

TEST(StreamWriter, hevcRecordWithSei) {
    const Bytes sets = hex("00 00 00 01 40 01 0A 00 00 00 01 42 01 0B 00 00 00 01 44 01 0C");
    const Bytes sei = hex("00 00 00 01 4E 01 90 02 11 22 80");
    const Bytes picture = hex("00 00 00 01 26 01 AF");
    const StreamInfo info = lengths(1, hevcRecord(), QVCodecIDHevc);
    expectWhole(write(Framing::AnnexB, info, {hex("03 26 01 AF")}), sets + sei + picture);
    // The same message is not written twice; another one does not replace it.
    expectWhole(write(Framing::AnnexB, info, {hex("07 4E 01 90 02 11 22 80 03 26 01 AF")}),
                sets + sei + picture);
    expectWhole(write(Framing::AnnexB, info, {hex("05 4E 01 01 00 80 03 26 01 AF")}),
                sets + sei + hex("00 00 00 01 4E 01 01 00 80") + picture);
}

// A unit of the record that has other messages is inserted without those that are left out; one that the
// access unit has too is not, although it is not written there as it was.
TEST(StreamWriter, seiOfTheRecordIsLeftOut) {
    const Bytes sets = hex("00 00 00 01 40 01 0A 00 00 00 01 42 01 0B 00 00 00 01 44 01 0C");
    const Bytes picture = hex("00 00 00 01 26 01 AF");
    const SeiRemoval lightLevel = {{144}, {}, {}};
    const Written none = write(Framing::AnnexB, lengths(1, hevcRecord(), QVCodecIDHevc),
                               {hex("03 26 01 AF"), hex("03 26 01 AF")}, {}, lightLevel);
    EXPECT_EQ(none.bytes, sets + picture + sets + picture);
    EXPECT_EQ(none.messages, "qvinspect: out: 1 SEI message and 1 SEI unit are dropped\n");
    const Bytes record = hex("01") + Bytes(21, 0) + hex("01 27 00 01 00 0A 4E 01 90 02 11 22 04 01 B5 80");
    const Bytes left = hex("00 00 00 01 4E 01 04 01 B5 80");
    const StreamInfo info = lengths(1, record, QVCodecIDHevc);
    EXPECT_EQ(write(Framing::AnnexB, info, {hex("03 26 01 AF")}, {}, lightLevel).bytes, left + picture);
    EXPECT_EQ(
        write(Framing::AnnexB, info, {hex("0A 4E 01 90 02 11 22 04 01 B5 80 03 26 01 AF")}, {}, lightLevel)
            .bytes,
        left + picture);
    const SeiRemoval owner = {{}, {}, {{0xB5, 0, std::nullopt}}};
    EXPECT_EQ(write(Framing::Lengths4, info, {hex("03 26 01 AF")}, {}, owner).bytes,
              hex("00 00 00 07 4E 01 90 02 11 22 80 00 00 00 03 26 01 AF"));
}

TEST(StreamWriter, newRecordInMidStream) {
    const TemporaryFolder folder;
    const std::string path = folder.path() / "out";
    StreamWriter writer(path, Framing::AnnexB);
    const StreamInfo info = lengths(1, avcRecord());
    writer.begin({"stream", info, false, {}});
    const Bytes unit = hex("02 41 9A");
    for (const Bytes& record : {Bytes(), hex("01 64 00 0C FF E1 00 02 67 66 01 00 02 68 CF")}) {
        AccessUnit accessUnit;
        accessUnit.data = unit.data();
        accessUnit.size = unit.size();
        accessUnit.parameters = info.parameters;
        accessUnit.newConfiguration = record;
        const auto report = analyse(accessUnit);
        AccessUnitDetails details;
        details.units.resize(report.units.size());
        writer.add(viewOf(1, accessUnit, report, details));
    }
    writer.finish();
    EXPECT_EQ(fileContent(path), kAvcSets + hex("00 00 00 01 41 9A 00 00 00 01 67 66 00 00 00 01 68 CF "
                                                "00 00 00 01 41 9A"));
}

// Reading ended before the stream did.
TEST(StreamWriter, streamThatIsNotReadToItsEnd) {
    const TemporaryFolder folder;
    const std::string path = folder.path() / "out";
    StreamWriter writer(path, Framing::AnnexB);
    const StreamTotals totals;
    const std::vector<Finding> findings = {{Severity::Note, std::nullopt, "a note"},
                                           {Severity::Error, std::nullopt, "reading failed"}};
    writer.begin({"stream", lengths(4), false, {}});
    ::testing::internal::CaptureStderr();
    writer.end({totals, findings, {}, false});
    EXPECT_THROW(writer.finish(), OutputError);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "qvinspect: " + path + ": the end of stream: reading failed\n");
}

// --- Broken access units ---

struct BrokenCase {
    const char* name;
    StreamInfo info;
    Framing framing;
    Bytes accessUnit;
    Bytes expected;
    std::string messages;
};

// What can be converted is written; the rest is reported with its offset.
TEST(StreamWriter, brokenAccessUnits) {
    const std::vector<BrokenCase> cases = {
        {"length past the end", lengths(2), Framing::AnnexB, hex("00 02 65 88 00 09 65 01"),
         hex("00 00 00 01 65 88"), "4 bytes from 4 on, after the last whole NAL unit, are left out"},
        {"length past the end, same framing", lengths(4), Framing::Lengths4,
         hex("00 00 00 02 65 88 00 00 00 09 65 01"), hex("00 00 00 02 65 88"),
         "6 bytes from 6 on, after the last whole NAL unit, are left out"},
        {"no whole unit",
         lengths(4),
         Framing::AnnexB,
         hex("00 00 00 09 65 01"),
         {},
         "6 bytes without a NAL unit are left out"},
        {"no start code",
         annexB(),
         Framing::Lengths4,
         hex("65 01 02 03"),
         {},
         "4 bytes without a NAL unit are left out"},
        {"bytes before the first start code", annexB(), Framing::Lengths4, hex("AB CD 00 00 01 65 88"),
         hex("00 00 00 02 65 88"), "2 bytes before the first NAL unit are left out"},
        {"start code inside of a unit", lengths(1), Framing::AnnexB, hex("06 65 88 00 00 01 41 02 41 9A"),
         hex("00 00 00 01 65 88 00 00 01 41 00 00 00 01 41 9A"),
         "NAL units from 1 to 10 contain a start code, so that the bytes after it become another unit"},
    };
    for (const BrokenCase& each : cases) {
        SCOPED_TRACE(each.name);
        const Written written = write(each.framing, each.info, {each.accessUnit});
        EXPECT_EQ(written.bytes, each.expected);
        EXPECT_EQ(written.messages, "qvinspect: out: access unit 1 of stream: " + each.messages + "\n");
        EXPECT_THAT(written.failed,
                    HasSubstr("out is not the whole stream: one part of it could not be converted"));
    }
}

// After a start code an empty unit would absorb the next start code. Leaving it out loses nothing.
TEST(StreamWriter, emptyUnitsAreLeftOut) {
    expectWhole(write(Framing::AnnexB, lengths(1), {hex("00 02 65 88 00 00 02 65 89 00")}),
                hex("00 00 00 01 65 88 00 00 00 01 65 89"));
    expectWhole(write(Framing::Lengths4, lengths(1), {hex("00 02 65 88 00")}), hex("00 00 00 02 65 88"));
    expectWhole(write(Framing::AnnexB, lengths(1), {hex("00")}), {});
    expectWhole(write(Framing::AnnexB, lengths(1), {{}}), {});
}

TEST(StreamWriter, unitsThatAreNotTypedAreConverted) {
    expectWhole(write(Framing::AnnexB, lengths(1), {hex("02 E5 88")}), hex("00 00 00 01 E5 88"));
}

TEST(StreamWriter, theFirstLossesAreReportedAndAllAreCounted) {
    const Written written = write(Framing::AnnexB, lengths(1), std::vector<Bytes>(25, hex("02 65")));
    EXPECT_EQ(std::count(written.messages.begin(), written.messages.end(), '\n'), 10);
    EXPECT_THAT(written.failed, HasSubstr("25 parts of it could not be converted"));
}

}  // namespace
}  // namespace qv_test
