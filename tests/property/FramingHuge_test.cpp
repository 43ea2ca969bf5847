// Buffers of close to INT_MAX bytes: no offset arithmetic may leave int.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <system_error>

#include "QVNaluParser.h"
#include "RecordingCore.h"
#include "ReferenceFraming.h"

namespace qv_test {
namespace {

constexpr size_t kBlock = 1 << 20;
constexpr size_t kBlocks = 2048;

// 2 GiB of address space that shows the same mebibyte of memory over and over, read-only.
class RepeatedBlock {
public:
    explicit RepeatedBlock(const Bytes& pattern) {
        const int file = memfd_create("block", 0);
        for (size_t at = 0; at < kBlock; at += pattern.size()) {
            require(write(file, pattern.data(), pattern.size()) == static_cast<ssize_t>(pattern.size()));
        }
        memory_ =
            mmap(nullptr, kBlock * kBlocks, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        require(memory_ != MAP_FAILED);
        for (size_t i = 0; i < kBlocks; ++i) {
            unsigned char* const at = static_cast<unsigned char*>(memory_) + i * kBlock;
            require(mmap(at, kBlock, PROT_READ, MAP_SHARED | MAP_FIXED | MAP_POPULATE, file, 0) == at);
        }
        close(file);
    }
    ~RepeatedBlock() { munmap(memory_, kBlock * kBlocks); }
    RepeatedBlock(const RepeatedBlock&) = delete;
    RepeatedBlock& operator=(const RepeatedBlock&) = delete;

    const unsigned char* data() const { return static_cast<const unsigned char*>(memory_); }

private:
    static void require(bool isDone) {
        if (!isDone) {
            throw std::system_error(errno, std::generic_category());
        }
    }

    void* memory_;
};

// period bytes that begin with header.
Bytes patternOf(const Bytes& header, size_t period) {
    Bytes pattern = header;
    pattern.resize(period, 0xFF);
    return pattern;
}

class FramingHuge : public CoreTest {};

TEST_F(FramingHuge, byteStreamOfIntMaxBytes) {
    const RepeatedBlock buffer(patternOf({0, 0, 0, 1, 0x41}, kBlock));
    NalIndexList expected;
    for (size_t i = 0; i < kBlocks; ++i) {
        expected.emplace_back(i * kBlock + 4, kBlock - 4);
    }
    expected.back().second -= 1;  // INT_MAX is one byte less than the blocks hold
    NalIndexList nalus;
    EXPECT_EQ(QVNaluParser::parserDataToNaluIdx(buffer.data(), INT_MAX, nalus), 0);
    EXPECT_EQ(nalus, expected);
}

TEST_F(FramingHuge, keyFrameInAByteStreamOfIntMaxBytes) {
    const RepeatedBlock buffer(patternOf({0, 0, 0, 1, 0x41}, kBlock));
    EXPECT_FALSE(QVNaluParser::isKeyFrame(QVCodecIDAvc, buffer.data(), INT_MAX));
}

// Units of 0x7FFE bytes after 2-byte lengths: each grows by two bytes, so that the result exceeds INT_MAX.
// Takes 2 GiB for the library's working copy.
TEST_F(FramingHuge, byteStreamAboveIntMaxBytesIsNotAskedFor) {
    const RepeatedBlock buffer(patternOf({0x7F, 0xFE, 0x41}, 0x8000));
    unsigned char* out = nullptr;
    int outSize = -77;
    EXPECT_EQ(QVNaluParser::connvertAvcCToAnnexB(buffer.data(), 0x7FFF8000, 2, &out, outSize), 11000050);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(outSize, 0);
    EXPECT_EQ(core().playerAllocations, 0);
    expectNoLines();
}

}  // namespace
}  // namespace qv_test
