// Units without emulation prevention bytes, and back; positions between the two.
#include "bitstream/units/Rbsp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "../support/Hex.h"
#include "AllocationFault.h"
#include "BitWriter.h"
#include "GuardedBuffer.h"
#include "bitstream/syntax/Writer.h"

namespace {

using namespace qv_test;

Bytes unescaped(const Bytes& unit, size_t headerBytes) {
    Bytes out(unit.size());
    out.resize(qv::unescape(bytesOf(unit), headerBytes, out.data(), out.size()));
    return out;
}

Bytes escaped(const Bytes& unit, size_t headerBytes) {
    Bytes out(qv::mostEscapedSize(unit.size()));
    out.resize(qv::escape(bytesOf(unit), headerBytes, out.data(), out.size()));
    return out;
}

struct Row {
    size_t headerBytes;
    const char* coded;
    const char* unescaped;
};

// Both ways.
const Row kRows[] = {
    {1, "", ""},
    {1, "67", "67"},
    {1, "67 42 00 1E", "67 42 00 1E"},
    {1, "67 00 00 03 00", "67 00 00 00"},  // see below: only in this direction
    {1, "67 00 00 03 01 80", "67 00 00 01 80"},
    {1, "67 00 00 03 02 80", "67 00 00 02 80"},
    {1, "67 00 00 03 03 80", "67 00 00 03 80"},
    {1, "67 00 00 04 80", "67 00 00 04 80"},
    {1, "67 00 03 00 03 80", "67 00 03 00 03 80"},
    {1, "67 00 00 03 00 00 03 01", "67 00 00 00 00 01"},
    {1, "67 80 00 00 03", "67 80 00 00"},
    {1, "67 80 00 00 03 00 00 03", "67 80 00 00 00 00"},
    {2, "42 01 01 00 00 03 00 00 03 03 80", "42 01 01 00 00 00 00 03 80"},
    {4, "6E 00 00 03 80", "6E 00 00 03 80"},  // a header is never escaped
    {4, "6E 00 00 01 80", "6E 00 00 01 80"},
    {4, "6E 40 00 00 03 01 80", "6E 40 00 00 01 80"},  // its zero bytes count
    {3, "75 80 00 00 03 01 80", "75 80 00 00 01 80"},
    {2, "42 00 00 03 01 80", "42 00 00 01 80"},
    {0, "00 00 03 01 80", "00 00 01 80"},
    {9, "67 00 00 01", "67 00 00 01"},  // nothing but header
};

TEST(Rbsp, bothWays) {
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.coded);
        EXPECT_EQ(hexOf(bytesOf(unescaped(hex(row.coded), row.headerBytes))),
                  hexOf(bytesOf(hex(row.unescaped))));
        EXPECT_EQ(qv::unescapedSize(bytesOf(hex(row.coded)), row.headerBytes), hex(row.unescaped).size());
        const Bytes coded = escaped(hex(row.unescaped), row.headerBytes);
        EXPECT_EQ(coded.size(), qv::escapedSize(bytesOf(hex(row.unescaped)), row.headerBytes));
        const bool endsWithHalfZeroWord = std::string(row.unescaped) == "67 00 00 00";
        EXPECT_EQ(hexOf(bytesOf(coded)),
                  endsWithHalfZeroWord ? "67 00 00 03 00 03" : hexOf(bytesOf(hex(row.coded))));
    }
}

// An encoder would not write the byte that follows, a decoder drops the 3 all the same.
TEST(Rbsp, anEmulationPreventionByteThatWasNotNeeded) {
    EXPECT_EQ(unescaped(hex("67 00 00 03 04 80"), 1), hex("67 00 00 04 80"));
    EXPECT_EQ(unescaped(hex("67 00 00 00 03 80"), 1), hex("67 00 00 00 80"));
}

TEST(Rbsp, theGreatestSizeIsThatOfZeroBytes) {
    for (size_t size = 0; size < 40; ++size) {
        EXPECT_EQ(qv::escapedSize(bytesOf(Bytes(size)), 0), qv::mostEscapedSize(size));
        EXPECT_LE(qv::escapedSize(bytesOf(Bytes(size)), 1), qv::mostEscapedSize(size));
    }
}

