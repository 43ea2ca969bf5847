#include "report/Csv.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "InspectSupport.h"
#include "ReportSupport.h"

namespace qv_test {
namespace {

using ::testing::HasSubstr;

constexpr const char* kHeader =
    "file,access_unit,time,key,offset,length,type,name,state,non_reference,sei_types,error,"
    "access_unit_errors\r\n";

TEST(Csv, golden) {
    const TemporaryFolder folder;
    const std::string path = folder.write("small, \"so called\".h264", smallStream());
    expectGoldenReport(reportsOf({path, folder.path() / "missing", path}).csv, "small.csv");
}

TEST(Csv, headerEvenWithoutRows) {
    EXPECT_EQ(reportsOf({"missing"}).csv, kHeader);
}

TEST(Csv, filtersApply) {
    const TemporaryFolder folder;
    const std::string path = folder.write("x", smallStream());
    qvinspect::CommandLine line;
    line.filter.unitTypes = {8};
    line.input.frameRate = 4;
    EXPECT_EQ(reportsOf({path}, {}, line).csv,
              std::string(kHeader) + "x,1,0,true,23,4,8,picture parameter set,typed,false,,,2\r\n");
}

// RFC 4180: rows end with CR LF and quotes are doubled, whatever a name holds.
TEST(Csv, hostileTexts) {
    const TemporaryFolder folder;
    const std::string path = folder.path() / "csv";
    qvinspect::Csv report(path);
    presentHostileStream(report);
    report.finish();
    const Bytes bytes = fileContent(path);
    const std::string text(bytes.begin(), bytes.end());
    EXPECT_THAT(text, HasSubstr(" \"\"quoted\"\", "));
    EXPECT_EQ(text.substr(text.size() - 2), "\r\n");
    EXPECT_THAT(text, HasSubstr("\",1,,false,0,0,,,empty,,4294967295,empty unit,2\r\n"));
}

}  // namespace
}  // namespace qv_test
