// scaling_list_data() of H.265 as a syntax function.
#ifndef QV_BITSTREAM_HEVC_SCALINGLISTSYNTAX_H
#define QV_BITSTREAM_HEVC_SCALINGLISTSYNTAX_H

#include "bitstream/hevc/ScalingList.h"
#include "bitstream/syntax/Reader.h"

namespace qv::hevc {

// matrixId goes up in steps of 3 with sizeId 3, where only the lists of luma are coded.
constexpr uint32_t matrixStepOf(uint32_t sizeId) {
    return sizeId == 3 ? 3 : 1;
}

constexpr uint32_t coefNumOf(uint32_t sizeId) {
    return sizeId == 0 ? 16 : 64;
}

template <class Syntax>
void scaling_list(Syntax& s, ScalingListData& lists, uint32_t sizeId, uint32_t matrixId) {
    s.flag(at("scaling_list_pred_mode_flag", sizeId, matrixId),
           lists.scaling_list_pred_mode_flag[sizeId][matrixId]);
    if (!lists.scaling_list_pred_mode_flag[sizeId][matrixId]) {
        s.ue(at("scaling_list_pred_matrix_id_delta", sizeId, matrixId),
             lists.scaling_list_pred_matrix_id_delta[sizeId][matrixId], 0, matrixId / matrixStepOf(sizeId));
        return;
    }
    if (sizeId > 1) {
        s.se(at("scaling_list_dc_coef_minus8", sizeId - 2, matrixId),
             lists.scaling_list_dc_coef_minus8[sizeId - 2][matrixId], -7, 247);
    }
    for (uint32_t i = 0; i < coefNumOf(sizeId); ++i) {
        s.se("scaling_list_delta_coef", lists.scaling_list_delta_coef[sizeId][matrixId][i], -128, 127);
    }
}

// scaling_list_data(), 7.3.4
template <class Syntax>
void scaling_list_data(Syntax& s, ScalingListData& lists) {
    static constexpr Structure kStructure = {"scaling_list_data()", "7.3.4"};
    const Within<Syntax> within(s, kStructure);
    for (uint32_t sizeId = 0; sizeId < ScalingListData::kSizes; ++sizeId) {
        for (uint32_t matrixId = 0; matrixId < ScalingListData::kMatrices; matrixId += matrixStepOf(sizeId)) {
            scaling_list(s, lists, sizeId, matrixId);
        }
    }
}

}  // namespace qv::hevc

#endif
