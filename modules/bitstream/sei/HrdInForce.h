// The HRD parameters that messages of H.265 refer to.
#ifndef QV_BITSTREAM_SEI_HRDINFORCE_H
#define QV_BITSTREAM_SEI_HRDINFORCE_H

#include <cstdint>

#include "bitstream/hevc/Hrd.h"
#include "bitstream/hevc/Sps.h"
#include "bitstream/sei/SeiContext.h"

namespace qv::sei {

// Variables of H.265 E.3.2 with the elements that they come from.
struct HrdInForce {
    hevc::HrdCommon common;  // what applies to all sub-layers
    uint32_t CpbCnt;         // cpb_cnt_minus1[ HighestTid ] + 1, 1..32

    // NalHrdBpPresentFlag or VclHrdBpPresentFlag.
    bool CpbDpbDelaysPresentFlag() const {
        return common.nal_hrd_parameters_present_flag || common.vcl_hrd_parameters_present_flag;
    }
};

// The HRD parameters of the VUI, otherwise the first ones of the VPS, otherwise what E.3.2 infers. HighestTid
// is sps_max_sub_layers_minus1.
HrdInForce hrdInForce(const Context& context, const hevc::Sps& sps) noexcept;

// The bits of an element that a u(5) element sets.
constexpr uint32_t widthOf(uint32_t length_minus1) {
    return (length_minus1 & 31) + 1;
}

}  // namespace qv::sei

#endif
