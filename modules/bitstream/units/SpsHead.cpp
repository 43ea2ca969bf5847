// The beginning of sequence parameter sets.
#include "bitstream/units/SpsHead.h"

#include "bitstream/avc/SpsSyntax.h"
#include "bitstream/syntax/Reader.h"

namespace qv::avc {

Fault readSpsHead(Bytes unit, SpsHead& sps) noexcept {
    static constexpr Structure kStructure = {"seq_parameter_set_data()", "7.3.2.1.1"};
    Reader s(unit);
    NalUnitHeader header = {};
    nal_unit_of(s, header, kNalSps);
    const Within<Reader> within(s, kStructure);
    uint32_t seq_parameter_set_id = 0;
    bool separate_colour_plane_flag = false;
    s.u(8, "profile_idc", sps.profile_idc);
    s.u(8, "constraint_set_flags", sps.constraint_set_flags);
    s.u(8, "level_idc", sps.level_idc);
    s.ue("seq_parameter_set_id", seq_parameter_set_id, 0, 31);
    s.infer(sps.chroma_format_idc, 1);
    if (hasChromaSyntax(sps.profile_idc)) {
        s.ue("chroma_format_idc", sps.chroma_format_idc, 0, 3);
        if (sps.chroma_format_idc == kChromaFormat444) {
            s.flag("separate_colour_plane_flag", separate_colour_plane_flag);
        }
        s.ue("bit_depth_luma_minus8", sps.bit_depth_luma_minus8, 0, 6);
        s.ue("bit_depth_chroma_minus8", sps.bit_depth_chroma_minus8, 0, 6);
    }
    return s.fault();
}

}  // namespace qv::avc

namespace qv::hevc {

namespace {

constexpr uint32_t kNalVps = 32;
constexpr uint32_t kNalSps = 33;

// nal_unit_header(), 7.3.1.2, of a unit of one type
void nal_unit_of(Reader& s, uint32_t wanted) noexcept {
    static constexpr Structure kStructure = {"nal_unit_header()", "7.3.1.2"};
    const Within<Reader> within(s, kStructure);
    uint32_t nal_unit_type = 0;
    uint32_t value = 0;
    s.header(2);
    s.f(1, "forbidden_zero_bit", 0);
    s.u(6, "nal_unit_type", nal_unit_type);
    s.u(6, "nuh_layer_id", value);
    s.u(3, "nuh_temporal_id_plus1", value, 1, 7);
    if (nal_unit_type != wanted) {
        s.fail(FaultKind::OtherUnit, "nal_unit_type", nal_unit_type);
    }
    s.rbsp();
}

// The general part of profile_tier_level(), 7.3.3
void profile_tier_level(Reader& s, SpsHead& set) noexcept {
    static constexpr Structure kStructure = {"profile_tier_level()", "7.3.3"};
    const Within<Reader> within(s, kStructure);
    s.u(2, "general_profile_space", set.general_profile_space);
    s.flag("general_tier_flag", set.general_tier_flag);
    s.u(5, "general_profile_idc", set.general_profile_idc);
    s.u(32, "general_profile_compatibility_flags", set.general_profile_compatibility_flags);
    s.u(48, "general_constraint_indicator_flags", set.general_constraint_indicator_flags);
    s.u(8, "general_level_idc", set.general_level_idc);
}

}  // namespace

Fault readSpsHead(Bytes unit, SpsHead& sps) noexcept {
    static constexpr Structure kStructure = {"seq_parameter_set_rbsp()", "7.3.2.2.1"};
    Reader s(unit);
    nal_unit_of(s, kNalSps);
    const Within<Reader> within(s, kStructure);
    uint32_t value = 0;
    s.u(4, "sps_video_parameter_set_id", value);
    s.u(3, "sps_max_sub_layers_minus1", sps.max_sub_layers_minus1, 0, 6);
    s.flag("sps_temporal_id_nesting_flag", sps.temporal_id_nesting_flag);
    profile_tier_level(s, sps);
    return s.fault();
}

Fault readVpsHead(Bytes unit, SpsHead& vps) noexcept {
    static constexpr Structure kStructure = {"video_parameter_set_rbsp()", "7.3.2.1"};
    Reader s(unit);
    nal_unit_of(s, kNalVps);
    const Within<Reader> within(s, kStructure);
    uint32_t value = 0;
    bool flag = false;
    s.u(4, "vps_video_parameter_set_id", value);
    s.flag("vps_base_layer_internal_flag", flag);
    s.flag("vps_base_layer_available_flag", flag);
    s.u(6, "vps_max_layers_minus1", value);
    s.u(3, "vps_max_sub_layers_minus1", vps.max_sub_layers_minus1, 0, 6);
    s.flag("vps_temporal_id_nesting_flag", vps.temporal_id_nesting_flag);
    s.u(16, "vps_reserved_0xffff_16bits", value);
    profile_tier_level(s, vps);
    return s.fault();
}

}  // namespace qv::hevc
