/// \file
/// NAL unit framing, SEI and HDR metadata for ITU-T H.264 and H.265 elementary streams.
///
/// Clauses are those of ITU-T H.264 (08/2021) and H.265 (08/2021).
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

/// NAL unit framing, SEI and HDR metadata.
///
/// Every operation is static, keeps no state between calls and only reads the buffers handed in; calls on
/// different buffers and records may run concurrently. Sizes and offsets are bytes. A size below 1 is an
/// empty buffer. No padding behind a buffer is needed. Exceptions of the caller's containers (std::bad_alloc,
/// std::length_error) pass through after the working copies are released; there are no others but those that
/// the host's own qvTraceLog throws.
class QV_NALU_API QVNaluParser {
public:
    /// One typed NAL unit.
    struct NaluInfo {
        uint32_t naluType;  ///< nal_unit_type: 0..31 (H.264 Table 7-1), 0..63 (H.265 Table 7-1)
        int32_t offset;     ///< of the first NAL unit header byte in the caller's buffer
        int32_t length;     ///< bytes, header included, start code or length field excluded

        /// H.264: nal_ref_idc 0 and nal_unit_type 1. H.265: an even type below 16, the sub-layer
        /// non-reference pictures and the types reserved for them.
        bool isNonReference;
    };

    /// \name Scanning and classification
    /// @{

    /// Tells whether a buffer begins with 00 00 01 or 00 00 00 01 (H.264/H.265 Annex B).
    ///
    /// \param data  null is allowed
    /// \param size  bytes at data
    /// \return true when it does and holds at least 4 bytes; false for null and for every buffer below
    ///         4 bytes, also for a bare 3-byte start code
    static bool isAnnexBData(const unsigned char* data, int size);

    /// Finds the NAL units of a byte stream (H.264/H.265 Annex B).
    ///
    /// A start code needs a byte behind it. One zero byte ahead of 00 00 01 belongs to the start code;
    /// further ones (trailing_zero_8bits) stay in the unit before. The byte behind a start code never begins
    /// another.
    ///
    /// \param data           the byte stream; null is allowed
    /// \param size           bytes at data
    /// \param[in,out] nalus  (offset, length) of each unit is appended in order. The list is not cleared:
    /// when
    ///                       it comes in filled, the first start code found closes the caller's last pair
    ///                       (its length becomes the distance to that start code), and if none is found that
    ///                       length becomes size - its offset.
    /// \return QVResultOk, or QVResultInvalidData when isAnnexBData is false; nalus is then untouched
    static int parserDataToNaluIdx(const unsigned char* data, int size,
                                   std::vector<std::pair<int, int>>& nalus);

    /// Finds the NAL units of a length-prefixed buffer (ISO/IEC 14496-15). A length of 0 gives an empty unit.
    /// A tail too short for a length field and one byte is dropped silently. A length that runs past the end
    /// ends the scan with an error line and a dump of the buffer; the units before it stay in the list.
    ///
    /// Works on a malloc'd copy, released on every path; if that cannot be had, no units are found.
    ///
    /// \param data           the buffer; null holds no units
    /// \param size           bytes at data
    /// \param[in,out] nalus  (offset, length) of each unit is appended in order
    /// \param lengthSize     bytes in each length field: 1, 2 or 4; any other value means 4
    /// \return always QVResultOk
    static int parserDataToNalus(const unsigned char* data, int size, std::vector<std::pair<int, int>>& nalus,
                                 int lengthSize);

    /// Types NAL units by the first byte of their headers (H.264 7.3.1, H.265 7.3.1.2). Left out are units
    /// with forbidden_zero_bit set, pairs with a negative offset or length, every unit of an unsupported
    /// codec, and, since the size of data is not known here, a pair of length 0 unless another pair of the
    /// list ends beyond its offset.
    ///
    /// \param data        the buffer that the pairs were found in, each of them inside it; null has no units
    /// \param nalus       (offset, length) of each unit
    /// \param[out] infos  cleared, then one entry for each unit that is not left out, in order
    /// \param codec       what the headers are of
    /// \return always QVResultOk
    static int parseNalusToNaluType(const unsigned char* data, const std::vector<std::pair<int, int>>& nalus,
                                    std::vector<NaluInfo>& infos, QVCodecID codec);

