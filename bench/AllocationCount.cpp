#include "AllocationCount.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

unsigned long count = 0;
unsigned long bytes = 0;

void add(size_t size) {
    ++count;
    bytes += size;
}

}  // namespace

extern "C" void* __real_malloc(size_t size);
extern "C" void* __real_calloc(size_t number, size_t size);
extern "C" void* __real_realloc(void* memory, size_t size);
extern "C" void* __wrap_malloc(size_t size);
extern "C" void* __wrap_calloc(size_t number, size_t size);
extern "C" void* __wrap_realloc(void* memory, size_t size);

extern "C" void* __wrap_malloc(size_t size) {
    add(size);
    return __real_malloc(size);
}

extern "C" void* __wrap_calloc(size_t number, size_t size) {
    add(number * size);
    return __real_calloc(number, size);
}

extern "C" void* __wrap_realloc(void* memory, size_t size) {
    add(size);
    return __real_realloc(memory, size);
}

void* operator new(size_t size) {
    add(size);
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
    add(size);
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

unsigned long allocatedBytes() {
    return bytes;
}

}  // namespace qv_bench
