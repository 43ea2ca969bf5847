#include "input/OpenInput.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "AvcPictures.h"
#include "InspectSupport.h"
#include "MatroskaWriter.h"
#include "Mp4Writer.h"
#include "StreamExpectation.h"
#include "analysis/Analysis.h"
#include "input/InputError.h"

namespace qv_test {
namespace {

using qvinspect::InputFormat;
using qvinspect::InputOptions;
using qvinspect::openInput;
using ::testing::HasSubstr;

class OpenInput : public ::testing::Test {
protected:
    std::string write(const Bytes& bytes) const { return folder_.write("x", bytes); }

    static std::string refusal(const std::string& path, const InputOptions& options) {
        try {
            openInput(path, options);
        } catch (const qvinspect::InputError& error) {
            return error.what();
        }
        return "opened";
    }

private:
    TemporaryFolder folder_;
};

InputOptions format(InputFormat wanted, std::optional<QVCodecID> codec = {}) {
    InputOptions options;
    options.format = wanted;
    options.codec = codec;
    return options;
}

Bytes avcLengths(unsigned lengthSize) {
    return lengthPrefixed({avcSpsUnit(), avcPpsUnit(), avcSliceUnit({})}, lengthSize);
}

// The units of the sample, after lengths.
Bytes hevcLengths(unsigned lengthSize) {
    const Bytes stream = fileContent(sampleFolder() / "hevc_hdr10.h265");
    std::vector<std::pair<int, int>> nalus;
    QVNaluParser::parserDataToNaluIdx(stream.data(), static_cast<int>(stream.size()), nalus);
    std::vector<Bytes> units;
    for (const auto& [offset, length] : nalus) {
        units.emplace_back(stream.begin() + offset, stream.begin() + offset + length);
    }
    return lengthPrefixed(units, lengthSize);
}

TEST_F(OpenInput, codecOfLengthPrefixedUnitsIsProbed) {
    const std::pair<InputFormat, unsigned> formats[] = {
        {InputFormat::Lengths1, 1}, {InputFormat::Lengths2, 2}, {InputFormat::Lengths4, 4}};
    for (const auto& [wanted, size] : formats) {
        const auto avc = openInput(write(avcLengths(size)), format(wanted));
        EXPECT_EQ(avc->info().parameters.codecId, QVCodecIDAvc);
        EXPECT_EQ(avc->info().parameters.isAnnexB, 0U);
        EXPECT_EQ(avc->info().parameters.nalLengthSize, size);
        if (size > 1) {
            const auto hevc = openInput(write(hevcLengths(size)), format(wanted));
            EXPECT_EQ(hevc->info().parameters.codecId, QVCodecIDHevc);
        }
    }
}

TEST_F(OpenInput, brokenLengthsDoNotHideTheCodec) {
    const auto reader =
        openInput(write(avcLengths(4) + hex("FF FF FF FF 00")), format(InputFormat::Lengths4));
    EXPECT_EQ(reader->info().parameters.codecId, QVCodecIDAvc);
}

TEST_F(OpenInput, unknownCodecOfLengthPrefixedUnits) {
    const std::string path = write(hex("00 00 00 02 FF FF"));
    EXPECT_EQ(refusal(path, format(InputFormat::Lengths4)),
              "is not recognised as H.264 or H.265 with lengths of 4 bytes; check --format, or choose with "
              "--codec h264 or --codec h265");
    const auto said = openInput(path, format(InputFormat::Lengths4, QVCodecIDHevc));
    EXPECT_EQ(said->info().parameters.codecId, QVCodecIDHevc);
}

TEST_F(OpenInput, byteStreamIsTakenAtItsWord) {
    // It would be treated as a container.
    const std::string path =
        write(hex("47 40") + Bytes(186, 0) + hex("47 40") + Bytes(186, 0) + hex("47 40") + Bytes(186, 0) +
              hex("47 40") + byteStream({avcSpsUnit(), avcSliceUnit({})}));
    EXPECT_EQ(openInput(path, format(InputFormat::AnnexB))->info().format, "raw byte stream");
    EXPECT_THAT(refusal(path, {}), HasSubstr("MPEG transport stream"));
    EXPECT_EQ(openInput(path, format(InputFormat::AnnexB, QVCodecIDHevc))->info().parameters.codecId,
              QVCodecIDHevc);
    EXPECT_THAT(refusal(write(Bytes(10, 7)), format(InputFormat::AnnexB)), HasSubstr("--codec h264"));
}

TEST_F(OpenInput, sizeIsKnown) {
    const Bytes bytes = byteStream({avcSpsUnit(), avcSliceUnit({})});
    const auto reader = openInput(write(bytes), {});
    EXPECT_EQ(reader->progress().size, bytes.size());
    qvinspect::AccessUnit accessUnit;
    reader->next(accessUnit);
    EXPECT_EQ(reader->progress().bytes, bytes.size());
}

// Samples with bytes overwritten, cut anywhere, in every format: the reading must end, and the library must
// accept what was read.
TEST_F(OpenInput, hostileFiles) {
    std::mt19937 random(4);
    const Bytes samples[] = {fileContent(sampleFolder() / "avc_avc1.mp4"),
                             fileContent(sampleFolder() / "avc.ts"),
                             fileContent(bundledStreams() / "avc_len1.mp4"), hevcLengths(4), avcLengths(2)};
    const InputFormat formats[] = {InputFormat::Auto,     InputFormat::AnnexB,   InputFormat::Lengths1,
                                   InputFormat::Lengths2, InputFormat::Lengths4, InputFormat::Container};
    for (const Bytes& sample : samples) {
        for (int run = 0; run < 60; ++run) {
            Bytes bytes = sample;
            for (int i = 0; i < 1 + run % 20; ++i) {
                bytes[random() % bytes.size()] = static_cast<uint8_t>(random());
            }
            if (run % 3 == 0) {
                bytes.resize(1 + random() % bytes.size());
            }
            const InputFormat wanted = formats[run % 6];
            const auto codec = run % 2 == 0 ? QVCodecIDAvc : QVCodecIDHevc;
            try {
                const auto reader =
                    openInput(write(bytes), format(wanted, wanted == InputFormat::Container || run % 4 == 3
                                                               ? std::optional<QVCodecID>()
                                                               : codec));
                qvinspect::AccessUnit accessUnit;
                uint64_t read = 0;
                while (reader->next(accessUnit)) {
                    qvinspect::analyse(accessUnit);
                    read += accessUnit.size;
                }
                EXPECT_LE(read, 100 * bytes.size());
            } catch (const qvinspect::InputError& error) {
                EXPECT_THAT(error.what(), HasSubstr(";"));  // what to do next
            }
        }
    }
}

#if QVINSPECT_HAS_LIBAVFORMAT

InputOptions stream(unsigned index, std::optional<QVCodecID> codec = {}) {
    InputOptions options;
    options.stream = index;
    options.codec = codec;
    return options;
}

TEST_F(OpenInput, streamOfAContainer) {
    const std::string mp4 = sampleFolder() / "avc_avc1.mp4";
    EXPECT_EQ(openInput(mp4, stream(0))->info().parameters.codecId, QVCodecIDAvc);
    EXPECT_EQ(openInput(mp4, stream(0, QVCodecIDAvc))->info().parameters.codecId, QVCodecIDAvc);
    EXPECT_EQ(refusal(mp4, stream(0, QVCodecIDHevc)),
              "MP4 or QuickTime file: stream 0 is no H.265 video, as --codec requires; select one with "
              "--stream: 0 video h264");
    EXPECT_EQ(refusal(mp4, stream(1)),
              "MP4 or QuickTime file: stream 1 does not exist; select one with --stream: 0 video h264");
}

TEST_F(OpenInput, streamOfNoContainer) {
    const std::string raw = sampleFolder() / "hevc_hdr10.h265";
    for (const InputOptions& options : {stream(0), format(InputFormat::Container)}) {
        EXPECT_EQ(refusal(raw, options),
                  "is not a container; for a raw stream leave out --stream and --format container");
    }
}

TEST_F(OpenInput, containerAskedFor) {
    EXPECT_EQ(openInput(sampleFolder() / "avc.ts", format(InputFormat::Container))->info().format,
              "MPEG-TS (MPEG-2 Transport Stream)");
    EXPECT_EQ(refusal(write(Bytes(1000, 7)), format(InputFormat::Container)),
              "cannot be opened as a container (Invalid data found when processing input); check that it is "
              "whole");
}

// A video whose Colour element has the number.
Bytes matroskaOf(uint8_t transferCharacteristics) {
    return matroskaFile(
        "V_MPEGH/ISO/HEVC", {0, 0, 1, 0x40},
        {matroskaElement({0x55, 0xB0}, {matroskaElement({0x55, 0xBA}, {{transferCharacteristics}})})});
}

// Also a number outside the range of libavformat's enumeration.
TEST_F(OpenInput, transferOfAContainer) {
    for (const uint8_t transfer : Bytes{1, 16, 18, 78, 255}) {
        EXPECT_EQ(openInput(write(matroskaOf(transfer)), {})->info().transfer_characteristics, transfer);
    }
    EXPECT_EQ(openInput(write(matroskaOf(2)), {})->info().transfer_characteristics, std::nullopt);
}

// A playlist may come from anywhere and must not determine the files that are read.
TEST_F(OpenInput, playlistsOpenNothing) {
    const std::string mp4 = sampleFolder() / "avc_avc1.mp4";
    for (const std::string& text :
         {"#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\nfile:" + mp4 + "\n#EXT-X-ENDLIST\n",
          "ffconcat version 1.0\nfile 'file:" + mp4 + "'\n", "ffconcat version 1.0\nfile '" + mp4 + "'\n"}) {
        EXPECT_NE(refusal(write(Bytes(text.begin(), text.end())), {}), "opened") << text;
    }
}

#endif

// Frames that are coded as two fields, in streams of a reference encoder.
TEST_F(OpenInput, fieldsOfRealStreams) {
    if (!std::filesystem::is_directory(streamsFolder())) {
        GTEST_SKIP() << "no folder " << streamsFolder();
    }
    const std::pair<const char*, std::string> streams[] = {{"avc_jm_field.h264", "ffffffffffffff"},
                                                           {"avc_jm_paff.h264", "FffFFFFF"},
                                                           {"avc_mbaff_tff.h264", "FFFFFFFFFF"}};
    for (const auto& [name, expected] : streams) {
        const auto reader = openInput(streamsFolder() / name, {});
        std::string kinds;
        qvinspect::AccessUnit accessUnit;
        while (reader->next(accessUnit)) {
            kinds += accessUnit.isField ? 'f' : 'F';
        }
        EXPECT_EQ(kinds, expected) << name;
    }
}

}  // namespace
}  // namespace qv_test
