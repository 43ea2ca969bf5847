// frame_packing_arrangement() and display_orientation(), ITU-T H.265 (08/2021) D.2.16, D.2.17.
#include <cstdint>
#include <cstdio>

#include "QVMemory.h"
#include "QVNaluParser.h"
#include "detail/Log.h"
#include "detail/PlainBits.h"
#include "detail/SeiItems.h"
#include "detail/SeiTypes.h"

using namespace qv_detail;

namespace {

// Appends the orientation as a line of text, the form in which the player gets it.
int appendOrientationItem(const QVHevcSeiDisplayOrientation& orientation, std::vector<QVSeiItem>& items) {
    constexpr size_t kTextCapacity = 200;
    NewSeiItem item(items, {QVCodecIDHevc, kSeiDisplayOrientation, 0, false, nullptr});
    auto* const text = static_cast<char*>(qvMallocz(kTextCapacity));
    if (text == nullptr) {
        return QVResultFailed;
    }
    const int length = std::snprintf(
        text, kTextCapacity, "HevcSeiDisplayOrientationInfo: hflip:%d,vflip:%d,anticlockwise_rotation:%d.",
        static_cast<int>(orientation.hor_flip), static_cast<int>(orientation.ver_flip),
        static_cast<int>(orientation.anticlockwise_rotation));
    text[length + 1] = '\0';  // a second terminator; at most 78 characters were written
    item.keep(reinterpret_cast<uint8_t*>(text), static_cast<uint32_t>(length + 1));
    return QVResultOk;
}

// The fields up to content_interpretation_type; 0 without a buffer.
void readArrangement(PlainBits& in, QVHevcSeiFramePacking* framePacking, bool hasBuffer) {
    framePacking->frame_packing_arrangement_type = hasBuffer ? in.u(7) : 0;
    framePacking->quincunx_sampling_flag = hasBuffer ? in.u(1) : 0;
    framePacking->content_interpretation_type = hasBuffer ? in.u(6) : 0;
}

}  // namespace

int QVNaluParser::parserHevcFramePacking(QVByteStream& stream, int /*payloadSize*/,
                                         QVHevcSeiFramePacking* framePacking) {
    if (framePacking == nullptr) {
        QV_LOG(QVTraceError, "parserHevcFramePacking", "parserHevcFramePacking: framePacking is NULL!\n");
        return QVResultFailed;
    }
    PlainBits in(stream);
    in.ue();  // frame_packing_arrangement_id
    const bool hasBuffer = stream.data != nullptr;
    const uint32_t frame_packing_arrangement_cancel_flag = hasBuffer ? in.u(1) : 0;
    framePacking->isValid = frame_packing_arrangement_cancel_flag == 0 ? 1 : 0;
    if (frame_packing_arrangement_cancel_flag != 0) {
        in.skip(1);  // upsampled_aspect_ratio_flag
        return QVResultOk;
    }
    readArrangement(in, framePacking, hasBuffer);
    in.skip(1 + 1 + 1);  // spatial_flipping_flag, frame0_flipped_flag, field_views_flag
    framePacking->current_frame_is_frame0_flag = in.u(1);
    in.skip(1 + 1);  // frame0_self_contained_flag, frame1_self_contained_flag
    if (framePacking->quincunx_sampling_flag == 0 &&
        framePacking->frame_packing_arrangement_type != kTemporalInterleaving) {
        in.skip(4 + 4 + 4 + 4);  // frame0_ and frame1_grid_position_x, _y
    }
    in.skip(8);  // frame_packing_arrangement_reserved_byte
    in.skip(1);  // frame_packing_arrangement_persistence_flag
    in.skip(1);  // upsampled_aspect_ratio_flag
    return QVResultOk;
}

int QVNaluParser::parserHevcDisplayOrientation(QVByteStream& stream, int /*payloadSize*/,
                                               std::vector<QVSeiItem>& items,
                                               QVHevcSeiDisplayOrientation* displayOrientation) {
    if (displayOrientation == nullptr) {
        QV_LOG(QVTraceError, "parserHevcDisplayOrientation",
               "parserHevcDisplayOrientation: displayOrientation is NULL!\n");
        return QVResultFailed;
    }
    PlainBits in(stream);
    const uint32_t display_orientation_cancel_flag = in.u(1);
    displayOrientation->isValid = 1 - display_orientation_cancel_flag;
    if (display_orientation_cancel_flag != 0) {
        return QVResultOk;
    }
    displayOrientation->hor_flip = in.u(1);
    displayOrientation->ver_flip = in.u(1);
    displayOrientation->anticlockwise_rotation = in.u(16);
    in.skip(1);  // display_orientation_persistence_flag
    return appendOrientationItem(*displayOrientation, items);
}
