#include "report/Listing.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>

#include "Inspect.h"
#include "InspectSupport.h"
#include "StreamExpectation.h"

namespace qv_test {
namespace {

std::string textOf(const std::filesystem::path& path) {
    const Bytes bytes = fileContent(path);
    return std::string(bytes.begin(), bytes.end());
}

// The listing must be exactly the golden file, which a person has reviewed. If QVINSPECT_WRITE_GOLDEN is set,
// the file is written first.
void expectGolden(const std::string& text, const std::string& name) {
    const std::filesystem::path path = std::filesystem::path(QVINSPECT_GOLDEN_DIR) / (name + ".txt");
    if (std::getenv("QVINSPECT_WRITE_GOLDEN") != nullptr) {
        std::ofstream(path, std::ios::binary) << text;
    }
    EXPECT_EQ(text, textOf(path));
}

using qvinspect::Level;

struct Shown {
    std::deque<int> requested;
    Level level = Level::Fields;
    std::optional<uint64_t> mostAccessUnits;
    qvinspect::Filter filter;
    qvinspect::PageFormat format;
};

std::string listingOf(const std::string& name, const Bytes& bytes, const Shown& shown = {}) {
    const TemporaryFolder folder;
    const std::string path = folder.write(name, bytes);
    const std::string out = folder.path() / "listing";
    qvinspect::CommandLine line;
    line.requested = shown.requested;
    line.filter = shown.filter;
    line.input.mostAccessUnits = shown.mostAccessUnits;
    qvinspect::Presenters presenters;
    presenters.push_back(std::make_unique<qvinspect::Listing>(out, shown.level, shown.format));
    qvinspect::inspectFile(path, line, presenters);
    presenters.front()->finish();
    return textOf(out);
}

// --- Every level of streams of every kind ---

Bytes bundled(const std::string& name) {
    return fileContent(bundledStreams() / name);
}

// A/53 captions before the second picture of a stream with HRD.
Bytes captionsAndHrd() {
    Bytes stream = bundled("avc_hrd_picstruct.h264");
    const Bytes captions =
        hex("00 00 01 06 04 0E B5 00 31 47 41 39 34 03 "
            "41 FF FC 80 80 FF 80");
    constexpr std::ptrdiff_t kSecondAccessUnit = 3202;
    stream.insert(stream.begin() + kSecondAccessUnit, captions.begin(), captions.end());
    return stream;
}

// Bytes before the stream, a refused parameter set, a unit with forbidden_zero_bit set and one with a
// truncated SEI message.
Bytes damaged() {
    return hex(
        "AB CD "
        "00 00 00 01 67 42 00 0A F8 41 A2 "
        "00 00 01 E8 CE 38 80 "
        "00 00 01 65 88 84 00 33 "
        "00 00 01 01 9A 24 66 "
        "00 00 01 06 05 7F 11 22 80 "
        "00 00 01 41 9A 44 66 "
        "00 00 01 41 9A 64 66 "
        "00 00 01 41 9A 84 66 "
        "00 00 01 E1 9A A4 66");
}

struct GoldenStream {
    const char* golden;
    const char* name;
    Bytes (*bytes)();
    bool isContainer;
};

const GoldenStream kGoldenStreams[] = {
    {"hdr10", "hevc_hdr10.h265", [] { return fileContent(sampleFolder() / "hevc_hdr10.h265"); }, false},
    {"hdr_vivid", "hevc_vivid_hand.h265", [] { return bundled("hevc_vivid_hand.h265"); }, false},
    {"captions", "avc_captions.h264", captionsAndHrd, false},
    {"mp4", "avc_len1.mp4", [] { return bundled("avc_len1.mp4"); }, true},
    {"ts", "avc.ts", [] { return fileContent(sampleFolder() / "avc.ts"); }, true},
    {"damaged", "x", damaged, false},
};

const std::pair<const char*, Level> kLevels[] = {{"summary", Level::Summary},
                                                 {"samples", Level::Samples},
                                                 {"nalus", Level::Nalus},
                                                 {"sei", Level::Sei},
                                                 {"fields", Level::Fields}};

void PrintTo(const GoldenStream& stream, std::ostream* out) {
    *out << stream.name;
}

class ListingOf : public ::testing::TestWithParam<GoldenStream> {
protected:
    void SetUp() override {
        if (GetParam().isContainer && QVINSPECT_HAS_LIBAVFORMAT == 0) {
            GTEST_SKIP() << "built without libavformat: no containers";
        }
    }

