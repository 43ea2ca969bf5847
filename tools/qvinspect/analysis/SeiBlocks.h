// The fields of an SEI payload.
#ifndef QVINSPECT_SEIBLOCKS_H
#define QVINSPECT_SEIBLOCKS_H

#include <cstddef>

#include "analysis/Block.h"
#include "bitstream/Read.h"
#include "bitstream/sei/SeiContext.h"
#include "bitstream/sei/SeiMessages.h"

namespace qvinspect {

// Adds every element of the payload to the block, and what follows from it. Payload bytes that have no syntax
// of their own are left out.
//
// fields: how many fields the messages of the access unit have, which is increased. Above kMostSeiFields a
// last field says that there are more.
qv::Fault describeSei(const qv::SeiMessage& message, const qv::sei::Context& context, size_t& fields,
                      Block& block);

}  // namespace qvinspect

#endif
