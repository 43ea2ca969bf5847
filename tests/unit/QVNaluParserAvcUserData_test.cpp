#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "AvcSeiRecord.h"
#include "AvcSeiSyntax.h"
#include "QVNaluParser.h"

namespace qv_test {
namespace {

using Afd = QVAvcSeiAfd;

static_assert(std::is_standard_layout<Afd>::value && std::is_trivial<Afd>::value);
static_assert(sizeof(Afd) == 8);
static_assert(offsetof(Afd, isValid) == 0);
static_assert(offsetof(Afd, active_format) == 4);
static_assert(std::is_same<decltype(Afd::isValid), uint32_t>::value);
static_assert(std::is_same<decltype(Afd::active_format), uint8_t>::value);

constexpr uint32_t kGa94 = 0x47413934;
constexpr uint32_t kDtg1 = 0x44544731;
constexpr uint32_t kOther = 0x41424344;

auto parsingUserData(int payloadSize) {
    return [payloadSize](QVByteStream& stream, Afd* record) {
        return QVNaluParser::parserAvcRegisteredUserData(stream, payloadSize, record, nullptr);
    };
}

auto parsingAfd(int size) {
    return [size](QVByteStream& stream, Afd* record) {
        return QVNaluParser::parserAvcRegisteredUserDataAfd(stream, size, record);
    };
}

auto parsingCaption(int size) {
    return [size](QVByteStream& stream, Afd* /*record*/) {
        return QVNaluParser::parserAvcRegisteredUserDataClosedCaption(stream, size);
    };
}

ExpectedLine sizeError(int size) {
    return errorLine("parserAvcRegisteredUserData",
                     "parserAvcRegisteredUserData: size:" + std::to_string(size) + " error.\n");
}

ExpectedLine afdSizeError(int logged) {
    return errorLine("parserAvcRegisteredUserDataAfd",
                     "parserAvcRegisteredUserData afd: size:" + std::to_string(logged) + " error.\n");
}

ExpectedLine afdSecondSizeError(int logged) {
    return errorLine("parserAvcRegisteredUserDataAfd",
                     "parserAvcRegisteredUserData afd: size:" + std::to_string(logged) + " error 2.\n");
}

// The contract, written step by step on the modelled cursor.
class UserDataContract {
public:
    explicit UserDataContract(ModelledData& in) : in_(in) {}

    Outcome<Afd> userData(int payloadSize) {
        if (payloadSize <= 6) {
            return failed({sizeError(payloadSize)});
        }
        int remaining = payloadSize - 7;
        if (in_.readBits(8) == 0xFF) {
            in_.skipBits(8);
            remaining = payloadSize - 8;
        }
        in_.skipBits(8);
        in_.skipBits(8);
        const uint32_t user_identifier = in_.readBits(32);
        if (user_identifier == kGa94) {
            return caption(remaining);
        }
        return user_identifier == kDtg1 ? afd(remaining) : skipRest(remaining);
    }

    Outcome<Afd> afd(int size) {
        if (size <= 0) {
            return failed({afdSizeError(size > INT_MIN ? size - 1 : INT_MAX)});
        }
        in_.skipBits(1);
        const uint32_t active_format_flag = in_.readBit();
        in_.skipBits(6);
        if (active_format_flag == 0) {
            return done();
        }
        if (size == 1) {
            return failed({afdSecondSizeError(-1)});
        }
        in_.skipBits(4);
        Outcome<Afd> outcome;
        outcome.record.active_format = static_cast<uint8_t>(in_.readBits(4));
        outcome.record.isValid = 1;
        outcome.cursor = in_.cursor();
        return outcome;
    }

    Outcome<Afd> caption(int size) {
        if (size < 3) {
            return failed({});
        }
        const bool hasTypeCode = in_.hasBuffer() && !in_.atEnd();
        if (hasTypeCode && in_.readBits(8) == 3) {
            ccData(size);
        } else {
            skipEachByte(size - 1);
        }
        return done();
    }

private:
    void ccData(int size) {
        in_.skipBits(1);
        if (in_.atEnd() || in_.readBit() == 0) {
            return;
        }
        in_.skipBits(1);
        const int cc_count = static_cast<int>(in_.readBits(5));
        in_.skipBits(8);
        if (cc_count == 0 || size - 2 < 3 * cc_count) {
            return;
        }
        for (int i = 0; i < cc_count; ++i) {
            in_.skipBits(24);
        }
        in_.skipBits(8);
    }

