#include "report/SeiExtractor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "InspectSupport.h"
#include "Mp4Writer.h"

namespace qv_test {
namespace {

namespace fs = std::filesystem;
using namespace qvinspect;
using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

StreamInfo annexB(QVCodecID codec) {
    StreamInfo info;
    info.parameters = {codec, 1, 0};
    return info;
}

// H.264: types 5 (with an emulation prevention byte) and 1, which are kept, then 200 in a unit of its own,
// which is kept on request only.
const std::vector<Bytes> kAccessUnits = {
    hex("00 00 01 06 05 04 00 00 03 01 22 01 01 33 80 00 00 01 65 88"),
    hex("00 00 01 06 C8 03 B5 00 31 80 00 00 01 41 9A"),
    hex("00 00 01 41 9B"),
};

std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        names.push_back(entry.path().filename());
    }
    std::sort(names.begin(), names.end());
    return names;
}

json indexOf(const fs::path& folder) {
    const Bytes bytes = fileContent(folder / "index.json");
    return json::parse(bytes.begin(), bytes.end());
}

class SeiExtraction : public ::testing::Test {
protected:
    void extract(const StreamInfo& info, const std::vector<Bytes>& accessUnits,
                 const CommandLine& line = {}) const {
        SeiExtractor extractor(out());
        present(extractor, info, accessUnits, line);
        extractor.finish();
    }

    // Empty if the folder is accepted.
    std::string refusal(const std::string& folder) const {
        try {
            SeiExtractor extractor(folder);
        } catch (const OutputError& error) {
            return error.what();
        }
        return {};
    }

    std::string out() const { return folder_.path() / "out"; }
    const TemporaryFolder& folder() const { return folder_; }

private:
    TemporaryFolder folder_;
};

TEST_F(SeiExtraction, itemsAndIndex) {
    CommandLine line;
    line.requested = {200};
    extract(annexB(QVCodecIDAvc), kAccessUnits, line);
    EXPECT_THAT(namesIn(out()), ElementsAre("00000001_au00000001_sei5.bin", "00000002_au00000001_sei1.bin",
                                            "00000003_au00000002_sei200.bin", "index.json"));
    EXPECT_EQ(fileContent(out() + "/00000001_au00000001_sei5.bin"), hex("00 00 01 22"));
    EXPECT_EQ(fileContent(out() + "/00000002_au00000001_sei1.bin"), hex("33"));
    EXPECT_EQ(fileContent(out() + "/00000003_au00000002_sei200.bin"), hex("B5 00 31"));
    EXPECT_EQ(indexOf(out()), json::parse(R"({"input": "stream", "codec": "h264", "items": [
        {"file": "00000001_au00000001_sei5.bin", "access_unit": 1, "time": null, "offset": 3,
         "nal_unit_type": 6, "payload_type": 5, "name": "user_data_unregistered", "size": 4,
         "requested": false, "delivery": "payload"},
        {"file": "00000002_au00000001_sei1.bin", "access_unit": 1, "time": null, "offset": 3,
         "nal_unit_type": 6, "payload_type": 1, "name": "pic_timing", "size": 1,
         "requested": false, "delivery": "payload"},
        {"file": "00000003_au00000002_sei200.bin", "access_unit": 2, "time": null, "offset": 3,
         "nal_unit_type": 6, "payload_type": 200, "name": "sei_manifest", "size": 3,
         "requested": true, "delivery": "payload"}], "left_out": 0})"));
}

TEST_F(SeiExtraction, displayOrientationIsText) {
    // H.265: display_orientation_cancel_flag 0, no flips, anticlockwise_rotation 0x4000, persistence.
    extract(annexB(QVCodecIDHevc), {hex("00 00 01 4E 01 2F 03 08 00 18 80 00 00 01 26 01 AF")});
    const json items = indexOf(out()).at("items");
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0].at("delivery"), "text");
    const Bytes text = fileContent(out() + "/" + items[0].at("file").get<std::string>());
    EXPECT_EQ(text.size(), items[0].at("size"));
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(text.back(), 0);
}

TEST_F(SeiExtraction, filtersNarrowTheItems) {
    CommandLine line;
    line.requested = {200};
    line.filter.seiTypes = {5};
    extract(annexB(QVCodecIDAvc), kAccessUnits, line);
    EXPECT_THAT(namesIn(out()), ElementsAre("00000001_au00000001_sei5.bin", "index.json"));
}

// H.265 keeps them.
TEST_F(SeiExtraction, filterByT35Codes) {
    CommandLine line;
    line.filter.t35 = {{0xB5, 0, 0x0031}};
    extract(annexB(QVCodecIDHevc), {hex("00 00 01 4E 01 04 03 B5 00 3C 80 00 00 01 4E 01 04 03 B5 00 31 80")},
            line);
    EXPECT_THAT(namesIn(out()), ElementsAre("00000001_au00000001_sei4.bin", "index.json"));
    EXPECT_EQ(fileContent(out() + "/00000001_au00000001_sei4.bin"), hex("B5 00 31"));
}

