// Which codec and framing bytes of unknown origin have, and what that rests on.
#include "bitstream/units/CodecProbe.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "../support/Hex.h"
#include "AllocationFault.h"
#include "BitWriter.h"
#include "GuardedBuffer.h"

namespace {

using namespace qv_test;
using qv::CodecProbe;
using qv::Framing;
using Answer = qv::CodecProbe::Answer;
using Confidence = qv::CodecProbe::Confidence;
using Units = std::vector<Bytes>;

Bytes framed(const Units& units, Framing framing = Framing::StartCodes) {
    Bytes bytes;
    for (const Bytes& unit : units) {
        if (framing == Framing::StartCodes) {
            bytes.insert(bytes.end(), {0, 0, 1});
        }
        for (size_t i = qv::lengthSizeOf(framing); i > 0; --i) {
            bytes.push_back(static_cast<uint8_t>(unit.size() >> 8 * (i - 1)));
        }
        bytes.insert(bytes.end(), unit.begin(), unit.end());
    }
    return bytes;
}

Units operator*(size_t count, const Bytes& unit) {
    return Units(count, unit);
}

Units operator+(Units units, const Units& more) {
    units.insert(units.end(), more.begin(), more.end());
    return units;
}

Answer answerTo(const Bytes& bytes) {
    return qv::probeCodec(bytesOf(bytes)).answer;
}

Answer answerTo(const Units& units) {
    return answerTo(framed(units));
}

Bytes operator+(Bytes bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
    return bytes;
}

const Bytes kJunk = hex("FF D8 12");

// As encoders wrote them.
const Bytes kAvcSps = hex("67 42 C0 0D DA 0F 0A 69 A8 10 10 10");
const Bytes kAvcPps = hex("68 CE 0F C8");
const Bytes kAvcSei = hex("06 05 03 DC 45 E9 80");
const Bytes kAvcSlice = hex("41 9A 24 6C 43 7F 80");
const Bytes kAvcIdr = hex("65 88 84 00 33 FF 80");
const Bytes kAvcDelimiter = hex("09 10");
const Bytes kHevcVps = hex("40 01 0C 01 FF FF 02 20 00 00 03 00 90 00 00 03 00 00 03 00 3C 95 98 09");
const Bytes kHevcSps = hex("42 01 01 02 20 00 00 03 00 90 00 00 03 00 00 03 00 3C A0 0A 08 0B 9F");
const Bytes kHevcPps = hex("44 01 C1 72 B4 62 40");
const Bytes kHevcIdr = hex("28 01 AF 1D 20 87 A1 09");
const Bytes kHevcTrail = hex("02 01 D0 09 7E 10");
const Bytes kHevcRpu = hex("7C 01 19 08 09 00 61 80");       // type 62
const Bytes kHevcEnhancement = hex("7E 01 02 01 D0 09 80");  // type 63

TEST(CodecProbe, parameterSets) {
    EXPECT_EQ(answerTo({kAvcSps, kAvcPps}), Answer::Avc);
    EXPECT_EQ(answerTo({kHevcVps, kHevcSps, kHevcPps}), Answer::Hevc);
    for (const Bytes& unit : {kHevcVps, kHevcSps}) {
        EXPECT_EQ(answerTo(Units{unit}), Answer::Hevc);
    }
    EXPECT_EQ(answerTo(Units{kAvcSps}), Answer::Avc);
}

TEST(CodecProbe, slicesWithoutParameterSets) {
    EXPECT_EQ(answerTo(Units{kAvcSlice}), Answer::Avc);
    EXPECT_EQ(answerTo(Units{kAvcIdr}), Answer::Avc);
    EXPECT_EQ(answerTo(Units{kHevcTrail}), Answer::Hevc);
    EXPECT_EQ(answerTo(Units{kHevcIdr}), Answer::Hevc);
}

// Each slice of it reads as an H.264 picture parameter set.
TEST(CodecProbe, hevcIdrPicturesAfterOneParameterSet) {
    EXPECT_EQ(answerTo(Units{kHevcVps} + 100 * kHevcIdr), Answer::Hevc);
}

// An H.264 SEI unit reads as an H.265 slice.
TEST(CodecProbe, slicesAndSeiWithoutParameterSets) {
    Units units;
    for (int i = 0; i < 10; ++i) {
        units = units + Units{kAvcSei, kAvcSlice};
    }
    EXPECT_EQ(answerTo(units), Answer::Avc);
}

TEST(CodecProbe, evidenceForBoth) {
    // Half of this is against H.265; for H.264 it is delimiters and data partitions.
    EXPECT_EQ(answerTo({kHevcTrail, kAvcDelimiter, kHevcTrail, kAvcDelimiter}), Answer::Avc);
    EXPECT_EQ(answerTo(4 * kHevcTrail + Units{kAvcDelimiter}), Answer::Ambiguous);
    EXPECT_EQ(answerTo({kAvcSps, kHevcTrail}), Answer::Avc);
    EXPECT_EQ(answerTo({kAvcSps, kAvcPps, kHevcVps, kHevcSps, kHevcPps}), Answer::Ambiguous);
    EXPECT_EQ(answerTo(Units{kAvcSps} + 100 * kAvcSlice + Units{kHevcVps}), Answer::Ambiguous);
}

TEST(CodecProbe, slicesAfterOtherBytesHaveToBeMany) {
    EXPECT_EQ(answerTo(kJunk + framed(7 * kAvcSlice)), Answer::Neither);
    EXPECT_EQ(answerTo(kJunk + framed(8 * kAvcSlice)), Answer::Avc);
    EXPECT_EQ(answerTo(kJunk + framed(7 * kHevcTrail)), Answer::Neither);
    EXPECT_EQ(answerTo(kJunk + framed(8 * kHevcTrail)), Answer::Hevc);
    EXPECT_EQ(answerTo(kJunk + framed({kAvcSps})), Answer::Avc);
    EXPECT_EQ(answerTo(kJunk + framed({kHevcVps})), Answer::Hevc);
}

// --- Unspecified and reserved types ---

// As in streams with two layers of dynamic range: most units are of types 62 and 63.
TEST(CodecProbe, unspecifiedHevcTypesSayNothing) {
    Units units = {kHevcVps, kHevcSps, kHevcPps};
    for (int i = 0; i < 100; ++i) {
        units = units + Units{kHevcTrail, kHevcRpu, kHevcEnhancement};
    }
    const CodecProbe probe = qv::probeCodec(bytesOf(framed(units)));
    EXPECT_EQ(probe.answer, Answer::Hevc);
    EXPECT_EQ(probe.confidence, Confidence::High);
    EXPECT_EQ(probe.hevc.silent, 200U);
    EXPECT_EQ(probe.hevc.against, 0U);
    EXPECT_EQ(answerTo(Units{kHevcTrail} + 50 * kHevcRpu), Answer::Hevc);
    EXPECT_EQ(answerTo(50 * kHevcRpu), Answer::Neither);
}

TEST(CodecProbe, everyTypeBesideSlices) {
    for (uint32_t type = 0; type < 32; ++type) {
        const Bytes unit = {static_cast<uint8_t>(type), 0x9A, 0x24, 0x6C, 0x80};
        const CodecProbe probe = qv::probeCodec(bytesOf(framed({unit})), Framing::StartCodes);
        const bool isReserved = type == 0 || (type >= 16 && type <= 18) || (type >= 21);
        if (isReserved) {
            EXPECT_EQ(probe.avc.silent, 1U) << type;
        }
        EXPECT_EQ(probe.avc.units(), 1U);
    }
    for (uint32_t type = 0; type < 64; ++type) {
        const Bytes unit = {static_cast<uint8_t>(type << 1), 0x01, 0xFF, 0xFF, 0x80};
        const CodecProbe probe = qv::probeCodec(bytesOf(framed({unit})), Framing::StartCodes);
        const bool isReserved = (type >= 10 && type <= 15) || (type >= 22 && type <= 31) || type >= 41;
        if (isReserved) {
            EXPECT_EQ(probe.hevc.silent, 1U) << type;
        }
        EXPECT_EQ(probe.hevc.units(), 1U);
    }
}

// --- What is against a codec ---

TEST(CodecProbe, implausibleAvcParameterSets) {
    const auto changed = [](size_t at, uint8_t value) {
        Bytes unit = kAvcSps;
        unit[at] = value;
        return answerTo(Units{unit});
    };
    EXPECT_EQ(changed(0, 0x67), Answer::Avc);
    EXPECT_EQ(changed(0, 0x07), Answer::Neither);  // nal_ref_idc 0
    EXPECT_EQ(changed(0, 0xE7), Answer::Neither);  // forbidden_zero_bit
    EXPECT_EQ(changed(1, 67), Answer::Neither);    // profile_idc
    EXPECT_EQ(changed(2, 0xC1), Answer::Neither);  // reserved_zero_2bits
    EXPECT_EQ(changed(3, 14), Answer::Neither);    // level_idc
    EXPECT_EQ(changed(4, 0x02), Answer::Neither);  // seq_parameter_set_id 32 and more
    EXPECT_EQ(answerTo(Units{hex("67 42 C0")}), Answer::Neither);
}

Bytes avcSlice(uint32_t nal_ref_idc, uint32_t nal_unit_type, uint32_t first_mb, uint32_t slice_type,
               uint32_t pps) {
    BitWriter bits;
    bits.u(1, "forbidden_zero_bit", 0).u(2, "nal_ref_idc", nal_ref_idc).u(5, "nal_unit_type", nal_unit_type);
    bits.ue("first_mb_in_slice", first_mb).ue("slice_type", slice_type).ue("pic_parameter_set_id", pps);
    return bits.u(16, "rest", 0x5A5A).trailingBits().bytes();
}

TEST(CodecProbe, implausibleAvcSlices) {
    EXPECT_EQ(answerTo(Units{avcSlice(1, 1, 0, 9, 0)}), Answer::Avc);
    EXPECT_EQ(answerTo(Units{avcSlice(1, 1, 0, 10, 0)}), Answer::Neither);
    EXPECT_EQ(answerTo(Units{avcSlice(1, 1, 0, 0, 255)}), Answer::Avc);
    EXPECT_EQ(answerTo(Units{avcSlice(1, 1, 0, 0, 256)}), Answer::Neither);
    EXPECT_EQ(answerTo(Units{avcSlice(1, 1, 139263, 0, 0)}), Answer::Avc);
    EXPECT_EQ(answerTo(Units{avcSlice(1, 1, 139264, 0, 0)}), Answer::Neither);
    EXPECT_EQ(answerTo(Units{avcSlice(1, 5, 0, 7, 0)}), Answer::Avc);
    EXPECT_EQ(answerTo(Units{avcSlice(1, 5, 0, 5, 0)}), Answer::Neither);  // P
    EXPECT_EQ(answerTo(Units{avcSlice(0, 5, 0, 7, 0)}), Answer::Neither);
}

TEST(CodecProbe, implausibleAvcUnits) {
    for (const char* const unit :
         {"26 05 80", "2A", "2B", "2C FF 80", "28 00 00 00 80", "29 10", "09 11", "09 50 80"}) {
        EXPECT_EQ(qv::probeCodec(bytesOf(framed({hex(unit)})), Framing::StartCodes).avc.against, 1U) << unit;
    }
    for (const char* const unit :
         {"06 05 80", "0A", "0B", "0C FF 80", "68 CE 0F C8", "6E 40 00 07 80", "6E"}) {
        EXPECT_EQ(qv::probeCodec(bytesOf(framed({hex(unit)})), Framing::StartCodes).avc.silent, 1U) << unit;
    }
}

TEST(CodecProbe, implausibleHevcUnits) {
    const auto changed = [](Bytes unit, size_t at, uint8_t value) {
        unit[at] = value;
        return answerTo(Units{unit});
    };
    EXPECT_EQ(changed(kHevcVps, 1, 0x00), Answer::Neither);  // nuh_temporal_id_plus1 0
    EXPECT_EQ(changed(kHevcVps, 1, 0x02), Answer::Neither);  // TemporalId 1
    EXPECT_EQ(changed(kHevcVps, 1, 0x09), Answer::Neither);  // nuh_layer_id 1 says nothing alone
    EXPECT_EQ(changed(kHevcVps, 4, 0xFE), Answer::Neither);  // vps_reserved_0xffff_16bits
    EXPECT_EQ(changed(kHevcVps, 3, 0x0F), Answer::Neither);  // vps_max_sub_layers_minus1 7
    EXPECT_EQ(changed(kHevcSps, 1, 0x02), Answer::Neither);  // TemporalId 1
    EXPECT_EQ(changed(kHevcIdr, 1, 0x02), Answer::Neither);  // TemporalId 1
    EXPECT_EQ(changed(kHevcSps, 2, 0x0F), Answer::Neither);  // sps_max_sub_layers_minus1 7
    EXPECT_EQ(changed(kHevcSps, 3, 0x42), Answer::Neither);  // general_profile_space 1
    EXPECT_EQ(changed(kHevcSps, 3, 0x0C), Answer::Neither);  // general_profile_idc 12
    for (const char* const unit : {"40", "02 41 D0 80", "44 01 01 00 80", "46 01 51", "02 01"}) {
        EXPECT_EQ(qv::probeCodec(bytesOf(framed({hex(unit)})), Framing::StartCodes).hevc.against, 1U) << unit;
    }
    EXPECT_EQ(qv::probeCodec(bytesOf(framed({hex("46 01 50")})), Framing::StartCodes).hevc.plausible, 1U);
}

// Damage does not hide a stream, but a parameter set among nonsense does not make one.
TEST(CodecProbe, unitsAgainstParameterSets) {
    const Bytes nonsense = hex("B8 00 12");
    EXPECT_EQ(answerTo(Units{kAvcSps} + 11 * kAvcSlice + 11 * nonsense), Answer::Avc);
    EXPECT_EQ(answerTo(Units{kAvcSps} + 11 * kAvcSlice + 12 * nonsense), Answer::Neither);
    EXPECT_EQ(answerTo(4 * kAvcSlice + Units{nonsense}), Answer::Avc);
    EXPECT_EQ(answerTo(3 * kAvcSlice + Units{nonsense}), Answer::Neither);
}

// --- Framing ---

constexpr Framing kFramings[] = {Framing::StartCodes, Framing::Lengths1, Framing::Lengths2, Framing::Lengths3,
                                 Framing::Lengths4};

TEST(CodecProbe, everyFraming) {
    for (const Framing framing : kFramings) {
        SCOPED_TRACE(qv::textOf(framing));
        const CodecProbe avc =
            qv::probeCodec(bytesOf(framed(Units{kAvcSps, kAvcPps, kAvcIdr} + 20 * kAvcSlice, framing)));
        EXPECT_EQ(avc.answer, Answer::Avc);
        EXPECT_EQ(avc.framing, framing);
        EXPECT_EQ(avc.confidence, Confidence::High);
        EXPECT_EQ(avc.beginsWithStartCode, framing == Framing::StartCodes);
        const CodecProbe hevc =
            qv::probeCodec(bytesOf(framed(Units{kHevcVps, kHevcSps, kHevcPps} + 20 * kHevcTrail, framing)));
        EXPECT_EQ(hevc.answer, Answer::Hevc);
        EXPECT_EQ(hevc.framing, framing);
    }
}

// The sample of a container, whose parameter sets are elsewhere.
TEST(CodecProbe, aSampleWithOneSlice) {
    for (const Framing framing : {Framing::Lengths2, Framing::Lengths3, Framing::Lengths4}) {
        const CodecProbe avc = qv::probeCodec(bytesOf(framed({kAvcSlice}, framing)));
        EXPECT_EQ(avc.answer, Answer::Avc);
        EXPECT_EQ(avc.framing, framing);
        EXPECT_EQ(avc.confidence, Confidence::Low);
        EXPECT_EQ(qv::probeCodec(bytesOf(framed({kHevcTrail}, framing))).answer, Answer::Hevc);
    }
}

// A length of 256 to 511 bytes reads as a start code.
TEST(CodecProbe, lengthsThatReadAsStartCodes) {
    Bytes slice = kAvcSlice;
    slice.resize(300, 0x55);
    const CodecProbe probe = qv::probeCodec(bytesOf(framed(10 * slice, Framing::Lengths4)));
    EXPECT_EQ(probe.answer, Answer::Avc);
    EXPECT_EQ(probe.framing, Framing::Lengths4);
}

// The head of a file ends within a unit.
TEST(CodecProbe, dataThatEndsWithinAUnit) {
    Bytes bytes = framed(Units{kAvcSps} + 20 * kAvcSlice, Framing::Lengths4);
    bytes.pop_back();
    EXPECT_EQ(qv::probeCodec(bytesOf(bytes)).framing, Framing::Lengths4);
    EXPECT_EQ(qv::probeCodec(bytesOf(bytes)).answer, Answer::Avc);
    EXPECT_EQ(answerTo(hex("00 00 10 00 41 9A 24 6C 43 7F 80")), Answer::Neither);
}

TEST(CodecProbe, startOfTheStream) {
    const auto beginsWithStartCode = [](const char* text) {
        return qv::probeCodec(bytesOf(hex(text)), Framing::StartCodes).beginsWithStartCode;
    };
    EXPECT_TRUE(beginsWithStartCode("00 00 01 09 F0"));
    EXPECT_TRUE(beginsWithStartCode("00 00 00 00 00 01 09 F0"));
    EXPECT_FALSE(beginsWithStartCode("FF 00 00 01 09 F0"));
    EXPECT_FALSE(beginsWithStartCode("09 F0 80"));
}

// --- The result ---

TEST(CodecProbe, confidence) {
    const auto confidenceIn = [](const Units& units) {
        return qv::probeCodec(bytesOf(framed(units))).confidence;
    };
    EXPECT_EQ(confidenceIn({kAvcSps}), Confidence::High);
    EXPECT_EQ(confidenceIn({kAvcSps, kAvcSlice, hex("B8 00 12")}), Confidence::Medium);
    EXPECT_EQ(confidenceIn({kAvcSlice}), Confidence::Low);
    EXPECT_EQ(confidenceIn({kHevcRpu}), Confidence::None);
    EXPECT_EQ(confidenceIn({kAvcSps, kHevcVps}), Confidence::None);
}

TEST(CodecProbe, whereBothAreLikelyTheOneWithParameterSets) {
    // An H.264 SEI unit reads as an H.265 slice.
    EXPECT_EQ(answerTo(Units{kHevcVps} + 100 * kAvcSei), Answer::Hevc);
    EXPECT_EQ(answerTo({kAvcSps, kAvcPps, kAvcSps, kAvcPps, kHevcVps}), Answer::Ambiguous);
}

TEST(CodecProbe, aUnitAgainstMakesConfidenceMedium) {
    const Bytes forbidden = hex("E5 88 84 00 33 FF 80");
    const CodecProbe probe = qv::probeCodec(bytesOf(framed({kAvcSps, kAvcPps, forbidden, kAvcIdr})));
    EXPECT_EQ(probe.confidence, Confidence::Medium);
    EXPECT_NE(qv::textOf(probe).find("confidence medium"), std::string::npos);
}

TEST(CodecProbe, numbersThatAreNoAnswerHaveNoName) {
    CodecProbe probe;
    probe.answer = static_cast<Answer>(9);
    probe.confidence = static_cast<Confidence>(9);
    EXPECT_NE(qv::textOf(probe).find("as H.264 0 parameter sets"), std::string::npos);
    EXPECT_STREQ(qv::textOf(static_cast<Framing>(9)), "");
}

TEST(CodecProbe, text) {
    EXPECT_EQ(
        qv::textOf(qv::probeCodec(bytesOf(framed({kAvcSps, kAvcPps, kAvcIdr, kAvcSlice})))),
        "H.264 with start codes, confidence high: as H.264 1 parameter sets, 2 plausible units, 0 against, 1 "
        "silent; as H.265 0 parameter sets, 0 plausible units, 4 against, 0 silent");
    EXPECT_EQ(qv::textOf(qv::probeCodec(bytesOf(framed({kHevcTrail}, Framing::Lengths4)))),
              "H.265 with lengths of 4 bytes, confidence low: as H.264 0 parameter sets, 0 plausible units, "
              "0 against, "
              "1 silent; as H.265 0 parameter sets, 1 plausible units, 0 against, 0 silent");
    EXPECT_EQ(qv::textOf(qv::probeCodec({})),
              "neither H.264 nor H.265: as H.264 0 parameter sets, 0 plausible units, 0 against, 0 silent; "
              "as H.265 0 "
              "parameter sets, 0 plausible units, 0 against, 0 silent");
    EXPECT_NE(qv::textOf(qv::probeCodec(bytesOf(framed({kAvcSps, kHevcVps})))).find("H.264 or H.265 with"),
              std::string::npos);
}

TEST(CodecProbe, codec) {
    EXPECT_EQ(qv::probeCodec(bytesOf(framed({kAvcSps}))).codec(), qv::Codec::Avc);
    EXPECT_EQ(qv::probeCodec(bytesOf(framed({kHevcSps}))).codec(), qv::Codec::Hevc);
    EXPECT_EQ(qv::probeCodec(bytesOf(framed({kAvcSps, kHevcVps}))).codec(), std::nullopt);
    EXPECT_EQ(qv::probeCodec({}).codec(), std::nullopt);
}

TEST(CodecProbe, theWorkIsBounded) {
    Bytes bytes = framed({kAvcSps});
    bytes.resize(2 * qv::kProbeBytes, 0x55);
    const Bytes late = framed(50 * kHevcVps);
    bytes.insert(bytes.end(), late.begin(), late.end());
    const CodecProbe probe = qv::probeCodec(bytesOf(bytes));
    EXPECT_EQ(probe.bytes, qv::kProbeBytes);
    EXPECT_EQ(probe.hevc.parameterSets, 0U);
    EXPECT_EQ(probe.avc.units(), 0U);  // the SPS may be cut: its end was not seen
}

// The unit at the end of what is looked at is not judged: it may be cut anywhere.
TEST(CodecProbe, theUnitThatTheProbeEndsIn) {
    Bytes bytes = framed({kAvcSps, kAvcIdr});
    bytes.resize(qv::kProbeBytes - 4, 0x55);
    bytes = bytes + framed({kAvcSlice, kAvcSlice});
    const CodecProbe probe = qv::probeCodec(bytesOf(bytes));
    EXPECT_EQ(probe.avc.units(), 2U);
    EXPECT_EQ(probe.confidence, Confidence::High);
}

TEST(CodecProbe, whatIsNoVideo) {
    EXPECT_EQ(answerTo(Bytes()), Answer::Neither);
    EXPECT_EQ(answerTo(Bytes(100000, 0x00)), Answer::Neither);
    EXPECT_EQ(answerTo(Bytes(100000, 0x20)), Answer::Neither);
    EXPECT_EQ(answerTo(hex("00 00 01")), Answer::Neither);
    EXPECT_EQ(answerTo(hex("00 00 00 01")), Answer::Neither);
    // An MPEG-2 sequence header, GOP header and picture with slices; an MPEG-4 Visual object.
    EXPECT_EQ(
        answerTo(hex("00 00 01 B3 14 00 F0 00 00 01 B8 00 08 00 00 01 00 00 0F 00 00 01 01 13 00 00 01 02 13 "
                     "00 00 01 03 13")),
        Answer::Neither);
    EXPECT_EQ(answerTo(hex("00 00 01 B0 01 00 00 01 B5 89 00 00 01 00 00 00 01 20 00 C4 00 00 01 B6 10")),
              Answer::Neither);
}

using Generator = std::mt19937_64;

TEST(CodecProbe, randomBytes) {
    Generator random(3);
    for (int round = 0; round < 40; ++round) {
        Bytes bytes(round % 2 == 0 ? 100000 : 50);
        for (uint8_t& byte : bytes) {
            byte = static_cast<uint8_t>(random());
        }
        EXPECT_EQ(answerTo(bytes), Answer::Neither) << qv::textOf(qv::probeCodec(bytesOf(bytes)));
    }
}

TEST(CodecProbe, everyCutBetweenGuardPages) {
    const Bytes streams[] = {framed({kAvcSps, kAvcPps, kAvcIdr, kAvcDelimiter, kAvcSei, kAvcSlice}),
                             framed({kHevcVps, kHevcSps, kHevcPps, kHevcIdr, kHevcTrail}, Framing::Lengths4)};
    GuardedBuffer guarded(4096);
    Generator random(4);
    for (const Bytes& stream : streams) {
        for (size_t size = 0; size <= stream.size(); ++size) {
            Bytes cut(stream.begin(), stream.begin() + static_cast<std::ptrdiff_t>(size));
            qv::probeCodec({guarded.placeAtEnd(cut), cut.size()});
            qv::probeCodec({guarded.placeAtBegin(cut), cut.size()});
            for (int change = 0; change < 20 && size > 0; ++change) {
                cut[random() % size] = static_cast<uint8_t>(random() % 4);
                qv::probeCodec({guarded.placeAtEnd(cut), cut.size()});
            }
        }
    }
}

TEST(CodecProbe, nothingIsAllocated) {
    const Bytes bytes = framed(Units{kAvcSps} + 20 * kAvcSlice, Framing::Lengths2);
    const AllocationFault allocations(Allocator::New, 0);
    const AllocationFault blocks(Allocator::Malloc, 0);
    EXPECT_EQ(qv::probeCodec(bytesOf(bytes)).answer, Answer::Avc);
    EXPECT_EQ(allocations.seen(), 0);
    EXPECT_EQ(blocks.seen(), 0);
}

}  // namespace
