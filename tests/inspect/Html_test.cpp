#include "report/Html.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "Inspect.h"
#include "InspectSupport.h"
#include "StreamExpectation.h"
#include "report/HtmlPlot.h"
#include "report/HtmlText.h"

namespace qv_test {
namespace {

using qvinspect::AccessUnitBin;
using qvinspect::AdaptiveBins;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kHostile = "</script><script>alert(\"1\")</script>'&\n\xFF";

std::string textOf(const std::filesystem::path& path) {
    const Bytes bytes = fileContent(path);
    return {bytes.begin(), bytes.end()};
}

size_t countOf(const std::string& what, const std::string& text) {
    size_t count = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + what.size())) {
        ++count;
    }
    return count;
}

// A failed comparison would print the whole page.
bool holds(const std::string& report, const std::string& text) {
    return report.find(text) != std::string::npos;
}

// --- Bins ---

// Access unit i has i + 1 bytes, every seventh is a key, every fifth has an error.
AdaptiveBins<AccessUnitBin> binsOf(size_t accessUnits, size_t mostBins) {
    AdaptiveBins<AccessUnitBin> bins(mostBins);
    for (size_t i = 0; i < accessUnits; ++i) {
        AccessUnitBin& bin = bins.binOf(i);
        AccessUnitBin one;
        one.count = 1;
        one.bytes = i + 1;
        one.largest = i + 1;
        one.keys = i % 7 == 0 ? 1 : 0;
        one.errors = i % 5 == 0 ? 1 : 0;
        one.time = static_cast<double>(i);
        if (i % 3 == 0) {
            const auto code = static_cast<uint32_t>(i);
            one.vivid.merge({1, 1000 + code, 3000 + code, 2000 + code});
            one.addMessage(2);
        }
        bin.merge(one);
    }
    return bins;
}

class HtmlBins : public ::testing::TestWithParam<size_t> {};

TEST_P(HtmlBins, mergingKeepsCountsSumsAndExtremes) {
    constexpr size_t kMostBins = 8;
    const size_t count = GetParam();
    const AdaptiveBins<AccessUnitBin> bins = binsOf(count, kMostBins);
    EXPECT_LE(bins.bins().size(), kMostBins);
    size_t next = 0;
    for (const AccessUnitBin& bin : bins.bins()) {
        const size_t first = next;
        next = std::min(count, first + bins.width());
        SCOPED_TRACE(first);
        uint64_t bytes = 0;
        uint64_t keys = 0;
        uint64_t errors = 0;
        std::vector<uint64_t> vivid;
        for (size_t i = first; i < next; ++i) {
            bytes += i + 1;
            keys += i % 7 == 0 ? 1U : 0U;
            errors += i % 5 == 0 ? 1U : 0U;
            if (i % 3 == 0) {
                vivid.push_back(i);
            }
        }
        EXPECT_EQ(bin.count, next - first);
        EXPECT_EQ(bin.bytes, bytes);
        EXPECT_EQ(bin.largest, next);
        EXPECT_EQ(bin.keys, keys);
        EXPECT_EQ(bin.errors, errors);
        EXPECT_EQ(bin.time, static_cast<double>(first));
        EXPECT_EQ(bin.vivid.count, vivid.size());
        EXPECT_EQ(bin.messagesIn(2), vivid.size());
        EXPECT_EQ(bin.messagesIn(1), 0U);
        EXPECT_EQ(bin.messagesIn(3), 0U);
        if (!vivid.empty()) {
            EXPECT_EQ(bin.vivid.minimum, 1000 + vivid.front());
            EXPECT_EQ(bin.vivid.maximum, 3000 + vivid.back());
            EXPECT_EQ(bin.vivid.averageSum, std::accumulate(vivid.begin(), vivid.end(), 2000 * vivid.size()));
        }
    }
    EXPECT_EQ(next, count);
}

INSTANTIATE_TEST_SUITE_P(Counts, HtmlBins, ::testing::Values(1, 7, 8, 9, 16, 17, 33, 1000));