    /// Cuts a sample into NAL units and types them. A sample that is not Annex B although params says so has
    /// no units, which is no error.
    ///
    /// \param data        the sample; null has no units
    /// \param size        bytes at data
    /// \param[out] infos  cleared, then one entry for each unit, as parseNalusToNaluType
    /// \param params      the stream's codec, isAnnexB and nalLengthSize
    /// \return QVResultOk, or QVResultFailed with infos untouched when params is null (logged) or its codecId
    ///         is not supported (not logged)
    static int parserDataToNaluType(const unsigned char* data, int size, std::vector<NaluInfo>& infos,
                                    const QVCodecParameters* params);

    /// @}
    /// \name Key pictures
    /// @{

    /// Tells whether an access unit holds a key picture: a unit of one of the types 5 and 16 to 21. For H.265
    /// these are the IDR, CRA and BLA pictures and STSA_R, for H.264 the IDR slice and types without random
    /// access (Table 7-1 of each). Recovery points play no part, nor does forbidden_zero_bit.
    ///
    /// Annex B when isAnnexBData, else 4-byte length fields whatever the stream's own size; a length that
    /// runs past the end, or is negative as a signed 32-bit value, still types the byte behind it and the
    /// search goes on there. Nothing is logged.
    ///
    /// \param codec  what the headers are of
    /// \param data   the access unit; null is allowed
    /// \param size   bytes at data
    /// \return true when there is one; false also for null data, unsupported codecs and every failure
    static bool isKeyFrame(QVCodecID codec, const unsigned char* data, int size);

    /// @}
    /// \name Reframing
    /// @{

    /// Rewrites a byte stream (H.264/H.265 Annex B) with 4-byte big-endian length fields (ISO/IEC 14496-15).
    /// Zero bytes that parserDataToNaluIdx counts into a unit go along with it.
    ///
    /// \param data      the byte stream; must not point into out
    /// \param size      bytes at data
    /// \param[out] out  emptied and, when its capacity is below size, given a capacity of size; it grows from
    ///                  there
    /// \return QVResultOk, or QVResultInvalidData with out untouched when data is null, size is below 1, the
    ///         buffer does not begin with a start code, or holds no unit
    static int converAnnexBToAvcC(const unsigned char* data, int size, std::vector<unsigned char>& out);

    /// Rewrites a length-prefixed buffer (ISO/IEC 14496-15) with 4-byte start codes (H.264/H.265 Annex B)
    /// into a new buffer from qvMallocz.
    ///
    /// \param data          the buffer
    /// \param size          bytes at data
    /// \param lengthSize    as in parserDataToNalus
    /// \param[in,out] out   null behind it; receives the buffer, which is then the caller's to release with
    ///                      the host's matching free function
    /// \param[out] outSize  bytes of the new buffer
    /// \return QVResultOk;
    ///         QVResultInvalidData, nothing touched, when data is null, size is below 1, out is null or *out
    ///         is not;
    ///         QVResultInvalidData, outSize 0, when there are no units or the last does not end at the end of
    ///         the buffer (a length that runs past the end is also logged and dumped);
    ///         QVResultNoMemory, outSize 0, when the buffer cannot be allocated or would pass INT_MAX bytes
    static int connvertAvcCToAnnexB(const unsigned char* data, int size, int lengthSize, unsigned char** out,
                                    int& outSize);

    /// @}
    /// \name SEI messages
    ///
    /// Kept messages are appended to the caller's item list; nothing is ever removed from it, so items found
    /// before a failure stay. Payload bytes come from qvMalloc and are the caller's from then on. A walker
    /// works on a malloc'd copy of the unit, released on every path. requested lists the payloadType values
    /// to capture although no parser handles them; the first equal value counts.
    /// @{

    /// Walks one SEI unit of an access unit. Parsed records are dropped: what the caller sees are the items,
    /// the result and the log.
    ///
    /// \param codec          of the stream
    /// \param data           the access unit; null holds no SEI
    /// \param nalu           the unit's entry (H.264 type 6, H.265 types 39 and 40), inside the access unit;
    ///                       the type is not tested for H.264
    /// \param[in,out] items  kept messages are appended
    /// \param sps            a QVAvcSps or QVHevcSps by codec; null is allowed where no parser needs it
    /// \param requested      payloadType values to capture too
    /// \return what parserAvcDataToSei or parserHevcDataToSei does; QVResultOk for null data and for any
    /// other
    ///         codec
    static int parserDataToSei(QVCodecID codec, const unsigned char* data, const NaluInfo& nalu,
                               std::vector<QVSeiItem>& items, void* sps, const std::deque<int>& requested);

