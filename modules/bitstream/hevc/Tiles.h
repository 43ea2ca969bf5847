/// \file
/// The tiles of H.265 pictures.
#ifndef QV_BITSTREAM_HEVC_TILES_H
#define QV_BITSTREAM_HEVC_TILES_H

#include <cstdint>

#include "bitstream/hevc/Pps.h"
#include "bitstream/hevc/Sps.h"

namespace qv::hevc {

/// The columns and rows of tiles of a picture, in coding tree blocks (H.265 6.5.1). Entries beyond the counts
/// are 0.
struct TileGrid {
    uint32_t columns;  ///< num_tile_columns_minus1 + 1; 0 when the PPS does not fit the SPS
    uint32_t rows;     ///< num_tile_rows_minus1 + 1; 0 when the PPS does not fit the SPS
    uint32_t colWidth[Pps::kMostTileColumns];  ///< of each column, above 0
    uint32_t rowHeight[Pps::kMostTileRows];    ///< of each row, above 0
};

/// The tiles of pictures that refer to \p pps and, through it, to \p sps (6-3, 6-4). The result has no
/// columns and rows when there are more of them than coding tree blocks, or when those with a size of their
/// own leave nothing for the last.
TileGrid tileGridOf(const Pps& pps, const Sps& sps) noexcept;

}  // namespace qv::hevc

#endif
