// Compares the H.264 SEI payload parsers with libavcodec on the messages of real streams. Messages that
// libavcodec does not read are compared with the values they were made from.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <iterator>
#include <map>
#include <ostream>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "AvcSeiRecord.h"
#include "QVNaluParser.h"
#include "StreamExpectation.h"
#include "SyntaxElements.h"

namespace qv_test {
namespace {

using nlohmann::json;

struct Message {
    Bytes payload;  // without emulation prevention bytes
    json fields;    // the fields that libavcodec reads; empty if it does not know or accept the message
};

Bytes bytesOfHex(const std::string& hex) {
    Bytes bytes;
    for (size_t i = 0; i < hex.size(); i += 2) {
        bytes.push_back(static_cast<uint8_t>(std::stoul(hex.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

// Returns the messages whose whole payload is in the expectation.
std::vector<Message> messagesOf(const Stream& stream, int payloadType) {
    std::vector<Message> messages;
    for (const json& unit : stream.expectation.at("sei").at("list")) {
        for (const json& message : unit.at("messages")) {
            const std::string hex = message.at("hex");
            if (message.at("type") == payloadType && hex.size() == 2 * message.at("size").get<size_t>()) {
                messages.push_back({bytesOfHex(hex), message.value("fields", json::object())});
            }
        }
    }
    return messages;
}

// Returns an SPS record with the HRD and VUI values that the SEI parsers use. The caller has to fill them in,
// as the SPS parser does not. Each stream has one sequence parameter set, or none of these values.
QVAvcSps hrdSps(const Stream& stream) {
    const json& syntax = stream.expectation.at("sps").at(0).at("syntax");
    QVAvcSps sps{};
    sps.nal_hrd_parameters_present_flag = syntax.value("nal_hrd_parameters_present_flag", 0);
    sps.vcl_hrd_parameters_present_flag = syntax.value("vcl_hrd_parameters_present_flag", 0);
    sps.pic_struct_present_flag = syntax.value("pic_struct_present_flag", 0);
    sps.time_offset_length = syntax.value("time_offset_length", 24);
    sps.cpb_cnt = syntax.value("cpb_cnt_minus1", -1) + 1;
    sps.initial_cpb_removal_delay_length = syntax.value("initial_cpb_removal_delay_length_minus1", -1) + 1;
    sps.cpb_removal_delay_length = syntax.value("cpb_removal_delay_length_minus1", -1) + 1;
    sps.dpb_output_delay_length = syntax.value("dpb_output_delay_length_minus1", -1) + 1;
    return sps;
}

// Checks that a parser that accepted a payload read all of it, up to fewer than 8 bits.
void expectConsumed(const QVByteStream& stream) {
    EXPECT_LE(stream.bytePos * 8 + stream.bitOffset, stream.size * 8);
    EXPECT_GT(stream.bytePos * 8 + stream.bitOffset + 8, stream.size * 8);
}

// --- Messages that libavcodec reads ---

void compareBufferingPeriod(const Message& message, QVAvcSps& sps) {
    PayloadStream stream(message.payload);
    QVAvcSeiBufferingPeriod record{};
    EXPECT_EQ(QVNaluParser::parserAvcBufferingPeriod(stream, sizeOf(message.payload), &record, &sps), kOk);
    QVAvcSeiBufferingPeriod expected{};
    expected.isValid = 1;
    for (int i = 0; i < sps.cpb_cnt; ++i) {
        expected.initial_cpb_removal_delay[i] =
            message.fields.at(indexed("initial_cpb_removal_delay", static_cast<size_t>(i)));
    }
    EXPECT_TRUE(sameFields(fieldsOf(record), fieldsOf(expected)));
    expectConsumed(stream);
}

// None of the streams has clock timestamps.
void comparePictureTiming(const Message& message, QVAvcSps& sps) {
    PayloadStream stream(message.payload);
    QVAvcSeiPictureTiming record{};
    EXPECT_EQ(QVNaluParser::parserAvcPictureTiming(stream, sizeOf(message.payload), &record, &sps), kOk);
    QVAvcSeiPictureTiming expected{};
    expected.isValid = 1;
    expected.cpb_removal_delay = message.fields.value("cpb_removal_delay", 0U);
    expected.dpb_output_delay = message.fields.value("dpb_output_delay", 0U);
    expected.pic_struct = message.fields.value("pic_struct", 0U);
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(message.fields.value(indexed("clock_timestamp_flag", i), 0), 0);
    }
    EXPECT_TRUE(sameFields(fieldsOf(record), fieldsOf(expected)));
    expectConsumed(stream);
}

void compareRecoveryPoint(const Message& message, QVAvcSps& /*sps*/) {
    PayloadStream stream(message.payload);
    QVAvcSeiRecoveryPoint record{};
    EXPECT_EQ(QVNaluParser::parserAvcRecoveryPoint(stream, sizeOf(message.payload), &record), kOk);
    EXPECT_EQ(record.recovery_frame_cnt, message.fields.at("recovery_frame_cnt"));
    expectConsumed(stream);
}

void compareDisplayOrientation(const Message& message, QVAvcSps& /*sps*/) {
    PayloadStream stream(message.payload);
    QVAvcSeiDisplayOrientation record{};
    EXPECT_EQ(QVNaluParser::parserAvcDisplayOrientation(stream, sizeOf(message.payload), &record), kOk);
    QVAvcSeiDisplayOrientation expected{};
    expected.isValid = message.fields.at("display_orientation_cancel_flag") == 0 ? 1 : 0;
    expected.anticlockwise_rotation = message.fields.value("anticlockwise_rotation", 0U);
    expected.hor_flip = message.fields.value("hor_flip", 0U);
    expected.ver_flip = message.fields.value("ver_flip", 0U);
    EXPECT_TRUE(sameFields(fieldsOf(record), fieldsOf(expected)));
    expectConsumed(stream);
}

void compareAlternativeTransfer(const Message& message, QVAvcSps& /*sps*/) {
    PayloadStream stream(message.payload);
    QVAvcSeiAlternativeTransfer record{};
    EXPECT_EQ(QVNaluParser::parserAvcAlternativeTransfer(stream, sizeOf(message.payload), &record), kOk);
    EXPECT_EQ(record.isValid, 1U);
    EXPECT_EQ(record.preferred_transfer_characteristics,
              message.fields.at("preferred_transfer_characteristics"));
    expectConsumed(stream);
}

const std::map<int, std::function<void(const Message&, QVAvcSps&)>> kComparisons = {
    {0, compareBufferingPeriod},     {1, comparePictureTiming},         {6, compareRecoveryPoint},
    {47, compareDisplayOrientation}, {147, compareAlternativeTransfer},
};

struct Folder {
    const char* name;
    std::filesystem::path path;
    std::set<int> payloadTypes;  // the types of kComparisons that occur in its streams
};

void PrintTo(const Folder& folder, std::ostream* out) {
    *out << folder.path.string();
}

class StreamAvcSei : public CoreTest, public ::testing::WithParamInterface<Folder> {
protected:
    void SetUp() override {
        CoreTest::SetUp();
        if (!std::filesystem::is_directory(GetParam().path)) {
            GTEST_SKIP() << "there is no folder " << GetParam().path
                         << "; -DQVNALU_STREAMS_DIR=... names another";
        }
    }

    // Only the picture timing parser logs a line, which summarises what it read.
    static void expectOnlySummaries() {
        for (const LogLine& line : core().lines) {
            EXPECT_EQ(line.level, 3) << line.text;
            EXPECT_EQ(line.function, "parserAvcPictureTiming");
        }
        core().lines.clear();
    }
};

TEST_P(StreamAvcSei, everyFieldThatLibavcodecReads) {
    std::set<int> compared;
    for (const Stream& stream : streamsIn(GetParam().path)) {
        if (stream.codec() != QVCodecIDAvc) {
            continue;
        }
        SCOPED_TRACE(stream.name);
        QVAvcSps sps = hrdSps(stream);
        for (const auto& [payloadType, compare] : kComparisons) {
            for (const Message& message : messagesOf(stream, payloadType)) {
                if (!message.fields.empty()) {
                    SCOPED_TRACE(::testing::Message() << "payloadType " << payloadType << ", "
                                                      << ::testing::PrintToString(message.payload));
                    compare(message, sps);
                    compared.insert(payloadType);
                }
            }
        }
        expectOnlySummaries();
    }
    EXPECT_EQ(compared, GetParam().payloadTypes);
}

INSTANTIATE_TEST_SUITE_P(, StreamAvcSei,
                         ::testing::Values(Folder{"bundled", bundledStreams(), {0, 1}},
                                           Folder{"all", streamsFolder(), {0, 1, 6, 47, 147}}),
                         [](const auto& test) { return std::string(test.param.name); });

// --- Messages that libavcodec does not read: compared with how they were made ---

class NamedAvcSeiStream : public CoreTest {
protected:
    void SetUp() override {
        CoreTest::SetUp();
        if (!std::filesystem::is_directory(streamsFolder())) {
            GTEST_SKIP() << "there is no folder " << streamsFolder()
                         << "; -DQVNALU_STREAMS_DIR=... names another";
        }
    }

    static const Stream& streamNamed(const std::string& name) {
        static const std::vector<Stream> streams = streamsIn(streamsFolder());
        const auto found = std::find_if(streams.begin(), streams.end(),
                                        [&](const Stream& stream) { return stream.name == name; });
        if (found == streams.end()) {
            throw std::runtime_error("no stream " + name);
        }
        return *found;
    }

    static std::vector<Message> messagesOf(const std::string& name, int payloadType) {
        return qv_test::messagesOf(streamNamed(name), payloadType);
    }
};

// Fields: isValid, id, cancel flag, type, period, content interpretation, quincunx, current frame is frame 0.
using FramePacking = QVAvcSeiFramePacking;

constexpr FramePacking kSideBySide = {1, 0, 0, 3, 1, 1, 0, 0};
constexpr FramePacking kCancelled = {0, 0, 1, 0, 0, 0, 0, 0};

struct FramePackingStream {
    std::string name;
    std::vector<FramePacking> messages;
};

const FramePackingStream kFramePackingStreams[] = {
    {"avc_framepack_0.h264", {{1, 0, 0, 0, 1, 1, 1, 0}, {1, 0, 0, 0, 1, 1, 1, 0}}},
    {"avc_framepack_1.h264", {{1, 0, 0, 1, 1, 1, 0, 0}, {1, 0, 0, 1, 1, 1, 0, 0}}},
    {"avc_framepack_2.h264", {{1, 0, 0, 2, 1, 1, 0, 0}, {1, 0, 0, 2, 1, 1, 0, 0}}},
    {"avc_framepack_3.h264", {kSideBySide, kSideBySide}},
    {"avc_framepack_4.h264", {{1, 0, 0, 4, 1, 1, 0, 0}, {1, 0, 0, 4, 1, 1, 0, 0}}},
    {"avc_framepack_5.h264",
     {{1, 0, 0, 5, 0, 1, 0, 1},
      {1, 0, 0, 5, 0, 1, 0, 1},
      {1, 0, 0, 5, 0, 1, 0, 0},
      {1, 0, 0, 5, 0, 1, 0, 0},
      {1, 0, 0, 5, 0, 1, 0, 1}}},
    {"avc_framepack_6.h264", {{1, 0, 0, 6, 1, 0, 0, 0}, {1, 0, 0, 6, 1, 0, 0, 0}}},
    {"avc_framepack_7.h264", {{1, 0, 0, 7, 1, 1, 0, 0}, {1, 0, 0, 7, 1, 1, 0, 0}}},
    {"avc_gst_x264_intl.h264", {{1, 0, 0, 4, 1, 1, 0, 0}, {1, 0, 0, 4, 1, 1, 0, 0}}},
    {"avc_many_sei.h264", {kSideBySide, kSideBySide}},
    {"avc_multi_message.h264", {kSideBySide, kSideBySide}},
    {"avc_fpa_variants.h264",
     {kSideBySide,
      {1, 0, 0, 5, 1, 1, 0, 1},
      {1, 0, 0, 5, 1, 1, 0, 0},
      {1, 0, 0, 4, 1, 1, 1, 0},
      {1, 7, 0, 1, 1, 1, 0, 0},
      kCancelled,
      {1, 300, 0, 7, 1, 2, 0, 0}}},
};

TEST_F(NamedAvcSeiStream, framePacking) {
    for (const FramePackingStream& expected : kFramePackingStreams) {
        SCOPED_TRACE(expected.name);
        const std::vector<Message> messages = messagesOf(expected.name, 45);
        ASSERT_EQ(messages.size(), expected.messages.size());
        for (size_t i = 0; i < messages.size(); ++i) {
            SCOPED_TRACE(::testing::PrintToString(messages[i].payload));
            PayloadStream stream(messages[i].payload);
            FramePacking record{};
            EXPECT_EQ(
                QVNaluParser::parserAvcFramePackingArrangement(stream, sizeOf(messages[i].payload), &record),
                kOk);
            EXPECT_TRUE(sameFields(fieldsOf(record), fieldsOf(expected.messages[i])));
            expectConsumed(stream);
        }
    }
    expectNoLines();
}

// The encoder writes one more arrangement into each message: 6 bytes, then 12, and so on. The syntax allows
// one.
TEST_F(NamedAvcSeiStream, framePackingWithMoreBehindIt) {
    const std::vector<Message> messages = messagesOf("avc_jm_sei_vui.h264", 45);
    ASSERT_EQ(messages.size(), 7U);
    for (size_t i = 0; i < messages.size(); ++i) {
        ASSERT_EQ(messages[i].payload.size(), 6 * (i + 1));
        PayloadStream stream(messages[i].payload);
        FramePacking record{};
        EXPECT_EQ(QVNaluParser::parserAvcFramePackingArrangement(stream, 6, &record), kOk);
        EXPECT_TRUE(sameFields(fieldsOf(record), fieldsOf(FramePacking{1, 0, 0, 3, 0, 0, 0, 0})));
        EXPECT_EQ(cursorOf(stream), atBit(48));
    }
    expectNoLines();
}

TEST_F(NamedAvcSeiStream, greenMetadata) {
    const QVAvcSeiGreenMetaData expected[] = {
        {0, 0, 0, 0, 30, 60, 90, 120, 0, 0},   {0, 1, 0, 0, 30, 60, 90, 120, 0, 0},
        {0, 2, 258, 0, 30, 60, 90, 120, 0, 0}, {0, 3, 0, 7, 30, 60, 90, 120, 0, 0},
        {1, 0, 0, 0, 0, 0, 0, 0, 0, 4200},     {1, 0, 0, 0, 0, 0, 0, 0, 0, 0},
        {2, 0, 0, 0, 0, 0, 0, 0, 0, 0},        {0, 0, 0, 0, 30, 60, 90, 120, 0, 0},
        {1, 0, 0, 0, 0, 0, 0, 0, 0, 4200},
    };
    const std::vector<Message> messages = messagesOf("avc_green.h264", 56);
    ASSERT_EQ(messages.size(), std::size(expected));
    for (size_t i = 0; i < messages.size(); ++i) {
        SCOPED_TRACE(i);
        PayloadStream stream(messages[i].payload);
        QVAvcSeiGreenMetaData record{};
        EXPECT_EQ(QVNaluParser::parserAvcGreenMetaData(stream, sizeOf(messages[i].payload), &record), kOk);
        EXPECT_TRUE(sameFields(fieldsOf(record), fieldsOf(expected[i])));
        expectConsumed(stream);
    }
    expectNoLines();
}

// libavcodec rejects the message too.
TEST_F(NamedAvcSeiStream, recoveryPointOutOfRange) {
    const std::vector<Message> messages = messagesOf("avc_recovery_variants.h264", 6);
    ASSERT_EQ(messages.size(), 6U);
    EXPECT_TRUE(messages[4].fields.empty());
    PayloadStream stream(messages[4].payload);
    QVAvcSeiRecoveryPoint record{};
    EXPECT_EQ(QVNaluParser::parserAvcRecoveryPoint(stream, sizeOf(messages[4].payload), &record), kFailed);
    EXPECT_EQ(record.recovery_frame_cnt, 0U);
    expectLines({errorLine("parserAvcRecoveryPoint",
                           "parserAvcSeiRecoveryPoint: recovery_frame_cnt(65536) is out of range.\n")});
}

// --- Registered user data ---

struct UserDataOutcome {
    int result;
    QVAvcSeiAfd record;
    Cursor cursor;
};

UserDataOutcome parseUserData(const Bytes& payload) {
    PayloadStream stream(payload);
    QVAvcSeiAfd record{};
    const int result = QVNaluParser::parserAvcRegisteredUserData(stream, sizeOf(payload), &record, nullptr);
    return {result, record, cursorOf(stream)};
}

void expectNoFormat(const UserDataOutcome& outcome) {
    EXPECT_EQ(outcome.record.isValid, 0U);
    EXPECT_EQ(outcome.record.active_format, 0U);
}

TEST_F(NamedAvcSeiStream, captionsAreWalkedToTheirEnd) {
    for (const char* name : {"avc_a53_hand.h264", "avc_a53_x264.h264", "avc_a53_x264_hrd.h264", "avc_cc.mkv",
                             "avc_cc.mp4", "avc_cc.ts", "avc_cc.ts.es.h264"}) {
        SCOPED_TRACE(name);
        const std::vector<Message> messages = messagesOf(name, 4);
        ASSERT_EQ(messages.size(), 30U);
        for (const Message& message : messages) {
            const UserDataOutcome outcome = parseUserData(message.payload);
            EXPECT_EQ(outcome.result, kOk);
            EXPECT_EQ(outcome.cursor, atBit(message.payload.size() * 8));
            expectNoFormat(outcome);
        }
    }
    expectNoLines();
}

TEST_F(NamedAvcSeiStream, D18_captionVariants) {
    // Twenty constructs; none, where marker_bits are not skipped; process_cc_data_flag 0; provider code
    // 0x002F; country code extension; bar data; two captions and an active format.
    const struct {
        size_t size;
        uint64_t bitsConsumed;
    } expected[] = {{71, 71 * 8}, {11, 10 * 8}, {17, 8 * 8 + 2}, {17, 17 * 8}, {18, 18 * 8},
                    {13, 13 * 8}, {17, 17 * 8}, {9, 9 * 8},      {26, 26 * 8}, {17, 17 * 8}};
    const std::vector<Message> messages = messagesOf("avc_a53_variants.h264", 4);
    ASSERT_EQ(messages.size(), std::size(expected));
    for (size_t i = 0; i < messages.size(); ++i) {
        SCOPED_TRACE(i);
        ASSERT_EQ(messages[i].payload.size(), expected[i].size);
        const UserDataOutcome outcome = parseUserData(messages[i].payload);
        EXPECT_EQ(outcome.result, kOk);
        EXPECT_EQ(outcome.cursor, atBit(expected[i].bitsConsumed));
        EXPECT_EQ(outcome.record.active_format, i == 7 ? 8U : 0U);
    }
    expectNoLines();
}

TEST_F(NamedAvcSeiStream, captionsFollowedByMoreZeroBytes) {
    const std::vector<Message> messages = messagesOf("avc_emulation.h264", 4);
    ASSERT_EQ(messages.size(), 1U);
    const UserDataOutcome outcome = parseUserData(messages[0].payload);
    EXPECT_EQ(outcome.result, kOk);
    EXPECT_EQ(outcome.cursor, atBit(14 * 8)) << "one construct and marker_bits";
    expectNoLines();
}

TEST_F(NamedAvcSeiStream, activeFormats) {
    const Stream& stream = streamNamed("avc_afd.h264");
    const std::vector<Message> messages = qv_test::messagesOf(stream, 4);
    ASSERT_EQ(messages.size(), 23U);
    std::vector<uint32_t> formats;
    for (size_t i = 0; i < 21; ++i) {
        const UserDataOutcome outcome = parseUserData(messages[i].payload);
        EXPECT_EQ(outcome.result, kOk);
        EXPECT_EQ(outcome.cursor, atBit(messages[i].payload.size() * 8));
        if (outcome.record.isValid == 1) {
            formats.push_back(outcome.record.active_format);
        }
    }
    expectNoLines();
    std::vector<uint32_t> expected(10, 8);
    expected.insert(expected.end(), 5, 10);
    expected.insert(expected.end(), 5, 15);
    EXPECT_EQ(formats, expected);

    const json& decoded = stream.expectation.at("decoded_frames");
    EXPECT_EQ(decoded.at("side_data_counts").at("Active format description"), formats.size());
    EXPECT_EQ(decoded.at("side_data_first").at("Active format description").at("active_format"), formats[0]);
}

// Messages that were truncated by hand after the identifier and after active_format_flag.
TEST_F(NamedAvcSeiStream, activeFormatsCutShort) {
    const std::vector<Message> messages = messagesOf("avc_afd.h264", 4);
    ASSERT_EQ(messages.size(), 23U);
    for (size_t i = 21; i < 23; ++i) {
        const UserDataOutcome outcome = parseUserData(messages[i].payload);
        EXPECT_EQ(outcome.result, kFailed);
        expectNoFormat(outcome);
    }
    expectLines(
        {errorLine("parserAvcRegisteredUserDataAfd", "parserAvcRegisteredUserData afd: size:-1 error.\n"),
         errorLine("parserAvcRegisteredUserDataAfd", "parserAvcRegisteredUserData afd: size:-1 error 2.\n")});
}

TEST_F(NamedAvcSeiStream, userDataOfOtherProvidersIsPassedOver) {
    const std::vector<Message> messages = messagesOf("avc_hdr_sei_hand.h264", 4);
    ASSERT_EQ(messages.size(), 10U);
    for (size_t i = 0; i < 9; ++i) {
        const UserDataOutcome outcome = parseUserData(messages[i].payload);
        EXPECT_EQ(outcome.result, kOk);
        EXPECT_EQ(outcome.cursor, atBit(messages[i].payload.size() * 8));
        expectNoFormat(outcome);
    }
    expectNoLines();
}

// H.264 D.1.6 lets other providers use payloads of any size. The parser rejects one that is too short for an
// identifier.
TEST_F(NamedAvcSeiStream, userDataOfAnotherProviderWithoutRoomForAnIdentifierIsRefused) {
    const std::vector<Message> messages = messagesOf("avc_hdr_sei_hand.h264", 4);
    ASSERT_EQ(messages.size(), 10U);
    ASSERT_EQ(messages[9].payload.size(), 6U);
    const UserDataOutcome outcome = parseUserData(messages[9].payload);
    EXPECT_EQ(outcome.result, kFailed);
    EXPECT_EQ(outcome.cursor, atBit(0));
    expectLines({errorLine("parserAvcRegisteredUserData", "parserAvcRegisteredUserData: size:6 error.\n")});
}

}  // namespace
}  // namespace qv_test
