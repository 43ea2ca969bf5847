// Owners of T.35 messages, and traces of their bodies.
#include "bitstream/sei/T35.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "AllocationFault.h"
#include "BitWriter.h"
#include "Hex.h"
#include "StructureChecks.h"
#include "bitstream/hevc/Unit.h"
#include "bitstream/sei/SeiMessages.h"
#include "bitstream/units/Rbsp.h"

namespace {

using namespace qv_test;
using namespace qv::sei;
using qv::Codec;
using testing::Contains;
using testing::Each;
using testing::Not;

// An SEI unit of H.265 with one message of type 4.
std::vector<uint8_t> unitOf(const std::vector<uint8_t>& payload) {
    std::vector<uint8_t> unit = hex("4E 01 04");
    unit.push_back(static_cast<uint8_t>(payload.size()));
    unit.insert(unit.end(), payload.begin(), payload.end());
    unit.push_back(0x80);
    std::vector<uint8_t> coded(qv::mostEscapedSize(unit.size()));
    coded.resize(qv::escape(bytesOf(unit), 2, coded.data(), coded.size()));
    return coded;
}

T35 ownerIn(const std::vector<uint8_t>& unit) {
    const qv::SeiMessage message = *qv::SeiMessages(bytesOf(unit), Codec::Hevc).begin();
    return t35Of(readPayload<UserDataRegistered>(message, Context(Codec::Hevc)).record);
}

struct OwnerCase {
    const char* payload;
    T35Owner owner;
    const char* code;
    uint64_t identifier;
    uint64_t bodyBits;
};

TEST(SeiT35, ownerByCountryProviderAndIdentifier) {
    const OwnerCase cases[] = {
        {"B5 0031 47413934 03 C0", T35Owner::AtscUserData, "B5:0031", 0x47413934, 16},
        {"B5 0031 47413934", T35Owner::AtscUserData, "B5:0031", 0x47413934, 0},
        {"B5 0031 47413934 08", T35Owner::St2094App10, "B5:0031", 0x4741393408, 0},
        {"B5 0031 47413934 09 80", T35Owner::St2094App10, "B5:0031", 0x4741393409, 8},
        {"B5 0031 44544731 41 F8", T35Owner::ActiveFormat, "B5:0031", 0x44544731, 16},
        {"B5 0031 03 8A", T35Owner::Scte20, "B5:0031", 0x03, 8},
        {"B5 002F 03 05", T35Owner::SatelliteUserData, "B5:002F", 0x03, 8},
        {"B5 003A 00 12", T35Owner::SlHdr, "B5:003A", 0, 16},
        {"B5 003B 00000800 37", T35Owner::DolbyVisionRpu, "B5:003B", 0x800, 8},
        {"B5 003C 0001 04", T35Owner::Hdr10Plus, "B5:003C", 1, 8},
        {"B5 0090 11", T35Owner::Smpte, "B5:0090", 0, 8},
        {"B5 5890 0001", T35Owner::AomFilmGrain, "B5:5890", 1, 0},
        {"26 0004 0005 01", T35Owner::HdrVivid, "26:0004", 5, 8},
        {"B4 5000 11 22 33", T35Owner::Lcevc, "B4:5000", 0, 24},
        // The codes of one owner in another country, with another identifier, and cut.
        {"26 0031 47413934 03", T35Owner::Unknown, "26:0031", 0, 40},
        {"B5 0004 0005 01", T35Owner::Unknown, "B5:0004", 0, 24},
        {"B5 002F 47413934 03", T35Owner::Unknown, "B5:002F", 0, 40},
        {"B5 003C 0003 04", T35Owner::Unknown, "B5:003C", 0, 24},
        {"B5 0031 474139", T35Owner::Unknown, "B5:0031", 0, 24},
        {"B5 003C 00", T35Owner::Unknown, "B5:003C", 0, 8},
        {"B5 003C", T35Owner::Unknown, "B5:003C", 0, 0},
        {"FF B5 0031 47413934 03", T35Owner::Unknown, "FFB5:0031", 0, 40},
        {"B5 00", T35Owner::Cut, "B5", 0, 8},
        {"B5", T35Owner::Cut, "B5", 0, 0},
        {"FF", T35Owner::Cut, "FF00", 0, 0},
        {"", T35Owner::Cut, "00", 0, 0},
    };
    for (const OwnerCase& one : cases) {
        SCOPED_TRACE(one.payload);
        const std::vector<uint8_t> unit = unitOf(hex(one.payload));
        const AllocationFault allocations(Allocator::New, 0);
        const T35 t35 = ownerIn(unit);
        EXPECT_EQ(allocations.seen(), 0);
        EXPECT_EQ(t35.owner, one.owner);
        EXPECT_EQ(textOf(t35.code), one.code);
        EXPECT_EQ(t35.identifier, one.identifier);
        EXPECT_EQ(t35.body.count, one.bodyBits);
    }
}

TEST(SeiT35, codesAsText) {
    EXPECT_EQ(t35CodeOf("26:0004"), (T35Code{0x26, 0, 4}));
    EXPECT_EQ(t35CodeOf("b5:3c"), (T35Code{0xB5, 0, 0x3C}));
    EXPECT_EQ(t35CodeOf("5:0"), (T35Code{5, 0, 0}));
    EXPECT_EQ(t35CodeOf("FF12:aBcD"), (T35Code{0xFF, 0x12, 0xABCD}));
    EXPECT_EQ(t35CodeOf("b4"), (T35Code{0xB4, 0, std::nullopt}));
    EXPECT_NE(t35CodeOf("FF12:ABCD"), (T35Code{0xFF, 0x13, 0xABCD}));
    for (const char* text : {"", ":", ":4", "26:", "26:00040", "26 0004", "2G:0004", "26:000x", "FF",
                             "FF:0004", "126", "126:0004", "FF123:0004", "26-0004", " 26:0004", "26:4:4"}) {
        EXPECT_FALSE(t35CodeOf(text).has_value()) << text;
    }
    for (const T35OwnerName& row : kT35Owners) {
        EXPECT_EQ(t35CodeOf(textOf(row.code)), row.code);
    }
    EXPECT_EQ(textOf(T35Code{0xFF, 1, std::nullopt}), "FF01");
}

TEST(SeiT35, aCodeWithoutProviderCoversACountry) {
    const T35Code code = {0xB5, 0, 0x31};
    EXPECT_TRUE((T35Code{0xB5, 0, 0x31}).covers(code));
    EXPECT_TRUE((T35Code{0xB5, 0, std::nullopt}).covers(code));
    EXPECT_FALSE((T35Code{0xB5, 0, 0x3C}).covers(code));
    EXPECT_FALSE((T35Code{0x26, 0, std::nullopt}).covers(code));
    EXPECT_FALSE(code.covers({0xB5, 0, std::nullopt}));
}

TEST(SeiT35, everyKnownOwnerHasAName) {
    for (auto owner = static_cast<uint8_t>(T35Owner::St2094App10);
         owner <= static_cast<uint8_t>(T35Owner::Lcevc); ++owner) {
        const T35OwnerName* const name = t35OwnerNameOf(static_cast<T35Owner>(owner));
        ASSERT_NE(name, nullptr) << int{owner};
        EXPECT_STRNE(name->name, "");
        EXPECT_STRNE(name->source, "");
    }
    EXPECT_EQ(t35OwnerNameOf(T35Owner::Unknown), nullptr);
    EXPECT_EQ(t35OwnerNameOf(T35Owner::Cut), nullptr);
}

std::vector<std::string> namesIn(const std::vector<uint8_t>& unit) {
    RecordingVisitor visitor;
    const qv::UnitTrace trace = qv::hevc::traceUnit(bytesOf(unit), qv::hevc::ParameterSets(), visitor);
    EXPECT_TRUE(trace.ok()) << qv::textOf(trace.fault);
    EXPECT_EQ(visitor.depth, 0);
    uint64_t bits = 0;
    std::vector<std::string> names;
    for (const qv::TracedElement& element : visitor.elements) {
        EXPECT_EQ(element.firstBit, bits);
        bits += element.width;
        names.emplace_back(element.element.name);
    }
    EXPECT_EQ(bits, 8 * qv::unescapedSize(bytesOf(unit), 2));
    return names;
}

// 26 0004 0005, system_start_code, four codes of 12 bits, two flags, and zero bits.
constexpr const char* kShortestVivid = "26 0004 0005 01 00A 384 12C BB8 00";

TEST(SeiT35, aTraceEntersABodyThatIsKnown) {
    const std::vector<std::string> names = namesIn(unitOf(hex(kShortestVivid)));
    EXPECT_THAT(names, Contains("itu_t_t35_terminal_provider_oriented_code"));
    EXPECT_THAT(names, Contains("maximum_maxrgb_pq"));
    EXPECT_THAT(names, Contains("padding"));
    EXPECT_THAT(names, Not(Contains("itu_t_t35_payload_byte")));
}

// A body with a fault, or of an owner without a record, is no fault of the message.
TEST(SeiT35, aTraceOfAnotherBodyHasItsBytes) {
    const char* const payloads[] = {
        "26 0004 0005 02 00A 384 12C BB8 00",  // system_start_code 2
        "26 0004 0005 01 00A 384",             // cut
        "26 0004 0005",
        "B5 003C 0001 05 01 40",  // application_identifier 5
        "B5 003A 00 12",
        "B5 00",
        "B5",
    };
    for (const char* const payload : payloads) {
        SCOPED_TRACE(payload);
        const std::vector<std::string> names = namesIn(unitOf(hex(payload)));
        EXPECT_THAT(names, Not(Contains("itu_t_t35_terminal_provider_code")));
        EXPECT_EQ(std::count(names.begin(), names.end(), "itu_t_t35_payload_byte"),
                  static_cast<std::ptrdiff_t>(hex(payload).size() - 1));
    }
}

TEST(SeiT35, aUnitWithSuchAMessageIsRewritten) {
    for (const char* const payload : {kShortestVivid, "26 0004 0005 02 000003"}) {
        const std::vector<uint8_t> unit = unitOf(hex(payload));
        std::vector<uint8_t> out;
        EXPECT_TRUE(qv::hevc::rewriteUnit(bytesOf(unit), qv::hevc::ParameterSets(), out).isRewritten);
        EXPECT_EQ(out, unit);
    }
}

}  // namespace
