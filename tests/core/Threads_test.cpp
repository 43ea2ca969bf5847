// Many threads process shared input in read-only memory, each with its own records, on the stand-alone core.
// They must get the same results as one thread and log whole lines. The thread sanitizer's preset runs this
// test.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "QVCoreStandalone.h"
#include "QVNaluParser.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr int kThreads = 8;
constexpr int kRounds = 20;

int sizeOf(const Bytes& bytes) {
    return static_cast<int>(bytes.size());
}

// The records of one thread.
struct Records {
    QVAvcSps avc{};
    QVHevcSps hevc{};
    std::vector<QVSeiItem> items;

    Records() = default;
    Records(const Records&) = delete;
    Records& operator=(const Records&) = delete;
    ~Records() {
        for (const QVSeiItem& item : items) {
            qvFree(item.payloadData);
        }
    }

    void* spsOf(QVCodecID codec) {
        return codec == QVCodecIDAvc ? static_cast<void*>(&avc) : static_cast<void*>(&hevc);
    }
};

// A file in read-only memory.
class Stream {
public:
    Stream(const std::string& path, QVCodecID ofCodec) : codec(ofCodec) {
        std::ifstream file(path, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
        size_ = bytes.size();
        void* const memory = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (bytes.empty() || memory == MAP_FAILED) {
            throw std::runtime_error("cannot map " + path);
        }
        data_ = static_cast<unsigned char*>(memory);
        std::copy(bytes.begin(), bytes.end(), data_);
        if (mprotect(data_, size_, PROT_READ) != 0) {
            throw std::runtime_error("cannot protect " + path);
        }
    }
    ~Stream() { munmap(data_, size_); }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    const unsigned char* data() const { return data_; }
    int size() const { return static_cast<int>(size_); }

    const QVCodecID codec;

private:
    unsigned char* data_ = nullptr;
    size_t size_ = 0;
};

void write(std::ostream& text, const unsigned char* bytes, int size) {
    text.write(reinterpret_cast<const char*>(bytes), size);
}

void analyseUnit(const Stream& stream, const QVNaluParser::NaluInfo& unit, Records& records,
                 std::ostream& text) {
    const auto reader =
        std::make_shared<QVByteStream>(stream.data() + unit.offset, static_cast<size_t>(unit.length));
    text << unit.naluType << ' ' << unit.offset << ' ' << unit.length << '\n';
    if (stream.codec == QVCodecIDAvc && unit.naluType == 7) {
        text << parseAvcSps(&records.avc, reader) << ' ' << records.avc.width << 'x' << records.avc.height
             << '\n';
    } else if (stream.codec == QVCodecIDHevc && unit.naluType == 33) {
        text << parseHevcSps(&records.hevc, reader) << ' ' << records.hevc.display_width << 'x'
             << records.hevc.display_height << '\n';
    } else if (unit.naluType == (stream.codec == QVCodecIDAvc ? 6U : 39U)) {
        text << QVNaluParser::parserDataToSei(stream.codec, stream.data(), unit, records.items,
                                              records.spsOf(stream.codec), {})
             << '\n';
    }
}

void handOver(const Records& records, std::ostream& text) {
    for (const QVSeiItem& item : records.items) {
        QVHDR10StaticMetadata hdr10{};
        text << item.payloadType << ' ' << item.payloadSize << ' '
             << QVNaluParser::fillHDR10StaticMetadataFromHevcMasteringDisplayInfoSei(item, &hdr10) << ' '
             << hdr10.max_display_mastering_luminance;
        QVHDRVividDynamicMetadata vivid{};
        text << ' ' << QVNaluParser::fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(item, &vivid)
             << '\n';
    }
    unsigned char* sideData = nullptr;
    int size = 0;
    QVNaluParser::assembleSeiSideDataBuffer(records.items, &sideData, size);
    std::vector<QVSeiItem> read;
    text << qvReadSideData(sideData, size, &read) << ' ' << read.size() << ' ' << size << '\n';
    write(text, sideData, size);
    freepQVSideData(&sideData);
}

void reframe(const Stream& stream, std::ostream& text) {
    std::vector<unsigned char> lengths;
    QVNaluParser::converAnnexBToAvcC(stream.data(), stream.size(), lengths);
    std::vector<std::pair<int, int>> nalus;
    QVNaluParser::parserDataToNalus(lengths.data(), sizeOf(lengths), nalus, 4);
    unsigned char* again = nullptr;
    int size = 0;
    QVNaluParser::connvertAvcCToAnnexB(lengths.data(), sizeOf(lengths), 4, &again, size);
    text << lengths.size() << ' ' << nalus.size() << ' ' << size << ' '
         << QVNaluParser::isKeyFrame(stream.codec, lengths.data(), sizeOf(lengths)) << '\n';
    write(text, again, size);
    qvFree(again);
}

// Returns all results of the library for a stream as one text.
std::string analyse(const Stream& stream) {
    std::ostringstream text;
    text << QVNaluParser::isKeyFrame(stream.codec, stream.data(), stream.size()) << '\n';
    const QVCodecParameters params{stream.codec, 1, 0};
    std::vector<QVNaluParser::NaluInfo> units;
    QVNaluParser::parserDataToNaluType(stream.data(), stream.size(), units, &params);
    Records records;
    for (const QVNaluParser::NaluInfo& unit : units) {
        analyseUnit(stream, unit, records, text);
    }
    handOver(records, text);
    reframe(stream, text);
    return text.str();
}

template <class Work>
void onThreads(const Work& work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&work, i] { work(i); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

// Restores the trace level that the other tests expect.
class Threads : public ::testing::Test {
protected:
    void TearDown() override { qvSetTraceLevel(QVTraceWarning); }
};

TEST_F(Threads, shareTheInput) {
    qvSetTraceLevel(-1);
    const Stream streams[] = {Stream(QVNALU_SAMPLES_DIR "/hevc_hdr10.h265", QVCodecIDHevc),
                              Stream(QVNALU_BUNDLED_STREAMS_DIR "/hevc_mdcv_variants.h265", QVCodecIDHevc),
                              Stream(QVNALU_BUNDLED_STREAMS_DIR "/avc_afd.h264", QVCodecIDAvc),
                              Stream(QVNALU_BUNDLED_STREAMS_DIR "/avc_hrd_picstruct.h264", QVCodecIDAvc)};
    // No call is made before the threads start, so the library's first calls run concurrently too.
    std::vector<std::vector<std::string>> texts(kThreads);
    onThreads([&](int thread) {
        for (int round = 0; round < kRounds; ++round) {
            for (const Stream& stream : streams) {
                texts[static_cast<size_t>(thread)].push_back(analyse(stream));
            }
        }
    });
    EXPECT_THAT(texts[0][0], testing::HasSubstr("\n137 24 0 10000000 ")) << "the mastering display";
    for (size_t i = 0; i < texts[0].size(); ++i) {
        const std::string alone = analyse(streams[i % std::size(streams)]);
        for (const auto& text : texts) {
            ASSERT_EQ(text[i], alone);
        }
    }
}

TEST_F(Threads, logWholeLinesWhileTheLevelChanges) {
    constexpr int kLines = 200;
    testing::internal::CaptureStderr();
    onThreads([](int thread) {
        for (int i = 0; i < kLines; ++i) {
            qvTraceLog(QVTraceError, "file.cpp", i, "work", "tag", "thread %d line %d %s\n", thread, i,
                       std::string(200, 'x').c_str());
            qvSetTraceLevel(i % 2 == 0 ? QVTraceError : QVTraceWarning);
            qvTraceLog(QVTraceDebug, "file.cpp", i, "work", "tag", "not shown\n");
        }
    });
    std::istringstream lines(testing::internal::GetCapturedStderr());
    const auto isWhole =
        testing::MatchesRegex("\\[E\\] tag file\\.cpp:[0-9]+ work: thread [0-9]+ line [0-9]+ x{200}");
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        ASSERT_THAT(line, isWhole);
    }
    EXPECT_EQ(count, kThreads * kLines);
}

// Each thread logs and dumps a broken sample. Lines of different threads may alternate, but each line is
// whole.
TEST_F(Threads, logAndDumpBrokenSamples) {
    qvSetTraceLevel(QVTraceError);
    const Bytes broken = {0, 0, 0, 1, 0x65, 0, 0, 9, 9, 0x41};
    testing::internal::CaptureStderr();
    onThreads([&](int) {
        for (int round = 0; round < kRounds; ++round) {
            std::vector<std::pair<int, int>> nalus;
            QVNaluParser::parserDataToNalus(broken.data(), sizeOf(broken), nalus, 4);
        }
    });
    std::istringstream lines(testing::internal::GetCapturedStderr());
    const auto isWhole =
        testing::MatchesRegex("\\[E\\] QVPlayerCore\\.[A-Za-z]+ QV[A-Za-z]+\\.cpp:[0-9]+ [A-Za-z0-9]+: .+");
    int errors = 0;
    int dumped = 0;
    for (std::string line; std::getline(lines, line);) {
        ASSERT_THAT(line, isWhole);
        errors += line.find("avaliable length:2313") != std::string::npos ? 1 : 0;
        dumped += line.find("00000000  00 00 00 01 65 00 00 09 09 41") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(errors, kThreads * kRounds);
    EXPECT_EQ(dumped, kThreads * kRounds);
}

}  // namespace
