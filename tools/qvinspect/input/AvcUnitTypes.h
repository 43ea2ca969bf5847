// nal_unit_type by name, ITU-T H.264 (08/2021) Table 7-1, as far as the reader needs them.
#ifndef QVINSPECT_AVCUNITTYPES_H
#define QVINSPECT_AVCUNITTYPES_H

namespace qvinspect {

constexpr unsigned kAvcSliceNut = 1;
constexpr unsigned kAvcPartitionANut = 2;
constexpr unsigned kAvcPartitionBNut = 3;
constexpr unsigned kAvcPartitionCNut = 4;
constexpr unsigned kAvcIdrSliceNut = 5;
constexpr unsigned kAvcSeiNut = 6;
constexpr unsigned kAvcSpsNut = 7;
constexpr unsigned kAvcPpsNut = 8;
constexpr unsigned kAvcDelimiterNut = 9;
constexpr unsigned kAvcEndOfSequenceNut = 10;
constexpr unsigned kAvcEndOfStreamNut = 11;
constexpr unsigned kAvcFillerNut = 12;
constexpr unsigned kAvcSpsExtensionNut = 13;
constexpr unsigned kAvcPrefixNut = 14;
constexpr unsigned kAvcSubsetSpsNut = 15;
constexpr unsigned kAvcReserved18Nut = 18;
constexpr unsigned kAvcAuxiliarySliceNut = 19;
constexpr unsigned kAvcSliceExtensionNut = 20;
constexpr unsigned kAvcUnspec24 = 24;

}  // namespace qvinspect

#endif
