// --elements, --level elements and --rewrite.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "ProgramSupport.h"

namespace qv_test {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::StartsWith;

std::vector<json> linesOf(const std::string& text) {
    std::vector<json> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(json::parse(line));
    }
    return lines;
}

// An H.264 stream: a set with no fault, one that ends within its elements, a PPS, a
// delimiter, damaged filler data, SEI and a slice.
Bytes oddStream() {
    return {0, 0, 0, 1,    0x09, 0xF0,                          //
            0, 0, 1, 0x67, 0x42, 0x00, 0x0A, 0xF8, 0x41, 0xA2,  //
            0, 0, 1, 0x67, 0x64, 0x00, 0x0A, 0x80,              //
            0, 0, 1, 0x68, 0xCE, 0x38, 0x80,                    //
            0, 0, 1, 0x0C, 0xFF, 0x00, 0x00, 0x03, 0x80,        //
            0, 0, 1, 0x06, 0x05, 0x01, 0x11, 0x80,              //
            0, 0, 1, 0x65, 0x88, 0x84, 0x00, 0x33};
}

class ProgramElements : public Program {
protected:
    ProgramElements() { write("odd.h264", oddStream()); }

    std::vector<json> elements(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "--elements");
        const Outcome outcome = inspect(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        return linesOf(outcome.out);
    }
};

TEST_F(ProgramElements, everyUnitHasALine) {
    const Outcome outcome = inspect({"--elements", "odd.h264"});
    EXPECT_THAT(outcome.out,
                StartsWith(R"({"au":1,"unit":1,"offset":4,"length":2,"type":9,)"
                           R"("structure":"access_unit_delimiter_rbsp","elements":[)"
                           R"(["forbidden_zero_bit",0,1,0],["nal_ref_idc",1,2,0],["nal_unit_type",3,5,9],)"
                           R"(["primary_pic_type",8,3,7],["rbsp_stop_one_bit",11,1,1],)"
                           R"(["rbsp_alignment_zero_bit",12,1,0],["rbsp_alignment_zero_bit",13,1,0],)"
                           R"(["rbsp_alignment_zero_bit",14,1,0],["rbsp_alignment_zero_bit",15,1,0]],)"
                           R"("fault":null})"
                           "\n"));
    const std::vector<json> lines = linesOf(outcome.out);
    ASSERT_EQ(lines.size(), 7U);
    const int types[] = {9, 7, 7, 8, 12, 6, 5};
    for (size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(lines[i]["au"], 1);
        EXPECT_EQ(lines[i]["unit"], i + 1);
        EXPECT_EQ(lines[i]["type"], types[i]);
    }
    EXPECT_EQ(lines[1]["elements"][3], json::parse(R"(["profile_idc",8,8,66])"));
    EXPECT_EQ(lines[1]["structure"], "seq_parameter_set_rbsp");
}

TEST_F(ProgramElements, aFaultNamesTheElement) {
    const json fault = elements({"odd.h264"})[2]["fault"];
    EXPECT_EQ(fault["element"], "seq_parameter_set_id");
    EXPECT_EQ(fault["bit"], 32);
    EXPECT_EQ(fault["text"],
              "seq_parameter_set_id in seq_parameter_set_data() (7.3.2.1.1) at bit 32: the data ends");
}

TEST_F(ProgramElements, ofSlicesTheHeaderIsShownOfMessagesEverything) {
    const std::vector<json> lines = elements({"odd.h264"});
    EXPECT_EQ(lines[5]["structure"], "sei_rbsp");
    EXPECT_EQ(lines[5]["elements"].size(), 14U);
    EXPECT_EQ(lines[6]["structure"], "slice_layer_without_partitioning_rbsp");
    EXPECT_EQ(lines[6]["elements"].size(), 3U);
}

TEST_F(ProgramElements, elementsFollowEachOtherBitByBit) {
    for (const char* name : {"hevc_hdr10.h265", "avc.ts"}) {
        for (const json& line : elements({sample(name)})) {
            uint64_t next = 0;
            for (const json& element : line["elements"]) {
                EXPECT_EQ(element[1], next) << line;
                next += element[2].get<uint64_t>();
            }
            EXPECT_TRUE(line["fault"].is_null()) << line["fault"];
        }
    }
}

