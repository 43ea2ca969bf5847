// The program as a user runs it.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "AvcPictures.h"
#include "Presenters.h"
#include "ProgramSupport.h"
#include "ReportSupport.h"
#include "report/JsonSchema.h"

namespace qv_test {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

// --- The command line ---

TEST_F(Program, help) {
    const Outcome outcome = inspect({"--help"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out, HasSubstr("--codec"));
    EXPECT_EQ(outcome.err, "");
}

TEST_F(Program, wrongCommandLines) {
    for (const std::vector<std::string>& line : std::vector<std::vector<std::string>>{
             {}, {"--codec", "h264"}, {"--codec", "h263", "x"}, {"--codec"}, {"--nothing", "x"}}) {
        const Outcome outcome = inspect(line);
        EXPECT_EQ(outcome.exitCode, 1) << ::testing::PrintToString(line);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.err, HasSubstr("--help"));
    }
}

// --- Files that cannot be inspected ---

TEST_F(Program, missingFile) {
    expectRefused(inspect({"nothing.h264"}), "nothing.h264", "No such file or directory");
}

TEST_F(Program, folderForAFile) {
    expectRefused(inspect({"."}), ".", "is a directory");
}

TEST_F(Program, emptyFile) {
    write("empty.h264", {});
    expectRefused(inspect({"empty.h264"}), "empty.h264", "is empty");
}

TEST_F(Program, fileThatCannotBeRead) {
    write("secret.h264", rawStream());
    std::filesystem::permissions(folder() + "/secret.h264", std::filesystem::perms::none);
    if (access((folder() + "/secret.h264").c_str(), R_OK) == 0) {
        GTEST_SKIP() << "this user may read any file";
    }
    expectRefused(inspect({"secret.h264"}), "secret.h264", "Permission denied");
}

TEST_F(Program, filesWithoutEitherCodec) {
    const std::string text = "The quick brown fox jumps over the lazy dog.\n";
    write("text", Bytes(text.begin(), text.end()));
    write("zeros", Bytes(100000, 0));
    Bytes noise(100000);
    for (size_t i = 0; i < noise.size(); ++i) {
        noise[i] = static_cast<uint8_t>(i * i * 7 + i / 3);
    }
    write("noise", noise);
    write("startcode", hex("00 00 00 01"));
    for (const char* name : {"text", "zeros", "noise", "startcode"}) {
        expectRefused(inspect({name}), name, "--codec h264 or --codec h265");
    }
}

TEST_F(Program, codecSaidButNoStartCode) {
    write("zeros", Bytes(100000, 0));
    expectRefused(inspect({"--codec", "h264", "zeros"}), "zeros", "no start code (00 00 01) in 100000 bytes");
}

TEST_F(Program, bothCodecs) {
    write("both", byteStream({avcSpsUnit(), avcPpsUnit()}) + rawStream());
    expectRefused(inspect({"both"}), "both", "could be H.264 or H.265; choose with --codec");
    EXPECT_EQ(inspect({"--codec", "h265", "both"}).exitCode, 0);
}

TEST_F(Program, otherFilesAreStillInspected) {
    write("good.h265", rawStream());
    const Outcome outcome = inspect({"nothing", "good.h265", ".", "good.h265"});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 2) << outcome.err;
    const size_t first = outcome.out.find("Summary of good.h265");
    ASSERT_NE(first, std::string::npos);
    EXPECT_NE(outcome.out.find("Summary of good.h265", first + 1), std::string::npos);
}

// --- Names ---

TEST_F(Program, unusualNames) {
    const std::pair<std::string, std::string> names[] = {
        {"with blanks .h265", "with blanks .h265"},
        {"line\nfeed", "line\\x0Afeed"},
        {"not\xFFtext", "not\\xFFtext"},
        {"colon:file:x", "colon:file:x"},
        {"per%cent%d{}", "per%cent%d{}"},
        {"\xE8\xA7\x86\xE9\xA2\x91.h265", "\xE8\xA7\x86\xE9\xA2\x91.h265"},
    };
    for (const auto& [name, shown] : names) {
        write(name, rawStream());
        expectListed(inspect({name}), shown, "access units      4\n");
    }
    write("-dash", rawStream());
    expectListed(inspect({"--", "-dash"}), "-dash", "access units      4\n");
}

// --- Raw streams ---

TEST_F(Program, rawStream) {
    write("x", rawStream());
    expectListed(inspect({"x"}), "x", "key access units  1\n");
}

