/// \file
/// The filler data of H.264.
#ifndef QV_BITSTREAM_AVC_FILLERDATA_H
#define QV_BITSTREAM_AVC_FILLERDATA_H

#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/avc/NalUnitHeader.h"
#include "bitstream/syntax/Trace.h"

namespace qv::avc {

/// A NAL unit of type 12: its header and filler_data_rbsp(), H.264 7.3.2.7 and 7.4.2.7.
struct FillerData {
    NalUnitHeader header;    ///< the NAL unit header
    uint64_t ff_byte_count;  ///< how many ff_byte, each 0xFF, the unit has
};

/// Reads filler data.
///
/// \param unit  one NAL unit from its header on, without start code or length
/// \return the record; a unit of another type, a byte other than 0xFF and data that ends within a byte are
///         faults
Read<FillerData> readFillerData(Bytes unit) noexcept;

/// As readFillerData(), and hands each element to \p visitor.
Read<FillerData> traceFillerData(Bytes unit, TraceVisitor& visitor);

/// Writes filler data as a NAL unit to the end of \p out.
///
/// \return the number of bytes, or the first element that does not fit its descriptor or its range
Written writeFillerData(const FillerData& filler, std::vector<uint8_t>& out);

/// The bits that writeFillerData() would write.
Sized sizeOf(const FillerData& filler) noexcept;

}  // namespace qv::avc

#endif
