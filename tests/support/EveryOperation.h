// Every public operation of the library as a call on bytes at a place that the caller chooses.
#ifndef QV_TESTS_EVERYOPERATION_H
#define QV_TESTS_EVERYOPERATION_H

#include <cstdint>
#include <deque>
#include <iosfwd>
#include <random>
#include <string>
#include <vector>

#include "QVNaluParser.h"
#include "ReferenceFraming.h"
#include "SeiTest.h"

namespace qv_test {

// A reader on the caller's bytes, in place.
class PlacedReader : public QVByteStream {
public:
    PlacedReader(unsigned char* bytes, size_t count) {
        ownsData = false;
        data = bytes;
        size = capacity = count;
    }
};

// The parameters of an operation besides the bytes. Each takes what it needs.
struct Parameters {
    QVCodecID codec = QVCodecIDAvc;
    int lengthSize = 4;
    int naluType = 39;
    int payloadType = 5;
    int payloadSize = 20;
    int64_t count = 1;  // of bits or bytes that a reader reads, skips or seeks
    Requested requested;
    Cursor cursor{0, 0, 7};
    QVAvcSps avcSps{};
    QVHevcSps hevcSps{};
};

// Any parameters that a caller may pass with size bytes.
Parameters randomParameters(std::mt19937& random, size_t size);

// What an operation leaves with its caller. Releases what the caller owns.
class Caller {
public:
    Caller();
    ~Caller();
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;

    std::vector<KeptItem> kept() const;

    NalIndexList nalus;
    std::vector<QVNaluParser::NaluInfo> infos;
    Bytes out;
    std::vector<QVSeiItem> items;
    unsigned char* buffer = nullptr;
    int bufferSize = -7;
    Bytes record;            // the record that a parser filled or the values that were read, as bytes
    Cursor cursor{0, 0, 7};  // of the reader afterwards
};

// All of it as a value.
struct Outcome {
    int result;
    NalIndexList nalus;
    std::vector<std::string> infos;
    Bytes out;
    std::vector<KeptItem> items;
    Bytes buffer;
    int bufferSize;
    Bytes record;
    Cursor cursor;
};

Outcome outcomeOf(int result, const Caller& caller);
bool operator==(const Outcome& a, const Outcome& b);
std::ostream& operator<<(std::ostream& out, const Outcome& outcome);

struct Operation {
    const char* name;
    int (*call)(unsigned char* data, size_t size, const Parameters& parameters, Caller& caller);
};

const std::vector<Operation>& everyOperation();

}  // namespace qv_test

#endif
