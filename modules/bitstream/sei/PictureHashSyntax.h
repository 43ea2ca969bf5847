// Checksums of decoded pictures as syntax functions.
#ifndef QV_BITSTREAM_SEI_PICTUREHASHSYNTAX_H
#define QV_BITSTREAM_SEI_PICTUREHASHSYNTAX_H

#include <cstdint>

#include "bitstream/sei/PayloadSets.h"
#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/PictureHash.h"

namespace qv::sei {

constexpr uint32_t kHashMd5 = 0;
constexpr uint32_t kHashCrc = 1;
constexpr uint32_t kHashChecksum = 2;

// decoded_picture_hash(), H.265 D.2.20. What follows a reserved hash_type is not defined.
template <class Syntax>
void decoded_picture_hash(Syntax& s, const Context& context, DecodedPictureHash& payload) {
    static constexpr Structure kStructure = {"decoded_picture_hash()", "D.2.20"};
    const Within<Syntax> within(s, kStructure);
    s.u(8, "hash_type", payload.hash_type, kHashMd5, kHashChecksum);
    const hevc::Sps* const sps = hevcSpsOf(s, context);
    if (sps == nullptr) {
        return;
    }
    payload.components = sps->chroma_format_idc == 0 ? 1 : 3;
    for (uint32_t cIdx = 0; cIdx < payload.components; ++cIdx) {
        if (payload.hash_type == kHashMd5) {
            for (uint32_t i = 0; i < DecodedPictureHash::kMd5Bytes; ++i) {
                s.u(8, at("picture_md5", cIdx, i), payload.picture_md5[cIdx][i]);
            }
        } else if (payload.hash_type == kHashCrc) {
            s.u(16, at("picture_crc", cIdx), payload.picture_crc[cIdx]);
        } else {
            s.u(32, at("picture_checksum", cIdx), payload.picture_checksum[cIdx]);
        }
    }
}

}  // namespace qv::sei

#endif
