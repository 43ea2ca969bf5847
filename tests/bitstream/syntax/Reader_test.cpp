// The reader: emulation prevention, descriptors, the end of the data and faults.
#include "bitstream/syntax/Reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "../support/Hex.h"
#include "../support/SlowReader.h"
#include "AllocationFault.h"
#include "BitWriter.h"
#include "GuardedBuffer.h"
#include "bitstream/syntax/EmulationPrevention.h"

namespace {

using namespace qv_test;
using qv::CodedBits;
using qv::FaultKind;
using qv::Reader;

void skipHeader(Reader& reader, uint32_t bytes) {
    reader.header(bytes);
    uint32_t value = 0;
    reader.u(8 * bytes, "header", value);
    reader.rbsp();
}

// Every bit that is left, most significant first, in pieces of n bits.
std::vector<bool> bitsLeft(Reader& reader, uint32_t n) {
    std::vector<bool> bits;
    while (reader.more_rbsp_data()) {
        const uint32_t width = reader.bitsInReach(n);
        uint64_t value = 0;
        reader.u(width, "bits", value);
        for (uint32_t i = width; i > 0; --i) {
            bits.push_back((value >> (i - 1) & 1) != 0);
        }
    }
    return bits;
}

// The bits of an RBSP before its rbsp_stop_one_bit.
std::vector<bool> dataBits(const Bytes& rbsp) {
    std::vector<bool> bits;
    for (const uint8_t byte : rbsp) {
        for (int i = 7; i >= 0; --i) {
            bits.push_back((byte >> i & 1) != 0);
        }
    }
    while (!bits.empty() && !bits.back()) {
        bits.pop_back();
    }
    if (!bits.empty()) {
        bits.pop_back();
    }
    return bits;
}

// --- Emulation prevention (H.264 7.4.1, H.265 7.4.2.1) ---

struct EmulationPreventionCase {
    const char* unit;
    uint32_t headerBytes;
    const char* rbsp;
};

const EmulationPreventionCase kEmulationPrevention[] = {
    {"67 00 00 03 00 80", 1, "00 00 00 80"},
    {"67 00 00 03 01 80", 1, "00 00 01 80"},
    {"67 00 00 03 02 80", 1, "00 00 02 80"},
    {"67 00 00 03 03 80", 1, "00 00 03 80"},
    {"67 00 00 03 04 80", 1,
     "00 00 04 80"},  // an encoder would not write it, a decoder drops it all the same
    {"67 FF 00 00 03 01 80", 1, "FF 00 00 01 80"},
    {"67 00 03 00 03 80", 1, "00 03 00 03 80"},
    {"67 01 00 03 80", 1, "01 00 03 80"},
    {"67 00 00 03 00 00 03 00 00 03 01 80", 1, "00 00 00 00 00 00 01 80"},
    {"67 00 00 03 00 03 80", 1, "00 00 00 03 80"},  // one zero byte after the byte that was dropped
    {"67 00 00 03 03 03 80", 1, "00 00 03 03 80"},
    {"67 00 00 00 03 80", 1, "00 00 00 80"},
    {"67 80 00 00 03", 1, "80 00 00"},
    {"67 80 00 00 03 00 00 03", 1, "80 00 00 00 00"},
    {"67 80 00 00 03 00 00 03 00", 1, "80 00 00 00 00 00"},
    {"42 01 00 00 03 00 80", 2, "00 00 00 80"},
    {"42 00 03 01 80", 2, "03 01 80"},        // one zero byte of the header
    {"42 00 00 03 01 80", 2, "00 01 80"},     // a zero byte of the header and one of the RBSP
    {"00 00 03 01 80", 0, "00 00 01 80"},     // both at the start of the unit
    {"6E 00 00 03 55 80", 4, "55 80"},        // a header is never escaped
    {"6E 00 00 03 00 03 80", 4, "00 03 80"},  // the 3 of a header ends its zero bytes
    {"74 00 00 00 03 80", 4, "80"},           // a header of zero bytes counts
    {"74 00 00 00 03", 4, ""},                // and no data is left
    {"75 80 00 00 03", 3, "00"},              // one zero byte of the header, one of the RBSP
};

TEST(Reader, emulationPrevention) {
    for (const EmulationPreventionCase& row : kEmulationPrevention) {
        SCOPED_TRACE(row.unit);
        const Bytes unit = hex(row.unit);
        for (uint32_t n = 1; n <= 56; ++n) {
            Reader reader(bytesOf(unit));
            skipHeader(reader, row.headerBytes);
            EXPECT_EQ(bitsLeft(reader, n), dataBits(hex(row.rbsp))) << n << " bits at a time";
            EXPECT_FALSE(reader.failed());
        }
    }
}

// The window is filled at any of its bits, with any bytes before and after those to step over.
TEST(Reader, emulationPreventionAcrossTheWindow) {
    const char* const kMiddles[] = {
        "00 00 03 01",
        "00 00 03 00 00 03 00 00 03 01",
        "00 00 03 03 00 00 03 00",
        "03 03 03 00 03 03",
        "00 00 03 00 00 03 00 00 03 00 00 03 00 00 03 00 00 03 00 00 03 00 00 03",
    };
    for (const char* const middle : kMiddles) {
        for (size_t before = 0; before < 20; ++before) {
            for (const size_t after : {0U, 1U, 5U, 9U}) {
                Bytes unit(1 + before, 0xA5);
                const Bytes bytes = hex(middle);
                unit.insert(unit.end(), bytes.begin(), bytes.end());
                unit.insert(unit.end(), after, 0x5A);
                unit.push_back(0x80);
                SlowReader slow(unit, 1);
                slow.u(8);
                std::vector<bool> expected;
                while (slow.more_rbsp_data()) {
                    expected.push_back(slow.u(1) != 0);
                }
                for (uint32_t first = 0; first < 33 && first <= expected.size(); ++first) {
                    const std::vector<bool> rest(expected.begin() + first, expected.end());
                    for (const uint32_t n : {1U, 7U, 32U, 56U}) {
                        Reader reader(bytesOf(unit));
                        skipHeader(reader, 1);
                        uint64_t value = 0;
                        reader.u(first, "first", value);
                        ASSERT_EQ(bitsLeft(reader, n), rest)
                            << middle << ", " << before << " bytes before, " << after << " after, from bit "
                            << first << ", " << n << " at a time";
                        ASSERT_EQ(reader.trailing().bytes.size, unit.size() - slow.trailingOffset());
                    }
                }
            }
        }
    }
}

// --- Exp-Golomb codes (H.264 9.1, H.265 9.2) ---

// A unit of one header byte, some bits, and a code.
Bytes unitWithCode(size_t bitsBefore, unsigned leadingZeroBits, uint64_t suffix) {
    BitWriter bits;
    bits.u(8, "header", 0x67);
    for (size_t i = 0; i < bitsBefore; ++i) {
        bits.u(1, "before", i % 2 == 0 ? 1 : 0);
    }
    bits.u(leadingZeroBits, "leading zero bits", 0).u(1, "marker", 1);
    bits.u(leadingZeroBits, "suffix", suffix).trailingBits();
    return withEmulationPrevention(bits.bytes());
}

TEST(Reader, expGolombCodesOfEveryLengthAtEveryBit) {
    for (unsigned zeroBits = 0; zeroBits <= 31; ++zeroBits) {
        const uint64_t most = (uint64_t{1} << zeroBits) - 1;
        for (const uint64_t suffix : {uint64_t{0}, most / 3, most}) {
            for (size_t before = 0; before < 65; ++before) {
                SCOPED_TRACE(std::to_string(zeroBits) + " leading zero bits, suffix " +
                             std::to_string(suffix) + ", after " + std::to_string(before) + " bits");
                const Bytes unit = unitWithCode(before, zeroBits, suffix);
                const auto codeNum = static_cast<uint32_t>(most + suffix);

                Reader unsignedReader(bytesOf(unit));
                skipHeader(unsignedReader, 1);
                uint64_t skipped = 0;
                unsignedReader.u(static_cast<uint32_t>(before / 2), "before", skipped);
                unsignedReader.u(static_cast<uint32_t>(before - before / 2), "before", skipped);
                uint32_t value = 0;
                unsignedReader.ue("code", value);
                ASSERT_EQ(value, codeNum);
                ASSERT_EQ(unsignedReader.position(), 8 + before + 2 * zeroBits + 1);
                ASSERT_FALSE(unsignedReader.more_rbsp_data());
                ASSERT_FALSE(unsignedReader.failed());

                Reader signedReader(bytesOf(unit));
                skipHeader(signedReader, 1);
                signedReader.u(static_cast<uint32_t>(before / 2), "before", skipped);
                signedReader.u(static_cast<uint32_t>(before - before / 2), "before", skipped);
                int32_t signedValue = 0;
                signedReader.se("code", signedValue);
                const int64_t magnitude = (int64_t{codeNum} + 1) / 2;
                ASSERT_EQ(signedValue, codeNum % 2 == 1 ? magnitude : -magnitude);
                ASSERT_FALSE(signedReader.failed());
            }
        }
    }
}

TEST(Reader, expGolombCodesThatAreTooLong) {
    for (const unsigned zeroBits : {32U, 33U, 40U, 56U, 57U, 63U, 64U, 65U, 100U, 200U}) {
        for (size_t before = 0; before < 65; ++before) {
            BitWriter bits;
            bits.u(8, "header", 0x67);
            for (size_t i = 0; i < before; ++i) {
                bits.u(1, "before", 1);
            }
            for (unsigned i = 0; i < zeroBits; ++i) {
                bits.u(1, "zero", 0);
            }
            bits.u(1, "marker", 1).u(40, "suffix", 0x123456789A).trailingBits();
            const Bytes unit = withEmulationPrevention(bits.bytes());
            Reader reader(bytesOf(unit));
            skipHeader(reader, 1);
            uint64_t skipped = 0;
            reader.u(static_cast<uint32_t>(before / 2), "before", skipped);
            reader.u(static_cast<uint32_t>(before - before / 2), "before", skipped);
            uint32_t value = 1;
            reader.ue("code", value);
            ASSERT_EQ(value, 0U);
            ASSERT_EQ(reader.fault().kind, FaultKind::CodeTooLong) << zeroBits << " after " << before;
            ASSERT_STREQ(reader.fault().element.name, "code");
            ASSERT_EQ(reader.fault().firstBit, 8 + before);
            ASSERT_FALSE(reader.more_rbsp_data());
        }
    }
}

// A code of 32 or more zero bits at the end of the data is too long rather than cut.
TEST(Reader, expGolombCodeOfZeroBitsUpToTheEnd) {
    for (unsigned zeroBits = 0; zeroBits <= 70; ++zeroBits) {
        BitWriter bits;
        bits.u(8, "header", 0x67).u(zeroBits < 64 ? zeroBits : 64, "zero", 0);
        bits.u(zeroBits < 64 ? 0 : zeroBits - 64, "zero", 0).trailingBits();
        const Bytes unit = withEmulationPrevention(bits.bytes());
        Reader reader(bytesOf(unit));
        skipHeader(reader, 1);
        uint32_t value = 1;
        reader.ue("code", value);
        EXPECT_EQ(value, 0U);
        EXPECT_EQ(reader.fault().kind, zeroBits < 32 ? FaultKind::EndOfData : FaultKind::CodeTooLong)
            << zeroBits;
        EXPECT_EQ(reader.fault().firstBit, 8U);
    }
}

// --- The end of the data ---

struct Descriptor {
    const char* text;
    uint32_t bits;     // that the data below has to have for it
    int64_t expected;  // of that data
    std::function<int64_t(Reader&)> read;
};

const Descriptor kDescriptors[] = {
    {"u(1)", 1, 0,
     [](Reader& s) {
         uint32_t x = 9;
         s.u(1, "element", x);
         return int64_t{x};
     }},
    {"u(8)", 8, 0,
     [](Reader& s) {
         uint32_t x = 9;
         s.u(8, "element", x);
         return int64_t{x};
     }},
    {"u(32)", 32, 0,
     [](Reader& s) {
         uint32_t x = 9;
         s.u(32, "element", x);
         return int64_t{x};
     }},
    {"u(56)", 56, 0,
     [](Reader& s) {
         uint64_t x = 9;
         s.u(56, "element", x);
         return static_cast<int64_t>(x);
     }},
    {"u_long(63)", 63, 0,
     [](Reader& s) {
         uint64_t x = 9;
         s.u_long(63, "element", x);
         return static_cast<int64_t>(x);
     }},
    {"u_long(32)", 32, 0,
     [](Reader& s) {
         uint64_t x = 9;
         s.u_long(32, "element", x);
         return static_cast<int64_t>(x);
     }},
    {"u(5) with a range", 5, 0,
     [](Reader& s) {
         uint16_t x = 9;
         s.u(5, "element", x, 0, 31);
         return int64_t{x};
     }},
    {"flag", 1, 0,
     [](Reader& s) {
         bool x = true;
         s.flag("element", x);
         return int64_t{x};
     }},
    {"flag of one value", 1, 0,
     [](Reader& s) {
         bool x = true;
         s.flag("element", x, false);
         return int64_t{x};
     }},
    {"i(9)", 9, 0,
     [](Reader& s) {
         int32_t x = 9;
         s.i(9, "element", x);
         return int64_t{x};
     }},
    {"f(16)", 16, 0,
     [](Reader& s) {
         s.f(16, "element", 0);
         return int64_t{0};
     }},
    {"ue(v)", 7, 7,
     [](Reader& s) {
         uint32_t x = 9;
         s.ue("element", x);
         return int64_t{x};
     }},
    {"ue(v) with a range", 7, 7,
     [](Reader& s) {
         uint16_t x = 9;
         s.ue("element", x, 0, 100);
         return int64_t{x};
     }},
    {"se(v)", 7, 4,
     [](Reader& s) {
         int32_t x = 9;
         s.se("element", x);
         return int64_t{x};
     }},
    {"se(v) with a range", 7, 4,
     [](Reader& s) {
         int16_t x = 9;
         s.se("element", x, -100, 100);
         return int64_t{x};
     }},
};

// The data: ones, then zero bits as far as the descriptor reads. A code of seven bits begins with three.
TEST(Reader, endOfDataInEveryDescriptor) {
    for (const Descriptor& descriptor : kDescriptors) {
        for (size_t before = 0; before < 64; ++before) {
            for (uint32_t left = 0; left <= descriptor.bits; ++left) {
                SCOPED_TRACE(std::string(descriptor.text) + " after " + std::to_string(before) +
                             " bits, with " + std::to_string(left) + " left");
                BitWriter bits;
                bits.u(8, "header", 0x67);
                for (size_t i = 0; i < before; ++i) {
                    bits.u(1, "before", 1);
                }
                for (uint32_t i = 0; i < left; ++i) {
                    bits.u(1, "element", i == 3 && descriptor.bits == 7 ? 1 : 0);
                }
                const Bytes unit = withEmulationPrevention(bits.trailingBits().bytes());
                Reader reader(bytesOf(unit));
                skipHeader(reader, 1);
                for (size_t i = 0; i < before; ++i) {
                    bool one = false;
                    reader.flag("before", one);
                    ASSERT_TRUE(one);
                }
                const int64_t value = descriptor.read(reader);
                if (left == descriptor.bits) {
                    ASSERT_FALSE(reader.failed());
                    ASSERT_EQ(value, descriptor.expected);
                    ASSERT_FALSE(reader.more_rbsp_data());
                    continue;
                }
                ASSERT_EQ(value, 0);
                ASSERT_EQ(reader.fault().kind, FaultKind::EndOfData);
                ASSERT_STREQ(reader.fault().element.name, "element");
                ASSERT_EQ(reader.fault().firstBit, 8 + before);
                ASSERT_EQ(reader.trailing().bytes.size, 0U);
            }
        }
    }
}

TEST(Reader, aUnitWithoutBytes) {
    Reader reader{qv::Bytes()};
    reader.header(2);
    uint32_t value = 9;
    reader.u(6, "nal_unit_type", value);
    reader.rbsp();
    EXPECT_EQ(value, 0U);
    EXPECT_EQ(reader.fault().kind, FaultKind::EndOfData);
    EXPECT_EQ(reader.fault().firstBit, 0U);
    EXPECT_FALSE(reader.more_rbsp_data());
    EXPECT_EQ(reader.trailing().bytes.size, 0U);
}

TEST(Reader, aUnitThatEndsInItsHeader) {
    const Bytes unit = hex("40");
    Reader reader(bytesOf(unit));
    reader.header(2);
    uint32_t first = 0;
    uint32_t second = 9;
    reader.u(8, "first", first);
    reader.u(8, "second", second);
    reader.rbsp();
    EXPECT_EQ(first, 0x40U);
    EXPECT_EQ(second, 0U);
    EXPECT_STREQ(reader.fault().element.name, "second");
    EXPECT_EQ(reader.fault().firstBit, 8U);
}

// Without rbsp() the data does not end before an emulation prevention byte: here one is all that is left for
// the second window.
TEST(Reader, dataThatEndsWithAnEmulationPreventionByte) {
    const Bytes unit = hex("28 01 AF 1D 20 87 00 00 03");
    Reader reader(bytesOf(unit));
    uint64_t front = 0;
    uint32_t back = 0;
    reader.u(56, "front", front);
    reader.u(8, "back", back);
    EXPECT_EQ(front, 0x2801AF1D208700U);
    EXPECT_FALSE(reader.more_rbsp_data());
    EXPECT_EQ(reader.position(), 64U);
    EXPECT_FALSE(reader.failed());
}

TEST(Reader, aUnitWithoutRbsp) {
    struct Row {
        const char* unit;
        bool beforeRbsp;
        bool afterRbsp;
    };
    for (const Row& row : {Row{"0A", true, true}, Row{"0A 00", false, true}, Row{"0A 00 00 03", false, true},
                           Row{"0A 80", false, false}, Row{"0A 03", false, false}}) {
        const Bytes unit = hex(row.unit);
        Reader reader(bytesOf(unit));
        uint32_t header = 0;
        reader.header(1);
        EXPECT_FALSE(reader.hasNoRbsp()) << "the header is to be read";
        reader.u(8, "header", header);
        EXPECT_EQ(reader.hasNoRbsp(), row.beforeRbsp) << row.unit;
        reader.rbsp();
        bool absent = !row.afterRbsp;
        EXPECT_EQ(reader.hasNoRbsp(absent), row.afterRbsp) << row.unit;
        EXPECT_EQ(absent, row.afterRbsp);
        EXPECT_FALSE(reader.failed());
    }
}

TEST(Bits, ceilLog2) {
    const std::pair<uint64_t, uint32_t> rows[] = {{0, 0},
                                                  {1, 0},
                                                  {2, 1},
                                                  {3, 2},
                                                  {4, 2},
                                                  {5, 3},
                                                  {uint64_t{1} << 32, 32},
                                                  {(uint64_t{1} << 32) + 1, 33},
                                                  {UINT64_MAX, 64}};
    for (const auto& [x, bits] : rows) {
        EXPECT_EQ(qv::detail::ceilLog2(x), bits) << x;
    }
}

// --- Faults ---

TEST(Reader, theFirstFaultIsKept) {
    const Bytes unit = hex("67 FF FF 80");
    Reader reader(bytesOf(unit));
    skipHeader(reader, 1);
    uint32_t value = 0;
    reader.u(4, "fine", value);
    reader.u(4, qv::at("first", 2, 7), value, 3, 14);
    EXPECT_EQ(value, 0U);
    reader.u(32, "second", value);
    reader.fail(FaultKind::TooManyEntries, "third", 12);
    reader.u(8, "fourth", value, 1, 2);
    const qv::Fault& fault = reader.fault();
    EXPECT_EQ(fault.kind, FaultKind::OutOfRange);
    EXPECT_EQ(qv::textOf(fault.element), "first[2][7]");
    EXPECT_EQ(fault.firstBit, 12U);
    EXPECT_EQ(fault.value, 15);
    EXPECT_EQ(fault.least, 3);
    EXPECT_EQ(fault.most, 14);
    EXPECT_EQ(value, 0U);
}

TEST(Reader, everythingReadsZeroAfterAFault) {
    const Bytes unit = hex("67 FF FF FF FF FF FF FF FF FF FF FF FF 80");
    for (const Descriptor& descriptor : kDescriptors) {
        SCOPED_TRACE(descriptor.text);
        Reader reader(bytesOf(unit));
        skipHeader(reader, 1);
        reader.fail(FaultKind::NoSuchSet, "reason", 3);
        EXPECT_EQ(reader.fault().value, 3);
        EXPECT_EQ(reader.fault().firstBit, 8U);
        EXPECT_EQ(descriptor.read(reader), 0);
        EXPECT_FALSE(reader.more_rbsp_data());
        EXPECT_EQ(reader.bitsInReach(32), 0U);
        EXPECT_EQ(reader.trailing().bits, 0U);
        EXPECT_EQ(reader.trailing().bytes.size, 0U);
        EXPECT_STREQ(reader.fault().element.name, "reason");
    }
}

TEST(Reader, rangesAndTheirFaults) {
    struct Row {
        const char* unit;
        std::function<void(Reader&)> read;
        int64_t value, least, most;  // least > most: no fault
    };
    uint32_t u32 = 0;
    uint16_t u16 = 0;
    int32_t i32 = 0;
    bool flag = false;
    const Row rows[] = {
        {"67 30 80", [&](Reader& s) { s.u(4, "x", u32, 3, 5); }, 3, 1, 0},
        {"67 50 80", [&](Reader& s) { s.u(4, "x", u32, 3, 5); }, 5, 1, 0},
        {"67 20 80", [&](Reader& s) { s.u(4, "x", u32, 3, 5); }, 2, 3, 5},
        {"67 60 80", [&](Reader& s) { s.u(4, "x", u32, 3, 5); }, 6, 3, 5},
        {"67 80 80", [&](Reader& s) { s.ue("x", u32, 0, 3); }, 0, 1, 0},
        {"67 28 80", [&](Reader& s) { s.ue("x", u32, 0, 3); }, 4, 0, 3},
        {"67 28 80", [&](Reader& s) { s.ue("x", u32, 5, 9); }, 4, 5, 9},
        {"67 00 00 80 00 C0", [&](Reader& s) { s.ue("x", u16); }, 0x10000, 0, 0xFFFF},
        {"67 00 01 00 00 80", [&](Reader& s) { s.ue("x", u16); }, 0x7FFF, 1, 0},
        {"67 28 80", [&](Reader& s) { s.se("x", i32, -2, 2); }, -2, 1, 0},
        {"67 30 80", [&](Reader& s) { s.se("x", i32, -2, 2); }, 3, -2, 2},
        {"67 38 80", [&](Reader& s) { s.se("x", i32, -2, 2); }, -3, -2, 2},
        {"67 80 80", [&](Reader& s) { s.flag("x", flag, true); }, 1, 1, 0},
        {"67 00 80", [&](Reader& s) { s.flag("x", flag, true); }, 0, 1, 1},
        {"67 80 80", [&](Reader& s) { s.flag("x", flag, false); }, 1, 0, 0},
        {"67 A5 80", [&](Reader& s) { s.f(8, "x", 0xA5); }, 0, 1, 0},
        {"67 A4 80", [&](Reader& s) { s.f(8, "x", 0xA5); }, 0xA4, 0xA5, 0xA5},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.unit);
        const Bytes unit = hex(row.unit);
        Reader reader(bytesOf(unit));
        skipHeader(reader, 1);
        row.read(reader);
        if (row.least > row.most) {
            EXPECT_FALSE(reader.failed()) << qv::textOf(reader.fault());
            continue;
        }
        EXPECT_EQ(reader.fault().kind, FaultKind::OutOfRange);
        EXPECT_EQ(reader.fault().value, row.value);
        EXPECT_EQ(reader.fault().least, row.least);
        EXPECT_EQ(reader.fault().most, row.most);
        EXPECT_EQ(reader.fault().firstBit, 8U);
    }
}

