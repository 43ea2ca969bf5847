// ITU-T H.264 (08/2021) 7.3.3 and 7.4.1.2.4.
#include "input/AvcSliceHeader.h"

#include <array>

#include "QVByteStream.h"
#include "bitstream/avc/NalUnitType.h"
#include "bitstream/units/Rbsp.h"

namespace qvinspect {

namespace {

// Enough for every element up to redundant_pic_cnt at its greatest length.
constexpr size_t kLongestHeaderStart = 64;

bool isIdr(const AvcSliceHeader& slice) {
    return slice.nal_unit_type == qv::avc::kNalSliceIdr;
}

// A fault in the VUI does not matter to slice headers.
bool isUsable(const qv::avc::Activation& sets) {
    return sets.problem == qv::ActivationProblem::None ||
           (sets.problem == qv::ActivationProblem::FaultySps && sets.sps->vui_parameters_present_flag);
}

void readPictureOrder(QVByteStream& in, const qv::avc::SpsData& sps, const qv::avc::Pps& pps,
                      AvcSliceHeader& slice) {
    const bool hasBothFields = pps.bottom_field_pic_order_in_frame_present_flag && slice.field_pic_flag == 0;
    slice.pic_order_cnt_type = sps.pic_order_cnt_type;
    if (sps.pic_order_cnt_type == 0) {
        slice.pic_order_cnt_lsb = in.readBits(sps.log2_max_pic_order_cnt_lsb_minus4 + 4);
        if (hasBothFields) {
            slice.delta_pic_order_cnt_bottom = in.readGolombSe();
        }
    }
    if (sps.pic_order_cnt_type == 1 && !sps.delta_pic_order_always_zero_flag) {
        slice.delta_pic_order_cnt[0] = in.readGolombSe();
        if (hasBothFields) {
            slice.delta_pic_order_cnt[1] = in.readGolombSe();
        }
    }
}

// slice_header() from colour_plane_id on.
void readPictureIdentity(QVByteStream& in, const qv::avc::SpsData& sps, const qv::avc::Pps& pps,
                         AvcSliceHeader& slice) {
    if (sps.separate_colour_plane_flag) {
        slice.colour_plane_id = in.readBits(2);
    }
    slice.frame_num = in.readBits(sps.log2_max_frame_num_minus4 + 4);
    if (!sps.frame_mbs_only_flag) {
        slice.field_pic_flag = in.readBit();
        if (slice.field_pic_flag != 0) {
            slice.bottom_field_flag = in.readBit();
        }
    }
    if (isIdr(slice)) {
        slice.idr_pic_id = in.readGolombUe();
    }
    readPictureOrder(in, sps, pps, slice);
    if (pps.redundant_pic_cnt_present_flag) {
        slice.redundant_pic_cnt = in.readGolombUe();
    }
}

}  // namespace

AvcSliceHeader readAvcSliceHeader(const unsigned char* unit, size_t size,
                                  qv::avc::ParameterSets& parameterSets) {
    std::array<uint8_t, kLongestHeaderStart> bytes;
    const size_t count =
        qv::unescape(qv::Bytes(unit, size).first(bytes.size()), 1, bytes.data(), bytes.size());
    QVByteStream in(bytes.data(), count);

    AvcSliceHeader slice{};
    in.readBit();  // forbidden_zero_bit
    slice.nal_ref_idc = in.readBits(2);
    slice.nal_unit_type = in.readBits(5);
    slice.first_mb_in_slice = in.readGolombUe();
    in.readGolombUe();  // slice_type
    slice.pic_parameter_set_id = in.readGolombUe();

    const qv::avc::Activation sets =
        parameterSets.activate(slice.pic_parameter_set_id, qv::SliceBegins::CodedVideoSequence);
    slice.isWhole = isUsable(sets);
    if (slice.isWhole) {
        readPictureIdentity(in, *sets.sps, *sets.pps, slice);
    }
    return slice;
}

bool beginsPrimaryPicture(const AvcSliceHeader& last, const AvcSliceHeader& slice) {
    if (slice.frame_num != last.frame_num || slice.pic_parameter_set_id != last.pic_parameter_set_id ||
        slice.field_pic_flag != last.field_pic_flag || slice.bottom_field_flag != last.bottom_field_flag) {
        return true;
    }
    if ((slice.nal_ref_idc == 0) != (last.nal_ref_idc == 0)) {
        return true;
    }
    // An element that this type does not have is 0 in both.
    if (slice.pic_order_cnt_type == last.pic_order_cnt_type &&
        (slice.pic_order_cnt_lsb != last.pic_order_cnt_lsb ||
         slice.delta_pic_order_cnt_bottom != last.delta_pic_order_cnt_bottom ||
         slice.delta_pic_order_cnt[0] != last.delta_pic_order_cnt[0] ||
         slice.delta_pic_order_cnt[1] != last.delta_pic_order_cnt[1])) {
        return true;
    }
    return isIdr(slice) != isIdr(last) || (isIdr(slice) && slice.idr_pic_id != last.idr_pic_id);
}

}  // namespace qvinspect
