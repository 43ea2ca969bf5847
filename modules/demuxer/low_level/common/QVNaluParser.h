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
/// Every operation is static, keeps no state between calls and only reads the input buffers; calls on
/// different buffers and records may run concurrently. Sizes and offsets are in bytes. A size below 1 means
/// an empty buffer. No padding after a buffer is needed. Exceptions of the caller's containers
/// (std::bad_alloc, std::length_error) and of the host's own qvTraceLog pass through after the working copies
/// have been released; there are no others.
class QV_NALU_API QVNaluParser {
public:
    /// One typed NAL unit.
    struct NaluInfo {
        uint32_t naluType;  ///< nal_unit_type: 0..31 (H.264 Table 7-1), 0..63 (H.265 Table 7-1)
        int32_t offset;     ///< of the first NAL unit header byte in the caller's buffer
        int32_t length;     ///< bytes, header included, start code or length field excluded

        /// H.264: nal_ref_idc 0 and nal_unit_type 1. H.265: an even type below 16, which is a sub-layer
        /// non-reference picture or a type reserved for one.
        bool isNonReference;
    };

    /// \name Scanning and classification
    /// @{

    /// Reports whether a buffer begins with 00 00 01 or 00 00 00 01 (H.264/H.265 Annex B).
    ///
    /// \param data  null is allowed
    /// \param size  bytes at data
    /// \return true when it does and holds at least 4 bytes; false for null and for every buffer below 4
    ///         bytes, also for a 3-byte start code alone
    static bool isAnnexBData(const unsigned char* data, int size);

    /// Finds the NAL units of a byte stream (H.264/H.265 Annex B).
    ///
    /// A start code needs a byte after it. One zero byte before 00 00 01 belongs to the start code; further
    /// ones (trailing_zero_8bits) stay in the previous unit. The byte after a start code never begins
    /// another.
    ///
    /// \param data           the byte stream; null is allowed
    /// \param size           bytes at data
    /// \param[in,out] nalus  (offset, length) of each unit is appended in order. The list is not cleared: if
    ///                       it is not empty, the length of its last pair is first set to the distance to the
    ///                       first start code, or to size - its offset if there is none.
    /// \retval QVResultOk           the buffer was scanned
    /// \retval QVResultInvalidData  isAnnexBData is false; nalus is unchanged
    static int parserDataToNaluIdx(const unsigned char* data, int size,
                                   std::vector<std::pair<int, int>>& nalus);

    /// Finds the NAL units of a length-prefixed buffer (ISO/IEC 14496-15). A length of 0 gives an empty unit.
    /// A tail too short for a length field and one byte is dropped silently. A length that runs past the end
    /// ends the scan, is logged as an error and the buffer is dumped; the units before it stay in the list.
    ///
    /// Works on a malloc'd copy, which is released on every path. If its allocation fails, no units are
    /// found. Each length field is read through an array of its size from the non-throwing operator new[]; if
    /// that allocation fails, the length counts as 0.
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
    /// codec, and pairs of length 0 unless another pair of the list ends after their offset: the size of data
    /// is not known here.
    ///
    /// \param data        the buffer that contains the units; null has no units
    /// \param nalus       (offset, length) of each unit, inside the buffer
    /// \param[out] infos  cleared, then one entry for each unit that is not left out, in order
    /// \param codec       codec of the units
    /// \return always QVResultOk
    static int parseNalusToNaluType(const unsigned char* data, const std::vector<std::pair<int, int>>& nalus,
                                    std::vector<NaluInfo>& infos, QVCodecID codec);

    /// Splits a sample into NAL units and types them. A sample that is not Annex B although params says so
    /// has no units, which is not an error.
    ///
    /// \param data        the sample; null has no units
    /// \param size        bytes at data
    /// \param[out] infos  cleared, then one entry for each unit, as in parseNalusToNaluType
    /// \param params      the stream's codec, isAnnexB and nalLengthSize
    /// \retval QVResultOk      infos is filled
    /// \retval QVResultFailed  params is null (logged) or its codecId is not supported (not logged); infos is
    ///                         unchanged
    static int parserDataToNaluType(const unsigned char* data, int size, std::vector<NaluInfo>& infos,
                                    const QVCodecParameters* params);

    /// @}
    /// \name Key pictures
    /// @{

