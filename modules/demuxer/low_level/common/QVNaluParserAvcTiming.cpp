// buffering_period(), pic_timing() and recovery_point(), ITU-T H.264 (08/2021) D.1.2, D.1.3, D.1.8.
#include <algorithm>
#include <cstdint>

#include "QVNaluParser.h"
#include "detail/Log.h"
#include "detail/PlainBits.h"

using namespace qv_detail;

namespace {

constexpr uint32_t kRecoveryFrameCntEnd = 65536;
constexpr int64_t kMostCpbs = 32;
constexpr uint32_t kPicStructEnd = 9;

// NumClockTS by pic_struct, Table D-1.
constexpr uint8_t kSeiNumClockTsTable[kPicStructEnd] = {1, 1, 1, 2, 2, 3, 3, 2, 3};

// A field length from the caller's SPS record; a negative one counts as 0.
uint32_t bitLength(int32_t length) {
    return length > 0 ? static_cast<uint32_t>(length) : 0;
}

// The number of SchedSelIdx values to visit. Further ones have no effect: they would consume no bit of the
// data, move no bit offset (as a skip may at the end of the data, up to seven times) and store no entry.
int64_t usefulCpbCnt(const QVByteStream& stream, int32_t cpb_cnt, uint32_t length) {
    const uint64_t bytes =
        stream.atEnd() || length == 0 ? 0 : std::min<uint64_t>(stream.bytesLeft(), INT32_MAX);
    return std::min<int64_t>(cpb_cnt, static_cast<int64_t>(8 * bytes) + 8 + kMostCpbs);
}

// The delays of one HRD. More CPBs than the record holds are consumed and not stored.
void readInitialCpbRemovalDelays(QVByteStream& stream, QVAvcSeiBufferingPeriod* bufferingPeriod,
                                 const QVAvcSps& sps) {
    PlainBits in(stream);
    const uint32_t length = bitLength(sps.initial_cpb_removal_delay_length);
    const int64_t cpbCnt = usefulCpbCnt(stream, sps.cpb_cnt, length);
    for (int64_t i = 0; i < cpbCnt; ++i) {
        const uint32_t initial_cpb_removal_delay = in.u(length);
        if (i < kMostCpbs) {
            bufferingPeriod->initial_cpb_removal_delay[i] = initial_cpb_removal_delay;
        }
        in.skip(length);  // initial_cpb_removal_delay_offset
    }
}

bool isDropFrameCounting(uint32_t counting_type) {
    return counting_type >= 2 && counting_type <= 6;
}

void readFullTime(PlainBits& in, QVAvcClockTimestamp& timestamp) {
    timestamp.full_timestamp_flag = 1;
    timestamp.seconds_value = in.u(6);
    timestamp.minutes_value = in.u(6);
    timestamp.hours_value = in.u(5);
}

// Each unit of time is present only after the next smaller one.
void readPartialTime(PlainBits& in, QVAvcClockTimestamp& timestamp) {
    timestamp.full_timestamp_flag = 0;
    timestamp.seconds_value = 0;
    timestamp.minutes_value = 0;
    timestamp.hours_value = 0;
    if (in.u(1) == 0) {  // seconds_flag
        return;
    }
    timestamp.seconds_value = in.u(6);
    if (in.u(1) == 0) {  // minutes_flag
        return;
    }
    timestamp.minutes_value = in.u(6);
    if (in.u(1) == 0) {  // hours_flag
        return;
    }
    timestamp.hours_value = in.u(5);
}

// One clock timestamp, after its clock_timestamp_flag. Sets the bit of its ct_type in the mask.
void readClockTimestamp(PlainBits& in, QVAvcSeiPictureTiming* pictureTiming, int32_t time_offset_length) {
    QVAvcClockTimestamp& timestamp = pictureTiming->clockTimestamps[pictureTiming->numClockTimestamps++];
    const uint32_t ct_type = in.u(2);
    pictureTiming->ctTypeMask |= 1U << ct_type;
    in.skip(1);  // nuit_field_based_flag
    const uint32_t counting_type = in.u(5);
    const uint32_t full_timestamp_flag = in.u(1);
    in.skip(1);  // discontinuity_flag
    const uint32_t cnt_dropped_flag = in.u(1);
    if (cnt_dropped_flag != 0 && isDropFrameCounting(counting_type)) {
        timestamp.isDropFrame = 1;
    }
    timestamp.n_frames = in.u(8);
    if (full_timestamp_flag != 0) {
        readFullTime(in, timestamp);
    } else {
        readPartialTime(in, timestamp);
    }
    if (time_offset_length > 0) {
        in.skip(bitLength(time_offset_length));  // time_offset
    }
}

}  // namespace