TEST(HtmlBins, anItemFarAwayLeavesEmptyBinsBetween) {
    AdaptiveBins<qvinspect::TimeBin> bins(4);
    bins.binOf(0).count = 1;
    bins.binOf(1'000'000'000'000'000).count = 1;
    bins.binOf(0).count += 1;
    EXPECT_EQ(bins.width(), uint64_t{1} << 48);
    std::vector<uint64_t> counts;
    for (const qvinspect::TimeBin& bin : bins.bins()) {
        counts.push_back(bin.count);
    }
    EXPECT_THAT(counts, ElementsAre(2, 0, 0, 1));
}

// --- Text ---

TEST(HtmlText, markupAndBytesThatAreNoTextAreEscaped) {
    EXPECT_EQ(qvinspect::htmlText(kHostile),
              "&lt;/script&gt;&lt;script&gt;alert(&quot;1&quot;)&lt;/script&gt;&#39;&amp;\\x0A\\xFF");
    EXPECT_EQ(qvinspect::htmlText("caf\xC3\xA9"), "caf\xC3\xA9");
}

TEST(HtmlText, jsonCannotEndItsElementAndReadsAsItWas) {
    const std::string text = "</script><!--\xE2\x80\xA8\"\\";
    const std::string json = qvinspect::scriptJson({{"text", text}});
    EXPECT_THAT(json, Not(HasSubstr("<")));
    EXPECT_EQ(nlohmann::json::parse(json)["text"], text);
    for (const char c : json) {
        EXPECT_LT(static_cast<unsigned char>(c), 0x80);
    }
    EXPECT_EQ(nlohmann::json::parse(qvinspect::scriptJson({{"text", "\xFF"}}))["text"], "\xEF\xBF\xBD");
}

TEST(HtmlText, figures) {
    EXPECT_EQ(qvinspect::groupedDigits(0), "0");
    EXPECT_EQ(qvinspect::groupedDigits(999), "999");
    EXPECT_EQ(qvinspect::groupedDigits(1000), "1,000");
    EXPECT_EQ(qvinspect::groupedDigits(1234567), "1,234,567");
    EXPECT_EQ(qvinspect::bitrateText(812), "812 bit/s");
    EXPECT_EQ(qvinspect::bitrateText(1'234'000), "1.23 Mbit/s");
    EXPECT_EQ(qvinspect::bytesText(15'000), "15 kB");
    EXPECT_EQ(qvinspect::durationText(1.2), "1.200 s");
    EXPECT_EQ(qvinspect::durationText(400), "400.000 s (06:40)");
    EXPECT_EQ(qvinspect::durationText(3725), "3725.000 s (1:02:05)");
    EXPECT_EQ(qvinspect::durationText(1e15), "1000000000000000.000 s");
    EXPECT_EQ(qvinspect::shortNumber(0.005), "0.005");
    EXPECT_EQ(qvinspect::shortNumber(10), "10");
}

TEST(HtmlPlot, ticksAreRoundNumbersInTheRange) {
    EXPECT_THAT(qvinspect::roundTicks(0, 100, 4), ElementsAre(0, 50, 100));
    EXPECT_THAT(qvinspect::roundTicks(1, 10, 8), ElementsAre(2, 4, 6, 8, 10));
    EXPECT_THAT(qvinspect::roundTicks(7, 7, 8), ElementsAre(7));
    EXPECT_LE(qvinspect::roundTicks(0, 1e15, 8).size(), 17U);
}

// --- Reports ---

class HtmlReport : public ::testing::Test {
protected:
    std::string pathOf(const std::string& name, const Bytes& bytes) const {
        return folder_.write(name, bytes);
    }

    std::string reportOf(const std::vector<std::string>& paths, const qvinspect::CommandLine& line = {},
                         qvinspect::HtmlLimits limits = {}, const std::string& stamp = {}) const {
        const std::string out = folder_.path() / "report.html";
        qvinspect::HtmlOptions options{{}, stamp, limits};
        for (const std::string& path : paths) {
            options.inputs.push_back(qvinspect::reportedName(path, line));
        }
        qvinspect::Presenters presenters;
        presenters.push_back(std::make_unique<qvinspect::Html>(out, std::move(options)));
        for (const std::string& path : paths) {
            qvinspect::inspectFile(path, line, presenters);
        }
        presenters.front()->finish();
        return textOf(out);
    }

    static nlohmann::json unitsIn(const std::string& report) {
        const std::string begin = "class=\"unit-data\">";
        const size_t at = report.find(begin) + begin.size();
        return nlohmann::json::parse(report.substr(at, report.find("</script>", at) - at));
    }

    TemporaryFolder folder_;
};

// An IDR picture, then others; forbidden_zero_bit is set in the second unit and in the fifth.
Bytes smallStream() {
    return hex(
        "00 00 00 01 67 42 00 0A F8 41 A2 "
        "00 00 01 E8 CE 38 80 "
        "00 00 01 65 88 84 00 33 "
        "00 00 01 41 9A 24 66 "
        "00 00 01 C1 9A 44 66 "
        "00 00 01 41 9A 64 66 "
        "00 00 01 41 9A 84 66");
}

Bytes sample() {
    return fileContent(sampleFolder() / "hevc_hdr10.h265");
}

TEST_F(HtmlReport, sameInputSameBytes) {
    const std::string path = pathOf("x.h265", sample());
    const std::string report = reportOf({path});
    EXPECT_EQ(report, reportOf({path}));
    EXPECT_FALSE(holds(report, folder_.path().string())) << folder_.path().string();
}

TEST_F(HtmlReport, stampShowsDateAndPath) {
    qvinspect::CommandLine line;
    line.stamp = true;
    const std::string path = pathOf("x.h265", sample());
    const std::string report = reportOf({path}, line, {}, "2001-02-03T04:05:06Z");
    EXPECT_TRUE(holds(report, "2001-02-03T04:05:06Z")) << "2001-02-03T04:05:06Z";
    EXPECT_TRUE(holds(report, path)) << path;
}

TEST_F(HtmlReport, loadsNothing) {
    const std::string report = reportOf({pathOf("x.h265", sample())});
    for (const char* word : {"http://", "https://", "@import", "src=", "url("}) {
        std::string rest = report;
        const std::string svg = "http://www.w3.org/2000/svg";  // the name of a namespace
        for (size_t at = rest.find(svg); at != std::string::npos; at = rest.find(svg)) {
            rest.erase(at, svg.size());
        }
        EXPECT_FALSE(holds(rest, word)) << word;
    }
}

// A person has reviewed the file. If QVINSPECT_WRITE_GOLDEN is set, it is written first.
TEST_F(HtmlReport, unitData) {
    const std::string text = unitsIn(reportOf({pathOf("x.h265", sample())})).dump(1, ' ') + "\n" +
                             unitsIn(reportOf({pathOf("x.h264", smallStream())})).dump(1, ' ') + "\n";
    const std::filesystem::path path = std::filesystem::path(QVINSPECT_GOLDEN_DIR) / "html_units.txt";
    if (std::getenv("QVINSPECT_WRITE_GOLDEN") != nullptr) {
        std::ofstream(path, std::ios::binary) << text;
    }
    EXPECT_EQ(text, textOf(path));
}

TEST_F(HtmlReport, marksAreThoseOfTheStream) {
    const std::string report = reportOf({pathOf("x.h264", smallStream())});
    EXPECT_EQ(countOf("<rect class=\"size", report), 4U + 4U);  // access units, and unit types
    EXPECT_EQ(countOf("<rect class=\"key", report), 1U);
    EXPECT_EQ(countOf("<rect class=\"error", report), 2U);
    EXPECT_TRUE(holds(report, "access unit 1: ")) << "access unit 1: ";
    EXPECT_FALSE(holds(report, "class=\"hdr\"")) << "class=\"hdr\"";
}

TEST_F(HtmlReport, longStreamsAreBinned) {
    qvinspect::HtmlLimits limits;
    limits.mostBins = 2;
    const std::string report = reportOf({pathOf("x.h265", sample())}, {}, limits);
    EXPECT_TRUE(holds(report, "Each bar represents 2 access units."))
        << "Each bar represents 2 access units.";
    EXPECT_EQ(countOf("<rect class=\"largest", report), 2U);
    EXPECT_TRUE(holds(report, "access units 1 to 2, 0.000 s: 2247 bytes on average, 3366 at most, 1 key"))
        << "access units 1 to 2, 0.000 s: 2247 bytes on average, 3366 at most, 1 key";
}

TEST_F(HtmlReport, limitsAreReported) {
    qvinspect::HtmlLimits limits;
    limits.mostUnits = 2;
    limits.mostErrors = 1;
    limits.mostFieldBytes = 10;
    const std::string report = reportOf({pathOf("x.h264", smallStream())}, {}, limits);
    EXPECT_TRUE(holds(report, "The first 2 of 7 units; the full data is in <code>--ndjson</code>."))
        << "The first 2 of 7 units; the full data is in <code>--ndjson</code>.";
    EXPECT_TRUE(holds(report, "The first 1 of 2 errors")) << "The first 1 of 2 errors";
    EXPECT_EQ(countOf("<tr data-type", report), 2U);
    const nlohmann::json units = unitsIn(report);
    EXPECT_EQ(units.size(), 2U);
    EXPECT_TRUE(units[0]["parts"][0]["fields"].is_null());
}

TEST_F(HtmlReport, typesBeyondTheLanesShareOne) {
    qvinspect::HtmlLimits limits;
    limits.mostLanes = 2;
    const Bytes stream = fileContent(bundledStreams() / "avc_hrd_picstruct.h264");
    const std::string path = pathOf("x.h264", stream);
    EXPECT_GT(countOf("<text class=\"lane\"", reportOf({path})), 2U);
    const std::string report = reportOf({path}, {}, limits);
    EXPECT_EQ(countOf("<text class=\"lane\"", report), 2U);
    EXPECT_TRUE(holds(report, "other types, ")) << "other types, ";
}

TEST_F(HtmlReport, filterChoosesRowsNotMarks) {
    qvinspect::CommandLine line;
    line.filter.unitTypes = {39};
    const std::string path = pathOf("x.h265", sample());
    const std::string report = reportOf({path}, line);
    EXPECT_EQ(countOf("<tr data-type", report), 2U);
    EXPECT_EQ(countOf("<rect class=\"key", report), 1U);
    EXPECT_TRUE(holds(report, "The filter options selected 2 of the stream's 9 units"))
        << "The filter options selected 2 of the stream's 9 units";
}

TEST_F(HtmlReport, hdrVividHasItsPlot) {
    const Bytes stream = fileContent(bundledStreams() / "hevc_vivid_hand.h265");
    const std::string report = reportOf({pathOf("x.h265", stream)});
    EXPECT_TRUE(holds(report, "<figure class=\"vivid\">")) << "<figure class=\"vivid\">";
    EXPECT_EQ(countOf("<rect class=\"mastering", report), 1U);
}

TEST_F(HtmlReport, aSectionForEachInput) {
    const std::string report = reportOf({pathOf("a.h265", sample()), pathOf("b.h264", smallStream())});
    EXPECT_EQ(countOf("<section class=\"file\"", report), 2U);
    EXPECT_TRUE(holds(report, "<a href=\"#file-2\"><bdi>b.h264</bdi></a>"))
        << "<a href=\"#file-2\"><bdi>b.h264</bdi></a>";
}

TEST_F(HtmlReport, hostileNamesAreText) {
    const std::string name = "<script>alert(1)<!--\"'&\n\xFF.h265";
    const std::string report = reportOf({pathOf(name, sample()), pathOf("b.h264", smallStream())});
    EXPECT_FALSE(holds(report, "<script>alert")) << "<script>alert";
    EXPECT_TRUE(holds(report, "&lt;script&gt;alert(1)&lt;!--&quot;&#39;&amp;\\x0A\\xFF.h265"))
        << "&lt;script&gt;alert(1)&lt;!--&quot;&#39;&amp;\\x0A\\xFF.h265";
}

// user_data_unregistered: 16 bytes of UUID, then text.
TEST_F(HtmlReport, hostileStreamTextIsText) {
    const std::string text = "</script><img src=x onerror=alert(1)>";
    Bytes sei = hex("06 05") + Bytes{static_cast<uint8_t>(16 + text.size())} + Bytes(16, 0x41);
    sei = sei + Bytes(text.begin(), text.end()) + hex("80");
    const std::string report = reportOf({pathOf("x.h264", byteStream({sei}) + smallStream())});
    EXPECT_FALSE(holds(report, "<img")) << "<img";
    EXPECT_THAT(unitsIn(report).dump(), HasSubstr(text));
}

// RIGHT-TO-LEFT OVERRIDE, in a name and in a text of the stream, which the script shows.
TEST_F(HtmlReport, noTextTurnsAround) {
    const std::string text =
        "a\xE2\x80\xAE"
        "b";
    Bytes sei = hex("06 05") + Bytes{static_cast<uint8_t>(16 + text.size())} + Bytes(16, 0x41);
    sei = sei + Bytes(text.begin(), text.end()) + hex("80");
    const std::string report = reportOf({pathOf(text + ".h264", byteStream({sei}) + smallStream())});
    EXPECT_FALSE(holds(report, "\xE2\x80\xAE")) << "as a character";
    EXPECT_FALSE(holds(report, "\\u202e")) << "as JSON writes it";
    EXPECT_TRUE(holds(report, "a\\xE2\\x80\\xAEb.h264")) << "the name";
    EXPECT_THAT(unitsIn(report).dump(), HasSubstr("\"a...b\"")) << "the stream's text";
}

// --- The page's policy ---

// The source of a policy that allows this text.
std::string hashSource(const std::string& text) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned length = 0;
    EXPECT_EQ(EVP_Digest(text.data(), text.size(), digest.data(), &length, EVP_sha256(), nullptr), 1);
    std::array<unsigned char, 2 * EVP_MAX_MD_SIZE> base64{};
    const int size = EVP_EncodeBlock(base64.data(), digest.data(), static_cast<int>(length));
    return "'sha256-" + std::string(base64.begin(), base64.begin() + size) + "'";
}

// The text between the only tags of that name without attributes.
std::string contentOf(const std::string& tag, const std::string& page) {
    EXPECT_EQ(countOf("<" + tag + ">", page), 1U);
    const size_t begin = page.find("<" + tag + ">") + tag.size() + 2;
    return page.substr(begin, page.find("</" + tag + ">", begin) - begin);
}

TEST_F(HtmlReport, onlyItsOwnScriptAndStyleAreAllowed) {
    const std::string report = reportOf({pathOf("a.h265", sample())});
    const std::string policy = "default-src 'none'; style-src " + hashSource(contentOf("style", report)) +
                               "; script-src " + hashSource(contentOf("script", report)) +
                               "; img-src data:; base-uri 'none'; form-action 'none'";
    EXPECT_TRUE(holds(report, "<meta http-equiv=\"Content-Security-Policy\" content=\"" + policy + "\">"))
        << policy;
    EXPECT_FALSE(holds(report, " style=")) << "a policy of hashes blocks style attributes";
    EXPECT_FALSE(holds(report, " onclick="));
    EXPECT_LT(report.find("Content-Security-Policy"), report.find("<style>"));
}

// --- Failures ---

qvinspect::StreamHead head() {
    qvinspect::StreamInfo info;
    info.format = kHostile;
    info.parameters = {QVCodecIDHevc, 0, 2};
    return {"x", info, false, {}};
}

TEST_F(HtmlReport, failuresAreReported) {
    const std::string out = folder_.path() / "report.html";
    qvinspect::Html html(out, {{"none", "x", "late"}, "", {}});
    html.fail("none", std::string("cannot be read: ") + kHostile);
    html.begin(head());
    qvinspect::StreamCounter counter(head().info);
    const std::vector<qvinspect::Finding> atEnd = {
        {qvinspect::Severity::Error, 99, std::string("reading failed ") + kHostile}};
    counter.finish(atEnd);
    html.end({counter.totals(), atEnd, {{"no-errors", false, kHostile}}, true});
    html.finish();
    const std::string report = textOf(out);
    EXPECT_TRUE(holds(report, "cannot be read: &lt;/script&gt;")) << "cannot be read: &lt;/script&gt;";
    EXPECT_TRUE(holds(report, "Interrupted: this is what was read so far."))
        << "Interrupted: this is what was read so far.";
    EXPECT_TRUE(holds(report, "Interrupted before this input.")) << "Interrupted before this input.";
    EXPECT_TRUE(holds(report, "<td>end<td>99<td>reading failed &lt;/script&gt;"))
        << "<td>end<td>99<td>reading failed &lt;/script&gt;";
    EXPECT_TRUE(holds(report, "<span class=\"badge bad\">failed</span> <code>no-errors</code>"))
        << "<span class=\"badge bad\">failed</span> <code>no-errors</code>";
    EXPECT_EQ(countOf("alert(\"1\")", report), 0U);
    EXPECT_EQ(countOf("<section class=\"file", report), 3U);
}

TEST_F(HtmlReport, aFullDiskIsNoticed) {
    qvinspect::Html html("/dev/full", {{"x"}, "", {}});
    EXPECT_THROW(html.finish(), qvinspect::OutputError);
    EXPECT_THROW(qvinspect::Html("/no/such/folder/x", {{"x"}, "", {}}), qvinspect::OutputError);
}

TEST(Html, bitDepthsThatDiffer) {
    const TemporaryFolder folder;
    const std::string path = folder.path() / "report.html";
    qvinspect::StreamInfo info;
    info.parameters = {QVCodecIDHevc, 1, 0};
    qvinspect::SequenceParameterSet sps{};
    sps.codec = QVCodecIDHevc;
    sps.isAccepted = true;
    sps.video.emplace();
    sps.video->chroma = qv::chromaFormatOf(1);
    sps.video->bitDepthLuma = 8;
    sps.video->bitDepthChroma = 16;
    qvinspect::StreamCounter counter(info);
    counter.addConfiguration({{sps}, {33}});
    counter.finish({});

    qvinspect::Html html(path, {});
    html.begin({"x", info, true, {sps}});
    html.end({counter.totals(), {}, {}, false});
    html.finish();
    EXPECT_TRUE(holds(textOf(path), "8 bit luma, 16 bit chroma"));
}

}  // namespace
}  // namespace qv_test
