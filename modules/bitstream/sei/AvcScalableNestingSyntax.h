// H.264 messages that hold messages, as syntax functions.
#ifndef QV_BITSTREAM_SEI_AVCSCALABLENESTINGSYNTAX_H
#define QV_BITSTREAM_SEI_AVCSCALABLENESTINGSYNTAX_H

#include "bitstream/sei/AvcScalableNesting.h"
#include "bitstream/sei/PayloadSyntax.h"

namespace qv::sei {

// sei_nesting_zero_bit up to the next byte, and the messages.
template <class Syntax>
void messages_after_zero_bits(Syntax& s, const Context& context, NestedMessages& messages) {
    byte_alignment(s, "sei_nesting_zero_bit", 0);
    nested_messages(s, context, messages);
}

// scalable_nesting(), G.13.1.7
template <class Syntax>
void scalable_nesting(Syntax& s, const Context& context, AvcScalableNesting& nesting) {
    static constexpr Structure kStructure = {"scalable_nesting()", "G.13.1.7"};
    const Within<Syntax> within(s, kStructure);
    s.flag("all_layer_representations_in_au_flag", nesting.all_layer_representations_in_au_flag);
    if (!nesting.all_layer_representations_in_au_flag) {
        s.ue("num_layer_representations_minus1", nesting.num_layer_representations_minus1, 0,
             AvcScalableNesting::kMostLayerRepresentations - 1);
        for (uint32_t i = 0; i <= nesting.num_layer_representations_minus1; ++i) {
            s.u(3, at("sei_dependency_id", i), nesting.sei_dependency_id[i]);
            s.u(4, at("sei_quality_id", i), nesting.sei_quality_id[i]);
        }
        s.u(3, "sei_temporal_id", nesting.sei_temporal_id);
    }
    messages_after_zero_bits(s, context, nesting.messages);
}

// mvc_scalable_nesting(), H.13.1.2
template <class Syntax>
void mvc_scalable_nesting(Syntax& s, const Context& context, MvcScalableNesting& nesting) {
    static constexpr Structure kStructure = {"mvc_scalable_nesting()", "H.13.1.2"};
    const Within<Syntax> within(s, kStructure);
    s.flag("operation_point_flag", nesting.operation_point_flag);
    if (nesting.operation_point_flag) {
        s.ue("num_view_components_op_minus1", nesting.num_view_components_op_minus1, 0, avc::kMostViews - 1);
        for (uint32_t i = 0; i <= nesting.num_view_components_op_minus1; ++i) {
            s.u(10, at("sei_op_view_id", i), nesting.view_id[i]);
        }
        s.u(3, "sei_op_temporal_id", nesting.sei_op_temporal_id);
    } else {
        s.flag("all_view_components_in_au_flag", nesting.all_view_components_in_au_flag);
        if (!nesting.all_view_components_in_au_flag) {
            s.ue("num_view_components_minus1", nesting.num_view_components_minus1, 0, avc::kMostViews - 1);
            for (uint32_t i = 0; i <= nesting.num_view_components_minus1; ++i) {
                s.u(10, at("sei_view_id", i), nesting.view_id[i]);
            }
        }
    }
    messages_after_zero_bits(s, context, nesting.messages);
}

// A view of an operation point of mvcd_scalable_nesting().
template <class Syntax>
void mvcd_nesting_op_view(Syntax& s, bool isTextureOnly, uint32_t i, MvcdNestingView& view) {
    s.infer(view.sei_view_applicability_flag, false);
    s.infer(view.sei_op_depth_flag, false);
    s.infer(view.sei_op_texture_flag, false);
    s.u(10, at("sei_op_view_id", i), view.view_id);
    if (!isTextureOnly) {
        s.flag(at("sei_op_depth_flag", i), view.sei_op_depth_flag);
        s.flag(at("sei_op_texture_flag", i), view.sei_op_texture_flag);
    }
}

// A view of an access unit of mvcd_scalable_nesting().
template <class Syntax>
void mvcd_nesting_view(Syntax& s, uint32_t i, MvcdNestingView& view) {
    s.infer(view.sei_op_depth_flag, false);
    s.infer(view.sei_op_texture_flag, false);
    s.u(10, at("sei_view_id", i), view.view_id);
    s.flag(at("sei_view_applicability_flag", i), view.sei_view_applicability_flag);
}

// mvcd_scalable_nesting(), I.13.1.2
template <class Syntax>
void mvcd_scalable_nesting(Syntax& s, const Context& context, MvcdScalableNesting& nesting) {
    static constexpr Structure kStructure = {"mvcd_scalable_nesting()", "I.13.1.2"};
    const Within<Syntax> within(s, kStructure);
    s.flag("operation_point_flag", nesting.operation_point_flag);
    if (nesting.operation_point_flag) {
        s.flag("sei_op_texture_only_flag", nesting.sei_op_texture_only_flag);
        s.ue("num_view_components_op_minus1", nesting.num_view_components_op_minus1, 0, avc::kMostViews - 1);
        for (uint32_t i = 0; i <= nesting.num_view_components_op_minus1; ++i) {
            mvcd_nesting_op_view(s, nesting.sei_op_texture_only_flag, i, nesting.views[i]);
        }
        s.u(3, "sei_op_temporal_id", nesting.sei_op_temporal_id);
    } else {
        s.flag("all_view_components_in_au_flag", nesting.all_view_components_in_au_flag);
        if (!nesting.all_view_components_in_au_flag) {
            s.ue("num_view_components_minus1", nesting.num_view_components_minus1, 0, avc::kMostViews - 1);
            for (uint32_t i = 0; i <= nesting.num_view_components_minus1; ++i) {
                mvcd_nesting_view(s, i, nesting.views[i]);
            }
        }
    }
    messages_after_zero_bits(s, context, nesting.messages);
}

}  // namespace qv::sei

#endif
