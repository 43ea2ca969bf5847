// How decoded colours are mapped to those of another display, as syntax functions.
#ifndef QV_BITSTREAM_SEI_COLOURREMAPPINGSYNTAX_H
#define QV_BITSTREAM_SEI_COLOURREMAPPINGSYNTAX_H

#include "bitstream/sei/ColourRemapping.h"
#include "bitstream/sei/PayloadSyntax.h"

namespace qv::sei {

// knee_function_info(), H.265 D.2.32
template <class Syntax>
void knee_function_info(Syntax& s, const Context& /*context*/, KneeFunctionInfo& payload) {
    static constexpr Structure kStructure = {"knee_function_info()", "D.2.32"};
    const Within<Syntax> within(s, kStructure);
    s.ue("knee_function_id", payload.knee_function_id);
    s.flag("knee_function_cancel_flag", payload.knee_function_cancel_flag);
    if (payload.knee_function_cancel_flag) {
        return;
    }
    s.flag("knee_function_persistence_flag", payload.knee_function_persistence_flag);
    s.u(32, "input_d_range", payload.input_d_range);
    s.u(32, "input_disp_luminance", payload.input_disp_luminance);
    s.u(32, "output_d_range", payload.output_d_range);
    s.u(32, "output_disp_luminance", payload.output_disp_luminance);
    s.ue("num_knee_points_minus1", payload.num_knee_points_minus1, 0, KneeFunctionInfo::kMostKneePoints - 1);
    for (uint32_t i = 0; i <= payload.num_knee_points_minus1; ++i) {
        s.u(10, at("input_knee_point", i), payload.input_knee_point[i], 1, 999);
        s.u(10, at("output_knee_point", i), payload.output_knee_point[i], 0, 1000);
    }
}

// The names of the elements of a look-up table.
struct LookUpTableNames {
    const char* numValMinus1;
    const char* codedValue;
    const char* targetValue;
};

constexpr LookUpTableNames kPreLut = {"pre_lut_num_val_minus1", "pre_lut_coded_value",
                                      "pre_lut_target_value"};
constexpr LookUpTableNames kPostLut = {"post_lut_num_val_minus1", "post_lut_coded_value",
                                       "post_lut_target_value"};

// The bits of a value of a look-up table, H.265 D.3.33.
constexpr uint32_t lookUpTableBits(uint32_t bitDepth) {
    return (bitDepth + 7) >> 3 << 3;
}

// The table of one component. Its values have the bits of two bit depths.
template <class Syntax>
void colour_remap_lut(Syntax& s, const LookUpTableNames& names, uint32_t c, uint32_t codedBits,
                      uint32_t targetBits, uint32_t& numValMinus1, uint16_t* coded, uint16_t* target) {
    s.u(8, at(names.numValMinus1, c), numValMinus1, 0, ColourRemappingInfo::kMostPoints - 1);
    for (uint32_t i = 0; numValMinus1 > 0 && i <= numValMinus1; ++i) {
        s.u(codedBits, at(names.codedValue, c, i), coded[i]);
        s.u(targetBits, at(names.targetValue, c, i), target[i]);
    }
}

// colour_remapping_info(), H.264 D.1.30, H.265 D.2.33
template <class Syntax>
void colour_remapping_info(Syntax& s, const Context& context, ColourRemappingInfo& payload) {
    constexpr uint32_t kComponents = ColourRemappingInfo::kComponents;
    static constexpr SharedStructure kStructure =
        sharedStructure("colour_remapping_info()", "D.1.30", "D.2.33");
    const Within<Syntax> within(s, kStructure.of(context));
    s.ue("colour_remap_id", payload.colour_remap_id);
    s.flag("colour_remap_cancel_flag", payload.colour_remap_cancel_flag);
    if (payload.colour_remap_cancel_flag) {
        return;
    }
    if (context.codec == Codec::Avc) {
        s.ue("colour_remap_repetition_period", payload.colour_remap_repetition_period, 0, 16384);
    } else {
        s.flag("colour_remap_persistence_flag", payload.colour_remap_persistence_flag);
    }
    s.flag("colour_remap_video_signal_info_present_flag",
           payload.colour_remap_video_signal_info_present_flag);
    if (payload.colour_remap_video_signal_info_present_flag) {
        s.flag("colour_remap_full_range_flag", payload.colour_remap_full_range_flag);
        s.u(8, "colour_remap_primaries", payload.colour_remap_primaries);
        s.u(8, "colour_remap_transfer_function", payload.colour_remap_transfer_function);
        s.u(8, "colour_remap_matrix_coefficients", payload.colour_remap_matrix_coefficients);
    }
    s.u(8, "colour_remap_input_bit_depth", payload.colour_remap_input_bit_depth, 8, 16);
    s.u(8, "colour_remap_output_bit_depth", payload.colour_remap_output_bit_depth, 8, 16);
    const uint32_t inputBits = lookUpTableBits(payload.colour_remap_input_bit_depth);
    const uint32_t outputBits = lookUpTableBits(payload.colour_remap_output_bit_depth);
    for (uint32_t c = 0; c < kComponents; ++c) {
        colour_remap_lut(s, kPreLut, c, inputBits, outputBits, payload.pre_lut_num_val_minus1[c],
                         payload.pre_lut_coded_value[c], payload.pre_lut_target_value[c]);
    }
    s.flag("colour_remap_matrix_present_flag", payload.colour_remap_matrix_present_flag);
    if (payload.colour_remap_matrix_present_flag) {
        s.u(4, "log2_matrix_denom", payload.log2_matrix_denom);
        for (uint32_t c = 0; c < kComponents; ++c) {
            for (uint32_t i = 0; i < kComponents; ++i) {
                s.se(at("colour_remap_coeffs", c, i), payload.colour_remap_coeffs[c][i], -(1 << 15),
                     (1 << 15) - 1);
            }
        }
    }
    for (uint32_t c = 0; c < kComponents; ++c) {
        colour_remap_lut(s, kPostLut, c, outputBits, outputBits, payload.post_lut_num_val_minus1[c],
                         payload.post_lut_coded_value[c], payload.post_lut_target_value[c]);
    }
}

}  // namespace qv::sei

#endif
