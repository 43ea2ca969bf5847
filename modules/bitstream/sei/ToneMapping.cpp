// Tone mapping.
#include "bitstream/sei/ToneMapping.h"

#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/ToneMappingSyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(ToneMappingInfo, tone_mapping_info);

ToneMapIntervals::ToneMapIntervals(const ToneMappingInfo& payload) noexcept
    : reader_(payload.start_of_coded_interval), width_(bitsInWholeBytes(payload.coded_data_bit_depth)) {}

bool ToneMapIntervals::next(uint32_t& start_of_coded_interval) noexcept {
    start_of_coded_interval = 0;
    if (!reader_.more_rbsp_data()) {
        return false;
    }
    reader_.u(width_, "start_of_coded_interval", start_of_coded_interval);
    return true;
}

ToneMapPivots::ToneMapPivots(const ToneMappingInfo& payload) noexcept
    : reader_(payload.pivots),
      codedWidth_(bitsInWholeBytes(payload.coded_data_bit_depth)),
      targetWidth_(bitsInWholeBytes(payload.target_bit_depth)) {}

bool ToneMapPivots::next(ToneMapPivot& pivot) noexcept {
    pivot = {};
    if (!reader_.more_rbsp_data()) {
        return false;
    }
    tone_map_pivot(reader_, 0, codedWidth_, targetWidth_, pivot);
    return true;
}

}  // namespace qv::sei
