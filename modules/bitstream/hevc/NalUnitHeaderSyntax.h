// The H.265 NAL unit header as a syntax function.
#ifndef QV_BITSTREAM_HEVC_NALUNITHEADERSYNTAX_H
#define QV_BITSTREAM_HEVC_NALUNITHEADERSYNTAX_H

#include "bitstream/hevc/NalUnitHeader.h"
#include "bitstream/syntax/Reader.h"

namespace qv::hevc {

// Min() of the standard.
constexpr uint32_t lesser(uint32_t a, uint32_t b) {
    return a < b ? a : b;
}

// nal_unit_header(), 7.3.1.2
template <class Syntax>
void nal_unit_header(Syntax& s, NalUnitHeader& header) {
    static constexpr Structure kStructure = {"nal_unit_header()", "7.3.1.2"};
    const Within<Syntax> within(s, kStructure);
    s.header(NalUnitHeader::kBytes);
    s.f(1, "forbidden_zero_bit", 0);
    s.u(6, "nal_unit_type", header.nal_unit_type);
    s.u(6, "nuh_layer_id", header.nuh_layer_id);
    s.u(3, "nuh_temporal_id_plus1", header.nuh_temporal_id_plus1, 1, 7);
}

// The header of a unit of one type, and the begin of its RBSP.
template <class Syntax>
void nal_unit_of(Syntax& s, NalUnitHeader& header, uint32_t nal_unit_type) {
    nal_unit_header(s, header);
    if (header.nal_unit_type != nal_unit_type) {
        s.fail(FaultKind::OtherUnit, "nal_unit_type", header.nal_unit_type);
    }
    s.rbsp();
}

}  // namespace qv::hevc

#endif
