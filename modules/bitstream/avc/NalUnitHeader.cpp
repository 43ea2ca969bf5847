// The H.264 NAL unit header, read.
#include "bitstream/avc/NalUnitHeader.h"

#include "bitstream/avc/NalUnitHeaderSyntax.h"
#include "bitstream/syntax/Uses.h"

namespace qv::avc {

Read<NalUnitHeader> readNalUnitHeader(Bytes unit) noexcept {
    Read<NalUnitHeader> read;
    detail::clear(read.record);
    Reader reader(unit);
    nal_unit_header(reader, read.record);
    read.fault = reader.fault();
    return read;
}

}  // namespace qv::avc
