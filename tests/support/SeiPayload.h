// The common part of the tests of the SEI payload parsers: streams over payloads, and records in which
// unwritten fields are recognisable.
#ifndef QV_TESTS_SEIPAYLOAD_H
#define QV_TESTS_SEIPAYLOAD_H

#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "BitWriter.h"
#include "QVByteStream.h"
#include "SeiTest.h"

namespace qv_test {

// The fields of a record, by name.
using Fields = std::vector<std::pair<std::string, uint64_t>>;

// The bytes of a record, padding included.
template <class Record>
Bytes bytesOf(const Record& record) {
    Bytes bytes(sizeof record);
    std::memcpy(bytes.data(), &record, sizeof record);
    return bytes;
}

// A record of bytes A5: unwritten fields are recognisable.
template <class Record>
Record patternRecord() {
    static_assert(std::is_trivially_copyable<Record>::value, "filled as bytes");
    Record record;
    std::memset(static_cast<void*>(&record), 0xA5, sizeof record);
    return record;
}

// The RBSP cursor of these tests, inside a byte: none of the parsers moves it.
constexpr unsigned kRbspMark = 3;

// The plain cursor after that many bits of the data.
Cursor atBit(uint64_t bits);

// A reader over an exact-size copy of bytes, startBit bits after the start.
class PayloadStream : public SeiStream {
public:
    explicit PayloadStream(const Bytes& bytes, uint64_t startBit = 0) : SeiStream(bytes, atBit(startBit)) {}
    explicit PayloadStream(const BitWriter& payload, uint64_t startBit = 0)
        : PayloadStream(payload.bytes(), startBit) {}
};

// A reader of size bytes without a buffer.
class BufferlessStream : public QVByteStream {
public:
    explicit BufferlessStream(uint64_t byteCount) {
        size = capacity = byteCount;
        rbspBitIndex = kRbspMark;
    }
};

}  // namespace qv_test

#endif
