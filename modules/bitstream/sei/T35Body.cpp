// Traces of the bodies of T.35 messages.
#include "bitstream/sei/T35BodyUses.h"
#include "bitstream/sei/UserDataSyntax.h"
#include "bitstream/syntax/Tracer.h"

namespace qv::sei {

void itu_t_t35_payload(Tracer& tracer, UserDataRegistered& payload) {
    Reader ahead = tracer.reader();
    ahead.payload_bytes("itu_t_t35_payload_byte", payload.itu_t_t35_payload_byte);
    if (!T35Bodies::trace(t35Of(payload).owner, tracer)) {
        tracer.payload_bytes("itu_t_t35_payload_byte", payload.itu_t_t35_payload_byte);
    }
}

}  // namespace qv::sei
