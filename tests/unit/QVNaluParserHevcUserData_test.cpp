// H.265 user data registered by ITU-T T.35 with ATSC A/53 captions. The parsers read it and never store it.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <type_traits>

#include "HevcSeiRecords.h"
#include "QVNaluParser.h"
#include "SeiMessages.h"

namespace qv_test {
namespace {

static_assert(std::is_trivially_copyable<QVHevcSeiA53Caption>::value);
static_assert(std::is_trivially_default_constructible<QVHevcSeiA53Caption>::value);

// ATSC A/53 Part 4, 6.2.3: the T.35 header of captions and the fields after it.
const Bytes kUnitedStates = {0xB5};
const Bytes kAtscProvider = {0x00, 0x31};
const Bytes kGa94 = {0x47, 0x41, 0x39, 0x34};
const Bytes kDtg1 = {0x44, 0x54, 0x47, 0x31};
const Bytes kAtscHeader = kUnitedStates + kAtscProvider + kGa94;
const Bytes kConstruct = {0xFC, 0x80, 0x80};

constexpr uint8_t kCcData = 0x03;
constexpr uint8_t kEmData = 0xFF;

// The bits 1, process_cc_data_flag, 0, cc_count.
uint8_t ccFlags(unsigned process_cc_data_flag, unsigned cc_count) {
    return static_cast<uint8_t>(0x80U | process_cc_data_flag << 6 | cc_count);
}

// user_data_type_code and cc_data() with cc_count constructs.
Bytes ccData(unsigned cc_count) {
    Bytes bytes = {kCcData, ccFlags(1, cc_count), kEmData};
    for (unsigned i = 0; i < cc_count; ++i) {
        bytes = bytes + kConstruct;
    }
    return bytes + Bytes{0xFF};
}

// Returns the bytes, shifted by `lead` preceding 1 bits.
Bytes afterBits(unsigned lead, const Bytes& bytes) {
    BitWriter out;
    out.u(lead, "lead", ~0U);
    for (const uint8_t byte : bytes) {
        out.u(8, "payload", byte);
    }
    return out.bytes();
}

const ExpectedLine kOuterNull = {0, "parserHevcRegisteredUserData",
                                 "parserHevcRegisteredUserData: a53Caption is NULL!\n"};
const ExpectedLine kOuterShort = {0, "parserHevcRegisteredUserData",
                                  "parserHevcRegisteredUserData: payloadSize < 7 !\n"};
const ExpectedLine kInnerNull = {0, "parserHevcRegisteredUserDataClosedCaption",
                                 "parserHevcRegisteredUserDataClosedCaption: a53Caption is NULL!\n"};
const ExpectedLine kInnerShort = {0, "parserHevcRegisteredUserDataClosedCaption",
                                  "parserHevcRegisteredUserDataClosedCaption: payloadSize < 7 !\n"};

class HevcUserData : public CoreTest {
protected:
    using Operation = int (*)(QVByteStream&, int, QVHevcSeiA53Caption*);

    // Checks the result and the stream's position, and that the record is unchanged.
    static void expectWalk(Operation operation, QVByteStream& stream, int payloadSize, int result,
                           const Cursor& cursor) {
        const auto parsed = parse(operation, stream, payloadSize);
        EXPECT_EQ(parsed.result, result);
        EXPECT_EQ(parsed.cursor, cursor);
        EXPECT_EQ(bytesOf(parsed.record), bytesOf(patternRecord<QVHevcSeiA53Caption>()));
    }

    static void expectUserData(QVByteStream& stream, int payloadSize, int result, const Cursor& cursor) {
        expectWalk(&QVNaluParser::parserHevcRegisteredUserData, stream, payloadSize, result, cursor);
    }
    static void expectUserData(const Bytes& bytes, int payloadSize, int result, uint64_t bit) {
        PayloadStream stream(bytes);
        expectUserData(stream, payloadSize, result, atBit(bit));
    }

