// While one lives, blocks that malloc gives the test program end right ahead of an inaccessible page, or
// begin right behind one: so do the working copies that the library reads from.
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

    // Blocks of at most capacity bytes; a few at a time. One heap lives at a time, in one thread.
    explicit GuardedHeap(size_t capacity);
    ~GuardedHeap();
    GuardedHeap(const GuardedHeap&) = delete;
    GuardedHeap& operator=(const GuardedHeap&) = delete;

    void place(Place place) { place_ = place; }

    // Blocks given so far.
    size_t served() const { return served_; }

    // For malloc and free. Null: this block is not the heap's to give; false: nor to take back.
    static void* allocate(size_t size);
    static bool release(const void* memory);

private:
    struct Slot {
        std::unique_ptr<GuardedBuffer> memory;
        const void* block = nullptr;  // what of it is given out
    };

    std::vector<Slot> slots_;
    Place place_ = Place::End;
    size_t served_ = 0;
};

}  // namespace qv_test

#endif
