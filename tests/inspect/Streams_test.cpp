// Access units and NAL units of real streams, compared with the results of other tools.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "InspectSupport.h"
#include "StreamExpectation.h"
#include "analysis/Analysis.h"
#include "input/OpenInput.h"

namespace qv_test {
namespace {

using nlohmann::json;
using qvinspect::UnitState;

// nal_unit_type of H.264 7.3.1 and H.265 7.3.1.2, whether or not forbidden_zero_bit is set.
int typeOf(QVCodecID codec, uint8_t firstByte) {
    return codec == QVCodecIDAvc ? firstByte % 32 : firstByte / 2 % 64;
}

struct Unit {
    uint64_t packet;
    uint64_t offset;  // in the file; in the elementary stream of a byte stream container; or in the packet
    uint64_t length;
    int type;
    bool isForbidden;
};

struct Listed {
    QVCodecParameters parameters;
    std::vector<Unit> units;
    std::vector<size_t> unitsInAccessUnit;
    std::vector<size_t> sizes;
    std::vector<bool> keys;
    std::vector<std::string> findings;
};

void append(std::vector<std::string>& all, const std::vector<qvinspect::Finding>& findings) {
    for (const auto& finding : findings) {
        all.push_back(describe(finding));
    }
}

// The samples of a byte stream container are listed one by one, the expectation scans them as one stream:
// there a zero byte that ends a sample belongs to the start code that begins the next.
void joinUnits(const qvinspect::AccessUnit& next, uint8_t lastByte, std::vector<Unit>& units) {
    const bool beginsWithThreeBytes = next.size > 2 && next.data[2] == 0x01;
    if (beginsWithThreeBytes && lastByte == 0x00) {
        --units.back().length;
    }
}

Listed listStream(const std::filesystem::path& path, bool isLengthPrefixed) {
    const auto reader = qvinspect::openInput(path, {});
    Listed listed{};
    listed.parameters = reader->info().parameters;
    qvinspect::AccessUnit accessUnit;
    uint64_t streamOffset = 0;
    uint8_t lastByte = 0xFF;
    while (reader->next(accessUnit)) {
        const auto report = qvinspect::analyse(accessUnit);
        if (!isLengthPrefixed && !accessUnit.fileOffset) {
            joinUnits(accessUnit, lastByte, listed.units);
            lastByte = accessUnit.data[accessUnit.size - 1];
        }
        const uint64_t base = accessUnit.fileOffset.value_or(0);
        const uint64_t shown = accessUnit.fileOffset || isLengthPrefixed ? 0 : streamOffset;
        for (const auto& unit : report.units) {
            const uint8_t firstByte = accessUnit.data[unit.offset - base];
            const int type = typeOf(accessUnit.parameters.codecId, firstByte);
            const bool isForbidden = unit.state == UnitState::ForbiddenBit;
            listed.units.push_back(
                {listed.sizes.size(), unit.offset + shown, unit.length, type, isForbidden});
            if (unit.state == UnitState::Typed) {
                EXPECT_EQ(static_cast<int>(unit.type), type);
            }
            EXPECT_NE(unit.state, UnitState::Empty);
        }
        listed.unitsInAccessUnit.push_back(report.units.size());
        listed.sizes.push_back(accessUnit.size);
        listed.keys.push_back(report.isKey);
        append(listed.findings, accessUnit.findings);
        append(listed.findings, report.findings);
        streamOffset += accessUnit.size;
    }
    append(listed.findings, accessUnit.findings);
    return listed;
}

// Streams that the expectations' parser cuts differently from the standards. The numbers are the NAL units of
// each access unit.
struct Deviation {
    const char* reason;
    std::vector<size_t> unitsInAccessUnit;
};

const std::map<std::string, Deviation>& deviations() {
    static const std::map<std::string, Deviation> all = {
        {"avc_jm_444_sep.h264",
         {"H.264 7.4.1.2.4 does not compare colour_plane_id: three colour planes are one picture",
          {5, 3, 3}}},
        {"avc_jm_fmo.h264",
         {"the two slice groups of a picture (three slices each) begin at low macroblock numbers, and no "
          "element that H.264 7.4.1.2.4 compares differs",
          {8, 6, 6, 6, 6, 6, 6}}},
        {"avc_jm_redundant.h264",
         {"a redundant coded picture (redundant_pic_cnt 1) belongs to the access unit of its primary one, "
          "H.264 7.4.1.2.3",
          {3, 2, 2, 2, 2, 2, 2}}},
        {"avc_jm_mvc_stereo.h264",
         {"a prefix NAL unit (14) after the last VCL NAL unit begins an access unit, H.264 7.4.1.2.3",
          {8, 3, 3, 3}}},
        {"avc_unittypes_hand.h264",
         {"units of types 14 to 18 after the last VCL NAL unit begin an access unit, H.264 7.4.1.2.3",
          {5, 2, 1, 2, 2, 2, 3, 2, 2, 2, 2, 2, 2, 2, 2, 4, 2, 2, 2, 2, 2, 1, 2, 2, 3, 2, 2, 2, 2, 2}}},
        {"hevc_alpha.h265",
         {"pictures of nuh_layer_id 1 belong to the access unit of the base layer's, H.265 7.4.2.4.4",
          {8, 2, 2, 2, 2, 2}}},
        {"hevc_mvhevc.h265",
         {"pictures of nuh_layer_id 1 belong to the access unit of the base layer's, H.265 7.4.2.4.4",
          {11, 2, 2, 2, 2, 2}}},
        {"hevc_eos_eob.h265",
         {"an end of sequence (36) or bitstream (37) ends its access unit, H.265 7.4.2.4.4",
          {4, 1, 1, 2, 4, 1, 1, 2, 4, 1, 1, 3}}},
        {"hevc_hm_hrd_timing.h265",
         {"a prefix SEI unit between the slice segments of a picture begins nothing, H.265 7.4.2.4.4",
          {12, 7, 7, 7, 7, 7}}},
        {"hevc_unittypes_hand.h265",
         {"units 41, 42, 48 and 51 of this stream have nuh_layer_id above 0: they do not begin an access "
          "unit, H.265 7.4.2.4.4",
          {5, 2, 2, 2, 2, 2, 5, 2, 2, 2, 1, 3}}},
    };
    return all;
}

std::vector<size_t> expectedUnitsInAccessUnit(const Stream& stream) {
    const auto deviation = deviations().find(stream.name);
    if (deviation != deviations().end()) {
        return deviation->second.unitsInAccessUnit;
    }
    std::vector<size_t> counts;
    const json& packets = stream.expectation.at("packets");
    for (const json& row : packets.at("first")) {
        counts.push_back(row[3].size());
    }
    EXPECT_EQ(counts.size(), packets.at("total")) << "not every packet is listed";
    return counts;
}

// By the types of each access unit's units: those that QVNaluParser::isKeyFrame documents.
std::vector<bool> expectedKeys(const Listed& listed) {
    static const std::set<int> keyUnitTypes = {5, 16, 17, 18, 19, 20, 21};
    std::vector<bool> keys(listed.sizes.size(), false);
    for (const Unit& unit : listed.units) {
        keys[unit.packet] = keys[unit.packet] || keyUnitTypes.count(unit.type) == 1;
    }
    return keys;
}

struct Folder {
    const char* name;
    std::filesystem::path path;
};

void PrintTo(const Folder& folder, std::ostream* out) {
    *out << folder.path.string();
}

class InspectedStreams : public ::testing::TestWithParam<Folder> {
protected:
    void SetUp() override {
        if (!std::filesystem::is_directory(GetParam().path)) {
            GTEST_SKIP() << "there is no folder " << GetParam().path
                         << "; -DQVNALU_STREAMS_DIR=... names another";
        }
    }

