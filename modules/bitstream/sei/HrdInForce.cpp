// The HRD parameters that messages of H.265 refer to.
#include "bitstream/sei/HrdInForce.h"

#include <algorithm>

#include "bitstream/hevc/HrdSyntax.h"
#include "bitstream/hevc/VpsLayers.h"

namespace qv::sei {

namespace {

HrdInForce ofHighestSubLayer(const hevc::Hrd& hrd, const hevc::Sps& sps) {
    const uint32_t HighestTid = std::min(sps.sps_max_sub_layers_minus1, hevc::kMostSubLayers - 1);
    const uint32_t cpb_cnt_minus1 = hrd.sub_layer[HighestTid].cpb_cnt_minus1;
    return {hrd.common, std::min(cpb_cnt_minus1, hevc::CpbParameters::kMostCpbs - 1) + 1};
}

}  // namespace

HrdInForce hrdInForce(const Context& context, const hevc::Sps& sps) noexcept {
    if (sps.vui.vui_hrd_parameters_present_flag) {
        return ofHighestSubLayer(sps.vui.hrd_parameters, sps);
    }
    const hevc::Vps* const vps =
        context.hevcSets != nullptr ? context.hevcSets->vps(sps.sps_video_parameter_set_id) : nullptr;
    // An SPS has no more sub-layers than its VPS (7.4.3.2.1): entries beyond are not set.
    if (vps != nullptr && sps.sps_max_sub_layers_minus1 <= vps->vps_max_sub_layers_minus1) {
        hevc::VpsHrd entry;
        if (hevc::readVpsHrd(*vps, 0, entry)) {
            return ofHighestSubLayer(entry.hrd_parameters, sps);
        }
    }
    return {hevc::inferredHrdCommon(), 1};
}

}  // namespace qv::sei
