/// \file
/// The levels of H.264 and their limits.
#ifndef QV_BITSTREAM_NAMES_AVCLEVELS_H
#define QV_BITSTREAM_NAMES_AVCLEVELS_H

#include <cstdint>

#include "bitstream/names/AvcProfiles.h"

namespace qv::avc {

/// level_idc of level 1b in most profiles.
constexpr uint32_t kLevelIdc1b = 9;

/// A level and its limits, H.264 Table A-1.
struct LevelEntry {
    uint32_t level_idc;     ///< 10 times the level; 9 for level 1b
    const char* name;       ///< `5.1`
    uint32_t MaxMBPS;       ///< macroblocks in a second
    uint32_t MaxFS;         ///< macroblocks in a frame
    uint32_t MaxDpbMbs;     ///< macroblocks in the decoded picture buffer
    uint32_t MaxBR;         ///< cpbBrVclFactor or cpbBrNalFactor bit/s
    uint32_t MaxCPB;        ///< cpbBrVclFactor or cpbBrNalFactor bits
    uint32_t MaxVmvR;       ///< the vertical range of a motion vector of a frame is -MaxVmvR to
                            ///< MaxVmvR - 0.25 luma samples
    uint32_t MinCR;         ///< least compression ratio
    uint32_t MaxMvsPer2Mb;  ///< motion vectors of two consecutive macroblocks; 0 for no limit
};

/// Every level, in ascending order.
constexpr LevelEntry kLevels[] = {
    {10, "1", 1485, 99, 396, 64, 175, 64, 2, 0},
    {kLevelIdc1b, "1b", 1485, 99, 396, 128, 350, 64, 2, 0},
    {11, "1.1", 3000, 396, 900, 192, 500, 128, 2, 0},
    {12, "1.2", 6000, 396, 2376, 384, 1000, 128, 2, 0},
    {13, "1.3", 11880, 396, 2376, 768, 2000, 128, 2, 0},
    {20, "2", 11880, 396, 2376, 2000, 2000, 128, 2, 0},
    {21, "2.1", 19800, 792, 4752, 4000, 4000, 256, 2, 0},
    {22, "2.2", 20250, 1620, 8100, 4000, 4000, 256, 2, 0},
    {30, "3", 40500, 1620, 8100, 10000, 10000, 256, 2, 32},
    {31, "3.1", 108000, 3600, 18000, 14000, 14000, 512, 4, 16},
    {32, "3.2", 216000, 5120, 20480, 20000, 20000, 512, 4, 16},
    {40, "4", 245760, 8192, 32768, 20000, 25000, 512, 4, 16},
    {41, "4.1", 245760, 8192, 32768, 50000, 62500, 512, 2, 16},
    {42, "4.2", 522240, 8704, 34816, 50000, 62500, 512, 2, 16},
    {50, "5", 589824, 22080, 110400, 135000, 135000, 512, 2, 16},
    {51, "5.1", 983040, 36864, 184320, 240000, 240000, 512, 2, 16},
    {52, "5.2", 2073600, 36864, 184320, 240000, 240000, 512, 2, 16},
    {60, "6", 4177920, 139264, 696320, 240000, 240000, 8192, 2, 16},
    {61, "6.1", 8355840, 139264, 696320, 480000, 480000, 8192, 2, 16},
    {62, "6.2", 16711680, 139264, 696320, 800000, 800000, 8192, 2, 16},
};

/// The level that a parameter set or a configuration record indicates. Level 1b is level_idc 11 with
/// constraint_set3_flag 1 in profiles 66, 77 and 88, and level_idc 9 in the others (A.3.1, A.3.2); 9 is
/// treated as level 1b in every profile.
///
/// \param profile_idc  as coded
/// \param constraints  the byte after profile_idc: constraint_set0_flag in the most significant bit
/// \param level_idc    as coded
/// \return null when this edition does not define the level
constexpr const LevelEntry* findLevel(uint32_t profile_idc, uint32_t constraints, uint32_t level_idc) {
    const bool has1bBy11 = profile_idc == 66 || profile_idc == 77 || profile_idc == 88;
    const bool is1b = has1bBy11 && level_idc == 11 && (constraints & kConstraintSet3) != 0;
    for (const LevelEntry& entry : kLevels) {
        if (entry.level_idc == (is1b ? kLevelIdc1b : level_idc)) {
            return &entry;
        }
    }
    return nullptr;
}

}  // namespace qv::avc

#endif