    static void expectCaption(QVByteStream& stream, int payloadSize, int result, const Cursor& cursor) {
        expectWalk(&QVNaluParser::parserHevcRegisteredUserDataClosedCaption, stream, payloadSize, result,
                   cursor);
    }
    static void expectCaption(const Bytes& bytes, int payloadSize, int result, uint64_t bit) {
        PayloadStream stream(bytes);
        expectCaption(stream, payloadSize, result, atBit(bit));
    }
};

// --- The T.35 header ---

class HevcRegisteredUserData : public HevcUserData {};

TEST_F(HevcRegisteredUserData, golden) {
    const Bytes payload = {0xB5, 0x00, 0x31, 0x47, 0x41, 0x39, 0x34,
                           0x03, 0xC1, 0xFF, 0xFC, 0x80, 0x80, 0xFF};
    expectUserData(payload + Bytes{0xEE}, 14, 0, 14 * 8);
    const Bytes extended = {0xFF, 0xB5, 0x00, 0x31, 0x47, 0x41, 0x39, 0x34,
                            0x03, 0xC1, 0xFF, 0xFC, 0x80, 0x80, 0xFF};
    expectUserData(extended + Bytes{0xEE}, 15, 0, 15 * 8);
    expectNoLines();
}

TEST_F(HevcRegisteredUserData, sizesBelowSevenAreRefused) {
    const int sizes[] = {INT_MIN, -1, 0, 1, 2, 3, 4, 5, 6};
    for (const int payloadSize : sizes) {
        SCOPED_TRACE(payloadSize);
        PayloadStream stream(kAtscHeader + ccData(1), 5);
        expectUserData(stream, payloadSize, 11000001, atBit(5));
    }
    expectLines(std::vector<ExpectedLine>(std::size(sizes), kOuterShort));
}

// If the identifier is not GA94, the payload is skipped to its end and not read as captions.
TEST_F(HevcRegisteredUserData, anotherIdentifierSkipsThePayload) {
    for (int payloadSize = 7; payloadSize <= 16; ++payloadSize) {
        SCOPED_TRACE(payloadSize);
        const uint64_t end = static_cast<uint64_t>(payloadSize) * 8;
        expectUserData(kUnitedStates + kAtscProvider + kDtg1 + Bytes(12, 0xEE), payloadSize, 0, end);
        // This header has more than 7 bytes. With size 7 the parser moves back one byte.
        expectUserData(Bytes{0xFF, 0xB5} + kAtscProvider + kDtg1 + Bytes(12, 0xEE), payloadSize, 0, end);
    }
    expectNoLines();
}

TEST_F(HevcRegisteredUserData, anotherIdentifierOffByteAlignment) {
    for (unsigned lead = 1; lead < 8; ++lead) {
        for (int payloadSize = 7; payloadSize <= 16; ++payloadSize) {
            SCOPED_TRACE(std::to_string(lead) + ", size " + std::to_string(payloadSize));
            const uint64_t end = lead + static_cast<uint64_t>(payloadSize) * 8;
            PayloadStream plain(afterBits(lead, kUnitedStates + kAtscProvider + kDtg1 + Bytes(12, 0xEE)),
                                lead);
            expectUserData(plain, payloadSize, 0, atBit(end));
            // Inside a byte, the distance back is truncated towards zero, so the stream does not move.
            PayloadStream extended(
                afterBits(lead, Bytes{0xFF, 0xB5} + kAtscProvider + kDtg1 + Bytes(12, 0xEE)), lead);
            expectUserData(extended, payloadSize, 0, atBit(payloadSize == 7 ? end + 8 : end));
        }
    }
    expectNoLines();
}

TEST_F(HevcRegisteredUserData, aSkipPastTheEndIsNotMade) {
    const Bytes header = kUnitedStates + kAtscProvider + kDtg1;
    expectUserData(header + Bytes(3, 0xEE), 10, 0, 10 * 8);
    expectUserData(header + Bytes(3, 0xEE), 11, 0, 7 * 8);
    expectUserData(header + Bytes(3, 0xEE), INT_MAX, 0, 7 * 8);
    expectUserData(Bytes{0xFF, 0xB5} + kAtscProvider + kDtg1, 9, 0, 8 * 8);
    expectNoLines();
}

TEST_F(HevcRegisteredUserData, onlyGa94IsCaptions) {
    const Bytes identifiers[] = {{0x47, 0x41, 0x39, 0x35}, {0x47, 0x41, 0x39, 0x33},
                                 {0x46, 0x41, 0x39, 0x34}, {0x67, 0x61, 0x39, 0x34},
                                 {0x34, 0x39, 0x41, 0x47}, {0x00, 0x00, 0x00, 0x00},
                                 {0xFF, 0xFF, 0xFF, 0xFF}, kDtg1};
    for (const Bytes& identifier : identifiers) {
        // If these were read as captions, the parser would stop after process_cc_data_flag.
        const Bytes payload =
            kUnitedStates + kAtscProvider + identifier + Bytes{kCcData, ccFlags(0, 0), kEmData};
        expectUserData(payload, 10, 0, 10 * 8);
    }
    expectUserData(kAtscHeader + Bytes{kCcData, ccFlags(0, 0), kEmData}, 10, 0, 8 * 8 + 2);
    expectNoLines();
}

TEST_F(HevcRegisteredUserData, D18_anyCountryAndProvider) {
    const Bytes providers[] = {{0x00, 0x31}, {0x00, 0x2F}, {0x00, 0x00}, {0xFF, 0xFF}, {0x31, 0x00}};
    for (unsigned country = 0; country < 256; ++country) {
        for (const Bytes& provider : providers) {
            SCOPED_TRACE(country);
            Bytes head = {static_cast<uint8_t>(country)};
            if (country == 255) {
                head.push_back(0xB5);
            }
            const Bytes payload = head + provider + kGa94 + ccData(1);
            expectUserData(payload + Bytes{0xEE}, sizeOf(payload), 0, payload.size() * 8);
        }
    }
    expectNoLines();
}

TEST_F(HevcRegisteredUserData, anyCountryExtension) {
    for (unsigned extension = 0; extension < 256; ++extension) {
        const Bytes payload =
            Bytes{0xFF, static_cast<uint8_t>(extension)} + kAtscProvider + kGa94 + ccData(1);
        expectUserData(payload + Bytes{0xEE}, sizeOf(payload), 0, payload.size() * 8);
    }
    expectNoLines();
}

// The size of the captions is the number of bytes after GA94. It must be at least 3.
TEST_F(HevcRegisteredUserData, captionsOfEverySize) {
    for (int payloadSize = 7; payloadSize <= 16; ++payloadSize) {
        SCOPED_TRACE(payloadSize);
        core().lines.clear();
        const bool isShort = payloadSize <= 9;
        // With type 4 the parser skips the rest byte by byte.
        expectUserData(kAtscHeader + Bytes(12, 0x04), payloadSize, isShort ? 11000001 : 0,
                       (isShort ? 7 : static_cast<uint64_t>(payloadSize)) * 8);
        expectLines(std::vector<ExpectedLine>(isShort ? 1 : 0, kInnerShort));
    }
    for (int payloadSize = 7; payloadSize <= 16; ++payloadSize) {
        SCOPED_TRACE(payloadSize);
        core().lines.clear();
        const bool isShort = payloadSize <= 10;
        expectUserData(Bytes{0xFF, 0xB5} + kAtscProvider + kGa94 + Bytes(12, 0x04), payloadSize,
                       isShort ? 11000001 : 0, (isShort ? 8 : static_cast<uint64_t>(payloadSize)) * 8);
        expectLines(std::vector<ExpectedLine>(isShort ? 1 : 0, kInnerShort));
    }
}

TEST_F(HevcRegisteredUserData, twoBytesOfCaptionsAreTooFew) {
    expectUserData(Bytes{0xB5, 0x00, 0x31, 0x47, 0x41, 0x39, 0x34, 0x03, 0xC1}, 9, 11000001, 7 * 8);
    expectLines({kInnerShort});
}

// One construct, cut after every byte. If an identifier or a byte of the captions is missing, the stream does
// not move any further. After user_data_type_code the reserved bit is still skipped.
TEST_F(HevcRegisteredUserData, everyTruncation) {
    const Bytes payload = kAtscHeader + ccData(1);
    ASSERT_EQ(payload.size(), 14U);
    for (size_t size = 0; size <= 14; ++size) {
        SCOPED_TRACE(size);
        expectUserData(Bytes(payload.begin(), payload.begin() + static_cast<std::ptrdiff_t>(size)), 14, 0,
                       size == 8 ? 8 * 8 + 1 : size * 8);
    }
    expectNoLines();
}

TEST_F(HevcRegisteredUserData, everyTruncationWithAnExtension) {
    const Bytes payload = Bytes{0xFF, 0xB5} + kAtscProvider + kGa94 + ccData(1);
    ASSERT_EQ(payload.size(), 15U);
    for (size_t size = 0; size <= 15; ++size) {
        SCOPED_TRACE(size);
        expectUserData(Bytes(payload.begin(), payload.begin() + static_cast<std::ptrdiff_t>(size)), 15, 0,
                       size == 9 ? 9 * 8 + 1 : size * 8);
    }
    expectNoLines();
}

// The country code and the identifier are read up to the last bit of the data. The bytes of the provider code
// are skipped, and such a skip may end inside the byte after the data.
TEST_F(HevcRegisteredUserData, headerTruncationsOffByteAlignment) {
    for (unsigned lead = 1; lead < 8; ++lead) {
        const Bytes whole = afterBits(lead, kAtscHeader + ccData(1));
        const uint64_t stops[] = {8, 16 + lead, 24 + lead, 32, 40, 48, 56, 64};
        for (size_t size = 1; size <= 8; ++size) {
            SCOPED_TRACE(std::to_string(lead) + ", " + std::to_string(size) + " bytes");
            PayloadStream stream(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)),
                                 lead);
            expectUserData(stream, 14, 0, atBit(stops[size - 1]));
        }
    }
    expectNoLines();
}

