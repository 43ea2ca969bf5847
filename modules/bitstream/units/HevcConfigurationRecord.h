/// \file
/// The HEVC decoder configuration records, `hvcC` and `lhvC`.
#ifndef QV_BITSTREAM_UNITS_HEVCCONFIGURATIONRECORD_H
#define QV_BITSTREAM_UNITS_HEVCCONFIGURATIONRECORD_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/syntax/Trace.h"
#include "bitstream/units/Framing.h"
#include "bitstream/units/ItemIterator.h"
#include "bitstream/units/UnitList.h"

namespace qv::hevc {

/// The units of one type in a record.
struct UnitArray {
    bool array_completeness = false;  ///< all units of the type are here, none is in the stream
    bool reserved = false;            ///< 0 by the standard
    uint32_t NAL_unit_type = 0;       ///< u(6): VPS, SPS, PPS, SEI (32, 33, 34, 39, 40), or any other
    UnitList units;                   ///< 0..65535 units
};

/// The arrays of a record, borrowed:
///
///     for (const UnitArray& array : record.arrays) { ... }
struct UnitArrays {
    class Iterator;

    /// How many there are.
    uint32_t numOfArrays = 0;

    /// Their bytes. Where the record ends within an array, it is the last one, with the units that are there.
    Bytes coded;

    /// The first array.
    Iterator begin() const noexcept;

    /// The end: after the last array.
    static EndOfItems end() noexcept { return {}; }
};

/// An iterator over the arrays of a record.
class UnitArrays::Iterator : public ItemIterator<UnitArrays::Iterator, UnitArray> {
public:
    using ItemIterator::operator++;

    /// Goes on to the next array. Not allowed at the end.
    Iterator& operator++() noexcept {
        read();
        return *this;
    }

private:
    friend struct UnitArrays;
    Iterator(uint32_t numOfArrays, Bytes coded) noexcept : left_(numOfArrays), rest_(coded) { read(); }
    void read() noexcept;

    uint32_t left_;
    Bytes rest_;
};

/// HEVCDecoderConfigurationRecord, ISO/IEC 14496-15 8.3.3.1. Units and bytes are borrowed from the record as
/// coded. A record that was not read has the version and the reserved bits of the standard, and lengths of
/// four bytes.
struct ConfigurationRecord {
    uint32_t configurationVersion = 1;                 ///< u(8), 1; 0 in records of early writers
    uint32_t general_profile_space = 0;                ///< u(2)
    bool general_tier_flag = false;                    ///< u(1): 0 Main tier, 1 High tier
    uint32_t general_profile_idc = 0;                  ///< u(5)
    uint32_t general_profile_compatibility_flags = 0;  ///< u(32), flag 0 in the most significant bit
    uint64_t general_constraint_indicator_flags = 0;   ///< u(48), general_progressive_source_flag first
    uint32_t general_level_idc = 0;                    ///< u(8)
    uint32_t reserved_4bits = 15;                      ///< u(4), 15 by the standard
    uint32_t min_spatial_segmentation_idc = 0;         ///< u(12), 0 when unknown
    uint32_t reserved_6bits_parallelismType = 63;      ///< u(6), 63 by the standard
    uint32_t parallelismType = 0;               ///< u(2): 0 mixed or unknown, 1 slices, 2 tiles, 3 wavefronts
    uint32_t reserved_6bits_chromaFormat = 63;  ///< u(6), 63 by the standard
    uint32_t chromaFormat = 0;                  ///< u(2), chroma_format_idc
    uint32_t reserved_5bits_bitDepthLuma = 31;  ///< u(5), 31 by the standard
    uint32_t bitDepthLumaMinus8 = 0;            ///< u(3)
    uint32_t reserved_5bits_bitDepthChroma = 31;  ///< u(5), 31 by the standard
    uint32_t bitDepthChromaMinus8 = 0;            ///< u(3)
    uint32_t avgFrameRate = 0;                    ///< u(16), frames in 256 seconds; 0 when unspecified
    uint32_t constantFrameRate = 0;               ///< u(2): 0 unknown, 1 constant, 2 in each temporal layer
    uint32_t numTemporalLayers = 0;               ///< u(3), 0 when unknown
    bool temporalIdNested = false;                ///< u(1)
    uint32_t lengthSizeMinusOne = 3;  ///< u(2); 2 is not allowed by the standard, and no fault here
    UnitArrays arrays;                ///< the units by type

    /// Bytes after the fields above.
    Bytes rest;
};

/// LHEVCDecoderConfigurationRecord, ISO/IEC 14496-15 clause 9: parameter sets of the layers above the base.
struct LayerConfigurationRecord {
    uint32_t configurationVersion = 1;             ///< u(8), 1
    uint32_t reserved_4bits = 15;                  ///< u(4), 15 by the standard
    uint32_t min_spatial_segmentation_idc = 0;     ///< u(12)
    uint32_t reserved_6bits_parallelismType = 63;  ///< u(6), 63 by the standard
    uint32_t parallelismType = 0;                  ///< u(2)
    uint32_t reserved_2bits = 3;                   ///< u(2), 3 by the standard
    uint32_t numTemporalLayers = 0;                ///< u(3)
    bool temporalIdNested = false;                 ///< u(1)
    uint32_t lengthSizeMinusOne = 3;               ///< u(2), that of the `hvcC` beside it
    UnitArrays arrays;                             ///< the units by type

