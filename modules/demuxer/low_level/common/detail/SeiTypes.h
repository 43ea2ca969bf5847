// SEI payload types and related numbers by name: ITU-T H.264 (08/2021) D.1.1, ITU-T H.265 (08/2021) D.2.1.
#ifndef QV_DEMUXER_DETAIL_SEITYPES_H
#define QV_DEMUXER_DETAIL_SEITYPES_H

#include <cstdint>

namespace qv_detail {

constexpr int kSeiBufferingPeriod = 0;
constexpr int kSeiPicTiming = 1;
constexpr int kSeiUserDataRegisteredItuTT35 = 4;
constexpr int kSeiUserDataUnregistered = 5;
constexpr int kSeiRecoveryPoint = 6;
constexpr int kSeiFramePackingArrangement = 45;
constexpr int kSeiDisplayOrientation = 47;
constexpr int kSeiGreenMetadata = 56;
constexpr int kSeiActiveParameterSets = 129;
constexpr int kSeiDecodedPictureHash = 132;
constexpr int kSeiMasteringDisplayColourVolume = 137;
constexpr int kSeiContentLightLevelInfo = 144;
constexpr int kSeiAlternativeTransferCharacteristics = 147;

// D13: the number of a picture hash in prefix units; 132 is its number in suffix units only.
constexpr int kHevcPrefixPictureHash = 256;

// nal_unit_type of the H.265 SEI units.
constexpr int kHevcPrefixSeiNut = 39;
constexpr int kHevcSuffixSeiNut = 40;

// rbsp_trailing_bits() of a byte-aligned RBSP.
constexpr uint32_t kTrailingBitsByte = 0x80;

// frame_packing_arrangement_type: temporal interleaving.
constexpr uint32_t kTemporalInterleaving = 5;

// user_data_registered_itu_t_t35: the country code that announces an extension byte, and the user_identifiers
// of ATSC A/53 Part 4 and ETSI TS 101 154.
constexpr uint32_t kCountryCodeExtended = 0xFF;
constexpr uint32_t kUserIdentifierGa94 = 0x47413934;
constexpr uint32_t kUserIdentifierDtg1 = 0x44544731;

// user_data_type_code of cc_data(), ATSC A/53 Part 4.
constexpr uint32_t kUserDataTypeCcData = 3;

// Bytes of a T.35 header, the user_identifier included.
constexpr int kT35HeaderSize = 1 + 2 + 4;

}  // namespace qv_detail

#endif
