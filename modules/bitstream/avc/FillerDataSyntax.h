// filler_data_rbsp() of H.264 as a syntax function.
#ifndef QV_BITSTREAM_AVC_FILLERDATASYNTAX_H
#define QV_BITSTREAM_AVC_FILLERDATASYNTAX_H

#include "bitstream/avc/FillerData.h"
#include "bitstream/avc/NalUnitHeaderSyntax.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

// A unit of type 12: filler_data_rbsp(), 7.3.2.7. The standard's loop goes on while next_bits( 8 ) is 0xFF;
// here any other byte before rbsp_trailing_bits() is a fault.
template <class Syntax>
void filler_data_unit(Syntax& s, FillerData& filler) {
    nal_unit_of(s, filler.header, kNalFillerData);
    static constexpr Structure kStructure = {"filler_data_rbsp()", "7.3.2.7"};
    const Within<Syntax> within(s, kStructure);
    uint64_t count = 0;
    bool more = filler.ff_byte_count != 0;
    while (s.more_rbsp_data(more)) {
        s.f(8, "ff_byte", 0xFF);
        ++count;
        more = count < filler.ff_byte_count;
    }
    s.infer(filler.ff_byte_count, s.failed() && count != 0 ? count - 1 : count);
    s.rbsp_trailing_bits();
}

}  // namespace qv::avc

#endif
