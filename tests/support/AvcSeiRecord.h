// What the H.264 SEI payload parsers leave in their records and where they leave the stream.
#ifndef QV_TESTS_AVCSEIRECORD_H
#define QV_TESTS_AVCSEIRECORD_H

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "BitWriter.h"
#include "CursorModel.h"
#include "QVNaluParser.h"
#include "RecordingCore.h"
#include "SeiPayload.h"
#include "SeiTest.h"

namespace qv_test {

constexpr int kOk = 0;
constexpr int kFailed = 11000001;

// Every field in order.
Fields fieldsOf(const QVAvcSeiRecoveryPoint& record);
Fields fieldsOf(const QVAvcSeiBufferingPeriod& record);
Fields fieldsOf(const QVAvcSeiPictureTiming& record);
Fields fieldsOf(const QVAvcSeiAfd& record);
Fields fieldsOf(const QVAvcSeiFramePacking& record);
Fields fieldsOf(const QVAvcSeiDisplayOrientation& record);
Fields fieldsOf(const QVAvcSeiAlternativeTransfer& record);
Fields fieldsOf(const QVAvcSeiGreenMetaData& record);

// Names the fields that differ.
::testing::AssertionResult sameFields(const Fields& actual, const Fields& expected);

// The modelled cursor and its data. Without a buffer every byte reads as zero.
class ModelledData : public CursorModel {
public:
    enum class Buffer { Present, Missing };

    ModelledData(const Bytes& bytes, unsigned firstBit, Buffer buffer = Buffer::Present);

    bool hasBuffer() const { return buffer_ == Buffer::Present; }
    bool atEnd() const { return bytePos() >= size_; }
    Cursor cursor() const { return {bytePos(), plainBitsUsed(), kRbspMark}; }

private:
    size_t size_;
    Buffer buffer_;
};

// The actual or expected outcome of a parser on a pattern record.
template <class Record>
struct Outcome {
    int result = kOk;
    Record record = patternRecord<Record>();
    std::vector<ExpectedLine> lines;
    Cursor cursor = atBit(0);
};

// The error line of a rejected call.
ExpectedLine errorLine(const std::string& function, const std::string& text);

template <class Record>
class AvcSeiTest : public CoreTest {
protected:
    // Runs parse(stream, record) on a pattern record, with an empty log, and compares everything it did.
    template <class Parse>
    static void check(QVByteStream& stream, Parse parse, const Outcome<Record>& expected) {
        core().lines.clear();
        Record record = patternRecord<Record>();
        EXPECT_EQ(parse(stream, &record), expected.result);
        EXPECT_TRUE(sameFields(fieldsOf(record), fieldsOf(expected.record)));
        EXPECT_EQ(cursorOf(stream), expected.cursor);
        expectLines(expected.lines);
    }

    template <class Parse>
    static void check(const Bytes& bytes, Parse parse, const Outcome<Record>& expected) {
        PayloadStream stream(bytes);
        check(stream, parse, expected);
    }

    // Rejected before anything is read, with one line.
    template <class Parse>
    static void checkRefused(Parse parse, const ExpectedLine& line) {
        core().lines.clear();
        PayloadStream stream(Bytes(40, 0xFF), 5);
        EXPECT_EQ(parse(stream), kFailed);
        EXPECT_EQ(cursorOf(stream), atBit(5));
        expectLines({line});
    }

    // Like check, with the outcome that contract(data) derives from what the modelled cursor reads.
    template <class Contract, class Parse>
    static void checkAgainst(Contract contract, Parse parse, const Bytes& bytes, unsigned firstBit) {
        ModelledData data(bytes, firstBit);
        PayloadStream stream(bytes, firstBit);
        check(stream, parse, contract(data));
    }

    // Every cut of what writePayload(BitWriter&) writes after 0 to 7 other bits.
    template <class Contract, class Parse, class WritePayload>
    static void checkEveryCut(Contract contract, Parse parse, WritePayload writePayload) {
        for (unsigned firstBit = 0; firstBit < 8; ++firstBit) {
            BitWriter syntax;
            syntax.u(firstBit, "bits of others", 0x7F);
            writePayload(syntax);
            SCOPED_TRACE(syntax.map());
            for (size_t bitCount = 0; bitCount <= syntax.bitCount() && !HasFailure(); ++bitCount) {
                SCOPED_TRACE("cut at bit " + std::to_string(bitCount));
                checkAgainst(contract, parse, syntax.bytesCutAt(bitCount), firstBit);
            }
        }
    }

    template <class Contract, class Parse>
    static void checkWithoutBuffer(Contract contract, Parse parse) {
        for (size_t size = 0; size <= 20; ++size) {
            for (unsigned firstBit = 0; firstBit < 8; ++firstBit) {
                SCOPED_TRACE(std::to_string(size) + " byte(s), from bit " + std::to_string(firstBit));
                ModelledData data(Bytes(size, 0x00), firstBit, ModelledData::Buffer::Missing);
                BufferlessStream stream(size);
                moveTo(stream, atBit(firstBit));
                check(stream, parse, contract(data));
            }
        }
    }

    // Random bytes, many of them small.
    template <class Contract, class Parse>
    static void checkAnyBytes(Contract contract, Parse parse) {
        std::mt19937 random(264);
        for (int i = 0; i < 5000 && !HasFailure(); ++i) {
            Bytes bytes(random() % 24);
            for (uint8_t& byte : bytes) {
                byte = static_cast<uint8_t>(random() % 3 == 0 ? random() % 4 : random());
            }
            SCOPED_TRACE(::testing::PrintToString(bytes));
            checkAgainst(contract, parse, bytes, random() % 8);
        }
    }
};

}  // namespace qv_test

#endif
