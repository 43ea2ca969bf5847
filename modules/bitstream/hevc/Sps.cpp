// The sequence parameter set of H.265, read, traced, written and sized.
#include "bitstream/hevc/Sps.h"

#include <cstddef>

#include "bitstream/hevc/SpsSyntax.h"
#include "bitstream/hevc/Vps.h"
#include "bitstream/syntax/Uses.h"

namespace qv::hevc {

const RepFormat* repFormatOf(const Sps& sps, const Vps* vps) noexcept {
    if (vps == nullptr || !vps->vps_extension_flag) {
        return nullptr;
    }
    const VpsExtension& ext = vps->extension;
    uint32_t index = sps.sps_rep_format_idx;
    if (!sps.update_rep_format_flag) {
        uint32_t layer = 0;
        while (layer < maxLayersMinus1(*vps) && ext.layer_id_in_nuh[layer] != sps.header.nuh_layer_id) {
            ++layer;
        }
        if (ext.layer_id_in_nuh[layer] != sps.header.nuh_layer_id) {
            return nullptr;
        }
        index = ext.vps_rep_format_idx[layer];
    }
    return index <= ext.vps_num_rep_formats_minus1 && index < VpsExtension::kMostRepFormats
               ? &ext.rep_format[index]
               : nullptr;
}

void inferSubLayers(Sps& sps, const Vps* vps) noexcept {
    sps.sps_max_sub_layers_minus1 =
        vps != nullptr ? lesser(vps->vps_max_sub_layers_minus1, kMostSubLayers - 1) : 0;
    sps.sps_temporal_id_nesting_flag = vps != nullptr && vps->vps_temporal_id_nesting_flag;
}

void inferFormat(Sps& sps, const RepFormat* format) noexcept {
    const RepFormat none = {};
    const RepFormat& from = format != nullptr ? *format : none;
    sps.chroma_format_idc = lesser(from.chroma_format_vps_idc, kChromaFormat444);
    sps.separate_colour_plane_flag = from.separate_colour_plane_vps_flag;
    sps.pic_width_in_luma_samples = from.pic_width_vps_in_luma_samples;
    sps.pic_height_in_luma_samples = from.pic_height_vps_in_luma_samples;
    sps.conformance_window_flag = from.conformance_window_vps_flag;
    sps.conf_win_left_offset = from.conf_win_vps_left_offset;
    sps.conf_win_right_offset = from.conf_win_vps_right_offset;
    sps.conf_win_top_offset = from.conf_win_vps_top_offset;
    sps.conf_win_bottom_offset = from.conf_win_vps_bottom_offset;
    sps.bit_depth_luma_minus8 = lesser(from.bit_depth_vps_luma_minus8, 8);
    sps.bit_depth_chroma_minus8 = lesser(from.bit_depth_vps_chroma_minus8, 8);
}

namespace {

auto unitOf(const Vps* vps) {
    return [vps](auto& s, auto& sps) { seq_parameter_set_unit(s, sps, vps); };
}

}  // namespace

}  // namespace qv::hevc

template <>
constexpr size_t qv::detail::kClearedBytes<qv::hevc::Sps> = offsetof(qv::hevc::Sps,
                                                                     vui.hrd_parameters.sub_layer);

namespace qv::hevc {

Read<Sps> readSps(Bytes unit, const Vps* vps) noexcept {
    return detail::readUnit<Sps>(unit, unitOf(vps));
}

Read<Sps> traceSps(Bytes unit, TraceVisitor& visitor, const Vps* vps) {
    return detail::traceUnit<Sps>(unit, visitor, unitOf(vps));
}

Written writeSps(const Sps& sps, std::vector<uint8_t>& out, const Vps* vps) {
    return detail::writeUnit(sps, out, unitOf(vps));
}

Sized sizeOf(const Sps& sps, const Vps* vps) noexcept {
    return detail::sizeUnit(sps, unitOf(vps));
}

}  // namespace qv::hevc
