#include "report/Listing.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <memory>
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

// What a listing has to be, to the letter: a person has looked at it. With QVINSPECT_WRITE_GOLDEN set it is
// written first.
void expectGolden(const std::string& text, const std::string& name) {
    const std::filesystem::path path = std::filesystem::path(QVINSPECT_GOLDEN_DIR) / (name + ".txt");
    if (std::getenv("QVINSPECT_WRITE_GOLDEN") != nullptr) {
        std::ofstream(path, std::ios::binary) << text;
    }
    EXPECT_EQ(text, textOf(path));
}

std::string listingOf(const std::string& name, const Bytes& bytes, std::deque<int> requested = {},
                      qvinspect::Level level = qvinspect::Level::Fields) {
    const TemporaryFolder folder;
    const std::string path = folder.write(name, bytes);
    const std::string out = folder.path() / "listing";
    qvinspect::CommandLine line;
    line.requested = std::move(requested);
    qvinspect::Presenters presenters;
    presenters.push_back(std::make_unique<qvinspect::Listing>(out, level));
    qvinspect::inspectFile(path, line, presenters);
    presenters.front()->finish();
    return textOf(out);
}

TEST(Listing, rawStream) {
    expectGolden(listingOf("hevc_hdr10.h265", fileContent(sampleFolder() / "hevc_hdr10.h265")), "raw_stream");
}

TEST(Listing, hdrVivid) {
    expectGolden(listingOf("hevc_vivid_hand.h265", fileContent(bundledStreams() / "hevc_vivid_hand.h265")),
                 "hdr_vivid");
}

TEST(Listing, hrdTiming) {
    expectGolden(
        listingOf("avc_hrd_picstruct.h264", fileContent(bundledStreams() / "avc_hrd_picstruct.h264")),
        "hrd_timing");
}

TEST(Listing, requestedTypesAreKept) {
    expectGolden(
        listingOf("hevc_hash_hand.h265", fileContent(bundledStreams() / "hevc_hash_hand.h265"), {132}),
        "requested_hashes");
}

TEST(Listing, mp4WithItsConfigurationRecord) {
    if (QVINSPECT_HAS_LIBAVFORMAT == 0) {
        GTEST_SKIP() << "built without libavformat: no containers";
    }
    expectGolden(listingOf("avc_len1.mp4", fileContent(bundledStreams() / "avc_len1.mp4")), "mp4");
}

TEST(Listing, findings) {
    const Bytes stream =
        hex("AB CD "                             //
            "00 00 00 01 67 42 00 0A F8 41 A2 "  //
            "00 00 01 E8 CE 38 80 "              //
            "00 00 01 65 88 84 00 33 "           //
            "00 00 01 01 9A 24 66 "              //
            "00 00 01 41 9A 44 66 "              //
            "00 00 01 41 9A 64 66 "              //
            "00 00 01 41 9A 84 66 "              //
            "00 00 01 41 9A A4 66");
    expectGolden(listingOf("x", stream), "findings");
}

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
                    {qvinspect::UnitState::Empty, 1234, 0, 0, false}};
    qvinspect::AccessUnit untimed;
    untimed.size = 7;
    untimed.findings = {{qvinspect::Severity::Error, std::nullopt, "damaged"}};
    const std::vector<qvinspect::Finding> behind = {{qvinspect::Severity::Error, 99, "reading failed"},
                                                    {qvinspect::Severity::Note, std::nullopt, "a note"}};
    qvinspect::AccessUnitDetails details;
    details.units.resize(report.units.size());

    listing.begin({"x.mp4", containerInfo(), false, {}});
    const qvinspect::AccessUnitReport emptyReport;
    const qvinspect::AccessUnitDetails emptyDetails;
    for (const auto& view : {qvinspect::viewOf(1, timed, report, details),
                             qvinspect::viewOf(2, untimed, emptyReport, emptyDetails)}) {
        counter.add(view);
        listing.add(view);
    }
    counter.finish(behind);
    listing.end({counter.totals(), behind, {}, false});
    listing.finish();
    expectGolden(textOf(out), "container");
}

}  // namespace
}  // namespace qv_test