TEST(Reader, longNumbersOfEveryWidth) {
    for (uint32_t n = 0; n <= 63; ++n) {
        const uint64_t value = uint64_t{0x6A5B4C3D2E1F9078} >> 1 >> (63 - n);
        BitWriter bits;
        bits.u(8, "header", 0x67).u(n, "value", value).trailingBits();
        const Bytes unit = withEmulationPrevention(bits.bytes());
        Reader reader(bytesOf(unit));
        skipHeader(reader, 1);
        uint64_t read = 9;
        reader.u_long(n, "value", read);
        EXPECT_EQ(read, value) << "u(" << n << ")";
        EXPECT_FALSE(reader.more_rbsp_data());
    }
}

TEST(Reader, signedNumbersOfEveryWidth) {
    for (uint32_t n = 1; n <= 32; ++n) {
        for (const int64_t value :
             {-(int64_t{1} << (n - 1)), int64_t{-1}, int64_t{0}, (int64_t{1} << (n - 1)) - 1}) {
            BitWriter bits;
            bits.u(8, "header", 0x67).u(n, "value", static_cast<uint64_t>(value)).trailingBits();
            const Bytes unit = withEmulationPrevention(bits.bytes());
            Reader reader(bytesOf(unit));
            skipHeader(reader, 1);
            int32_t read = 9;
            reader.i(n, "value", read);
            EXPECT_EQ(read, value) << "i(" << n << ")";
        }
    }
}

