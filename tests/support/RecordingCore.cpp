#include "RecordingCore.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "AllocationFault.h"
#include "QVDumpData.h"
#include "QVHDRVivid.h"
#include "QVMemory.h"
#include "QVTraceLog.h"

namespace qv_test {

namespace {

QV_PRINTF_FORMAT(1, 0)
std::string formatted(const char* format, va_list arguments) {
    char text[1024];
    std::vsnprintf(text, sizeof text, format, arguments);
    return text;
}

// The one text that has no argument for its "%d". Formatting it would read an argument that was not passed.
constexpr const char* kPlainText =
    "parserAvcBufferingPeriod: non-existing SPS %d referenced in buffering period.\n";

bool isPlainText(const char* format) {
    return std::strcmp(format, kPlainText) == 0;
}

void* allocate(size_t size, bool zeroed) {
    const AllocationExemption exemption;
    RecordingCore& recording = core();
    if (++recording.playerAllocations == recording.failPlayerAllocation) {
        return nullptr;
    }
    void* const block = std::malloc(size > 0 ? size : 1);
    if (block == nullptr) {
        return nullptr;
    }
    std::memset(block, zeroed ? 0x00 : 0xA5, size);
    recording.blocks[block] = size;
    return block;
}

}  // namespace

RecordingCore& core() {
    static RecordingCore recording;
    return recording;
}

void releaseBlock(void* block) {
    ASSERT_EQ(core().blocks.erase(block), 1U) << "not a block of the player's allocators";
    std::free(block);
}

void CoreTest::SetUp() {
    core() = RecordingCore();
}

void CoreTest::TearDown() {
    EXPECT_TRUE(core().blocks.empty()) << core().blocks.size() << " player block(s) left over";
    EXPECT_EQ(core().liveSeiInfos, 0);
    for (const auto& [block, size] : core().blocks) {
        std::free(block);
    }
    core() = RecordingCore();
}

void CoreTest::expectLines(const std::vector<ExpectedLine>& expected) {
    const auto& lines = core().lines;
    EXPECT_EQ(lines.size(), expected.size());
    for (size_t i = 0; i < lines.size(); ++i) {
        SCOPED_TRACE("log line " + std::to_string(i) + ": " + lines[i].text);
        EXPECT_EQ(lines[i].file, "QVNaluParser.cpp");
        EXPECT_EQ(lines[i].tag, "QVPlayerCore.DecoderConfigurationRecord");
        EXPECT_GT(lines[i].line, 0);
        if (i < expected.size()) {
            EXPECT_EQ(lines[i].level, expected[i].level);
            EXPECT_EQ(lines[i].function, expected[i].function);
            EXPECT_EQ(lines[i].text, expected[i].text);
        }
    }
}

}  // namespace qv_test

using qv_test::core;

extern "C" void qvTraceLog(int level, const char* file, int line, const char* function, const char* tag,
                           const char* format, ...) {
    if (core().onlyCounts) {
        ++core().countedLines;
        return;
    }
    va_list arguments;
    va_start(arguments, format);
    const std::string text = qv_test::isPlainText(format) ? format : qv_test::formatted(format, arguments);
    core().lines.push_back({level, file, line, function, tag, text, format});
    va_end(arguments);
    if (core().onLog) {
        core().onLog(core().lines.back());
    }
    if (core().throwFromLog) {
        throw qv_test::LogFailure();
    }
}

extern "C" void* qvMalloc(size_t size) {
    return qv_test::allocate(size, false);
}

extern "C" void* qvMallocz(size_t size) {
    return qv_test::allocate(size, true);
}

void QVDumpData::dumpActualData(const char* label, const unsigned char* data, int size) {
    if (core().onlyCounts) {
        ++core().countedDumps;
        return;
    }
    core().dumps.push_back({label, data, size});
}

extern "C" QVSeiInfo* createQVSeiInfo(uint32_t itemCount) {
    const qv_test::AllocationExemption exemption;
    core().createdSeiInfos.push_back(itemCount);
    if (core().failCreateSeiInfo) {
        return nullptr;
    }
    const int64_t reported = core().reportedItemCount;
    const uint32_t count = reported >= 0 ? static_cast<uint32_t>(reported) : itemCount;
    // Room for exactly the entries that the description reports: the sanitizer finds a write beyond them.
    auto* const info = new QVSeiInfo{count, new QVSeiItem[count]()};
    ++core().liveSeiInfos;
    return info;
}

extern "C" unsigned char* createSideDataFromQVSeiInfo(QVSeiInfo* info, int* size) {
    const qv_test::AllocationExemption exemption;
    core().describedItems.assign(info->items, info->items + info->itemCount);
    *size = core().sideDataSize;
    return core().sideData;
}

extern "C" void freepQVSeiInfo(QVSeiInfo** info) {
    delete[](*info)->items;
    delete *info;
    *info = nullptr;
    --core().liveSeiInfos;
}

namespace qv_hdr_vivid_parser {

int fillHDRVividDynamicMetadataFromHevcUserDataRegisteredSei(const QVSeiItem& item,
                                                             QVHDRVividDynamicMetadata* metadata) {
    const qv_test::AllocationExemption exemption;
    core().vividCalls.emplace_back(&item, metadata);
    return core().vividStatus;
}

}  // namespace qv_hdr_vivid_parser
