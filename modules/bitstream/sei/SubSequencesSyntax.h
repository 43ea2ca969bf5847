// Sub-sequences as syntax functions.
#ifndef QV_BITSTREAM_SEI_SUBSEQUENCESSYNTAX_H
#define QV_BITSTREAM_SEI_SUBSEQUENCESSYNTAX_H

#include "bitstream/sei/FrameNumRange.h"
#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/SubSequences.h"

namespace qv::sei {

constexpr uint32_t kMostSubSeqLayerNum = 255;
constexpr uint32_t kMostSubSeqId = 65535;

// sub_seq_info(), H.264 D.1.12
template <class Syntax>
void sub_seq_info(Syntax& s, const Context& context, SubSeqInfo& payload) {
    static constexpr Structure kStructure = {"sub_seq_info()", "D.1.12"};
    const Within<Syntax> within(s, kStructure);
    s.ue("sub_seq_layer_num", payload.sub_seq_layer_num, 0, kMostSubSeqLayerNum);
    s.ue("sub_seq_id", payload.sub_seq_id, 0, kMostSubSeqId);
    s.flag("first_ref_pic_flag", payload.first_ref_pic_flag);
    s.flag("leading_non_ref_pic_flag", payload.leading_non_ref_pic_flag);
    s.flag("last_pic_flag", payload.last_pic_flag);
    s.flag("sub_seq_frame_num_flag", payload.sub_seq_frame_num_flag);
    if (payload.sub_seq_frame_num_flag) {
        s.ue("sub_seq_frame_num", payload.sub_seq_frame_num, 0, mostFrameNum(context));
    }
}

// sub_seq_layer_characteristics(), H.264 D.1.13
template <class Syntax>
void sub_seq_layer_characteristics(Syntax& s, const Context& context, SubSeqLayerCharacteristics& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"sub_seq_layer_characteristics()", "D.1.13"};
    const Within<Syntax> within(s, kStructure);
    s.ue("num_sub_seq_layers_minus1", payload.num_sub_seq_layers_minus1, 0,
         SubSeqLayerCharacteristics::kMostLayers - 1);
    for (uint32_t layer = 0; layer <= payload.num_sub_seq_layers_minus1; ++layer) {
        s.flag("accurate_statistics_flag", payload.accurate_statistics_flag[layer]);
        s.u(16, "average_bit_rate", payload.average_bit_rate[layer]);
        s.u(16, "average_frame_rate", payload.average_frame_rate[layer]);
    }
}

// sub_seq_characteristics(), H.264 D.1.14
template <class Syntax>
void sub_seq_characteristics(Syntax& s, const Context& context, SubSeqCharacteristics& payload) {
    static_cast<void>(context);
    static constexpr Structure kStructure = {"sub_seq_characteristics()", "D.1.14"};
    const Within<Syntax> within(s, kStructure);
    s.ue("sub_seq_layer_num", payload.sub_seq_layer_num, 0, kMostSubSeqLayerNum);
    s.ue("sub_seq_id", payload.sub_seq_id, 0, kMostSubSeqId);
    s.flag("duration_flag", payload.duration_flag);
    if (payload.duration_flag) {
        s.u(32, "sub_seq_duration", payload.sub_seq_duration);
    }
    s.flag("average_rate_flag", payload.average_rate_flag);
    if (payload.average_rate_flag) {
        s.flag("accurate_statistics_flag", payload.accurate_statistics_flag);
        s.u(16, "average_bit_rate", payload.average_bit_rate);
        s.u(16, "average_frame_rate", payload.average_frame_rate);
    }
    s.ue("num_referenced_subseqs", payload.num_referenced_subseqs, 0,
         SubSeqCharacteristics::kMostReferencedSubSeqs);
    for (uint32_t n = 0; n < payload.num_referenced_subseqs; ++n) {
        s.ue("ref_sub_seq_layer_num", payload.ref_sub_seq_layer_num[n], 0, kMostSubSeqLayerNum);
        s.ue("ref_sub_seq_id", payload.ref_sub_seq_id[n], 0, kMostSubSeqId);
        s.flag("ref_sub_seq_direction", payload.ref_sub_seq_direction[n]);
    }
}

}  // namespace qv::sei

#endif
