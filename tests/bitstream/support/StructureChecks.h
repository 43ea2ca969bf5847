// What holds for every structure, whatever its table says: checked on random units.
#ifndef QV_TESTS_BITSTREAM_STRUCTURECHECKS_H
#define QV_TESTS_BITSTREAM_STRUCTURECHECKS_H

#include <cstdlib>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "Hex.h"
#include "RandomUnit.h"
#include "bitstream/Read.h"
#include "bitstream/syntax/Trace.h"

namespace qv_test {

// How many random units a test takes: QVNALU_TEST_ROUNDS, or a number for every run of the tests.
inline int unitRounds(int ordinary = 2000) {
    const char* const text = std::getenv("QVNALU_TEST_ROUNDS");
    return text != nullptr ? std::atoi(text) : ordinary;
}

class RecordingVisitor : public qv::TraceVisitor {
public:
    void begin(const qv::Structure& structure) override {
        static_cast<void>(structure);
        ++depth;
    }
    void element(const qv::TracedElement& element) override { elements.push_back(element); }
    void end() override { --depth; }

    std::vector<qv::TracedElement> elements;
    int depth = 0;
};

// What the checks know of a structure, whatever its record is.
struct StructureNotes {
    // Elements that are read only while there is more data.
    std::set<std::string> optional = {};

    // True for the payload of an SEI message: whole bytes, and rbsp_trailing_bits() that belong to the unit.
    bool isPayload = false;

    // Flags of extension_data(): a unit may end before each of them.
    std::set<std::string> extensionData = {};

    // Units are cut no later than before the second element of this name.
    std::string lastCut = {};

    // About how many elements of a unit have values outside their range.
    size_t violable = 60;

    // Chooses values that lead to every branch of the table.
    std::function<void(RandomUnit&, Random&)> steer = [](RandomUnit&, Random&) {};
};

// The public functions of a structure, and its table as a generator.
template <class Type>
struct StructureUnderTest : StructureNotes {
    using Record = Type;

    std::function<void(RandomUnit&, Record&)> generate;
    std::function<qv::Read<Record>(qv::Bytes)> read;
    std::function<qv::Read<Record>(qv::Bytes, qv::TraceVisitor&)> trace;
    std::function<qv::Written(const Record&, std::vector<uint8_t>&)> write;
    std::function<qv::Sized(const Record&)> size;
};

// What a read finds, without the record.
struct ReadResult {
    qv::Fault fault;
    qv::Trailing trailing;
};

// The functions of a structure without its record, so that the checks are compiled once.
class UntypedStructure {
public:
    explicit UntypedStructure(const StructureNotes& structureNotes) : notes(structureNotes) {}
    virtual ~UntypedStructure() = default;
    UntypedStructure(const UntypedStructure&) = delete;
    UntypedStructure& operator=(const UntypedStructure&) = delete;

    virtual void generate(RandomUnit& generator) const = 0;
    virtual ReadResult read(qv::Bytes unit) const = 0;
    virtual ReadResult trace(qv::Bytes unit, qv::TraceVisitor& visitor) const = 0;

    // Writes what is read or traced.
    virtual qv::Written rewrite(qv::Bytes unit, std::vector<uint8_t>& out) const = 0;
    virtual qv::Written rewriteTraced(qv::Bytes unit, std::vector<uint8_t>& out) const = 0;

    virtual qv::Sized size(qv::Bytes unit) const = 0;

    const StructureNotes& notes;
};

// Of a structure with a Record and the functions of StructureUnderTest, which it refers to.
template <class Structure>
class Untyped final : public UntypedStructure {
public:
    explicit Untyped(const Structure& structure) : UntypedStructure(structure), structure_(structure) {}

    void generate(RandomUnit& generator) const override {
        typename Structure::Record generated = {};
        structure_.generate(generator, generated);
    }
    ReadResult read(qv::Bytes unit) const override { return resultOf(structure_.read(unit)); }
    ReadResult trace(qv::Bytes unit, qv::TraceVisitor& visitor) const override {
        return resultOf(structure_.trace(unit, visitor));
    }
    qv::Written rewrite(qv::Bytes unit, std::vector<uint8_t>& out) const override {
        return structure_.write(structure_.read(unit).record, out);
    }
    qv::Written rewriteTraced(qv::Bytes unit, std::vector<uint8_t>& out) const override {
        RecordingVisitor visitor;
        return structure_.write(structure_.trace(unit, visitor).record, out);
    }
    qv::Sized size(qv::Bytes unit) const override { return structure_.size(structure_.read(unit).record); }

private:
    static ReadResult resultOf(const qv::Read<typename Structure::Record>& read) {
        return {read.fault, read.trailing};
    }

    const Structure& structure_;
};

std::string textOf(const qv::TracedElement& element);

// For each byte of the RBSP the byte of the coded unit, found the slow way. One more for what follows the
// end.
std::vector<size_t> codedBytesOf(const std::vector<uint8_t>& unit, size_t headerBytes);

void checkUntypedRoundTrips(const UntypedStructure& structure, int rounds);
std::set<std::string> checkUntypedRanges(const UntypedStructure& structure, int rounds);
void checkUntypedCuts(const UntypedStructure& structure, int rounds);

// Writer -> reader -> writer gives the same bytes; reader, tracer and sizer agree on every element and bit.
template <class Structure>
void checkRoundTrips(const Structure& structure, int rounds) {
    checkUntypedRoundTrips(Untyped<Structure>(structure), rounds);
}

// A value outside its range is the fault, and the elements before it are read. The names of the elements that
// had such a value.
template <class Structure>
std::set<std::string> checkRanges(const Structure& structure, int rounds) {
    return checkUntypedRanges(Untyped<Structure>(structure), rounds);
}

// A unit that is cut at any bit: the fault names the element that the data ends in.
template <class Structure>
void checkCuts(const Structure& structure, int rounds) {
    checkUntypedCuts(Untyped<Structure>(structure), rounds);
}

}  // namespace qv_test

#endif
