// Buffering periods and picture timing as syntax functions.
#ifndef QV_BITSTREAM_SEI_TIMINGSYNTAX_H
#define QV_BITSTREAM_SEI_TIMINGSYNTAX_H

#include <cstdint>

#include "bitstream/avc/HrdRates.h"
#include "bitstream/hevc/BlockSizes.h"
#include "bitstream/sei/ClockTimestampSyntax.h"
#include "bitstream/sei/HrdInForce.h"
#include "bitstream/sei/PayloadSets.h"
#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/Timing.h"

namespace qv::sei {

// The greatest value of an element of width bits, 1 to 32.
constexpr uint64_t mostOf(uint32_t width) {
    return (uint64_t{1} << width) - 1;
}

// --- H.264 ---

template <class Syntax>
void initial_delays(Syntax& s, const avc::Hrd& hrd, AvcInitialDelays& delays) {
    const uint32_t width = widthOf(hrd.initial_cpb_removal_delay_length_minus1);
    s.infer(delays.count, hrd.cpb_cnt_minus1 + 1);
    for (uint32_t i = 0; i <= hrd.cpb_cnt_minus1; ++i) {
        s.u(width, at("initial_cpb_removal_delay", i), delays.initial_cpb_removal_delay[i], 1, mostOf(width));
        s.u(width, at("initial_cpb_removal_delay_offset", i), delays.initial_cpb_removal_delay_offset[i]);
    }
}

// buffering_period(), H.264 D.1.2
template <class Syntax>
void buffering_period(Syntax& s, const Context& context, AvcBufferingPeriod& payload) {
    static constexpr Structure kStructure = {"buffering_period()", "D.1.2"};
    const Within<Syntax> within(s, kStructure);
    s.ue("seq_parameter_set_id", payload.seq_parameter_set_id, 0, 31);
    const avc::SpsData* const sps = avcSpsOf(s, context, payload.seq_parameter_set_id);
    if (sps == nullptr) {
        return;
    }
    if (sps->vui.nal_hrd_parameters_present_flag) {
        initial_delays(s, sps->vui.nal_hrd_parameters, payload.nal);
    }
    if (sps->vui.vcl_hrd_parameters_present_flag) {
        initial_delays(s, sps->vui.vcl_hrd_parameters, payload.vcl);
    }
}

template <class Syntax>
void clock_timestamp(Syntax& s, uint32_t i, uint32_t time_offset_length, ClockTimestamp& timestamp) {
    s.flag(at("clock_timestamp_flag", i), timestamp.clock_timestamp_flag);
    if (timestamp.clock_timestamp_flag) {
        s.u(2, "ct_type", timestamp.ct_type);
        s.flag("nuit_field_based_flag", timestamp.nuit_field_based_flag);
        timestamp_body(
            s, [](const char* name) { return name; }, 8, timestamp);
        if (time_offset_length > 0) {
            s.i(time_offset_length, "time_offset", timestamp.time_offset);
        }
    }
}

// pic_timing(), H.264 D.1.3. A reserved pic_struct has no NumClockTS, so that what follows it is not defined.
template <class Syntax>
void pic_timing(Syntax& s, const Context& context, AvcPicTiming& payload) {
    static constexpr Structure kStructure = {"pic_timing()", "D.1.3"};
    const Within<Syntax> within(s, kStructure);
    const avc::SpsData* const sps = avcSpsOf(s, context);
    if (sps == nullptr) {
        return;
    }
    const avc::Vui& vui = sps->vui;
    const avc::DelayLengths lengths = avc::delayLengthsOf(vui);
    if (vui.nal_hrd_parameters_present_flag || vui.vcl_hrd_parameters_present_flag) {
        s.u(widthOf(lengths.cpb_removal_delay - 1), "cpb_removal_delay", payload.cpb_removal_delay);
        s.u(widthOf(lengths.dpb_output_delay - 1), "dpb_output_delay", payload.dpb_output_delay);
    }
    if (vui.pic_struct_present_flag) {
        s.u(4, "pic_struct", payload.pic_struct, 0, 8);
        payload.NumClockTS = numClockTsOf(payload.pic_struct);
        for (uint32_t i = 0; i < payload.NumClockTS; ++i) {
            clock_timestamp(s, i, lengths.time_offset & 31, payload.clock_timestamp[i]);
        }
    }
}

// --- H.265 ---

// The names of the elements of a type of HRD.
struct InitialDelayNames {
    const char* delay;
    const char* offset;
    const char* altDelay;
    const char* altOffset;
};

template <class Syntax>
void initial_delays(Syntax& s, const InitialDelayNames& names, const HrdInForce& hrd, bool hasAlternative,
                    HevcInitialDelays& delays) {
    const uint32_t width = widthOf(hrd.common.initial_cpb_removal_delay_length_minus1);
    s.infer(delays.count, hrd.CpbCnt);
    for (uint32_t i = 0; i < hrd.CpbCnt; ++i) {
        s.u(width, at(names.delay, i), delays.initial_cpb_removal_delay[i], 1, mostOf(width));
        s.u(width, at(names.offset, i), delays.initial_cpb_removal_offset[i]);
        if (hasAlternative) {
            s.u(width, at(names.altDelay, i), delays.initial_alt_cpb_removal_delay[i], 1, mostOf(width));
            s.u(width, at(names.altOffset, i), delays.initial_alt_cpb_removal_offset[i]);
        }
    }
}

// buffering_period(), H.265 D.2.2
template <class Syntax>
void buffering_period(Syntax& s, const Context& context, HevcBufferingPeriod& payload) {
    static constexpr Structure kStructure = {"buffering_period()", "D.2.2"};
    static constexpr InitialDelayNames kNal = {
        "nal_initial_cpb_removal_delay", "nal_initial_cpb_removal_offset",
        "nal_initial_alt_cpb_removal_delay", "nal_initial_alt_cpb_removal_offset"};
    static constexpr InitialDelayNames kVcl = {
        "vcl_initial_cpb_removal_delay", "vcl_initial_cpb_removal_offset",
        "vcl_initial_alt_cpb_removal_delay", "vcl_initial_alt_cpb_removal_offset"};
    const Within<Syntax> within(s, kStructure);
    s.ue("bp_seq_parameter_set_id", payload.bp_seq_parameter_set_id, 0, 15);
    const hevc::Sps* const sps = hevcSpsOf(s, context, payload.bp_seq_parameter_set_id);
    if (sps == nullptr) {
        return;
    }
    const HrdInForce hrd = hrdInForce(context, *sps);
    const uint32_t delayWidth = widthOf(hrd.common.au_cpb_removal_delay_length_minus1);
    s.infer(payload.irap_cpb_params_present_flag, false);
    if (!hrd.common.sub_pic_hrd_params_present_flag) {
        s.flag("irap_cpb_params_present_flag", payload.irap_cpb_params_present_flag);
    }
    const bool irap = !hrd.common.sub_pic_hrd_params_present_flag && payload.irap_cpb_params_present_flag;
    if (irap) {
        s.u(delayWidth, "cpb_delay_offset", payload.cpb_delay_offset);
        s.u(widthOf(hrd.common.dpb_output_delay_length_minus1), "dpb_delay_offset", payload.dpb_delay_offset);
    }
    s.flag("concatenation_flag", payload.concatenation_flag);
    s.u(delayWidth, "au_cpb_removal_delay_delta_minus1", payload.au_cpb_removal_delay_delta_minus1);
    const bool hasAlternative = hrd.common.sub_pic_hrd_params_present_flag || irap;
    if (hrd.common.nal_hrd_parameters_present_flag) {
        initial_delays(s, kNal, hrd, hasAlternative, payload.nal);
    }
    if (hrd.common.vcl_hrd_parameters_present_flag) {
        initial_delays(s, kVcl, hrd, hasAlternative, payload.vcl);
    }
    if (s.payload_extension_present(payload.payload_extension_present)) {
        s.flag("use_alt_cpb_params_flag", payload.use_alt_cpb_params_flag);
    }
}

// source_scan_type when it is not present, D.3.3. When both flags are 1 it is present.
constexpr uint32_t inferredSourceScanType(const hevc::Sps& sps) {
    constexpr uint32_t kInterlaced = 0;
    constexpr uint32_t kProgressive = 1;
    constexpr uint32_t kUnknown = 2;
    const hevc::ProfileTier& general = sps.profile_tier_level.general;
    if (general.progressive_source_flag == general.interlaced_source_flag) {
        return kUnknown;
    }
    return general.progressive_source_flag ? kProgressive : kInterlaced;
}

// The index of the last decoding unit of a picture with one for each CTB: PicSizeInCtbsY - 1. An SPS with a
// fault may leave the size open.
inline uint32_t mostDecodingUnitOf(const hevc::Sps& sps) {
    const uint64_t PicSizeInCtbsY = hevc::blockSizesOf(sps).PicSizeInCtbsY;
    return PicSizeInCtbsY - 1 < kMostUe ? static_cast<uint32_t>(PicSizeInCtbsY - 1) : kMostUe;
}

// A decoding unit of pic_timing(). An element that is not present keeps its value. The limit of D.3.3 for
// num_nalus_in_du_minus1, PicSizeInCtbsY - 1, is not checked: parameter sets and SEI messages count as well,
// and in small pictures there are more of them.
template <class Syntax>
void decoding_unit(Syntax& s, const HevcPicTiming& payload, uint32_t i, DecodingUnit& unit) {
    s.ue(at("num_nalus_in_du_minus1", i), unit.num_nalus_in_du_minus1);
    if (!payload.du_common_cpb_removal_delay_flag && i < payload.num_decoding_units_minus1) {
        s.u(widthOf(payload.du_cpb_removal_delay_increment_length_minus1),
            at("du_cpb_removal_delay_increment_minus1", i), unit.du_cpb_removal_delay_increment_minus1);
    }
}

template <class Syntax>
void decoding_units(Syntax& s, const hevc::Sps& sps, HevcPicTiming& payload) {
    s.ue("num_decoding_units_minus1", payload.num_decoding_units_minus1, 0, mostDecodingUnitOf(sps));
    s.flag("du_common_cpb_removal_delay_flag", payload.du_common_cpb_removal_delay_flag);
    if (payload.du_common_cpb_removal_delay_flag) {
        s.u(widthOf(payload.du_cpb_removal_delay_increment_length_minus1),
            "du_common_cpb_removal_delay_increment_minus1",
            payload.du_common_cpb_removal_delay_increment_minus1);
    }
    s.keep(payload.decoding_units, [&payload](auto& in) {
        DecodingUnit unit;
        for (uint32_t i = 0; i <= payload.num_decoding_units_minus1 && !in.failed(); ++i) {
            decoding_unit(in, payload, i, unit);
        }
    });
}

// pic_timing(), H.265 D.2.3
template <class Syntax>
void pic_timing(Syntax& s, const Context& context, HevcPicTiming& payload) {
    static constexpr Structure kStructure = {"pic_timing()", "D.2.3"};
    const Within<Syntax> within(s, kStructure);
    const hevc::Sps* const sps = hevcSpsOf(s, context);
    if (sps == nullptr) {
        return;
    }
    s.infer(payload.source_scan_type, inferredSourceScanType(*sps));
    if (sps->vui.frame_field_info_present_flag) {
        s.u(4, "pic_struct", payload.pic_struct);
        s.u(2, "source_scan_type", payload.source_scan_type);
        s.flag("duplicate_flag", payload.duplicate_flag);
    }
    const HrdInForce hrd = hrdInForce(context, *sps);
    if (hrd.CpbDpbDelaysPresentFlag()) {
        s.u(widthOf(hrd.common.au_cpb_removal_delay_length_minus1), "au_cpb_removal_delay_minus1",
            payload.au_cpb_removal_delay_minus1);
        s.u(widthOf(hrd.common.dpb_output_delay_length_minus1), "pic_dpb_output_delay",
            payload.pic_dpb_output_delay);
        if (hrd.common.sub_pic_hrd_params_present_flag) {
            s.u(widthOf(hrd.common.dpb_output_delay_du_length_minus1), "pic_dpb_output_du_delay",
                payload.pic_dpb_output_du_delay);
        }
        payload.hasDecodingUnits = hrd.common.sub_pic_hrd_params_present_flag &&
                                   hrd.common.sub_pic_cpb_params_in_pic_timing_sei_flag;
        if (payload.hasDecodingUnits) {
            payload.du_cpb_removal_delay_increment_length_minus1 =
                hrd.common.du_cpb_removal_delay_increment_length_minus1;
            decoding_units(s, *sps, payload);
        }
    }
}

// decoding_unit_info(), H.265 D.2.22
template <class Syntax>
void decoding_unit_info(Syntax& s, const Context& context, DecodingUnitInfo& payload) {
    static constexpr Structure kStructure = {"decoding_unit_info()", "D.2.22"};
    const Within<Syntax> within(s, kStructure);
    const hevc::Sps* const sps = hevcSpsOf(s, context);
    if (sps == nullptr) {
        return;
    }
    const HrdInForce hrd = hrdInForce(context, *sps);
    s.ue("decoding_unit_idx", payload.decoding_unit_idx, 0, mostDecodingUnitOf(*sps));
    if (!hrd.common.sub_pic_cpb_params_in_pic_timing_sei_flag) {
        s.u(widthOf(hrd.common.du_cpb_removal_delay_increment_length_minus1),
            "du_spt_cpb_removal_delay_increment", payload.du_spt_cpb_removal_delay_increment);
    }
    s.flag("dpb_output_du_delay_present_flag", payload.dpb_output_du_delay_present_flag);
    if (payload.dpb_output_du_delay_present_flag) {
        s.u(widthOf(hrd.common.dpb_output_delay_du_length_minus1), "pic_spt_dpb_output_du_delay",
            payload.pic_spt_dpb_output_du_delay);
    }
}

}  // namespace qv::sei

#endif
