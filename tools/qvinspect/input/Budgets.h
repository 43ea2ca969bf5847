// The limits on the memory, time and output for one input. A few bytes can declare any number of samples,
// parameter sets and messages, so the limits are in proportion to the size of the input. All of them are far
// above the needs of ordinary files, and whatever is left out because of one is reported.
#ifndef QVINSPECT_BUDGETS_H
#define QVINSPECT_BUDGETS_H

#include <cstddef>
#include <cstdint>

namespace qvinspect {

constexpr uint64_t kKiB = uint64_t{1} << 10;
constexpr uint64_t kMiB = uint64_t{1} << 20;

// base + perByte * bytes, without overflow.
constexpr uint64_t budgetOf(uint64_t base, uint64_t perByte, uint64_t bytes) {
    constexpr uint64_t kMost = uint64_t{1} << 62;
    return bytes > (kMost - base) / perByte ? kMost : base + perByte * bytes;
}

// --- Containers ---

// Memory to open a container. libavformat's index needs 60 bytes for each sample; an ordinary sample takes at
// least 12 bytes of the file, 4 in the sample table and 8 of coded data. The base is for buffers.
constexpr uint64_t containerMemory(uint64_t bytes) {
    return budgetOf(64 * kMiB, 16, bytes);
}

// Memory to read and report its samples: a sample is held several times, with what was found in it.
constexpr uint64_t inspectionMemory(uint64_t bytes) {
    return budgetOf(256 * kMiB, 64, bytes);
}

// Bytes read from a file that can be read in any order. Ordinary files are read once, and their index once
// more; skipping the samples of other streams may read a buffer of 64 KiB for a sample.
constexpr uint64_t containerReading(uint64_t bytes) {
    return budgetOf(16 * kMiB, 32, bytes);
}

// The sum of the sizes of a container's samples, and kSampleCost for each. Sample tables can refer to the
// same bytes any number of times, or to empty samples.
constexpr uint64_t kSampleCost = 64;
constexpr uint64_t containerSamples(uint64_t bytes) {
    return budgetOf(kMiB, 16, bytes);
}

// Streams of a container. Transport streams, which may carry many programs, are exempt. libavformat examines
// each stream for each sample.
constexpr unsigned kMostStreams = 256;

// Packets and bytes that are read in search of a video that the container's header does not name.
constexpr size_t kProbedPackets = 4096;
constexpr uint64_t kProbedBytes = 5 * kMiB;

// --- Streams ---

// NAL units in an access unit: above the number of macroblocks of the largest H.264 picture (Table A-1), each
// a slice.
constexpr size_t kMostUnits = size_t{1} << 18;

// NAL units of a configuration record: about twice the number of parameter sets with different identifiers in
// one layer (H.264: 32 sequence and 256 picture parameter sets, and extensions; H.265 has fewer).
constexpr size_t kMostRecordUnits = 1024;

// New sequence parameter sets of an access unit or a configuration record: twice the number of identifiers.
constexpr size_t kMostNewSps = 64;

// SEI messages of an access unit that are described. The rest are counted. Ordinary streams have at most a
// few for each slice.
constexpr size_t kMostDescribedMessages = 1024;

// Fields of the SEI messages of an access unit that are described: those of kMostDescribedMessages ordinary
// messages. A payload can hold an element in each bit.
constexpr size_t kMostSeiFields = 16 * kMostDescribedMessages;

// Faults and notes of the SEI messages of an access unit that are listed. The rest are counted.
constexpr uint64_t kMostSeiFindings = 64;

// Bytes of the sequence parameter sets that are remembered to recognise repeated ones. An ordinary one takes
// about 50.
constexpr size_t kMostKnownSpsBytes = kMiB;

// --- Outputs ---

// Bytes of the configuration record's units in a conversion, which are repeated before each key access unit.
// Intra-only streams of small pictures repeat a record of about 2 KB with each picture.
constexpr uint64_t repeatedRecordBytes(uint64_t bytes) {
    return budgetOf(kMiB, 16, bytes);
}

// Files of SEI items. A file takes a block of the disk, about 4 KB. Ordinary streams have a few items for
// each picture.
constexpr uint64_t extractedFiles(uint64_t bytes) {
    return 1024 + bytes / 64;
}

}  // namespace qvinspect

#endif
