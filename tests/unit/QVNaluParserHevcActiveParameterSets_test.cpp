// The H.265 active_parameter_sets() payload, parserHevcActiveParameterSets.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <numeric>
#include <string>
#include <vector>

#include "HevcSeiRecords.h"
#include "HevcSeiSyntax.h"
#include "QVNaluParser.h"
#include "SyntaxElements.h"

namespace qv_test {
namespace {

ExpectedLine numInvalid(const std::string& value) {
    return {0, "parserHevcActiveParameterSets",
            "parserHevcActiveParameterSets: num_sps_ids_minus1(" + value + ") is invalid!\n"};
}

ExpectedLine idInvalid(const std::string& value) {
    return {0, "parserHevcActiveParameterSets",
            "parserHevcActiveParameterSets: active_seq_parameter_set_id(" + value + ") is invalid!\n"};
}

// Returns the syntax with all its identifiers, up to 21, counting up from firstId.
HevcActiveParameterSetsSyntax activeParameterSets(uint32_t num_sps_ids_minus1, uint32_t firstId) {
    HevcActiveParameterSetsSyntax syntax;
    syntax.num_sps_ids_minus1 = num_sps_ids_minus1;
    syntax.active_seq_parameter_set_id.resize(std::min(num_sps_ids_minus1, 20U) + 1);
    std::iota(syntax.active_seq_parameter_set_id.begin(), syntax.active_seq_parameter_set_id.end(), firstId);
    return syntax;
}

class HevcActiveParameterSets : public CoreTest {
protected:
    // From each start in the first byte, checks the result and that the stream is after the named element.
    static void expectStop(const HevcActiveParameterSetsSyntax& syntax, int result,
                           const std::string& element) {
        for (unsigned lead = 0; lead < 8; ++lead) {
            const BitWriter payload = hevcSei(syntax, lead);
            SCOPED_TRACE(payload.map());
            PayloadStream stream(payload, lead);
            EXPECT_EQ(QVNaluParser::parserHevcActiveParameterSets(stream, 4), result);
            EXPECT_EQ(cursorOf(stream), atBit(endOf(payload, element)));
        }
    }

