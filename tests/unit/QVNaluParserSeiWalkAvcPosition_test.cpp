// parserAvcDataToSei: the position after a payload, if its parser reads beyond it or if it contains emulation
// prevention bytes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "QVNaluParser.h"
#include "SeiWalkTest.h"

namespace qv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// --- Parsers that read beyond their payload ---

// Each payload is read to the end of its syntax, although its size is coded as 0 or too small. The next
// header is read from there.
TEST_F(SeiWalkAvc, D29_aParserBeyondItsPayloadIsNotPulledBack) {
    QVAvcSps hrd{};
    hrd.nal_hrd_parameters_present_flag = 1;
    hrd.cpb_cnt = 1;
    hrd.initial_cpb_removal_delay_length = 8;
    const Bytes framePacking = BitWriter()
                                   .ue("frame_packing_arrangement_id", 0)
                                   .u(1, "cancel_flag", 0)
                                   .u(7, "frame_packing_arrangement_type", 3)
                                   .u(1, "quincunx_sampling_flag", 0)
                                   .u(6, "content_interpretation_type", 1)
                                   .u(6, "flags", 4)
                                   .u(16, "grid positions", 0x1234)
                                   .u(8, "reserved_byte", 0)
                                   .ue("repetition_period", 0)
                                   .u(1, "extension_flag", 0)
                                   .bytes();
    ASSERT_EQ(framePacking.size(), 6U);
    const struct {
        const char* name;
        Bytes message;
    } cases[] = {
        {"147, its 8 bits", {0x93, 0x00, 0x12}},
        {"56, a quality metric", {0x38, 0x00, 0x01, 0x00, 0x10, 0x68}},
        {"45, an arrangement", Bytes{0x2D, 0x00} + framePacking},
        // 25 bits. The last one is in the next header, whose byte is still read as a whole.
        {"47, an orientation", {0x2F, 0x00, 0x48, 0x00, 0x04}},
        // 17 bits: the identifier in one bit, then a delay and an offset of 8 bits each.
        {"0, with delays", {0x00, 0x01, 0x80, 0x80}},
        // 9 bits: the count 3 in 5 bits, then 4 bits.
        {"6, a count", {0x06, 0x00, 0x20}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(walk(c.message + seiMessages({userData()}) + Bytes{0x80}, {}, &hrd), 0);
        EXPECT_THAT(kept(), ElementsAre(kKeptUserData));
        clearItems();
    }
    expectNoLines();
}

// The display orientation above ends after the first bit of the next byte. A recovery point there is read
// from its second bit on, so its payload is a 1 bit and then the code of 65536.
TEST_F(SeiWalkAvc, theBitOffsetOfAParserBeyondItsPayloadStays) {
    const Bytes orientation = {0x2F, 0x00, 0x48, 0x00, 0x04};
    const Bytes shifted =
        BitWriter().u(1, "skipped bit", 1).ue("recovery_frame_cnt", 65536).alignZero().bytes();
    EXPECT_EQ(walk(orientation + seiMessages({seiMessage(6, shifted)}) + Bytes{0x80}), 11000001);
    expectLines({badRecovery(65536)});
}

// The bit offset stays until the walk moves to the end of the next message. That move clears it.
TEST_F(SeiWalkAvc, theBitOffsetStaysUntilTheNextRepositioning) {
    const Bytes orientation = {0x2F, 0x00, 0x48, 0x00, 0x04};
    const SeiMessage between[] = {seiMessage(200, {0x31}), userData(), seiMessage(6, {0x84})};
    for (const SeiMessage& message : between) {
        SCOPED_TRACE(message.payloadType);
        core().lines.clear();
        EXPECT_EQ(
            walk(orientation + seiMessages({message, seiMessage(6, recoveryPoint(70000))}) + Bytes{0x80}),
            11000001);
        expectLines({badRecovery(70000)});
    }
}

// If a parser ends inside the byte after its payload, the byte position is at the payload's end, and the walk
// clears the bit offset.
TEST_F(SeiWalkAvc, bitsReadBeyondThePayloadAreTakenBackWithinTheByte) {
    const SeiMessage nineBits = {6, 1, {0x20}};  // recovery_frame_cnt 3 in 5 bits, and 4 bits
    EXPECT_EQ(walk(seiMessages({nineBits, seiMessage(6, recoveryPoint(65537))}) + Bytes{0x80}), 11000001);
    expectLines({badRecovery(65537)});
}

TEST_F(SeiWalkAvc, aParserThatReadsToTheEndOfTheUnitEndsTheWalk) {
    for (const Bytes& unit : {Bytes{0x93, 0x00, 0x12}, Bytes{0x38, 0x00, 0x01}, Bytes{0x2D, 0x00, 0x90},
                              Bytes{0x2F, 0x00, 0x48}, Bytes{0x06, 0x00, 0x00}}) {
        SCOPED_TRACE(::testing::PrintToString(unit));
        EXPECT_EQ(walk(unit), 0);
    }
    expectNoLines();
}

// --- Emulation prevention ---

// All payloads of one to five bytes with the values 00, 01, 03 and 80.
std::vector<Bytes> smallPayloads() {
    std::vector<Bytes> all = {{}};
    for (size_t from = 0, length = 1; length <= 5; ++length) {
        const size_t to = all.size();
        for (; from < to; ++from) {
            for (const uint8_t byte : Bytes{0x00, 0x01, 0x03, 0x80}) {
                all.push_back(all[from] + Bytes{byte});
            }
        }
    }
    all.erase(all.begin());
    return all;
}

// Emulation prevention bytes in, before and after the payload. Captured bytes do not contain them, and the
// walk continues at the right position.
TEST_F(SeiWalkAvc, capturesWithoutEmulationPrevention) {
    const SeiMessage following[] = {seiMessage(1, {0x44, 0x55}), userData()};
    for (const Bytes& payload : smallPayloads()) {
        for (const SeiMessage& next : following) {
            SCOPED_TRACE(::testing::PrintToString(payload));
            const Bytes unit = seiUnit({seiMessage(5, payload), seiMessage(200, payload), next});
            ASSERT_EQ(walk(unit, {200}), 0);
            ASSERT_THAT(kept(), ElementsAre(KeptItem{26, 5, false, payload}, KeptItem{26, 200, true, payload},
                                            KeptItem{26, next.payloadType, false, next.payload}));
            clearItems();
        }
    }
    expectNoLines();
}

TEST_F(SeiWalkAvc, capturesEmulationPreventionAtEveryAlignment) {
    for (size_t before = 0; before < 9; ++before) {
        for (size_t zeros = 1; zeros < 9; ++zeros) {
            for (size_t after = 0; after < 3; ++after) {
                const Bytes payload = Bytes(before, 0xFF) + Bytes(zeros, 0x00) + Bytes(after, 0x02);
                SCOPED_TRACE(::testing::PrintToString(payload));
                EXPECT_EQ(walk(seiUnit({seiMessage(5, payload), userData()})), 0);
                EXPECT_THAT(kept(), ElementsAre(KeptItem{26, 5, false, payload}, kKeptUserData));
                clearItems();
            }
        }
    }
}

// A size byte 00 counts as one of the two zeros before an emulation prevention byte.
TEST_F(SeiWalkAvc, theHeaderCountsAsDataBeforeEmulationPrevention) {
    const Bytes payload = Bytes{0x00, 0x01} + Bytes(253, 0x41);
    const Bytes unit = seiUnit({seiMessage(5, payload), userData()});
    ASSERT_EQ(Bytes(unit.begin(), unit.begin() + 6), (Bytes{0x05, 0xFF, 0x00, 0x00, 0x03, 0x01}));
    EXPECT_EQ(walk(unit), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{26, 5, false, payload}, kKeptUserData));
}