    /// Reports whether an access unit holds a key picture: a unit of one of the types 5 and 16 to 21. For
    /// H.265 these are the IDR, CRA and BLA pictures and STSA_R, for H.264 the IDR slice and types without
    /// random access (Table 7-1 of each). Recovery points and forbidden_zero_bit are not considered.
    ///
    /// Reads Annex B when isAnnexBData is true, otherwise 4-byte length fields whatever the stream's own
    /// size. After a length that runs past the end, or is negative as a signed 32-bit value, the next byte is
    /// still typed and the search continues there. Nothing is logged.
    ///
    /// \param codec  codec of the access unit
    /// \param data   the access unit; null is allowed
    /// \param size   bytes at data
    /// \return true when there is one; false also for null data, unsupported codecs and every failure
    static bool isKeyFrame(QVCodecID codec, const unsigned char* data, int size);

    /// @}
    /// \name Reframing
    /// @{

    /// Rewrites a byte stream (H.264/H.265 Annex B) with 4-byte big-endian length fields (ISO/IEC 14496-15).
    /// Zero bytes that parserDataToNaluIdx counts into a unit are kept with it.
    ///
    /// \param data      the byte stream; must not point into out
    /// \param size      bytes at data
    /// \param[out] out  emptied and, when its capacity is below size, given a capacity of size; it grows from
    ///                  there
    /// \retval QVResultOk           out holds the units
    /// \retval QVResultInvalidData  data is null, size is below 1, or the buffer does not begin with a start
    ///                              code or holds no unit; out is unchanged
    static int converAnnexBToAvcC(const unsigned char* data, int size, std::vector<unsigned char>& out);

    /// Rewrites a length-prefixed buffer (ISO/IEC 14496-15) with 4-byte start codes (H.264/H.265 Annex B)
    /// into a new buffer from qvMallocz.
    ///
    /// \param data          the buffer
    /// \param size          bytes at data
    /// \param lengthSize    as in parserDataToNalus
    /// \param[in,out] out   points to null; receives the buffer, which the caller then owns and releases with
    ///                      the host's matching free function
    /// \param[out] outSize  bytes of the new buffer
    /// \retval QVResultOk           *out and outSize are set
    /// \retval QVResultInvalidData  data is null, size is below 1, out is null or *out is not null: nothing
    ///                              is changed. Or there are no units or the last one does not end at the end
    ///                              of the buffer: outSize is 0. A length that runs past the end is also
    ///                              logged and dumped.
    /// \retval QVResultNoMemory     the buffer cannot be allocated or would exceed INT_MAX bytes; outSize is
    ///                              0
    static int connvertAvcCToAnnexB(const unsigned char* data, int size, int lengthSize, unsigned char** out,
                                    int& outSize);

    /// @}
    /// \name SEI messages
    ///
    /// Kept messages are appended to the caller's item list; nothing is ever removed from it, so items found
    /// before a failure stay. Payload bytes come from qvMalloc and belong to the caller. A walker works on a
    /// malloc'd copy of the unit, which is released on every path. requested lists the payloadType values to
    /// capture although no parser handles them; only the first of equal values counts.
    /// @{

    /// Walks one SEI unit of an access unit. Parsed records are dropped: the caller gets the items, the
    /// result and the log.
    ///
    /// \param codec          codec of the stream
    /// \param data           the access unit; null holds no SEI
    /// \param nalu           the unit's entry (H.264 type 6, H.265 types 39 and 40), inside the access unit;
    ///                       the type is not tested for H.264
    /// \param[in,out] items  kept messages are appended
    /// \param sps            a QVAvcSps or QVHevcSps by codec; null is allowed where no parser needs it
    /// \param requested      payloadType values to capture too
    /// \return the result of parserAvcDataToSei or parserHevcDataToSei; QVResultOk for null data and for any
    ///         other codec
    static int parserDataToSei(QVCodecID codec, const unsigned char* data, const NaluInfo& nalu,
                               std::vector<QVSeiItem>& items, void* sps, const std::deque<int>& requested);

