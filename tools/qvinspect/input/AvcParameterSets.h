// The parameter sets of an H.264 stream, as far as the start of a slice header needs them.
#ifndef QVINSPECT_AVCPARAMETERSETS_H
#define QVINSPECT_AVCPARAMETERSETS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace qvinspect {

struct AvcSpsFields {
    bool hasSeparateColourPlanes;  // separate_colour_plane_flag; nothing below is known then
    uint32_t log2MaxFrameNum;
    uint32_t pic_order_cnt_type;
    uint32_t log2MaxPicOrderCntLsb;
    bool delta_pic_order_always_zero_flag;
    bool frame_mbs_only_flag;
};

struct AvcPpsFields {
    uint32_t seq_parameter_set_id;
    bool bottom_field_pic_order_in_frame_present_flag;
    bool redundant_pic_cnt_present_flag;
};

class AvcParameterSets {
public:
    // Whole NAL units of types 7 and 8. One that cannot be read takes the place of the one it would replace:
    // the slices behind it are then read without.
    void takeSps(const unsigned char* unit, size_t size);
    void takePps(const unsigned char* unit, size_t size);

    // Null when it was not seen or cannot be read.
    const AvcPpsFields* pps(uint32_t pic_parameter_set_id) const;
    const AvcSpsFields* sps(uint32_t seq_parameter_set_id) const;

private:
    std::array<std::optional<AvcSpsFields>, 32> sps_;
    std::array<std::optional<AvcPpsFields>, 256> pps_;
};

}  // namespace qvinspect

#endif
