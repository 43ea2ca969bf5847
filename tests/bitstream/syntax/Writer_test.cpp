// The writer and the sizer: bits, emulation prevention, ranges, and bits that are copied.
#include "bitstream/syntax/Writer.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>
#include <vector>

#include "../support/Hex.h"
#include "BitWriter.h"

namespace {

using namespace qv_test;
using qv::CodedBits;
using qv::FaultKind;
using qv::Reader;
using qv::Sizer;
using qv::Writer;

// --- Bits ---

// What one element is written as: a header byte, the element, and rbsp_trailing_bits().
std::string written(const std::function<void(Writer&)>& element) {
    Bytes out;
    Writer writer(out);
    uint32_t header = 0x67;
    writer.header(1);
    writer.u(8, "header", header);
    writer.rbsp();
    element(writer);
    writer.rbsp_trailing_bits();
    const qv::Written result = writer.finish();
    EXPECT_EQ(result.size, out.size());
    return result.ok() ? hexOf(bytesOf(out).from(1)) : qv::textOf(result.fault);
}

template <class Field>
std::function<void(Writer&)> u(uint32_t n, Field value) {
    return [=](Writer& s) {
        Field field = value;
        s.u(n, "x", field);
    };
}

std::function<void(Writer&)> ue(uint32_t value, uint32_t least = 0, uint32_t most = qv::kMostUe) {
    return [=](Writer& s) {
        uint32_t field = value;
        s.ue("x", field, least, most);
    };
}

std::function<void(Writer&)> se(int32_t value, int32_t least = -qv::kMostSe, int32_t most = qv::kMostSe) {
    return [=](Writer& s) {
        int32_t field = value;
        s.se("x", field, least, most);
    };
}

std::function<void(Writer&)> i(uint32_t n, int32_t value) {
    return [=](Writer& s) {
        int32_t field = value;
        s.i(n, "x", field);
    };
}

TEST(Writer, descriptors) {
    EXPECT_EQ(written([](Writer&) {}), "80");
    EXPECT_EQ(written(u(1, 1U)), "C0");
    EXPECT_EQ(written(u(4, 5U)), "58");
    EXPECT_EQ(written(u(8, 255U)), "FF 80");
    EXPECT_EQ(written(u(0, 0U)), "80");
    EXPECT_EQ(written(u(32, 0xDEADBEEFU)), "DE AD BE EF 80");
    EXPECT_EQ(written(u(57, uint64_t{0x1FFFFFFFFFFFFFF})), "FF FF FF FF FF FF FF C0");
    EXPECT_EQ(written(u(64, uint64_t{0x123456789ABCDEF0})), "12 34 56 78 9A BC DE F0 80");
    EXPECT_EQ(written(ue(0)), "C0");
    EXPECT_EQ(written(ue(1)), "50");
    EXPECT_EQ(written(ue(2)), "70");
    EXPECT_EQ(written(ue(7)), "11");
    EXPECT_EQ(written(ue(6)), "3C");
    EXPECT_EQ(written(ue(255)), "00 80 40");
    EXPECT_EQ(written(ue(qv::kMostUe)), "00 00 03 00 01 FF FF FF FF");
    EXPECT_EQ(written(se(0)), "C0");
    EXPECT_EQ(written(se(1)), "50");
    EXPECT_EQ(written(se(-1)), "70");
    EXPECT_EQ(written(se(-2)), "2C");
    EXPECT_EQ(written(i(1, -1)), "C0");
    EXPECT_EQ(written(i(8, -128)), "80 80");
    EXPECT_EQ(written(i(8, 127)), "7F 80");
    EXPECT_EQ(written(i(32, -2)), "FF FF FF FE 80");
    EXPECT_EQ(written([](Writer& s) { s.f(8, "x", 0xA5); }), "A5 80");
}

TEST(Writer, flags) {
    const auto flag = [](bool value) {
        return written([=](Writer& s) {
            bool field = value;
            s.flag("x", field);
        });
    };
    const auto flagOf = [](bool value, bool allowed) {
        return written([=](Writer& s) {
            bool field = value;
            s.flag("x", field, allowed);
        });
    };
    EXPECT_EQ(flag(true), "C0");
    EXPECT_EQ(flag(false), "40");
    EXPECT_EQ(flagOf(true, true), "C0");
    EXPECT_EQ(flagOf(false, false), "40");
    EXPECT_EQ(flagOf(true, false), "x at bit 8: 1 instead of 0");
    EXPECT_EQ(flagOf(false, true), "x at bit 8: 0 instead of 1");
}

TEST(Writer, ranges) {
    EXPECT_EQ(written(u(4, 15U)), "F8");
    EXPECT_EQ(written(u(4, 16U)), "x at bit 8: 16 is not in 0..15");
    EXPECT_EQ(written(u(0, 1U)), "x at bit 8: 1 instead of 0");
    EXPECT_EQ(written([](Writer& s) {
                  uint32_t x = 6;
                  s.u(4, "x", x, 2, 6);
              }),
              "68");
    EXPECT_EQ(written([](Writer& s) {
                  uint32_t x = 7;
                  s.u(4, "x", x, 2, 6);
              }),
              "x at bit 8: 7 is not in 2..6");
    EXPECT_EQ(written([](Writer& s) {
                  uint32_t x = 1;
                  s.u(4, "x", x, 2, 6);
              }),
              "x at bit 8: 1 is not in 2..6");
    EXPECT_EQ(written(ue(3, 0, 3)), "24");
    EXPECT_EQ(written(ue(4, 0, 3)), "x at bit 8: 4 is not in 0..3");
    EXPECT_EQ(written(ue(4, 5, 9)), "x at bit 8: 4 is not in 5..9");
    EXPECT_EQ(written(se(3, -2, 2)), "x at bit 8: 3 is not in -2..2");
    EXPECT_EQ(written(se(-3, -2, 2)), "x at bit 8: -3 is not in -2..2");
    EXPECT_EQ(written(i(8, 128)), "x at bit 8: 128 is not in -128..127");
    EXPECT_EQ(written(i(8, -129)), "x at bit 8: -129 is not in -128..127");
    EXPECT_EQ(written(se(INT32_MIN)), "x at bit 8: -2147483648 is not in -2147483647..2147483647");
}

// --- Faults ---

TEST(Writer, anElementThatDoesNotFitBecomesZero) {
    Bytes out = {1, 2, 3};
    Writer writer(out);
    uint32_t count = 9;
    uint32_t after = 5;
    writer.ue(qv::at("count", 4), count, 0, 8);
    writer.u(8, "after", after);
    writer.fail(FaultKind::TooManyEntries, "third", 7);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(after, 5U);
    EXPECT_TRUE(writer.failed());
    EXPECT_EQ(writer.position(), 0U);
    const qv::Written written = writer.finish();
    EXPECT_EQ(written.size, 0U);
    EXPECT_EQ(qv::textOf(written.fault), "count[4] at bit 0: 9 is not in 0..8");
    EXPECT_EQ(out, Bytes({1, 2, 3}));
}

TEST(Writer, faultsThatAreNotThoseOfAValue) {
    static constexpr qv::Structure kStructure = {"table()", "1.2"};
    Bytes out;
    Writer writer(out);
    uint32_t value = 1;
    writer.u(3, "x", value);
    {
        const qv::Within<Writer> within(writer, kStructure);
        writer.fail(FaultKind::TooManyEntries, "list", 300);
    }
    EXPECT_EQ(qv::textOf(writer.finish().fault), "list in table() (1.2) at bit 3: 300 entries");
    EXPECT_TRUE(out.empty());
}

// --- Emulation prevention (H.264 7.4.1, H.265 7.4.2.1) ---

Bytes writtenBytes(const Bytes& bytes, uint32_t headerBytes, Bytes out = {}) {
    Writer writer(out);
    writer.header(headerBytes);
    for (const uint8_t byte : bytes) {
        uint32_t value = byte;
        writer.u(8, "byte", value);
    }
    const size_t before = out.size();
    const qv::Written written = writer.finish();
    EXPECT_TRUE(written.ok());
    EXPECT_GE(out.size(), before);
    return out;
}

TEST(Writer, emulationPrevention) {
    struct Row {
        uint32_t headerBytes;
        const char* bytes;
        const char* written;
    };
    const Row rows[] = {
        {1, "67 00 00 00 80", "67 00 00 03 00 80"},
        {1, "67 00 00 01 80", "67 00 00 03 01 80"},
        {1, "67 00 00 02 80", "67 00 00 03 02 80"},
        {1, "67 00 00 03 80", "67 00 00 03 03 80"},
        {1, "67 00 00 04 80", "67 00 00 04 80"},
        {1, "67 00 00 00 00 00 00 80", "67 00 00 03 00 00 03 00 00 80"},
        {1, "67 80 00 00", "67 80 00 00 03"},
        {1, "67 80 00 00 00 00", "67 80 00 00 03 00 00 03"},
        {4, "6E 00 00 03 80", "6E 00 00 03 80"},
        {4, "6E 00 00 01 80", "6E 00 00 01 80"},
        {4, "6E 40 00 00 01 80", "6E 40 00 00 03 01 80"},
        {2, "42 00 00 01 80", "42 00 00 03 01 80"},
        {2, "42 00", "42 00"},  // a header alone
    };
    for (const Row& row : rows) {
        EXPECT_EQ(hexOf(bytesOf(writtenBytes(hex(row.bytes), row.headerBytes))),
                  hexOf(bytesOf(hex(row.written))))
            << row.bytes;
    }
}

// Bytes of an earlier unit are not part of this one.
TEST(Writer, appendsToWhatIsThere) {
    EXPECT_EQ(hexOf(bytesOf(writtenBytes(hex("01 80"), 0, hex("00 00")))), "00 00 01 80");
    EXPECT_EQ(hexOf(bytesOf(writtenBytes(hex("00 00 01 80"), 1, hex("00 00 00")))),
              "00 00 00 00 00 03 01 80");
}

// --- Against the bit writer of the tests ---

TEST(Writer, randomElements) {
    std::mt19937_64 random(4);
    for (int round = 0; round < 3000; ++round) {
        Bytes out;
        Writer writer(out);
        Sizer sizer;
        BitWriter bits;
        const auto both = [&](auto write) {
            write(writer);
            write(sizer);
        };
        uint64_t header = 0x67;
        writer.header(1);
        sizer.header(1);
        both([&](auto& s) { s.u(8, "header", header); });
        bits.u(8, "header", header);
        for (uint64_t left = random() % 20; left > 0; --left) {
            const auto n = static_cast<uint32_t>(1 + random() % 56);
            uint64_t value = random() % 2 == 0 ? 0 : random() & (~uint64_t{0} >> (64 - n));
            auto code = static_cast<uint32_t>(value);
            code = code > qv::kMostUe ? 0 : code;
            auto number = static_cast<int32_t>(code >> 1) - static_cast<int32_t>(code & 1023);
            switch (random() % 3) {
                case 0:
                    both([&](auto& s) { s.u(n, "u", value); });
                    bits.u(n, "u", value);
                    break;
                case 1:
                    both([&](auto& s) { s.ue("ue", code); });
                    bits.ue("ue", code);
                    break;
                default:
                    both([&](auto& s) { s.se("se", number); });
                    bits.se("se", number);
            }
            ASSERT_EQ(writer.position(), bits.bitCount());
            ASSERT_EQ(sizer.position(), bits.bitCount());
            ASSERT_EQ(writer.byte_aligned(), bits.bitCount() % 8 == 0);
        }
        both([](auto& s) { s.rbsp_trailing_bits(); });
        bits.trailingBits();
        ASSERT_TRUE(writer.finish().ok());
        ASSERT_EQ(out, withEmulationPrevention(bits.bytes()));
        ASSERT_EQ(sizer.position(), bits.bitCount());
        ASSERT_FALSE(sizer.failed());
    }
}

TEST(Sizer, faultsAreThoseOfTheWriter) {
    Sizer sizer;
    uint32_t value = 2;
    sizer.u(3, "fine", value);
    value = 20;
    sizer.ue("x", value, 0, 3);
    EXPECT_EQ(value, 0U);
    EXPECT_EQ(qv::textOf(sizer.fault()), "x at bit 3: 20 is not in 0..3");
}

// --- Bits that are copied ---

// From every bit of one unit to every bit of another, each with emulation prevention bytes.
TEST(Writer, copiesKeptBits) {
    const Bytes source = hex("67 00 00 03 01 A5 00 00 03 00 00 03 03 5A FF 00 00 03 02 C3 80");
    for (uint32_t first = 0; first < 70; first += 3) {
        for (uint32_t count = 0; first + count < 100; count += 7) {
            for (uint32_t before = 0; before < 9; ++before) {
                SCOPED_TRACE(std::to_string(count) + " bits from " + std::to_string(first) + " to " +
                             std::to_string(before));
                Reader reader(bytesOf(source));
                uint64_t value = 0;
                reader.header(1);
                reader.u(8, "header", value);
                reader.rbsp();
                for (uint32_t i = 0; i < first; ++i) {
                    reader.u(1, "before", value);
                }
                CodedBits kept;
                std::vector<uint64_t> bits;
                reader.keep(kept, [&](Reader& in) {
                    for (uint32_t i = 0; i < count; ++i) {
                        in.u(1, "bit", value);
                        bits.push_back(value);
                    }
                });
                ASSERT_FALSE(reader.failed());

                BitWriter expected;
                expected.u(8, "header", 0x67).u(before, "before", 0);
                for (const uint64_t bit : bits) {
                    expected.u(1, "bit", bit);
                }
                Bytes out;
                Writer writer(out);
                Sizer sizer;
                uint64_t header = 0x67;
                uint64_t zero = 0;
                writer.header(1);
                writer.u(8, "header", header);
                writer.u(before, "before", zero);
                writer.keep(kept, [](auto&) { FAIL(); });
                EXPECT_EQ(writer.position(), 8 + before + count);
                writer.rbsp_trailing_bits();
                writer.finish();
                ASSERT_EQ(out, withEmulationPrevention(expected.trailingBits().bytes()));
                sizer.extension_data("data", kept);
                ASSERT_EQ(sizer.position(), count);
            }
        }
    }
}

// --- Whole bytes ---

TEST(Writer, bytesWithoutEmulationPrevention) {
    const Bytes bytes = hex("00 00 01 00 00 03");
    Bytes out = {0xDE};
    Writer writer(out);
    uint32_t length = 6;
    writer.header(2);
    writer.u(16, "length", length);
    writer.bytes(6, "unit", bytesOf(bytes));
    writer.keepBytes(bytesOf(bytes), [](auto&) { FAIL(); });
    writer.restOfBytes("rest", bytesOf(bytes).first(1));
    EXPECT_EQ(writer.position(), 8U * 15);
    EXPECT_EQ(writer.finish().size, 15U);
    EXPECT_EQ(hexOf(bytesOf(out)), "DE 00 06 00 00 01 00 00 03 00 00 01 00 00 03 00");

    Writer other(out);
    other.bytes(5, "unit", bytesOf(bytes));
    EXPECT_EQ(qv::textOf(other.finish().fault), "unit at bit 0: 6 instead of 5");
    EXPECT_EQ(out.size(), 16U);
}

}  // namespace
