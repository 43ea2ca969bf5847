// Compares the H.265 SEI payload parsers with libavcodec on the messages of real streams: with the fields it
// reads and with the side data of decoded frames. A test notes where a parser departs from the standard by
// design.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string>

#include "HevcMessages.h"
#include "HevcSeiRecords.h"
#include "HevcSeiSyntax.h"
#include "QVNaluParser.h"
#include "StreamExpectation.h"
#include "SyntaxElements.h"

namespace qv_test {
namespace {

using nlohmann::json;

class StreamHevcSei : public CoreTest {
protected:
    void SetUp() override {
        CoreTest::SetUp();
        if (!std::filesystem::is_directory(streamsFolder())) {
            GTEST_SKIP() << "there is no folder " << streamsFolder()
                         << "; -DQVNALU_STREAMS_DIR=... names another";
        }
    }

    // Calls check for each message of payloadType, with its stream.
    template <typename Check>
    static void forEachMessage(int payloadType, Check check) {
        for (const HevcStream& stream : hevcStreamsWith(payloadType)) {
            for (const HevcMessage& message : stream.messages) {
                SCOPED_TRACE(stream.name + ": " + message.hex);
                check(message, stream);
            }
        }
    }
};

uint64_t bitsOf(const HevcMessage& message) {
    return message.payload.size() * 8;
}

// Returns the numerator of "numerator/denominator".
uint32_t numeratorOver(const std::string& denominator, const json& fraction) {
    const std::string text = fraction;
    const size_t slash = text.find('/');
    EXPECT_EQ(text.substr(slash + 1), denominator);
    return static_cast<uint32_t>(std::stoul(text.substr(0, slash)));
}

// --- Mastering display colour volume ---

QVHevcSeiMasteringDisplay parseMasteringDisplay(const HevcMessage& message) {
    PayloadStream stream(message.payload);
    const auto parsed = parse(&QVNaluParser::parserHevcMasteringDisplayInfo, stream, message.payloadSize);
    EXPECT_EQ(parsed.result, 0);
    EXPECT_EQ(parsed.cursor, atBit(std::min<uint64_t>(bitsOf(message), 192)));
    EXPECT_EQ(parsed.record.isValid, 2U);
    return parsed.record;
}

QVHDR10StaticMetadata hdr10Metadata(const HevcMessage& message) {
    Bytes payload = message.payload;
    QVHDR10StaticMetadata metadata = patternRecord<QVHDR10StaticMetadata>();
    const QVSeiItem item = {QVCodecIDHevc, 137, static_cast<uint32_t>(payload.size()), false, payload.data()};
    EXPECT_EQ(QVNaluParser::fillHDR10StaticMetadataFromHevcMasteringDisplayInfoSei(item, &metadata), 0);
    return metadata;
}

Fields withoutIsValid(const QVHevcSeiMasteringDisplay& record) {
    Fields fields = fieldsOf(record);
    fields.erase(fields.begin());
    return fields;
}

// libavcodec ignores a payload of fewer than 24 bytes. The parser reads it as if zero bytes followed.
TEST_F(StreamHevcSei, D19_masteringDisplay) {
    size_t shortPayloads = 0;
    forEachMessage(137, [&](const HevcMessage& message, const HevcStream& /*stream*/) {
        const QVHevcSeiMasteringDisplay record = parseMasteringDisplay(message);
        const QVHDR10StaticMetadata metadata = hdr10Metadata(message);
        EXPECT_EQ(fieldsOf(metadata), withoutIsValid(record));
        if (message.fields.is_null()) {
            ASSERT_LT(message.payload.size(), 24U);
            HevcMessage filledUp = message;
            filledUp.payload.resize(24);
            EXPECT_EQ(fieldsOf(record), fieldsOf(parseMasteringDisplay(filledUp)));
            ++shortPayloads;
            return;
        }
        for (const auto& [name, value] : withoutIsValid(record)) {
            EXPECT_EQ(value, message.fields.at(name)) << name;
        }
    });
    EXPECT_EQ(shortPayloads, 1U) << "the truncated payload of hevc_mdcv_variants";
    expectNoLines();
}

// The decoder names the primaries by colour. Their order in the bitstream is green, blue, red.
TEST_F(StreamHevcSei, masteringDisplayOfTheDecodedFrames) {
    size_t compared = 0;
    for (const HevcStream& stream : hevcStreamsWith(137)) {
        SCOPED_TRACE(stream.name);
        const json sideData = stream.sideData.value("Mastering display metadata", json());
        if (sideData.is_null()) {
            continue;
        }
        const QVHevcSeiMasteringDisplay record = parseMasteringDisplay(stream.messages.front());
        const char* const colours[] = {"green", "blue", "red"};
        for (int c = 0; c < 3; ++c) {
            const std::string colour = colours[c];
            EXPECT_EQ(record.display_primaries_x[c], numeratorOver("50000", sideData.at(colour + "_x")));
            EXPECT_EQ(record.display_primaries_y[c], numeratorOver("50000", sideData.at(colour + "_y")));
        }
        EXPECT_EQ(record.white_point_x, numeratorOver("50000", sideData.at("white_point_x")));
        EXPECT_EQ(record.white_point_y, numeratorOver("50000", sideData.at("white_point_y")));
        EXPECT_EQ(record.max_display_mastering_luminance,
                  numeratorOver("10000", sideData.at("max_luminance")));
        EXPECT_EQ(record.min_display_mastering_luminance,
                  numeratorOver("10000", sideData.at("min_luminance")));
        ++compared;
    }
    EXPECT_GE(compared, 15U);
}

// --- Content light level ---

QVHevcSeiContentLight parseContentLight(const HevcMessage& message) {
    PayloadStream stream(message.payload);
    const auto parsed = parse(&QVNaluParser::parserHevcContentLightInfo, stream, message.payloadSize);
    EXPECT_EQ(parsed.result, 0);
    EXPECT_EQ(parsed.cursor, atBit(std::min<uint64_t>(bitsOf(message), 32)));
    EXPECT_EQ(parsed.record.isValid, 2U);
    return parsed.record;
}

TEST_F(StreamHevcSei, D19_contentLight) {
    size_t shortPayloads = 0;
    forEachMessage(144, [&](const HevcMessage& message, const HevcStream& /*stream*/) {
        const QVHevcSeiContentLight record = parseContentLight(message);
        if (message.fields.is_null()) {
            EXPECT_EQ(message.hex, "03e8");
            EXPECT_EQ(fieldsOf(record), fieldsOf(QVHevcSeiContentLight{2, 1000, 0}));
            ++shortPayloads;
            return;
        }
        EXPECT_EQ(record.max_content_light_level, message.fields.at("max_content_light_level"));
        EXPECT_EQ(record.max_pic_average_light_level, message.fields.at("max_pic_average_light_level"));
    });
    EXPECT_EQ(shortPayloads, 1U) << "the truncated payload of hevc_mdcv_variants";
    expectNoLines();
}

TEST_F(StreamHevcSei, contentLightOfTheDecodedFrames) {
    size_t compared = 0;
    for (const HevcStream& stream : hevcStreamsWith(144)) {
        SCOPED_TRACE(stream.name);
        const json sideData = stream.sideData.value("Content light level metadata", json());
        if (sideData.is_null()) {
            continue;
        }
        const QVHevcSeiContentLight record = parseContentLight(stream.messages.front());
        EXPECT_EQ(record.max_content_light_level, sideData.at("max_content"));
        EXPECT_EQ(record.max_pic_average_light_level, sideData.at("max_average"));
        ++compared;
    }
    EXPECT_GE(compared, 15U);
}

// --- Alternative transfer characteristics ---

TEST_F(StreamHevcSei, alternativeTransfer) {
    std::set<uint32_t> codes;
    forEachMessage(147, [&](const HevcMessage& message, const HevcStream& /*stream*/) {
        PayloadStream stream(message.payload);
        const auto parsed = parse(&QVNaluParser::parserHevcAlternativeTransfer, stream, message.payloadSize);
        // libavcodec ignores an empty payload. The parser reads the code 0.
        EXPECT_EQ(message.fields.is_null(), message.payload.empty());
        const uint32_t code = message.fields.is_null()
                                  ? 0
                                  : message.fields.at("preferred_transfer_characteristics").get<uint32_t>();
        expectParsed(parsed, QVHevcSeiAlternativeTransfer{1, code}, atBit(bitsOf(message)));
        codes.insert(code);
    });
    EXPECT_EQ(codes.count(18), 1U) << "hybrid log-gamma";
    EXPECT_EQ(codes.count(0), 1U);
    expectNoLines();
}

// --- Picture timing ---

// H.265 Table D.2.
uint32_t fieldParityOf(uint32_t pic_struct) {
    const std::set<uint32_t> topFields = {1, 9, 11};
    const std::set<uint32_t> bottomFields = {2, 10, 12};
    return topFields.count(pic_struct) != 0 ? 1 : bottomFields.count(pic_struct) != 0 ? 2 : 0;
}

TEST_F(StreamHevcSei, D21_pictureTiming) {
    std::set<uint32_t> picStructs;
    size_t withoutFieldInfo = 0;
    forEachMessage(1, [&](const HevcMessage& message, const HevcStream& stream) {
        QVHevcSps sps{};
        sps.frame_field_info_present_flag = stream.sps.value("frame_field_info_present_flag", 0);
        QVHevcSeiPictureTiming expected = patternRecord<QVHevcSeiPictureTiming>();
        if (sps.frame_field_info_present_flag == 1) {
            const uint32_t pic_struct = message.fields.at("pic_struct");
            expected.fieldParity = fieldParityOf(pic_struct);
            picStructs.insert(pic_struct);
        } else {
            ++withoutFieldInfo;
        }
        PayloadStream payload(message.payload);
        QVHevcSeiPictureTiming record = patternRecord<QVHevcSeiPictureTiming>();
        EXPECT_EQ(QVNaluParser::parserHevcPictureTiming(payload, message.payloadSize, &record, &sps), 0);
        EXPECT_EQ(fieldsOf(record), fieldsOf(expected));
        EXPECT_EQ(cursorOf(payload), atBit(bitsOf(message)));
    });
    EXPECT_EQ(picStructs, (std::set<uint32_t>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    EXPECT_GT(withoutFieldInfo, 0U);
    expectNoLines();
}

// --- Decoded picture hash ---

void expectHash(const HevcMessage& message) {
    QVHevcSeiPictureHash expected = patternRecord<QVHevcSeiPictureHash>();
    const uint8_t hash_type = message.payload.at(0);
    if (message.fields.contains("hash_type")) {
        EXPECT_EQ(hash_type, message.fields.at("hash_type"));
    }
    if (hash_type == 0) {
        // Digest bytes past the payload are read as zeros. A monochrome picture has only one component's
        // digest.
        Bytes digests(message.payload.begin() + 1, message.payload.end());
        digests.resize(48);
        for (size_t i = 0; i < 48; ++i) {
            expected.picture_md5[i / 16][i % 16] = digests[i];
        }
        expected.md5Present = 1;
    }
    // One message of hevc_emulation has an extra byte after its CRC. Messages of monochrome pictures are
    // shorter.
    const std::map<int, uint64_t> sizes = {{0, 49}, {1, 7}, {2, 13}};
    const auto size = sizes.find(hash_type);
    const uint64_t end = size == sizes.end() ? 8 : std::min(size->second * 8, bitsOf(message));
    PayloadStream stream(message.payload);
    expectParsed(parse(&QVNaluParser::parserHevcPictureHash, stream, message.payloadSize), expected,
                 atBit(end));
}

TEST_F(StreamHevcSei, D20_pictureHash) {
    std::map<std::pair<int, size_t>, int> kinds;  // number of messages by hash_type and payload size
    forEachMessage(132, [&](const HevcMessage& message, const HevcStream& /*stream*/) {
        expectHash(message);
        ++kinds[{message.payload.at(0), message.payload.size()}];
    });
    const std::pair<int, size_t> expected[] = {{0, 49}, {0, 17}, {1, 7}, {2, 13}, {0, 2}, {7, 1}};
    for (const auto& kind : expected) {
        EXPECT_GT(kinds[kind], 0) << "hash_type " << kind.first << ", size " << kind.second;
    }
    expectNoLines();
}

TEST_F(StreamHevcSei, D13_pictureHashOfType256) {
    forEachMessage(256,
                   [](const HevcMessage& message, const HevcStream& /*stream*/) { expectHash(message); });
    expectNoLines();
}

// --- Active parameter sets ---

HevcActiveParameterSetsSyntax activeParameterSetsOf(const json& fields) {
    HevcActiveParameterSetsSyntax syntax;
    syntax.active_video_parameter_set_id = fields.at("active_video_parameter_set_id");
    syntax.self_contained_cvs_flag = fields.at("self_contained_cvs_flag");
    syntax.no_parameter_set_update_flag = fields.at("no_parameter_set_update_flag");
    syntax.num_sps_ids_minus1 = fields.at("num_sps_ids_minus1");
    syntax.active_seq_parameter_set_id.clear();
    for (size_t i = 0; i <= syntax.num_sps_ids_minus1; ++i) {
        syntax.active_seq_parameter_set_id.push_back(fields.at(indexed("active_seq_parameter_set_id", i)));
    }
    return syntax;
}

TEST_F(StreamHevcSei, D22_activeParameterSets) {
    std::set<uint32_t> counts;
    forEachMessage(129, [&](const HevcMessage& message, const HevcStream& /*stream*/) {
        const HevcActiveParameterSetsSyntax syntax = activeParameterSetsOf(message.fields);
        const BitWriter coded = hevcSei(syntax);
        const size_t lastRead = syntax.num_sps_ids_minus1 == 0 ? 0 : syntax.num_sps_ids_minus1 - 1;
        PayloadStream stream(message.payload);
        EXPECT_EQ(QVNaluParser::parserHevcActiveParameterSets(stream, message.payloadSize), 0);
        EXPECT_EQ(cursorOf(stream), atBit(endOf(coded, indexed("active_seq_parameter_set_id", lastRead))));
        counts.insert(syntax.num_sps_ids_minus1);
    });
    EXPECT_EQ(counts, (std::set<uint32_t>{0, 3, 15}));
    expectNoLines();
}

// --- Frame packing arrangement ---

HevcFramePackingSyntax arrangement(uint32_t id, uint32_t type, uint32_t quincunx, uint32_t interpretation,
                                   uint32_t currentFrameIsFrame0) {
    HevcFramePackingSyntax syntax;
    syntax.frame_packing_arrangement_id = id;
    syntax.frame_packing_arrangement_type = type;
    syntax.quincunx_sampling_flag = quincunx;
    syntax.content_interpretation_type = interpretation;
    syntax.current_frame_is_frame0_flag = currentFrameIsFrame0;
    return syntax;
}

HevcFramePackingSyntax withoutGrid(HevcFramePackingSyntax syntax) {
    syntax.frame0_grid_position_x = syntax.frame0_grid_position_y = 0;
    syntax.frame1_grid_position_x = syntax.frame1_grid_position_y = 0;
    return syntax;
}

// libavcodec does not read this message, so it is compared with the settings of its encoder.
TEST_F(StreamHevcSei, framePacking) {
    HevcFramePackingSyntax cancellation;
    cancellation.frame_packing_arrangement_cancel_flag = 1;
    const HevcFramePackingSyntax settings[] = {
        arrangement(0, 3, 0, 1, 0),
        arrangement(0, 4, 0, 1, 0),
        arrangement(0, 5, 0, 1, 0),
        arrangement(0, 5, 0, 1, 1),
        arrangement(0, 3, 1, 1, 0),
        arrangement(300, 4, 0, 2, 0),
        cancellation,
        withoutGrid(arrangement(0, 3, 0, 1, 0)),
        withoutGrid(arrangement(0, 4, 0, 0, 0)),
        arrangement(2, 5, 0, 0, 0),
    };
    std::map<Bytes, HevcFramePackingSyntax> byPayload;
    for (const HevcFramePackingSyntax& syntax : settings) {
        BitWriter coded = hevcSei(syntax);
        byPayload[coded.bitCount() % 8 == 0 ? coded.bytes() : coded.trailingBits().bytes()] = syntax;
    }
    std::set<Bytes> seen;
    forEachMessage(45, [&](const HevcMessage& message, const HevcStream& /*stream*/) {
        ASSERT_EQ(byPayload.count(message.payload), 1U) << "not one of the encoders' settings";
        const HevcFramePackingSyntax& syntax = byPayload[message.payload];
        QVHevcSeiFramePacking expected = patternRecord<QVHevcSeiFramePacking>();
        expected.isValid = 0;
        if (syntax.frame_packing_arrangement_cancel_flag == 0) {
            expected = {1, syntax.frame_packing_arrangement_type, syntax.content_interpretation_type,
                        syntax.quincunx_sampling_flag, syntax.current_frame_is_frame0_flag};
        }
        PayloadStream stream(message.payload);
        expectParsed(parse(&QVNaluParser::parserHevcFramePacking, stream, message.payloadSize), expected,
                     atBit(hevcSei(syntax).bitCount()));
        seen.insert(message.payload);
    });
    EXPECT_EQ(seen.size(), std::size(settings));
    expectNoLines();
}

// --- Display orientation ---

std::string orientationText(const json& fields) {
    return "HevcSeiDisplayOrientationInfo: hflip:" + std::to_string(fields.at("hor_flip").get<int>()) +
           ",vflip:" + std::to_string(fields.at("ver_flip").get<int>()) +
           ",anticlockwise_rotation:" + std::to_string(fields.at("anticlockwise_rotation").get<int>()) + ".";
}

TEST_F(StreamHevcSei, displayOrientation) {
    size_t cancellations = 0;
    std::set<std::string> texts;
    forEachMessage(47, [&](const HevcMessage& message, const HevcStream& /*stream*/) {
        PayloadStream stream(message.payload);
        QVHevcSeiDisplayOrientation record = patternRecord<QVHevcSeiDisplayOrientation>();
        std::vector<QVSeiItem> items;
        EXPECT_EQ(QVNaluParser::parserHevcDisplayOrientation(stream, message.payloadSize, items, &record), 0);
        if (message.fields.at("display_orientation_cancel_flag") == 1) {
            QVHevcSeiDisplayOrientation cancelled = patternRecord<QVHevcSeiDisplayOrientation>();
            cancelled.isValid = 0;
            EXPECT_EQ(fieldsOf(record), fieldsOf(cancelled));
            EXPECT_EQ(cursorOf(stream), atBit(1));
            EXPECT_TRUE(items.empty());
            ++cancellations;
            return;
        }
        const QVHevcSeiDisplayOrientation expected = {1, message.fields.at("anticlockwise_rotation"),
                                                      message.fields.at("hor_flip"),
                                                      message.fields.at("ver_flip")};
        EXPECT_EQ(fieldsOf(record), fieldsOf(expected));
        EXPECT_EQ(cursorOf(stream), atBit(20));
        ASSERT_EQ(items.size(), 1U);
        const std::string text = orientationText(message.fields);
        EXPECT_EQ(keptItem(items[0]),
                  (KeptItem{172, 47, false, Bytes(text.c_str(), text.c_str() + text.size() + 1)}));
        releaseBlock(items[0].payloadData);
        texts.insert(text);
    });
    EXPECT_EQ(cancellations, 1U);
    EXPECT_EQ(texts.size(), 5U);
    expectNoLines();
}

// --- User data registered by ITU-T T.35 ---

const ExpectedLine kNoHeader = {0, "parserHevcRegisteredUserData",
                                "parserHevcRegisteredUserData: payloadSize < 7 !\n"};
const ExpectedLine kNoCaptions = {0, "parserHevcRegisteredUserDataClosedCaption",
                                  "parserHevcRegisteredUserDataClosedCaption: payloadSize < 7 !\n"};

void expectUserData(const HevcMessage& message, int result, uint64_t bit,
                    const std::vector<ExpectedLine>& lines) {
    core().lines.clear();
    PayloadStream stream(message.payload);
    QVHevcSeiA53Caption record = patternRecord<QVHevcSeiA53Caption>();
    EXPECT_EQ(QVNaluParser::parserHevcRegisteredUserData(stream, message.payloadSize, &record), result);
    EXPECT_EQ(cursorOf(stream), atBit(bit));
    EXPECT_EQ(bytesOf(record), bytesOf(patternRecord<QVHevcSeiA53Caption>()));
    EXPECT_EQ(core().lines.size(), lines.size());
    for (size_t i = 0; i < lines.size() && i < core().lines.size(); ++i) {
        EXPECT_EQ(core().lines[i].function, lines[i].function);
        EXPECT_EQ(core().lines[i].text, lines[i].text);
    }
}

// Captions and two kinds of dynamic metadata, with whole payloads. A payload too short for a T.35 header and
// an identifier is rejected.
TEST_F(StreamHevcSei, registeredUserData) {
    std::set<std::string> kinds;
    for (const HevcStream& stream : hevcStreamsWith(4)) {
        if (stream.name == "hevc_a53_variants.h265") {
            continue;  // has its own test
        }
        for (const HevcMessage& message : stream.messages) {
            SCOPED_TRACE(stream.name + ": " + message.hex);
            if (message.payloadSize < 7) {
                expectUserData(message, 11000001, 0, {kNoHeader});
                kinds.insert("short");
            } else {
                expectUserData(message, 0, bitsOf(message), {});
                kinds.insert(message.hex.substr(0, 8));
            }
        }
    }
    EXPECT_EQ(kinds, (std::set<std::string>{"short", "26000400", "b5003147", "b5003c00"}));
}

// D18: libavcodec attaches captions to only two frames. The parser also accepts captions of another provider
// and of an extended country code.
TEST_F(StreamHevcSei, D18_captionVariants) {
    const HevcStream stream = hevcStreamWith(4, "hevc_a53_variants.h265");
    EXPECT_EQ(stream.sideDataCounts.at("ATSC A53 Part 4 Closed Captions"), 2);
    const struct {
        const char* what;
        int payloadSize;
        int result;
        uint64_t bit;
        std::vector<ExpectedLine> lines;
    } rows[] = {
        {"20 constructs", 71, 0, 71 * 8, {}},
        {"no construct", 11, 0, 10 * 8, {}},
        {"not to be processed", 17, 0, 8 * 8 + 2, {}},
        {"31 constructs, 96 bytes in the expectation", 104, 0, 96 * 8, {}},
        {"another provider", 17, 0, 17 * 8, {}},
        {"an extended country code", 18, 0, 18 * 8, {}},
        {"bar data", 13, 0, 13 * 8, {}},
        {"active format description", 9, 0, 9 * 8, {}},
        {"nothing after GA94", 7, 11000001, 7 * 8, {kNoCaptions}},
        {"nothing after GA94", 7, 11000001, 7 * 8, {kNoCaptions}},
        {"two bytes after GA94", 9, 11000001, 7 * 8, {kNoCaptions}},
        {"another message of six bytes", 6, 11000001, 0, {kNoHeader}},
    };
    ASSERT_EQ(stream.messages.size(), std::size(rows));
    for (size_t i = 0; i < std::size(rows); ++i) {
        SCOPED_TRACE(rows[i].what);
        ASSERT_EQ(stream.messages[i].payloadSize, rows[i].payloadSize);
        expectUserData(stream.messages[i], rows[i].result, rows[i].bit, rows[i].lines);
    }
}

}  // namespace
}  // namespace qv_test
