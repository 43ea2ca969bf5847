/// \file
/// The scaling factors of H.265 pictures.
#ifndef QV_BITSTREAM_HEVC_SCALINGFACTORS_H
#define QV_BITSTREAM_HEVC_SCALINGFACTORS_H

#include <cstdint>

#include "bitstream/hevc/Pps.h"
#include "bitstream/hevc/ScalingList.h"
#include "bitstream/hevc/Sps.h"

namespace qv::hevc {

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

/// The scaling factors of pictures that refer to \p pps and, through it, to \p sps: flat without
/// scaling_list_enabled_flag, otherwise the lists of the PPS, else those of the SPS, else the default lists
/// (H.265 7.4.3.2.1, 7.4.3.3.1). A set that infers its lists from another layer has none of its own: pass the
/// sets of that layer.
ScalingFactors scalingFactorsOf(const Sps& sps, const Pps& pps) noexcept;

}  // namespace qv::hevc

#endif