    /// Walks every message of an H.264 SEI RBSP (7.3.2.3). Types 1 and 5 are captured; 0, 4, 6, 45, 47 and 56
    /// are parsed and dropped; 147 is passed over; any other type is captured when requested. The walk ends
    /// at two zero bytes, at a byte 0x80 and with fewer than 3 bytes.
    ///
    /// \param data           just past the one-byte NAL unit header; null holds no message
    /// \param size           bytes at data
    /// \param[in,out] items  kept messages are appended
    /// \param sps            for buffering_period, which fails without; null is allowed
    /// \param requested      payloadType values to capture too
    /// \return QVResultOk, also for a unit below 3 bytes or when the copy cannot be had; QVResultFailed when
    /// a
    ///         payload runs past the unit (logged as a warning) or a capture fails; a parser's own failure as
    ///         it is
    static int parserAvcDataToSei(const unsigned char* data, int size, std::vector<QVSeiItem>& items,
                                  QVAvcSps* sps, const std::deque<int>& requested);

    /// Looks at the first message of an H.265 SEI RBSP (7.3.2.4).
    ///
    /// \param naluType       39 goes to parserHevcSeiPrefix, 40 to parserHevcSeiSuffix, any other is no SEI
    /// \param data           just past the two-byte NAL unit header; null holds no message
    /// \param size           bytes at data
    /// \param[in,out] items  kept messages are appended
    /// \param sps            not used; null is allowed
    /// \param requested      payloadType values to capture too
    /// \return QVResultFailed when the payload runs past the unit (logged as a warning, whatever the
    ///         naluType), otherwise what the prefix dispatcher returns, and QVResultOk for suffix and other
    ///         units
    static int parserHevcDataToSei(int naluType, const unsigned char* data, int size,
                                   std::vector<QVSeiItem>& items, QVHevcSps* sps,
                                   const std::deque<int>& requested);

    /// Dispatches one payload of a prefix unit (H.265 D.2.1). Types 1, 4, 5 and 137 are captured; 45, 47,
    /// 129, 144 and 256 (a picture hash) are parsed; 147 is passed over; any other type is captured when
    /// requested, else skipped.
    ///
    /// \param stream         stands at the payload
    /// \param payloadType    of the message header
    /// \param payloadSize    of the message header, bytes
    /// \param[in,out] items  kept messages are appended
    /// \param sps            not used; null is allowed
    /// \param requested      payloadType values to capture too
    /// \return the parser's or capture's result
    static int parserHevcSeiPrefix(QVByteStream& stream, int payloadType, int payloadSize,
                                   std::vector<QVSeiItem>& items, QVHevcSps* sps,
                                   const std::deque<int>& requested);

    /// Dispatches one payload of a suffix unit (H.265 D.2.1). Type 132 is parsed as a picture hash; then any
    /// type is captured when requested (a hash from where its parser stopped), else skipped.
    ///
    /// \param stream         stands at the payload
    /// \param payloadType    of the message header
    /// \param payloadSize    of the message header, bytes
    /// \param[in,out] items  kept messages are appended
    /// \param sps            not used; null is allowed
    /// \param requested      payloadType values to capture
    /// \return always QVResultOk
    static int parserHevcSeiSuffix(QVByteStream& stream, int payloadType, int payloadSize,
                                   std::vector<QVSeiItem>& items, QVHevcSps* sps,
                                   const std::deque<int>& requested);

    /// Reads one message header (H.264 7.3.2.3.1, H.265 7.3.5) by whole bytes.
    ///
    /// \param stream               stands at the header
    /// \param[in,out] payloadType  the header's is added, wrapping at 32 bits: start it at 0
    /// \param[in,out] payloadSize  the header's is added, wrapping at 32 bits: start it at 0; bytes
    /// \return QVResultOk, or QVResultFailed, logged as a warning, when fewer than payloadSize bytes are left
    ///         behind the header
    static int parserPayloadParams(QVByteStream& stream, int& payloadType, int& payloadSize);

    /// Captures a payload from the stream's position without emulation prevention bytes, zero bytes standing
    /// for what lies past the end. The plain bit offset stays.
    ///
    /// \param stream         stands at the payload
    /// \param payloadSize    bytes to capture
    /// \param[in,out] items  the item is appended; its payload, from qvMalloc, is the caller's
    /// \param codec          the item's
    /// \param payloadType    the item's
    /// \param requested      the item's isRequested
    /// \return QVResultOk, or QVResultFailed, nothing appended, when payloadSize is below 1 or qvMalloc fails
    static int fillSeiDataWithoutParsing(QVByteStream& stream, int payloadSize, std::vector<QVSeiItem>& items,
                                         QVCodecID codec, int payloadType, bool requested);