TEST_F(ProgramElements, unitsOfARecordAreOfAccessUnit0) {
    const std::vector<json> lines = elements({"--limit", "1", sample("avc_avc1.mp4")});
    ASSERT_GE(lines.size(), 3U);
    EXPECT_EQ(lines[0]["au"], 0);
    EXPECT_EQ(lines[0]["offset"], 8);
    EXPECT_EQ(lines[0]["type"], 7);
    EXPECT_EQ(lines[1]["au"], 0);
    EXPECT_EQ(lines[1]["unit"], 2);
    EXPECT_EQ(lines[1]["type"], 8);
    EXPECT_EQ(lines[2]["au"], 1);
    EXPECT_EQ(lines[2]["unit"], 1);
}

TEST_F(ProgramElements, filtersNarrowTheLines) {
    const std::vector<json> lines = elements({"--type", "8", "odd.h264"});
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0]["unit"], 4);
    EXPECT_TRUE(lines[0]["fault"].is_null()) << "the parameter set before it counts, shown or not";
}

TEST_F(ProgramElements, severalInputsAreNumbered) {
    write("second.h264", oddStream());
    const Outcome outcome = inspect({"--elements", "odd.h264", "missing", "second.h264"});
    EXPECT_EQ(outcome.exitCode, 2);
    const std::vector<json> lines = linesOf(outcome.out);
    ASSERT_EQ(lines.size(), 14U);
    EXPECT_EQ(lines[0]["file_index"], 0);
    EXPECT_EQ(lines[13]["file_index"], 2);
}

TEST_F(ProgramElements, theListingShowsBitsValuesAndMeanings) {
    const Outcome outcome = inspect({"--level", "elements", "odd.h264"});
    EXPECT_THAT(outcome.out, HasSubstr("bit  element"));
    for (const char* line : {
             "  profile_idc                                             01000010          66  Baseline\n",
             "  level_idc                                               00001010          10  1.0\n",
             "  pic_width_in_mbs_minus1                                  0001000           7  8\n",
             "error: seq_parameter_set_id in seq_parameter_set_data() (7.3.2.1.1) at bit 32: the data ends\n",
             "seq_parameter_set_data()                        7.3.2.1.1\n",
         }) {
        EXPECT_THAT(outcome.out, HasSubstr(line));
    }
    EXPECT_THAT(inspect({"--level", "elements", sample("avc_avc1.mp4")}).out,
                HasSubstr("configuration record\n                      8          26     7  sequence"));
}

// JSON has elements in an output of its own.
TEST_F(ProgramElements, jsonIsThatOfFields) {
    EXPECT_EQ(inspect({"--json", "-", "--level", "elements", "odd.h264"}).out,
              inspect({"--json", "-", "--level", "fields", "odd.h264"}).out);
}

TEST_F(ProgramElements, rewritingGivesTheSameStream) {
    for (const char* name : {"avc.ts", "avc_avc1.mp4", "hevc_hdr10.h265", "hevc_hdr_vivid.mp4"}) {
        const Outcome rewritten = inspect({"--rewrite", sample(name)});
        EXPECT_EQ(rewritten.exitCode, 0);
        EXPECT_EQ(rewritten.out, inspect({"--to-annexb", "-", sample(name)}).out) << name;
        EXPECT_FALSE(rewritten.out.empty());
    }
}

TEST_F(ProgramElements, rewritingCountsUnits) {
    const Outcome outcome = inspect({"--rewrite", "odd.h264"});
    EXPECT_EQ(outcome.err,
              "qvinspect: standard output: 4 NAL units are written from their records, 3 are copied\n")
        << "the second set is cut, and the filler data is damaged";
    EXPECT_EQ(outcome.out, inspect({"--to-annexb", "-", "odd.h264"}).out);
    EXPECT_EQ(inspect({"--rewrite", "--limit", "1", sample("hevc_hdr10.h265")}).err,
              "qvinspect: standard output: 5 NAL units are written from their records, 1 is copied\n");
}

TEST_F(ProgramElements, eachTakesStandardOutput) {
    for (const char* other : {"--rewrite", "--json=-", "--to-annexb=-"}) {
        const Outcome outcome = inspect({"--elements", other, "odd.h264"});
        EXPECT_EQ(outcome.exitCode, 1) << other;
        EXPECT_THAT(outcome.err, HasSubstr("only one output can go to standard output"));
    }
    const Outcome outcome = inspect({"--rewrite", "odd.h264", "odd.h264"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.err, HasSubstr("--rewrite and --extract-sei take one FILE at a time"));
}

}  // namespace
}  // namespace qv_test
