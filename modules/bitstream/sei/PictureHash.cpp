// Checksums of decoded pictures.
#include "bitstream/sei/PictureHash.h"

#include <algorithm>

#include "bitstream/sei/PayloadTemplates.h"
#include "bitstream/sei/PictureHashSyntax.h"

namespace qv::sei {

QV_SEI_PAYLOAD(DecodedPictureHash, decoded_picture_hash);

namespace {

HashBytes bigEndian(uint32_t value, uint32_t size) {
    HashBytes hash = {size, {}};
    for (uint32_t i = 0; i < size; ++i) {
        hash.bytes[i] = static_cast<uint8_t>(value >> 8 * (size - 1 - i));
    }
    return hash;
}

}  // namespace

HashBytes hashOf(const DecodedPictureHash& hash, uint32_t cIdx) noexcept {
    if (cIdx >= std::min(hash.components, DecodedPictureHash::kMostComponents)) {
        return {0, {}};
    }
    if (hash.hash_type == kHashMd5) {
        HashBytes md5 = {DecodedPictureHash::kMd5Bytes, {}};
        std::copy(std::begin(hash.picture_md5[cIdx]), std::end(hash.picture_md5[cIdx]), md5.bytes);
        return md5;
    }
    if (hash.hash_type == kHashCrc) {
        return bigEndian(hash.picture_crc[cIdx], 2);
    }
    return hash.hash_type == kHashChecksum ? bigEndian(hash.picture_checksum[cIdx], 4) : HashBytes{0, {}};
}

}  // namespace qv::sei