    /// Bytes after the fields above.
    Bytes rest;
};

/// The framing of the samples that a record is for.
constexpr Framing framingOf(const ConfigurationRecord& record) {
    return framingOfLengthSizeMinusOne(record.lengthSizeMinusOne);
}

/// The framing of the samples that an `lhvC` record is for.
constexpr Framing framingOf(const LayerConfigurationRecord& record) {
    return framingOfLengthSizeMinusOne(record.lengthSizeMinusOne);
}

/// Calls visit(const NalUnit&) with each whole unit of either record, array by array.
template <class Record, class Visit>
void forEachUnit(const Record& record, Visit visit) {
    for (const UnitArray& array : record.arrays) {
        for (const NalUnit& unit : array.units.units(Codec::Hevc)) {
            if (!isCut(unit)) {
                visit(unit);
            }
        }
    }
}

/// Reads an `hvcC` record.
///
/// \param bytes  the content of the box, which the record goes on to borrow
/// \return the record. A configurationVersion above 1 and data that ends early are faults; their bits are
///         counted from the start of the record. Nothing is allocated. Units are not looked into.
Read<ConfigurationRecord> readConfigurationRecord(Bytes bytes) noexcept;

/// Reads an `lhvC` record, as above. A configurationVersion other than 1 is a fault.
Read<LayerConfigurationRecord> readLayerConfigurationRecord(Bytes bytes) noexcept;

/// As readConfigurationRecord(), and hands each element to \p visitor.
Read<ConfigurationRecord> traceConfigurationRecord(Bytes bytes, TraceVisitor& visitor);

/// As readLayerConfigurationRecord(), and hands each element to \p visitor.
Read<LayerConfigurationRecord> traceLayerConfigurationRecord(Bytes bytes, TraceVisitor& visitor);

/// Appends a record as coded. One that was read and not changed gives the bytes that were read.
///
/// \return the bytes appended. A field that does not fit, and a count that is not that of the arrays or of
/// the
///         units of an array, are faults, with which \p out stays as it was.
Written writeConfigurationRecord(const ConfigurationRecord& record, std::vector<uint8_t>& out);

/// Appends an `lhvC` record, as above.
Written writeConfigurationRecord(const LayerConfigurationRecord& record, std::vector<uint8_t>& out);

/// The size of a record as coded.
Sized sizeOf(const ConfigurationRecord& record) noexcept;

/// The size of an `lhvC` record as coded.
Sized sizeOf(const LayerConfigurationRecord& record) noexcept;

/// What a record says of a stream beside its profile, tier, level and temporal sub-layers.
struct StreamFacts {
    uint32_t chroma_format_idc = 1;             ///< of the active SPS
    uint32_t bit_depth_luma_minus8 = 0;         ///< of the active SPS
    uint32_t bit_depth_chroma_minus8 = 0;       ///< of the active SPS
    uint32_t min_spatial_segmentation_idc = 0;  ///< the least of the VUIs; 0 when a SPS does not have it
    uint32_t parallelismType = 0;               ///< see parallelismTypeOf()
    uint32_t avgFrameRate = 0;                  ///< frames in 256 seconds; 0 when unspecified
    uint32_t constantFrameRate = 0;             ///< 0 unknown, 1 constant, 2 in each temporal layer

    /// All parameter sets are in the record, none is in the stream: sample entry `hvc1`. Sets
    /// array_completeness of VPS, SPS and PPS.
    bool isComplete = true;
};

/// What a picture parameter set says of decoding in parallel.
struct PpsParallelism {
    bool tiles_enabled_flag;                ///< of the PPS
    bool entropy_coding_sync_enabled_flag;  ///< of the PPS
};

/// parallelismType for a stream with these picture parameter sets: 0 without min_spatial_segmentation_idc,
/// and where sets differ or one has tiles and wavefronts; else 1 slices, 2 tiles or 3 wavefronts.
uint32_t parallelismTypeOf(uint32_t min_spatial_segmentation_idc, const std::vector<PpsParallelism>& sets);

/// Appends the `hvcC` record of a stream, made from its parameter sets.
///
/// From the VPSs and the SPSs of the base layer the record gets the highest tier, the highest level of that
/// tier, the greatest general_profile_idc, the compatibility and constraint flags that all of them have, the
/// most temporal sub-layers, and temporalIdNested when all of them have it. Arrays come in the order VPS,
/// SPS, PPS, prefix SEI, suffix SEI, then other types by number.
///
/// \param units    VPS, SPS and PPS in any order, and units of other types to be kept with them, such as SEI;
///                 each type keeps its order
/// \param framing  of the samples: Lengths1, Lengths2 or Lengths4
/// \param facts    what the function does not read from the units
/// \return the bytes appended. Faults, with which \p out stays as it was: no SPS of the base layer, more than
///         65535 units of a type, a unit of more than 65535 bytes, a VPS or SPS that is cut before its level
///         or has another general_profile_space than the first, a fact that does not fit, and another
///         framing.
Written makeConfigurationRecord(const std::vector<Bytes>& units, Framing framing, const StreamFacts& facts,
                                std::vector<uint8_t>& out);

}  // namespace qv::hevc

#endif
