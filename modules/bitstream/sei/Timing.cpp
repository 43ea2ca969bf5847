// Buffering periods and picture timing.
#include "bitstream/sei/Timing.h"

#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/TimingSyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(AvcBufferingPeriod, buffering_period);
QV_SEI_PAYLOAD(HevcBufferingPeriod, buffering_period);
QV_SEI_PAYLOAD(AvcPicTiming, pic_timing);
QV_SEI_PAYLOAD(HevcPicTiming, pic_timing);
QV_SEI_PAYLOAD(DecodingUnitInfo, decoding_unit_info);

DecodingUnitReader::DecodingUnitReader(const HevcPicTiming& timing) noexcept
    : timing_(timing),
      reader_(timing.decoding_units),
      count_(timing.hasDecodingUnits ? uint64_t{timing.num_decoding_units_minus1} + 1 : 0) {}

bool DecodingUnitReader::next(DecodingUnit& unit) noexcept {
    if (next_ >= count_) {
        return false;
    }
    unit.du_cpb_removal_delay_increment_minus1 =
        timing_.du_common_cpb_removal_delay_flag ? timing_.du_common_cpb_removal_delay_increment_minus1 : 0;
    decoding_unit(reader_, timing_, static_cast<uint32_t>(next_++), unit);
    return !reader_.failed();
}

}  // namespace qv::sei
