// The parameter sets that are active.
#include "bitstream/sei/ActiveParameterSets.h"

#include "bitstream/sei/ActiveParameterSetsSyntax.h"
#include "bitstream/sei/PayloadTemplates.h"

namespace qv::sei {

QV_SEI_PAYLOAD(ActiveParameterSets, active_parameter_sets);

}  // namespace qv::sei
