// The H.264 user_data_registered_itu_t_t35() payload, parserAvcRegisteredUserData.
#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "AvcUserDataTest.h"

namespace qv_test {
namespace {

auto parsingUserData(int payloadSize) {
    return [payloadSize](QVByteStream& stream, Afd* record) {
        return QVNaluParser::parserAvcRegisteredUserData(stream, payloadSize, record, nullptr);
    };
}

class AvcRegisteredUserData : public AvcSeiTest<Afd> {
protected:
    // Checks bytes with payloadSize set to their number.
    static void checkWhole(const Bytes& bytes, const Outcome<Afd>& expected) {
        check(bytes, parsingUserData(sizeOf(bytes)), expected);
    }
};

TEST_F(AvcRegisteredUserData, nullRecordIsCheckedFirst) {
    for (const int payloadSize : {INT_MIN, 0, 6, 7, 100}) {
        checkRefused([&](QVByteStream& stream) { return parsingUserData(payloadSize)(stream, nullptr); },
                     errorLine("parserAvcRegisteredUserData", "parserAvcRegisteredUserData: afd is NULL!\n"));
    }
}

TEST_F(AvcRegisteredUserData, sixBytesOrLessAreAnError) {
    for (const int payloadSize : {INT_MIN, -1, 0, 1, 5, 6}) {
        check(payload(t35(kOther)).bytes(), parsingUserData(payloadSize), fails(0, {sizeError(payloadSize)}));
    }
}

TEST_F(AvcRegisteredUserData, sevenBytesHandOnNothing) {
    checkWhole(payload(t35(kGa94)).bytes(), fails(7, {}));
    checkWhole(payload(t35(kDtg1)).bytes(), fails(7, {afdSizeError(-1)}));
    checkWhole(payload(t35(kOther)).bytes(), succeeds(7));
}

TEST_F(AvcRegisteredUserData, activeFormat) {
    checkWhole({0xB5, 0x00, 0x31, 'D', 'T', 'G', '1', 0x41, 0xF8}, givesFormat(8, 9));
}

TEST_F(AvcRegisteredUserData, activeFormatWithoutItsSecondByte) {
    checkWhole({0xB5, 0x00, 0x31, 'D', 'T', 'G', '1', 0x41}, fails(8, {afdSecondSizeError(-1)}));
}

TEST_F(AvcRegisteredUserData, activeFormatFlagZero) {
    checkWhole({0xB5, 0x00, 0x31, 'D', 'T', 'G', '1', 0x01}, succeeds(8));
    checkWhole({0xB5, 0x00, 0x31, 'D', 'T', 'G', '1', 0x01, 0xF8}, succeeds(8));
}

TEST_F(AvcRegisteredUserData, captions) {
    for (const uint32_t cc_count : {1U, 2U, 20U, 31U}) {
        const Bytes bytes = joined(payload(t35(kGa94)).bytes(), payload(ccData(cc_count)).bytes());
        checkWhole(bytes, succeeds(bytes.size()));
    }
}

TEST_F(AvcRegisteredUserData, captionsThatDoNotFitThePayloadStay) {
    // Five bytes follow the identifier; 5 - 2 is less than two constructs.
    checkWhole({0xB5, 0x00, 0x31, 'G', 'A', '9', '4', 3, 0xC2, 0xFF, 0xFC, 0x94}, succeeds(10));
}

TEST_F(AvcRegisteredUserData, D18_anyCountryAndProviderWillDo) {
    for (const uint32_t country : {0xB5U, 0x26U, 0x00U, 0xFEU}) {
        for (const uint32_t provider : {0x0031U, 0x002FU, 0x0000U, 0xFFFFU}) {
            T35Syntax header = t35(kDtg1, country);
            header.itu_t_t35_provider_code = provider;
            checkWhole(joined(payload(header).bytes(), {0x41, 0xFA}), givesFormat(10, 9));
        }
    }
}

TEST_F(AvcRegisteredUserData, identifiersAreComparedWhole) {
    for (const uint32_t identifier : {kGa94 + 1, kGa94 - 1, kGa94 ^ 0x80000000, kDtg1 + 1, kDtg1 ^ 0x20000000,
                                      0x64746731U, 0x39344741U, 0U, 0xFFFFFFFFU}) {
        checkWhole(joined(payload(t35(identifier)).bytes(), {0x41, 0xF8, 0x00}), succeeds(10));
    }
}

TEST_F(AvcRegisteredUserData, afterAnotherIdentifierTheRestIsSkippedWhenItFits) {
    const Bytes bytes = joined(payload(t35(kOther)).bytes(), Bytes(5, 0x11));
    check(bytes, parsingUserData(7), succeeds(7));
    check(bytes, parsingUserData(8), succeeds(8));
    check(bytes, parsingUserData(11), succeeds(11));
    check(bytes, parsingUserData(12), succeeds(12));
    check(bytes, parsingUserData(13), succeeds(7));
    check(bytes, parsingUserData(INT_MAX), succeeds(7));
}

TEST_F(AvcRegisteredUserData, aCountryCodeExtensionShiftsWhatFollows) {
    const Bytes captionHeader = payload(t35(kGa94, 0xFF)).bytes();
    const Bytes afdHeader = payload(t35(kDtg1, 0xFF)).bytes();
    ASSERT_EQ(captionHeader.size(), 8U);
    checkWhole(joined(afdHeader, {0x41, 0xFF}), givesFormat(15, 10));
    checkWhole(joined(afdHeader, {0x41}), fails(9, {afdSecondSizeError(-1)}));
    checkWhole(afdHeader, fails(8, {afdSizeError(-1)}));
    checkWhole(joined(captionHeader, payload(ccData(1)).bytes()), succeeds(15));
    checkWhole(captionHeader, fails(8, {}));
    checkWhole(joined(payload(t35(kOther, 0xFF)).bytes(), {1, 2, 3}), succeeds(11));
}

TEST_F(AvcRegisteredUserData, sevenBytesWithACountryCodeExtensionHandOnMinusOne) {
    check(payload(t35(kGa94, 0xFF)).bytes(), parsingUserData(7), fails(8, {}));
    check(payload(t35(kDtg1, 0xFF)).bytes(), parsingUserData(7), fails(8, {afdSizeError(-2)}));
    check(payload(t35(kOther, 0xFF)).bytes(), parsingUserData(7), succeeds(7));
}

TEST_F(AvcRegisteredUserData, aByteBackNeedsAWholeByte) {
    for (unsigned firstBit = 1; firstBit < 8; ++firstBit) {
        BitWriter syntax;
        syntax.u(firstBit, "preceding bits", 0);
        write(syntax, t35(kOther, 0xFF));
        PayloadStream stream(syntax.bytes(), firstBit);
        Outcome<Afd> expected;
        expected.cursor = atBit(8 * 8 + firstBit);
        check(stream, parsingUserData(7), expected);
    }
}

TEST_F(AvcRegisteredUserData, aByteBackFromTheOnlyByte) {
    check({0xFF}, parsingUserData(7), succeeds(0));
}

TEST_F(AvcRegisteredUserData, noData) {
    check(Bytes(), parsingUserData(7), succeeds(0));
    check(Bytes(), parsingUserData(20), succeeds(0));
}

TEST_F(AvcRegisteredUserData, theParameterSetIsNotUsed) {
    QVAvcSps sps;
    std::memset(&sps, 0xA5, sizeof sps);
    const QVAvcSps before = sps;
    check(
        {0xB5, 0x00, 0x31, 'D', 'T', 'G', '1', 0x41, 0xF8},
        [&](QVByteStream& stream, Afd* record) {
            return QVNaluParser::parserAvcRegisteredUserData(stream, 9, record, &sps);
        },
        givesFormat(8, 9));
    EXPECT_EQ(std::memcmp(&sps, &before, sizeof sps), 0);
}

TEST_F(AvcRegisteredUserData, everyAmountOfDataWithEverySize) {
    for (const uint32_t identifier : {kGa94, kDtg1, kOther}) {
        for (const uint32_t country : {0xB5U, 0xFFU}) {
            const Bytes header = payload(t35(identifier, country)).bytes();
            const Bytes body =
                identifier == kDtg1 ? Bytes{0x41, 0xF9, 0x41, 0xF9} : payload(ccData(2)).bytes();
            const Bytes all = joined(header, body);
            for (size_t present = 0; present <= all.size(); ++present) {
                for (const int payloadSize : kSizes) {
                    SCOPED_TRACE(::testing::Message()
                                 << std::hex << identifier << ", country " << country << std::dec << ", "
                                 << present << " byte(s), payloadSize " << payloadSize);
                    const Bytes bytes(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(present));
                    checkAgainst(userDataContract(payloadSize), parsingUserData(payloadSize), bytes, 0);
                }
            }
        }
    }
}

TEST_F(AvcRegisteredUserData, everyCut) {
    for (const int payloadSize : {7, 8, 9, 12, 15, 16, INT_MAX}) {
        for (const uint32_t country : {0xB5U, 0xFFU}) {
            for (const uint32_t identifier : {kGa94, kOther}) {
                checkEveryCut(userDataContract(payloadSize), parsingUserData(payloadSize),
                              [&](BitWriter& out) {
                                  write(out, t35(identifier, country));
                                  write(out, ccData(2));
                              });
            }
            checkEveryCut(userDataContract(payloadSize), parsingUserData(payloadSize), [&](BitWriter& out) {
                write(out, t35(kDtg1, country));
                write(out, AfdSyntax());
            });
        }
    }
}

TEST_F(AvcRegisteredUserData, withoutBuffer) {
    for (const int payloadSize : kSizes) {
        checkWithoutBuffer(userDataContract(payloadSize), parsingUserData(payloadSize));
    }
}

TEST_F(AvcRegisteredUserData, anyBytes) {
    for (const int payloadSize : {7, 9, 12}) {
        checkAnyBytes(userDataContract(payloadSize), parsingUserData(payloadSize));
    }
}

}  // namespace
}  // namespace qv_test