    /// Walks every message of an H.264 SEI RBSP (7.3.2.3). Types 1 and 5 are captured; 0, 4, 6, 45, 47 and 56
    /// are parsed and dropped; 147 is skipped; any other type is captured when requested. The walk ends at
    /// two zero bytes, at a byte 0x80 and when fewer than 3 bytes are left.
    ///
    /// \param data           the byte after the one-byte NAL unit header; null holds no message
    /// \param size           bytes at data
    /// \param[in,out] items  kept messages are appended
    /// \param sps            for buffering_period, which fails without it; null is allowed
    /// \param requested      payloadType values to capture too
    /// \retval QVResultOk      the walk ended; also for a unit below 3 bytes and when the copy cannot be
    ///                         allocated
    /// \retval QVResultFailed  a payload runs past the unit (logged as a warning), or a parser or a capture
    ///                         failed
    static int parserAvcDataToSei(const unsigned char* data, int size, std::vector<QVSeiItem>& items,
                                  QVAvcSps* sps, const std::deque<int>& requested);

    /// Reads the first message of an H.265 SEI RBSP (7.3.2.4).
    ///
    /// \param naluType       39 calls parserHevcSeiPrefix, 40 parserHevcSeiSuffix; any other is not an SEI
    ///                       unit
    /// \param data           the byte after the two-byte NAL unit header; null holds no message
    /// \param size           bytes at data
    /// \param[in,out] items  kept messages are appended
    /// \param sps            not used; null is allowed
    /// \param requested      payloadType values to capture too
    /// \retval QVResultOk      also for every result of a suffix unit, and for other units
    /// \retval QVResultFailed  the payload runs past the unit (logged as a warning, whatever the naluType),
    ///                         or parserHevcSeiPrefix failed
    static int parserHevcDataToSei(int naluType, const unsigned char* data, int size,
                                   std::vector<QVSeiItem>& items, QVHevcSps* sps,
                                   const std::deque<int>& requested);

    /// Dispatches one payload of a prefix unit (H.265 D.2.1). Types 1, 4, 5 and 137 are captured; 45, 47,
    /// 129, 144 and 256 (a picture hash) are parsed; 147 is skipped; any other type is captured when
    /// requested, otherwise skipped.
    ///
    /// \param stream         at the payload
    /// \param payloadType    of the message header
    /// \param payloadSize    of the message header, bytes
    /// \param[in,out] items  kept messages are appended
    /// \param sps            not used; null is allowed
    /// \param requested      payloadType values to capture too
    /// \return the result of the parser or the capture
    static int parserHevcSeiPrefix(QVByteStream& stream, int payloadType, int payloadSize,
                                   std::vector<QVSeiItem>& items, QVHevcSps* sps,
                                   const std::deque<int>& requested);

    /// Dispatches one payload of a suffix unit (H.265 D.2.1). Type 132 is parsed as a picture hash; then any
    /// type is captured when requested (a hash from where its parser stopped), otherwise skipped.
    ///
    /// \param stream         at the payload
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
    /// \param stream               at the header
    /// \param[in,out] payloadType  the header's is added, wrapping at 32 bits: start it at 0
    /// \param[in,out] payloadSize  the header's is added, wrapping at 32 bits: start it at 0; bytes
    /// \retval QVResultOk      the stream is at the payload
    /// \retval QVResultFailed  fewer than payloadSize bytes follow the header; logged as a warning
    static int parserPayloadParams(QVByteStream& stream, int& payloadType, int& payloadSize);

    /// Captures a payload from the stream's position without emulation prevention bytes. Bytes past the end
    /// are zero. The plain bit offset is not changed.
    ///
    /// \param stream         at the payload
    /// \param payloadSize    bytes to capture
    /// \param[in,out] items  the item is appended; its payload, from qvMalloc, belongs to the caller
    /// \param codec          the item's
    /// \param payloadType    the item's
    /// \param requested      the item's isRequested
    /// \retval QVResultOk      the item is appended
    /// \retval QVResultFailed  payloadSize is below 1 or qvMalloc fails; nothing is appended
    static int fillSeiDataWithoutParsing(QVByteStream& stream, int payloadSize, std::vector<QVSeiItem>& items,
                                         QVCodecID codec, int payloadType, bool requested);

    /// Packs items into one side-data buffer through createQVSeiInfo, createSideDataFromQVSeiInfo and
    /// freepQVSeiInfo.
    ///
    /// \param items         the items; not changed. Items without payloadData become empty entries in their
    ///                      place.
    /// \param[out] out      receives the buffer, which the caller owns by the host's rules, or null when the
    ///                      host could not make it; a buffer it held before is not released
    /// \param[out] outSize  bytes of the buffer
    /// \retval QVResultOk      *out is set
    /// \retval QVResultFailed  out is null or the host returned no description; *out and outSize are
    ///                         unchanged
    static int assembleSeiSideDataBuffer(const std::vector<QVSeiItem>& items, unsigned char** out,
                                         int& outSize);

