// The framing of the NAL units in a container's samples.
#ifndef QVINSPECT_CONTAINERFRAMING_H
#define QVINSPECT_CONTAINERFRAMING_H

#include <cstddef>
#include <string>

#include "QVCodecParameters.h"

namespace qvinspect {

// container is libavformat's short name of the demuxer; extradata is the stream's configuration record from
// the container, or null.
QVCodecParameters containerFraming(QVCodecID codec, const std::string& container,
                                   const unsigned char* extradata, size_t extradataSize);

}  // namespace qvinspect

#endif
