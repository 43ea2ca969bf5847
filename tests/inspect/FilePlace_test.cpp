#include "FilePlace.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "InspectSupport.h"

namespace qv_test {
namespace {

namespace fs = std::filesystem;
using namespace qvinspect;
using Kind = FilePlace::Kind;

class Places : public ::testing::Test {
protected:
    Places() {
        files_.write("file", hex("00"));
        fs::create_directory(path("sub"));
        fs::create_symlink("file", path("link"));
        fs::create_symlink("../link", path("sub/link"));
        fs::create_symlink(path("missing"), path("dangling"));
        fs::create_symlink("circle", path("circle"));
        fs::create_hard_link(path("file"), path("hard"));
        mkfifo(path("pipe").c_str(), 0600);
    }

    std::string path(const std::string& name) const { return files_.path() / name; }

private:
    TemporaryFolder files_;
};

TEST_F(Places, linksAreFollowed) {
    EXPECT_EQ(followLinks("x/y"), "x/y");
    EXPECT_EQ(followLinks(path("link")), path("file"));
    EXPECT_EQ(followLinks(path("sub/link")), path("sub/../file"));
    EXPECT_EQ(followLinks(path("dangling")), path("missing"));
    EXPECT_EQ(followLinks(path("circle")), path("circle"));
    EXPECT_EQ(followLinks("/dev/stdin"), "/proc/self/fd/0");
    EXPECT_EQ(folderOf("a/b/c"), "a/b");
    EXPECT_EQ(folderOf("c"), ".");
    EXPECT_EQ(folderOf("/c"), "/");
}

TEST_F(Places, namesOfDescriptors) {
    EXPECT_EQ(descriptorNamedBy("/dev/fd/12"), 12);
    EXPECT_EQ(descriptorNamedBy("/proc/self/fd/0"), 0);
    EXPECT_EQ(descriptorNamedBy("/proc/" + std::to_string(getpid()) + "/fd/1"), 1);
    for (const char* other :
         {"", "3", "/dev/fd", "/dev/fd/", "/dev/fd/x", "/dev/fd/1x", "/proc/1/fd/3", "/dev/null"}) {
        EXPECT_EQ(descriptorNamedBy(other), std::nullopt) << other;
    }
}

TEST_F(Places, kinds) {
    EXPECT_EQ(placeOf(path("file")).kind, Kind::Regular);
    EXPECT_EQ(placeOf(path("sub/link")).kind, Kind::Regular);
    EXPECT_EQ(placeOf(path("pipe")).kind, Kind::Pipe);
    EXPECT_EQ(placeOf(path("sub")).kind, Kind::Other);
    EXPECT_EQ(placeOf("/dev/null").kind, Kind::Other);
    EXPECT_EQ(placeOf(path("dangling")).kind, Kind::Missing);
    EXPECT_EQ(placeOf(path("none/x")).kind, Kind::Missing);
    EXPECT_EQ(placeOf(-1).kind, Kind::Other);
}

TEST_F(Places, sameFiles) {
    for (const char* name : {"link", "hard", "sub/link", "sub/../file", "./file"}) {
        EXPECT_TRUE(isSamePlace(placeOf(path("file")), placeOf(path(name)))) << name;
    }
    for (const char* name : {"missing", "sub/../missing"}) {
        EXPECT_TRUE(isSamePlace(placeOf(path("dangling")), placeOf(path(name)))) << name;
    }
    const int file = open(path("hard").c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_TRUE(isSamePlace(placeOf(file), placeOf(path("link"))));
    close(file);
    EXPECT_TRUE(isSamePlace(placeOf(path("none/x")), placeOf(path("none/./x"))));
    const std::vector<std::string> different = {"file", "missing", "sub/file", "sub/missing",
                                                "pipe", "sub",     "none/x"};
    for (const std::string& a : different) {
        for (const std::string& b : different) {
            EXPECT_EQ(isSamePlace(placeOf(path(a)), placeOf(path(b))), a == b) << a << " " << b;
        }
    }
}

TEST_F(Places, whatCanBeWrittenOver) {
    for (const char* name : {"file", "missing", "pipe"}) {
        EXPECT_TRUE(canWriteOver(placeOf(path(name)), placeOf(path(name)))) << name;
    }
    EXPECT_FALSE(canWriteOver(placeOf("/dev/null"), placeOf("/dev/null")));
    EXPECT_TRUE(canWriteOverEachOther(placeOf(path("missing")), placeOf(path("dangling"))));
    EXPECT_FALSE(canWriteOverEachOther(placeOf(path("pipe")), placeOf(path("pipe"))));
    EXPECT_FALSE(canWriteOverEachOther(placeOf("/dev/null"), placeOf("/dev/null")));
}

}  // namespace
}  // namespace qv_test
