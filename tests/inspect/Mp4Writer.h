// Writes small MP4 files box by box, ISO/IEC 14496-12 and 14496-15. Counts and offsets are written as given:
// tests of broken and hostile files need tables that contradict the file.
#ifndef QV_TESTS_MP4WRITER_H
#define QV_TESTS_MP4WRITER_H

#include <cstdint>
#include <string>
#include <vector>

#include "BitWriter.h"
#include "QVCodecParameters.h"

namespace qv_test {

// Big-endian numbers.
Bytes u16(uint32_t value);
Bytes u32(uint32_t value);

Bytes joined(const std::vector<Bytes>& parts);

// A box of a four-character type.
Bytes box(const std::string& type, const std::vector<Bytes>& parts);

// A box with version 0 and the flags.
Bytes fullBox(const std::string& type, uint32_t flags, const std::vector<Bytes>& parts);

// AVCDecoderConfigurationRecord, 14496-15 5.3.3.1.2. Lengths have 4 bytes.
Bytes avcRecord(const std::vector<Bytes>& spsUnits, const std::vector<Bytes>& ppsUnits);

// HEVCDecoderConfigurationRecord, 14496-15 8.3.3.1.2, with an array for each list of units of one type. The
// type is that of the list's first unit. Lengths have lengthSize bytes.
Bytes hevcRecord(const std::vector<std::vector<Bytes>>& arrays, unsigned lengthSize = 4);

// A video track.
struct Mp4Track {
    QVCodecID codec = QVCodecIDAvc;
    Bytes record;

    // stsz: sample_size 0 takes the sizes from entry_sizes.
    uint32_t sample_size = 0;
    uint32_t sample_count = 0;
    std::vector<uint32_t> entry_sizes;

    uint32_t samples_per_chunk = 1;
    std::vector<uint32_t> chunk_offsets;  // in the media data

    std::vector<Bytes> moreTables;  // further boxes of the sample table
};

// A track that holds the samples in sequence, without gaps.
Mp4Track trackOf(QVCodecID codec, const Bytes& record, const std::vector<Bytes>& samples);

// ftyp, moov, the boxes of extra, mdat.
Bytes mp4File(const std::vector<Mp4Track>& tracks, const Bytes& mediaData,
              const std::vector<Bytes>& extra = {});

}  // namespace qv_test

#endif
