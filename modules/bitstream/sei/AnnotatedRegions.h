/// \file
/// Objects in a picture: where they are and what they are called.
#ifndef QV_BITSTREAM_SEI_ANNOTATEDREGIONS_H
#define QV_BITSTREAM_SEI_ANNOTATEDREGIONS_H

#include <cstdint>

#include "bitstream/sei/CodedEntries.h"
#include "bitstream/sei/SeiPayload.h"
#include "bitstream/syntax/CodedBits.h"

namespace qv::sei {

/// annotated_regions(), H.264 D.1.38, H.265 D.2.47. Labels and objects stay as they are until a message
/// changes them; see labelUpdatesOf() and objectUpdatesOf(). The lists have bits that align the labels: they
/// are copied to where they were in the bytes, unless an element before them has another length.
struct AnnotatedRegions {
    static constexpr PayloadTypes kPayloadTypes = {202, 202};  ///< payloadType
    static constexpr uint32_t kMostTextBytes = 255;            ///< bytes of a text before its zero byte

    bool ar_cancel_flag;                          ///< u(1); nothing follows when it is 1
    bool ar_not_optimized_for_viewing_flag;       ///< u(1)
    bool ar_true_motion_flag;                     ///< u(1)
    bool ar_occluded_object_flag;                 ///< u(1)
    bool ar_partial_object_flag_present_flag;     ///< u(1)
    bool ar_object_label_present_flag;            ///< u(1)
    bool ar_object_confidence_info_present_flag;  ///< u(1)
    uint32_t ar_object_confidence_length_minus1;  ///< u(4)
    bool ar_object_label_language_present_flag;   ///< u(1)
    CodedBits ar_object_label_language;           ///< st(v), a tag of IETF RFC 5646, with its zero byte
    uint32_t ar_num_label_updates;                ///< ue(v), 0..255
    CodedBits label_updates;                      ///< an entry for each
    uint32_t ar_num_object_updates;               ///< ue(v), 0..255
    CodedBits object_updates;                     ///< an entry for each
};

/// A label that is set or cancelled: the first loop body of annotated_regions().
struct LabelUpdate {
    uint32_t ar_label_idx;      ///< ue(v), 0..255
    bool ar_label_cancel_flag;  ///< u(1)
    CodedBits ar_label;         ///< st(v), UTF-8, with its zero byte
};

/// An object that is set or cancelled: the second loop body of annotated_regions().
struct ObjectUpdate {
    uint32_t ar_object_idx;            ///< ue(v), 0..255
    bool ar_object_cancel_flag;        ///< u(1); nothing follows when it is 1
    bool ar_object_label_update_flag;  ///< u(1), with ar_object_label_present_flag
    uint32_t ar_object_label_idx;      ///< ue(v), 0..255
    bool ar_bounding_box_update_flag;  ///< u(1)
    bool ar_bounding_box_cancel_flag;  ///< u(1)
    uint32_t ar_bounding_box_top;      ///< u(16), luma samples
    uint32_t ar_bounding_box_left;     ///< u(16), luma samples
    uint32_t ar_bounding_box_width;    ///< u(16), luma samples
    uint32_t ar_bounding_box_height;   ///< u(16), luma samples
    bool ar_partial_object_flag;       ///< u(1), with ar_partial_object_flag_present_flag
    uint32_t ar_object_confidence;     ///< u(v), of 2^(ar_object_confidence_length_minus1 + 1)
};

/// The labels that \p regions changes, ar_num_label_updates of them.
CodedEntries<AnnotatedRegions, LabelUpdate> labelUpdatesOf(const AnnotatedRegions& regions) noexcept;

/// The objects that \p regions changes, ar_num_object_updates of them.
CodedEntries<AnnotatedRegions, ObjectUpdate> objectUpdatesOf(const AnnotatedRegions& regions) noexcept;

}  // namespace qv::sei

#endif
