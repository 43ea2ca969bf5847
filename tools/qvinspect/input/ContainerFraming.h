// How the samples of a container hold their NAL units.
#ifndef QVINSPECT_CONTAINERFRAMING_H
#define QVINSPECT_CONTAINERFRAMING_H

#include <cstddef>
#include <string>

#include "QVCodecParameters.h"

namespace qvinspect {

// container is libavformat's short name of the demuxer; extradata is the stream's configuration record as
// the container gives it, null when there is none.
QVCodecParameters containerFraming(QVCodecID codec, const std::string& container,
                                   const unsigned char* extradata, size_t extradataSize);

}  // namespace qvinspect

#endif
