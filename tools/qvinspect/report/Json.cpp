#include "report/Json.h"

#include <utility>

namespace qvinspect {

namespace {

// The text of an object without its braces.
std::string membersText(const JsonRecord& members) {
    const std::string text = jsonText(members);
    return text.substr(1, text.size() - 2);
}

}  // namespace

Json::Json(const std::string& path, JsonOptions options) : output_(path), options_(std::move(options)) {
    JsonRecord members;
    addGenerator(members, options_);
    output_.print("{{{},\"files\":[", membersText(members));
}

void Json::beginFile(const JsonRecord& members) {
    const std::string text = membersText(members);  // if this throws, nothing was written
    output_.print("{}\n{{{}", std::exchange(isFirstFile_, false) ? "" : ",", text);
}

void Json::endFile(const JsonRecord& members) {
    output_.print(",{}}}", membersText(members));
}

void Json::begin(const StreamHead& head) {
    JsonRecord members;
    addName(members, "name", head.name, options_);
    addHead(members, head, options_.level);
    beginFile(members);
    if (options_.level > Level::Summary) {
        output_.print(",\"access_units\":[");
    }
    isFileOpen_ = true;
    isFirstAccessUnit_ = true;
}

void Json::add(const AccessUnitView& view) {
    if (options_.level == Level::Summary || !view.isShown) {
        return;
    }
    JsonRecord record;
    addAccessUnit(record, view, options_.level);
    const std::string text = jsonText(record);
    output_.write(std::exchange(isFirstAccessUnit_, false) ? "\n" : ",\n");
    output_.write(text);
}

void Json::end(const StreamEnd& end) {
    if (options_.level > Level::Summary) {
        output_.print("]");
    }
    JsonRecord members;
    addEnd(members, end);
    endFile(members);
    isFileOpen_ = false;
}

// Also for an input with access units in the document.
void Json::fail(const std::string& name, const std::string& reason) {
    if (!isFileOpen_) {
        JsonRecord members;
        addName(members, "name", name, options_);
        beginFile(members);
    } else if (options_.level > Level::Summary) {
        output_.print("]");
    }
    endFile({{"error", reason}});
    isFileOpen_ = false;
}

void Json::finish() {
    output_.print("]}}\n");
    output_.close();
}

}  // namespace qvinspect
