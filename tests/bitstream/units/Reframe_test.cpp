// Units from one framing to another, and what is reported of the input.
#include "bitstream/units/Reframe.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "../support/Hex.h"
#include "../support/SlowUnits.h"
#include "AllocationFault.h"
#include "GuardedBuffer.h"

namespace {

using namespace qv_test;
using qv::Framing;
using qv::ReframeFault;
using qv::Reframing;

constexpr Framing kFramings[] = {Framing::StartCodes, Framing::Lengths1, Framing::Lengths2, Framing::Lengths3,
                                 Framing::Lengths4};

struct Row {
    Reframing reframing;
    const char* in;
    const char* out;
    const char* fault;
    size_t droppedBytes;
};

constexpr Reframing kFromStartCodes = {Framing::StartCodes, Framing::Lengths2};
constexpr Reframing kToStartCodes = {Framing::Lengths2, Framing::StartCodes};

const Row kRows[] = {
    {kFromStartCodes, "", "", "", 0},
    {kFromStartCodes, "000001 65 88 00000001 41", "0002 65 88 0001 41", "", 0},
    {kFromStartCodes, "0000 00000001 65 88 0000 000001 41 00", "0002 65 88 0001 41", "", 0},
    {{Framing::StartCodes, Framing::Lengths1}, "000001 65 88 000001 41", "02 65 88 01 41", "", 0},
    {{Framing::StartCodes, Framing::Lengths3}, "000001 65 88 000001 41", "000002 65 88 000001 41", "", 0},
    {{Framing::StartCodes, Framing::Lengths4}, "000001 65 88 000001 41", "00000002 65 88 00000001 41", "", 0},
    {{Framing::StartCodes, Framing::StartCodes, 3},
     "00 00000001 65 000001 41 00",
     "000001 65 000001 41",
     "",
     0},
    {{Framing::StartCodes, Framing::StartCodes, 4}, "000001 65 000001 41", "00000001 65 00000001 41", "", 0},
    {{Framing::StartCodes, Framing::StartCodes, 9}, "000001 65", "00000001 65", "", 0},
    {kToStartCodes, "0002 65 88 0001 41", "00000001 65 88 00000001 41", "", 0},
    {{Framing::Lengths4, Framing::Lengths1}, "00000002 65 88 00000001 41", "02 65 88 01 41", "", 0},
    {{Framing::Lengths1, Framing::Lengths4}, "02 65 88 01 41", "00000002 65 88 00000001 41", "", 0},
    // Headers are not looked at.
    {kFromStartCodes, "000001 E5 000001 6E", "0001 E5 0001 6E", "", 0},
    // Faults
    {kFromStartCodes, "6588", "", "unit 0 at byte 2: no start code", 2},
    {kFromStartCodes, "FF FE FD 000001 65", "0001 65", "unit 0 at byte 6: bytes before the first start code",
     3},
    {kFromStartCodes, "000001 65 000001 000001 41", "0001 65 0001 41", "unit 1 at byte 7: an empty unit", 0},
    {kToStartCodes, "0001 65 0000 0001 41", "00000001 65 00000001 41", "unit 1 at byte 5: an empty unit", 0},
    {kToStartCodes, "0001 65 0005 41 9A", "00000001 65 00000001 41 9A",
     "unit 1 at byte 5: the NALUnitLength runs past the end", 0},
    {kToStartCodes, "0001 65 41", "00000001 65",
     "unit 1 at byte 4: fewer bytes left than a NALUnitLength has", 1},
    {kToStartCodes, "0002 65 00", "00000001 65 00", "unit 0 at byte 2: the unit ends with a zero byte", 0},
    {kToStartCodes, "0001 41 0005 65 000001 41", "00000001 41 00000001 65 000001 41",
     "unit 1 at byte 5: it holds a start code", 0},
    {kToStartCodes, "0003 000001", "00000001 000001", "unit 0 at byte 2: it holds a start code", 0},
    {{Framing::Lengths2, Framing::Lengths4}, "0003 000001", "00000003 000001", "", 0},
};

TEST(Reframe, rows) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(std::string(qv::textOf(row.reframing.from)) + " to " + qv::textOf(row.reframing.to) +
                     ": " + row.in);
        const Bytes in = hex(row.in);
        Bytes out = {0xDE, 0xAD};
        const qv::Reframed reframed = qv::reframe(bytesOf(in), row.reframing, out);
        ASSERT_GE(out.size(), 2U);
        EXPECT_EQ(out[0], 0xDE);
        EXPECT_EQ(Bytes(out.begin() + 2, out.end()), hex(row.out));
        EXPECT_EQ(reframed.size, out.size() - 2);
        EXPECT_EQ(qv::textOf(reframed.fault), row.fault);
        EXPECT_EQ(reframed.ok(), row.fault[0] == '\0');
        EXPECT_EQ(reframed.faultyUnits, reframed.ok() ? 0U : 1U);
        EXPECT_EQ(reframed.droppedBytes, row.droppedBytes);
    }
}

