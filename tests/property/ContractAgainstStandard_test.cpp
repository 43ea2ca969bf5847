// Sequence parameter sets read by the player's library and as the standard says: every difference is a
// departure that docs/departures.md registers, and each of those that concern parameter sets occurs.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "../bitstream/support/Hex.h"
#include "AvcSpsSyntax.h"
#include "HevcSpsSyntax.h"
#include "RandomRounds.h"
#include "RecordingCore.h"
#include "StandardComparison.h"
#include "StreamExpectation.h"
#include "StreamFolder.h"
#include "SyntaxElements.h"
#include "bitstream/units/NalUnits.h"

namespace qv_test {
namespace {

enum class Codec { Avc, Hevc };

struct ParameterSet {
    Codec codec;
    Bytes unit;

    bool operator<(const ParameterSet& other) const {
        return std::tie(codec, unit) < std::tie(other.codec, other.unit);
    }
};

std::string textOf(const ParameterSet& set) {
    return (set.codec == Codec::Avc ? "H.264 " : "H.265 ") + hexOf({set.unit.data(), set.unit.size()});
}

// In the forms that the parser of the codec may be given.
std::vector<StandardComparison> comparisonsOf(const ParameterSet& set) {
    core().lines.clear();
    if (set.codec == Codec::Hevc) {
        return {compareHevcSps(set.unit)};
    }
    return {compareAvcSps(set.unit, AvcInput::Unit), compareAvcSps(set.unit, AvcInput::WithoutEscapes)};
}

// Adds up comparisons, and fails at a difference that nothing explains.
class Tally {
public:
    void add(const ParameterSet& set) {
        ++sets_;
        for (const StandardComparison& each : comparisonsOf(set)) {
            for (const auto& [tag, count] : each.tags) {
                differences_[tag] += count;
            }
            fields_ += each.fieldsCompared;
            for (const std::string& difference : each.unexplained) {
                ADD_FAILURE() << textOf(set) << "\n" << difference;
            }
        }
    }

    void print(const std::string& title) const {
        std::cout << title << ": " << sets_ << " parameter sets, " << fields_ << " values; differences";
        for (const auto& [tag, count] : differences_) {
            std::cout << " " << tag << ":" << count;
        }
        std::cout << "\n";
    }

