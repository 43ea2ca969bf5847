/// \file
/// nal_unit_type of H.265, Table 7-1.
#ifndef QV_BITSTREAM_HEVC_NALUNITTYPE_H
#define QV_BITSTREAM_HEVC_NALUNITTYPE_H

#include <cstdint>

namespace qv::hevc {

constexpr uint32_t kNalTrailN = 0;
constexpr uint32_t kNalTrailR = 1;
constexpr uint32_t kNalTsaN = 2;
constexpr uint32_t kNalTsaR = 3;
constexpr uint32_t kNalStsaN = 4;
constexpr uint32_t kNalStsaR = 5;
constexpr uint32_t kNalRadlN = 6;
constexpr uint32_t kNalRadlR = 7;
constexpr uint32_t kNalRaslN = 8;
constexpr uint32_t kNalRaslR = 9;
constexpr uint32_t kNalRsvVclN14 = 14;
constexpr uint32_t kNalBlaWLp = 16;
constexpr uint32_t kNalBlaWRadl = 17;
constexpr uint32_t kNalBlaNLp = 18;
constexpr uint32_t kNalIdrWRadl = 19;
constexpr uint32_t kNalIdrNLp = 20;
constexpr uint32_t kNalCra = 21;
constexpr uint32_t kNalRsvIrapVcl23 = 23;
constexpr uint32_t kNalVps = 32;
constexpr uint32_t kNalSps = 33;
constexpr uint32_t kNalPps = 34;
constexpr uint32_t kNalAccessUnitDelimiter = 35;
constexpr uint32_t kNalEndOfSequence = 36;
constexpr uint32_t kNalEndOfBitstream = 37;
constexpr uint32_t kNalFillerData = 38;
constexpr uint32_t kNalPrefixSei = 39;
constexpr uint32_t kNalSuffixSei = 40;
constexpr uint32_t kNalUnspecified48 = 48;

/// True for the types of the VCL, 0 to 31, the reserved ones included.
constexpr bool isVcl(uint32_t nal_unit_type) {
    return nal_unit_type < kNalVps;
}

/// True for the types whose units are slice segments in this edition: 0 to 9 and 16 to 21.
constexpr bool isSlice(uint32_t nal_unit_type) {
    return nal_unit_type <= kNalRaslR || (nal_unit_type >= kNalBlaWLp && nal_unit_type <= kNalCra);
}

/// True for the types of intra random access point pictures: 16 to 23 (3.77).
constexpr bool isIrap(uint32_t nal_unit_type) {
    return nal_unit_type >= kNalBlaWLp && nal_unit_type <= kNalRsvIrapVcl23;
}

/// True for instantaneous decoding refresh: 19 and 20.
constexpr bool isIdr(uint32_t nal_unit_type) {
    return nal_unit_type == kNalIdrWRadl || nal_unit_type == kNalIdrNLp;
}

/// True for broken link access: 16 to 18.
constexpr bool isBla(uint32_t nal_unit_type) {
    return nal_unit_type >= kNalBlaWLp && nal_unit_type <= kNalBlaNLp;
}

/// True for clean random access: 21.
constexpr bool isCra(uint32_t nal_unit_type) {
    return nal_unit_type == kNalCra;
}

/// True for random access decodable leading pictures: 6 and 7.
constexpr bool isRadl(uint32_t nal_unit_type) {
    return nal_unit_type == kNalRadlN || nal_unit_type == kNalRadlR;
}

/// True for random access skipped leading pictures: 8 and 9.
constexpr bool isRasl(uint32_t nal_unit_type) {
    return nal_unit_type == kNalRaslN || nal_unit_type == kNalRaslR;
}

/// True for leading pictures: RADL and RASL.
constexpr bool isLeading(uint32_t nal_unit_type) {
    return isRadl(nal_unit_type) || isRasl(nal_unit_type);
}

/// True for temporal sub-layer access: 2 and 3.
constexpr bool isTsa(uint32_t nal_unit_type) {
    return nal_unit_type == kNalTsaN || nal_unit_type == kNalTsaR;
}

/// True for step-wise temporal sub-layer access: 4 and 5.
constexpr bool isStsa(uint32_t nal_unit_type) {
    return nal_unit_type == kNalStsaN || nal_unit_type == kNalStsaR;
}

/// True for pictures that no picture of the same sub-layer refers to: the even types up to 14.
constexpr bool isSubLayerNonReference(uint32_t nal_unit_type) {
    return nal_unit_type <= kNalRsvVclN14 && nal_unit_type % 2 == 0;
}

/// True for pictures that others of the same sub-layer may refer to: VCL types other than those of
/// isSubLayerNonReference().
constexpr bool isReference(uint32_t nal_unit_type) {
    return isVcl(nal_unit_type) && !isSubLayerNonReference(nal_unit_type);
}

/// True for VPS, SPS and PPS.
constexpr bool isParameterSet(uint32_t nal_unit_type) {
    return nal_unit_type >= kNalVps && nal_unit_type <= kNalPps;
}

/// True for prefix and suffix SEI.
constexpr bool isSei(uint32_t nal_unit_type) {
    return nal_unit_type == kNalPrefixSei || nal_unit_type == kNalSuffixSei;
}

/// True for the types that the standard reserves: 10 to 15, 22 to 31 and 41 to 47.
constexpr bool isReserved(uint32_t nal_unit_type) {
    return (nal_unit_type > kNalRaslR && nal_unit_type < kNalBlaWLp) ||
           (nal_unit_type > kNalCra && nal_unit_type < kNalVps) ||
           (nal_unit_type > kNalSuffixSei && nal_unit_type < kNalUnspecified48);
}

/// True for the types that the standard leaves to applications: 48 to 63.
constexpr bool isUnspecified(uint32_t nal_unit_type) {
    return nal_unit_type >= kNalUnspecified48;
}

}  // namespace qv::hevc

#endif
