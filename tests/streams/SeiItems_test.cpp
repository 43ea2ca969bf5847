// Compares the SEI items of real streams with the messages that other tools found.
//
// Each SEI unit is walked twice: with no type requested, and with every type of the stream requested. Every
// difference from the tools' messages must be listed here.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <ostream>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "QVNaluParser.h"
#include "SeiTest.h"
#include "StreamExpectation.h"
#include "StreamFolder.h"

namespace qv_test {
namespace {

using nlohmann::json;
using ::testing::StartsWith;
using Info = QVNaluParser::NaluInfo;

constexpr int kAvcSei = 6;
constexpr int kHevcPrefixSei = 39;
constexpr int kHevcSuffixSei = 40;
constexpr unsigned kDisplayOrientation = 47;
constexpr unsigned kPictureHash = 132;

// --- The differences ---

enum class Pass { NothingRequested, AllRequested };

// A walk that ends early, or continues at a wrong position, and keeps only the first itemsKept items.
struct Difference {
    std::string stream;
    std::vector<int> units;
    std::vector<Pass> passes;
    size_t itemsKept;
    int result;
    std::string line;  // the beginning of the only log line; empty: nothing is logged
};

const std::vector<Pass> kBoth = {Pass::NothingRequested, Pass::AllRequested};

// Hand-made messages that their parser rejects. The walk ends there.
const Difference kRefusedByTheirParser[] = {
    {"avc_afd.h264", {47}, kBoth, 0, 11000001, "parserAvcRegisteredUserData afd: size:-1 error.\n"},
    {"avc_afd.h264", {49}, kBoth, 0, 11000001, "parserAvcRegisteredUserData afd: size:-1 error 2.\n"},
    {"avc_hdr_sei_hand.h264", {23}, kBoth, 0, 11000001, "parserAvcRegisteredUserData: size:6 error.\n"},
    {"avc_recovery_variants.h264",
     {14},
     kBoth,
     0,
     11000001,
     "parserAvcSeiRecoveryPoint: recovery_frame_cnt(65536) is out of range.\n"},
};

// A captured message of size 0 ends the walk.
const Difference kEmptyCaptures[] = {
    {"avc_multi_message.h264", {19}, kBoth, 0, 11000001, ""},
    {"avc_multi_message.h264", {22}, kBoth, 1, 11000001, ""},
    {"hevc_multi_message.h265", {25}, kBoth, 0, 11000001, ""},
    {"hevc_svt_timing.h265",
     {4, 7, 10, 13, 16, 19, 22, 25, 32, 35, 38, 41, 44, 47, 50, 53},
     kBoth,
     0,
     11000001,
     ""},
};

// A message of type 128 after another message is treated as the trailing bits of H.264.
const Difference kType128[] = {
    {"avc_multi_message.h264", {16}, {Pass::NothingRequested}, 0, 0, ""},
    {"avc_multi_message.h264", {16}, {Pass::AllRequested}, 2, 0, ""},
};

// The walk skips payloadSize coded bytes of an H.264 message that it parses or skips, although payloadSize
// does not count emulation prevention bytes. So it looks for the next header too early.
const Difference kEmulationPrevention[] = {
    {"avc_emulation.h264",
     {17},
     kBoth,
     0,
     11000001,
     "parserPayloadParams SEI type 0 size 383 truncated at 0\n"},
    {"avc_hdr_sei_hand.h264",
     {3, 31},
     {Pass::NothingRequested},
     0,
     11000001,
     "parserPayloadParams SEI type 50 size 144 truncated at 16\n"},
    {"avc_jm_sei_vui.h264",
     {5},
     kBoth,
     1,
     11000001,
     "parserPayloadParams SEI type 0 size 2 truncated at 1\n"},
    {"avc_jm_sei_vui.h264", {9}, kBoth, 1, 11000001, "parserAvcBufferingPeriod: non-existing SPS "},
    {"avc_jm_sei_vui.h264",
     {15},
     kBoth,
     1,
     11000001,
     "parserPayloadParams SEI type 129 size 128 truncated at 6\n"},
    {"avc_jm_tonemap.h264",
     {2},
     {Pass::NothingRequested},
     0,
     11000001,
     "parserPayloadParams SEI type 15 size 254 truncated at 1\n"},
    {"avc_multi_message.h264",
     {4, 41},
     {Pass::NothingRequested},
     0,
     11000001,
     "parserPayloadParams SEI type 50 size 144 truncated at 27\n"},
};

// Key: stream, unit and pass.
using Differences = std::map<std::tuple<std::string, int, Pass>, const Difference*>;

template <size_t Count>
void add(Differences& all, const Difference (&differences)[Count]) {
    for (const Difference& difference : differences) {
        for (const int unit : difference.units) {
            for (const Pass pass : difference.passes) {
                all[{difference.stream, unit, pass}] = &difference;
            }
        }
    }
}

Differences allDifferences() {
    Differences all;
    add(all, kRefusedByTheirParser);
    add(all, kEmptyCaptures);
    add(all, kType128);
    add(all, kEmulationPrevention);
    return all;
}

// --- Items and messages as comparable text ---

// Formats a payload as the expectations do: the first 96 bytes, and a digest if it is longer.
std::string payloadText(const Bytes& payload) {
    constexpr size_t kShown = 96;
    static const char* const kDigits = "0123456789abcdef";
    std::string text;
    for (size_t i = 0; i < std::min(kShown, payload.size()); ++i) {
        text += kDigits[payload[i] >> 4];
        text += kDigits[payload[i] & 0x0F];
    }
    return payload.size() <= kShown ? text : text + "... " + sha256(payload);
}

std::string payloadText(const json& message) {
    const std::string text = message.at("hex");
    return message.contains("sha256") ? text + " " + std::string(message.at("sha256")) : text;
}

std::string itemText(unsigned type, bool isRequested, size_t size, const std::string& payload) {
    return std::to_string(type) + (isRequested ? " requested, " : ", ") + std::to_string(size) +
           " bytes: " + payload;
}

using ItemTexts = std::vector<std::string>;

// --- How the messages of a unit are treated ---

enum class Treatment { Parsed, Captured, OnRequest };

Treatment treatmentOf(int nalType, unsigned payloadType) {
    static const std::set<unsigned> avcParsed = {0, 4, 6, 45, 47, 56, 147};
    static const std::set<unsigned> avcCaptured = {1, 5};
    static const std::set<unsigned> prefixParsed = {45, 47, 129, 144, 147, 256};
    static const std::set<unsigned> prefixCaptured = {1, 4, 5, 137};
    if (nalType == kHevcSuffixSei) {
        return Treatment::OnRequest;
    }
    if ((nalType == kAvcSei ? avcParsed : prefixParsed).count(payloadType) == 1) {
        return Treatment::Parsed;
    }
    return (nalType == kAvcSei ? avcCaptured : prefixCaptured).count(payloadType) == 1 ? Treatment::Captured
                                                                                       : Treatment::OnRequest;
}

// The display orientation of an H.265 unit is kept as text.
std::string orientationText(const json& fields) {
    const std::string text =
        "HevcSeiDisplayOrientationInfo: hflip:" + std::to_string(fields.at("hor_flip").get<int>()) +
        ",vflip:" + std::to_string(fields.at("ver_flip").get<int>()) +
        ",anticlockwise_rotation:" + std::to_string(fields.at("anticlockwise_rotation").get<int>()) + ".";
    const Bytes payload(text.c_str(), text.c_str() + text.size() + 1);
    return itemText(kDisplayOrientation, false, payload.size(), payloadText(payload));
}

// D15: the hash parser reads the coded bytes of three components, emulation prevention bytes included. The
// item begins after them and has the size of the message, so its end is zero bytes past the end of the unit.
Bytes capturedHash(const Bytes& unit, size_t payloadSize) {
    constexpr size_t kHeaders = 2 + 2;  // unit header and message header
    const std::map<unsigned, size_t> lengths = {{0, 1 + 3 * 16}, {1, 1 + 3 * 2}, {2, 1 + 3 * 4}};
    const auto length = lengths.find(unit.at(kHeaders));
    const size_t from = kHeaders + (length != lengths.end() ? length->second : 1);
    Bytes captured;
    size_t zeros = 0;
    for (size_t i = 0; i < unit.size(); ++i) {
        const bool isEmulationPrevention = zeros >= 2 && unit[i] == 0x03;
        zeros = unit[i] == 0x00 ? zeros + 1 : 0;
        if (i >= from && !isEmulationPrevention) {
            captured.push_back(unit[i]);
        }
    }
    captured.resize(payloadSize);
    return captured;
}

// Returns the item that one message gives, as text; empty if it gives none.
std::string expectedText(const Bytes& unit, int nalType, const json& message, Pass pass) {
    const unsigned type = message.at("type");
    const Treatment treatment = treatmentOf(nalType, type);
    if (nalType == kHevcPrefixSei && type == kDisplayOrientation) {
        const json& fields = message.at("fields");
        return fields.at("display_orientation_cancel_flag") == 0 ? orientationText(fields) : std::string();
    }
    if (treatment == Treatment::Parsed ||
        (treatment == Treatment::OnRequest && pass == Pass::NothingRequested)) {
        return {};
    }
    const size_t size = message.at("size");
    const bool isHash = nalType == kHevcSuffixSei && type == kPictureHash;
    return itemText(type, treatment == Treatment::OnRequest, size,
                    isHash ? payloadText(capturedHash(unit, size)) : payloadText(message));
}

ItemTexts expectedTexts(const Bytes& unit, const json& expectation, Pass pass) {
    const int nalType = expectation.at("nal_type");
    ItemTexts texts;
    for (const json& message : expectation.at("messages")) {
        const std::string text = expectedText(unit, nalType, message, pass);
        if (!text.empty()) {
            texts.push_back(text);
        }
        if (nalType != kAvcSei) {
            break;  // D14
        }
    }
    return texts;
}

// --- Walking ---

class SeiStreams : public StreamFolderTest<SeiTest> {
protected:
    void checkFolder(Pass pass) {
        const std::vector<Stream> streams = streamsIn(GetParam().path, "annexb");
        ASSERT_FALSE(streams.empty());
        Differences differences = allDifferences();
        for (const Stream& stream : streams) {
            SCOPED_TRACE(stream.name);
            checkStream(stream, pass, differences);
        }
        expectNoneOf(differences, streams, pass);
    }

private:
    // Checks that every listed difference of these streams occurred.
    static void expectNoneOf(const Differences& differences, const std::vector<Stream>& streams, Pass pass) {
        for (const auto& entry : differences) {
            const auto& [name, unit, passOfEntry] = entry.first;
            for (const Stream& stream : streams) {
                EXPECT_FALSE(passOfEntry == pass && stream.name == name) << name << ", no SEI unit " << unit;
            }
        }
    }

