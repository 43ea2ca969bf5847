// Scaling factors of H.264: scaling_list(), 7.3.2.1.1.1, default lists, fall-back rules, inverse scan.
#include "bitstream/avc/ScalingFactors.h"

#include <cstring>

namespace qv::avc {

namespace {

constexpr uint32_t kLists = ScalingMatrix::kMostLists;

// Lists in the order of the zig-zag scan.
struct Lists {
    uint8_t list[kLists][64];
};

constexpr uint32_t sizeOfList(uint32_t i) {
    return i < ScalingMatrix::k4x4Lists ? 16 : 64;
}

// --- Tables 7-3 and 7-4 ---

constexpr uint8_t kDefault4x4Intra[16] = {6, 13, 13, 20, 20, 20, 28, 28, 28, 28, 32, 32, 32, 37, 37, 42};
constexpr uint8_t kDefault4x4Inter[16] = {10, 14, 14, 20, 20, 20, 24, 24, 24, 24, 27, 27, 27, 30, 30, 34};
constexpr uint8_t kDefault8x8Intra[64] = {6,  10, 10, 13, 11, 13, 16, 16, 16, 16, 18, 18, 18, 18, 18, 23,
                                          23, 23, 23, 23, 23, 25, 25, 25, 25, 25, 25, 25, 27, 27, 27, 27,
                                          27, 27, 27, 27, 29, 29, 29, 29, 29, 29, 29, 31, 31, 31, 31, 31,
                                          31, 33, 33, 33, 33, 33, 36, 36, 36, 36, 38, 38, 38, 40, 40, 42};
constexpr uint8_t kDefault8x8Inter[64] = {9,  13, 13, 15, 13, 15, 17, 17, 17, 17, 19, 19, 19, 19, 19, 21,
                                          21, 21, 21, 21, 21, 22, 22, 22, 22, 22, 22, 22, 24, 24, 24, 24,
                                          24, 24, 24, 24, 25, 25, 25, 25, 25, 25, 25, 27, 27, 27, 27, 27,
                                          27, 28, 28, 28, 28, 28, 30, 30, 30, 30, 32, 32, 32, 33, 33, 35};

// Table 7-2: the default list of list i.
constexpr const uint8_t* defaultList(uint32_t i) {
    if (i < ScalingMatrix::k4x4Lists) {
        return i < 3 ? kDefault4x4Intra : kDefault4x4Inter;
    }
    return i % 2 == 0 ? kDefault8x8Intra : kDefault8x8Inter;
}

// Table 7-2: true for the lists that do not fall back to the one before them.
constexpr bool isFirstOfItsKind(uint32_t i) {
    return i == 0 || i == 3 || i == 6 || i == 7;
}

// --- Lists ---

void setList(Lists& lists, uint32_t i, const uint8_t* values) {
    std::memcpy(lists.list[i], values, sizeOfList(i));
}

// Table 7-2: without the list of a parameter set, that of the same block size and prediction mode before it,
// and for the first ones the default list (rule A) or the sequence parameter set's (rule B).
void fallBack(Lists& lists, uint32_t i, const Lists* ruleB) {
    if (!isFirstOfItsKind(i)) {
        setList(lists, i, lists.list[i - (i < ScalingMatrix::k4x4Lists ? 1 : 2)]);
    } else {
        setList(lists, i, ruleB != nullptr ? ruleB->list[i] : defaultList(i));
    }
}

// scaling_list(), 7.3.2.1.1.1; nextScale 0 at the first element is useDefaultScalingMatrixFlag.
void decode(Lists& lists, uint32_t i, const ScalingList& coded) {
    const uint32_t size = sizeOfList(i);
    int lastScale = 8;
    for (uint32_t j = 0; j < size; ++j) {
        if (j < coded.deltaCount) {
            const int nextScale = (lastScale + coded.delta_scale[j] + 256) % 256;
            if (nextScale == 0 && j == 0) {
                setList(lists, i, defaultList(i));
                return;
            }
            lastScale = nextScale == 0 ? lastScale : nextScale;
        }
        lists.list[i][j] = static_cast<uint8_t>(lastScale);
    }
}

// The lists of a parameter set that has sent the first ones of them.
Lists decode(const ScalingMatrix& matrix, uint32_t sent, const Lists* ruleB) {
    Lists lists;
    for (uint32_t i = 0; i < kLists; ++i) {
        if (i < sent && matrix.scaling_list_present_flag[i]) {
            decode(lists, i, matrix.scaling_list[i]);
        } else {
            fallBack(lists, i, ruleB);
        }
    }
    // cppcheck-suppress uninitvar ; the loop sets every list
    return lists;
}

Lists listsOf(const SpsData& sps) {
    if (sps.seq_scaling_matrix_present_flag) {
        return decode(sps.scaling_matrix, sps.chroma_format_idc != 3 ? 8 : 12, nullptr);
    }
    Lists flat;
    std::memset(&flat, 16, sizeof flat);
    return flat;
}

// --- Inverse scan ---

// The zig-zag scan of a square block, 8.5.6, as the path it takes along the diagonals: up to the right, down
// to the left.
template <uint32_t Width>
struct ZigZag {
    uint8_t position[Width * Width] = {};

    constexpr ZigZag() {
        uint32_t column = 0;
        uint32_t row = 0;
        for (uint8_t& place : position) {
            place = static_cast<uint8_t>(Width * row + column);
            const bool isUpwards = (column + row) % 2 == 0;
            uint32_t& ahead = isUpwards ? column : row;
            uint32_t& back = isUpwards ? row : column;
            if (ahead == Width - 1) {
                ++back;
            } else {
                ++ahead;
                back -= back > 0 ? 1 : 0;
            }
        }
    }
};

constexpr ZigZag<4> kZigZag4x4;
constexpr ZigZag<8> kZigZag8x8;

ScalingFactors inRasterOrder(const Lists& lists) {
    ScalingFactors factors;
    for (uint32_t i = 0; i < 6; ++i) {
        for (uint32_t j = 0; j < 16; ++j) {
            factors.list4x4[i][kZigZag4x4.position[j]] = lists.list[i][j];
        }
        for (uint32_t j = 0; j < 64; ++j) {
            factors.list8x8[i][kZigZag8x8.position[j]] = lists.list[6 + i][j];
        }
    }
    return factors;
}

}  // namespace

ScalingFactors scalingFactorsOf(const SpsData& sps) noexcept {
    return inRasterOrder(listsOf(sps));
}

ScalingFactors scalingFactorsOf(const SpsData& sps, const Pps& pps) noexcept {
    const Lists sequence = listsOf(sps);
    if (!pps.pic_scaling_matrix_present_flag) {
        return inRasterOrder(sequence);
    }
    const uint32_t lists8x8 = sps.chroma_format_idc != 3 ? 2 : 6;
    const uint32_t sent = 6 + (pps.transform_8x8_mode_flag ? lists8x8 : 0);
    return inRasterOrder(
        decode(pps.scaling_matrix, sent, sps.seq_scaling_matrix_present_flag ? &sequence : nullptr));
}

}  // namespace qv::avc
