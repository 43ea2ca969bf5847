// No read allocates or touches a byte outside the unit, whatever the unit holds.
#ifndef QV_TESTS_BITSTREAM_MEMORYCHECKS_H
#define QV_TESTS_BITSTREAM_MEMORYCHECKS_H

#include <functional>
#include <string>
#include <utility>
#include <vector>

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

// Checks uses of units in memory between inaccessible pages, with every allocation counted.
class MemoryCheck {
public:
    explicit MemoryCheck(std::vector<UnitUse> uses) : uses_(std::move(uses)), successes_(uses_.size()) {}

    // The unit, cut, changed and with random bytes after its header: right before an inaccessible page, and
    // right after one.
    void checkVariants(const std::vector<uint8_t>& unit, Random& random);

    void expectEverythingWasUsed() const;

private:
    void check(GuardedBuffer& guarded, const std::vector<uint8_t>& unit);
    void checkAt(qv::Bytes unit);

    std::vector<UnitUse> uses_;
    std::vector<int> successes_;
};

// Something that is derived from a record, with all of it in one number so that nothing is left out.
template <class Record>
struct Derivation {
    std::string name;
    std::function<uint64_t(const Record&)> derive;
};

void checkUntypedMemory(const UntypedStructure& structure, int rounds, const std::vector<UnitUse>& others);

// The reader, the tracer, the sizer and what is derived from the record, on random units of a structure and
// on what is left of them when they are damaged.
template <class Structure>
void checkMemory(const Structure& structure, int rounds,
                 const std::vector<Derivation<typename Structure::Record>>& derivations = {}) {
    std::vector<UnitUse> others;
    for (const auto& derivation : derivations) {
        others.push_back({derivation.name, [&derivation, &structure](qv::Bytes unit) {
                              return derivation.derive(structure.read(unit).record) != 0;
                          }});
    }
    checkUntypedMemory(Untyped<Structure>(structure), rounds, others);
}

}  // namespace qv_test

#endif
