/// \file
/// The subset sequence parameter set of H.264.
#ifndef QV_BITSTREAM_AVC_SUBSETSPS_H
#define QV_BITSTREAM_AVC_SUBSETSPS_H

#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/avc/NalUnitHeader.h"
#include "bitstream/avc/Sps.h"
#include "bitstream/avc/SpsMvcExtension.h"
#include "bitstream/avc/SpsSvcExtension.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Trace.h"

namespace qv::avc {

/// A NAL unit of type 15: its header and subset_seq_parameter_set_rbsp(), H.264 7.3.2.1.3. It describes the
/// layers above the base layer of a scalable stream, or the views other than the base view of a multiview
/// stream. Its seq_parameter_set_id has a space of values apart from that of Sps.
struct SubsetSps {
    NalUnitHeader header;  ///< the NAL unit header

    // Profiles 83 and 86.

    SpsSvcExtension svc;                   ///< seq_parameter_set_svc_extension()
    bool svc_vui_parameters_present_flag;  ///< u(1)
    SvcVuiExtension svc_vui;               ///< with svc_vui_parameters_present_flag

    // Profiles 118, 128 and 134.

    SpsMvcExtension mvc;                   ///< seq_parameter_set_mvc_extension()
    bool mvc_vui_parameters_present_flag;  ///< u(1)
    MvcVuiExtension mvc_vui;               ///< with mvc_vui_parameters_present_flag

    // Profiles 135, 138 and 139.

    SpsMvcdExtension mvcd;  ///< seq_parameter_set_mvcd_extension()

    /// Profile 139: seq_parameter_set_3davc_extension() (J.7.3.2.1.5) and everything after it up to
    /// rbsp_trailing_bits(), borrowed from the unit. This library does not read it.
    CodedBits avc_3d_extension;

    bool additional_extension2_flag;  ///< 1 is reserved

    /// With additional_extension2_flag 1: the flags additional_extension2_data_flag, borrowed from the unit.
    CodedBits additional_extension2_data;

    // Last, because of the arrays at its end: a read sets them as far as their counts go, not beyond.

    SpsData data;  ///< seq_parameter_set_data()
};

/// Reads a subset sequence parameter set.
///
/// \param unit  one NAL unit from its header on, without start code or length
/// \return the record. A unit of another type, data that ends early and a value out of its range are faults;
///         after one the record holds what was read before it.
Read<SubsetSps> readSubsetSps(Bytes unit) noexcept;

/// As readSubsetSps(), and hands each element to \p visitor.
Read<SubsetSps> traceSubsetSps(Bytes unit, TraceVisitor& visitor);

/// Writes a subset sequence parameter set as a NAL unit, emulation prevention bytes included, to the end of
/// \p out.
///
/// \return the number of bytes, or the first element that does not fit its descriptor or its range
Written writeSubsetSps(const SubsetSps& sps, std::vector<uint8_t>& out);

/// The bits that writeSubsetSps() would write, emulation prevention bytes left out.
Sized sizeOf(const SubsetSps& sps) noexcept;

}  // namespace qv::avc

#endif
