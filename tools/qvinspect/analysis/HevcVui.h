// The VUI of an H.265 sequence parameter set, of which the library reads the head.
#ifndef QVINSPECT_HEVCVUI_H
#define QVINSPECT_HEVCVUI_H

#include <cstdint>
#include <optional>
#include <vector>

namespace qvinspect {

// transfer_characteristics of vui_parameters(), H.265 (08/2021) E.2.1. unit: the NAL unit of a parameter set
// that the library accepts, without emulation prevention bytes. Nothing when the VUI has no colour
// description, or when the unit is broken before it.
std::optional<uint32_t> hevcTransferCharacteristics(const std::vector<uint8_t>& unit);

}  // namespace qvinspect

#endif
