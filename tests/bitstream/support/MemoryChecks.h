// No read allocates or touches a byte outside the unit, whatever the unit holds.
#ifndef QV_TESTS_BITSTREAM_MEMORYCHECKS_H
#define QV_TESTS_BITSTREAM_MEMORYCHECKS_H

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "AllocationFault.h"
#include "GuardedBuffer.h"
#include "StructureChecks.h"

namespace qv_test {

// Holds every element of a trace once, without memory of its own.
class SummingVisitor : public qv::TraceVisitor {
public:
    void begin(const qv::Structure& structure) override { sum += static_cast<uint8_t>(structure.name[0]); }
    void element(const qv::TracedElement& element) override { sum += element.firstBit + element.bits; }
    void end() override {}

    uint64_t sum = 0;
};

// Something to do with the bytes of a unit. True when there was something to do: every use of a list must
// have that for some unit.
struct UnitUse {
    std::string name;
    std::function<bool(qv::Bytes)> apply;
};

class MemoryCheck {
public:
    explicit MemoryCheck(std::vector<UnitUse> uses) : uses_(std::move(uses)), successes_(uses_.size()) {}

    // The unit, cut, changed and with random bytes after its header: right before an inaccessible page, and
    // right after one.
    void checkVariants(const std::vector<uint8_t>& unit, Random& random) {
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

    void expectEverythingWasUsed() const {
        for (size_t i = 0; i < uses_.size(); ++i) {
            EXPECT_GT(successes_[i], 0) << uses_[i].name;
        }
    }

private:
    void check(GuardedBuffer& guarded, const std::vector<uint8_t>& unit) {
        checkAt({guarded.placeAtEnd(unit), unit.size()});
        checkAt({guarded.placeAtBegin(unit), unit.size()});
    }

    void checkAt(qv::Bytes unit) {
        for (size_t i = 0; i < uses_.size(); ++i) {
            const AllocationFault allocations(Allocator::New, 0);
            const AllocationFault arrays(Allocator::NothrowNewArray, 0);
            const AllocationFault blocks(Allocator::Malloc, 0);
            successes_[i] += uses_[i].apply(unit) ? 1 : 0;
            ASSERT_EQ(allocations.seen() + arrays.seen() + blocks.seen(), 0) << uses_[i].name;
        }
    }

    std::vector<UnitUse> uses_;
    std::vector<int> successes_;
};

// Something that is derived from a record, with all of it in one number so that nothing is left out.
template <class Record>
struct Derivation {
    std::string name;
    std::function<uint64_t(const Record&)> derive;
};

// The reader, the tracer, the sizer and what is derived from the record, on random units of a structure and
// on what is left of them when they are damaged.
template <class Record>
void checkMemory(const StructureUnderTest<Record>& structure, int rounds,
                 const std::vector<Derivation<Record>>& derivations = {}) {
    std::vector<UnitUse> uses = {
        {"read", [&](qv::Bytes unit) { return structure.read(unit).ok(); }},
        {"trace",
         [&](qv::Bytes unit) {
             SummingVisitor visitor;
             return structure.trace(unit, visitor).ok() && visitor.sum != 0;
         }},
        {"size", [&](qv::Bytes unit) { return structure.size(structure.read(unit).record).bits != 0; }},
    };
    for (const Derivation<Record>& derivation : derivations) {
        uses.push_back({derivation.name, [&derivation, &structure](qv::Bytes unit) {
                            return derivation.derive(structure.read(unit).record) != 0;
                        }});
    }
    MemoryCheck check(std::move(uses));
    Random random(6);
    for (int round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        RandomUnit generator(random);
        structure.steer(generator, random);
        Record generated = {};
        structure.generate(generator, generated);
        if (generator.isLegal()) {
            check.checkVariants(generator.finish(), random);
        }
    }
    check.expectEverythingWasUsed();
}

}  // namespace qv_test

#endif
