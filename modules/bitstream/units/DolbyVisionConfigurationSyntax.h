// The Dolby Vision decoder configuration record as a syntax function.
#ifndef QV_BITSTREAM_UNITS_DOLBYVISIONCONFIGURATIONSYNTAX_H
#define QV_BITSTREAM_UNITS_DOLBYVISIONCONFIGURATIONSYNTAX_H

#include "bitstream/syntax/Reader.h"
#include "bitstream/units/DolbyVisionConfiguration.h"

namespace qv {

// DOVIDecoderConfigurationRecord
template <class Syntax>
void dolby_vision_configuration(Syntax& s, DolbyVisionConfiguration& record) {
    static constexpr Structure kStructure = {"DOVIDecoderConfigurationRecord",
                                             "Dolby Vision Streams Within the ISO Base Media File Format"};
    const Within<Syntax> within(s, kStructure);
    s.header(4);
    s.u(8, "dv_version_major", record.dv_version_major);
    s.u(8, "dv_version_minor", record.dv_version_minor);
    s.u(7, "dv_profile", record.dv_profile);
    s.u(6, "dv_level", record.dv_level);
    s.flag("rpu_present_flag", record.rpu_present_flag);
    s.flag("el_present_flag", record.el_present_flag);
    s.flag("bl_present_flag", record.bl_present_flag);
    s.header(1);
    s.u(4, "dv_bl_signal_compatibility_id", record.dv_bl_signal_compatibility_id);
    s.u(2, "dv_md_compression", record.dv_md_compression);
    s.u(2, "reserved", record.reserved_2bits);
    for (uint32_t i = 0; i < DolbyVisionConfiguration::kReservedBytes; ++i) {
        s.header(1);
        s.u(8, at("reserved", i), record.reserved[i]);
    }
    s.restOfBytes("rest", record.rest);
}

}  // namespace qv

#endif
