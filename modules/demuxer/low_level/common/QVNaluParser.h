// NAL unit framing for ITU-T H.264 and H.265 elementary streams.
//
// Every operation is static, keeps no state between calls and only reads the buffers handed in; calls on
// different buffers and records may run concurrently. Sizes and offsets are bytes. A size below 1 is an empty
// buffer. No padding behind a buffer is needed. Exceptions of the caller's containers (std::bad_alloc,
// std::length_error) pass through after the working copies are released; there are no others but those that
// the host's own qvTraceLog throws.
#ifndef QV_DEMUXER_QVNALUPARSER_H
#define QV_DEMUXER_QVNALUPARSER_H

#include <stdint.h>

#include <utility>
#include <vector>

#include "QVByteStream.h"
#include "QVCodecParameters.h"
#include "QVResult.h"
#include "QVSeiItem.h"

class QVNaluParser {
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
};

#endif