    /// Packs items into one side-data buffer through createQVSeiInfo, createSideDataFromQVSeiInfo and
    /// freepQVSeiInfo.
    ///
    /// \param items         the items, which stay as they are; those without payloadData keep their place as
    ///                      empty entries
    /// \param[out] out      receives the buffer, the caller's by the host's rules, or null when the host
    /// could
    ///                      not make it; what it held is not released
    /// \param[out] outSize  bytes of the buffer
    /// \return QVResultOk, or QVResultFailed, *out and outSize untouched, when out is null or there is no
    ///         description
    static int assembleSeiSideDataBuffer(const std::vector<QVSeiItem>& items, unsigned char** out,
                                         int& outSize);

    /// @}
    /// \name H.264 SEI payloads
    ///
    /// Each reads one payload from the stream's position with the plain cursor into a record that the caller
    /// zero-initialised, and stops where its syntax ends. payloadSize is in bytes. A null record is
    /// QVResultFailed, logged, with the stream untouched; running out of data is no failure: missing bits are
    /// 0 and skips that do not fit are not made.
    /// @{

    /// buffering_period (payloadType 0, H.264 D.1.2). The HRD fields of sps tell what is there.
    ///
    /// \param stream                stands at the payload
    /// \param payloadSize           not used
    /// \param[out] bufferingPeriod  the caller's record
    /// \param sps                   the active parameter set with its HRD fields; only read
    /// \return QVResultOk, or QVResultFailed, logged, for a null record or sps and for a seq_parameter_set_id
    ///         of which bits 5 to 7 are not 0; the record is then untouched
    static int parserAvcBufferingPeriod(QVByteStream& stream, int payloadSize,
                                        QVAvcSeiBufferingPeriod* bufferingPeriod, QVAvcSps* sps);

    /// pic_timing (payloadType 1, H.264 D.1.3), with the HRD and pic_struct fields of sps. A debug line tells
    /// ct_type and pic_struct. Not called by the walk.
    ///
    /// \param stream              stands at the payload
    /// \param payloadSize         not used
    /// \param[out] pictureTiming  the caller's record
    /// \param sps                 the active parameter set with its HRD and VUI fields; only read
    /// \return QVResultOk, or QVResultFailed, logged, for a null record or sps and for a pic_struct above 8:
    ///         the delays and pic_struct stay written, isValid is not set
    static int parserAvcPictureTiming(QVByteStream& stream, int payloadSize,
                                      QVAvcSeiPictureTiming* pictureTiming, QVAvcSps* sps);

    /// recovery_point (payloadType 6, H.264 D.1.8).
    ///
    /// \param stream              stands at the payload
    /// \param payloadSize         not used
    /// \param[out] recoveryPoint  the caller's record
    /// \return QVResultOk, or QVResultFailed, logged, for a null record and for a recovery_frame_cnt above
    ///         65535; the record is then untouched
    static int parserAvcRecoveryPoint(QVByteStream& stream, int payloadSize,
                                      QVAvcSeiRecoveryPoint* recoveryPoint);

    /// user_data_registered_itu_t_t35 (payloadType 4, H.264 D.1.6) of any country and provider: "GA94" (ATSC
    /// A/53 Part 4) goes to the caption walk, "DTG1" (ETSI TS 101 154) to the active format, any other
    /// identifier is skipped.
    ///
    /// \param stream       stands at the payload
    /// \param payloadSize  bytes
    /// \param[out] afd     the caller's record
    /// \param sps          not used; null is allowed
    /// \return QVResultOk, or QVResultFailed, logged, for a null record and for a payloadSize below 7; else
    ///         what the walk of captions or the active format returns
    static int parserAvcRegisteredUserData(QVByteStream& stream, int payloadSize, QVAvcSeiAfd* afd,
                                           QVAvcSps* sps);

    /// afd_data (ETSI TS 101 154 B.3).
    ///
    /// \param stream    stands behind the user_identifier
    /// \param size      bytes that follow the user_identifier
    /// \param[out] afd  the caller's record; untouched without active_format_flag
    /// \return QVResultOk, or QVResultFailed, logged, for a null record, a size below 1 and an
    ///         active_format_flag without a second byte
    static int parserAvcRegisteredUserDataAfd(QVByteStream& stream, int size, QVAvcSeiAfd* afd);

