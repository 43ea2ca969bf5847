// The checks of memory, compiled once for all records.
#include "MemoryChecks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "AllocationFault.h"
#include "GuardedBuffer.h"

namespace qv_test {

void MemoryCheck::checkVariants(const std::vector<uint8_t>& unit, Random& random) {
    GuardedBuffer guarded(unit.size());
    check(guarded, unit);
    for (size_t cut = 0; cut < std::min<size_t>(unit.size(), 48); ++cut) {
        const size_t size = unit.size() <= 48 ? cut : random() % unit.size();
        check(guarded, {unit.begin(), unit.begin() + static_cast<std::ptrdiff_t>(size)});
    }
    for (int round = 0; round < 24 && !unit.empty(); ++round) {
        std::vector<uint8_t> changed = unit;
        for (uint64_t bits = 1 + random() % 6; bits > 0; --bits) {
            const uint64_t bit = random() % (8 * changed.size());
            changed[bit / 8] = static_cast<uint8_t>(changed[bit / 8] ^ 1U << bit % 8);
        }
        check(guarded, changed);
    }
    for (int round = 0; round < 8; ++round) {
        std::vector<uint8_t> noise = unit;
        // Few bits are set in every other one: codes are long, and lists.
        const uint64_t mask = round % 2 == 0 ? 0xFF : 0x11;
        for (size_t i = 2; i < noise.size(); ++i) {
            noise[i] = static_cast<uint8_t>(random() & mask);
        }
        check(guarded, noise);
    }
}

void MemoryCheck::expectEverythingWasUsed() const {
    for (size_t i = 0; i < uses_.size(); ++i) {
        EXPECT_GT(successes_[i], 0) << uses_[i].name;
    }
}

void MemoryCheck::check(GuardedBuffer& guarded, const std::vector<uint8_t>& unit) {
    checkAt({guarded.placeAtEnd(unit), unit.size()});
    checkAt({guarded.placeAtBegin(unit), unit.size()});
}

void MemoryCheck::checkAt(qv::Bytes unit) {
    for (size_t i = 0; i < uses_.size(); ++i) {
        const AllocationFault allocations(Allocator::New, 0);
        const AllocationFault arrays(Allocator::NothrowNewArray, 0);
        const AllocationFault blocks(Allocator::Malloc, 0);
        successes_[i] += uses_[i].apply(unit) ? 1 : 0;
        ASSERT_EQ(allocations.seen() + arrays.seen() + blocks.seen(), 0) << uses_[i].name;
    }
}

void checkUntypedMemory(const UntypedStructure& structure, int rounds, const std::vector<UnitUse>& others) {
    std::vector<UnitUse> uses = {
        {"read", [&](qv::Bytes unit) { return !structure.read(unit).fault; }},
        {"trace",
         [&](qv::Bytes unit) {
             SummingVisitor visitor;
             return !structure.trace(unit, visitor).fault && visitor.sum != 0;
         }},
        {"size", [&](qv::Bytes unit) { return structure.size(unit).bits != 0; }},
    };
    uses.insert(uses.end(), others.begin(), others.end());
    MemoryCheck check(std::move(uses));
    Random random(6);
    for (int round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        RandomUnit generator(random);
        structure.notes.steer(generator, random);
        structure.generate(generator);
        if (generator.isLegal()) {
            check.checkVariants(generator.finish(), random);
        }
    }
    check.expectEverythingWasUsed();
}

}  // namespace qv_test
