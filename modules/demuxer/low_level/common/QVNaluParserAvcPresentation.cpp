// frame_packing_arrangement(), display_orientation() and alternative_transfer_characteristics(), ITU-T H.264
// (08/2021) D.1.25, D.1.27, D.1.32.
#include <cstdint>

#include "QVNaluParser.h"
#include "detail/Log.h"
#include "detail/PlainBits.h"
#include "detail/SeiTypes.h"

using namespace qv_detail;

int QVNaluParser::parserAvcFramePackingArrangement(QVByteStream& stream, int /*payloadSize*/,
                                                   QVAvcSeiFramePacking* framePacking) {
    if (framePacking == nullptr) {
        QV_LOG(QVTraceError, "parserAvcFramePackingArrangement",
               "parserAvcFramePackingArrangement: framePacking is NULL!\n");
        return QVResultFailed;
    }
    PlainBits in(stream);
    framePacking->frame_packing_arrangement_id = in.ue();
    framePacking->frame_packing_arrangement_cancel_flag = in.u(1);
    framePacking->isValid = framePacking->frame_packing_arrangement_cancel_flag == 0 ? 1 : 0;
    if (framePacking->frame_packing_arrangement_cancel_flag != 0) {
        in.skip(1);  // frame_packing_arrangement_extension_flag
        return QVResultOk;
    }
    framePacking->frame_packing_arrangement_type = in.u(7);
    framePacking->quincunx_sampling_flag = in.u(1);
    framePacking->content_interpretation_type = in.u(6);
    in.skip(1 + 1 + 1);  // spatial_flipping_flag, frame0_flipped_flag, field_views_flag
    framePacking->current_frame_is_frame0_flag = in.u(1);
    in.skip(1 + 1);  // frame0_self_contained_flag, frame1_self_contained_flag
    if (framePacking->quincunx_sampling_flag == 0 &&
        framePacking->frame_packing_arrangement_type != kTemporalInterleaving) {
        in.skip(4 + 4 + 4 + 4);  // frame0_ and frame1_grid_position_x, _y
    }
    in.skip(8);  // frame_packing_arrangement_reserved_byte
    framePacking->frame_packing_arrangement_repetition_period = in.ue();
    in.skip(1);  // frame_packing_arrangement_extension_flag
    return QVResultOk;
}

int QVNaluParser::parserAvcDisplayOrientation(QVByteStream& stream, int /*payloadSize*/,
                                              QVAvcSeiDisplayOrientation* displayOrientation) {
    if (displayOrientation == nullptr) {
        QV_LOG(QVTraceError, "parserAvcDisplayOrientation",
               "parserAvcDisplayOrientation: displayOrientation is NULL!\n");
        return QVResultFailed;
    }
    PlainBits in(stream);
    const uint32_t display_orientation_cancel_flag = in.u(1);
    displayOrientation->isValid = display_orientation_cancel_flag == 0 ? 1 : 0;
    if (display_orientation_cancel_flag != 0) {
        return QVResultOk;
    }
    displayOrientation->hor_flip = in.u(1);
    displayOrientation->ver_flip = in.u(1);
    displayOrientation->anticlockwise_rotation = in.u(16);
    in.ue();     // display_orientation_repetition_period
    in.skip(1);  // display_orientation_extension_flag
    return QVResultOk;
}

int QVNaluParser::parserAvcAlternativeTransfer(QVByteStream& stream, int /*payloadSize*/,
                                               QVAvcSeiAlternativeTransfer* alternativeTransfer) {
    if (alternativeTransfer == nullptr) {
        QV_LOG(QVTraceError, "parserAvcAlternativeTransfer",
               "parserAvcAlternativeTransfer: alternativeTransfer is NULL!\n");
        return QVResultFailed;
    }
    alternativeTransfer->isValid = 1;
    alternativeTransfer->preferred_transfer_characteristics = PlainBits(stream).u(8);
    return QVResultOk;
}
