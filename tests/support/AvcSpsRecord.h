// What parseAvcSps leaves in a record, and the fixture of its tests.
#ifndef QV_TESTS_AVCSPSRECORD_H
#define QV_TESTS_AVCSPSRECORD_H

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "BitWriter.h"
#include "QVNaluParser.h"
#include "RecordingCore.h"

namespace qv_test {

// A record of bytes A5: unwritten fields are recognisable.
QVAvcSps patternAvcSps();

// Every field, by name.
::testing::AssertionResult sameAvcSps(const QVAvcSps& actual, const QVAvcSps& expected);

// The steps of the parser that write to the record, in order.
enum class AvcSpsStep { None, Head, Profile, FrameNum, Poc, RefFrames, MbSize, FrameCoding, Crop, Vui };

// The record after the given step of avcSps(), or of highAvcSps(), parsed into a pattern record.
QVAvcSps avcSpsAfter(AvcSpsStep last);
QVAvcSps highAvcSpsAfter(AvcSpsStep last);

// The debug lines of an accepted parameter set.
ExpectedLine avcSummary(const std::string& text);
ExpectedLine avcCropNotice(const std::string& offsets);

// The error line of a sub-step.
ExpectedLine avcError(const std::string& function, const std::string& text);

class AvcSpsTest : public CoreTest {
protected:
    // Parses an exact-size copy of the bytes into a pattern record, with an empty log.
    bool parse(const Bytes& bytes);
    bool parse(const BitWriter& syntax) { return parse(syntax.bytes()); }

    // The same, into the current record.
    bool parseOver(const Bytes& bytes);
    bool parseOver(const BitWriter& syntax) { return parseOver(syntax.bytes()); }

    // The log was expected, and the record holds exactly this.
    void expectOutcome(const QVAvcSps& record, const std::vector<ExpectedLine>& lines) const;

    // In bits from the start of the data.
    uint64_t cursor() const { return stream->bytePos * 8 + stream->bitOffset; }

    QVAvcSps sps = patternAvcSps();
    std::shared_ptr<QVByteStream> stream;
};

}  // namespace qv_test

#endif
