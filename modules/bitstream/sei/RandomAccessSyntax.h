// Random access as syntax functions.
#ifndef QV_BITSTREAM_SEI_RANDOMACCESSSYNTAX_H
#define QV_BITSTREAM_SEI_RANDOMACCESSSYNTAX_H

#include <cstdint>

#include "bitstream/sei/PayloadSyntax.h"
#include "bitstream/sei/RandomAccess.h"

namespace qv::sei {

// MaxFrameNum and MaxPicOrderCntLsb are 65536 at most. The SPS of the picture, which is not known for certain
// before the slice, may set a lower limit.
constexpr uint32_t kMostMaxFrameNum = 65536;
constexpr int32_t kMostMaxPicOrderCntLsb = 65536;

// recovery_point(), H.264 D.1.8
template <class Syntax>
void recovery_point(Syntax& s, const Context& context, AvcRecoveryPoint& payload) {
    static constexpr Structure kStructure = {"recovery_point()", "D.1.8"};
    static_cast<void>(context);
    const Within<Syntax> within(s, kStructure);
    s.ue("recovery_frame_cnt", payload.recovery_frame_cnt, 0, kMostMaxFrameNum - 1);
    s.flag("exact_match_flag", payload.exact_match_flag);
    s.flag("broken_link_flag", payload.broken_link_flag);
    s.u(2, "changing_slice_group_idc", payload.changing_slice_group_idc, 0, 2);
}

// recovery_point(), H.265 D.2.8
template <class Syntax>
void recovery_point(Syntax& s, const Context& context, HevcRecoveryPoint& payload) {
    static constexpr Structure kStructure = {"recovery_point()", "D.2.8"};
    static_cast<void>(context);
    const Within<Syntax> within(s, kStructure);
    s.se("recovery_poc_cnt", payload.recovery_poc_cnt, -kMostMaxPicOrderCntLsb / 2,
         kMostMaxPicOrderCntLsb / 2 - 1);
    s.flag("exact_match_flag", payload.exact_match_flag);
    s.flag("broken_link_flag", payload.broken_link_flag);
}

// region_refresh_info(), H.265 D.2.25
template <class Syntax>
void region_refresh_info(Syntax& s, const Context& context, RegionRefreshInfo& payload) {
    static constexpr Structure kStructure = {"region_refresh_info()", "D.2.25"};
    static_cast<void>(context);
    const Within<Syntax> within(s, kStructure);
    s.flag("refreshed_region_flag", payload.refreshed_region_flag);
}

// dependent_rap_indication(), H.265 D.2.36
template <class Syntax>
void dependent_rap_indication(Syntax& s, const Context& context, DependentRapIndication& payload) {
    static constexpr Structure kStructure = {"dependent_rap_indication()", "D.2.36"};
    static_cast<void>(context);
    static_cast<void>(payload);
    const Within<Syntax> within(s, kStructure);
}

}  // namespace qv::sei

#endif