    /// Captions (ATSC A/53 Part 4 6.2), walked and not kept.
    ///
    /// \param stream  stands behind the user_identifier
    /// \param size    bytes that follow the user_identifier
    /// \return QVResultOk, or QVResultFailed, not logged, for a size below 3
    static int parserAvcRegisteredUserDataClosedCaption(QVByteStream& stream, int size);

    /// frame_packing_arrangement (payloadType 45, H.264 D.1.25).
    ///
    /// \param stream             stands at the payload
    /// \param payloadSize        not used
    /// \param[out] framePacking  the caller's record; of a cancellation only isValid, identifier and flag
    /// \return QVResultOk, or QVResultFailed, logged, for a null record
    static int parserAvcFramePackingArrangement(QVByteStream& stream, int payloadSize,
                                                QVAvcSeiFramePacking* framePacking);

    /// display_orientation (payloadType 47, H.264 D.1.27).
    ///
    /// \param stream                   stands at the payload
    /// \param payloadSize              not used
    /// \param[out] displayOrientation  the caller's record; of a cancellation only isValid
    /// \return QVResultOk, or QVResultFailed, logged, for a null record
    static int parserAvcDisplayOrientation(QVByteStream& stream, int payloadSize,
                                           QVAvcSeiDisplayOrientation* displayOrientation);

    /// alternative_transfer_characteristics (payloadType 147, H.264 D.1.32). Not called by the walk.
    ///
    /// \param stream                    stands at the payload
    /// \param payloadSize               not used
    /// \param[out] alternativeTransfer  the caller's record
    /// \return QVResultOk, or QVResultFailed, logged, for a null record
    static int parserAvcAlternativeTransfer(QVByteStream& stream, int payloadSize,
                                            QVAvcSeiAlternativeTransfer* alternativeTransfer);

    /// green_metadata (payloadType 56, ISO/IEC 23001-11).
    ///
    /// \param stream              stands at the payload
    /// \param payloadSize         not used
    /// \param[out] greenMetaData  the caller's record; what the message does not carry stays
    /// \return QVResultOk, or QVResultFailed, logged, for a null record
    static int parserAvcGreenMetaData(QVByteStream& stream, int payloadSize,
                                      QVAvcSeiGreenMetaData* greenMetaData);

    /// @}
    /// \name H.265 SEI payloads
    ///
    /// As the H.264 ones.
    /// @{

    /// mastering_display_colour_volume (payloadType 137, H.265 D.2.28), 24 bytes. Not called by the walk.
    ///
    /// \param stream                 stands at the payload
    /// \param payloadSize            not used
    /// \param[out] masteringDisplay  the caller's record, in the units of D.3.28
    /// \return QVResultOk, or QVResultFailed, logged, for a null record
    static int parserHevcMasteringDisplayInfo(QVByteStream& stream, int payloadSize,
                                              QVHevcSeiMasteringDisplay* masteringDisplay);

    /// content_light_level_info (payloadType 144, H.265 D.2.35), 4 bytes.
    ///
    /// \param stream             stands at the payload
    /// \param payloadSize        not used
    /// \param[out] contentLight  the caller's record, in cd/m2
    /// \return QVResultOk, or QVResultFailed, logged, for a null record
    static int parserHevcContentLightInfo(QVByteStream& stream, int payloadSize,
                                          QVHevcSeiContentLight* contentLight);

    /// alternative_transfer_characteristics (payloadType 147, H.265 D.2.38). Not called by the walk.
    ///
    /// \param stream                    stands at the payload
    /// \param payloadSize               not used
    /// \param[out] alternativeTransfer  the caller's record
    /// \return QVResultOk, or QVResultFailed, logged, for a null record
    static int parserHevcAlternativeTransfer(QVByteStream& stream, int payloadSize,
                                             QVHevcSeiAlternativeTransfer* alternativeTransfer);

    /// pic_timing (payloadType 1, H.265 D.2.3): the field parity, when frame_field_info_present_flag of sps
    /// is set; the rest of the payload is skipped. Not called by the walk.
    ///
    /// \param stream              stands at the payload
    /// \param payloadSize         bytes
    /// \param[out] pictureTiming  the caller's record; untouched without frame_field_info_present_flag
    /// \param sps                 the active parameter set with its VUI fields; only read
    /// \return QVResultOk, or QVResultFailed, logged, for a null record or sps
    static int parserHevcPictureTiming(QVByteStream& stream, int payloadSize,
                                       QVHevcSeiPictureTiming* pictureTiming, QVHevcSps* sps);

