// parserAvcDataToSei passes each message to the parser of its payload type.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "AvcSeiRecord.h"
#include "QVNaluParser.h"

namespace qv_test {
namespace {

struct Wiring {
    int payloadType;
    Bytes body;  // the bytes from payload_size on
    int result;
    std::vector<std::string> functions;  // the functions that log, in order
    std::vector<Bytes> captured;
};

// Some parsers cannot fail and log nothing. Their message has size 0, but they read more, and the walk does
// not move back. The captured message of type 5 that follows shows that they were called.
const Wiring kWirings[] = {
    {0, {1, 0x80, 5, 1, 0xAA, 0x80}, kFailed, {"parserAvcBufferingPeriod"}, {}},
    {1, {2, 0xBB, 0xCC, 0x80}, kOk, {}, {{0xBB, 0xCC}}},
    {4, {2, 0xB5, 0x00, 5, 1, 0xAA, 0x80}, kFailed, {"parserAvcRegisteredUserData"}, {}},
    {5, {2, 0xBB, 0xCC, 0x80}, kOk, {}, {{0xBB, 0xCC}}},
    {6, {5, 0, 0, 0x80, 0, 0xC0, 5, 1, 0xAA, 0x80}, kFailed, {"parserAvcRecoveryPoint"}, {}},
    {45, {0, 0x82, 0x81, 0x10, 0x03, 5, 1, 0xAA, 0x80}, kOk, {}, {{0xAA}}},
    {47, {0, 0x40, 0x00, 0x05, 5, 1, 0xAA, 0x80}, kOk, {}, {{0xAA}}},
    {56, {0, 0x01, 0x00, 0x10, 0x68, 5, 1, 0xAA, 0x80}, kOk, {}, {{0xAA}}},
    {147, {0, 0x12, 5, 1, 0xAA, 0x80}, kOk, {}, {{0xAA}}},
};

class AvcSeiWiring : public CoreTest {
protected:
    static void expectCaptured(const std::vector<QVSeiItem>& items, const std::vector<Bytes>& captured) {
        ASSERT_EQ(items.size(), captured.size());
        for (size_t i = 0; i < items.size(); ++i) {
            EXPECT_EQ(Bytes(items[i].payloadData, items[i].payloadData + items[i].payloadSize), captured[i]);
            EXPECT_FALSE(items[i].isRequested);
            releaseBlock(items[i].payloadData);
        }
    }
};

TEST_F(AvcSeiWiring, everyTypeReachesItsParser) {
    for (const Wiring& wiring : kWirings) {
        SCOPED_TRACE("payloadType " + std::to_string(wiring.payloadType));
        core().lines.clear();
        Bytes rbsp = {static_cast<uint8_t>(wiring.payloadType)};
        rbsp.insert(rbsp.end(), wiring.body.begin(), wiring.body.end());
        std::vector<QVSeiItem> items;
        EXPECT_EQ(
            QVNaluParser::parserAvcDataToSei(rbsp.data(), static_cast<int>(rbsp.size()), items, nullptr, {}),
            wiring.result);
        std::vector<std::string> functions;
        for (const LogLine& line : core().lines) {
            functions.push_back(line.function);
        }
        EXPECT_EQ(functions, wiring.functions);
        expectCaptured(items, wiring.captured);
    }
}

}  // namespace
}  // namespace qv_test
