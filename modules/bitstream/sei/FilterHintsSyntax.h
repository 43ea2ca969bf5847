// Filters for decoded pictures as syntax functions.
#ifndef QV_BITSTREAM_SEI_FILTERHINTSSYNTAX_H
#define QV_BITSTREAM_SEI_FILTERHINTSSYNTAX_H

#include "bitstream/sei/FilterHints.h"
#include "bitstream/sei/PayloadSyntax.h"

namespace qv::sei {

template <class Syntax>
void filter_hint_values(Syntax& s, const char* name, uint32_t colourComponents, PostFilterHint& payload) {
    for (uint32_t cIdx = 0; cIdx < colourComponents; ++cIdx) {
        for (uint32_t cy = 0; cy < payload.filter_hint_size_y; ++cy) {
            for (uint32_t cx = 0; cx < payload.filter_hint_size_x; ++cx) {
                s.se(at(name, cIdx, cy, cx), payload.filter_hint_value[cIdx][cy][cx]);
            }
        }
    }
}

// post_filter_hint(), H.264 D.1.24, H.265 D.2.14
template <class Syntax>
void post_filter_hint(Syntax& s, const Context& context, PostFilterHint& payload) {
    static constexpr SharedStructure kStructure = sharedStructure("post_filter_hint()", "D.1.24", "D.2.14");
    const Within<Syntax> within(s, kStructure.of(context));
    const bool isAvc = context.codec == Codec::Avc;
    if (!isAvc && context.hevcSps == nullptr) {
        s.fail(FaultKind::NoSuchSet, "seq_parameter_set_id", 0);
        return;
    }
    s.ue("filter_hint_size_y", payload.filter_hint_size_y, 1, PostFilterHint::kMostSize);
    s.ue("filter_hint_size_x", payload.filter_hint_size_x, 1, PostFilterHint::kMostSize);
    s.u(2, "filter_hint_type", payload.filter_hint_type);
    if (!isAvc) {
        const bool isMonochrome = context.hevcSps->chroma_format_idc == 0;
        filter_hint_values(s, "filter_hint_value", isMonochrome ? 1 : PostFilterHint::kMostColourComponents,
                           payload);
        return;
    }
    filter_hint_values(s, "filter_hint", PostFilterHint::kMostColourComponents, payload);
    s.flag("additional_extension_flag", payload.additional_extension_flag);
    if (payload.additional_extension_flag) {
        s.payload_bytes("extension_data", payload.extension_data);
    }
}

// chroma_resampling_filter_hint(), H.265 D.2.31
template <class Syntax>
void chroma_resampling_filter_hint(Syntax& s, const Context& context, ChromaResamplingFilterHint& payload) {
    using Hint = ChromaResamplingFilterHint;
    static_cast<void>(context);
    static constexpr Structure kStructure = {"chroma_resampling_filter_hint()", "D.2.31"};
    const Within<Syntax> within(s, kStructure);
    s.u(8, "ver_chroma_filter_idc", payload.ver_chroma_filter_idc);
    s.u(8, "hor_chroma_filter_idc", payload.hor_chroma_filter_idc);
    s.flag("ver_filtering_field_processing_flag", payload.ver_filtering_field_processing_flag);
    if (payload.ver_chroma_filter_idc == Hint::kExplicit ||
        payload.hor_chroma_filter_idc == Hint::kExplicit) {
        s.ue("target_format_idc", payload.target_format_idc, 1, 3);
    }
    if (payload.ver_chroma_filter_idc == Hint::kExplicit) {
        s.ue("num_vertical_filters", payload.num_vertical_filters, 1, Hint::kMostVerticalFilters);
        for (uint32_t i = 0; i < payload.num_vertical_filters; ++i) {
            s.ue(at("ver_tap_length_minus1", i), payload.ver_tap_length_minus1[i], 0, Hint::kMostTaps - 1);
            for (uint32_t j = 0; j <= payload.ver_tap_length_minus1[i]; ++j) {
                s.se(at("ver_filter_coeff", i, j), payload.ver_filter_coeff[i][j]);
            }
        }
    }
    if (payload.hor_chroma_filter_idc == Hint::kExplicit) {
        s.ue("num_horizontal_filters", payload.num_horizontal_filters, 1, Hint::kMostHorizontalFilters);
        for (uint32_t i = 0; i < payload.num_horizontal_filters; ++i) {
            s.ue(at("hor_tap_length_minus1", i), payload.hor_tap_length_minus1[i], 0, Hint::kMostTaps - 1);
            for (uint32_t j = 0; j <= payload.hor_tap_length_minus1[i]; ++j) {
                s.se(at("hor_filter_coeff", i, j), payload.hor_filter_coeff[i][j]);
            }
        }
    }
}

}  // namespace qv::sei

#endif
