/// \file
/// scaling_list_data() of H.265.
#ifndef QV_BITSTREAM_HEVC_SCALINGLIST_H
#define QV_BITSTREAM_HEVC_SCALINGLIST_H

#include <cstdint>

namespace qv::hevc {

/// scaling_list_data(), H.265 7.3.4 and 7.4.5, as coded. The first subscript is sizeId (0 is 4x4, 3 is
/// 32x32), the second matrixId (intra Y, Cb, Cr, inter Y, Cb, Cr). With sizeId 3 only matrixId 0 and 3 are
/// coded; the other elements are not set.
struct ScalingListData {
    static constexpr uint32_t kSizes = 4;       ///< values of sizeId
    static constexpr uint32_t kMatrices = 6;    ///< values of matrixId
    static constexpr uint32_t kMostCoefs = 64;  ///< coefficients of a list, at most

    bool scaling_list_pred_mode_flag[kSizes][kMatrices];  ///< u(1)

    /// ue(v), 0..matrixId, and with sizeId 3 0..matrixId / 3; set with scaling_list_pred_mode_flag 0.
    uint32_t scaling_list_pred_matrix_id_delta[kSizes][kMatrices];

    /// se(v), -7..247; the first subscript is sizeId - 2; set with scaling_list_pred_mode_flag 1.
    int32_t scaling_list_dc_coef_minus8[2][kMatrices];

    /// scaling_list_delta_coef, se(v), -128..127, 16 of them with sizeId 0 and 64 otherwise; set with
    /// scaling_list_pred_mode_flag 1.
    int16_t scaling_list_delta_coef[kSizes][kMatrices][kMostCoefs];
};

}  // namespace qv::hevc

#endif