    static bool isSei(const Info& info, QVCodecID codec) {
        const auto type = static_cast<int>(info.naluType);
        return codec == QVCodecIDAvc ? type == kAvcSei : type == kHevcPrefixSei || type == kHevcSuffixSei;
    }

    static std::vector<Info> seiUnitsOf(const Stream& stream) {
        const QVCodecParameters params = {stream.codec(), 1, 0};
        std::vector<Info> infos;
        EXPECT_EQ(
            QVNaluParser::parserDataToNaluType(stream.bytes.data(), sizeOf(stream.bytes), infos, &params), 0);
        infos.erase(std::remove_if(infos.begin(), infos.end(),
                                   [&](const Info& info) { return !isSei(info, stream.codec()); }),
                    infos.end());
        return infos;
    }

    static Requested requestOf(const Stream& stream, Pass pass) {
        Requested requested;
        if (pass == Pass::AllRequested) {
            for (const auto& [type, count] : stream.expectation.at("sei").at("payload_type_counts").items()) {
                requested.push_back(std::stoi(type));
            }
        }
        return requested;
    }

    // The library and the tools must find the same SEI units in the same order.
    void checkStream(const Stream& stream, Pass pass, Differences& differences) {
        const json& sei = stream.expectation.at("sei");
        ASSERT_EQ(sei.at("units"), sei.at("listed"));
        const std::vector<Info> infos = seiUnitsOf(stream);
        ASSERT_EQ(infos.size(), sei.at("list").size());
        const Requested requested = requestOf(stream, pass);
        for (size_t i = 0; i < infos.size(); ++i) {
            const json& expectation = sei.at("list").at(i);
            const int unit = expectation.at("unit");
            SCOPED_TRACE("unit " + std::to_string(unit));
            ASSERT_EQ(infos[i].naluType, expectation.at("nal_type"));
            ASSERT_EQ(infos[i].length, expectation.at("length"));
            const auto difference = differences.find({stream.name, unit, pass});
            const bool isDifferent = difference != differences.end();
            checkUnit(stream, infos[i], expectation, pass, requested,
                      isDifferent ? difference->second : nullptr);
            if (isDifferent) {
                differences.erase(difference);
            }
        }
    }