    long fields() const { return fields_; }

private:
    long sets_ = 0;
    long fields_ = 0;
    std::map<std::string, long> differences_;
};

// --- One parameter set for each departure ---

Bytes unitOf(const BitWriter& syntax) {
    return withEmulationPrevention(syntax.bytes());
}

Bytes avcUnit(const AvcSpsChange& change = {}) {
    return unitOf(avcSps(change));
}

Bytes highAvcUnit(const AvcSpsChange& change) {
    return unitOf(highAvcSps(change));
}

Bytes hevcUnit(const HevcSpsChange& change = {}) {
    return unitOf(hevcSps(change));
}

// Without everything from an element on.
Bytes unitBefore(const BitWriter& syntax, const std::string& element) {
    return unitOf(bitsBefore(syntax, element).trailingBits());
}

Bytes withHeader(Bytes unit, const Bytes& header) {
    std::copy(header.begin(), header.end(), unit.begin());
    return unit;
}

// A code of 33 zero bits.
Bytes hevcUnitWithLongCode() {
    BitWriter syntax = bitsBefore(hevcSps(), "sps_seq_parameter_set_id");
    syntax.u(34, "sps_seq_parameter_set_id", 1).ue("chroma_format_idc", 1).ue("width", 8).ue("height", 8);
    return unitOf(syntax.trailingBits());
}

// Without emulation prevention bytes by its own bytes: 00 00 03 begins the buffer.
Bytes hevcUnitThatBeginsWithZeros() {
    Bytes unit = withHeader(hevcSps().bytes(), {0, 0});
    unit.insert(unit.begin() + 2, 3);
    return unit;
}

// An SPS that takes its format from the VPS: sps_ext_or_max_sub_layers_minus1 is 7.
Bytes layerUnit() {
    BitWriter bits;
    bits.u(16, "header", 33 << 9 | 1 << 3 | 1).u(4, "sps_video_parameter_set_id", 1);
    bits.u(3, "sps_ext_or_max_sub_layers_minus1", 7).ue("sps_seq_parameter_set_id", 1);
    bits.u(1, "update_rep_format_flag", 0).ue("log2_max_pic_order_cnt_lsb_minus4", 4);
    bits.ue("log2_min_luma_coding_block_size_minus3", 0).ue("log2_diff_max_min_luma_coding_block_size", 3);
    return unitOf(bits.trailingBits());
}

AvcSpsChange withOffset(int32_t offset) {
    return [offset](AvcSpsSyntax& sps) {
        sps.pic_order_cnt_type = 1;
        sps.num_ref_frames_in_pic_order_cnt_cycle = 1;
        sps.offset_for_ref_frame = {offset};
    };
}

AvcSpsChange withDelta(int32_t delta_scale) {
    return [delta_scale](AvcSpsSyntax& sps) {
        sps.seq_scaling_matrix_present_flag = 1;
        sps.scalingLists[0].seq_scaling_list_present_flag = 1;
        sps.scalingLists[0].delta_scale = {delta_scale};
    };
}

struct Example {
    const char* name;
    std::set<std::string> tags;
    ParameterSet set;
};

const std::vector<Example>& examples() {
    static const std::vector<Example> kExamples = {
        {"H.264, Baseline", {}, {Codec::Avc, avcUnit()}},
        {"H.264, High", {}, {Codec::Avc, highAvcUnit({})}},
        {"D05, 33 zero bits", {"D05"}, {Codec::Hevc, hevcUnitWithLongCode()}},
        {"D06, an escape before the VUI", {"D06"}, {Codec::Avc, avcUnit([](AvcSpsSyntax& sps) {
                                                        sps.profile_idc = 0;
                                                        sps.level_idc = 1;
                                                    })}},
        {"D07, profile 134 with chroma syntax", {"D07"}, {Codec::Avc, highAvcUnit([](AvcSpsSyntax& sps) {
                                                              sps.profile_idc = 134;
                                                              sps.max_num_ref_frames = 2;
                                                          })}},
        {"D07, profile 144 without", {"D07"}, {Codec::Avc, avcUnit([](AvcSpsSyntax& sps) {
                                                   sps.profile_idc = 144;
                                               })}},
        {"an offset of 8 bits", {}, {Codec::Avc, avcUnit(withOffset(-128))}},
        {"D08, an offset of 10 bits", {"D08"}, {Codec::Avc, avcUnit(withOffset(300))}},
        {"D09, a delta_scale of 128", {"D09", "D33"}, {Codec::Avc, highAvcUnit(withDelta(128))}},
        {"D10, all columns cropped", {"D10"}, {Codec::Avc, avcUnit([](AvcSpsSyntax& sps) {
                                                   sps.frame_cropping_flag = 1;
                                                   sps.frame_crop_left_offset = 5;
                                                   sps.frame_crop_right_offset = 4;
                                               })}},
        {"D10, all rows outside the window", {"D10"}, {Codec::Hevc, hevcUnit([](HevcSpsSyntax& sps) {
                                                           sps.conformance_window_flag = 1;
                                                           sps.conf_win_bottom_offset = 4;
                                                       })}},
        {"D11, separate colour planes", {"D11"}, {Codec::Avc, highAvcUnit([](AvcSpsSyntax& sps) {
                                                      sps.profile_idc = 244;
                                                      sps.chroma_format_idc = 3;
                                                      sps.separate_colour_plane_flag = 1;
                                                  })}},
        {"D12, sps_seq_parameter_set_id 16", {"D12"}, {Codec::Hevc, hevcUnit([](HevcSpsSyntax& sps) {
                                                           sps.sps_seq_parameter_set_id = 16;
                                                       })}},
        {"D12, sps_max_sub_layers_minus1 7", {"D12"}, {Codec::Hevc, hevcUnit([](HevcSpsSyntax& sps) {
                                                           sps.sps_max_sub_layers_minus1 = 7;
                                                       })}},
        {"D30, a layer that depends on its VPS", {"D30"}, {Codec::Hevc, layerUnit()}},
        {"a layer that does not", {}, {Codec::Hevc, hevcUnit([](HevcSpsSyntax& sps) {
                                           sps.nuh_layer_id = 1;
                                       })}},
        {"D31, luma of 8 bits and chroma of 9", {"D31"}, {Codec::Avc, highAvcUnit([](AvcSpsSyntax& sps) {
                                                              sps.bit_depth_chroma_minus8 = 1;
                                                          })}},
        {"D33, a list", {"D33"}, {Codec::Avc, highAvcUnit(withDelta(-8))}},
        {"D39, H.264 data that ends before the crop",
         {"D39"},
         {Codec::Avc, unitBefore(avcSps(), "frame_cropping_flag")}},
        {"D39, H.265 data that ends before the bit depths",
         {"D39"},
         {Codec::Hevc, unitBefore(hevcSps(), "bit_depth_luma_minus8")}},
        {"D40, an H.264 unit of type 15", {"D40"}, {Codec::Avc, withHeader(avcUnit(), {0x6F})}},
        {"D40, forbidden_zero_bit", {"D40"}, {Codec::Hevc, withHeader(hevcUnit(), {0xC2})}},
        {"D03, a zero pair at the start", {"D03", "D40"}, {Codec::Hevc, hevcUnitThatBeginsWithZeros()}},
        {"H.265, sub-layers", {}, {Codec::Hevc, hevcUnit([](HevcSpsSyntax& sps) {
                                       sps.sps_max_sub_layers_minus1 = 2;
                                       sps.subLayers[1].sub_layer_profile_present_flag = 1;
                                       sps.subLayers[0].sub_layer_level_present_flag = 1;
                                   })}},
    };
    return kExamples;
}

// The tags of the register whose rows name the parsers of parameter sets or their sources.
std::set<std::string> registeredForParameterSets() {
    std::ifstream page(QVNALU_DEPARTURES);
    std::set<std::string> tags;
    std::string line;
    while (std::getline(page, line)) {
        const bool isRow = line.compare(0, 3, "| D") == 0;
        for (const char* const name : {"parseAvcSps", "parseHevcSps", "QVAvcSps.cpp", "QVHevcSps.cpp"}) {
            if (isRow && line.find(name) != std::string::npos) {
                tags.insert(line.substr(2, 3));
            }
        }
    }
    return tags;
}

class ContractAgainstStandard : public CoreTest {};

TEST_F(ContractAgainstStandard, eachExampleHasItsDepartures) {
    for (const Example& each : examples()) {
        SCOPED_TRACE(std::string(each.name) + "\n" + textOf(each.set));
        std::set<std::string> tags;
        for (const StandardComparison& comparison : comparisonsOf(each.set)) {
            EXPECT_EQ(comparison.unexplained, std::vector<std::string>{});
            for (const auto& [tag, count] : comparison.tags) {
                tags.insert(tag);
            }
        }
        EXPECT_EQ(tags, each.tags);
    }
}

TEST_F(ContractAgainstStandard, everyDepartureOfParameterSetsHasAnExample) {
    const std::set<std::string> registered = registeredForParameterSets();
    ASSERT_GE(registered.size(), 12U) << QVNALU_DEPARTURES;
    std::set<std::string> shown;
    for (const Example& each : examples()) {
        shown.insert(each.tags.begin(), each.tags.end());
    }
    for (const std::string& tag : registered) {
        EXPECT_EQ(shown.count(tag), 1U) << tag;
    }
}

// A record that is wrong in one field, or a wrong verdict, is a difference that nothing explains.
TEST_F(ContractAgainstStandard, whatIsWrongIsSeen) {
    const Bytes avc = avcUnit();
    const std::vector<int32_t QVAvcSps::*> avcFields = {&QVAvcSps::sps_id,
                                                        &QVAvcSps::profile_idc,
                                                        &QVAvcSps::constraint_set_flags,
                                                        &QVAvcSps::mb_width,
                                                        &QVAvcSps::chroma_format_idc,
                                                        &QVAvcSps::bit_depth_luma,
                                                        &QVAvcSps::crop_bottom,
                                                        &QVAvcSps::width,
                                                        &QVAvcSps::height,
                                                        &QVAvcSps::mb_aff,
                                                        &QVAvcSps::log2_max_poc_lsb,
                                                        &QVAvcSps::vui_parameters_present_flag};
    QVAvcSps avcRecord = {};
    ASSERT_TRUE(parseAvcSps(&avcRecord, std::make_shared<QVByteStream>(avc.data(), avc.size())));
    for (size_t i = 0; i < avcFields.size(); ++i) {
        QVAvcSps wrong = avcRecord;
        wrong.*avcFields[i] += 1;
        EXPECT_EQ(compareAvcSps(avc, AvcInput::Unit, true, wrong).unexplained.size(), 1U) << i;
    }
    QVAvcSps wrong = avcRecord;
    wrong.scaling_matrix8[3][63] = 15;
    EXPECT_EQ(compareAvcSps(avc, AvcInput::Unit, true, wrong).unexplained.size(), 1U);
    EXPECT_EQ(compareAvcSps(avc, AvcInput::Unit, false, avcRecord).unexplained.size(), 1U);

    const Bytes hevc = hevcUnit();
    const std::vector<int32_t QVHevcSps::*> hevcFields = {
        &QVHevcSps::sps_video_parameter_set_id,
        &QVHevcSps::sps_max_sub_layers_minus1,
        &QVHevcSps::separate_colour_plane_flag,
        &QVHevcSps::pic_width_in_luma_samples,
        &QVHevcSps::display_height,
        &QVHevcSps::bit_depth_chroma_minus8,
        &QVHevcSps::sps_sub_layer_ordering_info_present_flag};
    QVHevcSps hevcRecord = {};
    ASSERT_TRUE(parseHevcSps(&hevcRecord, std::make_shared<QVByteStream>(hevc.data(), hevc.size())));
    for (size_t i = 0; i < hevcFields.size(); ++i) {
        QVHevcSps wrongSps = hevcRecord;
        wrongSps.*hevcFields[i] += 1;
        EXPECT_EQ(compareHevcSps(hevc, true, wrongSps).unexplained.size(), 1U) << i;
    }
    EXPECT_EQ(compareHevcSps(hevc, false, hevcRecord).unexplained.size(), 1U);
}

// An escape explains nothing before it.
TEST_F(ContractAgainstStandard, anEscapeExplainsNothingBeforeIt) {
    const BitWriter syntax = avcSps([](AvcSpsSyntax& sps) {
        sps.profile_idc = 0;
        sps.level_idc = 1;
    });
    const Bytes rbsp = syntax.bytes();
    QVAvcSps record = {};
    ASSERT_TRUE(parseAvcSps(&record, std::make_shared<QVByteStream>(rbsp.data(), rbsp.size())));
    record.profile_idc = 1;
    record.level_idc = 3;
    const StandardComparison comparison = compareAvcSps(unitOf(syntax), AvcInput::Unit, true, record);
    EXPECT_EQ(comparison.unexplained, std::vector<std::string>{"profile_idc is 1, by the standard 0"});
    EXPECT_EQ(comparison.tags.count("D06"), 1U);
}

// --- Streams ---

// The parameter sets of a stream: those that the tools found, also in containers, and every unit of the type
// in a byte stream.
std::vector<ParameterSet> setsOf(const Stream& stream) {
    const Codec codec = stream.codec() == QVCodecIDAvc ? Codec::Avc : Codec::Hevc;
    std::vector<ParameterSet> sets;
    for (const auto& sps : stream.expectation.at("sps")) {
        sets.push_back({codec, hex(sps.at("nal_hex"))});
    }
    if (stream.framing() == "annexb") {
        const uint32_t type = codec == Codec::Avc ? 7 : 33;
        const qv::NalUnits units({stream.bytes.data(), stream.bytes.size()}, qv::Framing::StartCodes,
                                 codec == Codec::Avc ? qv::Codec::Avc : qv::Codec::Hevc);
        for (const qv::NalUnit& unit : units) {
            if (!unit.bytes.empty() && unit.nal_unit_type == type) {
                sets.push_back({codec, Bytes(unit.bytes.begin(), unit.bytes.end())});
            }
        }
    }
    return sets;
}

class ContractAgainstStandardStreams : public StreamFolderTest<CoreTest> {};

TEST_P(ContractAgainstStandardStreams, everyDifferenceIsADeparture) {
    Tally tally;
    for (const Stream& stream : streamsIn(GetParam().path)) {
        SCOPED_TRACE(stream.name);
        for (const ParameterSet& set : setsOf(stream)) {
            tally.add(set);
        }
    }
    tally.print(GetParam().name);
    EXPECT_GT(tally.fields(), 0);
}

INSTANTIATE_TEST_SUITE_P(Folders, ContractAgainstStandardStreams, everyStreamFolder(), nameOf);

// --- Mutations ---

// Different parameter sets to begin with: the examples and those of the streams that are there.
std::vector<ParameterSet> seeds() {
    std::set<ParameterSet> sets;
    for (const Example& each : examples()) {
        sets.insert(each.set);
    }
    for (const std::filesystem::path& folder : {bundledStreams(), streamsFolder()}) {
        if (std::filesystem::is_directory(folder)) {
            for (const Stream& stream : streamsIn(folder)) {
                for (ParameterSet& set : setsOf(stream)) {
                    sets.insert(std::move(set));
                }
            }
        }
    }
    return {sets.begin(), sets.end()};
}

// A bit, a byte, a run of zeros, a cut, a byte more or less; seldom in the header.
void mutate(Bytes& unit, Random& random) {
    const size_t header = below(random, 50) == 0 ? 0 : std::min<size_t>(2, unit.size() - 1);
    const size_t at = header + below(random, unit.size() - header);
    const auto place = unit.begin() + static_cast<long>(at);
    switch (below(random, 6)) {
        case 0:
            *place = static_cast<uint8_t>(*place ^ 1 << below(random, 8));
            break;
        case 1:
            *place = static_cast<uint8_t>(random());
            break;
        case 2:
            std::fill_n(place, std::min<size_t>(below(random, 8), unit.size() - at), uint8_t{0});
            break;
        case 3:
            unit.resize(std::max<size_t>(at, 1));
            break;
        case 4:
            unit.insert(place, static_cast<uint8_t>(below(random, 2) == 0 ? below(random, 4) : random()));
            break;
        default:
            if (unit.size() > 1) {
                unit.erase(place);
            }
    }
}

TEST_F(ContractAgainstStandard, everyDifferenceOfMutationsIsADeparture) {
    const std::vector<ParameterSet> sets = seeds();
    Random random(20);
    Tally tally;
    for (int round = 0; round < rounds() && !HasFailure(); ++round) {
        ParameterSet set = sets[below(random, sets.size())];
        for (size_t changes = 1 + below(random, 3); changes > 0; --changes) {
            mutate(set.unit, random);
        }
        tally.add(set);
    }
    tally.print("mutations of " + std::to_string(sets.size()));
    EXPECT_GT(tally.fields(), rounds());
}

}  // namespace
}  // namespace qv_test
