// NAL unit framing, SEI and HDR metadata for ITU-T H.264 and H.265 elementary streams.
//
// Every operation is static, keeps no state between calls and only reads the buffers handed in; calls on
// different buffers and records may run concurrently. Sizes and offsets are bytes. A size below 1 is an empty
// buffer. No padding behind a buffer is needed. Exceptions of the caller's containers (std::bad_alloc,
// std::length_error) pass through after the working copies are released; there are no others but those that
// the host's own qvTraceLog throws.
#ifndef QV_DEMUXER_QVNALUPARSER_H
#define QV_DEMUXER_QVNALUPARSER_H

#include <stdint.h>

#include <deque>
#include <utility>
#include <vector>

#include "QVAvcSei.h"
#include "QVAvcSps.h"
#include "QVByteStream.h"
#include "QVCodecParameters.h"
#include "QVHDRMetadata.h"
#include "QVHevcSei.h"
#include "QVHevcSps.h"
#include "QVNaluExport.h"
#include "QVResult.h"
#include "QVSeiItem.h"

class QV_NALU_API QVNaluParser {
public:
    // One typed NAL unit.
    struct NaluInfo {
        uint32_t naluType;  // nal_unit_type: 0..31 (H.264 Table 7-1), 0..63 (H.265 Table 7-1)
        int32_t offset;     // of the first NAL unit header byte in the caller's buffer
        int32_t length;     // bytes, header included, start code or length field excluded

        // H.264: nal_ref_idc 0 and nal_unit_type 1. H.265: an even type below 16, the sub-layer
        // non-reference pictures and the types reserved for them.
        bool isNonReference;
    };

    // --- Scanning and classification ---

    // True when the buffer begins with 00 00 01 or 00 00 00 01 (Annex B) and holds at least 4 bytes.
    // False for null and for every buffer below 4 bytes, also for a bare 3-byte start code.
    static bool isAnnexBData(const unsigned char* data, int size);

    // Finds the NAL units of an Annex B byte stream (H.264/H.265 Annex B) and appends (offset, length) of
    // each to nalus in order.
    //
    // A start code needs a byte behind it. One zero byte ahead of 00 00 01 belongs to the start code; further
    // ones (trailing_zero_8bits) stay in the unit before. The byte behind a start code never begins another.
    // nalus is not cleared: when it comes in filled, the first start code found closes the caller's last pair
    // (its length becomes the distance to that start code), and if none is found that length becomes size -
    // its offset.
    //
    // Returns QVResultOk, or QVResultInvalidData when isAnnexBData is false; nalus is then untouched.
    static int parserDataToNaluIdx(const unsigned char* data, int size,
                                   std::vector<std::pair<int, int>>& nalus);

    // Finds the NAL units of a length-prefixed buffer (ISO/IEC 14496-15) and appends (offset, length) of each
    // to nalus in order; a length of 0 gives an empty unit. lengthSize is 1, 2 or 4 bytes, any other value
    // means 4. A tail too short for a length field and one byte is dropped silently.
    //
    // Works on a malloc'd copy, released on every path; if that cannot be had, no units are found.
    //
    // Always returns QVResultOk. A length that runs past the end ends the scan with an error line and a dump
    // of the buffer; the units before it stay in the list. Null data holds no units.
    static int parserDataToNalus(const unsigned char* data, int size, std::vector<std::pair<int, int>>& nalus,
                                 int lengthSize);

    // Clears infos and types each unit of nalus. Left out are units with forbidden_zero_bit set, pairs with a
    // negative offset or length, every unit of an unsupported codec, and, since the size of data is not known
    // here, a pair of length 0 unless another pair of the list ends beyond its offset. Null data has no
    // units. Every pair has to lie inside the buffer at data. Always returns QVResultOk.
    static int parseNalusToNaluType(const unsigned char* data, const std::vector<std::pair<int, int>>& nalus,
                                    std::vector<NaluInfo>& infos, QVCodecID codec);

    // Cuts a sample into NAL units as params tells (isAnnexB, nalLengthSize) and types them into infos, which
    // is cleared first. A sample that is not Annex B although params says so has no units, which is no error.
    //
    // Returns QVResultOk, or QVResultFailed with infos untouched when params is null (logged) or its codecId
    // is not supported (not logged).
    static int parserDataToNaluType(const unsigned char* data, int size, std::vector<NaluInfo>& infos,
                                    const QVCodecParameters* params);

    // --- Key pictures ---

