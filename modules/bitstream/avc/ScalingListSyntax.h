// scaling_list() of H.264 as a syntax function.
#ifndef QV_BITSTREAM_AVC_SCALINGLISTSYNTAX_H
#define QV_BITSTREAM_AVC_SCALINGLISTSYNTAX_H

#include "bitstream/avc/ScalingList.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

// scaling_list(), 7.3.2.1.1.1
template <class Syntax>
void scaling_list(Syntax& s, ScalingList& list, uint32_t sizeOfScalingList) {
    static constexpr Structure kStructure = {"scaling_list()", "7.3.2.1.1.1"};
    const Within<Syntax> within(s, kStructure);
    int lastScale = 8;
    int nextScale = 8;
    uint32_t j = 0;
    for (; j < sizeOfScalingList && nextScale != 0; ++j) {
        s.se("delta_scale", list.delta_scale[j], -128, 127);
        nextScale = (lastScale + list.delta_scale[j] + 256) % 256;
        lastScale = nextScale == 0 ? lastScale : nextScale;
    }
    s.infer(list.deltaCount, j);
}

// The lists of a parameter set, each after its flag.
template <class Syntax>
void scaling_matrix(Syntax& s, ScalingMatrix& matrix, const char* presentFlag, uint32_t lists) {
    for (uint32_t i = 0; i < lists; ++i) {
        s.flag(at(presentFlag, i), matrix.scaling_list_present_flag[i]);
        if (matrix.scaling_list_present_flag[i]) {
            scaling_list(s, matrix.scaling_list[i], i < ScalingMatrix::k4x4Lists ? 16 : 64);
        }
    }
    // A PPS that was read for 4:2:0 may be used with an SPS of 4:4:4, which has more lists.
    for (uint32_t i = lists; i < ScalingMatrix::kMostLists; ++i) {
        s.infer(matrix.scaling_list_present_flag[i], false);
    }
}

}  // namespace qv::avc

#endif
