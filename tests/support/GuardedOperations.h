// Operations on bytes that end right before an inaccessible page and on the same bytes right after one. The
// library's working copies of them are placed likewise, and none may be larger than the bytes. Both calls
// must have the same outcome.
#ifndef QV_TESTS_GUARDEDOPERATIONS_H
#define QV_TESTS_GUARDEDOPERATIONS_H

#include <cstddef>

#include "EveryOperation.h"
#include "GuardedBuffer.h"
#include "GuardedHeap.h"

namespace qv_test {

class GuardedOperations {
public:
    // For inputs of at most capacity bytes.
    explicit GuardedOperations(size_t capacity) : memory_(capacity), heap_(capacity) {}

    // Every operation.
    void call(const Bytes& bytes, const Parameters& parameters);

    // The framing operations, against the slow references.
    void compareWithReferences(const Bytes& bytes);

    bool hasUsedTheHeap() const { return heap_.served() > 0; }

private:
    template <class Check>
    void atBothEnds(const Bytes& bytes, Check check);

    GuardedBuffer memory_;
    GuardedHeap heap_;
};

}  // namespace qv_test

#endif
