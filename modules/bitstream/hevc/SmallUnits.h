/// \file
/// The small NAL units of H.265: access unit delimiter, end of sequence, end of bitstream and filler data.
#ifndef QV_BITSTREAM_HEVC_SMALLUNITS_H
#define QV_BITSTREAM_HEVC_SMALLUNITS_H

#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/hevc/NalUnitHeader.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Trace.h"

namespace qv::hevc {

/// A NAL unit of type 35: access_unit_delimiter_rbsp(), H.265 7.3.2.5 and 7.4.3.5.
struct AccessUnitDelimiter {
    NalUnitHeader header;  ///< the NAL unit header
    uint32_t pic_type;     ///< u(3), Table 7-2: 0 I slices, 1 P and I, 2 B, P and I; others are reserved
};

/// A NAL unit of type 36: end_of_seq_rbsp(), H.265 7.3.2.6, which is empty.
struct EndOfSequence {
    NalUnitHeader header;  ///< the NAL unit header
};

/// A NAL unit of type 37: end_of_bitstream_rbsp(), H.265 7.3.2.7, which is empty.
struct EndOfBitstream {
    NalUnitHeader header;  ///< the NAL unit header
};

/// A NAL unit of type 38: filler_data_rbsp(), H.265 7.3.2.8.
struct FillerData {
    NalUnitHeader header;  ///< the NAL unit header
    CodedBits ff_byte;     ///< f(8), 0xFF each
};

/// Reads one NAL unit, from its header on, without start code or length.
///
/// \return the record. A unit of another type, data that ends early and a value out of its range are faults;
///         after one the record holds what was read before it. Bits in a unit that should be empty are
///         reported as what is left over.
Read<AccessUnitDelimiter> readAccessUnitDelimiter(Bytes unit) noexcept;

/// Reads an end of sequence unit; see readAccessUnitDelimiter().
Read<EndOfSequence> readEndOfSequence(Bytes unit) noexcept;

/// Reads an end of bitstream unit; see readAccessUnitDelimiter().
Read<EndOfBitstream> readEndOfBitstream(Bytes unit) noexcept;

/// Reads a filler data unit; see readAccessUnitDelimiter().
Read<FillerData> readFillerData(Bytes unit) noexcept;

/// As the functions that read, and hand each element to \p visitor.
Read<AccessUnitDelimiter> traceAccessUnitDelimiter(Bytes unit, TraceVisitor& visitor);

/// Traces an end of sequence unit; see traceAccessUnitDelimiter().
Read<EndOfSequence> traceEndOfSequence(Bytes unit, TraceVisitor& visitor);

/// Traces an end of bitstream unit; see traceAccessUnitDelimiter().
Read<EndOfBitstream> traceEndOfBitstream(Bytes unit, TraceVisitor& visitor);

/// Traces a filler data unit; see traceAccessUnitDelimiter().
Read<FillerData> traceFillerData(Bytes unit, TraceVisitor& visitor);

/// Writes a NAL unit, emulation prevention bytes included, to the end of \p out.
///
/// \return the number of bytes, or the first element that does not fit its descriptor or its range
Written writeAccessUnitDelimiter(const AccessUnitDelimiter& delimiter, std::vector<uint8_t>& out);

/// Writes an end of sequence unit; see writeAccessUnitDelimiter().
Written writeEndOfSequence(const EndOfSequence& end, std::vector<uint8_t>& out);

/// Writes an end of bitstream unit; see writeAccessUnitDelimiter().
Written writeEndOfBitstream(const EndOfBitstream& end, std::vector<uint8_t>& out);

/// Writes a filler data unit; see writeAccessUnitDelimiter().
Written writeFillerData(const FillerData& filler, std::vector<uint8_t>& out);

/// The bits that the functions that write would write, emulation prevention bytes left out.
Sized sizeOf(const AccessUnitDelimiter& delimiter) noexcept;

/// The bits that writeEndOfSequence() would write.
Sized sizeOf(const EndOfSequence& end) noexcept;

/// The bits that writeEndOfBitstream() would write.
Sized sizeOf(const EndOfBitstream& end) noexcept;

/// The bits that writeFillerData() would write.
Sized sizeOf(const FillerData& filler) noexcept;

}  // namespace qv::hevc

#endif
