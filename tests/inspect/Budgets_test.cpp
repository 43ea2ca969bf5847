// Small files that need much: what is read and written is in proportion to their size, and a finding reports
// what was left out.
#include "input/Budgets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "AvcPictures.h"
#include "HostileFiles.h"
#include "InspectSupport.h"
#include "Mp4Writer.h"
#include "analysis/Analysis.h"
#include "analysis/StreamDetails.h"
#include "input/InputError.h"
#include "input/OpenInput.h"
#include "report/SeiExtractor.h"
#include "report/StreamWriter.h"

namespace qv_test {
namespace {

using namespace qvinspect;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(Budgets, growWithTheInput) {
    EXPECT_EQ(containerSamples(0), kMiB);
    EXPECT_EQ(containerSamples(kMiB), 17 * kMiB);
    EXPECT_EQ(extractedFiles(6400), 1124U);
    for (const uint64_t bytes : {uint64_t{1} << 58, UINT64_MAX}) {  // no sum wraps
        EXPECT_GE(containerMemory(bytes), uint64_t{1} << 61);
        EXPECT_GE(inspectionMemory(bytes), uint64_t{1} << 61);
        EXPECT_GE(repeatedRecordBytes(bytes), uint64_t{1} << 61);
    }
}

class Hostile : public ::testing::Test {
protected:
    struct Read {
        uint64_t accessUnits = 0;
        uint64_t bytes = 0;
        std::vector<std::string> findings;  // of the reader
        std::string refusal;                // instead of all others
    };

    Read read(const Bytes& file) const {
        Read read;
        try {
            const auto reader = openInput(folder_.write("x", file), {});
            AccessUnit accessUnit;
            bool isMore = true;
            while (isMore) {
                isMore = reader->next(accessUnit);
                read.accessUnits += isMore ? 1U : 0U;
                read.bytes += accessUnit.size;
                for (const std::string& text : describe(accessUnit.findings)) {
                    read.findings.push_back(text);
                }
            }
        } catch (const InputError& error) {
            read.refusal = error.what();
        }
        return read;
    }

