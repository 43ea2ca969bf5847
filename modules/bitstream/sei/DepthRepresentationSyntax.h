// What the samples of depth views mean, and where they are, as syntax functions.
#ifndef QV_BITSTREAM_SEI_DEPTHREPRESENTATIONSYNTAX_H
#define QV_BITSTREAM_SEI_DEPTHREPRESENTATIONSYNTAX_H

#include "bitstream/avc/SpsMvcExtension.h"
#include "bitstream/sei/CodedFloatSyntax.h"
#include "bitstream/sei/DepthRepresentation.h"
#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/syntax/Tracer.h"

namespace qv::sei {

// depth_representation_sei_element(), H.264 I.13.1.3.1, depth_rep_info_element(), H.265 G.14.2.4.1
template <class Syntax>
void depth_representation_element(Syntax& s, bool isHevc, CodedFloat& number) {
    static constexpr Structure kAvc = {"depth_representation_sei_element()", "I.13.1.3.1"};
    static constexpr Structure kHevc = {"depth_rep_info_element()", "G.14.2.4.1"};
    constexpr CodedFloatNames kNames = {"da_sign_flag", "da_exponent", "da_mantissa_len_minus1",
                                        "da_mantissa"};
    const Within<Syntax> within(s, isHevc ? kHevc : kAvc);
    coded_float_with_length(s, kNames, number);
}

// View i in H.264, the one view in H.265.
template <class Syntax>
void depth_representation(Syntax& s, const DepthRepresentationInfo& info, uint32_t i,
                          DepthRepresentation& view) {
    const bool hasDisparity = info.d_min_flag || info.d_max_flag;
    view = {};
    if (!info.isHevc) {
        s.ue(at("depth_info_view_id", i), view.depth_info_view_id);
        if ((info.z_near_flag || info.z_far_flag) && !info.z_axis_equal_flag) {
            s.ue(at("z_axis_reference_view", i), view.z_axis_reference_view);
        }
        if (hasDisparity) {
            s.ue(at("disparity_reference_view", i), view.disparity_reference_view);
        }
    } else if (hasDisparity) {
        s.ue("disparity_ref_view_id", view.disparity_reference_view);
    }
    if (info.z_near_flag) {
        depth_representation_element(s, info.isHevc, view.z_near);
    }
    if (info.z_far_flag) {
        depth_representation_element(s, info.isHevc, view.z_far);
    }
    if (info.d_min_flag) {
        depth_representation_element(s, info.isHevc, view.d_min);
    }
    if (info.d_max_flag) {
        depth_representation_element(s, info.isHevc, view.d_max);
    }
}

// Border i of the mapping, whose subscript is i + 1.
template <class Syntax>
void nonlinear_depth(Syntax& s, const DepthRepresentationInfo& info, uint32_t i, NonlinearDepth& border) {
    static_cast<void>(info);
    s.ue(at("depth_nonlinear_representation_model", i + 1), border.depth_nonlinear_representation_model);
}

// all_views_equal_flag to depth_representation_type
template <class Syntax>
void depth_representation_flags(Syntax& s, const Context& context, DepthRepresentationInfo& info) {
    const bool isAvc = context.codec == Codec::Avc;
    if (isAvc) {
        s.flag("all_views_equal_flag", info.all_views_equal_flag);
        if (!info.all_views_equal_flag) {
            s.ue("num_views_minus1", info.num_views_minus1, 0, avc::kMostViews - 1);
        }
    }
    s.flag("z_near_flag", info.z_near_flag);
    s.flag("z_far_flag", info.z_far_flag);
    if (isAvc && (info.z_near_flag || info.z_far_flag)) {
        s.flag("z_axis_equal_flag", info.z_axis_equal_flag);
        if (info.z_axis_equal_flag) {
            s.ue("common_z_axis_reference_view", info.common_z_axis_reference_view);
        }
    }
    s.flag("d_min_flag", info.d_min_flag);
    s.flag("d_max_flag", info.d_max_flag);
    s.ue("depth_representation_type", info.depth_representation_type, 0, isAvc ? kMostUe : 15);
}

// depth_representation_info(), H.264 I.13.1.3, H.265 G.14.2.4
template <class Syntax>
void depth_representation_info(Syntax& s, const Context& context, DepthRepresentationInfo& info) {
    constexpr uint32_t kNonlinear = 3;
    static constexpr SharedStructure kStructure =
        sharedStructure("depth_representation_info()", "I.13.1.3", "G.14.2.4");
    const Within<Syntax> within(s, kStructure.of(context));
    s.infer(info.isHevc, context.codec == Codec::Hevc);
    depth_representation_flags(s, context, info);
    s.keep(info.views, [&info](auto& in) {
        DepthRepresentation view;
        for (uint32_t i = 0; i <= info.num_views_minus1 && !in.failed(); ++i) {
            depth_representation(in, info, i, view);
        }
    });
    if (info.depth_representation_type == kNonlinear) {
        s.ue("depth_nonlinear_representation_num_minus1", info.depth_nonlinear_representation_num_minus1);
        s.keep(info.depth_nonlinear_representation_model, [&info](auto& in) {
            NonlinearDepth border = {};
            for (uint32_t i = 0; i <= info.depth_nonlinear_representation_num_minus1 && !in.failed(); ++i) {
                nonlinear_depth(in, info, i, border);
            }
        });
    }
}

// depth_timing_offset(), I.13.1.5.1
template <class Syntax>
void depth_timing_offset(Syntax& s, const DepthTiming& timing, uint32_t i, DepthTimingOffset& offset) {
    static_cast<void>(timing);
    static_cast<void>(i);
    static constexpr Structure kStructure = {"depth_timing_offset()", "I.13.1.5.1"};
    const Within<Syntax> within(s, kStructure);
    s.u(5, "offset_len_minus1", offset.offset_len_minus1);
    s.u(offset.offset_len_minus1 + 1, "depth_disp_delay_offset_fp", offset.depth_disp_delay_offset_fp);
    s.u(6, "depth_disp_delay_offset_dp", offset.depth_disp_delay_offset_dp);
}

// True while another depth_timing_offset() follows. It has 12 bits at least, and the bits that align the
// payload are 7 at most.
inline bool more_depth_timing_offsets(Reader reader) {
    constexpr uint32_t kLeastBits = 12;
    return reader.bitsInReach(kLeastBits) == kLeastBits;
}
inline bool more_depth_timing_offsets(const Tracer& tracer) {
    return more_depth_timing_offsets(tracer.reader());
}

// depth_timing(), I.13.1.5
template <class Syntax>
void depth_timing(Syntax& s, const Context& context, DepthTiming& timing) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"depth_timing()", "I.13.1.5"};
    const Within<Syntax> within(s, kStructure);
    s.flag("per_view_depth_timing_flag", timing.per_view_depth_timing_flag);
    s.keep(timing.offsets, [&timing](auto& in) {
        DepthTimingOffset offset = {};
        uint32_t i = 0;
        do {
            depth_timing_offset(in, timing, i++, offset);
        } while (timing.per_view_depth_timing_flag && more_depth_timing_offsets(in));
    });
}

