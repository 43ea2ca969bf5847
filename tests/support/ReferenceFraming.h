// NAL unit framing, written step by step as documented: slow, obvious, on copies, and sharing no code with
// the library.
#ifndef QV_TESTS_REFERENCEFRAMING_H
#define QV_TESTS_REFERENCEFRAMING_H

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "BitWriter.h"
#include "QVNaluParser.h"

namespace qv_test {

// (offset, length) of each unit.
using NalIndexList = std::vector<std::pair<int, int>>;

bool referenceIsAnnexB(const Bytes& data);

// Appends to nalus and closes its last pair first, as the library's scan does. Returns the result code.
int referenceAnnexBScan(const Bytes& data, NalIndexList& nalus);

struct ReferenceLengthScan {
    NalIndexList nalus;
    bool isTruncated = false;    // a length ran past the end: one line, one dump
    int32_t badLength = 0;       // and what the log line reports
    int64_t avaliableBytes = 0;  // likewise
};

ReferenceLengthScan referenceLengthScan(const Bytes& data, int lengthSize);

// The units of nalus, which all begin inside data, typed.
std::vector<QVNaluParser::NaluInfo> referenceTyping(const Bytes& data, const NalIndexList& nalus,
                                                    uint32_t codec);

bool referenceIsKeyFrame(uint32_t codec, const Bytes& data);

// The offsets of the first bytes that key-frame detection types until the data ends.
std::vector<size_t> referenceKeyFrameOffsets(const Bytes& data);

// out is unchanged on failure.
int referenceAnnexBToLengths(const Bytes& data, Bytes& out);

// out is emptied on failure.
int referenceLengthsToAnnexB(const Bytes& data, int lengthSize, Bytes& out);

}  // namespace qv_test

#endif
