// nal_unit_type by name, ITU-T H.265 (08/2021) Table 7-1, as far as the reader needs them.
#ifndef QVINSPECT_HEVCUNITTYPES_H
#define QVINSPECT_HEVCUNITTYPES_H

namespace qvinspect {

constexpr unsigned kHevcRaslRNut = 9;
constexpr unsigned kHevcBlaWLpNut = 16;
constexpr unsigned kHevcCraNut = 21;
constexpr unsigned kHevcRsvIrapVcl23 = 23;
constexpr unsigned kHevcVpsNut = 32;
constexpr unsigned kHevcSpsNut = 33;
constexpr unsigned kHevcPpsNut = 34;
constexpr unsigned kHevcAudNut = 35;
constexpr unsigned kHevcEosNut = 36;
constexpr unsigned kHevcEobNut = 37;
constexpr unsigned kHevcFdNut = 38;
constexpr unsigned kHevcPrefixSeiNut = 39;
constexpr unsigned kHevcSuffixSeiNut = 40;
constexpr unsigned kHevcRsvNvcl41 = 41;
constexpr unsigned kHevcRsvNvcl44 = 44;
constexpr unsigned kHevcUnspec48 = 48;
constexpr unsigned kHevcUnspec55 = 55;

}  // namespace qvinspect

#endif
