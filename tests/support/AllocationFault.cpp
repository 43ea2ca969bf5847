#include "AllocationFault.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

struct Counter {
    bool isActive = false;
    int seen = 0;
    int failAt = 0;
};

thread_local Counter counters[3];

Counter& counterOf(qv_test::Allocator allocator) {
    return counters[static_cast<int>(allocator)];
}

bool isRefused(qv_test::Allocator allocator) {
    Counter& counter = counterOf(allocator);
    return counter.isActive && ++counter.seen == counter.failAt;
}

}  // namespace

extern "C" void* __real_malloc(size_t size);
extern "C" void* __wrap_malloc(size_t size);

extern "C" void* __wrap_malloc(size_t size) {
    return isRefused(qv_test::Allocator::Malloc) ? nullptr : __real_malloc(size);
}

void* operator new(size_t size) {
    void* const memory = isRefused(qv_test::Allocator::New) ? nullptr : __real_malloc(size > 0 ? size : 1);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void* operator new[](size_t size) {
    return operator new(size);
}

void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    return isRefused(qv_test::Allocator::NothrowNewArray) ? nullptr : __real_malloc(size > 0 ? size : 1);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept {
    std::free(memory);
}

void operator delete[](void* memory) noexcept {
    std::free(memory);
}

void operator delete[](void* memory, size_t) noexcept {
    std::free(memory);
}

namespace qv_test {

AllocationFault::AllocationFault(Allocator allocator, int nth) : allocator_(allocator) {
    counterOf(allocator) = {true, 0, nth};
}

AllocationFault::~AllocationFault() {
    counterOf(allocator_) = Counter();
}

int AllocationFault::seen() const {
    return counterOf(allocator_).seen;
}

bool AllocationFault::triggered() const {
    const Counter& counter = counterOf(allocator_);
    return counter.failAt > 0 && counter.seen >= counter.failAt;
}

}  // namespace qv_test