TEST(Reframe, allFaultsAreCounted) {
    const Bytes in = hex("FF 000001 000001 65 000001");
    const qv::Reframed reframed = qv::reframedSize(bytesOf(in), kFromStartCodes);
    EXPECT_EQ(reframed.faultyUnits, 2U);
    EXPECT_EQ(reframed.units, 1U);
    EXPECT_EQ(reframed.droppedBytes, 1U);
    EXPECT_EQ(qv::textOf(reframed.fault),
              "unit 0 at byte 4: bytes before the first start code; an empty unit");
    EXPECT_EQ(reframed.fault.kind, ReframeFault::Kind::Input);
}

// --- Units that are too long ---

Bytes unitsOfSizes(const std::vector<size_t>& sizes) {
    Bytes bytes;
    for (const size_t size : sizes) {
        bytes.insert(bytes.end(), {0, 0, 1});
        bytes.insert(bytes.end(), size, 0x55);
    }
    return bytes;
}

TEST(Reframe, aUnitThatDoesNotFitItsLength) {
    struct Limit {
        Framing to;
        size_t most;
    };
    for (const Limit& limit : {Limit{Framing::Lengths1, 0xFF}, Limit{Framing::Lengths2, 0xFFFF},
                               Limit{Framing::Lengths3, 0xFFFFFF}}) {
        SCOPED_TRACE(qv::textOf(limit.to));
        const Reframing reframing = {Framing::StartCodes, limit.to};
        Bytes out;
        const Bytes fits = unitsOfSizes({1, limit.most});
        EXPECT_TRUE(qv::reframe(bytesOf(fits), reframing, out).ok());
        EXPECT_EQ(out.size(), limit.most + 1 + 2 * qv::lengthSizeOf(limit.to));

        const Bytes tooLong = unitsOfSizes({1, 2, limit.most + 1, 3});
        Bytes untouched = {0xDE, 0xAD};
        const qv::Reframed reframed = qv::reframe(bytesOf(tooLong), reframing, untouched);
        EXPECT_EQ(untouched, Bytes({0xDE, 0xAD}));
        EXPECT_EQ(reframed.size, 0U);
        EXPECT_EQ(reframed.units, 0U);
        EXPECT_EQ(reframed.fault.kind, ReframeFault::Kind::UnitTooLong);
        EXPECT_EQ(reframed.fault.unit, 2U);
        EXPECT_EQ(reframed.fault.offset, 12U);
        EXPECT_EQ(reframed.fault.size, limit.most + 1);
        EXPECT_EQ(qv::textOf(reframed.fault), "unit 2 at byte 12: its " + std::to_string(limit.most + 1) +
                                                  " bytes do not fit the length");
    }
}

// --- Sinks ---

class Collector : public qv::ByteSink {
public:
    void write(qv::Bytes bytes) override {
        all.insert(all.end(), bytes.begin(), bytes.end());
        ++calls;
    }
    Bytes all;
    int calls = 0;
};

TEST(Reframe, aSinkTakesTheSameBytes) {
    for (const Row& row : kRows) {
        const Bytes in = hex(row.in);
        Collector sink;
        const qv::Reframed reframed = qv::reframe(bytesOf(in), row.reframing, sink);
        EXPECT_EQ(sink.all, hex(row.out)) << row.in;
        EXPECT_EQ(reframed.size, sink.all.size());
        EXPECT_EQ(static_cast<size_t>(sink.calls), 2 * reframed.units);
    }
}

TEST(Reframe, aListGrowsOnce) {
    const Bytes in = unitsOfSizes(std::vector<size_t>(500, 9));
    Bytes out;
    const AllocationFault allocations(Allocator::New, 0);
    const qv::Reframed size = qv::reframedSize(bytesOf(in), kFromStartCodes);
    EXPECT_EQ(allocations.seen(), 0);
    qv::reframe(bytesOf(in), kFromStartCodes, out);
    EXPECT_EQ(allocations.seen(), 1);
    EXPECT_EQ(out.size(), size.size);
}

// --- Round trips ---

using Generator = std::mt19937_64;

