// Every public operation of the library as a call on bytes that the caller chooses the place of.
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

// A reader on the caller's own bytes, where they stand.
class PlacedReader : public QVByteStream {
public:
    PlacedReader(unsigned char* bytes, size_t count) {
        ownsData = false;
        data = bytes;
        size = capacity = count;
    }
};

// What an operation is told besides the bytes. Each takes what it needs.
struct Parameters {
    QVCodecID codec = QVCodecIDAvc;
    int lengthSize = 4;
    int naluType = 39;
    int payloadType = 5;
    int payloadSize = 20;
    Requested requested;
    Cursor cursor{0, 0, 7};
    QVAvcSps avcSps{};
    QVHevcSps hevcSps{};
};

// Anything a caller may say of size bytes.
Parameters randomParameters(std::mt19937& random, size_t size);

// What an operation leaves with its caller. Releases what is the caller's to release.
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
    Bytes record;            // the record that a parser filled, as it lies in memory
    Cursor cursor{0, 0, 7};  // where the reader stands afterwards
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
