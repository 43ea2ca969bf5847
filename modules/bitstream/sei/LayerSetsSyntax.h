// Messages of scalable streams that list layers, as syntax functions.
#ifndef QV_BITSTREAM_SEI_LAYERSETSSYNTAX_H
#define QV_BITSTREAM_SEI_LAYERSETSSYNTAX_H

#include "bitstream/sei/LayerInfoSyntax.h"
#include "bitstream/sei/LayerSets.h"
#include "bitstream/sei/PayloadSyntax.h"

namespace qv::sei {

// sub_pic_scalable_layer(), G.13.1.2
template <class Syntax>
void sub_pic_scalable_layer(Syntax& s, const Context& context, SubPicScalableLayer& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"sub_pic_scalable_layer()", "G.13.1.2"};
    const Within<Syntax> within(s, kStructure);
    s.ue("layer_id", payload.layer_id, 0, ScalabilityInfo::kMostLayers - 1);
}

// non_required_layer_rep(), G.13.1.3
template <class Syntax>
void non_required_layer_rep(Syntax& s, const Context& context, NonRequiredLayerRep& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"non_required_layer_rep()", "G.13.1.3"};
    const Within<Syntax> within(s, kStructure);
    s.ue("num_info_entries_minus1", payload.num_info_entries_minus1, 0,
         NonRequiredLayerRep::kMostEntries - 1);
    for (uint32_t i = 0; i <= payload.num_info_entries_minus1; ++i) {
        NonRequiredLayerReps& entry = payload.entries[i];
        s.u(3, at("entry_dependency_id", i), entry.entry_dependency_id);
        s.ue(at("num_non_required_layer_reps_minus1", i), entry.num_non_required_layer_reps_minus1, 0,
             NonRequiredLayerReps::kMostLayerReps - 1);
        for (uint32_t j = 0; j <= entry.num_non_required_layer_reps_minus1; ++j) {
            s.u(3, at("non_required_layer_rep_dependency_id", i, j),
                entry.non_required_layer_rep_dependency_id[j]);
            s.u(4, at("non_required_layer_rep_quality_id", i, j), entry.non_required_layer_rep_quality_id[j]);
        }
    }
}

// priority_layer_info(), G.13.1.4
template <class Syntax>
void priority_layer_info(Syntax& s, const Context& context, PriorityLayerInfo& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"priority_layer_info()", "G.13.1.4"};
    const Within<Syntax> within(s, kStructure);
    s.u(3, "pr_dependency_id", payload.pr_dependency_id);
    s.u(4, "num_priority_ids", payload.num_priority_ids);
    for (uint32_t i = 0; i < payload.num_priority_ids; ++i) {
        s.u(6, at("alt_priority_id", i), payload.alt_priority_id[i]);
    }
}

// layers_not_present(), G.13.1.5
template <class Syntax>
void layers_not_present(Syntax& s, const Context& context, AvcLayersNotPresent& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"layers_not_present()", "G.13.1.5"};
    const Within<Syntax> within(s, kStructure);
    s.ue("num_layers", payload.num_layers, 0, AvcLayersNotPresent::kMostLayers);
    for (uint32_t i = 0; i < payload.num_layers; ++i) {
        s.ue(at("layer_id", i), payload.layer_id[i], 0, ScalabilityInfo::kMostLayers - 1);
    }
}

// The elements of layer i of layer_dependency_change().
template <class Syntax>
void layer_dependency(Syntax& s, const LayerDependencyChange& change, uint32_t i, LayerDependency& layer) {
    static_cast<void>(change);
    s.infer(layer.num_directly_dependent_layers, 0);
    s.infer(layer.layer_dependency_info_src_layer_id_delta_minus1, 0);
    s.ue(at("layer_id", i), layer.layer_id, 0, ScalabilityInfo::kMostLayers - 1);
    s.flag(at("layer_dependency_info_present_flag", i), layer.layer_dependency_info_present_flag);
    if (layer.layer_dependency_info_present_flag) {
        s.ue(at("num_directly_dependent_layers", i), layer.num_directly_dependent_layers, 0,
             ScalabilityLayer::kMostDependencies);
        set_id_deltas(s, "directly_dependent_layer_id_delta_minus1", i, layer.num_directly_dependent_layers,
                      layer.directly_dependent_layer_id_delta_minus1);
    } else {
        s.ue(at("layer_dependency_info_src_layer_id_delta_minus1", i),
             layer.layer_dependency_info_src_layer_id_delta_minus1);
    }
}

// layer_dependency_change(), G.13.1.6
template <class Syntax>
void layer_dependency_change(Syntax& s, const Context& context, LayerDependencyChange& change) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"layer_dependency_change()", "G.13.1.6"};
    const Within<Syntax> within(s, kStructure);
    s.ue("num_layers_minus1", change.num_layers_minus1, 0, ScalabilityInfo::kMostLayers - 1);
    s.keep(change.layers, [&change](auto& in) {
        LayerDependency layer;
        for (uint32_t i = 0; i <= change.num_layers_minus1 && !in.failed(); ++i) {
            layer_dependency(in, change, i, layer);
        }
    });
}

}  // namespace qv::sei

#endif
