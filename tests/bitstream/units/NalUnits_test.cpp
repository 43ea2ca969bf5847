// The units of a buffer in both framings, their headers, and what is wrong with them.
#include "bitstream/units/NalUnits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "../support/Hex.h"
#include "../support/SlowUnits.h"
#include "AllocationFault.h"
#include "GuardedBuffer.h"
#include "ReferenceFraming.h"
#include "bitstream/avc/NalUnitHeader.h"

namespace {

using namespace qv_test;
using qv::Codec;
using qv::Framing;
using qv::NalUnit;
using qv::NalUnits;
using qv::UnitFault;
using testing::ElementsAre;

using Texts = std::vector<std::string>;

std::vector<NalUnit> unitsOf(qv::Bytes bytes, Framing framing, Codec codec = Codec::Avc) {
    std::vector<NalUnit> units;
    for (const NalUnit& unit : NalUnits(bytes, framing, codec)) {
        units.push_back(unit);
    }
    return units;
}

// "offset: bytes of the unit" of each unit, with its faults.
Texts textsOf(const Bytes& buffer, Framing framing, Codec codec = Codec::Avc) {
    Texts texts;
    for (const NalUnit& unit : NalUnits(bytesOf(buffer), framing, codec)) {
        std::string text = std::to_string(unit.offset) + ": " + hexOf(unit.bytes);
        text += unit.faults ? " (" + qv::textOf(unit.faults) + ")" : "";
        texts.push_back(text);
    }
    return texts;
}

// --- Start codes ---

struct Row {
    const char* buffer;
    Texts units;
};

const Row kStartCodes[] = {
    {"", {}},
    {"000001 65", {"3: 65"}},
    {"00000001 65", {"4: 65"}},
    {"000001 65 88 000001 41 9A", {"3: 65 88", "8: 41 9A"}},
    {"00000001 65 88 00000001 41 9A", {"4: 65 88", "10: 41 9A"}},
    {"000001 65 88 00 00000001 41 9A", {"3: 65 88", "10: 41 9A"}},
    {"00 00 00000001 65", {"6: 65"}},
    {"000001 65 00 00 00", {"3: 65"}},
    {"000001 65 00", {"3: 65"}},
    {"000001 65 00 00", {"3: 65"}},
    {"000001 65 0000", {"3: 65"}},
    {"000001 65 00 00 03 01", {"3: 65 00 00 03 01"}},
    {"000001 65 00 00 03 000001 41", {"3: 65 00 00 03", "10: 41"}},
    // Broken
    {"65", {"1:  (no start code)"}},
    {"00 00", {"2:  (no start code)"}},
    {"00 00 00 00", {"4:  (no start code)"}},
    {"65 000001 41", {"4: 41 (bytes before the first start code)"}},
    {"00 65 00 000001 41", {"6: 41 (bytes before the first start code)"}},
    {"000001", {"3:  (an empty unit)"}},
    {"00000001", {"4:  (an empty unit)"}},
    {"000001 00 00", {"3:  (an empty unit)"}},
    {"000001 000001 65", {"3:  (an empty unit)", "6: 65"}},
    {"000001 00000001 65", {"3:  (an empty unit)", "7: 65"}},
    {"000001 000001 000001 000001",
     {"3:  (an empty unit)", "6:  (an empty unit)", "9:  (an empty unit)", "12:  (an empty unit)"}},
    {"000001 65 000001", {"3: 65", "7:  (an empty unit)"}},
    {"000001 E5", {"3: E5 (forbidden_zero_bit is 1)"}},
    {"65 000001 E5", {"4: E5 (bytes before the first start code; forbidden_zero_bit is 1)"}},
    {"000001 6E", {"3: 6E (the unit ends within its header)"}},
    {"000001 6E 40 00 07 80", {"3: 6E 40 00 07 80"}},
    {"000001 6E 40 80 000001 41", {"3: 6E 40 80 (the unit ends within its header)", "9: 41"}},
    {"000001 75 80 00 05", {"3: 75 80 00 05"}},
    {"000001 75 80", {"3: 75 80 (the unit ends within its header)"}},
    {"000001 75 40 00", {"3: 75 40 (the unit ends within its header)"}},
};

TEST(NalUnits, startCodes) {
    for (const Row& row : kStartCodes) {
        EXPECT_EQ(textsOf(hex(row.buffer), Framing::StartCodes), row.units) << row.buffer;
    }
}

TEST(NalUnits, partsAroundTheUnits) {
    const Bytes buffer = hex("00 00 00 000001 65 88 00 00 000001 41 00000001 42 00");
    const std::vector<NalUnit> units = unitsOf(bytesOf(buffer), Framing::StartCodes);
    ASSERT_EQ(units.size(), 3U);
    EXPECT_EQ(units[0].leadingBytes, 2U);
    EXPECT_EQ(units[0].prefixSize, 4U);
    EXPECT_EQ(units[0].begin(), 0U);
    EXPECT_EQ(units[0].trailingZeroBytes, 1U);
    EXPECT_EQ(units[1].leadingBytes, 0U);
    EXPECT_EQ(units[1].prefixSize, 4U);
    EXPECT_EQ(units[1].begin(), units[0].end());
    EXPECT_EQ(units[1].trailingZeroBytes, 0U);
    EXPECT_EQ(units[2].prefixSize, 4U);
    EXPECT_EQ(units[2].trailingZeroBytes, 1U);
    EXPECT_EQ(units[2].end(), buffer.size());
    EXPECT_EQ(hexOf(units[0].leading()), "00 00");
    EXPECT_EQ(units[2].leading().size, 0U);
    EXPECT_EQ(units[0].bytes.data, buffer.data() + units[0].offset);
    EXPECT_TRUE(units[0].ok());
}

// --- Lengths ---

struct LengthRow {
    Framing framing;
    const char* buffer;
    Texts units;
};

const LengthRow kLengths[] = {
    {Framing::Lengths1, "", {}},
    {Framing::Lengths1, "01 65", {"1: 65"}},
    {Framing::Lengths1, "02 65 88 01 41", {"1: 65 88", "4: 41"}},
    {Framing::Lengths2, "0002 65 88 0001 41", {"2: 65 88", "6: 41"}},
    {Framing::Lengths3, "000002 65 88 000001 41", {"3: 65 88", "8: 41"}},
    {Framing::Lengths4, "00000002 65 88 00000001 41", {"4: 65 88", "10: 41"}},
    // Start codes in a unit are bytes of it.
    {Framing::Lengths1, "05 65 000001 41", {"1: 65 00 00 01 41"}},
    // Broken
    {Framing::Lengths1, "00", {"1:  (an empty unit)"}},
    {Framing::Lengths1, "00 00 01 65", {"1:  (an empty unit)", "2:  (an empty unit)", "3: 65"}},
    {Framing::Lengths1, "02 65", {"1: 65 (the NALUnitLength runs past the end)"}},
    {Framing::Lengths1, "02", {"1:  (the NALUnitLength runs past the end; an empty unit)"}},
    {Framing::Lengths2, "00", {"1:  (fewer bytes left than a NALUnitLength has)"}},
    {Framing::Lengths2, "0001 65 00", {"2: 65", "4:  (fewer bytes left than a NALUnitLength has)"}},
    {Framing::Lengths3, "000001 65 00 00", {"3: 65", "6:  (fewer bytes left than a NALUnitLength has)"}},
    {Framing::Lengths4, "FFFFFFFF 65 88", {"4: 65 88 (the NALUnitLength runs past the end)"}},
    {Framing::Lengths4, "00000003 65 88 00", {"4: 65 88 00 (the unit ends with a zero byte)"}},
    {Framing::Lengths4,
     "00000001 E5 00000004 41",
     {"4: E5 (forbidden_zero_bit is 1)", "9: 41 (the NALUnitLength runs past the end)"}},
};

TEST(NalUnits, lengths) {
    for (const LengthRow& row : kLengths) {
        EXPECT_EQ(textsOf(hex(row.buffer), row.framing), row.units)
            << qv::textOf(row.framing) << ": " << row.buffer;
    }
}

TEST(NalUnits, theLengthAsCodedAndTheBytesLeft) {
    const Bytes buffer = hex("0001 41 1234 65 88");
    const std::vector<NalUnit> units = unitsOf(bytesOf(buffer), Framing::Lengths2);
    ASSERT_EQ(units.size(), 2U);
    EXPECT_EQ(units[0].NALUnitLength, 1U);
    EXPECT_EQ(units[0].prefixSize, 2U);
    EXPECT_EQ(units[1].NALUnitLength, 0x1234U);
    EXPECT_EQ(units[1].bytes.size, 2U);

    const Bytes cut = hex("00000001 41 AA BB CC");
    const std::vector<NalUnit> two = unitsOf(bytesOf(cut), Framing::Lengths4);
    ASSERT_EQ(two.size(), 2U);
    EXPECT_EQ(hexOf(two[1].leading()), "AA BB CC");
    EXPECT_EQ(two[1].begin(), 5U);
    EXPECT_EQ(two[1].end(), cut.size());
    EXPECT_EQ(two[1].prefixSize, 0U);
}

// --- Headers ---

TEST(NalUnits, avcHeaders) {
    for (uint32_t byte = 0; byte < 0x80; ++byte) {
        const Bytes buffer = {0, 0, 1, static_cast<uint8_t>(byte), 0xC1, 0x82, 0x43, 0x80};
        const NalUnit unit = unitsOf(bytesOf(buffer), Framing::StartCodes).at(0);
        EXPECT_EQ(unit.nal_ref_idc, byte >> 5);
        EXPECT_EQ(unit.nal_unit_type, byte & 31);
        EXPECT_EQ(unit.nuh_layer_id, 0U);
        EXPECT_EQ(unit.nuh_temporal_id_plus1, 0U);
        const bool has3d = (byte & 31) == 21;
        const bool isExtended = has3d || (byte & 31) == 14 || (byte & 31) == 20;
        EXPECT_EQ(unit.headerBytes, has3d ? 3U : isExtended ? 4U : 1U);
        EXPECT_EQ(unit.headerExtension, has3d ? 0xC182U : isExtended ? 0xC18243U : 0U);
        const qv::Read<qv::avc::NalUnitHeader> header = qv::avc::readNalUnitHeader(unit.bytes);
        EXPECT_TRUE(header.ok());
        EXPECT_EQ(header.record.nal_unit_type, unit.nal_unit_type);
        EXPECT_EQ(qv::avc::sizeOf(header.record), unit.headerBytes);
    }
}

TEST(NalUnits, avcHeaderExtensions) {
    const Bytes svc = hex("6E D5 93 6B 80");  // 1 1 010101 1 001 0011 011 0 1 0 11
    const auto scalable = qv::avc::readNalUnitHeader(bytesOf(svc)).record;
    EXPECT_TRUE(scalable.svc_extension_flag);
    EXPECT_TRUE(scalable.svc.idr_flag);
    EXPECT_EQ(scalable.svc.priority_id, 21U);
    EXPECT_TRUE(scalable.svc.no_inter_layer_pred_flag);
    EXPECT_EQ(scalable.svc.dependency_id, 1U);
    EXPECT_EQ(scalable.svc.quality_id, 3U);
    EXPECT_EQ(scalable.svc.temporal_id, 3U);
    EXPECT_FALSE(scalable.svc.use_ref_base_pic_flag);
    EXPECT_TRUE(scalable.svc.discardable_flag);
    EXPECT_FALSE(scalable.svc.output_flag);
    EXPECT_EQ(scalable.svc.reserved_three_2bits, 3U);

    const Bytes mvc = hex("74 41 40 4D 80");  // 0 1 000001 0101000001 001 1 0 1
    const auto view1 = qv::avc::readNalUnitHeader(bytesOf(mvc)).record;
    EXPECT_FALSE(view1.svc_extension_flag);
    EXPECT_TRUE(view1.mvc.non_idr_flag);
    EXPECT_EQ(view1.mvc.priority_id, 1U);
    EXPECT_EQ(view1.mvc.view_id, 0x101U);
    EXPECT_EQ(view1.mvc.temporal_id, 1U);
    EXPECT_TRUE(view1.mvc.anchor_pic_flag);
    EXPECT_FALSE(view1.mvc.inter_view_flag);
    EXPECT_TRUE(view1.mvc.reserved_one_bit);

    const Bytes depth = hex("75 82 EB");  // 1 00000101 1 1 010 1 1
    const auto view2 = qv::avc::readNalUnitHeader(bytesOf(depth)).record;
    EXPECT_TRUE(view2.avc_3d_extension_flag);
    EXPECT_EQ(view2.avc_3d.view_idx, 5U);
    EXPECT_TRUE(view2.avc_3d.depth_flag);
    EXPECT_TRUE(view2.avc_3d.non_idr_flag);
    EXPECT_EQ(view2.avc_3d.temporal_id, 2U);
    EXPECT_TRUE(view2.avc_3d.anchor_pic_flag);
    EXPECT_TRUE(view2.avc_3d.inter_view_flag);

    for (const char* const text : {"", "6E", "6E D5", "6E D5 93", "75 82", "75 02 EB", "E7"}) {
        const Bytes cut = hex(text);
        EXPECT_FALSE(qv::avc::readNalUnitHeader(bytesOf(cut)).ok()) << text;
    }
}

TEST(NalUnits, hevcHeaders) {
    for (uint32_t header = 0; header < 0x8000; header += 7) {
        const Bytes buffer = {0, 0, 1, static_cast<uint8_t>(header >> 8), static_cast<uint8_t>(header), 0x80};
        const NalUnit unit = unitsOf(bytesOf(buffer), Framing::StartCodes, Codec::Hevc).at(0);
        EXPECT_EQ(unit.nal_unit_type, header >> 9);
        EXPECT_EQ(unit.nuh_layer_id, header >> 3 & 63);
        EXPECT_EQ(unit.nuh_temporal_id_plus1, header & 7);
        EXPECT_EQ(unit.nal_ref_idc, 0U);
        EXPECT_EQ(unit.headerExtension, 0U);
        EXPECT_EQ(unit.headerBytes, 2U);
        EXPECT_EQ(unit.faults.has(UnitFault::NoTemporalId), (header & 7) == 0);
        EXPECT_EQ(unit.ok(), (header & 7) != 0);
    }
    const Bytes cut = hex("000001 C2 000001 40 01 000001 40");
    EXPECT_THAT(textsOf(cut, Framing::StartCodes, Codec::Hevc),
                ElementsAre("3: C2 (the unit ends within its header; forbidden_zero_bit is 1)", "7: 40 01",
                            "12: 40 (the unit ends within its header)"));
    EXPECT_EQ(unitsOf(bytesOf(cut), Framing::StartCodes, Codec::Hevc)[2].nal_unit_type, 32U);
}

// --- The iterator ---

TEST(NalUnits, iteratorsGoTheirOwnWays) {
    const Bytes buffer = hex("000001 65 000001 41 000001 42 000001 43");
    const NalUnits units(bytesOf(buffer), Framing::StartCodes, Codec::Avc);
    NalUnits::Iterator first = units.begin();
    const NalUnits::Iterator before = first++;
    NalUnits::Iterator other = first;
    ++other;
    ++other;
    EXPECT_EQ(before->nal_unit_type, 5U);
    EXPECT_EQ((*first).bytes[0], 0x41);
    EXPECT_EQ(other->bytes[0], 0x43);
    ++other;
    EXPECT_TRUE(other == units.end());
    EXPECT_TRUE(first != units.end());
    ++first;
    EXPECT_EQ(first->bytes[0], 0x42);
}

// Units further apart than one search goes, and more of them than one search lists.
TEST(NalUnits, farApartAndCloseTogether) {
    Bytes buffer;
    for (const size_t size :
         {size_t{1} << 20, size_t{1}, size_t{262144 - 4}, size_t{262144 - 3}, size_t{300000}}) {
        buffer.insert(buffer.end(), {0, 0, 1, 0x41});
        buffer.insert(buffer.end(), size, 0xAA);
    }
    for (int i = 0; i < 200; ++i) {
        buffer.insert(buffer.end(), {0, 0, 1, 0x42});
    }
    const std::vector<SlowUnit> expected = slowUnits(buffer, Framing::StartCodes, Codec::Avc);
    const std::vector<NalUnit> units = unitsOf(bytesOf(buffer), Framing::StartCodes);
    ASSERT_EQ(units.size(), 205U);
    ASSERT_EQ(units.size(), expected.size());
    for (size_t i = 0; i < units.size(); ++i) {
        EXPECT_EQ(partsOf(units[i]), textOf(expected[i]));
    }
}

// --- Against slow references ---

constexpr Framing kFramings[] = {Framing::StartCodes, Framing::Lengths1, Framing::Lengths2, Framing::Lengths3,
                                 Framing::Lengths4};

// The buffer in place: between inaccessible pages, or not.
void expectAsSlow(const Bytes& buffer, qv::Bytes place, Framing framing, Codec codec) {
    const std::vector<SlowUnit> expected = slowUnits(buffer, framing, codec);
    size_t count = 0;
    size_t end = 0;
    for (const NalUnit& unit : NalUnits(place, framing, codec)) {
        ASSERT_LT(count, expected.size());
        const SlowUnit& slow = expected[count++];
        const bool isSame = unit.leadingBytes == slow.leadingBytes && unit.prefixSize == slow.prefixSize &&
                            unit.offset == slow.offset && unit.bytes.size == slow.size &&
                            unit.trailingZeroBytes == slow.trailingZeroBytes && unit.faults == slow.faults &&
                            unit.bytes.data == place.data + unit.offset && unit.begin() == end;
        ASSERT_TRUE(isSame) << hexOf(place) << " with " << qv::textOf(framing) << ": " << partsOf(unit)
                            << " instead of " << textOf(slow);
        end = unit.end();
    }
    ASSERT_EQ(count, expected.size()) << hexOf(place);
    ASSERT_EQ(end, place.size);
}

// What the player's library finds of a byte stream: the same units, where none of them is empty, with their
// trailing_zero_8bits.
void expectAsPlayersLibrary(const Bytes& buffer) {
    NalIndexList reference;
    if (referenceAnnexBScan(buffer, reference) != 0) {
        return;
    }
    NalIndexList units;
    for (const NalUnit& unit : NalUnits(bytesOf(buffer), Framing::StartCodes, Codec::Avc)) {
        if (unit.bytes.empty()) {
            return;
        }
        units.emplace_back(unit.offset, unit.bytes.size + unit.trailingZeroBytes);
    }
    ASSERT_EQ(units, reference) << hexOf(bytesOf(buffer));
}

// Every buffer of up to seven bytes over an alphabet of start codes, short lengths and emulation prevention;
// of up to nine in long runs.
TEST(NalUnits, everySmallBuffer) {
    constexpr uint8_t kAlphabet[] = {0x00, 0x01, 0x03, 0x65, 0x80};
    const size_t most = std::getenv("QVNALU_TEST_ROUNDS") != nullptr ? 9 : 7;
    size_t buffers = 1;
    for (size_t size = 0; size <= most; ++size, buffers *= 5) {
        Bytes buffer(size);
        for (size_t number = 0; number < buffers; ++number) {
            size_t rest = number;
            for (uint8_t& byte : buffer) {
                byte = kAlphabet[rest % 5];
                rest /= 5;
            }
            for (const Framing framing : kFramings) {
                expectAsSlow(buffer, bytesOf(buffer), framing, number % 2 == 0 ? Codec::Avc : Codec::Hevc);
            }
            expectAsPlayersLibrary(buffer);
            if (HasFatalFailure()) {
                return;
            }
        }
    }
}

// Every buffer of nine bytes that begins with a start code or ends with one, and of eight and nine bytes of
// zeros, ones and a third value.
TEST(NalUnits, everyBufferOfNineBytesWithAStartCode) {
    constexpr uint8_t kAlphabet[] = {0x00, 0x01, 0x03, 0x65, 0x80};
    for (size_t number = 0; number < 15625; ++number) {
        Bytes rest(6);
        size_t digits = number;
        for (uint8_t& byte : rest) {
            byte = kAlphabet[digits % 5];
            digits /= 5;
        }
        Bytes first = hex("000001");
        first.insert(first.end(), rest.begin(), rest.end());
        Bytes last = rest;
        last.insert(last.end(), {0, 0, 1});
        Bytes middle(rest.begin(), rest.begin() + 3);
        middle.insert(middle.end(), {0, 0, 1});
        middle.insert(middle.end(), rest.begin() + 3, rest.end());
        for (const Bytes& buffer : {first, last, middle}) {
            expectAsSlow(buffer, bytesOf(buffer), Framing::StartCodes, Codec::Avc);
            expectAsPlayersLibrary(buffer);
        }
        ASSERT_FALSE(HasFailure());
    }
    for (size_t number = 0; number < 19683; ++number) {
        Bytes buffer(number % 2 == 0 ? 9 : 8);
        size_t digits = number;
        for (uint8_t& byte : buffer) {
            byte = kAlphabet[digits % 3];
            digits /= 3;
        }
        expectAsSlow(buffer, bytesOf(buffer), Framing::StartCodes, Codec::Hevc);
        expectAsPlayersLibrary(buffer);
        ASSERT_FALSE(HasFailure());
    }
}

using Generator = std::mt19937_64;

Bytes randomBuffer(Generator& random, size_t most) {
    static constexpr uint8_t kBytes[] = {0x00, 0x00, 0x00, 0x01, 0x01, 0x02, 0x03, 0x65, 0x80};
    Bytes buffer(random() % most);
    const uint64_t zeros = random() % 12;
    for (uint8_t& byte : buffer) {
        byte = random() % 12 < zeros ? kBytes[random() % sizeof kBytes] : static_cast<uint8_t>(random());
    }
    return buffer;
}

// Longer than the vectors of the search, between inaccessible pages.
TEST(NalUnits, randomBuffersBetweenGuardPages) {
    Generator random(5);
    GuardedBuffer guarded(8192);
    for (int round = 0; round < 6000; ++round) {
        const Bytes buffer = randomBuffer(random, round % 10 == 0 ? 6000 : 300);
        const unsigned char* const place =
            round % 2 == 0 ? guarded.placeAtEnd(buffer) : guarded.placeAtBegin(buffer);
        for (const Framing framing : kFramings) {
            expectAsSlow(buffer, {place, buffer.size()}, framing, round % 3 == 0 ? Codec::Hevc : Codec::Avc);
        }
        expectAsPlayersLibrary(buffer);
        ASSERT_FALSE(HasFailure());
    }
}

TEST(NalUnits, nothingIsAllocated) {
    Generator random(6);
    const Bytes buffer = randomBuffer(random, 60000);
    const AllocationFault allocations(Allocator::New, 0);
    const AllocationFault blocks(Allocator::Malloc, 0);
    size_t bytes = 0;
    for (const Framing framing : kFramings) {
        for (const NalUnit& unit : NalUnits(bytesOf(buffer), framing, Codec::Avc)) {
            bytes += unit.end() - unit.begin();
        }
    }
    EXPECT_EQ(bytes, 5 * buffer.size());
    EXPECT_EQ(allocations.seen(), 0);
    EXPECT_EQ(blocks.seen(), 0);
}

}  // namespace
