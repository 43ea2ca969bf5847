// SEI payloads that hold bytes.
#include "bitstream/sei/UserData.h"

#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/UserDataSyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(FillerPayload, filler_payload);
QV_SEI_PAYLOAD(UserDataRegistered, user_data_registered_itu_t_t35);
QV_SEI_PAYLOAD(UserDataUnregistered, user_data_unregistered);
QV_SEI_PAYLOAD(ReservedSeiMessage, reserved_sei_message);

}  // namespace qv::sei