TEST(Reader, structuresOfAFault) {
    static constexpr qv::Structure kOuter = {"outer()", "1.1"};
    static constexpr qv::Structure kInner = {"inner()", "1.2"};
    const Bytes unit = hex("67 FF 80");
    for (const int depth : {0, 1, 2, 3}) {
        Reader reader(bytesOf(unit));
        if (depth == 0) {
            reader.fail(FaultKind::OtherUnit, "x", 0);
        }
        {
            const qv::Within<Reader> outer(reader, kOuter);
            if (depth == 1) {
                reader.fail(FaultKind::OtherUnit, "x", 0);
            }
            {
                const qv::Within<Reader> inner(reader, kInner);
                if (depth == 2) {
                    reader.fail(FaultKind::OtherUnit, "x", 0);
                }
            }
            if (depth == 3) {
                reader.fail(FaultKind::OtherUnit, "x", 0);
            }
        }
        const qv::Structure* const expected[] = {nullptr, &kOuter, &kInner, &kOuter};
        EXPECT_EQ(reader.fault().structure, expected[depth]);
    }
}

// --- more_rbsp_data() and what follows ---

TEST(Reader, moreRbspDataAndTrailingAtEveryBit) {
    for (const char* const after : {"", "00", "00 00", "00 00 03", "00 00 03 00 00 03", "00 00 03 00"}) {
        for (uint32_t data = 0; data <= 80; ++data) {
            for (uint32_t read = 0; read <= data; ++read) {
                BitWriter bits;
                bits.u(8, "header", 0x67);
                for (uint32_t i = 0; i < data; ++i) {
                    bits.u(1, "data", i % 3 == 0 ? 1 : 0);
                }
                Bytes unit = bits.trailingBits().bytes();
                const size_t end = unit.size();
                const Bytes zeroWords = hex(after);
                unit.insert(unit.end(), zeroWords.begin(), zeroWords.end());
                Reader reader(bytesOf(unit));
                skipHeader(reader, 1);
                for (uint32_t i = 0; i < read; ++i) {
                    ASSERT_TRUE(reader.more_rbsp_data());
                    ASSERT_EQ(reader.byte_aligned(), i % 8 == 0);
                    bool flag = false;
                    reader.flag("data", flag);
                    ASSERT_EQ(flag, i % 3 == 0);
                }
                ASSERT_EQ(reader.more_rbsp_data(), read < data);
                const qv::Trailing trailing = reader.trailing();
                ASSERT_EQ(trailing.bits, data - read);
                ASSERT_EQ(copyOf(trailing.bytes), zeroWords);
                ASSERT_EQ(trailing.bytes.begin(), unit.data() + end);
                ASSERT_FALSE(reader.more_rbsp_data());
            }
        }
    }
}

