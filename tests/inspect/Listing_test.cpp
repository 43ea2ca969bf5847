#include "report/Listing.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <deque>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "Inspect.h"
#include "InspectSupport.h"
#include "StreamExpectation.h"

namespace qv_test {
namespace {

struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Close>;

File temporaryFile() {
    File file(std::tmpfile());
    if (file == nullptr) {
        throw std::runtime_error("no temporary file");
    }
    return file;
}

std::string contentOf(std::FILE* file) {
    std::rewind(file);
    std::string text;
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) {
        text += static_cast<char>(c);
    }
    return text;
}

// What a listing has to be, to the letter: a person has looked at it.
std::string golden(const std::string& name) {
    const Bytes bytes = fileContent(std::filesystem::path(QVINSPECT_GOLDEN_DIR) / (name + ".txt"));
    return std::string(bytes.begin(), bytes.end());
}

std::string listingOf(const std::string& name, const Bytes& bytes, std::deque<int> requested = {}) {
    const TemporaryFolder folder;
    const std::string path = folder.write(name, bytes);
    const File file = temporaryFile();
    qvinspect::Output output(file.get());
    qvinspect::CommandLine line;
    line.requested = std::move(requested);
    qvinspect::inspectFile(path, line, output);
    output.flush();
    std::string text = contentOf(file.get());
    for (size_t at = text.find(path); at != std::string::npos; at = text.find(path)) {
        text.replace(at, path.size(), name);
    }
    return text;
}

TEST(Listing, rawStream) {
    EXPECT_EQ(listingOf("hevc_hdr10.h265", fileContent(sampleFolder() / "hevc_hdr10.h265")),
              golden("raw_stream"));
}

TEST(Listing, hdrVivid) {
    EXPECT_EQ(listingOf("hevc_vivid_hand.h265", fileContent(bundledStreams() / "hevc_vivid_hand.h265")),
              golden("hdr_vivid"));
}

TEST(Listing, hrdTiming) {
    EXPECT_EQ(listingOf("avc_hrd_picstruct.h264", fileContent(bundledStreams() / "avc_hrd_picstruct.h264")),
              golden("hrd_timing"));
}

TEST(Listing, requestedTypesAreKept) {
    EXPECT_EQ(listingOf("hevc_hash_hand.h265", fileContent(bundledStreams() / "hevc_hash_hand.h265"), {132}),
              golden("requested_hashes"));
}

TEST(Listing, mp4WithItsConfigurationRecord) {
    if (QVINSPECT_HAS_LIBAVFORMAT == 0) {
        GTEST_SKIP() << "built without libavformat: no containers";
    }
    EXPECT_EQ(listingOf("avc_len1.mp4", fileContent(bundledStreams() / "avc_len1.mp4")), golden("mp4"));
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
    EXPECT_EQ(listingOf("x", stream), golden("findings"));
}

qvinspect::StreamInfo containerInfo() {
    qvinspect::StreamInfo info;
    info.format = "QuickTime / MOV";
    info.parameters = {QVCodecIDHevc, 0, 2};
    return info;
}

TEST(Listing, container) {
    const File file = temporaryFile();
    qvinspect::Output output(file.get());
    qvinspect::Listing listing(output, "x.mp4", containerInfo(), false);
    qvinspect::Summary summary;

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
    listing.begin({});
    listing.add(timed, report, details);
    listing.add(untimed, {}, {});
    summary.add(timed, report);
    summary.add(untimed, {});
    summary.add(behind);
    listing.end(behind, summary, qvinspect::StreamDetails(QVCodecIDHevc, {}));
    output.flush();
    EXPECT_EQ(contentOf(file.get()), golden("container"));
}

}  // namespace
}  // namespace qv_test