// depth_grid_position(), I.13.1.7.1
template <class Syntax>
void depth_grid_position(Syntax& s, DepthGridPosition& position) {
    static constexpr Structure kStructure = {"depth_grid_position()", "I.13.1.7.1"};
    const Within<Syntax> within(s, kStructure);
    s.u(20, "depth_grid_pos_x_fp", position.depth_grid_pos_x_fp);
    s.u(4, "depth_grid_pos_x_dp", position.depth_grid_pos_x_dp);
    s.flag("depth_grid_pos_x_sign_flag", position.depth_grid_pos_x_sign_flag);
    s.u(20, "depth_grid_pos_y_fp", position.depth_grid_pos_y_fp);
    s.u(4, "depth_grid_pos_y_dp", position.depth_grid_pos_y_dp);
    s.flag("depth_grid_pos_y_sign_flag", position.depth_grid_pos_y_sign_flag);
}

// The position of view i, or of all views.
template <class Syntax>
void depth_grid_view(Syntax& s, const DepthSamplingInfo& info, uint32_t i, DepthGridPosition& position) {
    s.infer(position.depth_grid_view_id, 0);
    if (info.per_view_depth_grid_pos_flag) {
        s.ue(at("depth_grid_view_id", i), position.depth_grid_view_id);
    }
    depth_grid_position(s, position);
}

// depth_sampling_info(), I.13.1.7
template <class Syntax>
void depth_sampling_info(Syntax& s, const Context& context, DepthSamplingInfo& info) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"depth_sampling_info()", "I.13.1.7"};
    const Within<Syntax> within(s, kStructure);
    s.u(16, "dttsr_x_mul", info.dttsr_x_mul);
    s.u(4, "dttsr_x_dp", info.dttsr_x_dp);
    s.u(16, "dttsr_y_mul", info.dttsr_y_mul);
    s.u(4, "dttsr_y_dp", info.dttsr_y_dp);
    s.flag("per_view_depth_grid_pos_flag", info.per_view_depth_grid_pos_flag);
    if (info.per_view_depth_grid_pos_flag) {
        s.ue("num_video_plus_depth_views_minus1", info.num_video_plus_depth_views_minus1, 0,
             avc::kMostViews - 1);
    }
    s.keep(info.positions, [&info](auto& in) {
        DepthGridPosition position = {};
        for (uint32_t i = 0; i <= info.num_video_plus_depth_views_minus1 && !in.failed(); ++i) {
            depth_grid_view(in, info, i, position);
        }
    });
}

// constrained_depth_parameter_set_identifier(), J.13.1.1
template <class Syntax>
void constrained_depth_parameter_set_identifier(Syntax& s, const Context& context,
                                                ConstrainedDepthParameterSetIdentifier& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"constrained_depth_parameter_set_identifier()", "J.13.1.1"};
    const Within<Syntax> within(s, kStructure);
    s.ue("max_dps_id", payload.max_dps_id);
    s.ue("max_dps_id_diff", payload.max_dps_id_diff);
}

}  // namespace qv::sei

#endif
