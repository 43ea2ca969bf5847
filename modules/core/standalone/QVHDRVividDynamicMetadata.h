/// \file
/// HDR Vivid dynamic metadata (T/UWA 005.1) as the stand-alone core reads it.
///
/// The record holds the codes as they are in the bitstream, under the standard's names (a leading digit is
/// spelled out). The functions below convert the codes to values; they accept any code. A PQ code is a
/// fraction of the PQ range of SMPTE ST 2084, in units of 1/4095.
#ifndef QV_CORE_STANDALONE_QVHDRVIVIDDYNAMICMETADATA_H
#define QV_CORE_STANDALONE_QVHDRVIVIDDYNAMICMETADATA_H

#include <stdint.h>

#include "QVHDRVivid.h"

/// One spline of a tone mapping.
struct QVHDRVividSpline {
    uint32_t TH_enable_mode;    ///< u(2)
    uint32_t has_TH_enable_MB;  ///< 1 for TH_enable_mode 0 and 2, the only modes that carry TH_enable_MB
    uint32_t TH_enable_MB;      ///< u(8), in 1/255
    uint32_t TH_enable;         ///< u(12), PQ code
    uint32_t TH_enable_Delta1;  ///< u(10), in 1/4092
    uint32_t TH_enable_Delta2;  ///< u(10), in 1/4092
    uint32_t enable_Strength;   ///< u(8), in 1/255
};

/// The tone mapping for one targeted display.
struct QVHDRVividToneMapping {
    uint32_t targeted_system_display_maximum_luminance_pq;  ///< u(12), PQ code

    uint32_t base_enable_flag;              ///< u(1); 1: the base parameters are present
    uint32_t base_param_m_p;                ///< u(14), in 1/16383
    uint32_t base_param_m_m;                ///< u(6), in 1/10
    uint32_t base_param_m_a;                ///< u(10), in 1/1023
    uint32_t base_param_m_b;                ///< u(10), in 1/1023
    uint32_t base_param_m_n;                ///< u(6), in 1/10
    uint32_t base_param_K1;                 ///< u(2)
    uint32_t base_param_K2;                 ///< u(2)
    uint32_t base_param_K3;                 ///< u(4)
    uint32_t base_param_Delta_enable_mode;  ///< u(3)
    uint32_t base_param_enable_Delta;       ///< u(7), in 1/127

    uint32_t three_Spline_enable_flag;  ///< u(1); 1: the splines are present
    uint32_t three_Spline_enable_num;   ///< u(1)
    uint32_t numSplines;                ///< three_Spline_enable_num + 1, or 0
    QVHDRVividSpline splines[2];        ///< the first numSplines are present
};

/// The dynamic metadata of one picture.
struct QVHDRVividDynamicMetadata {
    uint32_t system_start_code;   ///< u(8), 0x01: one window
    uint32_t minimum_maxrgb_pq;   ///< u(12), PQ code
    uint32_t average_maxrgb_pq;   ///< u(12), PQ code
    uint32_t variance_maxrgb_pq;  ///< u(12), PQ code
    uint32_t maximum_maxrgb_pq;   ///< u(12), PQ code

    uint32_t tone_mapping_enable_mode_flag;  ///< u(1); 1: the tone mappings are present
    uint32_t tone_mapping_param_enable_num;  ///< u(1)
    uint32_t numToneMappings;                ///< tone_mapping_param_enable_num + 1, or 0
    QVHDRVividToneMapping toneMappings[2];   ///< the first numToneMappings are present

    uint32_t color_saturation_mapping_enable_flag;  ///< u(1); 1: the gains are present
    uint32_t color_saturation_enable_num;           ///< u(3), the number of gains
    uint32_t color_saturation_enable_gain[7];       ///< u(8), in 1/128
};

/// The status that the stand-alone fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei returns. For any
/// status but QVHDRVividOk the record is unchanged.
enum QVHDRVividStatus {
    QVHDRVividOk = 0,              ///< the record is filled
    QVHDRVividNullArgument = 1,    ///< the record or the item's payload pointer is null
    QVHDRVividOtherItem = 2,       ///< not an H.265 user_data_registered_itu_t_t35 item
    QVHDRVividForeignHeader = 3,   ///< another T.35 country, provider or provider-oriented code
    QVHDRVividOtherStartCode = 4,  ///< a system_start_code other than 0x01
    QVHDRVividTruncated = 5        ///< the payload ends before its syntax does
};

// --- Values ---

/// Converts a PQ code to a fraction of the PQ range. PQ codes are the elements whose names end in _pq, and
/// TH_enable.
///
/// \param code  12 bits, 0 to 4095
/// \return code / 4095, 0 to 1
double qvHdrVividPq(uint32_t code);

/// Converts a fraction of the PQ range to luminance with the EOTF of SMPTE ST 2084.
///
/// \param pq  0 to 1; other values are clamped to this range
/// \return cd/m2, 0 to 10000
double qvPqToLuminance(double pq);

/// Returns the value of base_param_m_p.
///
/// \param mapping  the tone mapping
/// \return code / 16383, 0 to 1
double qvHdrVividM_p(const QVHDRVividToneMapping& mapping);

/// Returns the value of base_param_m_m.
///
/// \param mapping  the tone mapping
/// \return code / 10, 0 to 6.3
double qvHdrVividM_m(const QVHDRVividToneMapping& mapping);

/// Returns the value of base_param_m_a.
///
/// \param mapping  the tone mapping
/// \return code / 1023, 0 to 1
double qvHdrVividM_a(const QVHDRVividToneMapping& mapping);

/// Returns the value of base_param_m_b.
///
/// \param mapping  the tone mapping
/// \return code / 1023, 0 to 1
double qvHdrVividM_b(const QVHDRVividToneMapping& mapping);

/// Returns the value of base_param_m_n.
///
/// \param mapping  the tone mapping
/// \return code / 10, 0 to 6.3
double qvHdrVividM_n(const QVHDRVividToneMapping& mapping);

/// Returns the value of base_param_enable_Delta. base_param_Delta_enable_mode gives the sign: odd modes
/// subtract.
///
/// \param mapping  the tone mapping
/// \return code / 127 with its sign, -1 to 1
double qvHdrVividDelta(const QVHDRVividToneMapping& mapping);

/// Returns the value of TH_enable_MB.
///
/// \param spline  the spline
/// \return code / 255, 0 to 1
double qvHdrVividThMb(const QVHDRVividSpline& spline);

/// Returns the value of TH_enable.
///
/// \param spline  the spline
/// \return code / 4095, a fraction of the PQ range
double qvHdrVividTh(const QVHDRVividSpline& spline);

/// Returns the value of TH_enable_Delta1.
///
/// \param spline  the spline
/// \return code / 4092, 0 to 0.25
double qvHdrVividThDelta1(const QVHDRVividSpline& spline);

/// Returns the value of TH_enable_Delta2.
///
/// \param spline  the spline
/// \return code / 4092, 0 to 0.25
double qvHdrVividThDelta2(const QVHDRVividSpline& spline);

/// Returns the value of enable_Strength.
///
/// \param spline  the spline
/// \return code / 255, 0 to 1
double qvHdrVividStrength(const QVHDRVividSpline& spline);

/// Returns the value of a color_saturation_enable_gain code.
///
/// \param code  8 bits, 0 to 255
/// \return code / 128, 0 to 1.9921875
double qvHdrVividGain(uint32_t code);

#endif