    static std::string atLevel(Level level) {
        Shown shown;
        shown.level = level;
        if (level >= Level::Nalus) {
            shown.mostAccessUnits = 4;
        }
        return listingOf(GetParam().name, GetParam().bytes(), shown);
    }
};

TEST_P(ListingOf, everyLevel) {
    for (const auto& [levelName, level] : kLevels) {
        expectGolden(atLevel(level), std::string(GetParam().golden) + "_" + levelName);
    }
}

TEST_P(ListingOf, summaryFitsAScreen) {
    std::istringstream lines(atLevel(Level::Summary));
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        EXPECT_LE(line.size(), 80U) << line;
    }
    EXPECT_LE(count, 40);
}

INSTANTIATE_TEST_SUITE_P(Streams, ListingOf, ::testing::ValuesIn(kGoldenStreams),
                         [](const auto& stream) { return std::string(stream.param.golden); });

TEST(Listing, inColour) {
    Shown shown;
    shown.format.isColored = true;
    expectGolden(listingOf("x", damaged(), shown), "colour");
}

TEST(Listing, onANarrowTerminal) {
    Shown shown;
    shown.mostAccessUnits = 1;
    shown.format.width = 60;
    const std::string text = listingOf("hevc_hdr10.h265", kGoldenStreams[0].bytes(), shown);
    expectGolden(text, "narrow");
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(line.size(), 60U);
    }
}

TEST(Listing, requestedTypesAreKept) {
    Shown shown;
    shown.requested = {132};
    shown.mostAccessUnits = 4;
    expectGolden(listingOf("hevc_hash_hand.h265", bundled("hevc_hash_hand.h265"), shown), "requested_hashes");
}

// --- Filters ---

// The lines before the summary, and the summary.
std::pair<std::string, std::string> parts(const std::string& listing) {
    const size_t summary = listing.find("Summary of ");
    return {listing.substr(0, summary), summary == std::string::npos ? "" : listing.substr(summary)};
}

TEST(Listing, filtersNarrowEveryLevelButNotTheTotals) {
    qvinspect::Filter captions;
    captions.t35 = {{0xB5, 0, 0x0031}};
    qvinspect::Filter slices;
    slices.unitTypes = {5};
    qvinspect::Filter keys;
    keys.keyOnly = true;
    const std::pair<const char*, qvinspect::Filter> filters[] = {
        {"t35", captions}, {"type", slices}, {"key", keys}};
    std::string text;
    for (const auto& [levelName, level] : kLevels) {
        Shown whole;
        whole.level = level;
        const std::string summary = parts(listingOf("x", captionsAndHrd(), whole)).second;
        for (const auto& [filterName, filter] : filters) {
            Shown shown = whole;
            shown.filter = filter;
            const auto [lines, totals] = parts(listingOf("x", captionsAndHrd(), shown));
            EXPECT_EQ(totals, summary) << filterName << " " << levelName;
            if (level == Level::Samples || level == Level::Sei) {
                text += std::string("--- ") + filterName + ", " + levelName + "\n" + lines;
            }
        }
    }
    expectGolden(text, "filters");
}

TEST(Listing, aFilterThatNothingPasses) {
    Shown shown;
    shown.level = Level::Nalus;
    shown.filter.unitTypes = {31};
    const std::string text = listingOf("x", captionsAndHrd(), shown);
    EXPECT_NE(text.find("nothing matches the filters\n"), std::string::npos);
    EXPECT_EQ(text.find("AU 1"), std::string::npos);
}

// --- Cases that no stream in the repository has ---

qvinspect::StreamInfo containerInfo() {
    qvinspect::StreamInfo info;
    info.format = "QuickTime / MOV";
    info.parameters = {QVCodecIDHevc, 0, 2};
    return info;
}

