// The bodies of T.35 messages that have a record, and what a trace does with them.
#ifndef QV_BITSTREAM_SEI_T35BODYUSES_H
#define QV_BITSTREAM_SEI_T35BODYUSES_H

#include "bitstream/sei/A53.h"
#include "bitstream/sei/Hdr10Plus.h"
#include "bitstream/sei/HdrVivid.h"
#include "bitstream/sei/T35.h"

namespace qv {

class Tracer;

namespace sei {

template <class Body>
struct T35BodyUses {
    // Traces a body from its provider code on and returns true; nothing when it has a fault or ends
    // before the message.
    static bool trace(Tracer& tracer);
};

template <class... Bodies>
struct T35BodyList {
    // Traces the body of an owner. False when none of its records fits.
    static bool trace(T35Owner owner, Tracer& tracer) {
        return (... || (owner == Bodies::kOwner && T35BodyUses<Bodies>::trace(tracer)));
    }
};

// An owner may have several records: the first one that is read without a fault applies.
using T35Bodies =
    T35BodyList<Hdr10Plus, HdrVivid, AtscCaptions, AtscBarData, SatelliteCaptions, ActiveFormatDescription>;

}  // namespace sei

}  // namespace qv

#endif
