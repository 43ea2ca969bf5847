// pic_timing(), decoded_picture_hash() and active_parameter_sets(), ITU-T H.265 (08/2021) D.2.3, D.2.19,
// D.2.21.
#include <cstdint>

#include "QVNaluParser.h"
#include "detail/Log.h"
#include "detail/PlainBits.h"

using namespace qv_detail;

namespace {

constexpr uint32_t kMostNumSpsIdsMinus1 = 15;
constexpr uint32_t kSpsIdEnd = 16;
constexpr int kColourComponents = 3;

enum HashType : uint32_t { kHashMd5 = 0, kHashCrc = 1, kHashChecksum = 2 };

// Field parity by pic_struct, Table D.2: bit n is pic_struct n.
constexpr uint32_t kPicStructEnd = 13;
constexpr uint32_t kTopFieldPicStructs = 1U << 1 | 1U << 9 | 1U << 11;
constexpr uint32_t kBottomFieldPicStructs = 1U << 2 | 1U << 10 | 1U << 12;

uint32_t fieldParity(uint32_t pic_struct) {
    if (pic_struct >= kPicStructEnd) {
        return 0;
    }
    if ((kTopFieldPicStructs >> pic_struct & 1U) != 0) {
        return 1;
    }
    return (kBottomFieldPicStructs >> pic_struct & 1U) != 0 ? 2 : 0;
}

// Three skips, each of which has an effect only if it fits.
void skipHashes(PlainBits& in, uint32_t bitsEach) {
    for (int cIdx = 0; cIdx < kColourComponents; ++cIdx) {
        in.skip(bitsEach);
    }
}

// Three components whatever the chroma format (D20).
void readMd5(PlainBits& in, QVHevcSeiPictureHash* pictureHash) {
    pictureHash->md5Present = 1;
    for (auto& picture_md5 : pictureHash->picture_md5) {
        for (uint8_t& byte : picture_md5) {
            byte = static_cast<uint8_t>(in.u(8));
        }
    }
}

}  // namespace

int QVNaluParser::parserHevcPictureTiming(QVByteStream& stream, int payloadSize,
                                          QVHevcSeiPictureTiming* pictureTiming, QVHevcSps* sps) {
    if (pictureTiming == nullptr || sps == nullptr) {
        QV_LOG(QVTraceError, "parserHevcPictureTiming",
               "parserHevcPictureTiming: pictureTiming or sps is NULL!\n");
        return QVResultFailed;
    }
    if (sps->frame_field_info_present_flag == 0) {
        stream.seekBytes(payloadSize);
        return QVResultOk;
    }
    PlainBits in(stream);
    const uint32_t pic_struct = in.u(4);
    pictureTiming->fieldParity = fieldParity(pic_struct);
    in.drop(2);  // source_scan_type
    in.drop(1);  // duplicate_flag
    in.skip(1);  // D21: one bit more than the syntax has, which completes the first byte
    stream.seekBytes(int64_t{payloadSize} - 1);
    return QVResultOk;
}

int QVNaluParser::parserHevcPictureHash(QVByteStream& stream, int /*payloadSize*/,
                                        QVHevcSeiPictureHash* pictureHash) {
    if (pictureHash == nullptr) {
        QV_LOG(QVTraceError, "parserHevcPictureHash", "parserHevcPictureHash: pictureHash is NULL!\n");
        return QVResultFailed;
    }
    PlainBits in(stream);
    const uint32_t hash_type = in.u(8);
    switch (hash_type) {
        case kHashMd5:
            readMd5(in, pictureHash);
            break;
        case kHashCrc:
            skipHashes(in, 16);  // picture_crc
            break;
        case kHashChecksum:
            skipHashes(in, 32);  // picture_checksum
            break;
        default:
            break;
    }
    return QVResultOk;
}

int QVNaluParser::parserHevcActiveParameterSets(QVByteStream& stream, int /*payloadSize*/) {
    constexpr const char* kFunction = "parserHevcActiveParameterSets";
    PlainBits in(stream);
    if (stream.hasData()) {
        in.drop(4);  // active_video_parameter_set_id
    }
    in.drop(1);  // self_contained_cvs_flag
    in.drop(1);  // no_parameter_set_update_flag
    const uint32_t num_sps_ids_minus1 = in.ue();
    if (num_sps_ids_minus1 > kMostNumSpsIdsMinus1) {
        QV_LOG(QVTraceError, kFunction, "parserHevcActiveParameterSets: num_sps_ids_minus1(%d) is invalid!\n",
               static_cast<int>(num_sps_ids_minus1));
        return QVResultFailed;
    }
    const uint32_t active_seq_parameter_set_id = in.ue();
    if (active_seq_parameter_set_id >= kSpsIdEnd) {
        QV_LOG(QVTraceError, kFunction,
               "parserHevcActiveParameterSets: active_seq_parameter_set_id(%d) is invalid!\n",
               static_cast<int>(active_seq_parameter_set_id));
        return QVResultFailed;
    }
    for (uint32_t i = 1; i < num_sps_ids_minus1; ++i) {  // D22: the last identifier is not read
        in.ue();
    }
    return QVResultOk;
}
