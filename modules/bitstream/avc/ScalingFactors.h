/// \file
/// The scaling factors of H.264 as a decoder uses them.
#ifndef QV_BITSTREAM_AVC_SCALINGFACTORS_H
#define QV_BITSTREAM_AVC_SCALINGFACTORS_H

#include <cstdint>

#include "bitstream/avc/Pps.h"
#include "bitstream/avc/Sps.h"

namespace qv::avc {

/// weightScale4x4 and weightScale8x8, H.264 8.5.9, each list as a matrix row by row: the factor of column j
/// of row i of the 4x4 list n is list4x4[ n ][ 4 * i + j ].
///
/// The lists are those of Table 7-2: intra Y, Cb, Cr and inter Y, Cb, Cr for 4x4; intra and inter Y, intra
/// and inter Cb, intra and inter Cr for 8x8. Chroma has 8x8 transforms in 4:4:4 alone; in other formats its
/// 8x8 lists are those that fall-back rule A makes of the luma ones, and nothing uses them.
struct ScalingFactors {
    uint8_t list4x4[6][16];  ///< 1..255
    uint8_t list8x8[6][64];  ///< 1..255
};

/// The factors of pictures that refer to a sequence parameter set and to a picture parameter set without
/// lists: Flat_4x4_16 and Flat_8x8_16 without seq_scaling_matrix_present_flag; else the lists as coded, the
/// default ones where delta_scale says so, and fall-back rule set A for those that are not present
/// (7.4.2.1.1, Table 7-2).
///
/// The order of the coded lists is the zig-zag scan, for field macroblocks too (8.5.6).
///
/// \param sps  read without a fault
ScalingFactors scalingFactorsOf(const SpsData& sps) noexcept;

/// The factors of pictures that refer to a picture parameter set: those of the sequence parameter set without
/// pic_scaling_matrix_present_flag; else the lists as coded, and for those that are not present fall-back
/// rule set A without seq_scaling_matrix_present_flag, B with it (7.4.2.2, Table 7-2).
///
/// \param sps  read without a fault
/// \param pps  read without a fault and with chroma_format_idc of \p sps
ScalingFactors scalingFactorsOf(const SpsData& sps, const Pps& pps) noexcept;

}  // namespace qv::avc

#endif