    /// @}
    /// \name H.264 SEI payloads
    ///
    /// Each operation reads one payload with the plain cursor, from the stream's position, into a record that
    /// the caller has zero-initialised, and stops where its syntax ends. payloadSize is in bytes. The end of
    /// the data is not a failure: missing bits are 0 and skips that do not fit have no effect.
    ///
    /// Each returns QVResultOk or QVResultFailed. Failures are logged as errors. A null record is a failure
    /// of every operation, and so is a null sps where one is read; the stream is then unchanged. Other
    /// failures are listed with the operation.
    /// @{

    /// buffering_period (payloadType 0, H.264 D.1.2). The HRD fields of sps determine its syntax.
    ///
    /// \param stream                at the payload
    /// \param payloadSize           not used
    /// \param[out] bufferingPeriod  the caller's record
    /// \param sps                   the active parameter set with its HRD fields; only read
    /// \retval QVResultOk      the record is filled
    /// \retval QVResultFailed  bits 5 to 7 of seq_parameter_set_id are not 0; the record is unchanged
    static int parserAvcBufferingPeriod(QVByteStream& stream, int payloadSize,
                                        QVAvcSeiBufferingPeriod* bufferingPeriod, QVAvcSps* sps);

    /// pic_timing (payloadType 1, H.264 D.1.3), with the HRD and pic_struct fields of sps. Logs ct_type and
    /// pic_struct at debug level. Not called by the walk.
    ///
    /// \param stream              at the payload
    /// \param payloadSize         not used
    /// \param[out] pictureTiming  the caller's record
    /// \param sps                 the active parameter set with its HRD and VUI fields; only read
    /// \retval QVResultOk      the record is filled
    /// \retval QVResultFailed  pic_struct is above 8; the delays and pic_struct stay written, isValid is not
    ///                         set
    static int parserAvcPictureTiming(QVByteStream& stream, int payloadSize,
                                      QVAvcSeiPictureTiming* pictureTiming, QVAvcSps* sps);

    /// recovery_point (payloadType 6, H.264 D.1.8).
    ///
    /// \param stream              at the payload
    /// \param payloadSize         not used
    /// \param[out] recoveryPoint  the caller's record
    /// \retval QVResultOk      the record is filled
    /// \retval QVResultFailed  recovery_frame_cnt is above 65535; the record is unchanged
    static int parserAvcRecoveryPoint(QVByteStream& stream, int payloadSize,
                                      QVAvcSeiRecoveryPoint* recoveryPoint);

    /// user_data_registered_itu_t_t35 (payloadType 4, H.264 D.1.6) of any country and provider. "GA94" (ATSC
    /// A/53 Part 4) is handled by parserAvcRegisteredUserDataClosedCaption, "DTG1" (ETSI TS 101 154) by
    /// parserAvcRegisteredUserDataAfd; any other identifier is skipped.
    ///
    /// \param stream       at the payload
    /// \param payloadSize  bytes
    /// \param[out] afd     the caller's record
    /// \param sps          not used; null is allowed
    /// \retval QVResultOk      the payload was read or skipped
    /// \retval QVResultFailed  payloadSize is below 7, or the operation for the identifier failed
    static int parserAvcRegisteredUserData(QVByteStream& stream, int payloadSize, QVAvcSeiAfd* afd,
                                           QVAvcSps* sps);

    /// afd_data (ETSI TS 101 154 B.3).
    ///
    /// \param stream    at the byte after the user_identifier
    /// \param size      bytes that follow the user_identifier
    /// \param[out] afd  the caller's record; unchanged without active_format_flag
    /// \retval QVResultOk      the payload was read
    /// \retval QVResultFailed  size is below 1, or active_format_flag is 1 and size is 1
    static int parserAvcRegisteredUserDataAfd(QVByteStream& stream, int size, QVAvcSeiAfd* afd);

    /// Captions (ATSC A/53 Part 4 6.2), walked and not kept.
    ///
    /// \param stream  at the byte after the user_identifier
    /// \param size    bytes that follow the user_identifier
    /// \retval QVResultOk      the captions were walked
    /// \retval QVResultFailed  size is below 3; not logged
    static int parserAvcRegisteredUserDataClosedCaption(QVByteStream& stream, int size);