    std::filesystem::path path(const std::string& name) const { return folder_.path() / name; }

private:
    TemporaryFolder folder_;
};

#if QVINSPECT_HAS_LIBAVFORMAT

TEST_F(Hostile, sampleTableThatTakesTooMuchMemory) {
    const Read table = read(sampleTableOf(80'000'000));
    EXPECT_EQ(table.accessUnits, 0U);
    EXPECT_THAT(table.findings,
                ElementsAre(HasSubstr("the sample table has 80000000 samples, of which 0 are read")));
}

// The file ends long before the samples do.
TEST_F(Hostile, sampleTableThatFits) {
    const Read table = read(sampleTableOf(1000));
    EXPECT_LE(table.bytes, 1000U);
    EXPECT_EQ(table.refusal, "");
}

TEST_F(Hostile, fragmentsThatTakeTooMuchMemory) {
    EXPECT_THAT(read(fragmentRunsOf(2'000'000, 20)).refusal,
                HasSubstr("its header needs more than 64 MiB of memory, the limit for a file of its size"));
}

TEST_F(Hostile, samplesOfTheSameBytes) {
    constexpr unsigned kChunks = 50'000;
    constexpr uint32_t kSampleSize = 8000;
    const Bytes file = repeatedChunks(kChunks, kSampleSize);
    const Read repeated = read(file);
    EXPECT_GT(repeated.accessUnits, 100U);
    EXPECT_LT(repeated.bytes, containerSamples(file.size()));
    EXPECT_THAT(repeated.findings,
                ElementsAre(HasSubstr(
                    "its tables refer to the same bytes repeatedly; this sample and the rest are left out")));
}

TEST_F(Hostile, tracks) {
    EXPECT_EQ(read(sampleTableOf(1, kMostStreams)).refusal, "");
    EXPECT_THAT(read(sampleTableOf(1, kMostStreams + 1)).refusal, HasSubstr("or has more than 256 streams"));
}

// An ordinary file of the smallest samples is read completely.
TEST_F(Hostile, manySmallSamplesAreFine) {
    const std::vector<Bytes> samples(20'000, lengthPrefixed({hex("26 01 AF 08")}, 4));
    const Read whole =
        read(mp4File({trackOf(QVCodecIDHevc, hevcRecord({{hex("40 01")}}), samples)}, joined(samples)));
    EXPECT_EQ(whole.accessUnits, 20'000U);
    EXPECT_THAT(whole.findings, IsEmpty());
}

// Each sample is far from the one before: buffers are read repeatedly.
TEST_F(Hostile, readingBackAndForth) {
    Bytes media(300'000, 0xFF);
    const Bytes sample = lengthPrefixed({hex("26 01 AF 08")}, 4);
    std::copy(sample.begin(), sample.end(), media.begin());
    std::copy(sample.begin(), sample.end(), media.end() - static_cast<std::ptrdiff_t>(sample.size()));
    Mp4Track track;
    track.codec = QVCodecIDHevc;
    track.record = hevcRecord({{hex("40 01")}});
    track.sample_size = static_cast<uint32_t>(sample.size());
    track.sample_count = 20'000;
    for (uint32_t i = 0; i < track.sample_count; ++i) {
        track.chunk_offsets.push_back(i % 2 == 0 ? 0 : static_cast<uint32_t>(media.size() - sample.size()));
    }
    const Read restless = read(mp4File({track}, media));
    EXPECT_LT(restless.accessUnits, 20'000U);
    EXPECT_THAT(restless.findings, Contains(HasSubstr("its samples are not in order; the rest is left out")));
}

#endif

// --- Access units ---

struct Analysed {
    AccessUnitReport report;
    AccessUnitDetails details;
    std::vector<std::string> findings;
};

Analysed analysed(const Bytes& bytes, const QVCodecParameters& parameters) {
    AccessUnit accessUnit;
    accessUnit.data = bytes.data();
    accessUnit.size = bytes.size();
    accessUnit.parameters = parameters;
    Analysed result;
    result.report = analyse(accessUnit);
    StreamDetails details(parameters.codecId, {});
    result.details = details.add(accessUnit, result.report);
    result.findings = describe(result.report.findings);
    return result;
}

// Empty units after lengths of one byte, and a last one that is not empty.
Bytes lengthsOf(size_t units) {
    return Bytes(units - 1, 0) + hex("02 26 01");
}

TEST(HostileAccessUnit, units) {
    const QVCodecParameters lengths = {QVCodecIDHevc, 0, 1};
    const Analysed units = analysed(lengthsOf(kMostUnits + 3), lengths);
    EXPECT_EQ(units.report.units.size(), kMostUnits);
    EXPECT_THAT(units.findings,
                ElementsAre("error at 0: the sample has 262147 NAL units; those after the first "
                            "262144 are left out"));
    EXPECT_THAT(analysed(lengthsOf(kMostUnits), lengths).findings, IsEmpty());
}

size_t describedIn(const AccessUnitDetails& details) {
    size_t count = 0;
    for (const UnitDetails& unit : details.units) {
        count += unit.sei ? unit.sei->messages.size() : 0;
    }
    return count;
}

TEST(HostileAccessUnit, messagesOfAUnit) {
    constexpr uint8_t kUserDataUnregistered = 5;
    const Analysed most =
        analysed(manySeiMessages(1024, kUserDataUnregistered, 16), byteStreamOf(QVCodecIDAvc));
    EXPECT_EQ(describedIn(most.details), 1024U);
    EXPECT_THAT(most.findings, IsEmpty());

    const Analysed more =
        analysed(manySeiMessages(1030, kUserDataUnregistered, 16), byteStreamOf(QVCodecIDAvc));
    EXPECT_EQ(describedIn(more.details), 1024U);
    EXPECT_EQ(more.details.units.at(2).sei->furtherMessages, (std::map<uint32_t, uint64_t>{{5, 6}}));
    EXPECT_EQ(more.details.units.at(2).sei->items.size(), 1024U);
    EXPECT_EQ(more.details.seiItems, 1030U);
    EXPECT_THAT(
        more.findings,
        ElementsAre(
            "error: the access unit has 1030 SEI messages; those after the first 1024 are counted and "
            "not described",
            "error: the library keeps 1030 SEI items of the access unit; those after the first 1024 "
            "are not listed"));
}

// The limit applies to each access unit.
TEST(HostileAccessUnit, messagesOfSeveralUnits) {
    const Bytes message = hex("06 05 10 00 11 22 33 44 55 66 77 88 99 AA BB CC DD EE FF 80");
    const Bytes bytes = byteStream(std::vector<Bytes>(1030, message));
    AccessUnit accessUnit;
    accessUnit.data = bytes.data();
    accessUnit.size = bytes.size();
    accessUnit.parameters = byteStreamOf(QVCodecIDAvc);
    StreamDetails details(QVCodecIDAvc, {});
    for (int i = 0; i < 2; ++i) {
        AccessUnitReport report = analyse(accessUnit);
        EXPECT_EQ(describedIn(details.add(accessUnit, report)), 1024U);
        EXPECT_EQ(report.findings.size(), 2U);
    }
}

TEST(HostileAccessUnit, newParameterSets) {
    const Analysed sets = analysed(manyDistinctSps(70), byteStreamOf(QVCodecIDAvc));
    size_t described = 0;
    for (const UnitDetails& unit : sets.details.units) {
        described += unit.newSps ? 1U : 0U;
    }
    EXPECT_EQ(described, kMostNewSps);
    EXPECT_THAT(sets.findings,
                ElementsAre("error: the access unit has more than 64 new sequence parameter sets; 6 that "
                            "follow are left out"));
    EXPECT_THAT(analysed(manyDistinctSps(64), byteStreamOf(QVCodecIDAvc)).findings, IsEmpty());
}

// The parameter sets that are remembered are limited for the whole stream.
TEST(HostileAccessUnit, parameterSetsOfALongStream) {
    StreamDetails details(QVCodecIDAvc, {});
    std::vector<std::string> findings;
    uint32_t content = 0;
    for (unsigned i = 0; i < 10; ++i) {
        std::vector<Bytes> units;
        for (unsigned k = 0; k < 40; ++k) {
            // Bytes after the parameter set belong to its NAL unit.
            Bytes unit = avcSpsUnit();
            unit.resize(4000, 0xFF);
            ++content;
            unit.push_back(static_cast<uint8_t>(0x80 | content >> 7));
            unit.push_back(static_cast<uint8_t>(0x80 | (content & 0x7F)));
            units.push_back(unit);
        }
        const Bytes bytes = byteStream(units);
        AccessUnit accessUnit;
        accessUnit.data = bytes.data();
        accessUnit.size = bytes.size();
        accessUnit.parameters = byteStreamOf(QVCodecIDAvc);
        AccessUnitReport report = analyse(accessUnit);
        details.add(accessUnit, report);
        for (const std::string& finding : describe(report.findings)) {
            findings.push_back(finding);
        }
    }
    EXPECT_THAT(findings, ElementsAre("note: more than 1048576 bytes of different sequence parameter sets: "
                                      "some repeated ones are counted as new from here on"));
}

TEST(HostileRecord, units) {
    StreamDetails details(QVCodecIDHevc, {});
    const ConfigurationDetails found =
        details.addConfiguration(hevcRecord({std::vector<Bytes>(1030, hex("40 01"))}));
    EXPECT_EQ(found.unitTypes.size(), 1024U);
    EXPECT_THAT(describe(found.findings),
                ElementsAre("error: the configuration record has 1030 NAL units; those after "
                            "the first 1024 are left out"));
}

TEST(HostileRecord, parameterSets) {
    std::vector<Bytes> sets;
    for (uint8_t i = 0; i < 70; ++i) {
        sets.push_back(hex("42 01 01 02 20 00 00 03 00 90 00 00 03 00 00 03 00 3C A0 0A 08 0B 9F") +
                       Bytes{i});
    }
    StreamDetails details(QVCodecIDHevc, {});
    const ConfigurationDetails found = details.addConfiguration(hevcRecord({sets}));
    EXPECT_EQ(found.parameterSets.size(), kMostNewSps);
    EXPECT_THAT(describe(found.findings),
                ElementsAre("error: the configuration record has more than 64 new sequence "
                            "parameter sets; 6 that follow are left out"));
}

// --- Outputs ---

class HostileOutput : public Hostile {};

// A record that is repeated with each of many small key pictures is written until the limit.
TEST_F(HostileOutput, recordThatIsRepeated) {
    const std::vector<Bytes> accessUnits(4000, lengthPrefixed({hex("26 01 AF 08")}, 4));
    StreamInfo info;
    info.parameters = {QVCodecIDHevc, 0, 4};
    info.configuration = hevcRecord({std::vector<Bytes>(1000, hex("40 01"))});
    const std::string out = path("out");
    ::testing::internal::CaptureStderr();
    StreamWriter writer(out, Framing::AnnexB);
    present(writer, info, accessUnits);
    try {
        writer.finish();
        FAIL() << "it is not the whole stream";
    } catch (const OutputError& error) {
        EXPECT_THAT(error.what(), HasSubstr("is not the whole stream"));
    }
    EXPECT_THAT(::testing::internal::GetCapturedStderr(),
                HasSubstr("1000 parameter sets of the container are not repeated: the output would become "
                          "far larger than the stream"));
    EXPECT_GT(std::filesystem::file_size(out), kMiB);
    EXPECT_LT(std::filesystem::file_size(out), 2 * kMiB);
}

// An ordinary record with each of many pictures is written each time.
TEST_F(HostileOutput, smallRecordWithEachPicture) {
    const std::vector<Bytes> accessUnits(4000, lengthPrefixed({hex("26 01 AF 08")}, 4));
    StreamInfo info;
    info.parameters = {QVCodecIDHevc, 0, 4};
    info.configuration = hevcRecord({{Bytes(30, 0x40)}, {Bytes(60, 0x42)}, {Bytes(10, 0x44)}});
    const std::string out = path("out");
    StreamWriter writer(out, Framing::AnnexB);
    present(writer, info, accessUnits);
    writer.finish();
    EXPECT_EQ(std::filesystem::file_size(out), 4000U * (3 * 4 + 100 + 8));
}

TEST_F(HostileOutput, filesOfItems) {
    const std::vector<Bytes> accessUnits(3000, hex("00 00 01 06 05 01 FF 80 00 00 01 41 9A"));
    StreamInfo info;
    info.parameters = byteStreamOf(QVCodecIDAvc);
    const std::string out = path("items");
    SeiExtractor extractor(out);
    present(extractor, info, accessUnits);
    const uint64_t bytes = 3000 * accessUnits[0].size();
    const uint64_t files = extractedFiles(bytes);
    ASSERT_LT(files, 3000U);
    try {
        extractor.finish();
        FAIL() << "not all items are there";
    } catch (const OutputError& error) {
        EXPECT_THAT(error.what(),
                    AllOf(HasSubstr(std::to_string(3000 - files) + " SEI items have no file"),
                          HasSubstr("too many for a stream of " + std::to_string(bytes) + " bytes")));
    }
    const auto written = std::distance(std::filesystem::directory_iterator(out), {});
    EXPECT_EQ(static_cast<uint64_t>(written), files + 1);  // the index
    const Bytes index = fileContent(path("items/index.json"));
    EXPECT_THAT(std::string(index.begin(), index.end()),
                HasSubstr("\"left_out\": " + std::to_string(3000 - files) + "}"));
}

// Items that are counted and not listed have no files either.
TEST_F(HostileOutput, itemsOfOneAccessUnit) {
    constexpr uint8_t kUserDataUnregistered = 5;
    StreamInfo info;
    info.parameters = byteStreamOf(QVCodecIDAvc);
    SeiExtractor extractor(path("items"));
    present(extractor, info, {manySeiMessages(1030, kUserDataUnregistered, 16)});
    EXPECT_THROW(extractor.finish(), OutputError);
    const Bytes index = fileContent(path("items/index.json"));
    EXPECT_THAT(std::string(index.begin(), index.end()), HasSubstr("\"left_out\": 6}"));
    const auto written = std::distance(std::filesystem::directory_iterator(path("items")), {});
    EXPECT_EQ(written, 1024 + 1);
}

}  // namespace
}  // namespace qv_test
