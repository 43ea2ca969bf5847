// Compares the framing operations with the results of other tools on real streams.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "QVNaluParser.h"
#include "RecordingCore.h"
#include "ReferenceFraming.h"
#include "StreamExpectation.h"
#include "StreamFolder.h"

namespace qv_test {
namespace {

using Info = QVNaluParser::NaluInfo;
using nlohmann::json;

int sizeOf(const Bytes& bytes) {
    return static_cast<int>(bytes.size());
}

// Returns nal_unit_type (H.264 7.3.1, H.265 7.3.1.2) whatever forbidden_zero_bit is.
int typeOf(QVCodecID codec, uint8_t firstByte) {
    return codec == QVCodecIDAvc ? firstByte % 32 : firstByte / 2 % 64;
}

// row is the tools' row for a unit: [..., type, nal_ref_idc] for H.264, [..., type, nuh_layer_id,
// temporal_id] for H.265.
bool isNonReference(QVCodecID codec, const json& row, size_t typeColumn) {
    static const std::set<int> hevcNonReferenceTypes = {0, 2, 4, 6, 8, 10, 12, 14};
    const int type = row[typeColumn];
    return codec == QVCodecIDAvc ? type == 1 && row[typeColumn + 1] == 0
                                 : hevcNonReferenceTypes.count(type) == 1;
}

bool holdsKeyUnit(const json& types) {
    static const std::set<int> keyUnitTypes = {5, 16, 17, 18, 19, 20, 21};
    return std::any_of(types.begin(), types.end(),
                       [](const json& type) { return keyUnitTypes.count(type.get<int>()) == 1; });
}

// Returns the expected result for a sample with 4-byte lengths. If the first unit has 1 or 256 to 511 bytes,
// its length looks like a start code, 00 00 00 01 or 00 00 01 xx, and the sample is searched as a byte
// stream.
bool isKeySample(QVCodecID codec, const Bytes& sample, const json& types) {
    return referenceIsAnnexB(sample) ? referenceIsKeyFrame(codec, sample) : holdsKeyUnit(types);
}

struct Packet {
    const unsigned char* data;
    int size;
    json types;  // the types of its units
};

std::vector<Packet> packetsOf(const Stream& stream) {
    std::vector<Packet> packets;
    for (const json& row : stream.expectation.at("packets").at("first")) {
        const size_t offset = row[0];
        const size_t size = row[1];
        EXPECT_LE(offset + size, stream.bytes.size());
        packets.push_back({stream.bytes.data() + offset, static_cast<int>(size), row[3]});
    }
    EXPECT_EQ(packets.size(), stream.expectation.at("packets").at("total")) << "not every packet is listed";
    return packets;
}

class StreamFraming : public StreamFolderTest<CoreTest> {
protected:
    // Calls check for each stream with that framing.
    template <typename Check>
    static void forEachStream(const std::string& framing, Check check) {
        const std::vector<Stream> streams = streamsIn(GetParam().path, framing);
        ASSERT_FALSE(streams.empty());
        for (const Stream& stream : streams) {
            SCOPED_TRACE(stream.name);
            check(stream);
        }
        expectNoLines();
        EXPECT_TRUE(core().dumps.empty());
    }

    static NalIndexList unitsOf(const Stream& stream) {
        NalIndexList nalus;
        EXPECT_EQ(QVNaluParser::parserDataToNaluIdx(stream.bytes.data(), sizeOf(stream.bytes), nalus), 0);
        return nalus;
    }

    static std::vector<Info> typedUnits(const unsigned char* data, int size,
                                        const QVCodecParameters& params) {
        std::vector<Info> infos;
        EXPECT_EQ(QVNaluParser::parserDataToNaluType(data, size, infos, &params), 0);
        return infos;
    }

    static Bytes toLengths(const Bytes& byteStream) {
        Bytes out;
        EXPECT_EQ(QVNaluParser::converAnnexBToAvcC(byteStream.data(), sizeOf(byteStream), out), 0);
        return out;
    }

