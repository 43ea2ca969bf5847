// User data of ATSC A/53 as syntax functions.
#ifndef QV_BITSTREAM_SEI_A53SYNTAX_H
#define QV_BITSTREAM_SEI_A53SYNTAX_H

#include "bitstream/sei/A53.h"
#include "bitstream/sei/T35BodySyntax.h"

namespace qv::sei {

// A caption construct of cc_data()
template <class Syntax>
void cc_construct(Syntax& s, uint32_t i, CcConstruct& construct) {
    s.u(5, at("marker_bits", i), construct.marker_bits);
    s.flag(at("cc_valid", i), construct.cc_valid);
    s.u(2, at("cc_type", i), construct.cc_type);
    s.u(8, at("cc_data_1", i), construct.cc_data_1);
    s.u(8, at("cc_data_2", i), construct.cc_data_2);
}

// cc_data(), A/53 Part 4 6.2.3.1
template <class Syntax>
void cc_data(Syntax& s, CcData& data) {
    static constexpr Structure kStructure = {"cc_data()", "A/53 Part 4 6.2.3.1"};
    const Within<Syntax> within(s, kStructure);
    s.flag("process_em_data_flag", data.process_em_data_flag);
    s.flag("process_cc_data_flag", data.process_cc_data_flag);
    s.flag("additional_data_flag", data.additional_data_flag);
    s.u(5, "cc_count", data.cc_count);
    s.u(8, "em_data", data.em_data);
    for (uint32_t i = 0; i < data.cc_count; ++i) {
        cc_construct(s, i, data.constructs[i]);
    }
    s.u(8, "marker_bits", data.marker_bits);
    if (data.additional_data_flag) {
        s.payload_bytes("additional_cc_data", data.additional_cc_data);
    }
}

// What follows cc_data(). In MPEG-2 a start code ends additional_cc_data; here the payload does.
template <class Syntax>
void reserved_after_captions(Syntax& s, const CcData& data, CodedBits& reserved) {
    if (!data.additional_data_flag) {
        s.payload_bytes("ATSC_reserved_user_data", reserved);
    }
}

// ATSC1_data() with cc_data(), A/53 Part 4 6.2.3
template <class Syntax>
void t35_body(Syntax& s, AtscCaptions& payload) {
    static constexpr Structure kStructure = {"ATSC1_data()", "A/53 Part 4 6.2.3"};
    t35_provider<T35Owner::AtscUserData>(s);
    s.f(32, "user_identifier", kAtscIdentifier);
    const Within<Syntax> within(s, kStructure);
    s.f(8, "user_data_type_code", kUserDataTypeCaptions);
    cc_data(s, payload.cc_data);
    reserved_after_captions(s, payload.cc_data, payload.ATSC_reserved_user_data);
}

// The form of provider 0x002F, SCTE 128-1
template <class Syntax>
void t35_body(Syntax& s, SatelliteCaptions& payload) {
    t35_provider<T35Owner::SatelliteUserData>(s);
    s.f(8, "user_data_type_code", kUserDataTypeCaptions);
    s.u(8, "user_data_length", payload.user_data_length);
    cc_data(s, payload.cc_data);
    reserved_after_captions(s, payload.cc_data, payload.ATSC_reserved_user_data);
}

// A line or sample number of bar_data()
template <class Syntax>
void bar_number(Syntax& s, const char* name, uint16_t& number) {
    s.f(2, "marker_bits", 3);
    s.u(14, name, number);
}

// bar_data(), A/53 Part 4 6.2.3.2
template <class Syntax>
void bar_data(Syntax& s, AtscBarData& payload) {
    static constexpr Structure kStructure = {"bar_data()", "A/53 Part 4 6.2.3.2"};
    const Within<Syntax> within(s, kStructure);
    s.flag("top_bar_flag", payload.top_bar_flag);
    s.flag("bottom_bar_flag", payload.bottom_bar_flag, payload.top_bar_flag);
    if (payload.top_bar_flag) {
        s.flag("left_bar_flag", payload.left_bar_flag, false);
    } else {
        s.flag("left_bar_flag", payload.left_bar_flag);
    }
    s.flag("right_bar_flag", payload.right_bar_flag, payload.left_bar_flag);
    s.u(4, "reserved", payload.reserved);
    if (payload.top_bar_flag) {
        bar_number(s, "line_number_end_of_top_bar", payload.line_number_end_of_top_bar);
        bar_number(s, "line_number_start_of_bottom_bar", payload.line_number_start_of_bottom_bar);
    }
    if (payload.left_bar_flag) {
        bar_number(s, "pixel_number_end_of_left_bar", payload.pixel_number_end_of_left_bar);
        bar_number(s, "pixel_number_start_of_right_bar", payload.pixel_number_start_of_right_bar);
    }
    s.payload_bytes("additional_bar_data", payload.additional_bar_data);
}

// ATSC1_data() with bar_data(), A/53 Part 4 6.2.3
template <class Syntax>
void t35_body(Syntax& s, AtscBarData& payload) {
    static constexpr Structure kStructure = {"ATSC1_data()", "A/53 Part 4 6.2.3"};
    t35_provider<T35Owner::AtscUserData>(s);
    s.f(32, "user_identifier", kAtscIdentifier);
    const Within<Syntax> within(s, kStructure);
    s.f(8, "user_data_type_code", kUserDataTypeBarData);
    bar_data(s, payload);
}

// afd_data(), ETSI TS 101 154 Annex B, A/53 Part 4 6.2.4
template <class Syntax>
void t35_body(Syntax& s, ActiveFormatDescription& payload) {
    static constexpr Structure kStructure = {"afd_data()", "TS 101 154 Annex B"};
    t35_provider<T35Owner::ActiveFormat>(s);
    s.f(32, "user_identifier", kAfdIdentifier);
    const Within<Syntax> within(s, kStructure);
    s.f(1, "zero", 0);
    s.flag("active_format_flag", payload.active_format_flag);
    s.u(6, "reserved", payload.reserved);
    if (payload.active_format_flag) {
        s.u(4, "reserved", payload.reserved_of_format);
        s.u(4, "active_format", payload.active_format);
    }
}

}  // namespace qv::sei

#endif
