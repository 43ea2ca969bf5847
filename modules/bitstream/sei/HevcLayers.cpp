// SEI payloads about layers and operation points of H.265.
#include "bitstream/sei/HevcLayers.h"

#include <cstddef>

#include "bitstream/sei/HevcLayersSyntax.h"
#include "bitstream/sei/PayloadTemplates.h"

template <>
constexpr size_t qv::detail::kClearedBytes<qv::sei::HevcScalableNesting> =
    offsetof(qv::sei::HevcScalableNesting, nesting_max_temporal_id_plus1);

namespace qv::sei {

bool InterLayerTileSetReader::next(InterLayerTileSet& set) noexcept {
    set = {};
    if (!reader_.more_rbsp_data()) {
        return false;
    }
    inter_layer_tile_set(reader_, payload_, next_++, set);
    return !reader_.failed();
}

bool InterLayerTileRectReader::next(InterLayerTileRect& rect) noexcept {
    rect = {};
    if (!reader_.more_rbsp_data()) {
        return false;
    }
    inter_layer_tile_rect(reader_, 0, 0, rect);
    return !reader_.failed();
}

bool SubBitstreamReader::next(SubBitstream& subBitstream) noexcept {
    subBitstream = {};
    if (!reader_.more_rbsp_data()) {
        return false;
    }
    sub_bitstream(reader_, next_++, subBitstream);
    return !reader_.failed();
}

QV_SEI_PAYLOAD(HevcScalableNesting, scalable_nesting);
QV_SEI_PAYLOAD(LayersNotPresent, layers_not_present);
QV_SEI_PAYLOAD(InterLayerConstrainedTileSets, inter_layer_constrained_tile_sets);
QV_SEI_PAYLOAD(BspNesting, bsp_nesting);
QV_SEI_PAYLOAD(SubBitstreamProperty, sub_bitstream_property);
QV_SEI_PAYLOAD(AlphaChannelInfo, alpha_channel_info);
QV_SEI_PAYLOAD(OverlayInfo, overlay_info);
QV_SEI_PAYLOAD(TemporalMvPredictionConstraints, temporal_mv_prediction_constraints);

}  // namespace qv::sei
