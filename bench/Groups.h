// The groups of rows. A group creates its input when it runs and releases it afterwards.
#ifndef QV_BENCH_GROUPS_H
#define QV_BENCH_GROUPS_H

#include <functional>
#include <string>
#include <vector>

#include "RatioTable.h"

namespace qv_bench {

struct Group {
    std::string name;
    std::function<Rows()> make;
};

std::vector<Group> scanGroups();
std::vector<Group> lengthScanGroups();
std::vector<Group> keyFrameGroups();
std::vector<Group> reframeGroups();
std::vector<Group> parameterSetGroups();
std::vector<Group> seiGroups();
std::vector<Group> readerGroups();
std::vector<Group> allocationGroups();
std::vector<Group> wholeParameterSetGroups();
std::vector<Group> messageGroups();

// The rows on encoded streams: x264.h264 and x265.h265 in the folder at path.
std::vector<Group> streamGroups(const std::string& path);

// The rows of the walk over units: on pools, and on x264-50.h264 and x265-50.h265 in the folder at path.
std::vector<Group> unitGroups(const std::string& path);

}  // namespace qv_bench

#endif
