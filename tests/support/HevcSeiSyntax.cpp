#include "HevcSeiSyntax.h"

#include "SyntaxElements.h"

namespace qv_test {

namespace {

// Each table of the standard is one function, for any Elements: ElementWriter reads the values, ElementCutter
// changes them. Syntax is const for the one and not for the other.

template <class Elements, class Syntax>
void masteringDisplay(Elements& out, Syntax& s) {
    for (size_t c = 0; c < 3; ++c) {
        out.u(16, indexed("display_primaries_x", c), s.display_primaries_x[c]);
        out.u(16, indexed("display_primaries_y", c), s.display_primaries_y[c]);
    }
    out.u(16, "white_point_x", s.white_point_x);
    out.u(16, "white_point_y", s.white_point_y);
    out.u(32, "max_display_mastering_luminance", s.max_display_mastering_luminance);
    out.u(32, "min_display_mastering_luminance", s.min_display_mastering_luminance);
}

template <class Elements, class Syntax>
void contentLight(Elements& out, Syntax& s) {
    out.u(16, "max_content_light_level", s.max_content_light_level);
    out.u(16, "max_pic_average_light_level", s.max_pic_average_light_level);
}

template <class Elements, class Syntax>
void alternativeTransfer(Elements& out, Syntax& s) {
    out.u(8, "preferred_transfer_characteristics", s.preferred_transfer_characteristics);
}

template <class Elements, class Syntax>
void picTiming(Elements& out, Syntax& s) {
    out.u(4, "pic_struct", s.pic_struct);
    out.u(2, "source_scan_type", s.source_scan_type);
    out.u(1, "duplicate_flag", s.duplicate_flag);
}

template <class Elements, class Syntax>
void pictureHash(Elements& out, Syntax& s) {
    out.u(8, "hash_type", s.hash_type);
    for (size_t cIdx = 0; cIdx < 3; ++cIdx) {
        if (s.hash_type == 0) {
            for (size_t i = 0; i < 16; ++i) {
                out.u(8, indexed(indexed("picture_md5", cIdx), i), s.picture_md5[cIdx][i]);
            }
        } else if (s.hash_type == 1) {
            out.u(16, indexed("picture_crc", cIdx), s.picture_crc[cIdx]);
        } else if (s.hash_type == 2) {
            out.u(32, indexed("picture_checksum", cIdx), s.picture_checksum[cIdx]);
        }
    }
}

template <class Elements, class Syntax>
void activeParameterSets(Elements& out, Syntax& s) {
    out.u(4, "active_video_parameter_set_id", s.active_video_parameter_set_id);
    out.u(1, "self_contained_cvs_flag", s.self_contained_cvs_flag);
    out.u(1, "no_parameter_set_update_flag", s.no_parameter_set_update_flag);
    out.ue("num_sps_ids_minus1", s.num_sps_ids_minus1);
    for (size_t i = 0; i < s.active_seq_parameter_set_id.size(); ++i) {
        out.ue(indexed("active_seq_parameter_set_id", i), s.active_seq_parameter_set_id[i]);
    }
}

template <class Elements, class Syntax>
void gridPositions(Elements& out, Syntax& s) {
    out.u(4, "frame0_grid_position_x", s.frame0_grid_position_x);
    out.u(4, "frame0_grid_position_y", s.frame0_grid_position_y);
    out.u(4, "frame1_grid_position_x", s.frame1_grid_position_x);
    out.u(4, "frame1_grid_position_y", s.frame1_grid_position_y);
}

template <class Elements, class Syntax>
void framePacking(Elements& out, Syntax& s) {
    out.ue("frame_packing_arrangement_id", s.frame_packing_arrangement_id);
    out.u(1, "frame_packing_arrangement_cancel_flag", s.frame_packing_arrangement_cancel_flag);
    if (s.frame_packing_arrangement_cancel_flag == 0) {
        out.u(7, "frame_packing_arrangement_type", s.frame_packing_arrangement_type);
        out.u(1, "quincunx_sampling_flag", s.quincunx_sampling_flag);
        out.u(6, "content_interpretation_type", s.content_interpretation_type);
        out.u(1, "spatial_flipping_flag", s.spatial_flipping_flag);
        out.u(1, "frame0_flipped_flag", s.frame0_flipped_flag);
        out.u(1, "field_views_flag", s.field_views_flag);
        out.u(1, "current_frame_is_frame0_flag", s.current_frame_is_frame0_flag);
        out.u(1, "frame0_self_contained_flag", s.frame0_self_contained_flag);
        out.u(1, "frame1_self_contained_flag", s.frame1_self_contained_flag);
        if (s.quincunx_sampling_flag == 0 && s.frame_packing_arrangement_type != 5) {
            gridPositions(out, s);
        }
        out.u(8, "frame_packing_arrangement_reserved_byte", s.frame_packing_arrangement_reserved_byte);
        out.u(1, "frame_packing_arrangement_persistence_flag", s.frame_packing_arrangement_persistence_flag);
    }
    out.u(1, "upsampled_aspect_ratio_flag", s.upsampled_aspect_ratio_flag);
}

template <class Elements, class Syntax>
void displayOrientation(Elements& out, Syntax& s) {
    out.u(1, "display_orientation_cancel_flag", s.display_orientation_cancel_flag);
    if (s.display_orientation_cancel_flag == 0) {
        out.u(1, "hor_flip", s.hor_flip);
        out.u(1, "ver_flip", s.ver_flip);
        out.u(16, "anticlockwise_rotation", s.anticlockwise_rotation);
        out.u(1, "display_orientation_persistence_flag", s.display_orientation_persistence_flag);
    }
}

template <class Syntax>
BitWriter written(void (*table)(ElementWriter&, const Syntax&), const Syntax& syntax, unsigned lead) {
    ElementWriter out;
    out.u(lead, "lead", ~0U);
    table(out, syntax);
    return out.written();
}

template <class Syntax>
Syntax cut(void (*table)(ElementCutter&, Syntax&), const Syntax& syntax, size_t bitCount) {
    Syntax left = syntax;
    ElementCutter out(bitCount);
    table(out, left);
    return left;
}

}  // namespace

BitWriter hevcSei(const HevcMasteringDisplaySyntax& syntax, unsigned lead) {
    return written(&masteringDisplay, syntax, lead);
}

BitWriter hevcSei(const HevcContentLightSyntax& syntax, unsigned lead) {
    return written(&contentLight, syntax, lead);
}

BitWriter hevcSei(const HevcAlternativeTransferSyntax& syntax, unsigned lead) {
    return written(&alternativeTransfer, syntax, lead);
}

BitWriter hevcSei(const HevcPicTimingSyntax& syntax, unsigned lead) {
    return written(&picTiming, syntax, lead);
}

BitWriter hevcSei(const HevcPictureHashSyntax& syntax, unsigned lead) {
    return written(&pictureHash, syntax, lead);
}

BitWriter hevcSei(const HevcActiveParameterSetsSyntax& syntax, unsigned lead) {
    return written(&activeParameterSets, syntax, lead);
}

BitWriter hevcSei(const HevcFramePackingSyntax& syntax, unsigned lead) {
    return written(&framePacking, syntax, lead);
}

BitWriter hevcSei(const HevcDisplayOrientationSyntax& syntax, unsigned lead) {
    return written(&displayOrientation, syntax, lead);
}

HevcMasteringDisplaySyntax cutAt(const HevcMasteringDisplaySyntax& syntax, size_t bitCount) {
    return cut(&masteringDisplay, syntax, bitCount);
}

HevcContentLightSyntax cutAt(const HevcContentLightSyntax& syntax, size_t bitCount) {
    return cut(&contentLight, syntax, bitCount);
}

HevcAlternativeTransferSyntax cutAt(const HevcAlternativeTransferSyntax& syntax, size_t bitCount) {
    return cut(&alternativeTransfer, syntax, bitCount);
}

HevcPicTimingSyntax cutAt(const HevcPicTimingSyntax& syntax, size_t bitCount) {
    return cut(&picTiming, syntax, bitCount);
}

HevcPictureHashSyntax cutAt(const HevcPictureHashSyntax& syntax, size_t bitCount) {
    return cut(&pictureHash, syntax, bitCount);
}

HevcFramePackingSyntax cutAt(const HevcFramePackingSyntax& syntax, size_t bitCount) {
    return cut(&framePacking, syntax, bitCount);
}

HevcDisplayOrientationSyntax cutAt(const HevcDisplayOrientationSyntax& syntax, size_t bitCount) {
    return cut(&displayOrientation, syntax, bitCount);
}

}  // namespace qv_test
