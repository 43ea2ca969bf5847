// What the player's core gives beyond the platform functions: counts, HDR Vivid for the renderer, and the
// release of what the library hands over.
#ifndef PLAYER_CORE_H
#define PLAYER_CORE_H

#include <stddef.h>
#include <stdint.h>

// This player's HDR Vivid record: its layout is the core's own affair.
struct QVHDRVividDynamicMetadata {
    uint32_t averagePq;  // 12-bit PQ codes
    uint32_t maximumPq;
};

namespace player {

struct CoreCounts {
    size_t logLines;
    size_t allocations;  // of qvMalloc and qvMallocz
    size_t liveBlocks;   // of them, and of side data
};

const CoreCounts& coreCounts();

// Releases a block of qvMalloc or qvMallocz, or side data. Null is allowed.
void release(void* block);

}  // namespace player

#endif
