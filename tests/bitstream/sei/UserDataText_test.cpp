// Encoder settings and time stamps in user_data_unregistered().
#include "bitstream/sei/UserDataText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "AllocationFault.h"
#include "CodedUnit.h"
#include "Hex.h"
#include "bitstream/sei/SeiMessages.h"
#include "bitstream/units/Rbsp.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using testing::ElementsAre;

constexpr const char* kX264 = "DC45E9BD E6D948B7 962CD820 D923EEEF";
constexpr const char* kMicroseconds = "4D495350 6D69 6372 6F73 656374696D65";
constexpr const char* kHevcMicroseconds = "A8687DD4 D759 3758 A5CE F0338B6545F1";
constexpr const char* kNanoseconds = "CF848278 EE23 306C 9265 E8FEF22FB8B8";

// An SEI unit of H.264 with one message of type 5.
std::vector<uint8_t> unitOf(const std::vector<uint8_t>& payload) {
    std::vector<uint8_t> rbsp = {5};
    size_t size = payload.size();
    for (; size >= 0xFF; size -= 0xFF) {
        rbsp.push_back(0xFF);
    }
    rbsp.push_back(static_cast<uint8_t>(size));
    rbsp.insert(rbsp.end(), payload.begin(), payload.end());
    rbsp.push_back(0x80);
    return coded({0x06}, rbsp);
}

UserDataUnregistered userDataIn(const std::vector<uint8_t>& unit) {
    const qv::SeiMessage message = *qv::SeiMessages(bytesOf(unit), Codec::Avc).begin();
    const auto read = readPayload<UserDataUnregistered>(message, Context(Codec::Avc));
    EXPECT_TRUE(read.ok()) << qv::textOf(read.fault);
    return read.record;
}

// --- Owners ---

struct OwnerCase {
    const char* uuid;
    UserDataOwner owner;
    bool isText;
};

TEST(SeiUserDataText, ownerByUuid) {
    const OwnerCase cases[] = {
        {kX264, UserDataOwner::X264, true},
        {"2CA2DE09 B517 47DB BB55 A4FE7FC2FC4E", UserDataOwner::X265, true},
        {"32FE466C 9841 4269 AE35 6A91549EF3F1", UserDataOwner::Kvazaar, true},
        {"427FCC9B B892 4821 0102 030405060708", UserDataOwner::Ateme, true},
        {"FB574A60 AC92 4E68 0102 030405060708", UserDataOwner::Eavc, true},
        {"F7493EB3 D400 4796 8686 C9707B64372A", UserDataOwner::AvcIntra, false},
        {"17EE8C60 F84D 11D9 8CD6 0800200C9A66", UserDataOwner::Avchd, false},
        {kMicroseconds, UserDataOwner::MispMicroseconds, false},
        {kHevcMicroseconds, UserDataOwner::MispMicroseconds, false},
        {kNanoseconds, UserDataOwner::MispNanoseconds, false},
        {"47564ADC 5C4C 433F 94EF C5113CD143A8", UserDataOwner::VideoToolbox, false},
        {"0387F44E CD0A 4BDC A194 3AC3D49B171F", UserDataOwner::OlderApple, false},
        {"BE7ACFCB 97A9 42E8 9C71 999491E3AFAC", UserDataOwner::Xmp, true},
    };
    for (const OwnerCase& one : cases) {
        SCOPED_TRACE(one.uuid);
        const std::vector<uint8_t> unit = unitOf(hex(one.uuid));
        const UserDataOwnerName* const row = userDataOwnerOf(userDataIn(unit));
        ASSERT_NE(row, nullptr);
        EXPECT_EQ(row->owner, one.owner);
        EXPECT_EQ(row->isText, one.isText);
        EXPECT_STRNE(row->name, "");
        EXPECT_STRNE(row->source, "");
        std::vector<uint8_t> other = hex(one.uuid);
        other[0] ^= 1U;
        EXPECT_EQ(userDataOwnerOf(userDataIn(unitOf(other))), nullptr);
    }
}

// --- Bytes ---

