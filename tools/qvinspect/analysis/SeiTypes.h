// SEI payload types by name, H.264 D.1.1 and H.265 D.2.1.
#ifndef QVINSPECT_SEITYPES_H
#define QVINSPECT_SEITYPES_H

#include <cstdint>

namespace qvinspect {

constexpr uint32_t kUserDataRegistered = 4;
constexpr uint32_t kUserDataUnregistered = 5;
constexpr uint32_t kDisplayOrientation = 47;
constexpr uint32_t kMasteringDisplay = 137;
constexpr uint32_t kContentLight = 144;
constexpr uint32_t kAlternativeTransfer = 147;

}  // namespace qvinspect

#endif
