/// \file
/// The prefix NAL unit of H.264.
#ifndef QV_BITSTREAM_AVC_PREFIXNALUNIT_H
#define QV_BITSTREAM_AVC_PREFIXNALUNIT_H

#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/avc/NalUnitHeader.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Trace.h"

namespace qv::avc {

/// dec_ref_base_pic_marking(), H.264 G.7.3.3.5 and G.7.4.3.5.
struct DecRefBasePicMarking {
    /// More operations than this are a fault. A marking process of 32 fields needs no more.
    static constexpr uint32_t kMostOperations = 64;

    /// One operation of the list.
    struct Operation {
        uint32_t memory_management_base_control_operation;  ///< ue(v), 0..2; 0 ends the list
        uint32_t difference_of_base_pic_nums_minus1;        ///< ue(v), with operation 1
        uint32_t long_term_base_pic_num;                    ///< ue(v), with operation 2
    };

    bool adaptive_ref_base_pic_marking_mode_flag;  ///< u(1)

    /// With adaptive_ref_base_pic_marking_mode_flag 1: set up to the operation 0, not beyond.
    Operation operations[kMostOperations];
};

/// A NAL unit of type 14: its header and prefix_nal_unit_rbsp(), H.264 7.3.2.12, which is empty after an MVC
/// header and prefix_nal_unit_svc(), G.7.3.2.12.1, after an SVC header.
struct PrefixNalUnit {
    NalUnitHeader header;  ///< the NAL unit header

    bool store_ref_base_pic_flag;  ///< with an SVC header and nal_ref_idc other than 0

    bool additional_prefix_nal_unit_extension_flag;  ///< 1 is reserved

    /// True when a unit with an SVC header and nal_ref_idc 0 ends after its header.
    bool hasNoRbsp;

    /// With additional_prefix_nal_unit_extension_flag 1, or with nal_ref_idc 0: the flags
    /// additional_prefix_nal_unit_extension_data_flag, borrowed from the unit.
    CodedBits additional_prefix_nal_unit_extension_data;

    /// With store_ref_base_pic_flag or use_ref_base_pic_flag 1 and idr_flag 0.
    DecRefBasePicMarking dec_ref_base_pic_marking;
};

/// Reads a prefix NAL unit.
///
/// \param unit  one NAL unit from its header on, without start code or length
/// \return the record. A unit of another type, data that ends early and a value out of its range are faults;
///         after one the record holds what was read before it. Bits after an MVC header are reported as
///         trailing.
Read<PrefixNalUnit> readPrefixNalUnit(Bytes unit) noexcept;

/// As readPrefixNalUnit(), and hands each element to \p visitor.
Read<PrefixNalUnit> tracePrefixNalUnit(Bytes unit, TraceVisitor& visitor);

/// Writes a prefix NAL unit, emulation prevention bytes included, to the end of \p out.
///
/// \return the number of bytes, or the first element that does not fit its descriptor or its range
Written writePrefixNalUnit(const PrefixNalUnit& prefix, std::vector<uint8_t>& out);

/// The bits that writePrefixNalUnit() would write, emulation prevention bytes left out.
Sized sizeOf(const PrefixNalUnit& prefix) noexcept;

}  // namespace qv::avc

#endif
