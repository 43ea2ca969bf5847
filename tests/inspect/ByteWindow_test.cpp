#include "input/ByteWindow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "InspectSupport.h"

namespace qv_test {
namespace {

using qvinspect::ByteWindow;

Bytes numbered(size_t size) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<uint8_t>(i);
    }
    return bytes;
}

ByteWindow windowOn(const Bytes& bytes, size_t chunk) {
    return {std::make_unique<MemorySource>(bytes), chunk};
}

Bytes contentOf(const ByteWindow& window) {
    return {window.at(window.begin()), window.at(window.begin()) + (window.end() - window.begin())};
}

TEST(ByteWindow, growsByChunks) {
    ByteWindow window = windowOn(numbered(10), 4);
    EXPECT_EQ(window.end(), 0U);
    EXPECT_TRUE(window.grow());
    EXPECT_EQ(window.end(), 4U);
    EXPECT_TRUE(window.grow());
    EXPECT_TRUE(window.grow());
    EXPECT_EQ(contentOf(window), numbered(10));
    EXPECT_FALSE(window.grow());
    EXPECT_EQ(contentOf(window), numbered(10));
}

TEST(ByteWindow, releasedBytesStayUntilItGrows) {
    ByteWindow window = windowOn(numbered(10), 4);
    window.grow();
    const unsigned char* third = window.at(2);
    window.release(3);
    EXPECT_EQ(window.begin(), 3U);
    EXPECT_EQ(*third, 2);
    EXPECT_EQ(*window.at(3), 3);
    window.grow();
    EXPECT_EQ(contentOf(window), (Bytes{3, 4, 5, 6, 7}));
    EXPECT_EQ(*window.at(7), 7);
}

TEST(ByteWindow, releasesNeitherBackwardsNorBeyondItsEnd) {
    ByteWindow window = windowOn(numbered(10), 4);
    window.grow();
    window.release(3);
    window.release(1);
    EXPECT_EQ(window.begin(), 3U);
    window.release(9);
    EXPECT_EQ(window.begin(), 4U);
}

TEST(ByteWindow, holdsNoMoreThanWhatIsNeededAndAChunk) {
    ByteWindow window = windowOn(Bytes(10000, 1), 16);
    size_t most = 0;
    while (window.grow()) {
        most = std::max(most, window.heldBytes());
        window.release(window.end() - 5);
    }
    EXPECT_EQ(window.end(), 10000U);
    EXPECT_EQ(most, 5U + 16U);
}

}  // namespace
}  // namespace qv_test