    // The data has at most 200 bytes, and at its end a skip of a byte does not fit.
    void skipEachByte(int count) {
        for (int i = 0; i < count && i < 200; ++i) {
            in_.skipBits(8);
        }
    }

    // A remaining size of -1 moves back one byte, unless bits of the current byte are consumed.
    Outcome<Afd> skipRest(int remaining) {
        if (remaining >= 0) {
            in_.skipBits(8 * static_cast<uint64_t>(remaining));
            return done();
        }
        Outcome<Afd> outcome = done();
        if (outcome.cursor.bitOffset == 0 && outcome.cursor.bytePos > 0) {
            --outcome.cursor.bytePos;
        }
        return outcome;
    }

    Outcome<Afd> done() const {
        Outcome<Afd> outcome;
        outcome.cursor = in_.cursor();
        return outcome;
    }

    Outcome<Afd> failed(const std::vector<ExpectedLine>& lines) const {
        Outcome<Afd> outcome = done();
        outcome.result = kFailed;
        outcome.lines = lines;
        return outcome;
    }

    ModelledData& in_;
};

auto userDataContract(int payloadSize) {
    return [payloadSize](ModelledData& in) { return UserDataContract(in).userData(payloadSize); };
}

auto afdContract(int size) {
    return [size](ModelledData& in) { return UserDataContract(in).afd(size); };
}

auto captionContract(int size) {
    return [size](ModelledData& in) { return UserDataContract(in).caption(size); };
}

T35Syntax t35(uint32_t user_identifier, uint32_t itu_t_t35_country_code = 0xB5) {
    T35Syntax syntax;
    syntax.itu_t_t35_country_code = itu_t_t35_country_code;
    syntax.itu_t_t35_country_code_extension_byte = 0xB5;
    syntax.user_identifier = user_identifier;
    return syntax;
}

// cc_data() with cc_count constructs, all of them present.
CcDataSyntax ccData(uint32_t cc_count) {
    CcDataSyntax syntax;
    syntax.cc_count = cc_count;
    syntax.constructs.resize(cc_count);
    return syntax;
}

Bytes joined(Bytes first, const Bytes& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Outcome<Afd> succeeds(size_t consumed) {
    Outcome<Afd> outcome;
    outcome.cursor = atBit(consumed * 8);
    return outcome;
}

Outcome<Afd> fails(size_t consumed, const std::vector<ExpectedLine>& lines) {
    Outcome<Afd> outcome = succeeds(consumed);
    outcome.result = kFailed;
    outcome.lines = lines;
    return outcome;
}

Outcome<Afd> givesFormat(uint8_t active_format, size_t consumed) {
    Outcome<Afd> outcome = succeeds(consumed);
    outcome.record.isValid = 1;
    outcome.record.active_format = active_format;
    return outcome;
}

// --- The T.35 header ---

class AvcRegisteredUserData : public AvcSeiTest<Afd> {
protected:
    // Checks bytes with payloadSize set to their number.
    static void checkWhole(const Bytes& bytes, const Outcome<Afd>& expected) {
        check(bytes, parsingUserData(sizeOf(bytes)), expected);
    }
};

TEST_F(AvcRegisteredUserData, nullRecordIsLookedAtFirst) {
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

TEST_F(AvcRegisteredUserData, behindAnotherIdentifierTheRestIsSkippedWhenItFits) {
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

// Sizes on both sides of every limit.
const int kSizes[] = {INT_MIN, -1, 0,  1,  2,  3,  4,  5,  6,  7,  8,  9,      10,
                      11,      12, 13, 14, 15, 16, 17, 18, 19, 20, 24, INT_MAX};

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

// --- Active format description ---

using AvcAfd = AvcSeiTest<Afd>;

TEST_F(AvcAfd, nullRecordIsLookedAtFirst) {
    for (const int size : {INT_MIN, 0, 1, 2}) {
        checkRefused(
            [&](QVByteStream& stream) { return parsingAfd(size)(stream, nullptr); },
            errorLine("parserAvcRegisteredUserDataAfd", "parserAvcRegisteredUserDataAfd: afd is NULL!\n"));
    }
}

TEST_F(AvcAfd, withoutASizeTheMessageNamesOneLess) {
    const struct {
        int size;
        int logged;
    } cases[] = {{0, -1}, {-1, -2}, {-7, -8}, {INT_MIN + 1, INT_MIN}, {INT_MIN, INT_MAX}};
    for (const auto& c : cases) {
        check({0x41, 0xF8}, parsingAfd(c.size), fails(0, {afdSizeError(c.logged)}));
    }
}

TEST_F(AvcAfd, everyActiveFormat) {
    for (uint8_t active_format = 0; active_format < 16; ++active_format) {
        AfdSyntax coded;
        coded.active_format = active_format;
        for (const int size : {2, 3, 100, INT_MAX}) {
            check(joined(payload(coded).bytes(), {0xFF}), parsingAfd(size), givesFormat(active_format, 2));
        }
    }
}

TEST_F(AvcAfd, reservedBitsChangeNothing) {
    for (uint32_t bits = 0; bits < 128; ++bits) {
        AfdSyntax coded;
        coded.zero = bits >> 6;
        coded.reserved6 = bits & 63;
        coded.reserved4 = bits & 15;
        check(payload(coded).bytes(), parsingAfd(2), givesFormat(8, 2));
    }
}

TEST_F(AvcAfd, withoutTheFlagTheRecordIsNotTouched) {
    for (const uint8_t first : Bytes{0x01, 0x00, 0x3F, 0x80, 0xBF}) {
        for (const int size : {1, 2, INT_MAX}) {
            check({first, 0xF8}, parsingAfd(size), succeeds(1));
        }
    }
}

TEST_F(AvcAfd, theFlagWithoutASecondByte) {
    check({0x41, 0xF8}, parsingAfd(1), fails(1, {afdSecondSizeError(-1)}));
    check({0x41}, parsingAfd(1), fails(1, {afdSecondSizeError(-1)}));
}

TEST_F(AvcAfd, aSecondByteThatIsOnlyPromised) {
    Outcome<Afd> expected = givesFormat(0, 1);
    expected.cursor = atBit(1 * 8 + 4);  // the skip of the reserved bits fits at the end of the data
    check({0x41}, parsingAfd(2), expected);
}

TEST_F(AvcAfd, noData) {
    Outcome<Afd> expected;
    expected.cursor = atBit(7);
    check(Bytes(), parsingAfd(2), expected);
}

TEST_F(AvcAfd, everyCut) {
    for (const uint32_t flag : {0U, 1U}) {
        AfdSyntax coded;
        coded.active_format_flag = flag;
        coded.active_format = 11;
        for (const int size : {INT_MIN, 0, 1, 2, INT_MAX}) {
            checkEveryCut(afdContract(size), parsingAfd(size), [&](BitWriter& out) { write(out, coded); });
        }
    }
}

TEST_F(AvcAfd, withoutBuffer) {
    for (const int size : {0, 1, 2}) {
        checkWithoutBuffer(afdContract(size), parsingAfd(size));
    }
}

// --- Captions ---

using AvcClosedCaption = AvcSeiTest<Afd>;

TEST_F(AvcClosedCaption, lessThanThreeBytesFailSilently) {
    for (const int size : {INT_MIN, -1, 0, 1, 2}) {
        check(payload(ccData(1)).bytes(), parsingCaption(size), fails(0, {}));
    }
}

TEST_F(AvcClosedCaption, everyCountThatFits) {
    for (uint32_t cc_count = 1; cc_count < 32; ++cc_count) {
        const Bytes bytes = joined(payload(ccData(cc_count)).bytes(), {0x55});
        const int size = 2 + 3 * static_cast<int>(cc_count);
        check(bytes, parsingCaption(size), succeeds(bytes.size() - 1));
        check(bytes, parsingCaption(size + 100), succeeds(bytes.size() - 1));
        check(bytes, parsingCaption(INT_MAX), succeeds(bytes.size() - 1));
    }
}

TEST_F(AvcClosedCaption, everyCountThatJustDoesNotFit) {
    for (uint32_t cc_count = 1; cc_count < 32; ++cc_count) {
        const int size = 2 + 3 * static_cast<int>(cc_count) - 1;
        check(payload(ccData(cc_count)).bytes(), parsingCaption(size), succeeds(3));
    }
}

TEST_F(AvcClosedCaption, withoutConstructsThereIsNoMarker) {
    check(payload(ccData(0)).bytes(), parsingCaption(4), succeeds(3));
}

TEST_F(AvcClosedCaption, withoutTheProcessFlagNothingFollows) {
    CcDataSyntax coded = ccData(2);
    coded.process_cc_data_flag = 0;
    Outcome<Afd> expected;
    expected.cursor = atBit(1 * 8 + 2);
    check(payload(coded).bytes(), parsingCaption(10), expected);
}

TEST_F(AvcClosedCaption, flagsThatAreNotKeptChangeNothing) {
    for (uint32_t flags = 0; flags < 4; ++flags) {
        CcDataSyntax coded = ccData(2);
        coded.process_em_data_flag = flags & 1;
        coded.additional_data_flag = flags >> 1;
        coded.em_data = flags;
        coded.marker_bits = 0;
        coded.constructs[0] = {0, 0, 3, 0, 0};
        check(payload(coded).bytes(), parsingCaption(9), succeeds(10));
    }
}

TEST_F(AvcClosedCaption, aConstructIsOneSkip) {
    // cc_count is 2, but only two bytes of the second construct are present. Its skip does not fit, the
    // marker's does.
    const Bytes bytes = {3, 0xC2, 0xFF, 0xFC, 0x94, 0x2C, 0xFC, 0x94};
    check(bytes, parsingCaption(10), succeeds(7));
    // The third and fourth constructs do not fit either.
    check({3, 0xC4, 0xFF, 0xFC, 0x94, 0x2C, 0xFC, 0x94}, parsingCaption(20), succeeds(7));
    check({3, 0xC1, 0xFF, 0xFC}, parsingCaption(5), succeeds(4));
    check({3, 0xC1, 0xFF}, parsingCaption(5), succeeds(3));
    check({3, 0xC1}, parsingCaption(5), succeeds(2));
}

TEST_F(AvcClosedCaption, aTypeCodeAndNoMore) {
    Outcome<Afd> expected;
    expected.cursor = atBit(1 * 8 + 1);  // the skip of process_em_data_flag fits at the end of the data
    check({3}, parsingCaption(3), expected);
}

TEST_F(AvcClosedCaption, otherTypeCodesSkipTheRestByteByByte) {
    for (unsigned code = 0; code < 256; ++code) {
        if (code != 3) {
            const Bytes bytes = {static_cast<uint8_t>(code), 0xC1, 0xFF, 0xFC, 0x94, 0x2C};
            check(bytes, parsingCaption(3), succeeds(3));
            check(bytes, parsingCaption(5), succeeds(5));
            check(bytes, parsingCaption(6), succeeds(6));
            check(bytes, parsingCaption(7), succeeds(6));
            check(bytes, parsingCaption(INT_MAX), succeeds(6));
        }
    }
}

TEST_F(AvcClosedCaption, noData) {
    for (const int size : {3, 100, INT_MAX}) {
        check(Bytes(), parsingCaption(size), succeeds(0));
    }
}

TEST_F(AvcClosedCaption, withoutBufferThereIsNoTypeCode) {
    BufferlessStream stream(10);
    check(stream, parsingCaption(4), succeeds(3));
    for (const int size : kSizes) {
        checkWithoutBuffer(captionContract(size), parsingCaption(size));
    }
}

TEST_F(AvcClosedCaption, everyCut) {
    CcDataSyntax otherCode = ccData(2);
    otherCode.user_data_type_code = 6;
    CcDataSyntax unprocessed = ccData(2);
    unprocessed.process_cc_data_flag = 0;
    for (const CcDataSyntax& coded : {ccData(0), ccData(1), ccData(3), otherCode, unprocessed}) {
        for (const int size : {2, 3, 4, 5, 10, 11, 12, INT_MAX}) {
            checkEveryCut(captionContract(size), parsingCaption(size),
                          [&](BitWriter& out) { write(out, coded); });
        }
    }
}

TEST_F(AvcClosedCaption, anyBytes) {
    for (const int size : {3, 8, INT_MAX}) {
        checkAnyBytes(captionContract(size), parsingCaption(size));
    }
}

}  // namespace
}  // namespace qv_test
