#include <cstdlib>

#include "QVCoreStandalone.h"

extern "C" void qvFree(void* memory) {
    std::free(memory);
}
