// SEI payload types by name, H.264 D.1.1 and H.265 D.2.1.
#ifndef QVINSPECT_SEITYPES_H
#define QVINSPECT_SEITYPES_H

#include <cstdint>

namespace qvinspect {

constexpr uint32_t kBufferingPeriod = 0;
constexpr uint32_t kPicTiming = 1;
constexpr uint32_t kUserDataRegistered = 4;
constexpr uint32_t kUserDataUnregistered = 5;
constexpr uint32_t kRecoveryPoint = 6;
constexpr uint32_t kFramePacking = 45;
constexpr uint32_t kDisplayOrientation = 47;
constexpr uint32_t kGreenMetadata = 56;
constexpr uint32_t kActiveParameterSets = 129;
constexpr uint32_t kDecodedPictureHash = 132;
constexpr uint32_t kMasteringDisplay = 137;
constexpr uint32_t kContentLight = 144;
constexpr uint32_t kAlternativeTransfer = 147;

// The type under which the library reads a picture hash in H.265 prefix units.
constexpr uint32_t kPrefixPictureHash = 256;

}  // namespace qvinspect

#endif