// Units without start codes in them, which do not end with a zero byte.
std::vector<Bytes> randomUnits(Generator& random) {
    std::vector<Bytes> units(1 + random() % 8);
    for (Bytes& unit : units) {
        for (size_t left = random() % 40; left > 0; --left) {
            const uint64_t digit = random() % 6;
            const bool startsCode =
                unit.size() >= 2 && unit.end()[-1] == 0 && unit.end()[-2] == 0 && digit < 2;
            unit.push_back(startsCode ? 0x03 : static_cast<uint8_t>(digit));
        }
        unit.push_back(0x80);
    }
    return units;
}

Bytes framed(const std::vector<Bytes>& units, Framing framing) {
    Bytes bytes;
    for (const Bytes& unit : units) {
        const size_t lengthSize = qv::lengthSizeOf(framing);
        if (lengthSize == 0) {
            bytes.insert(bytes.end(), {0, 0, 0, 1});
        }
        for (size_t i = lengthSize; i > 0; --i) {
            bytes.push_back(static_cast<uint8_t>(i > 2 ? 0 : unit.size() >> 8 * (i - 1)));
        }
        bytes.insert(bytes.end(), unit.begin(), unit.end());
    }
    return bytes;
}

TEST(Reframe, fromEveryFramingToEveryOther) {
    Generator random(11);
    for (int round = 0; round < 500; ++round) {
        const std::vector<Bytes> units = randomUnits(random);
        for (const Framing from : kFramings) {
            for (const Framing to : kFramings) {
                Bytes out;
                const Bytes in = framed(units, from);
                const qv::Reframed reframed = qv::reframe(bytesOf(in), {from, to}, out);
                ASSERT_TRUE(reframed.ok()) << qv::textOf(reframed.fault);
                ASSERT_EQ(out, framed(units, to)) << hexOf(bytesOf(in));
                ASSERT_EQ(reframed.units, units.size());
                ASSERT_EQ(reframed.droppedBytes, 0U);
            }
        }
    }
}

TEST(Reframe, aNumberThatIsNoFaultHasNoText) {
    ReframeFault fault;
    EXPECT_EQ(qv::textOf(fault), "");
    fault.kind = static_cast<ReframeFault::Kind>(9);
    EXPECT_EQ(qv::textOf(fault), "");
}

// Whatever the input: each of its bytes is written, or counted, or part of the framing.
TEST(Reframe, nothingIsLostOfAnyInput) {
    Generator random(12);
    GuardedBuffer guarded(4096);
    for (int round = 0; round < 4000; ++round) {
        static constexpr uint8_t kBytes[] = {0, 0, 0, 1, 1, 2, 3, 0x65};
        Bytes in(random() % 120);
        for (uint8_t& byte : in) {
            byte = random() % 4 == 0 ? static_cast<uint8_t>(random()) : kBytes[random() % sizeof kBytes];
        }
        const qv::Bytes place = {guarded.placeAtEnd(in), in.size()};
        for (const Framing from : kFramings) {
            Bytes expected;
            size_t dropped = 0;
            size_t faulty = 0;
            for (const SlowUnit& unit : slowUnits(in, from, qv::Codec::Avc)) {
                const auto* const first = in.data() + unit.offset;
                if (unit.size > 0) {
                    expected.insert(expected.end(), {0, 0, 0, static_cast<uint8_t>(unit.size)});
                    expected.insert(expected.end(), first, first + unit.size);
                }
                bool hasStrayBytes = false;
                for (const qv::UnitFault fault : {qv::UnitFault::BytesBeforeStartCode,
                                                  qv::UnitFault::NoStartCode, qv::UnitFault::LengthCut}) {
                    hasStrayBytes = hasStrayBytes || unit.faults.has(fault);
                }
                dropped += hasStrayBytes ? unit.leadingBytes : 0;
                const bool isFaulty = hasStrayBytes || unit.size == 0 ||
                                      unit.faults.has(qv::UnitFault::LengthPastEnd) ||
                                      unit.faults.has(qv::UnitFault::EndsWithZeroByte);
                faulty += isFaulty ? 1 : 0;
            }
            Bytes out;
            const qv::Reframed reframed = qv::reframe(place, {from, Framing::Lengths4}, out);
            ASSERT_EQ(out, expected) << hexOf(place) << " from " << qv::textOf(from);
            ASSERT_EQ(reframed.faultyUnits, faulty) << hexOf(place);
            ASSERT_EQ(reframed.droppedBytes, dropped) << hexOf(place);
        }
    }
}

}  // namespace
