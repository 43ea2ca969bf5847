// Tone mapping as syntax functions.
#ifndef QV_BITSTREAM_SEI_TONEMAPPINGSYNTAX_H
#define QV_BITSTREAM_SEI_TONEMAPPINGSYNTAX_H

#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/Repetition.h"
#include "bitstream/sei/ToneMapping.h"

namespace qv::sei {

// The bits of a sample value in whole bytes: 8 or 16.
constexpr uint32_t bitsInWholeBytes(uint32_t bitDepth) {
    return ((bitDepth + 7) >> 3) << 3;
}

template <class Syntax>
void tone_map_pivot(Syntax& s, uint32_t i, uint32_t codedWidth, uint32_t targetWidth, ToneMapPivot& pivot) {
    s.u(codedWidth, at("coded_pivot_value", i), pivot.coded_pivot_value);
    s.u(targetWidth, at("target_pivot_value", i), pivot.target_pivot_value);
}

// Model 2: each target value begins an interval of coded values.
template <class Syntax>
void tone_map_intervals(Syntax& s, ToneMappingInfo& payload) {
    s.keep(payload.start_of_coded_interval, [&payload](auto& in) {
        const uint32_t width = bitsInWholeBytes(payload.coded_data_bit_depth);
        for (uint32_t i = 0; i < 1U << payload.target_bit_depth && !in.failed(); ++i) {
            uint32_t start_of_coded_interval = 0;
            in.u(width, at("start_of_coded_interval", i), start_of_coded_interval);
        }
    });
}

// Model 3: a piece-wise linear mapping.
template <class Syntax>
void tone_map_pivots(Syntax& s, ToneMappingInfo& payload) {
    s.u(16, "num_pivots", payload.num_pivots);
    s.keep(payload.pivots, [&payload](auto& in) {
        ToneMapPivot pivot = {};
        for (uint32_t i = 0; i < payload.num_pivots && !in.failed(); ++i) {
            tone_map_pivot(in, i, bitsInWholeBytes(payload.coded_data_bit_depth),
                           bitsInWholeBytes(payload.target_bit_depth), pivot);
        }
    });
}

// Model 4: what the mapping depends on.
template <class Syntax>
void tone_map_camera(Syntax& s, const Context& context, ToneMappingInfo& payload) {
    const bool isAvc = context.codec == Codec::Avc;
    s.u(8, "camera_iso_speed_idc", payload.camera_iso_speed_idc);
    if (payload.camera_iso_speed_idc == ToneMappingInfo::kExtendedIso) {
        s.u(32, "camera_iso_speed_value", payload.camera_iso_speed_value);
    }
    s.u(8, isAvc ? "exposure_index_idc" : "exposure_idx_idc", payload.exposure_idx_idc);
    if (payload.exposure_idx_idc == ToneMappingInfo::kExtendedIso) {
        s.u(32, isAvc ? "exposure_index_value" : "exposure_idx_value", payload.exposure_idx_value);
    }
    s.flag("exposure_compensation_value_sign_flag", payload.exposure_compensation_value_sign_flag);
    s.u(16, "exposure_compensation_value_numerator", payload.exposure_compensation_value_numerator);
    s.u(16, "exposure_compensation_value_denom_idc", payload.exposure_compensation_value_denom_idc);
    s.u(32, "ref_screen_luminance_white", payload.ref_screen_luminance_white);
    s.u(32, "extended_range_white_level", payload.extended_range_white_level);
    s.u(16, isAvc ? "nominal_black_level_luma_code_value" : "nominal_black_level_code_value",
        payload.nominal_black_level_code_value);
    s.u(16, isAvc ? "nominal_white_level_luma_code_value" : "nominal_white_level_code_value",
        payload.nominal_white_level_code_value);
    s.u(16, isAvc ? "extended_white_level_luma_code_value" : "extended_white_level_code_value",
        payload.extended_white_level_code_value);
}

template <class Syntax>
void tone_map_model(Syntax& s, const Context& context, ToneMappingInfo& payload) {
    switch (payload.tone_map_model_id) {
        case 0:
            s.u(32, "min_value", payload.min_value);
            s.u(32, "max_value", payload.max_value);
            break;
        case 1:
            s.u(32, "sigmoid_midpoint", payload.sigmoid_midpoint);
            s.u(32, "sigmoid_width", payload.sigmoid_width);
            break;
        case 2:
            tone_map_intervals(s, payload);
            break;
        case 3:
            tone_map_pivots(s, payload);
            break;
        case 4:
            tone_map_camera(s, context, payload);
            break;
        default:
            s.payload_bytes("extension_data", payload.extension_data);
            break;
    }
}

// tone_mapping_info(), H.264 D.1.25, H.265 D.2.15. The bit depths outside their ranges are reserved; the
// widths and the number of the values after them are defined within the ranges alone.
template <class Syntax>
void tone_mapping_info(Syntax& s, const Context& context, ToneMappingInfo& payload) {
    static constexpr SharedStructure kStructure = sharedStructure("tone_mapping_info()", "D.1.25", "D.2.15");
    const Within<Syntax> within(s, kStructure.of(context));
    s.ue("tone_map_id", payload.tone_map_id);
    s.flag("tone_map_cancel_flag", payload.tone_map_cancel_flag);
    if (!payload.tone_map_cancel_flag) {
        if (context.codec == Codec::Avc) {
            s.ue("tone_map_repetition_period", payload.tone_map_repetition_period, 0, kMostRepetitionPeriod);
        } else {
            s.flag("tone_map_persistence_flag", payload.tone_map_persistence_flag);
        }
        s.u(8, "coded_data_bit_depth", payload.coded_data_bit_depth, 8, 14);
        s.u(8, "target_bit_depth", payload.target_bit_depth, 1, 16);
        s.ue("tone_map_model_id", payload.tone_map_model_id);
        tone_map_model(s, context, payload);
    }
}

}  // namespace qv::sei

#endif
