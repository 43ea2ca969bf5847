// Allocations that fail in one file. This program replaces operator new: allocations above a limit fail.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "ExitCode.h"
#include "InspectAll.h"
#include "InspectSupport.h"

namespace {

size_t mostBytes = SIZE_MAX;

void* allocate(size_t size) {
    void* const memory = size > mostBytes ? nullptr : std::malloc(size > 0 ? size : 1);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

}  // namespace

void* operator new(size_t size) {
    return allocate(size);
}
void* operator new[](size_t size) {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, size_t) noexcept {
    std::free(memory);
}

namespace qv_test {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;

// During its lifetime, larger allocations fail.
class LargestAllocation {
public:
    explicit LargestAllocation(size_t bytes) { mostBytes = bytes; }
    ~LargestAllocation() { mostBytes = SIZE_MAX; }
    LargestAllocation(const LargestAllocation&) = delete;
    LargestAllocation& operator=(const LargestAllocation&) = delete;
};

// A stream with a picture of size bytes.
Bytes largePicture(size_t size) {
    const Bytes sample = fileContent(sampleFolder() / "hevc_hdr10.h265");
    Bytes picture = hex("00 00 00 01 02 01");
    picture.resize(size, 0xFF);
    return sample + picture;
}

class OutOfMemory : public ::testing::Test {
protected:
    // Inspects three files, the second with a picture above the limit.
    int inspect(const char* option, const std::string& out, const char* level) const {
        const std::string small = sampleFolder() / "hevc_hdr10.h265";
        const std::string large = folder_.write("large.h265", largePicture(size_t{12} << 20));
        const std::vector<const char*> words = {"qvinspect", "--level",     level,         option,
                                                out.c_str(), small.c_str(), large.c_str(), small.c_str()};
        const qvinspect::CommandLine line =
            qvinspect::parseCommandLine(static_cast<int>(words.size()), words.data());
        const LargestAllocation limit(size_t{8} << 20);
        return qvinspect::inspectAll(line);
    }

    std::string path(const std::string& name) const { return folder_.path() / name; }

private:
    TemporaryFolder folder_;
};

TEST_F(OutOfMemory, isThatFilesFinding) {
    for (const char* level : {"summary", "fields"}) {
        const std::string out = path("report.json");
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(inspect("--json", out, level), qvinspect::kExitInput);
        EXPECT_THAT(::testing::internal::GetCapturedStderr(),
                    HasSubstr("large.h265: needs more memory than"));
        const Bytes text = fileContent(out);
        const json report = json::parse(text.begin(), text.end());
        ASSERT_EQ(report["files"].size(), 3U);
        EXPECT_EQ(report["files"][0]["summary"], report["files"][2]["summary"]);
        EXPECT_THAT(report["files"][1]["error"], HasSubstr("needs more memory than"));
        EXPECT_EQ(report["files"][1]["name"], "large.h265");
        EXPECT_GT(report["files"][2]["summary"]["access_units"], 0);
    }
}

TEST_F(OutOfMemory, linesGoOn) {
    const std::string out = path("report.ndjson");
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(inspect("--ndjson", out, "samples"), qvinspect::kExitInput);
    ::testing::internal::GetCapturedStderr();
    const Bytes bytes = fileContent(out);
    std::istringstream lines(std::string(bytes.begin(), bytes.end()));
    std::string kinds;
    for (std::string line; std::getline(lines, line);) {
        const json record = json::parse(line);
        if (record["record"] != "access_unit") {
            kinds +=
                record["record"].get<std::string>() + std::to_string(record["file_index"].get<int>()) + " ";
        }
    }
    EXPECT_EQ(kinds, "file0 summary0 file1 error1 file2 summary2 ");
}

}  // namespace
}  // namespace qv_test
