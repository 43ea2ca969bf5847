/// \file
/// What a subset sequence parameter set says of a scalable stream.
#ifndef QV_BITSTREAM_AVC_SPSSVCEXTENSION_H
#define QV_BITSTREAM_AVC_SPSSVCEXTENSION_H

#include <cstdint>

#include "bitstream/avc/VuiExtensionTiming.h"
#include "bitstream/syntax/CodedBits.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

/// seq_parameter_set_svc_extension(), H.264 G.7.3.2.1.4 and G.7.4.2.1.4. An element that is not present has
/// the value that its semantics infer, otherwise 0.
struct SpsSvcExtension {
    bool inter_layer_deblocking_filter_control_present_flag;  ///< u(1)
    uint32_t extended_spatial_scalability_idc;                ///< u(2), 0..2
    bool chroma_phase_x_plus1_flag;                           ///< 1 when not present
    uint32_t chroma_phase_y_plus1;                            ///< u(2), 0..2; 1 when not present

    // With extended_spatial_scalability_idc 1. The offsets are in units of two luma samples.

    bool seq_ref_layer_chroma_phase_x_plus1_flag;  ///< chroma_phase_x_plus1_flag when not present
    uint32_t seq_ref_layer_chroma_phase_y_plus1;   ///< u(2), 0..2; chroma_phase_y_plus1 when not present
    int32_t seq_scaled_ref_layer_left_offset;      ///< se(v), -2^15..2^15 - 1
    int32_t seq_scaled_ref_layer_top_offset;       ///< se(v), -2^15..2^15 - 1
    int32_t seq_scaled_ref_layer_right_offset;     ///< se(v), -2^15..2^15 - 1
    int32_t seq_scaled_ref_layer_bottom_offset;    ///< se(v), -2^15..2^15 - 1

    bool seq_tcoeff_level_prediction_flag;       ///< u(1)
    bool adaptive_tcoeff_level_prediction_flag;  ///< u(1)
    bool slice_header_restriction_flag;          ///< u(1)
};

/// svc_vui_parameters_extension(), H.264 G.14.1 and G.14.2.
struct SvcVuiExtension {
    uint32_t vui_ext_num_entries_minus1;  ///< ue(v), 0..1023

    /// The entries, borrowed from the unit; see SvcVuiEntries.
    CodedBits entries;
};

/// An entry of svc_vui_parameters_extension(): what holds for the representation of one layer.
struct SvcVuiEntry {
    uint32_t vui_ext_dependency_id;  ///< u(3)
    uint32_t vui_ext_quality_id;     ///< u(4)
    uint32_t vui_ext_temporal_id;    ///< u(3)
    VuiExtensionTiming timing;       ///< of the entry
};

/// Reads the entries of svc_vui_parameters_extension(), in order.
class SvcVuiEntries {
public:
    /// \param vui  read without a fault; the unit that it was read from is borrowed
    explicit SvcVuiEntries(const SvcVuiExtension& vui) noexcept;

    /// Stores the next entry. False after the last one.
    bool next(SvcVuiEntry& entry) noexcept;

private:
    Reader reader_;
    uint32_t left_;
};

}  // namespace qv::avc

#endif
