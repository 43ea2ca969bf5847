/// \file
/// The access unit delimiter of H.264.
#ifndef QV_BITSTREAM_AVC_ACCESSUNITDELIMITER_H
#define QV_BITSTREAM_AVC_ACCESSUNITDELIMITER_H

#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/avc/NalUnitHeader.h"
#include "bitstream/syntax/Trace.h"

namespace qv::avc {

/// A NAL unit of type 9: its header and access_unit_delimiter_rbsp(), H.264 7.3.2.4 and 7.4.2.4.
struct AccessUnitDelimiter {
    NalUnitHeader header;       ///< the NAL unit header
    uint32_t primary_pic_type;  ///< u(3), Table 7-5: the slice types of the primary coded picture
};

/// Reads an access unit delimiter.
///
/// \param unit  one NAL unit from its header on, without start code or length
/// \return the record; a unit of another type and data that ends early are faults
Read<AccessUnitDelimiter> readAccessUnitDelimiter(Bytes unit) noexcept;

/// As readAccessUnitDelimiter(), and hands each element to \p visitor.
Read<AccessUnitDelimiter> traceAccessUnitDelimiter(Bytes unit, TraceVisitor& visitor);

/// Writes an access unit delimiter as a NAL unit to the end of \p out.
///
/// \return the number of bytes, or the first element that does not fit its descriptor or its range
Written writeAccessUnitDelimiter(const AccessUnitDelimiter& delimiter, std::vector<uint8_t>& out);

/// The bits that writeAccessUnitDelimiter() would write, emulation prevention bytes left out.
Sized sizeOf(const AccessUnitDelimiter& delimiter) noexcept;

}  // namespace qv::avc

#endif