int QVNaluParser::parserAvcRecoveryPoint(QVByteStream& stream, int /*payloadSize*/,
                                         QVAvcSeiRecoveryPoint* recoveryPoint) {
    constexpr const char* kFunction = "parserAvcRecoveryPoint";
    if (recoveryPoint == nullptr) {
        QV_LOG(QVTraceError, kFunction, "parserAvcRecoveryPoint: recoveryPoint is NULL!\n");
        return QVResultFailed;
    }
    PlainBits in(stream);
    const uint32_t recovery_frame_cnt = in.ue();
    if (recovery_frame_cnt >= kRecoveryFrameCntEnd) {
        QV_LOG(QVTraceError, kFunction,
               "parserAvcSeiRecoveryPoint: recovery_frame_cnt(%u) is out of range.\n", recovery_frame_cnt);
        return QVResultFailed;
    }
    recoveryPoint->recovery_frame_cnt = recovery_frame_cnt;
    in.skip(1 + 1 + 2);  // exact_match_flag, broken_link_flag, changing_slice_group_idc
    return QVResultOk;
}

int QVNaluParser::parserAvcBufferingPeriod(QVByteStream& stream, int /*payloadSize*/,
                                           QVAvcSeiBufferingPeriod* bufferingPeriod, QVAvcSps* sps) {
    constexpr const char* kFunction = "parserAvcBufferingPeriod";
    constexpr uint32_t kBitsOfRejectedIds = 0xE0;
    if (bufferingPeriod == nullptr || sps == nullptr) {
        // Unchecked: hosts know this text with %x, and its arguments are pointers.
        QV_LOG_UNCHECKED(QVTraceError, kFunction,
                         "parserAvcBufferingPeriod: bufferingPeriod(0x%x), sps(0x%x) is NULL!\n",
                         static_cast<void*>(bufferingPeriod), static_cast<void*>(sps));
        return QVResultFailed;
    }
    // D34: not compared with that of sps.
    const uint32_t seq_parameter_set_id = PlainBits(stream).ue();
    if ((seq_parameter_set_id & kBitsOfRejectedIds) != 0) {  // D16: 256 to 287 pass again
        // Unchecked: hosts know this text with a %d that has no argument.
        QV_LOG_UNCHECKED(QVTraceError, kFunction,
                         "parserAvcBufferingPeriod: non-existing SPS %d referenced in buffering period.\n");
        return QVResultFailed;
    }
    if (sps->nal_hrd_parameters_present_flag != 0) {
        readInitialCpbRemovalDelays(stream, bufferingPeriod, *sps);
    }
    if (sps->vcl_hrd_parameters_present_flag != 0) {
        readInitialCpbRemovalDelays(stream, bufferingPeriod, *sps);  // D17: over the NAL values
    }
    bufferingPeriod->isValid = 1;
    return QVResultOk;
}

int QVNaluParser::parserAvcPictureTiming(QVByteStream& stream, int /*payloadSize*/,
                                         QVAvcSeiPictureTiming* pictureTiming, QVAvcSps* sps) {
    constexpr const char* kFunction = "parserAvcPictureTiming";
    if (sps == nullptr) {
        QV_LOG(QVTraceError, kFunction,
               "parserAvcPictureTiming: SPS unavailable in decode_picture_timing.\n");
        return QVResultFailed;
    }
    if (pictureTiming == nullptr) {
        QV_LOG(QVTraceError, kFunction, "parserAvcPictureTiming: pictureTiming is NULL!\n");
        return QVResultFailed;
    }
    PlainBits in(stream);
    const bool CpbDpbDelaysPresentFlag =
        sps->nal_hrd_parameters_present_flag != 0 || sps->vcl_hrd_parameters_present_flag != 0;
    if (CpbDpbDelaysPresentFlag) {
        pictureTiming->cpb_removal_delay = in.u(bitLength(sps->cpb_removal_delay_length));
        pictureTiming->dpb_output_delay = in.u(bitLength(sps->dpb_output_delay_length));
    }
    if (sps->pic_struct_present_flag == 0) {
        pictureTiming->isValid = 1;
        return QVResultOk;
    }
    pictureTiming->pic_struct = in.u(4);
    pictureTiming->ctTypeMask = 0;
    if (pictureTiming->pic_struct >= kPicStructEnd) {
        QV_LOG(QVTraceError, kFunction, "parserAvcPictureTiming: pic_struct(%d) error.\n",
               static_cast<int>(pictureTiming->pic_struct));
        return QVResultFailed;
    }
    pictureTiming->numClockTimestamps = 0;
    const uint32_t NumClockTS = kSeiNumClockTsTable[pictureTiming->pic_struct];
    for (uint32_t i = 0; i < NumClockTS; ++i) {
        if (in.u(1) != 0) {  // clock_timestamp_flag
            readClockTimestamp(in, pictureTiming, sps->time_offset_length);
        }
    }
    QV_LOG(QVTraceDebug, kFunction, "parserAvcPictureTiming: ct_type:%X, pic_struct:%d.\n",
           pictureTiming->ctTypeMask, static_cast<int>(pictureTiming->pic_struct));
    pictureTiming->isValid = 1;
    return QVResultOk;
}
