// Tests on folders of streams: the one in the repository and the larger one, which may not exist.
#ifndef QV_TESTS_STREAMFOLDER_H
#define QV_TESTS_STREAMFOLDER_H

#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>
#include <string>

#include "StreamExpectation.h"

namespace qv_test {

struct StreamFolder {
    const char* name;
    std::filesystem::path path;
};

inline void PrintTo(const StreamFolder& folder, std::ostream* out) {
    *out << folder.path.string();
}

inline std::string nameOf(const ::testing::TestParamInfo<StreamFolder>& folder) {
    return folder.param.name;
}

inline auto everyStreamFolder() {
    return ::testing::Values(StreamFolder{"bundled", bundledStreams()},
                             StreamFolder{"folder", streamsFolder()});
}

// A fixture derived from Base. Its tests are skipped, with a message, if the folder does not exist.
template <typename Base>
class StreamFolderTest : public Base, public ::testing::WithParamInterface<StreamFolder> {
protected:
    void SetUp() override {
        Base::SetUp();
        if (!std::filesystem::is_directory(this->GetParam().path)) {
            GTEST_SKIP() << "there is no folder " << this->GetParam().path
                         << "; set another with -DQVNALU_STREAMS_DIR=...";
        }
    }
};

}  // namespace qv_test

#endif