    static void expectStopAt(QVByteStream& stream, uint64_t bit) {
        EXPECT_EQ(QVNaluParser::parserHevcActiveParameterSets(stream, 4), 0);
        EXPECT_EQ(cursorOf(stream), atBit(bit));
    }
};

TEST_F(HevcActiveParameterSets, D22_oneIdentifierFewerIsRead) {
    for (uint32_t num = 0; num <= 15; ++num) {
        SCOPED_TRACE(num);
        const size_t last = num == 0 ? 0 : num - 1;
        for (const uint32_t firstId : {0U, 1U, 7U, 15U}) {
            expectStop(activeParameterSets(num, firstId), 0, indexed("active_seq_parameter_set_id", last));
        }
    }
    expectNoLines();
}

TEST_F(HevcActiveParameterSets, D22_golden) {
    PayloadStream one(Bytes{0x0F});  // 0000 1 1 1 1
    expectStopAt(one, 8);
    PayloadStream four(Bytes{0x04, 0x94, 0xC9});  // 0000 0 1 00100 1 010 011 00100 1
    expectStopAt(four, 18);
    expectNoLines();
}

TEST_F(HevcActiveParameterSets, tooManyIdentifiers) {
    const struct {
        uint32_t num_sps_ids_minus1;
        const char* text;
    } rows[] = {{16, "16"},
                {17, "17"},
                {255, "255"},
                {65536, "65536"},
                {2147483647, "2147483647"},
                {2147483648, "-2147483648"},  // the log prints it as a signed number
                {4294967294, "-2"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.num_sps_ids_minus1);
        core().lines.clear();
        expectStop(activeParameterSets(row.num_sps_ids_minus1, 0), 11000001, "num_sps_ids_minus1");
        expectLines(std::vector<ExpectedLine>(8, numInvalid(row.text)));
    }
}

TEST_F(HevcActiveParameterSets, firstIdentifierOutOfRange) {
    const struct {
        uint32_t id;
        const char* text;
    } rows[] = {{16, "16"}, {17, "17"}, {255, "255"}, {2147483648, "-2147483648"}, {4294967294, "-2"}};
    for (const auto& row : rows) {
        for (const uint32_t num : {0U, 1U, 2U, 15U}) {
            SCOPED_TRACE(std::to_string(row.id) + " first of " + std::to_string(num + 1));
            core().lines.clear();
            HevcActiveParameterSetsSyntax syntax = activeParameterSets(num, 0);
            syntax.active_seq_parameter_set_id[0] = row.id;
            expectStop(syntax, 11000001, "active_seq_parameter_set_id[0]");
            expectLines(std::vector<ExpectedLine>(8, idInvalid(row.text)));
        }
    }
}

TEST_F(HevcActiveParameterSets, bothOutOfRangeReportsTheCount) {
    expectStop(activeParameterSets(16, 16), 11000001, "num_sps_ids_minus1");
    expectLines(std::vector<ExpectedLine>(8, numInvalid("16")));
}

TEST_F(HevcActiveParameterSets, furtherIdentifiersHaveNoLimit) {
    HevcActiveParameterSetsSyntax syntax;
    syntax.num_sps_ids_minus1 = 4;
    syntax.active_seq_parameter_set_id = {15, 16, 4294967294, 1000, 3};
    expectStop(syntax, 0, "active_seq_parameter_set_id[3]");
    expectNoLines();
}

TEST_F(HevcActiveParameterSets, theElementsBeforeItAreDropped) {
    HevcActiveParameterSetsSyntax syntax = activeParameterSets(2, 3);
    syntax.active_video_parameter_set_id = 15;
    syntax.self_contained_cvs_flag = 1;
    syntax.no_parameter_set_update_flag = 1;
    expectStop(syntax, 0, "active_seq_parameter_set_id[1]");
    expectNoLines();
}

// The payload 0000 0 1 00100 1 010 011 00100, cut to 0, 1, 2 and 3 bytes. A code without a 1 bit is 0 and
// ends at the end of the data. There, each further code consumes one bit.
TEST_F(HevcActiveParameterSets, shortPayloads) {
    HevcActiveParameterSetsSyntax syntax = activeParameterSets(3, 0);
    syntax.no_parameter_set_update_flag = 1;
    const BitWriter payload = hevcSei(syntax);
    ASSERT_EQ(payload.bytes(), (Bytes{0x04, 0x94, 0xC8}));
    const uint64_t stops[] = {2, 8 + 1, 16, 18};
    for (size_t size = 0; size <= 3; ++size) {
        SCOPED_TRACE(size);
        PayloadStream stream(payload.bytesCutAt(size * 8));
        expectStopAt(stream, stops[size]);
    }
    expectNoLines();
}

TEST_F(HevcActiveParameterSets, identifiersAfterTheDataMoveTheBitOffsetPastTheEnd) {
    // 0000 0 1 000010000 1: num_sps_ids_minus1 15 and the first identifier. The next 14 are missing.
    PayloadStream stream(Bytes{0x04, 0x21});
    expectStopAt(stream, 16 + 14);
    expectNoLines();
}

TEST_F(HevcActiveParameterSets, cutAtEveryBit) {
    for (const uint32_t num : {0U, 1U, 3U, 15U}) {
        HevcActiveParameterSetsSyntax syntax = activeParameterSets(num, 15);
        syntax.active_video_parameter_set_id = 9;
        for (unsigned lead = 0; lead < 8; ++lead) {
            const BitWriter payload = hevcSei(syntax, lead);
            for (size_t bits = lead; bits <= payload.bitCount(); ++bits) {
                SCOPED_TRACE(std::to_string(num) + " after " + std::to_string(lead) + " cut at " +
                             std::to_string(bits));
                PayloadStream stream(payload.bytesCutAt(bits), lead);
                EXPECT_EQ(QVNaluParser::parserHevcActiveParameterSets(stream, 4), 0);
            }
        }
    }
    expectNoLines();
}

TEST_F(HevcActiveParameterSets, nothingToRead) {
    PayloadStream empty((Bytes()));
    expectStopAt(empty, 2);
    PayloadStream atEnd(Bytes{0xFF, 0xFF}, 16);
    expectStopAt(atEnd, 16 + 2);
    expectNoLines();
}

// The VPS identifier is not read. The flags take two bits, and num_sps_ids_minus1 reads zero bits up to the
// end. If no bit is left for it, it consumes one bit past the end, and so does the SPS identifier.
TEST_F(HevcActiveParameterSets, withoutABuffer) {
    for (uint64_t start = 0; start < 24; ++start) {
        SCOPED_TRACE(start);
        BufferlessStream stream(3);
        moveTo(stream, atBit(start));
        expectStopAt(stream, start + 2 < 24 ? 24 + 1 : 24 + 2);
    }
    expectNoLines();
}

TEST_F(HevcActiveParameterSets, payloadSizeIsNotUsed) {
    for (const int payloadSize : {INT_MIN, -1, 0, 1, INT_MAX}) {
        PayloadStream stream(Bytes{0x04, 0x94, 0xC9});
        EXPECT_EQ(QVNaluParser::parserHevcActiveParameterSets(stream, payloadSize), 0);
        EXPECT_EQ(cursorOf(stream), atBit(18));
    }
}

}  // namespace
}  // namespace qv_test