TEST(Rbsp, findEmulationPrevention) {
    const Bytes unit = hex("67 00 00 03 01 00 00 03 00 03 03 03 03 03 03 03 03 00 00 03");
    EXPECT_EQ(qv::findEmulationPrevention(bytesOf(unit), 1, 0), 3U);
    EXPECT_EQ(qv::findEmulationPrevention(bytesOf(unit), 1, 3), 3U);
    EXPECT_EQ(qv::findEmulationPrevention(bytesOf(unit), 1, 4), 7U);
    EXPECT_EQ(qv::findEmulationPrevention(bytesOf(unit), 4, 0), 7U);
    EXPECT_EQ(qv::findEmulationPrevention(bytesOf(unit), 1, 8), 19U);
    EXPECT_EQ(qv::findEmulationPrevention(bytesOf(unit), 1, 20), 20U);
    EXPECT_EQ(qv::findEmulationPrevention(bytesOf(unit), 1, 100), 20U);
    EXPECT_EQ(qv::findEmulationPrevention({}, 1, 0), 0U);
}

// Every place relative to the blocks and words of the search, with what looks like one around it.
TEST(Rbsp, findEmulationPreventionAtEveryPlace) {
    constexpr size_t kSize = 400;
    constexpr uint8_t kFillings[] = {0x00, 0x01, 0x03, 0x80, 0xFF};
    for (const uint8_t filling : kFillings) {
        for (size_t place = 0; place + 3 <= kSize; ++place) {
            Bytes unit(kSize, filling);
            if (place > 0) {
                unit[place - 1] = 0x05;
            }
            unit[place] = unit[place + 1] = 0x00;
            unit[place + 2] = 0x03;
            std::replace(unit.begin(), unit.begin() + static_cast<std::ptrdiff_t>(place), uint8_t{0x03},
                         uint8_t{0x02});
            for (const size_t from : {size_t{0}, size_t{1}, place, place + 2}) {
                ASSERT_EQ(qv::findEmulationPrevention(bytesOf(unit), 0, from), place + 2) << int{filling};
            }
            size_t next = place + 3;
            while (next < kSize &&
                   !(unit[next] == 0x03 && unit[next - 1] == 0x00 && unit[next - 2] == 0x00)) {
                ++next;
            }
            ASSERT_EQ(qv::findEmulationPrevention(bytesOf(unit), 0, place + 3), next) << int{filling};
        }
    }
}

// --- Against models that go byte by byte ---

Bytes slowUnescaped(const Bytes& unit, size_t headerBytes, std::vector<size_t>& codedBytes) {
    Bytes out;
    codedBytes.clear();
    for (size_t i = 0; i < unit.size(); ++i) {
        if (i < headerBytes || i < 2 || unit[i] != 3 || unit[i - 1] != 0 || unit[i - 2] != 0) {
            out.push_back(unit[i]);
            codedBytes.push_back(i);
        }
    }
    codedBytes.push_back(unit.size());
    return out;
}

Bytes slowEscaped(const Bytes& unit, size_t headerBytes) {
    Bytes out;
    int zeros = 0;
    for (size_t i = 0; i < unit.size(); ++i) {
        if (i >= headerBytes && zeros >= 2 && unit[i] <= 3) {
            out.push_back(3);
            zeros = 0;
        }
        out.push_back(unit[i]);
        zeros = unit[i] == 0 ? zeros + 1 : 0;
    }
    if (unit.size() > headerBytes && zeros > 0) {
        out.push_back(3);
    }
    return out;
}

Bytes writtenByWriter(const Bytes& unit, size_t headerBytes) {
    Bytes out;
    qv::Writer writer(out);
    writer.header(static_cast<uint32_t>(headerBytes));
    for (const uint8_t byte : unit) {
        uint32_t value = byte;
        writer.u(8, "byte", value);
    }
    writer.finish();
    return out;
}

