/// \file
/// Records of the H.265 SEI payload parsers. Plain, standard-layout, owned and zero-initialised ({}) by the
/// caller; a parser writes the fields that its payload carries and clears none. Descriptors are those of
/// ITU-T H.265 (08/2021) D.2; fields with the standard's names hold the values as coded.
#ifndef QV_DEMUXER_QVHEVCSEI_H
#define QV_DEMUXER_QVHEVCSEI_H

#include <stdint.h>

/// mastering_display_colour_volume, H.265 D.2.28, in the units of D.3.28. The primaries are in bitstream
/// order (green, blue, red in a conforming stream). In memory they are three x,y pairs;
/// display_primaries_x[c] and display_primaries_y[c] are two views of them.
struct QVHevcSeiMasteringDisplay {
    /// One coordinate of the three primaries.
    template <int Coordinate>
    struct Primaries {
        uint16_t pairs[6];  ///< x and y of each primary in turn

        /// The coordinate of one primary.
        /// \param c  0..2
        /// \return a reference to it
        template <typename Index>
        uint16_t& operator[](Index c) {
            return pairs[2 * c + Coordinate];
        }
        /// The coordinate of one primary.
        /// \param c  0..2
        /// \return a reference to it, to read only
        template <typename Index>
        const uint16_t& operator[](Index c) const {
            return pairs[2 * c + Coordinate];
        }
    };

    uint32_t isValid;  ///< 2 once parsed
    union {
        Primaries<0> display_primaries_x;  ///< u(16), CIE 1931 x in steps of 0.00002, c = 0..2
        Primaries<1> display_primaries_y;  ///< u(16), CIE 1931 y in steps of 0.00002, c = 0..2
    };
    uint32_t white_point_x;                    ///< u(16), CIE 1931 x in steps of 0.00002
    uint32_t white_point_y;                    ///< u(16), CIE 1931 y in steps of 0.00002
    uint32_t max_display_mastering_luminance;  ///< u(32), in steps of 0.0001 cd/m2
    uint32_t min_display_mastering_luminance;  ///< u(32), in steps of 0.0001 cd/m2
};

/// content_light_level_info, H.265 D.2.35.
struct QVHevcSeiContentLight {
    uint32_t isValid;                      ///< 2 once parsed
    uint16_t max_content_light_level;      ///< u(16), in cd/m2; 0: no bound is specified (D.3.35)
    uint16_t max_pic_average_light_level;  ///< u(16), in cd/m2; 0: no bound is specified (D.3.35)
};

/// alternative_transfer_characteristics, H.265 D.2.38.
struct QVHevcSeiAlternativeTransfer {
    uint32_t isValid;                             ///< 1 once parsed
    uint32_t preferred_transfer_characteristics;  ///< u(8), Table E.4
};

/// pic_timing, H.265 D.2.3.
struct QVHevcSeiPictureTiming {
    uint32_t fieldParity;  ///< 0: frame, or a pic_struct of no single field; 1: top field; 2: bottom field
};

/// decoded_picture_hash, H.265 D.2.19.
struct QVHevcSeiPictureHash {
    uint8_t picture_md5[3][16];  ///< b(8) by colour component
    uint8_t md5Present;          ///< 1 once the MD5 form was read; not written by the CRC and checksum forms
};

/// frame_packing_arrangement, H.265 D.2.16.
struct QVHevcSeiFramePacking {
    uint32_t isValid;                         ///< 1: an arrangement; 0: the cancellation of one
    uint32_t frame_packing_arrangement_type;  ///< u(7), Table D.7
    uint32_t content_interpretation_type;     ///< u(6), Table D.8; coded after quincunx_sampling_flag
    uint32_t quincunx_sampling_flag;          ///< u(1)
    uint32_t current_frame_is_frame0_flag;    ///< u(1)
};

/// display_orientation, H.265 D.2.17. In the bitstream the flips come first.
struct QVHevcSeiDisplayOrientation {
    uint32_t isValid;                 ///< 1: an orientation; 0: the cancellation of one
    uint32_t anticlockwise_rotation;  ///< u(16), in 1/65536 of a full turn
    uint32_t hor_flip;                ///< u(1)
    uint32_t ver_flip;                ///< u(1)
};

/// ATSC A/53 captions, carried as user_data_registered_itu_t_t35. They are walked, not kept: no parser writes
/// this record.
struct QVHevcSeiA53Caption {
    uint32_t isValid;  ///< for the caller
};

#endif
