// end_of_seq_rbsp() and end_of_stream_rbsp() of H.264 as syntax functions.
#ifndef QV_BITSTREAM_AVC_ENDOFSEQUENCESYNTAX_H
#define QV_BITSTREAM_AVC_ENDOFSEQUENCESYNTAX_H

#include "bitstream/avc/EndOfSequence.h"
#include "bitstream/avc/NalUnitHeaderSyntax.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

// Neither has rbsp_trailing_bits(): without rbsp(), whatever comes after the header is left over.

// A unit of type 10: end_of_seq_rbsp(), 7.3.2.5
template <class Syntax>
void end_of_seq_unit(Syntax& s, EndOfSequence& end) {
    nal_unit_header_of(s, end.header, kNalEndOfSequence);
    static constexpr Structure kStructure = {"end_of_seq_rbsp()", "7.3.2.5"};
    const Within<Syntax> within(s, kStructure);
}

// A unit of type 11: end_of_stream_rbsp(), 7.3.2.6
template <class Syntax>
void end_of_stream_unit(Syntax& s, EndOfStream& end) {
    nal_unit_header_of(s, end.header, kNalEndOfStream);
    static constexpr Structure kStructure = {"end_of_stream_rbsp()", "7.3.2.6"};
    const Within<Syntax> within(s, kStructure);
}

}  // namespace qv::avc

#endif