// A cut inside a byte sets its low bits to 0. Type 3 becomes another type. In the byte of the flags, an early
// cut clears process_cc_data_flag and the count, a later one only bits of the count.
TEST_F(HevcRegisteredUserData, cutInsideEveryByte) {
    BitWriter payload;
    for (const uint8_t byte : kAtscHeader + ccData(1)) {
        payload.u(8, "payload", byte);
    }
    for (size_t bits = 0; bits <= payload.bitCount(); ++bits) {
        SCOPED_TRACE(bits);
        const Bytes bytes = payload.bytesCutAt(bits);
        uint64_t stop = bytes.size() * 8;
        if (bits == 64) {
            stop = 65;  // type 3 and no flags
        } else if (bits == 65) {
            stop = 66;  // process_cc_data_flag was cut
        }
        expectUserData(bytes, 14, 0, stop);
    }
    expectNoLines();
}

TEST_F(HevcRegisteredUserData, captionsOffByteAlignment) {
    for (unsigned lead = 1; lead < 8; ++lead) {
        for (const unsigned cc_count : {1U, 2U, 31U}) {
            const Bytes payload = kAtscHeader + ccData(cc_count);
            PayloadStream stream(afterBits(lead, payload + Bytes{0xEE}), lead);
            expectUserData(stream, sizeOf(payload), 0, atBit(lead + payload.size() * 8));
        }
    }
    expectNoLines();
}

