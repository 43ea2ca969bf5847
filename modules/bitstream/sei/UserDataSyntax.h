// SEI payloads that hold bytes, as syntax functions.
#ifndef QV_BITSTREAM_SEI_USERDATASYNTAX_H
#define QV_BITSTREAM_SEI_USERDATASYNTAX_H

#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/UserData.h"

namespace qv::sei {

// filler_payload(), H.264 D.1.5, H.265 D.2.5
template <class Syntax>
void filler_payload(Syntax& s, const Context& context, FillerPayload& payload) {
    static constexpr SharedStructure kStructure = sharedStructure("filler_payload()", "D.1.5", "D.2.5");
    const Within<Syntax> within(s, kStructure.of(context));
    s.payload_bytes("ff_byte", payload.ff_byte);
}

// The bytes of user_data_registered_itu_t_t35() after the country code.
template <class Syntax>
void itu_t_t35_payload(Syntax& s, UserDataRegistered& payload) {
    s.payload_bytes("itu_t_t35_payload_byte", payload.itu_t_t35_payload_byte);
}

// Traces the elements of a body that is known, and bytes when it has a fault. Defined in T35Body.cpp.
void itu_t_t35_payload(Tracer& tracer, UserDataRegistered& payload);

// user_data_registered_itu_t_t35(), H.264 D.1.6, H.265 D.2.6
template <class Syntax>
void user_data_registered_itu_t_t35(Syntax& s, const Context& context, UserDataRegistered& payload) {
    constexpr uint32_t kExtension = 0xFF;
    static constexpr SharedStructure kStructure =
        sharedStructure("user_data_registered_itu_t_t35()", "D.1.6", "D.2.6");
    const Within<Syntax> within(s, kStructure.of(context));
    s.u(8, "itu_t_t35_country_code", payload.itu_t_t35_country_code);
    if (payload.itu_t_t35_country_code == kExtension) {
        s.u(8, "itu_t_t35_country_code_extension_byte", payload.itu_t_t35_country_code_extension_byte);
    }
    itu_t_t35_payload(s, payload);
}

// user_data_unregistered(), H.264 D.1.7, H.265 D.2.7
template <class Syntax>
void user_data_unregistered(Syntax& s, const Context& context, UserDataUnregistered& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("user_data_unregistered()", "D.1.7", "D.2.7");
    const Within<Syntax> within(s, kStructure.of(context));
    for (uint32_t i = 0; i < UserDataUnregistered::kUuidBytes; ++i) {
        s.u(8, at("uuid_iso_iec_11578", i), payload.uuid_iso_iec_11578[i]);
    }
    s.payload_bytes("user_data_payload_byte", payload.user_data_payload_byte);
}

// reserved_sei_message(), H.264 D.1.40, H.265 D.2.49
template <class Syntax>
void reserved_sei_message(Syntax& s, const Context& context, ReservedSeiMessage& payload) {
    static constexpr SharedStructure kStructure =
        sharedStructure("reserved_sei_message()", "D.1.40", "D.2.49");
    const Within<Syntax> within(s, kStructure.of(context));
    s.payload_bytes("reserved_sei_message_payload_byte", payload.reserved_sei_message_payload_byte);
}

}  // namespace qv::sei

#endif
