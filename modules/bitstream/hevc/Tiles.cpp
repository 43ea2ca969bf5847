// Column widths and row heights of tiles (H.265 6.5.1).
#include "bitstream/hevc/Tiles.h"

#include "bitstream/hevc/BlockSizes.h"

namespace qv::hevc {

namespace {

// Splits a length into parts: of equal size as far as that goes, or of sizes given for all but the last.
// False when a part has no size.
bool split(uint64_t length, uint32_t parts, const uint16_t* sizesMinus1, uint32_t* sizes) {
    if (parts > length) {
        return false;
    }
    if (sizesMinus1 == nullptr) {
        for (uint64_t i = 0; i < parts; ++i) {
            sizes[i] = static_cast<uint32_t>((i + 1) * length / parts - i * length / parts);
        }
        return true;
    }
    uint64_t left = length;
    for (uint32_t i = 0; i + 1 < parts; ++i) {
        sizes[i] = sizesMinus1[i] + 1U;
        if (sizes[i] >= left) {
            return false;
        }
        left -= sizes[i];
    }
    sizes[parts - 1] = static_cast<uint32_t>(left);
    return true;
}

}  // namespace

TileGrid tileGridOf(const Pps& pps, const Sps& sps) noexcept {
    TileGrid grid = {};
    const BlockSizes sizes = blockSizesOf(sps);
    const bool isCoded = pps.tiles_enabled_flag && !pps.uniform_spacing_flag;
    if (pps.num_tile_columns_minus1 >= Pps::kMostTileColumns ||
        pps.num_tile_rows_minus1 >= Pps::kMostTileRows) {
        return grid;
    }
    grid.columns = pps.num_tile_columns_minus1 + 1;
    grid.rows = pps.num_tile_rows_minus1 + 1;
    if (!split(sizes.PicWidthInCtbsY, grid.columns, isCoded ? pps.column_width_minus1 : nullptr,
               grid.colWidth) ||
        !split(sizes.PicHeightInCtbsY, grid.rows, isCoded ? pps.row_height_minus1 : nullptr,
               grid.rowHeight)) {
        return {};
    }
    return grid;
}

}  // namespace qv::hevc
