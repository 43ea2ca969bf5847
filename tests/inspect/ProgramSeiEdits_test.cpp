// --drop-sei, --keep-sei and --drop-t35.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "ProgramSupport.h"
#include "bitstream/avc/NalUnitType.h"
#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/units/NalUnits.h"

namespace qv_test {
namespace {

using ::testing::HasSubstr;

// An H.264 stream: SEI units with types 0 and 1, 4 of two owners, 5 alone, 6 and a cut message of type 1, and
// no message.
Bytes seiStream() {
    return {0, 0, 0, 1, 0x09, 0xF0,                                                         //
            0, 0, 0, 1, 0x06, 0x00, 0x01, 0x80, 0x01, 0x01, 0x11, 0x80,                     //
            0, 0, 0, 1, 0x06, 0x04, 0x03, 0x26, 0x00, 0x04, 0x04, 0x03, 0xB5, 0, 49, 0x80,  //
            0, 0, 0, 1, 0x06, 0x05, 0x01, 0x11, 0x80,                                       //
            0, 0, 0, 1, 0x06, 0x06, 0x01, 0xC4, 0x01, 0x09, 0x22,                           //
            0, 0, 0, 1, 0x06, 0x80,                                                         //
            0, 0, 0, 1, 0x65, 0x88, 0x84, 0x00, 0x33};
}

std::string textOf(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

// The units of a stream with start codes; SEI units apart when that is asked for.
std::vector<std::string> unitsOf(const std::string& stream, qv::Codec codec, bool ofSei) {
    const qv::Bytes bytes = {reinterpret_cast<const uint8_t*>(stream.data()), stream.size()};
    std::vector<std::string> units;
    for (const qv::NalUnit& unit : qv::NalUnits(bytes, qv::Framing::StartCodes, codec)) {
        const uint32_t type = unit.nal_unit_type;
        if (ofSei == (codec == qv::Codec::Avc ? type == qv::avc::kNalSei : qv::hevc::isSei(type))) {
            units.emplace_back(unit.bytes.begin(), unit.bytes.end());
        }
    }
    return units;
}

class ProgramSeiEdits : public Program {
protected:
    ProgramSeiEdits() { write("sei.h264", seiStream()); }
};

struct Edit {
    std::vector<std::string> options;
    size_t messages;
    size_t units;
    std::vector<const char*> left;  // SEI units
};

TEST_F(ProgramSeiEdits, messagesAreDropped) {
    const char* const kTimes = "06 00 01 80 01 01 11 80";
    const char* const kOwners = "06 04 03 26 00 04 04 03 B5 00 31 80";
    const char* const kUser = "06 05 01 11 80";
    const char* const kCut = "06 06 01 C4 01 09 22";
    const char* const kNone = "06 80";
    const Edit kCases[] = {
        {{"--drop-sei", "5"}, 1, 1, {kTimes, kOwners, kCut, kNone}},
        {{"--drop-sei", "4,5"}, 3, 2, {kTimes, kCut, kNone}},
        {{"--drop-sei", "4", "--drop-sei=5"}, 3, 2, {kTimes, kCut, kNone}},
        {{"--drop-sei", "0"}, 1, 0, {"06 01 01 11 80", kOwners, kUser, kCut, kNone}},
        {{"--drop-sei", "1"}, 2, 0, {"06 00 01 80 80", kOwners, kUser, "06 06 01 C4 80", kNone}},
        {{"--drop-sei", "6"}, 1, 0, {kTimes, kOwners, kUser, "06 01 09 22", kNone}},
        {{"--drop-sei", "137"}, 0, 0, {kTimes, kOwners, kUser, kCut, kNone}},
        {{"--drop-t35", "26:0004"}, 1, 0, {kTimes, "06 04 03 B5 00 31 80", kUser, kCut, kNone}},
        {{"--drop-t35", "26:0004,B5"}, 2, 1, {kTimes, kUser, kCut, kNone}},
        {{"--keep-sei", "0,1"}, 4, 2, {kTimes, "06 01 09 22", kNone}},
        {{"--keep-sei", "0", "--keep-sei", "4", "--drop-t35", "b5:0031"},
         5,
         2,
         {"06 00 01 80 80", "06 04 03 26 00 04 80", kNone}},
    };
    for (const Edit& row : kCases) {
        SCOPED_TRACE(::testing::PrintToString(row.options));
        std::string expected = textOf(hex("00 00 00 01 09 F0"));
        for (const char* const unit : row.left) {
            expected += textOf(hex("00 00 00 01") + hex(unit));
        }
        expected += textOf(hex("00 00 00 01 65 88 84 00 33"));
        std::vector<std::string> arguments = {"--to-annexb", "-", "sei.h264"};
        arguments.insert(arguments.end(), row.options.begin(), row.options.end());
        const Outcome outcome = inspect(arguments);
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_TRUE(outcome.out == expected);
        EXPECT_EQ(outcome.err, "qvinspect: standard output: " + std::to_string(row.messages) +
                                   " SEI message" + (row.messages == 1 ? "" : "s") + " and " +
                                   std::to_string(row.units) + " SEI unit" + (row.units == 1 ? "" : "s") +
                                   " are dropped\n");
        arguments.erase(arguments.begin(), arguments.begin() + 2);
        arguments.insert(arguments.begin(), "--rewrite");
        const Outcome rewritten = inspect(arguments);
        EXPECT_TRUE(rewritten.out == expected);
        EXPECT_THAT(rewritten.err, HasSubstr("dropped\nqvinspect: standard output: "));
    }
}

TEST_F(ProgramSeiEdits, streamsWithLengths) {
    const Outcome outcome = inspect({"--to-lengths", "-", "--drop-sei", "0,4,5,6", "sei.h264"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_TRUE(outcome.out ==
                textOf(hex("00 00 00 02 09 F0 00 00 00 05 06 01 01 11 80 00 00 00 04 06 01 09 22 "
                           "00 00 00 02 06 80 00 00 00 05 65 88 84 00 33")));
}

TEST_F(ProgramSeiEdits, allElseStaysAsItIs) {
    const std::pair<const char*, qv::Codec> kSamples[] = {{"avc.ts", qv::Codec::Avc},
                                                          {"avc_avc1.mp4", qv::Codec::Avc},
                                                          {"hevc_hdr10.h265", qv::Codec::Hevc},
                                                          {"hevc_hdr_vivid.mp4", qv::Codec::Hevc}};
    for (const auto& [name, codec] : kSamples) {
        SCOPED_TRACE(name);
        const std::string whole = inspect({"--to-annexb", "-", sample(name)}).out;
        const std::vector<std::string> sei = unitsOf(whole, codec, true);
        ASSERT_FALSE(sei.empty());
        const Outcome none = inspect({"--to-annexb", "-", "--keep-sei", "4294967295", sample(name)});
        EXPECT_TRUE(unitsOf(none.out, codec, false) == unitsOf(whole, codec, false));
        EXPECT_TRUE(unitsOf(none.out, codec, true).empty());
        const Outcome all = inspect({"--to-annexb", "-", "--drop-sei", "4294967295", sample(name)});
        EXPECT_TRUE(all.out == whole);
        EXPECT_EQ(all.err, "qvinspect: standard output: 0 SEI messages and 0 SEI units are dropped\n");
    }
}

// The hashes of the pictures that ffmpeg decodes, in output order.
std::vector<std::string> picturesOf(const std::string& file, const char* format, const std::string& folder) {
    const Outcome outcome = runProgram({"ffmpeg", "-nostdin", "-v", "error", "-f", format, "-i", file, "-an",
                                        "-fps_mode", "passthrough", "-f", "framemd5", "-"},
                                       folder);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    std::vector<std::string> hashes;
    std::istringstream lines(outcome.out);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind('#', 0) == std::string::npos) {
            hashes.push_back(line.substr(line.rfind(' ')));
        }
    }
    return hashes;
}

TEST_F(ProgramSeiEdits, thePicturesAreTheSame) {
    const struct {
        const char* name;
        const char* format;
        std::vector<std::string> options;
    } kCases[] = {
        {"avc.ts", "h264", {"--drop-sei", "4,5"}},
        {"avc.ts", "h264", {"--keep-sei", "0,1"}},
        {"avc_avc1.mp4", "h264", {"--keep-sei", "4294967295"}},
        {"hevc_hdr10.h265", "hevc", {"--drop-sei", "137,144"}},
        {"hevc_hdr10.h265", "hevc", {"--keep-sei", "4294967295"}},
        {"hevc_hdr_vivid.mp4", "hevc", {"--drop-t35", "26:0004"}},
    };
    for (const auto& [name, format, options] : kCases) {
        SCOPED_TRACE(name + ::testing::PrintToString(options));
        const std::string before = folder() + "/before";
        const std::string after = folder() + "/after";
        ASSERT_EQ(inspect({"--to-annexb", before, sample(name)}).exitCode, 0);
        std::vector<std::string> arguments = {"--to-annexb", after, sample(name)};
        arguments.insert(arguments.end(), options.begin(), options.end());
        ASSERT_EQ(inspect(arguments).exitCode, 0);
        EXPECT_FALSE(fileContent(before) == fileContent(after));
        const std::vector<std::string> pictures = picturesOf(before, format, folder());
        EXPECT_GT(pictures.size(), 1U);
        EXPECT_EQ(picturesOf(after, format, folder()), pictures);
    }
}

}  // namespace
}  // namespace qv_test
