#include "report/OutputFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "InspectSupport.h"
#include "RunProgram.h"

namespace qv_test {
namespace {

namespace fs = std::filesystem;
using qvinspect::OutputFile;

// Runs as an ordinary user, who is subject to permissions, during its lifetime.
class OrdinaryUser {
public:
    static constexpr uid_t kNobody = 65534;

    OrdinaryUser() {
        if (geteuid() == 0) {
            EXPECT_EQ(seteuid(kNobody), 0);
        }
    }
    ~OrdinaryUser() {
        if (getuid() == 0) {
            EXPECT_EQ(seteuid(0), 0);
        }
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
};

class OutputFiles : public ::testing::Test {
protected:
    OutputFiles() {
        files_.write("file", {'o', 'l', 'd'});
        give(folder(), 0700);
    }

    // To the ordinary user.
    static void give(const std::string& path, mode_t mode) {
        EXPECT_EQ(chmod(path.c_str(), mode), 0);
        if (geteuid() == 0) {
            EXPECT_EQ(chown(path.c_str(), OrdinaryUser::kNobody, OrdinaryUser::kNobody), 0);
        }
    }

    // The first error.
    int writeAs(OutputFile& output) const {
        const OrdinaryUser user;
        int error = output.open(path());
        error = error == 0 ? output.write("new", 3) : error;
        return error == 0 ? output.close() : error;
    }

    std::string folder() const { return files_.path(); }
    std::string path() const { return folder() + "/file"; }

private:
    TemporaryFolder files_;
};

TEST_F(OutputFiles, nothingIsSeenUntilItIsClosed) {
    give(path(), 0600);
    {
        OutputFile output;
        EXPECT_EQ(output.open(path()), 0);
        EXPECT_EQ(output.write("new", 3), 0);
        EXPECT_TRUE(output.isUntouched());
        EXPECT_EQ(textOf(path()), "old");
    }
    EXPECT_EQ(textOf(path()), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder()), {}), 1);
    OutputFile output;
    EXPECT_EQ(writeAs(output), 0);
    EXPECT_EQ(textOf(path()), "new");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder()), {}), 1);
}

TEST_F(OutputFiles, aFileThatIsProtectedIsNotReplaced) {
    give(path(), 0400);
    OutputFile output;
    EXPECT_EQ(writeAs(output), EACCES);
    EXPECT_EQ(textOf(path()), "old");
}

TEST_F(OutputFiles, aFolderThatIsProtectedLeavesTheFileToWriteTo) {
    give(path(), 0600);
    give(folder(), 0500);
    OutputFile output;
    EXPECT_EQ(writeAs(output), 0);
    EXPECT_FALSE(output.isUntouched());
    give(folder(), 0700);
    EXPECT_EQ(textOf(path()), "new");
}

TEST_F(OutputFiles, aFileOfSomebodyElseInAStickyFolder) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can make files of two users";
    }
    ASSERT_EQ(chown(folder().c_str(), 0, 0), 0);
    ASSERT_EQ(chmod(folder().c_str(), 01777), 0);
    ASSERT_EQ(chmod(path().c_str(), 0666), 0);
    OutputFile output;
    EXPECT_EQ(writeAs(output), 0);
    EXPECT_EQ(textOf(path()), "new");
    struct stat status = {};
    ASSERT_EQ(stat(path().c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 0U) << "the same file";
    EXPECT_EQ(std::distance(fs::directory_iterator(folder()), {}), 1);
}

TEST_F(OutputFiles, ownerAndGroupAreKept) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can give files away";
    }
    give(path(), 0604);
    OutputFile output;
    EXPECT_EQ(output.open(path()), 0);
    EXPECT_EQ(output.close(), 0);
    struct stat status = {};
    ASSERT_EQ(stat(path().c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, OrdinaryUser::kNobody);
    EXPECT_EQ(status.st_gid, OrdinaryUser::kNobody);
    EXPECT_EQ(status.st_mode & 07777, 0604U);
}

TEST_F(OutputFiles, aFolderThatGoesAway) {
    const std::string sub = folder() + "/sub";
    fs::create_directory(sub);
    OutputFile output;
    ASSERT_EQ(output.open(sub + "/file"), 0);
    fs::remove_all(sub);
    EXPECT_EQ(output.close(), ENOENT);
}

}  // namespace
}  // namespace qv_test
