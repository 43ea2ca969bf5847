// HDR Vivid dynamic metadata as a syntax function: T/UWA 005.1.
#ifndef QV_BITSTREAM_SEI_HDRVIVIDSYNTAX_H
#define QV_BITSTREAM_SEI_HDRVIVIDSYNTAX_H

#include "bitstream/sei/HdrVivid.h"
#include "bitstream/sei/HdrVividWindowSyntax.h"
#include "bitstream/sei/T35BodySyntax.h"

namespace qv::sei {

template <class Syntax>
void t35_body(Syntax& s, HdrVivid& body) {
    static constexpr Structure kStructure = {"hdr_dynamic_metadata()", "T/UWA 005.1"};
    const Within<Syntax> within(s, kStructure);
    t35_codes<HdrVivid::kOwner>(s);
    s.u(8, "system_start_code", body.system_start_code, 1, 1);
    hdr_vivid_window(s, body);
    t35_padding(s, body.padding);
}

}  // namespace qv::sei

#endif
