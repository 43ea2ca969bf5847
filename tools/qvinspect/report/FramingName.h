#ifndef QVINSPECT_FRAMINGNAME_H
#define QVINSPECT_FRAMINGNAME_H

#include <string>

#include "QVCodecParameters.h"

namespace qvinspect {

// "Annex B start codes" or "4-byte length fields".
std::string framingName(const QVCodecParameters& parameters);

}  // namespace qvinspect

#endif
