// Objects in a picture as syntax functions.
#ifndef QV_BITSTREAM_SEI_ANNOTATEDREGIONSSYNTAX_H
#define QV_BITSTREAM_SEI_ANNOTATEDREGIONSSYNTAX_H

#include "bitstream/sei/AnnotatedRegions.h"
#include "bitstream/sei/PayloadSyntax.h"

namespace qv::sei {

// The most labels, objects and updates.
constexpr uint32_t kMostAnnotations = 255;

// The bits before a text, which begins with a byte.
template <class Syntax>
void ar_alignment(Syntax& s) {
    byte_alignment(s, "ar_bit_equal_to_zero", 0);
}

// The first loop body of annotated_regions().
template <class Syntax>
void label_update(Syntax& s, uint32_t i, LabelUpdate& update) {
    s.ue(at("ar_label_idx", i), update.ar_label_idx, 0, kMostAnnotations);
    s.flag("ar_label_cancel_flag", update.ar_label_cancel_flag);
    if (!update.ar_label_cancel_flag) {
        ar_alignment(s);
        st(s, at("ar_label", update.ar_label_idx), AnnotatedRegions::kMostTextBytes, update.ar_label);
    }
}

// The bounding box of an object and what is known with it.
template <class Syntax>
void bounding_box(Syntax& s, const AnnotatedRegions& regions, ObjectUpdate& update) {
    const uint32_t object = update.ar_object_idx;
    s.u(16, at("ar_bounding_box_top", object), update.ar_bounding_box_top);
    s.u(16, at("ar_bounding_box_left", object), update.ar_bounding_box_left);
    s.u(16, at("ar_bounding_box_width", object), update.ar_bounding_box_width);
    s.u(16, at("ar_bounding_box_height", object), update.ar_bounding_box_height);
    if (regions.ar_partial_object_flag_present_flag) {
        s.flag(at("ar_partial_object_flag", object), update.ar_partial_object_flag);
    }
    if (regions.ar_object_confidence_info_present_flag) {
        s.u(regions.ar_object_confidence_length_minus1 + 1, at("ar_object_confidence", object),
            update.ar_object_confidence);
    }
}

// The second loop body of annotated_regions().
template <class Syntax>
void object_update(Syntax& s, const AnnotatedRegions& regions, uint32_t i, ObjectUpdate& update) {
    s.ue(at("ar_object_idx", i), update.ar_object_idx, 0, kMostAnnotations);
    s.flag("ar_object_cancel_flag", update.ar_object_cancel_flag);
    if (update.ar_object_cancel_flag) {
        return;
    }
    if (regions.ar_object_label_present_flag) {
        s.flag("ar_object_label_update_flag", update.ar_object_label_update_flag);
        if (update.ar_object_label_update_flag) {
            s.ue(at("ar_object_label_idx", update.ar_object_idx), update.ar_object_label_idx, 0,
                 kMostAnnotations);
        }
    }
    s.flag("ar_bounding_box_update_flag", update.ar_bounding_box_update_flag);
    if (update.ar_bounding_box_update_flag) {
        s.flag("ar_bounding_box_cancel_flag", update.ar_bounding_box_cancel_flag);
        if (!update.ar_bounding_box_cancel_flag) {
            bounding_box(s, regions, update);
        }
    }
}

// The labels of annotated_regions() and their language.
template <class Syntax>
void object_labels(Syntax& s, AnnotatedRegions& payload) {
    s.flag("ar_object_label_language_present_flag", payload.ar_object_label_language_present_flag);
    if (payload.ar_object_label_language_present_flag) {
        ar_alignment(s);
        st(s, "ar_object_label_language", AnnotatedRegions::kMostTextBytes, payload.ar_object_label_language);
    }
    s.ue("ar_num_label_updates", payload.ar_num_label_updates, 0, kMostAnnotations);
    s.keep(payload.label_updates, [&payload](auto& in) {
        for (uint32_t i = 0; i < payload.ar_num_label_updates; ++i) {
            LabelUpdate update = {};
            label_update(in, i, update);
        }
    });
}

// annotated_regions(), H.264 D.1.38, H.265 D.2.47
template <class Syntax>
void annotated_regions(Syntax& s, const Context& context, AnnotatedRegions& payload) {
    static constexpr SharedStructure kStructure = sharedStructure("annotated_regions()", "D.1.38", "D.2.47");
    const Within<Syntax> within(s, kStructure.of(context));
    s.flag("ar_cancel_flag", payload.ar_cancel_flag);
    if (payload.ar_cancel_flag) {
        return;
    }
    s.flag("ar_not_optimized_for_viewing_flag", payload.ar_not_optimized_for_viewing_flag);
    s.flag("ar_true_motion_flag", payload.ar_true_motion_flag);
    s.flag("ar_occluded_object_flag", payload.ar_occluded_object_flag);
    s.flag("ar_partial_object_flag_present_flag", payload.ar_partial_object_flag_present_flag);
    s.flag("ar_object_label_present_flag", payload.ar_object_label_present_flag);
    s.flag("ar_object_confidence_info_present_flag", payload.ar_object_confidence_info_present_flag);
    if (payload.ar_object_confidence_info_present_flag) {
        s.u(4, "ar_object_confidence_length_minus1", payload.ar_object_confidence_length_minus1);
    }
    if (payload.ar_object_label_present_flag) {
        object_labels(s, payload);
    }
    s.ue("ar_num_object_updates", payload.ar_num_object_updates, 0, kMostAnnotations);
    s.keep(payload.object_updates, [&payload](auto& in) {
        for (uint32_t i = 0; i < payload.ar_num_object_updates; ++i) {
            ObjectUpdate update = {};
            object_update(in, payload, i, update);
        }
    });
}

}  // namespace qv::sei

#endif
