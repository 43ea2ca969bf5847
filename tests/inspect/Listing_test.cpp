#include "Listing.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

#include "Inspect.h"
#include "InspectSupport.h"

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

std::string listingOf(const std::string& name, const Bytes& bytes) {
    const TemporaryFolder folder;
    const std::string path = folder.write(name, bytes);
    const File file = temporaryFile();
    qvinspect::Output output(file.get());
    qvinspect::inspectFile(path, std::nullopt, output);
    output.flush();
    std::string text = contentOf(file.get());
    for (size_t at = text.find(path); at != std::string::npos; at = text.find(path)) {
        text.replace(at, path.size(), name);
    }
    return text;
}

TEST(Listing, rawStream) {
    EXPECT_EQ(listingOf("hevc_hdr10.h265", fileContent(sampleFolder() / "hevc_hdr10.h265")),
              R"(File     hevc_hdr10.h265
Stream   H.265, raw byte stream, Annex B start codes
Offsets  in the file

AU               offset       bytes
                 offset      length  type
AU 1                  0        3366  key
                      4          24    32  VPS_NUT
                     32          45    33  SPS_NUT
                     81           7    34  PPS_NUT
                     91          10    39  PREFIX_SEI_NUT
                    104          30    39  PREFIX_SEI_NUT
                    137        3229    20  IDR_N_LP
AU 2               3366        1128
                   3370        1124     1  TRAIL_R
AU 3               4494         747
                   4498         743     1  TRAIL_R
AU 4               5241         577
                   5245         573     0  TRAIL_N, non-reference

Summary of hevc_hdr10.h265
  codec             H.265
  container         none, raw byte stream
  framing           Annex B start codes
  access units      4
  key access units  1
  NAL units         9
    type  0         1         TRAIL_N
    type  1         2         TRAIL_R
    type 20         1         IDR_N_LP
    type 32         1         VPS_NUT
    type 33         1         SPS_NUT
    type 34         1         PPS_NUT
    type 39         2         PREFIX_SEI_NUT
  bytes             5818
  errors            0
)");
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
    EXPECT_EQ(listingOf("x", stream),
              R"(File     x
Stream   H.264, raw byte stream, Annex B start codes
Offsets  in the file

AU               offset       bytes
                 offset      length  type
AU 1                  2          26  key
         note at 0: 2 bytes ahead of the first start code are left out
                      6           7     7  sequence parameter set
                     16           4     -  error: forbidden_zero_bit is set
                     23           5     5  slice of an IDR picture
AU 2                 28           7
                     31           4     1  slice of a non-IDR picture, non-reference
AU 3                 35           7
                     38           4     1  slice of a non-IDR picture
AU 4                 42           7
                     45           4     1  slice of a non-IDR picture
AU 5                 49           7
                     52           4     1  slice of a non-IDR picture
AU 6                 56           7
                     59           4     1  slice of a non-IDR picture

Summary of x
  codec             H.264
  container         none, raw byte stream
  framing           Annex B start codes
  access units      6
  key access units  1
  NAL units         8
    type  1         5         slice of a non-IDR picture
    type  5         1         slice of an IDR picture
    type  7         1         sequence parameter set
    no type         1         forbidden_zero_bit set, or empty
  bytes             61
  errors            1
)");
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

    listing.begin();
    listing.add(timed, report);
    listing.add(untimed, {});
    summary.add(timed, report);
    summary.add(untimed, {});
    summary.add(behind);
    listing.end(behind, summary);
    output.flush();
    EXPECT_EQ(contentOf(file.get()),
              R"(File     x.mp4
Stream   H.265, QuickTime / MOV, 2-byte length fields
Offsets  in the access unit

AU             time [s]       bytes
                 offset      length  type
AU 1          -0.040000        1234  key
                      2        1230    19  IDR_W_RADL
                   1234           0     -  error: empty unit
AU 2                  -           7
         error: damaged
         error at 99: reading failed
         note: a note

Summary of x.mp4
  codec             H.265
  container         QuickTime / MOV
  framing           2-byte length fields
  access units      2
  key access units  1
  NAL units         2
    type 19         1         IDR_W_RADL
    no type         1         forbidden_zero_bit set, or empty
  bytes             1241
  errors            3
)");
}

}  // namespace
}  // namespace qv_test
