#include "CommandLine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ExitCode.h"
#include "InspectSupport.h"

namespace qv_test {
namespace {

using namespace qvinspect;
using ::testing::ElementsAre;

CommandLine parse(const std::vector<std::string>& words) {
    std::vector<const char*> argv = {"qvinspect"};
    for (const std::string& word : words) {
        argv.push_back(word.c_str());
    }
    return parseCommandLine(static_cast<int>(argv.size()), argv.data());
}

TEST(CommandLine, withoutOptions) {
    const CommandLine line = parse({"a", "-"});
    EXPECT_EQ(line.exitCode, std::nullopt);
    EXPECT_THAT(line.files, ElementsAre("a", "-"));
    EXPECT_EQ(line.input.codec, std::nullopt);
    EXPECT_EQ(line.input.format, InputFormat::Auto);
    EXPECT_EQ(line.level, std::nullopt);
    EXPECT_EQ(line.color, ColorUse::Auto);
    EXPECT_FALSE(line.strict);
    EXPECT_TRUE(line.checks.empty());
}

TEST(CommandLine, everyOption) {
    const CommandLine line = parse({"--codec",
                                    "h265",
                                    "--format",
                                    "container",
                                    "--stream",
                                    "0",
                                    "--frame-rate",
                                    "29.97",
                                    "--start",
                                    "0",
                                    "--duration",
                                    "1.5",
                                    "--limit",
                                    "7",
                                    "--level",
                                    "sei",
                                    "--type",
                                    "39",
                                    "--type",
                                    "40",
                                    "--sei",
                                    "137",
                                    "--t35",
                                    "B5:0031",
                                    "--t35",
                                    "0x26",
                                    "--key-only",
                                    "--errors-only",
                                    "--request",
                                    "5",
                                    "--json",
                                    "j",
                                    "--ndjson",
                                    "n",
                                    "--csv",
                                    "c",
                                    "--html",
                                    "h",
                                    "--to-annexb",
                                    "a",
                                    "--to-lengths",
                                    "l",
                                    "--drop-sei",
                                    "4,5",
                                    "--drop-sei=137",
                                    "--keep-sei",
                                    "4294967295",
                                    "--drop-t35",
                                    "26:0004,b5",
                                    "--extract-sei",
                                    "s",
                                    "--color",
                                    "never",
                                    "--stamp",
                                    "--check",
                                    "no-errors",
                                    "--check",
                                    "max-key-interval=2s",
                                    "--strict",
                                    "--",
                                    "-file"});
    EXPECT_EQ(line.exitCode, std::nullopt);
    EXPECT_EQ(line.input.codec, QVCodecIDHevc);
    EXPECT_EQ(line.input.format, InputFormat::Container);
    EXPECT_EQ(line.input.stream, 0U);
    EXPECT_EQ(line.input.frameRate, 29.97);
    EXPECT_EQ(line.input.start, 0.0);
    EXPECT_EQ(line.input.duration, 1.5);
    EXPECT_EQ(line.input.mostAccessUnits, 7U);
    EXPECT_EQ(line.level, Level::Sei);
    EXPECT_THAT(line.filter.unitTypes, ElementsAre(39, 40));
    EXPECT_THAT(line.filter.seiTypes, ElementsAre(137));
    ASSERT_EQ(line.filter.t35.size(), 2U);
    EXPECT_EQ(line.filter.t35[0].itu_t_t35_country_code, 0xB5);
    EXPECT_EQ(line.filter.t35[0].itu_t_t35_terminal_provider_code, 0x0031);
    EXPECT_EQ(line.filter.t35[1].itu_t_t35_country_code, 0x26);
    EXPECT_EQ(line.filter.t35[1].itu_t_t35_terminal_provider_code, std::nullopt);
    EXPECT_TRUE(line.filter.keyOnly);
    EXPECT_TRUE(line.filter.errorsOnly);
    EXPECT_THAT(line.requested, ElementsAre(5));
    EXPECT_EQ(
        line.json + line.ndjson + line.csv + line.html + line.toAnnexB + line.toLengths + line.extractSei,
        "jnchals");
    EXPECT_THAT(line.removal.droppedTypes, ElementsAre(4, 5, 137));
    EXPECT_THAT(line.removal.keptTypes, ElementsAre(UINT32_MAX));
    ASSERT_EQ(line.removal.droppedT35.size(), 2U);
    EXPECT_EQ(line.removal.droppedT35[0].itu_t_t35_country_code, 0x26);
    EXPECT_EQ(line.removal.droppedT35[0].itu_t_t35_terminal_provider_code, 0x0004);
    EXPECT_EQ(line.removal.droppedT35[1].itu_t_t35_terminal_provider_code, std::nullopt);
    EXPECT_EQ(line.color, ColorUse::Never);
    EXPECT_TRUE(line.stamp);
    ASSERT_EQ(line.checks.size(), 2U);
    EXPECT_EQ(line.checks[1].text, "max-key-interval=2s");
    EXPECT_TRUE(line.strict);
    EXPECT_THAT(line.files, ElementsAre("-file"));
}

struct WrongLine {
    std::vector<std::string> words;
    std::string reason;
};

// One line says what is wrong, one what to do next.
TEST(CommandLine, wrongLines) {
    const TemporaryFolder folder;
    const std::string file = folder.write("x", hex("00"));
    const std::string same = folder.path() / "." / "x";
    const std::string made = folder.path() / "made";
    const std::vector<WrongLine> lines = {
        {{}, "no FILE was named; - is standard input"},
        {{"-", "a", "-"}, "standard input can be inspected only once"},
        {{"--nothing", "x"}, "The following argument was not expected: --nothing"},
        {{"x", "--codec"}, "--codec: 1 required CODEC missing"},
        {{"--codec", "h263", "x"}, "--codec: \"h263\" is none of auto, h264, h265"},
        {{"--format", "lp3", "x"}, "--format: \"lp3\" is none of auto, annexb, lp1, lp2, lp4, container"},
        {{"--level", "\x1b[1m", "x"},
         "--level: \"\\x1B[1m\" is none of summary, samples, nalus, sei, fields, elements"},
        {{"--color", "", "x"}, "--color: \"\" is none of auto, always, never"},
        {{"--stream", "one", "x"}, "--stream: \"one\" is no number from 0 on"},
        {{"--stream", "99999999999", "x"}, "--stream: \"99999999999\" is no number from 0 on"},
        {{"--limit", "0", "x"}, "--limit: \"0\" is no number from 1 on"},
        {{"--limit", "-3", "x"}, "--limit: \"-3\" is no number from 1 on"},
        {{"--start", "-1", "x"}, "--start: \"-1\" is no number from 0 on"},
        {{"--start", "nan", "x"}, "--start: \"nan\" is no number from 0 on"},
        {{"--duration", "0", "x"}, "--duration: \"0\" is no number above 0"},
        {{"--frame-rate", "inf", "x"}, "--frame-rate: \"inf\" is no number above 0"},
        {{"--type", "64", "x"}, "--type: \"64\" is no number from 0 to 63"},
        {{"--sei", "0x5", "x"}, "--sei: \"0x5\" is no number from 0 on"},
        {{"--request", "4294967296", "x"}, "--request: \"4294967296\" is no number from 0 on"},
        {{"--t35", "b5:", "x"},
         "--t35: \"b5:\" is not a code; write the country in hexadecimal, as b5, or with the provider, as "
         "b5:0031"},
        {{"--rewrite", "--drop-sei", "4,,5", "x"},
         "--drop-sei: \"\" is no payloadType; write numbers, as 4 or 4,5"},
        {{"--rewrite", "--keep-sei", "0x4", "x"},
         "--keep-sei: \"0x4\" is no payloadType; write numbers, as 4 or 4,5"},
        {{"--rewrite", "--drop-sei", "4294967296", "x"},
         "--drop-sei: \"4294967296\" is no payloadType; write numbers, as 4 or 4,5"},
        {{"--rewrite", "--drop-t35", "26:0004,", "x"},
         "--drop-t35: \"\" is not a code; write the country in hexadecimal, as b5, or with the provider, as "
         "b5:0031"},
        {{"--drop-sei", "4", "--elements", "x"},
         "--drop-sei, --keep-sei and --drop-t35 change the stream of --to-annexb, --to-lengths or --rewrite; "
         "name one of them"},
        {{"--check", "captions=1", "x"}, "--check captions=1: captions takes no value"},
        {{"--json", "-", "--html", "-", "x"},
         "only one output can go to standard output; name a file for the others"},
        {{"--to-annexb", "a", "x", "y"},
         "--to-annexb, --to-lengths, --rewrite and --extract-sei take one FILE at a time"},
        {{"--to-annexb", same, file},
         "--to-annexb " + same + " and the input " + file + " are the same file; name another file"},
        {{"--json", made, "--csv", made, "x"},
         "--json " + made + " and --csv " + made + " are the same file; name another file"},
    };
    for (const WrongLine& line : lines) {
        ::testing::internal::CaptureStderr();
        const CommandLine parsed = parse(line.words);
        EXPECT_EQ(::testing::internal::GetCapturedStderr(),
                  "qvinspect: " + line.reason + "\nqvinspect --help shows all options.\n");
        EXPECT_EQ(parsed.exitCode, kExitUsage);
    }
    EXPECT_FALSE(std::filesystem::exists(made));
}

TEST(CommandLine, outputsThatMayBeTheSame) {
    EXPECT_EQ(parse({"--json", "/dev/null", "--csv", "/dev/null", "x"}).exitCode, std::nullopt);
    EXPECT_EQ(parse({"--json", "-", "-"}).exitCode, std::nullopt);
}

}  // namespace
}  // namespace qv_test
