// Messages of multiview streams that list views or operation points, as syntax functions.
#ifndef QV_BITSTREAM_SEI_VIEWSETSSYNTAX_H
#define QV_BITSTREAM_SEI_VIEWSETSSYNTAX_H

#include "bitstream/sei/LayerInfoSyntax.h"
#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/ViewSets.h"

namespace qv::sei {

// view_order_index[ i ] to index_delta_minus1[ i ][ j ]
template <class Syntax>
void non_required_views(Syntax& s, const NonRequiredViewComponent& payload, uint32_t i,
                        NonRequiredViews& entry) {
    static_cast<void>(payload);
    s.ue(at("view_order_index", i), entry.view_order_index, 0, avc::kMostViews - 1);
    s.ue(at("num_non_required_view_components_minus1", i), entry.num_non_required_view_components_minus1, 0,
         avc::kMostViews - 1);
    set_id_deltas(s, "index_delta_minus1", i, entry.num_non_required_view_components_minus1 + 1,
                  entry.index_delta_minus1);
}

// non_required_view_component(), H.13.1.6
template <class Syntax>
void non_required_view_component(Syntax& s, const Context& context, NonRequiredViewComponent& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"non_required_view_component()", "H.13.1.6"};
    const Within<Syntax> within(s, kStructure);
    s.ue("num_info_entries_minus1", payload.num_info_entries_minus1, 0, 7);
    s.keep(payload.entries, [&payload](auto& in) {
        NonRequiredViews entry;
        for (uint32_t i = 0; i <= payload.num_info_entries_minus1; ++i) {
            non_required_views(in, payload, i, entry);
        }
    });
}

// operation_point_not_present(), H.13.1.8
template <class Syntax>
void operation_point_not_present(Syntax& s, const Context& context, OperationPointNotPresent& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"operation_point_not_present()", "H.13.1.8"};
    const Within<Syntax> within(s, kStructure);
    s.ue("num_operation_points", payload.num_operation_points, 0,
         OperationPointNotPresent::kMostOperationPoints);
    for (uint32_t k = 0; k < payload.num_operation_points; ++k) {
        s.ue(at("operation_point_not_present_id", k), payload.operation_point_not_present_id[k]);
    }
}

// multiview_view_position(), H.264 H.13.1.10, H.265 G.14.2.7
template <class Syntax>
void multiview_view_position(Syntax& s, const Context& context, MultiviewViewPosition& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("multiview_view_position()", "H.13.1.10", "G.14.2.7");
    const Within<Syntax> within(s, kStructure.of(context));
    s.ue("num_views_minus1", payload.num_views_minus1, 0, avc::kMostViews - 1);
    for (uint32_t i = 0; i <= payload.num_views_minus1; ++i) {
        s.ue(at("view_position", i), payload.view_position[i]);
    }
    if (context.codec == Codec::Avc) {
        s.flag("multiview_view_position_extension_flag", payload.multiview_view_position_extension_flag);
        if (payload.multiview_view_position_extension_flag) {
            s.payload_bytes("multiview_view_position_extension_data", payload.extension);
        }
    }
}

}  // namespace qv::sei

#endif
