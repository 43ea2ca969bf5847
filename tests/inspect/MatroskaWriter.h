// Writes small Matroska files, RFC 9559.
#ifndef QV_TESTS_MATROSKAWRITER_H
#define QV_TESTS_MATROSKAWRITER_H

#include <string>
#include <vector>

#include "BitWriter.h"

namespace qv_test {

// An element: the bytes of its identifier, four bytes of length, and its content.
Bytes matroskaElement(const Bytes& id, const std::vector<Bytes>& parts);

// A file with a video track of the codec, of 16x16 luma samples, and one frame. moreVideo: further elements
// of the track's Video element.
Bytes matroskaFile(const std::string& codecId, const Bytes& frame, const std::vector<Bytes>& moreVideo = {});

}  // namespace qv_test

#endif
