// Compares the sequence parameter sets of real streams with the results of independent tools.
//
// Every difference must be a listed departure in a stream that is named here. The test writes the comparison
// as a table into the build directory.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "AvcSpsRecord.h"
#include "HevcSpsRecord.h"
#include "RecordingCore.h"
#include "StreamExpectation.h"
#include "StreamFolder.h"

namespace qv_test {
namespace {

using nlohmann::json;

Bytes bytesOf(const std::string& hex) {
    Bytes bytes;
    for (size_t i = 0; i + 1 < hex.size(); i += 2) {
        bytes.push_back(static_cast<uint8_t>(std::stoul(hex.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

// --- The tools' results as a record ---

int32_t valueOf(const json& syntax, const std::string& element) {
    return syntax.at(element).get<int32_t>();
}

int32_t valueOr(const json& syntax, const std::string& element, int32_t otherwise) {
    return syntax.value(element, otherwise);
}

void storeLists(const json& lists, QVAvcSps& record) {
    const json& lists4x4 = lists.at("4x4");
    for (size_t list = 0; list < lists4x4.size(); ++list) {
        const auto weights = lists4x4[list].get<std::vector<uint8_t>>();
        ASSERT_EQ(weights.size(), 16U);
        std::copy(weights.begin(), weights.end(), record.scaling_matrix4[list]);
    }
    // In bitstream order: intra Y, inter Y, intra Cb, inter Cb, intra Cr, inter Cr.
    const size_t index[] = {0, 3, 1, 4, 2, 5};
    const json& lists8x8 = lists.at("8x8");
    for (size_t list = 0; list < lists8x8.size(); ++list) {
        const auto weights = lists8x8[list].get<std::vector<uint8_t>>();
        ASSERT_EQ(weights.size(), 64U);
        std::copy(weights.begin(), weights.end(), record.scaling_matrix8[index[list]]);
    }
}

void storePoc(const json& syntax, QVAvcSps& record) {
    record.poc_type = valueOf(syntax, "pic_order_cnt_type");
    if (record.poc_type == 0) {
        record.log2_max_poc_lsb = valueOf(syntax, "log2_max_pic_order_cnt_lsb_minus4") + 4;
    }
    if (record.poc_type == 1) {
        record.delta_pic_order_always_zero_flag = valueOf(syntax, "delta_pic_order_always_zero_flag");
        record.offset_for_non_ref_pic = valueOf(syntax, "offset_for_non_ref_pic");
        record.offset_for_top_to_bottom_field = valueOf(syntax, "offset_for_top_to_bottom_field");
        record.poc_cycle_length = valueOf(syntax, "num_ref_frames_in_pic_order_cnt_cycle");
        for (int i = 0; i < record.poc_cycle_length; ++i) {
            const int32_t offset = valueOf(syntax, "offset_for_ref_frame[" + std::to_string(i) + "]");
            record.offset_for_ref_frame[i] = static_cast<int8_t>(offset);
        }
    }
}

// Returns the record up to and including separate_colour_plane_flag.
QVAvcSps avcHead(const json& sps) {
    const json& syntax = sps.at("syntax");
    QVAvcSps record = avcSpsAfter(AvcSpsStep::Head);
    record.sps_id = valueOf(syntax, "seq_parameter_set_id");
    record.profile_idc = valueOf(syntax, "profile_idc");
    record.level_idc = valueOf(syntax, "level_idc");
    record.constraint_set_flags = 0;
    for (int i = 0; i < 6; ++i) {
        record.constraint_set_flags |= valueOf(syntax, "constraint_set" + std::to_string(i) + "_flag") << i;
    }
    record.chroma_format_idc = valueOr(syntax, "chroma_format_idc", 1);
    if (record.chroma_format_idc == 3) {
        record.residual_color_transform_flag = valueOf(syntax, "separate_colour_plane_flag");
    }
    return record;
}

QVAvcSps avcRecord(const json& sps) {
    const json& syntax = sps.at("syntax");
    QVAvcSps record = avcHead(sps);
    if (syntax.contains("chroma_format_idc")) {
        record.transform_bypass = valueOf(syntax, "qpprime_y_zero_transform_bypass_flag");
    }
    record.bit_depth_luma = valueOr(syntax, "bit_depth_luma_minus8", 0) + 8;
    record.bit_depth_chroma = valueOr(syntax, "bit_depth_chroma_minus8", 0) + 8;
    if (sps.contains("scaling_lists")) {
        storeLists(sps.at("scaling_lists"), record);
    }
    record.log2_max_frame_num = valueOf(syntax, "log2_max_frame_num_minus4") + 4;
    storePoc(syntax, record);
    record.ref_frame_count = valueOf(syntax, "max_num_ref_frames");
    record.gaps_in_frame_num_allowed_flag = valueOf(syntax, "gaps_in_frame_num_allowed_flag");
    record.mb_width = valueOf(syntax, "pic_width_in_mbs_minus1") + 1;
    record.mb_height = valueOf(syntax, "pic_height_in_map_units_minus1") + 1;
    record.frame_mbs_only_flag = valueOf(syntax, "frame_mbs_only_flag");
    record.mb_aff = valueOr(syntax, "mb_adaptive_frame_field_flag", 0);
    record.direct_8x8_inference_flag = valueOf(syntax, "direct_8x8_inference_flag");
    record.crop = valueOf(syntax, "frame_cropping_flag");
    record.crop_left = valueOr(syntax, "frame_crop_left_offset", 0);
    record.crop_right = valueOr(syntax, "frame_crop_right_offset", 0);
    record.crop_top = valueOr(syntax, "frame_crop_top_offset", 0);
    record.crop_bottom = valueOr(syntax, "frame_crop_bottom_offset", 0);
    record.width = sps.at("cropped_width");
    record.height = sps.at("cropped_height");
    record.vui_parameters_present_flag = valueOf(syntax, "vui_parameters_present_flag");
    return record;
}

QVHevcSps hevcRecord(const json& sps) {
    const json& syntax = sps.at("syntax");
    QVHevcSps record = patternHevcSps();
    record.sps_video_parameter_set_id = valueOf(syntax, "sps_video_parameter_set_id");
    record.sps_max_sub_layers_minus1 = valueOf(syntax, "sps_max_sub_layers_minus1");
    record.sps_temporal_id_nesting_flag = valueOf(syntax, "sps_temporal_id_nesting_flag");
    record.sps_seq_parameter_set_id = valueOf(syntax, "sps_seq_parameter_set_id");
    record.chroma_format_idc = valueOf(syntax, "chroma_format_idc");
    record.separate_colour_plane_flag = valueOr(syntax, "separate_colour_plane_flag", 0);
    record.display_width = sps.at("cropped_width");
    record.display_height = sps.at("cropped_height");
    record.pic_width_in_luma_samples = valueOf(syntax, "pic_width_in_luma_samples");
    record.pic_height_in_luma_samples = valueOf(syntax, "pic_height_in_luma_samples");
    record.conformance_window_flag = valueOf(syntax, "conformance_window_flag");
    if (record.conformance_window_flag == 1) {
        record.conf_win_left_offset = valueOf(syntax, "conf_win_left_offset");
        record.conf_win_right_offset = valueOf(syntax, "conf_win_right_offset");
        record.conf_win_top_offset = valueOf(syntax, "conf_win_top_offset");
        record.conf_win_bottom_offset = valueOf(syntax, "conf_win_bottom_offset");
    }
    record.bit_depth_luma_minus8 = valueOf(syntax, "bit_depth_luma_minus8");
    record.bit_depth_chroma_minus8 = valueOf(syntax, "bit_depth_chroma_minus8");
    record.log2_max_pic_order_cnt_lsb_minus4 = valueOf(syntax, "log2_max_pic_order_cnt_lsb_minus4");
    record.sps_sub_layer_ordering_info_present_flag =
        valueOf(syntax, "sps_sub_layer_ordering_info_present_flag");
    return record;
}

// --- The table ---

// The values of a parameter set that a player uses.
struct Summary {
    int codedWidth, codedHeight, width, height;
    std::string profileAndLevel;
    int bitDepth;
    std::string poc;
};

std::string textOf(const Summary& s) {
    return std::to_string(s.codedWidth) + "x" + std::to_string(s.codedHeight) + " -> " +
           std::to_string(s.width) + "x" + std::to_string(s.height) + ", " + s.profileAndLevel + ", " +
           std::to_string(s.bitDepth) + " bit" + (s.poc.empty() ? "" : ", POC " + s.poc);
}

Summary summaryOf(const QVAvcSps& sps) {
    return {16 * sps.mb_width,
            16 * sps.mb_height * (2 - sps.frame_mbs_only_flag),
            sps.width,
            sps.height,
            std::to_string(sps.profile_idc) + "/" + std::to_string(sps.level_idc),
            sps.bit_depth_luma,
            std::to_string(sps.poc_type)};
}

Summary summaryOf(const QVHevcSps& sps, const std::string& profileTierLevel) {
    return {sps.pic_width_in_luma_samples,
            sps.pic_height_in_luma_samples,
            sps.display_width,
            sps.display_height,
            profileTierLevel,
            sps.bit_depth_luma_minus8 + 8,
            ""};
}

Summary avcSummaryOfTools(const json& sps) {
    return {sps.at("coded_width"),
            sps.at("coded_height"),
            sps.at("cropped_width"),
            sps.at("cropped_height"),
            std::to_string(valueOf(sps, "profile_idc")) + "/" + std::to_string(valueOf(sps, "level_idc")),
            sps.at("bit_depth_luma"),
            std::to_string(valueOf(sps, "pic_order_cnt_type"))};
}

std::string profileTierLevelOfTools(const json& sps) {
    const json& syntax = sps.at("syntax");
    return std::to_string(valueOf(syntax, "general_profile_space")) + "/" +
           std::to_string(valueOf(sps, "general_tier_flag")) + "/" +
           std::to_string(valueOf(sps, "profile_idc")) + "/" + std::to_string(valueOf(sps, "level_idc"));
}

Summary hevcSummaryOfTools(const json& sps) {
    return {sps.at("coded_width"),
            sps.at("coded_height"),
            sps.at("cropped_width"),
            sps.at("cropped_height"),
            profileTierLevelOfTools(sps),
            sps.at("bit_depth_luma"),
            ""};
}

class Table {
public:
    void add(const std::string& stream, const std::string& parsed, const std::string& tools,
             const std::string& verdict) {
        lines_ += stream + " | " + parsed + " | " + tools + " | " + verdict + "\n";
        ++counts_[verdict];
    }

    void writeTo(const std::string& path) const {
        std::ofstream file(path);
        file << "stream | parsed: coded -> displayed size, profile and level, bit depth, POC type | "
                "tools | difference\n"
             << lines_ << "\n";
        for (const auto& [verdict, count] : counts_) {
            file << count << " " << verdict << "\n";
        }
        ASSERT_TRUE(file.flush()) << "cannot write " << path;
    }

    int countOf(const std::string& verdict) const {
        const auto found = counts_.find(verdict);
        return found != counts_.end() ? found->second : 0;
    }

private:
    std::string lines_;
    std::map<std::string, int> counts_;
};

// --- The comparison ---

// The streams whose parameter sets the parser reads differently by design.
const std::map<std::string, std::string> kDepartures = {
    {"avc_jm_444_sep.h264", "D11"},
};

std::string departureOf(const std::string& stream) {
    const auto found = kDepartures.find(stream);
    return found != kDepartures.end() ? found->second : "same";
}

class ParameterSets : public StreamFolderTest<CoreTest> {
protected:
    static void checkAvc(const Stream& stream, const json& sps, Table& table);
    static void checkHevc(const Stream& stream, const json& sps, Table& table);
    static void checkSeparatePlanes(const json& sps, bool isAccepted, const QVAvcSps& record);
    static void checkPlayerValues(const Stream& stream, int width, int height, int level);
};

void ParameterSets::checkSeparatePlanes(const json& sps, bool isAccepted, const QVAvcSps& record) {
    EXPECT_EQ(valueOf(sps.at("syntax"), "separate_colour_plane_flag"), 1);
    EXPECT_FALSE(isAccepted);
    EXPECT_TRUE(sameAvcSps(record, avcHead(sps)));
    expectLines({avcError("parseAvcSpsForProfile",
                          "parseAvcCDecoderSps, separate color planes are not supported\n")});
}

// Compares with ffprobe's values, if the file has only one parameter set.
void ParameterSets::checkPlayerValues(const Stream& stream, int width, int height, int level) {
    const json& probed = stream.expectation.at("ffprobe_stream");
    const bool isUnknown = probed.at("width") == 0;
    if (isUnknown || stream.expectation.at("sps").size() != 1) {
        return;
    }
    EXPECT_EQ(width, probed.at("width"));
    EXPECT_EQ(height, probed.at("height"));
    EXPECT_EQ(level, probed.at("level"));
}

void ParameterSets::checkAvc(const Stream& stream, const json& sps, Table& table) {
    core().lines.clear();
    const Bytes unit = bytesOf(sps.at("nal_hex"));
    QVAvcSps record = patternAvcSps();
    const bool isAccepted = parseAvcSps(&record, std::make_shared<QVByteStream>(unit.data(), unit.size()));
    const std::string tools = textOf(avcSummaryOfTools(sps));
    if (departureOf(stream.name) == "D11") {
        checkSeparatePlanes(sps, isAccepted, record);
        table.add(stream.name, "refused", tools, "D11");
        return;
    }
    EXPECT_TRUE(isAccepted);
    // None of these has an emulation prevention byte before its VUI (D06).
    EXPECT_TRUE(sameAvcSps(record, avcRecord(sps)));
    checkPlayerValues(stream, record.width, record.height, record.level_idc);
    const std::string parsed = textOf(summaryOf(record));
    EXPECT_EQ(parsed, tools);
    table.add(stream.name, parsed, tools, parsed == tools ? "same" : "unexplained");
}

void ParameterSets::checkHevc(const Stream& stream, const json& sps, Table& table) {
    core().lines.clear();
    const Bytes unit = bytesOf(sps.at("nal_hex"));
    QVHevcSps record = patternHevcSps();
    EXPECT_TRUE(parseHevcSps(&record, std::make_shared<QVByteStream>(unit.data(), unit.size())));
    EXPECT_TRUE(sameHevcSps(record, hevcRecord(sps)));

    const std::string before = "parseHevcSpsForProfile, profile:";
    const std::string after = " \n";
    expectLines({{2, "parseHevcSpsForProfile", before + profileTierLevelOfTools(sps) + after}});
    const std::string line = core().lines.at(0).text;
    const std::string logged = line.substr(before.size(), line.size() - before.size() - after.size());

    checkPlayerValues(stream, record.display_width, record.display_height, valueOf(sps, "level_idc"));
    const std::string parsed = textOf(summaryOf(record, logged));
    const std::string tools = textOf(hevcSummaryOfTools(sps));
    EXPECT_EQ(parsed, tools);
    table.add(stream.name, parsed, tools, parsed == tools ? "same" : "unexplained");
}

TEST_P(ParameterSets, readAsTheToolsReadThem) {
    Table table;
    int sets = 0;
    for (const Stream& stream : streamsIn(GetParam().path)) {
        SCOPED_TRACE(stream.name);
        const json& list = stream.expectation.at("sps");
        EXPECT_FALSE(list.empty());
        for (const json& sps : list) {
            SCOPED_TRACE(sps.at("nal_hex").get<std::string>());
            ++sets;
            if (stream.codec() == QVCodecIDAvc) {
                checkAvc(stream, sps, table);
            } else {
                checkHevc(stream, sps, table);
            }
        }
    }
    const std::string path = std::string(QVNALU_REPORT_DIR) + "/parameter_sets_" + GetParam().name + ".txt";
    table.writeTo(path);
    std::cout << sets << " parameter sets, " << table.countOf("same") << " the same; table in " << path
              << "\n";
    int explained = table.countOf("same");
    for (const auto& [stream, departure] : kDepartures) {
        explained += table.countOf(departure);
    }
    EXPECT_EQ(sets, explained);
    core().lines.clear();
}

INSTANTIATE_TEST_SUITE_P(From, ParameterSets, everyStreamFolder(), nameOf);

// --- Real parameter sets that need no stream folder ---

struct RealSet {
    const char* name;
    const char* hex;
    const char* line;     // the last line logged
    const char* summary;  // as in the table
};

void PrintTo(const RealSet& set, std::ostream* out) {
    *out << set.name;
}

const RealSet kAvcSets[] = {
    {"fullHdWithACrop", "67640028acd940780227e5c044000003000400000300f23c60c658",
     "sps:0 profile:100/40 poc:0 ref:4 120x68 FRM 8B8 crop:0/0/0/4 VUI 420",
     "1920x1088 -> 1920x1080, 100/40, 8 bit, POC 0"},
    {"pocType1", "674d0028d0b420c16272", "sps:0 profile:77/40 poc:1 ref:5 11x9 FRM 8B8 crop:0/0/0/0  420",
     "176x144 -> 176x144, 77/40, 8 bit, POC 1"},
    {"fieldsWithACrop", "674d0028f30594f950",
     "sps:0 profile:77/40 poc:0 ref:5 11x5 PIC-AFF 8B8 crop:0/0/0/4  420",
     "176x160 -> 176x144, 77/40, 8 bit, POC 0"},
    {"mbaff1080i", "67640028acd94078044fde022000000300200000065c900002625a0001312d498601f162d960",
     "sps:0 profile:100/40 poc:0 ref:4 120x34 MB-AFF 8B8 crop:0/0/0/2 VUI 420",
     "1920x1088 -> 1920x1080, 100/40, 8 bit, POC 0"},
    {"mbaffOf422And10Bits", "677a0015b6cd941612d8088000000300800000194f8a14cb",
     "sps:0 profile:122/21 poc:0 ref:4 22x9 MB-AFF 8B8 crop:0/0/0/0 VUI 422",
     "352x288 -> 352x288, 122/21, 10 bit, POC 0"},
    {"oddSizeOf444", "67f4000d919b282a33c2119808800000030080000019478a14cb",
     "sps:0 profile:244/13 poc:0 ref:4 21x12 FRM 8B8 crop:0/15/0/11 VUI 444",
     "336x192 -> 321x181, 244/13, 8 bit, POC 0"},
    {"identifier31", "6764000b040b3650b13b011000000300100000030328f1429960",
     "sps:31 profile:100/11 poc:0 ref:4 11x9 FRM 8B8 crop:0/0/0/0 VUI 420",
     "176x144 -> 176x144, 100/11, 8 bit, POC 0"},
};

class RealAvcSet : public AvcSpsTest, public ::testing::WithParamInterface<RealSet> {};

TEST_P(RealAvcSet, isReadAsTheToolsReadIt) {
    ASSERT_TRUE(parse(bytesOf(GetParam().hex)));
    EXPECT_EQ(textOf(summaryOf(sps)), GetParam().summary);
    ASSERT_FALSE(core().lines.empty());
    EXPECT_EQ(core().lines.back().text, avcSummary(GetParam().line).text);
}

INSTANTIATE_TEST_SUITE_P(Real, RealAvcSet, ::testing::ValuesIn(kAvcSets),
                         [](const auto& set) { return std::string(set.param.name); });

class RealAvcSetRefused : public AvcSpsTest {};

TEST_F(RealAvcSetRefused, D11_separateColourPlanes) {
    EXPECT_FALSE(parse(bytesOf("67f40028939cc16272")));
    QVAvcSps record = avcSpsAfter(AvcSpsStep::Head);
    record.profile_idc = 244;
    record.level_idc = 40;
    record.chroma_format_idc = 3;
    record.residual_color_transform_flag = 1;
    expectOutcome(record, {avcError("parseAvcSpsForProfile",
                                    "parseAvcCDecoderSps, separate color planes are not supported\n")});
}

const RealSet kHevcSets[] = {
    {"oddSizeOf444", "4201010408000003009e0800000300003c90014901739a4cb2b3492657808080000003008000000c84",
     "0/0/4/60", "328x184 -> 323x181, 0/0/4/60, 8 bit"},
    {"cropOf422And10Bits",
     "4201010408000003009d0800000300003cb00a480b9d5b65959a4932bc04040000030004000003006420", "0/0/4/60",
     "328x184 -> 326x182, 0/0/4/60, 10 bit"},
    {"fiveTemporalLayers",
     "42010802200000030090000003000003003c0000a00a080c136595844ac22561131022728464932bc0404000000300400000064"
     "2",
     "0/0/2/60", "320x192 -> 320x192, 0/0/2/60, 10 bit"},
    {"highTierUhd",
     "420101222000000300900000030000030099a001e020021c4d96565b930bc05a84880482000007d20001d4c010",
     "0/1/2/153", "3840x2160 -> 3840x2160, 0/1/2/153, 10 bit"},
};

class RealHevcSet : public HevcSpsTest, public ::testing::WithParamInterface<RealSet> {};

TEST_P(RealHevcSet, isReadAsTheToolsReadIt) {
    ASSERT_TRUE(parseBytes(bytesOf(GetParam().hex)));
    EXPECT_EQ(textOf(summaryOf(sps, GetParam().line)), GetParam().summary);
    expectLines({{2, "parseHevcSpsForProfile",
                  std::string("parseHevcSpsForProfile, profile:") + GetParam().line + " \n"}});
}

INSTANTIATE_TEST_SUITE_P(Real, RealHevcSet, ::testing::ValuesIn(kHevcSets),
                         [](const auto& set) { return std::string(set.param.name); });

// Parameter sets of an extension layer, which the tools do not read. nuh_layer_id must not change the result.
class RealHevcExtension : public HevcSpsTest {
protected:
    void expectReadAsABaseLayer(const std::string& hex) {
        Bytes unit = bytesOf(hex);
        ASSERT_TRUE(parseBytes(unit));
        const QVHevcSps ofExtension = sps;
        const std::string line = core().lines.at(0).text;
        unit[1] = 0x01;  // nuh_layer_id 0
        ASSERT_TRUE(parseBytes(unit));
        expectOutcome(ofExtension, {{2, "parseHevcSpsForProfile", line}});
    }
};

TEST_F(RealHevcExtension, ofAnAlphaLayer) {
    expectReadAsABaseLayer("42090102200000030090000003000003001e480608184d96566924cae002");
    EXPECT_EQ(textOf(summaryOf(sps, "")), "192x96 -> 192x96, , 10 bit");
}

// This set has no profile_tier_level(). The parser does not know that: the values it reads have no meaning.
TEST_F(RealHevcExtension, ofASecondView) {
    expectReadAsABaseLayer("42090e85924cae005030");
    EXPECT_EQ(sps.sps_max_sub_layers_minus1, 7);
}

}  // namespace
}  // namespace qv_test