    // True when a unit of the access unit has one of the types 5 and 16 to 21: for H.265 the IDR, CRA and BLA
    // pictures and STSA_R, for H.264 the IDR slice and types without random access. Recovery points play no
    // part. Annex B when isAnnexBData, else 4-byte length fields whatever the stream's own size; a length
    // that runs past the end, or is negative as a signed 32-bit value, still types the byte behind it and the
    // search goes on there. False for null data, unsupported codecs and every failure; nothing is logged.
    static bool isKeyFrame(QVCodecID codec, const unsigned char* data, int size);

    // --- Reframing ---

    // Rewrites an Annex B byte stream with 4-byte big-endian length fields into out, replacing what it held.
    // Zero bytes that parserDataToNaluIdx counts into a unit go along with it.
    //
    // out is emptied and, when its capacity is below size, given a capacity of size; it grows from there.
    //
    // Returns QVResultOk, or QVResultInvalidData with out untouched when data is null, size is below 1, the
    // buffer does not begin with a start code, or holds no unit. data must not point into out.
    static int converAnnexBToAvcC(const unsigned char* data, int size, std::vector<unsigned char>& out);

    // Rewrites a length-prefixed buffer (lengthSize as in parserDataToNalus) with 4-byte start codes into a
    // new buffer from qvMallocz. *out receives the buffer, which is then the caller's to release with the
    // host's matching free function, and outSize its bytes.
    //
    // Returns QVResultOk;
    // QVResultInvalidData, nothing touched, when data is null, size is below 1, out is null or *out is not;
    // QVResultInvalidData, outSize 0, when there are no units or the last does not end at the end of the
    // buffer (a length that runs past the end is also logged and dumped);
    // QVResultNoMemory, outSize 0, when the buffer cannot be allocated or would pass INT_MAX bytes.
    static int connvertAvcCToAnnexB(const unsigned char* data, int size, int lengthSize, unsigned char** out,
                                    int& outSize);

    // --- SEI messages ---
    //
    // Kept messages are appended to the caller's item list; nothing is ever removed from it, so items found
    // before a failure stay. Payload bytes come from qvMalloc and are the caller's from then on. A walker
    // works on a malloc'd copy of the unit, released on every path. requested lists the payloadType values to
    // capture although no parser handles them; the first equal value counts.

    // Walks one SEI unit of an access unit: nalu is its entry (H.264 type 6, H.265 types 39 and 40), data the
    // access unit. sps is a QVAvcSps* or QVHevcSps* by codec; null is allowed where no parser needs it.
    // Parsed records are dropped: what the caller sees are the items, the result and the log.
    //
    // Returns what parserAvcDataToSei or parserHevcDataToSei does; QVResultOk for null data and for any other
    // codec. The unit's type is not tested for H.264.
    static int parserDataToSei(QVCodecID codec, const unsigned char* data, const NaluInfo& nalu,
                               std::vector<QVSeiItem>& items, void* sps, const std::deque<int>& requested);

    // Walks every message of an H.264 SEI RBSP; data points just past the one-byte NAL unit header. Types 1
    // and 5 are captured; 0, 4, 6, 45, 47 and 56 are parsed and dropped; 147 is passed over; any other type
    // is captured when requested. The walk ends at two zero bytes, at a byte 0x80 and with fewer than 3
    // bytes.
    //
    // Returns QVResultOk, also for a unit below 3 bytes or when the copy cannot be had; QVResultFailed when a
    // payload runs past the unit (logged as a warning) or a capture fails; a parser's own failure as it is.
    static int parserAvcDataToSei(const unsigned char* data, int size, std::vector<QVSeiItem>& items,
                                  QVAvcSps* sps, const std::deque<int>& requested);

    // Looks at the first message of an H.265 SEI RBSP; data points just past the two-byte NAL unit header.
    // naluType 39 goes to parserHevcSeiPrefix, 40 to parserHevcSeiSuffix, any other is no SEI unit.
    //
    // Returns QVResultFailed when the payload runs past the unit (logged as a warning, whatever the
    // naluType), otherwise what the prefix dispatcher returns, and QVResultOk for suffix and other units.
    static int parserHevcDataToSei(int naluType, const unsigned char* data, int size,
                                   std::vector<QVSeiItem>& items, QVHevcSps* sps,
                                   const std::deque<int>& requested);

    // Dispatches one payload of a prefix unit, the stream standing at it. Types 1, 4, 5 and 137 are captured;
    // 45, 47, 129, 144 and 256 (a picture hash) are parsed; 147 is passed over; any other type is captured
    // when requested, else skipped. sps is not used. Returns the parser's or capture's result.
    static int parserHevcSeiPrefix(QVByteStream& stream, int payloadType, int payloadSize,
                                   std::vector<QVSeiItem>& items, QVHevcSps* sps,
                                   const std::deque<int>& requested);

