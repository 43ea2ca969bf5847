/// \file
/// The AVC decoder configuration record, `avcC`.
#ifndef QV_BITSTREAM_UNITS_AVCCONFIGURATIONRECORD_H
#define QV_BITSTREAM_UNITS_AVCCONFIGURATIONRECORD_H

#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/syntax/Trace.h"
#include "bitstream/units/Framing.h"
#include "bitstream/units/UnitList.h"

namespace qv::avc {

/// AVCDecoderConfigurationRecord, ISO/IEC 14496-15 5.3.3.1. The records of `svcC` and `mvcC` have the same
/// layout. Units and bytes are borrowed from the record as coded. A record that was not read has the version
/// and the reserved bits of the standard, and lengths of four bytes.
struct ConfigurationRecord {
    uint32_t configurationVersion = 1;   ///< u(8), 1
    uint32_t AVCProfileIndication = 0;   ///< u(8), profile_idc
    uint32_t profile_compatibility = 0;  ///< u(8), constraint_set0_flag in the most significant bit
    uint32_t AVCLevelIndication = 0;     ///< u(8), level_idc
    uint32_t reserved_6bits = 63;        ///< u(6), 63 by the standard
    uint32_t lengthSizeMinusOne = 3;     ///< u(2); 2 is not allowed by the standard, and no fault here
    uint32_t reserved_3bits = 7;         ///< u(3), 7 by the standard

    UnitList sequenceParameterSets;  ///< 0..31 units
    UnitList pictureParameterSets;   ///< 0..255 units

    /// Whether the fields from here to the sequence parameter set extensions are there. Only profiles other
    /// than 66, 77 and 88 have them, and older records of those lack them as well: they are read when four
    /// bytes or more are left.
    bool hasExtension = false;
    uint32_t reserved_6bits_chroma_format = 63;     ///< u(6), 63 by the standard
    uint32_t chroma_format = 0;                     ///< u(2), chroma_format_idc
    uint32_t reserved_5bits_bit_depth_luma = 31;    ///< u(5), 31 by the standard
    uint32_t bit_depth_luma_minus8 = 0;             ///< u(3)
    uint32_t reserved_5bits_bit_depth_chroma = 31;  ///< u(5), 31 by the standard
    uint32_t bit_depth_chroma_minus8 = 0;           ///< u(3)
    UnitList sequenceParameterSetExtensions;        ///< 0..255 units of type 13

    /// Bytes after the fields above.
    Bytes rest;
};

/// The framing of the samples that the record is for.
constexpr Framing framingOf(const ConfigurationRecord& record) {
    return framingOfLengthSizeMinusOne(record.lengthSizeMinusOne);
}

/// Calls visit(const NalUnit&) with each whole unit of a record: SPS, PPS, SPS extensions.
template <class Visit>
void forEachUnit(const ConfigurationRecord& record, Visit visit) {
    for (const UnitList* list : {&record.sequenceParameterSets, &record.pictureParameterSets,
                                 &record.sequenceParameterSetExtensions}) {
        for (const NalUnit& unit : list->units(Codec::Avc)) {
            if (!isCut(unit)) {
                visit(unit);
            }
        }
    }
}

/// Reads a record.
///
/// \param bytes  the content of the `avcC` box, which the record goes on to borrow
/// \return the record. A configurationVersion other than 1 and data that ends early are faults; their bits
/// are
///         counted from the start of the record. Nothing is allocated. Units are not looked into.
Read<ConfigurationRecord> readConfigurationRecord(Bytes bytes) noexcept;

/// As readConfigurationRecord(), and hands each element to \p visitor.
Read<ConfigurationRecord> traceConfigurationRecord(Bytes bytes, TraceVisitor& visitor);

/// Appends a record as coded. One that was read and not changed gives the bytes that were read.
///
/// \return the bytes appended. A field that does not fit, and a count that is not that of the units of its
///         list, are faults, with which \p out stays as it was.
Written writeConfigurationRecord(const ConfigurationRecord& record, std::vector<uint8_t>& out);

/// The size of a record as coded.
Sized sizeOf(const ConfigurationRecord& record) noexcept;

/// Appends the record of a stream, made from its parameter sets.
///
/// profile_compatibility has the flags that all sequence parameter sets have, AVCLevelIndication is their
/// highest level, AVCProfileIndication the profile that all of them conform to by profile_idc or by a
/// constraint_set flag. Profiles other than 66, 77 and 88 get the fields of the extension.
///
/// \param units    sequence parameter sets, picture parameter sets and sequence parameter set extensions (7,
/// 8,
///                 13) in any order; each kind keeps its order
/// \param framing  of the samples: Lengths1, Lengths2 or Lengths4
/// \return the bytes appended. Faults, with which \p out stays as it was: no or more than 31 sequence
///         parameter sets, more than 255 units of another kind, a unit of more than 65535 bytes or of another
///         type, a sequence parameter set that cannot be read up to its bit depths, sequence parameter sets
///         without a common profile, chroma format or bit depth, and another framing.
Written makeConfigurationRecord(const std::vector<Bytes>& units, Framing framing, std::vector<uint8_t>& out);

}  // namespace qv::avc

#endif
