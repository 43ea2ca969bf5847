// Small files that need much memory, time or output if nothing limits them.
#ifndef QV_TESTS_HOSTILEFILES_H
#define QV_TESTS_HOSTILEFILES_H

#include <cstdint>
#include <string>
#include <vector>

#include "BitWriter.h"

namespace qv_test {

// An MP4 with the given number of tracks, each with a sample table of count samples of one byte.
Bytes sampleTableOf(uint32_t count, unsigned tracks = 1);

// An MP4 with runs fragments of count samples of one byte each.
Bytes fragmentRunsOf(uint32_t count, unsigned runs);

// An MP4 with chunks of one sample of sampleSize bytes, all of them at the same offset.
Bytes repeatedChunks(unsigned chunks, uint32_t sampleSize);

// An MP4 of H.265 whose configuration record holds sets parameter sets of two bytes, with keyPictures
// samples.
Bytes manyParameterSets(unsigned sets, unsigned keyPictures);

// An MP4 of H.265 whose configuration record holds seiUnits SEI units, none of which is in its only sample of
// that many units.
Bytes manyRecordSeiUnits(unsigned seiUnits, unsigned units);

// An MP4 of H.265 with length fields of one byte and one sample of count empty units.
Bytes emptyUnits(unsigned count);

// A byte stream of an H.264 picture with an SEI unit of count messages of the payloadType and payloadSize.
Bytes manySeiMessages(unsigned count, uint8_t payloadType, uint8_t payloadSize);

// A byte stream of an H.264 picture with count SEI units of one byte.
Bytes manySeiUnits(unsigned count);

// A byte stream with count sequence parameter sets, no two of them the same.
Bytes manyDistinctSps(unsigned count);

struct HostileFile {
    std::string name;
    std::string arguments;  // of the program, as a shell reads them; OUT is a file or a new folder
    Bytes bytes;
};

// Each with the arguments that make it costly.
std::vector<HostileFile> hostileFiles();

}  // namespace qv_test

#endif