    /// frame_packing_arrangement (payloadType 45, H.264 D.1.25).
    ///
    /// \param stream             at the payload
    /// \param payloadSize        not used
    /// \param[out] framePacking  the caller's record; for a cancellation only isValid, identifier and flag
    /// \return QVResultOk with a record
    static int parserAvcFramePackingArrangement(QVByteStream& stream, int payloadSize,
                                                QVAvcSeiFramePacking* framePacking);

    /// display_orientation (payloadType 47, H.264 D.1.27).
    ///
    /// \param stream                   at the payload
    /// \param payloadSize              not used
    /// \param[out] displayOrientation  the caller's record; for a cancellation only isValid
    /// \return QVResultOk with a record
    static int parserAvcDisplayOrientation(QVByteStream& stream, int payloadSize,
                                           QVAvcSeiDisplayOrientation* displayOrientation);

    /// alternative_transfer_characteristics (payloadType 147, H.264 D.1.32). Not called by the walk.
    ///
    /// \param stream                    at the payload
    /// \param payloadSize               not used
    /// \param[out] alternativeTransfer  the caller's record
    /// \return QVResultOk with a record
    static int parserAvcAlternativeTransfer(QVByteStream& stream, int payloadSize,
                                            QVAvcSeiAlternativeTransfer* alternativeTransfer);

    /// green_metadata (payloadType 56, ISO/IEC 23001-11).
    ///
    /// \param stream              at the payload
    /// \param payloadSize         not used
    /// \param[out] greenMetaData  the caller's record; fields that the message does not carry are unchanged
    /// \return QVResultOk with a record
    static int parserAvcGreenMetaData(QVByteStream& stream, int payloadSize,
                                      QVAvcSeiGreenMetaData* greenMetaData);

    /// @}
    /// \name H.265 SEI payloads
    ///
    /// The rules of the H.264 payloads apply: each operation reads one payload with the plain cursor, from
    /// the stream's position, into a record that the caller has zero-initialised. Each returns QVResultOk or
    /// QVResultFailed. A null record is a failure of every operation, and so is a null sps where one is read;
    /// it is logged as an error and the stream is unchanged. Other failures are listed with the operation.
    /// @{

    /// mastering_display_colour_volume (payloadType 137, H.265 D.2.28), 24 bytes. Not called by the walk.
    ///
    /// \param stream                 at the payload
    /// \param payloadSize            not used
    /// \param[out] masteringDisplay  the caller's record, in the units of D.3.28
    /// \return QVResultOk with a record
    static int parserHevcMasteringDisplayInfo(QVByteStream& stream, int payloadSize,
                                              QVHevcSeiMasteringDisplay* masteringDisplay);

    /// content_light_level_info (payloadType 144, H.265 D.2.35), 4 bytes.
    ///
    /// \param stream             at the payload
    /// \param payloadSize        not used
    /// \param[out] contentLight  the caller's record, in cd/m2
    /// \return QVResultOk with a record
    static int parserHevcContentLightInfo(QVByteStream& stream, int payloadSize,
                                          QVHevcSeiContentLight* contentLight);

    /// alternative_transfer_characteristics (payloadType 147, H.265 D.2.38). Not called by the walk.
    ///
    /// \param stream                    at the payload
    /// \param payloadSize               not used
    /// \param[out] alternativeTransfer  the caller's record
    /// \return QVResultOk with a record
    static int parserHevcAlternativeTransfer(QVByteStream& stream, int payloadSize,
                                             QVHevcSeiAlternativeTransfer* alternativeTransfer);

    /// pic_timing (payloadType 1, H.265 D.2.3): the field parity, when frame_field_info_present_flag of sps
    /// is set; the rest of the payload is skipped. Not called by the walk.
    ///
    /// \param stream              at the payload
    /// \param payloadSize         bytes
    /// \param[out] pictureTiming  the caller's record; unchanged without frame_field_info_present_flag
    /// \param sps                 the active parameter set with its VUI fields; only read
    /// \return QVResultOk with a record and a parameter set
    static int parserHevcPictureTiming(QVByteStream& stream, int payloadSize,
                                       QVHevcSeiPictureTiming* pictureTiming, QVHevcSps* sps);