TEST(Listing, container) {
    const TemporaryFolder folder;
    const std::string out = folder.path() / "listing";
    qvinspect::Listing listing(out, qvinspect::Level::Fields);
    qvinspect::StreamCounter counter(containerInfo());

    qvinspect::AccessUnit timed;
    timed.size = 1234;
    timed.time = -0.04;
    qvinspect::AccessUnitReport report;
    report.isKey = true;
    report.units = {{qvinspect::UnitState::Typed, 2, 1230, 19, false},
                    {qvinspect::UnitState::Typed, 1233, 1, 1, false},
                    {qvinspect::UnitState::Empty, 1234, 0, 0, false}};
    qvinspect::AccessUnit untimed;
    untimed.size = 7;
    untimed.findings = {{qvinspect::Severity::Error, std::nullopt, "damaged"}};
    const std::vector<qvinspect::Finding> atEnd = {{qvinspect::Severity::Error, 99, "reading failed"},
                                                   {qvinspect::Severity::Note, std::nullopt, "a note"}};
    qvinspect::AccessUnitDetails details;
    details.units.resize(report.units.size());
    const Bytes bytes(timed.size);
    timed.data = bytes.data();

    listing.begin({"x.mp4", containerInfo(), false, {}});
    const qvinspect::AccessUnitReport emptyReport;
    const qvinspect::AccessUnitDetails emptyDetails;
    for (const auto& view : {qvinspect::viewOf(1, timed, report, details),
                             qvinspect::viewOf(2, untimed, emptyReport, emptyDetails)}) {
        counter.add(view);
        listing.add(view);
    }
    counter.finish(atEnd);
    listing.end({counter.totals(), atEnd, {}, false});
    listing.finish();
    expectGolden(textOf(out), "container");
}

// A stream with everything that a summary can show.
qvinspect::StreamTotals fullSummary() {
    qvinspect::StreamTotals totals;
    totals.codec = QVCodecIDHevc;
    totals.accessUnits = 12345678901;
    totals.untimedAccessUnits = 3;
    totals.keyAccessUnits = 3;
    totals.firstKey = 7;
    totals.keyIntervals.count = 2;
    totals.keyIntervals.least = 5;
    totals.keyIntervals.sum = 25;
    totals.keyIntervals.most = 12345678873;
    totals.keyIntervals.mostAt = 28;
    totals.keyIntervals.isMostAtEnd = true;
    totals.keyIntervals.timed = 2;
    totals.keyIntervals.leastSeconds = 0.2;
    totals.keyIntervals.sumSeconds = 1e300;
    totals.keyIntervals.mostSeconds = 1e300;
    totals.bytes = 1000000;
    totals.units = 1000;
    totals.untypedUnits = 1;
    for (uint32_t type = 0; type < 40; ++type) {
        totals.unitsByType[type] = type % 7 + 1;
        totals.unitBytesByType[type] = 1000 * type;
        totals.messagesByType[130 + type] = type % 5 + 1;
    }
    totals.distinctSps = 3;
    totals.refusedSps = 3;
    totals.errors = 100;
    totals.errorKinds = {
        {"access unit 3: forbidden_zero_bit is set (at 1234)", 90},
        {"access unit 4: a text that goes on for longer than what is left of one line (at 5)", 1}};
    totals.noteCount = 20;
    for (int i = 0; i < 16; ++i) {
        totals.notes.push_back({qvinspect::Severity::Note, 7 + i, "a note with \x1b[31man escape code"});
    }
    qvinspect::Signals& signals = totals.signals;
    signals.hdrVivid.messages = 5;
    signals.hdr10PlusMessages = 1;
    signals.transfer_characteristics = 16;
    signals.preferredTransfer = 18;
    signals.captionMessages = 2;
    signals.captionTypes = 0b1001;
    return totals;
}

TEST(Listing, fullSummary) {
    const qvinspect::StreamTotals totals = fullSummary();
    const std::vector<qvinspect::CheckResult> checks = {{"no-errors", false, "100 errors"},
                                                        {"captions", true, "2 messages"}};
    const TemporaryFolder folder;
    const std::string out = folder.path() / "listing";
    qvinspect::Listing listing(out, Level::Summary);
    listing.begin({"x.mp4", containerInfo(), false, {}});
    listing.end({totals, {}, checks, true});
    listing.begin({"raw", containerInfo(), true, {}});
    listing.end({qvinspect::StreamTotals{}, {}, {}, false});
    listing.finish();
    expectGolden(textOf(out), "full_summary");
}

}  // namespace
}  // namespace qv_test
