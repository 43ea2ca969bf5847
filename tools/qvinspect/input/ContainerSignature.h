// Recognises containers by their first bytes.
#ifndef QVINSPECT_CONTAINERSIGNATURE_H
#define QVINSPECT_CONTAINERSIGNATURE_H

#include <cstddef>

namespace qvinspect {

// The name of the container whose signature the data begins with, or null. It distinguishes containers from
// raw byte streams and names them in messages; the content of a container is not examined.
const char* containerSignature(const unsigned char* data, size_t size);

// A file of boxes (ISO/IEC 14496-12) whose samples precede their index: it cannot be read from front to back.
// data: the first bytes of the file.
bool hasIndexAfterSamples(const unsigned char* data, size_t size);

}  // namespace qvinspect

#endif
