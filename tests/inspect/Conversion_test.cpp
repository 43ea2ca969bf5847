// Conversions of containers to byte streams, compared with those of ffmpeg.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Inspect.h"
#include "InspectSupport.h"
#include "QVNaluParser.h"
#include "RunProgram.h"
#include "StreamExpectation.h"
#include "report/StreamWriter.h"

namespace qv_test {
namespace {

using Units = std::vector<Bytes>;

// Without trailing_zero_8bits: no NAL unit ends in a zero byte (H.264 and H.265 7.4.1).
Bytes trimmed(const unsigned char* unit, size_t size) {
    while (size > 0 && unit[size - 1] == 0) {
        --size;
    }
    return {unit, unit + size};
}

Units annexBUnits(const Bytes& stream) {
    std::vector<std::pair<int, int>> nalus;
    QVNaluParser::parserDataToNaluIdx(stream.data(), static_cast<int>(stream.size()), nalus);
    Units units;
    for (const auto& [offset, length] : nalus) {
        units.push_back(trimmed(stream.data() + offset, static_cast<size_t>(length)));
    }
    return units;
}

Units lengthUnits(const Bytes& stream) {
    std::vector<std::pair<int, int>> nalus;
    QVNaluParser::parserDataToNalus(stream.data(), static_cast<int>(stream.size()), nalus, 4);
    Units units;
    for (const auto& [offset, length] : nalus) {
        units.push_back(trimmed(stream.data() + offset, static_cast<size_t>(length)));
    }
    return units;
}

Bytes convert(const std::filesystem::path& path, qvinspect::Framing framing,
              qvinspect::UnitSource source = qvinspect::UnitSource::Stream) {
    const TemporaryFolder folder;
    const std::string out = folder.path() / "out";
    qvinspect::Presenters presenters;
    presenters.push_back(std::make_unique<qvinspect::StreamWriter>(out, framing, source));
    qvinspect::inspectFile(path, {}, presenters);
    presenters.front()->finish();
    return fileContent(out);
}

Bytes ffmpegConvert(const std::filesystem::path& path, QVCodecID codec) {
    const TemporaryFolder folder;
    const std::string name = codec == QVCodecIDAvc ? "h264" : "hevc";
    std::vector<std::string> words = {"ffmpeg", "-v", "error"};
    if (path.extension() == ".mp4" || path.extension() == ".mov") {
        words.insert(words.end(),
                     {"-advanced_editlist", "0"});  // every sample, even those that are not played
    }
    words.insert(words.end(), {"-i", path, "-map", "0:v:0", "-c:v", "copy", "-bsf:v", name + "_mp4toannexb",
                               "-f", name, "out"});
    const Outcome outcome = runProgram(words, folder.path());
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    return fileContent(folder.path() / "out");
}

bool isParameterSet(QVCodecID codec, const Bytes& unit) {
    const int type = codec == QVCodecIDAvc ? unit[0] & 0x1F : unit[0] >> 1 & 0x3F;
    return codec == QVCodecIDAvc ? type == 7 || type == 8 : type >= 32 && type <= 34;
}

bool isSei(QVCodecID codec, const Bytes& unit) {
    return codec == QVCodecIDAvc ? (unit[0] & 0x1F) == 6 : (unit[0] >> 1 & 0x3F) == 39;
}

// Normalises the units before a picture: removes sets that are followed by others of their type and repeated
// SEI units, and moves parameter sets before SEI units.
void arrange(QVCodecID codec, Units::iterator begin, Units::iterator end, Units& arranged) {
    Units kept;
    for (auto unit = begin; unit != end; ++unit) {
        const bool comesAgain = std::any_of(unit + 1, end, [&](const Bytes& later) {
            return isParameterSet(codec, *unit) ? later[0] == (*unit)[0] && later[1] == (*unit)[1]
                                                : later == *unit;
        });
        if (!comesAgain || codec == QVCodecIDAvc) {
            kept.push_back(*unit);
        }
    }
    std::stable_partition(kept.begin(), kept.end(),
                          [&](const Bytes& unit) { return isParameterSet(codec, unit); });
    arranged.insert(arranged.end(), kept.begin(), kept.end());
}

Units arranged(QVCodecID codec, Units units) {
    Units result;
    for (auto unit = units.begin(); unit != units.end();) {
        const auto end = std::find_if(unit, units.end(), [&](const Bytes& other) {
            return !isParameterSet(codec, other) && !isSei(codec, other);
        });
        arrange(codec, unit, end, result);
        unit = end;
        if (unit != units.end()) {
            result.push_back(*unit++);
        }
    }
    return result;
}

// Streams for which ffmpeg has other units, and why. All other streams are equal unit by unit.
const std::map<std::string, std::string>& differences() {
    static const std::string afterSei = "H.264: ffmpeg has the sets after the SEI units";
    static const std::string twice = "H.265: ffmpeg has the record before sets that the access unit has";
    static const std::map<std::string, std::string> all = {
        {"avc.flv", afterSei},          {"avc.mov", afterSei},          {"avc_avc1.mp4", afterSei},
        {"avc_cc.mp4", afterSei},       {"avc_ff.mkv", afterSei},       {"avc_frag.mp4", afterSei},
        {"avc_len2.mp4", afterSei},     {"avc_mkvmerge.mkv", afterSei}, {"hevc_hdr10_ff.mkv", twice},
        {"hevc_hdr10_hev1.mp4", twice}, {"hevc_hdr10_hvc1.mp4", twice}, {"hevc_interlace_tff.mkv", twice},
        {"hevc_mkvmerge.mkv", twice},   {"hevc_vivid_hand.mkv", twice},
    };
    return all;
}

class Conversion : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        if (!std::filesystem::is_directory(folder())) {
            GTEST_SKIP() << "there is no folder " << folder() << "; -DQVNALU_STREAMS_DIR=... names another";
        }
        if (QVINSPECT_HAS_LIBAVFORMAT == 0) {
            GTEST_SKIP() << "built without libavformat: no containers";
        }
    }

