/// \file
/// scaling_list_data() of H.265 and the scaling factors that follow from it.
#ifndef QV_BITSTREAM_HEVC_SCALINGLIST_H
#define QV_BITSTREAM_HEVC_SCALINGLIST_H

#include <cstdint>

namespace qv::hevc {

/// scaling_list_data(), H.265 7.3.4 and 7.4.5, as coded. The first subscript is sizeId (0 is 4x4, 3 is
/// 32x32), the second matrixId (intra Y, Cb, Cr, inter Y, Cb, Cr). With sizeId 3 only matrixId 0 and 3 are
/// coded; the other elements are not set.
struct ScalingListData {
    static constexpr uint32_t kSizes = 4;
    static constexpr uint32_t kMatrices = 6;
    static constexpr uint32_t kMostCoefs = 64;

    bool scaling_list_pred_mode_flag[kSizes][kMatrices];

    /// ue(v), 0..matrixId, and with sizeId 3 0..matrixId / 3; set with scaling_list_pred_mode_flag 0.
    uint32_t scaling_list_pred_matrix_id_delta[kSizes][kMatrices];

    /// se(v), -7..247; the first subscript is sizeId - 2; set with scaling_list_pred_mode_flag 1.
    int32_t scaling_list_dc_coef_minus8[2][kMatrices];

    /// scaling_list_delta_coef, se(v), -128..127, 16 of them with sizeId 0 and 64 otherwise; set with
    /// scaling_list_pred_mode_flag 1.
    int16_t scaling_list_delta_coef[kSizes][kMatrices][kMostCoefs];
};

/// The scaling factors that decoding uses, H.265 7.4.5. Lists are in up-right diagonal scan order; at() gives
/// the value at a position.
struct ScalingFactors {
    /// ScalingList[sizeId][matrixId][i], 16 values with sizeId 0 and 64 otherwise. The 32x32 lists of chroma
    /// are those of 16x16; only chroma_format_idc 3 uses them.
    uint16_t list[ScalingListData::kSizes][ScalingListData::kMatrices][ScalingListData::kMostCoefs];

    /// The value at position [0][0] of a 16x16 (0) or 32x32 (1) matrix: scaling_list_dc_coef_minus8 + 8.
    uint16_t dc[2][ScalingListData::kMatrices];

    /// ScalingFactor[sizeId][matrixId][x][y]; x and y are taken modulo the size of the matrix, sizeId modulo
    /// 4 and matrixId modulo 6.
    uint32_t at(uint32_t sizeId, uint32_t matrixId, uint32_t x, uint32_t y) const noexcept;
};

/// Every factor 16: what scaling_list_enabled_flag 0 means (H.265 8.6.4.2).
ScalingFactors flatScalingFactors() noexcept;

/// The default lists of Tables 7-5 and 7-6: what scaling_list_enabled_flag 1 means without
/// scaling_list_data().
ScalingFactors defaultScalingFactors() noexcept;

/// The lists that scaling_list_data() codes: prediction from default and other lists, DC values, and
/// the 32x32 lists of chroma from those of 16x16.
ScalingFactors scalingFactorsOf(const ScalingListData& data) noexcept;

}  // namespace qv::hevc

#endif
