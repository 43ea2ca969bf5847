#include <cstdlib>

#include "QVMemory.h"

extern "C" void* qvMalloc(size_t size) {
    return std::malloc(size);
}
