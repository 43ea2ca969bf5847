// The small NAL units of H.265 as syntax functions.
#ifndef QV_BITSTREAM_HEVC_SMALLUNITSSYNTAX_H
#define QV_BITSTREAM_HEVC_SMALLUNITSSYNTAX_H

#include "bitstream/hevc/NalUnitHeaderSyntax.h"
#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/hevc/SmallUnits.h"
#include "bitstream/syntax/Reader.h"

namespace qv::hevc {

// access_unit_delimiter_rbsp(), 7.3.2.5
template <class Syntax>
void access_unit_delimiter_unit(Syntax& s, AccessUnitDelimiter& delimiter) {
    nal_unit_of(s, delimiter.header, kNalAccessUnitDelimiter);
    static constexpr Structure kStructure = {"access_unit_delimiter_rbsp()", "7.3.2.5"};
    const Within<Syntax> within(s, kStructure);
    s.u(3, "pic_type", delimiter.pic_type);
    s.rbsp_trailing_bits();
}

// end_of_seq_rbsp(), 7.3.2.6
template <class Syntax>
void end_of_sequence_unit(Syntax& s, EndOfSequence& end) {
    nal_unit_of(s, end.header, kNalEndOfSequence);
}

// end_of_bitstream_rbsp(), 7.3.2.7
template <class Syntax>
void end_of_bitstream_unit(Syntax& s, EndOfBitstream& end) {
    nal_unit_of(s, end.header, kNalEndOfBitstream);
}

// filler_data_rbsp(), 7.3.2.8
template <class Syntax>
void filler_data_unit(Syntax& s, FillerData& filler) {
    nal_unit_of(s, filler.header, kNalFillerData);
    static constexpr Structure kStructure = {"filler_data_rbsp()", "7.3.2.8"};
    const Within<Syntax> within(s, kStructure);
    s.keep(filler.ff_byte, [](auto& in) {
        while (in.more_rbsp_data()) {
            in.f(8, "ff_byte", 0xFF);
        }
    });
    s.rbsp_trailing_bits();
}

}  // namespace qv::hevc

#endif
