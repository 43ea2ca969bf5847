// The HEVC decoder configuration records as syntax functions.
#ifndef QV_BITSTREAM_UNITS_HEVCCONFIGURATIONRECORDSYNTAX_H
#define QV_BITSTREAM_UNITS_HEVCCONFIGURATIONRECORDSYNTAX_H

#include "bitstream/syntax/Reader.h"
#include "bitstream/units/HevcConfigurationRecord.h"
#include "bitstream/units/UnitListSyntax.h"

namespace qv::hevc {

inline constexpr Structure kConfigurationRecord = {"HEVCDecoderConfigurationRecord",
                                                   "ISO/IEC 14496-15 8.3.3.1.2"};
inline constexpr Structure kLayerConfigurationRecord = {"LHEVCDecoderConfigurationRecord",
                                                        "ISO/IEC 14496-15 clause 9"};

template <class Syntax>
void unit_array(Syntax& s, uint32_t j, UnitArray& array) {
    s.header(3);
    s.flag(at("array_completeness", j), array.array_completeness);
    s.flag(at("reserved", j), array.reserved);
    s.u(6, at("NAL_unit_type", j), array.NAL_unit_type);
    s.u(16, at("numNalus", j), array.units.count);
    unit_list(s, "nalUnitLength", "nalUnit", array.units, j);
}

template <class Syntax>
void unit_arrays(Syntax& s, UnitArrays& arrays) {
    s.header(1);
    s.u(8, "numOfArrays", arrays.numOfArrays);
    const uint32_t count = arrays.numOfArrays;
    s.keepBytes(arrays.coded, [count](auto& in) {
        for (uint32_t j = 0; j < count && !in.failed(); ++j) {
            UnitArray array = {};
            unit_array(in, j, array);
        }
    });
}

// HEVCDecoderConfigurationRecord, ISO/IEC 14496-15 8.3.3.1.2
template <class Syntax>
void configuration_record(Syntax& s, ConfigurationRecord& record) {
    const Within<Syntax> within(s, kConfigurationRecord);
    s.header(2);
    s.u(8, "configurationVersion", record.configurationVersion, 0, 1);
    s.u(2, "general_profile_space", record.general_profile_space);
    s.flag("general_tier_flag", record.general_tier_flag);
    s.u(5, "general_profile_idc", record.general_profile_idc);
    s.header(4);
    s.u(32, "general_profile_compatibility_flags", record.general_profile_compatibility_flags);
    s.header(4);
    s.header(2);
    s.u(48, "general_constraint_indicator_flags", record.general_constraint_indicator_flags);
    s.header(4);
    s.u(8, "general_level_idc", record.general_level_idc);
    s.u(4, "reserved", record.reserved_4bits);
    s.u(12, "min_spatial_segmentation_idc", record.min_spatial_segmentation_idc);
    s.u(6, "reserved", record.reserved_6bits_parallelismType);
    s.u(2, "parallelismType", record.parallelismType);
    s.header(3);
    s.u(6, "reserved", record.reserved_6bits_chromaFormat);
    s.u(2, "chromaFormat", record.chromaFormat);
    s.u(5, "reserved", record.reserved_5bits_bitDepthLuma);
    s.u(3, "bitDepthLumaMinus8", record.bitDepthLumaMinus8);
    s.u(5, "reserved", record.reserved_5bits_bitDepthChroma);
    s.u(3, "bitDepthChromaMinus8", record.bitDepthChromaMinus8);
    s.header(3);
    s.u(16, "avgFrameRate", record.avgFrameRate);
    s.u(2, "constantFrameRate", record.constantFrameRate);
    s.u(3, "numTemporalLayers", record.numTemporalLayers);
    s.flag("temporalIdNested", record.temporalIdNested);
    s.u(2, "lengthSizeMinusOne", record.lengthSizeMinusOne);
    unit_arrays(s, record.arrays);
    s.restOfBytes("rest", record.rest);
}

// LHEVCDecoderConfigurationRecord, ISO/IEC 14496-15 clause 9
template <class Syntax>
void layer_configuration_record(Syntax& s, LayerConfigurationRecord& record) {
    const Within<Syntax> within(s, kLayerConfigurationRecord);
    s.header(4);
    s.u(8, "configurationVersion", record.configurationVersion, 1, 1);
    s.u(4, "reserved", record.reserved_4bits);
    s.u(12, "min_spatial_segmentation_idc", record.min_spatial_segmentation_idc);
    s.u(6, "reserved", record.reserved_6bits_parallelismType);
    s.u(2, "parallelismType", record.parallelismType);
    s.header(1);
    s.u(2, "reserved", record.reserved_2bits);
    s.u(3, "numTemporalLayers", record.numTemporalLayers);
    s.flag("temporalIdNested", record.temporalIdNested);
    s.u(2, "lengthSizeMinusOne", record.lengthSizeMinusOne);
    unit_arrays(s, record.arrays);
    s.restOfBytes("rest", record.rest);
}

}  // namespace qv::hevc

#endif
