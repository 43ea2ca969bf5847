/// \file
/// Names of what picture timing says: how a picture is displayed, and how its time is counted.
#ifndef QV_BITSTREAM_NAMES_PICTURETIMING_H
#define QV_BITSTREAM_NAMES_PICTURETIMING_H

#include <cstdint>

#include "bitstream/names/Name.h"

namespace qv {

/// counting_type of clock timestamps, H.264 Table D-3; H.265 D.3.27 has the same values.
constexpr Name kCountingTypeNames[] = {
    {0, "No dropping, no time_offset", "Table D-3"},
    {1, "No dropping", "Table D-3"},
    {2, "Dropping of individual zero values", "Table D-3"},
    {3, "Dropping of individual MaxFPS - 1 values", "Table D-3"},
    {4, "Dropping of 0 and 1 at seconds 0 unless minutes is a multiple of 10", "Table D-3"},
    {5, "Dropping of unspecified individual values", "Table D-3"},
    {6, "Dropping of unspecified numbers of unspecified values", "Table D-3"},
};

/// The name of a counting_type; "Reserved" for 7 and above.
constexpr Name countingTypeName(uint32_t counting_type) {
    return nameOf(kCountingTypeNames, counting_type, "Reserved");
}

namespace avc {

/// pic_struct of H.264, Table D-1.
constexpr Name kPicStructNames[] = {
    {0, "Frame", "Table D-1"},
    {1, "Top field", "Table D-1"},
    {2, "Bottom field", "Table D-1"},
    {3, "Top field, bottom field", "Table D-1"},
    {4, "Bottom field, top field", "Table D-1"},
    {5, "Top field, bottom field, top field repeated", "Table D-1"},
    {6, "Bottom field, top field, bottom field repeated", "Table D-1"},
    {7, "Frame doubling", "Table D-1"},
    {8, "Frame tripling", "Table D-1"},
};

/// ct_type of H.264, Table D-2: how the original material was scanned.
constexpr Name kCtTypeNames[] = {
    {0, "Progressive", "Table D-2"},
    {1, "Interlaced", "Table D-2"},
    {2, "Unknown", "Table D-2"},
};

/// The name of a pic_struct; "Reserved" for 9 and above.
constexpr Name picStructName(uint32_t pic_struct) {
    return nameOf(kPicStructNames, pic_struct, "Reserved");
}

/// The name of a ct_type; "Reserved" for 3 and above.
constexpr Name ctTypeName(uint32_t ct_type) {
    return nameOf(kCtTypeNames, ct_type, "Reserved");
}

}  // namespace avc

namespace hevc {

/// pic_struct of H.265, Table D.2; ffinfo_pic_struct has the same values.
constexpr Name kPicStructNames[] = {
    {0, "Frame", "Table D.2"},
    {1, "Top field", "Table D.2"},
    {2, "Bottom field", "Table D.2"},
    {3, "Top field, bottom field", "Table D.2"},
    {4, "Bottom field, top field", "Table D.2"},
    {5, "Top field, bottom field, top field repeated", "Table D.2"},
    {6, "Bottom field, top field, bottom field repeated", "Table D.2"},
    {7, "Frame doubling", "Table D.2"},
    {8, "Frame tripling", "Table D.2"},
    {9, "Top field paired with the bottom field before it", "Table D.2"},
    {10, "Bottom field paired with the top field before it", "Table D.2"},
    {11, "Top field paired with the bottom field after it", "Table D.2"},
    {12, "Bottom field paired with the top field after it", "Table D.2"},
};

/// source_scan_type of H.265, D.3.3; ffinfo_source_scan_type has the same values.
constexpr Name kSourceScanTypeNames[] = {
    {0, "Interlaced", "D.3.3"},
    {1, "Progressive", "D.3.3"},
    {2, "Unknown", "D.3.3"},
};

/// hash_type of H.265, D.3.20.
constexpr Name kHashTypeNames[] = {
    {0, "MD5", "D.3.20"},
    {1, "CRC", "D.3.20"},
    {2, "Checksum", "D.3.20"},
};

/// The name of a pic_struct; "Reserved" for 13 and above.
constexpr Name picStructName(uint32_t pic_struct) {
    return nameOf(kPicStructNames, pic_struct, "Reserved");
}

/// The name of a source_scan_type; "Reserved" for 3 and above.
constexpr Name sourceScanTypeName(uint32_t source_scan_type) {
    return nameOf(kSourceScanTypeNames, source_scan_type, "Reserved");
}

/// The name of a hash_type; "Reserved" for 3 and above.
constexpr Name hashTypeName(uint32_t hash_type) {
    return nameOf(kHashTypeNames, hash_type, "Reserved");
}

}  // namespace hevc

}  // namespace qv

#endif
