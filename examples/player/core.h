// The part of the player's core beyond the platform functions: counts, the renderer's HDR Vivid record, and
// the function that releases the library's blocks.
#ifndef PLAYER_CORE_H
#define PLAYER_CORE_H

#include <stddef.h>
#include <stdint.h>

// This player's HDR Vivid record. The core defines its layout.
struct QVHDRVividDynamicMetadata {
    uint32_t averagePq;  // 12-bit PQ codes
    uint32_t maximumPq;
};

namespace player {

struct CoreCounts {
    size_t logLines;
    size_t allocations;  // calls of qvMalloc and qvMallocz
    size_t liveBlocks;   // their blocks and side data that are not yet released
};

const CoreCounts& coreCounts();

// Releases a block from qvMalloc or qvMallocz, or side data. Null is allowed.
void release(void* block);

}  // namespace player

#endif