TEST_F(Program, leadingBytes) {
    write("x", hex("12 34 56") + rawStream());
    const Outcome outcome = inspect({"x"});
    expectListed(outcome, "x", "errors            0\n");
    EXPECT_THAT(outcome.out, HasSubstr("note at 0: 3 bytes before the first start code are left out\n"));
}

TEST_F(Program, forbiddenZeroBit) {
    write("x", rawStream() + hex("00 00 01 82 01 02"));
    const Outcome outcome = inspect({"x"});
    expectListed(outcome, "x", "errors            1\n");
    EXPECT_THAT(outcome.out, HasSubstr(std::to_string(rawStream().size() + 3) +
                                       "           3     -  error: forbidden_zero_bit is set\n"));
}

TEST_F(Program, codecSaid) {
    write("x", rawStream());
    const Outcome outcome = inspect({"--codec", "h265", "x"});
    expectListed(outcome, "x", "Stream   H.265, ");
    expectListed(inspect({"--codec", "h264", "x"}), "x", "Stream   H.264, ");
}

// --- The outputs ---

TEST_F(Program, readerThatGoesAway) {
    Bytes stream;
    for (int i = 0; i < 300; ++i) {
        stream = stream + rawStream();
    }
    write("long.h265", stream);
    for (const auto handler : {SIG_DFL, SIG_IGN}) {  // a child inherits a signal that is ignored
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        close(ends[0]);
        const std::string errPath = folder() + "/err";
        const int err = openForWriting(errPath);
        const auto before = signal(SIGPIPE, handler);
        EXPECT_EQ(run({"long.h265"}, {kNoInput, ends[1], err}, folder()), 0);
        signal(SIGPIPE, before);
        close(ends[1]);
        close(err);
        EXPECT_EQ(textOf(errPath), "");
    }
}

TEST_F(Program, outputThatIsFull) {
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    if (full < 0) {
        GTEST_SKIP() << "there is no /dev/full here";
    }
    write("x", rawStream());
    const std::string errPath = folder() + "/err";
    const int err = openForWriting(errPath);
    EXPECT_EQ(run({"x"}, {kNoInput, full, err}, folder()), 5);
    close(full);
    close(err);
    EXPECT_EQ(textOf(errPath),
              "qvinspect: standard output cannot be written: No space left on device; it is incomplete\n");
}

TEST_F(Program, reportsForPrograms) {
    write("x.h265", rawStream());
    const Outcome outcome = inspect({"--json", "a.json", "--ndjson", "a.ndjson", "--csv", "a.csv", "x.h265"});
    expectListed(outcome, "x.h265", "access units      4\n");
    EXPECT_EQ(nlohmann::json::parse(textOf(folder() + "/a.json")).at("level"), "nalus");
    EXPECT_EQ(parseLines(textOf(folder() + "/a.ndjson")).size(), 6U);
    EXPECT_THAT(textOf(folder() + "/a.csv"),
                HasSubstr("\r\nx.h265,1,0,true,4,24,32,VPS_NUT,typed,false,,,0\r\n"));
}

TEST_F(Program, standardOutputIsForOneThing) {
    write("x", rawStream());
    const nlohmann::json document = nlohmann::json::parse(inspect({"--json", "-", "x", "missing"}).out);
    EXPECT_EQ(document.at("files").size(), 2U);
    EXPECT_EQ(parseLines(inspect({"--ndjson", "-", "x"}).out).size(), 6U);
    EXPECT_THAT(inspect({"--csv", "-", "x"}).out, StartsWith("file,access_unit,"));
}

TEST_F(Program, levelOfJsonIsEverythingUnlessSaid) {
    write("x", rawStream());
    EXPECT_EQ(nlohmann::json::parse(inspect({"--level", "sei", "--json", "-", "x"}).out).at("level"), "sei");
    qvinspect::CommandLine line;
    line.json = folder() + "/json";
    line.csv = "-";  // not the listing
    for (const auto& presenter : qvinspect::makePresenters(line)) {
        presenter->finish();
    }
    EXPECT_EQ(nlohmann::json::parse(textOf(line.json)).at("level"), "fields");
}

