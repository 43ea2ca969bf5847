// NAL unit scanning and classification: the byte stream format of ITU-T H.264 (08/2021) and H.265 (08/2021)
// Annex B, and the length-prefixed sample format of ISO/IEC 14496-15.
#include <cstdint>
#include <memory>
#include <new>

#include "QVDumpData.h"
#include "QVNaluParser.h"
#include "detail/Log.h"
#include "detail/NalUnit.h"
#include "detail/StartCode.h"
#include "detail/WorkingCopy.h"

using namespace qv_detail;

namespace {

using NalIndexList = std::vector<std::pair<int, int>>;

// lengthSizeMinusOne + 1 of ISO/IEC 14496-15: 1, 2 or 4.
int validLengthSize(int lengthSize) {
    return lengthSize == 1 || lengthSize == 2 ? lengthSize : 4;
}

// Lets the last pair end at end. A pair that the caller passed may have any offset.
void closeLastUnit(NalIndexList& nalus, int end) {
    if (!nalus.empty()) {
        nalus.back().second = static_cast<int>(int64_t{end} - nalus.back().first);
    }
}

// Appends the unit at the scanner and all after it. The caller closes the last one.
void appendUnits(NalIndexList& nalus, StartCodeScanner& scanner) {
    bool isFound = true;
    while (isFound) {
        const int offset = scanner.unitOffset();
        nalus.emplace_back(offset, offset - scanner.codeOffset());  // a placeholder until the unit is closed
        isFound = scanner.next();
        if (isFound) {
            nalus.back().second = scanner.codeOffset() - offset;
        }
    }
}

// NALUnitLength. Each one is read through an array of its size from the non-throwing operator new[], and is 0
// when that allocation fails. The array is observable, which is why it is not on the stack: hosts replace the
// operator, count its calls and let them fail.
int32_t readNalUnitLength(const unsigned char* field, int lengthSize) {
    const auto count = static_cast<size_t>(lengthSize);
    const std::unique_ptr<unsigned char[]> scratch(new (std::nothrow) unsigned char[count]);
    if (scratch == nullptr) {
        return 0;
    }
    std::memcpy(scratch.get(), field, count);
    return static_cast<int32_t>(readBigEndian(scratch.get(), count));
}

bool isNonReferenceUnit(QVCodecID codec, unsigned char firstByte) {
    if (codec == QVCodecIDAvc) {
        return (firstByte & 0x7F) == 0x01;  // nal_ref_idc 0, nal_unit_type 1 (D32)
    }
    const uint32_t type = nalUnitType(codec, firstByte);
    return type < 16 && type % 2 == 0;  // H.265 Table 7-1: *_N and RSV_VCL_N*
}

// Types the units whose first byte is before readableEnd. D38: an empty unit is typed by the byte at its
// offset.
void typeUnits(const unsigned char* data, int64_t readableEnd, const NalIndexList& nalus,
               std::vector<QVNaluParser::NaluInfo>& infos, QVCodecID codec) {
    infos.clear();
    if (data == nullptr || !isSupported(codec)) {
        return;
    }
    for (const auto& [offset, length] : nalus) {
        if (offset < 0 || length < 0 || offset >= readableEnd) {
            continue;
        }
        const unsigned char firstByte = data[offset];
        if ((firstByte & kForbiddenZeroBit) != 0) {
            continue;
        }
        infos.push_back(
            {nalUnitType(codec, firstByte), offset, length, isNonReferenceUnit(codec, firstByte)});
    }
}

// The end of the pair that ends last: bytes before it are known to exist.
int64_t endOfUnits(const NalIndexList& nalus) {
    int64_t end = 0;
    for (const auto& [offset, length] : nalus) {
        if (offset >= 0 && length >= 0 && int64_t{offset} + length > end) {
            end = int64_t{offset} + length;
        }
    }
    return end;
}

}  // namespace

// D24: leading_zero_8bits before the first start code are not accepted.
bool QVNaluParser::isAnnexBData(const unsigned char* data, int size) {
    if (data == nullptr || size < 4) {
        return false;
    }
    const uint32_t firstThree = readBigEndian(data, 3);
    return firstThree == 1 || (firstThree == 0 && data[3] == 0x01);
}

int QVNaluParser::parserDataToNaluIdx(const unsigned char* data, int size, NalIndexList& nalus) {
    if (!isAnnexBData(data, size)) {
        return QVResultInvalidData;
    }
    PrefixList list;  // NOLINT(cppcoreguidelines-pro-type-member-init): the scanner fills it
    StartCodeScanner scanner(data, bufferSize(size), list);
    if (scanner.next()) {
        closeLastUnit(nalus, scanner.codeOffset());
        appendUnits(nalus, scanner);
    }
    closeLastUnit(nalus, size);
    return QVResultOk;
}

int QVNaluParser::parserDataToNalus(const unsigned char* data, int size, NalIndexList& nalus,
                                    int lengthSize) {
    constexpr const char* kFunction = "parserDataToNalus";
    const WorkingCopy copy = makeWorkingCopy(data, bufferSize(size));
    const int fieldSize = validLengthSize(lengthSize);
    if (copy == nullptr || size <= fieldSize) {
        return QVResultOk;
    }

    int position = 0;
    int remaining = size;
    do {
        const int32_t length = readNalUnitLength(copy.get() + position, fieldSize);
        if (static_cast<uint64_t>(remaining - fieldSize) < static_cast<uint64_t>(int64_t{length})) {
            QV_LOG(QVTraceError, kFunction,
                   "Failed to parserDataToNaluType avaliable length:%d, avaliableBytes:%ld.\n", length,
                   static_cast<long>(remaining));
            QVDumpData::dumpActualData("parserDataToNaluType fail", data, size);
            return QVResultOk;
        }
        const int64_t next = int64_t{position} + fieldSize + length;
        // GCOVR_EXCL_START: the comparison above makes this unreachable
        if (size == 0 || next > size) {
            QV_LOG(QVTraceError, kFunction, "Failed to parserDataToNaluType ignore length:%d.\n", length);
            return QVResultOk;
        }
        // GCOVR_EXCL_STOP
        nalus.emplace_back(position + fieldSize, length);  // D37: of 0 bytes too
        position = static_cast<int>(next);
        remaining = size - position;
    } while (remaining > fieldSize);
    return QVResultOk;
}

int QVNaluParser::parseNalusToNaluType(const unsigned char* data, const NalIndexList& nalus,
                                       std::vector<NaluInfo>& infos, QVCodecID codec) {
    typeUnits(data, endOfUnits(nalus), nalus, infos, codec);
    return QVResultOk;
}

int QVNaluParser::parserDataToNaluType(const unsigned char* data, int size, std::vector<NaluInfo>& infos,
                                       const QVCodecParameters* params) {
    if (params == nullptr) {
        QV_LOG(QVTraceError, "parserDataToNaluType", "Failed to parserDataToNaluType param=NULL!\n");
        return QVResultFailed;
    }
    if (!isSupported(params->codecId)) {
        return QVResultFailed;
    }
    NalIndexList nalus;
    if (params->isAnnexB != 0) {
        parserDataToNaluIdx(data, size, nalus);
    } else {
        parserDataToNalus(data, size, nalus, params->nalLengthSize);
    }
    typeUnits(data, size, nalus, infos, params->codecId);
    return QVResultOk;
}
