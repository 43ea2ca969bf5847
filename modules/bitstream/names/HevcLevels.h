/// \file
/// Levels of H.265 by name, with their limits.
#ifndef QV_BITSTREAM_NAMES_HEVCLEVELS_H
#define QV_BITSTREAM_NAMES_HEVCLEVELS_H

#include <cstdint>

namespace qv::hevc {

/// A level and its limits, H.265 Tables A.8 and A.9. Where two values are given, the first is for the Main
/// tier and the second for the High tier, 0 where the level has no High tier.
struct LevelEntry {
    uint32_t level_idc;                   ///< 30 times the number of the level
    const char* name;                     ///< `5.1`
    uint32_t MaxLumaPs;                   ///< luma samples of a picture
    uint32_t MaxCPB[2];                   ///< in CpbVclFactor or CpbNalFactor bits
    uint32_t MaxSliceSegmentsPerPicture;  ///< slice segments of a picture
    uint32_t MaxTileRows;                 ///< rows of tiles of a picture
    uint32_t MaxTileCols;                 ///< columns of tiles of a picture
    uint64_t MaxLumaSr;                   ///< luma samples per second
    uint32_t MaxBR[2];                    ///< in BrVclFactor or BrNalFactor bits per second
    uint32_t MinCrBase[2];                ///< minimum compression ratio
};

/// Tables A.8 and A.9, in ascending order.
constexpr LevelEntry kLevels[] = {
    {30, "1", 36864, {350, 0}, 16, 1, 1, 552960, {128, 0}, {2, 0}},
    {60, "2", 122880, {1500, 0}, 16, 1, 1, 3686400, {1500, 0}, {2, 0}},
    {63, "2.1", 245760, {3000, 0}, 20, 1, 1, 7372800, {3000, 0}, {2, 0}},
    {90, "3", 552960, {6000, 0}, 30, 2, 2, 16588800, {6000, 0}, {2, 0}},
    {93, "3.1", 983040, {10000, 0}, 40, 3, 3, 33177600, {10000, 0}, {2, 0}},
    {120, "4", 2228224, {12000, 30000}, 75, 5, 5, 66846720, {12000, 30000}, {4, 4}},
    {123, "4.1", 2228224, {20000, 50000}, 75, 5, 5, 133693440, {20000, 50000}, {4, 4}},
    {150, "5", 8912896, {25000, 100000}, 200, 11, 10, 267386880, {25000, 100000}, {6, 4}},
    {153, "5.1", 8912896, {40000, 160000}, 200, 11, 10, 534773760, {40000, 160000}, {8, 4}},
    {156, "5.2", 8912896, {60000, 240000}, 200, 11, 10, 1069547520, {60000, 240000}, {8, 4}},
    {180, "6", 35651584, {60000, 240000}, 600, 22, 20, 1069547520, {60000, 240000}, {8, 4}},
    {183, "6.1", 35651584, {120000, 480000}, 600, 22, 20, 2139095040, {120000, 480000}, {8, 4}},
    {186, "6.2", 35651584, {240000, 800000}, 600, 22, 20, 4278190080, {240000, 800000}, {6, 4}},
};

/// level_idc of level 8.5, which has no limits (H.265 A.4.1).
constexpr uint32_t kLevelIdcWithoutLimits = 255;

/// The level of a level_idc, with its limits.
///
/// \return null when this edition does not define the level, and for level 8.5, which has no limits
constexpr const LevelEntry* findLevel(uint32_t level_idc) {
    for (const LevelEntry& level : kLevels) {
        if (level.level_idc == level_idc) {
            return &level;
        }
    }
    return nullptr;
}

/// The name of the level of a level_idc; null when this edition does not define it.
constexpr const char* levelName(uint32_t level_idc) {
    if (level_idc == kLevelIdcWithoutLimits) {
        return "8.5";
    }
    const LevelEntry* const level = findLevel(level_idc);
    return level != nullptr ? level->name : nullptr;
}

}  // namespace qv::hevc

#endif
