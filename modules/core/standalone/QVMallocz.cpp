#include <cstdlib>

#include "QVMemory.h"

extern "C" void* qvMallocz(size_t size) {
    return std::calloc(1, size);
}
