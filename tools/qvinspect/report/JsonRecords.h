// The records of JSON and NDJSON; docs/inspector-output.md documents their keys.
#ifndef QVINSPECT_JSONRECORDS_H
#define QVINSPECT_JSONRECORDS_H

#include <nlohmann/json.hpp>
#include <string>

#include "report/Level.h"
#include "report/Presenter.h"

namespace qvinspect {

using JsonRecord = nlohmann::ordered_json;  // keys in the order in which they were set

struct JsonOptions {
    Level level = Level::Fields;
    std::string date;  // with --stamp, ISO 8601; empty without it
};

// Changes when a key is removed or changes its meaning, not when one is added.
constexpr int kJsonSchemaVersion = 1;

// Each adds its keys to record.
void addGenerator(JsonRecord& record, const JsonOptions& options);
void addName(JsonRecord& record, const char* key, const std::string& name, const JsonOptions& options);
void addHead(JsonRecord& record, const StreamHead& head, Level level);
void addAccessUnit(JsonRecord& record, const AccessUnitView& view, Level level);
void addEnd(JsonRecord& record, const StreamEnd& end);

// One line of valid UTF-8 for any bytes in the texts; null for numbers that are not finite.
std::string jsonText(const JsonRecord& record);

}  // namespace qvinspect

#endif
