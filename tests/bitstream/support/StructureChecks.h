// What holds for every structure, whatever its table says: checked on random units.
#ifndef QV_TESTS_BITSTREAM_STRUCTURECHECKS_H
#define QV_TESTS_BITSTREAM_STRUCTURECHECKS_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "Hex.h"
#include "RandomUnit.h"
#include "bitstream/Read.h"
#include "bitstream/syntax/EmulationPrevention.h"
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

// The public functions of a structure, and its table as a generator.
template <class Record>
struct StructureUnderTest {
    std::function<void(RandomUnit&, Record&)> generate;
    std::function<qv::Read<Record>(qv::Bytes)> read;
    std::function<qv::Read<Record>(qv::Bytes, qv::TraceVisitor&)> trace;
    std::function<qv::Written(const Record&, std::vector<uint8_t>&)> write;
    std::function<qv::Sized(const Record&)> size;

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

inline std::string textOf(const qv::TracedElement& element) {
    return std::to_string(element.firstBit) + " " + std::to_string(element.width) + " " +
           qv::textOf(element.element) + " " + std::to_string(element.value);
}

// For each byte of the RBSP the byte of the coded unit, found the slow way. One more for what follows the
// end.
inline std::vector<size_t> codedBytesOf(const std::vector<uint8_t>& unit, size_t headerBytes) {
    std::vector<size_t> coded;
    for (size_t byte = 0; byte <= unit.size(); ++byte) {
        if (byte < headerBytes || byte == unit.size() ||
            !qv::detail::isEmulationPrevention(unit.data(), byte)) {
            coded.push_back(byte);
        }
    }
    return coded;
}

// Writer -> reader -> writer gives the same bytes; reader, tracer and sizer agree on every element and bit.
template <class Record>
void checkRoundTrips(const StructureUnderTest<Record>& structure, int rounds) {
    Random random(1);
    int legal = 0;
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        RandomUnit generator(random);
        structure.steer(generator, random);
        Record generated = {};
        structure.generate(generator, generated);
        if (!generator.isLegal()) {
            continue;
        }
        ++legal;
        const std::vector<uint8_t> unit = generator.finish();
        const qv::Read<Record> read = structure.read(bytesOf(unit));
        ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
        ASSERT_EQ(read.trailing.bits, 0U);
        ASSERT_EQ(read.trailing.bytes.size, 0U);

        std::vector<uint8_t> written;
        const qv::Written result = structure.write(read.record, written);
        ASSERT_TRUE(result.ok()) << qv::textOf(result.fault);
        ASSERT_EQ(result.size, written.size());
        ASSERT_EQ(written, unit);

        RecordingVisitor visitor;
        const qv::Read<Record> traced = structure.trace(bytesOf(unit), visitor);
        ASSERT_TRUE(traced.ok());
        ASSERT_EQ(visitor.depth, 0);
        ASSERT_EQ(visitor.elements.size(), generator.elements().size());
        const std::vector<size_t> codedBytes = codedBytesOf(unit, generator.headerBytes());
        for (size_t i = 0; i < visitor.elements.size(); ++i) {
            ASSERT_EQ(textOf(visitor.elements[i]), textOf(generator.elements()[i]));
            ASSERT_EQ(visitor.elements[i].bits, generator.elements()[i].bits);
            ASSERT_EQ(visitor.elements[i].codedByte, codedBytes.at(visitor.elements[i].firstBit / 8));
        }
        uint64_t bits = 0;
        for (const qv::TracedElement& element : visitor.elements) {
            ASSERT_EQ(element.firstBit, bits) << qv::textOf(element.element);
            bits += element.width;
        }
        ASSERT_EQ(structure.size(read.record).bits, bits);
        std::vector<uint8_t> writtenAgain;
        structure.write(traced.record, writtenAgain);
        ASSERT_EQ(writtenAgain, unit);
    }
    // A table that refuses most of what its own ranges allow would be tested on the rest alone.
    EXPECT_GT(legal, rounds / 2);
}

// A unit with one value outside its range.
template <class Record>
void checkViolation(const StructureUnderTest<Record>& structure, RandomUnit& generator) {
    const qv::TracedElement& wrong = *generator.violated();
    const std::vector<uint8_t> unit = generator.finish();
    RecordingVisitor visitor;
    const qv::Read<Record> read = structure.trace(bytesOf(unit), visitor);
    ASSERT_EQ(read.fault.kind, qv::FaultKind::OutOfRange) << textOf(wrong) << "; " << qv::textOf(read.fault);
    ASSERT_EQ(qv::textOf(read.fault.element), qv::textOf(wrong.element));
    ASSERT_EQ(read.fault.firstBit, wrong.firstBit);
    ASSERT_EQ(read.fault.value, wrong.value);
    ASSERT_TRUE(read.fault.value < read.fault.least || read.fault.value > read.fault.most);
    ASSERT_NE(read.fault.structure, nullptr);
    ASSERT_EQ(visitor.depth, 0);
    const auto index = static_cast<size_t>(&wrong - generator.elements().data());
    ASSERT_EQ(visitor.elements.size(), index);
}

// A value outside its range is the fault, and the elements before it are read. The names of the elements that
// had such a value.
template <class Record>
std::set<std::string> checkRanges(const StructureUnderTest<Record>& structure, int rounds) {
    Random random(2);
    std::set<std::string> names;
    int violated = 0;
    for (int round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        RandomUnit generator(random);
        structure.steer(generator, random);
        generator.violate(random() % structure.violable);
        Record generated = {};
        structure.generate(generator, generated);
        const qv::TracedElement* const wrong = generator.violated();
        if (!generator.isLegal() || wrong == nullptr) {
            continue;
        }
        ++violated;
        names.insert(wrong->element.name);
        checkViolation(structure, generator);
    }
    EXPECT_GT(violated, rounds / 4);
    return names;
}

// A unit that is cut at any bit: the fault names the element that the data ends in.
template <class Record>
void checkCuts(const StructureUnderTest<Record>& structure, int rounds) {
    Random random(3);
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        RandomUnit generator(random);
        structure.steer(generator, random);
        Record generated = {};
        structure.generate(generator, generated);
        if (!generator.isLegal() || generator.elements().size() > 400) {
            continue;
        }
        const std::vector<qv::TracedElement>& elements = generator.elements();
        size_t next = 0;
        for (uint64_t cut = 8 * generator.headerBytes(); cut < generator.rbspBits();
             cut += structure.isPayload ? 8 : 1) {
            while (elements[next].firstBit + elements[next].width <= cut) {
                ++next;
            }
            if (next > 0 && elements[next - 1].element.name == structure.lastCut) {
                break;
            }
            const std::vector<uint8_t> unit = generator.cutAt(cut);
            RecordingVisitor visitor;
            const qv::Read<Record> read = structure.trace(bytesOf(unit), visitor);
            const std::string name = elements[next].element.name;
            if (structure.extensionData.count(name) != 0 ||
                (structure.optional.count(name) != 0 && elements[next].firstBit == cut)) {
                ASSERT_TRUE(read.ok()) << qv::textOf(read.fault);
                continue;
            }
            ASSERT_EQ(read.fault.kind, qv::FaultKind::EndOfData) << cut << " " << textOf(elements[next]);
            ASSERT_EQ(qv::textOf(read.fault.element), qv::textOf(elements[next].element)) << cut;
            ASSERT_EQ(read.fault.firstBit, elements[next].firstBit);
            ASSERT_EQ(visitor.elements.size(), next);
        }
    }
}

}  // namespace qv_test

#endif