void expectPositions(const Bytes& unit, size_t headerBytes, const std::vector<size_t>& codedBytes) {
    qv::RbspPositions forward(bytesOf(unit), headerBytes);
    qv::RbspPositions back(bytesOf(unit), headerBytes);
    for (size_t i = 0; i < codedBytes.size(); ++i) {
        const size_t last = codedBytes.size() - 1 - i;
        ASSERT_EQ(forward.codedByte(i), codedBytes[i]) << i;
        ASSERT_EQ(back.codedByte(last), codedBytes[last]) << last;
    }
    ASSERT_EQ(forward.codedByte(codedBytes.size() + 5), unit.size());
    ASSERT_EQ(forward.codedByte(SIZE_MAX), unit.size());
    for (size_t i = 0; i <= unit.size(); ++i) {
        // The first byte of the unescaped unit that is there or after it.
        const auto at = std::lower_bound(codedBytes.begin(), codedBytes.end(), i);
        const auto expected = static_cast<size_t>(at - codedBytes.begin());
        ASSERT_EQ(forward.unescapedByte(i), expected) << i;
        ASSERT_EQ(back.unescapedByte(unit.size() - i), [&] {
            const auto there = std::lower_bound(codedBytes.begin(), codedBytes.end(), unit.size() - i);
            return static_cast<size_t>(there - codedBytes.begin());
        }());
    }
    ASSERT_EQ(forward.unescapedByte(SIZE_MAX), codedBytes.size() - 1);
}

// A map from a data byte on whose place is known.
void expectPositionsFrom(size_t first, const Bytes& unit, const std::vector<size_t>& codedBytes) {
    qv::RbspPositions forward(bytesOf(unit), codedBytes[first], first);
    qv::RbspPositions back(bytesOf(unit), codedBytes[first], first);
    for (size_t i = first; i < codedBytes.size(); ++i) {
        const size_t last = codedBytes.size() - 1 - (i - first);
        ASSERT_EQ(forward.codedByte(i), codedBytes[i]) << i;
        ASSERT_EQ(back.codedByte(last), codedBytes[last]) << last;
    }
    for (size_t i = codedBytes[first]; i <= unit.size(); ++i) {
        const auto at = std::lower_bound(codedBytes.begin(), codedBytes.end(), i);
        ASSERT_EQ(forward.unescapedByte(i), static_cast<size_t>(at - codedBytes.begin())) << i;
    }
}

void expectAsSlow(const Bytes& unit, size_t headerBytes) {
    std::vector<size_t> codedBytes;
    const Bytes expected = slowUnescaped(unit, headerBytes, codedBytes);
    ASSERT_EQ(unescaped(unit, headerBytes), expected);
    ASSERT_EQ(qv::unescapedSize(bytesOf(unit), headerBytes), expected.size());
    const Bytes coded = slowEscaped(unit, headerBytes);
    ASSERT_EQ(escaped(unit, headerBytes), coded);
    ASSERT_EQ(qv::escapedSize(bytesOf(unit), headerBytes), coded.size());
    ASSERT_LE(coded.size(), qv::mostEscapedSize(unit.size()));
    expectPositions(unit, headerBytes, codedBytes);
    for (size_t first = headerBytes; first < codedBytes.size(); first += 1 + first / 4) {
        expectPositionsFrom(first, unit, codedBytes);
    }
    Bytes inPlace = unit;
    inPlace.resize(qv::unescape(bytesOf(inPlace), headerBytes, inPlace.data(), inPlace.size()));
    ASSERT_EQ(inPlace, expected);
    if (headerBytes <= unit.size()) {
        ASSERT_EQ(writtenByWriter(unit, headerBytes), coded);
    }
}

TEST(Rbsp, everySmallUnit) {
    constexpr uint8_t kAlphabet[] = {0x00, 0x01, 0x03, 0x80};
    size_t units = 1;
    for (size_t size = 0; size <= 7; ++size, units *= 4) {
        Bytes unit(size);
        for (size_t number = 0; number < units; ++number) {
            size_t rest = number;
            for (uint8_t& byte : unit) {
                byte = kAlphabet[rest % 4];
                rest /= 4;
            }
            SCOPED_TRACE(hexOf(bytesOf(unit)));
            expectAsSlow(unit, number % 5);
            ASSERT_FALSE(HasFailure());
        }
    }
}

using Generator = std::mt19937_64;

Bytes randomUnit(Generator& random) {
    static constexpr uint8_t kBytes[] = {0x00, 0x00, 0x00, 0x03, 0x01, 0x02};
    Bytes unit(random() % 100);
    const uint64_t special = random() % 12;
    for (uint8_t& byte : unit) {
        byte = random() % 12 < special ? kBytes[random() % sizeof kBytes] : static_cast<uint8_t>(random());
    }
    return unit;
}

