// Bytes between two inaccessible pages: a read on the wrong side of either end is a segmentation fault, with
// or without a sanitizer, also in vector code.
#ifndef QV_TESTS_GUARDEDBUFFER_H
#define QV_TESTS_GUARDEDBUFFER_H

#include <cstddef>

#include "BitWriter.h"

namespace qv_test {

class GuardedBuffer {
public:
    // Room for capacity bytes, rounded up to whole pages.
    explicit GuardedBuffer(size_t capacity);
    ~GuardedBuffer();
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;

    // Copies bytes, at most capacity of them, so that they end right before the inaccessible page, or begin
    // right after one. Valid until the next call.
    unsigned char* placeAtEnd(const Bytes& bytes);
    unsigned char* placeAtBegin(const Bytes& bytes);

    // The first of the last size bytes, at most capacity, and the first byte of all.
    unsigned char* end(size_t size) const;
    unsigned char* begin() const { return mapping_ + pageSize_; }

    size_t capacity() const { return capacity_; }

private:
    unsigned char* mapping_;
    size_t pageSize_;
    size_t capacity_;
};

}  // namespace qv_test

#endif