    /// decoded_picture_hash (payloadType 132, H.265 D.2.19): keeps MD5, skips CRC and checksum.
    ///
    /// \param stream            stands at the payload
    /// \param payloadSize       not used
    /// \param[out] pictureHash  the caller's record; untouched but by MD5
    /// \return QVResultOk, or QVResultFailed, logged, for a null record
    static int parserHevcPictureHash(QVByteStream& stream, int payloadSize,
                                     QVHevcSeiPictureHash* pictureHash);

    /// active_parameter_sets (payloadType 129, H.265 D.2.21): validated, not kept.
    ///
    /// \param stream       stands at the payload
    /// \param payloadSize  not used
    /// \return QVResultOk, or QVResultFailed, logged, for a num_sps_ids_minus1 above 15 and for a first
    ///         identifier above 15
    static int parserHevcActiveParameterSets(QVByteStream& stream, int payloadSize);

    /// frame_packing_arrangement (payloadType 45, H.265 D.2.16).
    ///
    /// \param stream             stands at the payload
    /// \param payloadSize        not used
    /// \param[out] framePacking  the caller's record; of a cancellation only isValid
    /// \return QVResultOk, or QVResultFailed, logged, for a null record
    static int parserHevcFramePacking(QVByteStream& stream, int payloadSize,
                                      QVHevcSeiFramePacking* framePacking);

    /// display_orientation (payloadType 47, H.265 D.2.17). Unless it cancels one, an item of type 47 is
    /// appended too, holding the orientation as NUL-terminated text from qvMallocz.
    ///
    /// \param stream                   stands at the payload
    /// \param payloadSize              not used
    /// \param[in,out] items            the text is appended; it is the caller's
    /// \param[out] displayOrientation  the caller's record; of a cancellation only isValid
    /// \return QVResultOk, or QVResultFailed, nothing appended, for a null record (logged) and when the text
    ///         cannot be allocated
    static int parserHevcDisplayOrientation(QVByteStream& stream, int payloadSize,
                                            std::vector<QVSeiItem>& items,
                                            QVHevcSeiDisplayOrientation* displayOrientation);

    /// user_data_registered_itu_t_t35 (payloadType 4, H.265 D.2.6) with captions (ATSC A/53 Part 4) of any
    /// country and provider, walked and not kept. Not called by the walk.
    ///
    /// \param stream       stands at the payload
    /// \param payloadSize  bytes
    /// \param a53Caption   only tested for null
    /// \return QVResultOk, or QVResultFailed, logged, for a null record and for a payloadSize below 7; else
    ///         what the walk of captions returns
    static int parserHevcRegisteredUserData(QVByteStream& stream, int payloadSize,
                                            QVHevcSeiA53Caption* a53Caption);

    /// Captions (ATSC A/53 Part 4 6.2), walked and not kept.
    ///
    /// \param stream       stands behind the user_identifier
    /// \param payloadSize  bytes that follow the user_identifier
    /// \param a53Caption   only tested for null
    /// \return QVResultOk, or QVResultFailed, logged, for a null record and for a payloadSize below 3
    static int parserHevcRegisteredUserDataClosedCaption(QVByteStream& stream, int payloadSize,
                                                         QVHevcSeiA53Caption* a53Caption);

    /// @}
    /// \name HDR metadata
    /// @{

    /// Reads a kept mastering display item (H.265 D.2.28) into *metadata. A short payload leaves the fields
    /// behind it 0, and so does, for all of them, a working copy that cannot be had. Logs nothing.
    ///
    /// \param item           codec H.265, payloadType 137; only read
    /// \param[out] metadata  the caller's record, in the units of H.265 D.3.28
    /// \return QVResultOk, or QVResultInvalidData, *metadata untouched, for null metadata, an item without
    ///         bytes and one of another codec or type
    static int fillHDR10StaticMetadataFromHevcMasteringDisplayInfoSei(const QVSeiItem& item,
                                                                      QVHDR10StaticMetadata* metadata);

    /// Hands a kept user_data_registered_itu_t_t35 item (H.265 D.2.6) and metadata, as they are, to the
    /// host's HDR Vivid parser (T/UWA 005.1).
    ///
    /// \param item      an item of any kind
    /// \param metadata  the host's record, the caller's
    /// \return the host's status
    static int fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(const QVSeiItem& item,
                                                                        QVHDRVividDynamicMetadata* metadata);

    /// @}
};

#endif