// Without an rbsp_stop_one_bit there is no data.
TEST(Reader, anRbspOfZeroBytes) {
    for (const char* const text :
         {"67 00", "67 00 00", "67 00 00 03", "67 00 00 03 00 00 03", "67 00 00 00"}) {
        const Bytes unit = hex(text);
        Reader reader(bytesOf(unit));
        skipHeader(reader, 1);
        EXPECT_FALSE(reader.more_rbsp_data()) << text;
        EXPECT_EQ(reader.trailing().bytes.size, unit.size() - 1) << text;
        bool flag = true;
        reader.flag("flag", flag);
        EXPECT_FALSE(flag);
        EXPECT_EQ(reader.fault().kind, FaultKind::EndOfData) << text;
    }
}

// A structure ends with rbsp_trailing_bits(), which cannot be missing.
TEST(Reader, rbspTrailingBitsThatAreMissing) {
    struct Row {
        const char* unit;
        bool hasTrailingBits;
    };
    for (const Row& row : {Row{"0C 80", true}, Row{"0C", false}, Row{"0C 00 00", false},
                           Row{"0C 00 00 03", false}, Row{"0C FF 80", true}}) {
        const Bytes unit = hex(row.unit);
        Reader reader(bytesOf(unit));
        skipHeader(reader, 1);
        while (reader.more_rbsp_data()) {
            uint32_t value = 0;
            reader.u(8, "ff_byte", value);
        }
        reader.rbsp_trailing_bits();
        EXPECT_EQ(reader.failed(), !row.hasTrailingBits) << row.unit;
        if (!row.hasTrailingBits) {
            EXPECT_EQ(reader.fault().kind, FaultKind::EndOfData);
            EXPECT_STREQ(reader.fault().element.name, "rbsp_stop_one_bit");
            EXPECT_EQ(reader.fault().firstBit, 8U);
        }
    }
}

