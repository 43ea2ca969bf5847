/// \file
/// The end of sequence and the end of stream of H.264.
#ifndef QV_BITSTREAM_AVC_ENDOFSEQUENCE_H
#define QV_BITSTREAM_AVC_ENDOFSEQUENCE_H

#include <cstdint>
#include <vector>

#include "bitstream/Bytes.h"
#include "bitstream/Read.h"
#include "bitstream/avc/NalUnitHeader.h"
#include "bitstream/syntax/Trace.h"

namespace qv::avc {

/// A NAL unit of type 10: end_of_seq_rbsp(), H.264 7.3.2.5, which is empty.
struct EndOfSequence {
    NalUnitHeader header;  ///< the NAL unit header
};

/// A NAL unit of type 11: end_of_stream_rbsp(), H.264 7.3.2.6, which is empty.
struct EndOfStream {
    NalUnitHeader header;  ///< the NAL unit header
};

/// Reads an end of sequence.
///
/// \param unit  one NAL unit from its header on, without start code or length
/// \return the record; a unit of another type is a fault. Bits after the header are reported as trailing.
Read<EndOfSequence> readEndOfSequence(Bytes unit) noexcept;

/// As readEndOfSequence(), and hands each element to \p visitor.
Read<EndOfSequence> traceEndOfSequence(Bytes unit, TraceVisitor& visitor);

/// Writes an end of sequence as a NAL unit to the end of \p out.
///
/// \return the number of bytes, or the first element that does not fit its descriptor or its range
Written writeEndOfSequence(const EndOfSequence& end, std::vector<uint8_t>& out);

/// The bits that writeEndOfSequence() would write.
Sized sizeOf(const EndOfSequence& end) noexcept;

/// Reads an end of stream.
///
/// \param unit  one NAL unit from its header on, without start code or length
/// \return the record; a unit of another type is a fault. Bits after the header are reported as trailing.
Read<EndOfStream> readEndOfStream(Bytes unit) noexcept;

/// As readEndOfStream(), and hands each element to \p visitor.
Read<EndOfStream> traceEndOfStream(Bytes unit, TraceVisitor& visitor);

/// Writes an end of stream as a NAL unit to the end of \p out.
///
/// \return the number of bytes, or the first element that does not fit its descriptor or its range
Written writeEndOfStream(const EndOfStream& end, std::vector<uint8_t>& out);

/// The bits that writeEndOfStream() would write.
Sized sizeOf(const EndOfStream& end) noexcept;

}  // namespace qv::avc

#endif
