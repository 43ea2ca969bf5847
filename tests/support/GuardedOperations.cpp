#include "GuardedOperations.h"

#include <gtest/gtest.h>

#include "AllocationFault.h"

namespace qv_test {

namespace {

int sizeOf(const Bytes& bytes) {
    return static_cast<int>(bytes.size());
}

void compareScans(const Bytes& bytes, const unsigned char* data) {
    NalIndexList expected;
    NalIndexList actual;
    const int result = referenceAnnexBScan(bytes, expected);
    ASSERT_EQ(QVNaluParser::parserDataToNaluIdx(data, sizeOf(bytes), actual), result);
    ASSERT_EQ(actual, expected);
    for (const int lengthSize : {1, 2, 4}) {
        NalIndexList nalus;
        ASSERT_EQ(QVNaluParser::parserDataToNalus(data, sizeOf(bytes), nalus, lengthSize), 0);
        ASSERT_EQ(nalus, referenceLengthScan(bytes, lengthSize).nalus);
    }
}

void compareTypes(const Bytes& bytes, const unsigned char* data) {
    for (const QVCodecID codec : {QVCodecIDAvc, QVCodecIDHevc}) {
        ASSERT_EQ(QVNaluParser::isKeyFrame(codec, data, sizeOf(bytes)), referenceIsKeyFrame(codec, bytes));

        NalIndexList nalus;
        referenceAnnexBScan(bytes, nalus);
        std::vector<QVNaluParser::NaluInfo> infos;
        const QVCodecParameters params{codec, 1, 0};
        ASSERT_EQ(QVNaluParser::parserDataToNaluType(data, sizeOf(bytes), infos, &params), 0);
        const auto expected = referenceTyping(bytes, nalus, codec);
        ASSERT_EQ(infos.size(), expected.size());
        for (size_t i = 0; i < infos.size(); ++i) {
            ASSERT_EQ(infos[i].naluType, expected[i].naluType);
            ASSERT_EQ(infos[i].offset, expected[i].offset);
            ASSERT_EQ(infos[i].length, expected[i].length);
            ASSERT_EQ(infos[i].isNonReference, expected[i].isNonReference);
        }
    }
}

void compareToLengths(const Bytes& bytes, const unsigned char* data) {
    Bytes actual = {0xDE, 0xAD};
    Bytes expected = actual;
    const int result = referenceAnnexBToLengths(bytes, expected);
    ASSERT_EQ(QVNaluParser::converAnnexBToAvcC(data, sizeOf(bytes), actual), result);
    ASSERT_EQ(actual, expected);
}

void compareToByteStream(const Bytes& bytes, const unsigned char* data) {
    for (const int lengthSize : {1, 4}) {
        Bytes expected;
        const int result = referenceLengthsToAnnexB(bytes, lengthSize, expected);
        Caller caller;
        ASSERT_EQ(QVNaluParser::connvertAvcCToAnnexB(data, sizeOf(bytes), lengthSize, &caller.buffer,
                                                     caller.bufferSize),
                  result);
        if (caller.buffer != nullptr) {
            ASSERT_EQ(Bytes(caller.buffer, caller.buffer + caller.bufferSize), expected);
        }
    }
}

}  // namespace

template <class Check>
void GuardedOperations::atBothEnds(const Bytes& bytes, Check check) {
    heap_.place(GuardedHeap::Place::End);
    check(memory_.placeAtEnd(bytes));
    heap_.place(GuardedHeap::Place::Begin);
    check(memory_.placeAtBegin(bytes));
}

void GuardedOperations::call(const Bytes& bytes, const Parameters& parameters) {
    for (const Operation& operation : everyOperation()) {
        SCOPED_TRACE(operation.name);
        std::vector<Outcome> outcomes;
        atBothEnds(bytes, [&](unsigned char* data) {
            Caller caller;
            const AllocationFault copies(Allocator::Malloc, 0);
            const int result = operation.call(data, bytes.size(), parameters, caller);
            EXPECT_LE(copies.bytes(), bytes.size());
            outcomes.push_back(outcomeOf(result, caller));
        });
        ASSERT_EQ(outcomes[0], outcomes[1]);
    }
    // These lists only grow.
    core().createdSeiInfos.clear();
    core().vividCalls.clear();
}

void GuardedOperations::compareWithReferences(const Bytes& bytes) {
    atBothEnds(bytes, [&](const unsigned char* data) {
        ASSERT_NO_FATAL_FAILURE(compareScans(bytes, data));
        ASSERT_NO_FATAL_FAILURE(compareTypes(bytes, data));
        ASSERT_NO_FATAL_FAILURE(compareToLengths(bytes, data));
        ASSERT_NO_FATAL_FAILURE(compareToByteStream(bytes, data));
    });
}

}  // namespace qv_test
