/// \file
/// SEI payloads that hold bytes: filler, user data, and types that the standards reserve.
#ifndef QV_BITSTREAM_SEI_USERDATA_H
#define QV_BITSTREAM_SEI_USERDATA_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// filler_payload(), H.264 D.1.5, H.265 D.2.5.
struct FillerPayload {
    static constexpr PayloadTypes kPayloadTypes = {3, 3};  ///< payloadType
    CodedBits ff_byte;                                     ///< f(8) each; other values are kept
};

/// user_data_registered_itu_t_t35(), H.264 D.1.6, H.265 D.2.6.
struct UserDataRegistered {
    static constexpr PayloadTypes kPayloadTypes = {4, 4};  ///< payloadType
    uint32_t itu_t_t35_country_code;                       ///< b(8)
    uint32_t itu_t_t35_country_code_extension_byte;        ///< b(8), with a country code of 0xFF
    CodedBits itu_t_t35_payload_byte;                      ///< b(8) each, borrowed
};

/// user_data_unregistered(), H.264 D.1.7, H.265 D.2.7.
struct UserDataUnregistered {
    static constexpr PayloadTypes kPayloadTypes = {5, 5};  ///< payloadType
    static constexpr uint32_t kUuidBytes = 16;             ///< bytes of a UUID
    uint8_t uuid_iso_iec_11578[kUuidBytes];                ///< u(128), the first byte first
    CodedBits user_data_payload_byte;                      ///< b(8) each, borrowed
};

/// reserved_sei_message(), H.264 D.1.40, H.265 D.2.49: the payload of a message of any type that has no
/// record.
struct ReservedSeiMessage {
    static constexpr PayloadTypes kPayloadTypes = {kAnyPayloadType, kAnyPayloadType};  ///< payloadType
    CodedBits reserved_sei_message_payload_byte;  ///< b(8) each, borrowed
};

}  // namespace qv::sei

#endif