// The walk skips payloadSize coded bytes of a message that is not captured, so it continues one byte too
// early for each emulation prevention byte.
TEST_F(SeiWalkAvc, D27_skipsEmulationPreventionBytesAsPayload) {
    const Bytes once = seiUnit({seiMessage(200, {0xAA, 0x00, 0x00, 0x01}), userData()});
    ASSERT_EQ(once, (Bytes{0xC8, 0x04, 0xAA, 0x00, 0x00, 0x03, 0x01, 0x05, 0x02, 0x11, 0x22, 0x80}));
    EXPECT_EQ(walk(once), 11000001) << "01 05 must be read as a header";
    EXPECT_THAT(kept(), IsEmpty());
    expectLines({truncation(1, 5, 4)});

    EXPECT_EQ(walk(once, {200}), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{26, 200, true, {0xAA, 0x00, 0x00, 0x01}}, kKeptUserData))
        << "the captured message must be complete";
}

TEST_F(SeiWalkAvc, skipsEmulationPreventionAtEveryAlignment) {
    for (size_t before = 0; before < 9; ++before) {
        SCOPED_TRACE(before);
        // The last payload byte, 01, and the next type, 03, are read as type 1 and size 3.
        const Bytes payload = Bytes(before, 0xFF) + Bytes{0x00, 0x00, 0x01};
        const Bytes unit = seiUnit({seiMessage(200, payload), seiMessage(3, {0x51, 0x52}), userData()});
        EXPECT_EQ(walk(unit), 0);
        EXPECT_THAT(kept(), ElementsAre(KeptItem{26, 1, false, {0x02, 0x51, 0x52}}, kKeptUserData));
        clearItems();
    }
    expectNoLines();
}

// The same for payloads that are parsed.
TEST_F(SeiWalkAvc, parsedPayloadsEndEarlyByTheirEmulationPrevention) {
    const SeiMessage green = seiMessage(56, {0x02, 0x00, 0x00, 0x01});
    const Bytes unit = seiUnit({green, seiMessage(3, {0x51, 0x52}), userData()});
    EXPECT_EQ(walk(unit), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{26, 1, false, {0x02, 0x51, 0x52}}, kKeptUserData));
}

// If the size counts emulation prevention bytes, a capture continues with the bytes after the payload and
// with zero bytes past the end of the unit.
TEST_F(SeiWalkAvc, aCaptureBeyondTheUnitIsPadded) {
    EXPECT_EQ(walk({0x05, 0x06, 0xAA, 0x00, 0x00, 0x03, 0x01, 0xBB}), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{26, 5, false, {0xAA, 0x00, 0x00, 0x01, 0xBB, 0x00}}));
    clearItems();
    EXPECT_EQ(walk({0x05, 0x05, 0xAA, 0x00, 0x00, 0x03, 0x01, 0xBB, 0x80}), 0);
    EXPECT_THAT(kept(), ElementsAre(KeptItem{26, 5, false, {0xAA, 0x00, 0x00, 0x01, 0xBB}}));
}

}  // namespace
}  // namespace qv_test
