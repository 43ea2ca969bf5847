// The groups of rows. A group makes its input when its turn comes and lets go of it after that.
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

// On the streams of an encoder in the folder at path: x264.h264 and x265.h265.
std::vector<Group> streamGroups(const std::string& path);

}  // namespace qv_bench

#endif
