/// \file
/// Records of the H.264 SEI payload parsers. Plain, standard-layout, owned and zero-initialised ({}) by the
/// caller; a parser writes the fields that its payload carries and clears none. Descriptors are those of
/// ITU-T H.264 (08/2021) D.1; fields with the standard's names hold the values as coded.
#ifndef QV_DEMUXER_QVAVCSEI_H
#define QV_DEMUXER_QVAVCSEI_H

#include <stdint.h>

/// recovery_point, H.264 D.1.8.
struct QVAvcSeiRecoveryPoint {
    uint32_t recovery_frame_cnt;  ///< ue(v), 0..65535
};

/// buffering_period, H.264 D.1.2.
struct QVAvcSeiBufferingPeriod {
    uint32_t isValid;  ///< 1 once the payload was read to its end

    /// u(v) by SchedSelIdx, in ticks of a 90 kHz clock. One array for both HRDs: where both are present, the
    /// VCL values replace the NAL ones.
    uint32_t initial_cpb_removal_delay[32];
};

/// One clock timestamp of pic_timing, H.264 D.1.3.
struct QVAvcClockTimestamp {
    uint32_t full_timestamp_flag;  ///< u(1)
    uint32_t n_frames;             ///< u(8)
    uint32_t seconds_value;        ///< u(6), 0 when not coded
    uint32_t minutes_value;        ///< u(6), 0 when not coded
    uint32_t hours_value;          ///< u(5), 0 when not coded
    uint32_t isDropFrame;  ///< 1 for cnt_dropped_flag 1 with counting_type 2..6, otherwise not written
};

/// pic_timing, H.264 D.1.3.
struct QVAvcSeiPictureTiming {
    uint32_t isValid;                        ///< 1 on success
    uint32_t pic_struct;                     ///< u(4), 0..8 (Table D-1)
    uint32_t ctTypeMask;                     ///< bit ct_type is set for each timestamp present
    uint32_t dpb_output_delay;               ///< u(v), in clock ticks; coded after cpb_removal_delay
    uint32_t cpb_removal_delay;              ///< u(v), in clock ticks
    QVAvcClockTimestamp clockTimestamps[3];  ///< the timestamps present, without gaps, in coded order
    uint32_t numClockTimestamps;             ///< entries filled, 0..3
};

/// Active format description of ETSI TS 101 154 B.3, carried as user_data_registered_itu_t_t35.
struct QVAvcSeiAfd {
    uint32_t isValid;       ///< 1 once an active_format was read
    uint8_t active_format;  ///< 4 bits, 0..15
};

/// frame_packing_arrangement, H.264 D.1.25.
struct QVAvcSeiFramePacking {
    uint32_t isValid;                                      ///< 1: an arrangement; 0: the cancellation of one
    uint32_t frame_packing_arrangement_id;                 ///< ue(v)
    uint32_t frame_packing_arrangement_cancel_flag;        ///< u(1)
    uint32_t frame_packing_arrangement_type;               ///< u(7), Table D-8
    uint32_t frame_packing_arrangement_repetition_period;  ///< ue(v)
    uint32_t content_interpretation_type;                  ///< u(6), Table D-9
    uint32_t quincunx_sampling_flag;                       ///< u(1)
    uint32_t current_frame_is_frame0_flag;                 ///< u(1)
};

/// display_orientation, H.264 D.1.27. In the bitstream the flips come first.
struct QVAvcSeiDisplayOrientation {
    uint32_t isValid;                 ///< 1: an orientation; 0: the cancellation of one
    uint32_t anticlockwise_rotation;  ///< u(16), in 1/65536 of a full turn
    uint32_t hor_flip;                ///< u(1)
    uint32_t ver_flip;                ///< u(1)
};

/// alternative_transfer_characteristics, H.264 D.1.32.
struct QVAvcSeiAlternativeTransfer {
    uint32_t isValid;                             ///< 1 once parsed
    uint32_t preferred_transfer_characteristics;  ///< u(8), Table E-4
};

/// green_metadata, ISO/IEC 23001-11. Values as coded; percentages are 255ths.
struct QVAvcSeiGreenMetaData {
    uint8_t green_metadata_type;  ///< u(8): 0 complexity metrics, 1 quality metric, others carry nothing
    uint8_t period_type;          ///< u(8)
    uint16_t num_seconds;         ///< u(16), period_type 2
    uint16_t num_pictures;        ///< u(16), period_type 3
    uint8_t percent_non_zero_macroblocks;             ///< u(8)
    uint8_t percent_intra_coded_macroblocks;          ///< u(8)
    uint8_t percent_six_tap_filtering;                ///< u(8)
    uint8_t percent_alpha_point_deblocking_instance;  ///< u(8)
    uint8_t xsd_metric_type;                          ///< u(8), green_metadata_type 1
    uint16_t xsd_metric_value;                        ///< u(16), green_metadata_type 1
};

#endif