std::vector<uint8_t> copied(const qv::CodedBits& bits, size_t capacity) {
    std::vector<uint8_t> out(capacity + 1, 0xEE);
    const size_t size = copyBytes(bits, out.data(), capacity);
    EXPECT_EQ(out.back(), 0xEE);
    out.resize(std::min(size, capacity));
    return out;
}

TEST(SeiUserDataText, bytesWithoutEmulationPrevention) {
    std::mt19937_64 random(1);
    for (int round = 0; round < 2000; ++round) {
        SCOPED_TRACE(round);
        std::vector<uint8_t> payload = hex(kX264);
        for (uint64_t n = random() % 40; n > 0; --n) {
            payload.push_back(static_cast<uint8_t>(random() % 5 == 0 ? random() : random() % 4));
        }
        const std::vector<uint8_t> unit = unitOf(payload);
        const UserDataUnregistered message = userDataIn(unit);
        const std::vector<uint8_t> expected(payload.begin() + 16, payload.end());
        ASSERT_EQ(qv::sei::bytesOf(message.user_data_payload_byte), expected);
        const size_t capacity = random() % (expected.size() + 3);
        ASSERT_EQ(copied(message.user_data_payload_byte, capacity),
                  std::vector<uint8_t>(
                      expected.begin(),
                      expected.begin() + static_cast<std::ptrdiff_t>(std::min(capacity, expected.size()))));
    }
}

TEST(SeiUserDataText, bitsThatAreNoWholeBytes) {
    const std::vector<uint8_t> unit = hex("A5 00 00 03 01 F0");
    qv::CodedBits bits;
    bits.unit = bytesOf(unit);
    bits.byte = 0;
    bits.bitOfByte = 4;
    bits.firstBit = 4;
    bits.count = 4 + 16 + 8 + 3;
    // 0101 0000 0000 0000 0000 0000 0001 111: 50 00 00 1E
    EXPECT_EQ(qv::sei::bytesOf(bits), hex("50 00 00 1E"));
    EXPECT_EQ(copied(bits, 2), hex("50 00"));
    EXPECT_TRUE(qv::sei::bytesOf(qv::CodedBits()).empty());
}

// --- Settings ---

std::vector<std::string> settingsOf(std::string_view text) {
    std::vector<std::string> settings;
    for (const EncoderSetting& setting : EncoderText(text)) {
        settings.push_back(std::string(setting.key) + (setting.hasValue ? "=" : "") +
                           std::string(setting.value));
    }
    return settings;
}

constexpr std::string_view kX264Text =
    "x264 - core 164 r3095 baee400 - H.264/MPEG-4 AVC codec - Copyleft 2003-2022 - "
    "http://www.videolan.org/x264.html - options: cabac=1 deblock=1:0:0 analyse=0x1:0x111 qcomp=0.60";

constexpr std::string_view kX265Text =
    "x265 (build 199) - 3.5+1-f0c1022b6:[Linux][GCC 12.2.0][64 bit] 8bit+10bit+12bit - H.265/HEVC codec - "
    "options: cpuid=1111039 wpp no-pmode log-level=2 input-res=64x64 hdr10-opt= a==b";

TEST(SeiUserDataText, settingsOfX264) {
    const EncoderText text(kX264Text);
    EXPECT_EQ(text.encoder(), "x264");
    EXPECT_EQ(text.version(), "core 164 r3095 baee400");
    EXPECT_THAT(settingsOf(kX264Text),
                ElementsAre("cabac=1", "deblock=1:0:0", "analyse=0x1:0x111", "qcomp=0.60"));
    EXPECT_EQ(settingOf(text, "qcomp"), "0.60");
    EXPECT_EQ(settingOf(text, "comp"), std::nullopt);
}

