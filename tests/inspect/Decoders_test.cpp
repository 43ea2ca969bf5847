// No decoder is opened for any file. This program defines avcodec_open2() and
// avcodec_send_packet(): the dynamic linker binds libavformat's calls to these.
extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "InspectSupport.h"
#include "MatroskaWriter.h"
#include "StreamExpectation.h"
#include "input/InputError.h"
#include "input/OpenInput.h"

namespace {

int decoderCalls = 0;

}  // namespace

extern "C" int avcodec_open2(AVCodecContext* /*context*/, const AVCodec* /*codec*/,
                             AVDictionary** /*options*/) {
    ++decoderCalls;
    return AVERROR(ENOSYS);
}

extern "C" int avcodec_send_packet(AVCodecContext* /*context*/, const AVPacket* /*packet*/) {
    ++decoderCalls;
    return AVERROR(ENOSYS);
}

namespace qv_test {
namespace {

// The number of access units of the file, or 0 if it is refused.
size_t readAll(const std::string& path) {
    try {
        const auto reader = qvinspect::openInput(path, {});
        qvinspect::AccessUnit accessUnit;
        size_t count = 0;
        while (reader->next(accessUnit)) {
            ++count;
        }
        return count;
    } catch (const qvinspect::InputError&) {
        return 0;
    }
}

class Decoders : public ::testing::Test {
protected:
    void SetUp() override { decoderCalls = 0; }

    std::string write(const std::string& name, const Bytes& bytes) const {
        return folder_.write(name, bytes);
    }

private:
    TemporaryFolder folder_;
};

// The count works: libavformat's search for stream information opens a decoder.
TEST_F(Decoders, callsAreCounted) {
    const std::string path = write("x.mkv", matroskaFile("V_VP9", {0x82, 0x49, 0x83, 0x42, 0, 0, 0}));
    AVFormatContext* context = nullptr;
    ASSERT_EQ(avformat_open_input(&context, path.c_str(), nullptr, nullptr), 0);
    avformat_find_stream_info(context, nullptr);
    avformat_close_input(&context);
    EXPECT_GT(decoderCalls, 0);
}

// Streams that are neither H.264 nor H.265 are named by the container alone.
TEST_F(Decoders, otherCodecs) {
    for (const char* codec : {"V_VP9", "V_AV1", "V_MPEG2", "V_MPEG4/ISO/ASP", "V_PRORES", "V_UNCOMPRESSED"}) {
        const std::string path = write("x.mkv", matroskaFile(codec, {0x82, 0x49, 0x83, 0x42, 0, 0, 0}));
        EXPECT_EQ(readAll(path), 0U) << codec;
        EXPECT_EQ(decoderCalls, 0) << codec;
    }
}

TEST_F(Decoders, samples) {
    size_t containers = 0;
    for (const auto& folder : {sampleFolder(), bundledStreams(), streamsFolder()}) {
        if (!std::filesystem::is_directory(folder)) {
            continue;  // the folder of further streams is optional
        }
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            const std::string extension = entry.path().extension();
            if (extension == ".json" || extension == ".md" || extension == ".py" || extension == ".sh") {
                continue;
            }
            containers += readAll(entry.path()) > 0 ? 1U : 0U;
            EXPECT_EQ(decoderCalls, 0) << entry.path();
        }
    }
    EXPECT_GE(containers, 8U);
}

// A transport stream without its tables, and one that is cut in the middle of a packet.
TEST_F(Decoders, brokenContainers) {
    const Bytes stream = fileContent(sampleFolder() / "avc.ts");
    constexpr size_t kPacket = 188;
    ASSERT_GT(stream.size(), 20 * kPacket);
    readAll(write("x.ts", Bytes(stream.begin() + 4 * kPacket, stream.end())));
    readAll(write("x.ts", Bytes(stream.begin(), stream.begin() + 10 * kPacket + 7)));
    Bytes mp4 = fileContent(sampleFolder() / "avc_avc1.mp4");
    for (size_t at = 0; at < mp4.size(); at += 97) {
        Bytes changed = mp4;
        changed[at] ^= 0xFF;
        readAll(write("x.mp4", changed));
    }
    EXPECT_EQ(decoderCalls, 0);
}

}  // namespace
}  // namespace qv_test