// Without a buffer the skips move, but nothing is read, so there is no extension and no identifier.
TEST_F(HevcRegisteredUserData, withoutABuffer) {
    for (int payloadSize = 7; payloadSize <= 16; ++payloadSize) {
        SCOPED_TRACE(payloadSize);
        BufferlessStream stream(20);
        expectUserData(stream, payloadSize, 0, atBit(static_cast<uint64_t>(2 + payloadSize - 7) * 8));
    }
    BufferlessStream tooShort(4);
    expectUserData(tooShort, 14, 0, atBit(2 * 8));
    BufferlessStream provider(1);
    expectUserData(provider, 7, 0, atBit(8));
    expectNoLines();
}

TEST_F(HevcRegisteredUserData, nothingToRead) {
    expectUserData(Bytes(), 7, 0, 0);
    expectUserData(Bytes(), 14, 0, 0);
    PayloadStream atEnd(Bytes(3, 0xFF), 24);
    expectUserData(atEnd, 14, 0, atBit(24));
    expectNoLines();
}

// The country code is the only byte, so one byte back from the end is the start.
TEST_F(HevcRegisteredUserData, anExtensionPastTheEndStaysInTheBuffer) {
    expectUserData(Bytes{0xFF}, 7, 0, 0);
    expectUserData(Bytes{0xFF}, 8, 0, 8);
    expectNoLines();
}