    // Dispatches one payload of a suffix unit. Type 132 is parsed as a picture hash; then any type is
    // captured when requested (a hash from where its parser stopped), else skipped. Always returns
    // QVResultOk.
    static int parserHevcSeiSuffix(QVByteStream& stream, int payloadType, int payloadSize,
                                   std::vector<QVSeiItem>& items, QVHevcSps* sps,
                                   const std::deque<int>& requested);

    // Reads one message header (H.264/H.265 7.3.2.3.1) by whole bytes and adds payloadType and payloadSize,
    // wrapping at 32 bits, to the values passed in: start them at 0.
    // Returns QVResultFailed, logged as a warning, when fewer than payloadSize bytes are left behind it.
    static int parserPayloadParams(QVByteStream& stream, int& payloadType, int& payloadSize);

    // Captures payloadSize bytes from the stream's position without emulation prevention bytes, zero bytes
    // standing for what lies past the end, and appends them to items. The plain bit offset stays.
    // Returns QVResultFailed, nothing appended, when payloadSize is below 1 or qvMalloc fails.
    static int fillSeiDataWithoutParsing(QVByteStream& stream, int payloadSize, std::vector<QVSeiItem>& items,
                                         QVCodecID codec, int payloadType, bool requested);

    // Packs items into one side-data buffer through createQVSeiInfo, createSideDataFromQVSeiInfo and
    // freepQVSeiInfo. Items without payloadData keep their place as empty entries. *out receives the buffer,
    // the caller's by the host's rules, or null when the host could not make it; outSize its bytes.
    // Returns QVResultFailed, *out and outSize untouched, when out is null or there is no description.
    static int assembleSeiSideDataBuffer(const std::vector<QVSeiItem>& items, unsigned char** out,
                                         int& outSize);

    // --- H.264 SEI payloads ---
    //
    // Each reads one payload from the stream's position with the plain cursor into a record that the caller
    // zero-initialised, and stops where its syntax ends. payloadSize is in bytes. A null record is
    // QVResultFailed, logged, with the stream untouched; running out of data is no failure: missing bits are
    // 0 and skips that do not fit are not made.

    // buffering_period (payloadType 0, D.1.2). The HRD fields of sps tell what is there: record and sps must
    // not be null. QVResultFailed, logged, also for a seq_parameter_set_id of which bits 5 to 7 are not 0;
    // the record is then untouched. payloadSize is not used.
    static int parserAvcBufferingPeriod(QVByteStream& stream, int payloadSize,
                                        QVAvcSeiBufferingPeriod* bufferingPeriod, QVAvcSps* sps);

    // pic_timing (payloadType 1, D.1.3), with the HRD and pic_struct fields of sps, which must not be null.
    // QVResultFailed, logged, also for a pic_struct above 8: the delays and pic_struct stay written, isValid
    // is not set. A debug line tells ct_type and pic_struct. Not called by the walk. payloadSize is not used.
    static int parserAvcPictureTiming(QVByteStream& stream, int payloadSize,
                                      QVAvcSeiPictureTiming* pictureTiming, QVAvcSps* sps);

    // recovery_point (payloadType 6, D.1.8). QVResultFailed, logged, also for a recovery_frame_cnt above
    // 65535; the record is then untouched. payloadSize is not used.
    static int parserAvcRecoveryPoint(QVByteStream& stream, int payloadSize,
                                      QVAvcSeiRecoveryPoint* recoveryPoint);

    // user_data_registered_itu_t_t35 (payloadType 4, D.1.6) of any country and provider: "GA94" goes to the
    // caption walk, "DTG1" to the active format, any other identifier is skipped. QVResultFailed, logged,
    // also for a payloadSize below 7. sps is not used.
    static int parserAvcRegisteredUserData(QVByteStream& stream, int payloadSize, QVAvcSeiAfd* afd,
                                           QVAvcSps* sps);

    // afd_data (ETSI TS 101 154 B.3); size is what follows the user_identifier. QVResultFailed, logged, also
    // for a size below 1 and for an active_format_flag without a second byte.
    static int parserAvcRegisteredUserDataAfd(QVByteStream& stream, int size, QVAvcSeiAfd* afd);

    // A/53 captions, walked and not kept; size is what follows the user_identifier. QVResultFailed, not
    // logged, for a size below 3.
    static int parserAvcRegisteredUserDataClosedCaption(QVByteStream& stream, int size);

    // frame_packing_arrangement (payloadType 45, D.1.25). payloadSize is not used.
    static int parserAvcFramePackingArrangement(QVByteStream& stream, int payloadSize,
                                                QVAvcSeiFramePacking* framePacking);

    // display_orientation (payloadType 47, D.1.27). payloadSize is not used.
    static int parserAvcDisplayOrientation(QVByteStream& stream, int payloadSize,
                                           QVAvcSeiDisplayOrientation* displayOrientation);

