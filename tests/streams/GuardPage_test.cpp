// Runs every operation on real streams, whole and unit by unit, between inaccessible pages, and compares
// framing with the slow references. Then does the same with the fuzzing seeds made from each stream.
#include <gtest/gtest.h>

#include <random>

#include "GuardedOperations.h"
#include "SeedCorpus.h"
#include "StreamExpectation.h"
#include "StreamFolder.h"

namespace qv_test {
namespace {

constexpr size_t kLongest = size_t{1} << 20;

class StreamGuardPage : public StreamFolderTest<CoreTest> {
protected:
    void SetUp() override {
        StreamFolderTest<CoreTest>::SetUp();
        core().onlyCounts = true;
    }

    void check(const Bytes& bytes, QVCodecID codec) {
        operations_.compareWithReferences(bytes);
        Parameters parameters = randomParameters(random_, bytes.size());
        parameters.codec = codec;
        operations_.call(bytes, parameters);
        ++count;
    }

    size_t count = 0;

private:
    GuardedOperations operations_{kLongest};
    std::mt19937 random_{11};
};

TEST_P(StreamGuardPage, wholeAndUnitByUnit) {
    for (const Stream& stream : streamsIn(GetParam().path)) {
        SCOPED_TRACE(stream.name);
        check(stream.bytes, stream.codec());
        NalIndexList nalus;
        referenceAnnexBScan(stream.bytes, nalus);
        for (const auto& [offset, length] : nalus) {
            const auto unit = stream.bytes.begin() + offset;
            check(Bytes(unit, unit + length), stream.codec());
        }
        ASSERT_FALSE(HasFatalFailure());
    }
    EXPECT_GT(count, 0U);
    RecordProperty("buffers", static_cast<int>(count));
}

TEST_P(StreamGuardPage, seedsOfFuzzing) {
    for (const Stream& stream : streamsIn(GetParam().path, "annexb")) {
        SCOPED_TRACE(stream.name);
        for (const Seed& seed : seedsOf(stream.bytes, stream.codec() == QVCodecIDHevc)) {
            check(seed.bytes, stream.codec());
        }
        ASSERT_FALSE(HasFatalFailure());
    }
    EXPECT_GT(count, 0U);
    RecordProperty("buffers", static_cast<int>(count));
}

INSTANTIATE_TEST_SUITE_P(From, StreamGuardPage, everyStreamFolder(), nameOf);

}  // namespace
}  // namespace qv_test
