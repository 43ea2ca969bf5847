// Captions in output order.
#include "bitstream/sei/CaptionOrder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "AllocationFault.h"
#include "CaptionConstructs.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using testing::ElementsAre;
using testing::IsEmpty;

class Numbers : public CaptionSink {
public:
    void picture(const CaptionedPicture& picture) override { numbers.push_back(picture.number); }

    std::vector<uint64_t> numbers;
};

CaptionedPicture picture(uint64_t number, int32_t picOrderCnt) {
    CaptionedPicture result;
    result.number = number;
    result.picOrderCnt = picOrderCnt;
    return result;
}

CaptionedPicture first(uint64_t number, int32_t picOrderCnt = 0) {
    CaptionedPicture result = picture(number, picOrderCnt);
    result.startsSequence = true;
    return result;
}

CaptionedPicture field(uint64_t number, int32_t picOrderCnt) {
    CaptionedPicture result = picture(number, picOrderCnt);
    result.isField = true;
    return result;
}

std::vector<uint64_t> numbersOf(uint32_t frames, const std::vector<CaptionedPicture>& pictures) {
    CaptionOrder order(frames);
    Numbers sink;
    for (const CaptionedPicture& next : pictures) {
        order.push(next, sink);
    }
    order.flush(sink);
    return sink.numbers;
}

// I0 P8 B4 b2 b6: two pictures are before a third one in decoding order and after it in output order.
TEST(CaptionOrder, hierarchicalPictures) {
    EXPECT_THAT(numbersOf(2, {first(0), picture(1, 8), picture(2, 4), picture(3, 2), picture(4, 6)}),
                ElementsAre(0, 3, 2, 4, 1));
}

TEST(CaptionOrder, deliversAsSoonAsTheOrderIsKnown) {
    CaptionOrder order(1);
    Numbers sink;
    order.push(first(0), sink);
    EXPECT_THAT(sink.numbers, IsEmpty());
    order.push(picture(1, 4), sink);
    EXPECT_THAT(sink.numbers, ElementsAre(0));
    order.push(picture(2, 2), sink);
    EXPECT_THAT(sink.numbers, ElementsAre(0, 2));
    order.flush(sink);
    EXPECT_THAT(sink.numbers, ElementsAre(0, 2, 1));
    EXPECT_EQ(order.late(), 0U);
}

TEST(CaptionOrder, withoutReorderingNothingWaits) {
    CaptionOrder order(0);
    Numbers sink;
    order.push(first(7), sink);
    EXPECT_THAT(sink.numbers, ElementsAre(7));
}

TEST(CaptionOrder, newSequence) {
    EXPECT_THAT(numbersOf(2, {first(0), picture(1, 8), picture(2, 4), first(3), picture(4, 2)}),
                ElementsAre(0, 2, 1, 3, 4));
}

// The second field of a frame in decoding order may be the first one in output order.
TEST(CaptionOrder, fields) {
    EXPECT_THAT(numbersOf(0, {field(0, 0), field(1, 1), field(2, 3), field(3, 2)}), ElementsAre(0, 1, 3, 2));
    EXPECT_THAT(numbersOf(1, {field(0, 0), field(1, 1), field(2, 4), field(3, 5), field(4, 2), field(5, 3)}),
                ElementsAre(0, 1, 4, 5, 2, 3));
}

TEST(CaptionOrder, equalCountsKeepTheOrderOfDecoding) {
    EXPECT_THAT(numbersOf(16, {picture(0, 2), picture(1, 2), picture(2, 0), picture(3, 2)}),
                ElementsAre(2, 0, 1, 3));
}

TEST(CaptionOrder, lateIsReported) {
    CaptionOrder order(0);
    Numbers sink;
    order.push(first(0), sink);
    order.push(picture(1, 8), sink);
    order.push(picture(2, 4), sink);
    order.push(picture(3, 6), sink);
    EXPECT_THAT(sink.numbers, ElementsAre(0, 1, 2, 3));
    EXPECT_EQ(order.late(), 2U);
    order.push(first(4), sink);
    EXPECT_EQ(order.late(), 2U);
}

