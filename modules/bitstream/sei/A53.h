/// \file
/// Captions, bar data and the active format description in registered user data: ATSC A/53 Part 4.
#ifndef QV_BITSTREAM_SEI_A53_H
#define QV_BITSTREAM_SEI_A53_H

#include <cstdint>

#include "bitstream/sei/SeiPayload.h"
#include "bitstream/sei/T35.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

constexpr uint32_t kAtscIdentifier = 0x47413934;       ///< user_identifier "GA94": ATSC1_data()
constexpr uint32_t kAfdIdentifier = 0x44544731;        ///< user_identifier "DTG1": afd_data()
constexpr uint32_t kUserDataTypeCaptions = 0x03;       ///< user_data_type_code: cc_data()
constexpr uint32_t kUserDataTypeBarData = 0x06;        ///< user_data_type_code: bar_data()
constexpr uint32_t kMarkerBitsOfConstruct = 0x1F;      ///< what marker_bits of a construct shall be
constexpr uint32_t kMarkerBitsAfterConstructs = 0xFF;  ///< what marker_bits after the constructs shall be

/// What a construct of cc_data() holds: cc_type, CTA-708.
enum class CcType : uint8_t {
    Field1 = 0,      ///< CTA-608 data of field 1: CC1, CC2, T1, T2
    Field2 = 1,      ///< CTA-608 data of field 2: CC3, CC4, T3, T4, XDS
    DtvccData = 2,   ///< DTVCC packet data
    DtvccStart = 3,  ///< the start of a DTVCC packet
};

/// A caption construct of cc_data().
struct CcConstruct {
    uint8_t marker_bits;  ///< u(5), 31; later editions reserve four of the bits, and other values are kept
    bool cc_valid;        ///< u(1); the two bytes are data
    uint8_t cc_type;      ///< u(2), see CcType
    uint8_t cc_data_1;    ///< u(8)
    uint8_t cc_data_2;    ///< u(8)

    /// cc_type.
    constexpr CcType type() const { return static_cast<CcType>(cc_type); }
};

/// cc_data(), ATSC A/53 Part 4 6.2.3.1, CTA-708.
struct CcData {
    static constexpr uint32_t kMostConstructs = 31;  ///< constructs of one cc_data()

    bool process_em_data_flag;     ///< u(1), reserved in later editions
    bool process_cc_data_flag;     ///< u(1); false: the constructs shall not be used
    bool additional_data_flag;     ///< u(1); additional_cc_data is present
    uint8_t cc_count;              ///< u(5), the number of constructs, 0 to 31
    uint8_t em_data;               ///< u(8), reserved in later editions
    uint8_t marker_bits;           ///< u(8), 255; other values are kept
    CodedBits additional_cc_data;  ///< u(8) each, up to the end of the payload; borrowed

    CcConstruct constructs[kMostConstructs];  ///< the first cc_count of them are set
};

/// True when all marker_bits are 1, as A/53 Part 4 requires. Receivers ignore them.
bool hasMarkerBits(const CcData& cc_data) noexcept;

/// Captions of ATSC: user_data_registered_itu_t_t35() with user_identifier "GA94" and user_data_type_code 3.
struct AtscCaptions {
    static constexpr PayloadTypes kPayloadTypes = {4, 4};       ///< payloadType
    static constexpr T35Owner kOwner = T35Owner::AtscUserData;  ///< the sender
    CcData cc_data;                                             ///< the constructs
    CodedBits ATSC_reserved_user_data;  ///< u(8) each, borrowed; with additional_data_flag there is none
};

/// Captions of provider 0x002F: user_data_registered_itu_t_t35() with a length in place of user_identifier,
/// as SCTE 128-1 describes it.
struct SatelliteCaptions {
    static constexpr PayloadTypes kPayloadTypes = {4, 4};            ///< payloadType
    static constexpr T35Owner kOwner = T35Owner::SatelliteUserData;  ///< the sender
    uint8_t user_data_length;           ///< u(8), bytes of cc_data(); not checked
    CcData cc_data;                     ///< the constructs
    CodedBits ATSC_reserved_user_data;  ///< u(8) each, borrowed; with additional_data_flag there is none
};

/// Bar data of ATSC: user_data_registered_itu_t_t35() with user_identifier "GA94" and user_data_type_code 6;
/// bar_data(), A/53 Part 4 6.2.3.2. Bars come in pairs, top and bottom or left and right. A number that is
/// not present is 0.
struct AtscBarData {
    static constexpr PayloadTypes kPayloadTypes = {4, 4};       ///< payloadType
    static constexpr T35Owner kOwner = T35Owner::AtscUserData;  ///< the sender

    bool top_bar_flag;     ///< u(1)
    bool bottom_bar_flag;  ///< u(1), equal to top_bar_flag
    bool left_bar_flag;    ///< u(1), false with top_bar_flag
    bool right_bar_flag;   ///< u(1), equal to left_bar_flag
    uint8_t reserved;      ///< u(4), 15; other values are kept

    uint16_t line_number_end_of_top_bar;  ///< u(14), the last line of the bar, counted from 1 in the frame
    uint16_t line_number_start_of_bottom_bar;  ///< u(14), the first line of the bar
    uint16_t pixel_number_end_of_left_bar;     ///< u(14), the last luma sample of the bar
    uint16_t pixel_number_start_of_right_bar;  ///< u(14), the first luma sample of the bar

    CodedBits additional_bar_data;  ///< u(8) each, up to the end of the payload; borrowed
};

/// The active format description: user_data_registered_itu_t_t35() with user_identifier "DTG1"; afd_data(),
/// ETSI TS 101 154 Annex B, A/53 Part 4 6.2.4. See names/ActiveFormat.h for the values.
struct ActiveFormatDescription {
    static constexpr PayloadTypes kPayloadTypes = {4, 4};       ///< payloadType
    static constexpr T35Owner kOwner = T35Owner::ActiveFormat;  ///< the sender

    bool active_format_flag;     ///< u(1); active_format is present
    uint8_t reserved;            ///< u(6), 1; other values are kept
    uint8_t reserved_of_format;  ///< u(4), 15; other values are kept
    uint8_t active_format;       ///< u(4)
};

/// The record of a payload of ATSC A/53.
enum class A53Kind : uint8_t {
    None,               ///< the message is none of them
    Captions,           ///< AtscCaptions
    SatelliteCaptions,  ///< sei::SatelliteCaptions
    BarData,            ///< AtscBarData
    ActiveFormat,       ///< ActiveFormatDescription
};

/// Which record a message has, by payloadType, country, provider, user_identifier and user_data_type_code.
/// A message that ends within them is none.
A53Kind a53KindOf(const SeiMessage& message) noexcept;

}  // namespace qv::sei

#endif
