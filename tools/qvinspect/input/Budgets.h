// What one input may cost. A few bytes can ask for any number of samples, parameter sets and messages, so
// each of these grows with the bytes that the input really has. All of them are far above what honest files
// need, and whatever is left out because of one is reported.
#ifndef QVINSPECT_BUDGETS_H
#define QVINSPECT_BUDGETS_H

#include <cstddef>
#include <cstdint>

namespace qvinspect {

constexpr uint64_t kKiB = uint64_t{1} << 10;
constexpr uint64_t kMiB = uint64_t{1} << 20;

// base, and perByte for each byte of the input.
constexpr uint64_t budgetOf(uint64_t base, uint64_t perByte, uint64_t bytes) {
    constexpr uint64_t kMost = uint64_t{1} << 62;
    return bytes > (kMost - base) / perByte ? kMost : base + perByte * bytes;
}

// --- Containers ---

// Memory to open a container. Its index takes 60 bytes for each sample; an honest sample takes at least 12
// bytes of the file, 4 in the sample table and 8 of coded data. The base is for buffers.
constexpr uint64_t containerMemory(uint64_t bytes) {
    return budgetOf(64 * kMiB, 16, bytes);
}

// And while its samples are read and reported: a sample is held several times, with what was found in it.
constexpr uint64_t inspectionMemory(uint64_t bytes) {
    return budgetOf(256 * kMiB, 64, bytes);
}

// Bytes read from a file that can be read in any order. Honest files are read once, and their index once
// more; skipping other streams' samples may read a buffer of 64 KiB for a sample.
constexpr uint64_t containerReading(uint64_t bytes) {
    return budgetOf(16 * kMiB, 32, bytes);
}

// What the samples of a container come to: their sizes, and kSampleCost for each. Sample tables can name the
// same bytes any number of times, or samples of no bytes.
constexpr uint64_t kSampleCost = 64;
constexpr uint64_t containerSamples(uint64_t bytes) {
    return budgetOf(kMiB, 16, bytes);
}

// Streams of a container other than a transport stream, which may carry many programs. libavformat looks at
// each of them for each sample.
constexpr unsigned kMostStreams = 256;

// Packets and bytes that are read ahead for a video that the container's header does not name.
constexpr size_t kProbedPackets = 4096;
constexpr uint64_t kProbedBytes = 5 * kMiB;

// --- Streams ---

// NAL units in an access unit: above the number of macroblocks of the largest H.264 picture (Table A-1), each
// a slice.
constexpr size_t kMostUnits = size_t{1} << 18;

// NAL units of a configuration record: twice as many as there can be parameter sets with different
// identifiers in one layer (H.264: 32 sequence, 256 picture parameter sets and as many extensions; H.265
// fewer).
constexpr size_t kMostRecordUnits = 1024;

// New sequence parameter sets of an access unit or a configuration record: twice as many as there are
// identifiers.
constexpr size_t kMostNewSps = 64;

// SEI messages that are described in an access unit. Others are counted. The largest honest number is a few
// for each slice.
constexpr size_t kMostDescribedMessages = 1024;

// Contents of sequence parameter sets that are remembered, to tell new ones from repeated ones. In bytes: an
// honest one takes some 50.
constexpr size_t kMostKnownSpsBytes = kMiB;

// --- Outputs ---

// Bytes of the configuration record's units in a conversion, which come again with each key access unit.
// Intra-only streams of small pictures repeat a record of some 2 KB with each picture.
constexpr uint64_t repeatedRecordBytes(uint64_t bytes) {
    return budgetOf(kMiB, 16, bytes);
}

// Files of SEI items. A file takes a block of the disk, some 4 KB; an honest item comes with a picture.
constexpr uint64_t extractedFiles(uint64_t bytes) {
    return 1024 + bytes / 64;
}

}  // namespace qvinspect

#endif
