// Scaling factors (H.265 7.4.5).
#include "bitstream/hevc/ScalingFactors.h"

#include "bitstream/hevc/ScalingListSyntax.h"

namespace qv::hevc {

namespace {

constexpr uint32_t kSizes = ScalingListData::kSizes;
constexpr uint32_t kMatrices = ScalingListData::kMatrices;
constexpr uint16_t kFlat = 16;

// Table 7-6: the default lists of sizeId 1 to 3, for intra and for inter prediction.
constexpr uint16_t kDefault8x8[2][64] = {
    {16, 16, 16, 16, 16, 16, 16, 16, 16, 16, 17, 16, 17, 16, 17, 18, 17, 18, 18, 17, 18, 21,
     19, 20, 21, 20, 19, 21, 24, 22, 22, 24, 24, 22, 22, 24, 25, 25, 27, 30, 27, 25, 25, 29,
     31, 35, 35, 31, 29, 36, 41, 44, 41, 36, 47, 54, 54, 47, 65, 70, 65, 88, 88, 115},
    {16, 16, 16, 16, 16, 16, 16, 16, 16, 16, 17, 17, 17, 17, 17, 18, 18, 18, 18, 18, 18, 20,
     20, 20, 20, 20, 20, 20, 24, 24, 24, 24, 24, 24, 24, 24, 25, 25, 25, 25, 25, 25, 25, 28,
     28, 28, 28, 28, 28, 33, 33, 33, 33, 33, 41, 41, 41, 41, 54, 54, 54, 71, 71, 91}};

constexpr uint16_t kDefaultDc = 16;

// The place of a position in the up-right diagonal scan of a square (6.5.3).
uint32_t diagonalScanIndex(uint32_t size, uint32_t x, uint32_t y) {
    const uint32_t diagonal = x + y;
    if (diagonal < size) {
        return diagonal * (diagonal + 1) / 2 + x;
    }
    const uint32_t left = 2 * size - 1 - diagonal;
    return size * size - left * (left + 1) / 2 + x - (diagonal - size + 1);
}

void setDefault(ScalingFactors& factors, uint32_t sizeId, uint32_t matrixId) {
    for (uint32_t i = 0; i < coefNumOf(sizeId); ++i) {
        factors.list[sizeId][matrixId][i] = sizeId == 0 ? kFlat : kDefault8x8[matrixId / 3][i];
    }
    if (sizeId > 1) {
        factors.dc[sizeId - 2][matrixId] = kDefaultDc;
    }
}

void copyList(ScalingFactors& factors, uint32_t sizeId, uint32_t matrixId, uint32_t refSizeId,
              uint32_t refMatrixId) {
    for (uint32_t i = 0; i < coefNumOf(sizeId); ++i) {
        factors.list[sizeId][matrixId][i] = factors.list[refSizeId][refMatrixId][i];
    }
    if (sizeId > 1) {
        factors.dc[sizeId - 2][matrixId] = factors.dc[refSizeId - 2][refMatrixId];
    }
}

void setCoded(ScalingFactors& factors, const ScalingListData& data, uint32_t sizeId, uint32_t matrixId) {
    int32_t nextCoef = 8;
    if (sizeId > 1) {
        nextCoef = data.scaling_list_dc_coef_minus8[sizeId - 2][matrixId] + 8;
        factors.dc[sizeId - 2][matrixId] = static_cast<uint16_t>(nextCoef);
    }
    for (uint32_t i = 0; i < coefNumOf(sizeId); ++i) {
        nextCoef = (nextCoef + data.scaling_list_delta_coef[sizeId][matrixId][i] + 256) % 256;
        factors.list[sizeId][matrixId][i] = static_cast<uint16_t>(nextCoef);
    }
}

void setList(ScalingFactors& factors, const ScalingListData& data, uint32_t sizeId, uint32_t matrixId) {
    if (data.scaling_list_pred_mode_flag[sizeId][matrixId]) {
        setCoded(factors, data, sizeId, matrixId);
        return;
    }
    const uint32_t delta = data.scaling_list_pred_matrix_id_delta[sizeId][matrixId] * matrixStepOf(sizeId);
    if (delta == 0 || delta > matrixId) {
        setDefault(factors, sizeId, matrixId);
    } else {
        copyList(factors, sizeId, matrixId, sizeId, matrixId - delta);
    }
}

// The 32x32 lists of chroma are not coded.
void setChroma32x32(ScalingFactors& factors) {
    for (const uint32_t matrixId : {1U, 2U, 4U, 5U}) {
        copyList(factors, 3, matrixId, 2, matrixId);
    }
}

}  // namespace

uint32_t ScalingFactors::at(uint32_t sizeId, uint32_t matrixId, uint32_t x, uint32_t y) const noexcept {
    sizeId %= kSizes;
    matrixId %= kMatrices;
    const uint32_t size = 4U << sizeId;
    x %= size;
    y %= size;
    if (sizeId > 1 && x == 0 && y == 0) {
        return dc[sizeId - 2][matrixId];
    }
    // A list of 64 values covers the matrix in squares of 1, 2 or 4.
    const uint32_t shift = sizeId > 1 ? sizeId - 1 : 0;
    return list[sizeId][matrixId][diagonalScanIndex(size >> shift, x >> shift, y >> shift)];
}

ScalingFactors flatScalingFactors() noexcept {
    ScalingFactors factors = {};
    for (auto& size : factors.list) {
        for (auto& matrix : size) {
            for (uint16_t& value : matrix) {
                value = kFlat;
            }
        }
    }
    for (auto& size : factors.dc) {
        for (uint16_t& value : size) {
            value = kFlat;
        }
    }
    return factors;
}

ScalingFactors defaultScalingFactors() noexcept {
    ScalingFactors factors = {};
    for (uint32_t sizeId = 0; sizeId < kSizes; ++sizeId) {
        for (uint32_t matrixId = 0; matrixId < kMatrices; ++matrixId) {
            setDefault(factors, sizeId, matrixId);
        }
    }
    return factors;
}

ScalingFactors scalingFactorsOf(const ScalingListData& data) noexcept {
    ScalingFactors factors = {};
    for (uint32_t sizeId = 0; sizeId < kSizes; ++sizeId) {
        for (uint32_t matrixId = 0; matrixId < kMatrices; matrixId += matrixStepOf(sizeId)) {
            setList(factors, data, sizeId, matrixId);
        }
    }
    setChroma32x32(factors);
    return factors;
}

ScalingFactors scalingFactorsOf(const Sps& sps, const Pps& pps) noexcept {
    if (!sps.scaling_list_enabled_flag) {
        return flatScalingFactors();
    }
    if (pps.pps_scaling_list_data_present_flag) {
        return scalingFactorsOf(pps.scaling_list_data);
    }
    if (sps.sps_scaling_list_data_present_flag) {
        return scalingFactorsOf(sps.scaling_list_data);
    }
    return defaultScalingFactors();
}

}  // namespace qv::hevc