    // Calls check with each stream and its listing. A build without libavformat has only raw streams.
    template <typename Check>
    static void forEachStream(Check check) {
        size_t checked = 0;
        for (const Stream& stream : streamsIn(GetParam().path)) {
            if (QVINSPECT_HAS_LIBAVFORMAT == 0 && stream.framing() != "annexb") {
                continue;
            }
            SCOPED_TRACE(stream.name);
            ++checked;
            check(stream, listStream(GetParam().path / stream.name, stream.framing() == "length-prefixed"));
        }
        EXPECT_GT(checked, 0U);
    }
};

TEST_P(InspectedStreams, codecAndFraming) {
    forEachStream([](const Stream& stream, const Listed& listed) {
        EXPECT_EQ(listed.parameters.codecId, stream.codec());
        EXPECT_EQ(listed.parameters.isAnnexB != 0, stream.framing() != "length-prefixed");
        if (stream.framing() == "length-prefixed") {
            EXPECT_EQ(listed.parameters.nalLengthSize, stream.expectation["framing"]["nal_length_size"]);
        }
    });
}

TEST_P(InspectedStreams, units) {
    forEachStream([](const Stream& stream, const Listed& listed) {
        std::string lines;
        std::map<std::string, int> typeCounts;
        json forbidden = json::array();
        for (size_t i = 0; i < listed.units.size(); ++i) {
            const Unit& unit = listed.units[i];
            if (stream.framing() == "length-prefixed") {
                lines += std::to_string(unit.packet) + " ";
            }
            lines += std::to_string(unit.offset) + " " + std::to_string(unit.length) + " " +
                     std::to_string(unit.type) + "\n";
            ++typeCounts[std::to_string(unit.type)];
            if (unit.isForbidden) {
                forbidden.push_back(i);
            }
        }
        const json& expected = stream.expectation.at("nal_units");
        EXPECT_EQ(listed.units.size(), expected.at("total"));
        EXPECT_EQ(json(typeCounts), expected.at("type_counts"));
        EXPECT_EQ(forbidden, expected.at("forbidden_zero_bit_set"));
        EXPECT_EQ(sha256(lines), expected.at("list_sha256"));
    });
}

TEST_P(InspectedStreams, accessUnits) {
    forEachStream([](const Stream& stream, const Listed& listed) {
        EXPECT_EQ(listed.unitsInAccessUnit, expectedUnitsInAccessUnit(stream));
        if (stream.framing() != "annexb") {
            for (size_t i = 0; i < listed.sizes.size(); ++i) {
                EXPECT_EQ(listed.sizes[i], stream.expectation["packets"]["first"][i][1]);
            }
        }
    });
}

TEST_P(InspectedStreams, keyAccessUnits) {
    forEachStream([](const Stream&, const Listed& listed) { EXPECT_EQ(listed.keys, expectedKeys(listed)); });
}

TEST_P(InspectedStreams, nothingIsFoundWrong) {
    forEachStream(
        [](const Stream&, const Listed& listed) { EXPECT_EQ(listed.findings, std::vector<std::string>()); });
}

std::string nameOf(const ::testing::TestParamInfo<Folder>& folder) {
    return folder.param.name;
}

INSTANTIATE_TEST_SUITE_P(From, InspectedStreams,
                         ::testing::Values(Folder{"bundled", bundledStreams()},
                                           Folder{"folder", streamsFolder()}),
                         nameOf);

}  // namespace
}  // namespace qv_test
