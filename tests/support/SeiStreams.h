// Byte streams of parameter sets and SEI units whose syntax depends on them.
#ifndef QV_TESTS_SEISTREAMS_H
#define QV_TESTS_SEISTREAMS_H

#include <cstdint>

#include "BitWriter.h"

namespace qv_test {

// An SPS with HRD parameters of 32 entries and pic_struct_present_flag, and a PPS.
Bytes avcSetsForSei(uint32_t seq_parameter_set_id = 0);

// A VPS, an SPS with HRD parameters of sub-pictures and frame_field_info_present_flag, and a PPS.
Bytes hevcSetsForSei(uint32_t sps_seq_parameter_set_id = 0);

// A start code and an SEI unit of messages with the same payload, one of each type from first to last.
Bytes seiOfTypes(bool isHevc, unsigned first, unsigned last, const Bytes& payload);

}  // namespace qv_test

#endif
