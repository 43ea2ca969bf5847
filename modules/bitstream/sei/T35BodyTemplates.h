// The uses of the syntax function of a T.35 body.
#ifndef QV_BITSTREAM_SEI_T35BODYTEMPLATES_H
#define QV_BITSTREAM_SEI_T35BODYTEMPLATES_H

#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/T35BodySyntax.h"
#include "bitstream/sei/T35BodyUses.h"

namespace qv::sei {

template <class Body>
bool T35BodyUses<Body>::trace(Tracer& tracer) {
    Body body;
    detail::clear(body);
    Reader ahead = tracer.reader();
    t35_body(ahead, body);
    if (ahead.failed() || ahead.more_rbsp_data()) {
        return false;
    }
    t35_body(tracer, body);
    return true;
}

}  // namespace qv::sei

// Makes the functions of a T.35 body from its t35_body(), in qv::sei.
// NOLINTBEGIN(cppcoreguidelines-macro-usage): a list of declarations
#define QV_T35_BODY(Record)              \
    QV_SEI_PAYLOAD(Record, t35_message); \
    template struct T35BodyUses<Record>
// NOLINTEND(cppcoreguidelines-macro-usage)

#endif
