// Tiles of H.265 pictures.
#include "bitstream/hevc/Tiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

using namespace qv::hevc;
using testing::ElementsAre;

class HevcTiles : public testing::Test {
protected:
    // Coding tree blocks of 64 samples: 10 by 5 of them.
    HevcTiles() : sps(std::make_unique<Sps>()), pps(std::make_unique<Pps>()) {
        sps->pic_width_in_luma_samples = 639;
        sps->pic_height_in_luma_samples = 320;
        sps->log2_diff_max_min_luma_coding_block_size = 3;
        pps->tiles_enabled_flag = true;
        pps->uniform_spacing_flag = true;
    }

    std::vector<uint32_t> columns() {
        const TileGrid grid = tileGridOf(*pps, *sps);
        return {grid.colWidth, grid.colWidth + grid.columns};
    }
    std::vector<uint32_t> rows() {
        const TileGrid grid = tileGridOf(*pps, *sps);
        return {grid.rowHeight, grid.rowHeight + grid.rows};
    }

    std::unique_ptr<Sps> sps;
    std::unique_ptr<Pps> pps;
};

TEST_F(HevcTiles, uniform) {
    pps->num_tile_columns_minus1 = 3;
    pps->num_tile_rows_minus1 = 1;
    EXPECT_THAT(columns(), ElementsAre(2, 3, 2, 3));
    EXPECT_THAT(rows(), ElementsAre(2, 3));
    pps->num_tile_columns_minus1 = 9;
    EXPECT_THAT(columns(), testing::Each(1));
}

TEST_F(HevcTiles, withSizes) {
    pps->uniform_spacing_flag = false;
    pps->num_tile_columns_minus1 = 2;
    pps->column_width_minus1[0] = 4;
    pps->column_width_minus1[1] = 0;
    EXPECT_THAT(columns(), ElementsAre(5, 1, 4));
    EXPECT_THAT(rows(), ElementsAre(5));
    pps->column_width_minus1[1] = 3;
    EXPECT_THAT(columns(), ElementsAre(5, 4, 1));
}

TEST_F(HevcTiles, without) {
    pps->tiles_enabled_flag = false;
    pps->uniform_spacing_flag = false;
    EXPECT_THAT(columns(), ElementsAre(10));
    EXPECT_THAT(rows(), ElementsAre(5));
}

TEST_F(HevcTiles, thatDoNotFit) {
    pps->num_tile_columns_minus1 = 10;
    EXPECT_THAT(columns(), ElementsAre());
    EXPECT_THAT(rows(), ElementsAre());
    pps->num_tile_columns_minus1 = 0;
    pps->num_tile_rows_minus1 = 5;
    EXPECT_THAT(columns(), ElementsAre());
    pps->num_tile_rows_minus1 = 0;
    pps->num_tile_columns_minus1 = 2;
    pps->uniform_spacing_flag = false;
    pps->column_width_minus1[0] = 4;
    pps->column_width_minus1[1] = 4;
    EXPECT_THAT(columns(), ElementsAre());
    pps->column_width_minus1[1] = 65535;
    EXPECT_THAT(columns(), ElementsAre());
    pps->num_tile_columns_minus1 = 256;
    EXPECT_THAT(columns(), ElementsAre());
    pps->num_tile_columns_minus1 = 0;
    pps->num_tile_rows_minus1 = 4000000000;
    EXPECT_THAT(columns(), ElementsAre());
}

TEST_F(HevcTiles, ofAPictureThatIsNotThere) {
    sps->pic_width_in_luma_samples = 0;
    EXPECT_THAT(columns(), ElementsAre());
}

}  // namespace
