/// \file
/// The sequence parameter set extension of H.264.
#ifndef QV_BITSTREAM_AVC_SPSEXTENSION_H
#define QV_BITSTREAM_AVC_SPSEXTENSION_H

#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/avc/NalUnitHeader.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Trace.h"

namespace qv::avc {

/// A NAL unit of type 13: its header and seq_parameter_set_extension_rbsp(), H.264 7.3.2.1.2 and 7.4.2.1.2.
/// It describes the auxiliary coded pictures that go with a sequence parameter set, such as alpha planes.
struct SpsExtension {
    NalUnitHeader header;           ///< the NAL unit header
    uint32_t seq_parameter_set_id;  ///< ue(v), 0..31
    uint32_t aux_format_idc;        ///< ue(v), 0..3; 0 when there are no auxiliary coded pictures

    // With aux_format_idc other than 0.

    uint32_t bit_depth_aux_minus8;     ///< ue(v), 0..4
    bool alpha_incr_flag;              ///< 1: decoded samples are those of the alpha plane plus 1
    uint32_t alpha_opaque_value;       ///< u(v), bit_depth_aux_minus8 + 9 bits
    uint32_t alpha_transparent_value;  ///< u(v), bit_depth_aux_minus8 + 9 bits

    bool additional_extension_flag;  ///< 1 is reserved

    /// With additional_extension_flag 1: the data up to rbsp_trailing_bits(), borrowed from the unit.
    CodedBits additional_extension_data;
};

/// Reads a sequence parameter set extension.
///
/// \param unit  one NAL unit from its header on, without start code or length
/// \return the record. A unit of another type, data that ends early and a value out of its range are faults;
///         after one the record holds what was read before it.
Read<SpsExtension> readSpsExtension(Bytes unit) noexcept;

/// As readSpsExtension(), and hands each element to \p visitor.
Read<SpsExtension> traceSpsExtension(Bytes unit, TraceVisitor& visitor);

/// Writes a sequence parameter set extension as a NAL unit, emulation prevention bytes included, to the end
/// of \p out.
///
/// \return the number of bytes, or the first element that does not fit its descriptor or its range
Written writeSpsExtension(const SpsExtension& extension, std::vector<uint8_t>& out);

/// The bits that writeSpsExtension() would write, emulation prevention bytes left out.
Sized sizeOf(const SpsExtension& extension) noexcept;

}  // namespace qv::avc

#endif
