// access_unit_delimiter_rbsp() of H.264 as a syntax function.
#ifndef QV_BITSTREAM_AVC_ACCESSUNITDELIMITERSYNTAX_H
#define QV_BITSTREAM_AVC_ACCESSUNITDELIMITERSYNTAX_H

#include "bitstream/avc/AccessUnitDelimiter.h"
#include "bitstream/avc/NalUnitHeaderSyntax.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

// A unit of type 9: access_unit_delimiter_rbsp(), 7.3.2.4
template <class Syntax>
void access_unit_delimiter_unit(Syntax& s, AccessUnitDelimiter& delimiter) {
    nal_unit_of(s, delimiter.header, kNalAccessUnitDelimiter);
    static constexpr Structure kStructure = {"access_unit_delimiter_rbsp()", "7.3.2.4"};
    const Within<Syntax> within(s, kStructure);
    s.u(3, "primary_pic_type", delimiter.primary_pic_type);
    s.rbsp_trailing_bits();
}

}  // namespace qv::avc

#endif