    static std::filesystem::path folder() { return GetParam() ? streamsFolder() : bundledStreams(); }

    static std::vector<Stream> containers() {
        std::vector<Stream> streams = streamsIn(folder());
        streams.erase(std::remove_if(streams.begin(), streams.end(),
                                     [](const Stream& stream) { return stream.framing() == "annexb"; }),
                      streams.end());
        EXPECT_FALSE(streams.empty());
        return streams;
    }
};

TEST_P(Conversion, sameUnitsAsFfmpeg) {
    for (const Stream& stream : containers()) {
        SCOPED_TRACE(stream.name);
        const std::filesystem::path path = folder() / stream.name;
        const Units own = annexBUnits(convert(path, qvinspect::Framing::AnnexB));
        const Units ffmpeg = annexBUnits(ffmpegConvert(path, stream.codec()));
        const bool differs = differences().count(stream.name) == 1;
        EXPECT_EQ(own == ffmpeg, !differs) << own.size() << " units, ffmpeg " << ffmpeg.size();
        EXPECT_TRUE(own == (differs ? arranged(stream.codec(), ffmpeg) : ffmpeg));
    }
}

TEST_P(Conversion, bothFramingsHoldTheSameUnits) {
    for (const Stream& stream : containers()) {
        SCOPED_TRACE(stream.name);
        const std::filesystem::path path = folder() / stream.name;
        EXPECT_TRUE(annexBUnits(convert(path, qvinspect::Framing::AnnexB)) ==
                    lengthUnits(convert(path, qvinspect::Framing::Lengths4)));
    }
}

// Nothing is added to a raw stream: its units are those that an independent scanner found.
TEST_P(Conversion, rawStreams) {
    for (const Stream& stream : streamsIn(folder(), "annexb")) {
        if (stream.name.find("noise") != std::string::npos) {
            continue;  // no stream as a whole
        }
        SCOPED_TRACE(stream.name);
        const Units expected = annexBUnits(stream.bytes);
        EXPECT_TRUE(annexBUnits(convert(folder() / stream.name, qvinspect::Framing::AnnexB)) == expected);
        EXPECT_TRUE(lengthUnits(convert(folder() / stream.name, qvinspect::Framing::Lengths4)) == expected);
    }
}

TEST_P(Conversion, rewritingGivesTheSameStream) {
    for (const Stream& stream : streamsIn(folder())) {
        SCOPED_TRACE(stream.name);
        const std::filesystem::path path = folder() / stream.name;
        EXPECT_TRUE(convert(path, qvinspect::Framing::AnnexB, qvinspect::UnitSource::Records) ==
                    convert(path, qvinspect::Framing::AnnexB));
    }
}

INSTANTIATE_TEST_SUITE_P(Of, Conversion, ::testing::Values(false, true),
                         [](const auto& parameter) { return parameter.param ? "folder" : "bundled"; });

}  // namespace
}  // namespace qv_test
