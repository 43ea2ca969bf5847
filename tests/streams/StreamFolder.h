// Tests over folders of streams: the one that comes with the tests, and the larger one that may be absent.
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

// A fixture on Base, skipped with its reason where the folder is absent.
template <typename Base>
class StreamFolderTest : public Base, public ::testing::WithParamInterface<StreamFolder> {
protected:
    void SetUp() override {
        Base::SetUp();
        if (!std::filesystem::is_directory(this->GetParam().path)) {
            GTEST_SKIP() << "there is no folder " << this->GetParam().path
                         << "; -DQVNALU_STREAMS_DIR=... names another";
        }
    }
};

}  // namespace qv_test

#endif
