// The parameter sets that are active as syntax functions.
#ifndef QV_BITSTREAM_SEI_ACTIVEPARAMETERSETSSYNTAX_H
#define QV_BITSTREAM_SEI_ACTIVEPARAMETERSETSSYNTAX_H

#include <cstdint>

#include "bitstream/sei/ActiveParameterSets.h"
#include "bitstream/sei/PayloadSyntax.h"

namespace qv::sei {

// active_parameter_sets(), H.265 D.2.21
template <class Syntax>
void active_parameter_sets(Syntax& s, const Context& context, ActiveParameterSets& payload) {
    static constexpr Structure kStructure = {"active_parameter_sets()", "D.2.21"};
    const Within<Syntax> within(s, kStructure);
    s.u(4, "active_video_parameter_set_id", payload.active_video_parameter_set_id);
    s.flag("self_contained_cvs_flag", payload.self_contained_cvs_flag);
    s.flag("no_parameter_set_update_flag", payload.no_parameter_set_update_flag);
    s.ue("num_sps_ids_minus1", payload.num_sps_ids_minus1, 0, ActiveParameterSets::kMostSpsIds - 1);
    for (uint32_t i = 0; i <= payload.num_sps_ids_minus1; ++i) {
        s.ue(at("active_seq_parameter_set_id", i), payload.active_seq_parameter_set_id[i], 0, 15);
    }
    const hevc::Vps* const vps =
        context.hevcSets != nullptr ? context.hevcSets->vps(payload.active_video_parameter_set_id) : nullptr;
    if (vps == nullptr) {
        s.fail(FaultKind::NoSuchSet, "active_video_parameter_set_id", payload.active_video_parameter_set_id);
        return;
    }
    payload.firstLayer = vps->vps_base_layer_internal_flag ? 1 : 0;
    payload.layers = hevc::maxLayersMinus1(*vps) + 1;
    for (uint32_t i = payload.firstLayer; i < payload.layers; ++i) {
        s.ue(at("layer_sps_idx", i), payload.layer_sps_idx[i], 0, payload.num_sps_ids_minus1);
    }
}

}  // namespace qv::sei

#endif