// --- Bits that are kept ---

// A unit that has emulation prevention bytes on each side of every bit that is read.
const Bytes kUnitToKeep = hex("67 00 00 03 01 A5 00 00 03 00 00 03 03 5A FF 00 00 03 02 00 00 03 00 C3 80");

TEST(Reader, keptBitsReadAgainFromEveryBitToEveryBit) {
    const SlowReader whole(kUnitToKeep, 1);
    const uint64_t bits = whole.bitsLeft() - 8;
    for (uint64_t first = 0; first <= bits; ++first) {
        for (uint64_t count = 0; first + count <= bits; count += count < 70 ? 1 : 7) {
            SCOPED_TRACE(std::to_string(count) + " bits from bit " + std::to_string(first));
            SlowReader slow(kUnitToKeep, 1);
            slow.u(8);
            Reader reader(bytesOf(kUnitToKeep));
            skipHeader(reader, 1);
            for (uint64_t i = 0; i < first; ++i) {
                bool flag = false;
                reader.flag("before", flag);
                slow.u(1);
            }
            CodedBits kept;
            reader.keep(kept, [&](Reader& in) {
                for (uint64_t left = count; left > 0;) {
                    const auto n = static_cast<uint32_t>(std::min<uint64_t>(left, 13));
                    uint32_t value = 0;
                    in.u(n, "kept", value);
                    left -= n;
                }
            });
            ASSERT_EQ(kept.count, count);
            ASSERT_EQ(kept.firstBit, 8 + first);
            ASSERT_EQ(kept.byte, slow.byte());
            ASSERT_EQ(kept.bitOfByte, slow.bitOfByte());
            ASSERT_EQ(kept.unit.data, kUnitToKeep.data());

            Reader again(kept);
            ASSERT_EQ(again.position(), 8 + first);
            for (uint64_t left = count; left > 0;) {
                const auto n = static_cast<uint32_t>(std::min<uint64_t>(left, 31));
                uint32_t value = 0;
                again.u(n, "again", value);
                ASSERT_EQ(value, slow.u(n));
                left -= n;
            }
            ASSERT_FALSE(again.failed());
            ASSERT_EQ(kept.unit.size, slow.byte() + (slow.bitOfByte() != 0 ? 1 : 0));
            ASSERT_FALSE(again.more_rbsp_data());
            bool one = false;
            again.flag("one more", one);
            ASSERT_EQ(again.fault().kind, FaultKind::EndOfData);
            ASSERT_EQ(again.fault().firstBit, 8 + first + count);
        }
    }
}