    static Bytes toAnnexB(const unsigned char* data, int size, int lengthSize) {
        unsigned char* out = nullptr;
        int outSize = 0;
        EXPECT_EQ(QVNaluParser::connvertAvcCToAnnexB(data, size, lengthSize, &out, outSize), 0);
        const Bytes bytes(out, out + outSize);
        if (out != nullptr) {
            releaseBlock(out);
        }
        return bytes;
    }
};

TEST_P(StreamFraming, filesAreThoseDescribed) {
    for (const Stream& stream : streamsIn(GetParam().path)) {
        EXPECT_EQ(sha256(stream.bytes), stream.expectation.at("sha256")) << stream.name;
    }
}

// --- Byte streams ---

TEST_P(StreamFraming, unitsOfAByteStream) {
    forEachStream("annexb", [](const Stream& stream) {
        std::string lines;
        std::map<std::string, int> typeCounts;
        const NalIndexList nalus = unitsOf(stream);
        for (const auto& [offset, length] : nalus) {
            const int type = typeOf(stream.codec(), stream.bytes.at(static_cast<size_t>(offset)));
            lines +=
                std::to_string(offset) + " " + std::to_string(length) + " " + std::to_string(type) + "\n";
            ++typeCounts[std::to_string(type)];
        }
        const json& expected = stream.expectation.at("nal_units");
        EXPECT_EQ(nalus.size(), expected.at("total"));
        EXPECT_EQ(json(typeCounts), expected.at("type_counts"));
        EXPECT_EQ(sha256(lines), expected.at("list_sha256"));
        for (size_t i = 0; i < std::min(nalus.size(), expected.at("first").size()); ++i) {
            EXPECT_EQ(nalus[i].first, expected["first"][i][0]) << "unit " << i;
            EXPECT_EQ(nalus[i].second, expected["first"][i][1]) << "unit " << i;
        }
    });
}

TEST_P(StreamFraming, typedUnitsOfAByteStream) {
    forEachStream("annexb", [](const Stream& stream) {
        const json& expected = stream.expectation.at("nal_units");
        const json& forbidden = expected.at("forbidden_zero_bit_set");
        const auto infos =
            typedUnits(stream.bytes.data(), sizeOf(stream.bytes), QVCodecParameters{stream.codec(), 1, 0});
        size_t next = 0;
        for (size_t i = 0; i < expected.at("total"); ++i) {
            if (std::find(forbidden.begin(), forbidden.end(), i) != forbidden.end()) {
                continue;  // the tools list it, parserDataToNaluType does not
            }
            ASSERT_LT(next, infos.size());
            const Info& info = infos[next++];
            const json& row = expected.at("first").at(i);
            EXPECT_EQ(info.offset, row[0]) << "unit " << i;
            EXPECT_EQ(info.length, row[1]) << "unit " << i;
            EXPECT_EQ(info.naluType, row[2]) << "unit " << i;
            EXPECT_EQ(info.isNonReference, isNonReference(stream.codec(), row, 2)) << "unit " << i;
        }
        EXPECT_EQ(infos.size(), next);
    });
}

TEST_P(StreamFraming, keyFramesOfAByteStream) {
    forEachStream("annexb", [](const Stream& stream) {
        for (const Packet& packet : packetsOf(stream)) {
            EXPECT_EQ(QVNaluParser::isKeyFrame(stream.codec(), packet.data, packet.size),
                      holdsKeyUnit(packet.types))
                << "packet at " << packet.data - stream.bytes.data();
        }
    });
}

TEST_P(StreamFraming, byteStreamReframed) {
    forEachStream("annexb", [](const Stream& stream) {
        const json& expected = stream.expectation.at("reframed");
        const Bytes sample = toLengths(stream.bytes);
        EXPECT_EQ(sha256(sample), expected.at("all_units_with_4_byte_lengths_sha256"));
        const Bytes byteStream = toAnnexB(sample.data(), sizeOf(sample), 4);
        EXPECT_EQ(sha256(byteStream), expected.at("all_units_with_4_byte_start_codes_sha256"));
        EXPECT_EQ(toLengths(byteStream), sample);
    });
}

TEST_P(StreamFraming, keyFramesOfAReframedByteStream) {
    forEachStream("annexb", [](const Stream& stream) {
        for (const Packet& packet : packetsOf(stream)) {
            const Bytes sample = toLengths(Bytes(packet.data, packet.data + packet.size));
            EXPECT_EQ(QVNaluParser::isKeyFrame(stream.codec(), sample.data(), sizeOf(sample)),
                      isKeySample(stream.codec(), sample, packet.types))
                << "packet at " << packet.data - stream.bytes.data();
        }
    });
}

// --- Samples of containers ---

int lengthSizeOf(const Stream& stream) {
    return stream.expectation.at("framing").at("nal_length_size");
}

TEST_P(StreamFraming, unitsOfLengthPrefixedSamples) {
    forEachStream("length-prefixed", [](const Stream& stream) {
        std::string lines;
        size_t total = 0;
        const std::vector<Packet> packets = packetsOf(stream);
        for (size_t i = 0; i < packets.size(); ++i) {
            NalIndexList nalus;
            EXPECT_EQ(QVNaluParser::parserDataToNalus(packets[i].data, packets[i].size, nalus,
                                                      lengthSizeOf(stream)),
                      0);
            for (const auto& [offset, length] : nalus) {
                const int type = typeOf(stream.codec(), packets[i].data[offset]);
                lines += std::to_string(i) + " " + std::to_string(offset) + " " + std::to_string(length) +
                         " " + std::to_string(type) + "\n";
            }
            total += nalus.size();
        }
        EXPECT_EQ(total, stream.expectation.at("nal_units").at("total"));
        EXPECT_EQ(sha256(lines), stream.expectation.at("nal_units").at("list_sha256"));
    });
}

TEST_P(StreamFraming, typedUnitsOfLengthPrefixedSamples) {
    forEachStream("length-prefixed", [](const Stream& stream) {
        const json& rows = stream.expectation.at("nal_units").at("first");
        const QVCodecParameters params = {stream.codec(), 0, static_cast<uint8_t>(lengthSizeOf(stream))};
        size_t next = 0;
        for (const Packet& packet : packetsOf(stream)) {
            for (const Info& info : typedUnits(packet.data, packet.size, params)) {
                const json& row = rows.at(next++);
                EXPECT_EQ(info.offset, row[1]);
                EXPECT_EQ(info.length, row[2]);
                EXPECT_EQ(info.naluType, row[3]);
                EXPECT_EQ(info.isNonReference, isNonReference(stream.codec(), row, 3));
            }
        }
        EXPECT_EQ(next, stream.expectation.at("nal_units").at("total"));
    });
}

TEST_P(StreamFraming, lengthPrefixedSamplesReframed) {
    forEachStream("length-prefixed", [](const Stream& stream) {
        Bytes byteStream;
        Bytes lengths;
        for (const Packet& packet : packetsOf(stream)) {
            const Bytes reframed = toAnnexB(packet.data, packet.size, lengthSizeOf(stream));
            const Bytes back = toLengths(reframed);
            byteStream.insert(byteStream.end(), reframed.begin(), reframed.end());
            lengths.insert(lengths.end(), back.begin(), back.end());
        }
        const json& expected = stream.expectation.at("reframed");
        EXPECT_EQ(sha256(byteStream), expected.at("all_units_with_4_byte_start_codes_sha256"));
        EXPECT_EQ(sha256(lengths), expected.at("all_units_with_4_byte_lengths_sha256"));
    });
}

// Uses 4-byte lengths, which isKeyFrame reads, whatever the container's length size is.
TEST_P(StreamFraming, keyFramesOfLengthPrefixedSamples) {
    forEachStream("length-prefixed", [](const Stream& stream) {
        for (const Packet& packet : packetsOf(stream)) {
            const Bytes byteStream = toAnnexB(packet.data, packet.size, lengthSizeOf(stream));
            const Bytes sample = toLengths(byteStream);
            EXPECT_EQ(QVNaluParser::isKeyFrame(stream.codec(), byteStream.data(), sizeOf(byteStream)),
                      holdsKeyUnit(packet.types));
            EXPECT_EQ(QVNaluParser::isKeyFrame(stream.codec(), sample.data(), sizeOf(sample)),
                      isKeySample(stream.codec(), sample, packet.types));
        }
    });
}

INSTANTIATE_TEST_SUITE_P(From, StreamFraming, everyStreamFolder(), nameOf);

}  // namespace
}  // namespace qv_test
