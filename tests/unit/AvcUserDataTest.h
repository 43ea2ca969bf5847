// Shared by the tests of the H.264 user data parsers: their contract and builders of payloads and outcomes.
#ifndef QV_TESTS_AVCUSERDATATEST_H
#define QV_TESTS_AVCUSERDATATEST_H

#include <climits>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "AvcSeiRecord.h"
#include "AvcSeiSyntax.h"
#include "QVNaluParser.h"

namespace qv_test {

using Afd = QVAvcSeiAfd;

constexpr uint32_t kGa94 = 0x47413934;
constexpr uint32_t kDtg1 = 0x44544731;
constexpr uint32_t kOther = 0x41424344;

inline ExpectedLine sizeError(int size) {
    return errorLine("parserAvcRegisteredUserData",
                     "parserAvcRegisteredUserData: size:" + std::to_string(size) + " error.\n");
}

inline ExpectedLine afdSizeError(int logged) {
    return errorLine("parserAvcRegisteredUserDataAfd",
                     "parserAvcRegisteredUserData afd: size:" + std::to_string(logged) + " error.\n");
}

inline ExpectedLine afdSecondSizeError(int logged) {
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

inline auto userDataContract(int payloadSize) {
    return [payloadSize](ModelledData& in) { return UserDataContract(in).userData(payloadSize); };
}

inline auto afdContract(int size) {
    return [size](ModelledData& in) { return UserDataContract(in).afd(size); };
}

inline auto captionContract(int size) {
    return [size](ModelledData& in) { return UserDataContract(in).caption(size); };
}

inline T35Syntax t35(uint32_t user_identifier, uint32_t itu_t_t35_country_code = 0xB5) {
    T35Syntax syntax;
    syntax.itu_t_t35_country_code = itu_t_t35_country_code;
    syntax.itu_t_t35_country_code_extension_byte = 0xB5;
    syntax.user_identifier = user_identifier;
    return syntax;
}

// cc_data() with cc_count constructs, all of them present.
inline CcDataSyntax ccData(uint32_t cc_count) {
    CcDataSyntax syntax;
    syntax.cc_count = cc_count;
    syntax.constructs.resize(cc_count);
    return syntax;
}

inline Bytes joined(Bytes first, const Bytes& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

inline Outcome<Afd> succeeds(size_t consumed) {
    Outcome<Afd> outcome;
    outcome.cursor = atBit(consumed * 8);
    return outcome;
}

inline Outcome<Afd> fails(size_t consumed, const std::vector<ExpectedLine>& lines) {
    Outcome<Afd> outcome = succeeds(consumed);
    outcome.result = kFailed;
    outcome.lines = lines;
    return outcome;
}

inline Outcome<Afd> givesFormat(uint8_t active_format, size_t consumed) {
    Outcome<Afd> outcome = succeeds(consumed);
    outcome.record.isValid = 1;
    outcome.record.active_format = active_format;
    return outcome;
}

// Sizes on both sides of every limit.
constexpr int kSizes[] = {INT_MIN, -1, 0,  1,  2,  3,  4,  5,  6,  7,  8,  9,      10,
                          11,      12, 13, 14, 15, 16, 17, 18, 19, 20, 24, INT_MAX};

}  // namespace qv_test

#endif