TEST(Reader, nothingIsKeptAfterAFault) {
    Reader reader(bytesOf(kUnitToKeep));
    skipHeader(reader, 1);
    CodedBits kept;
    reader.keep(kept, [](Reader& in) {
        uint32_t value = 0;
        in.u(8, "kept", value);
        in.u(8, "kept", value, 200, 255);
    });
    EXPECT_TRUE(reader.failed());
    EXPECT_TRUE(kept.empty());
}

TEST(Reader, extensionDataIsKeptUpToTheTrailingBits) {
    for (uint32_t read = 0; read < 100; ++read) {
        SlowReader slow(kUnitToKeep, 1);
        slow.u(8);
        Reader reader(bytesOf(kUnitToKeep));
        skipHeader(reader, 1);
        for (uint32_t i = 0; i < read; ++i) {
            bool flag = false;
            reader.flag("before", flag);
            slow.u(1);
        }
        CodedBits bits;
        reader.extension_data("sps_extension_data_flag", bits);
        EXPECT_EQ(bits.count, slow.bitsLeft());
        EXPECT_EQ(bits.firstBit, slow.position());
        EXPECT_FALSE(reader.more_rbsp_data());
        EXPECT_EQ(reader.trailing().bits, 0U);
        Reader again(bits);
        while (slow.more_rbsp_data()) {
            bool flag = false;
            again.flag("again", flag);
            ASSERT_EQ(flag, slow.u(1) != 0);
        }
        EXPECT_FALSE(again.more_rbsp_data());
    }
}

