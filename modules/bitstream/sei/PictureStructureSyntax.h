// Frames, fields and the order of pictures as syntax functions.
#ifndef QV_BITSTREAM_SEI_PICTURESTRUCTURESYNTAX_H
#define QV_BITSTREAM_SEI_PICTURESTRUCTURESYNTAX_H

#include <cstdint>

#include "bitstream/hevc/NalUnitType.h"
#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/PictureStructure.h"

namespace qv::sei {

// frame_field_info(), H.265 F.14.2.11
template <class Syntax>
void frame_field_info(Syntax& s, const Context& context, FrameFieldInfo& payload) {
    static constexpr Structure kStructure = {"frame_field_info()", "F.14.2.11"};
    static_cast<void>(context);
    const Within<Syntax> within(s, kStructure);
    s.u(4, "ffinfo_pic_struct", payload.ffinfo_pic_struct);
    s.u(2, "ffinfo_source_scan_type", payload.ffinfo_source_scan_type);
    s.flag("ffinfo_duplicate_flag", payload.ffinfo_duplicate_flag);
}

// deinterlaced_field_identification(), H.265 D.2.34
template <class Syntax>
void deinterlaced_field_identification(Syntax& s, const Context& context,
                                       DeinterlacedFieldIdentification& payload) {
    static constexpr Structure kStructure = {"deinterlaced_field_identification()", "D.2.34"};
    static_cast<void>(context);
    const Within<Syntax> within(s, kStructure);
    s.flag("deinterlaced_picture_source_parity_flag", payload.deinterlaced_picture_source_parity_flag);
}

// The greatest sop_short_term_rps_idx.
inline uint32_t mostRpsIdxOf(const Context& context, uint32_t sop_seq_parameter_set_id) {
    const hevc::Sps* const sps =
        context.hevcSets != nullptr ? context.hevcSets->sps(sop_seq_parameter_set_id) : nullptr;
    const uint32_t sets = sps != nullptr ? sps->num_short_term_ref_pic_sets : 0;
    return (sets > 0 ? sets : hevc::Sps::kMostShortTermRefPicSets) - 1;
}

template <class Syntax>
void sop_entry(Syntax& s, uint32_t i, uint32_t mostRpsIdx, SopEntry& entry) {
    s.u(6, at("sop_vcl_nut", i), entry.sop_vcl_nut);
    s.u(3, at("sop_temporal_id", i), entry.sop_temporal_id);
    s.infer(entry.sop_short_term_rps_idx, 0);
    if (!hevc::isIdr(entry.sop_vcl_nut)) {
        s.ue(at("sop_short_term_rps_idx", i), entry.sop_short_term_rps_idx, 0, mostRpsIdx);
    }
    s.infer(entry.sop_poc_delta, 0);
    if (i > 0) {
        s.se(at("sop_poc_delta", i), entry.sop_poc_delta);
    }
}

// structure_of_pictures_info(), H.265 D.2.19
template <class Syntax>
void structure_of_pictures_info(Syntax& s, const Context& context, StructureOfPicturesInfo& payload) {
    static constexpr Structure kStructure = {"structure_of_pictures_info()", "D.2.19"};
    const Within<Syntax> within(s, kStructure);
    s.ue("sop_seq_parameter_set_id", payload.sop_seq_parameter_set_id, 0, 15);
    s.ue("num_entries_in_sop_minus1", payload.num_entries_in_sop_minus1, 0,
         StructureOfPicturesInfo::kMostEntries - 1);
    const uint32_t mostRpsIdx = mostRpsIdxOf(context, payload.sop_seq_parameter_set_id);
    s.keep(payload.entries, [&payload, mostRpsIdx](auto& in) {
        SopEntry entry;
        for (uint32_t i = 0; i <= payload.num_entries_in_sop_minus1 && !in.failed(); ++i) {
            sop_entry(in, i, mostRpsIdx, entry);
        }
    });
}

// temporal_sub_layer_zero_idx(), H.265 D.2.23
template <class Syntax>
void temporal_sub_layer_zero_idx(Syntax& s, const Context& context, TemporalSubLayerZeroIdx& payload) {
    static constexpr Structure kStructure = {"temporal_sub_layer_zero_idx()", "D.2.23"};
    static_cast<void>(context);
    const Within<Syntax> within(s, kStructure);
    s.u(8, "temporal_sub_layer_zero_idx", payload.temporal_sub_layer_zero_idx);
    s.u(8, "irap_pic_id", payload.irap_pic_id);
}

// coded_region_completion(), H.265 D.2.37
template <class Syntax>
void coded_region_completion(Syntax& s, const Context& context, CodedRegionCompletion& payload) {
    static constexpr Structure kStructure = {"coded_region_completion()", "D.2.37"};
    static_cast<void>(context);
    const Within<Syntax> within(s, kStructure);
    s.ue("next_segment_address", payload.next_segment_address);
    if (payload.next_segment_address > 0) {
        s.flag("independent_slice_segment_flag", payload.independent_slice_segment_flag);
    }
}

}  // namespace qv::sei

#endif
