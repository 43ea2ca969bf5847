#include "input/FileSource.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <thread>

#include "InspectSupport.h"
#include "input/InputError.h"

namespace qv_test {
namespace {

using qvinspect::FileSource;
using ::testing::IsEmpty;

Bytes counted(size_t size) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<uint8_t>(i * 7);
    }
    return bytes;
}

Bytes rest(FileSource& source, size_t piece = 1000) {
    Bytes bytes;
    Bytes part(piece);
    while (const size_t count = source.read(part.data(), piece)) {
        bytes.insert(bytes.end(), part.begin(), part.begin() + static_cast<std::ptrdiff_t>(count));
    }
    EXPECT_EQ(source.failure(), "");
    return bytes;
}

class FileSources : public ::testing::Test {
protected:
    std::string write(const Bytes& bytes) const { return folder_.write("x", bytes); }
    std::string pipePath() const {
        const std::string path = folder_.path() / "pipe";
        EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
        return path;
    }

private:
    TemporaryFolder folder_;
};

TEST_F(FileSources, readsWhatIsThere) {
    const Bytes bytes = counted(5000);
    FileSource source(write(bytes));
    EXPECT_EQ(source.size(), 5000U);
    EXPECT_TRUE(source.canSeek());
    EXPECT_EQ(rest(source), bytes);
}

TEST_F(FileSources, peekedBytesAreReadAgain) {
    const Bytes bytes = counted(5000);
    for (const size_t peeked : {0U, 1U, 1234U, 5000U, 9000U}) {
        FileSource source(write(bytes));
        const Bytes head(bytes.begin(),
                         bytes.begin() + static_cast<std::ptrdiff_t>(std::min<size_t>(5000, peeked)));
        EXPECT_EQ(source.peek(peeked), head);
        EXPECT_EQ(rest(source), bytes);
    }
}

TEST_F(FileSources, seeks) {
    const Bytes bytes = counted(5000);
    FileSource source(write(bytes));
    source.peek(1000);
    for (const size_t offset : {4000U, 0U, 999U, 1000U, 5000U, 500U}) {
        source.seek(offset);
        EXPECT_EQ(rest(source), Bytes(bytes.begin() + static_cast<std::ptrdiff_t>(offset), bytes.end()));
    }
    for (const uint64_t offset : {uint64_t{5001}, uint64_t{INT64_MAX}, UINT64_MAX}) {
        source.seek(offset);
        EXPECT_THAT(rest(source), IsEmpty());
    }
}

TEST_F(FileSources, pipes) {
    const Bytes bytes = counted(200000);
    const std::string path = pipePath();
    std::thread writer([&] {
        std::FILE* file = std::fopen(path.c_str(), "wb");
        std::fwrite(bytes.data(), 1, bytes.size(), file);
        std::fclose(file);
    });
    FileSource source(path);
    EXPECT_FALSE(source.size());
    EXPECT_FALSE(source.canSeek());
    const auto& head = source.peek(150000);  // more than a pipe returns at once
    EXPECT_EQ(head, Bytes(bytes.begin(), bytes.begin() + 150000));
    EXPECT_EQ(rest(source), bytes);
    writer.join();
}

TEST_F(FileSources, filesThatAreMadeUpHaveNoSize) {
    FileSource source("/proc/self/status");
    EXPECT_FALSE(source.size());
    EXPECT_FALSE(source.canSeek());
    EXPECT_FALSE(rest(source).empty());
}

TEST_F(FileSources, failureIsReported) {
    FileSource source("/proc/self/mem");  // nothing is mapped at its start
    unsigned char byte = 0;
    EXPECT_EQ(source.read(&byte, 1), 0U);
    EXPECT_EQ(source.failure(), "Input/output error");
    EXPECT_FALSE(source.isInterrupted());
}

TEST_F(FileSources, refused) {
    EXPECT_THROW(FileSource("/nonexistent"), qvinspect::InputError);
    EXPECT_THROW(FileSource("/"), qvinspect::InputError);
}

}  // namespace
}  // namespace qv_test