TEST_F(Program, stamp) {
    write("x", rawStream());
    const std::string path = folder() + "/x";
    const std::string first = inspect({"--json", "-", path}).out;
    EXPECT_EQ(first, inspect({"--json", "-", path}).out);
    EXPECT_THAT(first, Not(HasSubstr(folder())));
    EXPECT_THAT(first, Not(HasSubstr("\"date\"")));
    const auto stamped = nlohmann::json::parse(inspect({"--stamp", "--json", "-", path}).out);
    EXPECT_THAT(stamped.at("date").get<std::string>(),
                ::testing::MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z"));
    EXPECT_EQ(stamped.at("files").at(0).at("path"), path);
}

TEST_F(Program, schema) {
    const Outcome outcome = inspect({"--schema"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, qvinspect::kJsonSchema);
    EXPECT_EQ(outcome.err, "");
}

TEST_F(Program, reportsThatCannotBeWritten) {
    write("x", rawStream());
    for (const char* option : {"--json", "--ndjson", "--csv"}) {
        const Outcome full = inspect({option, "/dev/full", "x"});
        EXPECT_EQ(full.exitCode, 5);
        EXPECT_EQ(full.err,
                  "qvinspect: /dev/full cannot be written: No space left on device; it is incomplete\n");
        const Outcome nowhere = inspect({option, "no/such/folder", "x"});
        EXPECT_EQ(nowhere.exitCode, 5);
        EXPECT_THAT(nowhere.err,
                    HasSubstr("no/such/folder cannot be opened for writing: No such file or directory"));
    }
}

// --- Containers ---

#if QVINSPECT_HAS_LIBAVFORMAT

TEST_F(Program, mp4) {
    const Outcome outcome = inspect({sample("avc_avc1.mp4")});
    expectListed(outcome, "avc_avc1.mp4", "access units      25\n");
    EXPECT_THAT(outcome.out, HasSubstr(", 4-byte length fields\n"));
    EXPECT_THAT(outcome.out, HasSubstr("AU 2           0.160000         847\n"));
}

TEST_F(Program, transportStream) {
    const Outcome outcome = inspect({sample("avc.ts")});
    expectListed(outcome, "avc.ts", "access units      25\n");
    EXPECT_THAT(outcome.out, HasSubstr(", Annex B start codes\n"));
}

TEST_F(Program, containerOfUnusualName) {
    for (const char* name : {"with blanks", "colon:name.mp4", "http:x", "line\nfeed", "not\xFFtext"}) {
        write(name, mp4());
        EXPECT_EQ(inspect({name}).exitCode, 0) << name;
    }
    write("-dash.mp4", mp4());
    EXPECT_EQ(inspect({"--", "-dash.mp4"}).exitCode, 0);
}

TEST_F(Program, containerWithoutThatCodec) {
    write("x.mp4", mp4());
    expectRefused(inspect({"--codec", "h265", "x.mp4"}), "x.mp4", "has no H.265 video");
    expectListed(inspect({"--codec", "h264", "x.mp4"}), "x.mp4", "access units      25\n");
}

// The index of this file is at its end.
TEST_F(Program, mp4WithoutItsIndex) {
    Bytes cut = mp4();
    cut.resize(cut.size() / 2);
    write("cut.mp4", cut);
    expectRefused(inspect({"cut.mp4"}), "cut.mp4", "MP4 or QuickTime file: cannot be opened");
}

TEST_F(Program, containersCutAnywhere) {
    for (const char* name : {"avc_avc1.mp4", "avc.ts"}) {
        const Bytes whole = fileContent(sampleFolder() / name);
        for (size_t size = 1; size < whole.size(); size += 397) {
            write("cut", Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
            const Outcome outcome = inspect({"cut"});
            EXPECT_TRUE(outcome.exitCode == 0 || outcome.exitCode == 2) << name << " cut to " << size;
            EXPECT_EQ(outcome.exitCode == 0, outcome.err.empty()) << outcome.err;
        }
    }
}

// A length field overwritten in the first sample: the samples after it are still listed.
TEST_F(Program, brokenSample) {
    Bytes broken = mp4();
    const Bytes head = hex("00 00 02 AC 06 05");  // the SEI unit of 684 bytes that begins the first sample
    const auto at = std::search(broken.begin(), broken.end(), head.begin(), head.end());
    ASSERT_NE(at, broken.end());
    *at = 0x7F;
    write("broken.mp4", broken);
    const Outcome outcome = inspect({"broken.mp4"});
    expectListed(outcome, "broken.mp4", "access units      25\n");
    EXPECT_THAT(outcome.out, HasSubstr("error at 0: the length field here extends past the end"));
    EXPECT_THAT(outcome.out, HasSubstr("errors            1\n"));
}

#else

TEST_F(Program, containerInABuildWithoutThem) {
    expectRefused(inspect({sample("avc_avc1.mp4")}), sample("avc_avc1.mp4"),
                  "MP4 or QuickTime file: this qvinspect was built without libavformat");
    expectRefused(inspect({sample("avc.ts")}), sample("avc.ts"),
                  "MPEG transport stream file: this qvinspect was built without libavformat");
}

#endif

}  // namespace
}  // namespace qv_test