    void checkUnit(const Stream& stream, const Info& info, const json& expectation, Pass pass,
                   const Requested& requested, const Difference* difference) {
        const unsigned char* const start = stream.bytes.data() + info.offset;
        ItemTexts expected = expectedTexts(Bytes(start, start + info.length), expectation, pass);
        if (difference != nullptr) {
            ASSERT_GE(expected.size(), difference->itemsKept);
            expected.resize(difference->itemsKept);
        }
        // Empty records suffice: the SPS parser does not fill the HRD fields, so a parsed SPS has 0 there
        // too.
        QVAvcSps avcSps{};
        QVHevcSps hevcSps{};
        void* const sps = stream.codec() == QVCodecIDAvc ? static_cast<void*>(&avcSps) : &hevcSps;
        EXPECT_EQ(
            QVNaluParser::parserDataToSei(stream.codec(), stream.bytes.data(), info, items, sps, requested),
            difference != nullptr ? difference->result : 0);
        EXPECT_EQ(takeTexts(stream.codec()), expected);
        expectLine(difference != nullptr ? difference->line : std::string());
    }

    ItemTexts takeTexts(QVCodecID codec) {
        ItemTexts texts;
        for (const KeptItem& item : kept()) {
            EXPECT_EQ(item.codecId, codec);
            texts.push_back(
                itemText(item.payloadType, item.isRequested, item.payload.size(), payloadText(item.payload)));
        }
        clearItems();
        return texts;
    }

    static void expectLine(const std::string& line) {
        EXPECT_EQ(core().lines.size(), line.empty() ? 0U : 1U);
        for (const LogLine& logged : core().lines) {
            EXPECT_THAT(logged.text, StartsWith(line));
        }
        core().lines.clear();
    }
};

TEST_P(SeiStreams, D14_D15_nothingRequested) {
    checkFolder(Pass::NothingRequested);
}

TEST_P(SeiStreams, D14_D15_everyTypeRequested) {
    checkFolder(Pass::AllRequested);
}

INSTANTIATE_TEST_SUITE_P(From, SeiStreams, everyStreamFolder(), nameOf);

}  // namespace
}  // namespace qv_test
