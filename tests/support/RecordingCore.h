// A third implementation of the platform functions: it keeps log lines, dumps, allocations and side-data
// calls as values, and fails where a test asks for it.
#ifndef QV_TESTS_RECORDINGCORE_H
#define QV_TESTS_RECORDINGCORE_H

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "QVHDRVivid.h"
#include "QVNaluParser.h"
#include "QVSeiInfo.h"

namespace qv_test {

struct LogLine {
    int level;
    std::string file;
    int line;
    std::string function;
    std::string tag;
    std::string text;    // formatted
    std::string format;  // as it came
};

struct Dump {
    std::string label;
    const unsigned char* data;
    int size;
};

// What a log line is expected to be; file and tag are the module's fixed ones.
struct ExpectedLine {
    int level;
    std::string function;
    std::string text;
};

struct RecordingCore {
    std::vector<LogLine> lines;
    std::vector<Dump> dumps;

    // Set: log lines and dumps are only counted, for tests that make millions of them.
    bool onlyCounts = false;
    size_t countedLines = 0;
    size_t countedDumps = 0;

    // Blocks of qvMalloc and qvMallocz that no test has released yet, with their sizes.
    std::map<void*, size_t> blocks;
    int playerAllocations = 0;
    int failPlayerAllocation = 0;  // the n-th fails, counted from 1; 0: none

    // Side data.
    bool failCreateSeiInfo = false;
    std::vector<uint32_t> createdSeiInfos;  // the counts asked for
    int64_t reportedItemCount = -1;         // the count in the description instead, when not negative
    std::vector<QVSeiItem> describedItems;  // the entries as passed to the serialiser
    unsigned char* sideData = nullptr;      // what the serialiser returns
    int sideDataSize = 0;                   // and the size it stores
    int liveSeiInfos = 0;

    // Calls of the HDR Vivid parser.
    int vividStatus = 0;
    std::vector<std::pair<const QVSeiItem*, QVHDRVividDynamicMetadata*>> vividCalls;

    bool throwFromLog = false;
    std::function<void(const LogLine&)> onLog;  // called for each line that is logged
};

struct LogFailure {};

RecordingCore& core();

// Releases a block of qvMalloc or qvMallocz.
void releaseBlock(void* block);

// Starts each test with an empty core and fails it when player memory or a description is left over.
class CoreTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Exactly these lines were logged, in this order, with the module's file name and tag.
    static void expectLines(const std::vector<ExpectedLine>& expected);
    static void expectNoLines() { expectLines({}); }
};

}  // namespace qv_test

#endif
