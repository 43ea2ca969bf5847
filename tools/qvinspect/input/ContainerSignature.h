// Containers known by their first bytes.
#ifndef QVINSPECT_CONTAINERSIGNATURE_H
#define QVINSPECT_CONTAINERSIGNATURE_H

#include <cstddef>

namespace qvinspect {

// The name of the container that a file begins like, or null. For telling containers from raw byte streams
// and for messages about those that cannot be opened: what a container holds is not looked at.
const char* containerSignature(const unsigned char* data, size_t size);

}  // namespace qvinspect

#endif
