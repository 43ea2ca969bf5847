// Framing operations on encoded streams that are larger than the caches.
#include <benchmark/benchmark.h>

#include <algorithm>

#include "Framing.h"
#include "Groups.h"
#include "Measure.h"
#include "Peers.h"
#include "QVNaluParser.h"
#include "ReferenceFraming.h"

namespace qv_bench {

namespace {

struct Stream {
    std::string name;
    QVCodecID codec;
    Shared bytes;
    SharedSamples accessUnits;
};

Stream open(const std::string& name, QVCodecID codec, const std::string& path) {
    Bytes bytes = readFile(path);
    return {name, codec, std::make_shared<const Bytes>(bytes),
            std::make_shared<const Samples>(accessUnits(std::move(bytes), codec))};
}

// A stream holds every byte value, so memchr would stop early. It searches a constant buffer of the same size
// instead, one access unit at a time.
std::function<void()> memchrBeside(const SharedSamples& samples) {
    const auto pool = std::make_shared<const Bytes>(samples->bytes.size(), 0x55);
    return [=] {
        for (const auto& [offset, size] : samples->pieces) {
            searchAbsentByte(pool->data() + offset, static_cast<size_t>(size));
        }
    };
}

Operation scanOf(const Stream& stream) {
    const auto pool = std::make_shared<const Bytes>(stream.bytes->size(), 0x55);
    Operation scan = scanWhole(stream.name, stream.bytes);
    scan.yardsticks = {{"memchr over as many bytes", memchrOver(pool), atLeast(0.9, 0.85)},
                       {"GStreamer's search", gstreamerOver(stream.codec, stream.bytes)}};
    return scan;
}

bool isTypedAsReference(const Stream& stream, size_t i, const std::vector<QVNaluParser::NaluInfo>& infos) {
    const Samples& samples = *stream.accessUnits;
    const Bytes sample(samples.data(i), samples.data(i) + samples.size(i));
    NalIndexList nalus;
    qv_test::referenceAnnexBScan(sample, nalus);
    const auto expected = qv_test::referenceTyping(sample, nalus, stream.codec);
    return std::equal(infos.begin(), infos.end(), expected.begin(), expected.end(),
                      [](const auto& a, const auto& b) {
                          return a.naluType == b.naluType && a.offset == b.offset && a.length == b.length &&
                                 a.isNonReference == b.isNonReference;
                      });
}

Operation typingOf(const Stream& stream) {
    const auto infos = std::make_shared<std::vector<QVNaluParser::NaluInfo>>();
    const auto samples = stream.accessUnits;
    const QVCodecParameters parameters = {stream.codec, 1, 0};
    for (size_t i = 0; i < samples->count(); ++i) {
        QVNaluParser::parserDataToNaluType(samples->data(i), samples->size(i), *infos, &parameters);
        require(isTypedAsReference(stream, i, *infos), "parserDataToNaluType");
    }
    return {"parserDataToNaluType, " + stream.name,
            [=] {
                for (size_t i = 0; i < samples->count(); ++i) {
                    QVNaluParser::parserDataToNaluType(samples->data(i), samples->size(i), *infos,
                                                       &parameters);
                }
            },
            {{"memchr over as many bytes", memchrBeside(samples)}}};
}

Operation keyFramesOf(const Stream& stream) {
    Operation isKey = keyFrameOf(stream.name, stream.codec, stream.accessUnits);
    isKey.yardsticks = {{"memchr over as many bytes", memchrBeside(stream.accessUnits), atLeast(0.9, 0.85)}};
    return isKey;
}

Bytes firstAccessUnit(const Stream& stream) {
    return {stream.accessUnits->data(0), stream.accessUnits->data(0) + stream.accessUnits->size(0)};
}

Operation firstKeyFrameOf(const Stream& stream) {
    const auto unit = std::make_shared<const Bytes>(firstAccessUnit(stream));
    const std::function<bool()> peer = libavcodecKeyFrame(stream.codec, *unit);
    const auto isKey = [unit, codec = stream.codec] {
        return QVNaluParser::isKeyFrame(codec, unit->data(), static_cast<int>(unit->size()));
    };
    require(isKey() && (!peer || peer()), "a key picture comes first");
    Operation operation = {"isKeyFrame, first picture, " + stream.name,
                           [isKey] { benchmark::DoNotOptimize(isKey()); }};
    operation.costs = {{"call"}};
    if (peer) {
        operation.yardsticks = {{"libavcodec's parser", [peer] { benchmark::DoNotOptimize(peer()); }, {}}};
    }
    return operation;
}

Bytes firstUnit(const Bytes& accessUnit, uint32_t type) {
    const QVCodecParameters parameters = {QVCodecIDAvc, 1, 0};
    std::vector<QVNaluParser::NaluInfo> units;
    QVNaluParser::parserDataToNaluType(accessUnit.data(), static_cast<int>(accessUnit.size()), units,
                                       &parameters);
    const auto unit = std::find_if(units.begin(), units.end(),
                                   [type](const auto& candidate) { return candidate.naluType == type; });
    require(unit != units.end(), "parameter sets come first");
    const unsigned char* const data = accessUnit.data() + unit->offset;
    return {data, data + unit->length};
}

void addFilter(Operation& operation, const Stream& stream, const SharedSamples& samples) {
    constexpr uint32_t kSps = 7;
    constexpr uint32_t kPps = 8;
    const Bytes first = firstAccessUnit(stream);
    const auto filter = libavcodecToStartCodes(samples, firstUnit(first, kSps), firstUnit(first, kPps));
    if (!filter) {
        return;
    }
    // The filter writes some start codes with 3 bytes, so its output may be slightly smaller than the input.
    require(filter() > samples->bytes.size() / 100 * 99, "libavcodec's filter converts every sample");
    operation.yardsticks.push_back({"libavcodec's h264_mp4toannexb", [filter] { filter(); }, {}});
}

Rows scanning(const Stream& stream) {
    return {{scanOf(stream), typingOf(stream), keyFramesOf(stream), firstKeyFrameOf(stream)}};
}

Rows reframing(const Stream& stream) {
    const auto lengths = std::make_shared<const Samples>(lengthPrefixed(*stream.accessUnits));
    Operation toStartCodes = toStartCodesOf(stream.name, lengths);
    if (stream.codec == QVCodecIDAvc) {
        addFilter(toStartCodes, stream, lengths);
    }
    return {{lengthScanOf(stream.name, lengths), toLengthsOf(stream.name, stream.accessUnits), toStartCodes}};
}

}  // namespace

std::vector<Group> streamGroups(const std::string& path) {
    const auto avc = [=] { return open("x264 stream", QVCodecIDAvc, path + "/x264.h264"); };
    const auto hevc = [=] { return open("x265 stream", QVCodecIDHevc, path + "/x265.h265"); };
    return {
        {"streams", [=] { return scanning(avc()); }},
        {"streams", [=] { return reframing(avc()); }},
        {"streams", [=] { return scanning(hevc()); }},
        {"streams", [=] { return reframing(hevc()); }},
    };
}

}  // namespace qv_bench
