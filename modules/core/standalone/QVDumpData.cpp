// A hex dump of bounded length, written to the log: enough of a broken sample to see its framing.
#include "QVDumpData.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "QVTraceLog.h"

namespace {

constexpr int kBytesPerLine = 16;
constexpr int kMostBytes = 256;
constexpr const char* kTag = "QVPlayerCore.DumpData";

void trace(int line, const std::string& text) {
    qvTraceLog(QVTraceError, "QVDumpData.cpp", line, "dumpActualData", kTag, "%s\n", text.c_str());
}

std::string hexLine(const unsigned char* data, int from, int to) {
    char field[16];
    static_cast<void>(std::snprintf(field, sizeof field, "%08x ", static_cast<unsigned>(from)));
    std::string text = field;
    for (int i = from; i < to; ++i) {
        static_cast<void>(std::snprintf(field, sizeof field, " %02x", static_cast<unsigned>(data[i])));
        text += field;
    }
    return text;
}

}  // namespace

void QVDumpData::dumpActualData(const char* label, const unsigned char* data, int size) {
    const std::string title = label != nullptr ? label : "(no label)";
    if (data == nullptr || size <= 0) {
        trace(__LINE__, title + ": no data");
        return;
    }
    trace(__LINE__, title + ": " + std::to_string(size) + " bytes");
    const int shown = std::min(size, kMostBytes);
    for (int at = 0; at < shown; at += kBytesPerLine) {
        trace(__LINE__, hexLine(data, at, std::min(at + kBytesPerLine, shown)));
    }
    if (shown < size) {
        trace(__LINE__, "... " + std::to_string(size - shown) + " more bytes");
    }
}
