/// \file
/// HDR Vivid dynamic metadata: T/UWA 005.1.
#ifndef QV_BITSTREAM_SEI_HDRVIVID_H
#define QV_BITSTREAM_SEI_HDRVIVID_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"
#include "bitstream/sei/T35.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

// Names are those of the standard; where one begins with a digit, it is spelled out. A PQ code is a fraction
// of the PQ range of SMPTE ST 2084, in units of 1/4095.

/// One spline of a tone mapping.
struct HdrVividSpline {
    uint32_t TH_enable_mode;    ///< u(2)
    uint32_t TH_enable_MB;      ///< u(8), in units of 1/255, with TH_enable_mode 0 and 2
    uint32_t TH_enable;         ///< u(12), PQ code
    uint32_t TH_enable_Delta1;  ///< u(10), in units of 1/4092
    uint32_t TH_enable_Delta2;  ///< u(10), in units of 1/4092
    uint32_t enable_Strength;   ///< u(8), in units of 1/255

    /// True when TH_enable_MB is present.
    constexpr bool hasMiddleBase() const { return TH_enable_mode == 0 || TH_enable_mode == 2; }
};

/// The tone mapping for one targeted display.
struct HdrVividToneMapping {
    static constexpr uint32_t kMostSplines = 2;  ///< three_Spline_enable_num + 1

    uint32_t targeted_system_display_maximum_luminance_pq;  ///< u(12), PQ code

    bool base_enable_flag;                  ///< u(1): the base parameters are present
    uint32_t base_param_m_p;                ///< u(14), in units of 1/16383
    uint32_t base_param_m_m;                ///< u(6), in units of 1/10
    uint32_t base_param_m_a;                ///< u(10), in units of 1/1023
    uint32_t base_param_m_b;                ///< u(10), in units of 1/1023
    uint32_t base_param_m_n;                ///< u(6), in units of 1/10
    uint32_t base_param_K1;                 ///< u(2)
    uint32_t base_param_K2;                 ///< u(2)
    uint32_t base_param_K3;                 ///< u(4)
    uint32_t base_param_Delta_enable_mode;  ///< u(3)
    uint32_t base_param_enable_Delta;       ///< u(7), in units of 1/127

    bool three_Spline_enable_flag;         ///< u(1): the splines are present
    uint32_t three_Spline_enable_num;      ///< u(1)
    HdrVividSpline splines[kMostSplines];  ///< the first splineCount() are present

    /// How many splines there are.
    constexpr uint32_t splineCount() const {
        return three_Spline_enable_flag ? three_Spline_enable_num + 1 : 0;
    }
};

/// Dynamic metadata of one picture. In a message of another owner the first code that differs has the fault
/// OutOfRange.
struct HdrVivid {
    static constexpr PayloadTypes kPayloadTypes = {4, 4};   ///< payloadType
    static constexpr T35Owner kOwner = T35Owner::HdrVivid;  ///< codes 26:0004, 0x0005
    static constexpr uint32_t kMostToneMappings = 2;        ///< tone_mapping_param_enable_num + 1
    static constexpr uint32_t kMostGains = 7;               ///< of u(3)

    uint32_t system_start_code;   ///< u(8), 1: one window
    uint32_t minimum_maxrgb_pq;   ///< u(12), PQ code
    uint32_t average_maxrgb_pq;   ///< u(12), PQ code
    uint32_t variance_maxrgb_pq;  ///< u(12), PQ code
    uint32_t maximum_maxrgb_pq;   ///< u(12), PQ code

    bool tone_mapping_enable_mode_flag;                   ///< u(1): the tone mappings are present
    uint32_t tone_mapping_param_enable_num;               ///< u(1)
    HdrVividToneMapping toneMappings[kMostToneMappings];  ///< the first toneMappingCount() are present

    bool color_saturation_mapping_enable_flag;          ///< u(1): the gains are present
    uint32_t color_saturation_enable_num;               ///< u(3), how many gains there are
    uint32_t color_saturation_enable_gain[kMostGains];  ///< u(8), in units of 1/128

    /// Bits after the last element, borrowed. They are empty in a new record: a writer fills the last byte
    /// with zero bits.
    CodedBits padding;

    /// How many gains there are.
    constexpr uint32_t gainCount() const {
        return color_saturation_mapping_enable_flag ? color_saturation_enable_num : 0;
    }

    /// How many tone mappings there are.
    constexpr uint32_t toneMappingCount() const {
        return tone_mapping_enable_mode_flag ? tone_mapping_param_enable_num + 1 : 0;
    }
};

}  // namespace qv::sei

#endif
