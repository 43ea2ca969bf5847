// Writing to descriptors.
#ifndef QVINSPECT_WRITEALL_H
#define QVINSPECT_WRITEALL_H

#include <cstddef>

namespace qvinspect {

// Writes size bytes, also to a descriptor that does not block: it waits until there is room. Returns 0, or
// the errno of the failure. Part of the bytes may have been written by then.
int writeAll(int descriptor, const char* bytes, size_t size) noexcept;

}  // namespace qvinspect

#endif