// The bytes of a part of a unit that are left after some of its bits, and again from where they were kept.
TEST(Reader, payloadBytesOfEveryPart) {
    std::vector<size_t> coded;
    for (size_t byte = 0; byte < kUnitToKeep.size(); ++byte) {
        if (!qv::detail::isEmulationPrevention(kUnitToKeep.data(), byte)) {
            coded.push_back(byte);
        }
    }
    for (size_t first = 1; first < coded.size(); ++first) {
        for (size_t end = first; end < coded.size(); ++end) {
            const size_t codedEnd = end > first ? coded[end - 1] + 1 : coded[first];
            for (uint32_t before = 0; before <= 8 * (end - first) && before < 20; ++before) {
                SCOPED_TRACE(std::to_string(before) + " bits of " + std::to_string(first) + " to " +
                             std::to_string(end));
                Reader reader(bytesOf(kUnitToKeep), coded[first], codedEnd, 8 * first);
                uint32_t value = 0;
                reader.u(before, "before", value);
                CodedBits kept;
                reader.payload_bytes("bytes", kept);
                ASSERT_FALSE(reader.failed() || reader.more_rbsp_data());
                ASSERT_EQ(reader.position(), 8 * end);
                ASSERT_EQ(kept.count, 8 * (end - first) - before);
                ASSERT_EQ(kept.firstBit, 8 * first + before);
                Reader again(kept);
                for (uint64_t bit = kept.firstBit; bit < 8 * end; ++bit) {
                    bool flag = false;
                    again.flag("again", flag);
                    ASSERT_EQ(flag, (kUnitToKeep[coded[bit / 8]] >> (7 - bit % 8) & 1) != 0);
                }
                ASSERT_FALSE(again.failed() || again.more_rbsp_data());
            }
        }
    }
}

TEST(Reader, payloadExtensionEndsBeforeTheLastOne) {
    const std::vector<uint8_t> unit = hex("06 A0 00 00 03 01 00 00 03 00");
    for (uint32_t before = 0; before < 56; ++before) {
        Reader reader(bytesOf(unit), 1, unit.size(), 8);
        uint64_t value = 0;
        reader.u(before, "before", value);
        CodedBits bits;
        reader.payload_extension("reserved_payload_extension_data", bits);
        // The last bit that is 1 is bit 31 of the part: A0 00 00 01 00 00 00
        ASSERT_EQ(bits.count, before < 32 ? 31 - before : 0);
        ASSERT_EQ(reader.position(), before < 32 ? 39 : 8 + before);
        ASSERT_FALSE(reader.failed());
        Reader again(bits);
        for (uint64_t left = bits.count; left > 0; --left) {
            bool flag = false;
            again.flag("again", flag);
            ASSERT_EQ(flag, left == 31 || left == 29);
        }
        ASSERT_FALSE(again.failed() || again.more_rbsp_data());
    }
}

TEST(Reader, aFaultThatAReaderOfAPartHasFound) {
    Reader part(bytesOf(kUnitToKeep));
    part.fail(FaultKind::DataLeft, "part", 7);
    Reader reader(bytesOf(kUnitToKeep));
    reader.fail(part.fault());
    EXPECT_EQ(reader.fault().kind, FaultKind::DataLeft);
    EXPECT_STREQ(reader.fault().element.name, "part");
    EXPECT_FALSE(reader.more_rbsp_data());
    // The first one is kept.
    Reader other(bytesOf(kUnitToKeep));
    other.fail(FaultKind::NoSuchSet, "other", 1);
    reader.fail(other.fault());
    EXPECT_STREQ(reader.fault().element.name, "part");
}

// A record can be changed before its bits are read.
TEST(Reader, bitsOutsideTheUnitAreNotThere) {
    const Bytes unit = hex("67 A5");
    const CodedBits kOutside[] = {
        {bytesOf(unit), 2, 0, 16, 8},
        {bytesOf(unit), SIZE_MAX, 5, 16, 8},
        {bytesOf(unit), 1, 7, 16, 8},
        {bytesOf(unit), 1, UINT32_MAX, 16, 8},
        {{}, 1, 1, 0, 8},
    };
    for (const CodedBits& bits : kOutside) {
        Reader reader(bits);
        EXPECT_FALSE(reader.more_rbsp_data());
        uint32_t value = 9;
        reader.ue("outside", value);
        EXPECT_EQ(value, 0U);
        EXPECT_EQ(reader.fault().kind, FaultKind::EndOfData);
    }
}

// --- Against the slow reader ---

using Generator = std::mt19937_64;

size_t below(Generator& random, size_t bound) {
    return random() % bound;
}

Bytes randomUnit(Generator& random) {
    static constexpr uint8_t kBytes[] = {0x00, 0x00, 0x00, 0x00, 0x03, 0x03, 0x01, 0x02, 0x80, 0x04};
    Bytes unit(below(random, 40));
    for (uint8_t& byte : unit) {
        const size_t choice = below(random, 14);
        byte = choice < 10 ? kBytes[choice] : static_cast<uint8_t>(random());
    }
    return unit;
}

// One reader beside the other; each step reads the same from both.
class Pair {
public:
    Pair(qv::Bytes bytes, const Bytes& unit, size_t headerBytes)
        : unit_(unit), reader_(bytes), slow_(unit, headerBytes) {
        reader_.header(static_cast<uint32_t>(headerBytes));
        for (size_t i = 0; i < headerBytes; ++i) {
            uint32_t value = 0;
            reader_.u(8, "header", value);
            EXPECT_EQ(value, slow_.u(8));
        }
        reader_.rbsp();
    }

    void step(Generator& random) {
        switch (below(random, 10)) {
            case 0:
                return flag();
            case 1:
            case 2:
                return bits(static_cast<uint32_t>(below(random, 57)));
            case 3:
                return bitsInRange(static_cast<uint32_t>(1 + below(random, 32)));
            case 4:
                return signedBits(static_cast<uint32_t>(1 + below(random, 32)));
            case 5:
            case 6:
                return unsignedCode(static_cast<uint32_t>(random() >> below(random, 64)));
            case 7:
                return signedCode();
            case 8:
                return code16();
            default:
                return kept(below(random, 70));
        }
    }