TEST(SeiUserDataText, settingsOfX265) {
    const EncoderText text(kX265Text);
    EXPECT_EQ(text.encoder(), "x265 (build 199)");
    EXPECT_EQ(text.version(), "3.5+1-f0c1022b6:[Linux][GCC 12.2.0][64 bit] 8bit+10bit+12bit");
    EXPECT_THAT(settingsOf(kX265Text), ElementsAre("cpuid=1111039", "wpp", "no-pmode", "log-level=2",
                                                   "input-res=64x64", "hdr10-opt=", "a==b"));
    EXPECT_EQ(settingOf(text, "wpp"), "");
    EXPECT_EQ(settingOf(text, "a"), "=b");
}

TEST(SeiUserDataText, textsThatEndEarly) {
    EXPECT_TRUE(settingsOf("").empty());
    EXPECT_TRUE(settingsOf("x264 - core 164").empty());
    EXPECT_TRUE(settingsOf("x264 - options:").empty());
    EXPECT_TRUE(settingsOf("x264 - options:   ").empty());
    EXPECT_THAT(settingsOf("options:  a=1   b  "), ElementsAre("a=1", "b"));
    EXPECT_THAT(settingsOf(std::string_view("options: a=1\0 b=2", 17)), ElementsAre("a=1"));
    EXPECT_THAT(settingsOf("options: ="), ElementsAre("="));
    EXPECT_EQ(EncoderText("x264").version(), "");
    EXPECT_EQ(EncoderText("x264 - ").version(), "");
    EXPECT_EQ(EncoderText(std::string_view("ab\0cd", 5)).text(), "ab");
}

TEST(SeiUserDataText, noAllocation) {
    const AllocationFault allocations(Allocator::New, 0);
    size_t keys = 0;
    for (const EncoderSetting& setting : EncoderText(kX265Text)) {
        keys += setting.key.size();
    }
    EXPECT_EQ(allocations.seen(), 0);
    EXPECT_GT(keys, 0U);
}

// --- Time stamps ---

std::optional<MispTimeStamp> stampIn(const std::string& payload) {
    const std::vector<uint8_t> unit = unitOf(hex(payload));
    return mispTimeStampOf(userDataIn(unit));
}

// 2009-02-13 23:31:30.123456 UTC, without leap seconds, is 1234567890123456 µs: 0x000462D53C8ABAC0.
TEST(SeiUserDataText, timeStamps) {
    const char* const time = " 1F 0004 FF 62D5 FF 3C8A FF BAC0";
    for (const char* const uuid : {kMicroseconds, kHevcMicroseconds, kNanoseconds}) {
        const auto stamp = stampIn(std::string(uuid) + time);
        ASSERT_TRUE(stamp.has_value()) << uuid;
        EXPECT_EQ(stamp->time, 1234567890123456U);
        EXPECT_EQ(stamp->time_stamp_status, 0x1FU);
        EXPECT_EQ(stamp->isNanoseconds, uuid == kNanoseconds);
        EXPECT_TRUE(stamp->isLocked());
        EXPECT_FALSE(stamp->isDiscontinuous());
        EXPECT_FALSE(stamp->isReverse());
    }
    const auto lost = stampIn(std::string(kMicroseconds) + " FF 0000 FF 0000 FF 0000 FF 0001");
    ASSERT_TRUE(lost.has_value());
    EXPECT_EQ(lost->time, 1U);
    EXPECT_FALSE(lost->isLocked());
    EXPECT_TRUE(lost->isDiscontinuous());
    EXPECT_TRUE(lost->isReverse());
}

TEST(SeiUserDataText, noTimeStamp) {
    EXPECT_FALSE(stampIn(std::string(kX264) + " 1F 0004 FF 62D5 FF 3C8A FF BAC0").has_value());
    EXPECT_FALSE(stampIn(hexOf(bytesOf(std::vector<uint8_t>(16, 7))) + " 1F").has_value());
    EXPECT_FALSE(stampIn(std::string(kMicroseconds) + " 1F 0004 FF 62D5 FF 3C8A FF BA").has_value());
    EXPECT_FALSE(stampIn(std::string(kMicroseconds) + " 1F 0004 FE 62D5 FF 3C8A FF BAC0").has_value());
    EXPECT_FALSE(stampIn(kMicroseconds).has_value());
}

}  // namespace