TEST(CaptionOrder, anotherNumberOfFrames) {
    CaptionOrder order(2);
    Numbers sink;
    order.push(first(0), sink);
    order.push(picture(1, 2), sink);
    EXPECT_THAT(sink.numbers, IsEmpty());
    order.setFrames(0);
    order.push(picture(2, 4), sink);
    EXPECT_THAT(sink.numbers, ElementsAre(0, 1, 2));
}

TEST(CaptionOrder, constructsStayWithTheirPicture) {
    class Constructs : public CaptionSink {
    public:
        void picture(const CaptionedPicture& picture) override {
            for (const CcConstruct& construct : picture) {
                bytes.push_back(construct.cc_data_1);
            }
            dropped += picture.dropped;
        }

        std::vector<uint8_t> bytes;
        uint64_t dropped = 0;
    };
    CaptionOrder order(2);
    Constructs sink;
    CaptionedPicture last = pictureWith("fc4141 fc4242");
    last.picOrderCnt = 8;
    last.dropped = 3;
    order.push(last, sink);
    CaptionedPicture earlier = pictureWith("fc4343");
    earlier.picOrderCnt = 4;
    order.push(earlier, sink);
    order.flush(sink);
    EXPECT_THAT(sink.bytes, ElementsAre(0x43, 0x41, 0x42));
    EXPECT_EQ(sink.dropped, 3U);
}

class Counter : public CaptionSink {
public:
    void picture(const CaptionedPicture& picture) override {
        isInOrder = isInOrder && (count == 0 || picture.picOrderCnt > last);
        last = picture.picOrderCnt;
        ++count;
    }

    bool isInOrder = true;
    int32_t last = 0;
    uint64_t count = 0;
};

// Groups of pictures in any order, of as many pictures as can be reordered: frames, or fields in pairs.
void checkRandomOrder(uint32_t frames, bool isField, std::mt19937& random) {
    CaptionOrder order(frames);
    Counter sink;
    const int32_t size = static_cast<int32_t>(frames + 1) * (isField ? 2 : 1);
    for (int32_t group = 0; group < 20; ++group) {
        std::vector<int32_t> counts(static_cast<size_t>(size));
        for (int32_t i = 0; i < size; ++i) {
            counts[static_cast<size_t>(i)] = group * size + i;
        }
        std::shuffle(counts.begin(), counts.end(), random);
        for (const int32_t count : counts) {
            CaptionedPicture next = picture(0, count);
            next.isField = isField;
            order.push(next, sink);
        }
    }
    order.flush(sink);
    EXPECT_TRUE(sink.isInOrder) << frames;
    EXPECT_EQ(sink.count, static_cast<uint64_t>(20 * size));
    EXPECT_EQ(order.late(), 0U);
}

TEST(CaptionOrder, anyOrderOfAGroup) {
    std::mt19937 random(1);
    for (uint32_t frames = 0; frames <= CaptionOrder::kMostFrames; ++frames) {
        checkRandomOrder(frames, false, random);
        checkRandomOrder(frames, true, random);
    }
}

// More frames are announced than there can be, and frames and fields come in any mixture.
TEST(CaptionOrder, boundedMemory) {
    std::mt19937 random(2);
    const AllocationFault allocations(Allocator::New, 0);
    CaptionOrder order(1000);
    Counter sink;
    for (uint64_t i = 0; i < 10000; ++i) {
        CaptionedPicture next = picture(i, static_cast<int32_t>(random()));
        next.isField = random() % 4 != 0;
        order.push(next, sink);
        ASSERT_LE(i + 1 - sink.count, 34U);
    }
    order.flush(sink);
    EXPECT_EQ(sink.count, 10000U);
    EXPECT_EQ(allocations.seen(), 0);
}

}  // namespace