    void compare() {
        ASSERT_EQ(reader_.failed(), slow_.failed());
        ASSERT_EQ(reader_.more_rbsp_data(), slow_.more_rbsp_data());
        if (slow_.failed()) {
            ASSERT_EQ(reader_.fault().kind, slow_.kind());
            ASSERT_EQ(reader_.fault().firstBit, slow_.faultBit());
            ASSERT_STREQ(reader_.fault().element.name, "element");
            return;
        }
        ASSERT_EQ(reader_.position(), slow_.position());
        ASSERT_EQ(reader_.byte_aligned(), slow_.position() % 8 == 0);
    }

    void compareEnd() {
        const qv::Trailing trailing = reader_.trailing();
        ASSERT_EQ(trailing.bits, slow_.failed() ? 0 : slow_.bitsLeft());
        ASSERT_EQ(trailing.bytes.size, slow_.failed() ? 0 : unit_.size() - slow_.trailingOffset());
    }

    bool failed() const { return slow_.failed(); }
    uint64_t position() const { return slow_.position(); }

private:
    void flag() {
        bool value = true;
        reader_.flag("element", value);
        ASSERT_EQ(value, slow_.u(1) != 0);
    }

    void bits(uint32_t n) {
        uint64_t value = 1;
        reader_.u(n, "element", value);
        ASSERT_EQ(value, slow_.u(n)) << "u(" << n << ")";
    }

    void bitsInRange(uint32_t n) {
        const uint64_t most = (uint64_t{1} << n) / 2;
        uint32_t value = 1;
        reader_.u(n, "element", value, 0, most);
        ASSERT_EQ(value, slow_.inRange(static_cast<int64_t>(slow_.u(n)), 0, static_cast<int64_t>(most)));
    }

    void signedBits(uint32_t n) {
        int32_t value = 1;
        reader_.i(n, "element", value);
        ASSERT_EQ(value, slow_.i(n)) << "i(" << n << ")";
    }

    void unsignedCode(uint32_t most) {
        const uint32_t limit = std::min(most, qv::kMostUe);
        uint32_t value = 1;
        reader_.ue("element", value, 0, limit);
        ASSERT_EQ(value, slow_.inRange(slow_.ue(), 0, limit));
    }

    void signedCode() {
        int32_t value = 1;
        reader_.se("element", value);
        ASSERT_EQ(value, slow_.se());
    }

    void code16() {
        uint16_t value = 1;
        reader_.ue("element", value);
        ASSERT_EQ(value, slow_.inRange(slow_.ue(), 0, 0xFFFF));
    }

    void kept(size_t count) {
        const size_t byte = slow_.byte();
        const uint32_t bitOfByte = slow_.bitOfByte();
        CodedBits kept;
        std::vector<uint64_t> values;
        reader_.keep(kept, [&](Reader& in) {
            for (size_t i = 0; i < count; i += 7) {
                uint32_t value = 1;
                in.u(7, "element", value);
                ASSERT_EQ(value, slow_.u(7));
                values.push_back(value);
            }
        });
        if (slow_.failed()) {
            ASSERT_TRUE(kept.empty());
            return;
        }
        ASSERT_EQ(kept.byte, byte);
        ASSERT_EQ(kept.bitOfByte, bitOfByte);
        ASSERT_EQ(kept.count, 7 * values.size());
        Reader again(kept);
        for (const uint64_t expected : values) {
            uint32_t value = 1;
            again.u(7, "element", value);
            ASSERT_EQ(value, expected);
        }
    }

    const Bytes& unit_;
    Reader reader_;
    SlowReader slow_;
};

int rounds() {
    const char* const text = std::getenv("QVNALU_TEST_ROUNDS");
    return text != nullptr ? std::atoi(text) : 100000;
}

// Each unit is between inaccessible memory: what the reader reads is the unit.
TEST(Reader, randomUnitsReadAsTheSlowReaderReadsThem) {
    Generator random(17);
    GuardedBuffer guarded(64);
    for (int round = 0; round < rounds(); ++round) {
        const Bytes unit = randomUnit(random);
        const size_t headerBytes = std::min(below(random, 5), unit.size());
        const uint8_t* const place = round % 2 == 0 ? guarded.placeAtEnd(unit) : guarded.placeAtBegin(unit);
        SCOPED_TRACE("round " + std::to_string(round) + ", header of " + std::to_string(headerBytes) + ": " +
                     hexOf(bytesOf(unit)));
        Pair pair({place, unit.size()}, unit, headerBytes);
        pair.compare();
        for (int step = 0; step < 40 && !pair.failed(); ++step) {
            const uint64_t at = pair.position();
            pair.step(random);
            SCOPED_TRACE("step " + std::to_string(step) + " at bit " + std::to_string(at));
            pair.compare();
            if (HasFatalFailure()) {
                return;
            }
        }
        pair.compareEnd();
        ASSERT_FALSE(HasFailure());
    }
}

TEST(Reader, noReadAllocates) {
    Generator random(18);
    std::vector<Bytes> units;
    for (int i = 0; i < 200; ++i) {
        units.push_back(randomUnit(random));
    }
    const AllocationFault allocations(Allocator::New, 0);
    const AllocationFault blocks(Allocator::Malloc, 0);
    uint64_t sum = 0;
    for (const Bytes& unit : units) {
        Reader reader(bytesOf(unit));
        reader.header(1);
        uint32_t value = 0;
        reader.u(8, "header", value);
        reader.rbsp();
        CodedBits bits;
        reader.keep(bits, [&](Reader& in) {
            in.ue(qv::at("code", 1, 2), value);
            in.u(5, "bits", value, 0, 20);
        });
        reader.extension_data("data", bits);
        sum += value + reader.trailing().bytes.size;
    }
    EXPECT_EQ(allocations.seen(), 0);
    EXPECT_EQ(blocks.seen(), 0);
    EXPECT_GT(sum, 0U);
}

}  // namespace
