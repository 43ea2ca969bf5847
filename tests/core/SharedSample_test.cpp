// One sample in memory that cannot be written, in the hands of several threads at once: no operation writes
// its input, and none has state that another call could see.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <deque>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "QVCoreStandalone.h"
#include "QVNaluParser.h"

namespace {

using Bytes = std::vector<unsigned char>;

class ReadOnlyFile {
public:
    explicit ReadOnlyFile(const char* path) {
        std::ifstream file(path, std::ios::binary);
        const Bytes bytes{std::istreambuf_iterator<char>(file), {}};
        size_ = bytes.size();
        void* const memory = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (bytes.empty() || memory == MAP_FAILED) {
            throw std::runtime_error(std::string("cannot map ") + path);
        }
        data_ = static_cast<unsigned char*>(memory);
        std::copy(bytes.begin(), bytes.end(), data_);
        mprotect(data_, size_, PROT_READ);
    }
    ReadOnlyFile(const ReadOnlyFile&) = delete;
    ReadOnlyFile& operator=(const ReadOnlyFile&) = delete;
    ~ReadOnlyFile() { munmap(data_, size_); }

    const unsigned char* data() const { return data_; }
    int size() const { return static_cast<int>(size_); }

private:
    unsigned char* data_ = nullptr;
    size_t size_ = 0;
};

// All that one thread makes of the sample, as bytes.
class Reading {
public:
    explicit Reading(const ReadOnlyFile& sample) : data_(sample.data()), size_(sample.size()) {
        const QVCodecParameters byteStream = {QVCodecIDHevc, 1, 0};
        note(QVNaluParser::parserDataToNaluType(data_, size_, units_, &byteStream));
        note(QVNaluParser::isKeyFrame(QVCodecIDHevc, data_, size_) ? 1 : 0);
        for (const QVNaluParser::NaluInfo& unit : units_) {
            readUnit(unit);
        }
        readItems();
        reframe();
    }

    const Bytes& seen() const { return seen_; }
    size_t items() const { return itemCount_; }

private:
    void note(int value) {
        const auto* bytes = reinterpret_cast<const unsigned char*>(&value);
        seen_.insert(seen_.end(), bytes, bytes + sizeof value);
    }
    void note(const unsigned char* bytes, size_t size) { seen_.insert(seen_.end(), bytes, bytes + size); }

    void readUnit(const QVNaluParser::NaluInfo& unit) {
        note(unit.offset);
        note(unit.length);
        if (unit.naluType == 33) {
            parseHevcSps(
                &sps_, std::make_shared<QVByteStream>(data_ + unit.offset, static_cast<size_t>(unit.length)));
            note(sps_.display_width);
        }
        if (unit.naluType == 39) {
            note(QVNaluParser::parserDataToSei(QVCodecIDHevc, data_, unit, items_, &sps_, {}));
        }
    }

    void readItems() {
        itemCount_ = items_.size();
        for (const QVSeiItem& item : items_) {
            QVHDR10StaticMetadata hdr10{};
            note(QVNaluParser::fillHDR10StaticMetadataFromHevcMasteringDisplayInfoSei(item, &hdr10));
            note(static_cast<int>(hdr10.max_display_mastering_luminance));
        }
        unsigned char* sideData = nullptr;
        int sideDataSize = 0;
        note(QVNaluParser::assembleSeiSideDataBuffer(items_, &sideData, sideDataSize));
        note(sideData, static_cast<size_t>(sideDataSize));
        freepQVSideData(&sideData);
        for (const QVSeiItem& item : items_) {
            qvFree(item.payloadData);
        }
    }

    void reframe() {
        Bytes prefixed;
        note(QVNaluParser::converAnnexBToAvcC(data_, size_, prefixed));
        unsigned char* byteStream = nullptr;
        int byteStreamSize = 0;
        const int prefixedSize = static_cast<int>(prefixed.size());
        note(QVNaluParser::connvertAvcCToAnnexB(prefixed.data(), prefixedSize, 4, &byteStream,
                                                byteStreamSize));
        note(byteStream, static_cast<size_t>(byteStreamSize));
        qvFree(byteStream);
    }

    const unsigned char* data_;
    int size_;
    Bytes seen_;
    size_t itemCount_ = 0;
    std::vector<QVNaluParser::NaluInfo> units_;
    QVHevcSps sps_{};
    std::vector<QVSeiItem> items_;
};

TEST(SharedSample, isReadAlikeByThreadsAtOnceAndNotWritten) {
    const ReadOnlyFile sample(QVNALU_SAMPLE);
    const Reading alone(sample);
    ASSERT_EQ(alone.items(), 1U);
    std::vector<Bytes> seen(4);
    std::vector<std::thread> threads;
    for (Bytes& own : seen) {
        threads.emplace_back([&own, &sample] {
            for (int round = 0; round < 20; ++round) {
                own = Reading(sample).seen();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const Bytes& own : seen) {
        EXPECT_EQ(own, alone.seen());
    }
}

}  // namespace
