// What the operations are run on, and the plain work that they are held against.
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

// Larger than the caches of one core: small hot input flatters a search with branches.
constexpr size_t kCachePool = size_t{16} << 20;

// Larger than the last cache as well.
constexpr size_t kMemoryPool = size_t{256} << 20;

// No byte of the pools has this value.
constexpr unsigned char kAbsent = 0xFE;

// Payload as an encoder leaves it, any byte but no start code, cut into units that begin with a 4-byte start
// code and a non-reference slice's header byte.
Bytes byteStream(size_t size, size_t unitSize);

// A 3-byte start code, a header byte and the pattern, again and again.
Bytes repeatedPattern(size_t size, std::initializer_list<unsigned char> pattern);

// Buffers of the operations, one call each: they stand behind one another in one pool.
struct Samples {
    Bytes bytes;
    std::vector<std::pair<size_t, int>> pieces;  // offset, size

    const unsigned char* data(size_t i) const { return bytes.data() + pieces[i].first; }
    int size(size_t i) const { return pieces[i].second; }
    size_t count() const { return pieces.size(); }
};

// Pieces of size bytes each.
Samples cut(Bytes bytes, size_t size);

// Access units of a stream with one slice for each picture.
Samples accessUnits(Bytes stream, QVCodecID codec);

// Each piece with 4-byte length fields.
Samples lengthPrefixed(const Samples& samples);

Bytes readFile(const std::string& path);

// --- Yardsticks ---

void searchAbsentByte(const unsigned char* data, size_t size);

// malloc, memcpy, free.
void copyAndFree(const unsigned char* data, size_t size);

// The scratch array that a length field is read through, one for each unit.
void allocateScratch();

// The start-code scan as one writes it first: place by place, without a call.
void plainScan(const Bytes& bytes, NalIndexList& nalus);

// RBSP bytes of the coded bytes, one after the other. Returns how many.
size_t captureBytewise(const Bytes& coded, Bytes& out);

}  // namespace qv_bench

#endif
