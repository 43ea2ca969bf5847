/// \file
/// Multiview scenes: their disparities and the cameras that took them.
#ifndef QV_BITSTREAM_SEI_MULTIVIEWSCENE_H
#define QV_BITSTREAM_SEI_MULTIVIEWSCENE_H

#include <cstdint>

#include "bitstream/sei/CodedFloat.h"
#include "bitstream/sei/EntryReader.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// multiview_scene_info(), H.264 H.13.1.4 and H.13.2.4, H.265 G.14.2.5 and G.14.3.5. Disparities are in luma
/// samples.
struct MultiviewSceneInfo {
    static constexpr PayloadTypes kPayloadTypes = {39, 178};  ///< payloadType

    uint32_t max_disparity;        ///< ue(v), 0..1023; H.264
    int32_t min_disparity;         ///< se(v), -1024..1023; H.265
    uint32_t max_disparity_range;  ///< ue(v), 0..2047; H.265
};

/// multiview_acquisition_info(), H.264 H.13.1.5 and H.13.2.5, H.265 G.14.2.6 and G.14.3.6.
struct MultiviewAcquisitionInfo {
    static constexpr PayloadTypes kPayloadTypes = {40, 179};  ///< payloadType

    uint32_t num_views_minus1;  ///< ue(v), 0..1023; H.265: Context::numViewsMinus1, not coded
    bool intrinsic_param_flag;  ///< u(1)
    bool extrinsic_param_flag;  ///< u(1)

    // With intrinsic_param_flag.

    bool intrinsic_params_equal_flag;  ///< u(1)
    uint32_t prec_focal_length;        ///< ue(v), 0..31
    uint32_t prec_principal_point;     ///< ue(v), 0..31
    uint32_t prec_skew_factor;         ///< ue(v), 0..31
    CodedBits intrinsic_params;        ///< sign_focal_length_x[ i ] and what follows; see IntrinsicParamList

    // With extrinsic_param_flag.

    uint32_t prec_rotation_param;     ///< ue(v), 0..31
    uint32_t prec_translation_param;  ///< ue(v), 0..31
    CodedBits extrinsic_params;       ///< sign_r[ i ][ j ][ k ] and what follows; see ExtrinsicParamList

    /// True for H.265, which counts rows and columns from 0.
    bool isHevc;
};

/// The intrinsic parameters of a camera. The exponent 63 is reserved.
struct IntrinsicParams {
    CodedFloat focal_length_x;     ///< in luma samples
    CodedFloat focal_length_y;     ///< in luma samples
    CodedFloat principal_point_x;  ///< in luma samples
    CodedFloat principal_point_y;  ///< in luma samples
    CodedFloat skew_factor;        ///< no unit
};

/// The extrinsic parameters of a camera. The exponent 63 is reserved.
struct ExtrinsicParams {
    CodedFloat r[3][3];  ///< rotation matrix, row by row
    CodedFloat t[3];     ///< translation vector
};

/// Reads the intrinsic parameters of each view, or of all views at once with intrinsic_params_equal_flag.
using IntrinsicParamList = EntryReader<MultiviewAcquisitionInfo, IntrinsicParams>;

/// Reads the extrinsic parameters of each view.
using ExtrinsicParamList = EntryReader<MultiviewAcquisitionInfo, ExtrinsicParams>;

}  // namespace qv::sei

#endif
