/// \file
/// What the VUI extensions of scalable and multiview streams say of one operation point.
#ifndef QV_BITSTREAM_AVC_VUIEXTENSIONTIMING_H
#define QV_BITSTREAM_AVC_VUIEXTENSIONTIMING_H

#include <cstdint>

#include "bitstream/avc/Hrd.h"

namespace qv::avc {

/// Timing and HRD parameters of an entry of svc_vui_parameters_extension() (H.264 G.14.1),
/// mvc_vui_parameters_extension() (H.14.1) or mvcd_vui_parameters_extension() (I.14.1). The standard prefixes
/// the names of the elements with vui_ext_, vui_mvc_ and vui_mvcd_.
struct VuiExtensionTiming {
    bool timing_info_present_flag;  ///< u(1)
    uint32_t num_units_in_tick;     ///< u(32), above 0
    uint32_t time_scale;            ///< u(32), above 0
    bool fixed_frame_rate_flag;     ///< u(1)

    bool nal_hrd_parameters_present_flag;  ///< u(1)
    Hrd nal_hrd_parameters;                ///< with nal_hrd_parameters_present_flag
    bool vcl_hrd_parameters_present_flag;  ///< u(1)
    Hrd vcl_hrd_parameters;                ///< with vcl_hrd_parameters_present_flag
    bool low_delay_hrd_flag;               ///< u(1)
    bool pic_struct_present_flag;          ///< u(1)
};

}  // namespace qv::avc

#endif
