// Makes and compares reports for programs.
#ifndef QV_TESTS_REPORTSUPPORT_H
#define QV_TESTS_REPORTSUPPORT_H

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "BitWriter.h"
#include "Inspect.h"
#include "report/JsonRecords.h"

namespace qv_test {

// The three reports of the same inputs.
struct Reports {
    std::string json;
    std::string ndjson;
    std::string csv;
};

// Inspects the files in sequence, as the program does.
Reports reportsOf(const std::vector<std::string>& paths, const qvinspect::JsonOptions& options = {},
                  const qvinspect::CommandLine& line = {});

// A short H.264 stream with a bit of everything: leading bytes, a unit with forbidden_zero_bit set, a
// parameter set sent twice, SEI messages with bytes that are no text, an empty SEI unit that the library
// cannot walk.
Bytes smallStream();

// Findings and names with every kind of hostile byte.
std::string hostileText();

// Presents a stream in which every text is hostile and the numbers are extreme. With isBrokenOff it has no
// end.
void presentHostileStream(qvinspect::Presenter& presenter, bool isBrokenOff = false);

std::vector<nlohmann::json> parseLines(const std::string& ndjson);

// Expects exactly the text of the golden file, which a person has reviewed. If QVINSPECT_WRITE_GOLDEN is set,
// the file is written first. The program's version is not compared.
void expectGoldenReport(const std::string& text, const std::string& fileName);

}  // namespace qv_test

#endif
