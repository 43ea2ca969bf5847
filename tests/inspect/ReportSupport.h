// Reports for programs, as the tests make and compare them.
#ifndef QV_TESTS_REPORTSUPPORT_H
#define QV_TESTS_REPORTSUPPORT_H

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "BitWriter.h"
#include "Inspect.h"
#include "report/JsonRecords.h"

namespace qv_test {

// What the three of them say of the same inputs.
struct Reports {
    std::string json;
    std::string ndjson;
    std::string csv;
};

// Inspects the files one after the other, as the program does.
Reports reportsOf(const std::vector<std::string>& paths, const qvinspect::JsonOptions& options = {},
                  const qvinspect::CommandLine& line = {});

// A short H.264 stream with a bit of everything: leading bytes, a unit with forbidden_zero_bit set, a
// parameter set sent twice, SEI messages with bytes that are no text, an empty SEI unit that the library
// cannot walk.
Bytes smallStream();

// Findings and names that hold every kind of hostile byte.
std::string hostileText();

// A stream of which only the presenters know: every text in it is hostile and its numbers are extreme. Stays
// open with isBrokenOff.
void presentHostileStream(qvinspect::Presenter& presenter, bool isBrokenOff = false);

std::vector<nlohmann::json> parseLines(const std::string& ndjson);

// The text to the letter as the golden file has it: a person has looked at that. With QVINSPECT_WRITE_GOLDEN
// set it is written first. The program's version is not compared.
void expectGoldenReport(const std::string& text, const std::string& fileName);

}  // namespace qv_test

#endif
