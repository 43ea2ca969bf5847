// The SPS that an SEI message names.
#ifndef QV_BITSTREAM_SEI_ANNOUNCEDSPS_H
#define QV_BITSTREAM_SEI_ANNOUNCEDSPS_H

#include <cstdint>

#include "bitstream/Codec.h"
#include "bitstream/sei/SeiMessages.h"

namespace qv::sei {

// True when a message names an SPS, whose identifier it sets: seq_parameter_set_id of a buffering period
// message (H.264 D.1.2), bp_seq_parameter_set_id of one (H.265 D.2.2), active_seq_parameter_set_id[ 0 ] of an
// active parameter sets message (H.265 D.2.21).
bool namesSps(const SeiMessage& message, Codec codec, uint32_t& id) noexcept;

}  // namespace qv::sei

#endif
