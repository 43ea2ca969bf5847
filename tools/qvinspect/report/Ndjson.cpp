#include "report/Ndjson.h"

#include <utility>

namespace qvinspect {

Ndjson::Ndjson(const std::string& path, JsonOptions options) : output_(path), options_(std::move(options)) {}

JsonRecord Ndjson::recordOf(const char* kind) const {
    JsonRecord record = {{"record", kind}, {"file_index", fileIndex_}};
    addName(record, "file", name_, options_);
    return record;
}

void Ndjson::write(const JsonRecord& record) {
    output_.write(jsonText(record));
    output_.write("\n");
}

void Ndjson::begin(const StreamHead& head) {
    name_ = head.name;
    isFileOpen_ = true;
    JsonRecord record = recordOf("file");
    addGenerator(record, options_);
    addHead(record, head, options_.level);
    write(record);
}

void Ndjson::add(const AccessUnitView& view) {
    if (options_.level == Level::Summary || !view.isShown) {
        return;
    }
    JsonRecord record = recordOf("access_unit");
    addAccessUnit(record, view, options_.level);
    write(record);
}

void Ndjson::end(const StreamEnd& end) {
    JsonRecord record = recordOf("summary");
    addEnd(record, end);
    write(record);
    isFileOpen_ = false;
    ++fileIndex_;
}

void Ndjson::fail(const std::string& name, const std::string& reason) {
    name_ = name;
    JsonRecord record = recordOf("error");
    if (!isFileOpen_) {
        addGenerator(record, options_);  // no record of the file precedes this one
    }
    record["error"] = reason;
    write(record);
    isFileOpen_ = false;
    ++fileIndex_;
}

void Ndjson::finish() {
    output_.close();
}

}  // namespace qvinspect
