// Codec strings, written and parsed.
#include "bitstream/units/CodecString.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "../support/Hex.h"
#include "../support/StructureChecks.h"
#include "AllocationFault.h"

namespace {

using namespace qv_test;
using Bytes = std::vector<uint8_t>;

// The text that is written of what was parsed, or the fault.
std::string parsed(std::string_view text) {
    const qv::ParsedCodecString parsed = qv::parseCodecString(text);
    if (!parsed.ok()) {
        EXPECT_EQ(parsed.string.index(), 0U);
        return "at " + std::to_string(parsed.fault.offset) + ": " + parsed.fault.expected;
    }
    return qv::textOf(parsed.string);
}

struct Row {
    const char* text;
    const char* result;
};

const Row kRows[] = {
    // As they are written
    {"avc1.64001f", "avc1.64001f"},
    {"avc3.42c00d", "avc3.42c00d"},
    {"avc1.000000", "avc1.000000"},
    {"avc1.ffffff", "avc1.ffffff"},
    {"mvc1.80000c", "mvc1.80000c"},
    {"svc1.56401e", "svc1.56401e"},
    {"hvc1.1.6.L93.B0", "hvc1.1.6.L93.B0"},
    {"hvc1.1.6.L93", "hvc1.1.6.L93"},
    {"hvc1.2.4.L153.B0", "hvc1.2.4.L153.B0"},
    {"hev1.2.20000000.H150.B0.1.2.3.4.FF", "hev1.2.20000000.H150.B0.1.2.3.4.FF"},
    {"hvc1.A4.41.H120.B0.23", "hvc1.A4.41.H120.B0.23"},
    {"hvc1.C31.FFFFFFFF.L255.0.0.0.0.0.1", "hvc1.C31.FFFFFFFF.L255.0.0.0.0.0.1"},
    {"hvc1.0.0.L0", "hvc1.0.0.L0"},
    {"lhv1.6.40.L93.B0", "lhv1.6.40.L93.B0"},
    {"dvh1.05.06", "dvh1.05.06"},
    {"dvhe.08.09", "dvhe.08.09"},
    {"dva1.09.05", "dva1.09.05"},
    {"dvav.127.63", "dvav.127.63"},
    // In other forms
    {"AVC1.64001F", "avc1.64001f"},
    {"Avc3.42C00d", "avc3.42c00d"},
    {"avc1.66.30", "avc1.42001e"},
    {"avc1.77.30", "avc1.4d001e"},
    {" avc1.64001f ", "avc1.64001f"},
    {"HVC1.2.4.l153.b0", "hvc1.2.4.L153.B0"},
    {"hev1.a1.6.h93", "hev1.A1.6.H93"},
    {"hvc1.1.6.L93.0", "hvc1.1.6.L93"},
    {"hvc1.1.6.L93.B0.0.0.0.0.0", "hvc1.1.6.L93.B0"},
    {"hvc1.1.6.L93.90.00", "hvc1.1.6.L93.90"},
    {"hvc1.01.00000006.L093.0B", "hvc1.1.6.L93.B"},
    {"dvh1.5.6", "dvh1.05.06"},
    // Wrong
    {"", "at 0: a sample entry of H.264 or H.265"},
    {"avc", "at 0: a sample entry of H.264 or H.265"},
    {"mp4a.40.2", "at 0: a sample entry of H.264 or H.265"},
    {"av01.0.04M.08", "at 0: a sample entry of H.264 or H.265"},
    {"avc1", "at 4: a point after the sample entry"},
    {"avc12", "at 4: a point after the sample entry"},
    {"avc1.", "at 5: profile_idc in two hexadecimal digits"},
    {"avc1.6", "at 5: profile_idc in two hexadecimal digits"},
    {"avc1.64", "at 7: constraint flags in two hexadecimal digits"},
    {"avc1.6400", "at 9: level_idc in two hexadecimal digits"},
    {"avc1.64001g", "at 9: level_idc in two hexadecimal digits"},
    {"avc1.64001f0", "at 11: the end of the string"},
    {"avc1.64001f,mp4a.40.2", "at 5: profile_idc, 0 to 255"},
    {"avc1.256.30", "at 5: profile_idc, 0 to 255"},
    {"avc1..30", "at 5: profile_idc, 0 to 255"},
    {"avc1.66.", "at 8: level_idc, 0 to 255"},
    {"avc1.66.999", "at 8: level_idc, 0 to 255"},
    {"avc1.66.30.1", "at 10: the end of the string"},
    {"hvc1", "at 4: a point after the sample entry"},
    {"hvc1.", "at 5: general_profile_idc, 0 to 31"},
    {"hvc1.D1.6.L93", "at 5: general_profile_idc, 0 to 31"},
    {"hvc1.32.6.L93", "at 5: general_profile_idc, 0 to 31"},
    {"hvc1.1", "at 6: a point before the compatibility flags"},
    {"hvc1.1.", "at 7: 32 compatibility flags in hexadecimal"},
    {"hvc1.1.1FFFFFFFF.L93", "at 7: 32 compatibility flags in hexadecimal"},
    {"hvc1.1.6", "at 8: a point before the tier"},
    {"hvc1.1.6.93", "at 9: a tier: L or H"},
    {"hvc1.1.6.M93", "at 9: a tier: L or H"},
    {"hvc1.1.6.L", "at 10: general_level_idc, 0 to 255"},
    {"hvc1.1.6.L256", "at 10: general_level_idc, 0 to 255"},
    {"hvc1.1.6.L93x", "at 12: a point before a constraint byte"},
    {"hvc1.1.6.L93.", "at 13: a constraint byte in hexadecimal"},
    {"hvc1.1.6.L93.100", "at 13: a constraint byte in hexadecimal"},
    {"hvc1.1.6.L93.B0.0.0.0.0.0.0", "at 25: the end of the string"},
    {"dvh1.05", "at 7: a point before dv_level"},
    {"dvh1.128.06", "at 5: dv_profile, 0 to 127"},
    {"dvh1.05.64", "at 8: dv_level, 0 to 63"},
    {"hvc1.1.6.L99999999999999999999999", "at 10: general_level_idc, 0 to 255"},
};

TEST(CodecString, parsing) {
    for (const Row& row : kRows) {
        EXPECT_EQ(parsed(row.text), row.result) << row.text;
    }
}

TEST(CodecString, fieldsOfAvc) {
    const auto string = std::get<qv::avc::CodecString>(qv::parseCodecString("AVC1.42C01E").string);
    EXPECT_EQ(string.sampleEntry.text(), "avc1");
    EXPECT_EQ(string.profile_idc, 0x42U);
    EXPECT_EQ(string.constraint_set_flags, 0xC0U);
    EXPECT_EQ(string.level_idc, 0x1EU);
}

// The compatibility flags are written in reverse order: flag 0 is the least significant bit.
TEST(CodecString, fieldsOfHevc) {
    const auto string = std::get<qv::hevc::CodecString>(qv::parseCodecString("hev1.B2.6.H153.B0.0.1").string);
    EXPECT_EQ(string.sampleEntry.text(), "hev1");
    EXPECT_EQ(string.general_profile_space, 2U);
    EXPECT_EQ(string.general_profile_idc, 2U);
    EXPECT_EQ(string.general_profile_compatibility_flags, 0x60000000U);
    EXPECT_TRUE(string.general_tier_flag);
    EXPECT_EQ(string.general_level_idc, 153U);
    EXPECT_EQ(string.general_constraint_indicator_flags, 0xB00001000000U);
}

TEST(CodecString, fieldsOfDolbyVision) {
    const auto string = std::get<qv::DolbyVisionCodecString>(qv::parseCodecString("dvhe.05.06").string);
    EXPECT_EQ(string.sampleEntry.text(), "dvhe");
    EXPECT_EQ(string.dv_profile, 5U);
    EXPECT_EQ(string.dv_level, 6U);
}

TEST(CodecString, codec) {
    EXPECT_EQ(qv::codecOf(qv::parseCodecString("avc1.64001f").string), qv::Codec::Avc);
    EXPECT_EQ(qv::codecOf(qv::parseCodecString("hvc1.1.6.L93").string), qv::Codec::Hevc);
    EXPECT_EQ(qv::codecOf(qv::parseCodecString("dvh1.05.06").string), qv::Codec::Hevc);
    EXPECT_EQ(qv::codecOf(qv::parseCodecString("dvhe.05.06").string), qv::Codec::Hevc);
    EXPECT_EQ(qv::codecOf(qv::parseCodecString("dva1.05.06").string), qv::Codec::Avc);
    EXPECT_EQ(qv::codecOf(qv::parseCodecString("dvav.05.06").string), qv::Codec::Avc);
    EXPECT_EQ(qv::textOf(qv::CodecString()), "");
}

// --- Of records and parameter sets ---

TEST(CodecString, ofConfigurationRecords) {
    const Bytes avcC = hex("01 64 00 1F FF E0 00");
    const Bytes hvcC = hex("01 22 20000000 B00000000000 99 F000 FC FD FA FA 0000 0F 00");
    EXPECT_EQ(qv::avc::textOf(qv::avc::codecStringOf(qv::avc::readConfigurationRecord(bytesOf(avcC)).record)),
              "avc1.64001f");
    EXPECT_EQ(qv::avc::textOf(
                  qv::avc::codecStringOf(qv::avc::readConfigurationRecord(bytesOf(avcC)).record, "avc3")),
              "avc3.64001f");
    EXPECT_EQ(
        qv::hevc::textOf(qv::hevc::codecStringOf(qv::hevc::readConfigurationRecord(bytesOf(hvcC)).record)),
        "hvc1.2.4.H153.B0");
    EXPECT_EQ(qv::hevc::textOf(
                  qv::hevc::codecStringOf(qv::hevc::readConfigurationRecord(bytesOf(hvcC)).record, "hev1")),
              "hev1.2.4.H153.B0");
}

TEST(CodecString, ofParameterSets) {
    const Bytes avc = hex("67 42 C0 0D DA 0F 0A 69 A8 10 10 10");
    const Bytes hevc = hex("42 01 01 01 60 00 00 03 00 90 00 00 03 00 00 03 00 3C A0 0A 08 0B 9F 79 65 80");
    EXPECT_EQ(qv::avc::textOf(qv::avc::codecStringOfSps(bytesOf(avc)).record), "avc1.42c00d");
    EXPECT_EQ(qv::avc::textOf(qv::avc::codecStringOfSps(bytesOf(avc), "avc3").record), "avc3.42c00d");
    EXPECT_EQ(qv::hevc::textOf(qv::hevc::codecStringOfSps(bytesOf(hevc)).record), "hvc1.1.6.L60.90");
    EXPECT_EQ(qv::hevc::textOf(qv::hevc::codecStringOfSps(bytesOf(hevc), "hev1").record), "hev1.1.6.L60.90");
    EXPECT_EQ(qv::textOf(qv::avc::codecStringOfSps(bytesOf(avc).first(4)).fault.element), "level_idc");
    EXPECT_EQ(qv::textOf(qv::hevc::codecStringOfSps(bytesOf(hevc).first(12)).fault.element),
              "general_constraint_indicator_flags");
    EXPECT_EQ(qv::avc::codecStringOfSps(bytesOf(hex("68 CE 0F C8"))).fault.kind, qv::FaultKind::OtherUnit);
    EXPECT_EQ(qv::hevc::codecStringOfSps(bytesOf(hex("44 01 C1 72 B4 62 40"))).fault.kind,
              qv::FaultKind::OtherUnit);
}

// --- Every value ---

TEST(CodecString, randomStringsComeBack) {
    std::mt19937_64 random(1);
    for (int round = 0; round < 5000; ++round) {
        const qv::avc::CodecString avc = {qv::sampleEntryOf("avc1"), static_cast<uint32_t>(random() & 255),
                                          static_cast<uint32_t>(random() & 255),
                                          static_cast<uint32_t>(random() & 255)};
        const auto again = std::get<qv::avc::CodecString>(qv::parseCodecString(qv::avc::textOf(avc)).string);
        ASSERT_EQ(again.profile_idc, avc.profile_idc);
        ASSERT_EQ(again.constraint_set_flags, avc.constraint_set_flags);
        ASSERT_EQ(again.level_idc, avc.level_idc);

        const uint64_t flags = random() >> 16 & ~uint64_t{0} << 8 * (random() % 7);
        const qv::hevc::CodecString hevc = {qv::sampleEntryOf("hvc1"),
                                            static_cast<uint32_t>(random() & 3),
                                            static_cast<uint32_t>(random() & 31),
                                            static_cast<uint32_t>(random() >> random() % 40),
                                            (random() & 1) != 0,
                                            static_cast<uint32_t>(random() & 255),
                                            flags & 0xFFFFFFFFFFFF};
        const auto back =
            std::get<qv::hevc::CodecString>(qv::parseCodecString(qv::hevc::textOf(hevc)).string);
        ASSERT_EQ(back.general_profile_space, hevc.general_profile_space);
        ASSERT_EQ(back.general_profile_idc, hevc.general_profile_idc);
        ASSERT_EQ(back.general_profile_compatibility_flags, hevc.general_profile_compatibility_flags);
        ASSERT_EQ(back.general_tier_flag, hevc.general_tier_flag);
        ASSERT_EQ(back.general_level_idc, hevc.general_level_idc);
        ASSERT_EQ(back.general_constraint_indicator_flags, hevc.general_constraint_indicator_flags);
    }
}

// Strings cut and changed anywhere end in an answer.
TEST(CodecString, damagedStrings) {
    std::mt19937_64 random(2);
    for (const Row& row : kRows) {
        const std::string text = row.text;
        for (size_t size = 0; size <= text.size(); ++size) {
            std::string changed = text.substr(0, size);
            for (int change = 0; change < 4 && size > 0; ++change) {
                changed[random() % size] = static_cast<char>(random());
                const qv::ParsedCodecString parsed = qv::parseCodecString(changed);
                ASSERT_EQ(parsed.ok(), parsed.string.index() != 0);
            }
        }
    }
}

TEST(CodecString, parsingAllocatesNothing) {
    const AllocationFault allocations(Allocator::New, 0);
    const AllocationFault blocks(Allocator::Malloc, 0);
    EXPECT_TRUE(qv::parseCodecString("hev1.2.20000000.H150.B0.1.2.3.4.FF").ok());
    EXPECT_EQ(allocations.seen(), 0);
    EXPECT_EQ(blocks.seen(), 0);
}

}  // namespace