    /// decoded_picture_hash (payloadType 132, H.265 D.2.19): keeps MD5, skips CRC and checksum.
    ///
    /// \param stream            at the payload
    /// \param payloadSize       not used
    /// \param[out] pictureHash  the caller's record; only MD5 changes it
    /// \return QVResultOk with a record
    static int parserHevcPictureHash(QVByteStream& stream, int payloadSize,
                                     QVHevcSeiPictureHash* pictureHash);

    /// active_parameter_sets (payloadType 129, H.265 D.2.21): validated, not kept.
    ///
    /// \param stream       at the payload
    /// \param payloadSize  not used
    /// \retval QVResultOk      the payload is accepted
    /// \retval QVResultFailed  num_sps_ids_minus1 or the first identifier is above 15; logged as an error
    static int parserHevcActiveParameterSets(QVByteStream& stream, int payloadSize);

    /// frame_packing_arrangement (payloadType 45, H.265 D.2.16).
    ///
    /// \param stream             at the payload
    /// \param payloadSize        not used
    /// \param[out] framePacking  the caller's record; for a cancellation only isValid
    /// \return QVResultOk with a record
    static int parserHevcFramePacking(QVByteStream& stream, int payloadSize,
                                      QVHevcSeiFramePacking* framePacking);

    /// display_orientation (payloadType 47, H.265 D.2.17). Unless it is a cancellation, an item of type 47 is
    /// appended too, which holds the orientation as NUL-terminated text from qvMallocz.
    ///
    /// \param stream                   at the payload
    /// \param payloadSize              not used
    /// \param[in,out] items            the text is appended; it belongs to the caller
    /// \param[out] displayOrientation  the caller's record; for a cancellation only isValid
    /// \retval QVResultOk      the record is filled
    /// \retval QVResultFailed  the text cannot be allocated (not logged); nothing is appended
    static int parserHevcDisplayOrientation(QVByteStream& stream, int payloadSize,
                                            std::vector<QVSeiItem>& items,
                                            QVHevcSeiDisplayOrientation* displayOrientation);

    /// user_data_registered_itu_t_t35 (payloadType 4, H.265 D.2.6) with captions (ATSC A/53 Part 4) of any
    /// country and provider, walked and not kept. Not called by the walk.
    ///
    /// \param stream       at the payload
    /// \param payloadSize  bytes
    /// \param a53Caption   only tested for null
    /// \retval QVResultOk      the payload was walked or skipped
    /// \retval QVResultFailed  payloadSize is below 7, or parserHevcRegisteredUserDataClosedCaption failed;
    ///                         logged as an error
    static int parserHevcRegisteredUserData(QVByteStream& stream, int payloadSize,
                                            QVHevcSeiA53Caption* a53Caption);

    /// Captions (ATSC A/53 Part 4 6.2), walked and not kept.
    ///
    /// \param stream       at the byte after the user_identifier
    /// \param payloadSize  bytes that follow the user_identifier
    /// \param a53Caption   only tested for null
    /// \retval QVResultOk      the captions were walked
    /// \retval QVResultFailed  payloadSize is below 3; logged as an error
    static int parserHevcRegisteredUserDataClosedCaption(QVByteStream& stream, int payloadSize,
                                                         QVHevcSeiA53Caption* a53Caption);

    /// @}
    /// \name HDR metadata
    /// @{

    /// Reads a kept mastering display item (H.265 D.2.28) into *metadata. The fields that a short payload
    /// does not reach are 0. If the working copy cannot be allocated, all fields are 0. Logs nothing.
    ///
    /// \param item           codec H.265, payloadType 137; only read
    /// \param[out] metadata  the caller's record, in the units of H.265 D.3.28
    /// \retval QVResultOk           *metadata is filled
    /// \retval QVResultInvalidData  metadata is null, or the item has no bytes or another codec or type;
    ///                              *metadata is unchanged
    static int fillHDR10StaticMetadataFromHevcMasteringDisplayInfoSei(const QVSeiItem& item,
                                                                      QVHDR10StaticMetadata* metadata);

    /// Passes a kept user_data_registered_itu_t_t35 item (H.265 D.2.6) and metadata unchanged to the host's
    /// HDR Vivid parser (T/UWA 005.1).
    ///
    /// \param item      an item of any kind
    /// \param metadata  the host's record, owned by the caller
    /// \return the host's status
    static int fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(const QVSeiItem& item,
                                                                        QVHDRVividDynamicMetadata* metadata);

    /// @}
};

#endif