    // alternative_transfer_characteristics (payloadType 147, D.1.32). Not called by the walk. payloadSize is
    // not used.
    static int parserAvcAlternativeTransfer(QVByteStream& stream, int payloadSize,
                                            QVAvcSeiAlternativeTransfer* alternativeTransfer);

    // green_metadata (payloadType 56, ISO/IEC 23001-11). payloadSize is not used.
    static int parserAvcGreenMetaData(QVByteStream& stream, int payloadSize,
                                      QVAvcSeiGreenMetaData* greenMetaData);

    // --- H.265 SEI payloads ---
    //
    // As the H.264 ones.

    // mastering_display_colour_volume (payloadType 137, D.2.28), 24 bytes. Not called by the walk.
    // payloadSize is not used.
    static int parserHevcMasteringDisplayInfo(QVByteStream& stream, int payloadSize,
                                              QVHevcSeiMasteringDisplay* masteringDisplay);

    // content_light_level_info (payloadType 144, D.2.35), 4 bytes. payloadSize is not used.
    static int parserHevcContentLightInfo(QVByteStream& stream, int payloadSize,
                                          QVHevcSeiContentLight* contentLight);

    // alternative_transfer_characteristics (payloadType 147, D.2.38). Not called by the walk. payloadSize is
    // not used.
    static int parserHevcAlternativeTransfer(QVByteStream& stream, int payloadSize,
                                             QVHevcSeiAlternativeTransfer* alternativeTransfer);

    // pic_timing (payloadType 1, D.2.3): the field parity, when frame_field_info_present_flag of sps is set;
    // the rest of payloadSize bytes is skipped. Record and sps must not be null. Not called by the walk.
    static int parserHevcPictureTiming(QVByteStream& stream, int payloadSize,
                                       QVHevcSeiPictureTiming* pictureTiming, QVHevcSps* sps);

    // decoded_picture_hash (payloadType 132, D.2.19): keeps MD5, skips CRC and checksum. payloadSize is not
    // used.
    static int parserHevcPictureHash(QVByteStream& stream, int payloadSize,
                                     QVHevcSeiPictureHash* pictureHash);

    // active_parameter_sets (payloadType 129, D.2.21): validated, not kept. QVResultFailed, logged, for a
    // num_sps_ids_minus1 above 15 and for a first identifier above 15. payloadSize is not used.
    static int parserHevcActiveParameterSets(QVByteStream& stream, int payloadSize);

    // frame_packing_arrangement (payloadType 45, D.2.16). payloadSize is not used.
    static int parserHevcFramePacking(QVByteStream& stream, int payloadSize,
                                      QVHevcSeiFramePacking* framePacking);

    // display_orientation (payloadType 47, D.2.17). Unless it cancels one, an item of type 47 is appended
    // too, holding the orientation as NUL-terminated text from qvMallocz. QVResultFailed, nothing appended,
    // also when the text cannot be allocated. payloadSize is not used.
    static int parserHevcDisplayOrientation(QVByteStream& stream, int payloadSize,
                                            std::vector<QVSeiItem>& items,
                                            QVHevcSeiDisplayOrientation* displayOrientation);

    // user_data_registered_itu_t_t35 (payloadType 4, D.2.6) with A/53 captions of any country and provider,
    // walked and not kept: the record is only tested for null. QVResultFailed, logged, also for a payloadSize
    // below 7. Not called by the walk.
    static int parserHevcRegisteredUserData(QVByteStream& stream, int payloadSize,
                                            QVHevcSeiA53Caption* a53Caption);

    // A/53 captions behind the user_identifier. QVResultFailed, logged, also for a payloadSize below 3.
    static int parserHevcRegisteredUserDataClosedCaption(QVByteStream& stream, int payloadSize,
                                                         QVHevcSeiA53Caption* a53Caption);

    // --- HDR metadata ---

    // Reads a kept mastering display item (codec H.265, payloadType 137) into *metadata. A short payload
    // leaves the fields behind it 0, and so does, for all of them, a working copy that cannot be had.
    // Returns QVResultInvalidData, *metadata untouched, for null metadata, an item without bytes and one of
    // another codec or type. Logs nothing.
    static int fillHDR10StaticMetadataFromHevcMasteringDisplayInfoSei(const QVSeiItem& item,
                                                                      QVHDR10StaticMetadata* metadata);

    // Hands a kept user_data_registered_itu_t_t35 item and metadata, as they are, to the host's HDR Vivid
    // parser and returns its status.
    static int fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(const QVSeiItem& item,
                                                                        QVHDRVividDynamicMetadata* metadata);
};

#endif
