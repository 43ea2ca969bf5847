/// \file
/// The Dolby Vision decoder configuration record of the boxes dvcC, dvvC and dvwC.
#ifndef QV_BITSTREAM_UNITS_DOLBYVISIONCONFIGURATION_H
#define QV_BITSTREAM_UNITS_DOLBYVISIONCONFIGURATION_H

#include <cstdint>
#include <string>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/syntax/Trace.h"

namespace qv {

/// DOVIDecoderConfigurationRecord. It has 24 bytes.
struct DolbyVisionConfiguration {
    static constexpr uint32_t kReservedBytes = 19;  ///< zero bytes at the end

    uint32_t dv_version_major;               ///< u(8)
    uint32_t dv_version_minor;               ///< u(8)
    uint32_t dv_profile;                     ///< u(7)
    uint32_t dv_level;                       ///< u(6), 1 to 13
    bool rpu_present_flag;                   ///< u(1)
    bool el_present_flag;                    ///< u(1): an enhancement layer
    bool bl_present_flag;                    ///< u(1): a base layer
    uint32_t dv_bl_signal_compatibility_id;  ///< u(4): 0 none, 1 HDR10, 2 SDR, 4 HLG, 6 HDR10 of UHD discs
    uint32_t dv_md_compression;              ///< u(2), 0 in older records
    uint32_t reserved_2bits;                 ///< u(2), 0
    uint8_t reserved[kReservedBytes];        ///< u(8), 0 each
    Bytes rest;                              ///< bytes after the record, borrowed
};

/// Reads the payload of a box. One that ends early has a fault. Reserved bits and values are kept.
Read<DolbyVisionConfiguration> readDolbyVisionConfiguration(Bytes bytes) noexcept;

/// As readDolbyVisionConfiguration(), and hands each element to \p visitor.
Read<DolbyVisionConfiguration> traceDolbyVisionConfiguration(Bytes bytes, TraceVisitor& visitor);

/// Writes a record to the end of \p out, without emulation prevention bytes.
Written writeDolbyVisionConfiguration(const DolbyVisionConfiguration& record, std::vector<uint8_t>& out);

/// The bits that writeDolbyVisionConfiguration() would write.
Sized sizeOf(const DolbyVisionConfiguration& record) noexcept;

/// The profile as it is named: `5`, `7`, or with the compatibility of its base layer `8.4`.
std::string profileNameOf(const DolbyVisionConfiguration& record);

}  // namespace qv

#endif
