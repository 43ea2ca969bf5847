// The VUI of an H.264 sequence parameter set, which the library leaves to its callers.
#ifndef QVINSPECT_AVCVUI_H
#define QVINSPECT_AVCVUI_H

#include "QVNaluParser.h"

namespace qvinspect {

// vui_parameters(), H.264 (08/2021) E.1.1, up to pic_struct_present_flag, read from where parseAvcSps left
// the stream into the fields that the record keeps for it.
void readAvcVui(QVByteStream& stream, QVAvcSps& sps);

}  // namespace qvinspect

#endif
