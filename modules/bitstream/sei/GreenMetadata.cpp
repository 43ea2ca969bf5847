// Green metadata.
#include "bitstream/sei/GreenMetadata.h"

#include "bitstream/sei/GreenMetadataSyntax.h"
#include "bitstream/sei/PayloadTemplates.h"

namespace qv::sei {

QV_SEI_PAYLOAD(GreenMetadata, green_metadata);

}  // namespace qv::sei
