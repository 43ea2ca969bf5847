// The marking of decoded reference pictures of H.264.
#include "bitstream/avc/DecRefPicMarking.h"

#include "bitstream/avc/DecRefPicMarkingSyntax.h"

namespace qv::avc {

MemoryManagementControlOperations::MemoryManagementControlOperations(const DecRefPicMarking& marking) noexcept
    : reader_(marking.memory_management_control_operations) {}

bool MemoryManagementControlOperations::next(MemoryManagementControlOperation& operation) noexcept {
    operation = {};
    if (reader_.more_rbsp_data()) {
        memory_management_control_operation(reader_, kMostRefFrames, operation);
    }
    return operation.memory_management_control_operation != 0;
}

}  // namespace qv::avc
