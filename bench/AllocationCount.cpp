#include "AllocationCount.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

unsigned long count = 0;

}  // namespace

extern "C" void* __real_malloc(size_t size);
extern "C" void* __real_calloc(size_t number, size_t size);
extern "C" void* __real_realloc(void* memory, size_t size);
extern "C" void* __wrap_malloc(size_t size);
extern "C" void* __wrap_calloc(size_t number, size_t size);
extern "C" void* __wrap_realloc(void* memory, size_t size);

extern "C" void* __wrap_malloc(size_t size) {
    ++count;
    return __real_malloc(size);
}

extern "C" void* __wrap_calloc(size_t number, size_t size) {
    ++count;
    return __real_calloc(number, size);
}

extern "C" void* __wrap_realloc(void* memory, size_t size) {
    ++count;
    return __real_realloc(memory, size);
}

void* operator new(size_t size) {
    ++count;
    void* const memory = __real_malloc(size > 0 ? size : 1);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void* operator new[](size_t size) {
    return operator new(size);
}

void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    ++count;
    return __real_malloc(size > 0 ? size : 1);
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

void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}

namespace qv_bench {

unsigned long allocations() {
    return count;
}

}  // namespace qv_bench
