// Reference picture marking and spare pictures as syntax functions.
#ifndef QV_BITSTREAM_SEI_PICTUREMARKINGSYNTAX_H
#define QV_BITSTREAM_SEI_PICTUREMARKINGSYNTAX_H

#include "bitstream/avc/DecRefPicMarkingSyntax.h"
#include "bitstream/avc/PictureFormat.h"
#include "bitstream/sei/FrameNumRange.h"
#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/PictureMarking.h"

namespace qv::sei {

// dec_ref_pic_marking_repetition(), H.264 D.1.9
template <class Syntax>
void dec_ref_pic_marking_repetition(Syntax& s, const Context& context, DecRefPicMarkingRepetition& payload) {
    static constexpr Structure kStructure = {"dec_ref_pic_marking_repetition()", "D.1.9"};
    const Within<Syntax> within(s, kStructure);
    if (context.avcSps == nullptr) {
        s.fail(FaultKind::NoSuchSet, "seq_parameter_set_id", 0);
        return;
    }
    s.flag("original_idr_flag", payload.original_idr_flag);
    s.ue("original_frame_num", payload.original_frame_num, 0, mostFrameNum(context));
    if (!context.avcSps->frame_mbs_only_flag) {
        s.flag("original_field_pic_flag", payload.original_field_pic_flag);
        if (payload.original_field_pic_flag) {
            s.flag("original_bottom_field_flag", payload.original_bottom_field_flag);
        }
    }
    dec_ref_pic_marking(s, payload.original_idr_flag, context.avcSps->max_num_ref_frames,
                        payload.dec_ref_pic_marking);
}

template <class Syntax>
void spare_unit_flags(Syntax& s, uint32_t i, uint64_t PicSizeInMapUnits) {
    for (uint64_t j = 0; j < PicSizeInMapUnits && !s.failed(); ++j) {
        bool spare_unit_flag = false;
        s.flag(at("spare_unit_flag", i, j), spare_unit_flag);
    }
}

template <class Syntax>
void zero_run_lengths(Syntax& s, uint32_t i, uint64_t PicSizeInMapUnits) {
    uint64_t mapUnitCnt = 0;
    for (uint32_t j = 0; mapUnitCnt < PicSizeInMapUnits && !s.failed(); ++j) {
        uint32_t zero_run_length = 0;
        s.ue(at("zero_run_length", i, j), zero_run_length);
        mapUnitCnt += uint64_t{zero_run_length} + 1;
    }
}

// spare_pic(), H.264 D.1.10
template <class Syntax>
void spare_pic(Syntax& s, const Context& context, SparePic& payload) {
    static constexpr Structure kStructure = {"spare_pic()", "D.1.10"};
    const Within<Syntax> within(s, kStructure);
    if (context.avcSps == nullptr) {
        s.fail(FaultKind::NoSuchSet, "seq_parameter_set_id", 0);
        return;
    }
    const uint64_t PicSizeInMapUnits = avc::picSizeInMapUnits(*context.avcSps);
    s.ue("target_frame_num", payload.target_frame_num, 0, mostFrameNum(context));
    s.flag("spare_field_flag", payload.spare_field_flag);
    if (payload.spare_field_flag) {
        s.flag("target_bottom_field_flag", payload.target_bottom_field_flag);
    }
    s.ue("num_spare_pics_minus1", payload.num_spare_pics_minus1, 0, SparePic::kMostSparePics - 1);
    for (uint32_t i = 0; i <= payload.num_spare_pics_minus1; ++i) {
        s.ue(at("delta_spare_frame_num", i), payload.delta_spare_frame_num[i], 0,
             mostFrameNum(context) - (payload.spare_field_flag ? 0 : 1));
        if (payload.spare_field_flag) {
            s.flag(at("spare_bottom_field_flag", i), payload.spare_bottom_field_flag[i]);
        }
        s.ue(at("spare_area_idc", i), payload.spare_area_idc[i], 0, 2);
        if (payload.spare_area_idc[i] == 1) {
            s.keep(payload.spare_area[i], [=](auto& in) { spare_unit_flags(in, i, PicSizeInMapUnits); });
        } else if (payload.spare_area_idc[i] == 2) {
            s.keep(payload.spare_area[i], [=](auto& in) { zero_run_lengths(in, i, PicSizeInMapUnits); });
        }
    }
}

}  // namespace qv::sei

#endif
