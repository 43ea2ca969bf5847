// While one exists, blocks that malloc returns to the test program end right before an inaccessible page, or
// begin right after one: so do the working copies that the library reads from.
#ifndef QV_TESTS_GUARDEDHEAP_H
#define QV_TESTS_GUARDEDHEAP_H

#include <cstddef>
#include <memory>
#include <vector>

#include "GuardedBuffer.h"

namespace qv_test {

class GuardedHeap {
public:
    enum class Place { End, Begin };

    // Blocks of at most capacity bytes; a few at a time. One heap exists at a time, in one thread.
    explicit GuardedHeap(size_t capacity);
    ~GuardedHeap();
    GuardedHeap(const GuardedHeap&) = delete;
    GuardedHeap& operator=(const GuardedHeap&) = delete;

    void place(Place place) { place_ = place; }

    // Blocks allocated so far.
    size_t served() const { return served_; }

    // For malloc and free. Null or false: the heap does not allocate or did not allocate this block.
    static void* allocate(size_t size);
    static bool release(const void* memory);

private:
    struct Slot {
        std::unique_ptr<GuardedBuffer> memory;
        const void* block = nullptr;  // the block in use, or null
    };

    std::vector<Slot> slots_;
    Place place_ = Place::End;
    size_t served_ = 0;
};

}  // namespace qv_test

#endif
