// What parseHevcSps leaves in a record, and the fixture of its tests.
#ifndef QV_TESTS_HEVCSPSRECORD_H
#define QV_TESTS_HEVCSPSRECORD_H

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "BitWriter.h"
#include "QVNaluParser.h"
#include "RecordingCore.h"

namespace qv_test {

// A record of bytes A5: what is not written stays recognisable.
QVHevcSps patternHevcSps();

// Every field, by name.
::testing::AssertionResult sameHevcSps(const QVHevcSps& actual, const QVHevcSps& expected);

// What hevcSps() leaves in a pattern record.
QVHevcSps defaultHevcSps();

// What a parameter set of zero bits leaves in a pattern record.
QVHevcSps hevcSpsOfZeroBits();

// The one line of a parse.
ExpectedLine hevcProfileLine(int space, int tier, int profile, int level);

class HevcSpsTest : public CoreTest {
protected:
    // Parses the parameter set with emulation prevention inserted.
    bool parse(const BitWriter& syntax) { return parseBytes(withEmulationPrevention(syntax.bytes())); }

    // Parses an exact-size copy of the bytes into a pattern record, with an empty log.
    bool parseBytes(const Bytes& bytes);

    // The same, into the current record.
    bool parseOver(const Bytes& bytes);

    // The log was expected, and the record holds exactly this.
    void expectOutcome(const QVHevcSps& record, const std::vector<ExpectedLine>& lines) const;

    // In bits from the start of the data.
    uint64_t cursor() const { return stream->bytePos * 8 + (7 - stream->rbspBitIndex); }

    QVHevcSps sps = patternHevcSps();
    std::shared_ptr<QVByteStream> stream;
};

}  // namespace qv_test

#endif
