#include "AllocationFault.h"

#include <cstddef>
#include <cstdlib>
#include <new>

#include "GuardedHeap.h"

namespace {

struct Counter {
    bool isActive = false;
    int seen = 0;
    size_t bytes = 0;
    int failAt = 0;
};

thread_local Counter counters[3];
thread_local long live = 0;
thread_local int exemptions = 0;

Counter& counterOf(qv_test::Allocator allocator) {
    return counters[static_cast<int>(allocator)];
}

bool isRefused(qv_test::Allocator allocator, size_t size) {
    Counter& counter = counterOf(allocator);
    if (exemptions > 0 || !counter.isActive) {
        return false;
    }
    counter.bytes += size;
    return ++counter.seen == counter.failAt;
}

}  // namespace

extern "C" void* __real_malloc(size_t size);
extern "C" void __real_free(void* memory);
extern "C" void* __wrap_malloc(size_t size);
extern "C" void __wrap_free(void* memory);

namespace {

void* counted(void* memory) {
    live += memory != nullptr ? 1 : 0;
    return memory;
}

}  // namespace

extern "C" void* __wrap_malloc(size_t size) {
    if (isRefused(qv_test::Allocator::Malloc, size)) {
        return nullptr;
    }
    void* const guarded = qv_test::GuardedHeap::allocate(size);
    return counted(guarded != nullptr ? guarded : __real_malloc(size));
}

extern "C" void __wrap_free(void* memory) {
    live -= memory != nullptr ? 1 : 0;
    if (!qv_test::GuardedHeap::release(memory)) {
        __real_free(memory);
    }
}

void* operator new(size_t size) {
    void* const memory =
        isRefused(qv_test::Allocator::New, size) ? nullptr : counted(__real_malloc(size > 0 ? size : 1));
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void* operator new[](size_t size) {
    return operator new(size);
}

void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    return isRefused(qv_test::Allocator::NothrowNewArray, size) ? nullptr
                                                                : counted(__real_malloc(size > 0 ? size : 1));
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
    counterOf(allocator) = {true, 0, 0, nth};
}

AllocationFault::~AllocationFault() {
    counterOf(allocator_) = Counter();
}

int AllocationFault::seen() const {
    return counterOf(allocator_).seen;
}

size_t AllocationFault::bytes() const {
    return counterOf(allocator_).bytes;
}

bool AllocationFault::triggered() const {
    const Counter& counter = counterOf(allocator_);
    return counter.failAt > 0 && counter.seen >= counter.failAt;
}

AllocationExemption::AllocationExemption() {
    ++exemptions;
}

AllocationExemption::~AllocationExemption() {
    --exemptions;
}

long liveBlocks() {
    return live;
}

}  // namespace qv_test