TEST(Rbsp, randomUnits) {
    Generator random(3);
    for (int round = 0; round < 5000; ++round) {
        const Bytes unit = randomUnit(random);
        SCOPED_TRACE(hexOf(bytesOf(unit)));
        expectAsSlow(unit, random() % 5);
        ASSERT_FALSE(HasFailure());
    }
}

TEST(Rbsp, escapingAndBack) {
    Generator random(4);
    for (int round = 0; round < 5000; ++round) {
        Bytes unit = randomUnit(random);
        const size_t headerBytes = random() % std::min(unit.size() + 1, size_t{5});
        unit.push_back(0x80);
        unit.insert(unit.end(), 2 * (random() % 3), 0x00);  // cabac_zero_words
        ASSERT_EQ(unescaped(escaped(unit, headerBytes), headerBytes), unit) << hexOf(bytesOf(unit));
    }
}

// --- Bits ---

TEST(Rbsp, bitPositions) {
    const Bytes unit = hex("67 00 00 03 01 80");
    qv::RbspPositions positions(bytesOf(unit), 1);
    EXPECT_EQ(positions.codedBit(0), 0U);
    EXPECT_EQ(positions.codedBit(23), 23U);
    EXPECT_EQ(positions.codedBit(24), 32U);
    EXPECT_EQ(positions.codedBit(39), 47U);
    EXPECT_EQ(positions.codedBit(40), 48U);
    EXPECT_EQ(positions.unescapedBit(23), 23U);
    EXPECT_EQ(positions.unescapedBit(24), 24U);  // the emulation prevention byte
    EXPECT_EQ(positions.unescapedBit(31), 24U);
    EXPECT_EQ(positions.unescapedBit(32), 24U);
    EXPECT_EQ(positions.unescapedBit(33), 25U);
    EXPECT_EQ(positions.unescapedBit(47), 39U);
    EXPECT_EQ(positions.unescapedBit(48), 40U);
    EXPECT_EQ(positions.unescapedBit(1000), 40U);
    qv::RbspPositions none({}, 1);
    EXPECT_EQ(none.codedBit(9), 1U);
    EXPECT_EQ(none.unescapedBit(9), 0U);
}

// --- Room ---

TEST(Rbsp, nothingIsWrittenPastTheRoom) {
    Generator random(8);
    GuardedBuffer in(4096);
    GuardedBuffer out(4096);
    for (int round = 0; round < 2000; ++round) {
        const Bytes unit = randomUnit(random);
        const qv::Bytes place = {round % 2 == 0 ? in.placeAtEnd(unit) : in.placeAtBegin(unit), unit.size()};
        std::vector<size_t> codedBytes;
        for (const bool escapes : {false, true}) {
            const Bytes whole = escapes ? slowEscaped(unit, 1) : slowUnescaped(unit, 1, codedBytes);
            const size_t room = random() % (whole.size() + 1);
            uint8_t* const end = out.end(room);
            const size_t size = escapes ? qv::escape(place, 1, end, room) : qv::unescape(place, 1, end, room);
            ASSERT_EQ(size, whole.size());
            ASSERT_TRUE(std::equal(end, end + room, whole.begin()));
        }
    }
    EXPECT_EQ(qv::unescape(bytesOf(hex("67 00 00 03 01")), 1, nullptr, 0), 4U);
}

TEST(Rbsp, nothingIsAllocated) {
    Generator random(9);
    const Bytes unit(20000, 0x00);
    Bytes out(40000);
    const AllocationFault allocations(Allocator::New, 0);
    const AllocationFault blocks(Allocator::Malloc, 0);
    const size_t size = qv::escape(bytesOf(unit), 1, out.data(), out.size());
    EXPECT_EQ(qv::unescape({out.data(), size}, 1, out.data(), out.size()), unit.size());
    qv::RbspPositions positions({out.data(), size}, 1);
    EXPECT_GT(positions.codedByte(10000), 0U);
    EXPECT_EQ(allocations.seen(), 0);
    EXPECT_EQ(blocks.seen(), 0);
}

}  // namespace
