// The H.264 sequence parameter set: seq_parameter_set_data() and scaling_list(), ITU-T H.264 (08/2021)
// 7.3.2.1.1, 7.3.2.1.1.1 and 7.4.2.1.1. Emulation prevention bytes are read as data (D06), bits past
// the end as 0 (D39).
#include "QVAvcSps.h"

#include <cstddef>
#include <cstring>

#include "detail/BitWindow.h"
#include "detail/Log.h"
#include "detail/RecordField.h"

using namespace qv_detail;

namespace {

using SharedStream = std::shared_ptr<QVByteStream>;

constexpr const char* kFunction = "parseAvcSps";

constexpr uint32_t kSpsIdEnd = 32;
constexpr uint32_t kChromaFormatEnd = 4;
constexpr uint32_t kChromaFormat444 = 3;
constexpr uint32_t kBitDepthEnd = 15;
constexpr uint32_t kLog2Minus4End = 13;
constexpr uint32_t kPocCycleEnd = 256;
constexpr uint32_t kRefFrameEnd = 17;
constexpr uint32_t kMbSizeEnd = INT32_MAX / 16;

constexpr size_t kEntries4x4 = 16;
constexpr size_t kEntries8x8 = 64;
constexpr int kIntra = 0;
constexpr int kInter = 1;
constexpr uint8_t kFlatWeight = 16;

// Table 7-3, in raster order.
constexpr uint8_t kDefaultScaling4[2][kEntries4x4] = {
    {6, 13, 20, 28, 13, 20, 28, 32, 20, 28, 32, 37, 28, 32, 37, 42},
    {10, 14, 20, 24, 14, 20, 24, 27, 20, 24, 27, 30, 24, 27, 30, 34},
};

// Table 7-4, in raster order.
constexpr uint8_t kDefaultScaling8[2][kEntries8x8] = {
    {6,  10, 13, 16, 18, 23, 25, 27, 10, 11, 16, 18, 23, 25, 27, 29, 13, 16, 18, 23, 25, 27,
     29, 31, 16, 18, 23, 25, 27, 29, 31, 33, 18, 23, 25, 27, 29, 31, 33, 36, 23, 25, 27, 29,
     31, 33, 36, 38, 25, 27, 29, 31, 33, 36, 38, 40, 27, 29, 31, 33, 36, 38, 40, 42},
    {9,  13, 15, 17, 19, 21, 22, 24, 13, 13, 17, 19, 21, 22, 24, 25, 15, 17, 19, 21, 22, 24,
     25, 27, 17, 19, 21, 22, 24, 25, 27, 28, 19, 21, 22, 24, 25, 27, 28, 30, 21, 22, 24, 25,
     27, 28, 30, 32, 22, 24, 25, 27, 28, 30, 32, 33, 24, 25, 27, 28, 30, 32, 33, 35},
};

// The frame zig-zag scans of 8.5.6 and 8.5.7 as raster indices.
constexpr uint8_t kZigzagScan[kEntries4x4] = {0, 1, 4, 8, 5, 2, 3, 6, 9, 12, 13, 10, 7, 11, 14, 15};
constexpr uint8_t kZigzagDirect[kEntries8x8] = {
    0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19, 26, 33, 40, 48,
    41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
    30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

// The lists of one size: their number of entries and their scan.
struct ScalingListShape {
    size_t entries;
    const uint8_t* scan;
};

constexpr ScalingListShape k4x4 = {kEntries4x4, kZigzagScan};
constexpr ScalingListShape k8x8 = {kEntries8x8, kZigzagDirect};

// A sub-step logs under its own name and holds its own reference on the stream. Only the host can observe the
// reference, from its log; so held() takes one that lasts for a log call: step.held().function is the
// function name of the line. A reference in every sub-step would cost more than its syntax elements.
class Step {
public:
    struct Held {
        SharedStream stream;
        const char* function;
    };

    Step(const char* function, const SharedStream& stream) : function_(function), stream_(stream) {}

    Held held() const { return {stream_, function_}; }

private:
    const char* function_;
    const SharedStream& stream_;
};

// D07: profiles 134, 135 and 139 have the chroma syntax too; here they do not.
bool hasChromaSyntax(uint32_t profile_idc) {
    switch (profile_idc) {
        case 100:
        case 110:
        case 122:
        case 244:
        case 44:
        case 83:
        case 86:
        case 118:
        case 128:
        case 138:
        case 144:
            return true;
        default:
            return false;
    }
}

bool fitsInt8(int32_t value) {
    return value >= INT8_MIN && value <= INT8_MAX;
}

// scaling_list(): delta_scale by delta_scale in scan order. An invalid one ends the list, not the parameter
// set (D09).
void decodeScalingList(PlainWindow& in, const Step& step, uint8_t* list, const ScalingListShape& shape,
                       const uint8_t* defaults) {
    uint32_t lastScale = 8;
    uint32_t nextScale = 8;
    for (size_t i = 0; i < shape.entries; ++i) {
        if (nextScale != 0) {
            const int32_t delta_scale = in.se();
            if (!fitsInt8(delta_scale)) {
                QV_LOG(QVTraceError, step.held().function, "parse_scaling_list, delta scale %d is invalid\n",
                       delta_scale);
                return;
            }
            nextScale = (lastScale + asElement(delta_scale)) % 256;
        }
        if (i == 0 && nextScale == 0) {
            std::memcpy(list, defaults, shape.entries);
            return;
        }
        lastScale = nextScale != 0 ? nextScale : lastScale;
        list[shape.scan[i]] = static_cast<uint8_t>(lastScale);
    }
}

// One list after its seq_scaling_list_present_flag. A list that is not present is a copy of inherited; one
// that asks for the default is a copy of defaults.
void parseScalingList(PlainWindow& in, const Step& step, uint8_t* list, const ScalingListShape& shape,
                      const uint8_t* inherited, const uint8_t* defaults) {
    const uint32_t seq_scaling_list_present_flag = in.u(1);
    if (seq_scaling_list_present_flag == 0) {
        std::memcpy(list, inherited, shape.entries);
        return;
    }
    decodeScalingList(in, step, list, shape, defaults);
}

// Table 7-2, fall-back rule set A: the first list of a kind falls back to the default, each other one to the
// list before it.
void parseScalingMatrices(QVAvcSps* sps, const SharedStream& stream) {
    const Step step("parseScalingList", stream);
    PlainWindow in(*stream);
    const auto parse4x4 = [&](int index, int kind, const uint8_t* inherited) {
        parseScalingList(in, step, sps->scaling_matrix4[index], k4x4, inherited, kDefaultScaling4[kind]);
    };
    const auto parse8x8 = [&](int index, int kind, const uint8_t* inherited) {
        parseScalingList(in, step, sps->scaling_matrix8[index], k8x8, inherited, kDefaultScaling8[kind]);
    };
    parse4x4(0, kIntra, kDefaultScaling4[kIntra]);
    parse4x4(1, kIntra, sps->scaling_matrix4[0]);
    parse4x4(2, kIntra, sps->scaling_matrix4[1]);
    parse4x4(3, kInter, kDefaultScaling4[kInter]);
    parse4x4(4, kInter, sps->scaling_matrix4[3]);
    parse4x4(5, kInter, sps->scaling_matrix4[4]);
    parse8x8(0, kIntra, kDefaultScaling8[kIntra]);
    parse8x8(3, kInter, kDefaultScaling8[kInter]);
    if (sps->chroma_format_idc == kChromaFormat444) {
        parse8x8(1, kIntra, sps->scaling_matrix8[0]);
        parse8x8(4, kInter, sps->scaling_matrix8[3]);
        parse8x8(2, kIntra, sps->scaling_matrix8[1]);
        parse8x8(5, kInter, sps->scaling_matrix8[4]);
    }
}

bool parseChromaFormat(QVAvcSps* sps, const Step& step, PlainWindow& in) {
    const uint32_t chroma_format_idc = in.ue();
    sps->chroma_format_idc = asField(chroma_format_idc);
    if (chroma_format_idc >= kChromaFormatEnd) {
        QV_LOG(QVTraceError, step.held().function, "parseAvcCDecoderSps, chroma_format_idc : %u",
               chroma_format_idc);
        return false;
    }
    if (chroma_format_idc != kChromaFormat444) {
        return true;
    }
    sps->residual_color_transform_flag = in.flag();
    if (sps->residual_color_transform_flag != 0) {  // D11
        QV_LOG(QVTraceError, step.held().function,
               "parseAvcCDecoderSps, separate color planes are not supported\n");
        return false;
    }
    return true;
}

bool parseBitDepth(QVAvcSps* sps, const Step& step, PlainWindow& in) {
    const uint32_t bitDepthLuma = in.ue() + 8;
    const uint32_t bitDepthChroma = in.ue() + 8;
    sps->bit_depth_luma = asField(bitDepthLuma);
    sps->bit_depth_chroma = asField(bitDepthChroma);
    if (bitDepthLuma != bitDepthChroma) {  // D31
        QV_LOG(QVTraceError, step.held().function,
               "parseAvcCDecoderSps, Different chroma and luma bit depth");
        return false;
    }
    if (bitDepthLuma >= kBitDepthEnd) {
        QV_LOG(QVTraceError, step.held().function,
               "parseAvcCDecoderSps, illegal bit depth value : (%d, %d)\n", sps->bit_depth_luma,
               sps->bit_depth_luma);
        return false;
    }
    return true;
}

// The syntax of the profile: chroma format, bit depths, scaling matrices.
bool parseAvcSpsForProfile(QVAvcSps* sps, const SharedStream& stream, PlainWindow& in) {
    const Step step("parseAvcSpsForProfile", stream);
    if (!hasChromaSyntax(asElement(sps->profile_idc))) {
        sps->chroma_format_idc = 1;
        sps->bit_depth_luma = 8;
        sps->bit_depth_chroma = 8;
        return true;
    }
    if (!parseChromaFormat(sps, step, in) || !parseBitDepth(sps, step, in)) {
        return false;
    }
    sps->transform_bypass = in.flag();
    const uint32_t seq_scaling_matrix_present_flag = in.u(1);
    if (seq_scaling_matrix_present_flag != 0) {
        in.giveBack();
        parseScalingMatrices(sps, step.held().stream);
        in.take();
    }
    return true;
}

bool parsePocType0(QVAvcSps* sps, const Step& step, PlainWindow& in) {
    const uint32_t log2_max_pic_order_cnt_lsb_minus4 = in.ue();
    if (log2_max_pic_order_cnt_lsb_minus4 >= kLog2Minus4End) {
        QV_LOG(QVTraceError, step.held().function,
               "parseAvcCDecoderSps, logMmaxPocLsb is out of range : %d \n",
               asField(log2_max_pic_order_cnt_lsb_minus4));
        return false;
    }
    sps->log2_max_poc_lsb = asField(log2_max_pic_order_cnt_lsb_minus4 + 4);
    return true;
}

bool parsePocType1(QVAvcSps* sps, const Step& step, PlainWindow& in) {
    sps->delta_pic_order_always_zero_flag = in.flag();
    sps->offset_for_non_ref_pic = in.se();
    sps->offset_for_top_to_bottom_field = in.se();
    const uint32_t num_ref_frames_in_pic_order_cnt_cycle = in.ue();
    sps->poc_cycle_length = asField(num_ref_frames_in_pic_order_cnt_cycle);
    if (num_ref_frames_in_pic_order_cnt_cycle >= kPocCycleEnd) {
        QV_LOG(QVTraceError, step.held().function, "parseAvcCDecoderSps, pocCycleLength overflow : %d\n",
               sps->poc_cycle_length);
        return false;
    }
    for (uint32_t i = 0; i < num_ref_frames_in_pic_order_cnt_cycle; ++i) {
        sps->offset_for_ref_frame[i] = static_cast<int8_t>(in.se());  // D08: only the low 8 bits
    }
    return true;
}

// Picture order count.
bool parseAvcSpsForPoc(QVAvcSps* sps, const SharedStream& stream, PlainWindow& in) {
    const Step step("parseAvcSpsForPoc", stream);
    const uint32_t pic_order_cnt_type = in.ue();
    sps->poc_type = asField(pic_order_cnt_type);
    switch (pic_order_cnt_type) {
        case 0:
            return parsePocType0(sps, step, in);
        case 1:
            return parsePocType1(sps, step, in);
        case 2:
            return true;
        default:
            QV_LOG(QVTraceError, step.held().function, "parseAvcCDecoderSps, illegal POC type : %d\n",
                   sps->poc_type);
            return false;
    }
}

bool parseReferenceFrames(QVAvcSps* sps, PlainWindow& in) {
    const uint32_t max_num_ref_frames = in.ue();
    sps->ref_frame_count = asField(max_num_ref_frames);
    if (max_num_ref_frames >= kRefFrameEnd) {
        QV_LOG(QVTraceError, kFunction, "parseAvcCDecoderSps, too many reference frames : %d\n",
               sps->ref_frame_count);
        return false;
    }
    sps->gaps_in_frame_num_allowed_flag = in.flag();
    return true;
}

// Picture size in macroblocks and map units.
bool parseMbSize(QVAvcSps* sps, PlainWindow& in) {
    const uint32_t mbWidth = in.ue() + 1;
    const uint32_t mbHeight = in.ue() + 1;
    sps->mb_width = asField(mbWidth);
    sps->mb_height = asField(mbHeight);
    if (mbHeight >= kMbSizeEnd || mbWidth >= kMbSizeEnd) {
        QV_LOG(QVTraceError, kFunction, "parseAvcCDecoderSps, mb_width/height overflow\n");
        return false;
    }
    return true;
}

void parseFrameCoding(QVAvcSps* sps, PlainWindow& in) {
    sps->frame_mbs_only_flag = in.flag();
    sps->mb_aff = sps->frame_mbs_only_flag == 0 ? in.flag() : 0;
    sps->direct_8x8_inference_flag = in.flag();
    if (sps->mb_aff != 0) {
        QV_LOG(QVTraceError, kFunction,
               "parseAvcCDecoderSps, MBAFF support not included, enable it at compile-time.\n");
    }
}

// The picture size without and with the crop, with CropUnitX and CropUnitY of equations 7-19 to 7-22. The
// crop is not compared with the picture: an oversize one wraps (D10).
void deriveSize(QVAvcSps* sps) {
    const uint32_t frameHeightFactor = 2 - asElement(sps->frame_mbs_only_flag);
    const uint32_t cropUnitX = sps->chroma_format_idc == 1 || sps->chroma_format_idc == 2 ? 2 : 1;
    const uint32_t cropUnitY = frameHeightFactor * (sps->chroma_format_idc == 1 ? 2 : 1);
    const uint32_t columns = asElement(sps->crop_left) + asElement(sps->crop_right);
    const uint32_t rows = asElement(sps->crop_top) + asElement(sps->crop_bottom);
    sps->width = asField(16 * asElement(sps->mb_width) - cropUnitX * columns);
    sps->height = asField(16 * asElement(sps->mb_height) * frameHeightFactor - cropUnitY * rows);
}

// Frame cropping.
void parseAvcSpsForCrop(QVAvcSps* sps, const SharedStream& stream, PlainWindow& in) {
    const Step step("parseAvcSpsForCrop", stream);
    sps->crop = in.flag();
    if (sps->crop == 0) {
        sps->crop_left = sps->crop_right = sps->crop_top = sps->crop_bottom = 0;
        deriveSize(sps);
        return;
    }
    sps->crop_left = asField(in.ue());
    sps->crop_right = asField(in.ue());
    sps->crop_top = asField(in.ue());
    sps->crop_bottom = asField(in.ue());
    QV_LOG(QVTraceDebug, step.held().function,
           "parseAvcCDecoderSps, discarding sps cropping, original values are l:%d r:%d t:%d b:%d\n",
           sps->crop_left, sps->crop_right, sps->crop_top, sps->crop_bottom);
    deriveSize(sps);
}

const char* frameCodingWord(const QVAvcSps& sps) {
    if (sps.frame_mbs_only_flag != 0) {
        return "FRM";
    }
    return sps.mb_aff != 0 ? "MB-AFF" : "PIC-AFF";
}

void logSummary(const QVAvcSps& sps) {
    static constexpr char csp[4][5] = {"Gray", "420", "422", "444"};
    QV_LOG(QVTraceDebug, kFunction,
           "parseAvcCDecoderSps, sps:%u profile:%d/%d poc:%d ref:%d %dx%d %s %s crop:%u/%u/%u/%u %s %s \n",
           asElement(sps.sps_id), sps.profile_idc, sps.level_idc, sps.poc_type, sps.ref_frame_count,
           sps.mb_width, sps.mb_height, frameCodingWord(sps), sps.direct_8x8_inference_flag != 0 ? "8B8" : "",
           asElement(sps.crop_left), asElement(sps.crop_right), asElement(sps.crop_top),
           asElement(sps.crop_bottom), sps.vui_parameters_present_flag != 0 ? "VUI" : "",
           csp[sps.chroma_format_idc]);
}

// Six flags, the first coded one in bit 0.
int32_t lowestFirst(uint32_t flags) {
    return asField((flags & 0x01) << 5 | (flags & 0x02) << 3 | (flags & 0x04) << 1 | (flags & 0x08) >> 1 |
                   (flags & 0x10) >> 3 | (flags & 0x20) >> 5);
}

// List by list: a fill of all lists at once compiles to a string instruction, which takes longer to start
// than all of these fills.
void makeScalingFlat(QVAvcSps* sps) {
    for (auto& list : sps->scaling_matrix4) {
        std::memset(list, kFlatWeight, sizeof sps->scaling_matrix4[0]);
    }
    for (auto& list : sps->scaling_matrix8) {
        std::memset(list, kFlatWeight, sizeof sps->scaling_matrix8[0]);
    }
}

// The head of the parameter set. Nothing is stored until its identifier has been accepted.
bool parseHead(QVAvcSps* sps, PlainWindow& in) {
    in.skip(8);  // nal_unit() header (D40)
    const uint32_t profile_idc = in.u(8);
    const uint32_t constraint_set_flags = in.u(6);
    in.skip(2);  // reserved_zero_2bits
    const uint32_t level_idc = in.u(8);
    const uint32_t seq_parameter_set_id = in.ue();
    if (seq_parameter_set_id >= kSpsIdEnd) {
        QV_LOG(QVTraceError, kFunction, "parseAvcCDecoderSps, sps_id %u out of range\n",
               seq_parameter_set_id);
        return false;
    }
    sps->sps_id = asField(seq_parameter_set_id);
    sps->time_offset_length = 24;
    sps->profile_idc = asField(profile_idc);
    sps->constraint_set_flags = lowestFirst(constraint_set_flags);
    sps->level_idc = asField(level_idc);
    sps->full_range = -1;
    makeScalingFlat(sps);
    sps->scaling_matrix_present = 0;  // D33
    sps->colorspace = 2;
    return true;
}

bool parseLog2MaxFrameNum(QVAvcSps* sps, PlainWindow& in) {
    const uint32_t log2_max_frame_num_minus4 = in.ue();
    if (log2_max_frame_num_minus4 >= kLog2Minus4End) {
        QV_LOG(QVTraceError, kFunction,
               "parseAvcCDecoderSps, log2MaxFrameNumMinus4 out of range (0-12): %d\n",
               asField(log2_max_frame_num_minus4));
        return false;
    }
    sps->log2_max_frame_num = asField(log2_max_frame_num_minus4 + 4);
    return true;
}

}  // namespace

bool parseAvcSps(QVAvcSps* sps, std::shared_ptr<QVByteStream> stream) {
    if (sps == nullptr || stream == nullptr || stream->size == 0) {
        return false;
    }
    PlainWindow in(*stream);
    const bool isAccepted = parseHead(sps, in) && parseAvcSpsForProfile(sps, stream, in) &&
                            parseLog2MaxFrameNum(sps, in) && parseAvcSpsForPoc(sps, stream, in) &&
                            parseReferenceFrames(sps, in) && parseMbSize(sps, in);
    if (!isAccepted) {
        return false;
    }
    parseFrameCoding(sps, in);
    parseAvcSpsForCrop(sps, stream, in);
    sps->vui_parameters_present_flag = in.flag();
    logSummary(*sps);
    return true;
}
