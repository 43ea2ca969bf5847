#include "PayloadOfBits.h"

#include "bitstream/sei/PayloadTemplates.h"

namespace qv::sei {

template <class Syntax>
void payload_of_bits(Syntax& s, const Context& context, PayloadOfBits& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"payload_of_bits()", "D.0"};
    const Within<Syntax> within(s, kStructure);
    s.u(3, "width", payload.width);
    s.u(payload.width, "value", payload.value);
}

QV_SEI_PAYLOAD(PayloadOfBits, payload_of_bits);

}  // namespace qv::sei
