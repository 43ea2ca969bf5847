#include "AvcSeiSyntax.h"

#include <initializer_list>
#include <string>

#include "SyntaxElements.h"

namespace qv_test {

namespace {

// An element that is written but not kept by the parser.
struct Passed {
    unsigned width;
    std::string name;
    uint64_t value;
};

class Writing {
public:
    explicit Writing(BitWriter& out) : out_(out) {}

    template <class Value>
    void u(unsigned width, const std::string& name, const Value& value) {
        out_.u(width, name, value);
    }
    void ue(const std::string& name, const uint32_t& value) { out_.ue(name, value); }
    void pass(std::initializer_list<Passed> elements) {
        for (const Passed& element : elements) {
            out_.u(element.width, element.name, element.value);
        }
    }
    void passUe(const std::string& name, const uint32_t& value) { out_.ue(name, value); }
    static bool isEnd(bool /*isOutOfRange*/) { return false; }

private:
    BitWriter& out_;
};

class Reading {
public:
    explicit Reading(CursorModel& in) : in_(in) {}

    template <class Value>
    void u(unsigned width, const std::string&, Value& value) {
        value = in_.readBits(width);
    }
    void ue(const std::string&, uint32_t& value) { value = in_.readGolombUe(); }
    void pass(std::initializer_list<Passed> elements) {
        uint64_t width = 0;
        for (const Passed& element : elements) {
            width += element.width;
        }
        in_.skipBits(width);
    }
    void passUe(const std::string&, const uint32_t&) { in_.readGolombUe(); }
    static bool isEnd(bool isOutOfRange) { return isOutOfRange; }

private:
    CursorModel& in_;
};

unsigned bitWidth(int32_t length) {
    return length > 0 ? static_cast<unsigned>(length) : 0;
}

// Each table of the standard is one function, for any Elements.

template <class Elements, class Syntax>
void recoveryPoint(Elements& e, Syntax& s) {
    e.ue("recovery_frame_cnt", s.recovery_frame_cnt);
    if (e.isEnd(s.recovery_frame_cnt > 65535)) {
        return;
    }
    e.pass({{1, "exact_match_flag", s.exact_match_flag},
            {1, "broken_link_flag", s.broken_link_flag},
            {2, "changing_slice_group_idc", s.changing_slice_group_idc}});
}

template <class Elements, class Delays>
void cpbDelays(Elements& e, Delays& delays, const std::string& hrd, const QVAvcSps& sps) {
    const unsigned length = bitWidth(sps.initial_cpb_removal_delay_length);
    for (size_t i = 0; i < delays.size(); ++i) {
        e.u(length, hrd + indexed(" initial_cpb_removal_delay", i), delays[i].initial_cpb_removal_delay);
        e.pass({{length, hrd + indexed(" initial_cpb_removal_delay_offset", i),
                 delays[i].initial_cpb_removal_delay_offset}});
    }
}

template <class Elements, class Syntax>
void bufferingPeriod(Elements& e, Syntax& s, const QVAvcSps& sps) {
    e.ue("seq_parameter_set_id", s.seq_parameter_set_id);
    if (e.isEnd(s.seq_parameter_set_id % 256 > 31)) {
        return;
    }
    cpbDelays(e, s.nal, "NAL", sps);
    cpbDelays(e, s.vcl, "VCL", sps);
}

template <class Elements, class Syntax>
void partialTime(Elements& e, Syntax& s, size_t i) {
    e.u(1, indexed("seconds_flag", i), s.seconds_flag);
    if (s.seconds_flag == 1) {
        e.u(6, indexed("seconds_value", i), s.seconds_value);
        e.u(1, indexed("minutes_flag", i), s.minutes_flag);
        if (s.minutes_flag == 1) {
            e.u(6, indexed("minutes_value", i), s.minutes_value);
            e.u(1, indexed("hours_flag", i), s.hours_flag);
            if (s.hours_flag == 1) {
                e.u(5, indexed("hours_value", i), s.hours_value);
            }
        }
    }
}

template <class Elements, class Syntax>
void clockTimestamp(Elements& e, Syntax& s, size_t i, const QVAvcSps& sps) {
    e.u(1, indexed("clock_timestamp_flag", i), s.clock_timestamp_flag);
    if (s.clock_timestamp_flag == 0) {
        return;
    }
    e.u(2, indexed("ct_type", i), s.ct_type);
    e.pass({{1, indexed("nuit_field_based_flag", i), s.nuit_field_based_flag}});
    e.u(5, indexed("counting_type", i), s.counting_type);
    e.u(1, indexed("full_timestamp_flag", i), s.full_timestamp_flag);
    e.pass({{1, indexed("discontinuity_flag", i), s.discontinuity_flag}});
    e.u(1, indexed("cnt_dropped_flag", i), s.cnt_dropped_flag);
    e.u(8, indexed("n_frames", i), s.n_frames);
    if (s.full_timestamp_flag == 1) {
        e.u(6, indexed("seconds_value", i), s.seconds_value);
        e.u(6, indexed("minutes_value", i), s.minutes_value);
        e.u(5, indexed("hours_value", i), s.hours_value);
    } else {
        partialTime(e, s, i);
    }
    if (sps.time_offset_length > 0) {
        e.pass({{bitWidth(sps.time_offset_length), indexed("time_offset", i), s.time_offset}});
    }
}

// Table D-1; the reserved values have no clock timestamps.
size_t numClockTs(uint32_t pic_struct) {
    static const std::array<size_t, 9> table = {1, 1, 1, 2, 2, 3, 3, 2, 3};
    return pic_struct < table.size() ? table[pic_struct] : 0;
}

template <class Elements, class Syntax>
void picTiming(Elements& e, Syntax& s, const QVAvcSps& sps) {
    if (sps.nal_hrd_parameters_present_flag != 0 || sps.vcl_hrd_parameters_present_flag != 0) {
        e.u(bitWidth(sps.cpb_removal_delay_length), "cpb_removal_delay", s.cpb_removal_delay);
        e.u(bitWidth(sps.dpb_output_delay_length), "dpb_output_delay", s.dpb_output_delay);
    }
    if (sps.pic_struct_present_flag == 0) {
        return;
    }
    e.u(4, "pic_struct", s.pic_struct);
    const size_t NumClockTS = numClockTs(s.pic_struct);
    for (size_t i = 0; i < NumClockTS; ++i) {
        clockTimestamp(e, s.clockTimestamps[i], i, sps);
    }
}

template <class Elements, class Syntax>
void framePacking(Elements& e, Syntax& s) {
    e.ue("frame_packing_arrangement_id", s.frame_packing_arrangement_id);
    e.u(1, "frame_packing_arrangement_cancel_flag", s.frame_packing_arrangement_cancel_flag);
    if (s.frame_packing_arrangement_cancel_flag == 0) {
        e.u(7, "frame_packing_arrangement_type", s.frame_packing_arrangement_type);
        e.u(1, "quincunx_sampling_flag", s.quincunx_sampling_flag);
        e.u(6, "content_interpretation_type", s.content_interpretation_type);
        e.pass({{1, "spatial_flipping_flag", s.spatial_flipping_flag},
                {1, "frame0_flipped_flag", s.frame0_flipped_flag},
                {1, "field_views_flag", s.field_views_flag}});
        e.u(1, "current_frame_is_frame0_flag", s.current_frame_is_frame0_flag);
        e.pass({{1, "frame0_self_contained_flag", s.frame0_self_contained_flag},
                {1, "frame1_self_contained_flag", s.frame1_self_contained_flag}});
        if (s.quincunx_sampling_flag == 0 && s.frame_packing_arrangement_type != 5) {
            e.pass({{4, "frame0_grid_position_x", s.frame0_grid_position_x},
                    {4, "frame0_grid_position_y", s.frame0_grid_position_y},
                    {4, "frame1_grid_position_x", s.frame1_grid_position_x},
                    {4, "frame1_grid_position_y", s.frame1_grid_position_y}});
        }
        e.pass({{8, "frame_packing_arrangement_reserved_byte", s.frame_packing_arrangement_reserved_byte}});
        e.ue("frame_packing_arrangement_repetition_period", s.frame_packing_arrangement_repetition_period);
    }
    e.pass({{1, "frame_packing_arrangement_extension_flag", s.frame_packing_arrangement_extension_flag}});
}

template <class Elements, class Syntax>
void displayOrientation(Elements& e, Syntax& s) {
    e.u(1, "display_orientation_cancel_flag", s.display_orientation_cancel_flag);
    if (s.display_orientation_cancel_flag == 0) {
        e.u(1, "hor_flip", s.hor_flip);
        e.u(1, "ver_flip", s.ver_flip);
        e.u(16, "anticlockwise_rotation", s.anticlockwise_rotation);
        e.passUe("display_orientation_repetition_period", s.display_orientation_repetition_period);
        e.pass({{1, "display_orientation_extension_flag", s.display_orientation_extension_flag}});
    }
}

template <class Elements, class Syntax>
void greenMetadata(Elements& e, Syntax& s) {
    e.u(8, "green_metadata_type", s.green_metadata_type);
    if (s.green_metadata_type == 0) {
        e.u(8, "period_type", s.period_type);
        if (s.period_type == 2) {
            e.u(16, "num_seconds", s.num_seconds);
        } else if (s.period_type == 3) {
            e.u(16, "num_pictures", s.num_pictures);
        }
        e.u(8, "percent_non_zero_macroblocks", s.percent_non_zero_macroblocks);
        e.u(8, "percent_intra_coded_macroblocks", s.percent_intra_coded_macroblocks);
        e.u(8, "percent_six_tap_filtering", s.percent_six_tap_filtering);
        e.u(8, "percent_alpha_point_deblocking_instance", s.percent_alpha_point_deblocking_instance);
    } else if (s.green_metadata_type == 1) {
        e.u(8, "xsd_metric_type", s.xsd_metric_type);
        e.u(16, "xsd_metric_value", s.xsd_metric_value);
    }
}

}  // namespace

void write(BitWriter& out, const RecoveryPointSyntax& syntax) {
    Writing elements(out);
    recoveryPoint(elements, syntax);
}

void write(BitWriter& out, const BufferingPeriodSyntax& syntax, const QVAvcSps& sps) {
    Writing elements(out);
    bufferingPeriod(elements, syntax, sps);
}

void write(BitWriter& out, const PicTimingSyntax& syntax, const QVAvcSps& sps) {
    Writing elements(out);
    picTiming(elements, syntax, sps);
}

void write(BitWriter& out, const FramePackingSyntax& syntax) {
    Writing elements(out);
    framePacking(elements, syntax);
}

void write(BitWriter& out, const DisplayOrientationSyntax& syntax) {
    Writing elements(out);
    displayOrientation(elements, syntax);
}

void write(BitWriter& out, const GreenMetadataSyntax& syntax) {
    Writing elements(out);
    greenMetadata(elements, syntax);
}

void write(BitWriter& out, const T35Syntax& syntax) {
    out.u(8, "itu_t_t35_country_code", syntax.itu_t_t35_country_code);
    if (syntax.itu_t_t35_country_code == 0xFF) {
        out.u(8, "itu_t_t35_country_code_extension_byte", syntax.itu_t_t35_country_code_extension_byte);
    }
    out.u(16, "itu_t_t35_provider_code", syntax.itu_t_t35_provider_code);
    out.u(32, "user_identifier", syntax.user_identifier);
}

void write(BitWriter& out, const AfdSyntax& syntax) {
    out.u(1, "'0'", syntax.zero);
    out.u(1, "active_format_flag", syntax.active_format_flag);
    out.u(6, "reserved", syntax.reserved6);
    if (syntax.active_format_flag == 1) {
        out.u(4, "reserved", syntax.reserved4);
        out.u(4, "active_format", syntax.active_format);
    }
}

void write(BitWriter& out, const CcDataSyntax& syntax) {
    out.u(8, "user_data_type_code", syntax.user_data_type_code);
    out.u(1, "process_em_data_flag", syntax.process_em_data_flag);
    out.u(1, "process_cc_data_flag", syntax.process_cc_data_flag);
    out.u(1, "additional_data_flag", syntax.additional_data_flag);
    out.u(5, "cc_count", syntax.cc_count);
    out.u(8, "em_data", syntax.em_data);
    for (size_t i = 0; i < syntax.constructs.size(); ++i) {
        out.u(5, indexed("marker_bits", i), syntax.constructs[i].marker_bits);
        out.u(1, indexed("cc_valid", i), syntax.constructs[i].cc_valid);
        out.u(2, indexed("cc_type", i), syntax.constructs[i].cc_type);
        out.u(8, indexed("cc_data_1", i), syntax.constructs[i].cc_data_1);
        out.u(8, indexed("cc_data_2", i), syntax.constructs[i].cc_data_2);
    }
    out.u(8, "marker_bits", syntax.marker_bits);
}

RecoveryPointSyntax readRecoveryPoint(CursorModel& in) {
    RecoveryPointSyntax syntax;
    Reading elements(in);
    recoveryPoint(elements, syntax);
    return syntax;
}

BufferingPeriodSyntax readBufferingPeriod(CursorModel& in, const QVAvcSps& sps) {
    const size_t cpbCnt = sps.cpb_cnt > 0 ? static_cast<size_t>(sps.cpb_cnt) : 0;
    BufferingPeriodSyntax syntax;
    syntax.nal.resize(sps.nal_hrd_parameters_present_flag != 0 ? cpbCnt : 0);
    syntax.vcl.resize(sps.vcl_hrd_parameters_present_flag != 0 ? cpbCnt : 0);
    Reading elements(in);
    bufferingPeriod(elements, syntax, sps);
    return syntax;
}

PicTimingSyntax readPicTiming(CursorModel& in, const QVAvcSps& sps) {
    PicTimingSyntax syntax;
    Reading elements(in);
    picTiming(elements, syntax, sps);
    return syntax;
}

FramePackingSyntax readFramePacking(CursorModel& in) {
    FramePackingSyntax syntax;
    Reading elements(in);
    framePacking(elements, syntax);
    return syntax;
}

DisplayOrientationSyntax readDisplayOrientation(CursorModel& in) {
    DisplayOrientationSyntax syntax;
    Reading elements(in);
    displayOrientation(elements, syntax);
    return syntax;
}

GreenMetadataSyntax readGreenMetadata(CursorModel& in) {
    GreenMetadataSyntax syntax;
    Reading elements(in);
    greenMetadata(elements, syntax);
    return syntax;
}

}  // namespace qv_test
