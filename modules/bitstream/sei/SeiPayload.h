/// \file
/// Payloads of SEI messages: read, traced, written and sized, one record for each type.
#ifndef QV_BITSTREAM_SEI_SEIPAYLOAD_H
#define QV_BITSTREAM_SEI_SEIPAYLOAD_H

#include <cstdint>
#include <vector>

#include "bitstream/Codec.h"
#include "bitstream/Read.h"
#include "bitstream/sei/SeiContext.h"
#include "bitstream/sei/SeiMessages.h"
#include "bitstream/syntax/Trace.h"

namespace qv::sei {

/// In place of a payloadType in the codec that does not define a payload.
constexpr uint32_t kNoPayloadType = 0xFFFFFFFF;

/// In place of a payloadType of a payload that a message of any type may have.
constexpr uint32_t kAnyPayloadType = 0xFFFFFFFE;

/// The payloadType of a payload in each codec.
struct PayloadTypes {
    uint32_t avc;   ///< H.264 D.1.1, or kNoPayloadType, or kAnyPayloadType
    uint32_t hevc;  ///< H.265 D.2.1, or kNoPayloadType, or kAnyPayloadType

    /// That of one codec.
    constexpr uint32_t of(Codec codec) const { return codec == Codec::Avc ? avc : hevc; }

    /// True when that of one codec is \p payloadType; false when there is none, whatever \p payloadType is.
    constexpr bool is(Codec codec, uint64_t payloadType) const {
        return of(codec) != kNoPayloadType && of(codec) == payloadType;
    }
};

// Payload is one of the records of this folder: each has a constant kPayloadTypes.

/// Reads the payload of a message.
///
/// \param message  its unit must outlive the record, which borrows bytes from it
/// \param context  with the parameter sets that the message refers to
/// \return the record, and the number of bits of an extension (H.265 reserved_payload_extension_data) as what
///         is left over. A message of another type, a payload that ends early or is longer than its syntax,
///         and a value out of its range are faults; after one the record holds what was read before it.
template <class Payload>
Read<Payload> readPayload(const SeiMessage& message, const Context& context) noexcept;

/// As readPayload(), and hands each element to \p visitor.
template <class Payload>
Read<Payload> tracePayload(const SeiMessage& message, const Context& context, TraceVisitor& visitor);

/// Reads the payload of a message of any type by the record of its type, hands each element to \p visitor,
/// and forgets the record. A payload of a type without a record is traced as bytes.
///
/// \return the first fault; see readPayload()
Fault traceAnyPayload(const SeiMessage& message, const Context& context, TraceVisitor& visitor);

/// Writes a payload as bytes of the RBSP, that is, without emulation prevention bytes, to the end of \p out.
///
/// \return the number of bytes, or the first element that does not fit its descriptor or its range
template <class Payload>
Written writePayload(const Payload& payload, const Context& context, std::vector<uint8_t>& out);

/// The bits that writePayload() would write.
template <class Payload>
Sized sizeOfPayload(const Payload& payload, const Context& context) noexcept;

}  // namespace qv::sei

#endif
