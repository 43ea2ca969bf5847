// The AVC decoder configuration record as a syntax function.
#ifndef QV_BITSTREAM_UNITS_AVCCONFIGURATIONRECORDSYNTAX_H
#define QV_BITSTREAM_UNITS_AVCCONFIGURATIONRECORDSYNTAX_H

#include "bitstream/syntax/Reader.h"
#include "bitstream/units/AvcConfigurationRecord.h"
#include "bitstream/units/UnitListSyntax.h"

namespace qv::avc {

inline constexpr Structure kConfigurationRecord = {"AVCDecoderConfigurationRecord",
                                                   "ISO/IEC 14496-15 5.3.3.1.2"};

// The fewest bytes of the fields that profiles other than 66, 77 and 88 have.
constexpr uint64_t kExtensionBytes = 4;

constexpr bool mayHaveExtension(uint32_t profile_idc) {
    return profile_idc != 66 && profile_idc != 77 && profile_idc != 88;
}

template <class Syntax>
void configuration_record_extension(Syntax& s, ConfigurationRecord& record) {
    s.header(4);
    s.u(6, "reserved", record.reserved_6bits_chroma_format);
    s.u(2, "chroma_format", record.chroma_format);
    s.u(5, "reserved", record.reserved_5bits_bit_depth_luma);
    s.u(3, "bit_depth_luma_minus8", record.bit_depth_luma_minus8);
    s.u(5, "reserved", record.reserved_5bits_bit_depth_chroma);
    s.u(3, "bit_depth_chroma_minus8", record.bit_depth_chroma_minus8);
    s.u(8, "numOfSequenceParameterSetExt", record.sequenceParameterSetExtensions.count);
    unit_list(s, "sequenceParameterSetExtLength", "sequenceParameterSetExtNALUnit",
              record.sequenceParameterSetExtensions);
}

// AVCDecoderConfigurationRecord, ISO/IEC 14496-15 5.3.3.1.2
template <class Syntax>
void configuration_record(Syntax& s, ConfigurationRecord& record) {
    const Within<Syntax> within(s, kConfigurationRecord);
    s.header(4);
    s.u(8, "configurationVersion", record.configurationVersion, 1, 1);
    s.u(8, "AVCProfileIndication", record.AVCProfileIndication);
    s.u(8, "profile_compatibility", record.profile_compatibility);
    s.u(8, "AVCLevelIndication", record.AVCLevelIndication);
    s.header(2);
    s.u(6, "reserved", record.reserved_6bits);
    s.u(2, "lengthSizeMinusOne", record.lengthSizeMinusOne);
    s.u(3, "reserved", record.reserved_3bits);
    s.u(5, "numOfSequenceParameterSets", record.sequenceParameterSets.count);
    unit_list(s, "sequenceParameterSetLength", "sequenceParameterSetNALUnit", record.sequenceParameterSets);
    s.header(1);
    s.u(8, "numOfPictureParameterSets", record.pictureParameterSets.count);
    unit_list(s, "pictureParameterSetLength", "pictureParameterSetNALUnit", record.pictureParameterSets);
    if (mayHaveExtension(record.AVCProfileIndication) && s.hasBytes(kExtensionBytes, record.hasExtension)) {
        configuration_record_extension(s, record);
    }
    s.restOfBytes("rest", record.rest);
}

}  // namespace qv::avc

#endif
