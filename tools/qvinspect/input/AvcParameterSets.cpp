// ITU-T H.264 (08/2021) 7.3.2.1 and 7.3.2.2.
#include "input/AvcParameterSets.h"

#include <memory>

#include "QVNaluParser.h"
#include "analysis/CoreHooks.h"
#include "input/UnescapedUnit.h"

namespace qvinspect {

namespace {

// Far longer than any parameter set: slice_group_id[] of the largest picture takes 51 KiB.
constexpr size_t kLongestParameterSet = size_t{64} * 1024;

constexpr uint32_t kMostSliceGroups = 8;  // 7.4.2.2: num_slice_groups_minus1 is 0 to 7 in every profile

std::shared_ptr<QVByteStream> openUnit(const unsigned char* unit, size_t size) {
    // parseAvcSps and the plain cursor read bytes as they are.
    const auto bytes = unescapedUnit(unit, size, kLongestParameterSet);
    return std::make_shared<QVByteStream>(bytes.data(), bytes.size());
}

AvcSpsFields fieldsOf(const QVAvcSps& sps) {
    return {false,
            static_cast<uint32_t>(sps.log2_max_frame_num),
            static_cast<uint32_t>(sps.poc_type),
            static_cast<uint32_t>(sps.log2_max_poc_lsb),
            sps.delta_pic_order_always_zero_flag != 0,
            sps.frame_mbs_only_flag != 0};
}

// What parseAvcSps read ahead of refusing an SPS with separate colour planes.
bool hasSeparateColourPlanes(const QVAvcSps& sps) {
    return sps.chroma_format_idc == 3 && sps.residual_color_transform_flag != 0;
}

// Bits of one slice_group_id: Ceil( Log2( num_slice_groups_minus1 + 1 ) ).
uint32_t sliceGroupIdBits(uint32_t num_slice_groups_minus1) {
    return num_slice_groups_minus1 > 3 ? 3 : num_slice_groups_minus1 > 1 ? 2 : 1;
}

// The part of pic_parameter_set_rbsp() for num_slice_groups_minus1 > 0.
void readSliceGroups(QVByteStream& in, uint32_t num_slice_groups_minus1) {
    const uint32_t slice_group_map_type = in.readGolombUe();
    if (slice_group_map_type == 0) {
        for (uint32_t i = 0; i <= num_slice_groups_minus1; ++i) {
            in.readGolombUe();  // run_length_minus1
        }
    } else if (slice_group_map_type == 2) {
        for (uint32_t i = 0; i < num_slice_groups_minus1; ++i) {
            in.readGolombUe();  // top_left
            in.readGolombUe();  // bottom_right
        }
    } else if (slice_group_map_type >= 3 && slice_group_map_type <= 5) {
        in.readBit();       // slice_group_change_direction_flag
        in.readGolombUe();  // slice_group_change_rate_minus1
    } else if (slice_group_map_type == 6) {
        const uint64_t picSizeInMapUnits = uint64_t{in.readGolombUe()} + 1;
        in.skipBits(picSizeInMapUnits * sliceGroupIdBits(num_slice_groups_minus1));  // slice_group_id
    }
}

}  // namespace

void AvcParameterSets::takeSps(const unsigned char* unit, size_t size) {
    const LogCapture unread;  // where access units begin is no finding about the SPS
    QVAvcSps sps{};
    sps.sps_id = -1;
    const bool isRead = parseAvcSps(&sps, openUnit(unit, size));
    if (sps.sps_id < 0) {
        return;
    }
    auto& slot = sps_.at(static_cast<size_t>(sps.sps_id));
    slot.reset();
    if (isRead) {
        slot = fieldsOf(sps);
    } else if (hasSeparateColourPlanes(sps)) {
        slot = AvcSpsFields{};
        slot->hasSeparateColourPlanes = true;
    }
}

void AvcParameterSets::takePps(const unsigned char* unit, size_t size) {
    const auto in = openUnit(unit, size);
    in->skipBytes(1);  // nal_unit_header
    const uint32_t pic_parameter_set_id = in->readGolombUe();
    if (pic_parameter_set_id >= pps_.size() || in->atEnd()) {
        return;
    }
    AvcPpsFields pps{};
    pps.seq_parameter_set_id = in->readGolombUe();
    in->readBit();  // entropy_coding_mode_flag
    pps.bottom_field_pic_order_in_frame_present_flag = in->readBit() != 0;
    const uint32_t num_slice_groups_minus1 = in->readGolombUe();
    if (num_slice_groups_minus1 >= kMostSliceGroups) {
        pps_[pic_parameter_set_id].reset();
        return;
    }
    if (num_slice_groups_minus1 > 0) {
        readSliceGroups(*in, num_slice_groups_minus1);
    }
    in->readGolombUe();  // num_ref_idx_l0_default_active_minus1
    in->readGolombUe();  // num_ref_idx_l1_default_active_minus1
    in->readBit();       // weighted_pred_flag
    in->readBits(2);     // weighted_bipred_idc
    in->readGolombSe();  // pic_init_qp_minus26
    in->readGolombSe();  // pic_init_qs_minus26
    in->readGolombSe();  // chroma_qp_index_offset
    in->readBit();       // deblocking_filter_control_present_flag
    in->readBit();       // constrained_intra_pred_flag
    pps.redundant_pic_cnt_present_flag = in->readBit() != 0;
    pps_[pic_parameter_set_id] = pps;
}

const AvcPpsFields* AvcParameterSets::pps(uint32_t pic_parameter_set_id) const {
    return pic_parameter_set_id < pps_.size() && pps_[pic_parameter_set_id] ? &*pps_[pic_parameter_set_id]
                                                                            : nullptr;
}

const AvcSpsFields* AvcParameterSets::sps(uint32_t seq_parameter_set_id) const {
    return seq_parameter_set_id < sps_.size() && sps_[seq_parameter_set_id] ? &*sps_[seq_parameter_set_id]
                                                                            : nullptr;
}

}  // namespace qvinspect
