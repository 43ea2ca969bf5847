/// \file
/// nal_unit_type of H.265, Table 7-1.
#ifndef QV_BITSTREAM_HEVC_NALUNITTYPE_H
#define QV_BITSTREAM_HEVC_NALUNITTYPE_H

#include <cstdint>

namespace qv::hevc {

constexpr uint32_t kNalTrailN = 0;  ///< TRAIL_N, a trailing picture, sub-layer non-reference
constexpr uint32_t kNalTrailR = 1;  ///< TRAIL_R, a trailing picture, sub-layer reference
constexpr uint32_t kNalTsaN = 2;    ///< TSA_N, temporal sub-layer access, sub-layer non-reference
constexpr uint32_t kNalTsaR = 3;    ///< TSA_R, temporal sub-layer access, sub-layer reference
constexpr uint32_t kNalStsaN = 4;   ///< STSA_N, step-wise temporal sub-layer access, sub-layer non-reference
constexpr uint32_t kNalStsaR = 5;   ///< STSA_R, step-wise temporal sub-layer access, sub-layer reference
constexpr uint32_t kNalRadlN = 6;   ///< RADL_N, a decodable leading picture, sub-layer non-reference
constexpr uint32_t kNalRadlR = 7;   ///< RADL_R, a decodable leading picture, sub-layer reference
constexpr uint32_t kNalRaslN = 8;   ///< RASL_N, a skipped leading picture, sub-layer non-reference
constexpr uint32_t kNalRaslR = 9;   ///< RASL_R, a skipped leading picture, sub-layer reference
constexpr uint32_t kNalRsvVclN14 = 14;     ///< RSV_VCL_N14, the last reserved sub-layer non-reference type
constexpr uint32_t kNalBlaWLp = 16;        ///< BLA_W_LP, broken link access, may have leading pictures
constexpr uint32_t kNalBlaWRadl = 17;      ///< BLA_W_RADL, broken link access, may have RADL pictures
constexpr uint32_t kNalBlaNLp = 18;        ///< BLA_N_LP, broken link access without leading pictures
constexpr uint32_t kNalIdrWRadl = 19;      ///< IDR_W_RADL, an IDR picture, may have RADL pictures
constexpr uint32_t kNalIdrNLp = 20;        ///< IDR_N_LP, an IDR picture without leading pictures
constexpr uint32_t kNalCra = 21;           ///< CRA_NUT, clean random access
constexpr uint32_t kNalRsvIrapVcl23 = 23;  ///< RSV_IRAP_VCL23, the last type of an IRAP picture
constexpr uint32_t kNalVps = 32;           ///< VPS_NUT, video_parameter_set_rbsp()
constexpr uint32_t kNalSps = 33;           ///< SPS_NUT, seq_parameter_set_rbsp()
constexpr uint32_t kNalPps = 34;           ///< PPS_NUT, pic_parameter_set_rbsp()
constexpr uint32_t kNalAccessUnitDelimiter = 35;  ///< AUD_NUT, access_unit_delimiter_rbsp()
constexpr uint32_t kNalEndOfSequence = 36;        ///< EOS_NUT, end_of_seq_rbsp()
constexpr uint32_t kNalEndOfBitstream = 37;       ///< EOB_NUT, end_of_bitstream_rbsp()
constexpr uint32_t kNalFillerData = 38;           ///< FD_NUT, filler_data_rbsp()
constexpr uint32_t kNalPrefixSei = 39;            ///< PREFIX_SEI_NUT, sei_rbsp() before the slices
constexpr uint32_t kNalSuffixSei = 40;            ///< SUFFIX_SEI_NUT, sei_rbsp() after the first slice
constexpr uint32_t kNalUnspecified48 = 48;        ///< UNSPEC48, the first unspecified type

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