TEST_F(HevcRegisteredUserData, nullRecord) {
    for (const int payloadSize : {14, 0}) {
        PayloadStream stream(kAtscHeader + ccData(1), 5);
        EXPECT_EQ(QVNaluParser::parserHevcRegisteredUserData(stream, payloadSize, nullptr), 11000001);
        EXPECT_EQ(cursorOf(stream), atBit(5));
    }
    expectLines({kOuterNull, kOuterNull});
}

// --- The captions ---

class HevcClosedCaption : public HevcUserData {};

TEST_F(HevcClosedCaption, sizesBelowThreeAreRefusedWithAnothersNumber) {
    const int sizes[] = {INT_MIN, -1, 0, 1, 2};
    for (const int payloadSize : sizes) {
        SCOPED_TRACE(payloadSize);
        PayloadStream stream(ccData(1), 5);
        expectCaption(stream, payloadSize, 11000001, atBit(5));
    }
    expectLines(std::vector<ExpectedLine>(std::size(sizes), kInnerShort));
}

TEST_F(HevcClosedCaption, everyCountConsumesItsConstructsAndTheMarker) {
    for (unsigned cc_count = 1; cc_count < 32; ++cc_count) {
        SCOPED_TRACE(cc_count);
        const Bytes payload = ccData(cc_count);
        expectCaption(payload + Bytes(2, 0xEE), sizeOf(payload), 0, payload.size() * 8);
    }
    expectNoLines();
}

TEST_F(HevcClosedCaption, noConstructsEndAfterEmData) {
    expectCaption(ccData(0) + Bytes(2, 0xEE), 4, 0, 3 * 8);
    expectCaption(ccData(0) + Bytes(2, 0xEE), 3, 0, 3 * 8);
    expectCaption(ccData(0) + Bytes(2, 0xEE), INT_MAX, 0, 3 * 8);
    expectNoLines();
}

// The parser compares the size with the constructs plus two bytes, but the payload has four bytes besides the
// constructs. A size that is two bytes too small is accepted, and the parser then reads past the payload.
TEST_F(HevcClosedCaption, theConstructsHaveToFitIntoTheSizeLessTwo) {
    for (const unsigned cc_count : {1U, 2U, 10U, 30U, 31U}) {
        SCOPED_TRACE(cc_count);
        const Bytes payload = ccData(cc_count) + Bytes(4, 0xEE);
        const int fitting = static_cast<int>(2 + 3 * cc_count);
        expectCaption(payload, fitting, 0, (4 + 3 * uint64_t{cc_count}) * 8);
        expectCaption(payload, fitting - 1, 0, 3 * 8);
        expectCaption(payload, INT_MAX, 0, (4 + 3 * uint64_t{cc_count}) * 8);
    }
    expectCaption(Bytes{kCcData, ccFlags(1, 31), kEmData, 0xFC, 0x80, 0x80, 0xFF}, 7, 0, 3 * 8);
    expectNoLines();
}

TEST_F(HevcClosedCaption, theOtherFlagsAndTheConstructsAreDiscarded) {
    for (const unsigned others :
         {0x00U, 0x80U, 0x20U, 0xA0U}) {  // process_em_data_flag, additional_data_flag
        Bytes payload = ccData(2);
        payload[1] = static_cast<uint8_t>(0x40U | others | 2U);
        expectCaption(payload, 10, 0, 10 * 8);
        std::fill(payload.begin() + 2, payload.end(), uint8_t{0x00});
        expectCaption(payload, 10, 0, 10 * 8);
    }
    expectNoLines();
}

TEST_F(HevcClosedCaption, clearedProcessFlagEndsAfterIt) {
    for (const unsigned cc_count : {0U, 1U, 31U}) {
        expectCaption(Bytes{kCcData, ccFlags(0, cc_count), kEmData} + kConstruct + Bytes{0xFF}, 7, 0, 8 + 2);
    }
    expectNoLines();
}

