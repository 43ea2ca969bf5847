// The checks of structures, compiled once for all records.
#include "StructureChecks.h"

#include <gtest/gtest.h>

#include "bitstream/syntax/EmulationPrevention.h"

namespace qv_test {

namespace {

// A unit with one value outside its range.
void checkViolation(const UntypedStructure& structure, RandomUnit& generator) {
    const qv::TracedElement& wrong = *generator.violated();
    const std::vector<uint8_t> unit = generator.finish();
    RecordingVisitor visitor;
    const ReadResult read = structure.trace(bytesOf(unit), visitor);
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

}  // namespace

std::vector<size_t> codedBytesOf(const std::vector<uint8_t>& unit, size_t headerBytes) {
    std::vector<size_t> coded;
    for (size_t byte = 0; byte <= unit.size(); ++byte) {
        if (byte < headerBytes || byte == unit.size() ||
            !qv::detail::isEmulationPrevention(unit.data(), byte)) {
            coded.push_back(byte);
        }
    }
    return coded;
}

std::string textOf(const qv::TracedElement& element) {
    return std::to_string(element.firstBit) + " " + std::to_string(element.width) + " " +
           qv::textOf(element.element) + " " + std::to_string(element.value);
}

void checkUntypedRoundTrips(const UntypedStructure& structure, int rounds) {
    Random random(1);
    int legal = 0;
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        RandomUnit generator(random);
        structure.notes.steer(generator, random);
        structure.generate(generator);
        if (!generator.isLegal()) {
            continue;
        }
        ++legal;
        const std::vector<uint8_t> unit = generator.finish();
        const ReadResult read = structure.read(bytesOf(unit));
        ASSERT_FALSE(read.fault) << qv::textOf(read.fault);
        ASSERT_EQ(read.trailing.bits, 0U);
        ASSERT_EQ(read.trailing.bytes.size, 0U);

        std::vector<uint8_t> written;
        const qv::Written result = structure.rewrite(bytesOf(unit), written);
        ASSERT_TRUE(result.ok()) << qv::textOf(result.fault);
        ASSERT_EQ(result.size, written.size());
        ASSERT_EQ(written, unit);

        RecordingVisitor visitor;
        const ReadResult traced = structure.trace(bytesOf(unit), visitor);
        ASSERT_FALSE(traced.fault);
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
        ASSERT_EQ(structure.size(bytesOf(unit)).bits, bits);
        std::vector<uint8_t> writtenAgain;
        structure.rewriteTraced(bytesOf(unit), writtenAgain);
        ASSERT_EQ(writtenAgain, unit);
    }
    // A table that refuses most of what its own ranges allow would be tested on the rest alone.
    EXPECT_GT(legal, rounds / 2);
}

std::set<std::string> checkUntypedRanges(const UntypedStructure& structure, int rounds) {
    Random random(2);
    std::set<std::string> names;
    int violated = 0;
    for (int round = 0; round < rounds && !testing::Test::HasFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        RandomUnit generator(random);
        structure.notes.steer(generator, random);
        generator.violate(random() % structure.notes.violable);
        structure.generate(generator);
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

void checkUntypedCuts(const UntypedStructure& structure, int rounds) {
    Random random(3);
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        RandomUnit generator(random);
        structure.notes.steer(generator, random);
        structure.generate(generator);
        if (!generator.isLegal() || generator.elements().size() > 400) {
            continue;
        }
        const std::vector<qv::TracedElement>& elements = generator.elements();
        size_t next = 0;
        for (uint64_t cut = 8 * generator.headerBytes(); cut < generator.rbspBits();
             cut += structure.notes.isPayload ? 8 : 1) {
            while (elements[next].firstBit + elements[next].width <= cut) {
                ++next;
            }
            if (next > 0 && elements[next - 1].element.name == structure.notes.lastCut) {
                break;
            }
            const std::vector<uint8_t> unit = generator.cutAt(cut);
            RecordingVisitor visitor;
            const ReadResult read = structure.trace(bytesOf(unit), visitor);
            const std::string name = elements[next].element.name;
            if (structure.notes.extensionData.count(name) != 0 ||
                (structure.notes.optional.count(name) != 0 && elements[next].firstBit == cut)) {
                ASSERT_FALSE(read.fault) << qv::textOf(read.fault);
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
