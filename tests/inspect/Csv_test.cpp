#include "report/Csv.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

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
              std::string(kHeader) + "x,1,0,true,23,4,8,picture parameter set,typed,false,,,1\r\n");
}

// RFC 4180: rows end with CR LF and quotes are doubled, for every name.
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

// The file's cell, of the first row.
std::string nameCell(const std::string& name) {
    const TemporaryFolder folder;
    const std::string csv = reportsOf({folder.write(name, smallStream())}).csv;
    const size_t begin = std::string(kHeader).size();
    return csv.substr(begin, csv.find(",1,,", begin) - begin);
}

// Spreadsheets treat a cell that begins like a formula as one, and some separate cells by semicolons.
TEST(Csv, namesThatBeginLikeFormulas) {
    const std::vector<std::pair<std::string, std::string>> cells = {
        {"=1+1.h264", "'=1+1.h264"},
        {"+1.h264", "'+1.h264"},
        {"-1.h264", "'-1.h264"},
        {"@SUM(A1).h264", "'@SUM(A1).h264"},
        {"=cmd|' \"C\"'!A0", "\"'=cmd|' \"\"C\"\"'!A0\""},
        {"=A1,B1", "\"'=A1,B1\""},
        {"a;=1+1", "\"a;=1+1\""},
        {"\t=1", "\\x09=1"},
        {"\r=1", "\\x0D=1"},
        {"\xEF\xBC\x9D"
         "1",
         "'\xEF\xBC\x9D"
         "1"},  // U+FF1D, full-width
        {"\xEF\xBC\x8B"
         "1",
         "'\xEF\xBC\x8B"
         "1"},
        {"\xEF\xBC\x8D"
         "1",
         "'\xEF\xBC\x8D"
         "1"},
        {"\xEF\xBC\xA0"
         "1",
         "'\xEF\xBC\xA0"
         "1"},
        {"1-1=0@x+.h264", "1-1=0@x+.h264"},
        {"'=1", "'=1"},
    };
    for (const auto& [name, cell] : cells) {
        EXPECT_EQ(nameCell(name), cell);
    }
}

TEST(Csv, negativeNumbersStayNumbers) {
    const TemporaryFolder folder;
    const std::string path = folder.path() / "csv";
    qvinspect::Csv report(path);
    qvinspect::StreamInfo info;
    info.parameters = byteStreamOf(QVCodecIDAvc);
    report.begin({"x", info, false, {}});
    qvinspect::AccessUnit accessUnit;
    accessUnit.parameters = info.parameters;
    accessUnit.time = -0.04;
    qvinspect::AccessUnitReport units;
    units.units = {{qvinspect::UnitState::Empty, 0, 0, 0, false}};
    qvinspect::AccessUnitDetails details;
    details.units.resize(1);
    report.add(qvinspect::viewOf(1, accessUnit, units, details));
    report.finish();
    const Bytes bytes = fileContent(path);
    EXPECT_THAT(std::string(bytes.begin(), bytes.end()), HasSubstr("\r\nx,1,-0.04,false,"));
}

}  // namespace
}  // namespace qv_test
