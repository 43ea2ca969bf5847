// What the H.265 SEI payload parsers and the HDR conversion leave in a record, by field name.
#ifndef QV_TESTS_HEVCSEIRECORDS_H
#define QV_TESTS_HEVCSEIRECORDS_H

#include <gtest/gtest.h>

#include "QVNaluParser.h"
#include "SeiPayload.h"

namespace qv_test {

// Every field of a record, in the record's order.
Fields fieldsOf(const QVHevcSeiMasteringDisplay& record);
Fields fieldsOf(const QVHevcSeiContentLight& record);
Fields fieldsOf(const QVHevcSeiAlternativeTransfer& record);
Fields fieldsOf(const QVHevcSeiPictureTiming& record);
Fields fieldsOf(const QVHevcSeiPictureHash& record);
Fields fieldsOf(const QVHevcSeiFramePacking& record);
Fields fieldsOf(const QVHevcSeiDisplayOrientation& record);
Fields fieldsOf(const QVHDR10StaticMetadata& record);

// The outcome of one call on a pattern record.
template <class Record>
struct Parsed {
    int result;
    Record record;
    Cursor cursor;
};

template <class Record>
Parsed<Record> parse(int (*parser)(QVByteStream&, int, Record*), QVByteStream& stream, int payloadSize) {
    Parsed<Record> parsed = {-1, patternRecord<Record>(), {}};
    parsed.result = parser(stream, payloadSize, &parsed.record);
    parsed.cursor = cursorOf(stream);
    return parsed;
}

// Status 0, with that record and the stream at that place.
template <class Record>
void expectParsed(const Parsed<Record>& parsed, const Record& record, const Cursor& cursor) {
    EXPECT_EQ(parsed.result, 0);
    EXPECT_EQ(fieldsOf(parsed.record), fieldsOf(record));
    EXPECT_EQ(parsed.cursor, cursor);
}

}  // namespace qv_test

#endif