TEST_F(HevcClosedCaption, everyOtherTypeIsPassedByteByByte) {
    for (unsigned type = 0; type < 256; ++type) {
        if (type == 3) {
            continue;
        }
        SCOPED_TRACE(type);
        const Bytes payload = Bytes{static_cast<uint8_t>(type)} + Bytes(9, 0xFF);
        for (const int payloadSize : {3, 4, 9, 10}) {
            expectCaption(payload, payloadSize, 0, static_cast<uint64_t>(payloadSize) * 8);
        }
        // The skip ends with the data.
        expectCaption(payload, 11, 0, 10 * 8);
        expectCaption(payload, INT_MAX, 0, 10 * 8);
    }
    expectNoLines();
}

TEST_F(HevcClosedCaption, otherTypesOffByteAlignment) {
    for (unsigned lead = 1; lead < 8; ++lead) {
        PayloadStream stream(afterBits(lead, Bytes{0x06} + Bytes(4, 0xFF)), lead);
        expectCaption(stream, 5, 0, atBit(lead + 5 * 8));
        // A skip may end at the latest in the byte after the data.
        PayloadStream toTheEnd(afterBits(lead, Bytes{0x06} + Bytes(4, 0xFF)), lead);
        expectCaption(toTheEnd, 100, 0, atBit(6 * 8 + lead));
    }
    expectNoLines();
}

// Two constructs, cut after every byte. After a skip that does not fit, the following skips are still tried.
TEST_F(HevcClosedCaption, everyTruncation) {
    const Bytes payload = ccData(2);
    ASSERT_EQ(payload.size(), 10U);
    for (size_t size = 0; size <= 10; ++size) {
        SCOPED_TRACE(size);
        expectCaption(Bytes(payload.begin(), payload.begin() + static_cast<std::ptrdiff_t>(size)), 10, 0,
                      size == 1 ? 9 : size * 8);
    }
    expectNoLines();
}

TEST_F(HevcClosedCaption, everyTruncationOffByteAlignment) {
    for (unsigned lead = 1; lead < 8; ++lead) {
        const Bytes whole = afterBits(lead, ccData(2));
        ASSERT_EQ(whole.size(), 11U);
        for (size_t size = 3; size <= 11; ++size) {
            SCOPED_TRACE(std::to_string(lead) + ", " + std::to_string(size) + " bytes");
            PayloadStream stream(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)),
                                 lead);
            expectCaption(stream, 10, 0, atBit(std::min<uint64_t>(size, 10) * 8 + lead));
        }
    }
    expectNoLines();
}

// The reserved bit is the last bit of the data.
TEST_F(HevcClosedCaption, theDataEndsAfterTheReservedBit) {
    const Bytes bytes = afterBits(7, Bytes{kCcData, 0x80});
    PayloadStream stream(Bytes(bytes.begin(), bytes.begin() + 2), 7);
    expectCaption(stream, 7, 0, atBit(16));
    expectNoLines();
}

TEST_F(HevcClosedCaption, nothingToRead) {
    expectCaption(Bytes(), 7, 0, 0);
    PayloadStream atEnd(Bytes(3, 0x03), 24);
    expectCaption(atEnd, 7, 0, atBit(24));
    PayloadStream pastEnd(Bytes(3, 0x03), 40);
    expectCaption(pastEnd, 7, 0, atBit(40));
    expectNoLines();
}

// All bytes are skipped but one, the byte of the type.
TEST_F(HevcClosedCaption, withoutABuffer) {
    BufferlessStream whole(10);
    expectCaption(whole, 10, 0, atBit(9 * 8));
    BufferlessStream tooShort(5);
    expectCaption(tooShort, 10, 0, atBit(5 * 8));
    BufferlessStream inMidByte(5);
    moveTo(inMidByte, atBit(3));
    expectCaption(inMidByte, 3, 0, atBit(2 * 8 + 3));
    expectNoLines();
}

TEST_F(HevcClosedCaption, nullRecord) {
    for (const int payloadSize : {7, 0}) {
        PayloadStream stream(ccData(1), 5);
        EXPECT_EQ(QVNaluParser::parserHevcRegisteredUserDataClosedCaption(stream, payloadSize, nullptr),
                  11000001);
        EXPECT_EQ(cursorOf(stream), atBit(5));
    }
    expectLines({kInnerNull, kInnerNull});
}

}  // namespace
}  // namespace qv_test
