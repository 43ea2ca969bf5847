// The input of the operations, and the yardsticks: simple work that they are compared with.
#ifndef QV_BENCH_POOLS_H
#define QV_BENCH_POOLS_H

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "QVCodecParameters.h"

namespace qv_bench {

using Bytes = std::vector<unsigned char>;
using Shared = std::shared_ptr<const Bytes>;
using NalIndexList = std::vector<std::pair<int, int>>;

// Larger than the caches of one core: on small input that stays in the cache, a search with branches looks
// faster than it is.
constexpr size_t kCachePool = size_t{16} << 20;

// Larger than the last-level cache.
constexpr size_t kMemoryPool = size_t{256} << 20;

// No byte of the pools has this value.
constexpr unsigned char kAbsent = 0xFE;

// A byte stream of units of unitSize bytes. Each unit has a 4-byte start code, the header byte of a
// non-reference slice and a random payload without start codes, as an encoder writes it.
Bytes byteStream(size_t size, size_t unitSize);

// A 3-byte start code, a header byte, and repetitions of the pattern.
Bytes repeatedPattern(size_t size, std::initializer_list<unsigned char> pattern);

// The input buffers of consecutive calls, concatenated in one pool.
struct Samples {
    Bytes bytes;
    std::vector<std::pair<size_t, int>> pieces;  // offset, size

    const unsigned char* data(size_t i) const { return bytes.data() + pieces[i].first; }
    int size(size_t i) const { return pieces[i].second; }
    size_t count() const { return pieces.size(); }
};

// Cuts bytes into pieces of size bytes.
Samples cut(Bytes bytes, size_t size);

// Cuts a stream into its access units. Each picture must be one slice.
Samples accessUnits(Bytes stream, QVCodecID codec);

// Converts each piece to 4-byte length fields.
Samples lengthPrefixed(const Samples& samples);

Bytes readFile(const std::string& path);

// --- Yardsticks ---

void searchAbsentByte(const unsigned char* data, size_t size);

// malloc, memcpy, free.
void copyAndFree(const unsigned char* data, size_t size);

// Allocates and releases the scratch array that the library uses to read a length field, one for each unit.
void allocateScratch();

// A straightforward start-code scan: tests every position, without calling a search function.
void plainScan(const Bytes& bytes, NalIndexList& nalus);

// Extracts the RBSP bytes of the coded bytes, one at a time. Returns their number.
size_t captureBytewise(const Bytes& coded, Bytes& out);

}  // namespace qv_bench

#endif
