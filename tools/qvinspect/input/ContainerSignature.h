// Containers known by their first bytes.
#ifndef QVINSPECT_CONTAINERSIGNATURE_H
#define QVINSPECT_CONTAINERSIGNATURE_H

#include <cstddef>

namespace qvinspect {

// The name of the container that a file begins like, or null. For telling containers from raw byte streams
// and for messages about those that cannot be opened: what a container holds is not looked at.
const char* containerSignature(const unsigned char* data, size_t size);

// A file of boxes (ISO/IEC 14496-12) whose samples stand ahead of what tells where they begin: it cannot be
// read from front to back. data: the first bytes of the file.
bool hasIndexBehindSamples(const unsigned char* data, size_t size);

}  // namespace qvinspect

#endif
