// What the value of a syntax element means.
#ifndef QVINSPECT_ELEMENTMEANING_H
#define QVINSPECT_ELEMENTMEANING_H

#include <string>

#include "QVCodecParameters.h"
#include "bitstream/syntax/Trace.h"

namespace qvinspect {

// The name of a coded value ("BT.2020 NCL"), or the number that a name with "_minus1" codes. Empty where the
// value needs no explanation.
std::string elementMeaning(QVCodecID codec, const qv::TracedElement& element);

// The bits as coded: binary digits, above 18 bits hexadecimal ones.
std::string codedBits(const qv::TracedElement& element);

}  // namespace qvinspect

#endif
