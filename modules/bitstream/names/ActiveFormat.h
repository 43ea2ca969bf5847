/// \file
/// Names of active_format: ETSI TS 101 154 Annex B, ATSC A/53 Part 4.
#ifndef QV_BITSTREAM_NAMES_ACTIVEFORMAT_H
#define QV_BITSTREAM_NAMES_ACTIVEFORMAT_H

#include <cstdint>

#include "bitstream/names/Name.h"

namespace qv {

/// active_format, whatever the coded frame is.
constexpr Name kActiveFormats[] = {
    {2, "Box 16:9 (top)", "TS 101 154 Annex B"},
    {3, "Box 14:9 (top)", "TS 101 154 Annex B"},
    {4, "Box > 16:9 (centre)", "TS 101 154 Annex B"},
    {8, "As the coded frame", "TS 101 154 Annex B"},
    {9, "4:3 (centre)", "TS 101 154 Annex B"},
    {10, "16:9 (centre)", "TS 101 154 Annex B"},
    {11, "14:9 (centre)", "TS 101 154 Annex B"},
    {13, "4:3 (with shoot and protect 14:9 centre)", "TS 101 154 Annex B"},
    {14, "16:9 (with shoot and protect 14:9 centre)", "TS 101 154 Annex B"},
    {15, "16:9 (with shoot and protect 4:3 centre)", "TS 101 154 Annex B"},
};

/// What active_format means in a coded frame of 4:3.
constexpr Name kActiveFormatsIn4To3[] = {
    {2, "16:9 letterbox at the top", "TS 101 154 Annex B"},
    {3, "14:9 letterbox at the top", "TS 101 154 Annex B"},
    {4, "Letterbox wider than 16:9, centred", "TS 101 154 Annex B"},
    {8, "Full frame 4:3", "TS 101 154 Annex B"},
    {9, "Full frame 4:3", "TS 101 154 Annex B"},
    {10, "16:9 letterbox, centred", "TS 101 154 Annex B"},
    {11, "14:9 letterbox, centred", "TS 101 154 Annex B"},
    {13, "Full frame 4:3, alternative 14:9 centre", "TS 101 154 Annex B"},
    {14, "16:9 letterbox, alternative 14:9 centre", "TS 101 154 Annex B"},
    {15, "16:9 letterbox, alternative 4:3 centre", "TS 101 154 Annex B"},
};

/// What active_format means in a coded frame of 16:9.
constexpr Name kActiveFormatsIn16To9[] = {
    {2, "Full frame 16:9", "TS 101 154 Annex B"},
    {3, "14:9 pillarbox, centred", "TS 101 154 Annex B"},
    {4, "Letterbox wider than 16:9, centred", "TS 101 154 Annex B"},
    {8, "Full frame 16:9", "TS 101 154 Annex B"},
    {9, "4:3 pillarbox, centred", "TS 101 154 Annex B"},
    {10, "Full frame 16:9", "TS 101 154 Annex B"},
    {11, "14:9 pillarbox, centred", "TS 101 154 Annex B"},
    {13, "4:3 pillarbox, alternative 14:9 centre", "TS 101 154 Annex B"},
    {14, "Full frame 16:9, alternative 14:9 centre", "TS 101 154 Annex B"},
    {15, "Full frame 16:9, alternative 4:3 centre", "TS 101 154 Annex B"},
};

/// The name of an active_format of 0 to 15; "Reserved" for the others.
constexpr Name nameOfActiveFormat(uint32_t active_format) {
    return nameOf(kActiveFormats, active_format, "Reserved");
}

/// What an active_format means.
///
/// \param isWide  true when the coded frame is 16:9, false when it is 4:3
constexpr Name meaningOfActiveFormat(uint32_t active_format, bool isWide) {
    return isWide ? nameOf(kActiveFormatsIn16To9, active_format, "Reserved")
                  : nameOf(kActiveFormatsIn4To3, active_format, "Reserved");
}

}  // namespace qv

#endif
