// Scaling lists and factors of H.265.
#include "bitstream/hevc/ScalingFactors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

namespace {

using namespace qv::hevc;

// Table 7-6 as matrices, row by row.
constexpr uint16_t kIntra8x8[8][8] = {{16, 16, 16, 16, 17, 18, 21, 24}, {16, 16, 16, 16, 17, 19, 22, 25},
                                      {16, 16, 17, 18, 20, 22, 25, 29}, {16, 16, 18, 21, 24, 27, 31, 36},
                                      {17, 17, 20, 24, 30, 35, 41, 47}, {18, 19, 22, 27, 35, 44, 54, 65},
                                      {21, 22, 25, 31, 41, 54, 70, 88}, {24, 25, 29, 36, 47, 65, 88, 115}};
constexpr uint16_t kInter8x8[8][8] = {{16, 16, 16, 16, 17, 18, 20, 24}, {16, 16, 16, 17, 18, 20, 24, 25},
                                      {16, 16, 17, 18, 20, 24, 25, 28}, {16, 17, 18, 20, 24, 25, 28, 33},
                                      {17, 18, 20, 24, 25, 28, 33, 41}, {18, 20, 24, 25, 28, 33, 41, 54},
                                      {20, 24, 25, 28, 33, 41, 54, 71}, {24, 25, 28, 33, 41, 54, 71, 91}};

// The up-right diagonal scan of a square, walked as 6.5.3 does: (x, y) of each place.
std::vector<std::pair<uint32_t, uint32_t>> diagonalScan(int size) {
    std::vector<std::pair<uint32_t, uint32_t>> scan;
    int x = 0;
    int y = 0;
    while (scan.size() < static_cast<size_t>(size * size)) {
        while (y >= 0) {
            if (x < size && y < size) {
                scan.emplace_back(x, y);
            }
            --y;
            ++x;
        }
        y = x;
        x = 0;
    }
    return scan;
}

TEST(HevcScalingFactors, flat) {
    const ScalingFactors factors = flatScalingFactors();
    for (uint32_t sizeId = 0; sizeId < 4; ++sizeId) {
        for (uint32_t matrixId = 0; matrixId < 6; ++matrixId) {
            for (uint32_t x = 0; x < 4U << sizeId; ++x) {
                for (uint32_t y = 0; y < 4U << sizeId; ++y) {
                    ASSERT_EQ(factors.at(sizeId, matrixId, x, y), 16U);
                }
            }
        }
    }
}

TEST(HevcScalingFactors, defaults) {
    const ScalingFactors factors = defaultScalingFactors();
    for (uint32_t matrixId = 0; matrixId < 6; ++matrixId) {
        const auto& table = matrixId < 3 ? kIntra8x8 : kInter8x8;
        for (uint32_t x = 0; x < 32; ++x) {
            for (uint32_t y = 0; y < 32; ++y) {
                ASSERT_EQ(factors.at(0, matrixId, x, y), 16U);
                ASSERT_EQ(factors.at(1, matrixId, x, y), table[y % 8][x % 8]) << x << " " << y;
                ASSERT_EQ(factors.at(2, matrixId, x, y), table[y % 16 / 2][x % 16 / 2]) << x << " " << y;
                ASSERT_EQ(factors.at(3, matrixId, x, y), table[y / 4][x / 4]) << x << " " << y;
            }
        }
    }
}

// Deltas that make the list 1, 2, 3, ...: nextCoef begins at 8, or at the DC value.
void countUp(ScalingListData& data, uint32_t sizeId, uint32_t matrixId, int32_t dcMinus8 = 0) {
    data.scaling_list_pred_mode_flag[sizeId][matrixId] = true;
    if (sizeId > 1) {
        data.scaling_list_dc_coef_minus8[sizeId - 2][matrixId] = dcMinus8;
    }
    for (int16_t& delta : data.scaling_list_delta_coef[sizeId][matrixId]) {
        delta = 1;
    }
    data.scaling_list_delta_coef[sizeId][matrixId][0] = static_cast<int16_t>(1 - (8 + dcMinus8));
}

std::unique_ptr<ScalingListData> noLists() {
    return std::make_unique<ScalingListData>();
}

// Every list takes the default of delta 0.
TEST(HevcScalingFactors, predictionFromTheDefault) {
    const ScalingFactors factors = scalingFactorsOf(*noLists());
    const ScalingFactors defaults = defaultScalingFactors();
    for (uint32_t sizeId = 0; sizeId < 4; ++sizeId) {
        for (uint32_t matrixId = 0; matrixId < 6; ++matrixId) {
            for (uint32_t x = 0; x < 32; ++x) {
                for (uint32_t y = 0; y < 32; ++y) {
                    ASSERT_EQ(factors.at(sizeId, matrixId, x, y), defaults.at(sizeId, matrixId, x, y));
                }
            }
        }
    }
}

TEST(HevcScalingFactors, listsAreInDiagonalOrder) {
    const std::unique_ptr<ScalingListData> data = noLists();
    countUp(*data, 0, 4);
    countUp(*data, 1, 2);
    countUp(*data, 2, 1, 20);
    countUp(*data, 3, 3, -7);
    const ScalingFactors factors = scalingFactorsOf(*data);
    const auto scan4 = diagonalScan(4);
    for (uint32_t i = 0; i < 16; ++i) {
        EXPECT_EQ(factors.at(0, 4, scan4[i].first, scan4[i].second), i + 1) << i;
    }
    const auto scan8 = diagonalScan(8);
    for (uint32_t i = 0; i < 64; ++i) {
        const uint32_t x = scan8[i].first;
        const uint32_t y = scan8[i].second;
        EXPECT_EQ(factors.at(1, 2, x, y), i + 1) << i;
        EXPECT_EQ(factors.at(2, 1, 2 * x + 1, 2 * y + 1), i + 1) << i;
        EXPECT_EQ(factors.at(2, 1, 2 * x, 2 * y), i == 0 ? 28 : i + 1) << i;
        EXPECT_EQ(factors.at(3, 3, 4 * x + 3, 4 * y), i + 1) << i;
        EXPECT_EQ(factors.at(3, 3, 4 * x, 4 * y), i + 1) << i;
    }
    // By hand: the third place of a list is to the right of the first, the second below it.
    EXPECT_EQ(factors.at(1, 2, 0, 1), 2U);
    EXPECT_EQ(factors.at(1, 2, 1, 0), 3U);
    EXPECT_EQ(factors.at(1, 2, 0, 2), 4U);
    EXPECT_EQ(factors.at(1, 2, 7, 7), 64U);
}

TEST(HevcScalingFactors, valuesWrapModulo256) {
    const std::unique_ptr<ScalingListData> data = noLists();
    data->scaling_list_pred_mode_flag[0][0] = true;
    data->scaling_list_delta_coef[0][0][0] = -9;
    data->scaling_list_delta_coef[0][0][1] = 127;
    data->scaling_list_delta_coef[0][0][2] = -128;
    const ScalingFactors factors = scalingFactorsOf(*data);
    EXPECT_EQ(factors.list[0][0][0], 255);
    EXPECT_EQ(factors.list[0][0][1], 126);
    EXPECT_EQ(factors.list[0][0][2], 254);
}

// A list that refers to another has its values and its DC value.
TEST(HevcScalingFactors, predictionFromAnotherList) {
    const std::unique_ptr<ScalingListData> data = noLists();
    countUp(*data, 2, 1, 40);
    data->scaling_list_pred_matrix_id_delta[2][4] = 3;
    data->scaling_list_pred_matrix_id_delta[2][5] = 1;
    countUp(*data, 3, 0, 50);
    data->scaling_list_pred_matrix_id_delta[3][3] = 1;
    countUp(*data, 0, 0);
    data->scaling_list_pred_matrix_id_delta[0][1] = 1;
    const ScalingFactors factors = scalingFactorsOf(*data);
    EXPECT_EQ(factors.at(2, 4, 0, 0), 48U);
    EXPECT_EQ(factors.at(2, 5, 0, 0), 48U);
    EXPECT_EQ(factors.at(2, 5, 15, 15), 64U);
    EXPECT_EQ(factors.at(3, 3, 0, 0), 58U);
    EXPECT_EQ(factors.at(3, 3, 31, 31), 64U);
    EXPECT_EQ(factors.at(0, 1, 3, 3), 16U);
    EXPECT_EQ(factors.at(2, 3, 15, 15), 91U);
}

// The 32x32 lists of chroma, which 4:4:4 uses, are those of 16x16.
TEST(HevcScalingFactors, chroma32x32) {
    const std::unique_ptr<ScalingListData> data = noLists();
    countUp(*data, 2, 1, 12);
    countUp(*data, 2, 5, 13);
    const ScalingFactors factors = scalingFactorsOf(*data);
    const auto scan8 = diagonalScan(8);
    for (uint32_t i = 1; i < 64; ++i) {
        EXPECT_EQ(factors.at(3, 1, 4 * scan8[i].first + 1, 4 * scan8[i].second + 2), i + 1) << i;
    }
    EXPECT_EQ(factors.at(3, 1, 0, 0), 20U);
    EXPECT_EQ(factors.at(3, 1, 1, 0), 1U);
    EXPECT_EQ(factors.at(3, 5, 0, 0), 21U);
    EXPECT_EQ(factors.at(3, 2, 31, 31), 115U);
    EXPECT_EQ(factors.at(3, 4, 31, 31), 91U);
}

TEST(HevcScalingFactors, listsOfThePpsComeFirst) {
    auto sps = std::make_unique<Sps>();
    auto pps = std::make_unique<Pps>();
    countUp(sps->scaling_list_data, 1, 0);
    countUp(pps->scaling_list_data, 1, 1);
    EXPECT_EQ(scalingFactorsOf(*sps, *pps).at(1, 0, 7, 7), 16U);
    sps->scaling_list_enabled_flag = true;
    EXPECT_EQ(scalingFactorsOf(*sps, *pps).at(1, 0, 7, 7), 115U);
    sps->sps_scaling_list_data_present_flag = true;
    EXPECT_EQ(scalingFactorsOf(*sps, *pps).at(1, 0, 7, 7), 64U);
    EXPECT_EQ(scalingFactorsOf(*sps, *pps).at(1, 1, 7, 7), 115U);
    pps->pps_scaling_list_data_present_flag = true;
    EXPECT_EQ(scalingFactorsOf(*sps, *pps).at(1, 0, 7, 7), 115U);
    EXPECT_EQ(scalingFactorsOf(*sps, *pps).at(1, 1, 7, 7), 64U);
}

// Values that no read gives change nothing but the result.
TEST(HevcScalingFactors, subscriptsAreTakenModulo) {
    const std::unique_ptr<ScalingListData> data = noLists();
    data->scaling_list_pred_matrix_id_delta[1][1] = 4000000000;
    data->scaling_list_pred_matrix_id_delta[3][3] = 0x80000001;
    const ScalingFactors factors = scalingFactorsOf(*data);
    EXPECT_EQ(factors.at(5, 7, 8, 16), factors.at(1, 1, 0, 0));
    EXPECT_EQ(factors.at(1, 1, 7, 7), 115U);
}

}  // namespace
