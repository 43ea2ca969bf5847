// What a walk over a unit does with a payload.
#ifndef QV_BITSTREAM_SEI_PAYLOADUSES_H
#define QV_BITSTREAM_SEI_PAYLOADUSES_H

#include "bitstream/Read.h"
#include "bitstream/sei/SeiContext.h"
#include "bitstream/sei/SeiMessages.h"

namespace qv {

class Tracer;
class Writer;

namespace sei {

template <class Payload>
struct PayloadUses {
    // Traces the payload; the tracer is at its first bit.
    static void trace(Tracer& tracer, const SeiMessage& message, const Context& context);

    // Writes the payload from its record, without payloadType and payloadSize.
    static Fault rewrite(Writer& writer, const SeiMessage& message, const Context& context);
};

}  // namespace sei

}  // namespace qv

#endif