// The walk keeps a payload that extends into the zero bytes after a unit without trailing bits.
TEST_F(SeiExtraction, itemWithoutAMessageOfItsOwn) {
    extract(annexB(QVCodecIDAvc), {hex("00 00 01 06 05 02 11 00")});
    EXPECT_EQ(fileContent(out() + "/00000001_au00000001_sei5.bin"), hex("11 00"));
}

TEST_F(SeiExtraction, nothingKept) {
    extract(annexB(QVCodecIDAvc), {hex("00 00 01 41 9B")});
    EXPECT_EQ(indexOf(out()).at("items"), json::array());
}

TEST_F(SeiExtraction, inputThatCannotBeInspected) {
    SeiExtractor extractor(out());
    extractor.fail("stream", "is \"empty\"");
    extractor.finish();
    EXPECT_EQ(indexOf(out()), json::parse(R"({"input": "stream", "error": "is \"empty\""})"));
}

// Memory can run out after some items were written.
TEST_F(SeiExtraction, inputThatCannotBeInspectedToItsEnd) {
    class Broken : public SeiExtractor {
    public:
        using SeiExtractor::SeiExtractor;
        void end(const StreamEnd&) override { fail("stream", "no memory"); }
    };
    Broken extractor(out());
    present(extractor, annexB(QVCodecIDAvc), {kAccessUnits[0]});
    extractor.finish();
    const json index = indexOf(out());
    EXPECT_EQ(index.at("items").size(), 2U);
    EXPECT_EQ(index.at("error"), "no memory");
    EXPECT_EQ(index.at("left_out"), 0);
}

// A mastering display, which the library keeps, in the container's record.
TEST_F(SeiExtraction, itemsOfTheConfigurationRecord) {
    const Bytes display =
        hex("4E 01 89 18 33 C2 86 C4 1D 4C 0B B8 84 D0 3E 80 3D 13 40 42 00 98 96 80 00 00 03 00 32 80");
    StreamInfo info;
    info.parameters = {QVCodecIDHevc, 0, 4};
    info.configuration = hevcRecord({{hex("40 01")}, {display}});
    const std::vector<Bytes> pictures(2, lengthPrefixed({hex("26 01 AF 08")}, 4));
    extract(info, pictures);
    EXPECT_THAT(namesIn(out()), ElementsAre("00000001_au00000001_sei137.bin", "index.json"));
    EXPECT_EQ(fileContent(out() + "/00000001_au00000001_sei137.bin").size(), 24U);
    const json item = indexOf(out()).at("items").at(0);
    EXPECT_EQ(item.at("access_unit"), 1);
    EXPECT_EQ(item.at("offset"), json());
    EXPECT_EQ(item.at("nal_unit_type"), 39);
    EXPECT_EQ(item.at("payload_type"), 137);
}

TEST_F(SeiExtraction, filtersNarrowTheItemsOfTheConfigurationRecord) {
    const Bytes sei = hex("4E 01 04 03 B5 00 3C 80");
    StreamInfo info;
    info.parameters = {QVCodecIDHevc, 0, 4};
    info.configuration = hevcRecord({{hex("40 01")}, {sei}});
    const std::vector<Bytes> pictures(1, lengthPrefixed({hex("02 01 AF 08")}, 4));
    const auto filesWith = [&](const CommandLine& line) {
        fs::remove_all(out());
        extract(info, pictures, line);
        return namesIn(out()).size() - 1;
    };
    CommandLine line;
    EXPECT_EQ(filesWith(line), 1U);
    line.filter.seiTypes = {4};
    EXPECT_EQ(filesWith(line), 1U);
    line.filter.seiTypes = {5};
    EXPECT_EQ(filesWith(line), 0U);
    line.filter = {};
    line.filter.unitTypes = {39};
    EXPECT_EQ(filesWith(line), 1U);
    line.filter.unitTypes = {40};
    EXPECT_EQ(filesWith(line), 0U);
    line.filter = {};
    line.filter.keyOnly = true;  // the picture is not a key picture
    EXPECT_EQ(filesWith(line), 0U);
}

TEST_F(SeiExtraction, theIndexComesLast) {
    {
        SeiExtractor extractor(out());
        present(extractor, annexB(QVCodecIDAvc), kAccessUnits);
        EXPECT_TRUE(fs::exists(out() + "/00000001_au00000001_sei5.bin"));
        EXPECT_FALSE(fs::exists(out() + "/index.json"));
    }
    EXPECT_THAT(namesIn(out()), ElementsAre("00000001_au00000001_sei5.bin", "00000002_au00000001_sei1.bin"));
}

TEST_F(SeiExtraction, emptyFolderIsTaken) {
    fs::create_directory(out());
    EXPECT_EQ(refusal(out()), "");
}

TEST_F(SeiExtraction, foldersThatAreRefused) {
    const std::string file = folder().write("file", hex("00"));
    EXPECT_THAT(refusal(file), HasSubstr("file is not a folder"));
    EXPECT_EQ(refusal(folder().path()),
              folder().path().string() + " is not empty: name a new folder, or empty it");
    EXPECT_THAT(refusal(folder().path() / "none" / "out"), HasSubstr("No such file or directory"));
    EXPECT_THAT(namesIn(folder().path()), ElementsAre("file"));
}

}  // namespace
}  // namespace qv_test
