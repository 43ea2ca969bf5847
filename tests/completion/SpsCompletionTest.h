// What holds for the completion of either record.
#ifndef QV_TESTS_COMPLETION_SPSCOMPLETIONTEST_H
#define QV_TESTS_COMPLETION_SPSCOMPLETIONTEST_H

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include "AllocationFault.h"
#include "BitWriter.h"
#include "GuardedBuffer.h"
#include "QVSpsCompletion.h"
#include "RecordingCore.h"
#include "SpsUnit.h"

namespace qv_test {

template <class Sps>
class SpsCompletionTest : public CoreTest {
protected:
    using Complete = int (*)(Sps* sps, const unsigned char* data, int size);

    // The pattern is a record that shows which fields were written.
    SpsCompletionTest(Complete function, const Sps& pattern)
        : sps(pattern), complete_(function), pattern_(pattern) {}

    // Into the record as it is.
    int complete(const Bytes& unit) { return complete_(&sps, unit.data(), static_cast<int>(unit.size())); }
    int complete(const BitWriter& syntax) { return complete(spsUnitOf(syntax)); }

    // Into a pattern record, without a log line, leaving every byte as it was.
    void expectRefused(const Bytes& unit, int result) {
        sps = pattern_;
        EXPECT_EQ(complete(unit), result);
        EXPECT_EQ(std::memcmp(&sps, &pattern_, sizeof sps), 0);
        expectNoLines();
    }

    void expectArgumentsAreChecked(const Bytes& unit) {
        const int size = static_cast<int>(unit.size());
        EXPECT_EQ(complete_(nullptr, unit.data(), size), QVResultFailed);
        EXPECT_EQ(complete_(nullptr, nullptr, 0), QVResultFailed);
        for (const int none : {0, -1, std::numeric_limits<int>::min()}) {
            EXPECT_EQ(complete_(&sps, unit.data(), none), QVResultInvalidData) << none;
        }
        for (const int any : {-1, 0, 1, size, std::numeric_limits<int>::max()}) {
            EXPECT_EQ(complete_(&sps, nullptr, any), QVResultInvalidData) << any;
        }
        EXPECT_EQ(std::memcmp(&sps, &pattern_, sizeof sps), 0);
        expectNoLines();
    }

    // A unit that is cut at any bit from the header on to the end of its last element, and one that is cut at
    // any byte, between guard pages.
    void expectCutsAreRefused(const BitWriter& syntax, size_t header, size_t end) {
        for (size_t bits = header; bits < end; ++bits) {
            SCOPED_TRACE(std::to_string(bits) + "\n" + syntax.map());
            expectRefused(spsUnitCutAt(syntax, bits), QVResultInvalidData);
            ASSERT_FALSE(HasFailure());
        }
        const Bytes unit = spsUnitOf(syntax);
        GuardedBuffer guarded(unit.size());
        for (size_t size = 1; size < unit.size(); ++size) {
            SCOPED_TRACE(size);
            const Bytes cut(unit.begin(), unit.begin() + static_cast<long>(size));
            EXPECT_NE(complete_(&sps, guarded.placeAtEnd(cut), static_cast<int>(size)), QVResultOk);
            EXPECT_NE(complete_(&sps, guarded.placeAtBegin(cut), static_cast<int>(size)), QVResultOk);
            EXPECT_EQ(std::memcmp(&sps, &pattern_, sizeof sps), 0);
        }
    }

    void expectNoAllocation(const Bytes& unit) {
        const int size = static_cast<int>(unit.size());
        const AllocationFault blocks(Allocator::Malloc, 0);
        const AllocationFault objects(Allocator::New, 0);
        const AllocationFault arrays(Allocator::NothrowNewArray, 0);
        const int result = complete_(&sps, unit.data(), size);
        const int failure = complete_(&sps, unit.data(), size / 2);
        EXPECT_EQ(blocks.seen() + objects.seen() + arrays.seen(), 0);
        EXPECT_EQ(result, QVResultOk);
        EXPECT_EQ(failure, QVResultInvalidData);
    }

    Sps sps;

private:
    Complete complete_;
    Sps pattern_;
};

}  // namespace qv_test

#endif
