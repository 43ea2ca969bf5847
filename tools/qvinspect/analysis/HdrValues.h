// HDR metadata of SEI payloads, read by the library's parsers.
#ifndef QVINSPECT_HDRVALUES_H
#define QVINSPECT_HDRVALUES_H

#include <cstdint>
#include <optional>
#include <vector>

#include "QVHDRVividDynamicMetadata.h"
#include "QVNaluParser.h"

namespace qvinspect {

// Payloads are without emulation prevention bytes. None for a payload that the parser refuses.

// mastering_display_colour_volume, payloadType 137.
std::optional<QVHDR10StaticMetadata> readMasteringDisplay(const std::vector<uint8_t>& payload);

// content_light_level_info, payloadType 144.
QVHevcSeiContentLight readContentLight(const std::vector<uint8_t>& payload);

// alternative_transfer_characteristics, payloadType 147.
QVHevcSeiAlternativeTransfer readAlternativeTransfer(const std::vector<uint8_t>& payload);

// The luminance of a 12-bit PQ code of HDR Vivid in cd/m2, to the sixth decimal.
double pqLuminance(uint32_t code);

struct HdrVividResult {
    int status;  // QVHDRVividOk, or why metadata is incomplete
    QVHDRVividDynamicMetadata metadata;
};

// user_data_registered_itu_t_t35, payloadType 4.
HdrVividResult readHdrVivid(const std::vector<uint8_t>& payload);

}  // namespace qvinspect

#endif
