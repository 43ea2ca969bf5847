// Film grain as syntax functions.
#ifndef QV_BITSTREAM_SEI_FILMGRAINSYNTAX_H
#define QV_BITSTREAM_SEI_FILMGRAINSYNTAX_H

#include "bitstream/sei/FilmGrain.h"
#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/Repetition.h"

namespace qv::sei {

// The values that an element may have.
struct ModelValueRange {
    int32_t least = -kMostSe;
    int32_t most = kMostSe;
};

// filmGrainBitDepth[ c ] of H.264 D.2.21 and H.265 D.3.13; 0 when there is no SPS to infer it from.
constexpr uint32_t filmGrainBitDepth(const FilmGrainCharacteristics& payload, const Context& context,
                                     uint32_t c) {
    if (payload.separate_colour_description_present_flag) {
        return 8 + (c == 0 ? payload.film_grain_bit_depth_luma_minus8
                           : payload.film_grain_bit_depth_chroma_minus8);
    }
    if (context.avcSps != nullptr) {
        return 8 + (c == 0 ? context.avcSps->bit_depth_luma_minus8 : context.avcSps->bit_depth_chroma_minus8);
    }
    if (context.hevcSps != nullptr) {
        return 8 +
               (c == 0 ? context.hevcSps->bit_depth_luma_minus8 : context.hevcSps->bit_depth_chroma_minus8);
    }
    return 0;
}

// Of the models that are not reserved.
constexpr ModelValueRange modelValueRange(const FilmGrainCharacteristics& payload, const Context& context,
                                          uint32_t c) {
    const uint32_t bitDepth = filmGrainBitDepth(payload, context, c);
    if (bitDepth == 0 || payload.film_grain_model_id > 1) {
        return {};
    }
    const int32_t least = payload.film_grain_model_id == 0 ? 0 : -(1 << (bitDepth - 1));
    return {least, least + (1 << bitDepth) - 1};
}

template <class Syntax>
void film_grain_interval(Syntax& s, uint32_t c, uint32_t i, uint32_t modelValues,
                         const ModelValueRange& range, FilmGrainInterval& interval) {
    s.u(8, at("intensity_interval_lower_bound", c, i), interval.intensity_interval_lower_bound);
    s.u(8, at("intensity_interval_upper_bound", c, i), interval.intensity_interval_upper_bound);
    for (uint32_t j = 0; j < modelValues; ++j) {
        s.se(at("comp_model_value", c, i, j), interval.comp_model_value[j], range.least, range.most);
    }
}

template <class Syntax>
void film_grain_models(Syntax& s, const Context& context, FilmGrainCharacteristics& payload) {
    for (uint32_t c = 0; c < FilmGrainCharacteristics::kColourComponents; ++c) {
        s.flag(at("comp_model_present_flag", c), payload.comp_model_present_flag[c]);
    }
    for (uint32_t c = 0; c < FilmGrainCharacteristics::kColourComponents; ++c) {
        if (payload.comp_model_present_flag[c]) {
            s.u(8, at("num_intensity_intervals_minus1", c), payload.num_intensity_intervals_minus1[c]);
            s.u(3, at("num_model_values_minus1", c), payload.num_model_values_minus1[c], 0,
                FilmGrainInterval::kMostModelValues - 1);
            const ModelValueRange range = modelValueRange(payload, context, c);
            s.keep(payload.intensity_intervals[c], [&](auto& in) {
                FilmGrainInterval interval = {};
                for (uint32_t i = 0; i <= payload.num_intensity_intervals_minus1[c]; ++i) {
                    film_grain_interval(in, c, i, payload.num_model_values_minus1[c] + 1, range, interval);
                }
            });
        }
    }
}

// film_grain_characteristics(), H.264 D.1.21, H.265 D.2.13
template <class Syntax>
void film_grain_characteristics(Syntax& s, const Context& context, FilmGrainCharacteristics& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("film_grain_characteristics()", "D.1.21", "D.2.13");
    const Within<Syntax> within(s, kStructure.of(context));
    const bool isAvc = context.codec == Codec::Avc;
    s.flag("film_grain_characteristics_cancel_flag", payload.film_grain_characteristics_cancel_flag);
    if (payload.film_grain_characteristics_cancel_flag) {
        return;
    }
    s.u(2, "film_grain_model_id", payload.film_grain_model_id);
    s.flag("separate_colour_description_present_flag", payload.separate_colour_description_present_flag);
    if (payload.separate_colour_description_present_flag) {
        s.u(3, "film_grain_bit_depth_luma_minus8", payload.film_grain_bit_depth_luma_minus8);
        s.u(3, "film_grain_bit_depth_chroma_minus8", payload.film_grain_bit_depth_chroma_minus8);
        s.flag("film_grain_full_range_flag", payload.film_grain_full_range_flag);
        s.u(8, "film_grain_colour_primaries", payload.film_grain_colour_primaries);
        s.u(8, "film_grain_transfer_characteristics", payload.film_grain_transfer_characteristics);
        s.u(8, isAvc ? "film_grain_matrix_coefficients" : "film_grain_matrix_coeffs",
            payload.film_grain_matrix_coeffs);
    }
    s.u(2, "blending_mode_id", payload.blending_mode_id);
    s.u(4, "log2_scale_factor", payload.log2_scale_factor);
    film_grain_models(s, context, payload);
    if (isAvc) {
        s.ue("film_grain_characteristics_repetition_period",
             payload.film_grain_characteristics_repetition_period, 0, kMostRepetitionPeriod);
    } else {
        s.flag("film_grain_characteristics_persistence_flag",
               payload.film_grain_characteristics_persistence_flag);
    }
}

}  // namespace qv::sei

#endif
