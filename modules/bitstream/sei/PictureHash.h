/// \file
/// Checksums of decoded pictures.
#ifndef QV_BITSTREAM_SEI_PICTUREHASH_H
#define QV_BITSTREAM_SEI_PICTUREHASH_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"

namespace qv::sei {

/// decoded_picture_hash(), H.265 D.2.20 and D.3.20. One entry for each colour component of the SPS of the
/// picture, luma first.
struct DecodedPictureHash {
    static constexpr PayloadTypes kPayloadTypes = {kNoPayloadType, 132};  ///< payloadType
    static constexpr uint32_t kMostComponents = 3;                        ///< luma, cb and cr
    static constexpr uint32_t kMd5Bytes = 16;                             ///< bytes of an MD5 digest

    uint32_t hash_type;   ///< u(8): 0 MD5, 1 CRC, 2 checksum
    uint32_t components;  ///< 1 when chroma_format_idc is 0, otherwise 3

    uint8_t picture_md5[kMostComponents][kMd5Bytes];  ///< b(8); with hash_type 0
    uint32_t picture_crc[kMostComponents];            ///< u(16); with hash_type 1
    uint32_t picture_checksum[kMostComponents];       ///< u(32); with hash_type 2
};

/// The hash of a component as coded.
struct HashBytes {
    uint32_t size;                                 ///< 16 for MD5, 2 for CRC, 4 for a checksum; 0 for none
    uint8_t bytes[DecodedPictureHash::kMd5Bytes];  ///< \ref size of them; those beyond are 0
};

/// The hash of component \p cIdx; none for other components and types.
HashBytes hashOf(const DecodedPictureHash& hash, uint32_t cIdx) noexcept;

}  // namespace qv::sei

#endif
